#pragma once

#include "lumenta/Export.h"

#include <vector>

class INode;
struct Matrix;

/// \file
/// Finding one's way in the scene tree.
///
/// Nodes are valid and never null unless a function says otherwise; none is
/// owned or changed here. No stack is used up, however deep the tree. What makes
/// lists throws std::bad_alloc where there is no memory for them. To be called on
/// the scene's thread.

/// From the node's own space to the world: its local matrix, then those of its
/// parent, grandparent and so on, multiplied in this order. The identity for a
/// null node. Linear in the depth.
LUMENTA_EXPORT void GetNodeGlobalMatrix(Matrix& result, const INode* pNode);

/// The node's index among its parent's children; 0 is the first.
/// \throws InvalidParameterException the node is null or has no parent
/// \throws LogicException            its parent doesn't list it
LUMENTA_EXPORT int GetNodePos(const INode* pNode);

/// The next child of the same parent; null for the last one.
/// \pre the node has a parent that lists it
LUMENTA_EXPORT INode* GetNextSibling(const INode* pNode);

/// Null for a node without children.
LUMENTA_EXPORT INode* GetFirstChild(const INode* pNode);

/// The nodes and everything under them, each once.
///
/// Every listed node stands before its children, which follow in their order,
/// except where an earlier one brought them already: of {child, parent} the
/// child comes first. Linear in the number of nodes.
LUMENTA_EXPORT std::vector<INode*> CollectAllChildren(const std::vector<INode*>& nodes);

/// The nodes in the order in which they stand in the tree: parents before
/// children, children in their order; or back to front.
///
/// Nodes that are not under `pRoot` are dropped, and duplicates collapse; but a
/// list of fewer than two comes back as it is, wherever its node may be.
/// Callers depend on all three. Walks the whole tree once.
LUMENTA_EXPORT std::vector<INode*> SortAccordingToTheSceneTree(const std::vector<INode*>& nodes, INode* pRoot,
                                                               bool reverse);

/// The list {a}.
LUMENTA_EXPORT std::vector<INode*> MakeListOfNodes(INode* a);

/// The list {a, b}, also of null and of equal ones.
LUMENTA_EXPORT std::vector<INode*> MakeListOfNodes(INode* a, INode* b);
