#include "reference/plugins/scene-file/DocumentFile.h"

#include "lumenta/foundation/Exceptions.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QtEndian>

#include <cerrno>
#include <cstring>

namespace Host {

namespace {

// Whoever turns line ends, ends files at SUB or drops the eighth bit is found out.
const QByteArray kMagic = QByteArrayLiteral("\x8fLUM\r\n\x1a\n");
constexpr int kNameSize = 4; ///< Of the magic, the part that survives most such treatment.
constexpr quint32 kVersion = 1;

constexpr int kVersionAt = 8;
constexpr int kLengthAt = 12;
constexpr int kChecksumAt = 20;
constexpr int kHeaderSize = 52;

FileException CannotOpen(const QString& fileName, const QIODevice& file)
{
    return {fileName, QStringLiteral("Can't open the file: ") + file.errorString()};
}

/// Of all but itself.
QByteArray ChecksumOf(const QByteArray& header, const QByteArray& body)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(header.constData(), kChecksumAt);
    hash.addData(body);
    return hash.result();
}

Flaw CutShort(quint64 nThere, quint64 nAnnounced)
{
    return {QStringLiteral("it is cut short: %1 of %2 bytes follow its header").arg(nThere).arg(nAnnounced)};
}

void CheckBeginning(const QByteArray& header)
{
    if (header.isEmpty()) throw Flaw{QStringLiteral("it is empty")};
    if (!header.startsWith(kMagic.left(kNameSize))) throw Flaw{QStringLiteral("it is no Lumenta document")};
    if (header.size() >= kMagic.size() && !header.startsWith(kMagic))
        throw Flaw{QStringLiteral("it is damaged, as if it had been transferred as a text")};
    if (header.size() < kHeaderSize)
        throw Flaw{
            QStringLiteral("it is cut short: %1 of the %2 bytes of its header").arg(header.size()).arg(kHeaderSize)};
}

void CheckVersion(const QByteArray& header)
{
    const auto version = qFromLittleEndian<quint32>(header.constData() + kVersionAt);
    if (version == 0) throw Flaw{QStringLiteral("it is damaged: there is no format 0")};
    if (version > kVersion)
        throw Flaw{QStringLiteral("it was written by a newer version (format %1; this program reads up to %2)")
                       .arg(version)
                       .arg(kVersion)};
}

/// How long the body is.
int CheckLength(const QByteArray& header, quint64 nThere)
{
    const auto length = qFromLittleEndian<quint64>(header.constData() + kLengthAt);
    if (nThere < length) throw CutShort(nThere, length);
    if (nThere > length) throw Flaw{QStringLiteral("it is damaged: %1 bytes follow its end").arg(nThere - length)};
    if (length > kLargestBody)
        throw Flaw{QStringLiteral("it is too large: this program reads %1 bytes at most").arg(kLargestBody)};
    return static_cast<int>(length);
}

QByteArray HeaderOf(const QByteArray& body)
{
    QByteArray header = kMagic.leftJustified(kHeaderSize, '\0');
    qToLittleEndian(kVersion, header.data() + kVersionAt);
    qToLittleEndian(static_cast<quint64>(body.size()), header.data() + kLengthAt);
    return header.replace(kChecksumAt, kHeaderSize - kChecksumAt, ChecksumOf(header, body));
}

} // namespace

bool IsDocumentFile(const QString& fileName)
{
    QFile file(fileName);
    return QFileInfo(fileName).isFile() && file.open(QIODevice::ReadOnly) && file.read(kMagic.size()) == kMagic;
}

QByteArray ReadDocumentFile(const QString& fileName)
{
    QFile file(fileName);
    if (!QFileInfo(fileName).isFile()) throw FileException(fileName, QStringLiteral("Can't open the file"));
    if (!file.open(QIODevice::ReadOnly)) throw CannotOpen(fileName, file);
    const QByteArray header = file.read(kHeaderSize);
    if (file.error() != QFileDevice::NoError) throw FileException(fileName, QStringLiteral("Can't read the file"));
    CheckBeginning(header);
    CheckVersion(header);
    const int length = CheckLength(header, static_cast<quint64>(file.size() - kHeaderSize));
    QByteArray body = file.read(length);
    if (file.error() != QFileDevice::NoError) throw FileException(fileName, QStringLiteral("Can't read the file"));
    if (body.size() != length) throw CutShort(static_cast<quint64>(body.size()), static_cast<quint64>(length));
    if (!header.endsWith(ChecksumOf(header, body)))
        throw Flaw{QStringLiteral("it is damaged: its checksum does not fit")};
    return body;
}

void WriteDocumentFile(const QString& fileName, const QByteArray& body)
{
    QSaveFile file(fileName);
    // QSaveFile doesn't notice where what its buffer still holds finds no room on the disk.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        throw CannotOpen(fileName, file);
    const auto refuse = [&](const QString& reason) {
        return FileException(fileName, QStringLiteral("Can't write the data: ") + reason);
    };
    const QByteArray header = HeaderOf(body);
    const bool isWritten = file.write(header) == header.size() && file.write(body) == body.size();
    // The toolkit has no words for a file that is cut short; the system has.
    if (!isWritten) throw refuse(QString::fromLocal8Bit(std::strerror(errno)));
    if (!file.commit()) throw refuse(file.errorString());
}

} // namespace Host
