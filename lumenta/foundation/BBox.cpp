#include "lumenta/foundation/BBox.h"

#include <QDebug>

template <typename T>
TVec3<T> TBBox<T>::Center() const
{
    return {(min.x + max.x) * T(0.5), (min.y + max.y) * T(0.5), (min.z + max.z) * T(0.5)};
}

template <typename T>
TVec3<T> TBBox<T>::HalfExtent() const
{
    return Center() - min;
}

template struct TBBox<float>;
template struct TBBox<double>;

QDebug operator<<(QDebug debug, const TBBox<float>& box)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "TBBox(" << box.min << ", " << box.max << ')';
    return debug;
}
