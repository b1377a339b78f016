#include "reference/plugins/embree-renderer/LightTracer.h"

#include "reference/host/Directions.h"
#include "reference/plugins/embree-renderer/SampleSequence.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Host {

namespace {

constexpr float kPi = 3.14159265f;
constexpr std::uint32_t kRaysPerSample = 2; ///< Towards the sun, and as many into the sky.
constexpr int kMostLayers = 16;        ///< Transparent surfaces seen through one another.
constexpr int kMostBounces = 2;        ///< Mirrors seen in one another.
constexpr float kLeastSeen = 0.004f;   ///< What is less can't be told from nothing.
constexpr float kFarAway = std::numeric_limits<float>::infinity();
constexpr TVec3<float> kWhite{1.0f, 1.0f, 1.0f};

// What the samples of a pixel are spent on; each has a sequence of its own.
constexpr std::uint32_t kWithinPixel = 0x1000, kTowardsSun = 0x2000, kIntoSky = 0x3000, kTowardsLamps = 0x4000;

SampleSequence SequenceFor(std::uint32_t pixelSeed, std::uint32_t purpose)
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

/// A direction, mirrored out of a surface if it points into it.
TVec3<float> Outwards(const TVec3<float>& direction, const TVec3<float>& normal)
{
    const float height = Dot(direction, normal);
    return height < 0.0f ? direction - normal * (2.0f * height) : direction;
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
    , m_tree(m_meshes, m_surfaces, m_studio)
    , m_hasTransparent(m_surfaces.HasAny([](const Surface& surface) { return surface.CanBeTransparent(); }))
    , m_hasSun(m_studio.sunLight != TVec3<float>{})
    , m_hasSky(m_studio.skyLight != TVec3<float>{})
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
        const TVec3<float> behind = m_studio.Backdrop(pixelX, pixelY);
        sum = sum + AlongRay({m_studio.eye, m_studio.RayThrough(pixelX, pixelY)}, behind, {seed, index}, 0);
    }
    return sum * (1.0f / static_cast<float>(m_sampleCount));
}

// At most kMostBounces deep.
// NOLINTNEXTLINE(misc-no-recursion)
TVec3<float> LightTracer::AlongRay(Ray3 ray, const TVec3<float>& behind, const Sample& sample, int nBounce) const
{
    TVec3<float> sum{};
    TVec3<float> remaining = kWhite;
    float least = 0.0f;
    for (int layer = 0; layer < kMostLayers; ++layer) {
        const std::optional<TriangleHit> hit = m_tree.Nearest(ray, RayKind::Sight, least);
        // The floor gives way to a model's own floor in the same plane.
        if (!hit || m_studio.DistanceToFloor(ray.origin, ray.direction) < hit->distance * 0.9999f)
            break;
        const Surface& surface = m_surfaces.Of(hit->mesh);
        const TVec2<float> texCoord = TexCoordAt(*hit);
        const SurfaceColour colour = surface.At(texCoord);
        if (colour.opacity > 0.0f || surface.reflection > 0.0f) {
            const ShadingPoint point = PointAt(*hit, ray);
            if (surface.reflection > 0.0f && nBounce < kMostBounces) {
                // Clear glass mirrors; a hole in a texture doesn't.
                const float covered = surface.base.opacity > 0.0f ? colour.opacity / surface.base.opacity : 1.0f;
                const float cosine = Dot(point.smoothNormal, point.towardsEye);
                const TVec3<float> mirrored = surface.MirroredAt(cosine, texCoord) * covered;
                sum = sum + Times(Times(MirroredLight(point, sample, nBounce), mirrored), remaining);
                remaining = Times(remaining, kWhite - mirrored);
            }
            sum = sum + Times(SurfaceLight(point, colour.colour, texCoord, sample), remaining * colour.opacity);
        }
        remaining = Times(remaining, surface.filter) * (1.0f - colour.opacity);
        if (std::max({remaining.x, remaining.y, remaining.z}) < kLeastSeen)
            return sum;
        least = hit->distance + Clearance(PointOn(ray, hit->distance), hit->distance);
    }
    return sum + Times(FloorOr(behind, ray, sample), remaining);
}

// NOLINTNEXTLINE(misc-no-recursion): see AlongRay()
TVec3<float> LightTracer::MirroredLight(const ShadingPoint& point, const Sample& sample, int nBounce) const
{
    const TVec3<float>& normal = point.smoothNormal;
    const TVec3<float> direction = normal * (2.0f * Dot(point.towardsEye, normal)) - point.towardsEye;
    const TVec3<float> outwards = Outwards(direction, point.faceNormal);
    return AlongRay({point.origin, outwards}, m_studio.Surroundings(outwards), sample, nBounce + 1);
}

TVec3<float> LightTracer::SurfaceLight(const ShadingPoint& point, const TVec3<float>& colour,
                                      const TVec2<float>& texCoord, const Sample& sample) const
{
    const Light light = LightAt(point, m_studio.Bounce(colour), sample);
    const float highlight = point.surface->HighlightOn(point.smoothNormal, m_studio.sun, point.towardsEye);
    return point.surface->Seen(colour, light.sun + light.sky + light.lamps, light.sun * highlight + light.shine,
                               texCoord);
}

TVec3<float> LightTracer::FloorOr(const TVec3<float>& behind, const Ray3& ray, const Sample& sample) const
{
    const float distance = m_studio.DistanceToFloor(ray.origin, ray.direction);
    if (!m_studio.groundShadow || !std::isfinite(distance)
        || !(m_studio.FloorPresence(PointOn(ray, distance)) > 0.0f))
        return behind;

    const TVec3<float>& up = m_studio.up;
    const TVec3<float> place = PointOn(ray, distance);
    const ShadingPoint point{place + up * Clearance(place, distance), up, up, -ray.direction, nullptr};
    return m_studio.Floor(place, behind, LightAt(point, m_studio.Bounce(kWhite), sample).lost);
}

LightTracer::ShadingPoint LightTracer::PointAt(const TriangleHit& hit, const Ray3& ray) const
{
    const PosedMesh& mesh = m_meshes[hit.mesh];
    const unsigned int* const corner = &mesh.indices[hit.firstIndex];
    const TVec3<float> a = m_studio.FromWorld(mesh.vertices[corner[0]].position);
    const TVec3<float> b = m_studio.FromWorld(mesh.vertices[corner[1]].position);
    const TVec3<float> c = m_studio.FromWorld(mesh.vertices[corner[2]].position);

    const Surface& surface = m_surfaces.Of(hit.mesh);
    const TVec3<float> face = UsableNormal(Cross(Normalized(b - a), Normalized(c - a)), -ray.direction);
    const auto normalOf = [&](std::size_t i) {
        return surface.flat ? face : UsableNormal(mesh.vertices[corner[i]].normal, face);
    };
    const TVec3<float> normalA = normalOf(0);
    const TVec3<float> normalB = normalOf(1);
    const TVec3<float> normalC = normalOf(2);

    // Rays start on the round surface that the normals stand for, not on the
    // flat triangle: else facets that face away from the sun, on a part whose
    // normals face it, would cut their edges into the shading (Hanika, "Hacking
    // the Shadow Terminator", 2021).
    const TVec3<float> place = Interpolated(a, b, c, hit);
    const TVec3<float> outward = Interpolated(StepOut(place, a, normalA), StepOut(place, b, normalB),
                                              StepOut(place, c, normalC), hit);
    TVec3<float> smooth = UsableNormal(Interpolated(normalA, normalB, normalC, hit), face);
    if (surface.bumpHeight != 0.0f && surface.textures[eMaterialSlotBump])
        smooth = Bumped(smooth, hit, {a, b, c}, -ray.direction);
    return {place + outward + face * Clearance(place, hit.distance), face, smooth, -ray.direction, &surface};
}

TVec3<float> LightTracer::Bumped(const TVec3<float>& normal, const TriangleHit& hit, const TVec3<float> (&corners)[3],
                                const TVec3<float>& towardsEye) const
{
    const PosedMesh& mesh = m_meshes[hit.mesh];
    const unsigned int* const corner = &mesh.indices[hit.firstIndex];
    const Surface& surface = m_surfaces.Of(hit.mesh);
    const Texture& texture = *surface.textures[eMaterialSlotBump];
    const TVec2<float> from = texture.Placed(mesh.vertices[corner[0]].texCoord);
    const TVec2<float> p = texture.Placed(mesh.vertices[corner[1]].texCoord) - from;
    const TVec2<float> q = texture.Placed(mesh.vertices[corner[2]].texCoord) - from;
    const TVec3<float> b = corners[1] - corners[0];
    const TVec3<float> c = corners[2] - corners[0];

    // Width and height of the image as they lie in the triangle's plane.
    const float area = p.x * q.y - q.x * p.y;
    const TVec3<float> width = (b * q.y - c * p.y) * (1.0f / area);
    const TVec3<float> height = (c * p.x - b * q.x) * (1.0f / area);
    const TVec2<float> slope = texture.SlopeAt(TexCoordAt(hit));
    const TVec3<float> steepest = (Cross(height, normal) * slope.x + Cross(normal, width) * slope.y)
        * (1.0f / Dot(normal, Cross(width, height)));
    const bool fromBehind = Dot(Cross(b, c), towardsEye) > 0.0f; // corners run clockwise
    const float rise = Length(width) * surface.bumpHeight * texture.amount * (fromBehind ? -1.0f : 1.0f);
    return UnitOr(normal - steepest * rise, normal); // as it was where the texture has no area
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
        if (m_hasSun)
            AddSun(light, point, towardsSun.At(index));
        if (m_hasSky)
            AddSky(light, point, bounce, intoSky.At(index));
    }
    constexpr float kShare = 1.0f / static_cast<float>(kRaysPerSample);
    light = {light.sun * kShare, light.sky * kShare, {}, {}, light.lost * kShare};
    std::uint32_t purpose = kTowardsLamps;
    for (const Lamp& lamp : m_studio.lamps)
        AddLamp(light, point, lamp, SequenceFor(sample.pixelSeed, purpose++).At(sample.index));
    return light;
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
    const TVec3<float> seen = Transmittance(point, direction, kFarAway);
    light.sun = light.sun + Times(m_studio.sunLight, seen * cosine);
    light.lost = light.lost + Times(m_studio.sunLight, (kWhite - seen) * cosine);
}

void LightTracer::AddSky(Light& light, const ShadingPoint& point, const TVec3<float>& bounce,
                         const TVec2<float>& random) const
{
    const TVec3<float> direction = Outwards(CosineDirection(point.smoothNormal, random), point.faceNormal);
    const TVec3<float> seen = Transmittance(point, direction, kFarAway);
    const TVec3<float> sky = m_studio.Sky(direction);
    light.sky = light.sky + Times(sky, seen) + Times(bounce, kWhite - seen);
    light.lost = light.lost + Times(sky - bounce, kWhite - seen);
}

void LightTracer::AddLamp(Light& light, const ShadingPoint& point, const Lamp& lamp,
                          const TVec2<float>& random) const
{
    const TVec3<float> arriving = m_studio.LampOn(lamp, point.origin, point.smoothNormal);
    if (arriving == TVec3<float>{})
        return;
    const TVec3<float> centre = lamp.position - point.origin;
    const TVec3<float> direction = UnitOr(centre, point.smoothNormal);
    TVec3<float> seen = kWhite;
    if (lamp.castsShadows && Length(centre) > lamp.radius) {
        const Tangents tangents(direction);
        const TVec2<float> disc = OnDisc(random);
        const TVec3<float> place = centre + (tangents.x * disc.x + tangents.y * disc.y) * lamp.radius;
        seen = Transmittance(point, Normalized(place), Length(place));
    }
    const TVec3<float> gained = Times(arriving, seen);
    light.lamps = light.lamps + gained;
    light.lost = light.lost + (arriving - gained);
    if (point.surface)
        light.shine =
            light.shine + gained * point.surface->HighlightOn(point.smoothNormal, direction, point.towardsEye);
}

TVec3<float> LightTracer::Transmittance(const ShadingPoint& point, const TVec3<float>& direction, float most) const
{
    if (point.surface && !point.surface->receivesShadows)
        return kWhite;
    const Ray3 ray{point.origin, direction};
    if (!m_hasTransparent)
        return m_tree.IsBlocked(ray, most) ? TVec3<float>{} : kWhite;

    TVec3<float> remaining = kWhite;
    float least = 0.0f;
    for (int layer = 0; layer < kMostLayers && remaining != TVec3<float>{}; ++layer) {
        const std::optional<TriangleHit> hit = m_tree.Nearest(ray, RayKind::Shadow, least);
        if (!hit || hit->distance > most)
            break;
        const Surface& surface = m_surfaces.Of(hit->mesh);
        remaining = Times(remaining, surface.filter) * (1.0f - surface.At(TexCoordAt(*hit)).opacity);
        least = hit->distance + Clearance(PointOn(ray, hit->distance), hit->distance);
    }
    return remaining;
}

} // namespace Host
