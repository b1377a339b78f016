#pragma once

#include <QByteArray>
#include <QString>

namespace Host {

/// Finds out, before long work, whether ReplaceFile() could do its own: the
/// folder is there and may be written to, and the name is not taken by a folder
/// or a device.
/// \return what is in the way, as the end of a sentence; empty for nothing
QString ObstacleTo(const QString& fileName);

/// The one name, behind all links, of the file that writing there would make or replace.
QString TargetPath(const QString& fileName);

/// Makes the file, or replaces what it holds: written aside first, then renamed,
/// so that under the name stands all of it, or what stood there before. Only a
/// regular file is replaced, never a device. A name that begins with a colon
/// means a file like any other.
/// \return why it failed, as the end of a sentence; empty where it did not
QString ReplaceFile(const QString& fileName, const QByteArray& bytes);

} // namespace Host
