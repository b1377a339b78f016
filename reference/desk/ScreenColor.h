#pragma once

#include "lumenta/foundation/Color.h"

namespace Host {

/// What a screen shows of a linear colour; opaque.
QColor ScreenColor(const ColorF& linear);

/// The linear colour, with alpha 1, of one that a screen shows.
ColorF LinearColor(const QColor& shown);

} // namespace Host
