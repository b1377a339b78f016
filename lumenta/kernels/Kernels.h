#pragma once

// Private to the library: the loops that are compiled once for each processor
// level. The level is chosen from what the processor can do, and never changes.
// All levels answer with the same bits.

#include "lumenta/foundation/MeshVertex.h"

#include <cstddef>
#include <cstdint>

namespace SkinAnimation {
struct KeyFrame;
struct Node;
struct SkinVertex;
} // namespace SkinAnimation

namespace Kernels {

/// Triangles that are looked at side by side.
constexpr std::size_t kBlock = 8;

/// What the candidates among a mesh's triangles are looked for with.
struct SegmentQuery {
    TVec3<float> start;
    TVec3<float> direction; ///< Of length 1.
    float reach;            ///< Sum of the absolute coordinates of both ends.
    float tolerance;
};

/// A matrix for positions beside the turned inverse that moves normals: row by
/// row four floats of the one, then four of the other. The fourth row of the
/// latter is -0, which adds nothing to any number.
struct BoneRows {
    alignas(32) float rows[4][8];
};

/// What vertices are posed with.
struct PoseQuery {
    BoneRows bind;  ///< From the vertices to the rest pose's world.
    BoneRows rigid; ///< From the vertices to the pose, for those that no bone holds.
    /// Of the result: three for positions, then three for normals, each with one behind.
    alignas(32) float scale[8];
    alignas(32) float offset[8];
    const BoneRows* bones;
    bool isSkinned;
};

/// Tracks that are sampled side by side.
constexpr std::size_t kTracks = 16;

/// Of each track the two keys about a time, or one of them twice.
struct KeyPairs {
    const SkinAnimation::KeyFrame* first[kTracks];
    const SkinAnimation::KeyFrame* second[kTracks];
    alignas(32) float factors[kTracks]; ///< How far the time is on the way, 0 where there is one key.
    float* locals[kTracks];             ///< The transforms that they give, sixteen floats each.
};

/// The kernels of one level.
struct Table {
    /// Of sixteen floats each, row by row. The result may be one of the factors.
    void (*multiply)(float* result, const float* a, const float* b);

    /// \return false, and nothing written, where the determinant is exactly 0
    bool (*invert)(float* destination, const float* source);

    /// Blends the keys of at most kTracks tracks, and writes the transforms in turn.
    /// Those behind `count` may be overwritten.
    void (*setLocalTransforms)(KeyPairs& pairs, std::size_t count);

    /// What follows from the local transforms, node by node.
    void (*moveNodes)(SkinAnimation::Node* const* nodes, std::size_t count);

    /// Triangles that the segment may meet, in blocks of eight, from triangle
    /// `first` on. What it passes over, no exact test can accept.
    /// \param candidates bit i for the i-th triangle of the block; never 0
    /// \return the first triangle of that block, or `count` where none is left
    std::size_t (*findCandidates)(const SegmentQuery& query, const MeshVertex* vertices, const std::uint32_t* indices,
                                  std::size_t count, std::size_t first, unsigned& candidates);

    /// Writes position, normal and texture coordinate.
    void (*poseVertices)(const PoseQuery& query, const SkinAnimation::SkinVertex* vertices, std::size_t count,
                         MeshVertex* posed);

    /// Adds the unit normal of each triangle to its three slotOfCorner.
    /// \param count of triangles
    void (*addFaceNormals)(const MeshVertex* vertices, const std::uint32_t* indices, const std::uint32_t* slotOfCorner,
                           std::size_t count, TVec3<float>* sums);

    /// Divides each normal by its length, unless that is exactly 0.
    void (*normalizeAll)(TVec3<float>* normals, std::size_t count);
};

#if defined(LUMENTA_LEVEL)
// What this level's table is made of.
namespace LUMENTA_LEVEL {
void Multiply(float* result, const float* a, const float* b);
bool Invert(float* destination, const float* source);
void SetLocalTransforms(KeyPairs& pairs, std::size_t count);
void MoveNodes(SkinAnimation::Node* const* nodes, std::size_t count);
std::size_t FindCandidates(const SegmentQuery& query, const MeshVertex* vertices, const std::uint32_t* indices,
                           std::size_t count, std::size_t first, unsigned& candidates);
void PoseVertices(const PoseQuery& query, const SkinAnimation::SkinVertex* vertices, std::size_t count,
                  MeshVertex* posed);
void AddFaceNormals(const MeshVertex* vertices, const std::uint32_t* indices, const std::uint32_t* slotOfCorner,
                    std::size_t count, TVec3<float>* sums);
void NormalizeAll(TVec3<float>* normals, std::size_t count);
} // namespace LUMENTA_LEVEL
#endif

extern const Table baselineTable;
#if defined(__x86_64__)
extern const Table avx2Table;
#endif

#if !defined(LUMENTA_LEVEL)
/// Those of this processor. What it can do is known since the program started.
inline const Table& Chosen()
{
#if defined(__x86_64__)
    return __builtin_cpu_supports("avx2") ? avx2Table : baselineTable;
#else
    return baselineTable;
#endif
}
#endif

} // namespace Kernels
