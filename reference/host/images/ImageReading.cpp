#include "reference/host/images/ImageReading.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>

namespace Host {

namespace {

constexpr qint64 kMostPixels = qint64(1) << 28; // 1 GiB in memory

QImage Decoded(QImageReader& reader, QString& problem)
{
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isValid() && qint64(size.width()) * size.height() > kMostPixels) {
        problem = QStringLiteral("%1 by %2 pixels are too many").arg(size.width()).arg(size.height());
        return {};
    }
    const QImage image = reader.read();
    if (image.isNull())
        problem = reader.error() == QImageReader::UnsupportedFormatError ? QString() : reader.errorString();
    return image;
}

/// Whether what was said of the content was said by those who know its format:
/// some formats have no mark, and anything looks like them.
bool IsKnown(QIODevice& device, const QByteArray& suffix)
{
    if (QImageReader::supportedImageFormats().contains(suffix)) return true;
    const QByteArray format = QImageReader::imageFormat(&device);
    return !format.isEmpty() && format != "tga" && format != "wbmp";
}

} // namespace

QImage ReadImage(const QString& fileName, QString& problem)
{
    QFile file(fileName);
    if (file.open(QIODevice::ReadOnly)) return ReadImage(file, QFileInfo(fileName).suffix(), problem);
    problem = file.errorString();
    return {};
}

QImage ReadImage(QIODevice& device, const QString& suffix, QString& problem)
{
    const QByteArray format = suffix.toLower().toLatin1();
    QString reason;
    QImageReader bySuffix(&device, format);
    QImage image = Decoded(bySuffix, reason);
    if (!image.isNull()) return image;

    device.seek(0);
    QImageReader byContent(&device);
    byContent.setDecideFormatFromContent(true);
    QString second;
    image = Decoded(byContent, second);
    if (!image.isNull()) return image;

    device.seek(0);
    problem = !reason.isEmpty() && IsKnown(device, format) ? reason : QStringLiteral("its format is unknown");
    return {};
}

} // namespace Host
