// A segment against triangles, eight at a time, in two stages: a filter that
// leaves a few of them, and for those the exact test of TriangleTest.h.
//
// The filter may only pass over what the exact test would reject. That it does:
// suppose that the test accepts a triangle. Let L be the longer of its two edges
// at P0, N the cross product of those edges, q = L²/|N| (never below 1), D how
// far the accepted point H is from P0, R the sum of the absolute coordinates of
// both ends of the segment, e the tolerance, and u the unit of rounding (2^-24).
// All that the test computes with is then at most M = R + D + L in size.
// - H is on the segment's line within 3uR, off the plane of the test's own
//   normal by at most e' = e + 16uM, and outside each edge by at most e', too.
// - That normal is off the true one by an angle of at most 12uq. Slivers apart,
//   q < 130, which makes 2^-13; so H is off the true plane by at most
//   e' + 2^-13·D, and its foot there outside each edge by at most
//   e" = e'(1 + 2^-12) + 2^-26·D.
// - Moving the edges outwards by e" moves a corner whose angle is A, between edges
//   a and b, by e"/sin(A/2) <= 2e"/sin A = 2e"ab/|N|: by no more than 4e"q, as b
//   may be 2L. So the foot is within L + 4e"q of P0.
// - Together D <= L + e' + 4e"q + 2^-13·D. What of this grows with D and L, also
//   within M, adds 0.13 %: D <= 1.0013·L + 5.02·q(e + 16uR).
// - So P0 is no farther from the line, as computed (17uR off, and a little more of
//   D), than 1.0013·L + 5.02·qg, with g = e + 2^-19·R. Squared, with
//   (a + b)² <= 1.25a² + 5b², and N² as computed, which may be 1/60 too large:
//   c² <= 1.26·L² + 129·q²g².
// Passed over is only what is farther off than 1.27·L² + 130·q²g². Slivers have
// larger regions: those with N² <= 2^-14·L⁴, where q would be 128, never are.
//
// Range: what is passed over has N² > 1e-20, so that L² > 1e-10 and underflow is
// far below what the factors leave; and a finite L⁴, so that with g < 1e12 no
// accepted triangle's c² can overflow. Whatever is not a number is never passed
// over: the comparisons are false for it.

#include "lumenta/kernels/Kernels.h"
#include "lumenta/kernels/TriangleTest.h"

namespace Kernels::LUMENTA_LEVEL {

namespace {

constexpr float kRounding = 0x1p-19f;
constexpr float kNear = 1.27f;
constexpr float kGrown = 130.0f;
constexpr float kSliver = 0x1p-14f;

// In triangles:
constexpr std::size_t kCached = std::size_t(1) << 18;
constexpr std::size_t kAhead = 128;
constexpr std::size_t kIndicesAhead = 1024;

LUMENTA_LANES_INLINE float SumOfAbs(const Vec1& v)
{
    return __builtin_fabsf(v.x) + __builtin_fabsf(v.y) + __builtin_fabsf(v.z);
}

LUMENTA_LANES_INLINE Vec8 Splat(const Vec1& v)
{
    return {Splat8(v.x), Splat8(v.y), Splat8(v.z)};
}

/// A segment, as the filter sees it.
struct Line {
    Vec8 start;
    Vec8 direction; ///< Of length 1, or not a number where nothing may be passed over.
    Float8 grown;   ///< 130·g²
};

LUMENTA_LANES_INLINE Line LineOf(const Segment& segment)
{
    const Vec1 start = ToVec(segment.start);
    const Vec1 end = ToVec(segment.end);
    const float length = Sqrt(Square(end - start));
    const float g = segment.tolerance + kRounding * (SumOfAbs(start) + SumOfAbs(end));
    const float usable = length > 1e-15f && g < 1e12f ? length : __builtin_nanf("");
    return {Splat(start), Splat((end - start) / usable), Splat8(kGrown * g * g)};
}

/// Those that the exact test need not see.
LUMENTA_LANES_INLINE unsigned PassedOver(const Line& line, const Triangle<Float8>& triangles)
{
    const Vec8 e1 = triangles.p1 - triangles.p0;
    const Vec8 e2 = triangles.p2 - triangles.p0;
    const Float8 a2 = Square(e1);
    const Float8 b2 = Square(e2);
    const Float8 ab = Dot(e1, e2);
    const Float8 n2 = a2 * b2 - ab * ab;
    const Float8 l2 = Larger(a2, b2);
    const Float8 l4 = l2 * l2;
    const Float8 c2 = Square(Cross(triangles.p0 - line.start, line.direction));
    return Bits(((c2 - Splat8(kNear) * l2) * n2 > line.grown * l4) & (n2 > Splat8(kSliver) * l4 + Splat8(1e-20f)));
}

/// Whether corners are better asked for ahead: where neighbours share them in a mesh
/// beyond the caches. The processor alone foresees one row of records, not the two
/// between which a strip of triangles lies; where nothing is shared it does better alone.
LUMENTA_LANES_INLINE bool IsAskedAhead(const std::uint32_t* indices, std::size_t count)
{
    return count > kCached && indices[3 * count - 1] < count; // about as many vertices as its number
}

LUMENTA_LANES_INLINE void AskAhead(const MeshVertex* vertices, const std::uint32_t* corners)
{
    for (std::size_t line = 0; line < 2; ++line)
        __builtin_prefetch(corners + 3 * kIndicesAhead + 16 * line, 0, 2);
    for (std::size_t i = 0; i < kBlock; ++i)
        __builtin_prefetch(vertices + corners[3 * (kAhead + i)], 0, 2);
}

} // namespace

std::size_t FindHit(const Segment& segment, const MeshVertex* vertices, const std::uint32_t* indices, std::size_t count,
                    std::size_t first, Hit& hit)
{
    const Line line = LineOf(segment);
    const bool isAskedAhead = IsAskedAhead(indices, count);
    std::uint32_t lastBlock[3 * kBlock] = {};
    for (; first < count; first += kBlock) {
        const std::uint32_t* corners = indices + 3 * first;
        unsigned asked = 0xffu;
        if (isAskedAhead && first + kIndicesAhead + 2 * kBlock <= count) AskAhead(vertices, corners);
        if (first + kBlock > count) {
            asked >>= first + kBlock - count;
            std::memcpy(lastBlock, corners, 3 * (count - first) * sizeof *corners);
            corners = lastBlock;
        }

        const Triangle<Float8> triangles = {Corners(vertices, corners), Corners(vertices, corners + 1),
                                            Corners(vertices, corners + 2)};
        const unsigned candidates = asked & ~PassedOver(line, triangles);
        if (candidates == 0) continue;
        Meeting<Float8> meeting;
        const unsigned hits = meeting.Find(Splat(ToVec(segment.start)), Splat(ToVec(segment.end)), triangles,
                                           Splat8(segment.tolerance), candidates);
        if (hits == 0) continue;
        const auto lane = static_cast<unsigned>(__builtin_ctz(hits));
        float lanes[4][kBlock];
        std::memcpy(lanes, &meeting, sizeof lanes);
        hit = {{lanes[0][lane], lanes[1][lane], lanes[2][lane]}, lanes[3][lane]};
        return first + lane;
    }
    return count;
}

} // namespace Kernels::LUMENTA_LEVEL
