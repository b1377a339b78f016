#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Matrix.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace SkinAnimation {

struct Geometry;

/// One joint of the tree. What a modelling program calls a node and what it
/// calls a bone are both this.
///
/// Owns its children and its geometries; deleting the root frees the tree,
/// however deep it is. Matrices are for row vectors: A·B applies A first.
struct LUMENTA_EXPORT Node {
    QString name;                 ///< What Scene::GetNodeIndex() looks for; need not be unique.
    Matrix originGlobalTransform; ///< Global transform in the rest pose.
    Matrix originGlobalInverse;   ///< Its inverse; identity where it has none.
    Matrix bindTransform;         ///< geometryTransform · originGlobalTransform.
    Matrix globalTransform;       ///< Where the node is in the current pose.
    Matrix localTransform;        ///< The same as its parent sees it.
    Matrix geometryTransform;     ///< Places the geometries within the node.
    Matrix meshTransform;         ///< geometryTransform · globalTransform: places rigid vertices.
    Matrix skinTransform;         ///< originGlobalInverse · globalTransform: rest pose to current pose.
    Matrix skinTransformInverse;  ///< Its inverse; the transpose of it moves normals.
    std::uint64_t normalCount;    ///< Slots of the normal buffer that the geometries share; set by the loader.
    Node* parent;                 ///< Not owned; null for the root.
    std::vector<Node*> children;      ///< Owned.
    std::vector<Geometry*> geometries; ///< Owned.

    /// A node at rest. Neither the parent's `children` nor the scene's `nodes`
    /// learn of it: the loader adds it to both.
    Node(const QString& name, const Matrix& originGlobal, const Matrix& geometryTransform, Node* parent);

    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    /// Frees geometries and children without recursion and without allocating.
    ~Node();

    /// Changes the rest pose: origin, its inverse and `bindTransform`. The
    /// current transforms follow at the next Scene::CalculateAnimation().
    void SetOriginGlobalTransform(const Matrix& m);
};

} // namespace SkinAnimation
