#pragma once

#include "lumenta/interfaces/IExporter.h"
#include "lumenta/interfaces/IGenerator.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/interfaces/IRender.h"
#include "lumenta/platform/IApplicationContext.h"
#include "reference/host/Model.h"
#include "reference/host/PluginHost.h"
#include "reference/host/Progress.h"
#include "reference/host/services/Log.h"
#include "reference/host/services/Serializers.h"
#include "reference/host/services/Settings.h"

#include <QStringList>

#include <memory>

namespace Host {

/// The application without its windows: the plug-ins, and the services that are
/// made of them.
///
/// Each is made when it is first asked for, the plug-ins too: what needs none
/// starts at once. Files that are no plug-ins, and plug-ins that can't be used,
/// are told to the log.
///
/// One per process; the application's thread. Outlives its documents.
class Application final : public IApplicationContext {
public:
    /// \param pluginFolders  the earlier ones are preferred
    /// \param strSettingsFile empty for an application that remembers nothing
    explicit Application(const QStringList& pluginFolders, const QString& strSettingsFile = {});
    ~Application();

    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// That of the first plug-in which brings one; null where none does.
    IImageManager* GetImageManager() const override;
    const IModelFormats* GetModelFormats() const override;
    const ISerializersRegistry* GetSerializers() const override;
    /// Null without a file.
    ISettings* GetSettings() const override { return m_settings.get(); }
    ILog* GetLog() const override { return &m_log; }

    const PluginHost& Plugins() const;

    /// Reads a model with the first plug-in that can: one of those that know its
    /// extension, or any where none does. ":figure" is the figure that the
    /// program makes.
    /// \throws FileException
    /// \throws LoadingException it can't be loaded, or no plug-in reads models
    Model ReadModel(const QString& strSource, const Progress& progress = {}) const;

    /// What can be asked for as a renderer, the usual one first: "embree" where
    /// there is one of that name.
    QStringList RendererNames() const;

    /// \throws FactoryException no plug-in makes one of this name
    /// \throws LoadingException no plug-in makes any
    std::unique_ptr<IRender> CreateRenderer(const QString& strName) const;

    /// What can follow the colon in the source of a mesh: the figure, then what
    /// generators make.
    QStringList BuiltInNames() const;

    /// Whether a plug-in opens files of this name as scenes. Models are none.
    bool IsSceneFile(const QString& strFileName) const;

    /// For sources like ":bottle"; null for any other.
    std::unique_ptr<IGenerator> CreateGenerator(const QString& strSource) const;

private:
    struct NamedLoader;
    std::vector<NamedLoader> LoadersFor(const QString& strFileName) const;

    const QStringList m_pluginFolders;
    mutable Log m_log;
    std::unique_ptr<Settings> m_settings;
    mutable std::unique_ptr<PluginHost> m_plugins;
    mutable std::unique_ptr<ModelFormats> m_models;
    mutable std::unique_ptr<SerializersRegistry> m_serializers;
    mutable bool m_bImagesAsked = false;
    mutable std::unique_ptr<IImageManager> m_images;
};

} // namespace Host
