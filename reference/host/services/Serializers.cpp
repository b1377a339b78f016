#include "reference/host/services/Serializers.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/ISceneSaver.h"
#include "reference/host/document/Scene.h"
#include "reference/host/PluginHost.h"
#include "reference/host/services/SceneSetup.h"

#include <QFileInfo>

#include <algorithm>

namespace Host {

namespace {

/// No plug-in can bear this id: they are told apart by the colon.
const QString kModelId = QStringLiteral("model:");

template <typename Contract>
QList<SerializerInfo> InfosOf(const PluginHost& plugins)
{
    QList<SerializerInfo> infos;
    for (const PluginService& service : plugins.ServicesOf<Contract>())
        infos += SerializerInfo{service.title, service.id, service.extension};
    return infos;
}

bool Holds(const QList<SerializerInfo>& infos, const QString& id)
{
    return std::any_of(infos.begin(), infos.end(), [&](const SerializerInfo& info) { return info.id == id; });
}

} // namespace

ModelFormats::ModelFormats(const PluginHost& plugins)
{
    for (const PluginService& service : plugins.ServicesOf<IModelLoader>()) {
        const std::unique_ptr<IModelLoader> loader = plugins.TryToCreateService<IModelLoader>(service.id);
        if (!loader) continue;
        const std::vector<ModelFormatInfo>& formats = loader->GetFormats();
        m_formats.insert(m_formats.end(), formats.begin(), formats.end());
    }
}

SerializersRegistry::SerializersRegistry(const PluginHost& plugins, const IModelFormats& models, ModelReader reader,
                                         IImageManager* pImages)
    : m_plugins(plugins)
    , m_reader(std::move(reader))
    , m_pImages(pImages)
    , m_savers(InfosOf<ISceneSaver>(plugins))
    , m_loaders(InfosOf<ISceneLoader>(plugins))
{
    for (const ModelFormatInfo& format : models.GetModelFormats())
        for (const QString& extension : format.extensions)
            m_loaders += SerializerInfo{format.title, kModelId + extension, extension};
}

QList<QString> SerializersRegistry::GetOpenableExtensions() const
{
    QStringList extensions;
    for (const SerializerInfo& info : m_loaders)
        extensions += info.extension.toLower();
    extensions.removeDuplicates();
    return extensions;
}

ISceneLoader* SerializersRegistry::CreateLoader(const QString& id) const
{
    if (!Holds(m_loaders, id)) return nullptr;
    if (id.startsWith(kModelId)) return new ModelSceneLoader(m_reader, m_pImages);
    return m_plugins.CreateService<ISceneLoader>(id).release();
}

ISceneSaver* SerializersRegistry::CreateSaver(const QString& id) const
{
    return Holds(m_savers, id) ? m_plugins.CreateService<ISceneSaver>(id).release() : nullptr;
}

ModelSceneLoader::ModelSceneLoader(SerializersRegistry::ModelReader reader, IImageManager* pImages)
    : m_reader(std::move(reader))
    , m_pImages(pImages)
{
}

bool ModelSceneLoader::CanLoad(const QString& strFileName) const
{
    const QFileInfo file(strFileName);
    return file.isFile() && file.isReadable();
}

void ModelSceneLoader::Load(const QString& strFileName, IScene& scene)
{
    m_warnings.clear();
    Scene* const pScene = qobject_cast<Scene*>(&scene);
    if (!pScene) throw LogicException(QStringLiteral("A model can only be opened in a document of the host's own"));
    Model model = m_reader(strFileName);
    m_warnings = model.warnings;

    sSceneModifications planned;
    planned.strTitle = QStringLiteral("Open '%1'").arg(strFileName);
    const SceneBracket bracket(*pScene, planned);
    pScene->Clear();
    if (model.millimetersPerUnit > 0.0f) pScene->SetMillimetersPerUnit(model.millimetersPerUnit);
    INode* const pModel = pScene->AddModel(std::move(model), pScene->GetRoot());
    pScene->PlaceOnGround({pModel});
    // Files seldom say it.
    for (IMaterial* const pMaterial : pScene->GetMaterials())
        pMaterial->SetTwoSided(true);
    pScene->SetFileName(strFileName.startsWith(QLatin1Char(':')) ? QString()
                                                                 : QFileInfo(strFileName).absoluteFilePath());
    if (m_pImages) m_warnings += LoadSceneImages(*pScene, *m_pImages);
    ShowAll(*pScene);
    pScene->SetModified(false);
}

} // namespace Host
