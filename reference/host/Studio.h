#pragma once

#include "reference/host/Picture.h"

#include <QImage>
#include <QPointF>
#include <QRgb>

#include <optional>
#include <vector>

namespace Host {

/// The light of a plain sun on a surface that faces it.
constexpr TVec3<float> kSunLight{0.77f, 0.72f, 0.65f};

/// The light of a lamp that is as bright as that sun, without its warmth.
constexpr float kLampLight = 0.726f;

/// The light that the floor sends up.
constexpr TVec3<float> kFloorLight{0.33f, 0.32f, 0.31f};

/// The part of its own colour that a surface gets from where it sees no sky.
constexpr float kBounce = 0.22f;

/// Componentwise product: light on a colour.
constexpr TVec3<float> Times(const TVec3<float>& a, const TVec3<float>& b)
{
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}

/// The studio in which every renderer takes its pictures: where camera, sun and
/// floor are, and what light there is. Renderers share it, so that their
/// pictures of one request cover the same pixels in the same light.
///
/// **Studio coordinates:** the camera's target is the origin and the camera
/// stands at distance 1. Tolerances are therefore plain numbers, whatever unit
/// the model is in. Colours are linear RGB, 1 is white; pixels are sRGB.
///
/// A plain record, reentrant. No camera is refused: without a usable up, target
/// or field of view it gets a plausible one.
struct Studio {
    TVec3<float> eye;
    TVec3<float> forward; ///< Of the camera; with `right` and `above` an orthonormal frame.
    TVec3<float> right;
    TVec3<float> above;
    TVec3<float> up;      ///< Unit; where the zenith is.
    TVec3<float> sun;     ///< Unit, towards the sun.
    TVec3<float> sunLight; ///< On a surface that faces the sun; 0 for none.
    TVec3<float> skyLight; ///< Factor of Sky(), SkyOn() and Bounce().
    std::vector<Lamp> lamps; ///< In studio units, position and light too.
    bool ground;
    bool groundShadow;
    float groundHeight;   ///< Along `up`.
    QSize size;

    explicit Studio(const PictureRequest& request);

    TVec3<float> FromWorld(const TVec3<float>& world) const;

    /// Unit direction of the ray through a point of the picture, in pixels from
    /// its upper left corner.
    TVec3<float> RayThrough(float x, float y) const;

    /// Coordinates along `right`, `above` and `forward`, from the eye.
    TVec3<float> FromEye(const TVec3<float>& point) const;

    /// Where a point with such coordinates stands in the picture.
    /// \pre its `z` is positive
    QPointF ToPixel(const TVec3<float>& fromEye) const;

    /// What is seen behind everything, at a point of the picture in pixels: the
    /// request's background, or a light backdrop, graded by height.
    TVec3<float> Backdrop(float x, float y) const;

    /// What a mirror shows where nothing is in its way: the backdrop, all around.
    TVec3<float> Surroundings(const TVec3<float>& direction) const;

    /// How far a ray runs before it meets the floor from above; infinity where
    /// it does not.
    float DistanceToFloor(const TVec3<float>& origin, const TVec3<float>& direction) const;

    /// How much of a point of the floor is floor: 1 near the target, 0 where it
    /// has become backdrop.
    float FloorPresence(const TVec3<float>& point) const;

    /// What is seen of the floor at a point, where the model takes the light
    /// `lost` away: the backdrop behind it, darkened. Where nothing is lost the
    /// floor cannot be told from the backdrop, so no horizon shows.
    TVec3<float> Floor(const TVec3<float>& point, const TVec3<float>& backdrop, const TVec3<float>& lost) const;

    /// Light that comes from a direction of the sky.
    TVec3<float> Sky(const TVec3<float>& direction) const;

    /// Light of sky and floor on an unoccluded surface: Sky() averaged over the
    /// hemisphere of `normal`, weighted by the cosine.
    TVec3<float> SkyOn(const TVec3<float>& normal) const;

    /// What comes instead of the sky's light from where something hides it that
    /// has a colour.
    TVec3<float> Bounce(const TVec3<float>& colour) const { return Times(colour * kBounce, skyLight); }

    /// The light that a lamp, unhidden, brings to a surface.
    TVec3<float> LampOn(const Lamp& lamp, const TVec3<float>& point, const TVec3<float>& normal) const;

private:
    void TakeLamps(const std::vector<Lamp>& requested);
    void TakeBackground(const QImage& requested);

    TVec3<double> m_target;
    double m_unit;   ///< World units per studio unit.
    float m_tangent; ///< Of half the vertical field of view.
    std::optional<TVec3<float>> m_background;
    QImage m_backgroundImage; ///< In the picture's size, opaque; or null.
};

/// A picture to be filled in; the pixels are undefined.
/// \throws OutOfMemoryException it does not fit in memory
QImage NewPicture(QSize size, QImage::Format format);

/// In studio units along `forward`. Nothing nearer to the eye is drawn by
/// renderers that project triangles.
constexpr float kNearPlane = 0.01f;

/// Tangent of half the angle under which the sun is seen: what softens shadows.
constexpr float kSunRadius = 0.06f;

/// Leaves dark and middle tones alone and rolls highlights off below white.
TVec3<float> Exposed(const TVec3<float>& light);

/// The linear value of an 8-bit sRGB component.
float LinearFromSrgb(int component);

/// An sRGB pixel. The dither, -0.5 to 0.5, is added before rounding.
/// Components that are not numbers become 0.
QRgb PixelFromLinear(const TVec3<float>& colour, float dither = 0.0f);

/// Noise for PixelFromLinear(), from the pixel's place alone.
float DitherAt(int x, int y);

} // namespace Host
