#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/MeshVertex.h"

#include <QMap>
#include <QString>
#include <QVariant>

#include <vector>

/// Receives the posed meshes of a skinned scene and makes of them what its
/// owner needs: nodes of a document, a picture, a file.
///
/// **Who implements it:** the host, or a plug-in that wants posed meshes.
/// **Who calls it:** whoever poses a SkinAnimation::Scene brackets the meshes
/// of one pose in BeginModel() and EndModel(); between the two it calls
/// `Scene::CreateMeshes`, which calls AddMeshNode() and nothing else.
/// **Thread:** the caller's, throughout. **Ownership:** stays with who made it;
/// nobody keeps its address beyond EndModel().
/// **Failure:** whatever AddMeshNode() throws passes through `CreateMeshes`
/// to the caller; EndModel() is then not called, and the next BeginModel()
/// starts afresh.
class LUMENTA_EXPORT IMeshNodeBuilder {
public:
    virtual ~IMeshNodeBuilder();

    /// A new set of meshes begins. What an earlier, unfinished set left behind
    /// is dropped.
    /// \param strName       name of the model or pose, to be shown
    /// \param nExpected     how many meshes are likely to follow; a hint for
    ///                      room and for progress, not a promise
    virtual void BeginModel(const QString& strName, std::size_t nExpected) = 0;

    /// All meshes of the set have come.
    virtual void EndModel() = 0;

    /// Takes one mesh. Called once per visible geometry that has vertices and
    /// triangles, parents before children.
    ///
    /// Both vectors are the geometry's own and will be rewritten by the next
    /// pose: copy what is kept. They may be changed in place, but neither
    /// resized below what the indices need nor kept by address.
    /// \param name               the geometry's name; need not be unique
    /// \param vertices           posed vertices
    /// \param indices            three per triangle, into `vertices`
    /// \param materialName       may be empty
    /// \param materialParameters parameter name to value, as the loader left them
    virtual void AddMeshNode(const QString& name, std::vector<MeshVertex>& vertices, std::vector<unsigned int>& indices,
                             const QString& materialName, const QMap<QString, QVariant>& materialParameters) = 0;

protected:
    IMeshNodeBuilder() = default;
    IMeshNodeBuilder(const IMeshNodeBuilder&) = default;
    IMeshNodeBuilder& operator=(const IMeshNodeBuilder&) = default;
};
