#pragma once

#include "lumenta/platform/IImageSaver.h"

#include <QByteArray>

namespace Host {

/// Writes images of a format that Qt knows: aside first, then renamed.
///
/// What is transparent shows white in formats that can't hold it. An image that
/// a format would make smaller, as icons do, is refused. The quality counts for
/// JPEG and WebP, which is without loss at 100.
class QtImageSaver final : public IImageSaver {
public:
    /// \param format one of QImageWriter's
    explicit QtImageSaver(const QByteArray& format);

    void Save(const IImage& image, const QString& strFileName, int nQuality) override;

private:
    QByteArray m_format;
};

} // namespace Host
