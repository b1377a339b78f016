#include "benchmarks/NaiveSkin.h"
#include "benchmarks/Workloads.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

// "ours" and "naive" of one row share their arguments. Times of different runs
// say little; the ratio of two rows of one run does.

namespace {

using namespace SkinAnimation;
using Workloads::Influences;

constexpr std::size_t kBones = 60;

struct Skin {
    std::unique_ptr<Scene> scene;
    Geometry* geometry;

    Skin(std::size_t vertexCount, Influences influences)
        : scene(Workloads::MakeSkeleton(kBones, 2, 40.0f, 1))
        , geometry(&Workloads::AddSkin(*scene, vertexCount, influences, 2))
    {
        scene->CalculateAnimation(0, 10.0f);
        geometry->UpdateMesh(scene->root, scene->scale, scene->offset, scene->nodes);
    }
};

/// Adds a column: the time that one of `count` things takes.
void SetTimePer(const char* column, benchmark::State& state, std::size_t count)
{
    state.counters[column] = benchmark::Counter(static_cast<double>(count),
                                                benchmark::Counter::kIsIterationInvariantRate
                                                    | benchmark::Counter::kInvert);
}

template <bool Ours>
void UpdateMesh(benchmark::State& state)
{
    const Skin skin(static_cast<std::size_t>(state.range(0)), static_cast<Influences>(state.range(1)));
    const Scene& scene = *skin.scene;
    for (auto _ : state) {
        if constexpr (Ours)
            skin.geometry->UpdateMesh(scene.root, scene.scale, scene.offset, scene.nodes);
        else
            Naive::UpdateMesh(*skin.geometry, *scene.root, scene.scale, scene.offset, scene.nodes);
        benchmark::ClobberMemory();
    }
    SetTimePer("per vertex", state, skin.geometry->vertices.size());
}

template <bool Ours>
void CollectNormals(benchmark::State& state)
{
    const Skin skin(static_cast<std::size_t>(state.range(0)), Influences::Four);
    std::vector<TVec3<float>> normals(skin.scene->root->normalCount, TVec3<float>{0.0f, 0.0f, 0.0f});
    for (auto _ : state) {
        if constexpr (Ours)
            skin.geometry->CollectNormals(normals);
        else
            Naive::CollectNormals(*skin.geometry, normals);
        benchmark::ClobberMemory();
    }
    SetTimePer("per vertex", state, skin.geometry->vertices.size());
}

template <bool Ours>
void CalculateAnimation(benchmark::State& state)
{
    constexpr float kStep = 40.0f;
    const auto keys = static_cast<std::size_t>(state.range(1));
    const auto scene = Workloads::MakeSkeleton(static_cast<std::size_t>(state.range(0)), keys, kStep, 3);
    const bool playback = state.range(2) != 0;
    const float length = static_cast<float>(keys - 1) * kStep;

    Workloads::Random random(4);
    std::vector<float> times(1024);
    for (std::size_t i = 0; i < times.size(); ++i)
        times[i] = playback ? length * static_cast<float>(i) / static_cast<float>(times.size())
                            : random.Between(0.0f, length);

    std::size_t next = times.size() / 2; // a playback from 0 would hide what searching costs
    for (auto _ : state) {
        const float time = times[next++ % times.size()];
        if constexpr (Ours)
            scene->CalculateAnimation(0, time);
        else
            Naive::CalculateAnimation(*scene, *scene->animations[0], time);
        benchmark::ClobberMemory();
    }
    SetTimePer("per node", state, scene->nodes.size());
}

void SkinSizes(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"vertices", "mix"});
    for (const int vertices : {24, 200, 5000, 50000, 500000})
        bench->Args({vertices, static_cast<int>(Influences::Four)});
    for (const Influences mix : {Influences::Random, Influences::InRuns})
        bench->Args({50000, static_cast<int>(mix)});
}

void PoseSizes(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"nodes", "keys", "playback"})->Unit(benchmark::kMicrosecond);
    for (const int playback : {0, 1}) {
        bench->Args({60, 300, playback});
        bench->Args({500, 3000, playback});
    }
}

BENCHMARK_TEMPLATE(UpdateMesh, true)->Name("UpdateMesh/ours")->Apply(SkinSizes);
BENCHMARK_TEMPLATE(UpdateMesh, false)->Name("UpdateMesh/naive")->Apply(SkinSizes);
BENCHMARK_TEMPLATE(CollectNormals, true)->Name("CollectNormals/ours")->Arg(5000)->Arg(50000)->Arg(500000);
BENCHMARK_TEMPLATE(CollectNormals, false)->Name("CollectNormals/naive")->Arg(5000)->Arg(50000)->Arg(500000);
BENCHMARK_TEMPLATE(CalculateAnimation, true)->Name("CalculateAnimation/ours")->Apply(PoseSizes);
BENCHMARK_TEMPLATE(CalculateAnimation, false)->Name("CalculateAnimation/naive")->Apply(PoseSizes);

} // namespace

BENCHMARK_MAIN();
