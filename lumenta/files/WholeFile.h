#pragma once

#include "lumenta/Export.h"

#include <QByteArray>
#include <QString>

// Files as a whole, byte by byte: nobody turns line ends. Each failure is a
// FileException with the file name as it was passed; no file can be opened whose
// name holds a zero character. All are reentrant.

/// Replaces what the file holds, or makes the file. Its folder must exist.
///
/// The bytes go straight to the system, so a full disk is noticed here and not
/// after the end.
/// \throws FileException "Can't open the file"; "Can't write the data" where not
///         every byte could be written: the file then keeps those that were
LUMENTA_EXPORT void SaveDataToFile(const QString& fileName, const QByteArray& data);

/// The same, and makes the folder first, with all above it, where it is missing.
/// Folders stay even if the file then can't be written.
/// \throws FileException as SaveDataToFile(); that a folder could not be made
///         shows as "Can't open the file"
LUMENTA_EXPORT void TrySaveDataToFile(const QString& fileName, const QByteArray& data);

/// All bytes of the file; none of an empty one.
/// \throws FileException "Can't open the file"
LUMENTA_EXPORT QByteArray ReadAllFile(const QString& fileName);
