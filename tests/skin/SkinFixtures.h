#pragma once

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/platform/IMeshNodeBuilder.h"
#include "lumenta/skin/Scene.h"

#include <memory>
#include <utility>

// Short ways to fill a scene, as a loader does.

using Vec3 = TVec3<float>;

namespace SkinAnimation {

inline Matrix Translation(float x, float y, float z)
{
    return {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1}};
}

inline Matrix Scaling(float x, float y, float z)
{
    return {{x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1}};
}

/// x to y, y to z, z to x: commutes with no translation and no scale.
inline Matrix Cycle()
{
    return {{0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 1}};
}

inline Node* AddNode(Scene& scene, const char* name, Node* parent = nullptr, const Matrix& originGlobal = Matrix(),
                     const Matrix& geometryTransform = Matrix())
{
    auto* const node = new Node(QString::fromLatin1(name), originGlobal, geometryTransform, parent);
    if (parent)
        parent->children.push_back(node);
    else
        scene.root = node;
    scene.nodes.push_back(node);
    return node;
}

/// A geometry of triangles over `positions`, one after the other, all normals along z.
inline Geometry* AddGeometry(Node& node, const char* name, const std::vector<Vec3>& positions, bool skinned = false)
{
    auto* const geometry = new Geometry(QString::fromLatin1(name), skinned);
    for (const Vec3& position : positions) {
        SkinVertex vertex;
        vertex.position = position;
        vertex.normal = {0, 0, 1};
        vertex.texCoord = {0, 0};
        geometry->indices.push_back(std::uint32_t(geometry->vertices.size()));
        geometry->vertices.push_back(vertex);
    }
    node.geometries.push_back(geometry);
    return geometry;
}

inline KeyFrame Key(float time, const Vec3& translation, const Quaternion& rotation = {0, 0, 0, 1},
                    const Vec3& scale = {1, 1, 1})
{
    return {time, translation, rotation, scale};
}

inline NodeTrack Track(Node* node, std::vector<KeyFrame> keys)
{
    NodeTrack track;
    track.node = node;
    track.keys = std::move(keys);
    return track;
}

/// An animation of one layer.
inline Animation* AddAnimation(Scene& scene, std::vector<NodeTrack> tracks)
{
    auto* const animation = new Animation;
    animation->layers.resize(1);
    animation->layers.front().tracks = std::move(tracks);
    scene.animations.push_back(animation);
    return animation;
}

/// The text that `call` is refused with.
template <typename Call>
QString Refusal(const Call& call)
{
    try {
        call();
    } catch (const InvalidParameterException& e) {
        return e.GetErrorText();
    }
    return QStringLiteral("not refused");
}

} // namespace SkinAnimation
