#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Matrix.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace SkinAnimation {

struct Geometry;

/// A node of the hierarchy, and a bone at the same time.
///
/// Owns its children and its geometries; deleting the root frees the tree,
/// however deep it is. Matrices are for row vectors: A·B applies A first.
struct LUMENTA_EXPORT Node {
    QString name;
    Matrix originGlobalTransform; ///< Global transform in the rest pose.
    Matrix originGlobalInverse;   ///< Its inverse; identity where it has none.
    Matrix bindTransform;         ///< geometryTransform · originGlobalTransform: vertices to the rest pose's world.
    Matrix globalTransform;       ///< Current global transform.
    Matrix localTransform;        ///< Current transform relative to the parent.
    Matrix geometryTransform;     ///< From the frame of the geometries to the node's.
    Matrix meshTransform;         ///< geometryTransform · globalTransform: places rigid vertices.
    Matrix skinTransform;         ///< originGlobalInverse · globalTransform: moves a rest-pose world point.
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
