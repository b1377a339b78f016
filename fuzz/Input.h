#pragma once

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

/// What each fuzzer defines: works through one input, which may be any bytes,
/// and ends the program where something is not as it should be.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Once, before the first of them.
extern "C" int LLVMFuzzerInitialize(int* pCount, char*** pArguments);

namespace Fuzz {

/// What must hold for every input.
inline void Require(bool holds, const char* what)
{
    if (holds) return;
    std::fprintf(stderr, "REQUIRED: %s\n", what);
    std::abort();
}

/// Values out of bytes. Where these end, zeros follow. A copy starts where the
/// original is.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : m_next(data)
        , m_end(data + size)
    {
    }

    bool IsEmpty() const { return m_next == m_end; }

    template <typename Value>
    Value Raw()
    {
        Value value{};
        const std::size_t size = std::min(sizeof value, static_cast<std::size_t>(m_end - m_next));
        std::memcpy(&value, m_next, size);
        m_next += size;
        return value;
    }

    std::uint8_t Byte() { return Raw<std::uint8_t>(); }
    bool Flag() { return Byte() % 2 != 0; }
    std::uint32_t Below(std::uint32_t limit) { return Byte() % limit; } ///< \pre limit <= 256

    /// Any bits, or, more often, a number of a coarse grid, from one byte: there
    /// boxes touch, corners lie in one line and keys come together.
    float Float()
    {
        const int byte = Byte();
        return byte < 32 ? Raw<float>() : static_cast<float>(byte - 144) * 0.125f;
    }

    /// Of any characters, halves of surrogate pairs among them; those of one
    /// byte, mostly. It says itself how long it is.
    QString Text()
    {
        const bool isWide = Flag();
        QString text;
        for (int size = Byte(); size > 0 && !IsEmpty(); --size)
            text += isWide ? QChar(Raw<std::uint16_t>()) : QChar(Byte());
        return text;
    }

    /// All that is left.
    QByteArray Rest()
    {
        const QByteArray rest(reinterpret_cast<const char*>(m_next), static_cast<int>(m_end - m_next));
        m_next = m_end;
        return rest;
    }

private:
    const std::uint8_t* m_next;
    const std::uint8_t* const m_end;
};

} // namespace Fuzz
