#pragma once

#include <QImage>
#include <QString>

namespace Host {

/// Finds out, before long work, whether a picture could be written there, as
/// CheckOutputFile() does; and the name ends in .png.
/// \throws UsageError no .png
/// \throws Failure    anything else; the subject is `fileName`
void CheckImageFile(const QString& verb, const QString& fileName);

/// Writes a PNG file, by WriteOutputFile().
/// \throws Failure the subject is `fileName`
void WriteImageFile(const QString& fileName, const QImage& image);

} // namespace Host
