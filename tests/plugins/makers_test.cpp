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
#include "reference/plugins/folder-uploader/FolderUploader.h"
#include "reference/plugins/primitives/ShapeGenerator.h"

#include <QtTest>

#include <csignal>
#include <set>
#include <sys/resource.h>
#include <unistd.h>

using namespace Host;

namespace {

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
        if (Dot(Cross(v.normal, v.tangent), v.bitangent) * v.handedness < 0.0f) return "a frame of the wrong hand";
        if (!edges.insert({a.x, a.y, a.z, b.x, b.y, b.z}).second) return "an edge of three triangles";
    }
    for (const auto& edge : edges)
        if (edges.count({edge[3], edge[4], edge[5], edge[0], edge[1], edge[2]}) == 0) return "an edge of one triangle";
    return volume > 0.0 ? "" : "an inside that is outside";
}

/// What is seen, in numbers that do not depend on the order of vertices: the box,
/// the volume (of meshes whose nodes keep it), and where the image lies. None
/// where a mesh is at fault.
std::vector<double> Seen(const std::vector<INode*>& meshNodes)
{
    TBBox<float> box;
    double all = 0.0, image = 0.0;
    for (INode* const node : meshNodes) {
        const IMesh& mesh = *qobject_cast<IMeshNode*>(node)->GetMeshes().at(0);
        qobject_cast<IMeshNode*>(node)->FillBBox(box);
        if (!FaultOf(mesh, all).isEmpty()) return {};
        for (const unsigned int index : mesh.GetIndices()) {
            MeshVertex vertex = mesh.GetVertices()[index];
            TransformPoint(vertex.position, WorldOf(node));
            image += double(vertex.position.z * vertex.texCoord.y + vertex.position.x * vertex.texCoord.x);
        }
    }
    const TVec3<float> a = box.min, b = box.max;
    return {double(a.x), double(a.y), double(a.z), double(b.x), double(b.y), double(b.z), all, image};
}

QString NewIn(const QTemporaryDir& folder)
{
    const QStringList names = QDir(folder.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden);
    return names.filter(QRegularExpression("^(?!old\\.(?!bin))")).join(' ');
}

/// Boxes in a group that is turned, stretched and flattened: one mirrored, one hidden.
void Fill(Scene& scene)
{
    const ShapeMesh box = BoxShape().make({{"width", 1}, {"depth", 2}, {"height", 3}, {"segments", 2}}).at(0);
    INode* const group = scene.GetRoot()->CreateGroup("group");
    for (const char* name : {"plain", "mirrored", "hidden"})
        scene.AddMesh(group, name, box.vertices, box.indices);
    group->SetMatrix({{0, 2, 0, 0, -1, 0, 0, 0, 0, 0, 0.5, 0, 5, 0, 0, 1}});
    scene.FindNode("mirrored")->SetMatrix({{-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 4, 0, 1}});
    scene.FindNode("hidden")->SetVisible(false);
    scene.CreateMaterial("paint")->SetParameters({{"diffuse", QColor(200, 100, 50)}, {"opacity", 0.5}});
    scene.AssignMaterial({group}, scene.FindMaterial("paint"));
}

} // namespace

/// The plug-ins that make something: shapes, files of other programs, uploads.
class MakersTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ShapesAreClosed_data();
    void ShapesAreClosed();
    void ShapesHoldTheirValues();
    void ExportsAreWholeOrNot_data();
    void ExportsAreWholeOrNot();
    void ExportsFindTextures();
    void UploadsTellHowTheyEnd_data();
    void UploadsTellHowTheyEnd();
};

void MakersTest::ShapesAreClosed_data()
{
    QTest::addColumn<QVariantMap>("values");
    QTest::addColumn<QVector<double>>("volumes"); // of the meshes
    QTest::newRow("Box, sharp") << QVariantMap() << QVector<double>{0.001};
    const QVariantMap round{{"width", 0.2}, {"depth", 0.3}, {"height", 0.5}, {"bevel", 7.0}, {"segments", 16}};
    QTest::newRow("Box, bevelled too much") << round << QVector<double>{0.006 + M_PI * 0.01 * (0.1 + 0.3 + 0.4 / 3)};
    const QVariantMap coarse{{"radius", 1.0}, {"segments", 3}, {"rings", 2}};
    QTest::newRow("Sphere of six triangles") << coarse << QVector<double>{std::sqrt(0.75)};
    const QVariantMap tube{{"bodyRadius", 0.05}, {"neckRadius", 9.0}, {"dent", 0.0}, {"lip", 0.0}, {"segments", 128}};
    QTest::newRow("Tube") << tube << QVector<double>{M_PI * (0.05 * 0.05 * 0.305 - 0.047 * 0.047 * 0.302), 0.0};
    QVariantMap much{{"cap", true}};
    const auto shape = BottleShape();
    for (const sGeneratorParameter& parameter : shape.parameters)
        if (parameter.most.isValid()) much[parameter.strName] = parameter.most;
    much["bodyRadius"] = much["bodyHeight"] = much["neckHeight"] = 0.0;
    QTest::newRow("Bottle with much on little, and a label all around") << much << QVector<double>(3);
}

void MakersTest::ShapesAreClosed()
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

void MakersTest::ShapesHoldTheirValues()
{
    ShapeGenerator bottle(BottleShape());
    const QSignalSpy changes(&bottle, &IGenerator::changed);
    for (const QVariant& wrong : {QVariant("1"), QVariant(qQNaN()), QVariant(20.5), QVariant(true)})
        QVERIFY_EXCEPTION_THROWN(bottle.SetValue("segments", wrong), InvalidParameterException);
    for (const double value : {-1.0, 0.0, double(-qInf())})
        bottle.SetValue("segments", value);
    QCOMPARE(bottle.GetValue("segments").toInt() + 10 * changes.size(), 18); // the least, told once
}

void MakersTest::ExportsAreWholeOrNot_data()
{
    QTest::addColumn<QString>("told"); // new files and what of the material comes back, or what went wrong
    QTest::newRow("m.glb") << "m.glb 64 image";
    QTest::newRow("m.gltf") << "m.bin m.gltf 64 image";
    QTest::newRow("m.fbx") << "m-texture-1.png m.fbx 64 m-texture-1.png";
    QTest::newRow("m.dae") << "m-texture-1.png m.dae 500 m-texture-1.png";
    QTest::newRow("m.obj") << "m-texture-1.png m.mtl m.obj 64 m-texture-1.png";
    QTest::newRow("m.stl") << "m.stl";
    QTest::newRow("m.ply") << "m.ply";
    QTest::newRow("old.doc") << "there is no format 'doc'; there are: glb, gltf, fbx, dae, obj, stl, ply";
    QTest::newRow("old.glb") << "the scene holds no visible meshes";
    QTest::newRow("old.fbx") << "the scene is more than 1000 levels deep, below 'deep'";
    QTest::newRow("old.obj") << "'~/old.mtl' is a folder";
    QTest::newRow("old.gltf") << "File too large"; // as on a full disk
}

void MakersTest::ExportsAreWholeOrNot()
{
    const QTemporaryDir folder;
    const QString name = QTest::currentDataTag(), file = folder.filePath(name);
    QDir(folder.path()).mkdir("old.mtl");
    if (name.startsWith("old")) SaveDataToFile(file, "old");
    Image image(QImage::fromData("P1 1 1 1"));
    Scene scene, read;
    Fill(scene);
    scene.FindMaterial("paint")->SetImage(eMaterialSlotDiffuse, &image);
    if (name == "old.glb") scene.RemoveNodes(scene.GetRoot()->GetChildren());
    INode* deep = scene.GetRoot();
    for (int i = 0; name == "old.fbx" && i < 1001; ++i)
        deep = deep->CreateGroup("deep");
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit usual{}, little{4096, RLIM_INFINITY};
    ::prlimit(0, RLIMIT_FSIZE, name == "old.gltf" ? &little : nullptr, &usual);
    AssimpExporter exporter;
    QString told;
    try {
        exporter.Export(scene, file, {});
    } catch (const ExporterException& exception) {
        told = exception.GetErrorText().replace(folder.path(), "~").section("' can't be exported: ", 1);
    }
    ::prlimit(0, RLIMIT_FSIZE, &usual, nullptr);
    QCOMPARE(ReadAllFile(file) == "old", !told.isEmpty());
    told += NewIn(folder);
    if (told.startsWith("m")) read.AddModel(LoadModel(file), read.GetRoot());
    if (const IMaterial* const paint = read.FindMaterial("paint"))
        told += QStringLiteral(" %1 ").arg(qRound(1000.0f * paint->GetDiffuseColor().g * paint->GetOpacity()))
                + (paint->GetImage(eMaterialSlotDiffuse) ? "image" : paint->GetImageFile(eMaterialSlotDiffuse));
    QTEST(told, "told");
    if (name.startsWith("old")) return;
    if (name == "m.gltf") QVERIFY(ReadAllFile(file).contains("0.577")); // of red, linear as the format wants it
    QVERIFY(exporter.GetWarnings().contains("What is hidden was left out: 'hidden'."));
    std::vector<double> expected = Seen({scene.FindNode("plain"), scene.FindNode("mirrored")});
    const std::vector<double> seen = Seen(read.GetRoot()->GetChildren().at(0)->GetChildren());
    if (name == "m.stl") expected.back() = 0.0; // it has no texture coordinates
    for (std::size_t i = 0; i < expected.size(); ++i)
        QVERIFY(std::fabs(seen.at(i) - expected[i]) <= 1e-5 * std::max(1.0, expected[i]));
}

void MakersTest::ExportsFindTextures()
{
    const QTemporaryDir folder;
    SaveDataToFile(folder.filePath("wood.png"), "its content doesn't matter");
    Scene scene;
    Fill(scene);
    scene.SetFileName(folder.filePath("a.lumenta"));
    scene.FindMaterial("paint")->SetImageFile(eMaterialSlotDiffuse, "C:\\maps\\wood.png");
    AssimpExporter().Export(scene, folder.filePath("m.obj"), {});
    QVERIFY(ReadAllFile(folder.filePath("m.mtl")).contains("map_Kd wood.png\n"));
}

void MakersTest::UploadsTellHowTheyEnd_data()
{
    QTest::addColumn<QVariantMap>("settings");
    QTest::addColumn<QString>("told");
    QTest::addColumn<QString>("files"); // beside those that were there
    using S = QVariantMap;
    QTest::newRow("without a folder") << S{{"folder", ""}} << "settings?" << "";
    QTest::newRow("into a folder") << S{} << "half done new.png" << "new.png";
    QTest::newRow("over a file") << S{{"overwrite", true}, {"name", "old"}} << "half done old.png" << "";
    QTest::newRow("beside a file") << S{{"name", "old"}} << "half done old (2).png" << "old (2).png";
    QTest::newRow("out") << S{{"name", "../x"}} << "failed: '../x.png' can't be the name of an uploaded file" << "";
    QTest::newRow("onto a folder") << S{{"name", "old.folder"}, {"overwrite", true}}
                                   << "half failed: '~/old.folder.png' can't be replaced: Is a directory" << "";
    QTest::newRow("with the pin") << S{{"note", "1234"}} << "half done new.png" << ".upload-pin new.png";
    QTest::newRow("with a wrong pin") << S{{"note", "1234"}, {"pin", "4321"}} << "refused" << ".upload-pin";
    QTest::newRow("where one may not write") << S{{"forbidden", true}} << "refused" << "";
    QTest::newRow("cancelled at half") << S{{"half", "cancel"}} << "half failed: The upload was cancelled" << "";
    QTest::newRow("deleted at half") << S{{"half", "delete"}} << "half " << "";
}

void MakersTest::UploadsTellHowTheyEnd()
{
    QFETCH(QVariantMap, settings);
    const QTemporaryDir folder, sources;
    const QString source = sources.filePath("new.png");
    SaveDataToFile(source, QByteArray(400000, 'x'));
    SaveDataToFile(folder.filePath("old.png"), "old");
    QDir(folder.path()).mkdir("old.folder.png");
    if (settings.contains("note")) SaveDataToFile(folder.filePath(".upload-pin"), settings["note"].toByteArray());
    if (!settings.contains("folder")) settings["folder"] = folder.path();
    QString told;
    auto uploader = std::make_unique<FolderUploader>();
    const auto hear = [&](auto signal, const auto& slot) { connect(uploader.get(), signal, this, slot); };
    hear(&IUploader::progress, [&](int n) {
        if (n < 100) told += "half ";
        QVERIFY_EXCEPTION_THROWN(uploader->Upload(source, settings), LogicException);
        if (settings["half"] == "cancel") uploader->Cancel();
        if (settings["half"] == "delete") uploader.reset();
    });
    hear(&IUploader::done, [&](const QString& address) { told += "done " + QUrl(address).fileName(); });
    hear(&IUploader::failed, [&](const QString& error) { told += "failed: " + error; });
    hear(&IUploader::failedAuth, [&] { told += "refused"; });
    hear(&IUploader::requestSettings, [&] { told += "settings?"; });
    hear(&IUploader::urlForPin, [&](const QString& at) { uploader->SetPin(ReadAllFile(QUrl(at).toLocalFile())); });
    const uid_t user = ::geteuid(); // to root nothing is forbidden
    if (settings.contains("forbidden"))
        QVERIFY(QFile::setPermissions(folder.path(), QFile::ExeOwner) && (user != 0 || ::seteuid(65534) == 0));
    uploader->Upload(source, settings);
    for (int i = 0; i < 50; ++i)
        QCoreApplication::processEvents();
    QCOMPARE(::seteuid(user), 0);
    QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QTEST(told.replace(folder.path(), "~"), "told");
    QTEST(NewIn(folder), "files");
    if (told.contains("done ")) QVERIFY(ReadAllFile(folder.filePath(told.section("done ", 1))) == ReadAllFile(source));
}

QTEST_GUILESS_MAIN(MakersTest)
#include "makers_test.moc"
