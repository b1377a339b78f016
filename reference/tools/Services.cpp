#include "reference/tools/Services.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/ApplicationContext.h"
#include "reference/host/ModelReader.h"
#include "reference/host/PluginHost.h"
#include "reference/tools/Failure.h"
#include "reference/tools/Texts.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace Host {

namespace {

/// Those of the environment first; the command's own lie beside it, wherever
/// it was installed or moved to.
QStringList PluginFolders()
{
    QStringList folders = qEnvironmentVariable("LUMENTA_PLUGIN_PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
    const QString ownFolder = QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath();
    folders += QDir::cleanPath(ownFolder + QStringLiteral("/../" LUMENTA_PLUGIN_FOLDER));
    return folders;
}

/// Loaded when it is first needed: help and the built-in figure are there at once.
const PluginHost& Plugins()
{
    static ApplicationContext context;
    static PluginHost host = [] {
        PluginHost loading(context);
        for (const QString& folder : PluginFolders())
            loading.LoadFolder(folder);
        for (const PluginRefusal& refusal : loading.Refusals())
            PrintError(QStringLiteral("warning: ") + refusal.text);
        return loading;
    }();
    return host;
}

bool Reads(const IModelLoader& loader, const QString& fileName)
{
    for (const ModelFormatInfo& format : loader.GetFormats())
        for (const QString& extension : format.extensions)
            if (fileName.endsWith(QLatin1Char('.') + extension, Qt::CaseInsensitive)) return true;
    return false;
}

struct NamedLoader {
    QString title;
    std::unique_ptr<IModelLoader> loader;
};

/// The loaders that know the file's extension; all where none does, since some
/// know a file by its content.
std::vector<NamedLoader> LoadersFor(const QString& fileName)
{
    std::vector<NamedLoader> loaders;
    for (const PluginService& service : Plugins().ServicesOf<IModelLoader>())
        try {
            loaders.push_back({service.title, Plugins().CreateService<IModelLoader>(service.id)});
        } catch (const Exception& exception) {
            PrintError(QStringLiteral("warning: ") + exception.GetErrorText());
        }
    if (loaders.empty())
        throw LoadingException(
            QStringLiteral("no plug-in that reads models is in %1").arg(QuotedList(PluginFolders())));
    const auto others = std::stable_partition(loaders.begin(), loaders.end(),
                                              [&](const auto& loader) { return Reads(*loader.loader, fileName); });
    if (others != loaders.begin()) loaders.erase(others, loaders.end());
    return loaders;
}

} // namespace

Model ReadModel(const QString& fileName, const Progress& progress)
{
    QStringList reasons;
    const std::vector<NamedLoader> loaders = LoadersFor(fileName);
    for (const auto& [title, loader] : loaders) {
        try {
            return ReadModel(*loader, fileName, progress);
        } catch (const LoadingException& exception) {
            if (loaders.size() == 1) throw;
            reasons +=
                title + QStringLiteral(": ") + FailureOf(exception, fileName).text; // the next may make sense of it
        }
    }
    throw LoadingException(reasons.join(QLatin1Char('\n')));
}

QStringList RendererNames()
{
    QStringList names;
    for (const PluginService& service : Plugins().ServicesOf<IRender>())
        names += service.id;
    // In whatever order they are met.
    std::stable_partition(names.begin(), names.end(),
                          [](const QString& name) { return name == QLatin1String("embree"); });
    return names;
}

std::unique_ptr<IRender> CreateRenderer(const QString& name)
{
    if (RendererNames().isEmpty())
        throw LoadingException(
            QStringLiteral("no plug-in that makes pictures is in %1").arg(QuotedList(PluginFolders())));
    return Plugins().CreateService<IRender>(name);
}

} // namespace Host
