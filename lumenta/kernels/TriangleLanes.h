#pragma once

// Private to the kernels: eight triangles side by side.

#include "lumenta/foundation/MeshVertex.h"
#include "lumenta/kernels/Lanes.h"

namespace {

struct Vec8 {
    Float8 x, y, z;

    LUMENTA_LANES_INLINE Vec8 operator-(const Vec8& b) const { return {x - b.x, y - b.y, z - b.z}; }
};

LUMENTA_LANES_INLINE Vec8 Cross8(const Vec8& a, const Vec8& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

LUMENTA_LANES_INLINE Float8 Square(const Vec8& v)
{
    return v.x * v.x + v.y * v.y + v.z * v.z;
}

/// One corner of each of eight triangles.
/// \param indices of that corner in the first triangle
LUMENTA_LANES_INLINE Vec8 Corners(const MeshVertex* vertices, const std::uint32_t* indices)
{
    // Four floats from a record of fifteen: the position and one more.
    const auto row = [=](int i) { return Load4(vertices + indices[3 * i]); };
    const Float8 a = Join(row(0), row(4));
    const Float8 b = Join(row(1), row(5));
    const Float8 c = Join(row(2), row(6));
    const Float8 d = Join(row(3), row(7));
    const Float8 xyOfAB = Mix<0, 4, 1, 5>(a, b);
    const Float8 xyOfCD = Mix<0, 4, 1, 5>(c, d);
    return {Mix<0, 1, 4, 5>(xyOfAB, xyOfCD), Mix<2, 3, 6, 7>(xyOfAB, xyOfCD),
            Mix<0, 1, 4, 5>(Mix<2, 6, 3, 7>(a, b), Mix<2, 6, 3, 7>(c, d))};
}

} // namespace
