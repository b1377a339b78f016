#include "lumenta/scene/Ray.h"

#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/kernels/BoxLanes.h"
#include "lumenta/scene/TraceTriangles.h"

#include <algorithm>
#include <cmath>
#include <optional>

// For spheres and triangles comparisons are written so that a number decides
// them in favour of a hit: with NaN in them they are false, and nothing is hit.

namespace {

using Vec3 = TVec3<float>;

constexpr float kNoHit = 1.0f;

Vec3 PointAt(const Vec3& start, const Vec3& end, float t)
{
    return start + (end - start) * t;
}

void DeriveCentre(Ray& ray)
{
    ray.centre = (ray.start + ray.end) * 0.5f;
    ray.halfDelta = ray.centre - ray.start;
    ray.absHalfDelta = {std::fabs(ray.halfDelta.x), std::fabs(ray.halfDelta.y), std::fabs(ray.halfDelta.z)};
}

/// |m|² − r²: not above 0 inside the sphere and on it. `toCentre` is m.
float PowerOfPoint(const Vec3& toCentre, float radius)
{
    return Dot(toCentre, toCentre) - radius * radius;
}

/// Where the line enters the sphere, if that is within the segment. Its start
/// is outside, `power` away.
std::optional<float> NearerRoot(const Vec3& delta, const Vec3& toCentre, float power)
{
    const float a = Dot(delta, delta);
    if (a == 0.0f)
        return std::nullopt;

    const float b = Dot(delta, toCentre);
    const float discriminant = (-2.0f * b) * (-2.0f * b) - 4.0f * a * power;
    if (discriminant < 0.0f)
        return std::nullopt;

    const float t = (2.0f * b - std::sqrt(discriminant)) * 0.5f / a;
    if (t >= 0.0f && t <= 1.0f)
        return t;
    return std::nullopt;
}

/// Narrows [tMin, tMax] to where the segment is between two planes. An axis
/// without motion is never asked.
/// \return false if nothing is left
bool ClipToSlab(float start, float end, float low, float high, float& tMin, float& tMax)
{
    const float delta = end - start;
    if (delta == 0.0f)
        return true;

    const float inverse = 1.0f / delta;
    const float tFar = ((delta > 0.0f ? high : low) - start) * inverse;
    if (tFar < tMin)
        return false;
    const float tNear = ((delta > 0.0f ? low : high) - start) * inverse;
    if (tNear > tMax)
        return false;
    tMin = std::max(tMin, tNear);
    tMax = std::min(tMax, tFar);
    return true;
}

float ToleranceOf(const TBBox<float>& box)
{
    const bool valid = box.min.x <= box.max.x && box.min.y <= box.max.y && box.min.z <= box.max.z;
    return Ray::kTolerance * (valid ? Length(box.max - box.min) : 0.0f);
}

} // namespace

Ray::Ray(const Vec3& from, const Vec3& to)
    : start(from)
    , end(to)
{
    DeriveCentre(*this);
}

bool Ray::IsIntersect(const TBBox<float>& box) const
{
    return Overlap({Load3(centre), Load3(halfDelta), Load3(absHalfDelta)}, box);
}

bool Ray::IsIntersect(const Vec3& sphereCentre, float radius) const
{
    const Vec3 toCentre = sphereCentre - start;
    const float power = PowerOfPoint(toCentre, radius);
    return power <= 0.0f || NearerRoot(end - start, toCentre, power);
}

float Ray::Trace(const Vec3& sphereCentre, float radius) const
{
    const Vec3 toCentre = sphereCentre - start;
    const float power = PowerOfPoint(toCentre, radius);
    return power <= 0.0f ? kNoHit : NearerRoot(end - start, toCentre, power).value_or(kNoHit);
}

float Ray::Trace(const TBBox<float>& box) const
{
    float tMin = 0.0f;
    float tMax = 1.0f;
    const bool hit = ClipToSlab(start.x, end.x, box.min.x, box.max.x, tMin, tMax)
        && ClipToSlab(start.y, end.y, box.min.y, box.max.y, tMin, tMax)
        && ClipToSlab(start.z, end.z, box.min.z, box.max.z, tMin, tMax);
    return hit ? tMin : kNoHit;
}

float Ray::Trace(const IMesh& mesh) const
{
    const IMeshNode* const owner = mesh.GetOwner();
    if (owner && owner->IsExcludedFromTracing())
        return kNoHit;

    const float tolerance = ToleranceOf(mesh.GetBBox());
    const std::vector<MeshVertex>& vertices = mesh.GetVertices();
    const std::vector<unsigned int>& indices = mesh.GetIndices();

    return TraceTriangles(Kernels::Chosen(), start, end, tolerance, vertices.data(), indices.data(), indices.size() / 3);
}

void Ray::Clip(float t)
{
    end = PointAt(start, end, t);
    DeriveCentre(*this);
}
