#pragma once

#include "lumenta/Export.h"
#include "lumenta/skin/SkinVertex.h"

#include <QMap>
#include <QString>
#include <QVariant>

#include <cstdint>
#include <vector>

class IMeshNodeBuilder;

namespace SkinAnimation {

struct Node;

/// Triangles of one material: the vertices as the loader filled them, and as
/// the last pose left them.
///
/// A plain record; one thread at a time. Nothing checks indices: loaders keep
/// them inside their lists and in threes, or the result is undefined.
struct LUMENTA_EXPORT Geometry {
    QString name;                               ///< What Scene::SetMeshVisibility() looks for.
    QString materialName;                       ///< What Scene::SetMaterialVisibility() looks for.
    QMap<QString, QVariant> materialParameters; ///< Carried to the builder.
    bool skinned;                               ///< Whether bones deform the vertices.
    bool visible = true;                        ///< Invisible ones are posed, not emitted.
    std::vector<SkinVertex> vertices;           ///< As the loader filled them.
    std::vector<std::uint32_t> indices;         ///< Three per triangle, into `vertices` and `meshVertices`.
    std::vector<std::uint32_t> normalIndices;   ///< Per corner: its slot in the node's normal buffer. Empty
                                                ///< where the vertices bring normals of their own.
    std::vector<MeshVertex> meshVertices;       ///< As posed last; parallel to `vertices`.

    /// Without vertices, visible.
    Geometry(const QString& name, bool skinned);

    /// Poses every vertex into `meshVertices`: position, normal and texture
    /// coordinate; other fields keep their values. Does nothing without
    /// vertices or without indices.
    ///
    /// A vertex follows its bones (linear blend skinning: Magnenat-Thalmann,
    /// Laperrière, Thalmann, "Joint-dependent local deformations", 1988) where
    /// the geometry is skinned and its first weight is above 0; otherwise it
    /// stands rigidly at `node`'s mesh transform. Normals follow the inverse
    /// transpose and are divided by their length unless that is exactly 0.
    ///
    /// Allocates only to resize `meshVertices`, and once more where `bones`
    /// holds more than 256 entries. Where that fails with std::bad_alloc, the
    /// vertices are as they were posed last.
    /// \param node   where the geometry hangs
    /// \param scale  applied to posed positions; a zero component is not guarded
    /// \param offset added after the scale
    /// \param bones  the scene's `nodes`, which the bone indices mean; entries
    ///               that no vertex names may be null, but not dangling
    void UpdateMesh(const Node* node, const TVec3<float>& scale, const TVec3<float>& offset,
                    const std::vector<Node*>& bones);

    /// Adds the unit normal of every posed triangle to its three slots of
    /// `normals`, unweighted (Gouraud, "Continuous shading of curved surfaces",
    /// 1971). Does nothing where `normals` is empty, or
    /// `normalIndices` is not parallel to `indices`, or there are no triangles.
    void CollectNormals(std::vector<TVec3<float>>& normals) const;

    /// Gives each posed vertex the normal in its slot; of several corners that
    /// use one vertex the last wins. Does nothing under the same conditions.
    void SetNormals(std::vector<TVec3<float>>& normals);

    /// Hands the posed mesh to `builder`, by reference to this geometry's own
    /// vectors, if it is visible and has posed vertices and indices.
    void AddMesh(IMeshNodeBuilder& builder) const;
};

} // namespace SkinAnimation
