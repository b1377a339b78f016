#include "tests/foundation/Exact.h"
#include "tests/skin/SkinFixtures.h"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

using namespace SkinAnimation;

namespace {

// Every allocation of this process with `new`, in the library too.
std::atomic<long> allocations{0};
std::atomic<long> liveBlocks{0};
std::atomic<long> allocationsUntilFailure{-1}; // below zero: never

void* Allocate(std::size_t size, std::size_t alignment)
{
    if (allocationsUntilFailure >= 0 && allocationsUntilFailure-- == 0)
        throw std::bad_alloc();
    void* block = nullptr;
    if (posix_memalign(&block, std::max(alignment, sizeof(void*)), std::max<std::size_t>(size, 1)) != 0)
        throw std::bad_alloc();
    ++allocations;
    ++liveBlocks;
    return block;
}

void Free(void* block)
{
    if (block)
        --liveBlocks;
    std::free(block);
}

} // namespace

void* operator new(std::size_t size) { return Allocate(size, alignof(std::max_align_t)); }
void* operator new(std::size_t size, std::align_val_t alignment) { return Allocate(size, std::size_t(alignment)); }
void operator delete(void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }
void operator delete(void* block, std::align_val_t) noexcept { Free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { Free(block); }

namespace {

class CountingBuilder : public IMeshNodeBuilder {
public:
    std::size_t meshes = 0;
    void BeginModel(const QString&, std::size_t) override {}
    void EndModel() override {}
    void AddMeshNode(const QString&, std::vector<MeshVertex>&, std::vector<unsigned int>&, const QString&,
                     const QMap<QString, QVariant>&) override
    {
        ++meshes;
    }
};

/// A chain of `count` nodes, each with a skinned triangle and one track.
void FillChain(Scene& scene, int count)
{
    Node* node = nullptr;
    std::vector<NodeTrack> tracks;
    for (int i = 0; i < count; ++i) {
        node = AddNode(scene, "link", node);
        Geometry* const geometry = AddGeometry(*node, "triangle", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, true);
        for (SkinVertex& vertex : geometry->vertices)
            vertex.weights[0] = 1;
        geometry->normalIndices = {0, 1, 2};
        node->normalCount = std::uint64_t(3 + i % 5);
        tracks.push_back(Track(node, {Key(0, {0, 0, 0}), Key(1, {0, 0, 1})}));
    }
    AddAnimation(scene, std::move(tracks));
}

template <typename Call>
long AllocationsOf(const Call& call)
{
    const long before = allocations;
    call();
    return allocations - before;
}

/// Runs `call` on a thread with a stack of `bytes`.
template <typename Call>
void RunOnSmallStack(std::size_t bytes, Call call)
{
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    QCOMPARE(pthread_attr_setstacksize(&attributes, bytes), 0);
    const auto run = [](void* argument) -> void* {
        (*static_cast<Call*>(argument))();
        return nullptr;
    };
    QCOMPARE(pthread_create(&thread, &attributes, run, &call), 0);
    QCOMPARE(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}

} // namespace

class MemoryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Frames_data()
    {
        QTest::addColumn<int>("nodes");
        QTest::addColumn<int>("vertices");
        QTest::addColumn<long>("allocationsOfUpdateMesh");
        QTest::newRow("one bone") << 1 << 3 << 0L;
        QTest::newRow("as many bones as the stack takes") << 256 << 500 << 0L;
        QTest::newRow("one bone more, one allocation") << 257 << 500 << 1L;
        QTest::newRow("many bones, few vertices") << 1000 << 3 << 0L;
    }

    void Frames()
    {
        QFETCH(int, nodes);
        QFETCH(int, vertices);
        QFETCH(long, allocationsOfUpdateMesh);
        Scene scene;
        FillChain(scene, nodes);
        Geometry& geometry = *scene.root->geometries.front();
        geometry.vertices.resize(std::size_t(vertices), geometry.vertices.front());

        const auto pose = [&] { geometry.UpdateMesh(scene.root, scene.scale, scene.offset, scene.nodes); };
        QVERIFY(AllocationsOf(pose) >= 1); // room for the posed vertices
        QCOMPARE(AllocationsOf(pose), allocationsOfUpdateMesh);
        QCOMPARE(AllocationsOf([&] { scene.CalculateAnimation(0, 0.5f); }), 0L);
        QCOMPARE(AllocationsOf([&] { scene.UpdateBoundingBox(); }), 0L);
    }

    void CreateMeshesAllocatesOneBuffer()
    {
        Scene scene;
        FillChain(scene, 100); // of unlike sizes: the largest serves them all
        CountingBuilder builder;
        scene.CreateMeshes(builder);
        QCOMPARE(builder.meshes, std::size_t(100));
        QCOMPARE(AllocationsOf([&] { scene.CreateMeshes(builder); }), 1L);
        for (Node* node : scene.nodes)
            node->normalCount = 0;
        QCOMPARE(AllocationsOf([&] { scene.CreateMeshes(builder); }), 0L);
    }

    void EverythingIsFreedOnce()
    {
        const long before = liveBlocks;
        {
            Scene scene;
            FillChain(scene, 50);
            AddNode(scene, "second child", scene.nodes[10]);
            scene.nodes[20]->children.push_back(nullptr);
            AddAnimation(scene, {});
            CountingBuilder builder;
            scene.CreateMeshes(builder);
            scene.AppendClippedAnimation(0, QString(), 0, 1);
        }
        QCOMPARE(liveBlocks.load(), before);
        {
            // A loader gave up before the scene had a root: its nodes are still its own.
            Scene scene;
            const std::unique_ptr<Node> root(AddNode(scene, "root"));
            AddGeometry(*AddNode(scene, "child", root.get()), "triangle", {{0, 0, 0}});
            AddGeometry(*root, "triangle", {{0, 0, 0}});
            scene.root = nullptr;
        }
        QCOMPARE(liveBlocks.load(), before);
    }

    void RunningOutOfMemoryWhileClipping()
    {
        const long before = liveBlocks;
        int failures = 0;
        for (long allowed = 0;; ++allowed) {
            Scene scene;
            FillChain(scene, 3);
            scene.animations.reserve(scene.animations.size() + 1);
            bool failed = false;
            allocationsUntilFailure = allowed;
            try {
                scene.AppendClippedAnimation(0, QStringLiteral("clip"), 0, 1);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            allocationsUntilFailure = -1;
            QCOMPARE(scene.animations.size(), std::size_t(allowed == 0 ? 1 : 2)); // the unfinished one stays
            if (!failed)
                break;
            ++failures;
        }
        QVERIFY(failures > 3);
        QCOMPARE(liveBlocks.load(), before);
    }

    void ALongChainNeedsNoStack()
    {
        const long before = liveBlocks;
        auto scene = std::make_unique<Scene>();
        FillChain(*scene, 100000);
        CountingBuilder builder;
        RunOnSmallStack(128 * 1024, [&] {
            scene->CalculateAnimation(0, 0.5f);
            scene->CreateMeshes(builder);
        });
        QCOMPARE(builder.meshes, std::size_t(100000));
        Node* last = scene->root;
        while (!last->children.empty())
            last = last->children.front();
        QCOMPARE(Floats(last->globalTransform), Floats(Translation(0, 0, 50000)));
        QCOMPARE(Floats(last->geometries.front()->meshVertices[1].position), QStringLiteral("1, 0, 0.5"));
        RunOnSmallStack(128 * 1024, [&] { scene.reset(); });
        QCOMPARE(liveBlocks.load(), before);
    }
};

QTEST_APPLESS_MAIN(MemoryTest)
#include "memory_test.moc"
