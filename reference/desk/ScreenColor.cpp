#include "reference/desk/ScreenColor.h"

#include "reference/host/Studio.h"

namespace Host {

QColor ScreenColor(const ColorF& linear)
{
    return QColor::fromRgb(PixelFromLinear({linear.r, linear.g, linear.b}));
}

ColorF LinearColor(const QColor& shown)
{
    return {LinearFromSrgb(shown.red()), LinearFromSrgb(shown.green()), LinearFromSrgb(shown.blue()), 1.0f};
}

} // namespace Host
