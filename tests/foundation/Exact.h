#pragma once

#include <QString>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

// QCOMPARE forgives floats their last bits. The tests of this library do not.

/// The floats of a record, so that equal texts mean equal values: nine digits,
/// "-0" apart from "0", and "nan" equal to itself.
template <typename Record>
QString Floats(const Record& record)
{
    static_assert(std::is_trivially_copyable<Record>::value && sizeof(Record) % sizeof(float) == 0);
    float values[sizeof(Record) / sizeof(float)];
    std::memcpy(values, &record, sizeof record);
    QStringList texts;
    for (const float value : values) {
        const bool minusZero = value == 0.0f && std::signbit(value);
        texts << (minusZero ? QStringLiteral("-0") : QString::number(double(value), 'g', 9));
    }
    return texts.join(QStringLiteral(", "));
}

/// The largest difference between two records of floats; infinite where one
/// holds something that is not a number.
template <typename Record>
float Distance(const Record& a, const Record& b)
{
    constexpr std::size_t count = sizeof(Record) / sizeof(float);
    float x[count];
    float y[count];
    std::memcpy(x, &a, sizeof a);
    std::memcpy(y, &b, sizeof b);
    float worst = 0.0f;
    for (std::size_t i = 0; i < count; ++i) {
        const float distance = std::fabs(x[i] - y[i]);
        worst = std::isnan(distance) ? std::numeric_limits<float>::infinity() : std::max(worst, distance);
    }
    return worst;
}
