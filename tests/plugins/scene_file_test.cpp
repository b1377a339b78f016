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
#include <sys/resource.h>

using namespace Host;

// Assimp keeps some memory of a file that it has read.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:libassimp";
}

namespace {

constexpr int kHeaderSize = 52;

/// Holds each image by its name, as long as somebody has asked for it and not given it back.
struct Images final : IImageManager {
    struct Held {
        std::unique_ptr<Image> image;
        int nAsked = 0;
    };
    std::map<QString, Held> held;

    IImage* Hold(const QString& name, const QImage& pixels)
    {
        if (pixels.isNull()) throw ImageFormatException("No picture: " + name);
        Held& named = held[name];
        if (!named.image) named.image = std::make_unique<Image>(pixels, name);
        return ++named.nAsked, named.image.get();
    }
    IImage* DecodeImage(const QByteArray& data, const QString& name) override { return Hold(name, QImage::fromData(data)); }
    IImage* LoadImageFile(const QString& file) override { return QFile::exists(file) ? Hold(file, QImage(file)) : nullptr; }
    void ReleaseImage(IImage* image) override
    {
        for (auto it = held.begin(); it != held.end(); it = it->second.nAsked ? std::next(it) : held.erase(it))
            it->second.nAsked -= it->second.image.get() == image;
    }
    // clang-format off: nothing to be read here
    IImage* CreateImage(const QSize&) override { StandIn::No(); } IImage* FindImage(const QString&) const override { StandIn::No(); }
    std::vector<ImageSaverInfo> GetSaverFormats() const override { StandIn::No(); } QStringList GetRecentFiles() const override { StandIn::No(); }
    std::vector<ImageLoaderInfo> GetLoaderFormats() const override { StandIn::No(); } bool ReloadImage(IImage*) override { StandIn::No(); }
    IImageSaver* CreateSaver(const ImageSaverInfo&) const override { StandIn::No(); }
    // clang-format on
};

QImage Pixels(QRgb color)
{
    QImage image(3, 2, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

QString TextOf(const IImage* pImage) { return pImage ? QString::number(pImage->ToQImage().pixel(0, 0), 16) : "-"; }

template <typename Record>
QString BytesOf(const std::vector<Record>& records)
{
    const QByteArray bytes(reinterpret_cast<const char*>(records.data()), int(records.size() * sizeof(Record)));
    return QString::number(bytes.size()) + ':' + QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex();
}

QString TextOf(INode* pNode, const IScene& scene)
{
    QStringList text{QString::number(pNode->GetType()), pNode->GetName(), Floats(pNode->GetMatrix()),
                     pNode->IsVisible() ? "shown" : "hidden", pNode->GetParent() ? pNode->GetParent()->GetName() : "none"};
    if (const auto* light = qobject_cast<ILightNode*>(pNode))
        text << Floats(light->GetColor()) << Floats(light->GetIntensity()) << Floats(light->GetRadius())
             << (light->CastsShadows() ? "casts" : "casts none");
    const auto* const node = qobject_cast<IMeshNode*>(pNode);
    for (size_t i = 0; node && i < node->GetMeshes().size(); ++i) {
        const IMesh& mesh = *node->GetMeshes()[i];
        const std::vector<IMaterial*>& all = scene.GetMaterials();
        const auto place = std::find(all.begin(), all.end(), node->GetMaterial(i)) - all.begin();
        text << mesh.GetName() << BytesOf(mesh.GetVertices()) << BytesOf(mesh.GetIndices()) << QString::number(place);
    }
    return text.join(" | ") + (node && node->IsExcludedFromTracing() ? " excluded" : "");
}

/// All that a document keeps.
QStringList Content(const IScene& scene)
{
    const IFreeCamera& camera = *scene.GetCamera();
    QStringList lines{Floats(camera.GetState()), camera.IsLocked() ? "locked" : "free", Floats(scene.GetAmbientLight())};
    lines << Floats(scene.GetSunDirection()) << Floats(scene.GetSunLight()) << Floats(scene.GetBackgroundColor())
          << Floats(scene.GetMillimetersPerUnit()) << TextOf(scene.GetBackgroundImage());
    for (const int number : {int(scene.IsGroundPlaneEnabled()), int(scene.IsGroundShadowEnabled()), int(scene.GetBackgroundMode()),
                             scene.GetRenderSize().width(), scene.GetRenderSize().height()})
        lines << QString::number(number);
    lines << scene.property("object-creator-next-index").toString();
    for (const IMaterial* material : scene.GetMaterials()) {
        const QVariantMap parameters = material->GetParameters();
        lines << "= " + material->GetName();
        for (auto it = parameters.begin(); it != parameters.end(); ++it) lines << it.key() + '=' + it->toString();
        for (int i = 0; i < eMaterialSlotCount; ++i) lines << TextOf(material->GetImage(eMaterialSlot(i)));
    }
    for (INode* pNode : CollectAllChildren({scene.GetRoot()})) lines << TextOf(pNode, scene);
    return lines;
}

void Fill(Scene& scene)
{
    scene.GetRoot()->SetName("root");
    scene.GetRoot()->SetVisible(false);
    INode* const group = scene.GetRoot()->CreateGroup(QString::fromUtf8("Größe \xf0\x9f\x98\x80\n"));
    Matrix matrix;
    matrix.m[1] = -0.0f; // and equal to the identity still
    group->SetMatrix(matrix);
    INode* const odd = group->CreateGroup(QString(QChar(0xd800)) + QChar(0) + "half a pair");
    matrix.m[5] = kNaN;
    odd->SetMatrix(matrix);
    std::vector<MeshVertex> vertices(3, MeshVertex{{1, 2, -0.0f}, {kNaN, 0, 0}, {}, {}, {0.5f, kInfinity}, 1});
    std::vector<unsigned int> indices{0, 1, 2, 2, 1, 0};
    INode* const mesh = scene.AddMesh(group, "meshes", vertices, indices);
    mesh->SetName("renamed");
    qobject_cast<IMeshNode*>(mesh)->SetExcludedFromTracing(true);
    const std::unique_ptr<IMeshNodeBuilder> builder(scene.CreateMeshBuilder(mesh));
    builder->BeginModel("", 2);
    builder->AddMeshNode("two", vertices, indices, "", {});
    builder->AddMeshNode("two", vertices, indices, "oak", {{"opacity", "0.25"}, {"vendor:key", "<&\"'\n\t"}});
    builder->EndModel();
    scene.AddMesh(odd, "", {}, {})->SetVisible(false);
    INode* const lamp = mesh->CreateLight("lamp");
    auto* const light = qobject_cast<ILightNode*>(lamp);
    light->SetColor({0.1f, 2, 3, 4}), light->SetIntensity(5), light->SetRadius(0.3f), light->SetCastsShadows(false);
    scene.GetDefaultMaterial()->SetName("not Default");
    scene.CreateMaterial(QString("XML has no ") + QChar(1))->SetShininess(7.7f);
    qobject_cast<IMeshNode*>(mesh)->SetMaterial(0, scene.CreateMaterial("not Default"));
    scene.GetCamera()->SetState({{1, 2, 3}, 4.4f, 50, -6, 70, 0.8f});
    scene.GetCamera()->SetLocked(true);
    scene.SetGroundPlaneEnabled(false), scene.SetGroundShadowEnabled(false);
    scene.SetBackgroundMode(eBackgroundColor), scene.SetBackgroundColor({0.1f, 0.2f, 0.3f, 0.4f});
    scene.SetAmbientLight({0.5f, 0.6f, 0.7f, 1}), scene.SetSunDirection({0.3f, -1, 2}), scene.SetSunLight({2, 1, 0, 1});
    scene.SetMillimetersPerUnit(25.4f), scene.SetRenderSize({640, 481});
    scene.setProperty("object-creator-next-index", -7);
}

QStringList Save(const IScene& scene, const QString& file)
{
    SceneFileSaver saver;
    saver.Save(file, scene);
    return saver.GetWarnings();
}

QStringList Load(const QString& file, IScene& scene, IImageManager* pImages = nullptr)
{
    SceneFileLoader loader(pImages);
    loader.Load(file, scene);
    return loader.GetWarnings();
}

template <typename Action>
QString ErrorOf(const Action& action)
{
    try {
        action();
        return "nothing was thrown";
    } catch (const LoadingException& error) {
        return "loading: " + error.GetErrorText();
    } catch (const SavingException& error) {
        return "saving: " + error.GetErrorText();
    } catch (const FileException& error) {
        return "file: " + error.GetErrorText();
    }
}

/// A file of these bytes, with the checksum that belongs to it.
QByteArray Framed(const QByteArray& body)
{
    QByteArray header("\x8fLUM\r\n\x1a\n\1\0\0\0", 12);
    for (int i = 0; i < 64; i += 8) header += char(quint64(body.size()) >> i & 0xff);
    return header + QCryptographicHash::hash(header + body, QCryptographicHash::Sha256) + body;
}

QCborValue With(const QCborValue& in, QStringList path, const QCborValue& value)
{
    if (path.isEmpty()) return value;
    const QString key = path.takeFirst();
    QCborMap map = in.toMap();
    QCborArray array = in.toArray();
    if (in.isArray()) return array[key.toInt()] = With(array.at(key.toInt()), path, value), QCborValue(array);
    const QCborValue changed = With(map.value(key), path, value);
    changed.isUndefined() ? void(map.remove(key)) : void(map[key] = changed);
    return map;
}

struct Registry final : ISerializersRegistry {
    PluginHost& host;
    explicit Registry(PluginHost& plugins) : host(plugins) {}
    template <typename Contract>
    QList<SerializerInfo> Infos() const
    {
        QList<SerializerInfo> infos;
        for (const PluginService& service : host.ServicesOf<Contract>()) infos += {service.title, service.id, service.extension};
        return infos;
    }
    QList<SerializerInfo> GetSavers() const override { return Infos<ISceneSaver>(); }
    QList<SerializerInfo> GetLoaders() const override { return Infos<ISceneLoader>(); }
    QList<QString> GetOpenableExtensions() const override { StandIn::No(); }
    ISceneLoader* CreateLoader(const QString& id) const override { return host.CreateService<ISceneLoader>(id).release(); }
    ISceneSaver* CreateSaver(const QString& id) const override { return host.CreateService<ISceneSaver>(id).release(); }
};

} // namespace

class SceneFileTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    QString m_file = QFileInfo(m_folder.path()).canonicalFilePath() + "/a.lumenta";

private Q_SLOTS:
    void AllComesBack()
    {
        Scene scene, other;
        Fill(scene);
        const QString again = m_file + ".again";
        QCOMPARE(Save(scene, m_file) + Save(scene, again), QStringList());
        QCOMPARE(ReadAllFile(again), ReadAllFile(m_file));
        QVERIFY(SceneFileLoader(nullptr).CanLoad(m_file) && !SceneFileLoader(nullptr).CanLoad(m_folder.path()));

        Fill(other); // what it held goes
        QSignalSpy before(&other, &IScene::beforeSceneUpdate), after(&other, &IScene::afterSceneUpdate);
        QCOMPARE(Load(QDir().relativeFilePath(m_file), other), QStringList());
        QCOMPARE(Content(other), Content(scene));
        QVERIFY(before.size() == 1 && after.size() == 1 && other.GetFileName() == m_file && !other.IsModified());
        QCOMPARE(Save(other, m_file), QStringList());
        QCOMPARE(ReadAllFile(m_file), ReadAllFile(again));
    }

    void ARealModelThroughTheLookUp()
    {
        static ApplicationContext context;
        PluginHost host(context);
        host.LoadFolder(LUMENTA_PLUGINS);
        const Registry registry(host);

        Scene scene, other;
        const auto reader = host.CreateService<IModelLoader>(host.ServicesOf<IModelLoader>().at(0).id);
        scene.AddModel(ReadModel(*reader, "/usr/share/assimp/models/X/Testwuson.X"), scene.GetRoot());
        scene.SetAnimation(0, 300);
        scene.GetSnapshotManager()->Take("kept");
        const auto saver = CreateSceneSaver(&registry, "b.Lumenta");
        saver->Save(m_file, scene);
        QCOMPARE(saver->GetWarnings().size(), 2); // animations, snapshots
        CreateSceneLoader(&registry, m_file)->Load(m_file, other);
        QCOMPARE(Content(other), Content(scene));
    }

    void TexturesAreFound_data()
    {
        QTest::addColumn<QString>("named"); // %1 is the folder of the document
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("movesAlong");
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
        QFETCH(bool, movesAlong);
        const QTemporaryDir temporary;
        const QString top = QFileInfo(temporary.path()).canonicalFilePath(), old = top + "/old";
        QVERIFY(QDir(top).mkpath("old/tex"));
        for (const QString& name : {old + "/tex/wood.png", old + "/beside.png", top + "/else.png"})
            QVERIFY(Pixels(0xff102030).save(name));
        Scene scene, other;
        scene.SetFileName(old + "/before.lumenta");
        IMaterial* const material = scene.CreateMaterial("m");
        material->SetImageFile(eMaterialSlotBump, named.replace("%1", old));
        QCOMPARE(Save(scene, old + "/a.lumenta"), QStringList());
        QVERIFY(QDir(top).rename("old", "new"));

        Images images;
        const QStringList warnings = Load(top + "/new/a.lumenta", other, &images);
        const IMaterial* const opened = other.FindMaterial("m");
        QCOMPARE(opened->GetImageFile(eMaterialSlotBump), QDir::cleanPath(stored.replace("%1", old)));
        QCOMPARE(TextOf(opened->GetImage(eMaterialSlotBump)), QString(movesAlong ? "ff102030" : "-"));
        QCOMPARE(warnings.join(""), movesAlong ? QString()
                     : "Material 'm': the image '" + stored + "' was not found from '" + top + "/new'");
        QCOMPARE(Save(other, top + "/b.lumenta"), QStringList()); // from a subfolder now
        Load(top + "/b.lumenta", scene, &images);
        QCOMPARE(scene.FindMaterial("m")->GetImage(eMaterialSlotBump) != nullptr, movesAlong);
    }

    void ImagesWithoutFilesAreEmbedded()
    {
        Images images;
        {
            Scene scene, other;
            Image paint(Pixels(0x80102030)), back(Pixels(0xff00ff00), "/gone.png");
            IMaterial* const material = scene.CreateMaterial("m");
            for (const eMaterialSlot slot : {eMaterialSlotDiffuse, eMaterialSlotOpacity}) {
                material->SetImageFile(slot, "*0");
                material->SetImage(slot, &paint);
            }
            scene.SetBackgroundImage(&back);
            QCOMPARE(Save(scene, m_file), QStringList());
            QCOMPARE(Load(m_file, other, &images) + Load(m_file, other, &images), QStringList());
            QCOMPARE(Content(other), Content(scene));
            QCOMPARE(images.held.size(), size_t(2));
            for (const auto& [name, held] : images.held) QCOMPARE(held.nAsked, 1);
            QCOMPARE(Save(other, m_file), QStringList()); // still without files
            QCOMPARE(Load(m_file, other).size(), 1);      // nobody to read them
            QVERIFY(images.held.empty());
            Load(m_file, other, &images);
            QCOMPARE(Content(other), Content(scene));
        }
        QVERIFY(images.held.empty()); // they went with the scene
    }

    void DamageIsNoticed()
    {
        Scene scene, open;
        scene.GetRoot()->CreateLight("lamp");
        Save(scene, m_file);
        const QByteArray whole = ReadAllFile(m_file);
        Fill(open);
        const QStringList content = Content(open);
        QSignalSpy told(&open, &IScene::sceneChanged), batches(&open, &IScene::beforeSceneUpdate);
        const auto isRefused = [&](const QByteArray& bytes) {
            SaveDataToFile(m_file, bytes);
            return ErrorOf([&] { Load(m_file, open); }).startsWith("loading: '" + m_file + "' can't be opened: it ");
        };
        for (int i = 0; i < whole.size(); ++i) {
            QByteArray flipped = whole;
            flipped[i] = char(flipped[i] ^ (1 << i % 8));
            QVERIFY2(isRefused(flipped), qPrintable(QString::number(i)));
            QVERIFY2(isRefused(whole.left(i)), qPrintable(QString::number(i)));
        }
        QVERIFY(isRefused(whole + '\0'));
        QCOMPARE(Content(open), content);
        QVERIFY(told.isEmpty() && batches.isEmpty());
    }

    void StrangersAreNotTrusted_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("error");
        Scene scene;
        Fill(scene);
        Save(scene, m_file);
        const QByteArray whole = ReadAllFile(m_file), body = whole.mid(kHeaderSize);
        QCOMPARE(Framed(body), whole);
        const auto raw = [](const char* name, const QByteArray& bytes, const char* error) {
            QTest::newRow(name) << bytes << error;
        };
        const auto row = [&](const char* name, const char* path, const QCborValue& value, const char* error) {
            QCborValue changed = With(QCborValue::fromCbor(body), QString(path).split('.'), value);
            raw(name, Framed(changed.toCbor()), error);
        };
        raw("a newer version", QByteArray(whole).replace(8, 1, "\3"), "it was written by a newer version (format 3; this program reads up to 1)");
        raw("another file", "Hello, world", "it is no Lumenta document");
        raw("line ends turned", QByteArray(whole).replace("\r\n\x1a", "\n\x1a"), "it is damaged, as if it had been transferred as a text");
        raw("cut", whole.left(kHeaderSize + 7), qPrintable(QString("it is cut short: 7 of %1 bytes follow its header").arg(body.size())));
        raw("a bit", QByteArray(whole).replace(100, 1, "\xff"), "it is damaged: its checksum does not fit");
        raw("nothing in it", Framed(""), "this is no CBOR: Unexpected end of input data (more bytes needed)");
        raw("more than a document", Framed(body + '\0'), "it holds more than a document");
        raw("a claim of 2^63 fields", Framed(QByteArray::fromHex("bb8000000000000000")), "this is no CBOR: Internal limitation: data set too large");
        raw("a claim of 2^40 bytes", Framed(QByteArray::fromHex("a166696d61676573815b0000010000000000")), "images[0]: it is longer than the document");
        raw("lists in lists", Framed(QByteArray::fromHex("a166696d61676573") + QByteArray(1000000, char(0x81))), "images[0]: expected a byte string");
        raw("a list without end", Framed(QByteArray::fromHex("a166696d616765739f")), "images: its length is not told in advance");
        raw("text in no UTF-8", Framed(QByteArray::fromHex("a161ff")), "this is no CBOR: Invalid CBOR stream: invalid UTF-8 text string");
        raw("a field twice", Framed(QByteArray::fromHex("a266696d616765738066696d6167657380")), "there are two fields 'images'");
        row("a field too many", "camera.more", 1, "camera: there is an unknown field 'more'");
        row("a field missing", "nodes.2.name", {}, "nodes[2]: there is no field 'name'");
        row("a text for a number", "camera.pitch", "1", "camera.pitch: expected a floating-point number");
        row("a node before its parent", "nodes.2.parent", 2, "nodes[2]: this node has no place in the tree");
        row("a second root", "nodes.2.parent", {}, "nodes[2]: this node has no place in the tree");
        row("-2^64", "nodes.2.parent", QCborValue(std::numeric_limits<qint64>::min()), "nodes[2].parent: expected an integer from 0 to 2147483647");
        row("a root that is a mesh", "nodes.0.mesh", With(QCborMap{{"excluded", false}, {"source", ""}}, {"meshes"}, QCborArray{}), "nodes[0].mesh: there are no meshes");
        row("no root", "nodes", QCborArray{}, "nodes: there is no root");
        row("half a matrix", "nodes.2.matrix", QCborValue(QCborTag(85), QByteArray(32, 0)), "nodes[2].matrix: 32 bytes are no whole number of these");
        row("numbers from the other end", "nodes.2.matrix", QCborValue(QCborTag(81), QByteArray(64, 0)), "nodes[2].matrix: expected an array of such numbers");
        row("an index too high", "nodes.4.mesh.meshes.0.indices", QCborValue(QCborTag(70), QByteArray(12, 3)), "nodes[4].mesh.meshes[0]: the indices are no triangles of the vertices");
        row("no such material", "nodes.4.mesh.meshes.0.material", 99, "nodes[4]: a material is referred to that is not there");
        row("no such image", "materials.1.images", QCborMap{{"bumpTexture", 0}}, "materials[1]: an image is referred to that is not there");
        row("no material", "materials.1.xml", "<oak/>", "materials[1].xml: this is no material: Invalid parameter 'xml' passed to method 'ReadMaterial':\nInvalid material format: bad root node");
        row("no default material", "materials", QCborArray{}, "materials: there is no default material");
        row("no length", "scene.millimetersPerUnit", QCborValue(-1.0), "scene.millimetersPerUnit: expected a length above 0");
        row("a length that is too large", "scene.millimetersPerUnit", 1e300, "scene.millimetersPerUnit: expected a number of single precision");
        row("a flat picture", "scene.renderHeight", 0, "scene.renderHeight: expected an integer from 1 to 2147483647");
    }

    void StrangersAreNotTrusted()
    {
        QFETCH(QByteArray, bytes);
        SaveDataToFile(m_file, bytes);
        Scene open;
        Fill(open);
        const QStringList content = Content(open);
        QFETCH(QString, error);
        QCOMPARE(ErrorOf([&] { Load(m_file, open); }), "loading: '" + m_file + "' can't be opened: " + error);
        QCOMPARE(Content(open), content);
    }

    void DeepTreesNeedNoStack()
    {
        const std::unique_ptr<QThread> thread(QThread::create([this] {
            Scene scene, other;
            INode* pNode = scene.GetRoot();
            for (int i = 0; i < 100000; ++i) pNode = pNode->CreateGroup(QString::number(i));
            QCOMPARE(ErrorOf([&] { Save(scene, m_file), Load(m_file, other); }), QString("nothing was thrown"));
            QCOMPARE(Content(other), Content(scene));
        }));
        thread->setStackSize(128 * 1024);
        thread->start();
        QVERIFY(thread->wait());
    }

    void WhatCantBeSavedKeepsTheFile()
    {
        Scene scene;
        Fill(scene);
        Save(scene, m_file);
        const QByteArray before = ReadAllFile(m_file);
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlimit small{100, limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small); // as if the disk were full
        const QString full = ErrorOf([&] { Save(scene, m_file); });
        setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, oldHandler);
        QCOMPARE(full, "file: Can't write the data\nFile: " + m_file);
        QCOMPARE(ErrorOf([&] { Save(scene, "/no/where.lumenta"); }), QString("file: Can't open the file\nFile: /no/where.lumenta"));
        QCOMPARE(ErrorOf([&] { Load("/no/where.lumenta", scene); }), QString("file: Can't open the file\nFile: /no/where.lumenta"));
        scene.GetMaterials()[2]->SetParameter("odd", QString(QChar(0xffff)));
        QCOMPARE(ErrorOf([&] { Save(scene, m_file); }),
                 QString("saving: Material 'XML has no \1' can't be saved: its parameter 'odd' holds characters that can't stand in XML"));
        QCOMPARE(ReadAllFile(m_file), before);
        QCOMPARE(QDir(m_folder.path()).entryList({"a.lumenta.?*"}, QDir::Files), QStringList("a.lumenta.again"));
        scene.GetMaterials()[2]->SetParameter("odd", QVariantList());
        QCOMPARE(Save(scene, m_file), QStringList("Material 'XML has no \1': 'odd' is left out, since it is nothing that a text can tell"));
    }
};

QTEST_GUILESS_MAIN(SceneFileTest)
#include "scene_file_test.moc"
