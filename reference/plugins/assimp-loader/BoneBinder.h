#pragma once

// Private to the loader: bones and weights.

#include "reference/plugins/assimp-loader/NodeTable.h"

#include <map>
#include <optional>
#include <set>
#include <vector>

struct aiBone;
struct aiMesh;

namespace SkinAnimation {
struct Geometry;
} // namespace SkinAnimation

namespace Host {

/// Ties vertices to bones, so that a posed vertex is exactly what the file's
/// offset matrices say.
///
/// A node has room for one rest pose, but a file may bind one bone in several
/// ways. Then further ones move to helper nodes: children of the bone that
/// never leave it, at the end of Scene::nodes.
class BoneBinder {
public:
    /// All three outlive the binder.
    BoneBinder(const NodeTable& nodes, SkinAnimation::Scene& scene, Report& report);

    /// Fills bone indices and weights: up to the four strongest influences of
    /// a vertex, the strongest first, their sum 1.
    /// \param meshNode index of the node that `geometry` belongs to
    /// \throws LoadingException a bone lies beyond the reach of bone indices
    void Bind(const aiMesh& source, std::size_t meshNode, SkinAnimation::Geometry& geometry);

    /// Indices of the nodes that move vertices, helpers apart.
    const std::set<std::size_t>& Bones() const { return m_bones; }

private:
    /// A node with its own rest pose: the bone itself or a helper.
    struct Carrier {
        std::size_t index;
        WideMatrix originInverse;
    };

    std::optional<std::size_t> FindBone(const aiBone& bone, std::size_t meshNode);
    std::size_t CarrierFor(std::size_t bone, const WideMatrix& originInverse, const std::vector<WideVector>& corners);
    std::size_t AddHelper(std::size_t bone);

    const NodeTable& m_nodes;
    SkinAnimation::Scene& m_scene;
    Report& m_report;
    std::map<std::size_t, std::vector<Carrier>> m_carriers; ///< By bone.
    std::set<std::size_t> m_bones;
};

} // namespace Host
