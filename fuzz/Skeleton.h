#pragma once

#include "benchmarks/Rows.h"
#include "fuzz/Input.h"
#include "lumenta/skin/Scene.h"

#include <memory>

/// Models out of bytes. The same bytes make the same model.
namespace Fuzz {

inline TVec3<float> Vector(Input& input)
{
    const float x = input.Float(), y = input.Float();
    return {x, y, input.Float()};
}

/// Sixteen numbers, or a shift, or no more than a scale.
inline Matrix Transform(Input& input)
{
    Matrix matrix;
    switch (input.Below(4)) {
    case 0:
        for (float& value : matrix.m)
            value = input.Float();
        break;
    case 1:
        matrix.SetTranslation(Vector(input));
        break;
    case 2:
        matrix.SetRotation(Vector(input));
        matrix.SetTranslation(Vector(input));
        break;
    default:
        for (int i = 0; i < 3; ++i)
            matrix(i, i) = input.Float();
    }
    return matrix;
}

/// Nodes, each under an earlier one, with a track of keys each in one animation.
/// Key times ascend, and may repeat; what else is in a key may be anything.
inline std::unique_ptr<SkinAnimation::Scene> Skeleton(Input& input)
{
    using namespace SkinAnimation;
    auto scene = std::make_unique<Scene>();
    auto animation = std::make_unique<Animation>();
    animation->layers.resize(1);
    const std::uint32_t nNodes = 1 + input.Below(20);
    for (std::uint32_t i = 0; i < nNodes && (i == 0 || !input.IsEmpty()); ++i) {
        Node* const parent = i == 0 ? nullptr : scene->nodes[input.Below(i)];
        auto* const node = new Node(QStringLiteral("bone"), Transform(input), Transform(input), parent);
        (parent ? parent->children.emplace_back() : scene->root) = node;
        scene->nodes.push_back(node);

        NodeTrack& track = animation->layers[0].tracks.emplace_back();
        if (input.Below(8) != 7) track.node = scene->nodes[input.Below(i + 1)];
        track.keys.resize(input.Flag() ? input.Below(4) : input.Below(64));
        for (KeyFrame& key : track.keys) {
            key.time = input.Float();
            if (std::isnan(key.time)) key.time = 0.0f; // comes in no order
            key.translation = Vector(input);
            key.rotation = {input.Float(), input.Float(), input.Float(), input.Float()};
            key.scale = input.Flag() ? Vector(input) : TVec3<float>{1.0f, 1.0f, 1.0f};
        }
        std::stable_sort(track.keys.begin(), track.keys.end(),
                         [](const KeyFrame& a, const KeyFrame& b) { return a.time < b.time; });
    }
    scene->animations.push_back(animation.release());
    return scene;
}

/// Whether both have every node in the same place, to the bit.
inline bool SamePose(const SkinAnimation::Scene& a, const SkinAnimation::Scene& b)
{
    using SkinAnimation::Node;
    for (const auto matrix : {&Node::localTransform, &Node::globalTransform, &Node::meshTransform, &Node::skinTransform,
                              &Node::skinTransformInverse})
        for (std::size_t i = 0; i < a.nodes.size(); ++i)
            if (!Bench::SameBits(std::vector<Matrix>{a.nodes[i]->*matrix}, std::vector<Matrix>{b.nodes[i]->*matrix}))
                return false;
    return true;
}

} // namespace Fuzz
