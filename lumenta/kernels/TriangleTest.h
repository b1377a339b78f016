#pragma once

// Private to the library: the exact test of a segment against a triangle, or
// against eight. Both are this one text, so they agree to the last bit.

#include "lumenta/kernels/TriangleLanes.h"

namespace {

/// Whether `point`, which lies in the plane of `normal`, is not outside the
/// edge from `from` to `to` by more than the tolerance.
template <typename Number>
LUMENTA_LANES_INLINE auto IsInsideEdge(const Vec<Number>& point, const Vec<Number>& normal, const Vec<Number>& from,
                                       const Vec<Number>& to, const Number& tolerance)
{
    const Vec<Number> outwards = Cross(normal, to - from);
    return Dot(point - from, outwards / OneForZero(Sqrt(Square(outwards)))) <= tolerance;
}

/// Where a segment meets a triangle.
template <typename Number>
struct Meeting {
    Vec<Number> point;
    Number t; ///< Along the segment.

    /// \param wanted bit i for the i-th triangle that is asked about
    /// \return those of them that the segment meets; what is not a number meets nothing
    LUMENTA_LANES_INLINE unsigned Find(const Vec<Number>& start, const Vec<Number>& end,
                                       const Triangle<Number>& triangle, const Number& tolerance, unsigned wanted)
    {
        const auto& [p0, p1, p2] = triangle;
        Vec<Number> normal = Cross(p2 - p1, p2 - p0);
        // No length makes it not a number.
        normal = normal / Sqrt(Square(normal));

        const Number zero{};
        const Number plane = Dot(normal, p0) + tolerance;
        const Number d0 = Dot(normal, start) - plane;
        const Number d1 = Dot(normal, end) - plane;
        unsigned met = wanted & Bits(((d0 >= zero) & (d1 < zero)) | ((d0 < zero) & (d1 > zero)));
        if (met == 0) return 0;

        t = d0 / (d0 - d1);
        point = start + (end - start) * t;
        met &= Bits(IsInsideEdge(point, normal, p0, p1, tolerance));
        if (met == 0) return 0;
        met &= Bits(IsInsideEdge(point, normal, p1, p2, tolerance));
        if (met == 0) return 0;
        return met & Bits(IsInsideEdge(point, normal, p2, p0, tolerance));
    }
};

} // namespace
