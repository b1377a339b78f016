#include "lumenta/files/WholeFile.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/ISnapshotManager.h"
#include "lumenta/platform/IMeshNodeBuilder.h"
#include "lumenta/platform/ISerializersRegistry.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "lumenta/serializers/SceneSerializers.h"
#include "reference/host/ApplicationContext.h"
#include "reference/host/ModelReader.h"
#include "reference/host/PluginHost.h"
#include "reference/host/document/Node.h"
#include "reference/host/document/Scene.h"
#include "reference/host/images/Image.h"
#include "reference/plugins/scene-file/SceneFileLoader.h"
#include "reference/plugins/scene-file/SceneFileSaver.h"
#include "tests/foundation/Exact.h"
#include "tests/serializers/ServiceStandIns.h"

#include <QCborMap>

#include <csignal>
#include <functional>
#include <sys/resource.h>

using namespace Host;

// Assimp keeps some memory of a file that it has read.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() { return "leak:libassimp"; }

// clang-format off: tables, and what nobody reads

/// A scene with a node of each kind, and what happens to it.
struct World {
    Scene scene;
    INode* group = scene.GetRoot()->CreateGroup("group");
    INode* mesh = scene.AddMesh(group, "mesh", std::vector<MeshVertex>(3), {0, 1, 2, 2, 1, 0});
    INode* lamp = mesh->CreateLight("lamp");
    IMaterial* material = scene.CreateMaterial("oak");
    IMeshNode* meshes = qobject_cast<IMeshNode*>(mesh);
    ILightNode* light = qobject_cast<ILightNode*>(lamp);
    Image paint{QImage("\x10\x20\x30\x40\x50\x60\x70\x80", 1, 2, QImage::Format_ARGB32).copy()};

    void AddMeshes(const QString& name, float x)
    {
        std::vector<MeshVertex> vertices(3, MeshVertex{{x, -0.0f, 1}, {}, {}, {}, {0, kInfinity}, 1});
        std::vector<unsigned int> indices{2, 1, 0};
        const std::unique_ptr<IMeshNodeBuilder> builder(scene.CreateMeshBuilder(mesh));
        builder->BeginModel("", 2);
        builder->AddMeshNode(name, vertices, indices, "", {});
        builder->AddMeshNode(name, vertices, indices, "paper", {{"opacity", "0.25"}});
        builder->EndModel();
    }
};

using Deed = std::function<void(World&)>;
Q_DECLARE_METATYPE(Deed)

namespace {

/// Holds an image as long as somebody has asked for it and not given it back.
struct Images final : IImageManager {
    std::map<QString, std::pair<std::unique_ptr<Image>, int>> held;

    IImage* DecodeImage(const QByteArray& data, const QString& name) override
    {
        auto& [image, nAsked] = held[name];
        if (!image) image = std::make_unique<Image>(QImage::fromData(data), name);
        return ++nAsked, image.get();
    }
    IImage* LoadImageFile(const QString& file) override { return QFile::exists(file) ? DecodeImage(ReadAllFile(file), file) : nullptr; }
    void ReleaseImage(IImage* image) override
    {
        for (auto it = held.begin(); it != held.end(); it = it->second.second ? std::next(it) : held.erase(it))
            it->second.second -= it->second.first.get() == image;
    }
    IImage* CreateImage(const QSize&) override { StandIn::No(); } bool ReloadImage(IImage*) override { StandIn::No(); }
    IImage* FindImage(const QString&) const override { StandIn::No(); } QStringList GetRecentFiles() const override { StandIn::No(); }
    std::vector<ImageSaverInfo> GetSaverFormats() const override { StandIn::No(); } std::vector<ImageLoaderInfo> GetLoaderFormats() const override { StandIn::No(); }
    IImageSaver* CreateSaver(const ImageSaverInfo&) const override { StandIn::No(); }
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

QStringList Save(const IScene& scene, const QString& file)
{
    SceneFileSaver saver;
    return saver.Save(file, scene), saver.GetWarnings();
}

QStringList Load(const QString& file, IScene& scene, IImageManager* pImages = nullptr)
{
    SceneFileLoader loader(pImages);
    return loader.Load(file, scene), loader.GetWarnings();
}

/// All that a document keeps.
QByteArray Content(const IScene& scene)
{
    const QTemporaryDir folder;
    return Save(scene, folder.filePath("a.lumenta")), ReadAllFile(folder.filePath("a.lumenta"));
}

template <typename Error, typename Action>
QString Text(const Action& action)
{
    try {
        return action(), "nothing was thrown";
    } catch (const Error& error) {
        return error.GetErrorText();
    }
}

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
    return map.value(key).isUndefined() ? void(map.remove(key)) : void(), map;
}

} // namespace

class SceneFileTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    QString m_file = QFileInfo(m_folder.path()).canonicalFilePath() + QString::fromUtf8("/\xc3\xa4 %1 #'.lumenta");

private Q_SLOTS:
    void ItComesBack_data()
    {
        QTest::addColumn<Deed>("change");
        const auto row = [](const char* name, const Deed& change) { QTest::newRow(name) << change; };
        row("the root", [](World& w) { w.scene.GetRoot()->SetName("r"), w.scene.GetRoot()->SetVisible(false); });
        row("a name in Unicode", [](World& w) { w.lamp->SetName(QString::fromUtf8("\xc3\xb6 \xf0\x9f\x98\x80\n") + QChar(0)); });
        row("a name with half a pair", [](World& w) { w.group->SetName(QString(QChar(0xd800)) + 'a'); });
        row("a name of a mesh node", [](World& w) { w.mesh->SetName("other"); });
        row("a matrix with a negative 0", [](World& w) { w.group->SetMatrix({{1, -0.0f, 0, 0, 0, kNaN, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1}}); });
        row("that alone", [](World& w) { w.group->SetMatrix({}), w.lamp->SetMatrix({{2}}), w.lamp->SetMatrix({{1, -0.0f}}); });
        row("a hidden node", [](World& w) { w.mesh->SetVisible(false); });
        row("the order of nodes", [](World& w) { w.scene.MoveNodes({w.lamp}, w.group, 0); });
        row("meshes", [](World& w) { w.AddMeshes("a", kNaN), w.AddMeshes("b", 2), w.AddMeshes("", 3); });
        row("a mesh without triangles", [](World& w) { w.scene.AddMesh(w.lamp, "", {}, {}); });
        row("excluded from tracing", [](World& w) { w.meshes->SetExcludedFromTracing(true); });
        row("a material that is worn", [](World& w) { w.meshes->SetMaterial(0, w.material); });
        row("a colour of a lamp", [](World& w) { w.light->SetColor({0.1f, 2, 3, 4}); });
        row("an intensity", [](World& w) { w.light->SetIntensity(0.3f); });
        row("a radius", [](World& w) { w.light->SetRadius(0.3f); });
        row("no shadows of a lamp", [](World& w) { w.light->SetCastsShadows(false); });
        row("the default material", [](World& w) { w.scene.GetDefaultMaterial()->SetName("a"), w.scene.GetDefaultMaterial()->SetOpacity(0.1f); });
        row("materials of one name", [](World& w) { w.scene.CreateMaterial("oak"); });
        row("a name that XML can't hold", [](World& w) { w.material->SetName(QChar(1)), w.material->SetFlatShaded(true); });
        row("others' parameters", [](World& w) { w.material->SetParameter("vendor:key", "<&\"'\n\t \\"); });
        row("a camera", [](World& w) { w.scene.GetCamera()->SetState({{1, 2, 3}, 4.4f, 50, -6, 70, 0.8f}); });
        row("a locked camera", [](World& w) { w.scene.GetCamera()->SetLocked(true); });
        row("no ground", [](World& w) { w.scene.SetGroundPlaneEnabled(false); });
        row("no shadows on it", [](World& w) { w.scene.SetGroundShadowEnabled(false); });
        row("a mode of the background", [](World& w) { w.scene.SetBackgroundMode(eBackgroundImage); });
        row("its colour", [](World& w) { w.scene.SetBackgroundColor({0.1f, 0.2f, 0.3f, 0.4f}); });
        row("its image", [](World& w) { w.scene.SetBackgroundImage(&w.paint); });
        row("an image in two slots", [](World& w) { w.material->SetImage(eMaterialSlotBump, &w.paint), w.material->SetImage(eMaterialSlotDiffuse, &w.paint); });
        row("an image whose file is gone", [](World& w) { w.paint.SetFileName("/gone.png"), w.material->SetImageFile(eMaterialSlotBump, "*0"), w.material->SetImage(eMaterialSlotBump, &w.paint); });
        row("the sky", [](World& w) { w.scene.SetAmbientLight({0.5f, 0.6f, 0.7f, 1}); });
        row("where the sun is", [](World& w) { w.scene.SetSunDirection({0.3f, -1, 2}); });
        row("its light", [](World& w) { w.scene.SetSunLight({2, 1, 0, 1}); });
        row("the unit", [](World& w) { w.scene.SetMillimetersPerUnit(25.4f); });
        row("a size", [](World& w) { w.scene.SetRenderSize({640, 481}); });
        row("the numbering of objects", [](World& w) { w.scene.setProperty("object-creator-next-index", -7); });
    }

    void ItComesBack()
    {
        Images images;
        {
            QFETCH(Deed, change);
            World world, other;
            const QByteArray before = Content(world.scene);
            change(world);
            QVERIFY(Content(world.scene) != before);
            QCOMPARE(Save(world.scene, m_file), QStringList());
            QSignalSpy begins(&other.scene, &IScene::beforeSceneUpdate), ends(&other.scene, &IScene::afterSceneUpdate);
            QCOMPARE(Load(QDir().relativeFilePath(m_file), other.scene, &images), QStringList());
            QVERIFY(begins.size() == 1 && ends.size() == 1 && other.scene.GetFileName() == m_file && !other.scene.IsModified());
            QCOMPARE(Load(m_file, other.scene, &images), QStringList()); // gives back what the first one has asked for
            QCOMPARE(Content(other.scene), Content(world.scene));
            QVERIFY(images.held.empty() || (images.held.size() == 1 && images.held.begin()->second.second == 1));
            QCOMPARE(Load(m_file, other.scene).isEmpty(), images.held.empty()); // nobody to read them, which is told
        }
        QVERIFY(images.held.empty());
    }

    void ARealModelThroughTheLookUp()
    {
        const Registry registry;
        Scene scene, other;
        const auto reader = registry.host.CreateService<IModelLoader>(registry.host.ServicesOf<IModelLoader>().at(0).id);
        scene.AddModel(ReadModel(*reader, "/usr/share/assimp/models/X/Testwuson.X"), scene.GetRoot());
        scene.SetAnimation(0, 300);
        scene.GetSnapshotManager()->Take("kept");
        const auto saver = CreateSceneSaver(&registry, "b.Lumenta");
        saver->Save(m_file, scene);
        QCOMPARE(saver->GetWarnings().size(), 2); // animations, snapshots
        CreateSceneLoader(&registry, m_file)->Load(m_file, other);
        const auto* const mesh = qobject_cast<IMeshNode*>(other.GetRoot()->GetChildren()[0]->GetChildren()[0])->GetMeshes()[0];
        const auto* const original = qobject_cast<IMeshNode*>(scene.GetRoot()->GetChildren()[0]->GetChildren()[0])->GetMeshes()[0];
        QVERIFY(mesh->GetIndices() == original->GetIndices() && mesh->GetBBox() == original->GetBBox());
        QCOMPARE(CollectAllChildren({other.GetRoot()}).size(), CollectAllChildren({scene.GetRoot()}).size());
    }

    void TexturesAreFound_data()
    {
        QTest::addColumn<QString>("named"); // %1 is the folder of the document
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("isFound");
        QTest::newRow("by an absolute path into the folder") << "%1/tex/wood.png" << "tex/wood.png" << true;
        QTest::newRow("relative to the document before") << "../old/tex/wood.png" << "tex/wood.png" << true;
        QTest::newRow("written on Windows, relative") << "tex\\wood.png" << "tex/wood.png" << true;
        QTest::newRow("written on Windows, beside") << "C:\\Docs\\tex\\beside.png" << "beside.png" << true;
        QTest::newRow("elsewhere, so absolute") << "%1/../else.png" << "%1/../else.png" << true;
        QTest::newRow("missing, on a drive") << "C:\\Docs\\gone.png" << "C:\\Docs\\gone.png" << false;
        QTest::newRow("missing") << "tex\\gone.png" << "tex/gone.png" << false;
    }

    void TexturesAreFound()
    {
        QFETCH(QString, named);
        QFETCH(QString, stored);
        QFETCH(bool, isFound);
        const QTemporaryDir temporary;
        const QString top = QFileInfo(temporary.path()).canonicalFilePath(), old = top + "/old";
        QVERIFY(QDir(top).mkpath("old/tex"));
        World world, other;
        for (const char* const name : {"/old/tex/wood.png", "/old/beside.png", "/else.png"}) world.paint.ToQImage().save(top + name);
        Images images;
        world.scene.SetFileName(old + "/before.lumenta");
        world.material->SetImageFile(eMaterialSlotBump, named.replace("%1", old));
        QCOMPARE(Save(world.scene, old + "/a.lumenta"), QStringList());
        QVERIFY(QDir(top).rename("old", "new"));
        const QString warning = "Material 'oak': the image '" + stored + "' was not found from '" + top + "/new'";
        QCOMPARE(Load(top + "/new/a.lumenta", other.scene, &images).join(""), isFound ? QString() : warning);
        const IMaterial& material = *other.scene.FindMaterial("oak");
        QCOMPARE(material.GetImageFile(eMaterialSlotBump), QDir::cleanPath(stored.replace("%1", old)));
        QCOMPARE(material.GetImage(eMaterialSlotBump) != nullptr, isFound);
        Save(other.scene, top + "/b.lumenta"); // and its textures stay
        Load(top + "/b.lumenta", world.scene, &images);
        QCOMPARE(world.scene.FindMaterial("oak")->GetImage(eMaterialSlotBump) != nullptr, isFound);
    }

    /// Why a file can't be opened; the scene that was to receive it stays as it was.
    QString Refusal(const QByteArray& bytes)
    {
        World open;
        open.scene.SetModified(false);
        QSignalSpy told(&open.scene, &IScene::sceneChanged), batches(&open.scene, &IScene::beforeSceneUpdate);
        SaveDataToFile(m_file, bytes);
        const QString text = Text<LoadingException>([&] { Load(m_file, open.scene); }), start = "'" + m_file + "' can't be opened: ";
        const bool isAsBefore = told.isEmpty() && batches.isEmpty() && Content(open.scene) == Content(World().scene);
        return isAsBefore && text.startsWith(start) ? text.mid(start.size()) : "something else: " + text;
    }

    void DamageIsNoticed()
    {
        const QByteArray whole = Content(Scene());
        for (int i = 0; i < whole.size(); ++i) {
            QByteArray flipped = whole;
            flipped[i] = char(flipped[i] ^ (1 << i % 8));
            QVERIFY2(Refusal(flipped).startsWith("it ") && Refusal(whole.left(i)).startsWith("it "), qPrintable(QString::number(i)));
        }
        QCOMPARE(Refusal(whole + '\0'), QString("it is damaged: 1 bytes follow its end"));
        QVERIFY(!SceneFileLoader(nullptr).CanLoad(m_folder.path()));
    }

    void StrangersAreNotTrusted_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("error");
        const QByteArray whole = Content(World().scene), body = whole.mid(52);
        QCOMPARE(Framed(body), whole);
        const auto raw = [](const char* name, const QByteArray& bytes, const char* error) { QTest::newRow(name) << bytes << error; };
        const auto hex = [&](const char* name, const char* digits, const char* error) { raw(name, Framed(QByteArray::fromHex(digits)), error); };
        const auto row = [&](const char* name, const char* path, const QCborValue& value, const char* error) {
            raw(name, Framed(With(QCborValue::fromCbor(body), QString(path).split('.'), value).toCbor()), error);
        };
        raw("a newer version", QByteArray(whole).replace(8, 1, "\3"), "it was written by a newer version (format 3; this program reads up to 1)");
        raw("another file", "Hello, world", "it is no Lumenta document");
        raw("line ends turned", QByteArray(whole).replace("\r\n\x1a", "\n\x1a"), "it is damaged, as if it had been transferred as a text");
        raw("cut", Framed("1234567").chopped(3), "it is cut short: 4 of 7 bytes follow its header");
        raw("a bit", QByteArray(whole).replace(100, 1, "\xff"), "it is damaged: its checksum does not fit");
        raw("more than a document", Framed(body + '\0'), "it holds more than a document");
        raw("lists in lists", Framed(QByteArray::fromHex("a166696d61676573") + QByteArray(1000000, char(0x81))), "images[0]: expected a byte string");
        hex("nothing in it", "", "this is no CBOR: Unexpected end of input data (more bytes needed)");
        hex("a claim of 2^63 fields", "bb8000000000000000", "this is no CBOR: Internal limitation: data set too large");
        hex("a claim of 2^40 bytes", "a166696d61676573815b0000010000000000", "images[0]: it is longer than the document");
        hex("a list without end", "a166696d616765739f", "images: its length is not told in advance");
        hex("a field twice", "a266696d616765738066696d6167657380", "there are two fields 'images'");
        row("a field too many", "camera.more", 1, "camera: there is an unknown field 'more'");
        row("a field missing", "nodes.2.name", {}, "nodes[2]: there is no field 'name'");
        row("a text for a number", "camera.pitch", "1", "camera.pitch: expected a floating-point number");
        row("a number too large", "camera.pitch", 1e300, "camera.pitch: expected a number of single precision");
        row("a node before its parent", "nodes.2.parent", 2, "nodes[2]: this node has no place in the tree");
        row("a second root", "nodes.2.parent", {}, "nodes[2]: this node has no place in the tree");
        row("an index below 0", "nodes.2.parent", std::numeric_limits<qint64>::min(), "nodes[2].parent: expected an integer from 0 to 2147483647");
        row("no root", "nodes", QCborArray{}, "nodes: there is no root");
        row("half a matrix", "nodes.2.matrix", QCborValue(QCborTag(85), QByteArray(32, 0)), "nodes[2].matrix: 32 bytes are no whole number of these");
        row("numbers from the other end", "nodes.2.matrix", QCborValue(QCborTag(81), QByteArray(64, 0)), "nodes[2].matrix: expected an array of such numbers");
        row("no meshes", "nodes.2.mesh.meshes", QCborArray{}, "nodes[2].mesh: there are no meshes");
        row("an index too high", "nodes.2.mesh.meshes.0.indices", QCborValue(QCborTag(70), QByteArray(12, 3)), "nodes[2].mesh.meshes[0]: the indices are no triangles of the vertices");
        row("no such material", "nodes.2.mesh.meshes.0.material", 99, "nodes[2]: a material is referred to that is not there");
        row("no such image", "materials.1.images", QCborMap{{"bumpTexture", 0}}, "materials[1]: an image is referred to that is not there");
        row("no material", "materials.1.xml", "<oak/>", "materials[1].xml: this is no material: Invalid parameter 'xml' passed to method 'ReadMaterial':\nInvalid material format: bad root node");
        row("no default material", "materials", QCborArray{}, "materials: there is no default material");
        row("no length", "scene.millimetersPerUnit", -1.5, "scene.millimetersPerUnit: expected a length above 0");
        row("a flat picture", "scene.renderHeight", 0, "scene.renderHeight: expected an integer from 1 to 2147483647");
    }

    void StrangersAreNotTrusted()
    {
        QFETCH(QByteArray, bytes);
        QTEST(Refusal(bytes), "error");
    }

    void DeepTreesNeedNoStack()
    {
        const std::unique_ptr<QThread> thread(QThread::create([this] {
            Scene scene, other;
            INode* pNode = scene.GetRoot();
            for (int i = 0; i < 100000; ++i) pNode = pNode->CreateGroup(QString::number(i));
            QCOMPARE(Text<Exception>([&] { Save(scene, m_file), Load(m_file, other); }), QString("nothing was thrown"));
            QCOMPARE(Content(other), Content(scene));
        }));
        thread->setStackSize(128 * 1024);
        thread->start();
        QVERIFY(thread->wait());
    }

    void WhatCantBeSavedKeepsTheFile()
    {
        World world;
        Save(world.scene, m_file);
        const QByteArray before = ReadAllFile(m_file);
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlimit small{100, limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small); // as if the disk were full
        const QString full = Text<FileException>([&] { Save(world.scene, m_file); });
        setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, oldHandler);
        QCOMPARE(full, "Can't write the data\nFile: " + m_file);
        for (const QString nowhere : {"/no/where", "/tmp"}) {
            QCOMPARE(Text<FileException>([&] { Save(world.scene, nowhere); }), "Can't open the file\nFile: " + nowhere);
            QCOMPARE(Text<FileException>([&] { Load(nowhere, world.scene); }), "Can't open the file\nFile: " + nowhere);
        }
        world.material->SetParameter("odd", QString(QChar(0xffff)));
        QCOMPARE(Text<SavingException>([&] { Save(world.scene, m_file); }),
                 QString("Material 'oak' can't be saved: its parameter 'odd' holds characters that can't stand in XML"));
        QCOMPARE(ReadAllFile(m_file), before);
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files), QStringList(QFileInfo(m_file).fileName()));
        world.material->SetParameter("odd", QVariantList());
        QCOMPARE(Save(world.scene, m_file), QStringList("Material 'oak': 'odd' is left out, since it is nothing that a text can tell"));
    }
};

QTEST_GUILESS_MAIN(SceneFileTest)
#include "scene_file_test.moc"
