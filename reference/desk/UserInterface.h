#pragma once

#include "lumenta/interfaces/IUserInterface.h"

#include <memory>
#include <vector>

class ISettings;
class QMainWindow;
class QProgressDialog;

namespace Host {

/// The user interface of a program with a main window: dialogs before it, its
/// status bar, and the desktop around it.
///
/// The colour of AskColor() is linear, as those of scenes are; one that was only
/// looked at comes back to the bit.
class UserInterface final : public IUserInterface {
    Q_OBJECT

public:
    /// \param window    outlives it
    /// \param pSettings outlives it; null where nothing is remembered
    explicit UserInterface(QMainWindow& window, ISettings* pSettings = nullptr, QObject* pParent = nullptr);
    ~UserInterface() override;

    void ShowMessage(const QString& strText) override;
    void ShowWarning(const QString& strText) override;
    void ShowError(const QString& strText) override;
    void ShowStatus(const QString& strText) override;

    bool AskYesNo(const QString& strQuestion) override;
    bool AskText(const QString& strTitle, const QString& strLabel, QString& strText) override;
    bool AskChoice(const QString& strTitle, const QStringList& choices, int& nChoice) override;
    bool AskColor(ColorF& color) override;
    IFileDialog* CreateFileDialog(int nKind, QObject* pParent) override;

    /// The dialog is there at once, so that nothing changes what is worked on.
    /// A work within another one counts as one step of that, as long as the step
    /// before. The dialog goes with the outermost work.
    void BeginProgress(const QString& strTitle) override;
    bool SetProgress(int nPercent) override;
    /// Without a work nothing happens.
    void EndProgress() override;
    bool IsWorking() const { return !m_works.empty(); }

    QObject* GetMainWindow() const override;
    bool OpenUrl(const QUrl& url) override;

private:
    struct Work {
        QString strTitle;
        int nPercent;
        int nStep; ///< From one percentage told to the next.
    };

    void ShowProgress();

    QMainWindow& m_window;
    ISettings* const m_pSettings;
    std::vector<Work> m_works; ///< The outermost first.
    std::unique_ptr<QProgressDialog> m_progress;
};

} // namespace Host
