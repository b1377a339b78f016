#include "reference/host/document/Placement.h"

#include "lumenta/scene/NodeHierarchy.h"
#include "reference/host/Directions.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Host {

namespace {

constexpr float kTolerance = 1e-3f; ///< Of an axis' length, or of the distance from the origin.

/// Whether a placement under a parent is the one wanted, but for rounding. It
/// isn't under a parent that is singular up to rounding.
bool IsNear(const Matrix& placed, const Matrix& wanted, const Matrix& parentWorld)
{
    for (int row = 0; row < 4; ++row) {
        float reach = 0.0f;
        float off = 0.0f;
        for (int column = 0; column < 4; ++column) {
            const float parent = row == 3 ? std::fabs(parentWorld(row, column)) : 0.0f;
            reach = std::max({reach, std::fabs(wanted(row, column)), parent});
            const float distance = std::fabs(placed(row, column) - wanted(row, column));
            off = std::isfinite(distance) ? std::max(off, distance) : std::numeric_limits<float>::infinity();
        }
        if (!(off <= kTolerance * reach)) return false;
    }
    return true;
}

} // namespace

Matrix WorldOf(const INode* pNode)
{
    Matrix world;
    GetNodeGlobalMatrix(world, pNode);
    return world;
}

std::optional<Matrix> LocalFor(const Matrix& world, const Matrix& parentWorld)
{
    // Qt inverts in double: parents scaled by hundredths leave no determinant to a float.
    bool isInvertible = false;
    const Matrix inverse = QMatrix4x4ToMatrix(MatrixToQMatrix4x4(parentWorld).inverted(&isInvertible));
    const Matrix local = world * inverse;
    return isInvertible && IsNear(local * parentWorld, world, parentWorld) ? std::optional<Matrix>(local)
                                                                           : std::nullopt;
}

Matrix Upright(const TVec3<float>& up)
{
    const TVec3<float> above = UnitOr(up, {0.0f, 1.0f, 0.0f});
    const bool mostlyZ = std::fabs(above.z) > std::fabs(above.x) && std::fabs(above.z) > std::fabs(above.y);
    const TVec3<float> front = mostlyZ ? TVec3<float>{0.0f, -1.0f, 0.0f} : TVec3<float>{0.0f, 0.0f, 1.0f};
    const TVec3<float> side = Normalized(Cross(above, front));
    const TVec3<float> back = Cross(above, side);

    Matrix upright;
    const TVec3<float> columns[3] = {side, back, above};
    for (int column = 0; column < 3; ++column) {
        upright(0, column) = columns[column].x;
        upright(1, column) = columns[column].y;
        upright(2, column) = columns[column].z;
    }
    return upright;
}

} // namespace Host
