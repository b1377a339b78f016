#include "lumenta/foundation/Color.h"

#include <QDebug>

#include <algorithm>

namespace {

int To8Bit(float component)
{
    if (!(component > 0.0f)) // also anything that is not a number
        return 0;
    return static_cast<int>(std::min(component, 1.0f) * 255.0f);
}

} // namespace

QColor ColorToQColor(const ColorF& color)
{
    return QColor(To8Bit(color.r), To8Bit(color.g), To8Bit(color.b));
}

ColorF QColorToColorF(const QColor& color)
{
    constexpr float kOne255th = 0.003921568859368563f;
    return {static_cast<float>(color.red()) * kOne255th,
            static_cast<float>(color.green()) * kOne255th,
            static_cast<float>(color.blue()) * kOne255th,
            1.0f};
}

QDebug operator<<(QDebug debug, const ColorF& color)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "ColorF(" << color.r << ", " << color.g << ", " << color.b << ", " << color.a << ')';
    return debug;
}
