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
        Kernels::Hit hit;
        if (i + kFew <= count) {
            i = kernels.findHit(segment, vertices, indices, count, i, hit);
            if (i == count) break;
        } else {
            const auto corner = [&](std::size_t k) { return ToVec(vertices[indices[3 * i + k]].position); };
            Meeting<float> meeting;
            if (meeting.Find(ToVec(start), ToVec(segment.end), {corner(0), corner(1), corner(2)}, tolerance, 1u) == 0)
                continue;
            hit = {{meeting.point.x, meeting.point.y, meeting.point.z}, meeting.t};
        }
        segment.end = hit.point;
        nearest *= hit.t;
    }
    return nearest;
}
