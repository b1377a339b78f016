#include "reference/plugins/painter-renderer/FloorShadow.h"

#include "reference/plugins/painter-renderer/TriangleFill.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Host {

namespace {

constexpr int kLargestMask = 240;
constexpr int kSunDirections = 12;
constexpr int kSkyDirections = 32;

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
    const TVec3<float> across = Cross(studio.sun, studio.up);
    const TVec3<float> x = across == TVec3<float>{} ? studio.right : Normalized(across); // at the zenith any will do
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

/// Each value mixed with its two neighbours on either side, along lines whose
/// values lie `step` apart. What would lie beyond an end is as the end.
void BlurLines(std::vector<float>& values, int lines, int lineStep, int count, int step)
{
    constexpr std::array<float, 5> kWeights{0.0625f, 0.25f, 0.375f, 0.25f, 0.0625f};
    const auto at = [lineStep, step](int l, int i) {
        return static_cast<std::size_t>(l) * static_cast<std::size_t>(lineStep)
               + static_cast<std::size_t>(i) * static_cast<std::size_t>(step);
    };
    std::vector<float> line(static_cast<std::size_t>(count));
    for (int l = 0; l < lines; ++l) {
        for (int i = 0; i < count; ++i) {
            float sum = 0.0f;
            for (int tap = 0; tap < 5; ++tap)
                sum += kWeights[static_cast<std::size_t>(tap)] * values[at(l, std::clamp(i + tap - 2, 0, count - 1))];
            line[static_cast<std::size_t>(i)] = sum;
        }
        for (int i = 0; i < count; ++i)
            values[at(l, i)] = line[static_cast<std::size_t>(i)];
    }
}

} // namespace

FloorShadow::FloorShadow(const PictureRequest& request, const SurfaceTable& surfaces, const Studio& studio)
    : m_studio(studio)
    , m_maskSize(studio.size)
{
    if (std::max(m_maskSize.width(), m_maskSize.height()) > kLargestMask)
        m_maskSize = m_maskSize.scaled(kLargestMask, kLargestMask, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    for (std::size_t mesh = 0; mesh < request.meshes->size(); ++mesh)
        if (surfaces.Of(mesh).base.opacity >= 0.5f && surfaces.Of(mesh).castsShadows)
            AddCaster((*request.meshes)[mesh]);
    m_sunHidden = Hidden(SunDirections(studio));
    m_skyHidden = Hidden(SkyDirections(studio));
}

TVec3<float> FloorShadow::LostAt(int x, int y) const
{
    const TVec3<float> sun = m_studio.sunLight * std::max(0.0f, Dot(m_studio.sun, m_studio.up));
    const TVec3<float> sky = m_studio.SkyOn(m_studio.up) - m_studio.Bounce({1.0f, 1.0f, 1.0f});
    return sun * Sampled(m_sunHidden, x, y) + sky * Sampled(m_skyHidden, x, y);
}

void FloorShadow::AddCaster(const PosedMesh& mesh)
{
    const std::size_t firstPoint = m_points.size();
    for (const MeshVertex& vertex : mesh.vertices)
        m_points.push_back(m_studio.FromWorld(vertex.position));
    for (std::size_t first = 0; first < mesh.indices.size(); first += 3)
        if (IsDrawable(mesh, first))
            m_triangles.push_back({firstPoint + mesh.indices[first], firstPoint + mesh.indices[first + 1],
                                   firstPoint + mesh.indices[first + 2]});
}

FloorShadow::Mask FloorShadow::Hidden(const std::vector<TVec3<float>>& directions) const
{
    const std::size_t width = static_cast<std::size_t>(m_maskSize.width());
    Mask mask(width * static_cast<std::size_t>(m_maskSize.height()), 0.0f);
    std::vector<std::size_t> lastLayer(mask.size(), 0); // each layer counts once, however many triangles it has
    const float weight = 1.0f / static_cast<float>(directions.size());
    for (std::size_t layer = 1; layer <= directions.size(); ++layer) {
        if (!(Dot(directions[layer - 1], m_studio.up) > 0.0f))
            continue; // light from below the floor
        const std::vector<QPointF> shadows = ShadowsOfPoints(directions[layer - 1]);
        for (const auto& [a, b, c] : m_triangles)
            ForEachPixel({shadows[a], shadows[b], shadows[c]}, m_maskSize, [&](int x, int y) {
                const std::size_t at = static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x);
                if (lastLayer[at] != layer)
                    mask[at] += weight;
                lastLayer[at] = layer;
            });
    }
    // Melts the edges of the single layers into one another.
    BlurLines(mask, m_maskSize.height(), m_maskSize.width(), m_maskSize.width(), 1);
    BlurLines(mask, m_maskSize.width(), 1, m_maskSize.height(), m_maskSize.width());
    return mask;
}

std::vector<QPointF> FloorShadow::ShadowsOfPoints(const TVec3<float>& direction) const
{
    const float slope = 1.0f / Dot(direction, m_studio.up);
    const qreal scale = static_cast<qreal>(m_maskSize.width()) / m_studio.size.width();
    std::vector<QPointF> shadows;
    shadows.reserve(m_points.size());
    for (const TVec3<float>& point : m_points) {
        const float height = Dot(point, m_studio.up) - m_studio.groundHeight;
        const TVec3<float> fromEye =
            m_studio.FromEye(point - (height > 0.0f ? direction * (height * slope) : m_studio.up * height));
        shadows.push_back(fromEye.z > kNearPlane ? m_studio.ToPixel(fromEye) * scale : QPointF(qQNaN(), qQNaN()));
    }
    return shadows;
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
