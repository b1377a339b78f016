#pragma once

// Private to the exporter: files for Assimp that remember what went wrong.

#include <QString>

#include <assimp/IOSystem.hpp>

namespace Host {

/// Assimp's exporters don't look whether what they write arrives; so a full disk
/// would end in files that are cut off. Here the first failure is kept.
class CheckedFiles final : public Assimp::IOSystem {
public:
    /// \param strFailure stays empty while all goes well; outlives the system
    explicit CheckedFiles(QString& strFailure)
        : m_strFailure(strFailure)
    {
    }

    bool Exists(const char* file) const override;
    char getOsSeparator() const override { return '/'; }
    Assimp::IOStream* Open(const char* file, const char* mode) override;
    void Close(Assimp::IOStream* pStream) override;

private:
    QString& m_strFailure;
};

} // namespace Host
