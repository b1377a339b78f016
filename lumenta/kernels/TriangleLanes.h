#pragma once

// Private to the kernels: triangles, one or eight side by side. A Number is a
// float or a Float8.

#include "lumenta/foundation/MeshVertex.h"
#include "lumenta/kernels/Lanes.h"

namespace {

// What Lanes.h has for eight.
LUMENTA_LANES_INLINE float Sqrt(float v)
{
    return __builtin_sqrtf(v);
}

LUMENTA_LANES_INLINE float OneForZero(float v)
{
    return v == 0.0f ? 1.0f : v;
}

LUMENTA_LANES_INLINE unsigned Bits(bool is)
{
    return is;
}

LUMENTA_LANES_INLINE Float8 Sqrt(const Float8& v)
{
    return Sqrt8(v);
}

template <typename Number>
struct Vec {
    Number x, y, z;

    LUMENTA_LANES_INLINE Vec operator+(const Vec& b) const { return {x + b.x, y + b.y, z + b.z}; }
    LUMENTA_LANES_INLINE Vec operator-(const Vec& b) const { return {x - b.x, y - b.y, z - b.z}; }
    LUMENTA_LANES_INLINE Vec operator*(const Number& b) const { return {x * b, y * b, z * b}; }
    LUMENTA_LANES_INLINE Vec operator/(const Number& b) const { return {x / b, y / b, z / b}; }
};

using Vec1 = Vec<float>;
using Vec8 = Vec<Float8>;

template <typename Number>
LUMENTA_LANES_INLINE Vec<Number> Cross(const Vec<Number>& a, const Vec<Number>& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

template <typename Number>
LUMENTA_LANES_INLINE Number Dot(const Vec<Number>& a, const Vec<Number>& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

template <typename Number>
LUMENTA_LANES_INLINE Number Square(const Vec<Number>& v)
{
    return Dot(v, v);
}

template <typename Number>
struct Triangle {
    Vec<Number> p0, p1, p2;
};

LUMENTA_LANES_INLINE Vec1 ToVec(const TVec3<float>& v)
{
    return {v.x, v.y, v.z};
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
