// A plug-in that offers a service of every kind, and gives nothing: none of them is
// made, or each answers with null and empty lists, as EMPTY_SERVICES says.

#include "lumenta/interfaces/IExporter.h"
#include "lumenta/interfaces/IGenerator.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/interfaces/IModelLoader.h"
#include "lumenta/interfaces/IPlugin.h"
#include "lumenta/interfaces/IRender.h"
#include "lumenta/interfaces/ISceneLoader.h"
#include "lumenta/interfaces/ISceneSaver.h"
#include "lumenta/interfaces/IUploader.h"
#include "reference/host/IModelExporter.h"

#include <QImage>

namespace {

// clang-format off
struct Loader final : IModelLoader {
    std::vector<ModelFormatInfo> formats{{"void", "Void", {"void"}}};
    std::vector<sModelMaterial> materials;
    const std::vector<sModelMaterial>& GetMaterials() const override { return materials; } void Cancel() override {}
    const std::vector<ModelFormatInfo>& GetFormats() const override { return formats; }
    QMap<QString, QVariant> GetMetadata() const override { return {}; } void SetDefaultTickRate(double) override {}
    SkinAnimation::Scene* TakeScene() override { return nullptr; } void Load(const QString&) override {}
    QImage GetImage(const QString&) const override { return {}; }
    float GetMillimetersPerUnit() const override { return 0; } QStringList GetWarnings() const override { return {}; }
    QStringList GetImageNames() const override { return {}; } TVec3<float> GetUpAxis() const override { return {}; }
};
struct Render final : IRender {
    void Start(const IScene&, const sRenderSettings&) override { Q_EMIT done(eRenderExitSuccess); }
    QImage GetImage() const override { return {}; } void Stop() override {}
};
struct Images final : IImageManager {
    std::vector<ImageLoaderInfo> GetLoaderFormats() const override { return {{"Void", "Void", {"png"}}}; }
    std::vector<ImageSaverInfo> GetSaverFormats() const override { return {{"Void", "void", "png"}}; }
    IImage* DecodeImage(const QByteArray&, const QString&) override { return nullptr; }
    IImageSaver* CreateSaver(const ImageSaverInfo&) const override { return nullptr; }
    IImage* FindImage(const QString&) const override { return nullptr; } void ReleaseImage(IImage*) override {}
    IImage* LoadImageFile(const QString&) override { return nullptr; }
    IImage* CreateImage(const QSize&) override { return nullptr; }
    QStringList GetRecentFiles() const override { return {}; } bool ReloadImage(IImage*) override { return false; }
};
struct SceneLoader final : ISceneLoader {
    bool CanLoad(const QString&) const override { return false; } void Load(const QString&, IScene&) override {}
    QStringList GetWarnings() const override { return {}; }
};
struct SceneSaver final : ISceneSaver {
    QStringList GetWarnings() const override { return {}; } void Save(const QString&, const IScene&) override {}
};
struct Generator final : IGenerator {
    QVariant GetValue(const QString&) const override { return {}; } void Generate(IMeshNodeBuilder&) override {}
    void SetValue(const QString&, const QVariant&) override {}
};
struct Uploader final : IUploader {
    void Upload(const QString&, const QMap<QString, QVariant>&) override {} void Cancel() override {}
};
// clang-format on

} // namespace

class Exporter final : public IExporter, public IModelExporter {
    Q_OBJECT
    Q_INTERFACES(IModelExporter)

public:
    const std::vector<sModelExportFormat>& GetFormats() const override { return m_formats; }
    void Export(const IScene&, const QString&, const QString&) override {}
    QStringList GetWarnings() const override { return {}; }

private:
    std::vector<sModelExportFormat> m_formats;
};

class EmptyPlugin final : public IPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID LUMENTA_PLUGIN_IID FILE "plugin.json")

public:
    QList<sServiceInfo> GetServices() const override
    {
        QList<sServiceInfo> services;
        for (const char* contract : {"IModelLoader", "IRender", "IImageManager", "ISceneLoader", "ISceneSaver",
                                     "IGenerator", "IUploader", "IExporter"})
            services.append({contract, EMPTY_ID, "Void", "void"});
        return services;
    }

    QObject* CreateService(const QString& contract, const QString&, IApplicationContext&) override
    {
        if (QByteArray(EMPTY_ID) == "null") return nullptr;
        if (QByteArray(EMPTY_ID) == "thrown") throw 5;
        if (contract == "IModelLoader") return new Loader;
        if (contract == "IRender") return new Render;
        if (contract == "IImageManager") return new Images;
        if (contract == "ISceneLoader") return new SceneLoader;
        if (contract == "ISceneSaver") return new SceneSaver;
        if (contract == "IGenerator") return new Generator;
        if (contract == "IUploader") return new Uploader;
        return new Exporter;
    }
};

#include "EmptyPlugin.moc"
