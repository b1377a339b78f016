#include "benchmarks/IdleBuilder.h"
#include "benchmarks/NaiveO3.h"
#include "benchmarks/Peers.h"
#include "benchmarks/Rows.h"
#include "benchmarks/Workloads.h"
#include "lumenta/kernels/Kernels.h"

namespace Bench {

namespace {

using namespace SkinAnimation;
using Workloads::Influences;

constexpr std::size_t kBones = 60;
constexpr float kStep = 40.0f; ///< Between keys, in milliseconds.
constexpr float kFrame = 1000.0f / 60.0f;

/// A skin, posed once.
struct Skin {
    std::unique_ptr<Scene> scene;
    Geometry& geometry;
    std::vector<TVec3<float>> normals;
    IdleBuilder builder;

    Skin(std::size_t size, Influences influences)
        : scene(Workloads::MakeSkeleton(kBones, 2, kStep, 1))
        , geometry(Workloads::AddSkin(*scene, size, influences, 2))
        , normals(scene->root->normalCount, TVec3<float>{0.0f, 0.0f, 0.0f})
    {
        scene->CalculateAnimation(0, 10.0f);
        UpdateMesh();
    }

    void UpdateMesh() { geometry.UpdateMesh(scene->root, scene->scale, scene->offset, scene->nodes); }
    void UpdateMeshBy(decltype(Naive::UpdateMesh) way)
    {
        way(geometry, *scene->root, scene->scale, scene->offset, scene->nodes);
    }
    void Clear()
    {
        normals.assign(normals.size(), TVec3<float>{0.0f, 0.0f, 0.0f});
        for (MeshVertex& vertex : geometry.meshVertices)
            vertex.normal = {0.0f, 0.0f, 0.0f};
    }
};

bool AreNear(const std::vector<MeshVertex>& a, const std::vector<MeshVertex>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const MeshVertex& p, const MeshVertex& q) {
        return Length(p.position - q.position) <= 1e-3f * (1.0f + Length(p.position))
               && Length(p.normal - q.normal) < 1e-2f;
    });
}

Contest Skinning(std::size_t size, Influences influences)
{
    const auto skin = std::make_shared<Skin>(size, influences);
    const std::vector<Way> ways{
        {kOurs, [skin] { skin->UpdateMesh(); }},
        {kNaive, [skin] { skin->UpdateMeshBy(Naive::UpdateMesh); }},
        {kNaiveO3, [skin] { skin->UpdateMeshBy(NaiveO3::UpdateMesh); }},
        {kEigen, [skin] { Peers::UpdateMeshWithEigen(skin->geometry, *skin->scene->root, *skin->scene); }},
        {kTouch, [skin] { Peers::TouchVertices(skin->geometry); }}};
    std::vector<MeshVertex>& posed = skin->geometry.meshVertices;
    const std::vector<MeshVertex> before = posed;
    RequireSame(
        ways, [&] { posed.assign(posed.size(), MeshVertex{}); }, [&] { return posed; });
    ways[3].run();
    Require(AreNear(before, posed), "vertices, nearly: " + kEigen);
    return {posed.size(), ways};
}

Contest Collecting(std::size_t size)
{
    const auto skin = std::make_shared<Skin>(size, Influences::Four);
    const std::vector<Way> ways{{kOurs, [skin] { skin->geometry.CollectNormals(skin->normals); }},
                                {kNaive, [skin] { Naive::CollectNormals(skin->geometry, skin->normals); }},
                                {kNaiveO3, [skin] { NaiveO3::CollectNormals(skin->geometry, skin->normals); }}};
    RequireSame(
        ways, [&] { skin->Clear(); }, [&] { return skin->normals; });
    return {skin->geometry.indices.size() / 3, ways};
}

/// The buffer alone, by a kernel that only CreateMeshes() calls.
Contest Normalizing(std::size_t size)
{
    const auto skin = std::make_shared<Skin>(size, Influences::Four);
    std::vector<TVec3<float>>& normals = skin->normals;
    const std::vector<Way> ways{{kOurs, [&normals, skin] { Kernels::Chosen().normalizeAll(normals.data(), normals.size()); }},
                                {kNaive, [&normals, skin] { Naive::NormalizeAll(normals); }},
                                {kNaiveO3, [&normals, skin] { NaiveO3::NormalizeAll(normals); }}};
    const auto reset = [&] {
        skin->Clear();
        skin->geometry.CollectNormals(normals);
    };
    RequireSame(ways, reset, [&] { return normals; });
    return {normals.size(), ways};
}

Contest Writing(std::size_t size)
{
    const auto skin = std::make_shared<Skin>(size, Influences::Four);
    const std::vector<Way> ways{{kOurs, [skin] { skin->geometry.SetNormals(skin->normals); }},
                                {kNaive, [skin] { Naive::SetNormals(skin->geometry, skin->normals); }},
                                {kNaiveO3, [skin] { NaiveO3::SetNormals(skin->geometry, skin->normals); }}};
    const auto reset = [&] {
        skin->Clear();
        skin->geometry.CollectNormals(skin->normals);
    };
    RequireSame(ways, reset, [&] { return skin->geometry.meshVertices; });
    return {skin->geometry.indices.size(), ways};
}

/// All that CreateMeshes() does. Where the geometry has no vertices to be posed
/// from, that is clearing, collecting, dividing by the length and writing back.
Contest Making(std::size_t size, bool isPosed)
{
    const auto skin = std::make_shared<Skin>(size, Influences::Four);
    if (!isPosed) std::vector<SkinVertex>().swap(skin->geometry.vertices);
    const std::vector<Way> ways{{kOurs, [skin] { skin->scene->CreateMeshes(skin->builder); }},
                                {kNaive, [skin] { Naive::PoseMeshes(*skin->scene); }},
                                {kNaiveO3, [skin] { NaiveO3::PoseMeshes(*skin->scene); }}};
    RequireSame(
        ways, [&] { skin->Clear(); }, [&] { return skin->geometry.meshVertices; });
    return {skin->geometry.meshVertices.size(), ways};
}

/// A skeleton in motion, and the times at which it is asked for.
struct Motion {
    std::unique_ptr<Scene> scene;
    std::vector<float> times;
    std::size_t next = 0;

    Motion(std::size_t nodes, std::size_t keys, bool isPlayback)
        : scene(Workloads::MakeSkeleton(nodes, keys, kStep, 3))
    {
        const float length = static_cast<float>(keys - 1) * kStep;
        Workloads::Random random(4);
        // Around the middle: a playback from 0 would hide what searching costs.
        const auto nFrames = static_cast<int>(0.1f * length / kFrame);
        for (int frame = 0; isPlayback && frame < nFrames; ++frame)
            times.push_back(0.45f * length + static_cast<float>(frame) * kFrame);
        while (!isPlayback && times.size() < 1024)
            times.push_back(random.Between(0.0f, length));
    }

    float Next() { return times[next++ % times.size()]; }

    std::vector<Matrix> Transforms() const
    {
        std::vector<Matrix> list;
        for (const Node* node : scene->nodes)
            list.insert(list.end(), {node->localTransform, node->globalTransform, node->meshTransform,
                                     node->skinTransform, node->skinTransformInverse});
        return list;
    }
};

Contest Posing(std::size_t nodes, std::size_t keys, bool isPlayback)
{
    const auto motion = std::make_shared<Motion>(nodes, keys, isPlayback);
    const auto naive = [motion](decltype(Naive::CalculateAnimation) way) {
        way(*motion->scene, *motion->scene->animations[0], motion->Next());
    };
    const std::vector<Way> ways{{kOurs, [motion] { motion->scene->CalculateAnimation(0, motion->Next()); }},
                                {kNaive, [naive] { naive(Naive::CalculateAnimation); }},
                                {kNaiveO3, [naive] { naive(NaiveO3::CalculateAnimation); }}};
    const std::size_t checks = nodes < 10000 ? 16 : 1;
    for (std::size_t i = 0; i < checks; ++i)
        RequireSame(
            ways, [&] { motion->next = i; }, [&] { return motion->Transforms(); });
    return {nodes, ways};
}

void AddSkinning(std::vector<Row>& rows, std::size_t size, Influences mix, std::vector<Target> targets)
{
    const char* const names[] = {"four/", "random/", "runs/"};
    rows.push_back({"UpdateMesh/" + (names[static_cast<int>(mix)] + std::to_string(size)), "vertex", size <= 5000,
                    std::move(targets), [=] { return Skinning(size, mix); }});
}

/// \param isInCache what the targets are about; the times of more show what the memory takes
void AddNormals(std::vector<Row>& rows, std::size_t size, bool isInCache)
{
    const std::string suffix = '/' + std::to_string(size);
    const auto target = [isInCache](double times) {
        return isInCache ? std::vector<Target>{AtLeast(times, kNaive)} : std::vector<Target>{};
    };
    rows.push_back(
        {"Normals/collect" + suffix, "triangle", isInCache, target(1.75), [size] { return Collecting(size); }});
    rows.push_back({"Normals/normalise" + suffix, "normal", isInCache, target(4.5), [size] { return Normalizing(size); }});
    rows.push_back({"Normals/write" + suffix, "corner", isInCache, target(1.5), [size] { return Writing(size); }});
    rows.push_back({"Normals/all" + suffix, "vertex", isInCache, {}, [size] { return Making(size, false); }});
    rows.push_back({"CreateMeshes" + suffix, "vertex", isInCache, {}, [size] { return Making(size, true); }});
}

void AddPosing(std::vector<Row>& rows, std::size_t nodes, std::size_t keys, double times)
{
    const std::string name = "CalculateAnimation/" + std::to_string(nodes) + 'x' + std::to_string(keys);
    for (const bool isPlayback : {false, true})
        rows.push_back(
            {name + (isPlayback ? "/playback" : "/seek"), "node", nodes < 100, {AtLeast(times, kNaive)}, [=] {
                 return Posing(nodes, keys, isPlayback);
             }});
}

} // namespace

void AddSkinRows(std::vector<Row>& rows)
{
    for (const std::size_t size : {24, 200})
        AddSkinning(rows, size, Influences::Four, {AtLeast(1.0, kNaive), AtLeast(1.0, kNaiveO3)});
    for (const std::size_t size : {5000, 50000})
        AddSkinning(rows, size, Influences::Four, {AtLeast(4.0, kNaiveO3)});
    for (const std::size_t size : {10000, 100000, 1000000})
        AddSkinning(rows, size, Influences::Four, {});
    AddSkinning(rows, 500000, Influences::Four, {AtLeast(4.0, kNaiveO3), AtMost(1.6, kTouch)});
    AddSkinning(rows, 50000, Influences::Random, {AtLeast(4.5, kNaive), AtMost(1.15, "UpdateMesh/four/50000")});
    AddSkinning(rows, 50000, Influences::InRuns, {AtLeast(4.5, kNaive), AtMost(0.85, "UpdateMesh/four/50000")});
    AddNormals(rows, 5000, true);
    for (const std::size_t size : {10000, 100000, 1000000})
        AddNormals(rows, size, false);
    AddPosing(rows, 60, 300, 3.7);
    AddPosing(rows, 500, 3000, 45.0);
    // How it grows: more nodes than any cache holds.
    for (const std::size_t nodes : {10000, 100000, 1000000})
        AddPosing(rows, nodes, 4, 1.5);
}

} // namespace Bench
