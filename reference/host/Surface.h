#pragma once

#include "reference/host/Picture.h"

#include <map>
#include <vector>

namespace Host {

/// A colour of a surface, with how much of it covers what is behind.
struct SurfaceColour {
    TVec3<float> colour; ///< Linear.
    float opacity;       ///< 0 to 1.
};

/// What a material's parameters mean to a renderer. All fields are in range,
/// whatever the parameters were.
struct Surface {
    SurfaceColour base;
    float specular;   ///< Strength of the highlight, 0 to 1.
    float shininess;  ///< Phong exponent, 1 to 1000.
    const QImage* texture; ///< ARGB32, or null; multiplies `base`.

    /// The surface at a texture coordinate: (0, 0) is the upper left corner of
    /// the image, which repeats in both directions. Bilinear; a coordinate that
    /// is not finite counts as 0.
    SurfaceColour At(const TVec2<float>& texCoord) const;

    /// Whether light can pass through it anywhere.
    bool CanBeTransparent() const;

    /// The part of the sun's light that the surface mirrors to the eye. All
    /// directions are unit.
    float HighlightOn(const TVec3<float>& normal, const TVec3<float>& towardsSun, const TVec3<float>& towardsEye) const;
};

/// The surfaces of a picture's meshes, and the textures that they use.
///
/// A mesh without a colour is of light clay. Nothing is quite black or white:
/// without that a black material would hide its shape.
class SurfaceTable {
public:
    explicit SurfaceTable(const PictureRequest& request);

    const Surface& Of(std::size_t mesh) const { return m_surfaces[mesh]; }

    /// Whether light can pass through any of them.
    bool HasTransparent() const;

private:
    const QImage* TextureOf(const QVariant& name, const QMap<QString, QImage>* textures);

    std::map<QString, QImage> m_textures; ///< Those in use, as ARGB32; a map keeps their addresses.
    std::vector<Surface> m_surfaces;      ///< Parallel to the meshes.
};

} // namespace Host
