#include "lumenta/scene/TraceTriangles.h"

#include "lumenta/kernels/TriangleTest.h"

namespace {

constexpr std::size_t kFew = 4; ///< Fewer triangles are faster tested one by one.

} // namespace

float TraceTriangles(const Kernels::Table& kernels, const TVec3<float>& start, const TVec3<float>& end, float tolerance,
                     const MeshVertex* vertices, const std::uint32_t* indices, std::size_t count)
{
    // Each hit shortens the segment, so that only a nearer one can follow.
    Kernels::Segment segment{start, end, tolerance};
    float nearest = 1.0f;
    for (std::size_t i = 0; i < count; ++i) {
        if (i + kFew <= count) i = kernels.findHit(segment, vertices, indices, count, i);
        if (i == count) break;
        const auto corner = [&](std::size_t k) { return ToVec(vertices[indices[3 * i + k]].position); };
        Meeting<float> hit;
        if (hit.Find(ToVec(segment.start), ToVec(segment.end), {corner(0), corner(1), corner(2)}, tolerance, 1u) == 0)
            continue;
        segment.end = {hit.point.x, hit.point.y, hit.point.z};
        nearest *= hit.t;
    }
    return nearest;
}
