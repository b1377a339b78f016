#include "reference/host/document/Placement.h"

#include "lumenta/scene/NodeHierarchy.h"
#include "reference/host/Directions.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace Host {

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
    const bool isUsable = std::all_of(std::begin(local.m), std::end(local.m), [](float m) { return std::isfinite(m); });
    return isInvertible && isUsable ? std::optional<Matrix>(local) : std::nullopt;
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
