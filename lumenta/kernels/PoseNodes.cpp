// Poses nodes: first each by the two keys of its track about the time, then all
// of them in the order of the list.
//
// Rotations are blended in rounds over all pairs, since a call for an arc or a
// sine takes long, and the next one need not wait for it. The calls are those of
// the C library: no other has its bits.
//
// A local transform is scale times rotation times translation. Of these products
// all but one term an element are zeros, and adding 0 does what adding them does:
// it turns -0 into +0. Where something is not finite those zeros would not be
// zeros, and the products are worked out. A single key is blended with itself:
// of finite numbers that, too, changes no more than the sign of a 0.

#include "lumenta/kernels/Kernels.h"
#include "lumenta/kernels/MatrixLanes.h"
#include "lumenta/skin/Animation.h"
#include "lumenta/skin/Node.h"

#include <math.h> // NOLINT(modernize-deprecated-headers): <cmath> defines inline functions

namespace Kernels::LUMENTA_LEVEL {

namespace {

using SkinAnimation::KeyFrame;
using SkinAnimation::Node;

constexpr std::size_t kGroup = 8; ///< Of tracks.

/// What the rotations of the two keys are multiplied with.
struct Weights {
    alignas(32) float first[kTracks];
    alignas(32) float second[kTracks];
};

/// Products of rotations, of one track in each half.
LUMENTA_LANES_INLINE Float8 Terms(const KeyPairs& pairs, std::size_t i, std::size_t j)
{
    return Join(Load4(&pairs.first[i]->rotation), Load4(&pairs.first[j]->rotation))
           * Join(Load4(&pairs.second[i]->rotation), Load4(&pairs.second[j]->rotation));
}

LUMENTA_LANES_INLINE Float8 Dots(const KeyPairs& pairs, std::size_t i)
{
    const Float8 a = Terms(pairs, i, i + 4);
    const Float8 b = Terms(pairs, i + 1, i + 5);
    const Float8 c = Terms(pairs, i + 2, i + 6);
    const Float8 d = Terms(pairs, i + 3, i + 7);
    const Float8 xyOfAB = Mix<0, 4, 1, 5>(a, b);
    const Float8 xyOfCD = Mix<0, 4, 1, 5>(c, d);
    const Float8 zwOfAB = Mix<2, 6, 3, 7>(a, b);
    const Float8 zwOfCD = Mix<2, 6, 3, 7>(c, d);
    return Mix<0, 1, 4, 5>(xyOfAB, xyOfCD) + Mix<2, 3, 6, 7>(xyOfAB, xyOfCD) + Mix<0, 1, 4, 5>(zwOfAB, zwOfCD)
           + Mix<2, 3, 6, 7>(zwOfAB, zwOfCD);
}

/// \param count a multiple of kGroup
LUMENTA_LANES_INLINE void FindWeights(const KeyPairs& pairs, std::size_t count, Weights& weights)
{
    alignas(32) float cosines[kTracks];
    alignas(32) float signs[kTracks]; // -1 where the shorter arc is the other way round
    std::size_t arcs[kTracks];        // tracks that are not blended linearly
    std::size_t arcCount = 0;
    for (std::size_t i = 0; i < count; i += kGroup) {
        const Float8 dots = Dots(pairs, i);
        const Float8 sign = Select(dots < Splat8(0.0f), Splat8(-1.0f), Splat8(1.0f));
        const Float8 factors = Load8(pairs.factors + i);
        Store8(cosines + i, Abs(dots));
        Store8(signs + i, sign);
        Store8(weights.first + i, Splat8(1.0f) - factors);
        Store8(weights.second + i, factors * sign);
        // The smallest float that is more than the float 1e-5 is also the
        // smallest that is more than the double.
        for (unsigned bits = Bits(Splat8(1.0f) - Abs(dots) > Splat8(1e-5f)); bits != 0; bits &= bits - 1) {
            const std::size_t arc = i + static_cast<std::size_t>(__builtin_ctz(bits));
            arcs[arcCount] = arc;
            arcCount += pairs.first[arc] != pairs.second[arc];
        }
    }

    float angles[3][kTracks]; // the whole, and the parts of both keys
    for (std::size_t k = 0; k < arcCount; ++k) {
        const std::size_t i = arcs[k];
        angles[0][k] = acosf(cosines[i]);
        angles[1][k] = weights.first[i] * angles[0][k];
        angles[2][k] = pairs.factors[i] * angles[0][k];
    }
    for (float* const list : angles)
        for (std::size_t k = 0; k < arcCount; ++k)
            list[k] = sinf(list[k]);
    for (std::size_t k = 0; k < arcCount; ++k) {
        const std::size_t i = arcs[k];
        const float s = 1.0f / angles[0][k];
        weights.first[i] = angles[1][k] * s;
        weights.second[i] = angles[2][k] * s * signs[i];
    }
}

/// The values of two tracks, one in each half.
struct Sample {
    Float8 translation; ///< Behind something that is none.
    Float8 rotation;
    Float8 scale; ///< Likewise.
};

LUMENTA_LANES_INLINE Float8 Blend(const Float8& a, const Float8& b, const Float8& factor)
{
    return (b - a) * factor + a;
}

LUMENTA_LANES_INLINE Sample LoadKeys(const KeyFrame& a, const KeyFrame& b)
{
    return {Join(Load4(&a.time), Load4(&b.time)), Join(Load4(&a.rotation), Load4(&b.rotation)),
            Join(Load4(&a.rotation.w), Load4(&b.rotation.w))};
}

/// Rows 0 to 2 of the rotations.
struct Rotation {
    Float8 row[3];
};

LUMENTA_LANES_INLINE Float8 Repeat(Float4 v)
{
    return Join(v, v);
}

LUMENTA_LANES_INLINE Rotation RotationOf(const Float8& q)
{
    const Float8 two = Repeat(Float4{2.0f, 2.0f, 2.0f, 0.0f});
    const Float8 squares = two * (q * q);
    const Float8 diagonal = Repeat(Float4{1.0f, 1.0f, 1.0f, 0.0f}) - Mix<1, 0, 0, 3>(squares, squares)
                            - Mix<2, 2, 1, 3>(squares, squares);
    const Float8 a = two * Mix<0, 0, 1, 3>(q, q) * Mix<1, 2, 2, 3>(q, q); // 2xy, 2xz, 2yz
    const Float8 b = two * Mix<3, 3, 3, 3>(q, q) * Mix<2, 1, 0, 3>(q, q); // 2wz, 2wy, 2wx
    const Float8 sum = a + b;
    const Float8 difference = a - b;
    return {{Mix<0, 1, 5, 7>(Mix<0, 4, 1, 5>(diagonal, sum), difference),
             Mix<0, 3, 6, 7>(Mix<0, 4, 1, 5>(difference, diagonal), sum),
             Mix<0, 2, 6, 7>(Mix<1, 1, 6, 6>(sum, difference), diagonal)}};
}

/// The literal products of one of the two tracks.
LUMENTA_LANES_INLINE void StoreProducts(const float* translation, const float* rotation, const float* scale,
                                        float* local)
{
    const float s[16] = {scale[0], 0, 0, 0, 0, scale[1], 0, 0, 0, 0, scale[2], 0, 0, 0, 0, 1};
    const float t[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, translation[0], translation[1], translation[2], 1};
    float r[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    const Rotation turn = RotationOf(LoadTwice(rotation));
    for (int i = 0; i < 12; ++i)
        r[i] = i % 4 == 3 ? 0.0f : Low(turn.row[i / 4])[i % 4];
    StoreRows(local, Product(Product(LoadRows(s), LoadTwinRows(r)), LoadTwinRows(t)));
}

/// Of two tracks, where something is not finite.
__attribute__((noinline)) void StoreLiterally(const KeyPairs& pairs, std::size_t i, const Sample& sample)
{
    for (std::size_t half = 0; half < 2; ++half, ++i) {
        const KeyFrame& key = *pairs.first[i];
        float values[3][8];
        Store8(values[0], sample.translation);
        Store8(values[1], sample.rotation);
        Store8(values[2], sample.scale);
        if (pairs.first[i] == pairs.second[i])
            StoreProducts(&key.translation.x, &key.rotation.x, &key.scale.x, pairs.locals[i]);
        else
            StoreProducts(values[0] + 4 * half + 1, values[1] + 4 * half, values[2] + 4 * half + 1, pairs.locals[i]);
    }
}

LUMENTA_LANES_INLINE void StoreTransforms(const KeyPairs& pairs, std::size_t i, const Sample& sample)
{
    const Rotation rotation = RotationOf(sample.rotation);
    const Float8 zero = Splat8(0.0f);
    const Float8 rows[4] = {Mix<1, 1, 1, 1>(sample.scale, sample.scale) * rotation.row[0] + zero,
                            Mix<2, 2, 2, 2>(sample.scale, sample.scale) * rotation.row[1] + zero,
                            Mix<3, 3, 3, 3>(sample.scale, sample.scale) * rotation.row[2] + zero,
                            Mix<1, 2, 3, 7>(sample.translation, Repeat(Float4{0.0f, 0.0f, 0.0f, 1.0f})) + zero};
    const Float8 sum = rows[0] + rows[1] + rows[2] + rows[3];
    if (Bits(Abs(sum) < Splat8(__builtin_inff())) != 0xffu) {
        StoreLiterally(pairs, i, sample);
        return;
    }
    for (int row = 0; row < 4; ++row) {
        Store4(pairs.locals[i] + 4 * row, Low(rows[row]));
        Store4(pairs.locals[i + 1] + 4 * row, High(rows[row]));
    }
}

} // namespace

void SetLocalTransforms(KeyPairs& pairs, std::size_t count)
{
    // The last track is repeated until the group is full.
    for (; count % kGroup != 0; ++count) {
        pairs.first[count] = pairs.first[count - 1];
        pairs.second[count] = pairs.second[count - 1];
        pairs.factors[count] = pairs.factors[count - 1];
        pairs.locals[count] = pairs.locals[count - 1];
    }
    Weights weights;
    FindWeights(pairs, count, weights);
    for (std::size_t i = 0; i < count; i += 2) {
        const Sample first = LoadKeys(*pairs.first[i], *pairs.first[i + 1]);
        const Sample second = LoadKeys(*pairs.second[i], *pairs.second[i + 1]);
        const auto both = [i](const float* list) { return Join(Splat4(list[i]), Splat4(list[i + 1])); };
        const Float8 factors = both(pairs.factors);
        StoreTransforms(pairs, i,
                        {Blend(first.translation, second.translation, factors),
                         first.rotation * both(weights.first) + second.rotation * both(weights.second),
                         Blend(first.scale, second.scale, factors)});
    }
}

void MoveNodes(Node* const* nodes, std::size_t count)
{
    // Without a parent the product with an identity still counts: it turns -0 into +0.
    static constexpr float kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    // An inverse takes long, and waits for nothing but its own matrix: several of
    // them after one another overlap. Kept aside, since a node may be listed twice.
    constexpr std::size_t kNodes = 16;
    for (std::size_t first = 0; first < count; first += kNodes) {
        const std::size_t size = count - first < kNodes ? count - first : kNodes;
        float skins[kNodes][16];
        for (std::size_t i = 0; i < size; ++i) {
            Node& node = *nodes[first + i];
            const float* const parent = node.parent ? node.parent->globalTransform.m : kIdentity;
            const MatrixRows global = Product(LoadRows(node.localTransform.m), LoadTwinRows(parent));
            StoreRows(node.globalTransform.m, global);
            const TwinRows twinGlobal = TwinRowsOf(global);
            StoreRows(node.meshTransform.m, Product(LoadRows(node.geometryTransform.m), twinGlobal));
            const MatrixRows skin = Product(LoadRows(node.originGlobalInverse.m), twinGlobal);
            StoreRows(node.skinTransform.m, skin);
            StoreRows(skins[i], skin);
        }
        for (std::size_t i = 0; i < size; ++i) {
            MatrixRows inverse;
            if (::Invert(inverse, LoadTwinRows(skins[i]))) StoreRows(nodes[first + i]->skinTransformInverse.m, inverse);
        }
    }
}

} // namespace Kernels::LUMENTA_LEVEL
