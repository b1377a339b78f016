#include "benchmarks/NaiveO3.h"
#include "benchmarks/Peers.h"
#include "benchmarks/Rows.h"
#include "benchmarks/SceneStandIns.h"
#include "benchmarks/Workloads.h"

#include <benchmark/benchmark.h>

namespace Bench {

namespace {

using Vec3 = TVec3<float>;
using Workloads::Random;

constexpr std::size_t kRays = 16; ///< In turns, so that nobody learns one by heart.
constexpr float kTurn = 6.2831853f;

/// A ball with dents: many small triangles, each near those before it in the list.
std::unique_ptr<StandIn::Mesh> MakeSphere(std::size_t triangles)
{
    const auto rings = static_cast<unsigned int>(std::sqrt(static_cast<double>(triangles) / 4.0));
    const auto sectors = static_cast<unsigned int>(triangles / (2 * rings));
    auto mesh = std::make_unique<StandIn::Mesh>();
    for (unsigned int i = 0; i <= rings; ++i) {
        for (unsigned int j = 0; j <= sectors; ++j) {
            const float polar = 0.5f * kTurn * static_cast<float>(i) / static_cast<float>(rings);
            const float round = kTurn * static_cast<float>(j % sectors) / static_cast<float>(sectors);
            const float radius = 1.0f + 0.05f * std::sin(9.0f * polar) * std::sin(7.0f * round);
            const Vec3 position{radius * std::sin(polar) * std::cos(round), radius * std::sin(polar) * std::sin(round),
                                radius * std::cos(polar)};
            mesh->vertices.push_back({position, {}, {}, {}, {}, 1.0f});
            mesh->box.Extend(position);
            const unsigned int a = i * (sectors + 1) + j;
            const unsigned int b = a + sectors + 1;
            if (i < rings && j < sectors) mesh->indices.insert(mesh->indices.end(), {a, a + 1, b, b, a + 1, b + 1});
        }
    }
    return mesh;
}

/// Triangles that share nothing and lie about in a ball, smaller where they are more.
std::unique_ptr<StandIn::Mesh> MakeSoup(std::size_t triangles)
{
    Random random(5);
    const float size = 1.0f / std::cbrt(static_cast<float>(triangles));
    std::vector<Vec3> positions;
    while (positions.size() < 3 * triangles) {
        const Vec3 place = Workloads::RandomVector(random, -1.0f, 1.0f);
        for (int i = 0; i < 3 && Length(place) < 1.0f; ++i)
            positions.push_back(place + Workloads::RandomVector(random, -size, size));
    }
    return std::make_unique<StandIn::Mesh>(positions);
}

/// A mesh, and rays that meet its box; all of them hit it, or none does.
struct Range {
    std::unique_ptr<StandIn::Mesh> mesh;
    std::vector<Ray> rays;
    std::unique_ptr<Peers::EmbreeMesh> embree;
    std::size_t next = 0;

    Range(std::unique_ptr<StandIn::Mesh> traced, bool isHit)
        : mesh(std::move(traced))
        , embree(std::make_unique<Peers::EmbreeMesh>(*mesh))
    {
        const Vec3 centre{0.0f, 0.0f, 0.0f};
        Random random(6);
        while (rays.size() < kRays) {
            const Ray ray(Workloads::RandomVector(random, -3.0f, 3.0f), Workloads::RandomVector(random, -3.0f, 3.0f));
            const bool isWanted =
                isHit ? Length(ray.start) > 1.5f && ray.IsIntersect(centre, 0.8f) : !ray.IsIntersect(centre, 1.2f);
            if (isWanted && ray.IsIntersect(mesh->box) && (embree->Trace(ray) < 1.0f) == isHit) rays.push_back(ray);
        }
    }

    const Ray& Next() { return rays[next++ % kRays]; }
};

void Check(const Range& range)
{
    std::vector<float> ours, naive;
    std::size_t glmStrays = 0, embreeStrays = 0;
    for (const Ray& ray : range.rays) {
        ours.push_back(ray.Trace(*range.mesh));
        naive.push_back(Naive::Trace(ray, *range.mesh));
        glmStrays += std::fabs(Peers::TraceWithGlm(ray, *range.mesh) - ours.back()) > 0.01f;
        embreeStrays += std::fabs(range.embree->Trace(ray) - ours.back()) > 0.01f;
    }
    Require(SameBits(ours, naive), "hits");
    // Others know no tolerance at the edges, so a ray may miss what it hits here.
    Require(glmStrays <= kRays / 4, "hits of glm, mostly");
    Require(embreeStrays <= kRays / 4, "hits of Embree, mostly");
}

Contest Tracing(std::unique_ptr<StandIn::Mesh> (*make)(std::size_t), std::size_t triangles, bool isHit)
{
    const auto range = std::make_shared<Range>(make(triangles), isHit);
    Check(*range);
    const auto keep = [](auto value) { benchmark::DoNotOptimize(value); };
    std::vector<Way> ways{{kOurs, [=] { keep(range->Next().Trace(*range->mesh)); }},
                          {kNaive, [=] { keep(Naive::Trace(range->Next(), *range->mesh)); }},
                          {kNaiveO3, [=] { keep(NaiveO3::Trace(range->Next(), *range->mesh)); }},
                          {kGlm, [=] { keep(Peers::TraceWithGlm(range->Next(), *range->mesh)); }},
                          {kEmbree, [=] { keep(range->embree->Trace(range->Next())); }},
                          {kTouch, [=] { keep(Peers::TouchMesh(*range->mesh)); }}};
    if (isHit) // Building takes as long for a miss.
        ways.push_back({kEmbreeBuild, [=] { keep(Peers::EmbreeMesh(*range->mesh).Trace(range->Next())); }});
    return {range->mesh->indices.size() / 3, ways};
}

} // namespace

void AddRayRows(std::vector<Row>& rows)
{
    const auto add = [&](bool isSphere, std::size_t triangles, const std::vector<Target>& targets) {
        for (const bool isHit : {true, false}) {
            const std::string name = std::string(isSphere ? "TraceSphere/" : "TraceSoup/") + std::to_string(triangles)
                                     + (isHit ? "/hit" : "/miss");
            const auto make = isSphere ? MakeSphere : MakeSoup;
            rows.push_back(
                {name, "triangle", triangles <= 10000, targets, [=] { return Tracing(make, triangles, isHit); }});
        }
    };
    const std::vector<Target> usual{AtLeast(10.0, kNaive), AtLeast(3.2, kGlm)};
    add(true, 10000, usual);
    add(true, 100000, {usual[0], usual[1], AtMost(1.2, "TraceSphere/10000/hit")});
    add(true, 1000000, {AtMost(1.35, kTouch)});
    add(false, 7, {AtLeast(1.0, kNaive)});
    add(false, 10000, usual);
    add(false, 100000, usual);
    add(false, 1000000, {AtMost(1.35, kTouch)});
}

} // namespace Bench
