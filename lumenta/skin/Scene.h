#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/BBox.h"
#include "lumenta/skin/Animation.h"
#include "lumenta/skin/Geometry.h"
#include "lumenta/skin/Node.h"

#include <QString>

#include <vector>

class IMeshNodeBuilder;

namespace SkinAnimation {

/// A skinned, animated model: a node tree with geometries, and animations.
///
/// **Filling it** is a loader's work, in any order that ends like this:
/// - `root` holds the top of the tree, a node whose parent is null;
/// - every other node hangs in its parent's `children`;
/// - `nodes` lists all of them, the top included, no node before its parent;
/// - geometries and animations were made with `new`.
/// Whatever hangs in the scene is freed with it, also when loading gives up
/// halfway.
///
/// **One frame:** CalculateAnimation(), then CreateMeshes().
///
/// One thread at a time; nothing here locks.
struct LUMENTA_EXPORT Scene {
    TVec3<float> scale{1.0f, 1.0f, 1.0f};  ///< Applied to every posed position.
    TVec3<float> offset{0.0f, 0.0f, 0.0f}; ///< Added after the scale.
    TBBox<float> boundingBox;              ///< Written by UpdateBoundingBox().
    Node* root = nullptr;                  ///< Owned, and with it the whole tree.
    std::vector<Node*> nodes;              ///< The bone table. Not owned; parents before children.
    std::vector<Animation*> animations;    ///< Owned.

    Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;
    ~Scene();

    /// Index in `nodes` of the first node of this name, -1 if there is none.
    int GetNodeIndex(const QString& name) const;

    /// Moves the skeleton to `time`, counted as the keys count it. The first
    /// layer's tracks give local transforms; a node that none of them moves
    /// stays where it was relative to its parent. All other transforms follow,
    /// for every entry of `nodes`. An animation without layers changes nothing.
    /// Allocates nothing.
    ///
    /// Rotations are interpolated along the shorter arc (Shoemake, "Animating
    /// rotation with quaternion curves", 1985), but along the chord where the dot
    /// product comes within 1e-5 of 1 or −1, or beyond; they are not normalised
    /// again. Scale applies first, then rotation, then translation.
    /// \throws InvalidParameterException the index names no animation; the
    ///         scene is unchanged
    void CalculateAnimation(int animIndex, float time);

    /// Cuts [start, end] out of an animation and appends it as a new one that
    /// begins at 0. Keys on a boundary are kept; where a boundary falls between
    /// two keys, an interpolated key is inserted. A track that holds two or
    /// more keys, all of one value, does not move and is left out; a track
    /// with one key or none stays.
    ///
    /// start ≤ end is not checked: turned round, keys come out of time order.
    /// \throws InvalidParameterException the index names no animation; nothing
    ///         is appended
    /// \throws std::bad_alloc the unfinished animation stays, as the last one
    void AppendClippedAnimation(int animIndex, const QString& name, float start, float end);

    /// Poses the geometries of the whole tree and hands each visible one to
    /// `builder`, parents before children. Allocates at most one normal buffer
    /// (see CollectNodeMeshesRecursively()).
    void CreateMeshes(IMeshNodeBuilder& builder) const;

    /// The same for `node` and everything below it; null does nothing.
    ///
    /// Geometries of a node that has a `normalCount` share a buffer of that
    /// many normals, collected from the posed triangles of them all, hidden
    /// ones too. The tree is walked without recursion: any depth will do.
    ///
    /// Allocates the buffer once, as large as the greediest node needs it, and
    /// what Geometry::UpdateMesh() allocates; beyond 128 levels also the path
    /// of the walk.
    /// \throws std::bad_alloc or std::length_error  a `normalCount` that does
    ///         not fit in memory; nothing has been emitted
    /// \throws std::bad_alloc  a posed mesh or the path does not fit; what came
    ///         before it has been posed and emitted, and may be again
    void CollectNodeMeshesRecursively(IMeshNodeBuilder& builder, Node* node) const;

    /// Shows or hides every geometry of this name, in every node of `nodes`.
    void SetMeshVisibility(const QString& name, bool visible);

    /// Shows or hides every geometry of this material, in every node of `nodes`.
    void SetMaterialVisibility(const QString& materialName, bool visible);

    /// The box of the visible geometries' source vertices, placed rigidly by
    /// their node's `meshTransform`. On purpose bones, `scale` and `offset`
    /// play no part, so the box is stable while bones move; for the box of
    /// what is drawn, extend one by the emitted vertices. Empty where nothing
    /// is visible.
    void UpdateBoundingBox();
};

} // namespace SkinAnimation
