#include "lumenta/platform/IMeshNodeBuilder.h"
#include "lumenta/skin/Scene.h"
#include "matrix/Trials.h"

#include <cmath>

// Models: posed, skinned, clipped.

namespace Trials {

namespace {

using namespace SkinAnimation;

constexpr std::uint32_t kNodes = 40;

/// Sums up what it is handed.
struct SummingBuilder final : IMeshNodeBuilder {
    Sum& sum;

    explicit SummingBuilder(Sum& target)
        : sum(target)
    {
    }
    void BeginModel(const QString&, std::size_t) override {}
    void EndModel() override {}
    void AddMeshNode(const QString& name, std::vector<MeshVertex>& vertices, std::vector<unsigned int>& indices,
                     const QString&, const QMap<QString, QVariant>&) override
    {
        sum.Add(name);
        sum.Add(std::uint64_t{indices.size()});
        for (const MeshVertex& vertex : vertices) {
            sum.Add(vertex.position);
            sum.Add(vertex.normal);
            sum.Add(vertex.texCoord);
        }
    }
};

Quaternion AnyRotation(Random& random)
{
    const Vec3 v = Workloads::RandomVector(random, -1.0f, 1.0f);
    const float w = random.Between(-1.0f, 1.0f);
    const float length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z + w * w);
    return {v.x / length, v.y / length, v.z / length, w / length};
}

/// Keys at uneven times, some of them together.
/// \param turns whether rotations differ, so that arcs lie between them
/// \param odd   whether numbers of any kind are among them
std::vector<KeyFrame> AnyKeys(Random& random, std::uint32_t count, bool turns, bool odd)
{
    std::vector<KeyFrame> keys;
    float time = random.Between(-1.0f, 1.0f);
    Quaternion rotation = AnyRotation(random);
    for (std::uint32_t i = 0; i < count; ++i) {
        if (turns) {
            const Quaternion last = rotation;
            rotation = AnyRotation(random);
            const std::uint32_t near = random.Below(8);
            if (near == 0) rotation = {-last.x, -last.y, -last.z, -last.w};
            if (near == 1) rotation = {last.x + random.Between(0.0f, 0.01f), last.y, last.z, last.w};
            if (near == 2 && odd) rotation.w = AnyFloat(random);
        }
        const Vec3 translation = odd ? AnyVector(random) : Workloads::RandomVector(random, -3.0f, 3.0f);
        keys.push_back({time, translation, rotation, Workloads::RandomVector(random, 0.8f, 1.25f)});
        if (odd && random.Below(64) == 0) keys.back().scale = AnyVector(random);
        if (random.Below(4) != 0) time += random.Between(0.0f, 2.0f);
    }
    return keys;
}

/// Nodes in a tree with a track each, and on the root a skin and a rigid mesh that
/// share normals. In one of four there are odd numbers.
std::unique_ptr<Scene> AnyModel(Random& random, bool turns)
{
    const bool odd = random.Below(4) == 0;
    const auto transform = odd ? AnyTransform : TameTransform;
    auto scene = std::make_unique<Scene>();
    scene->scale = odd ? AnyVector(random) : Workloads::RandomVector(random, 0.5f, 2.0f);
    scene->offset = Workloads::RandomVector(random, -9.0f, 9.0f);
    auto animation = std::make_unique<Animation>();
    animation->layers.resize(1);
    for (std::uint32_t i = 0; i < kNodes; ++i) {
        Node* const parent = i == 0 ? nullptr : scene->nodes[random.Below(i)];
        const Matrix origin = transform(random);
        auto* const node = new Node(QStringLiteral("bone %1").arg(i), origin, transform(random), parent);
        (parent ? parent->children.emplace_back() : scene->root) = node;
        scene->nodes.push_back(node);
        if (random.Below(4) == 0) node->SetOriginGlobalTransform(transform(random));
        NodeTrack& track = animation->layers[0].tracks.emplace_back();
        track.node = node;
        track.keys = AnyKeys(random, random.Below(4) == 0 ? random.Below(100) : random.Below(6), turns, odd);
    }
    scene->animations.push_back(animation.release());

    Geometry& rigid = Workloads::AddSkin(*scene, 120, Workloads::Influences::Random, random.Next());
    rigid.skinned = false;
    Geometry& skin = Workloads::AddSkin(*scene, 700, Workloads::Influences::InRuns, random.Next());
    for (SkinVertex& vertex : skin.vertices) {
        if (random.Below(100) == 0) vertex.position = AnyVector(random);
        if (random.Below(100) == 0) vertex.normal = AnyVector(random);
        if (random.Below(100) == 0) vertex.weights[random.Below(4)] = AnyFloat(random);
    }
    return scene;
}

void AddNodes(Sum& sum, const Scene& scene)
{
    for (const Node* const node : scene.nodes)
        for (const auto matrix :
             {&Node::originGlobalInverse, &Node::bindTransform, &Node::globalTransform, &Node::localTransform,
              &Node::meshTransform, &Node::skinTransform, &Node::skinTransformInverse})
            sum.Add(node->*matrix);
}

template <bool Turns>
void Poses(Random& random, Sum& sum)
{
    for (int i = 0; i < 60; ++i) {
        const std::unique_ptr<Scene> scene = AnyModel(random, Turns);
        for (int k = 0; k < 20; ++k) {
            scene->CalculateAnimation(0, random.Below(8) == 0 ? AnyFloat(random) : random.Between(-2.0f, 20.0f));
            AddNodes(sum, *scene);
        }
    }
}

template <bool Turns>
void Clips(Random& random, Sum& sum)
{
    for (int i = 0; i < 100; ++i) {
        const std::unique_ptr<Scene> scene = AnyModel(random, Turns);
        const float start = random.Between(-2.0f, 5.0f);
        scene->AppendClippedAnimation(0, QStringLiteral("clip"), start, start + random.Between(0.0f, 20.0f));
        const Animation& clip = *scene->animations[1];
        sum.Add(clip.duration);
        for (const NodeTrack& track : clip.layers[0].tracks)
            for (const KeyFrame& key : track.keys)
                sum.Add(key);
        scene->CalculateAnimation(1, random.Between(0.0f, 10.0f));
        AddNodes(sum, *scene);
    }
}

template <bool Turns>
void Meshes(Random& random, Sum& sum)
{
    for (int i = 0; i < 100; ++i) {
        const std::unique_ptr<Scene> scene = AnyModel(random, Turns);
        scene->CalculateAnimation(0, random.Between(-2.0f, 20.0f));
        SummingBuilder builder(sum);
        scene->CreateMeshes(builder);
        scene->UpdateBoundingBox();
        sum.Add(scene->boundingBox);
    }
}

/// The steps of CreateMeshes() one by one.
void Geometries(Random& random, Sum& sum)
{
    for (int i = 0; i < 100; ++i) {
        const std::unique_ptr<Scene> scene = AnyModel(random, false);
        scene->CalculateAnimation(0, random.Between(-2.0f, 20.0f));
        Geometry& skin = *scene->root->geometries[1];
        skin.UpdateMesh(scene->nodes[random.Below(kNodes)], scene->scale, scene->offset, scene->nodes);
        std::vector<Vec3> normals(skin.vertices.size(), Vec3{0.0f, 0.0f, 0.0f});
        skin.CollectNormals(normals);
        for (const Vec3& normal : normals)
            sum.Add(normal);
        skin.SetNormals(normals);
        for (const MeshVertex& vertex : skin.meshVertices)
            sum.Add(vertex.normal);
    }
}

} // namespace

std::vector<Trial> Skins()
{
    return {{"skins", "CalculateAnimation, no rotation changes", Poses<false>},
            {"skins", "AppendClippedAnimation, no rotation changes", Clips<false>},
            {"skins", "CreateMeshes, UpdateBoundingBox, no rotation changes", Meshes<false>},
            {"skins", "UpdateMesh, CollectNormals, SetNormals", Geometries},
            {"poses", "CalculateAnimation", Poses<true>},
            {"poses", "AppendClippedAnimation", Clips<true>},
            {"poses", "CreateMeshes, UpdateBoundingBox", Meshes<true>}};
}

} // namespace Trials
