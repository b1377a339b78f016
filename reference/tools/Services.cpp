#include "reference/tools/Services.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/services/PluginFolders.h"
#include "reference/tools/Failure.h"
#include "reference/tools/Texts.h"

namespace Host {

namespace {

/// Tells people what matters to them.
class TerminalWriter final : public ILogWriter {
public:
    void Write(eLogLevel level, const QString& strText) override
    {
        if (level >= eLogWarning) PrintError(LevelName(level) + QStringLiteral(": ") + strText);
    }
};

/// Lives until the process ends: it is told of by services that nobody orders.
Application& MakeApplication()
{
    auto* const application = new Application(PluginFolders());
    application->GetLog()->AddWriter(new TerminalWriter);
    const QString file = qEnvironmentVariable("LUMENTA_LOG");
    if (!file.isEmpty()) application->GetLog()->AddWriter(new LogFile(file));
    return *application;
}

} // namespace

Application& TheApplication()
{
    static Application& application = MakeApplication();
    return application;
}

} // namespace Host
