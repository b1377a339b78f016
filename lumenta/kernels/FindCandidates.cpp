// A filter before the exact test of a segment against triangles, eight at a
// time. It may only pass over what the exact test would reject. That it does:
//
// Let L be the longer of the two edges at P0, N the cross product of those
// edges, M the size of the numbers at hand (sums of absolute coordinates), u the
// unit of rounding (2^-24) and e the tolerance.
// - A triangle that the exact test accepts has a point H that lies on the
//   segment's line within 3uM, off the plane by at most e + 7uM, and outside each
//   edge by at most e + 16uM. So H lies in the triangle grown by e' = e + 32uM
//   along its plane, plus e' off it.
// - Growing by e' scales the triangle about its incentre by 1 + e'/r, where
//   r = |N| / perimeter. The perimeter is at most 4L, and no vertex is farther
//   from the incentre than 2L. So no point of the grown triangle is farther from
//   P0 than L + e'(1 + 8L²/|N|), and H no farther than that plus e'.
// - Passed over is only what has P0 farther from the line than that. With
//   g = e + 2^-17·M, which leaves four times the slack that is needed, also for
//   a segment that was clipped within its block, and (a + b)² <= 1.5a² + 3b²:
//   c²N² > 1.51·L²N² + g²(6.1·N² + 410·L⁴), c the distance from P0 to the line.
// - The region of a sliver grows with L²/|N|. Those thinner than N² = 2^-14·L⁴,
//   those too small for their squares, and whatever is not a finite number are
//   never passed over: each comparison is false for them.

#include "lumenta/kernels/Kernels.h"
#include "lumenta/kernels/TriangleLanes.h"

namespace Kernels::LUMENTA_LEVEL {

namespace {

constexpr float kRounding = 0x1p-17f;
constexpr float kSliver = 0x1p-14f;

LUMENTA_LANES_INLINE Vec8 Splat(const TVec3<float>& v)
{
    return {Splat8(v.x), Splat8(v.y), Splat8(v.z)};
}

/// Those of a block that can't be passed over.
LUMENTA_LANES_INLINE unsigned CandidatesOf(const SegmentQuery& query, const MeshVertex* vertices,
                                           const std::uint32_t* indices)
{
    const Vec8 p0 = Corners(vertices, indices);
    const Vec8 e1 = Corners(vertices, indices + 1) - p0;
    const Vec8 e2 = Corners(vertices, indices + 2) - p0;
    const Vec8 fromStart = p0 - Splat(query.start);

    const Float8 n2 = Square(Cross8(e1, e2));
    const Float8 l2 = Larger(Square(e1), Square(e2));
    const Float8 l4 = l2 * l2;
    const Float8 c2 = Square(Cross8(fromStart, Splat(query.direction)));
    const Float8 m = Splat8(query.reach) + (Abs(fromStart.x) + Abs(fromStart.y) + Abs(fromStart.z));
    const Float8 g = Splat8(query.tolerance) + Splat8(kRounding) * m;

    const Float8 far = c2 * n2;
    const Float8 near = Splat8(1.51f) * l2 * n2 + g * g * (Splat8(6.1f) * n2 + Splat8(410.0f) * l4);
    const Mask8 passedOver = (far > near) & (far < Splat8(1e37f)) & (n2 > Splat8(kSliver) * l4) & (n2 > Splat8(1e-20f));
    return ~Bits(passedOver) & 0xffu;
}

} // namespace

std::size_t FindCandidates(const SegmentQuery& query, const MeshVertex* vertices, const std::uint32_t* indices,
                           std::size_t count, std::size_t first, unsigned& candidates)
{
    for (; first + kBlock <= count; first += kBlock) {
        candidates = CandidatesOf(query, vertices, indices + 3 * first);
        if (candidates != 0) return first;
    }
    candidates = (1u << (count - first)) - 1u;
    return first;
}

} // namespace Kernels::LUMENTA_LEVEL
