#include "reference/host/images/ReplaceFile.h"

#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstring>

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

/// Renaming would put the file in the place of a device.
QString Taken(const QFileInfo& file)
{
    if (file.isDir()) return QStringLiteral("it is a folder");
    return file.exists() && !file.isFile() ? QStringLiteral("it is not a regular file") : QString();
}

} // namespace

QString ObstacleTo(const QString& fileName)
{
    const QFileInfo file = TargetOf(fileName);
    const QFileInfo folder(file.path());
    if (!folder.exists()) return QStringLiteral("the folder '%1' does not exist").arg(file.path());
    if (!folder.isDir()) return QStringLiteral("'%1' is not a folder").arg(file.path());
    const QString taken = Taken(file);
    if (!taken.isEmpty() || folder.isWritable()) return taken;
    return QStringLiteral("the folder '%1' may not be written to").arg(file.path());
}

QString TargetPath(const QString& fileName)
{
    const QFileInfo file = TargetOf(fileName);
    return QFileInfo(file.path()).canonicalFilePath() + QLatin1Char('/') + file.fileName();
}

QString ReplaceFile(const QString& fileName, const QByteArray& bytes)
{
    const QString taken = Taken(QFileInfo(OnDisk(fileName)));
    if (!taken.isEmpty()) return taken;

    QSaveFile file(OnDisk(fileName));
    // Unbuffered, or the last bytes would meet the disk in commit(), which puts
    // the file in place even when they did not fit.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) return file.errorString();
    // The toolkit has no words for a file that is cut short; the system has.
    if (file.write(bytes) != bytes.size()) return QString::fromLocal8Bit(std::strerror(errno));
    return file.commit() ? QString() : file.errorString();
}

} // namespace Host
