#include "reference/host/Picture.h"

#include <algorithm>
#include <cmath>

namespace Host {

namespace {

constexpr float kFieldOfView = 30.0f;
constexpr float kRadians = 0.017453292f;
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

TVec3<double> Widened(const TVec3<float>& v)
{
    return {static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z)};
}

/// Whether two edges span an area. In double, where no product of two floats
/// under- or overflows.
bool SpanArea(const TVec3<double>& a, const TVec3<double>& b)
{
    return a.y * b.z != a.z * b.y || a.z * b.x != a.x * b.z || a.x * b.y != a.y * b.x;
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
    for (const PosedMesh& mesh : meshes)
        for (std::size_t first = 0; first < mesh.indices.size(); first += 3)
            if (IsDrawable(mesh, first))
                for (std::size_t corner = 0; corner < 3; ++corner)
                    box.Extend(mesh.vertices[mesh.indices[first + corner]].position);
    return box;
}

Camera FrameBox(const TBBox<float>& box, const TVec3<float>& up, float azimuth, float elevation, QSize size)
{
    const bool usable = !box.IsEmpty() && Length(box.HalfExtent()) > 0.0f;
    const TVec3<float> center = box.IsEmpty() ? TVec3<float>{0.0f, 0.0f, 0.0f} : box.Center();
    const TVec3<float> half = usable ? box.HalfExtent() : TVec3<float>{0.5f, 0.5f, 0.5f};

    const TVec3<float> side = Normalized(Cross(up, FrontOf(up)));
    const TVec3<float> front = Normalized(Cross(side, up));
    const TVec3<float> horizontal = front * std::cos(azimuth * kRadians) + side * std::sin(azimuth * kRadians);
    const float slope = std::clamp(elevation, -kSteepest, kSteepest) * kRadians;
    const TVec3<float> back = horizontal * std::cos(slope) + up * std::sin(slope);

    // Move back until each corner of the box is inside both half angles.
    const TVec3<float> right = Normalized(Cross(up, back));
    const TVec3<float> above = Cross(back, right);
    const float aspect = static_cast<float>(std::max(size.width(), 1)) / static_cast<float>(std::max(size.height(), 1));
    const float tanY = std::tan(kFieldOfView * 0.5f * kRadians);
    const float tanX = tanY * aspect;
    float distance = 0.0f;
    for (int corner = 0; corner < 8; ++corner) {
        const TVec3<float> offset{corner & 1 ? half.x : -half.x, corner & 2 ? half.y : -half.y,
                                  corner & 4 ? half.z : -half.z};
        const float depth = Dot(offset, back);
        distance = std::max({distance, depth + kMargin * std::fabs(Dot(offset, right)) / tanX,
                             depth + kMargin * std::fabs(Dot(offset, above)) / tanY});
    }
    return {center + back * distance, center, up, kFieldOfView};
}

} // namespace Host
