#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/BBox.h"

class INode;
struct Matrix;

/// \file
/// How much room nodes take in the world. To be called on the scene's thread;
/// no stack is used up, however deep the tree. What the scene throws passes
/// through, and so does std::bad_alloc; then the box is as it was.

/// Extends `box` by everything that is seen of `pNode` and what is under it:
/// the world positions of all vertices of visible mesh nodes. A hidden node's
/// children count where they are visible themselves. Lights take no room here.
///
/// Linear in the number of nodes and vertices.
/// \param parentMatrix from the space of the node's parent to the world
LUMENTA_EXPORT void UpdateBBoxRecursive(TBBox<float>& box, const INode* pNode, const Matrix& parentMatrix);

/// The box in the world of a node and everything under it, whether visible or
/// not: what mesh nodes say of themselves, and lights with their radius. Empty
/// for groups without either.
///
/// Unlike UpdateBBoxRecursive() it asks no node whether it is visible, and
/// callers depend on that. Linear in the number of nodes, and for each light in
/// its depth in the tree.
LUMENTA_EXPORT TBBox<float> ComputeNodeBBox(const INode* pNode);
