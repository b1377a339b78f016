// Moves vertices by the bones that hold them.
//
// A matrix row is four lanes, so a point times a matrix is three products of a
// component, spread over the lanes, with a row: lane by lane the scalar terms in
// the scalar order. A vertex's normal stands in the other four lanes beside its
// position, and beside each row of a bone one of its turned inverse; where the
// position has a fourth row to add, the normal adds -0, which changes no number.
// Lanes that no component stands in carry whatever falls out; the one behind a
// position is stored, and overwritten by the normal that belongs there.
//
// Nothing that one vertex becomes depends on another, so the order in which they
// are taken is free. Those of a block that are held by as many bones are taken
// together: no branch asks about a single vertex, nobody could predict it. Four
// (or two) go side by side, because the sums of one alone would wait for each
// other. Roots and divisions come after the sums, they would hold them up.

#include "lumenta/kernels/Kernels.h"
#include "lumenta/kernels/Lanes.h"
#include "lumenta/skin/SkinVertex.h"

namespace Kernels::LUMENTA_LEVEL {

namespace {

using SkinAnimation::SkinVertex;

/// Vertices of a block, a bit for each.
using Set = std::uint32_t;

constexpr std::size_t kVertices = 32; ///< In a block.
constexpr std::size_t kAhead = 64;    ///< In vertices: where memory is asked for what comes.
constexpr Set kAll = ~Set{0};

/// The vertices of a block that at least so many bones hold.
struct Held {
    Set byOne = 0;
    Set byTwo = 0;
    Set byThree = 0;
    Set byFour = 0;
};

struct Rows {
    Float8 row[4];
};

/// What all vertices are posed with.
struct Pose {
    Rows bind;
    Rows rigid;
    Float8 scale;
    Float8 offset;
    const BoneRows* bones;
};

/// A block of vertices before and after. Its normals lie aside until all are there.
struct Block {
    const SkinVertex* in;
    MeshVertex* out;
    Float4* normals;
};

/// Components, each spread over the four lanes of the position or the normal.
struct Spread {
    Float8 x, y, z;
};

LUMENTA_LANES_INLINE Spread SpreadOf(const Float8& v)
{
    return {Mix<0, 0, 0, 0>(v, v), Mix<1, 1, 1, 1>(v, v), Mix<2, 2, 2, 2>(v, v)};
}

LUMENTA_LANES_INLINE Rows Load(const BoneRows& source)
{
    return {Load8(source.rows[0]), Load8(source.rows[1]), Load8(source.rows[2]), Load8(source.rows[3])};
}

/// Position and normal times their matrices.
LUMENTA_LANES_INLINE Float8 Move(const Spread& v, const Rows& m)
{
    return v.x * m.row[0] + v.y * m.row[1] + v.z * m.row[2] + m.row[3];
}

LUMENTA_LANES_INLINE Float8 PositionAndNormal(const SkinVertex& v)
{
    return Join(Load4(&v.position), Load4(&v.normal));
}

/// Of eight vertices. A first weight that is not positive holds nothing, and one of
/// exactly 0 ends the list.
LUMENTA_LANES_INLINE Held HeldOfEight(const SkinVertex* v)
{
    const auto weights = [=](int i) { return Join(Load4(v[i].weights), Load4(v[i + 4].weights)); };
    const auto isNotZero = [](const Float8& w) { return ~Bits(w == Splat8(0.0f)) & 0xffu; };
    const Float8 a = weights(0);
    const Float8 b = weights(1);
    const Float8 c = weights(2);
    const Float8 d = weights(3);
    const Float8 firstOfAB = Mix<0, 4, 1, 5>(a, b);
    const Float8 firstOfCD = Mix<0, 4, 1, 5>(c, d);
    const Float8 lastOfAB = Mix<2, 6, 3, 7>(a, b);
    const Float8 lastOfCD = Mix<2, 6, 3, 7>(c, d);
    Held held;
    held.byOne = Bits(Mix<0, 1, 4, 5>(firstOfAB, firstOfCD) > Splat8(0.0f));
    held.byTwo = held.byOne & isNotZero(Mix<2, 3, 6, 7>(firstOfAB, firstOfCD));
    held.byThree = held.byTwo & isNotZero(Mix<0, 1, 4, 5>(lastOfAB, lastOfCD));
    held.byFour = held.byThree & isNotZero(Mix<2, 3, 6, 7>(lastOfAB, lastOfCD));
    return held;
}

LUMENTA_LANES_INLINE Held HeldOf(const SkinVertex* block)
{
    Held held;
    for (std::size_t i = 0; i < kVertices; i += 8) {
        const Held eight = HeldOfEight(block + i);
        held.byOne |= eight.byOne << i;
        held.byTwo |= eight.byTwo << i;
        held.byThree |= eight.byThree << i;
        held.byFour |= eight.byFour << i;
    }
    return held;
}

/// Two lines of memory for a record of 84 bytes; a third is the next one's.
LUMENTA_LANES_INLINE void AskAhead(const SkinVertex* v)
{
    const auto* const ahead = reinterpret_cast<const char*>(v + kAhead);
    __builtin_prefetch(ahead);
    __builtin_prefetch(ahead + 64);
}

/// `N` vertices that `Count` bones hold.
template <int Count, std::size_t N>
LUMENTA_LANES_INLINE void PoseSideBySide(const Pose& pose, const Block& block, const std::size_t (&places)[N])
{
    Float8 sums[N];
    if constexpr (Count == 0) {
        for (std::size_t i = 0; i < N; ++i)
            sums[i] = Move(SpreadOf(PositionAndNormal(block.in[places[i]])), pose.rigid);
    } else {
        Spread bound[N];
        for (std::size_t i = 0; i < N; ++i) {
            bound[i] = SpreadOf(Move(SpreadOf(PositionAndNormal(block.in[places[i]])), pose.bind));
            sums[i] = Splat8(0.0f);
        }
        for (int j = 0; j < Count; ++j)
            for (std::size_t i = 0; i < N; ++i) {
                const SkinVertex& v = block.in[places[i]];
                sums[i] = sums[i] + Move(bound[i], Load(pose.bones[v.boneIndices[j]])) * Splat8(v.weights[j]);
            }
    }
    for (std::size_t i = 0; i < N; ++i)
        AskAhead(block.in + places[i]);
    for (std::size_t i = 0; i < N; ++i) {
        const Float8 placed = sums[i] * pose.scale + pose.offset;
        MeshVertex* const posed = block.out + places[i];
        Store4(posed, Low(placed));
        posed->texCoord = block.in[places[i]].texCoord;
        block.normals[places[i]] = High(placed);
    }
}

LUMENTA_LANES_INLINE std::size_t TakeFirst(Set& set)
{
    const int first = __builtin_ctz(set);
    set &= set - 1;
    return static_cast<std::size_t>(first);
}

/// Those of `set`, all of whom `Count` bones hold.
template <int Count>
LUMENTA_LANES_INLINE void PoseAlike(const Pose& pose, const Block& block, Set set)
{
    if (set == kAll) {
        for (std::size_t i = 0; i < kVertices; i += 4)
            PoseSideBySide<Count>(pose, block, {i, i + 1, i + 2, i + 3});
        return;
    }
    while (set != 0) {
        const std::size_t first = TakeFirst(set);
        if (set == 0)
            PoseSideBySide<Count>(pose, block, {first});
        else
            PoseSideBySide<Count>(pose, block, {first, TakeFirst(set)});
    }
}

/// Divides eight normals, each by its length where that is not exactly 0.
LUMENTA_LANES_INLINE void StoreNormals(const Float4* normals, std::size_t count, MeshVertex* posed)
{
    const Float8 a = Join(normals[0], normals[4]);
    const Float8 b = Join(normals[1], normals[5]);
    const Float8 c = Join(normals[2], normals[6]);
    const Float8 d = Join(normals[3], normals[7]);
    const Float8 xyOfAB = Mix<0, 4, 1, 5>(a, b);
    const Float8 xyOfCD = Mix<0, 4, 1, 5>(c, d);
    const Float8 x = Mix<0, 1, 4, 5>(xyOfAB, xyOfCD);
    const Float8 y = Mix<2, 3, 6, 7>(xyOfAB, xyOfCD);
    const Float8 z = Mix<0, 1, 4, 5>(Mix<2, 6, 3, 7>(a, b), Mix<2, 6, 3, 7>(c, d));
    // A number divided by 1 is that number: only zero lengths are spared.
    const Float8 divisors = OneForZero(Sqrt8(x * x + y * y + z * z));
    const Float8 units[4] = {a / Mix<0, 0, 0, 0>(divisors, divisors), b / Mix<1, 1, 1, 1>(divisors, divisors),
                             c / Mix<2, 2, 2, 2>(divisors, divisors), d / Mix<3, 3, 3, 3>(divisors, divisors)};
    for (std::size_t i = 0; i < 4 && i < count; ++i)
        Store3(posed[i].normal, Low(units[i]));
    for (std::size_t i = 4; i < 8 && i < count; ++i)
        Store3(posed[i].normal, High(units[i - 4]));
}

/// \param present of its vertices, in `block.out`; all can be read in `block.in`
LUMENTA_LANES_INLINE void PoseBlock(const Pose& pose, const Block& block, Set present, bool isSkinned)
{
    const Held held = isSkinned ? HeldOf(block.in) : Held();
    PoseAlike<4>(pose, block, present & held.byFour);
    PoseAlike<3>(pose, block, present & held.byThree & ~held.byFour);
    PoseAlike<2>(pose, block, present & held.byTwo & ~held.byThree);
    PoseAlike<1>(pose, block, present & held.byOne & ~held.byTwo);
    PoseAlike<0>(pose, block, present & ~held.byOne);
}

} // namespace

void PoseVertices(const PoseQuery& query, const SkinVertex* vertices, std::size_t count, MeshVertex* posed)
{
    const Pose pose = {Load(query.bind), Load(query.rigid), Load8(query.scale), Load8(query.offset), query.bones};
    Float4 normals[kVertices] = {};
    alignas(SkinVertex) unsigned char rest[kVertices * sizeof(SkinVertex)];
    for (std::size_t first = 0; first < count; first += kVertices) {
        const std::size_t size = count - first < kVertices ? count - first : kVertices;
        Block block = {vertices + first, posed + first, normals};
        if (size < kVertices) {
            std::memcpy(rest, block.in, size * sizeof *block.in);
            std::memset(rest + size * sizeof *block.in, 0, (kVertices - size) * sizeof *block.in);
            block.in = reinterpret_cast<const SkinVertex*>(rest);
        }
        PoseBlock(pose, block, kAll >> (kVertices - size), query.isSkinned);
        for (std::size_t i = 0; i < size; i += 8)
            StoreNormals(normals + i, size - i, block.out + i);
    }
}

} // namespace Kernels::LUMENTA_LEVEL
