#include "reference/host/Picture.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/Directions.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Host {

namespace {

constexpr float kFieldOfView = 30.0f;
constexpr float kSteepest = 89.0f;
constexpr float kMargin = 1.08f; ///< Room around the box, as a factor of its extent in the picture.

/// Where azimuth 0 looks from, seen from the target, for a given up axis.
TVec3<float> FrontOf(const TVec3<float>& up)
{
    const bool mostlyZ = std::fabs(up.z) > std::fabs(up.x) && std::fabs(up.z) > std::fabs(up.y);
    return mostlyZ ? TVec3<float>{0.0f, -1.0f, 0.0f} : TVec3<float>{0.0f, 0.0f, 1.0f};
}

bool IsFinite(const TVec3<float>& v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

/// Whether two edges span an area. In double, where no product of two floats
/// under- or overflows.
bool SpanArea(const TVec3<double>& a, const TVec3<double>& b)
{
    return a.y * b.z != a.z * b.y || a.z * b.x != a.x * b.z || a.x * b.y != a.y * b.x;
}

template <typename Visitor>
void ForEachDrawableCorner(const std::vector<PosedMesh>& meshes, const Visitor& visit)
{
    for (const PosedMesh& mesh : meshes)
        for (std::size_t first = 0; first < mesh.indices.size(); first += 3)
            if (IsDrawable(mesh, first))
                for (std::size_t corner = 0; corner < 3; ++corner)
                    visit(mesh.vertices[mesh.indices[first + corner]].position);
}

/// What a camera sees that looks at its target from a given side, from
/// whichever distance.
class ViewCone {
public:
    ViewCone(const TVec3<float>& back, const TVec3<float>& up, float fieldOfView, QSize size)
        : m_back(back)
        , m_right(UnitOr(Cross(up, m_back), {}))
        , m_above(Cross(m_back, m_right))
    {
        const float aspect =
            static_cast<float>(std::max(size.width(), 1)) / static_cast<float>(std::max(size.height(), 1));
        m_tanY = std::tan(fieldOfView * 0.5f * kRadians);
        m_tanX = m_tanY * aspect;
    }

    /// Distance of the eye from the target that brings a point, given relative
    /// to the target, inside both half angles.
    float DistanceToSee(const TVec3<float>& point) const
    {
        const float aside = std::fabs(Dot(point, m_right)) / m_tanX;
        const float above = std::fabs(Dot(point, m_above)) / m_tanY;
        return Dot(point, m_back) + kMargin * std::max(aside, above);
    }

    /// What DistanceToSee() is at most for points within `radius` of the
    /// target, from whichever side they are seen.
    double GreatestDistance(double radius) const
    {
        return radius * (1.0 + static_cast<double>(kMargin) / static_cast<double>(std::min(m_tanX, m_tanY)));
    }

private:
    TVec3<float> m_back;
    TVec3<float> m_right;
    TVec3<float> m_above;
    float m_tanX;
    float m_tanY;
};

void CheckWithinReach(const TVec3<double>& center, const TVec3<double>& half, const ViewCone& cone)
{
    const double radius = LengthOf(half);
    if (LengthOf(center) + cone.GreatestDistance(radius) > static_cast<double>(std::numeric_limits<float>::max()))
        throw Exception(QStringLiteral("a box %1 across is too large for a camera to see all of it").arg(2.0 * radius));
}

} // namespace

void MeshCollector::BeginModel(const QString&, std::size_t nExpected)
{
    meshes.clear();
    meshes.reserve(nExpected);
}

void MeshCollector::EndModel() {}

void MeshCollector::AddMeshNode(const QString& name, std::vector<MeshVertex>& vertices,
                                std::vector<unsigned int>& indices, const QString& materialName,
                                const QMap<QString, QVariant>& materialParameters)
{
    meshes.push_back({name, vertices, indices, materialName, materialParameters});
}

bool IsDrawable(const PosedMesh& mesh, std::size_t firstIndex)
{
    if (mesh.indices.size() < firstIndex + 3)
        return false;
    TVec3<float> corners[3];
    for (std::size_t i = 0; i < 3; ++i) {
        const unsigned int index = mesh.indices[firstIndex + i];
        if (index >= mesh.vertices.size() || !IsFinite(mesh.vertices[index].position))
            return false;
        corners[i] = mesh.vertices[index].position;
    }
    const TVec3<double> origin = Widened(corners[0]);
    return SpanArea(Widened(corners[1]) - origin, Widened(corners[2]) - origin);
}

TBBox<float> BoxOf(const std::vector<PosedMesh>& meshes)
{
    TBBox<float> box;
    ForEachDrawableCorner(meshes, [&box](const TVec3<float>& corner) { box.Extend(corner); });
    return box;
}

Camera FrameBox(const TBBox<float>& box, const TVec3<float>& up, float azimuth, float elevation, QSize size)
{
    const TBBox<double> wide = box.IsEmpty() ? TBBox<double>(TVec3<double>{}, TVec3<double>{})
                                              : TBBox<double>(Widened(box.min), Widened(box.max));
    const bool usable = LengthOf(wide.HalfExtent()) > 0.0;
    const TVec3<double> wideHalf = usable ? wide.HalfExtent() : TVec3<double>{0.5, 0.5, 0.5};

    const TVec3<float> side = Normalized(Cross(up, FrontOf(up)));
    const TVec3<float> front = Normalized(Cross(side, up));
    const TVec3<float> horizontal = front * std::cos(azimuth * kRadians) + side * std::sin(azimuth * kRadians);
    const float slope = std::clamp(elevation, -kSteepest, kSteepest) * kRadians;
    const TVec3<float> back = horizontal * std::cos(slope) + up * std::sin(slope);

    const ViewCone cone(UnitOr(back, {}), up, kFieldOfView, size);
    CheckWithinReach(wide.Center(), wideHalf, cone);
    const TVec3<float> center = Narrowed(wide.Center());
    const TVec3<float> half = Narrowed(wideHalf);
    float distance = 0.0f;
    for (int corner = 0; corner < 8; ++corner)
        distance = std::max(distance, cone.DistanceToSee({corner & 1 ? half.x : -half.x, corner & 2 ? half.y : -half.y,
                                                          corner & 4 ? half.z : -half.z}));
    return {center + back * distance, center, up, kFieldOfView};
}

float DistanceToSee(const std::vector<PosedMesh>& meshes, const Camera& camera, QSize size)
{
    const ViewCone cone(UnitOr(camera.eye - camera.target, {}), camera.up, camera.verticalFieldOfView, size);
    float distance = 0.0f;
    ForEachDrawableCorner(meshes, [&](const TVec3<float>& corner) {
        distance = std::max(distance, cone.DistanceToSee(corner - camera.target));
    });
    return distance;
}

QStringList IPictureRenderer::GetLeftOut(const PictureRequest&) const
{
    return {};
}

} // namespace Host
