#include "lumenta/files/Paths.h"
#include "fuzz/Input.h"
#include "lumenta/files/WholeFile.h"
#include "lumenta/foundation/Exceptions.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

// Paths of any text, against the file system as it is; whole files under any
// name that was made harmless, in a folder of their own.

using Fuzz::Require;

namespace {

bool IsNative(const QString& path)
{
    return !path.contains(QLatin1Char('\\'));
}

void Convert(const QString& base, const QString& path)
{
    const QString native = ForceNativeSeparators(path);
    Require(IsNative(native) && ForceNativeSeparators(native) == native, "native separators are that");
    const QString full = BuildFullPath(base, path);
    Require(IsNative(full) && full.isEmpty() == path.isEmpty(), "a full path is native");

    // What lies inside is referred to relatively, and found there again.
    const QString relative = GetRelativePath(base, path);
    if (base.isEmpty() || path.isEmpty()) Require(relative == path, "without a base a path is left alone");
    const bool isPlain = IsNative(base) && IsNative(path) && !base.contains(QLatin1Char(':'))
                         && !path.contains(QLatin1Char(':')) && !path.contains(QChar(0)) && !base.contains(QChar(0));
    if (isPlain && base.startsWith(QLatin1Char('/')) && path.startsWith(QLatin1Char('/')))
        Require(QDir::cleanPath(BuildFullPath(base, relative)) == QDir::cleanPath(path), "a reference leads back");
}

void Find(const QString& base, const QString& path)
{
    const QString found = TryToFindFilePessimistic(path, base);
    Require(found.isEmpty() || (IsNative(found) && (QFileInfo::exists(found) || found.contains(QChar(0)))),
            "a file that is found exists");
    const QString hoped = TryToFindFileOptimistic(path, base);
    Require(hoped.isEmpty() == path.isEmpty(), "a hope is empty only for nothing");
    Require(found.isEmpty() || hoped == found, "what is found is hoped for");
    const QString simple = SimplifyFilename(path);
    Require(SimplifyFilename(simple) == simple, "a simple path is as simple as can be");
}

void WriteAndRead(const QString& path, const QString& replacement, const QByteArray& content)
{
    const QString name = SanitizeFilename(path, QStringLiteral("_"));
    Require(name.size() <= path.size() && !name.contains(QLatin1String("..")), "one for one or two");
    for (const char unwanted : "/\\\"'`~|,?<>:;*^$#@ ")
        Require(unwanted == '\0' || !name.contains(QLatin1Char(unwanted)), "a name is harmless");
    if (replacement.size() < 3) SanitizeFilename(path.left(20), replacement);

    static const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("inner/") + name);
    try {
        TrySaveDataToFile(file, content);
        Require(ReadAllFile(file) == content, "a file holds what was written");
        Require(QFileInfo::exists(file), "a file is where it was written");
        SaveDataToFile(file, QByteArray());
        Require(ReadAllFile(file).isEmpty(), "a file holds what was written last");
    } catch (const FileException&) {
    }
    QDir(folder.path()).removeRecursively();
    QDir().mkpath(folder.path());
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    const QString base = input.Text();
    const QString path = input.Text();
    Convert(base, path);
    Find(base, path);
    if (input.Flag()) WriteAndRead(path, base, input.Rest());
    return 0;
}
