#include "reference/host/services/PictureFile.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IRender.h"
#include "reference/host/images/Png.h"
#include "reference/host/images/ReplaceFile.h"

#include <QEventLoop>

#include <optional>

namespace Host {

namespace {

FileException CannotWrite(const QString& strFileName, const QString& reason)
{
    return {strFileName, QStringLiteral("The picture can't be written: ") + reason};
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
        QImage picture = render.GetImage();
        if (picture.isNull())
            throw SavingException(QStringLiteral("The picture can't be drawn: the renderer gave none"));
        return picture;
    }
    const QString reason =
        code == eRenderExitStopped ? QStringLiteral("it was stopped") : lines.value(lines.size() - 1);
    throw SavingException(QStringLiteral("The picture can't be drawn: ") + reason);
}

void CheckPictureFile(const QString& strFileName)
{
    if (!HasPngSuffix(strFileName))
        throw SavingException(QStringLiteral("'%1': only pictures that end in .png can be written").arg(strFileName));
    const QString obstacle = ObstacleTo(strFileName);
    if (!obstacle.isEmpty()) throw CannotWrite(strFileName, obstacle);
}

void WritePictureFile(const QString& strFileName, const QImage& image)
{
    const QByteArray bytes = EncodedPng(image);
    const QString problem = bytes.isEmpty() ? QStringLiteral("it can't be encoded") : ReplaceFile(strFileName, bytes);
    if (!problem.isEmpty()) throw CannotWrite(strFileName, problem);
}

} // namespace Host
