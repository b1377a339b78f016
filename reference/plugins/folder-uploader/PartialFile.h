#pragma once

#include <QFile>
#include <QString>

namespace Host {

/// A file on its way into a folder: hidden and under a name of its own until it
/// is complete. One that never was ends with this object, without a trace.
///
/// \throws Exception throughout, with a text for a person that names the file
class PartialFile {
public:
    /// \param strFolder exists
    explicit PartialFile(const QString& strFolder);
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;
    ~PartialFile();

    void Write(const QByteArray& data);

    /// Complete: gives it the name, in the place of a file that has it.
    void Replace(const QString& strFileName);

    /// Complete: gives it the name, or where something has it "name (2)", "name
    /// (3)" and so on. Nobody else's file is replaced, even if it comes at the
    /// same moment.
    /// \return the name that it got
    QString Add(const QString& strFileName);

private:
    void Close();

    QFile m_file;
};

} // namespace Host
