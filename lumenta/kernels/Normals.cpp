// Normals of triangles, and their sums.
//
// What one triangle adds to its slotOfCorner is worked out for eight triangles side by
// side; the adding itself goes on one after the other, in the order of the
// triangles, since it is the order that rounds.

#include "lumenta/kernels/Kernels.h"
#include "lumenta/kernels/TriangleLanes.h"

namespace Kernels::LUMENTA_LEVEL {

namespace {

LUMENTA_LANES_INLINE void Add(Float4 normal, const std::uint32_t* slotOfCorner, TVec3<float>* sums)
{
    for (int corner = 0; corner < 3; ++corner)
        Store3(sums[slotOfCorner[corner]], Load3(sums[slotOfCorner[corner]]) + normal);
}

/// Of eight triangles; those behind `count` are not there.
LUMENTA_LANES_INLINE void AddBlock(const MeshVertex* vertices, const std::uint32_t* indices,
                                   const std::uint32_t* slotOfCorner, std::size_t count, TVec3<float>* sums)
{
    const Vec8 b = Corners(vertices, indices + 1);
    Vec8 n = Cross(Corners(vertices, indices) - b, Corners(vertices, indices + 2) - b);
    // A number divided by 1 is that number: only zero lengths are spared.
    const Float8 divisors = OneForZero(Sqrt8(Square(n)));
    n = {n.x / divisors, n.y / divisors, n.z / divisors};

    const Float8 xyOfFirst = Mix<0, 4, 1, 5>(n.x, n.y);
    const Float8 xyOfOthers = Mix<2, 6, 3, 7>(n.x, n.y);
    const Float8 triangles[4] = {Mix<0, 1, 4, 4>(xyOfFirst, n.z), Mix<2, 3, 5, 5>(xyOfFirst, n.z),
                                 Mix<0, 1, 6, 6>(xyOfOthers, n.z), Mix<2, 3, 7, 7>(xyOfOthers, n.z)};
    for (std::size_t i = 0; i < 4 && i < count; ++i)
        Add(Low(triangles[i]), slotOfCorner + 3 * i, sums);
    for (std::size_t i = 4; i < 8 && i < count; ++i)
        Add(High(triangles[i - 4]), slotOfCorner + 3 * i, sums);
}

} // namespace

void AddFaceNormals(const MeshVertex* vertices, const std::uint32_t* indices, const std::uint32_t* slotOfCorner,
                    std::size_t count, TVec3<float>* sums)
{
    std::size_t i = 0;
    for (; i + kBlock <= count; i += kBlock)
        AddBlock(vertices, indices + 3 * i, slotOfCorner + 3 * i, kBlock, sums);
    if (i == count) return;
    std::uint32_t rest[3 * kBlock] = {};
    std::memcpy(rest, indices + 3 * i, 3 * (count - i) * sizeof *rest);
    AddBlock(vertices, rest, slotOfCorner + 3 * i, count - i, sums);
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
