#include "lumenta/foundation/Matrix2.h"

#include <QDebug>

#include <algorithm>
#include <iterator>

bool operator==(const Matrix2& a, const Matrix2& b)
{
    return std::equal(std::begin(a.m), std::end(a.m), std::begin(b.m));
}

QTransform Matrix2ToQTransform(const Matrix2& matrix)
{
    const float(&m)[9] = matrix.m;
    return QTransform(qreal(m[0]), qreal(m[1]), qreal(m[2]),
                      qreal(m[3]), qreal(m[4]), qreal(m[5]),
                      qreal(m[6]), qreal(m[7]), qreal(m[8]));
}

Matrix2 QTransformToMatrix2(const QTransform& transform)
{
    return Matrix2(static_cast<float>(transform.m11()), static_cast<float>(transform.m12()),
                   static_cast<float>(transform.m21()), static_cast<float>(transform.m22()),
                   static_cast<float>(transform.dx()), static_cast<float>(transform.dy()));
}

QDebug operator<<(QDebug debug, const Matrix2& matrix)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "Matrix2(" << matrix.m[0] << ", " << matrix.m[1] << "; "
                    << matrix.m[3] << ", " << matrix.m[4] << "; "
                    << matrix.m[6] << ", " << matrix.m[7] << ')';
    return debug;
}
