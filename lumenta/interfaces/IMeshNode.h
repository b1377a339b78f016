#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/BBox.h"

#include <QObject>
#include <QString>

#include <cstddef>
#include <vector>

class IMaterial;
class IMesh;

/// What a node offers that holds meshes.
///
/// **Who implements it:** the host, in the class of its mesh nodes, beside
/// INode. That class must say `Q_INTERFACES(IMeshNode)`: without it the cast is
/// null and the node is taken for one without meshes. Its GetType() answers
/// eNodeTypeMesh.
/// **Who calls it:** boxes and picking (the first four), renderers, panels.
/// Get it by `qobject_cast<IMeshNode*>(pNode)`.
/// **Thread:** the scene's. **Ownership:** lives and dies with its node.
///
/// Setters announce themselves by the scene's `nodeChanged`.
class LUMENTA_EXPORT IMeshNode {
public:
    /// The box of all meshes in the node's own space, before its matrix.
    /// Picking asks it first and tests no mesh where the ray misses it.
    virtual const TBBox<float>& GetBBox() const = 0;

    /// Extends `box`, which comes empty from the library, by the node's box in
    /// world space: by its vertices as they are placed, not by the corners of
    /// its own box.
    virtual void FillBBox(TBBox<float>& box) const = 0;

    /// Never holds null. The meshes belong to the node.
    virtual const std::vector<IMesh*>& GetMeshes() const = 0;

    /// True where rays pass through the node's meshes: it is seen but not picked.
    virtual bool IsExcludedFromTracing() const = 0;

    virtual void SetExcludedFromTracing(bool bExcluded) = 0;

    /// What the mesh wears: the scene's default material if nothing was assigned. Null
    /// once the node was removed.
    /// \pre `nMesh` is less than the number of meshes
    virtual IMaterial* GetMaterial(std::size_t nMesh) const = 0;

    /// \param pMaterial of the same scene; null for the default material
    /// \pre `nMesh` is less than the number of meshes
    virtual void SetMaterial(std::size_t nMesh, IMaterial* pMaterial) = 0;

    /// What INode::CreateMesh() made it from; one call may have made several mesh
    /// nodes of one source. Empty for one that was put together in memory, by
    /// IScene::CreateMeshBuilder().
    virtual QString GetSource() const = 0;

protected:
    IMeshNode() = default;
    IMeshNode(const IMeshNode&) = default;
    IMeshNode& operator=(const IMeshNode&) = default;
    ~IMeshNode() = default; // nobody deletes a node by one of its sides
};

Q_DECLARE_INTERFACE(IMeshNode, "com.quillwright.lumenta.IMeshNode")
