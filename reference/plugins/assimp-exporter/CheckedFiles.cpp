#include "reference/plugins/assimp-exporter/CheckedFiles.h"

#include <QFile>

#include <assimp/IOStream.hpp>

#include <cerrno>
#include <cstring>
#include <memory>

namespace Host {

namespace {

class CheckedFile final : public Assimp::IOStream {
public:
    CheckedFile(const char* file, QString& failure)
        : m_file(QFile::decodeName(file))
        , m_failure(failure)
    {
    }
    ~CheckedFile() override
    {
        if (m_file.isOpen() && !m_file.flush()) Fail();
    }

    bool Open(const char* mode)
    {
        const bool writes = std::strchr(mode, 'w') != nullptr;
        const bool isOpen = m_file.open(writes ? QIODevice::ReadWrite | QIODevice::Truncate : QIODevice::ReadOnly);
        if (!isOpen && writes) Fail();
        return isOpen;
    }

    std::size_t Read(void* buffer, std::size_t size, std::size_t count) override
    {
        const qint64 read = size > 0 ? m_file.read(static_cast<char*>(buffer), Bytes(size, count)) : 0;
        return read > 0 ? static_cast<std::size_t>(read) / size : 0;
    }
    std::size_t Write(const void* buffer, std::size_t size, std::size_t count) override
    {
        if (m_file.write(static_cast<const char*>(buffer), Bytes(size, count)) == Bytes(size, count)) return count;
        Fail();
        return 0;
    }
    aiReturn Seek(std::size_t offset, aiOrigin origin) override
    {
        const qint64 base = origin == aiOrigin_SET ? 0 : origin == aiOrigin_CUR ? m_file.pos() : m_file.size();
        return m_file.seek(base + static_cast<qint64>(offset)) ? aiReturn_SUCCESS : aiReturn_FAILURE;
    }
    std::size_t Tell() const override { return static_cast<std::size_t>(m_file.pos()); }
    std::size_t FileSize() const override { return static_cast<std::size_t>(m_file.size()); }
    void Flush() override
    {
        if (!m_file.flush()) Fail();
    }

private:
    static qint64 Bytes(std::size_t size, std::size_t count)
    {
        return static_cast<qint64>(size) * static_cast<qint64>(count);
    }
    void Fail()
    {
        if (m_failure.isEmpty())
            m_failure = errno != 0 ? QString::fromLocal8Bit(std::strerror(errno)) : m_file.errorString();
    }

    QFile m_file;
    QString& m_failure;
};

} // namespace

bool CheckedFiles::Exists(const char* file) const
{
    return QFile::exists(QFile::decodeName(file));
}

Assimp::IOStream* CheckedFiles::Open(const char* file, const char* mode)
{
    auto stream = std::make_unique<CheckedFile>(file, m_strFailure);
    return stream->Open(mode) ? stream.release() : nullptr;
}

void CheckedFiles::Close(Assimp::IOStream* pStream)
{
    delete pStream;
}

} // namespace Host
