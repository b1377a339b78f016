#include "reference/tools/DocumentFacts.h"

#include "lumenta/files/Paths.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "reference/host/document/SceneMaterial.h"
#include "reference/host/NodeKind.h"
#include "reference/tools/InfoTexts.h"
#include "reference/tools/Json.h"
#include "reference/tools/Texts.h"

#include <QFileInfo>

#include <algorithm>
#include <unordered_map>

namespace Host {

namespace {

/// Triangles, and the materials of the meshes, each once.
void AddMeshFacts(QJsonObject& facts, INode* pNode)
{
    const IMeshNode* const holder = qobject_cast<IMeshNode*>(pNode);
    std::size_t nTriangles = 0;
    QStringList materials;
    for (std::size_t i = 0; holder && i < holder->GetMeshes().size(); ++i) {
        nTriangles += holder->GetMeshes()[i]->GetIndices().size() / 3;
        materials += holder->GetMaterial(i)->GetName();
    }
    materials.removeDuplicates();
    facts[QStringLiteral("triangles")] = static_cast<qint64>(nTriangles);
    facts[QStringLiteral("materials")] = QJsonArray::fromStringList(materials);
}

QJsonArray Nodes(const IScene& scene)
{
    std::unordered_map<const INode*, int> places;
    QJsonArray nodes;
    for (INode* const node : CollectAllChildren({scene.GetRoot()})) {
        if (node == scene.GetRoot()) continue;
        const auto parent = places.find(node->GetParent());
        places.emplace(node, nodes.size());
        QJsonObject facts{
            {QStringLiteral("name"), node->GetName()},
            {QStringLiteral("parent"), parent == places.end() ? -1 : parent->second},
            {QStringLiteral("kind"), NodeKind(*node)},
            {QStringLiteral("visible"), node->IsVisible()},
        };
        AddMeshFacts(facts, node);
        nodes += facts;
    }
    return nodes;
}

/// Where the image of a slot comes from: the path of its file, or in words why
/// there is none.
QString TextureState(const IMaterial& material, eMaterialSlot slot, const QString& folder)
{
    const QString file = TryToFindFilePessimistic(material.GetImageFile(slot), folder);
    if (!file.isEmpty()) return file;
    return material.GetImage(slot) ? QStringLiteral("in the document") : QStringLiteral("missing");
}

QJsonArray Textures(const IScene& scene, const QString& source)
{
    const QString folder = QFileInfo(source).absolutePath();
    QJsonArray textures;
    for (const IMaterial* const material : scene.GetMaterials())
        for (int i = 0; i < eMaterialSlotCount; ++i) {
            const auto slot = static_cast<eMaterialSlot>(i);
            if (!material->GetImage(slot) && material->GetImageFile(slot).isEmpty()) continue;
            textures += QJsonObject{
                {QStringLiteral("material"), material->GetName()},
                {QStringLiteral("slot"), SceneMaterial::FileParameter(slot)},
                {QStringLiteral("file"), material->GetImageFile(slot)},
                {QStringLiteral("found"), TextureState(*material, slot, folder)},
            };
        }
    return textures;
}

QJsonObject CameraFacts(const IFreeCamera& camera)
{
    const sCameraState state = camera.GetState();
    const auto number = [](float value) { return static_cast<double>(value); };
    return {
        {QStringLiteral("position"), Coordinates(camera.GetMatrix().GetTranslation())},
        {QStringLiteral("target"), Coordinates(state.target)},
        {QStringLiteral("heading"), number(state.heading)},
        {QStringLiteral("pitch"), number(state.pitch)},
        {QStringLiteral("fieldOfView"), number(state.fieldOfView)},
        {QStringLiteral("frameAspect"), number(state.frameAspect)},
    };
}

QString CameraText(const QJsonValue& camera)
{
    const auto number = [&camera](const QString& key) { return NumberText(camera[key].toDouble()); };
    return QStringLiteral("at %1, looks at %2; heading %3, pitch %4, field of view %5 degrees")
        .arg(PointText(camera[QStringLiteral("position")]), PointText(camera[QStringLiteral("target")]),
             number(QStringLiteral("heading")), number(QStringLiteral("pitch")), number(QStringLiteral("fieldOfView")));
}

/// The tree as a table, two spaces for each level as far as they say anything.
QString NodesText(const QJsonArray& nodes)
{
    constexpr int kDeepest = 30;
    Table table(
        {QStringLiteral("node"), QStringLiteral("kind"), QStringLiteral(">triangles"), QStringLiteral("materials")});
    std::vector<int> depths;
    for (const QJsonValue& node : nodes) {
        const int parent = node[QStringLiteral("parent")].toInt();
        depths.push_back(parent < 0 ? 0 : std::min(depths[static_cast<std::size_t>(parent)] + 1, kDeepest));
        const bool isMesh = node[QStringLiteral("kind")] == QLatin1String("mesh");
        QStringList materials;
        const QJsonArray names = node[QStringLiteral("materials")].toArray();
        for (const QJsonValue& name : names)
            materials += name.toString();
        table.AddRow({QString(2 * depths.back(), QLatin1Char(' ')) + node[QStringLiteral("name")].toString()
                          + (node[QStringLiteral("visible")].toBool() ? QString() : QStringLiteral(" (hidden)")),
                      node[QStringLiteral("kind")].toString(),
                      isMesh ? QString::number(node[QStringLiteral("triangles")].toInt()) : QString(),
                      materials.join(QStringLiteral(", "))});
    }
    return QStringLiteral("\nNodes (%1)\n").arg(nodes.size()) + (nodes.isEmpty() ? QString() : table.Text());
}

} // namespace

QJsonObject DocumentFacts(const IScene& scene, const QString& source, const QStringList& warnings)
{
    TBBox<float> box;
    UpdateBBoxRecursive(box, scene.GetRoot(), Matrix());
    QJsonArray materials;
    for (const IMaterial* const material : scene.GetMaterials())
        materials += MaterialFacts(material->GetName(), material->GetParameters());
    return {
        {QStringLiteral("file"), source},
        {QStringLiteral("boundingBox"), BoxFacts(box)},
        {QStringLiteral("millimetersPerUnit"), static_cast<double>(scene.GetMillimetersPerUnit())},
        {QStringLiteral("ground"), scene.IsGroundPlaneEnabled()},
        {QStringLiteral("renderSize"), QJsonArray{scene.GetRenderSize().width(), scene.GetRenderSize().height()}},
        {QStringLiteral("camera"), CameraFacts(*scene.GetCamera())},
        {QStringLiteral("nodes"), Nodes(scene)},
        {QStringLiteral("materials"), materials},
        {QStringLiteral("textures"), Textures(scene, source)},
        {QStringLiteral("warnings"), QJsonArray::fromStringList(warnings)},
    };
}

QString DocumentText(const QJsonObject& facts)
{
    const auto list = [&facts](const char* key) { return facts.value(QLatin1String(key)).toArray(); };
    const QJsonArray size = list("renderSize");
    return QStringLiteral("%1\nBounding box  %2\nUnit          %3 mm\nPicture       %4x%5\nCamera        %6\n")
               .arg(Printable(facts.value(QStringLiteral("file")).toString()),
                    BoxText(facts.value(QStringLiteral("boundingBox"))),
                    NumberText(facts.value(QStringLiteral("millimetersPerUnit")).toDouble()),
                    QString::number(size[0].toInt()), QString::number(size[1].toInt()),
                    CameraText(facts.value(QStringLiteral("camera"))))
           + NodesText(list("nodes")) + MaterialsText(list("materials"))
           + ListText(
               QStringLiteral("Textures"), list("textures"),
               {QStringLiteral("material"), QStringLiteral("slot"), QStringLiteral("file"), QStringLiteral("found")})
           + WarningsText(list("warnings"));
}

} // namespace Host
