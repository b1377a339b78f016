#pragma once

#include "lumenta/skin/Scene.h"

#include <cstdint>
#include <memory>

/// Seeded data of any size, the same on every machine.
namespace Workloads {

/// Numbers from a 64-bit linear congruential step, the high bits folded in
/// (O'Neill, "PCG", 2014). No standard distribution: theirs differ between
/// libraries.
class Random {
public:
    explicit Random(std::uint64_t seed) : m_state(seed * 2 + 1) { Next(); }

    std::uint32_t Next();
    std::uint32_t Below(std::uint32_t limit);
    float Between(float low, float high);

private:
    std::uint64_t m_state;
};

/// Three numbers between `low` and `high`.
TVec3<float> RandomVector(Random& random, float low, float high);

/// A finite float mostly; now and then one of those that break formulas: NaN,
/// infinities, denormals, -0, the largest, values whose squares overflow.
float OddFloat(Random& random);

/// An invertible transform: rotation, scales from 0.5 to 2, translation.
Matrix RandomTransform(Random& random);

/// How many bones move one vertex.
enum class Influences { Four, Random, InRuns };

/// A tree of `nodeCount` nodes with one animation of `keyCount` keys a node,
/// key times `step` apart from 0 on, or at uneven distances for `step` 0.
std::unique_ptr<SkinAnimation::Scene> MakeSkeleton(std::size_t nodeCount, std::size_t keyCount, float step,
                                                   std::uint64_t seed);

/// A skinned grid of about `vertexCount` vertices, hung on the root of `scene`,
/// with one normal slot a vertex.
SkinAnimation::Geometry& AddSkin(SkinAnimation::Scene& scene, std::size_t vertexCount, Influences influences,
                                 std::uint64_t seed);

} // namespace Workloads
