#include "lumenta/files/WholeFile.h"

#include "lumenta/foundation/Exceptions.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

FileException CannotOpen(const QString& fileName)
{
    return {fileName, QStringLiteral("Can't open the file")};
}

} // namespace

void SaveDataToFile(const QString& fileName, const QByteArray& data)
{
    QFile file(fileName);
    // A buffer would take every byte, and lose on closing those that don't fit the disk.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) throw CannotOpen(fileName);
    if (file.write(data) != data.size()) throw FileException(fileName, QStringLiteral("Can't write the data"));
}

void TrySaveDataToFile(const QString& fileName, const QByteArray& data)
{
    const QDir folder = QFileInfo(fileName).absoluteDir();
    if (!folder.exists()) folder.mkpath(folder.absolutePath()); // opening tells whether it helped
    SaveDataToFile(fileName, data);
}

QByteArray ReadAllFile(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) throw CannotOpen(fileName);
    return file.readAll();
}
