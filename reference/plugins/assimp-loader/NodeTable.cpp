#include "reference/plugins/assimp-loader/NodeTable.h"

#include "lumenta/skin/Scene.h"
#include "reference/plugins/assimp-loader/Report.h"

#include <assimp/mesh.h>
#include <assimp/scene.h>

#include <memory>

namespace Host {

namespace {

std::string KeyOf(const aiString& name)
{
    return {name.data, name.length};
}

bool HasSkinnedMesh(const aiNode& node, const aiScene& source)
{
    for (unsigned int i = 0; i < node.mNumMeshes; ++i)
        if (node.mMeshes[i] < source.mNumMeshes && source.mMeshes[node.mMeshes[i]]->HasBones())
            return true;
    return false;
}

WideMatrix LocalTransformOf(const aiNode& node, Report& report)
{
    const WideMatrix local = Widen(node.mTransformation);
    if (IsFinite(local))
        return local;
    report.Warn(QStringLiteral("The transform of node '%1' is not finite; it stands where its parent stands.")
                    .arg(ToText(node.mName)));
    return {};
}

/// The rest pose that skinned meshes of the node are measured against has to
/// be invertible. Any other will do as well: the bones are bound to match it.
Matrix OriginOf(const aiNode& node, const WideMatrix& restGlobal, const aiScene& source)
{
    const Matrix origin = ToMatrix(restGlobal);
    return HasSkinnedMesh(node, source) && !IsInvertible(ToWideMatrix(origin)) ? Matrix() : origin;
}

SkinAnimation::Node* Adopt(std::unique_ptr<SkinAnimation::Node> node, SkinAnimation::Scene& scene)
{
    SkinAnimation::Node* const adopted = node.get();
    if (adopted->parent)
        adopted->parent->children.push_back(adopted);
    else
        scene.root = adopted;
    node.release();
    scene.nodes.push_back(adopted);
    return adopted;
}

} // namespace

NodeTable::NodeTable(const aiScene& source, SkinAnimation::Scene& scene, Report& report)
{
    struct Pending {
        const aiNode* source;
        std::size_t parent; ///< Not read for the root.
    };
    std::vector<Pending> pending{{source.mRootNode, 0}};
    while (!pending.empty()) {
        const auto [file, parent] = pending.back();
        pending.pop_back();

        const bool isRoot = m_entries.empty();
        const WideMatrix local = LocalTransformOf(*file, report);
        const WideMatrix global = isRoot ? local : m_entries[parent].restGlobal * local;
        auto node = std::make_unique<SkinAnimation::Node>(ToText(file->mName), OriginOf(*file, global, source),
                                                          Matrix(), isRoot ? nullptr : m_entries[parent].node);
        // The node's own arithmetic would come back to this only nearly.
        node->localTransform = ToMatrix(local);

        const std::size_t index = m_entries.size();
        m_entries.push_back({file, Adopt(std::move(node), scene), global});
        m_byName[KeyOf(file->mName)].push_back(index);
        for (unsigned int i = file->mNumChildren; i-- > 0;)
            if (file->mChildren[i]) // one of Assimp's importers leaves gaps
                pending.push_back({file->mChildren[i], index});
    }
}

const std::vector<std::size_t>& NodeTable::Named(const aiString& name) const
{
    static const std::vector<std::size_t> nobody;
    const auto found = m_byName.find(KeyOf(name));
    return found == m_byName.end() ? nobody : found->second;
}

} // namespace Host
