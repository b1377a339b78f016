#pragma once

#include "benchmarks/Rows.h"

#include <map>

namespace Bench {

/// The time of one element, over all repetitions.
struct Figure {
    double nanoseconds = 0.0; ///< The median.
    double spread = 0.0;      ///< Between the quartiles, as a part of the median.
};

/// By name of the row, then of the way.
using Figures = std::map<std::string, std::map<std::string, Figure>>;

/// Times the ways of `rows` in turns. Their data is made for it and freed after it.
/// \throws std::runtime_error two ways of a row disagree; the text names the row
Figures Measure(const std::vector<const Row*>& rows);

} // namespace Bench
