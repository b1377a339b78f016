#pragma once

#include <QImage>
#include <QString>

namespace Host {

/// Finds out, before long work, whether a picture could be written there: the
/// name ends in .png, the folder exists and may be written to, and the name is
/// not taken by a folder or a device.
/// \throws UsageError no .png
/// \throws Failure    anything else; the subject is `fileName`
void CheckImageFile(const QString& verb, const QString& fileName);

/// The one name, behind all links, of the file that writing there would make or replace.
QString TargetPath(const QString& fileName);

/// Writes a PNG file: aside first, then renamed, so that under `fileName`
/// stands the whole picture, or what stood there before.
/// \throws Failure the subject is `fileName`
void WriteImageFile(const QString& fileName, const QImage& image);

} // namespace Host
