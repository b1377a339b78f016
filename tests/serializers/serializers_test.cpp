#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/ISceneLoader.h"
#include "lumenta/interfaces/ISceneSaver.h"
#include "lumenta/platform/ISerializersRegistry.h"
#include "lumenta/serializers/ImageHelpers.h"
#include "lumenta/serializers/SceneSerializers.h"
#include "tests/foundation/Exact.h"
#include "tests/serializers/ServiceStandIns.h"

namespace {

using StandIn::No;

// clang-format off: nothing to be read here
struct Loader final : ISceneLoader {
    bool CanLoad(const QString&) const override { No(); } void Load(const QString&, IScene&) override { No(); }
    QStringList GetWarnings() const override { No(); }
};

struct Saver final : ISceneSaver {
    void Save(const QString&, const IScene&) override { No(); } QStringList GetWarnings() const override { No(); }
};
// clang-format on

/// Makes nothing for the id "no". Notes what it is asked for.
struct Registry final : ISerializersRegistry {
    QList<SerializerInfo> loaders{{"gz", "packed", "GZ"}, {"", "mesh", "obj"}, {"", "bare", ""},
                                  {"", "later", "OBJ"}, {"", "no", "nil"}};
    QList<SerializerInfo> savers{{"gz", "no", "nil"}, {"", "text", "hidden"}, {"", "wide", QChar(0xe4)}};
    mutable QStringList asked;

    QList<SerializerInfo> GetSavers() const override { return asked << QStringLiteral("savers"), savers; }
    QList<SerializerInfo> GetLoaders() const override { return asked << QStringLiteral("loaders"), loaders; }
    QList<QString> GetOpenableExtensions() const override { No(); }
    ISceneLoader* CreateLoader(const QString& id) const override
    {
        return asked << id, id == "no" ? nullptr : new Loader;
    }
    ISceneSaver* CreateSaver(const QString& id) const override { return asked << id, id == "no" ? nullptr : new Saver; }
};

/// What a registry is asked for when a serializer is looked up, then made; and what
/// comes back.
template <typename Can, typename Create>
QString Looked(const QString& fileName, Can can, Create create)
{
    const Registry registry;
    QString answer = can(&registry, fileName) ? ": yes, " : ": no, ";
    try {
        answer += create(&registry, fileName) ? "made" : "null";
    } catch (const LoadingException& error) {
        answer += error.GetErrorText();
    }
    return registry.asked.join(' ') + answer;
}

QString Loaded(const QString& fileName) { return Looked(fileName, CanLoadScene, CreateSceneLoader); }

QString Saved(const QString& fileName) { return Looked(fileName, CanSaveScene, CreateSceneSaver); }

} // namespace

class SerializersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Lookup_data()
    {
        AnswerColumns();
        Row("the first of two, in any case", Loaded("/a/Model.Obj"), "loaders loaders mesh: yes, made");
        Row("only what follows the last dot", Loaded("scene.tar.gz"), "loaders loaders packed: yes, made");
        Row("the dot of a folder", Loaded("dir.obj/scene"), "loaders loaders bare: yes, made");
        Row("nothing after the dot", Loaded("/a/obj."), "loaders loaders bare: yes, made");
        Row("none", Loaded("/a.obj/b.c"), "loaders loaders: no, Can't find scene loader for file 'b.c'");
        Row("a hidden file", Saved("/a/.hidden"), "savers savers text: yes, made");
        Row("case beyond Latin", Saved(QStringLiteral("a.") + QChar(0xc4)), "savers savers wide: yes, made");
        Row("a loader that can't be made", Loaded("a.NIL"), "loaders loaders no: yes, null");
        Row("a saver that can't be made", Saved("a.NIL"), "savers savers no: yes, null");
        Row("loaders don't save", Saved("/b%1.obj"), "savers savers: no, Can't find scene saver for file 'b%1.obj'");
    }

    void Lookup() { CompareAnswer(); }

    void TheLastReferenceDeletes()
    {
        const Registry registry;
        QSharedPointer<QObject> loader = CreateSceneLoader(&registry, "a.obj");
        const QPointer<QObject> guard = loader.data();
        const QWeakPointer<QObject> weak = loader;
        QVERIFY(guard && weak.toStrongRef() == loader);
        loader.reset();
        QVERIFY(!guard && !weak.toStrongRef());
    }

    void ImagesGoByTheSuffix()
    {
        StandIn::ImageManager manager;
        manager.loaders = {{"", "", {"png", ""}}};
        QVERIFY(CanLoadImage("dir.jpg/a", &manager) && !CanLoadImage("a.jpg", &manager));
        manager.savers = {{"", "first ", "png"}, {"", "later ", "PNG"}};
        QCOMPARE(CreateImageSaverByFilename(&manager, "/a/b.Png"), manager.saver);
        QCOMPARE(manager.asked, QStringList("first png"));
        manager.saver = nullptr;
        QVERIFY(!CreateImageSaverByFilename(&manager, "a.png")); // the later one is not tried
        QCOMPARE(manager.asked.mid(1), QStringList("first png"));
        try {
            CreateImageSaverByFilename(&manager, "/a.png/b.%2c");
            QFAIL("nothing was thrown");
        } catch (const ImageFormatException& error) { // in which the suffix is filled in before the name
            const QString name = "/a.png/b.%2c", text = "Can't find saving plugin for extension '%1c'\n%2%1";
            QCOMPARE(error.GetErrorText(), text.arg(name, "File name to save: "));
        }
    }

    void ImagesAreFoundFromTheBaseFolder()
    {
        QTemporaryDir folder;
        const QString there = QFileInfo(folder.path()).canonicalFilePath() + "/a.png";
        QVERIFY(QFile(there).open(QIODevice::WriteOnly));
        StandIn::ImageManager manager;
        QString base = "/nowhere", resolved = "before";
        ImageLoadingHelper helper(&manager, base);
        QVERIFY(!helper.LoadImage("", resolved) && resolved == "before" && manager.asked.isEmpty());
        QVERIFY(helper.LoadImage("gone/a.png", resolved) == manager.image && resolved == "/nowhere/gone/a.png");
        base = folder.path();
        QVERIFY(helper.LoadImage("gone/a.png", resolved) && resolved == there);
        QString both = "gone/a.png"; // the stored name may be the one that is replaced
        QVERIFY(helper.LoadImage(both, both) && both == there && manager.asked.takeLast() == there);
        QCOMPARE(manager.asked, QStringList({"/nowhere/gone/a.png", there}));
    }
};

QTEST_APPLESS_MAIN(SerializersTest)
#include "serializers_test.moc"
