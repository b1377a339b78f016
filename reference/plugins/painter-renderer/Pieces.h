#pragma once

#include "reference/host/Studio.h"
#include "reference/host/Surface.h"

#include <array>
#include <vector>

namespace Host {

/// What is interpolated between the corners of a triangle.
struct Corner {
    TVec3<float> fromEye; ///< As Studio::FromEye() has it.
    TVec3<float> normal;  ///< As the vertex has it.
    TVec2<float> texCoord;
};

/// A triangle in front of the near plane.
struct Piece {
    std::array<Corner, 3> corners;
    const Surface* surface;
};

/// What the camera has in front of it of the triangles that can be drawn, the
/// farthest first.
std::vector<Piece> PiecesInFront(const PictureRequest& request, const SurfaceTable& surfaces, const Studio& studio);

} // namespace Host
