#include "reference/tools/OutputFile.h"

#include "reference/host/images/ReplaceFile.h"
#include "reference/tools/Failure.h"
#include "reference/tools/Texts.h"

#include <QFileInfo>
#include <QSet>

namespace Host {

namespace {

/// A leading colon would mean a file inside this program.
QString OnDisk(const QString& fileName)
{
    return fileName.startsWith(QLatin1Char(':')) ? QStringLiteral("./") + fileName : fileName;
}

/// Where writing ends up: behind all links, even where that does not exist yet.
QFileInfo TargetOf(const QString& fileName)
{
    constexpr int kMostLinks = 40; // as the system has it; they may go round in circles
    QFileInfo file(OnDisk(fileName));
    for (int i = 0; i < kMostLinks && file.isSymLink(); ++i)
        file.setFile(file.symLinkTarget());
    return file;
}

} // namespace

void CheckOutputFile(const QString& fileName)
{
    const QFileInfo file = TargetOf(fileName);
    const QFileInfo folder(file.path());
    if (!folder.exists())
        throw Failure{fileName, QStringLiteral("the folder %1 does not exist").arg(Quoted(file.path()))};
    if (!folder.isDir()) throw Failure{fileName, QStringLiteral("%1 is not a folder").arg(Quoted(file.path()))};
    if (file.isDir()) throw Failure{fileName, QStringLiteral("is a folder")};
    // Renaming would put the new file in the place of the device.
    if (file.exists() && !file.isFile()) throw Failure{fileName, QStringLiteral("is not a regular file")};
    if (!folder.isWritable())
        throw Failure{fileName, QStringLiteral("the folder %1 may not be written to").arg(Quoted(file.path()))};
}

QString TargetPath(const QString& fileName)
{
    const QFileInfo file = TargetOf(fileName);
    return QFileInfo(file.path()).canonicalFilePath() + QLatin1Char('/') + file.fileName();
}

void KeepInputs(const QStringList& inputs, const QStringList& outputs, const QString& inputText)
{
    QSet<QString> kept;
    for (const QString& input : inputs)
        kept += QFileInfo(input).canonicalFilePath();
    kept.remove(QString());
    for (const QString& output : outputs)
        if (kept.contains(TargetPath(output))) throw Failure{output, QStringLiteral("would overwrite ") + inputText};
}

void WriteOutputFile(const QString& fileName, const QByteArray& bytes)
{
    const QString problem = ReplaceFile(OnDisk(fileName), bytes);
    if (!problem.isEmpty()) throw Failure{fileName, QStringLiteral("could not be written: ") + problem};
}

} // namespace Host
