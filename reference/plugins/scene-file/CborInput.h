#pragma once

#include "reference/plugins/scene-file/DocumentFile.h"

#include <QCborStreamReader>
#include <QtEndian>

#include <array>
#include <functional>
#include <initializer_list>
#include <vector>

namespace Host {

// Arrays of numbers, little-endian, as RFC 8746 tags them.
constexpr QCborTag kWordArray{70};
constexpr QCborTag kFloatArray{85};

/// Reads what it is told to expect of data in CBOR, item by item, and throws a
/// Flaw with its place where something else stands there. Data may come from
/// strangers: nothing is allocated by a length that is only claimed, and
/// containers are entered only where one is expected.
class CborInput {
public:
    struct Field {
        const char* name;
        std::function<void()> read;
        bool isOptional = false;
    };

    explicit CborInput(const QByteArray& data);

    /// Fields come in any order, each once; those that are not optional must be
    /// there, and no others.
    void ReadMap(std::initializer_list<Field> fields);

    /// Calls readItem() for each.
    void ReadArray(const std::function<void()>& readItem);

    bool ReadBool();
    /// Of any width: programs that read and write CBOR choose it as they like.
    float ReadFloat();
    qint64 ReadInteger(qint64 least, qint64 most);
    std::size_t ReadIndex() { return static_cast<std::size_t>(ReadInteger(0, 0x7fffffff)); }

    /// A text, or its UTF-16 as bytes where it is none that UTF-8 can hold.
    QString ReadText();

    QByteArray ReadBytes();

    /// All of an array of 32-bit numbers, `Record` being made of such.
    template <typename Record>
    std::vector<Record> ReadRecords(QCborTag tag)
    {
        static_assert(std::is_trivially_copyable<Record>::value && sizeof(Record) % 4 == 0);
        const std::size_t nBytes = EnterNumbers(tag);
        if (nBytes % sizeof(Record) != 0) throw Flaw{WrongSize(nBytes)};
        std::vector<Record> records(nBytes / sizeof(Record));
        ReadNumbers(records.data(), nBytes);
        return records;
    }

    /// The same into one record.
    template <typename Record>
    void ReadRecord(Record& record)
    {
        static_assert(std::is_trivially_copyable<Record>::value && sizeof(Record) % 4 == 0);
        const std::size_t nBytes = EnterNumbers(kFloatArray);
        if (nBytes != sizeof(Record)) throw Flaw{WrongSize(nBytes)};
        ReadNumbers(&record, nBytes);
    }

    /// Nothing may follow.
    void End();

private:
    void Expect(bool isThere, const char* what);
    void Enter();
    void Leave();
    void Advance();
    std::size_t StringSize();
    QString ReadUtf8();
    std::size_t EnterNumbers(QCborTag tag);
    void ReadNumbers(void* pNumbers, std::size_t nBytes);
    void ReadChunk(char* pBytes, std::size_t nBytes);
    static QString WrongSize(std::size_t nBytes);

    const qint64 m_size;
    QCborStreamReader m_reader;
};

} // namespace Host
