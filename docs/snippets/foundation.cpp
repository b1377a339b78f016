#include "docs/snippets/Snippets.h"

//! [foundation]
/// Where a point of a wheel is in the world. Products read from left to right,
/// in the order in which things happen.
TVec3<float> PointOfWheel(const TVec3<float>& point, const Matrix& wheelOnCar, const Matrix& carInWorld)
{
    TVec3<float> moved = point;
    TransformPoint(moved, wheelOnCar * carInWorld);
    return moved;
}

/// The way back; false where the matrix flattens what it moves.
bool MoveBack(TVec3<float>& point, const Matrix& matrix)
{
    Matrix inverse;
    if (!Inverse(inverse, matrix)) return false;
    TransformPoint(point, inverse);
    return true;
}
//! [foundation]
