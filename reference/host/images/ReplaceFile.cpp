#include "reference/host/images/ReplaceFile.h"

#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstring>

namespace Host {

QString ReplaceFile(const QString& fileName, const QByteArray& bytes)
{
    // Renaming would put the file in the place of the device.
    const QFileInfo present(fileName);
    if (present.exists() && !present.isFile())
        return present.isDir() ? QStringLiteral("it is a folder") : QStringLiteral("it is not a regular file");

    QSaveFile file(fileName);
    // Unbuffered, or the last bytes would meet the disk in commit(), which puts
    // the file in place even when they did not fit.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) return file.errorString();
    // The toolkit has no words for a file that is cut short; the system has.
    if (file.write(bytes) != bytes.size()) return QString::fromLocal8Bit(std::strerror(errno));
    return file.commit() ? QString() : file.errorString();
}

} // namespace Host
