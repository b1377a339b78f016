#include "reference/desk/FileField.h"

#include "lumenta/interfaces/IUserInterface.h"
#include "reference/desk/Drops.h"
#include "reference/desk/Guarded.h"

#include <QDropEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMimeData>
#include <QPointer>
#include <QToolButton>

namespace Host {

namespace {

/// Asks the source anew each time that its list is opened.
class OfferedFiles final : public QComboBox {
public:
    OfferedFiles(IFileSource& source, IUserInterface& ui)
        : m_source(source)
        , m_ui(ui)
    {
        setEditable(true);
        setInsertPolicy(NoInsert);
        setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
        setMinimumContentsLength(8);
        // It would take them as text, unasked.
        lineEdit()->setAcceptDrops(false);
        setAcceptDrops(false);
    }

    void showPopup() override
    {
        const QString typed = currentText();
        clear();
        Guarded(m_ui, [this] { addItems(m_source.GetOfferedFiles()); });
        setEditText(typed);
        QComboBox::showPopup();
    }

private:
    IFileSource& m_source;
    IUserInterface& m_ui;
};

} // namespace

FileField::FileField(std::unique_ptr<IFileSource> source, IUserInterface& ui, QWidget* pParent)
    : QWidget(pParent)
    , m_source(std::move(source))
    , m_ui(ui)
    , m_pLine(new OfferedFiles(*m_source, ui))
{
    auto* const pButton = new QToolButton;
    pButton->setText(QStringLiteral("..."));
    auto* const pLayout = new QHBoxLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->addWidget(m_pLine, 1);
    pLayout->addWidget(pButton);
    setAcceptDrops(true);
    connect(m_pLine->lineEdit(), &QLineEdit::editingFinished, this, [this] {
        if (m_pLine->currentText() != m_shown) Take(m_pLine->currentText());
    });
    connect(m_pLine, QOverload<int>::of(&QComboBox::activated), this,
            [this](int nItem) { Take(m_pLine->itemText(nItem)); });
    connect(pButton, &QToolButton::clicked, this, &FileField::Browse);
}

void FileField::SetFile(const QString& shown, const QString& path)
{
    m_shown = shown;
    m_path = path;
    m_pLine->setEditText(shown);
    m_pLine->setToolTip(path);
}

void FileField::dragEnterEvent(QDragEnterEvent* pEvent)
{
    if (!DroppedFile(*pEvent->mimeData()).isEmpty()) pEvent->acceptProposedAction();
}

void FileField::dropEvent(QDropEvent* pEvent)
{
    pEvent->acceptProposedAction();
    Take(DroppedFile(*pEvent->mimeData()));
}

void FileField::Take(const QString& path)
{
    m_pLine->setEditText(m_shown); // until somebody says that it is another one
    Guarded(m_ui, [&] {
        if (path.isEmpty() || m_source->AcceptsFile(path)) return Q_EMIT fileChosen(path);
        m_ui.ShowWarning(QStringLiteral("'%1' is none of the files that can be used here").arg(path));
    });
}

void FileField::Browse()
{
    Guarded(m_ui, [this] {
        const QPointer<FileField> pThis = this; // the dialog may outlast it
        QString path = m_path;
        if (m_source->ShowOpenDialog(window(), path) && pThis) Take(path);
    });
}

} // namespace Host
