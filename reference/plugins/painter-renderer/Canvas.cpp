#include "reference/plugins/painter-renderer/Canvas.h"

#include "reference/host/Directions.h"
#include "reference/plugins/painter-renderer/TriangleFill.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Host {

namespace {

double CrossProduct(const QPointF& a, const QPointF& b)
{
    return a.x() * b.y() - a.y() * b.x();
}

template <typename Vector>
Vector Mixed(const Vector& a, const Vector& b, const Vector& c, const TVec3<float>& weights)
{
    return a * weights.x + b * weights.y + c * weights.z;
}

/// `above` over `below`, which is premultiplied. What shows through is tinted.
QRgb Over(QRgb above, QRgb below, const TVec3<float>& filter)
{
    const QRgb source = qPremultiply(above);
    const int rest = 255 - qAlpha(source);
    const auto mixed = [rest](int a, int b) { return a + (b * rest + 127) / 255; };
    const auto tinted = [](int b, float share) { return std::min(qRound(static_cast<float>(b) * share), 255); };
    return qRgba(mixed(qRed(source), tinted(qRed(below), filter.x)),
                 mixed(qGreen(source), tinted(qGreen(below), filter.y)),
                 mixed(qBlue(source), tinted(qBlue(below), filter.z)), mixed(qAlpha(source), qAlpha(below)));
}

/// The factor of a pixel that makes its light so much less.
TVec3<float> InPixels(const TVec3<float>& share)
{
    constexpr float kGamma = 1.0f / 2.2f;
    return {std::pow(share.x, kGamma), std::pow(share.y, kGamma), std::pow(share.z, kGamma)};
}

} // namespace

Canvas::Canvas(const Studio& studio, int top, int rows)
    : m_studio(studio)
    , m_top(top)
    , m_image(NewPicture(QSize(studio.size.width(), rows) * kFiner, QImage::Format_ARGB32_Premultiplied))
    , m_nearness(static_cast<std::size_t>(m_image.width()) * static_cast<std::size_t>(m_image.height()), 0.0f)
{
    m_image.fill(Qt::transparent);
}

void Canvas::Draw(const std::vector<Piece>& pieces)
{
    // The nearest first: what they hide needs no colour.
    for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece)
        ForEachVisiblePixel(*piece, [](QRgb& pixel, float& nearest, QRgb colour, float nearness) {
            if (qAlpha(colour) < 255)
                return;
            pixel = colour;
            nearest = nearness;
        });
    for (const Piece& piece : pieces) {
        if (!piece.surface->CanBeTransparent())
            continue;
        const TVec3<float> filter = InPixels(piece.surface->filter);
        ForEachVisiblePixel(piece, [&filter](QRgb& pixel, float&, QRgb colour, float) {
            if (qAlpha(colour) < 255)
                pixel = Over(colour, pixel, filter);
        });
    }
}

void Canvas::PutBehind(const QImage& picture)
{
    QPainter painter(&m_image);
    painter.drawImage(m_image.rect(), picture, QRect(0, m_top, picture.width(), m_image.height() / kFiner));
}

QImage Canvas::GetPicture() const
{
    return m_image.scaled(m_image.size() / kFiner, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

template <typename Painter>
void Canvas::ForEachVisiblePixel(const Piece& piece, const Painter& paint)
{
    std::array<QPointF, 3> p;
    for (std::size_t i = 0; i < 3; ++i)
        p[i] = (m_studio.ToPixel(piece.corners[i].fromEye) - QPointF(0.0, m_top)) * kFiner;
    const double area = CrossProduct(p[1] - p[0], p[2] - p[0]);
    const TVec3<float> face = FaceNormal(piece);
    QRgb* const pixels = reinterpret_cast<QRgb*>(m_image.bits());
    ForEachPixel(p, m_image.size(), [&](int x, int y) {
        const QPointF place(x + 0.5, y + 0.5);
        const float b = static_cast<float>(CrossProduct(place - p[0], p[2] - p[0]) / area);
        const float c = static_cast<float>(CrossProduct(p[1] - p[0], place - p[0]) / area);
        // Along a line of the picture 1 / depth grows evenly, depth does not.
        const TVec3<float> shares{(1.0f - b - c) / piece.corners[0].fromEye.z, b / piece.corners[1].fromEye.z,
                                  c / piece.corners[2].fromEye.z};
        const float nearness = shares.x + shares.y + shares.z;
        const std::size_t at =
            static_cast<std::size_t>(y) * static_cast<std::size_t>(m_image.width()) + static_cast<std::size_t>(x);
        if (nearness > m_nearness[at])
            paint(pixels[at], m_nearness[at], ColourAt(piece, face, shares * (1.0f / nearness)), nearness);
    });
}

/// Towards the viewer.
TVec3<float> Canvas::FaceNormal(const Piece& piece) const
{
    const TVec3<float>& a = piece.corners[0].fromEye;
    const TVec3<float> inFrame =
        UnitOr(Cross(UnitOr(piece.corners[1].fromEye - a, {}), UnitOr(piece.corners[2].fromEye - a, {})), -a);
    return InStudio(Dot(inFrame, a) > 0.0f ? -inFrame : inFrame);
}

QRgb Canvas::ColourAt(const Piece& piece, const TVec3<float>& faceNormal, const TVec3<float>& weights) const
{
    const auto& [a, b, c] = piece.corners;
    const Surface& surface = *piece.surface;
    const TVec3<float> smooth =
        surface.flat ? faceNormal : UnitOr(Mixed(a.normal, b.normal, c.normal, weights), faceNormal);
    const TVec3<float> normal = Dot(smooth, faceNormal) < 0.0f ? -smooth : smooth;
    const TVec3<float> fromEye = InStudio(Mixed(a.fromEye, b.fromEye, c.fromEye, weights));
    const TVec3<float> towardsEye = UnitOr(-fromEye, faceNormal);
    const TVec2<float> texCoord = Mixed(a.texCoord, b.texCoord, c.texCoord, weights);

    const TVec3<float> sun = m_studio.sunLight * std::max(0.0f, Dot(normal, m_studio.sun));
    TVec3<float> light = sun + m_studio.SkyOn(normal);
    TVec3<float> shine = sun * surface.HighlightOn(normal, m_studio.sun, towardsEye);
    for (const Lamp& lamp : m_studio.lamps) {
        const TVec3<float> place = m_studio.eye + fromEye;
        const TVec3<float> arriving = m_studio.LampOn(lamp, place, normal);
        light = light + arriving;
        shine = shine + arriving * surface.HighlightOn(normal, UnitOr(lamp.position - place, normal), towardsEye);
    }
    const SurfaceColour colour = surface.At(texCoord);
    const QRgb pixel = PixelFromLinear(surface.Seen(colour.colour, light, shine, texCoord));
    return qRgba(qRed(pixel), qGreen(pixel), qBlue(pixel), qRound(colour.opacity * 255.0f));
}

/// The studio direction of a direction in the camera's frame.
TVec3<float> Canvas::InStudio(const TVec3<float>& direction) const
{
    return m_studio.right * direction.x + m_studio.above * direction.y + m_studio.forward * direction.z;
}

} // namespace Host
