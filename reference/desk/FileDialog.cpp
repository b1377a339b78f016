#include "reference/desk/FileDialog.h"

#include "lumenta/interfaces/ISettings.h"

#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>

namespace Host {

namespace {

const QString kLastFolder = QStringLiteral("files/folder");

/// A folder to look into, or a file to start on.
void StartOn(QFileDialog& dialog, const QString& path)
{
    if (path.isEmpty()) return;
    const QFileInfo info(path);
    dialog.setDirectory(info.isDir() ? path : info.absolutePath());
    const bool isTaken = dialog.acceptMode() == QFileDialog::AcceptSave || info.exists();
    if (isTaken && !info.isDir()) dialog.selectFile(info.fileName());
}

void Explain(QFileDialog& dialog, const QString& text)
{
    auto* const grid = qobject_cast<QGridLayout*>(dialog.layout());
    if (text.isEmpty() || !grid) return;
    auto* const label = new QLabel(text, &dialog);
    label->setObjectName(QStringLiteral("explanation"));
    label->setWordWrap(true);
    grid->addWidget(label, grid->rowCount(), 0, 1, grid->columnCount());
}

} // namespace

FileDialog::FileDialog(int nKind, QWidget* pParent, ISettings* pSettings)
    : m_nKind(nKind)
    , m_pParent(pParent)
    , m_pSettings(pSettings)
{
}

void FileDialog::AddFilter(const QString& description, const QStringList& extensions)
{
    QStringList patterns;
    for (const QString& extension : extensions)
        patterns += extension.isEmpty() ? QStringLiteral("*") : QStringLiteral("*.") + extension;
    if (patterns.isEmpty()) patterns += QStringLiteral("*");
    m_filters.push_back(
        {QStringLiteral("%1 (%2)").arg(description, patterns.join(QLatin1Char(' '))), patterns, extensions.value(0)});
}

void FileDialog::Prepare(QFileDialog& dialog) const
{
    const bool bSave = m_nKind == eFileDialogSave;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setAcceptMode(bSave ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(bSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (m_nKind == eFileDialogFolder) {
        dialog.setFileMode(QFileDialog::Directory);
        dialog.setOption(QFileDialog::ShowDirsOnly);
        return;
    }
    if (m_filters.empty()) return;
    QStringList shown, all;
    for (const Filter& filter : m_filters) {
        shown += filter.text;
        all += filter.patterns;
    }
    all.removeDuplicates();
    if (!bSave && shown.size() > 1) shown.prepend(QStringLiteral("All of these (%1)").arg(all.join(QLatin1Char(' '))));
    dialog.setNameFilters(shown);
    if (!bSave) return;
    const auto follow = [&dialog, this](const QString& chosen) {
        for (const Filter& filter : m_filters)
            if (filter.text == chosen) dialog.setDefaultSuffix(filter.suffix);
    };
    follow(shown.front());
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, follow);
}

QString FileDialog::Show(const QString& title, const QString& text, const QString& folder)
{
    QFileDialog dialog(m_pParent, title);
    Prepare(dialog);
    Explain(dialog, text);
    const QString last = m_pSettings ? m_pSettings->GetValue(kLastFolder, QString()).toString() : QString();
    StartOn(dialog, folder.isEmpty() ? last : folder);
    if (dialog.exec() != QDialog::Accepted) return {};
    const QString chosen = dialog.selectedFiles().value(0);
    if (m_pSettings) m_pSettings->SetValue(kLastFolder, QFileInfo(chosen).absolutePath());
    return chosen;
}

} // namespace Host
