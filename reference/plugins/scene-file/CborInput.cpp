#include "reference/plugins/scene-file/CborInput.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Host {

namespace {

constexpr int kLongestShown = 40;
constexpr quint64 kAnInt = 0x7fffffff;

QString FieldText(const char* pattern, const QString& name)
{
    return QString::fromLatin1(pattern).arg(name.left(kLongestShown));
}

/// Which of the fields it is; throws where it is none, or was there before.
std::size_t Place(std::initializer_list<CborInput::Field> fields, const QString& name, const std::vector<bool>& isRead)
{
    const auto* const found = std::find_if(
        fields.begin(), fields.end(), [&](const CborInput::Field& field) { return name == QLatin1String(field.name); });
    if (found == fields.end()) throw Flaw{FieldText("there is an unknown field '%1'", name)};
    const auto place = static_cast<std::size_t>(found - fields.begin());
    if (isRead[place]) throw Flaw{FieldText("there are two fields '%1'", name)};
    return place;
}

} // namespace

CborInput::CborInput(const QByteArray& data)
    : m_size(data.size())
    , m_reader(data)
{
}

void CborInput::Expect(bool isThere, const char* what)
{
    if (m_reader.lastError() != QCborError::NoError)
        throw Flaw{QStringLiteral("this is no CBOR: %1").arg(m_reader.lastError().toString())};
    if (!isThere) throw Flaw{QStringLiteral("expected %1").arg(QLatin1String(what))};
}

void CborInput::Enter()
{
    if (!m_reader.isLengthKnown()) throw Flaw{QStringLiteral("its length is not told in advance")};
    const bool isEntered = m_reader.enterContainer();
    Expect(isEntered, "a list");
}

void CborInput::Leave()
{
    const bool isLeft = m_reader.leaveContainer();
    Expect(isLeft, "an end");
}

void CborInput::Advance()
{
    const bool isNext = m_reader.next();
    Expect(isNext, "an end");
}

void CborInput::ReadMap(std::initializer_list<Field> fields)
{
    Expect(m_reader.isMap(), "a map");
    Enter();
    std::vector<bool> isRead(fields.size());
    while (m_reader.hasNext()) {
        const QString name = ReadUtf8();
        const std::size_t place = Place(fields, name, isRead);
        isRead[place] = true;
        try {
            fields.begin()[place].read();
        } catch (Flaw& flaw) {
            flaw.place.prepend(QLatin1Char('.') + name);
            throw;
        }
    }
    Leave();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Field& field = fields.begin()[i];
        if (!isRead[i] && !field.isOptional) throw Flaw{FieldText("there is no field '%1'", QLatin1String(field.name))};
    }
}

void CborInput::ReadArray(const std::function<void()>& readItem)
{
    Expect(m_reader.isArray(), "a list");
    Enter();
    for (int i = 0; m_reader.hasNext(); ++i) {
        try {
            readItem();
        } catch (Flaw& flaw) {
            flaw.place.prepend(QStringLiteral("[%1]").arg(i));
            throw;
        }
    }
    Leave();
}

bool CborInput::ReadBool()
{
    Expect(m_reader.isBool(), "true or false");
    const bool value = m_reader.toBool();
    Advance();
    return value;
}

float CborInput::ReadFloat()
{
    const bool isNumber = m_reader.isFloat16() || m_reader.isFloat() || m_reader.isDouble();
    Expect(isNumber, "a floating-point number");
    if (m_reader.isFloat()) { // as it is, bit by bit
        const float value = m_reader.toFloat();
        Advance();
        return value;
    }
    const double value = m_reader.isDouble() ? m_reader.toDouble() : static_cast<double>(float(m_reader.toFloat16()));
    if (std::isfinite(value) && std::fabs(value) > static_cast<double>(std::numeric_limits<float>::max()))
        throw Flaw{QStringLiteral("expected a number of single precision")};
    Advance();
    return static_cast<float>(value);
}

qint64 CborInput::ReadInteger(qint64 least, qint64 most)
{
    Expect(m_reader.isInteger(), "an integer");
    // A negative one comes as what it is below 0, which may be 2^64 and wrap around.
    const bool isNegative = m_reader.isNegativeInteger();
    const quint64 size =
        isNegative ? static_cast<quint64>(m_reader.toNegativeInteger()) - 1 : m_reader.toUnsignedInteger();
    const auto value = isNegative ? -1 - static_cast<qint64>(size & kAnInt) : static_cast<qint64>(size & kAnInt);
    if (size > kAnInt || value < least || value > most)
        throw Flaw{QStringLiteral("expected an integer from %1 to %2").arg(least).arg(most)};
    Advance();
    return value;
}

/// Of the string ahead.
std::size_t CborInput::StringSize()
{
    if (!m_reader.isLengthKnown()) throw Flaw{QStringLiteral("its length is not told in advance")};
    const qsizetype size = m_reader.currentStringChunkSize();
    Expect(size >= 0, "a string");
    if (size > m_size - m_reader.currentOffset()) throw Flaw{QStringLiteral("it is longer than the document")};
    return static_cast<std::size_t>(size);
}

QString CborInput::ReadUtf8()
{
    Expect(m_reader.isString(), "a text");
    StringSize();
    QString text;
    auto part = m_reader.readString();
    for (; part.status == QCborStreamReader::Ok; part = m_reader.readString())
        text += part.data;
    Expect(part.status == QCborStreamReader::EndOfString, "a text in UTF-8");
    return text;
}

QString CborInput::ReadText()
{
    if (!m_reader.isByteArray()) return ReadUtf8();
    const QByteArray bytes = ReadBytes();
    if (bytes.size() % 2 != 0) throw Flaw{WrongSize(static_cast<std::size_t>(bytes.size()))};
    QString text(bytes.size() / 2, Qt::Uninitialized);
    qFromLittleEndian<quint16>(bytes.constData(), text.size(), text.data());
    return text;
}

QByteArray CborInput::ReadBytes()
{
    Expect(m_reader.isByteArray(), "a byte string");
    QByteArray bytes(static_cast<int>(StringSize()), Qt::Uninitialized);
    ReadChunk(bytes.data(), static_cast<std::size_t>(bytes.size()));
    return bytes;
}

std::size_t CborInput::EnterNumbers(QCborTag tag)
{
    Expect(m_reader.isTag() && m_reader.toTag() == tag, "an array of such numbers");
    Advance();
    Expect(m_reader.isByteArray(), "a byte string");
    return StringSize();
}

void CborInput::ReadNumbers(void* pNumbers, std::size_t nBytes)
{
    ReadChunk(static_cast<char*>(pNumbers), nBytes);
    qFromLittleEndian<quint32>(pNumbers, static_cast<qsizetype>(nBytes / 4), pNumbers);
}

void CborInput::ReadChunk(char* pBytes, std::size_t nBytes)
{
    const auto part = m_reader.readStringChunk(pBytes, static_cast<qsizetype>(nBytes));
    const bool isRead = part.status == QCborStreamReader::Ok && part.data == static_cast<qsizetype>(nBytes);
    Expect(isRead || (nBytes == 0 && part.status == QCborStreamReader::EndOfString), "a byte string");
    if (part.status == QCborStreamReader::EndOfString) return;
    Expect(m_reader.readStringChunk(pBytes, 0).status == QCborStreamReader::EndOfString, "a byte string");
}

QString CborInput::WrongSize(std::size_t nBytes)
{
    return QStringLiteral("%1 bytes are no whole number of these").arg(nBytes);
}

void CborInput::End()
{
    if (m_reader.currentOffset() != m_size) throw Flaw{QStringLiteral("it holds more than a document")};
}

} // namespace Host
