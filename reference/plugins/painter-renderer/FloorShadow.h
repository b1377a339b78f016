#pragma once

#include "reference/host/Studio.h"
#include "reference/host/Surface.h"

#include <array>
#include <vector>

namespace Host {

/// The shadow of a picture's meshes on the floor: for each pixel, how much of
/// the sun and of the sky the meshes hide from the floor that is seen there.
///
/// Each triangle is projected to the floor along a number of directions, and
/// the layers are averaged: soft where the triangle is far from the floor, dense
/// where it touches it. A mesh casts its whole shadow or, where it is more
/// transparent than not, none.
class FloorShadow {
public:
    FloorShadow(const PictureRequest& request, const SurfaceTable& surfaces, const Studio& studio);

    /// The light that the meshes take from the floor seen at a pixel.
    TVec3<float> LostAt(int x, int y) const;

private:
    /// The hidden share, 0 to 1, in a smaller picture of the same view.
    using Mask = std::vector<float>;

    void AddCaster(const PosedMesh& mesh);
    Mask Hidden(const std::vector<TVec3<float>>& directions) const;

    /// In the mask, for each point; not a number for one behind the camera.
    std::vector<QPointF> ShadowsOfPoints(const TVec3<float>& direction) const;

    float Sampled(const Mask& mask, int x, int y) const;

    const Studio& m_studio;
    QSize m_maskSize;
    std::vector<TVec3<float>> m_points; ///< Vertices of what casts shadows, in studio coordinates.
    std::vector<std::array<std::size_t, 3>> m_triangles; ///< Those that can be drawn.
    Mask m_sunHidden;
    Mask m_skyHidden;
};

} // namespace Host
