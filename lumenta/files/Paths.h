#pragma once

#include "lumenta/Export.h"

#include <QString>

/// \file
/// References to files, as documents keep them: relative to the document's
/// folder where the file lies in it, with either kind of separator, since a
/// document is written on one system and opened on another.
///
/// A path has a style, by votes:
///
/// | where it | votes |
/// |---|---|
/// | begins with "/" | 3 for Unix |
/// | begins with anything else | 1 for Windows |
/// | begins with two backslashes, as shares do | 2 for Windows |
/// | has more than three characters, a drive first (`C:\` or `C:/`) | 3 for Windows |
/// | has more than three characters, no drive first | 1 for Unix |
/// | holds a "/" | 1 for Unix |
/// | holds a backslash | 1 for Windows |
///
/// A tie, as for `a/b`, `docs` and nothing at all, is Windows-style, which documents
/// depend on. The style decides about separators alone: what is absolute, the system
/// says. On this one `C:\x` and `\\server\x` are relative.
///
/// A path that starts with a colon names a resource of the program.
///
/// Mind the order: two functions take the base folder first, two last. All are
/// reentrant; none throws. "Exists" holds for folders, too, and not for a link
/// that leads nowhere. A relative base counts from the current folder.

/// How a document in `baseDir` refers to `path`, with separators in the style of
/// `baseDir`; "." for `baseDir` itself.
///
/// What lies outside comes back as it was passed, not made absolute, if
/// the base is Unix-style; absolute and with backslashes if it is Windows-style.
/// Without a base, and for what starts with ":/", `path` comes back; an empty
/// path gives an empty one.
LUMENTA_EXPORT QString GetRelativePath(const QString& baseDir, const QString& path);

/// Every backslash becomes "/", the separator of this platform; also one that is
/// part of a name.
LUMENTA_EXPORT QString ForceNativeSeparators(const QString& path);

/// Where a reference of a document in `baseDir` points, with "/" throughout.
///
/// Dots of `path` are not resolved, those of a base are. Without a base, and for
/// a resource, only separators change; so they do for an absolute path. An empty
/// path gives an empty one.
LUMENTA_EXPORT QString BuildFullPath(const QString& baseDir, const QString& path);

/// `name` without what file systems and shells take amiss: "..", then / \ " ' ` ~
/// | , ? < > : ; * ^ $ # @ and blanks become `replacement`.
///
/// One after the other: what a replacement brings in is replaced by a later step.
/// Of three dots two are replaced. Length and device names are not looked at.
LUMENTA_EXPORT QString SanitizeFilename(const QString& name, const QString& replacement);

/// The file that a document in `baseDir` refers to: where the reference points,
/// or else beside the document, under its bare name, where both were moved
/// together. Canonical; empty if it is in neither place.
LUMENTA_EXPORT QString TryToFindFilePessimistic(const QString& path, const QString& baseDir);

/// The same, but where the reference points if the file is in neither place: a
/// path that does not exist. Empty only for an empty path.
LUMENTA_EXPORT QString TryToFindFileOptimistic(const QString& path, const QString& baseDir);

/// The canonical path, without links, "." and "..", of what exists; anything else
/// comes back unchanged.
LUMENTA_EXPORT QString SimplifyFilename(const QString& path);
