#pragma once

#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

// QCOMPARE forgives floats their last bits. The tests of this library do not:
// they compare texts that are equal only where the values are.

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

template <typename Record>
std::vector<float> ValuesOf(const Record& record)
{
    static_assert(std::is_trivially_copyable<Record>::value && sizeof(Record) % sizeof(float) == 0);
    // NOLINTNEXTLINE(bugprone-sizeof-expression): a record may be one float
    std::vector<float> values(sizeof(Record) / sizeof(float));
    std::memcpy(values.data(), &record, sizeof record);
    return values;
}

/// The floats of a record: nine digits, "-0" apart from "0", "nan" like "nan".
template <typename Record>
QString Floats(const Record& record, bool rounded = false)
{
    QStringList texts;
    for (const float value : ValuesOf(record)) {
        const double shown = rounded ? std::round(double(value) * 1e5) / 1e5 + 0.0 : double(value);
        texts << (shown == 0.0 && std::signbit(shown) ? QStringLiteral("-0") : QString::number(shown, 'g', 9));
    }
    return texts.join(QStringLiteral(", "));
}

/// The same to five decimals, for what went through a sine or a square root.
template <typename Record>
QString Rounded(const Record& record) { return Floats(record, true); }

/// A table of what was found and what should have been.
inline void AnswerColumns()
{
    QTest::addColumn<QString>("found");
    QTest::addColumn<QString>("expected");
}

inline void Row(const char* name, const QString& found, const QString& expected)
{
    QTest::newRow(name) << found << expected;
}

inline void CompareAnswer()
{
    QFETCH(QString, found);
    QTEST(found, "expected");
}
