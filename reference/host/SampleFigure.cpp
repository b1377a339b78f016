#include "reference/host/SampleFigure.h"

#include <QColor>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace Host {

namespace {

using SkinAnimation::Animation;
using SkinAnimation::Geometry;
using SkinAnimation::KeyFrame;
using SkinAnimation::Node;
using SkinAnimation::Quaternion;
using SkinAnimation::SkinVertex;

constexpr float kPi = 3.14159265f;

// ---------------------------------------------------------------- skeleton

enum Bone : std::uint16_t {
    kFigure, kHips, kSpine, kChest, kNeck, kHead, kHat,
    kArmL, kForearmL, kHandL, kArmR, kForearmR, kHandR,
    kThighL, kShinL, kFootL, kToesL, kThighR, kShinR, kFootR, kToesR,
    kBoneCount
};

struct BoneDescription {
    const char* name;
    int parent;
    TVec3<float> position; ///< Where its joint is in the rest pose.
};

// Parents before children, in the order of the enumeration. At rest the arms
// hang 35 degrees away from the body.
constexpr BoneDescription kBones[kBoneCount] = {
    {"figure", -1, {0.0f, 0.0f, 0.0f}},
    {"hips", kFigure, {0.0f, 0.48f, 0.0f}},
    {"spine", kHips, {0.0f, 0.58f, 0.0f}},
    {"chest", kSpine, {0.0f, 0.70f, 0.0f}},
    {"neck", kChest, {0.0f, 0.83f, 0.0f}},
    {"head", kNeck, {0.0f, 0.88f, 0.0f}},
    {"hat", kHead, {-0.015f, 1.135f, -0.01f}},
    {"arm.L", kChest, {0.115f, 0.775f, 0.0f}},
    {"forearm.L", kArmL, {0.2125f, 0.6358f, 0.0f}},
    {"hand.L", kForearmL, {0.3043f, 0.5048f, 0.0f}},
    {"arm.R", kChest, {-0.115f, 0.775f, 0.0f}},
    {"forearm.R", kArmR, {-0.2125f, 0.6358f, 0.0f}},
    {"hand.R", kForearmR, {-0.3043f, 0.5048f, 0.0f}},
    {"thigh.L", kHips, {0.075f, 0.45f, 0.0f}},
    {"shin.L", kThighL, {0.08f, 0.26f, 0.0f}},
    {"foot.L", kShinL, {0.08f, 0.08f, 0.0f}},
    {"toes.L", kFootL, {0.08f, 0.03f, 0.09f}},
    {"thigh.R", kHips, {-0.075f, 0.45f, 0.0f}},
    {"shin.R", kThighR, {-0.08f, 0.26f, 0.0f}},
    {"foot.R", kShinR, {-0.08f, 0.08f, 0.0f}},
    {"toes.R", kFootR, {-0.08f, 0.03f, 0.09f}},
};

/// The rotation about a unit axis.
Quaternion About(const TVec3<float>& axis, float degrees)
{
    const float half = degrees * kPi / 360.0f;
    const float sine = std::sin(half);
    return {axis.x * sine, axis.y * sine, axis.z * sine, std::cos(half)};
}

/// `first`, then `second`.
Quaternion Chained(const Quaternion& first, const Quaternion& second)
{
    const Quaternion& a = second;
    const Quaternion& b = first;
    return {a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y, a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
            a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w, a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}

/// Hands it over to a list of those that are owned.
template <typename T>
T& Owned(std::vector<T*>& owners, std::unique_ptr<T> made)
{
    owners.push_back(made.get());
    return *made.release();
}

void AddSkeleton(SkinAnimation::Scene& scene)
{
    for (const BoneDescription& bone : kBones) {
        Matrix origin;
        if (&bone == &kBones[kHat])
            origin.SetRotation({0.0f, 0.0f, -9.0f}); // worn at a tilt
        origin.SetTranslation(bone.position);
        Node* const parent = bone.parent < 0 ? nullptr : scene.nodes[static_cast<std::size_t>(bone.parent)];
        auto node = std::make_unique<Node>(QString::fromLatin1(bone.name), origin, Matrix(), parent);
        if (parent)
            scene.nodes.push_back(&Owned(parent->children, std::move(node)));
        else
            scene.nodes.push_back(scene.root = node.release());
    }
}

// ------------------------------------------------------------------ shapes

/// A bone, and where along a limb it takes over from the one before.
struct Takeover {
    std::uint16_t bone;
    float distance; ///< From the limb's start; that of the first is not read.
};

/// A rounded tube from `start` to `end`.
struct Limb {
    TVec3<float> start;
    TVec3<float> end;
    float startRadius;
    float endRadius;
    float roundedLength; ///< Over which each end closes.
    float width = 1.0f;  ///< Factor of the radius along x.
    std::vector<Takeover> bones{};
    float blend = 0.04f; ///< Half of the length over which one bone takes over.
};

constexpr std::uint32_t kSides = 24;
constexpr std::uint32_t kRings = 20; ///< From tip to tip, both counted.
constexpr float kStripeRepeat = 0.11f;

float SmoothStep(float from, float to, float value)
{
    const float t = std::clamp((value - from) / (to - from), 0.0f, 1.0f);
    return t * t * (3.0f - 2.0f * t);
}

/// 0 at the tip of a limb, 1 where its rounding ends: a quarter of an ellipse.
float Roundness(float distanceFromTip, float roundedLength)
{
    const float x = std::clamp(1.0f - distanceFromTip / roundedLength, 0.0f, 1.0f);
    return std::sqrt(1.0f - x * x);
}

/// Triangles under construction, with the slots of the normals that vertices
/// share: where a limb's texture begins and ends, two vertices stand in one
/// place.
class ShapeBuilder {
public:
    explicit ShapeBuilder(Geometry& geometry, std::uint32_t firstSlot = 0)
        : m_geometry(geometry)
        , m_firstSlot(firstSlot)
        , m_nextSlot(firstSlot)
    {
    }

    void Add(const Limb& limb)
    {
        const std::uint32_t firstVertex = static_cast<std::uint32_t>(m_geometry.vertices.size());
        for (std::uint32_t ring = 0; ring < kRings; ++ring)
            AddRing(limb, ring);
        for (std::uint32_t ring = 0; ring + 1 < kRings; ++ring)
            for (std::uint32_t side = 0; side < kSides; ++side)
                AddQuad(firstVertex, ring, side);
        m_nextSlot += kRings * kSides;
    }

    /// Gives each vertex the normal of the surface around it.
    void FinishNormals()
    {
        std::vector<TVec3<float>> normals(m_nextSlot - m_firstSlot, TVec3<float>{});
        for (std::size_t k = 0; k < m_geometry.indices.size(); k += 3) {
            const TVec3<float>& a = m_geometry.vertices[m_geometry.indices[k]].position;
            const TVec3<float>& b = m_geometry.vertices[m_geometry.indices[k + 1]].position;
            const TVec3<float>& c = m_geometry.vertices[m_geometry.indices[k + 2]].position;
            const TVec3<float> normal = Cross(a - b, c - b);
            for (std::size_t corner = k; corner < k + 3; ++corner) {
                TVec3<float>& sum = normals[m_geometry.normalIndices[corner] - m_firstSlot];
                sum = sum + normal;
            }
        }
        for (std::size_t k = 0; k < m_geometry.indices.size(); ++k)
            m_geometry.vertices[m_geometry.indices[k]].normal =
                Normalized(normals[m_geometry.normalIndices[k] - m_firstSlot]);
    }

    std::uint32_t NextSlot() const { return m_nextSlot; }

private:
    void AddRing(const Limb& limb, std::uint32_t ring)
    {
        const float length = Length(limb.end - limb.start);
        const TVec3<float> along = (limb.end - limb.start) * (1.0f / length);
        const TVec3<float> depth = std::fabs(along.z) > 0.9f ? TVec3<float>{0.0f, -1.0f, 0.0f}
                                                             : TVec3<float>{0.0f, 0.0f, 1.0f};
        const TVec3<float> across = Normalized(Cross(along, depth));

        // Rings stand closer at the tips, where the outline bends.
        const float part = 0.5f - 0.5f * std::cos(kPi * static_cast<float>(ring) / static_cast<float>(kRings - 1));
        const float distance = part * length;
        const bool isTip = ring == 0 || ring == kRings - 1;
        const float radius = isTip ? 0.0f
                                   : (limb.startRadius + (limb.endRadius - limb.startRadius) * part)
                * Roundness(distance, limb.roundedLength) * Roundness(length - distance, limb.roundedLength);
        for (std::uint32_t side = 0; side <= kSides; ++side) {
            const float turn = static_cast<float>(side % kSides) / static_cast<float>(kSides);
            const float angle = 2.0f * kPi * turn;
            SkinVertex vertex;
            vertex.tangent = across * -std::sin(angle) + depth * std::cos(angle);
            vertex.bitangent = along;
            vertex.position = limb.start + along * distance + across * (radius * limb.width * std::cos(angle))
                + depth * (radius * std::sin(angle));
            vertex.normal = along; // until FinishNormals()
            vertex.texCoord = {static_cast<float>(side) / static_cast<float>(kSides), distance / kStripeRepeat};
            vertex.handedness = 1.0f;
            SetWeights(vertex, limb, distance);
            m_geometry.vertices.push_back(vertex);
        }
    }

    /// Each bone holds from where it takes over to where the next one does; the
    /// differences of the takeovers sum to 1.
    static void SetWeights(SkinVertex& vertex, const Limb& limb, float distance)
    {
        const auto takenOver = [&](std::size_t bone) {
            const float at = bone < limb.bones.size() ? limb.bones[bone].distance : 0.0f;
            return bone < limb.bones.size() ? SmoothStep(at - limb.blend, at + limb.blend, distance) : 0.0f;
        };
        std::size_t used = 0;
        for (std::size_t bone = 0; bone < limb.bones.size(); ++bone) {
            const float weight = (bone == 0 ? 1.0f : takenOver(bone)) - takenOver(bone + 1);
            if (weight > 0.0f) {
                vertex.boneIndices[used] = limb.bones[bone].bone;
                vertex.weights[used++] = weight;
            }
        }
    }

    /// Two triangles between two rings; one where the other would end in a tip.
    void AddQuad(std::uint32_t firstVertex, std::uint32_t ring, std::uint32_t side)
    {
        if (ring > 0)
            AddTriangle(firstVertex, {ring, ring, ring + 1}, {side, side + 1, side});
        if (ring + 2 < kRings)
            AddTriangle(firstVertex, {ring, ring + 1, ring + 1}, {side + 1, side + 1, side});
    }

    void AddTriangle(std::uint32_t firstVertex, const std::uint32_t (&rings)[3], const std::uint32_t (&sides)[3])
    {
        for (std::size_t i = 0; i < 3; ++i) {
            const bool isTip = rings[i] == 0 || rings[i] == kRings - 1;
            m_geometry.indices.push_back(firstVertex + rings[i] * (kSides + 1) + sides[i]);
            m_geometry.normalIndices.push_back(m_nextSlot + rings[i] * kSides + (isTip ? 0 : sides[i] % kSides));
        }
    }

    Geometry& m_geometry;
    std::uint32_t m_firstSlot;
    std::uint32_t m_nextSlot;
};

// -------------------------------------------------------------- the figure

Limb MirroredToRight(Limb limb)
{
    limb.start.x = -limb.start.x;
    limb.end.x = -limb.end.x;
    for (Takeover& takeover : limb.bones) {
        if (takeover.bone >= kThighL)
            takeover.bone = static_cast<std::uint16_t>(takeover.bone + kThighR - kThighL);
        else if (takeover.bone >= kArmL)
            takeover.bone = static_cast<std::uint16_t>(takeover.bone + kArmR - kArmL);
    }
    return limb;
}

std::vector<Limb> BothSides(const Limb& left)
{
    return {left, MirroredToRight(left)};
}

std::vector<Limb> Jumper()
{
    std::vector<Limb> limbs = BothSides({{0.095f, 0.805f, 0.0f}, {0.307f, 0.501f, 0.0f}, 0.055f, 0.05f, 0.03f, 1.0f,
                                         {{kArmL, 0.0f}, {kForearmL, 0.205f}}});
    limbs.push_back({{0.0f, 0.44f, 0.0f}, {0.0f, 0.87f, 0.0f}, 0.14f, 0.105f, 0.04f, 1.16f,
                     {{kHips, 0.0f}, {kSpine, 0.14f}, {kChest, 0.26f}}});
    return limbs;
}

std::vector<Limb> Trousers()
{
    std::vector<Limb> limbs = BothSides({{0.066f, 0.5f, 0.0f}, {0.08f, 0.07f, 0.0f}, 0.08f, 0.06f, 0.02f, 1.0f,
                                         {{kHips, 0.0f}, {kThighL, 0.06f}, {kShinL, 0.24f}}});
    limbs.push_back({{0.0f, 0.38f, 0.0f}, {0.0f, 0.5f, 0.0f}, 0.12f, 0.115f, 0.06f, 1.25f, {{kHips, 0.0f}}});
    return limbs;
}

std::vector<Limb> Skin()
{
    std::vector<Limb> limbs = BothSides({{0.292f, 0.522f, 0.0f}, {0.358f, 0.428f, 0.0f}, 0.046f, 0.05f, 0.055f, 1.0f,
                                         {{kForearmL, 0.0f}, {kHandL, 0.02f}}, 0.02f});
    limbs.push_back({{0.0f, 0.86f, 0.0f}, {0.0f, 1.2f, 0.0f}, 0.175f, 0.16f, 0.17f, 1.05f,
                     {{kNeck, 0.0f}, {kHead, 0.03f}}, 0.03f});
    limbs.push_back({{0.0f, 1.01f, 0.14f}, {0.0f, 1.0f, 0.205f}, 0.03f, 0.03f, 0.032f, 1.0f, {{kHead, 0.0f}}});
    return limbs;
}

std::vector<Limb> ShoesAndScarf()
{
    std::vector<Limb> limbs = BothSides({{0.08f, 0.052f, -0.07f}, {0.088f, 0.048f, 0.15f}, 0.052f, 0.05f, 0.06f, 1.15f,
                                         {{kFootL, 0.0f}, {kToesL, 0.14f}}});
    limbs.push_back({{0.0f, 0.81f, 0.0f}, {0.0f, 0.9f, 0.0f}, 0.125f, 0.125f, 0.045f, 1.1f, {{kNeck, 0.0f}}});
    limbs.push_back({{0.055f, 0.85f, 0.11f}, {0.07f, 0.67f, 0.155f}, 0.03f, 0.035f, 0.02f, 1.3f, {{kChest, 0.0f}}});
    return limbs;
}

std::vector<Limb> Eyes()
{
    std::vector<Limb> limbs;
    for (const float x : {-0.062f, 0.062f})
        limbs.push_back({{x, 1.052f, 0.14f}, {x * 1.1f, 1.056f, 0.176f}, 0.02f, 0.02f, 0.018f, 1.0f, {{kHead, 0.0f}}});
    return limbs;
}

/// In the frame of the hat's own node.
std::vector<Limb> HatShape()
{
    return {{{0.0f, -0.016f, 0.0f}, {0.0f, 0.016f, 0.0f}, 0.262f, 0.252f, 0.016f},
            {{0.0f, -0.01f, 0.0f}, {0.0f, 0.175f, 0.0f}, 0.182f, 0.15f, 0.045f}};
}

enum class Normals { TheirOwn, FromTheNode };

void AddGeometry(Node& node, const QString& name, const Material& material, const std::vector<Limb>& limbs,
                 Normals normals)
{
    const bool isSkinned = !limbs.front().bones.empty();
    Geometry* const geometry = &Owned(node.geometries, std::make_unique<Geometry>(name, isSkinned));
    geometry->materialName = material.name;
    geometry->materialParameters = material.parameters;

    ShapeBuilder builder(*geometry, normals == Normals::FromTheNode ? static_cast<std::uint32_t>(node.normalCount) : 0);
    for (const Limb& limb : limbs)
        builder.Add(limb);
    builder.FinishNormals();
    if (normals == Normals::FromTheNode)
        node.normalCount = builder.NextSlot();
    else
        geometry->normalIndices.clear();
}

QImage Stripes()
{
    QImage image(4, 32, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, y < 19 ? qRgb(40, 128, 134) : qRgb(243, 232, 208));
    return image;
}

Material MakeMaterial(const char* name, const QColor& diffuse)
{
    Material material;
    material.name = QString::fromLatin1(name);
    material.parameters.insert(QStringLiteral("diffuse"), diffuse);
    return material;
}

std::vector<Material> Materials()
{
    std::vector<Material> materials{
        MakeMaterial("wool", QColor(255, 255, 255)), MakeMaterial("denim", QColor(58, 74, 110)),
        MakeMaterial("skin", QColor(240, 190, 150)), MakeMaterial("felt", QColor(196, 66, 48)),
        MakeMaterial("button", QColor(38, 30, 28))};
    materials[0].parameters.insert(QStringLiteral("texture"), QStringLiteral("stripes"));
    materials[4].parameters.insert(QStringLiteral("specular"), QColor(255, 255, 255));
    materials[4].parameters.insert(QStringLiteral("shininess"), 60.0);
    return materials;
}

// -------------------------------------------------------------- animations

constexpr TVec3<float> kX{1.0f, 0.0f, 0.0f};
constexpr TVec3<float> kY{0.0f, 1.0f, 0.0f};
constexpr TVec3<float> kZ{0.0f, 0.0f, 1.0f};

/// How a bone moves in a cycle: a posture that it keeps, and a swing about it.
struct Motion {
    Bone bone;
    Quaternion posture;
    TVec3<float> axis;
    float middle;      ///< Degrees.
    float amplitude;   ///< Degrees.
    float phase;       ///< Degrees of the cycle.
    float swings = 1;  ///< In one cycle.
    float rise = 0;    ///< Added to the height, twice in a cycle.
};

KeyFrame KeyAt(const Motion& motion, float part, float duration)
{
    const BoneDescription& bone = kBones[motion.bone];
    const float swing = std::sin(2.0f * kPi * (part * motion.swings + motion.phase / 360.0f));
    const float rise = motion.rise * (1.0f - std::cos(4.0f * kPi * part)) * 0.5f;
    const Quaternion turn = About(motion.axis, motion.middle + motion.amplitude * swing);
    return {part * duration, bone.position - kBones[bone.parent].position + TVec3<float>{0.0f, rise, 0.0f},
            Chained(motion.posture, turn), {1.0f, 1.0f, 1.0f}};
}

void AddAnimation(SkinAnimation::Scene& scene, const QString& name, float duration, const std::vector<Motion>& motions)
{
    constexpr int kSteps = 16;
    Animation* const animation = &Owned(scene.animations, std::make_unique<Animation>());
    animation->name = name;
    animation->duration = duration;
    animation->layers.push_back({name, duration, {}});
    for (const Motion& motion : motions) {
        SkinAnimation::NodeTrack track;
        track.node = scene.nodes[motion.bone];
        for (int step = 0; step <= kSteps; ++step)
            track.keys.push_back(KeyAt(motion, static_cast<float>(step) / kSteps, duration));
        animation->layers.front().tracks.push_back(track);
    }
}

std::vector<Motion> Walking()
{
    const Quaternion none = About(kX, 0.0f);
    return {
        {kHips, none, kY, 0.0f, 5.0f, 0.0f, 1.0f, 0.012f},
        {kSpine, About(kX, 4.0f), kY, 0.0f, -6.0f, 0.0f},
        {kChest, none, kY, 0.0f, -6.0f, 0.0f},
        {kHead, About(kX, -4.0f), kY, 0.0f, 7.0f, 0.0f},
        {kThighL, none, kX, -6.0f, -30.0f, 0.0f},
        {kThighR, none, kX, -6.0f, -30.0f, 180.0f},
        {kShinL, none, kX, 24.0f, 22.0f, 80.0f},
        {kShinR, none, kX, 24.0f, 22.0f, 260.0f},
        {kFootL, none, kX, -8.0f, 14.0f, 190.0f},
        {kFootR, none, kX, -8.0f, 14.0f, 10.0f},
        {kToesL, none, kX, -6.0f, 8.0f, 180.0f},
        {kToesR, none, kX, -6.0f, 8.0f, 0.0f},
        {kArmL, About(kZ, -18.0f), kX, 0.0f, 34.0f, 0.0f},
        {kArmR, About(kZ, 18.0f), kX, 0.0f, 34.0f, 180.0f},
        {kForearmL, none, kX, -28.0f, 16.0f, 0.0f},
        {kForearmR, none, kX, -28.0f, 16.0f, 180.0f},
    };
}

std::vector<Motion> Waving()
{
    const Quaternion none = About(kX, 0.0f);
    return {
        {kHips, none, kZ, 2.0f, 2.0f, 0.0f},
        {kSpine, none, kZ, -2.0f, 1.5f, 20.0f},
        {kChest, none, kZ, -2.0f, 1.5f, 40.0f},
        {kHead, About(kY, 10.0f), kZ, -1.0f, 5.0f, 60.0f},
        {kThighL, none, kZ, -2.0f, -2.0f, 0.0f},
        {kThighR, none, kZ, -2.0f, -2.0f, 0.0f},
        {kArmL, About(kX, -10.0f), kZ, 78.0f, 6.0f, 0.0f, 2.0f},
        {kForearmL, none, kZ, 22.0f, 26.0f, 30.0f, 2.0f},
        {kHandL, none, kZ, 0.0f, 16.0f, 60.0f, 2.0f},
        {kArmR, About(kX, 4.0f), kZ, 14.0f, 3.0f, 90.0f},
        {kForearmR, none, kX, -16.0f, 4.0f, 120.0f},
    };
}

} // namespace

Model MakeSampleFigure()
{
    Model model;
    model.scene = std::make_unique<SkinAnimation::Scene>();
    model.materials = Materials();
    model.embeddedImages.insert(QStringLiteral("stripes"), Stripes());

    SkinAnimation::Scene& scene = *model.scene;
    AddSkeleton(scene);
    Node& figure = *scene.root;
    AddGeometry(figure, QStringLiteral("jumper"), model.materials[0], Jumper(), Normals::FromTheNode);
    AddGeometry(figure, QStringLiteral("trousers"), model.materials[1], Trousers(), Normals::FromTheNode);
    AddGeometry(figure, QStringLiteral("skin"), model.materials[2], Skin(), Normals::TheirOwn);
    AddGeometry(figure, QStringLiteral("shoes and scarf"), model.materials[3], ShoesAndScarf(), Normals::TheirOwn);
    AddGeometry(figure, QStringLiteral("eyes"), model.materials[4], Eyes(), Normals::TheirOwn);
    AddGeometry(*scene.nodes[kHat], QStringLiteral("hat"), model.materials[3], HatShape(), Normals::TheirOwn);

    AddAnimation(scene, QStringLiteral("walk"), 1000.0f, Walking());
    AddAnimation(scene, QStringLiteral("wave"), 1600.0f, Waving());
    return model;
}

} // namespace Host
