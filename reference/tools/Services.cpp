#include "reference/tools/Services.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/tools/Failure.h"
#include "reference/tools/Texts.h"

#include <QDir>
#include <QFileInfo>

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

/// Those of the environment first; the command's own lie beside it, wherever
/// it was installed or moved to.
QStringList PluginFolders()
{
    QStringList folders = qEnvironmentVariable("LUMENTA_PLUGIN_PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
    const QString ownFolder = QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath();
    folders += QDir::cleanPath(ownFolder + QStringLiteral("/../" LUMENTA_PLUGIN_FOLDER));
    return folders;
}

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
