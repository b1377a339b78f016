#include "reference/host/images/References.h"

#include "lumenta/files/Paths.h"

#include <QDir>
#include <QFileInfo>

namespace Host {

namespace {

/// Of another system: with a drive, or a share.
bool IsForeign(const QString& path)
{
    const QString native = ForceNativeSeparators(path);
    const bool hasDrive = native.size() > 2 && native[0].isLetter() && native.midRef(1, 2) == QLatin1String(":/");
    return hasDrive || path.startsWith(QLatin1String("\\\\"));
}

} // namespace

FileReference Rebased(const QString& text, const QString& oldFolder, const QString& newFolder)
{
    const QString full = TryToFindFileOptimistic(text, oldFolder);
    if (QFileInfo(full).isFile()) return {GetRelativePath(newFolder, full), full};
    const bool hasNoPlace = IsForeign(text) || (oldFolder.isEmpty() && QDir::isRelativePath(text));
    return {hasNoPlace ? text : GetRelativePath(newFolder, full), QString()};
}

QString FolderOf(const QString& fileName)
{
    if (fileName.isEmpty()) return {};
    const QFileInfo folder(QFileInfo(fileName).absolutePath());
    return folder.exists() ? folder.canonicalFilePath() : folder.filePath();
}

} // namespace Host
