#pragma once

#include "lumenta/foundation/Vector.h"

#include <cstdint>

namespace Host {

/// Scatters the bits of a number.
std::uint32_t Hash(std::uint32_t value);

/// Well-spread points of the unit square, without state: the same index and
/// seed give the same point, on any thread.
///
/// The first two dimensions of Sobol's sequence, shuffled and scrambled
/// (Burley, "Practical Hash-based Owen Scrambling", 2020): any prefix of the
/// sequence is stratified, and different seeds are independent.
class SampleSequence {
public:
    explicit SampleSequence(std::uint32_t seed)
        : m_seed(seed)
    {
    }

    /// Both components in [0, 1).
    TVec2<float> At(std::uint32_t index) const;

private:
    std::uint32_t m_seed;
};

} // namespace Host
