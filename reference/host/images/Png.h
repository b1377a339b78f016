#pragma once

#include <QByteArray>

class QImage;
class QString;

namespace Host {

/// The picture as the content of a PNG file; empty where it has no pixels, or
/// more than there is memory for.
QByteArray EncodedPng(const QImage& image);

/// Whether a file of this name is expected to be a PNG file.
bool HasPngSuffix(const QString& fileName);

} // namespace Host
