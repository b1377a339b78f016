#include "reference/plugins/assimp-exporter/StagedFiles.h"

#include "lumenta/foundation/Exceptions.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>
#include <vector>

namespace Host {

namespace {

/// A file that was moved to `to`, and what stood there before.
struct Move {
    QByteArray to;
    QByteArray before; ///< Empty where there was nothing.
};

[[noreturn]] void FailBySystem(const QByteArray& file)
{
    const QString reason = QString::fromLocal8Bit(std::strerror(errno));
    throw Exception(QStringLiteral("'%1' can't be written: %2").arg(QFile::decodeName(file), reason));
}

/// Keeps what a name means under another one, by a second name if the file system
/// knows such, so that the first is never without its file.
void Keep(const QByteArray& file, const QByteArray& kept)
{
    if (::link(file.constData(), kept.constData()) != 0 && std::rename(file.constData(), kept.constData()) != 0)
        FailBySystem(file);
}

/// \return whether all that was there before is there again
bool Undo(const std::vector<Move>& moves)
{
    bool isUndone = true;
    for (auto move = moves.rbegin(); move != moves.rend(); ++move)
        if (move->before.isEmpty())
            QFile::remove(QFile::decodeName(move->to));
        else if (std::rename(move->before.constData(), move->to.constData()) != 0)
            isUndone = false;
    return isUndone;
}

} // namespace

StagedFiles::StagedFiles(const QString& strFileName)
    : m_strFileName(strFileName)
    , m_folder(QFileInfo(strFileName).absoluteDir().filePath(QStringLiteral(".export-XXXXXX")))
{
    const QFileInfo file(strFileName);
    if (!file.absoluteDir().exists())
        throw Exception(QStringLiteral("there is no folder '%1'").arg(file.absolutePath()));
    if (file.isDir() || file.fileName().isEmpty()) throw Exception(QStringLiteral("it is a folder"));
    if (!m_folder.isValid()) throw Exception(m_folder.errorString());
}

QString StagedFiles::GetFileName() const
{
    return PathOf(QFileInfo(m_strFileName).fileName());
}

void StagedFiles::Publish()
{
    const QFileInfo file(m_strFileName);
    QStringList names = QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden);
    names.removeAll(file.fileName());
    names.append(file.fileName());
    QDir(m_folder.path()).mkdir(QStringLiteral("before"));

    std::vector<Move> moves;
    try {
        for (const QString& name : names) {
            const QFileInfo target(file.absoluteDir(), name);
            if (target.isDir()) throw Exception(QStringLiteral("'%1' is a folder").arg(target.filePath()));
            Move move{QFile::encodeName(target.filePath()), {}};
            if (target.exists() || target.isSymLink()) {
                move.before = QFile::encodeName(PathOf(QStringLiteral("before/") + name));
                Keep(move.to, move.before);
            }
            moves.push_back(move);
            if (std::rename(QFile::encodeName(PathOf(name)).constData(), move.to.constData()) != 0)
                FailBySystem(move.to);
        }
    } catch (const Exception& failure) {
        if (Undo(moves)) throw;
        m_folder.setAutoRemove(false); // better litter than a lost file
        throw Exception(QStringLiteral("%1; what was there before lies in '%2'")
                            .arg(failure.GetErrorText(), PathOf(QStringLiteral("before"))));
    }
}

} // namespace Host
