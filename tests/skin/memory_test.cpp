#include "tests/faults/Allocations.h"
#include "tests/skin/SkinFixtures.h"

#include <QThread>

#include <memory>
#include <tuple>

using namespace SkinAnimation;

namespace {

/// A chain of `count` nodes, each with a skinned triangle and one track.
void FillChain(Scene& scene, int count)
{
    Node* node = nullptr;
    std::vector<NodeTrack> tracks;
    for (int i = 0; i < count; ++i) {
        node = AddNode(scene, "link", node);
        Geometry* const geometry = AddGeometry(*node, "triangle", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, true);
        geometry->vertices[1].weights[0] = 1;
        geometry->normalIndices = geometry->indices;
        node->normalCount = std::uint64_t(3 + i % 5);
        tracks.push_back({node, {Key(0, 0), Key(1, 1)}});
    }
    AddAnimation(scene, std::move(tracks));
}

template <typename Call>
long AllocationsOf(const Call& call)
{
    const long before = Allocations::Count();
    call();
    return Allocations::Count() - before;
}

template <typename Call>
void RunOnSmallStack(const Call& call)
{
    const std::unique_ptr<QThread> thread(QThread::create(call));
    thread->setStackSize(128 * 1024);
    thread->start();
    QVERIFY(thread->wait());
}

} // namespace

class MemoryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void PosingAllocatesOnlyForManyBonesAndVertices()
    {
        // As many bones as the stack takes, one more, and more than so few vertices are prepared for.
        for (const auto& [bones, vertices, expected] : {std::tuple(256, 500, 0L), {257, 500, 1L}, {1000, 3, 0L}}) {
            Scene scene;
            FillChain(scene, bones);
            Geometry& geometry = *scene.root->geometries.front();
            geometry.vertices.resize(std::size_t(vertices), geometry.vertices.front());
            const auto pose = [&] { geometry.UpdateMesh(scene.root, scene.scale, scene.offset, scene.nodes); };
            pose(); // makes room for the posed vertices
            QCOMPARE(AllocationsOf(pose), expected);
            QCOMPARE(AllocationsOf([&] { scene.CalculateAnimation(0, 0.5f); }), 0L);
        }
    }

    void CreateMeshesAllocatesOneBuffer()
    {
        Scene scene;
        FillChain(scene, 101); // of unlike sizes, the largest in between: it serves them all
        RecordingBuilder builder;
        builder.names.reserve(202);
        builder.meshes.reserve(202);
        scene.CreateMeshes(builder);
        QCOMPARE(AllocationsOf([&] { scene.CreateMeshes(builder); }), 1L);
    }

    void EverythingIsFreedOnce()
    {
        const long before = Allocations::Live();
        {
            Scene scene;
            FillChain(scene, 50);
            AddNode(scene, "second child", scene.nodes[10]);
            scene.nodes[20]->children.push_back(nullptr);
            scene.AppendClippedAnimation(0, QString(), 0, 1);
            // A loader gave up before the scene had a root: its nodes are still its own.
            Scene rootless;
            const std::unique_ptr<Node> root(AddNode(rootless, "root"));
            AddGeometry(*AddNode(rootless, "child", root.get()), "triangle", {{0, 0, 0}});
            rootless.root = nullptr;
        }
        QCOMPARE(Allocations::Live(), before);
    }

    void RunningOutOfMemoryWhileClipping()
    {
        const long before = Allocations::Live();
        std::unique_ptr<Scene> scene;
        const auto prepare = [&] {
            scene = std::make_unique<Scene>();
            FillChain(*scene, 3);
        };
        long failures = 0;
        const auto clip = [&] { scene->AppendClippedAnimation(0, QString(), 0.25f, 1); };
        const long failed = Allocations::FailEach(prepare, clip, [&](bool isThrown) {
            QVERIFY(isThrown);
            // The animation itself, and its place in the list; then the unfinished one stays.
            QCOMPARE(scene->animations.size(), std::size_t(++failures <= 2 ? 1 : 2));
        });
        QVERIFY(failed > 5);
        scene.reset();
        QCOMPARE(Allocations::Live(), before);
        qInfo("%ld allocations have failed", failed);
    }

    void RunningOutOfMemoryWhilePosing()
    {
        const long before = Allocations::Live();
        std::unique_ptr<Scene> scene, undisturbed;
        const auto prepare = [](std::unique_ptr<Scene>& made) {
            made = std::make_unique<Scene>();
            FillChain(*made, 260); // deeper than the walk's own room, more bones than fit on the stack
            auto& vertices = made->root->geometries.front()->vertices;
            vertices.resize(500, vertices.front());
            made->CalculateAnimation(0, 0.5f);
        };
        const auto pose = [](Scene& posed) {
            RecordingBuilder builder;
            posed.CreateMeshes(builder);
            QCOMPARE(builder.meshes.size(), std::size_t(260));
        };
        const auto same = [&](bool finished) {
            for (std::size_t i = 0; i < scene->nodes.size(); ++i) {
                const auto& mine = scene->nodes[i]->geometries.front()->meshVertices;
                const auto& right = undisturbed->nodes[i]->geometries.front()->meshVertices;
                QVERIFY(mine.size() == right.size() || (mine.empty() && !finished));
                for (std::size_t k = 0; k < mine.size(); ++k) {
                    QCOMPARE(mine[k].position, right[k].position);
                    QVERIFY(!finished || mine[k].normal == right[k].normal);
                }
            }
        };
        prepare(undisturbed);
        pose(*undisturbed);
        const long failed = Allocations::FailEach([&] { prepare(scene); }, [&] { pose(*scene); }, [&](bool isThrown) {
            QVERIFY(isThrown);
            same(false);
            pose(*scene);
            same(true);
        });
        QVERIFY(failed > 260);
        undisturbed.reset();
        scene.reset();
        QCOMPARE(Allocations::Live(), before);
        qInfo("%ld allocations have failed", failed);
    }

    void ALongChainNeedsNoStack()
    {
        auto scene = std::make_unique<Scene>();
        FillChain(*scene, 100000);
        RunOnSmallStack([&] {
            RecordingBuilder builder;
            scene->CalculateAnimation(0, 0.5f);
            scene->CreateMeshes(builder);
            QCOMPARE(builder.meshes.size(), std::size_t(100000));
        });
        QCOMPARE(scene->nodes.back()->globalTransform, Translation(50000, 0, 0));
        QCOMPARE(scene->nodes.back()->geometries[0]->meshVertices[1].position, (Vec3{1.5f, 0, 0}));
        RunOnSmallStack([&] { scene.reset(); });
    }
};

QTEST_APPLESS_MAIN(MemoryTest)
#include "memory_test.moc"
