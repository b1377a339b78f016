#pragma once

// Private to the library: the loops over vertices and triangles, apart from
// the classes that call them. Every kernel returns the bits of the plain
// scalar loop; the references in benchmarks/ are those loops.

#include "lumenta/foundation/Matrix.h"
#include "lumenta/kernels/Kernels.h"
#include "lumenta/skin/Animation.h"
#include "lumenta/skin/SkinVertex.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace SkinAnimation {

struct Node;

/// Moves `nodes` to where the tracks have them at `time`.
void PoseNodes(const Kernels::Table& kernels, const std::vector<NodeTrack>& tracks, float time,
               const std::vector<Node*>& nodes);

/// Everything that posing one geometry needs besides its vertices.
struct PoseInput {
    bool skinned;
    Matrix bind;        ///< Vertices to the rest pose's world, for skinned ones.
    Matrix bindInverse;
    Matrix mesh;        ///< Vertices to the current pose, for rigid ones.
    Matrix meshInverse;
    TVec3<float> scale;
    TVec3<float> offset;
    Node* const* bones;
    std::size_t boneCount;
};

/// Writes position, normal and texture coordinate of `count` vertices.
void PoseVertices(const Kernels::Table& kernels, const PoseInput& input, const SkinVertex* vertices, std::size_t count, MeshVertex* posed);

/// Gives each vertex that is a corner the normal of its last corner's slot.
/// \param count of corners
void SetCornerNormals(const std::uint32_t* indices, const std::uint32_t* slotOfCorner, std::size_t count,
                      const TVec3<float>* normals, MeshVertex* vertices, std::size_t vertexCount);

} // namespace SkinAnimation
