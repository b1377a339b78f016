#include "reference/tools/ImageFile.h"

#include "reference/host/images/Png.h"
#include "reference/tools/Failure.h"
#include "reference/tools/OutputFile.h"

namespace Host {

void CheckImageFile(const QString& verb, const QString& fileName)
{
    if (!HasPngSuffix(fileName))
        throw UsageError{verb, fileName + QStringLiteral(": only pictures that end in .png can be written")};
    CheckOutputFile(fileName);
}

void WriteImageFile(const QString& fileName, const QImage& image)
{
    const QByteArray bytes = EncodedPng(image);
    if (bytes.isEmpty()) throw Failure{fileName, QStringLiteral("the picture could not be encoded")};
    WriteOutputFile(fileName, bytes);
}

} // namespace Host
