#pragma once

#include "benchmarks/Workloads.h"

#include <QString>

#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

/// The workload: every function of the public headers that answers with numbers,
/// on data that is the same wherever it is made.
namespace Trials {

using Workloads::Random;
using Vec3 = TVec3<float>;

/// What a function answered, as one number (FNV-1a, 64 bits). Each NaN is like any
/// other; 0 and -0 differ.
class Sum {
public:
    void Add(std::uint64_t bits);
    void Add(int value) { Add(static_cast<std::uint64_t>(value)); }
    void Add(bool value) { Add(std::uint64_t{value}); }
    void Add(float value);
    void Add(double value);
    void Add(const QString& text);

    /// A record of floats.
    template <typename Record, typename = std::enable_if_t<std::is_class_v<Record>>>
    void Add(const Record& record)
    {
        static_assert(std::is_trivially_copyable_v<Record> && sizeof(Record) % sizeof(float) == 0);
        float values[sizeof(Record) / sizeof(float)];
        std::memcpy(values, &record, sizeof record);
        for (const float value : values)
            Add(value);
    }

    std::uint64_t Get() const { return m_sum; }

private:
    std::uint64_t m_sum = UINT64_C(0xcbf29ce484222325);
};

/// One function, or a few that belong together.
struct Trial {
    const char* column;   ///< Of the table.
    const char* function; ///< Seeds the numbers, so that no trial depends on others.
    void (*run)(Random& random, Sum& sum);
};

// By what they go through. The first lists use nothing but sums, products,
// quotients and square roots; the last one the C library's other functions.
std::vector<Trial> Values();
std::vector<Trial> Texts();
std::vector<Trial> Sizes();
std::vector<Trial> Rays();
std::vector<Trial> Skins();
std::vector<Trial> Views();

// Data. None of it goes through the C library, but for square roots.

/// Mostly between -10 and 10; also of a grid, of any size, of any bits.
float AnyFloat(Random& random);
Vec3 AnyVector(Random& random);
int AnyInt(Random& random);

/// Three times AnyFloat() with whole and half right angles among them.
Vec3 AnyAngles(Random& random);

/// Turned, scaled from 0.5 to 2, and moved.
Matrix TameTransform(Random& random);

/// The same mostly; now and then singular, far away, or with odd elements.
Matrix AnyTransform(Random& random);

} // namespace Trials
