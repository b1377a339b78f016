#pragma once

#include "lumenta/foundation/MeshVertex.h"

#include <cstddef>
#include <cstdint>

namespace SkinAnimation {

using ::MeshVertex;

/// A vertex before it is posed: a MeshVertex, and the bones that pull at it.
struct SkinVertex {
    TVec3<float> position;   ///< In the space of the geometry.
    TVec3<float> normal;     ///< Likewise.
    TVec3<float> tangent;    ///< Carried for loaders; posing does not read it.
    TVec3<float> bitangent;  ///< Likewise.
    TVec2<float> texCoord;   ///< Posing copies it.
    float handedness;        ///< Carried like the tangent.

    /// Indices into `Scene::nodes`, one per influence. Not range-checked.
    std::uint16_t boneIndices[4];

    /// Influences count up to the first weight that is exactly 0; what lies
    /// behind it is never looked at. Posing does not normalise: loaders do.
    float weights[4];

    /// Clears the influences. Everything else is left uninitialised on
    /// purpose: loaders write it anyway.
    SkinVertex()
        : boneIndices{0, 0, 0, 0}
        , weights{0.0f, 0.0f, 0.0f, 0.0f}
    {
    }
};

static_assert(sizeof(SkinVertex) == 84, "loaders fill arrays of these");
static_assert(offsetof(SkinVertex, normal) == offsetof(MeshVertex, normal)
                  && offsetof(SkinVertex, tangent) == offsetof(MeshVertex, tangent)
                  && offsetof(SkinVertex, bitangent) == offsetof(MeshVertex, bitangent)
                  && offsetof(SkinVertex, texCoord) == offsetof(MeshVertex, texCoord)
                  && offsetof(SkinVertex, handedness) == offsetof(MeshVertex, handedness)
                  && offsetof(SkinVertex, boneIndices) == sizeof(MeshVertex),
              "the head of a SkinVertex is a MeshVertex");

} // namespace SkinAnimation
