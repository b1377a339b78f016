#include "lumenta/files/WholeFile.h"
#include "lumenta/interfaces/ISnapshotManager.h"
#include "lumenta/platform/IMeshNodeBuilder.h"
#include "lumenta/platform/ISerializersRegistry.h"
#include "lumenta/serializers/SceneSerializers.h"
#include "reference/host/ApplicationContext.h"
#include "reference/host/PluginHost.h"
#include "reference/host/SampleFigure.h"
#include "reference/host/document/Node.h"
#include "reference/host/document/Scene.h"
#include "reference/host/images/Image.h"
#include "reference/plugins/qt-images/QtImageManager.h"
#include "reference/plugins/scene-file/SceneFileLoader.h"
#include "reference/plugins/scene-file/SceneFileSaver.h"
#include "tests/foundation/Exact.h"
#include "tests/serializers/ServiceStandIns.h"

#include <QCborMap>

#include <csignal>
#include <sys/resource.h>

using namespace Host;

// clang-format off: tables

namespace {

/// A scene with a node of each kind, and how all that a document keeps of it becomes something else.
struct World {
    Image paint{QImage(1, 1, QImage::Format_ARGB32)}, back{QImage(1, 1, QImage::Format_RGB32), "/gone.png"};
    Scene scene;
    INode *root = scene.GetRoot(), *group = root->CreateGroup("group");
    INode *mesh = scene.AddMesh(group, "mesh", std::vector<MeshVertex>(3), {0, 1, 2}), *lamp = mesh->CreateLight("lamp");
    IMaterial *standard = scene.GetDefaultMaterial(), *material = scene.CreateMaterial("oak");

    World() { paint.SetPixel(0, 0, {1, 0, 0, 0.5f}), back.SetPixel(0, 0, {0, 1, 0, 1}); }
    void Change()
    {
        std::vector<MeshVertex> vertices(4, MeshVertex{{kNaN, -0.0f, 1}, {}, {}, {}, {0, kInfinity}, 1});
        std::vector<unsigned int> indices{2, 1, 3};
        const std::unique_ptr<IMeshNodeBuilder> builder(scene.CreateMeshBuilder(group));
        scene.RemoveNodes({mesh});
        for (const char* const wears : {"", "paper", "paper"}) builder->AddMeshNode("meshes", vertices, indices, wears, {});
        builder->EndModel();
        mesh = group->GetChildren()[0], mesh->SetName("other"), mesh->SetVisible(false);
        qobject_cast<IMeshNode*>(mesh)->SetExcludedFromTracing(true), qobject_cast<IMeshNode*>(mesh)->SetMaterial(0, material);
        lamp = mesh->CreateLight(QString::fromUtf8("\xc3\xb6 \xf0\x9f\x98\x80\n") + QChar(0)), lamp->SetVisible(false);
        auto* const light = qobject_cast<ILightNode*>(lamp);
        light->SetColor({0.1f, 2, 3, 4}), light->SetIntensity(0.3f), light->SetRadius(5), light->SetCastsShadows(false);
        root->SetName("root"), root->SetVisible(false), group->SetVisible(false), lamp->SetMatrix({{2}});
        group->SetName(QString(QChar(0xd800)) + "half a pair"), group->SetMatrix({{1, -0.0f, 0, 0, 0, kNaN}});
        mesh->SetMatrix({{2}}), mesh->SetMatrix({{1, -0.0f, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}}); // equals the identity
        scene.AddMesh(lamp, "", {}, {})->CreateGroup(""), standard->SetName("oak"), standard->SetOpacity(0.1f);
        material->SetName(QChar(1)), material->SetParameter("vendor:key", "<&\"'\n\t \\"); // XML has no such name
        material->SetImageFile(eMaterialSlotBump, "*0"), material->SetImage(eMaterialSlotBump, &paint);
        material->SetImage(eMaterialSlotDiffuse, &paint), scene.SetBackgroundImage(&back);
        scene.GetCamera()->SetState({{1, 2, 3}, 4.4f, 50, -6, 70, 0.8f}), scene.GetCamera()->SetLocked(true);
        scene.SetGroundPlaneEnabled(false), scene.SetGroundShadowEnabled(false), scene.SetMillimetersPerUnit(25.4f);
        scene.SetBackgroundMode(eBackgroundColor), scene.SetBackgroundColor({0.1f, 0.2f, 0.3f, 0.4f});
        scene.SetAmbientLight({0.5f, 0.6f, 0.7f, 1}), scene.SetSunDirection({0.3f, -1, 2}), scene.SetSunLight({2, 1, 0, 1});
        scene.SetRenderSize({640, 481}), scene.setProperty("object-creator-next-index", -7);
    }
};

/// What a host makes of the services of its plug-ins.
struct Registry final : ISerializersRegistry {
    ApplicationContext context;
    PluginHost host{context};

    Registry() { host.LoadFolder(LUMENTA_PLUGINS); }
    static SerializerInfo First(const std::vector<PluginService>& of) { return {of.at(0).title, of.at(0).id, of.at(0).extension}; }
    QList<SerializerInfo> GetSavers() const override { return {First(host.ServicesOf<ISceneSaver>())}; }
    QList<SerializerInfo> GetLoaders() const override { return {First(host.ServicesOf<ISceneLoader>())}; }
    QList<QString> GetOpenableExtensions() const override { StandIn::No(); }
    ISceneLoader* CreateLoader(const QString& id) const override { return host.CreateService<ISceneLoader>(id).release(); }
    ISceneSaver* CreateSaver(const QString& id) const override { return host.CreateService<ISceneSaver>(id).release(); }
};

/// \return the warnings
QStringList Save(const IScene& scene, const QString& file) { SceneFileSaver saver; return saver.Save(file, scene), saver.GetWarnings(); }
QStringList Load(const QString& file, IScene& scene, IImageManager* pImages = nullptr) { SceneFileLoader loader(pImages); return loader.Load(file, scene), loader.GetWarnings(); }

/// All that a document keeps.
QByteArray Content(const IScene& scene, const QTemporaryDir& in = {}) { return Save(scene, in.filePath("a")), ReadAllFile(in.filePath("a")); }
QCborMap Body(const QByteArray& content) { return QCborValue::fromCbor(content.mid(52)).toMap(); }

template <typename Error, typename Action>
QString Text(const Action& action) try { return action(), "nothing was thrown"; } catch (const Error& error) { return error.GetErrorText(); }

/// A file of this body, with the checksum that belongs to it.
QByteArray Framed(const QByteArray& body)
{
    QByteArray header("\x8fLUM\r\n\x1a\n\1\0\0\0", 12);
    for (int i = 0; i < 64; i += 8) header += char(quint64(body.size()) >> i & 0xff);
    return header + QCryptographicHash::hash(header + body, QCryptographicHash::Sha256) + body;
}

/// With another value at the end of the path, or none.
QCborValue With(const QCborValue& in, QStringList path, const QCborValue& value)
{
    if (path.isEmpty()) return value;
    const QString key = path.takeFirst();
    QCborArray array = in.toArray();
    if (in.isArray()) return array[key.toInt()] = With(array.at(key.toInt()), path, value), QCborValue(array);
    QCborMap map = in.toMap();
    map[key] = With(map.value(key), path, value);
    return map.value(key).isUndefined() ? map.remove(key), map : map;
}

/// Where two values are alike.
QStringList Alike(const QCborValue& a, const QCborValue& b, const QString& path = {})
{
    QStringList alike;
    const auto keys = a.toMap().keys();
    for (const QCborValue& key : keys) alike += Alike(a.toMap()[key], b.toMap()[key], path + '.' + key.toString());
    for (int i = 0; i < a.toArray().size(); ++i) alike += Alike(a.toArray().at(i), b.toArray().at(i), path + '.' + QString::number(i));
    return a == b ? alike << path : alike;
}

} // namespace

class SceneFileTest : public QObject {
    Q_OBJECT

    World m_open; // which nothing that is refused may change
    QByteArray m_before = (m_open.scene.SetModified(false), Content(m_open.scene));
    QTemporaryDir m_folder;
    ApplicationContext m_context;
    QString m_file = QFileInfo(m_folder.path()).canonicalFilePath() + QString::fromUtf8("/\xc3\xa4 %1 #'.lumenta");

private Q_SLOTS:
    void AllComesBack()
    {
        QtImageManager images{m_context}; World world; auto other = std::make_unique<World>();
        const QByteArray before = Content(world.scene);
        world.Change();
        QCOMPARE(Save(world.scene, m_file), QStringList());
        const QByteArray all = ReadAllFile(m_file);
        QCOMPARE(Alike(Body(before), Body(all)).join(' '),
                 QString(".nodes.0.matrix .nodes.1.parent .nodes.2.parent .nodes.2.mesh.source .nodes.3.parent"));
        QSignalSpy begins(&other->scene, &IScene::beforeSceneUpdate), ends(&other->scene, &IScene::afterSceneUpdate);
        QCOMPARE(Load(QDir().relativeFilePath(m_file), other->scene, &images), QStringList());
        QVERIFY(begins.size() == 1 && ends.size() == 1 && other->scene.GetFileName() == m_file && !other->scene.IsModified());
        QCOMPARE(Load(m_file, other->scene, &images), QStringList()); // and what was asked for is given back
        QVERIFY(Save(other->scene, m_file).isEmpty() && ReadAllFile(m_file) == all); // onto itself
        const QString back = other->scene.GetBackgroundImage()->GetFileName(), bump = other->scene.GetMaterials()[1]->GetImage(eMaterialSlotBump)->GetFileName();
        const auto isHeld = [&] { return images.FindImage(back) || images.FindImage(bump); };
        QVERIFY(back != bump && isHeld());
        QVERIFY(Load(m_file, other->scene).size() == 1 && !isHeld()); // nobody to read them
        Load(m_file, other->scene, &images), other.reset();
        QVERIFY(SceneFileLoader(nullptr).CanLoad(m_file) && !SceneFileLoader(nullptr).CanLoad(m_folder.path()));
        QVERIFY(!isHeld()); // they went with the scene
    }

    void AModelThroughTheLookUp()
    {
        const Registry registry;
        Scene scene, other;
        scene.AddModel(MakeSampleFigure(), scene.GetRoot());
        scene.SetAnimation(0, 300), scene.GetSnapshotManager()->Take("kept");
        const auto saver = CreateSceneSaver(&registry, "b.Lumenta");
        saver->Save(m_file, scene);
        QCOMPARE(saver->GetWarnings().size(), 2); // animations, snapshots
        CreateSceneLoader(&registry, m_file)->Load(m_file, other);
        QCOMPARE(Body(Content(other))[QString("nodes")], Body(Content(scene))[QString("nodes")]); // as it is posed
    }

    void TexturesAreFound_data()
    {
        QTest::addColumn<QString>("named"), QTest::addColumn<QString>("stored"); // %1 is the folder of the document
        QTest::newRow("by an absolute path into the folder") << "%1/tex/wood.png" << "tex/wood.png";
        QTest::newRow("relative to the document before") << "../old/tex/wood.png" << "tex/wood.png";
        QTest::newRow("written on Windows, relative") << "tex\\wood.png" << "tex/wood.png";
        QTest::newRow("written on Windows, beside") << "C:\\Docs\\tex\\beside.png" << "beside.png";
        QTest::newRow("elsewhere, so absolute") << "%1/../else.png" << "%1/../else.png";
        QTest::newRow("missing, on a drive") << "C:\\Docs\\gone.png" << "C:\\Docs\\gone.png";
        QTest::newRow("missing") << "tex\\gone.png" << "tex/gone.png";
    }

    void TexturesAreFound()
    {
        QFETCH(QString, named); QFETCH(QString, stored);
        const QTemporaryDir temporary;
        const QString top = QFileInfo(temporary.path()).canonicalFilePath(), old = top + "/old";
        const bool isFound = QDir(top).mkpath("old/tex") && !stored.contains("gone");
        QtImageManager images{m_context}; World world, other;
        for (const char* const name : {"/old/tex/wood.png", "/old/beside.png", "/else.png"}) world.paint.ToQImage().save(top + name);
        world.scene.SetFileName(old + "/before.lumenta");
        world.material->SetImageFile(eMaterialSlotBump, named.replace("%1", old));
        QCOMPARE(Save(world.scene, old + "/a.lumenta"), QStringList());
        QVERIFY(QDir(top).rename("old", "new"));
        const QString warning = "Material 'oak': the image '" + stored + "' was not found from '" + top + "/new'";
        QCOMPARE(Load(top + "/new/a.lumenta", other.scene, &images).join(""), isFound ? QString() : warning);
        QCOMPARE(other.scene.FindMaterial("oak")->GetImageFile(eMaterialSlotBump), QDir::cleanPath(stored.replace("%1", old)));
        Save(other.scene, top + "/b.lumenta"), Load(top + "/b.lumenta", world.scene, &images); // and textures stay
        QCOMPARE(world.scene.FindMaterial("oak")->GetImage(eMaterialSlotBump) != nullptr, isFound);
    }

    void ImagesThatTheirFilesAreNot()
    {
        const QTemporaryDir folder;
        QtImageManager images{m_context}; World world, other;
        for (const auto& [name, color] : {std::pair("/wood.png", Qt::red), {"/elm.png", Qt::blue}}) { QImage pixels(1, 1, QImage::Format_RGB32); pixels.fill(color), pixels.save(folder.path() + name); }
        IImage* const elm = images.LoadImageFile(folder.filePath("elm.png"));
        world.scene.SetFileName(folder.filePath("before.lumenta"));
        for (IMaterial* const material : {world.material, world.standard}) material->SetImageFile(eMaterialSlotBump, "wood.png"), material->SetImage(eMaterialSlotBump, elm);
        world.standard->SetImageFile(eMaterialSlotDiffuse, "elm.png"), world.standard->SetImage(eMaterialSlotDiffuse, elm);
        Save(world.scene, folder.filePath("a")), Load(folder.filePath("a"), other.scene, &images);
        QCOMPARE(Body(ReadAllFile(folder.filePath("a")))[QString("images")].toArray().size(), 1);
        for (const IMaterial* const material : other.scene.GetMaterials())
            QVERIFY(material->GetImageFile(eMaterialSlotBump) == "wood.png" && material->GetImage(eMaterialSlotBump)->ToQImage().pixelColor(0, 0) == Qt::blue);
        QCOMPARE(other.scene.GetDefaultMaterial()->GetImage(eMaterialSlotDiffuse), elm); // by its file
        IMaterial* const material = other.scene.CreateMaterial("embedded");
        material->SetImageFile(eMaterialSlotDiffuse, "*0"), material->SetImage(eMaterialSlotDiffuse, &world.paint);
        Save(other.scene, m_file), Load(m_file, world.scene, &images);
        QVERIFY(world.scene.FindMaterial("embedded")->GetImageFile(eMaterialSlotDiffuse) == "*0" && world.scene.FindMaterial("embedded")->GetImage(eMaterialSlotDiffuse));
    }

    /// Why a file can't be opened; the scene that was to receive it stays as it was.
    QString Refusal(const QByteArray& bytes)
    {
        QSignalSpy told(&m_open.scene, &IScene::sceneChanged), batches(&m_open.scene, &IScene::beforeSceneUpdate);
        SaveDataToFile(m_file, bytes);
        const QString text = Text<LoadingException>([&] { Load(m_file, m_open.scene); }), start = "'" + m_file + "' can't be opened: ";
        return told.isEmpty() && batches.isEmpty() && text.startsWith(start) ? text.mid(start.size()) : "something else: " + text;
    }

    void DamageIsNoticed()
    {
        const QByteArray whole = Content(Scene());
        for (int i = 0; i < whole.size(); ++i) {
            const QByteArray flipped = QByteArray(whole).replace(i, 1, QByteArray(1, char(whole[i] ^ (1 << i % 8))));
            QVERIFY2(Refusal(flipped).startsWith("it ") && Refusal(whole.left(i)).startsWith("it "), qPrintable(QString::number(i)));
        }
        QCOMPARE(Refusal(whole + '\0'), QString("it is damaged: 1 bytes follow its end"));
    }

    void StrangersAreNotTrusted_data()
    {
        QTest::addColumn<QByteArray>("bytes"), QTest::addColumn<QString>("error");
        const QByteArray whole = Content(World().scene), body = whole.mid(52);
        const auto raw = [](const char* name, const QByteArray& bytes, const char* error) { QTest::newRow(name) << bytes << error; };
        const auto hex = [&](const char* name, const char* digits, const char* error) { raw(name, Framed(QByteArray::fromHex(digits)), error); };
        const auto row = [&](const char* name, const char* path, const QCborValue& value, const char* error) { raw(name, Framed(QCborValue(With(Body(whole), QString(path).split('.'), value)).toCbor()), error); };
        raw("a newer version", QByteArray(whole).replace(8, 1, "\3"), "it was written by a newer version (format 3; this program reads up to 1)");
        raw("line ends turned", QByteArray(whole).replace("\r\n\x1a", "\n\x1a"), "it is damaged, as if it had been transferred as a text");
        raw("more than a document", Framed(body + '\0'), "it holds more than a document");
        raw("lists in lists", Framed(QByteArray::fromHex("a166696d61676573") + QByteArray(1000000, char(0x81))), "images[0]: expected a byte string");
        hex("a claim of 2^63 fields", "bb8000000000000000", "this is no CBOR: Internal limitation: data set too large");
        hex("a claim of 2^40 bytes", "a166696d61676573815b0000010000000000", "images[0]: it is longer than the document");
        hex("a list without end", "a166696d616765739f", "images: its length is not told in advance");
        hex("a field twice", "a266696d616765738066696d6167657380", "there are two fields 'images'");
        row("a field too many", "camera.more", 1, "camera: there is an unknown field 'more'");
        row("a field missing", "nodes.2.name", QCborValue::Undefined, "nodes[2]: there is no field 'name'");
        row("a text for a number", "camera.pitch", "1", "camera.pitch: expected a floating-point number");
        row("a node before its parent", "nodes.2.parent", 2, "nodes[2]: this node has no place in the tree");
        row("an index below 0", "nodes.2.parent", std::numeric_limits<qint64>::min(), "nodes[2].parent: expected an integer from 0 to 2147483647");
        row("half a matrix", "nodes.2.matrix", QCborValue(QCborTag(85), QByteArray(32, 0)), "nodes[2].matrix: 32 bytes are no whole number of these");
        row("no meshes", "nodes.2.mesh.meshes", QCborArray{}, "nodes[2].mesh: there are no meshes");
        row("an index too high", "nodes.2.mesh.meshes.0.indices", QCborValue(QCborTag(70), QByteArray(12, 3)), "nodes[2].mesh.meshes[0]: the indices are no triangles of the vertices");
        row("no such material", "nodes.2.mesh.meshes.0.material", 99, "nodes[2]: a material is referred to that is not there");
        row("no material", "materials.1.xml", "<oak/>", "materials[1].xml: this is no material: Invalid parameter 'xml' passed to method 'ReadMaterial':\nInvalid material format: bad root node");
        row("no length", "scene.millimetersPerUnit", -1.5, "scene.millimetersPerUnit: expected a length above 0");
    }

    void cleanupTestCase() { QCOMPARE(Content(m_open.scene), m_before); }

    void StrangersAreNotTrusted() { QFETCH(QByteArray, bytes); QTEST(Refusal(bytes), "error"); }

    void DeepTreesNeedNoStack()
    {
        const std::unique_ptr<QThread> thread(QThread::create([this] {
            Scene scene, other;
            for (INode* pNode = scene.GetRoot(); pNode->GetId() < 100000;) pNode = pNode->CreateGroup(QString::number(pNode->GetId()));
            Save(scene, m_file), Load(m_file, other);
            QCOMPARE(Content(other), Content(scene));
        }));
        thread->setStackSize(128 * 1024), thread->start();
        QVERIFY(thread->wait());
    }

    void WhatCantBeSavedKeepsTheFile()
    {
        World world;
        Save(world.scene, m_file);
        const QByteArray before = ReadAllFile(m_file);
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{}, small{100, RLIM_INFINITY};
        getrlimit(RLIMIT_FSIZE, &limit), small.rlim_max = limit.rlim_max;
        setrlimit(RLIMIT_FSIZE, &small); // as if the disk were full
        const QString full = Text<FileException>([&] { Save(world.scene, m_file); });
        setrlimit(RLIMIT_FSIZE, &limit);
        QCOMPARE(full, "Can't write the data: File too large\nFile: " + m_file);
        for (const QString nowhere : {"/no/where", "/tmp"})
            for (const QString& text : {Text<FileException>([&] { Save(world.scene, nowhere); }), Text<FileException>([&] { Load(nowhere, world.scene); })})
                QVERIFY(text.startsWith("Can't open the file") && text.endsWith("\nFile: " + nowhere));
        world.material->SetParameter("odd", QString(QChar(0xffff)));
        QCOMPARE(Text<SavingException>([&] { Save(world.scene, m_file); }), QString("Material 'oak' can't be saved: its parameter 'odd' holds characters that can't stand in XML"));
        QVERIFY(ReadAllFile(m_file) == before && QDir(m_folder.path()).entryList(QDir::Files).size() == 1);
        world.material->SetParameter("odd", QVariantList());
        QCOMPARE(Save(world.scene, m_file), QStringList("Material 'oak': 'odd' is left out, since it is nothing that a text can tell"));
    }
};

QTEST_GUILESS_MAIN(SceneFileTest)
#include "scene_file_test.moc"
