#include "tests/skin/SkinFixtures.h"

#include <QThread>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <tuple>

using namespace SkinAnimation;

namespace {

// Every allocation of this process with `new`, in the library too.
std::atomic<long> allocations{0};
std::atomic<long> liveBlocks{0};
std::atomic<long> allocationsUntilFailure{-1}; // below zero: never

void* Allocate(std::size_t size, std::size_t alignment)
{
    const bool fails = allocationsUntilFailure >= 0 && allocationsUntilFailure-- == 0;
    void* const block = fails ? nullptr : std::aligned_alloc(alignment, (size / alignment + 1) * alignment);
    if (!block)
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
    const long before = allocations;
    call();
    return allocations - before;
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
        const long before = liveBlocks;
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
        QCOMPARE(liveBlocks.load(), before);
    }

    void RunningOutOfMemoryWhileClipping()
    {
        const long before = liveBlocks;
        bool failed = true;
        for (long allowed = 0; failed; ++allowed) {
            Scene scene;
            FillChain(scene, 3);
            scene.animations.reserve(2);
            allocationsUntilFailure = allowed;
            try {
                scene.AppendClippedAnimation(0, QString(), 0, 1);
                failed = false;
            } catch (const std::bad_alloc&) {
            }
            allocationsUntilFailure = -1;
            QCOMPARE(scene.animations.size(), std::size_t(allowed == 0 ? 1 : 2)); // the unfinished one stays
            QVERIFY(failed || allowed > 3);
        }
        QCOMPARE(liveBlocks.load(), before);
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
