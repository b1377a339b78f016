#include "reference/plugins/painter-renderer/FloorShadow.h"

#include "reference/host/Surface.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace Host {

namespace {

constexpr int kLargestMask = 240;
constexpr int kSunDirections = 12;
constexpr int kSkyDirections = 32;
constexpr float kNear = 0.01f;

/// Point `index` of `count` that cover the unit disc evenly, as the seeds of a
/// sunflower do.
TVec2<float> SunflowerPoint(int index, int count)
{
    const float radius = std::sqrt((static_cast<float>(index) + 0.5f) / static_cast<float>(count));
    const float angle = 2.3999632f * static_cast<float>(index);
    return {radius * std::cos(angle), radius * std::sin(angle)};
}

std::vector<TVec3<float>> SunDirections(const Studio& studio)
{
    const TVec3<float> x = Normalized(Cross(studio.sun, studio.up));
    const TVec3<float> y = Cross(x, studio.sun);
    std::vector<TVec3<float>> directions;
    for (int i = 0; i < kSunDirections; ++i) {
        const TVec2<float> disc = SunflowerPoint(i, kSunDirections);
        directions.push_back(Normalized(studio.sun + (x * disc.x + y * disc.y) * kSunRadius));
    }
    return directions;
}

/// Over the hemisphere, the denser the steeper: each brings the same light.
std::vector<TVec3<float>> SkyDirections(const Studio& studio)
{
    const TVec3<float> towardsViewer = Cross(studio.right, studio.up);
    std::vector<TVec3<float>> directions;
    for (int i = 0; i < kSkyDirections; ++i) {
        const TVec2<float> disc = SunflowerPoint(i, kSkyDirections);
        const float height = std::sqrt(1.0f - disc.x * disc.x - disc.y * disc.y);
        directions.push_back(studio.right * disc.x + towardsViewer * disc.y + studio.up * height);
    }
    return directions;
}

/// The meshes that are more opaque than not.
std::vector<const PosedMesh*> Casters(const PictureRequest& request)
{
    const SurfaceTable surfaces(request);
    std::vector<const PosedMesh*> casters;
    for (std::size_t mesh = 0; mesh < request.meshes->size(); ++mesh)
        if (surfaces.Of(mesh).base.opacity >= 0.5f)
            casters.push_back(&(*request.meshes)[mesh]);
    return casters;
}

/// Each value mixed with its two neighbours on either side, along lines whose
/// values lie `step` apart. What would lie beyond an end is as the end.
void BlurLines(std::vector<float>& values, int lines, int lineStep, int count, int step)
{
    constexpr std::array<float, 5> kWeights{0.0625f, 0.25f, 0.375f, 0.25f, 0.0625f};
    std::vector<float> line(static_cast<std::size_t>(count));
    for (int l = 0; l < lines; ++l) {
        for (int i = 0; i < count; ++i) {
            float sum = 0.0f;
            for (int tap = -2; tap <= 2; ++tap)
                sum += kWeights[static_cast<std::size_t>(tap + 2)]
                    * values[static_cast<std::size_t>(l * lineStep + std::clamp(i + tap, 0, count - 1) * step)];
            line[static_cast<std::size_t>(i)] = sum;
        }
        for (int i = 0; i < count; ++i)
            values[static_cast<std::size_t>(l * lineStep + i * step)] = line[static_cast<std::size_t>(i)];
    }
}

float CrossProduct(const QPointF& a, const QPointF& b)
{
    return static_cast<float>(a.x() * b.y() - a.y() * b.x());
}

} // namespace

FloorShadow::FloorShadow(const PictureRequest& request, const Studio& studio)
    : m_studio(studio)
    , m_maskSize(studio.size)
{
    if (std::max(m_maskSize.width(), m_maskSize.height()) > kLargestMask)
        m_maskSize = m_maskSize.scaled(kLargestMask, kLargestMask, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    const Meshes casters = Casters(request);
    m_sunHidden = Hidden(casters, SunDirections(studio));
    m_skyHidden = Hidden(casters, SkyDirections(studio));
}

TVec3<float> FloorShadow::LostAt(int x, int y) const
{
    const TVec3<float> sun = kSunLight * Dot(m_studio.sun, m_studio.up);
    const TVec3<float> sky = m_studio.SkyOn(m_studio.up) - TVec3<float>{kBounce, kBounce, kBounce};
    return sun * Sampled(m_sunHidden, x, y) + sky * Sampled(m_skyHidden, x, y);
}

FloorShadow::Mask FloorShadow::Hidden(const Meshes& meshes, const std::vector<TVec3<float>>& directions) const
{
    QImage layer(m_maskSize, QImage::Format_Grayscale8);
    Mask mask(static_cast<std::size_t>(m_maskSize.width()) * static_cast<std::size_t>(m_maskSize.height()), 0.0f);
    const float weight = 1.0f / (255.0f * static_cast<float>(directions.size()));
    for (const TVec3<float>& direction : directions) {
        layer.fill(0);
        QPainter painter(&layer);
        painter.fillPath(Silhouette(meshes, direction), Qt::white);
        painter.end();
        auto sum = mask.begin();
        for (int y = 0; y < m_maskSize.height(); ++y) {
            const uchar* const row = layer.constScanLine(y);
            for (int x = 0; x < m_maskSize.width(); ++x)
                *sum++ += static_cast<float>(row[x]) * weight;
        }
    }
    // Melts the edges of the single layers into one another.
    BlurLines(mask, m_maskSize.height(), m_maskSize.width(), m_maskSize.width(), 1);
    BlurLines(mask, m_maskSize.width(), 1, m_maskSize.height(), m_maskSize.width());
    return mask;
}

/// One path for all triangles, all turned the same way round, so that no seam
/// shows between neighbours.
QPainterPath FloorShadow::Silhouette(const Meshes& meshes, const TVec3<float>& direction) const
{
    const float slope = 1.0f / Dot(direction, m_studio.up);
    const qreal scale = static_cast<qreal>(m_maskSize.width()) / m_studio.size.width();
    const auto shadowOf = [&](const TVec3<float>& world) {
        const TVec3<float> point = m_studio.FromWorld(world);
        const float height = Dot(point, m_studio.up) - m_studio.groundHeight;
        return m_studio.FromEye(point - (height > 0.0f ? direction * (height * slope) : m_studio.up * height));
    };

    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (const PosedMesh* mesh : meshes) {
        for (std::size_t first = 0; first < mesh->indices.size(); first += 3) {
            if (!IsDrawable(*mesh, first))
                continue;
            std::array<QPointF, 3> corners;
            bool inFront = true;
            for (std::size_t i = 0; i < 3; ++i) {
                const TVec3<float> fromEye = shadowOf(mesh->vertices[mesh->indices[first + i]].position);
                inFront = inFront && fromEye.z > kNear && std::isfinite(fromEye.x) && std::isfinite(fromEye.y);
                corners[i] = inFront ? m_studio.ToPixel(fromEye) * scale : QPointF();
            }
            if (!inFront)
                continue;
            if (CrossProduct(corners[1] - corners[0], corners[2] - corners[0]) < 0.0f)
                std::swap(corners[1], corners[2]);
            path.moveTo(corners[0]);
            path.lineTo(corners[1]);
            path.lineTo(corners[2]);
            path.closeSubpath();
        }
    }
    return path;
}

float FloorShadow::Sampled(const Mask& mask, int x, int y) const
{
    const float width = static_cast<float>(m_maskSize.width());
    const float height = static_cast<float>(m_maskSize.height());
    const float atX = (static_cast<float>(x) + 0.5f) * width / static_cast<float>(m_studio.size.width()) - 0.5f;
    const float atY = (static_cast<float>(y) + 0.5f) * height / static_cast<float>(m_studio.size.height()) - 0.5f;
    const float column = std::clamp(atX, 0.0f, width - 1.0f);
    const float row = std::clamp(atY, 0.0f, height - 1.0f);
    const int left = static_cast<int>(column);
    const int upper = static_cast<int>(row);
    const auto at = [&](int maskX, int maskY) {
        const int boundX = std::min(maskX, m_maskSize.width() - 1);
        const int boundY = std::min(maskY, m_maskSize.height() - 1);
        return mask[static_cast<std::size_t>(boundY) * static_cast<std::size_t>(m_maskSize.width())
                    + static_cast<std::size_t>(boundX)];
    };
    const float toRight = column - static_cast<float>(left);
    const float downwards = row - static_cast<float>(upper);
    return (at(left, upper) * (1.0f - toRight) + at(left + 1, upper) * toRight) * (1.0f - downwards)
        + (at(left, upper + 1) * (1.0f - toRight) + at(left + 1, upper + 1) * toRight) * downwards;
}

} // namespace Host
