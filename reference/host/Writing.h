#pragma once

#include <QFont>

namespace Host {

/// Whether text can be written into pictures: that takes a QGuiApplication
/// (platform "offscreen" will do) and a font.
bool CanWrite();

/// What text in pictures is written in, without serifs.
/// \param pixels from line to line, about
QFont FontOfHeight(int pixels);

} // namespace Host
