// Normals of triangles, and their sums.
//
// What one triangle adds to its slots is worked out for eight triangles side by
// side; the adding itself goes on one after the other, in the order of the
// triangles, since it is the order that rounds.

#include "lumenta/kernels/Kernels.h"
#include "lumenta/kernels/TriangleLanes.h"

namespace Kernels::LUMENTA_LEVEL {

namespace {

/// Triangles whose normals are worked out before any is added, lest the adding waits
/// for roots and divisions.
constexpr std::size_t kTriangles = 32;

using Float2 = float __attribute__((vector_size(8)));

/// Normals of triangles as their sums take them: two components, and the third apart.
struct FaceNormals {
    float xy[2 * kTriangles];
    float z[kTriangles];
};

/// Of eight triangles.
LUMENTA_LANES_INLINE void FillEight(FaceNormals& normals, std::size_t at, const MeshVertex* vertices,
                                    const std::uint32_t* indices)
{
    const Vec8 b = Corners(vertices, indices + 1);
    const Vec8 n = Cross(Corners(vertices, indices) - b, Corners(vertices, indices + 2) - b);
    // A number divided by 1 is that number: only zero lengths are spared.
    const Float8 divisors = OneForZero(Sqrt8(Square(n)));
    const Float8 x = n.x / divisors;
    const Float8 y = n.y / divisors;
    const Float8 z = n.z / divisors;
    const Float8 low = Mix<0, 4, 1, 5>(x, y);
    const Float8 high = Mix<2, 6, 3, 7>(x, y);
    float* const xy = normals.xy + 2 * at;
    Store4(xy, Low(low));
    Store4(xy + 4, Low(high));
    Store4(xy + 8, High(low));
    Store4(xy + 12, High(high));
    Store4(normals.z + at, Low(z));
    Store4(normals.z + at + 4, High(z));
}

/// A triangle mostly waits for a sum of the one before it: nothing but the addition
/// stands between reading a sum and writing it.
LUMENTA_LANES_INLINE void Add(const FaceNormals& normals, std::size_t i, TVec3<float>& sum)
{
    Float2 summand;
    Float2 xy;
    std::memcpy(&summand, normals.xy + 2 * i, sizeof summand);
    std::memcpy(&xy, &sum.x, sizeof xy);
    xy = xy + summand;
    std::memcpy(&sum.x, &xy, sizeof xy);
    sum.z = sum.z + normals.z[i];
}

} // namespace

void AddFaceNormals(const MeshVertex* vertices, const std::uint32_t* indices, const std::uint32_t* slotOfCorner,
                    std::size_t count, TVec3<float>* sums)
{
    FaceNormals normals;
    for (std::size_t first = 0; first < count; first += kTriangles) {
        const std::size_t size = count - first < kTriangles ? count - first : kTriangles;
        const std::uint32_t* const corners = indices + 3 * first;
        std::size_t i = 0;
        for (; i + kBlock <= size; i += kBlock)
            FillEight(normals, i, vertices, corners + 3 * i);
        if (i < size) {
            std::uint32_t rest[3 * kBlock] = {};
            std::memcpy(rest, corners + 3 * i, 3 * (size - i) * sizeof *rest);
            FillEight(normals, i, vertices, rest);
        }
        const std::uint32_t* slots = slotOfCorner + 3 * first;
        for (i = 0; i < size; ++i, slots += 3) {
            // Read before a sum is written, which might be one of them for all the compiler knows.
            const std::uint32_t a = slots[0];
            const std::uint32_t b = slots[1];
            const std::uint32_t c = slots[2];
            Add(normals, i, sums[a]);
            Add(normals, i, sums[b]);
            Add(normals, i, sums[c]);
        }
    }
}

void NormalizeAll(TVec3<float>* normals, std::size_t count)
{
    std::size_t i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        // Four normals are twelve floats, xyzx yzxy zxyz; the other four lie beside them.
        float* const first = &normals[i].x;
        const Float8 a = Join(Load4(first), Load4(first + 12));
        const Float8 b = Join(Load4(first + 4), Load4(first + 16));
        const Float8 c = Join(Load4(first + 8), Load4(first + 20));
        const Vec8 v = {Mix<0, 3, 6, 7>(a, Mix<0, 0, 2, 5>(b, c)),
                        Mix<0, 1, 4, 5>(Mix<1, 4, 1, 4>(a, b), Mix<3, 6, 3, 6>(b, c)),
                        Mix<0, 1, 4, 7>(Mix<2, 5, 2, 5>(a, b), c)};
        const Float8 d = OneForZero(Sqrt8(Square(v)));
        const Float8 thirds[3] = {a / Mix<0, 0, 0, 1>(d, d), b / Mix<1, 1, 2, 2>(d, d), c / Mix<2, 3, 3, 3>(d, d)};
        for (int n = 0; n < 3; ++n) {
            Store4(first + 4 * n, Low(thirds[n]));
            Store4(first + 12 + 4 * n, High(thirds[n]));
        }
    }
    for (; i < count; ++i) {
        TVec3<float>& n = normals[i];
        const float length = __builtin_sqrtf(n.x * n.x + n.y * n.y + n.z * n.z);
        if (length != 0.0f) n = {n.x / length, n.y / length, n.z / length};
    }
}

} // namespace Kernels::LUMENTA_LEVEL
