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

/// The system takes a name to end at its first zero, and would open another file.
void Open(QFile& file, QIODevice::OpenMode mode)
{
    const QString fileName = file.fileName();
    if (fileName.contains(QChar(0)) || !file.open(mode)) throw CannotOpen(fileName);
}

} // namespace

void SaveDataToFile(const QString& fileName, const QByteArray& data)
{
    QFile file(fileName);
    // A buffer would take every byte, and lose on closing those that don't fit the disk.
    Open(file, QIODevice::WriteOnly | QIODevice::Unbuffered);
    if (file.write(data) != data.size()) throw FileException(fileName, QStringLiteral("Can't write the data"));
}

void TrySaveDataToFile(const QString& fileName, const QByteArray& data)
{
    const QDir folder = QFileInfo(fileName).absoluteDir();
    const bool isName = !fileName.contains(QChar(0));
    if (isName && !folder.exists()) folder.mkpath(folder.absolutePath()); // opening tells whether it helped
    SaveDataToFile(fileName, data);
}

QByteArray ReadAllFile(const QString& fileName)
{
    QFile file(fileName);
    Open(file, QIODevice::ReadOnly);
    return file.readAll();
}
