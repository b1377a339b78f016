#include "reference/desk/Drops.h"

#include "lumenta/files/Paths.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/interfaces/IUserInterface.h"
#include "lumenta/materials/MaterialXml.h"
#include "lumenta/platform/IApplicationContext.h"
#include "lumenta/platform/IDocumentContext.h"
#include "lumenta/scene/Picking.h"
#include "lumenta/serializers/ImageHelpers.h"
#include "reference/host/services/SceneSetup.h"

#include <QFileInfo>
#include <QUrl>

#include <algorithm>

namespace Host {

namespace {

using Parameters = QMap<QString, QVariant>;

const QString kTexture = QStringLiteral("texture");
const QString kImageFiles[] = {kTexture,
                               QStringLiteral("specularTexture"),
                               QStringLiteral("reflectionTexture"),
                               QStringLiteral("opacityTexture"),
                               QStringLiteral("bumpTexture"),
                               QStringLiteral("emissionTexture")};

QString FolderOf(const IScene* pScene)
{
    const QString file = pScene ? pScene->GetFileName() : QString();
    return file.isEmpty() ? QString() : QFileInfo(file).absolutePath();
}

/// With the files of images where they are, as seen from a folder.
Parameters Absolute(Parameters parameters, const QString& folder)
{
    for (const QString& name : kImageFiles)
        if (parameters.contains(name)) parameters[name] = TryToFindFileOptimistic(parameters[name].toString(), folder);
    return parameters;
}

/// Says what it can't write instead of throwing it into the toolkit.
class DraggedMaterial final : public MaterialMimeData {
public:
    DraggedMaterial(const Parameters& given, const QString& title, IUserInterface& ui)
        : MaterialMimeData(given, title)
        , m_ui(ui)
    {
    }

    QVariant retrieveData(const QString& mimeType, QVariant::Type type) const override
    {
        try {
            return MaterialMimeData::retrieveData(mimeType, type);
        } catch (const Exception& exception) {
            m_ui.ShowStatus(exception.GetErrorText());
            return {};
        }
    }

private:
    IUserInterface& m_ui;
};

struct Dropped {
    QString name;
    Parameters parameters;
};

Dropped ReadDropped(const QString& file)
{
    const QFileInfo info(file);
    return {info.completeBaseName(), Absolute(GetDefaultMaterial(file), info.absolutePath())};
}

/// The scene's own material where it has just that one, or a new one.
IMaterial* MaterialFor(const Dropped& dropped, IScene& scene)
{
    const QString folder = FolderOf(&scene);
    for (IMaterial* const pMaterial : scene.GetMaterials())
        if (pMaterial->GetName() == dropped.name && Absolute(pMaterial->GetParameters(), folder) == dropped.parameters)
            return pMaterial;
    IMaterial* const pMaterial = scene.CreateMaterial(dropped.name);
    Parameters parameters = dropped.parameters;
    for (const QString& name : kImageFiles)
        if (parameters.contains(name)) parameters[name] = GetRelativePath(folder, parameters[name].toString());
    pMaterial->SetParameters(parameters);
    return pMaterial;
}

sSceneModifications Planned(const QString& title)
{
    sSceneModifications planned;
    planned.strTitle = title;
    planned.materialsChanged = true;
    return planned;
}

void Dress(INode& node, const Dropped& dropped, IScene& scene)
{
    scene.BeginUpdate(Planned(QStringLiteral("Assign '%1'").arg(dropped.name)));
    scene.AssignMaterial({&node}, MaterialFor(dropped, scene));
    scene.EndUpdate();
}

std::size_t PlaceOf(const IMesh* pMesh, const IMeshNode& node)
{
    const std::vector<IMesh*>& meshes = node.GetMeshes();
    return static_cast<std::size_t>(std::find(meshes.begin(), meshes.end(), pMesh) - meshes.begin());
}

void Paper(INode& node, const IMesh* pMesh, const QString& file, IScene& scene)
{
    IMeshNode& meshes = *qobject_cast<IMeshNode*>(&node);
    const std::size_t nMesh = PlaceOf(pMesh, meshes);
    const QString name = QFileInfo(file).completeBaseName();
    scene.BeginUpdate(Planned(QStringLiteral("Assign '%1'").arg(name)));
    IMaterial* pMaterial = meshes.GetMaterial(nMesh);
    if (pMaterial == scene.GetDefaultMaterial()) {
        pMaterial = scene.CreateMaterial(name);
        pMaterial->CopyFrom(*scene.GetDefaultMaterial());
        meshes.SetMaterial(nMesh, pMaterial);
    }
    pMaterial->SetImageFile(eMaterialSlotDiffuse, GetRelativePath(FolderOf(&scene), file));
    scene.EndUpdate();
}

} // namespace

std::unique_ptr<MaterialMimeData> MakeMimeData(const IMaterial& material, IUserInterface& ui)
{
    const Parameters parameters = Absolute(material.GetParameters(), FolderOf(material.GetScene()));
    auto mime = std::make_unique<DraggedMaterial>(parameters, material.GetName(), ui);
    if (mime->IsMaterial()) mime->Cleanup();
    return mime;
}

QString DroppedFile(const QMimeData& mime)
{
    if (const auto* const pMaterial = qobject_cast<const MaterialMimeData*>(&mime))
        return pMaterial->GetParameters().value(kTexture).toString();
    return mime.urls().value(0).toLocalFile();
}

bool IsForScene(const QMimeData& mime)
{
    return qobject_cast<const MaterialMimeData*>(&mime) || !DroppedFile(mime).isEmpty();
}

QString DropIntoScene(const QMimeData& mime, const Fall& fall, const IApplicationContext& application,
                      const IDocumentContext& document)
{
    IScene& scene = *document.GetScene();
    IImageManager* const pImages = application.GetImageManager();
    const auto* const pOwn = qobject_cast<const MaterialMimeData*>(&mime);
    const QString file = DroppedFile(mime);
    const bool isTexture = pOwn && pOwn->GetParameters().size() == 1; // a swatch of an image, not a material
    const bool isFile = !pOwn && file.endsWith(QLatin1String(".mtl"), Qt::CaseInsensitive);
    const bool isImage = (!pOwn || isTexture) && pImages && CanLoadImage(file, pImages);
    if (!pOwn && !isFile && !isImage) return file;

    INode* pNode = nullptr;
    const IMesh* pMesh = nullptr;
    FindNodeByScreenPoint(fall.point, fall.viewSize, scene, pNode, pMesh);
    IUserInterface& ui = *document.GetUserInterface();
    if (!pMesh) {
        ui.ShowStatus(QStringLiteral("There is no mesh to put it on"));
        return {};
    }
    if (isImage)
        Paper(*pNode, pMesh, file, scene);
    else
        Dress(*pNode, pOwn ? Dropped{pOwn->GetName(), pOwn->GetParameters()} : ReadDropped(file), scene);
    ui.ShowStatus(pImages ? LoadSceneImages(scene, *pImages).join(QStringLiteral("; ")) : QString());
    return {};
}

} // namespace Host
