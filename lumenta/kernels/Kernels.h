#pragma once

// Private to the library: the loops that are compiled once for each processor
// level. The level is chosen from what the processor can do, and never changes.
// All levels answer with the same bits.

#include "lumenta/foundation/BBox.h"
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

/// What a mesh's triangles are tested against.
struct Segment {
    TVec3<float> start;
    TVec3<float> end;
    float tolerance;
};

struct Hit {
    TVec3<float> point;
    float t; ///< Along the segment.
};

/// A segment whose ends are moved side by side: each coordinate of the start four
/// times, then that of the end.
struct SegmentEnds {
    alignas(32) float x[8], y[8], z[8];
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

    /// Takes a segment into the space of a node.
    /// \param global sixteen floats: from there to the segment's space
    /// \param local  receives start and end there, if they meet the box
    /// \return whether they do; false where `global` has no inverse
    bool (*meetBox)(const float* global, const SegmentEnds& ends, const TBBox<float>& box, TVec3<float>* local);

    /// The first triangle, from `first` on, that the segment meets; `count` for none.
    std::size_t (*findHit)(const Segment& segment, const MeshVertex* vertices, const std::uint32_t* indices,
                           std::size_t count, std::size_t first, Hit& hit);

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
bool MeetBox(const float* global, const SegmentEnds& ends, const TBBox<float>& box, TVec3<float>* local);
std::size_t FindHit(const Segment& segment, const MeshVertex* vertices, const std::uint32_t* indices, std::size_t count,
                    std::size_t first, Hit& hit);
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
