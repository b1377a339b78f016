#pragma once

#include <QByteArray>
#include <QString>

namespace Host {

/// Makes the file, or replaces what it holds: written aside first, then renamed,
/// so that under the name stands all of it, or what stood there before. Only a
/// regular file is replaced, never a device.
/// \return why it failed; empty where it did not
QString ReplaceFile(const QString& fileName, const QByteArray& bytes);

} // namespace Host
