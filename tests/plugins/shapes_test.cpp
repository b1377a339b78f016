#include "lumenta/files/WholeFile.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/platform/IMeshNodeBuilder.h"
#include "reference/host/document/Node.h"
#include "reference/host/document/Placement.h"
#include "reference/host/document/Scene.h"
#include "reference/host/images/Image.h"
#include "reference/plugins/assimp-exporter/AssimpExporter.h"
#include "reference/plugins/assimp-loader/AssimpLoader.h"
#include "reference/plugins/primitives/ShapeGenerator.h"

#include <QtTest>

#include <csignal>
#include <set>
#include <sys/resource.h>

using namespace Host;

namespace {

constexpr double kPi = 3.14159265358979323846;

/// What is wrong with a mesh: its surface is closed, and triangles run clockwise
/// as seen from where their normals face, which is outwards: the volume is positive.
QString FaultOf(const IMesh& mesh, double& volume)
{
    std::set<std::array<float, 6>> edges;
    for (std::size_t i = 0; i < mesh.GetIndices().size(); ++i) {
        const auto next = [&](std::size_t k) { return mesh.GetVertices()[mesh.GetIndices()[i - i % 3 + (i + k) % 3]]; };
        const MeshVertex v = next(0);
        const TVec3<float> a = v.position, b = next(1).position, across = Cross(next(2).position - a, b - a);
        volume += double(Dot(a, across)) / 18.0;
        if (!(Dot(v.normal, across) > 0.0f)) return "a normal that faces inwards";
        if (v.tangent != TVec3<float>{} && !(Dot(Cross(v.normal, v.tangent), v.bitangent) * v.handedness > 0.999f))
            return "a skewed tangent frame";
        if (!edges.insert({a.x, a.y, a.z, b.x, b.y, b.z}).second) return "an edge of three triangles";
    }
    for (const auto& edge : edges)
        if (edges.count({edge[3], edge[4], edge[5], edge[0], edge[1], edge[2]}) == 0) return "an edge of one triangle";
    return volume > 0.0 ? "" : "an inside that is outside";
}

/// What is seen, in numbers that do not depend on the order of vertices: the box,
/// the volume, and where the image lies. None where a mesh is at fault.
std::vector<double> Seen(const std::vector<INode*>& meshNodes)
{
    TBBox<float> box;
    double all = 0, image = 0;
    for (INode* const node : meshNodes) {
        const IMesh& mesh = *qobject_cast<IMeshNode*>(node)->GetMeshes().at(0);
        qobject_cast<IMeshNode*>(node)->FillBBox(box);
        double volume = 0;
        if (!FaultOf(mesh, volume).isEmpty()) return {};
        all += volume * std::fabs(MatrixToQMatrix4x4(WorldOf(node)).determinant());
        for (const unsigned int index : mesh.GetIndices()) {
            MeshVertex vertex = mesh.GetVertices()[index];
            TransformPoint(vertex.position, WorldOf(node));
            image += double(vertex.position.z * vertex.texCoord.y + vertex.position.x * vertex.texCoord.x);
        }
    }
    const TVec3<float> a = box.min, b = box.max;
    return {double(a.x), double(a.y), double(a.z), double(b.x), double(b.y), double(b.z), all, image};
}

QStringList EntriesOf(const QTemporaryDir& folder)
{
    return QDir(folder.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden);
}

/// Boxes in a group that is turned and stretched: one mirrored, one hidden.
void Fill(Scene& scene)
{
    const ShapeMesh box = BoxShape().make({{"width", 1}, {"depth", 2}, {"height", 3}, {"segments", 2}, {"bevel", 0.2}})[0];
    INode* const group = scene.GetRoot()->CreateGroup("group");
    for (const char* name : {"plain", "mirrored", "hidden"})
        scene.AddMesh(group, name, box.vertices, box.indices);
    group->SetMatrix({{0, 2, 0, 0, -1, 0, 0, 0, 0, 0, 3, 0, 5, 0, 0, 1}});
    scene.FindNode("mirrored")->SetMatrix({{-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 4, 0, 1}});
    scene.FindNode("hidden")->SetVisible(false);
    scene.CreateMaterial("paint")->SetParameters({{"diffuse", QColor(200, 100, 50)}, {"opacity", 0.5}});
    scene.AssignMaterial({group}, scene.FindMaterial("paint"));
}

} // namespace

class ShapesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AreClosed_data();
    void AreClosed();
    void HoldTheirValues();
    void AreExportedWholeOrNot_data();
    void AreExportedWholeOrNot();
};

void ShapesTest::AreClosed_data()
{
    QTest::addColumn<QVariantMap>("values");
    QTest::addColumn<QVector<double>>("volumes"); // of the meshes
    QTest::newRow("Box, sharp") << QVariantMap() << QVector<double>{0.001};
    const QVariantMap round{{"width", 0.2}, {"depth", 0.3}, {"height", 0.5}, {"bevel", 7.0}, {"segments", 16}};
    const double rounded = 0.006 + kPi * 0.01 * (0.1 + 0.3 + 0.4 / 3);
    QTest::newRow("Box with more bevel than there is room for") << round << QVector<double>{rounded};
    const QVariantMap coarse{{"radius", 1.0}, {"segments", 3}, {"rings", 2}};
    QTest::newRow("Sphere of six triangles") << coarse << QVector<double>{std::sqrt(3.0) / 2.0};
    const QVariantMap tube{{"bodyRadius", 0.05}, {"bodyHeight", 0.3}, {"shoulderHeight", 0.05}, {"neckHeight", 0.05},
                           {"neckRadius", 9.0}, {"lip", 0.0}, {"dent", 0.0}, {"wall", 0.005}, {"segments", 128},
                           {"cap", true}, {"labelHeight", 0.2}};
    const double glass = kPi * (0.05 * 0.05 * 0.4 - 0.045 * 0.045 * 0.395);
    const double label = kPi * 0.1 * (0.0502 * 0.0502 - 0.0501 * 0.0501);
    const double cap = kPi * (0.0545 * 0.0545 * 0.017 - 0.0515 * 0.0515 * 0.013);
    QTest::newRow("Tube with half a label and a cap") << tube << QVector<double>{glass, label, cap};
    QVariantMap much{{"cap", true}};
    for (const sGeneratorParameter& parameter : BottleShape().parameters)
        if (parameter.most.isValid()) much[parameter.strName] = parameter.most;
    much["bodyRadius"] = much["bodyHeight"] = much["neckHeight"] = 0.0;
    QTest::newRow("Bottle with much on little, and a label all around") << much << QVector<double>(3);
}

void ShapesTest::AreClosed()
{
    QFETCH(QVariantMap, values);
    QFETCH(QVector<double>, volumes);
    const QString tag = QTest::currentDataTag();
    ShapeGenerator generator(tag.startsWith("Box") ? BoxShape() : tag[0] == 'S' ? SphereShape() : BottleShape());
    for (auto value = values.begin(); value != values.end(); ++value)
        generator.SetValue(value.key(), value.value());
    Scene scene;
    generator.Generate(*std::unique_ptr<IMeshNodeBuilder>(scene.CreateMeshBuilder(scene.GetRoot())));
    QCOMPARE(int(scene.GetRoot()->GetChildren().size()), volumes.size());
    for (int i = 0; i < volumes.size(); ++i) {
        auto* const node = qobject_cast<IMeshNode*>(scene.GetRoot()->GetChildren()[std::size_t(i)]);
        double volume = 0.0;
        QCOMPARE(FaultOf(*node->GetMeshes().at(0), volume), QString());
        QVERIFY2(volumes[i] == 0.0 || qAbs(volume / volumes[i] - 1.0) < 0.02, qPrintable(QString::number(volume)));
        if (i == 0) QCOMPARE(node->GetBBox().min.z, 0.0f);
    }
}

void ShapesTest::HoldTheirValues()
{
    ShapeGenerator bottle(BottleShape());
    const QSignalSpy changes(&bottle, &IGenerator::changed);
    const std::pair<const char*, QVariant> wrong[]{{"width", 1.0}, {"wall", "1"}, {"wall", qQNaN()}, {"cap", 1}};
    for (const auto& [name, value] : wrong)
        QVERIFY_EXCEPTION_THROWN(bottle.SetValue(name, value), InvalidParameterException);
    for (const double value : {-1.0, 0.0, double(-qInf())})
        bottle.SetValue("wall", value);
    bottle.SetValue("segments", qInf());
    QCOMPARE(bottle.GetValue("wall").toString() + ' ' + bottle.GetValue("segments").toString(), QString("0.0005 512"));
    QCOMPARE(changes.size(), 2);
}

void ShapesTest::AreExportedWholeOrNot_data()
{
    QTest::addColumn<QString>("told");  // new files, or what went wrong
    QTest::addColumn<QString>("paint"); // what of the material comes back
    const auto row = [](const char* file, const char* told, const char* paint) {
        QTest::newRow(file) << QString(told) << QString(paint);
    };
    row("m.glb", "m.glb", "0.127 0.5 image");
    row("m.gltf", "m.bin m.gltf", "0.127 0.5 image");
    row("m.fbx", "m-texture-1.png m.fbx", "0.127 0.5 m-texture-1.png");
    row("m.dae", "m-texture-1.png m.dae", "1 0.5 m-texture-1.png");
    row("m.obj", "m-texture-1.png m.mtl m.obj", "0.127 0.5 m-texture-1.png");
    row("m.stl", "m-texture-1.png m.stl", "");
    row("m.ply", "m-texture-1.png m.ply", "");
    row("old.doc", "there is no format 'doc'; there are: glb, gltf, fbx, dae, obj, stl, ply", "");
    row("old.glb", "the scene holds no visible meshes", "");
    row("old.fbx", "the scene is more than 1000 levels deep, below 'deep'", "");
    row("old.obj", "'~/old.mtl' is a folder", "");
    row("old.gltf", "File too large", ""); // as on a full disk
}

void ShapesTest::AreExportedWholeOrNot()
{
    const QTemporaryDir folder;
    const QString name = QTest::currentDataTag(), file = folder.filePath(name);
    QDir(folder.path()).mkdir("old.mtl");
    for (const char* each : {"old.bin", "old.doc", "old.fbx", "old.glb", "old.gltf", "old.obj"})
        SaveDataToFile(folder.filePath(each), "old");
    Scene scene, read;
    Fill(scene);
    Image image(QImage::fromData("P1 1 1 1"));
    scene.FindMaterial("paint")->SetImage(eMaterialSlotDiffuse, &image);
    if (name == "old.glb") scene.RemoveNodes(scene.GetRoot()->GetChildren());
    INode* deep = scene.GetRoot();
    for (int i = 0; name == "old.fbx" && i < 1001; ++i)
        deep = deep->CreateGroup("deep");
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit usual{};
    ::getrlimit(RLIMIT_FSIZE, &usual);
    const rlimit limit{name == "old.gltf" ? 4096 : usual.rlim_cur, usual.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const QStringList before = EntriesOf(folder);
    AssimpExporter exporter;
    QString told;
    try {
        exporter.Export(scene, file, {});
    } catch (const ExporterException& exception) {
        told = exception.GetErrorText().replace(folder.path(), "~").section("' can't be exported: ", 1);
    }
    ::setrlimit(RLIMIT_FSIZE, &usual);
    const QStringList after = EntriesOf(folder);
    for (const QString& entry : after)
        if (!before.contains(entry)) told += entry + ' ';
    QTEST(told.trimmed(), "told");
    if (before.contains(name)) QCOMPARE(ReadAllFile(file), QByteArray("old"));
    if (before.contains(name)) return;

    QVERIFY(exporter.GetWarnings().contains("What is hidden was left out: 'hidden'."));
    INode* const group = read.AddModel(LoadModel(file), read.GetRoot());
    QString got;
    if (const IMaterial* const paint = read.FindMaterial("paint")) {
        const double green = double(paint->GetDiffuseColor().g), opacity = double(paint->GetOpacity());
        const bool isInside = paint->GetImage(eMaterialSlotDiffuse) != nullptr;
        got = QStringLiteral("%1 %2 ").arg(green, 0, 'g', 3).arg(opacity);
        got += isInside ? QString("image") : paint->GetImageFile(eMaterialSlotDiffuse);
    }
    QTEST(got, "paint");
    std::vector<double> expected = Seen({scene.FindNode("plain"), scene.FindNode("mirrored")});
    const std::vector<double> seen = Seen(group->GetChildren());
    if (name == "m.stl") expected.back() = 0.0; // it has no texture coordinates
    for (std::size_t i = 0; i < expected.size(); ++i)
        QVERIFY(std::fabs(seen.at(i) - expected[i]) <= 1e-5 * std::max(1.0, expected[i]));
}

QTEST_GUILESS_MAIN(ShapesTest)
#include "shapes_test.moc"
