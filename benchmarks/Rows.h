#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

/// What is measured: the rows of one table. Absolute times hold on one machine
/// on one day; so each row measures several ways to one result side by side,
/// and says what ratio of theirs is wanted.
namespace Bench {

// Ways, in the order of the table's columns.
inline const std::string kOurs = "ours";
inline const std::string kNaive = "naive";      ///< The plain loop, compiled with -O2.
inline const std::string kNaiveO3 = "naive-O3"; ///< The same, compiled with -O3.
inline const std::string kGlm = "glm";
inline const std::string kEigen = "eigen";
inline const std::string kEmbree = "embree";            ///< A tree of triangles that stands ready.
inline const std::string kEmbreeBuild = "embree+build"; ///< One that is made for one ray.
inline const std::string kTouch = "touch";              ///< The same memory read and written, nothing computed.

/// One way to do what a row measures, for all its elements, once a call.
struct Way {
    std::string name;
    std::function<void()> run;
};

/// What our time should be, beside another time of the same run.
struct Target {
    std::string reference; ///< A way of the same row; or a row, then its time for one element; or nothing: nanoseconds.
    bool isSpeedUp;        ///< Whether the reference over ours shall be at least `bound`; else ours over it at most.
    double bound;
};

inline Target AtLeast(double times, const std::string& reference)
{
    return {reference, true, times};
}
inline Target AtMost(double times, const std::string& reference)
{
    return {reference, false, times};
}
inline Target AtMostNanoseconds(double bound)
{
    return {{}, false, bound};
}

/// The ways of a row, with their data, which lives as long as they do.
struct Contest {
    std::size_t count; ///< Of the elements that each works through in a call.
    std::vector<Way> ways;
};

struct Row {
    std::string name;    ///< What stands before its first slash is measured together, and freed together.
    std::string element; ///< What times are given for one of.
    bool isQuick;        ///< Whether it belongs to a quick run, too.
    std::vector<Target> targets;

    /// Makes the data and sees that the ways agree.
    std::function<Contest()> prepare;
};

void AddSkinRows(std::vector<Row>& rows);
void AddMatrixRows(std::vector<Row>& rows);
void AddRayRows(std::vector<Row>& rows);
void AddTreeRows(std::vector<Row>& rows);
void AddModelRows(std::vector<Row>& rows); ///< Of models whose files are there.

/// \throws std::runtime_error ways disagree about `what`, so their times are not comparable
inline void Require(bool agree, const std::string& what)
{
    if (!agree) throw std::runtime_error("not the same " + what);
}

/// Whether two lists of records of floats hold the same bits; any NaN is like any other.
template <typename List>
bool SameBits(const List& a, const List& b)
{
    const auto* const x = reinterpret_cast<const float*>(a.data());
    const auto* const y = reinterpret_cast<const float*>(b.data());
    const std::size_t count = a.size() * sizeof(*a.data()) / sizeof(float);
    return a.size() == b.size() && std::equal(x, x + count, y, [](float p, float q) {
               return std::memcmp(&p, &q, sizeof p) == 0 || (std::isnan(p) && std::isnan(q));
           });
}

/// Runs ours and the plain ways, each from the same start, and compares the bits of their results.
template <typename Reset, typename Result>
void RequireSame(const std::vector<Way>& ways, const Reset& reset, const Result& result)
{
    const auto resultOf = [&](const Way& way) {
        reset();
        way.run();
        return result();
    };
    const auto ours = resultOf(ways[0]);
    for (const Way& way : ways)
        if (way.name == kNaive || way.name == kNaiveO3) Require(SameBits(ours, resultOf(way)), "bits: " + way.name);
}

} // namespace Bench
