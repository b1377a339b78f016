#pragma once

#include "lumenta/interfaces/IUserInterface.h"

class ILog;

namespace Host {

/// The user interface of a program without windows: tells the log, and answers
/// every question as if it had been cancelled.
class SilentUserInterface final : public IUserInterface {
    Q_OBJECT

public:
    /// \param log outlives it
    explicit SilentUserInterface(ILog& log, QObject* pParent = nullptr);

    void ShowMessage(const QString& strText) override;
    void ShowWarning(const QString& strText) override;
    void ShowError(const QString& strText) override;
    /// To the log as a line for debugging: there may be very many.
    void ShowStatus(const QString& strText) override;

    bool AskYesNo(const QString&) override { return false; }
    bool AskText(const QString&, const QString&, QString&) override { return false; }
    bool AskChoice(const QString&, const QStringList&, int&) override { return false; }
    bool AskColor(ColorF&) override { return false; }
    IFileDialog* CreateFileDialog(int nKind, QObject* pParent) override;

    void BeginProgress(const QString&) override {}
    bool SetProgress(int) override { return true; }
    void EndProgress() override {}

    QObject* GetMainWindow() const override { return nullptr; }
    bool OpenUrl(const QUrl&) override { return false; }

private:
    ILog& m_log;
};

} // namespace Host
