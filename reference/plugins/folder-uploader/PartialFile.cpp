#include "reference/plugins/folder-uploader/PartialFile.h"

#include "lumenta/foundation/Exceptions.h"

#include <QDir>
#include <QFileInfo>
#include <QUuid>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace Host {

namespace {

[[noreturn]] void Fail(const QString& what, const QString& file, const QString& reason)
{
    throw Exception(QStringLiteral("'%1' can't be %2: %3").arg(file, what, reason));
}

bool IsTaken(const QString& file)
{
    const QFileInfo info(file);
    return info.exists() || info.isSymLink(); // one that leads nowhere has a name, too
}

/// "picture.png" as "picture (2).png".
QString Numbered(const QString& file, int number)
{
    const QFileInfo info(file);
    const QString suffix = info.suffix();
    const QString name = QStringLiteral("%1 (%2)").arg(info.completeBaseName()).arg(number);
    return info.dir().filePath(suffix.isEmpty() ? name : name + QLatin1Char('.') + suffix);
}

} // namespace

PartialFile::PartialFile(const QString& strFolder)
    : m_file(QDir(strFolder).filePath(QStringLiteral(".upload-%1").arg(QUuid::createUuid().toString(QUuid::Id128))))
{
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        Fail(QStringLiteral("written to"), strFolder, m_file.errorString());
}

PartialFile::~PartialFile()
{
    m_file.remove(); // does nothing once it has another name
}

void PartialFile::Write(const QByteArray& data)
{
    if (m_file.write(data) != data.size())
        Fail(QStringLiteral("written to"), QFileInfo(m_file).path(), m_file.errorString());
}

void PartialFile::Close()
{
    if (::fsync(m_file.handle()) != 0 && errno != EINVAL) // which a file system says that has nothing to sync
        Fail(QStringLiteral("written to"), QFileInfo(m_file).path(), QString::fromLocal8Bit(std::strerror(errno)));
    m_file.close();
}

void PartialFile::Replace(const QString& strFileName)
{
    Close();
    const QByteArray from = QFile::encodeName(m_file.fileName()), to = QFile::encodeName(strFileName);
    if (std::rename(from.constData(), to.constData()) != 0)
        Fail(QStringLiteral("replaced"), strFileName, QString::fromLocal8Bit(std::strerror(errno)));
}

QString PartialFile::Add(const QString& strFileName)
{
    Close();
    QString name = strFileName;
    QFile complete(m_file.fileName()); // m_file goes on to mean what is to be removed
    for (int number = 2; !complete.rename(name); ++number) {
        if (!IsTaken(name)) Fail(QStringLiteral("made"), name, complete.errorString());
        name = Numbered(strFileName, number);
    }
    return name;
}

} // namespace Host
