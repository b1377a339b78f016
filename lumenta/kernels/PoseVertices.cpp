// Moves vertices by the bones that hold them.
//
// A matrix row is four lanes, so a point times a matrix is three products of a
// broadcast component with a row: lane by lane the scalar terms in the scalar
// order. A vertex's normal stands in the other four lanes beside its position,
// and beside each row of a bone one of its turned inverse; where the position
// has a fourth row to add, the normal adds -0, which changes no number. Lanes
// that no component stands in carry whatever falls out and are never stored.
//
// Vertices are taken in groups. Where all of a group are held by as many bones,
// nothing is asked about any of them. Otherwise four shares are worked out for
// each, those that it lacks with a bone that exists, and a sum is selected, not
// added: what is left out may be no number. That is cheaper than a branch which
// nobody can predict.
//
// Roots and divisions come after the sums, in blocks: they would stall them.

#include "lumenta/kernels/Kernels.h"
#include "lumenta/kernels/Lanes.h"
#include "lumenta/skin/SkinVertex.h"

namespace Kernels::LUMENTA_LEVEL {

namespace {

using SkinAnimation::SkinVertex;

constexpr std::size_t kGroup = 4;
constexpr std::size_t kNormals = 32; ///< In a block.

struct Rows {
    Float8 row[4];
};

LUMENTA_LANES_INLINE Rows Load(const BoneRows& source)
{
    return {Load8(source.rows[0]), Load8(source.rows[1]), Load8(source.rows[2]), Load8(source.rows[3])};
}

/// Position and normal times their matrices.
LUMENTA_LANES_INLINE Float8 Move(const Float8& v, const Rows& m)
{
    return Mix<0, 0, 0, 0>(v, v) * m.row[0] + Mix<1, 1, 1, 1>(v, v) * m.row[1] + Mix<2, 2, 2, 2>(v, v) * m.row[2]
           + m.row[3];
}

LUMENTA_LANES_INLINE Float8 PositionAndNormal(const SkinVertex& v)
{
    return Join(Load4(&v.position), Load4(&v.normal));
}

/// How many bones hold it: none of a vertex whose first weight is not positive.
LUMENTA_LANES_INLINE int HoldsOf(const SkinVertex& v)
{
    const unsigned zeros = Bits4(Load4(v.weights) == 0.0f);
    return v.weights[0] > 0.0f ? __builtin_ctz(zeros | 16u) : 0;
}

/// What one of the bones adds.
LUMENTA_LANES_INLINE Float8 Share(const BoneRows& bone, const Float8& bound, float weight)
{
    return Move(bound, Load(bone)) * Splat8(weight);
}

/// A vertex that `Count` bones hold.
template <int Count>
LUMENTA_LANES_INLINE Float8 Held(const BoneRows* bones, const Rows& bind, const SkinVertex& v)
{
    const Float8 bound = Move(PositionAndNormal(v), bind);
    Float8 sum = Splat8(0.0f);
    for (int j = 0; j < Count; ++j)
        sum = sum + Share(bones[v.boneIndices[j]], bound, v.weights[j]);
    return sum;
}

LUMENTA_LANES_INLINE Float8 PoseOne(const PoseQuery& query, const Rows& bind, const Rows& rigid, const SkinVertex& v)
{
    switch (query.isSkinned ? HoldsOf(v) : 0) {
    case 1:
        return Held<1>(query.bones, bind, v);
    case 2:
        return Held<2>(query.bones, bind, v);
    case 3:
        return Held<3>(query.bones, bind, v);
    case 4:
        return Held<4>(query.bones, bind, v);
    default:
        return Move(PositionAndNormal(v), rigid);
    }
}

template <int Count>
LUMENTA_LANES_INLINE void PoseAlike(const BoneRows* bones, const Rows& bind, const SkinVertex* v, Float8* sums)
{
    for (std::size_t i = 0; i < kGroup; ++i)
        sums[i] = Held<Count>(bones, bind, v[i]);
}

/// The masks of the four shares, by how many count.
struct Alive {
    alignas(32) std::int32_t masks[5][4][8];

    constexpr Alive()
        : masks{}
    {
        for (int count = 0; count < 5; ++count)
            for (int j = 0; j < count; ++j)
                for (std::int32_t& lane : masks[count][j])
                    lane = -1;
    }
};
constexpr Alive kAlive;

/// A vertex that `count` bones hold, without asking how many: the shares of
/// others are worked out with a bone that exists, and left out.
LUMENTA_LANES_INLINE Float8 HeldByAny(const BoneRows* bones, const Rows& bind, const SkinVertex& v, int count)
{
    const Float8 bound = Move(PositionAndNormal(v), bind);
    Float8 sum = Splat8(0.0f);
    for (int j = 0; j < 4; ++j) {
        const std::int32_t* const alive = kAlive.masks[count][j];
        const int bone = v.boneIndices[j] & *alive;
        sum = Select(alive, sum + Share(bones[bone], bound, v.weights[j]), sum);
    }
    return sum;
}

/// \return whether it was done: a vertex that no bone holds spoils the group
LUMENTA_LANES_INLINE bool PoseGroup(const BoneRows* bones, const Rows& bind, const SkinVertex* v, Float8* sums)
{
    const int holds[kGroup] = {HoldsOf(v[0]), HoldsOf(v[1]), HoldsOf(v[2]), HoldsOf(v[3])};
    int least = holds[0];
    int most = holds[0];
    for (const int each : holds) {
        least = each < least ? each : least;
        most = each > most ? each : most;
    }
    if (least == 0) return false;
    if (least != most)
        for (std::size_t i = 0; i < kGroup; ++i)
            sums[i] = HeldByAny(bones, bind, v[i], holds[i]);
    else if (most == 4)
        PoseAlike<4>(bones, bind, v, sums);
    else if (most == 3)
        PoseAlike<3>(bones, bind, v, sums);
    else if (most == 2)
        PoseAlike<2>(bones, bind, v, sums);
    else
        PoseAlike<1>(bones, bind, v, sums);
    return true;
}

/// The lengths of four normals, 1 in place of 0: divided by 1, a number is what
/// it was.
LUMENTA_LANES_INLINE Float4 Divisors(const Float4* normals)
{
    const Float4 a = normals[0] * normals[0];
    const Float4 b = normals[1] * normals[1];
    const Float4 c = normals[2] * normals[2];
    const Float4 d = normals[3] * normals[3];
    const Float4 xyOfAB = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    const Float4 xyOfCD = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const Float4 zOfAB = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const Float4 zOfCD = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    const Float4 length =
        Sqrt4(__builtin_shufflevector(xyOfAB, xyOfCD, 0, 1, 4, 5) + __builtin_shufflevector(xyOfAB, xyOfCD, 2, 3, 6, 7)
              + __builtin_shufflevector(zOfAB, zOfCD, 0, 1, 4, 5));
    return OneForZero4(length);
}

/// Of a block whose normals lie aside, each divided by its length where that is
/// not exactly 0.
LUMENTA_LANES_INLINE void StoreNormals(const Float4* normals, std::size_t count, MeshVertex* posed)
{
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const Float4 divisors = Divisors(normals + i);
        for (std::size_t n = 0; n < 4; ++n)
            Store3(posed[i + n].normal, normals[i + n] / Splat4(divisors[n]));
    }
    if (i == count) return;
    const Float4 divisors = Divisors(normals + i);
    for (std::size_t n = 0; i + n < count; ++n)
        Store3(posed[i + n].normal, normals[i + n] / Splat4(divisors[n]));
}

/// Places the sums of a vertex; its normal is put aside.
LUMENTA_LANES_INLINE void Place(const Float8& sums, const Float8& scale, const Float8& offset, const SkinVertex& vertex,
                                MeshVertex& posed, Float4& normal)
{
    const Float8 placed = sums * scale + offset;
    Store3(posed.position, Low(placed));
    normal = High(placed);
    posed.texCoord = vertex.texCoord;
}

} // namespace

void PoseVertices(const PoseQuery& query, const SkinVertex* vertices, std::size_t count, MeshVertex* posed)
{
    const Rows bind = Load(query.bind);
    const Rows rigid = Load(query.rigid);
    const Float8 scale = Load8(query.scale);
    const Float8 offset = Load8(query.offset);

    Float4 normals[kNormals] = {};
    for (std::size_t first = 0; first < count; first += kNormals) {
        const std::size_t size = count - first < kNormals ? count - first : kNormals;
        const SkinVertex* const in = vertices + first;
        MeshVertex* const out = posed + first;
        for (std::size_t i = 0; i < size;) {
            Float8 sums[kGroup];
            if (query.isSkinned && i + kGroup <= size && PoseGroup(query.bones, bind, in + i, sums)) {
                for (std::size_t n = 0; n < kGroup; ++n, ++i)
                    Place(sums[n], scale, offset, in[i], out[i], normals[i]);
            } else {
                Place(PoseOne(query, bind, rigid, in[i]), scale, offset, in[i], out[i], normals[i]);
                ++i;
            }
        }
        StoreNormals(normals, size, out);
    }
}

} // namespace Kernels::LUMENTA_LEVEL
