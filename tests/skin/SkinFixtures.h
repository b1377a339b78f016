#pragma once

#include "lumenta/platform/IMeshNodeBuilder.h"
#include "lumenta/skin/Scene.h"
#include "tests/foundation/Exact.h"

#include <utility>

// Short ways to fill a scene, as a loader does, and to see what comes of it.

using Vec3 = TVec3<float>;

namespace SkinAnimation {

inline Matrix Translation(float x, float y, float z) { return {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1}}; }
inline Matrix Scaling(float x, float y, float z) { return {{x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1}}; }

/// x to y, y to z, z to x: commutes with no translation and no scale.
inline Matrix Cycle() { return {{0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 1}}; }

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

/// A key that moves along x.
inline KeyFrame Key(float time, float x, const Quaternion& rotation = {0, 0, 0, 1})
{
    return {time, {x, 0, 0}, rotation, {1, 1, 1}};
}

/// An animation of one layer.
inline Animation* AddAnimation(Scene& scene, std::vector<NodeTrack> tracks)
{
    scene.animations.push_back(new Animation{QString(), 0, {{QString(), 0, std::move(tracks)}}});
    return scene.animations.back();
}

/// Writes down what it is handed.
struct RecordingBuilder final : IMeshNodeBuilder {
    struct Mesh {
        const std::vector<MeshVertex>* vertices;
        const std::vector<unsigned int>* indices;
        QString materialName;
        QMap<QString, QVariant> materialParameters;
    };
    QStringList names;
    std::vector<Mesh> meshes;

    void BeginModel(const QString&, std::size_t) override { QFAIL("the library never begins a model"); }
    void EndModel() override { QFAIL("the library never ends a model"); }
    void AddMeshNode(const QString& name, std::vector<MeshVertex>& vertices, std::vector<unsigned int>& indices,
                     const QString& materialName, const QMap<QString, QVariant>& materialParameters) override
    {
        names << name;
        meshes.push_back({&vertices, &indices, materialName, materialParameters});
    }
};

} // namespace SkinAnimation
