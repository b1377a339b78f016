#include "reference/host/services/SilentUserInterface.h"

#include "lumenta/interfaces/ILog.h"
#include "lumenta/platform/IFileDialog.h"

namespace Host {

namespace {

class CancelledDialog final : public IFileDialog {
public:
    void AddFilter(const QString&, const QStringList&) override {}
    QString Show(const QString&, const QString&, const QString&) override { return {}; }
};

} // namespace

SilentUserInterface::SilentUserInterface(ILog& log, QObject* pParent)
    : IUserInterface(pParent)
    , m_log(log)
{
}

void SilentUserInterface::ShowMessage(const QString& strText)
{
    m_log.Write(eLogInfo, strText);
}

void SilentUserInterface::ShowWarning(const QString& strText)
{
    m_log.Write(eLogWarning, strText);
}

void SilentUserInterface::ShowError(const QString& strText)
{
    m_log.Write(eLogError, strText);
}

void SilentUserInterface::ShowStatus(const QString& strText)
{
    m_log.Write(eLogDebug, strText);
}

IFileDialog* SilentUserInterface::CreateFileDialog(int, QObject*)
{
    return new CancelledDialog;
}

} // namespace Host
