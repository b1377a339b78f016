#pragma once

// Private to the exporter: files that appear together or not at all.

#include <QTemporaryDir>

namespace Host {

/// A hidden folder beside a file, for that file and what belongs to it. Ends with
/// this object, with all that is still in it.
class StagedFiles {
public:
    /// \throws Exception the folder of the file is missing or can't be written to
    explicit StagedFiles(const QString& strFileName);

    /// Where the file is to be written meanwhile.
    QString GetFileName() const;

    QString PathOf(const QString& strName) const { return m_folder.filePath(strName); }

    /// Moves all files into place, the file itself last.
    /// \throws Exception one can't be moved; then all is as it was, or the text tells where that lies
    void Publish();

private:
    const QString m_strFileName;
    QTemporaryDir m_folder;
};

} // namespace Host
