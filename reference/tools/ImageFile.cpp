#include "reference/tools/ImageFile.h"

#include "reference/tools/Failure.h"
#include "reference/tools/OutputFile.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageWriter>

namespace Host {

namespace {

QByteArray Encoded(const QString& fileName, const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    if (image.isNull() || !writer.write(image))
        throw Failure{fileName, QStringLiteral("the picture could not be encoded: ") + writer.errorString()};
    return bytes;
}

} // namespace

void CheckImageFile(const QString& verb, const QString& fileName)
{
    if (QFileInfo(fileName).suffix().compare(QLatin1String("png"), Qt::CaseInsensitive) != 0)
        throw UsageError{verb, fileName + QStringLiteral(": only pictures that end in .png can be written")};
    CheckOutputFile(fileName);
}

void WriteImageFile(const QString& fileName, const QImage& image)
{
    WriteOutputFile(fileName, Encoded(fileName, image));
}

} // namespace Host
