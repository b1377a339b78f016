#pragma once

#include "reference/host/Studio.h"
#include "reference/host/Surface.h"

#include <array>
#include <vector>

namespace Host {

/// A piece of a triangle, small enough to have one colour and one depth.
struct Patch {
    std::array<QPointF, 3> corners; ///< In pixels of the picture.
    float depth;                    ///< Distance from the eye.
    QRgb colour;                    ///< sRGB, alpha not premultiplied.
};

/// The meshes cut into patches that stand in front of the camera and touch the
/// picture, the farthest first.
///
/// Cutting gives colour that follows the surface and an order of painting that
/// is right wherever surfaces do not pass through one another by less than a
/// patch. Neighbours are cut alike along the edge they share: no cracks.
std::vector<Patch> CutIntoPatches(const PictureRequest& request, const Studio& studio);

} // namespace Host
