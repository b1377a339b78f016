#pragma once

// Private to the library: the loops that are compiled once for each processor
// level. The level is chosen when the first kernel is asked for, from what the
// processor can do, and never changes. All levels answer with the same bits.

#include "lumenta/foundation/MeshVertex.h"

#include <cstddef>
#include <cstdint>

namespace SkinAnimation {
struct SkinVertex;
}

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

/// The kernels of one level.
struct Table {
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

/// Those of this processor.
const Table& Chosen();

} // namespace Kernels
