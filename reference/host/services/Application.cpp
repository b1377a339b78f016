#include "reference/host/services/Application.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/ModelReader.h"
#include "reference/host/SampleFigure.h"

#include <QFileInfo>

#include <algorithm>

namespace Host {

namespace {

const QString kFigure = QStringLiteral("figure");

bool Reads(const IModelLoader& loader, const QString& strFileName)
{
    for (const ModelFormatInfo& format : loader.GetFormats())
        for (const QString& extension : format.extensions)
            if (strFileName.endsWith(QLatin1Char('.') + extension, Qt::CaseInsensitive)) return true;
    return false;
}

QString Quoted(const QStringList& names)
{
    return QLatin1Char('\'') + names.join(QStringLiteral("', '")) + QLatin1Char('\'');
}

} // namespace

struct Application::NamedLoader {
    QString title;
    std::unique_ptr<IModelLoader> loader;
};

Application::Application(const QStringList& pluginFolders, const QString& strSettingsFile)
    : m_pluginFolders(pluginFolders)
{
    if (!strSettingsFile.isEmpty()) m_settings = std::make_unique<Settings>(strSettingsFile);
}

Application::~Application() = default;

const PluginHost& Application::Plugins() const
{
    if (m_plugins) return *m_plugins;
    // Services are told of the application, and may change its settings.
    m_plugins = std::make_unique<PluginHost>(const_cast<Application&>(*this));
    for (const QString& folder : m_pluginFolders)
        m_plugins->LoadFolder(folder);
    for (const PluginRefusal& refusal : m_plugins->Refusals())
        m_log.Write(eLogWarning, refusal.text);
    return *m_plugins;
}

IImageManager* Application::GetImageManager() const
{
    // A manager that asks for itself while it is being made gets none.
    if (std::exchange(m_bImagesAsked, true)) return m_images.get();
    for (const PluginService& service : Plugins().ServicesOf<IImageManager>()) {
        m_images = Plugins().TryToCreateService<IImageManager>(service.id);
        if (m_images) break;
    }
    return m_images.get();
}

const IModelFormats* Application::GetModelFormats() const
{
    if (!m_models) m_models = std::make_unique<ModelFormats>(Plugins());
    return m_models.get();
}

const ISerializersRegistry* Application::GetSerializers() const
{
    if (m_serializers) return m_serializers.get();
    IImageManager* const pImages = GetImageManager(); // first, whatever the compiler: each may warn
    m_serializers = std::make_unique<SerializersRegistry>(
        Plugins(), *GetModelFormats(), [this](const QString& strFileName) { return ReadModel(strFileName); }, pImages);
    return m_serializers.get();
}

/// The loaders that know the file's extension; all where none does, since some
/// know a file by its content.
std::vector<Application::NamedLoader> Application::LoadersFor(const QString& strFileName) const
{
    std::vector<NamedLoader> loaders;
    for (const PluginService& service : Plugins().ServicesOf<IModelLoader>()) {
        if (auto loader = Plugins().TryToCreateService<IModelLoader>(service.id))
            loaders.push_back({service.title, std::move(loader)});
    }
    if (loaders.empty())
        throw LoadingException(QStringLiteral("no plug-in that reads models is in %1").arg(Quoted(m_pluginFolders)));
    const auto others = std::stable_partition(loaders.begin(), loaders.end(),
                                              [&](const auto& each) { return Reads(*each.loader, strFileName); });
    if (others != loaders.begin()) loaders.erase(others, loaders.end());
    return loaders;
}

Model Application::ReadModel(const QString& strSource, const Progress& progress) const
{
    if (strSource == QLatin1Char(':') + kFigure) return MakeSampleFigure();
    QStringList reasons;
    const std::vector<NamedLoader> loaders = LoadersFor(strSource);
    for (const auto& [title, loader] : loaders) {
        try {
            return Host::ReadModel(*loader, strSource, progress);
        } catch (const LoadingException& exception) {
            if (loaders.size() == 1) throw;
            reasons += title + QStringLiteral(": ") + exception.GetErrorText(); // the next may make sense of it
        }
    }
    throw LoadingException(reasons.join(QLatin1Char('\n')));
}

QStringList Application::RendererNames() const
{
    QStringList names;
    for (const PluginService& service : Plugins().ServicesOf<IRender>())
        names += service.id;
    // In whatever order they are met.
    std::stable_partition(names.begin(), names.end(),
                          [](const QString& name) { return name == QLatin1String("embree"); });
    return names;
}

std::unique_ptr<IRender> Application::CreateRenderer(const QString& strName) const
{
    if (RendererNames().isEmpty())
        throw LoadingException(QStringLiteral("no plug-in that makes pictures is in %1").arg(Quoted(m_pluginFolders)));
    return Plugins().CreateService<IRender>(strName);
}

QStringList Application::BuiltInNames() const
{
    QStringList names(kFigure);
    for (const PluginService& service : Plugins().ServicesOf<IGenerator>())
        names += service.id;
    return names;
}

bool Application::IsSceneFile(const QString& strFileName) const
{
    const QString suffix = QFileInfo(strFileName).suffix();
    const std::vector<PluginService> loaders = Plugins().ServicesOf<ISceneLoader>();
    return std::any_of(loaders.begin(), loaders.end(), [&suffix](const PluginService& loader) {
        return suffix.compare(loader.extension, Qt::CaseInsensitive) == 0;
    });
}

std::unique_ptr<IGenerator> Application::CreateGenerator(const QString& strSource) const
{
    if (!strSource.startsWith(QLatin1Char(':'))) return nullptr;
    const QString name = strSource.mid(1);
    return name != kFigure && BuiltInNames().contains(name) ? Plugins().CreateService<IGenerator>(name) : nullptr;
}

} // namespace Host
