#pragma once

#include <QString>

namespace Host {

/// A file that is referred to, before the reference goes to another folder.
struct FileReference {
    QString text; ///< What is to stand there.
    QString file; ///< Its canonical path; empty where the file was not found.
};

/// Follows `text`, a reference from `oldFolder`, to its file, and makes of it a
/// reference from `newFolder`: relative where the file lies in that folder,
/// absolute otherwise. What has no place on this system, like a path that
/// begins with a drive, or a relative one while there is no old folder, stays as
/// it is where no file is found.
/// \param newFolder canonical; empty for none, as of a document without a file
FileReference Rebased(const QString& text, const QString& oldFolder, const QString& newFolder);

/// The folder of a document, canonical where it exists; empty where the document
/// has no file name.
QString FolderOf(const QString& fileName);

} // namespace Host
