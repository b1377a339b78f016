#include "reference/host/Studio.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/Directions.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace Host {

namespace {

constexpr float kDefaultFieldOfView = 30.0f;

// The floor is itself within the first distance from the target, backdrop
// beyond the second. In studio units: the camera is 1 away.
constexpr float kFloorUntil = 0.55f;
constexpr float kBackdropFrom = 1.5f;

constexpr TVec3<float> kZenith{0.47f, 0.51f, 0.57f};
constexpr TVec3<float> kHorizon{0.46f, 0.46f, 0.46f};
constexpr float kPi = 3.14159265f;
constexpr float kNearestLamp = 1e-4f; ///< Nearer ones light as from there.

TVec3<float> Mix(const TVec3<float>& a, const TVec3<float>& b, float factor)
{
    return a + (b - a) * factor;
}

float SmoothStep(float from, float to, float value)
{
    const float t = std::clamp((value - from) / (to - from), 0.0f, 1.0f);
    return t * t * (3.0f - 2.0f * t);
}

/// Some unit vector at right angles to a unit vector.
TVec3<float> AnyPerpendicular(const TVec3<float>& v)
{
    const TVec3<float> axis = std::fabs(v.x) < 0.5f ? TVec3<float>{1.0f, 0.0f, 0.0f} : TVec3<float>{0.0f, 1.0f, 0.0f};
    return Normalized(Cross(v, axis));
}

/// The tangent of half a field of view in degrees.
float HalfTangent(float degrees)
{
    const float usable = std::isfinite(degrees) ? std::clamp(degrees, 1.0f, 179.9f) : kDefaultFieldOfView;
    return std::tan(usable * 0.5f * kRadians);
}

float Rolled(float light)
{
    constexpr float kKnee = 0.7f;
    if (!(light > kKnee))
        return light;
    return kKnee + (1.0f - kKnee) * (1.0f - std::exp((kKnee - light) / (1.0f - kKnee)));
}

int SrgbFromLinear(float linear, float dither)
{
    if (!(linear > 0.0f)) // also what is not a number
        return 0;
    const float bounded = std::min(linear, 1.0f);
    const float encoded = bounded <= 0.0031308f ? 12.92f * bounded : 1.055f * std::pow(bounded, 1.0f / 2.4f) - 0.055f;
    return static_cast<int>(std::clamp(encoded * 255.0f + dither + 0.5f, 0.0f, 255.0f));
}

TVec3<float> LinearFromPixel(QRgb pixel)
{
    return {LinearFromSrgb(qRed(pixel)), LinearFromSrgb(qGreen(pixel)), LinearFromSrgb(qBlue(pixel))};
}

} // namespace

Studio::Studio(const PictureRequest& request)
    : sunLight(Times(kSunLight, request.sunLight))
    , skyLight(request.skyLight)
    , ground(request.ground)
    , groundShadow(request.groundShadow)
    , groundHeight(0.0f)
    , size(request.size)
    , m_target(Widened(request.camera.target))
    , m_unit(LengthOf(Widened(request.camera.eye) - m_target))
    , m_tangent(HalfTangent(request.camera.verticalFieldOfView))
    , m_background(request.background)
{
    if (!(m_unit > 0.0) || !std::isfinite(m_unit))
        m_unit = 1.0;
    const TVec3<float> cameraUp = UnitOr(request.camera.up, {0.0f, 1.0f, 0.0f});
    up = UnitOr(request.zenith, cameraUp);
    forward = UnitOr(request.camera.target - request.camera.eye, AnyPerpendicular(cameraUp));
    right = UnitOr(Cross(forward, cameraUp), AnyPerpendicular(cameraUp));
    above = Cross(right, forward);
    eye = -forward;

    const TVec3<float> towardsViewer = Cross(right, up);
    sun = UnitOr(request.sunDirection, Normalized(up * 0.68f - right * 0.48f + towardsViewer * 0.56f));
    groundHeight = Dot(FromWorld(up * request.groundHeight), up);
    TakeLamps(request.lamps);
    TakeBackground(request.backgroundImage);
}

void Studio::TakeLamps(const std::vector<Lamp>& requested)
{
    for (Lamp lamp : requested) {
        const TVec3<double> light = Widened(lamp.light);
        const double scale = static_cast<double>(kLampLight) / (m_unit * m_unit);
        lamp.position = FromWorld(lamp.position);
        lamp.light = Narrowed({light.x * scale, light.y * scale, light.z * scale});
        lamp.radius = Narrowed({static_cast<double>(lamp.radius) / m_unit, 0.0, 0.0}).x;
        lamps.push_back(lamp);
    }
}

void Studio::TakeBackground(const QImage& requested)
{
    if (requested.isNull() || size.isEmpty())
        return;
    QImage image = NewPicture(size, QImage::Format_RGB32);
    image.fill(m_background ? PixelFromLinear(*m_background) : qRgb(0, 0, 0));
    QPainter painter(&image);
    painter.drawImage(0, 0, requested.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    painter.end();
    m_backgroundImage = image;
}

TVec3<float> Studio::FromWorld(const TVec3<float>& world) const
{
    const TVec3<double> offset = Widened(world) - m_target;
    return Narrowed({offset.x / m_unit, offset.y / m_unit, offset.z / m_unit});
}

TVec3<float> Studio::RayThrough(float x, float y) const
{
    const float pixel = 2.0f * m_tangent / static_cast<float>(size.height());
    const float toRight = (x - 0.5f * static_cast<float>(size.width())) * pixel;
    const float toAbove = (0.5f * static_cast<float>(size.height()) - y) * pixel;
    return Normalized(forward + right * toRight + above * toAbove);
}

TVec3<float> Studio::FromEye(const TVec3<float>& point) const
{
    const TVec3<float> offset = point - eye;
    return {Dot(offset, right), Dot(offset, above), Dot(offset, forward)};
}

QPointF Studio::ToPixel(const TVec3<float>& fromEye) const
{
    const float scale = static_cast<float>(size.height()) / (2.0f * m_tangent * fromEye.z);
    return {static_cast<qreal>(0.5f * static_cast<float>(size.width()) + fromEye.x * scale),
            static_cast<qreal>(0.5f * static_cast<float>(size.height()) - fromEye.y * scale)};
}

TVec3<float> Studio::Backdrop(float x, float y) const
{
    if (!m_backgroundImage.isNull())
        return LinearFromPixel(m_backgroundImage.pixel(std::clamp(static_cast<int>(x), 0, size.width() - 1),
                                                       std::clamp(static_cast<int>(y), 0, size.height() - 1)));
    if (m_background)
        return *m_background;
    static const TVec3<float> kTop = LinearFromPixel(qRgb(206, 212, 220));
    static const TVec3<float> kBottom = LinearFromPixel(qRgb(240, 239, 236));
    return Mix(kTop, kBottom, SmoothStep(0.0f, static_cast<float>(size.height()), y));
}

TVec3<float> Studio::Surroundings(const TVec3<float>& direction) const
{
    // Round to the left and to the right, so that both ends meet behind the camera's back.
    const float azimuth = std::atan2(Dot(direction, right), std::fabs(Dot(direction, forward)));
    const float elevation = std::asin(std::clamp(Dot(direction, up), -1.0f, 1.0f));
    return Backdrop((0.5f + azimuth / kPi) * static_cast<float>(size.width()),
                    (0.5f - elevation / kPi) * static_cast<float>(size.height()));
}

float Studio::DistanceToFloor(const TVec3<float>& origin, const TVec3<float>& direction) const
{
    const float height = Dot(origin, up) - groundHeight;
    const float descent = -Dot(direction, up);
    return ground && height > 0.0f && descent > 0.0f ? height / descent : std::numeric_limits<float>::infinity();
}

float Studio::FloorPresence(const TVec3<float>& point) const
{
    return 1.0f - SmoothStep(kFloorUntil, kBackdropFrom, Length(point - up * groundHeight));
}

TVec3<float> Studio::Floor(const TVec3<float>& point, const TVec3<float>& backdrop, const TVec3<float>& lost) const
{
    const float presence = FloorPresence(point);
    TVec3<float> all = sunLight * std::max(0.0f, Dot(sun, up)) + SkyOn(up);
    for (const Lamp& lamp : lamps)
        all = all + LampOn(lamp, point, up);
    const auto share = [presence](float gone, float of) { return of > 0.0f ? 1.0f - presence * gone / of : 1.0f; };
    return Times(backdrop, {share(lost.x, all.x), share(lost.y, all.y), share(lost.z, all.z)});
}

TVec3<float> Studio::Sky(const TVec3<float>& direction) const
{
    const float height = Dot(direction, up);
    return Times(height < 0.0f ? kFloorLight : Mix(kHorizon, kZenith, height), skyLight);
}

TVec3<float> Studio::SkyOn(const TVec3<float>& normal) const
{
    // The sky's part of a tilted hemisphere is (1 + cos) / 2; two thirds of the
    // way up is where its light comes from on average.
    const TVec3<float> sky = Mix(kHorizon, kZenith, 2.0f / 3.0f);
    return Times(Mix(kFloorLight, sky, 0.5f + 0.5f * Dot(normal, up)), skyLight);
}

TVec3<float> Studio::LampOn(const Lamp& lamp, const TVec3<float>& point, const TVec3<float>& normal) const
{
    const TVec3<float> towards = lamp.position - point;
    const float cosine = Dot(UnitOr(towards, normal), normal);
    if (!(cosine > 0.0f))
        return {};
    // Nothing comes nearer to it than its surface.
    const float distance = std::max({Length(towards), lamp.radius, kNearestLamp});
    return lamp.light * (cosine / (distance * distance));
}

QImage NewPicture(QSize size, QImage::Format format)
{
    QImage image(size, format);
    if (image.isNull()) {
        const QString text =
            QStringLiteral("No room for a picture of %1 by %2 pixels").arg(size.width()).arg(size.height());
        constexpr unsigned long kBytesPerPixel = 4;
        throw OutOfMemoryException(text, kBytesPerPixel * static_cast<unsigned long>(size.width())
                                             * static_cast<unsigned long>(size.height()));
    }
    return image;
}

TVec3<float> Exposed(const TVec3<float>& light)
{
    return {Rolled(light.x), Rolled(light.y), Rolled(light.z)};
}

float LinearFromSrgb(int component)
{
    static const std::array<float, 256> kTable = [] {
        std::array<float, 256> table{};
        for (int i = 0; i < 256; ++i) {
            const float encoded = static_cast<float>(i) / 255.0f;
            table[static_cast<std::size_t>(i)] =
                encoded <= 0.04045f ? encoded / 12.92f : std::pow((encoded + 0.055f) / 1.055f, 2.4f);
        }
        return table;
    }();
    return kTable[static_cast<std::size_t>(component)];
}

QRgb PixelFromLinear(const TVec3<float>& colour, float dither)
{
    return qRgb(SrgbFromLinear(colour.x, dither), SrgbFromLinear(colour.y, dither),
                SrgbFromLinear(colour.z, dither));
}

float DitherAt(int x, int y)
{
    // Interleaved gradient noise (Jimenez 2014): neighbours differ, so that the
    // eye averages them.
    const float value = 0.06711056f * static_cast<float>(x) + 0.00583715f * static_cast<float>(y);
    const float noise = 52.9829189f * (value - std::floor(value));
    return noise - std::floor(noise) - 0.5f;
}

} // namespace Host
