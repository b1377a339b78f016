#include "benchmarks/NaiveScene.h"
#include "benchmarks/Picking.h"
#include "benchmarks/Workloads.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "lumenta/scene/Picking.h"

#include <benchmark/benchmark.h>

namespace Bench {

namespace {

using Nodes = std::vector<INode*>;
using Workloads::Random;

constexpr std::size_t kMeshNodes = 10000;
constexpr std::size_t kPixels = 16;

/// A tree of groups that is some dozens of levels deep, and all its nodes in a shuffled list.
struct Tree {
    StandIn::Scene scene;
    std::vector<std::unique_ptr<StandIn::Node>> nodes;
    Nodes shuffled;

    /// Of `count` nodes, the root included.
    explicit Tree(std::size_t count)
    {
        Random random(1);
        const auto below = [&random](std::size_t limit) { return random.Below(static_cast<std::uint32_t>(limit)); };
        while (nodes.size() + 1 < count) {
            StandIn::Node* const parent = nodes.empty() ? &scene.root : nodes[below(nodes.size())].get();
            nodes.push_back(std::make_unique<StandIn::Node>(eNodeTypeGroup, parent));
            shuffled.push_back(nodes.back().get());
            std::swap(shuffled.back(), shuffled[below(shuffled.size())]);
        }
    }
};

using ListCall = Nodes (*)(const Tree&);

/// \param naive null where it would take minutes
Contest Listing(std::size_t count, ListCall ours, ListCall naive)
{
    const auto tree = std::make_shared<Tree>(count);
    std::vector<Way> ways{{kOurs, [=] { benchmark::DoNotOptimize(ours(*tree)); }}};
    if (naive) {
        ways.push_back({kNaive, [=] { benchmark::DoNotOptimize(naive(*tree)); }});
        Require(ours(*tree) == naive(*tree), "lists");
    }
    return {count, ways};
}

/// Mesh nodes of a few triangles, side by side before the camera.
std::shared_ptr<View> ManyMeshes()
{
    const auto view = std::make_shared<View>();
    Random random(2);
    const auto point = [&random](float high) { return Workloads::RandomVector(random, 0.0f, high); };
    std::vector<TVec3<float>> corners(36);
    for (TVec3<float>& corner : corners)
        corner = point(0.5f);
    view->meshes.push_back(std::make_unique<StandIn::Mesh>(corners));
    for (std::size_t i = 0; i < kMeshNodes; ++i) {
        view->nodes.push_back(std::make_unique<StandIn::Node>(eNodeTypeMesh, &view->scene.root));
        view->nodes.back()->matrix.SetTranslation(point(9.0f) - TVec3<float>{0.0f, 4.5f, 4.5f});
        view->nodes.back()->Add(*view->meshes[0]);
    }
    for (std::size_t i = 0; i < kPixels; ++i)
        view->pixels.emplace_back(static_cast<int>(random.Below(800)), static_cast<int>(random.Below(600)));
    return view;
}

Contest PickingOfMany()
{
    const auto view = ManyMeshes();
    Contest contest = Picking({view, &view->scene}, view->pixels);
    contest.count *= kMeshNodes;
    return contest;
}

Contest BoxOfMany()
{
    const auto view = ManyMeshes();
    const auto box = std::make_shared<std::vector<TBBox<float>>>(1);
    const auto measure = [=](decltype(UpdateBBoxRecursive)* update) {
        return [=] {
            box->front() = {};
            update(box->front(), &view->scene.root, Matrix());
        };
    };
    const std::vector<Way> ways{{kOurs, measure(UpdateBBoxRecursive)}, {kNaive, measure(Naive::UpdateBBoxRecursive)}};
    RequireSame(
        ways, [] {}, [&] { return *box; });
    return {kMeshNodes * view->meshes[0]->vertices.size(), ways};
}

Nodes OurChildren(const Tree& tree)
{
    return CollectAllChildren({tree.scene.GetRoot()});
}
Nodes NaiveChildren(const Tree& tree)
{
    return Naive::CollectAllChildren({tree.scene.GetRoot()});
}
Nodes OurShuffled(const Tree& tree)
{
    return CollectAllChildren(tree.shuffled);
}
Nodes NaiveShuffled(const Tree& tree)
{
    return Naive::CollectAllChildren(tree.shuffled);
}
Nodes OurSorted(const Tree& tree)
{
    return SortAccordingToTheSceneTree(tree.shuffled, tree.scene.GetRoot(), false);
}
Nodes NaiveSorted(const Tree& tree)
{
    return Naive::SortAccordingToTheSceneTree(tree.shuffled, tree.scene.GetRoot(), false);
}

/// \param most nodes that the plain way, whose time grows with their square, is asked for
void AddLists(std::vector<Row>& rows, const std::string& name, ListCall ours, ListCall naive, std::size_t most)
{
    const std::string smallest = name + "/10000";
    for (const std::size_t count : {10000, 100000, 1000000}) {
        std::vector<Target> targets;
        if (count == 100000) // ten times the nodes in 40 times the time: four times as long for one
            targets = {AtMostNanoseconds(15e6 / static_cast<double>(count)), AtMost(4.0, smallest)};
        rows.push_back({name + '/' + std::to_string(count), "node", count <= 10000, std::move(targets),
                        [=] { return Listing(count, ours, count <= most ? naive : nullptr); }});
    }
}

} // namespace

Contest Picking(const std::shared_ptr<IScene>& scene, const std::vector<QPoint>& pixels)
{
    const auto ours = [scene](const QPoint& pixel) {
        INode* node = nullptr;
        const IMesh* mesh = nullptr;
        FindNodeByScreenPoint(pixel, View::kSize, *scene, node, mesh);
        return std::make_pair(node, mesh);
    };
    const auto naive = [scene](const QPoint& pixel) {
        const Naive::Picked picked = Naive::Pick(pixel, View::kSize, *scene);
        return std::make_pair(picked.node, picked.mesh);
    };
    bool isAnyHit = false;
    for (const QPoint& pixel : pixels) {
        Require(ours(pixel) == naive(pixel), "pick");
        isAnyHit = isAnyHit || ours(pixel).first;
    }
    Require(isAnyHit, "view: nothing is to be seen");

    const auto all = [pixels](const auto& pick) {
        return [pixels, pick] {
            for (const QPoint& pixel : pixels)
                benchmark::DoNotOptimize(pick(pixel));
        };
    };
    return {pixels.size(), {{kOurs, all(ours)}, {kNaive, all(naive)}}};
}

void AddTreeRows(std::vector<Row>& rows)
{
    rows.push_back({"FindNodeByScreenPoint/10000", "node", true, {AtLeast(1.85, kNaive)}, PickingOfMany});
    rows.push_back({"UpdateBBoxRecursive/10000", "vertex", true, {AtLeast(2.2, kNaive)}, BoxOfMany});
    AddLists(rows, "CollectAllChildren/root", OurChildren, NaiveChildren, 100000);
    AddLists(rows, "CollectAllChildren/shuffled", OurShuffled, NaiveShuffled, 10000);
    AddLists(rows, "SortNodes", OurSorted, NaiveSorted, 100000);
}

} // namespace Bench
