// Every place of the library that allocates with `new` fails once. Then nothing
// has leaked, nothing has changed, and with memory back all is as it should be.
// What posing promises beyond that is in skin/memory_test.cpp.

#include "benchmarks/SceneStandIns.h"
#include "lumenta/interfaces/IPlugin.h"
#include "lumenta/interfaces/ISceneLoader.h"
#include "lumenta/interfaces/ISceneSaver.h"
#include "lumenta/interfaces/SignalArguments.h"
#include "lumenta/materials/MaterialMimeData.h"
#include "lumenta/platform/IApplicationContext.h"
#include "lumenta/platform/IDocumentContext.h"
#include "lumenta/platform/IFileSource.h"
#include "lumenta/platform/IModelFormats.h"
#include "lumenta/platform/ISerializersRegistry.h"
#include "lumenta/properties/PropertyWidgetHelper.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "lumenta/scene/Picking.h"
#include "lumenta/serializers/ImageHelpers.h"
#include "lumenta/serializers/SceneSerializers.h"
#include "tests/faults/Allocations.h"
#include "tests/foundation/Exact.h"
#include "tests/serializers/ServiceStandIns.h"

#include <QPluginLoader>

#include <deque>
#include <functional>
#include <memory>

#ifdef __OPTIMIZE__
constexpr bool kIsOptimised = true;
#else
constexpr bool kIsOptimised = false;
#endif

using StandIn::No;
using Vec3 = TVec3<float>;

namespace {

struct Loader final : ISceneLoader {
    // clang-format off
    bool CanLoad(const QString&) const override { No(); } void Load(const QString&, IScene&) override { No(); }
    QStringList GetWarnings() const override { No(); }
    // clang-format on
};

struct Saver final : ISceneSaver {
    void Save(const QString&, const IScene&) override { No(); }
    QStringList GetWarnings() const override { No(); }
};

struct Registry final : ISerializersRegistry {
    const QList<SerializerInfo> infos{{"t", "id", "scene"}};
    QList<SerializerInfo> GetSavers() const override { return infos; }
    QList<SerializerInfo> GetLoaders() const override { return infos; }
    QList<QString> GetOpenableExtensions() const override { No(); }
    ISceneLoader* CreateLoader(const QString&) const override { return new Loader; }
    ISceneSaver* CreateSaver(const QString&) const override { return new Saver; }
};

struct Models final : IModelFormats {
    std::vector<ModelFormatInfo> formats{{"t", "Waves", {"obj", "mtl"}}, {"t", "Scans", {"ply"}}};
    const std::vector<ModelFormatInfo>& GetModelFormats() const override { return formats; }
};

/// What all deeds are done to, and what they leave behind.
struct World final : IApplicationContext, IDocumentContext {
    StandIn::Scene scene;
    std::deque<StandIn::Node> nodes;
    std::vector<INode*> list; ///< All of them, back to front.
    StandIn::Mesh mesh{{{5, -1, -1}, {5, 3, -1}, {5, -1, 3}}};
    mutable StandIn::ImageManager images;
    mutable StandIn::UserInterface ui;
    Models models;
    Registry registry;
    MaterialMimeData dragged{{{"texture", "/wood.png"}}, "wood"};

    // What deeds find.
    std::vector<INode*> found;
    INode* picked = nullptr;
    TBBox<float> box{{-1, -2, -3}, {1, 2, 3}};
    Vec3 point{7, 7, 7};
    QString text = "/old";

    World()
    {
        scene.camera.state.fieldOfView = 90;
        scene.camera.state.frameAspect = 1;
        for (int i = 0; i < 100; ++i) { // two children each, of which one has children
            nodes.emplace_back(eNodeTypeMesh, i < 2 ? &scene.root : &nodes[std::size_t(i / 2 * 2 - 2)]);
            nodes.back().Add(mesh);
            list.insert(list.begin(), &nodes.back());
        }
        images.loaders = {{"t", "Nets", {"png", "mng"}}};
        ui.answer = "/new";
    }

    QString State() const
    {
        QStringList texts{Floats(box), Floats(point), text};
        for (const INode* node : found)
            texts << QString::number(std::find(list.begin(), list.end(), node) - list.begin());
        return texts.join(' ') + (picked ? " a node" : " no node");
    }

    void Opens(const char* kind)
    {
        PropertyWidgetHelper helper(*this, *this);
        const std::unique_ptr<IFileSource> source(helper.CreateFileSource(kind));
        QVERIFY(!source->AcceptsFile("a.txt") && source->ShowOpenDialog(nullptr, text));
    }

    // clang-format off
    const ISerializersRegistry* GetSerializers() const override { return &registry; }
    const IModelFormats* GetModelFormats() const override { return &models; } ILog* GetLog() const override { No(); }
    IImageManager* GetImageManager() const override { return &images; } IScene* GetScene() const override { No(); }
    IUserInterface* GetUserInterface() const override { return &ui; }
    IScriptRunner* GetScriptRunner() const override { No(); } ISettings* GetSettings() const override { No(); }
    // clang-format on
};

using Deed = void (*)(World&);

} // namespace

Q_DECLARE_METATYPE(Deed)

class OutOfMemoryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ChangesNothing_data()
    {
        QTest::addColumn<Deed>("deed");
        const auto row = [](const char* name, Deed deed) { QTest::newRow(name) << deed; };
        row("all that is below", [](World& w) { w.found = CollectAllChildren({&w.scene.root}); });
        row("in the order of the tree",
            [](World& w) { w.found = SortAccordingToTheSceneTree(w.list, &w.scene.root, true); });
        row("one alone", [](World& w) { w.found = SortAccordingToTheSceneTree({w.list[0]}, &w.scene.root, false); });
        row("a list of one", [](World& w) { w.found = MakeListOfNodes(w.list[0]); });
        row("a list of two", [](World& w) { w.found = MakeListOfNodes(w.list[0], w.list[1]); });
        row("a box extended", [](World& w) { UpdateBBoxRecursive(w.box, &w.scene.root, Matrix()); });
        row("a box of its own", [](World& w) { w.box = ComputeNodeBBox(&w.scene.root); });
        row("what is picked", [](World& w) {
            const IMesh* mesh = nullptr;
            FindNodeByScreenPoint({50, 50}, {100, 100}, w.scene, w.picked, mesh);
        });
        row("where a look ends", [](World& w) {
            FindIntersectionByScreenPoint({50, 50}, {100, 100}, w.scene, w.point);
        });
        row("a source of images", [](World& w) { w.Opens("image"); });
        row("a source of models", [](World& w) { w.Opens("model"); });
        row("a loader",
            [](World& w) { w.text = CreateSceneLoader(&w.registry, "a.scene")->metaObject()->className(); });
        row("a saver", [](World& w) { w.text = CreateSceneSaver(&w.registry, "a.scene")->metaObject()->className(); });
        row("what is dragged", [](World& w) { w.text = w.dragged.urls().constFirst().toString(); });
        row("arguments of a signal", [](World& w) {
            RegisterSignalArgumentTypes();
            const std::vector<const INode*> all(w.list.begin(), w.list.end());
            const sSceneModifications told{"title", all, all, all, all, true};
            const int type = qMetaTypeId<sSceneModifications>();
            std::aligned_storage_t<sizeof told, alignof(sSceneModifications)> room;
            const void* const copy = QMetaType::construct(type, &room, &told);
            w.text = static_cast<const sSceneModifications*>(copy)->strTitle;
            QMetaType::destruct(type, &room);
        });
    }

    void ChangesNothing()
    {
        QFETCH(Deed, deed);
        World undisturbed;
        const QString before = undisturbed.State();
        deed(undisturbed);
        QVERIFY(undisturbed.State() != before);

        const long live = Allocations::Live();
        std::unique_ptr<World> world;
        long liveBefore = 0;
        const auto prepare = [&] {
            world = std::make_unique<World>();
            liveBefore = Allocations::Live();
        };
        const long failed = Allocations::FailEach(
            prepare, [&] { deed(*world); },
            [&](bool isThrown) {
                QVERIFY(isThrown);
                QCOMPARE(Allocations::Live(), liveBefore);
                QCOMPARE(world->State(), before);
                deed(*world);
                QCOMPARE(world->State(), undisturbed.State());
            });
        QCOMPARE(world->State(), undisturbed.State());
        world.reset();
        QCOMPARE(Allocations::Live(), live);
        QVERIFY(failed > 0);
        qInfo("%ld allocations have failed", failed);
    }

    /// All of its places but those of posing, and a few that nobody reaches: in lists
    /// of Qt that grow while they are shared, and in vectors that have room already.
    /// Fewer would mean that the library has another `new`, or a row has gone blind.
    void HasReachedTheLibraryAndPlugins()
    {
        // Unoptimised, all lists of one type have one place.
        QVERIFY(Allocations::PlacesFailedIn("/liblumenta-core.so") > (kIsOptimised ? 20 : 5));
#ifdef HOLLOW_PLUGIN
        auto* const plugin = qobject_cast<IPlugin*>(QPluginLoader(HOLLOW_PLUGIN).instance());
        QVERIFY(plugin);
        World world;
        const auto make = [&] { delete plugin->CreateService("IRender", "hollow", world); };
        QCOMPARE(Allocations::FailEach([] {}, make, [](bool isThrown) { QVERIFY(isThrown); }), 1L);
        QCOMPARE(Allocations::PlacesFailedIn(HOLLOW_PLUGIN), 1L);
#endif
    }
};

QTEST_APPLESS_MAIN(OutOfMemoryTest)
#include "out_of_memory_test.moc"
