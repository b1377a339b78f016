#include "reference/host/services/PictureFile.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IRender.h"

#include <QBuffer>
#include <QEventLoop>
#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>

#include <optional>

namespace Host {

namespace {

/// A leading colon would mean a file inside this program.
QString OnDisk(const QString& strFileName)
{
    return strFileName.startsWith(QLatin1Char(':')) ? QStringLiteral("./") + strFileName : strFileName;
}

QByteArray Encoded(const QString& strFileName, const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    if (image.isNull() || !writer.write(image))
        throw FileException(strFileName, QStringLiteral("The picture can't be encoded: ") + writer.errorString());
    return bytes;
}

} // namespace

QImage DrawPicture(IRender& render, const IScene& scene, const sRenderSettings& settings, QStringList& leftOut)
{
    const QObject listener;
    QEventLoop loop;
    std::optional<eRenderExitCode> code;
    QStringList lines;
    QObject::connect(&render, &IRender::log, &listener, [&lines](const QString& strLine) { lines += strLine; });
    QObject::connect(&render, &IRender::done, &listener, [&](eRenderExitCode exitCode) {
        code = exitCode;
        loop.quit();
    });
    render.Start(scene, settings);
    if (!code) loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (code == eRenderExitSuccess) {
        leftOut = lines;
        return render.GetImage();
    }
    const QString reason =
        code == eRenderExitStopped ? QStringLiteral("it was stopped") : lines.value(lines.size() - 1);
    throw SavingException(QStringLiteral("The picture can't be drawn: ") + reason);
}

void CheckPictureFile(const QString& strFileName)
{
    const QFileInfo file(OnDisk(strFileName));
    if (file.suffix().compare(QLatin1String("png"), Qt::CaseInsensitive) != 0)
        throw SavingException(QStringLiteral("'%1': only pictures that end in .png can be written").arg(strFileName));
    if (!QFileInfo(file.path()).isDir())
        throw FileException(strFileName, QStringLiteral("There is no folder '%1'").arg(file.path()));
    // Renaming would put the picture in the place of a device.
    if (file.exists() && !file.isFile()) throw FileException(strFileName, QStringLiteral("That is no regular file"));
}

void WritePictureFile(const QString& strFileName, const QImage& image)
{
    const QByteArray bytes = Encoded(strFileName, image);
    QSaveFile file(OnDisk(strFileName));
    // Unbuffered, or the last bytes would meet the disk in commit(), which puts
    // the file in place even when they did not fit.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        throw FileException(strFileName, QStringLiteral("Can't write the picture: ") + file.errorString());
    if (file.write(bytes) != bytes.size())
        throw FileException(strFileName, QStringLiteral("Can't write the picture: ") + qt_error_string());
    if (!file.commit())
        throw FileException(strFileName, QStringLiteral("Can't write the picture: ") + file.errorString());
}

} // namespace Host
