#include "reference/plugins/embree-renderer/SampleSequence.h"

namespace Host {

namespace {

std::uint32_t ReversedBits(std::uint32_t x)
{
    x = ((x >> 1) & 0x55555555u) | ((x & 0x55555555u) << 1);
    x = ((x >> 2) & 0x33333333u) | ((x & 0x33333333u) << 2);
    x = ((x >> 4) & 0x0f0f0f0fu) | ((x & 0x0f0f0f0fu) << 4);
    x = ((x >> 8) & 0x00ff00ffu) | ((x & 0x00ff00ffu) << 8);
    return (x >> 16) | (x << 16);
}

/// Each bit is flipped or not by a hash of the bits below it (Laine, Karras):
/// on reversed bits, a random choice at each node of the binary tree.
std::uint32_t Permuted(std::uint32_t x, std::uint32_t seed)
{
    x += seed;
    x ^= x * 0x6c50b47cu;
    x ^= x * 0xb82f1e52u;
    x ^= x * 0xc7afe638u;
    x ^= x * 0x8d22f6e6u;
    return x;
}

/// The bits of the second Sobol dimension, lowest digit first: Pascal's
/// triangle modulo 2 times the bits of the index.
std::uint32_t TimesPascal(std::uint32_t x)
{
    x ^= (x >> 16) & 0x0000ffffu;
    x ^= (x >> 8) & 0x00ff00ffu;
    x ^= (x >> 4) & 0x0f0f0f0fu;
    x ^= (x >> 2) & 0x33333333u;
    x ^= (x >> 1) & 0x55555555u;
    return x;
}

float UnitFloat(std::uint32_t bits)
{
    return static_cast<float>(bits >> 8) * 0x1p-24f;
}

} // namespace

std::uint32_t Hash(std::uint32_t value)
{
    value ^= value >> 16;
    value *= 0x7feb352du;
    value ^= value >> 15;
    value *= 0x846ca68bu;
    return value ^ (value >> 16);
}

TVec2<float> SampleSequence::At(std::uint32_t index) const
{
    const std::uint32_t shuffled = ReversedBits(Permuted(ReversedBits(index), m_seed));
    return {UnitFloat(ReversedBits(Permuted(shuffled, Hash(m_seed + 1)))),
            UnitFloat(ReversedBits(Permuted(TimesPascal(shuffled), Hash(m_seed + 2))))};
}

} // namespace Host
