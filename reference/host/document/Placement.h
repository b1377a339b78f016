#pragma once

#include "lumenta/foundation/Matrix.h"

#include <optional>

class INode;

namespace Host {

/// GetNodeGlobalMatrix() as a value.
Matrix WorldOf(const INode* pNode);

/// The matrix that keeps a node at `world` under a parent at `parentWorld`.
/// Nothing where that one is singular, as far as a float tells.
std::optional<Matrix> LocalFor(const Matrix& world, const Matrix& parentWorld);

/// Turns a model so that its up axis becomes +z and its front −y, where the
/// camera's front view stands. The front of a model whose up is mostly z is −y,
/// of any other +z. Without a usable axis y is up.
Matrix Upright(const TVec3<float>& up);

} // namespace Host
