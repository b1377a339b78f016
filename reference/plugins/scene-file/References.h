#pragma once

#include <QString>

namespace Host {

/// A file that a document refers to, before the document goes to another folder.
struct FileReference {
    QString text; ///< What the document says there.
    bool isThere; ///< Whether the file was found.
};

/// Follows `text`, a reference from `oldFolder`, to its file, and makes of it a
/// reference from `newFolder`: relative where the file lies in that folder,
/// absolute otherwise. What has no place on this system, like a path that
/// begins with a drive, or a relative one while there is no old folder, stays as
/// it is where no file is found.
/// \param newFolder canonical
FileReference Rebased(const QString& text, const QString& oldFolder, const QString& newFolder);

/// The folder of a document; empty where it has no file name.
QString FolderOf(const QString& fileName);

} // namespace Host
