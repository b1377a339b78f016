#include "lumenta/foundation/Vector.h"

#include <QDebug>

#include <cmath>

TVec2<float> operator*(const TVec2<float>& v, float factor)
{
    return {v.x * factor, v.y * factor};
}

TVec3<float> operator*(const TVec3<float>& v, float factor)
{
    return {v.x * factor, v.y * factor, v.z * factor};
}

float Dot(const TVec3<float>& a, const TVec3<float>& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

TVec3<float> Cross(const TVec3<float>& a, const TVec3<float>& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

float Length(const TVec3<float>& v)
{
    return std::sqrt(Dot(v, v));
}

TVec3<float> Normalized(const TVec3<float>& v)
{
    const float length = Length(v);
    if (length == 0.0f)
        return v;
    return {v.x / length, v.y / length, v.z / length};
}

QDebug operator<<(QDebug debug, const TVec2<float>& v)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "TVec2(" << v.x << ", " << v.y << ')';
    return debug;
}

QDebug operator<<(QDebug debug, const TVec3<float>& v)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "TVec3(" << v.x << ", " << v.y << ", " << v.z << ')';
    return debug;
}
