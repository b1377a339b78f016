#pragma once

#include "lumenta/foundation/Vector.h"

#include <cstddef>

/// One vertex of a renderable mesh: fifteen floats.
///
/// The record that meshes hand out, and that posing writes. Posing touches
/// position, normal and texture coordinate only; the tangent frame stays as
/// whoever filled the vertex left it.
struct MeshVertex {
    TVec3<float> position;  ///< In the space of the node that holds the mesh.
    TVec3<float> normal;    ///< Of the surface there, outwards.
    TVec3<float> tangent;   ///< Along growing u.
    TVec3<float> bitangent; ///< Along growing v.
    TVec2<float> texCoord;  ///< Origin top left, as images have it.
    float handedness;       ///< +1 or -1: whether the tangent frame is right-handed.
};

static_assert(sizeof(MeshVertex) == 60 && offsetof(MeshVertex, texCoord) == 48,
              "hosts and plug-ins read vertices as fifteen floats");
