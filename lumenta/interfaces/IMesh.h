#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/MeshVertex.h"

#include <QObject>
#include <QString>

#include <vector>

class IMeshNode;

/// A list of triangles that wears one material.
///
/// **Who implements it:** the host; a generator or a loader hands its data over
/// through an IMeshNodeBuilder instead, into a scene by that of
/// IScene::CreateMeshBuilder().
/// **Who calls it:** boxes, picking and rays, renderers, exporters. Everything
/// is in the space of the node that holds the mesh.
/// **Thread:** the scene's. References are good until the mesh changes, which
/// the scene announces by `nodeChanged` with eNodeChangedMesh.
/// **Ownership:** the mesh belongs to its node.
class LUMENTA_EXPORT IMesh : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IMesh() override;

    /// Shown to people; need not be unique.
    virtual QString GetName() const = 0;

    /// The box of all vertices; the empty box where there are none.
    virtual const TBBox<float>& GetBBox() const = 0;

    /// In the space of the node.
    virtual const std::vector<MeshVertex>& GetVertices() const = 0;

    /// Three per triangle, each less than the number of vertices.
    virtual const std::vector<unsigned int>& GetIndices() const = 0;

    /// The node that holds the mesh. Rays ask it whether it is excluded from
    /// tracing. Null for a mesh that stands alone: that one is traced.
    virtual const IMeshNode* GetOwner() const = 0;
};
