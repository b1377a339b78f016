#include "lumenta/scene/TraceTriangles.h"

#include <cmath>
#include <limits>
#include <optional>

// Comparisons are written so that a number decides them in favour of a hit: with
// NaN in them they are false, and nothing is hit.

namespace {

using Vec3 = TVec3<float>;

/// Whether `point`, which lies in the plane of `normal`, is not outside the
/// edge from `from` to `to` by more than the tolerance.
bool IsInsideEdge(const Vec3& point, const Vec3& normal, const Vec3& from, const Vec3& to, float tolerance)
{
    return Dot(point - from, Normalized(Cross(normal, to - from))) <= tolerance;
}

/// Moves `end` to where the segment meets the triangle.
/// \return by how much that shortened the segment; nothing where it doesn't meet
std::optional<float> ClipAtTriangle(const Vec3& start, Vec3& end, const Vec3& p0, const Vec3& p1, const Vec3& p2,
                                    float tolerance)
{
    Vec3 normal = Cross(p2 - p1, p2 - p0);
    const float length = Length(normal);
    if (length == 0.0f) return std::nullopt;
    normal = {normal.x / length, normal.y / length, normal.z / length};

    const float plane = Dot(normal, p0) + tolerance;
    float d0 = Dot(normal, start) - plane;
    float d1 = Dot(normal, end) - plane;
    if (d0 < 0.0f) {
        d0 = -d0;
        d1 = -d1;
    }
    if (!(d1 < 0.0f)) return std::nullopt;

    const float t = d0 / (d0 - d1);
    const Vec3 point = start + (end - start) * t;
    if (!IsInsideEdge(point, normal, p0, p1, tolerance) || !IsInsideEdge(point, normal, p1, p2, tolerance)
        || !IsInsideEdge(point, normal, p2, p0, tolerance))
        return std::nullopt;
    end = point;
    return t;
}

/// For a segment too short for a direction that is no number: nothing is passed
/// over then.
Kernels::SegmentQuery QueryOf(const Vec3& start, const Vec3& end, float tolerance)
{
    const auto sum = [](const Vec3& v) { return std::fabs(v.x) + std::fabs(v.y) + std::fabs(v.z); };
    const Vec3 delta = end - start;
    const float length = Length(delta);
    const float usable = length > 1e-15f ? length : std::numeric_limits<float>::quiet_NaN();
    return {start, {delta.x / usable, delta.y / usable, delta.z / usable}, sum(start) + sum(end), tolerance};
}

} // namespace

float TraceTriangles(const Kernels::Table& kernels, const Vec3& start, const Vec3& end, float tolerance,
                     const MeshVertex* vertices, const std::uint32_t* indices, std::size_t count)
{
    // Each hit shortens the segment, so that only a nearer one can follow.
    Vec3 clippedEnd = end;
    float nearest = 1.0f;
    Kernels::SegmentQuery query = QueryOf(start, end, tolerance);
    unsigned candidates = 0;
    for (std::size_t first = 0; first < count; first += Kernels::kBlock) {
        first = kernels.findCandidates(query, vertices, indices, count, first, candidates);
        for (; candidates != 0; candidates &= candidates - 1) {
            const std::uint32_t* const corner =
                indices + 3 * (first + static_cast<unsigned>(__builtin_ctz(candidates)));
            const auto t = ClipAtTriangle(start, clippedEnd, vertices[corner[0]].position, vertices[corner[1]].position,
                                          vertices[corner[2]].position, tolerance);
            if (!t) continue;
            nearest *= *t;
            query = QueryOf(start, clippedEnd, tolerance);
        }
    }
    return nearest;
}
