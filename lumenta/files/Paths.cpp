#include "lumenta/files/Paths.h"

#include <QDir>
#include <QFileInfo>

namespace {

constexpr QChar kSlash = QLatin1Char('/');
constexpr QChar kBackslash = QLatin1Char('\\');

/// A vote; a tie is for Windows.
bool IsWindowsStylePath(const QString& path)
{
    int unixScore = 0;
    int windowsScore = 0;
    if (path.startsWith(kSlash))
        unixScore += 3;
    else
        windowsScore += 1;
    if (path.startsWith(QLatin1String("\\\\"))) windowsScore += 2;
    const bool isLong = path.size() > 3;
    if (isLong && path[1] == QLatin1Char(':') && (path[2] == kBackslash || path[2] == kSlash))
        windowsScore += 3;
    else if (isLong)
        unixScore += 1;
    if (path.contains(kSlash)) unixScore += 1;
    if (path.contains(kBackslash)) windowsScore += 1;
    return unixScore <= windowsScore;
}

QString WithBackslashes(QString path)
{
    return path.replace(kSlash, kBackslash);
}

/// `path` with the separators that `model` favours.
QString InStyleOf(const QString& model, const QString& path)
{
    return IsWindowsStylePath(model) ? WithBackslashes(path) : ForceNativeSeparators(path);
}

/// Empty if there is no such file.
QString CanonicalPath(const QString& path)
{
    return QFileInfo::exists(path) ? ForceNativeSeparators(QFileInfo(path).canonicalFilePath()) : QString();
}

} // namespace

QString GetRelativePath(const QString& baseDir, const QString& path)
{
    if (baseDir.isEmpty() || path.isEmpty() || path.startsWith(QLatin1String(":/"))) return path;

    const bool isWindows = IsWindowsStylePath(baseDir);
    const QString relative = QDir(baseDir).relativeFilePath(path);
    const bool isOutside = relative.startsWith(QLatin1String("../"));
    if (!isWindows) return isOutside ? path : relative;
    return WithBackslashes(isOutside ? QFileInfo(path).absoluteFilePath() : relative);
}

QString ForceNativeSeparators(const QString& path)
{
    return QString(path).replace(kBackslash, kSlash);
}

QString BuildFullPath(const QString& baseDir, const QString& path)
{
    if (path.isEmpty()) return QString();
    if (baseDir.isEmpty() || path.startsWith(QLatin1Char(':'))) return ForceNativeSeparators(path);
    // First one style throughout, then this platform's.
    if (!QDir::isRelativePath(path)) return ForceNativeSeparators(InStyleOf(path, path));
    return ForceNativeSeparators(InStyleOf(baseDir, QDir(baseDir).absoluteFilePath(path)));
}

QString SanitizeFilename(const QString& name, const QString& replacement)
{
    QString sanitized = name;
    sanitized.replace(QLatin1String(".."), replacement);
    for (const char unwanted :
         {'/', '\\', '"', '\'', '`', '~', '|', ',', '?', '<', '>', ':', ';', '*', '^', '$', '#', '@', ' '})
        sanitized.replace(QLatin1Char(unwanted), replacement);
    return sanitized;
}

QString TryToFindFilePessimistic(const QString& path, const QString& baseDir)
{
    if (path.isEmpty()) return path;
    const QString named = CanonicalPath(BuildFullPath(baseDir, path));
    if (!named.isEmpty()) return named;
    const QString native = ForceNativeSeparators(path);
    return CanonicalPath(BuildFullPath(baseDir, native.mid(native.lastIndexOf(kSlash) + 1)));
}

QString TryToFindFileOptimistic(const QString& path, const QString& baseDir)
{
    const QString found = TryToFindFilePessimistic(path, baseDir);
    return found.isEmpty() ? BuildFullPath(baseDir, path) : found;
}

QString SimplifyFilename(const QString& path)
{
    const QString canonical = CanonicalPath(path);
    return canonical.isEmpty() ? path : canonical;
}
