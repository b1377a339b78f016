#pragma once

// Private to the library: the walk of boxes and picking, which need to know
// where in the world each node is.

#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/ILightNode.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/INode.h"

#include <vector>

/// Null for a node of another type, and for one that doesn't keep what its type promises.
inline const IMeshNode* AsMeshNode(const INode& node)
{
    return node.GetType() == eNodeTypeMesh ? qobject_cast<IMeshNode*>(&node) : nullptr;
}

inline const ILightNode* AsLightNode(const INode& node)
{
    return node.GetType() == eNodeTypeLight ? qobject_cast<ILightNode*>(&node) : nullptr;
}

/// Calls visit(node, global) for `top` and everything under it, in pre-order.
/// Node is INode or const INode.
template <typename Node, typename Visit>
void WalkPlaced(Node* top, const Matrix& parentGlobal, const Visit& visit)
{
    struct Pending {
        Matrix parentGlobal;
        Node* node;
    };
    std::vector<Pending> pending{{parentGlobal, top}};
    while (!pending.empty()) {
        Node& node = *pending.back().node;
        const Matrix global = node.GetMatrix() * pending.back().parentGlobal;
        pending.pop_back();
        visit(node, global);
        const std::vector<INode*>& children = node.GetChildren();
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            pending.push_back({global, *child});
    }
}
