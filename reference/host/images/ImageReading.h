#pragma once

#include <QImage>
#include <QString>

class QByteArray;
class QIODevice;

namespace Host {

/// The first picture in a file, upright: turned as a camera noted it there.
///
/// The suffix decides about the format, and where that makes no sense of it, the
/// content: TGA, for one, has no mark that it is known by. What claims to have
/// more than 2^28 pixels is refused before there is memory for it.
/// \param problem why it can't be read, as the end of a sentence; else it stays
/// \return null where it can't be read
QImage ReadImage(const QString& fileName, QString& problem);

/// The same from a device that is open and can seek.
/// \param suffix of the file's name; empty where there is none
QImage ReadImage(QIODevice& device, const QString& suffix, QString& problem);

} // namespace Host
