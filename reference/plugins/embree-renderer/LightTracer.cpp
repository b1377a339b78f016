#include "reference/plugins/embree-renderer/LightTracer.h"

#include "reference/host/Directions.h"
#include "reference/plugins/embree-renderer/SampleSequence.h"

#include <algorithm>
#include <cmath>

namespace Host {

namespace {

constexpr float kPi = 3.14159265f;
constexpr std::uint32_t kRaysPerSample = 2; ///< Towards the sun, and as many into the sky.
constexpr int kMostLayers = 16;        ///< Transparent surfaces seen through one another.

// What the samples of a pixel are spent on; each has a sequence of its own.
enum Purpose : std::uint32_t { kWithinPixel = 0x1000, kTowardsSun = 0x2000, kIntoSky = 0x3000 };

SampleSequence SequenceFor(std::uint32_t pixelSeed, Purpose purpose)
{
    return SampleSequence(Hash(pixelSeed + purpose));
}

TVec3<float> PointOn(const Ray3& ray, float distance)
{
    return ray.origin + ray.direction * distance;
}

/// How far rays must start from a surface: above the rounding errors of the
/// point, below anything that can be seen.
float Clearance(const TVec3<float>& point, float distance)
{
    return 2e-6f * std::max({std::fabs(point.x), std::fabs(point.y), std::fabs(point.z), distance});
}

/// Two unit vectors that make a right-handed frame with a unit vector (Duff and
/// others, "Building an Orthonormal Basis, Revisited", 2017).
struct Tangents {
    TVec3<float> x;
    TVec3<float> y;

    explicit Tangents(const TVec3<float>& n)
    {
        const float sign = std::copysign(1.0f, n.z);
        const float a = -1.0f / (sign + n.z);
        const float b = n.x * n.y * a;
        x = {1.0f + sign * n.x * n.x * a, sign * b, -sign * n.x};
        y = {b, sign + n.y * n.y * a, -n.y};
    }
};

/// A point of the unit disc, areas kept.
TVec2<float> OnDisc(const TVec2<float>& random)
{
    const float radius = std::sqrt(random.x);
    const float angle = 2.0f * kPi * random.y;
    return {radius * std::cos(angle), radius * std::sin(angle)};
}

/// A direction about a unit normal, likelier the nearer to it: by the cosine.
TVec3<float> CosineDirection(const TVec3<float>& normal, const TVec2<float>& random)
{
    const TVec2<float> disc = OnDisc(random);
    const Tangents tangents(normal);
    const float height = std::sqrt(std::max(0.0f, 1.0f - random.x));
    return tangents.x * disc.x + tangents.y * disc.y + normal * height;
}

TVec3<float> Interpolated(const TVec3<float>& a, const TVec3<float>& b, const TVec3<float>& c, const TriangleHit& hit)
{
    return a * (1.0f - hit.u - hit.v) + b * hit.u + c * hit.v;
}

/// A vertex normal with unit length on the side of `faceNormal`, or that one
/// where the vertex has none.
TVec3<float> UsableNormal(const TVec3<float>& normal, const TVec3<float>& faceNormal)
{
    const TVec3<float> unit = UnitOr(normal, faceNormal);
    return Dot(unit, faceNormal) < 0.0f ? -unit : unit;
}

/// How far `point` lies behind the plane through a vertex, as a step out of it.
TVec3<float> StepOut(const TVec3<float>& point, const TVec3<float>& vertex, const TVec3<float>& normal)
{
    return normal * std::max(0.0f, Dot(vertex - point, normal));
}

} // namespace

LightTracer::LightTracer(const PictureRequest& request)
    : m_meshes(*request.meshes)
    , m_studio(request)
    , m_surfaces(request)
    , m_tree(m_meshes, m_studio)
    , m_hasTransparent(m_surfaces.HasAny([](const Surface& surface) { return surface.CanBeTransparent(); }))
    , m_sampleCount(static_cast<std::uint32_t>(std::max(request.samplesPerPixel, 1)))
{
}

TVec3<float> LightTracer::PixelColour(int x, int y) const
{
    const std::uint32_t seed = Hash(static_cast<std::uint32_t>(x) + Hash(static_cast<std::uint32_t>(y)));
    TVec3<float> sum{};
    for (std::uint32_t index = 0; index < m_sampleCount; ++index) {
        const TVec2<float> offset = SequenceFor(seed, kWithinPixel).At(index);
        const float pixelX = static_cast<float>(x) + offset.x;
        const float pixelY = static_cast<float>(y) + offset.y;
        sum = sum + AlongRay({m_studio.eye, m_studio.RayThrough(pixelX, pixelY)}, pixelY, {seed, index});
    }
    return sum * (1.0f / static_cast<float>(m_sampleCount));
}

TVec3<float> LightTracer::AlongRay(Ray3 ray, float pixelY, const Sample& sample) const
{
    TVec3<float> sum{};
    float remaining = 1.0f;
    float least = 0.0f;
    for (int layer = 0; layer < kMostLayers; ++layer) {
        const std::optional<TriangleHit> hit = m_tree.Nearest(ray, least);
        // The floor gives way to a model's own floor in the same plane.
        if (!hit || m_studio.DistanceToFloor(ray.origin, ray.direction) < hit->distance * 0.9999f)
            break;
        const SurfaceColour colour = m_surfaces.Of(hit->mesh).At(TexCoordAt(*hit));
        if (colour.opacity > 0.0f)
            sum = sum + SurfaceLight(*hit, ray, colour, sample) * (remaining * colour.opacity);
        remaining *= 1.0f - colour.opacity;
        if (remaining < 0.004f)
            return sum;
        least = hit->distance + Clearance(PointOn(ray, hit->distance), hit->distance);
    }
    return sum + FloorOrBackdrop(ray, pixelY, sample) * remaining;
}

TVec3<float> LightTracer::SurfaceLight(const TriangleHit& hit, const Ray3& ray, const SurfaceColour& colour,
                                      const Sample& sample) const
{
    const Surface& surface = m_surfaces.Of(hit.mesh);
    const ShadingPoint point = PointAt(hit, ray);
    const Light light = LightAt(point, colour.colour * kBounce, sample);

    const float highlight = surface.HighlightOn(point.smoothNormal, m_studio.sun, -ray.direction);
    return Exposed(Times(colour.colour, light.sun + light.sky) + light.sun * highlight);
}

TVec3<float> LightTracer::FloorOrBackdrop(const Ray3& ray, float pixelY, const Sample& sample) const
{
    const float distance = m_studio.DistanceToFloor(ray.origin, ray.direction);
    if (!std::isfinite(distance) || !(m_studio.FloorPresence(PointOn(ray, distance)) > 0.0f))
        return m_studio.Backdrop(0.0f, pixelY);

    const TVec3<float>& up = m_studio.up;
    const TVec3<float> place = PointOn(ray, distance);
    const ShadingPoint point{place + up * Clearance(place, distance), up, up};
    return m_studio.Floor(place, m_studio.Backdrop(0.0f, pixelY), LightAt(point, {kBounce, kBounce, kBounce}, sample).lost);
}

LightTracer::ShadingPoint LightTracer::PointAt(const TriangleHit& hit, const Ray3& ray) const
{
    const PosedMesh& mesh = m_meshes[hit.mesh];
    const unsigned int* const corner = &mesh.indices[hit.firstIndex];
    const TVec3<float> a = m_studio.FromWorld(mesh.vertices[corner[0]].position);
    const TVec3<float> b = m_studio.FromWorld(mesh.vertices[corner[1]].position);
    const TVec3<float> c = m_studio.FromWorld(mesh.vertices[corner[2]].position);

    TVec3<float> face = UsableNormal(Cross(Normalized(b - a), Normalized(c - a)), -ray.direction);
    const TVec3<float> normalA = UsableNormal(mesh.vertices[corner[0]].normal, face);
    const TVec3<float> normalB = UsableNormal(mesh.vertices[corner[1]].normal, face);
    const TVec3<float> normalC = UsableNormal(mesh.vertices[corner[2]].normal, face);

    // Rays start on the round surface that the normals stand for, not on the
    // flat triangle: else facets that face away from the sun, on a part whose
    // normals face it, would cut their edges into the shading (Hanika, "Hacking
    // the Shadow Terminator", 2021).
    const TVec3<float> place = Interpolated(a, b, c, hit);
    const TVec3<float> outward = Interpolated(StepOut(place, a, normalA), StepOut(place, b, normalB),
                                              StepOut(place, c, normalC), hit);
    const TVec3<float> smooth = UsableNormal(Interpolated(normalA, normalB, normalC, hit), face);
    return {place + outward + face * Clearance(place, hit.distance), face, smooth};
}

TVec2<float> LightTracer::TexCoordAt(const TriangleHit& hit) const
{
    const PosedMesh& mesh = m_meshes[hit.mesh];
    const unsigned int* const corner = &mesh.indices[hit.firstIndex];
    return mesh.vertices[corner[0]].texCoord * (1.0f - hit.u - hit.v) + mesh.vertices[corner[1]].texCoord * hit.u
        + mesh.vertices[corner[2]].texCoord * hit.v;
}

LightTracer::Light LightTracer::LightAt(const ShadingPoint& point, const TVec3<float>& bounce,
                                      const Sample& sample) const
{
    const SampleSequence towardsSun = SequenceFor(sample.pixelSeed, kTowardsSun);
    const SampleSequence intoSky = SequenceFor(sample.pixelSeed, kIntoSky);
    Light light{};
    for (std::uint32_t i = 0; i < kRaysPerSample; ++i) {
        const std::uint32_t index = sample.index * kRaysPerSample + i;
        AddSun(light, point, towardsSun.At(index));
        AddSky(light, point, bounce, intoSky.At(index));
    }
    constexpr float kShare = 1.0f / static_cast<float>(kRaysPerSample);
    return {light.sun * kShare, light.sky * kShare, light.lost * kShare};
}

void LightTracer::AddSun(Light& light, const ShadingPoint& point, const TVec2<float>& random) const
{
    const Tangents tangents(m_studio.sun);
    const TVec2<float> disc = OnDisc(random);
    const TVec3<float> direction =
        Normalized(m_studio.sun + (tangents.x * disc.x + tangents.y * disc.y) * kSunRadius);
    const float cosine = Dot(direction, point.smoothNormal);
    if (!(cosine > 0.0f))
        return;
    const float seen = Transmittance({point.origin, direction});
    light.sun = light.sun + kSunLight * (cosine * seen);
    light.lost = light.lost + kSunLight * (cosine * (1.0f - seen));
}

void LightTracer::AddSky(Light& light, const ShadingPoint& point, const TVec3<float>& bounce,
                         const TVec2<float>& random) const
{
    TVec3<float> direction = CosineDirection(point.smoothNormal, random);
    const float above = Dot(direction, point.faceNormal);
    if (above < 0.0f) // into the triangle itself: mirrored out of it
        direction = direction - point.faceNormal * (2.0f * above);

    const float seen = Transmittance({point.origin, direction});
    const TVec3<float> sky = m_studio.Sky(direction);
    light.sky = light.sky + sky * seen + bounce * (1.0f - seen);
    light.lost = light.lost + (sky - bounce) * (1.0f - seen);
}

float LightTracer::Transmittance(const Ray3& ray) const
{
    if (!m_hasTransparent)
        return m_tree.IsBlocked(ray) ? 0.0f : 1.0f;

    float remaining = 1.0f;
    float least = 0.0f;
    for (int layer = 0; layer < kMostLayers && remaining > 0.0f; ++layer) {
        const std::optional<TriangleHit> hit = m_tree.Nearest(ray, least);
        if (!hit)
            break;
        remaining *= 1.0f - m_surfaces.Of(hit->mesh).At(TexCoordAt(*hit)).opacity;
        least = hit->distance + Clearance(PointOn(ray, hit->distance), hit->distance);
    }
    return remaining;
}

} // namespace Host
