#include "benchmarks/NaiveScene.h"
#include "benchmarks/SceneStandIns.h"
#include "benchmarks/Workloads.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "lumenta/scene/Picking.h"

#include <benchmark/benchmark.h>

namespace {

const QPoint kPixel(400, 300);
constexpr TVec2<float> kView{800.0f, 600.0f};
const Ray kRay({-1.0f, 0.4f, 0.4f}, {2.0f, 0.6f, 0.6f});

/// A number of nodes, in a tree and in a shuffled list. Without triangles they
/// are groups in a tree that is deep as well as wide; with triangles they all
/// hold one mesh and stand before the camera.
struct Forest {
    StandIn::Scene scene;
    std::vector<std::unique_ptr<StandIn::Node>> nodes;
    std::vector<INode*> list;
    std::unique_ptr<StandIn::Mesh> mesh;

    Forest(std::int64_t count, std::int64_t triangles)
    {
        Workloads::Random random(1);
        const auto point = [&random](float high) { return Workloads::RandomVector(random, 0.0f, high); };
        std::vector<TVec3<float>> positions;
        for (std::int64_t i = 0; i < triangles; ++i) {
            const TVec3<float> corner = point(1.0f);
            positions.insert(positions.end(), {corner, corner + point(0.1f), corner + point(0.1f)});
        }
        mesh = std::make_unique<StandIn::Mesh>(positions);
        for (std::int64_t i = 0; i < count; ++i) {
            const std::size_t back = 1 + random.Below(10);
            const bool isTop = triangles > 0 || back > nodes.size();
            StandIn::Node* const parent = isTop ? &scene.root : nodes[nodes.size() - back].get();
            nodes.push_back(std::make_unique<StandIn::Node>(triangles > 0 ? eNodeTypeMesh : eNodeTypeGroup, parent));
            nodes.back()->matrix.SetTranslation(point(9.0f) - TVec3<float>{0.0f, 4.5f, 4.5f});
            nodes.back()->Add(*mesh);
            list.insert(list.begin() + random.Below(static_cast<std::uint32_t>(list.size() + 1)), nodes.back().get());
        }
    }
};

template <typename Call>
void Tree(benchmark::State& state, const Call& call)
{
    Forest forest(state.range(0), state.range(1));
    for (auto _ : state)
        benchmark::DoNotOptimize(call(forest));
}

const IMesh* OurPick(Forest& forest)
{
    INode* node = nullptr;
    const IMesh* mesh = nullptr;
    FindNodeByScreenPoint(kPixel, kView, forest.scene, node, mesh);
    return mesh;
}

void Growth(benchmark::internal::Benchmark* bench)
{
    for (const int nodes : {2000, 25000, 50000, 100000})
        bench->Args({nodes, 0});
}

// clang-format off: it would take the names for quotients
BENCHMARK_CAPTURE(Tree, CollectAllChildren/ours, [](Forest& f) { return CollectAllChildren(f.list); })->Apply(Growth);
BENCHMARK_CAPTURE(Tree, CollectAllChildren/naive, [](Forest& f) { return Naive::CollectAllChildren(f.list); })
    ->Args({2000, 0});
BENCHMARK_CAPTURE(Tree, SortNodes/ours,
                  [](Forest& f) { return SortAccordingToTheSceneTree(f.list, &f.scene.root, false); })->Apply(Growth);
BENCHMARK_CAPTURE(Tree, SortNodes/naive,
                  [](Forest& f) { return Naive::SortAccordingToTheSceneTree(f.list, &f.scene.root, false); })
    ->Args({2000, 0});
BENCHMARK_CAPTURE(Tree, TraceMesh/ours, [](Forest& f) { return kRay.Trace(*f.mesh); })->Args({1, 10000});
BENCHMARK_CAPTURE(Tree, TraceMesh/naive, [](Forest& f) { return Naive::Trace(kRay, *f.mesh); })->Args({1, 10000});
BENCHMARK_CAPTURE(Tree, Pick/ours, OurPick)->Args({10000, 12});
BENCHMARK_CAPTURE(Tree, Pick/naive, [](Forest& f) { return Naive::Pick(kPixel, kView, f.scene).mesh; })
    ->Args({10000, 12});
// clang-format on

} // namespace
