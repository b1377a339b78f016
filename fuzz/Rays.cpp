#include "benchmarks/NaiveScene.h"
#include "benchmarks/NaiveSkin.h"
#include "benchmarks/SceneStandIns.h"
#include "fuzz/Levels.h"
#include "fuzz/Skeleton.h"
#include "lumenta/scene/TraceTriangles.h"

// Segments of any ends against triangles, boxes and balls of any numbers: the
// plain definition's bits at each level.

using Fuzz::Require;
using Vec3 = TVec3<float>;

namespace {

bool IsSame(float a, float b)
{
    return Bench::SameBits(std::vector<float>{a}, std::vector<float>{b});
}

/// A power of two.
float Scale(Fuzz::Input& input)
{
    return input.Flag() ? 1.0f : std::ldexp(1.0f, static_cast<int>(input.Below(128)) - 64);
}

/// Corners anywhere, or close to one of those before them: slivers.
std::vector<Vec3> Corners(Fuzz::Input& input)
{
    std::vector<Vec3> corners{{}};
    const float scale = Scale(input), nearby = scale * Scale(input);
    const Vec3 centre = Fuzz::Vector(input);
    for (std::uint32_t i = input.Below(40); i > 0; --i) {
        const bool isNear = input.Below(3) == 0;
        const Vec3 step = Fuzz::Vector(input);
        corners.push_back(isNear ? corners[input.Byte() % corners.size()] + step * nearby : centre + step * scale);
    }
    return corners;
}

/// Between corners, or along an edge, or anywhere; as long as can be.
Ray Aimed(Fuzz::Input& input, const std::vector<Vec3>& corners)
{
    const auto corner = [&] { return corners[input.Byte() % corners.size()]; };
    const Vec3 a = corner(), b = corner(), c = corner();
    const Vec3 target = a + (b - a) * (input.Float() * 0.25f) + (c - a) * (input.Float() * 0.25f);
    const Vec3 start = input.Flag() ? Fuzz::Vector(input) * Scale(input) : target + Fuzz::Vector(input) * Scale(input);
    return {start, input.Flag() ? start + (target - start) * (Scale(input) * input.Float()) : Fuzz::Vector(input)};
}

void CompareTraces(Fuzz::Input input)
{
    const std::vector<Vec3> corners = Corners(input);
    StandIn::Mesh mesh(corners);
    mesh.indices.resize(3 * input.Below(40));
    for (unsigned int& index : mesh.indices)
        index = static_cast<unsigned int>(input.Byte() % corners.size());
    if (input.Below(4) == 0) mesh.box = TBBox<float>(Fuzz::Vector(input), Fuzz::Vector(input));
    const Ray ray = Aimed(input, corners);
    const float plain = Naive::Trace(ray, mesh);
    Require(IsSame(ray.Trace(mesh), plain), "a mesh is met in the same place");

    const TBBox<float>& box = mesh.box;
    const bool isBox = box.min.x <= box.max.x && box.min.y <= box.max.y && box.min.z <= box.max.z;
    const float tolerance = Ray::kTolerance * (isBox ? Length(box.max - box.min) : 0.0f);
    for (const Kernels::Table* const level : Fuzz::Levels())
        Require(IsSame(TraceTriangles(*level, ray.start, ray.end, tolerance, mesh.vertices.data(), mesh.indices.data(),
                                      mesh.indices.size() / 3),
                       plain),
                "triangles are met in the same place");
}

void CompareBoxes(Fuzz::Input input)
{
    const TBBox<float> box(Fuzz::Vector(input), Fuzz::Vector(input));
    const Matrix global = Fuzz::Transform(input);
    const Vec3 from = Fuzz::Vector(input), to = Fuzz::Vector(input);
    Kernels::SegmentEnds ends;
    for (int i = 0; i < 8; ++i) {
        const Vec3& end = i < 4 ? from : to;
        ends.x[i] = end.x;
        ends.y[i] = end.y;
        ends.z[i] = end.z;
    }
    std::vector<Vec3> plain{from, to};
    Matrix inverse;
    const bool isInverted = Naive::Inverse(inverse, global);
    for (Vec3& end : plain)
        TransformPoint(end, inverse);
    Ray local(plain[0], plain[1]);
    const bool isMet = Naive::IsIntersect(local, box);
    Require(local.IsIntersect(box) == isMet, "a box is met or not");
    for (const Kernels::Table* const level : Fuzz::Levels()) {
        std::vector<Vec3> ours(2);
        const bool isHere = level->meetBox(global.m, ends, box, ours.data());
        Require(isHere == (isInverted && isMet), "a turned box is met or not");
        Require(!isHere || Bench::SameBits(ours, plain), "a segment's ends lie in the same place");
    }

    const float inBox = local.Trace(box);
    Require((inBox >= 0.0f && inBox <= 1.0f) || std::isnan(inBox), "a box is met within the segment");
    const float radius = input.Float();
    const float inBall = local.Trace(box.min, radius);
    Require(inBall >= 0.0f && inBall <= 1.0f, "a ball is met within the segment");
    Require(inBall == 1.0f || local.IsIntersect(box.min, radius), "a ball that is hit is touched");
    local.Clip(input.Float());
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    if (input.Below(4) == 0)
        CompareBoxes(input);
    else
        CompareTraces(input);
    return 0;
}
