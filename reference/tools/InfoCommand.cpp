#include "reference/host/Picture.h"
#include "reference/tools/DocumentFacts.h"
#include "reference/tools/DocumentSource.h"
#include "reference/tools/InfoTexts.h"
#include "reference/tools/Json.h"
#include "reference/tools/ModelSource.h"
#include "reference/tools/ProgressBar.h"
#include "reference/tools/Texts.h"
#include "reference/tools/Verbs.h"

#include <QJsonArray>
#include <QJsonObject>

#include <set>
#include <unordered_map>

namespace Host {

namespace {

// The facts are gathered once, as JSON; the table for people reads them there.

std::set<std::size_t> BonesOf(const SkinAnimation::Scene& scene)
{
    std::set<std::size_t> bones;
    for (const SkinAnimation::Geometry* geometry : GeometriesOf(scene))
        for (const SkinAnimation::SkinVertex& vertex : geometry->vertices)
            for (std::size_t i = 0; i < 4 && vertex.weights[i] != 0.0f; ++i)
                bones.insert(vertex.boneIndices[i]);
    return bones;
}

QJsonArray Nodes(const SkinAnimation::Scene& scene)
{
    const std::set<std::size_t> bones = BonesOf(scene);
    std::unordered_map<const SkinAnimation::Node*, int> places;
    QJsonArray nodes;
    for (std::size_t i = 0; i < scene.nodes.size(); ++i) {
        const SkinAnimation::Node& node = *scene.nodes[i];
        const auto parent = places.find(node.parent);
        places.emplace(&node, static_cast<int>(i));
        nodes += QJsonObject{
            {QStringLiteral("name"), node.name},
            {QStringLiteral("parent"), parent == places.end() ? -1 : parent->second},
            {QStringLiteral("bone"), bones.count(i) > 0},
        };
    }
    return nodes;
}

QJsonArray Meshes(const SkinAnimation::Scene& scene)
{
    QJsonArray meshes;
    for (const SkinAnimation::Geometry* geometry : GeometriesOf(scene))
        meshes += QJsonObject{
            {QStringLiteral("name"), geometry->name},
            {QStringLiteral("vertices"), static_cast<qint64>(geometry->vertices.size())},
            {QStringLiteral("triangles"), static_cast<qint64>(geometry->indices.size() / 3)},
            {QStringLiteral("skinned"), geometry->skinned},
            {QStringLiteral("material"), geometry->materialName},
        };
    return meshes;
}

QJsonArray Materials(const Model& model)
{
    QJsonArray materials;
    for (const Material& material : model.materials) {
        materials += MaterialFacts(material.name, material.parameters);
    }
    return materials;
}

QJsonObject AnimationFacts(const SkinAnimation::Animation& animation, int index)
{
    qint64 nTracks = 0;
    qint64 nKeys = 0;
    for (const SkinAnimation::AnimationLayer& layer : animation.layers)
        for (const SkinAnimation::NodeTrack& track : layer.tracks) {
            ++nTracks;
            nKeys += static_cast<qint64>(track.keys.size());
        }
    return {
        {QStringLiteral("index"), index},
        {QStringLiteral("name"), animation.name},
        {QStringLiteral("duration"), static_cast<double>(animation.duration)},
        {QStringLiteral("tracks"), nTracks},
        {QStringLiteral("keys"), nKeys},
    };
}

QJsonArray Animations(const SkinAnimation::Scene& scene)
{
    QJsonArray animations;
    for (const SkinAnimation::Animation* animation : scene.animations)
        animations += AnimationFacts(*animation, animations.size());
    return animations;
}

/// Of the model as it is drawn at rest; null where nothing can be.
QJsonValue RestBox(const SkinAnimation::Scene& scene)
{
    MeshCollector collector;
    collector.BeginModel(QString(), scene.nodes.size());
    scene.CreateMeshes(collector);
    collector.EndModel();
    return BoxFacts(BoxOf(collector.meshes));
}

QJsonObject Facts(const Model& model)
{
    return {
        {QStringLiteral("file"), model.fileName},
        {QStringLiteral("up"), Coordinates(model.up)},
        {QStringLiteral("boundingBox"), RestBox(*model.scene)},
        {QStringLiteral("nodes"), Nodes(*model.scene)},
        {QStringLiteral("meshes"), Meshes(*model.scene)},
        {QStringLiteral("materials"), Materials(model)},
        {QStringLiteral("animations"), Animations(*model.scene)},
        {QStringLiteral("warnings"), QJsonArray::fromStringList(model.warnings)},
    };
}

/// "y" or "-z"; the vector itself where it is no axis.
QString AxisText(const QJsonValue& up)
{
    for (int axis = 0; axis < 3; ++axis)
        for (const double sign : {1.0, -1.0})
            if (up == QJsonArray{axis == 0 ? sign : 0.0, axis == 1 ? sign : 0.0, axis == 2 ? sign : 0.0})
                return (sign < 0.0 ? QStringLiteral("-") : QString()) + QLatin1Char("xyz"[axis]);
    return PointText(up);
}

/// The tree of nodes, two spaces for each level, bones with a mark.
QString NodesText(const QJsonArray& nodes)
{
    QString text;
    std::vector<int> depths;
    int nBones = 0;
    for (const QJsonValue& node : nodes) {
        const int parent = node[QStringLiteral("parent")].toInt();
        const bool bone = node[QStringLiteral("bone")].toBool();
        depths.push_back(parent < 0 ? 1 : depths[static_cast<std::size_t>(parent)] + 1);
        nBones += bone ? 1 : 0;
        text += QString(2 * depths.back(), QLatin1Char(' ')) + Printable(node[QStringLiteral("name")].toString())
                + (bone ? QStringLiteral(" *\n") : QStringLiteral("\n"));
    }
    return QStringLiteral("\nNodes (%1, of them %2 bones, marked *)\n").arg(nodes.size()).arg(nBones) + text;
}

QString FactsText(const QJsonObject& facts)
{
    const auto list = [&facts](const char* key) { return facts.value(QLatin1String(key)).toArray(); };
    return QStringLiteral("%1\nUp axis       %2\nBounding box  %3\n")
               .arg(Printable(facts.value(QStringLiteral("file")).toString()),
                    AxisText(facts.value(QStringLiteral("up"))), BoxText(facts.value(QStringLiteral("boundingBox"))))
           + ListText(QStringLiteral("Meshes"), list("meshes"),
                      {QStringLiteral("name"), QStringLiteral(">vertices"), QStringLiteral(">triangles"),
                       QStringLiteral("skinned"), QStringLiteral("material")})
           + MaterialsText(list("materials"))
           + ListText(QStringLiteral("Animations, duration in ms"), list("animations"),
                      {QStringLiteral(">index"), QStringLiteral("name"), QStringLiteral(">duration"),
                       QStringLiteral(">tracks"), QStringLiteral(">keys")})
           + NodesText(list("nodes")) + WarningsText(list("warnings"));
}

void Run(const Arguments& arguments)
{
    const QString source = arguments.OnlyWord(QStringLiteral("MODEL"));
    const bool json = arguments.Has(QStringLiteral("json"));
    ProgressBar bar;
    if (IsDocument(source)) {
        QStringList warnings;
        const std::unique_ptr<Document> document = OpenDocument(source, bar, warnings);
        const QJsonObject facts = DocumentFacts(*document->GetScene(), source, warnings);
        return Print(json ? JsonText(facts) : DocumentText(facts));
    }
    const Model model = OpenModel(source, bar.Part(QStringLiteral("reading"), 0, 100));
    bar.Clear();

    const QJsonObject facts = Facts(model);
    Print(json ? JsonText(facts) : FactsText(facts));
}

} // namespace

Verb InfoVerb()
{
    Manual manual;
    manual.verb = QStringLiteral("info");
    manual.summary = QStringLiteral("tell what a model or a document holds");
    manual.synopsis = QStringList(QStringLiteral("lumenta info MODEL [--json]"));
    manual.description = QStringList{
        QStringLiteral("Lists meshes, materials with their parameters, animations, nodes, the up axis, the bounding "
                       "box of the rest pose, and warnings: what could not be taken over from the file. A bone is a "
                       "node that some vertex follows. Positions are in the unit of the file."),
        QStringLiteral("Of a document it lists the camera, the nodes with their kinds, triangles and materials, and "
                       "the textures: where each was found, or that it is missing."),
        ModelSourceText(),
        DocumentSourceText(),
    };
    manual.options = {
        {QStringList(QStringLiteral("json")), QString(),
         QStringLiteral(
             "The same as a JSON object, for programs. Numbers are exact: reading them gives "
             "every bit back; one that is not finite is null. A node's parent is its place among the nodes, -1 for the "
             "root; colours are written #rrggbb; the bounding box is null where nothing can "
             "be drawn.")}};
    manual.examples = {
        {QStringLiteral("lumenta info robot.glb"), QStringLiteral("A table to read.")},
        {QStringLiteral("lumenta info robot.glb --json | jq '.animations[].name'"),
         QStringLiteral("The names of its animations.")},
    };
    return {manual, Run};
}

} // namespace Host
