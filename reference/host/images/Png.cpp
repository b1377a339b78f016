#include "reference/host/images/Png.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>

namespace Host {

QByteArray EncodedPng(const QImage& image)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "PNG") ? buffer.data() : QByteArray();
}

bool HasPngSuffix(const QString& fileName)
{
    return QFileInfo(fileName).suffix().compare(QLatin1String("png"), Qt::CaseInsensitive) == 0;
}

} // namespace Host
