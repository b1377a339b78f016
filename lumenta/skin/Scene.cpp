#include "lumenta/skin/Scene.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/kernels/Kernels.h"
#include "lumenta/skin/KeySampling.h"
#include "lumenta/skin/SkinKernels.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <memory_resource>
#include <utility>

namespace SkinAnimation {

namespace {

/// Up to this depth a walk of the tree needs no memory of its own.
constexpr std::size_t kLevelsOnStack = 128;

/// Visits `top` and all below it, parents before children, children in order.
template <typename Visitor>
void ForEachNode(Node* top, const Visitor& visit)
{
    struct Level {
        Node* node;
        std::size_t nextChild;
    };
    alignas(Level) std::byte onStack[kLevelsOnStack * sizeof(Level)];
    std::pmr::monotonic_buffer_resource room(onStack, sizeof onStack);
    std::pmr::vector<Level> path(&room);
    path.reserve(kLevelsOnStack);

    const auto enter = [&](Node* node) {
        if (node) {
            visit(*node);
            path.push_back({node, 0});
        }
    };
    enter(top);
    while (!path.empty()) {
        Level& level = path.back();
        if (level.nextChild < level.node->children.size())
            enter(level.node->children[level.nextChild++]);
        else
            path.pop_back();
    }
}

bool IsValidIndex(int index, const std::vector<Animation*>& animations)
{
    return index >= 0 && static_cast<std::size_t>(index) < animations.size();
}

bool SameValue(const KeyFrame& a, const KeyFrame& b)
{
    return a.translation == b.translation && a.scale == b.scale && a.rotation.x == b.rotation.x
        && a.rotation.y == b.rotation.y && a.rotation.z == b.rotation.z && a.rotation.w == b.rotation.w;
}

/// The keys of [start, end] at their old times. Where a boundary lies strictly
/// between two keys, a key is interpolated there.
std::vector<KeyFrame> CutKeys(const std::vector<KeyFrame>& source, float start, float end)
{
    std::vector<KeyFrame> cut;
    if (source.empty() || source.front().time > end)
        return cut;

    for (std::size_t i = 0;; ++i) {
        const KeyFrame& key = source[i];
        const KeyFrame* const next = i + 1 < source.size() ? &source[i + 1] : nullptr;
        if (key.time >= start)
            cut.push_back(key);
        else if (next && next->time > start)
            cut.push_back(InterpolateAt(key, *next, start));

        if (!next)
            break;
        if (next->time > end) {
            if (key.time < end)
                cut.push_back(InterpolateAt(key, *next, end));
            break;
        }
    }
    return cut;
}

/// Two or more keys, all alike. A single key is a pose and stays.
bool IsMotionless(const std::vector<KeyFrame>& keys)
{
    return keys.size() >= 2
        && std::all_of(keys.begin() + 1, keys.end(), [&](const KeyFrame& key) { return SameValue(key, keys.front()); });
}

/// `layer` is filled in place, so that running out of memory shows what was done.
void ClipLayer(const AnimationLayer& source, float start, float end, AnimationLayer& layer)
{
    layer.name = source.name;
    for (const NodeTrack& track : source.tracks) {
        NodeTrack clipped;
        clipped.node = track.node;
        clipped.keys = CutKeys(track.keys, start, end);
        if (IsMotionless(clipped.keys))
            continue;

        for (KeyFrame& key : clipped.keys)
            key.time -= start;
        if (!clipped.keys.empty())
            layer.duration = std::max(layer.duration, clipped.keys.back().time);
        layer.tracks.push_back(std::move(clipped));
    }
}

} // namespace

Scene::Scene() = default;

Scene::~Scene()
{
    delete root;
    for (Animation* animation : animations)
        delete animation;
}

int Scene::GetNodeIndex(const QString& name) const
{
    const auto found = std::find_if(nodes.begin(), nodes.end(), [&](const Node* node) { return node->name == name; });
    return found == nodes.end() ? -1 : static_cast<int>(found - nodes.begin());
}

void Scene::CalculateAnimation(int animIndex, float time)
{
    if (!IsValidIndex(animIndex, animations))
        throw InvalidParameterException(QStringLiteral("Scene::CalculateAnimation"), QStringLiteral("animIndex"),
                                        QStringLiteral("Invalid animation index"));

    const Animation& animation = *animations[static_cast<std::size_t>(animIndex)];
    if (animation.layers.empty())
        return;

    PoseNodes(Kernels::Chosen(), animation.layers.front().tracks, time, nodes);
}

void Scene::AppendClippedAnimation(int animIndex, const QString& name, float start, float end)
{
    if (!IsValidIndex(animIndex, animations))
        throw InvalidParameterException(QStringLiteral("Scene::AppendClippedAnimation"), QStringLiteral("animIndex"),
                                        QStringLiteral("The index is out of range"));

    auto owned = std::make_unique<Animation>();
    animations.push_back(owned.get());
    Animation& clip = *owned.release();
    clip.name = name;

    const Animation& source = *animations[static_cast<std::size_t>(animIndex)];
    clip.layers.resize(source.layers.size());
    for (std::size_t i = 0; i < source.layers.size(); ++i) {
        ClipLayer(source.layers[i], start, end, clip.layers[i]);
        clip.duration = std::max(clip.duration, clip.layers[i].duration);
    }
}

void Scene::CreateMeshes(IMeshNodeBuilder& builder) const
{
    CollectNodeMeshesRecursively(builder, root);
}

void Scene::CollectNodeMeshesRecursively(IMeshNodeBuilder& builder, Node* node) const
{
    std::uint64_t largest = 0;
    ForEachNode(node, [&largest](const Node& each) { largest = std::max(largest, each.normalCount); });
    std::vector<TVec3<float>> normals;
    normals.reserve(largest);

    ForEachNode(node, [&](const Node& each) {
        normals.assign(each.normalCount, TVec3<float>{0.0f, 0.0f, 0.0f});
        for (Geometry* geometry : each.geometries) {
            geometry->UpdateMesh(&each, scale, offset, nodes);
            geometry->CollectNormals(normals);
        }
        Kernels::Chosen().normalizeAll(normals.data(), normals.size());
        for (Geometry* geometry : each.geometries) {
            geometry->SetNormals(normals);
            geometry->AddMesh(builder);
        }
    });
}

void Scene::SetMeshVisibility(const QString& name, bool visible)
{
    for (Node* node : nodes)
        for (Geometry* geometry : node->geometries)
            if (geometry->name == name)
                geometry->visible = visible;
}

void Scene::SetMaterialVisibility(const QString& materialName, bool visible)
{
    for (Node* node : nodes)
        for (Geometry* geometry : node->geometries)
            if (geometry->materialName == materialName)
                geometry->visible = visible;
}

void Scene::UpdateBoundingBox()
{
    boundingBox = TBBox<float>();
    for (const Node* node : nodes) {
        for (const Geometry* geometry : node->geometries) {
            if (!geometry->visible)
                continue;
            for (const SkinVertex& vertex : geometry->vertices) {
                TVec3<float> point = vertex.position;
                TransformPoint(point, node->meshTransform);
                boundingBox.Extend(point);
            }
        }
    }
}

} // namespace SkinAnimation
