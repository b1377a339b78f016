#pragma once

#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/interfaces/ISceneLoader.h"
#include "lumenta/platform/IModelFormats.h"
#include "lumenta/platform/ISerializersRegistry.h"
#include "reference/host/Model.h"

#include <functional>

namespace Host {

class PluginHost;

/// The formats of all model loaders among the plug-ins.
class ModelFormats final : public IModelFormats {
public:
    explicit ModelFormats(const PluginHost& plugins);

    const std::vector<ModelFormatInfo>& GetModelFormats() const override { return m_formats; }

private:
    std::vector<ModelFormatInfo> m_formats;
};

/// Loaders and savers of the plug-ins; behind their loaders one for each
/// extension of a model format, which opens the model as a document.
class SerializersRegistry final : public ISerializersRegistry {
public:
    using ModelReader = std::function<Model(const QString& strFileName)>;

    /// All of them outlive the registry and its loaders.
    /// \param pImages may be null: then textures of models stay unloaded
    SerializersRegistry(const PluginHost& plugins, const IModelFormats& models, ModelReader reader,
                        IImageManager* pImages);

    QList<SerializerInfo> GetSavers() const override { return m_savers; }
    QList<SerializerInfo> GetLoaders() const override { return m_loaders; }
    QList<QString> GetOpenableExtensions() const override;
    ISceneLoader* CreateLoader(const QString& id) const override;
    ISceneSaver* CreateSaver(const QString& id) const override;

private:
    const PluginHost& m_plugins;
    const ModelReader m_reader;
    IImageManager* const m_pImages;
    QList<SerializerInfo> m_savers;
    QList<SerializerInfo> m_loaders;
};

/// Opens a model file as a document of this host: a scene with the model alone,
/// standing on the ground, its textures loaded, all of it in the camera's frame.
class ModelSceneLoader final : public ISceneLoader {
    Q_OBJECT

public:
    ModelSceneLoader(SerializersRegistry::ModelReader reader, IImageManager* pImages);

    /// Whether there is something to read. What it is only reading tells.
    bool CanLoad(const QString& strFileName) const override;
    /// \throws LogicException the scene is none of this host's
    void Load(const QString& strFileName, IScene& scene) override;
    QStringList GetWarnings() const override { return m_warnings; }

private:
    const SerializersRegistry::ModelReader m_reader;
    IImageManager* const m_pImages;
    QStringList m_warnings;
};

} // namespace Host
