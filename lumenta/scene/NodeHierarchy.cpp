#include "lumenta/scene/NodeHierarchy.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/INode.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace {

/// Visits `top` and what is under it in pre-order. `visit` tells whether to go
/// on to the children of the node that it was given.
template <typename Visit>
void Walk(INode* top, const Visit& visit)
{
    std::vector<INode*> pending{top};
    while (!pending.empty()) {
        INode* const node = pending.back();
        pending.pop_back();
        if (!visit(node))
            continue;
        const std::vector<INode*>& children = node->GetChildren();
        pending.insert(pending.end(), children.rbegin(), children.rend());
    }
}

} // namespace

void GetNodeGlobalMatrix(Matrix& result, const INode* pNode)
{
    if (!pNode) {
        result.SetIdentity();
        return;
    }
    result = pNode->GetMatrix();
    for (const INode* ancestor = pNode->GetParent(); ancestor; ancestor = ancestor->GetParent())
        Multiply(result, result, ancestor->GetMatrix());
}

int GetNodePos(const INode* pNode)
{
    const auto refuse = [](const QString& details) {
        return InvalidParameterException(QStringLiteral("GetNodePos()"), QStringLiteral("pNode"), details);
    };
    if (!pNode)
        throw refuse(QStringLiteral("pNode is NULL"));
    const INode* const parent = pNode->GetParent();
    if (!parent)
        throw refuse(QStringLiteral("pNode has no parent (removed?)"));

    const std::vector<INode*>& siblings = parent->GetChildren();
    const auto found = std::find(siblings.begin(), siblings.end(), pNode);
    if (found == siblings.end())
        throw LogicException(QStringLiteral("GetNodePos: can't find node in its siblings"));
    return static_cast<int>(found - siblings.begin());
}

INode* GetNextSibling(const INode* pNode)
{
    const std::vector<INode*>& siblings = pNode->GetParent()->GetChildren();
    const auto found = std::find(siblings.begin(), siblings.end(), pNode);
    return found == siblings.end() || found + 1 == siblings.end() ? nullptr : *(found + 1);
}

INode* GetFirstChild(const INode* pNode)
{
    const std::vector<INode*>& children = pNode->GetChildren();
    return children.empty() ? nullptr : children.front();
}

std::vector<INode*> CollectAllChildren(const std::vector<INode*>& nodes)
{
    std::vector<INode*> list;
    std::unordered_set<INode*> listed;
    listed.reserve(nodes.size());
    const auto append = [&](INode* node) {
        // A node that is listed has been walked through, and everything under it is
        // listed, too: only in a cycle can one be met before its walk has ended.
        const bool isNew = listed.insert(node).second;
        if (isNew)
            list.push_back(node);
        return isNew;
    };
    for (INode* const node : nodes)
        Walk(node, append);
    return list;
}

std::vector<INode*> SortAccordingToTheSceneTree(const std::vector<INode*>& nodes, INode* pRoot, bool reverse)
{
    if (nodes.size() < 2)
        return nodes;

    // Counted, because a node that is listed twice and hangs twice in a tree comes out twice.
    std::unordered_map<INode*, std::size_t> pending;
    pending.reserve(nodes.size());
    for (INode* const node : nodes)
        ++pending[node];

    std::vector<INode*> result;
    Walk(pRoot, [&](INode* node) {
        const auto found = pending.find(node);
        if (found != pending.end() && found->second > 0) {
            result.push_back(node);
            --found->second;
        }
        return true;
    });
    if (reverse)
        std::reverse(result.begin(), result.end());
    return result;
}

std::vector<INode*> MakeListOfNodes(INode* a)
{
    return {a};
}

std::vector<INode*> MakeListOfNodes(INode* a, INode* b)
{
    return {a, b};
}
