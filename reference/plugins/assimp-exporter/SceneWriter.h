#pragma once

// Private to the exporter: the tree in Assimp's terms.

#include "reference/plugins/assimp-exporter/ExportFormats.h"
#include "reference/plugins/assimp-exporter/MaterialWriter.h"

struct aiMesh;
struct aiNode;
struct Matrix;

namespace Host {

/// How deep a tree may be; Assimp needs stack for every level.
constexpr int kDeepestTree = 1000;

/// Turns a scene into one of Assimp's: y-up, in the unit that the format has. The
/// tree hangs under one node, which turns it.
class SceneWriter {
public:
    /// \param traits, materials, warnings  outlive the writer
    SceneWriter(const IScene& scene, const ExportTraits& traits, MaterialWriter& materials, QStringList& warnings);
    ~SceneWriter();

    /// \throws Exception the scene has no visible meshes, or is too deep
    std::unique_ptr<aiScene> Write();

private:
    struct Pending;

    void AddChildren(const Pending& parent, std::vector<Pending>& pending);
    void AddMeshes(const Pending& entry);
    void TellOfLosses();

    const IScene& m_scene;
    const ExportTraits& m_traits;
    MaterialWriter& m_materials;
    QStringList& m_warnings;
    std::vector<std::unique_ptr<aiMesh>> m_meshes;
    std::vector<std::unique_ptr<aiNode>> m_flat; ///< Children of the top, where the format has no tree.
    QStringList m_hidden;
    int m_nLights = 0;
};

} // namespace Host
