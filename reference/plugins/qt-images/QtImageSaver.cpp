#include "reference/plugins/qt-images/QtImageSaver.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IImage.h"
#include "reference/host/images/ReplaceFile.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>

#include <algorithm>

namespace Host {

namespace {

/// XPM is not among them: it holds what is wholly transparent and no more.
bool HoldsAlpha(const QByteArray& format)
{
    static const QList<QByteArray> holding{"png", "webp", "tif", "tiff", "ico", "cur", "icns", "jp2"};
    return holding.contains(format);
}

QImage OverWhite(const QImage& image)
{
    QImage result(image.size(), QImage::Format_RGB32);
    result.fill(Qt::white);
    QPainter(&result).drawImage(0, 0, image);
    return result;
}

/// Empty where the format can't hold it.
QByteArray Encoded(const QImage& image, const QByteArray& format, int nQuality)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    if (format != "png") // there Qt takes it for the compression
        writer.setQuality(nQuality);
    return writer.write(image) ? buffer.data() : QByteArray();
}

/// Of what was written, which some formats make smaller without a word.
QSize SizeOf(const QByteArray& bytes, const QByteArray& format)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, format);
    const QSize size = reader.size();
    return bytes.isEmpty() || size.isValid() ? size : reader.read().size();
}

[[noreturn]] void Fail(const QString& fileName, const QString& reason)
{
    throw FileException(fileName, QStringLiteral("The image can't be saved: ") + reason);
}

} // namespace

QtImageSaver::QtImageSaver(const QByteArray& format)
    : m_format(format)
{
}

void QtImageSaver::Save(const IImage& image, const QString& strFileName, int nQuality)
{
    QImage picture = image.ToQImage();
    if (picture.isNull()) Fail(strFileName, QStringLiteral("it has no pixels"));
    if (picture.hasAlphaChannel() && !HoldsAlpha(m_format)) picture = OverWhite(picture);

    const QByteArray bytes = Encoded(picture, m_format, std::clamp(nQuality, -1, 100));
    if (SizeOf(bytes, m_format) != picture.size())
        Fail(strFileName,
             QStringLiteral("this format does not hold %1 by %2 pixels").arg(picture.width()).arg(picture.height()));
    const QString problem = ReplaceFile(strFileName, bytes);
    if (!problem.isEmpty()) Fail(strFileName, problem);
}

} // namespace Host
