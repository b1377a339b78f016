#pragma once

// Private to the loader: the node tree.

#include "reference/plugins/assimp-loader/AssimpValues.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

struct aiNode;
struct aiScene;

namespace SkinAnimation {
struct Node;
struct Scene;
} // namespace SkinAnimation

namespace Host {

class Report;

/// The nodes of a file beside the nodes made from them, in the order of
/// Scene::nodes, which is depth first.
class NodeTable {
public:
    struct Entry {
        const aiNode* source;
        SkinAnimation::Node* node; ///< Owned by the scene.
        WideMatrix restGlobal;
    };

    /// Makes the tree in `scene`, at any depth. A node whose transform is not
    /// finite stands where its parent stands.
    NodeTable(const aiScene& source, SkinAnimation::Scene& scene, Report& report);

    std::size_t Size() const { return m_entries.size(); }
    const Entry& operator[](std::size_t index) const { return m_entries[index]; }

    /// All nodes of this name, in order; bones and channels know no more than
    /// a name.
    const std::vector<std::size_t>& Named(const aiString& name) const;

private:
    std::vector<Entry> m_entries;
    std::unordered_map<std::string, std::vector<std::size_t>> m_byName;
};

} // namespace Host
