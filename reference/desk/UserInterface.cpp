#include "reference/desk/UserInterface.h"

#include "reference/desk/FileDialog.h"
#include "reference/desk/ScreenColor.h"

#include <QColorDialog>
#include <QDesktopServices>
#include <QInputDialog>
#include <QMainWindow>
#include <QMessageBox>
#include <QProgressDialog>
#include <QStatusBar>

#include <algorithm>

namespace Host {

UserInterface::UserInterface(QMainWindow& window, ISettings* pSettings, QObject* pParent)
    : IUserInterface(pParent)
    , m_window(window)
    , m_pSettings(pSettings)
{
}

UserInterface::~UserInterface() = default;

void UserInterface::ShowMessage(const QString& strText)
{
    QMessageBox::information(&m_window, m_window.windowTitle(), strText);
}

void UserInterface::ShowWarning(const QString& strText)
{
    QMessageBox::warning(&m_window, m_window.windowTitle(), strText);
}

void UserInterface::ShowError(const QString& strText)
{
    QMessageBox::critical(&m_window, m_window.windowTitle(), strText);
}

void UserInterface::ShowStatus(const QString& strText)
{
    m_window.statusBar()->showMessage(strText);
}

bool UserInterface::AskYesNo(const QString& strQuestion)
{
    return QMessageBox::question(&m_window, m_window.windowTitle(), strQuestion) == QMessageBox::Yes;
}

bool UserInterface::AskText(const QString& strTitle, const QString& strLabel, QString& strText)
{
    bool bAnswered = false;
    const QString answer = QInputDialog::getText(&m_window, strTitle, strLabel, QLineEdit::Normal, strText, &bAnswered);
    if (bAnswered) strText = answer;
    return bAnswered;
}

bool UserInterface::AskChoice(const QString& strTitle, const QStringList& choices, int& nChoice)
{
    QInputDialog dialog(&m_window);
    dialog.setWindowTitle(strTitle);
    dialog.setLabelText(strTitle);
    dialog.setOption(QInputDialog::UseListViewForComboBoxItems);
    dialog.setComboBoxItems(choices);
    dialog.setTextValue(choices.value(nChoice));
    if (dialog.exec() != QDialog::Accepted) return false;
    const int nAnswer = choices.indexOf(dialog.textValue());
    if (nAnswer < 0) return false;
    // Where two choices read alike, the proposed one was not changed.
    if (dialog.textValue() != choices.value(nChoice)) nChoice = nAnswer;
    return true;
}

bool UserInterface::AskColor(ColorF& color)
{
    const QColor present = ScreenColor(color);
    const QColor chosen = QColorDialog::getColor(present, &m_window, {}, QColorDialog::DontUseNativeDialog);
    if (!chosen.isValid()) return false;
    if (chosen.rgb() == present.rgb()) return true;
    const float alpha = color.a;
    color = LinearColor(chosen);
    color.a = alpha;
    return true;
}

IFileDialog* UserInterface::CreateFileDialog(int nKind, QObject* pParent)
{
    auto* const pWidget = qobject_cast<QWidget*>(pParent);
    return new FileDialog(nKind, pWidget ? pWidget : &m_window, m_pSettings);
}

void UserInterface::BeginProgress(const QString& strTitle)
{
    constexpr int nFirstStep = 10;
    m_works.push_back({strTitle, 0, nFirstStep});
    if (!m_progress) {
        m_progress = std::make_unique<QProgressDialog>(&m_window);
        m_progress->setWindowModality(Qt::WindowModal);
        m_progress->setMinimumDuration(0);
        m_progress->setAutoClose(false);
        m_progress->setAutoReset(false);
        m_progress->setWindowTitle(strTitle);
        m_progress->setRange(0, 100);
    }
    ShowProgress();
}

bool UserInterface::SetProgress(int nPercent)
{
    if (m_works.empty()) return true;
    Work& work = m_works.back();
    const int nReached = std::clamp(nPercent, work.nPercent, 100);
    if (nReached > work.nPercent) work.nStep = nReached - work.nPercent;
    work.nPercent = nReached;
    ShowProgress();
    return !m_progress || !m_progress->wasCanceled();
}

void UserInterface::EndProgress()
{
    if (!m_works.empty()) m_works.pop_back();
    if (!m_works.empty()) return ShowProgress();
    if (!m_progress) return;
    m_progress->hide();
    m_progress.release()->deleteLater(); // it may be just letting events through
}

void UserInterface::ShowProgress()
{
    double reached = 0.0;
    double span = 100.0;
    QStringList titles;
    for (const Work& work : m_works) {
        reached += span * work.nPercent / 100.0;
        span *= std::min(work.nStep, 100 - work.nPercent) / 100.0;
        titles += work.strTitle;
    }
    m_progress->setLabelText(titles.join(QLatin1Char('\n')));
    // Lets events through, of the dialog alone: it is modal.
    if (!m_progress->wasCanceled()) m_progress->setValue(std::max(m_progress->value(), static_cast<int>(reached)));
}

QObject* UserInterface::GetMainWindow() const
{
    return &m_window;
}

bool UserInterface::OpenUrl(const QUrl& url)
{
    return QDesktopServices::openUrl(url);
}

} // namespace Host
