#pragma once

#include "lumenta/foundation/Matrix2.h"
#include "lumenta/interfaces/SignalArguments.h"
#include "reference/host/Picture.h"

#include <array>
#include <optional>
#include <vector>

namespace Host {

/// A colour of a surface, with how much of it covers what is behind.
struct SurfaceColour {
    TVec3<float> colour; ///< Linear.
    float opacity;       ///< 0 to 1.
};

/// An image on a surface. Bilinear; a texture coordinate that is not finite
/// counts as 0.
struct Texture {
    QImage image;            ///< As TextureImage() makes it, never null.
    Matrix2 placement{1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f}; ///< Into the image, see Placed().
    bool repeated = true;
    bool inverted = false;
    float amount = 1.0f;     ///< How much of it is mixed in.

    /// Where a texture coordinate lies in the image: (0, 0) is the upper left
    /// corner, (1, 1) the lower right one.
    TVec2<float> Placed(const TVec2<float>& texCoord) const;

    /// Linear colour and alpha; none beyond an image that doesn't repeat. All
    /// but invisible texels have their say in the colour.
    std::optional<SurfaceColour> ColourAt(const TVec2<float>& texCoord) const;

    /// Brightness as the file has it times alpha, 0 to 1; 0 beyond an image
    /// that doesn't repeat.
    float BrightnessAt(const TVec2<float>& texCoord) const;

    /// How fast that grows along the width and along the height of the image,
    /// in brightness per image.
    TVec2<float> SlopeAt(const TVec2<float>& texCoord) const;

private:
    float BrightnessIn(const TVec2<float>& placed) const;
};

/// An image in the format that textures have. Null for a null one.
QImage TextureImage(const QImage& image);

/// What a material means to a renderer. All fields are in range, whatever the
/// material said.
struct Surface {
    QString name; ///< Of the material.
    SurfaceColour base{{1.0f, 1.0f, 1.0f}, 1.0f};
    float specular = 0.0f;  ///< Strength of the highlight, 0 to 1.
    float shininess = 1.0f; ///< Phong exponent, 1 to 1000.
    TVec3<float> highlight{1.0f, 1.0f, 1.0f}; ///< Colour of the highlight.
    TVec3<float> ambient{};    ///< Part of its own colour that is seen where no light falls.
    TVec3<float> emission{};   ///< Light of its own.
    float reflection = 0.0f;   ///< How much it mirrors seen from straight above, 0 to 1.
    TVec3<float> mirrorTint{1.0f, 1.0f, 1.0f};
    TVec3<float> filter{1.0f, 1.0f, 1.0f}; ///< What of each colour passes where it is clear.
    float refractionIndex = 1.0f;
    float bumpHeight = 0.0f; ///< In widths of the bump texture.
    bool twoSided = true;
    bool castsShadows = true;
    bool receivesShadows = true;
    bool flat = false;
    std::array<std::optional<Texture>, eMaterialSlotCount> textures{};

    /// Colour and opacity at a texture coordinate. Where the texture of the
    /// colour is transparent, so is the surface.
    SurfaceColour At(const TVec2<float>& texCoord) const;

    /// One of the other colours at a texture coordinate.
    TVec3<float> Textured(eMaterialSlot slot, const TVec3<float>& colour, const TVec2<float>& texCoord) const;

    /// Whether light can pass through it anywhere.
    bool CanBeTransparent() const;

    /// How much it mirrors of each colour where the eye stands under an angle
    /// of that cosine from the normal.
    TVec3<float> MirroredAt(float cosine, const TVec2<float>& texCoord) const;

    /// The part of a light that the surface mirrors to the eye as a highlight,
    /// without the highlight's colour. All directions are unit.
    float HighlightOn(const TVec3<float>& normal, const TVec3<float>& towardsLight,
                      const TVec3<float>& towardsEye) const;

    /// What the eye gets of the light that falls on the surface, mirrors apart.
    /// \param light  times the surface's colour is what it scatters
    /// \param shine  the light that it mirrors as highlights
    TVec3<float> Seen(const TVec3<float>& colour, const TVec3<float>& light, const TVec3<float>& shine,
                      const TVec2<float>& texCoord) const;
};

/// A colour of a surface as far as renderers go: nothing is quite black or
/// white. Without that a black material would hide its shape.
TVec3<float> WithinReach(const TVec3<float>& colour);

/// The surfaces of a picture's meshes: those of the request, or what it makes
/// of the meshes' parameters. A mesh without a colour is of light clay.
class SurfaceTable {
public:
    explicit SurfaceTable(const PictureRequest& request);

    const Surface& Of(std::size_t mesh) const { return m_surfaces[mesh]; }

    /// Whether a question has the answer yes for any of them.
    bool HasAny(bool (*question)(const Surface& surface)) const;

private:
    std::vector<Surface> m_surfaces; ///< Parallel to the meshes.
};

} // namespace Host
