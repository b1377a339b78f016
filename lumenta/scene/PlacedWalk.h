#pragma once

// Private to the library: the walk of boxes and picking, which need to know
// where in the world each node is.

#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/ILightNode.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/kernels/Kernels.h"

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
    /// Those still to come, for as long as there are any.
    struct Siblings {
        Matrix parentGlobal;
        Node* const* next;
        Node* const* end;
    };
    constexpr std::ptrdiff_t kAhead = 4; // nodes: about as long as memory takes
    const Kernels::Table& kernels = Kernels::Chosen();
    std::vector<Siblings> levels{{parentGlobal, &top, &top + 1}};
    while (!levels.empty()) {
        Siblings& siblings = levels.back();
        Node& node = **siblings.next++;
        const bool isLast = siblings.next == siblings.end;
        if (siblings.end - siblings.next >= kAhead)
            __builtin_prefetch(siblings.next[kAhead - 1]);
        Matrix global;
        kernels.multiply(global.m, node.GetMatrix().m, siblings.parentGlobal.m);
        if (isLast)
            levels.pop_back();
        visit(node, global);
        const std::vector<INode*>& children = node.GetChildren();
        if (!children.empty())
            levels.push_back({global, children.data(), children.data() + children.size()});
    }
}
