#include "reference/plugins/painter-renderer/Canvas.h"

#include "reference/host/Directions.h"
#include "reference/plugins/painter-renderer/TriangleFill.h"

#include <algorithm>

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

/// `above` over `below`, which is premultiplied.
QRgb Over(QRgb above, QRgb below)
{
    const QRgb source = qPremultiply(above);
    const int rest = 255 - qAlpha(source);
    const auto mixed = [rest](int a, int b) { return a + (b * rest + 127) / 255; };
    return qRgba(mixed(qRed(source), qRed(below)), mixed(qGreen(source), qGreen(below)),
                 mixed(qBlue(source), qBlue(below)), mixed(qAlpha(source), qAlpha(below)));
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
    for (const Piece& piece : pieces)
        if (piece.surface->CanBeTransparent())
            ForEachVisiblePixel(piece, [](QRgb& pixel, float&, QRgb colour, float) {
                if (qAlpha(colour) < 255)
                    pixel = Over(colour, pixel);
            });
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
    const TVec3<float> smooth = UnitOr(Mixed(a.normal, b.normal, c.normal, weights), faceNormal);
    const TVec3<float> normal = Dot(smooth, faceNormal) < 0.0f ? -smooth : smooth;
    const TVec3<float> towardsEye = UnitOr(InStudio(-Mixed(a.fromEye, b.fromEye, c.fromEye, weights)), faceNormal);

    const SurfaceColour colour = piece.surface->At(Mixed(a.texCoord, b.texCoord, c.texCoord, weights));
    const TVec3<float> sun = kSunLight * std::max(0.0f, Dot(normal, m_studio.sun));
    const float highlight = piece.surface->HighlightOn(normal, m_studio.sun, towardsEye);
    const QRgb pixel = PixelFromLinear(Exposed(Times(colour.colour, sun + m_studio.SkyOn(normal)) + sun * highlight));
    return qRgba(qRed(pixel), qGreen(pixel), qBlue(pixel), qRound(colour.opacity * 255.0f));
}

/// The studio direction of a direction in the camera's frame.
TVec3<float> Canvas::InStudio(const TVec3<float>& direction) const
{
    return m_studio.right * direction.x + m_studio.above * direction.y + m_studio.forward * direction.z;
}

} // namespace Host
