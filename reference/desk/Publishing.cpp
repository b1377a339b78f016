#include "reference/desk/Publishing.h"

#include "lumenta/interfaces/ISettings.h"
#include "lumenta/interfaces/IUploader.h"
#include "lumenta/platform/IFileDialog.h"
#include "reference/desk/ShownProgress.h"

#include <QDir>
#include <QEventLoop>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

namespace Host {

namespace {

const QString kTitle = QStringLiteral("Publish");
const QString kFolder = QStringLiteral("folder");
const QString kPin = QStringLiteral("pin");
constexpr int kLook = 50; ///< Milliseconds from one look for a cancelled dialog to the next.

using Values = QMap<QString, QVariant>;

enum class Word { Done, Failed, Denied, SettingsMissing, PinMissing };

struct Answer {
    Word word;
    QString text;
};

/// Speaks to an uploader, and waits for what it says. Nothing is asked of the user
/// from within its signals: their sender may not be ready for what follows.
class Conversation {
public:
    Conversation(IUploader& uploader, IUserInterface& ui)
        : m_uploader(uploader)
        , m_ui(ui)
    {
        Hear(&IUploader::done, Word::Done);
        Hear(&IUploader::failed, Word::Failed);
        Hear(&IUploader::urlForPin, Word::PinMissing);
        QObject::connect(&uploader, &IUploader::failedAuth, &m_loop, [this] { Take({Word::Denied, {}}); });
        QObject::connect(&uploader, &IUploader::requestSettings, &m_loop, [this] {
            Take({Word::SettingsMissing, {}});
        });
        QObject::connect(&uploader, &IUploader::progress, &m_loop, [this](int nPercent) { m_nPercent = nPercent; });
        QObject::connect(&m_look, &QTimer::timeout, &m_loop, [this] { Look(); });
    }

    bool WasCancelled() const { return m_bCancelled; }

    /// \param say makes the uploader go on
    Answer Say(const std::function<void()>& say)
    {
        const ShownProgress progress(m_ui, kTitle);
        m_answer.reset();
        m_look.start(kLook);
        say();
        if (!m_answer) m_loop.exec();
        m_look.stop();
        if (!m_answer) Cancel(); // the program is about to end
        return m_answer.value_or(Answer{Word::Failed, {}});
    }

    void Cancel()
    {
        m_bCancelled = true;
        m_uploader.Cancel();
    }

private:
    void Hear(void (IUploader::*signal)(const QString&), Word word)
    {
        QObject::connect(&m_uploader, signal, &m_loop, [this, word](const QString& text) { Take({word, text}); });
    }

    void Take(const Answer& answer)
    {
        m_answer = answer;
        m_loop.quit();
    }

    /// Also while the uploader waits for something, and tells no progress.
    void Look()
    {
        if (!m_ui.SetProgress(m_nPercent) && !m_answer && !m_bCancelled) Cancel();
    }

    IUploader& m_uploader;
    IUserInterface& m_ui;
    QEventLoop m_loop;
    QTimer m_look;
    std::optional<Answer> m_answer;
    int m_nPercent = 0;
    bool m_bCancelled = false;
};

/// \return whether the user gave one
bool AskFolder(Values& values, IUserInterface& ui)
{
    const std::unique_ptr<IFileDialog> dialog(ui.CreateFileDialog(eFileDialogFolder, nullptr));
    const QString folder =
        dialog->Show(kTitle, QStringLiteral("Where to publish it?"), values.value(kFolder).toString());
    if (folder.isEmpty()) return false;
    values[kFolder] = folder;
    return true;
}

bool AskPin(const QString& label, Values& values, IUserInterface& ui)
{
    QString pin;
    if (!ui.AskText(kTitle, label, pin)) return false;
    values.remove(kPin);
    if (!pin.isEmpty()) values[kPin] = pin;
    return true;
}

/// The place that was used last, or none where the user wants another one.
/// \return whether the user wants any
bool ChoosePlace(const QString& last, Values& values, IUserInterface& ui)
{
    if (last.isEmpty()) return true;
    int nChoice = 0;
    const QStringList choices{QDir::toNativeSeparators(last), QStringLiteral("Another place...")};
    if (!ui.AskChoice(QStringLiteral("Publish into"), choices, nChoice)) return false;
    if (nChoice == 0) values[kFolder] = last;
    return true;
}

void ShowAddress(const QString& address, IUserInterface& ui)
{
    ui.ShowStatus(QStringLiteral("Published: %1").arg(address));
    if (!ui.AskYesNo(QStringLiteral("It is published at %1\nOpen it?").arg(address))) return;
    if (!ui.OpenUrl(QUrl(address))) ui.ShowWarning(QStringLiteral("'%1' can't be opened here").arg(address));
}

} // namespace

void Publish(IUploader& uploader, const QString& fileName, const QString& id, ISettings* pSettings, IUserInterface& ui)
{
    const QString remembered = QStringLiteral("publish/%1/folder").arg(id);
    const QString last = pSettings ? pSettings->GetValue(remembered, QString()).toString() : QString();
    Values values;
    if (!ChoosePlace(last, values, ui)) return;
    Conversation conversation(uploader, ui);
    const auto upload = [&] { uploader.Upload(fileName, values); };
    Answer answer = conversation.Say(upload);
    for (;;) {
        switch (answer.word) {
        case Word::Done:
            if (pSettings) pSettings->SetValue(remembered, values.value(kFolder));
            return ShowAddress(answer.text, ui);
        case Word::Failed:
            return conversation.WasCancelled() ? ui.ShowStatus(QStringLiteral("Nothing was published"))
                                               : ui.ShowError(answer.text);
        case Word::Denied:
            ui.ShowWarning(QStringLiteral("That place does not accept it, or not with this pin"));
            if (!AskFolder(values, ui)) return;
            if (!AskPin(QStringLiteral("Pin, if there is one:"), values, ui)) return;
            answer = conversation.Say(upload);
            break;
        case Word::SettingsMissing:
            if (!AskFolder(values, ui)) return;
            answer = conversation.Say(upload);
            break;
        case Word::PinMissing:
            ui.OpenUrl(QUrl(answer.text)); // where it can't be, the address is there to be copied
            if (!AskPin(QStringLiteral("The pin from %1:").arg(answer.text), values, ui)) return conversation.Cancel();
            answer = conversation.Say([&] { uploader.SetPin(values.value(kPin).toString()); });
            break;
        }
    }
}

} // namespace Host
