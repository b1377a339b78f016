#pragma once

// Private to the kernels: what they need beyond Float4.h, and floats eight side by
// side.
//
// Where the processor has registers of eight, a Float8 is one of them. Elsewhere
// it is a pair of fours: GCC takes an eight apart badly.
//
// Everything has internal linkage: this header is compiled for several
// processors, and no two of them may ever share a compiled copy.

#include "lumenta/foundation/Float4.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

#define LUMENTA_LANES_INLINE __attribute__((always_inline)) inline

namespace {

// ---------------------------------------------------------------------- four

using Mask4 = std::int32_t __attribute__((vector_size(16)));

/// A vector behind which nothing may be read.
LUMENTA_LANES_INLINE Float4 Load3(const TVec3<float>& source)
{
    return Float4{source.x, source.y, source.z, 0.0f};
}

/// Each root is rounded as std::sqrt() does.
LUMENTA_LANES_INLINE Float4 Sqrt4(Float4 v)
{
#if defined(__SSE2__)
    return reinterpret_cast<Float4>(_mm_sqrt_ps(reinterpret_cast<__m128>(v)));
#else
    return Float4{__builtin_sqrtf(v[0]), __builtin_sqrtf(v[1]), __builtin_sqrtf(v[2]), __builtin_sqrtf(v[3])};
#endif
}

LUMENTA_LANES_INLINE Float4 Abs4(Float4 v)
{
    return reinterpret_cast<Float4>(reinterpret_cast<Mask4>(v) & 0x7fffffff);
}

LUMENTA_LANES_INLINE Float4 OneForZero4(Float4 v)
{
    return v == 0.0f ? Splat4(1.0f) : v;
}

/// Bit i for lane i.
LUMENTA_LANES_INLINE unsigned Bits4(Mask4 mask)
{
#if defined(__SSE2__)
    return static_cast<unsigned>(_mm_movemask_ps(reinterpret_cast<__m128>(mask)));
#else
    return (mask[0] & 1u) | (mask[1] & 2u) | (mask[2] & 4u) | (mask[3] & 8u);
#endif
}

// --------------------------------------------------------------------- eight

#if defined(__AVX2__)

using Float8 = float __attribute__((vector_size(32)));
using Mask8 = std::int32_t __attribute__((vector_size(32)));

LUMENTA_LANES_INLINE Float8 Splat8(float value)
{
    return Float8{value, value, value, value, value, value, value, value};
}

LUMENTA_LANES_INLINE Float8 Load8(const float* source)
{
    Float8 lanes;
    std::memcpy(&lanes, source, sizeof lanes);
    return lanes;
}

LUMENTA_LANES_INLINE void Store8(float* destination, Float8 lanes)
{
    std::memcpy(destination, &lanes, sizeof lanes);
}

LUMENTA_LANES_INLINE Float8 Join(Float4 low, Float4 high)
{
    // As an intrinsic, because GCC takes its second half from memory only then.
    return reinterpret_cast<Float8>(
        _mm256_insertf128_ps(_mm256_castps128_ps256(reinterpret_cast<__m128>(low)), reinterpret_cast<__m128>(high), 1));
}

/// Four floats in both halves.
LUMENTA_LANES_INLINE Float8 LoadTwice(const float* source)
{
    return reinterpret_cast<Float8>(_mm256_broadcast_ps(reinterpret_cast<const __m128*>(source)));
}

LUMENTA_LANES_INLINE Float4 Low(Float8 v)
{
    return __builtin_shufflevector(v, v, 0, 1, 2, 3);
}

LUMENTA_LANES_INLINE Float4 High(Float8 v)
{
    return reinterpret_cast<Float4>(_mm256_extractf128_ps(reinterpret_cast<__m256>(v), 1));
}

/// Of each half of four: A to D name lanes, those of `b` counted from 4.
template <int A, int B, int C, int D>
LUMENTA_LANES_INLINE Float8 Mix(Float8 a, Float8 b)
{
    constexpr auto place = [](int lane, int half) { return (lane < 4 ? lane : lane + 4) + 4 * half; };
    return __builtin_shufflevector(a, b, place(A, 0), place(B, 0), place(C, 0), place(D, 0), place(A, 1), place(B, 1),
                                   place(C, 1), place(D, 1));
}

/// The low half of the one beside the high half of the other.
LUMENTA_LANES_INLINE Float8 LowHigh(Float8 a, Float8 b)
{
    return __builtin_shufflevector(a, b, 0, 1, 2, 3, 12, 13, 14, 15);
}

/// The lanes of both halves in turns, as the eight of one row.
LUMENTA_LANES_INLINE Float8 Interleave(Float8 v)
{
    return __builtin_shufflevector(v, v, 0, 4, 1, 5, 2, 6, 3, 7);
}

/// The first or the second half of that, in both halves.
template <int Half>
LUMENTA_LANES_INLINE Float8 InterleaveTwice(Float8 v)
{
    constexpr int i = 2 * Half;
    return __builtin_shufflevector(v, v, i, i + 4, i + 1, i + 5, i, i + 4, i + 1, i + 5);
}

LUMENTA_LANES_INLINE Float8 Sqrt8(Float8 v)
{
    return reinterpret_cast<Float8>(_mm256_sqrt_ps(reinterpret_cast<__m256>(v)));
}

LUMENTA_LANES_INLINE Float8 Abs(Float8 v)
{
    return reinterpret_cast<Float8>(reinterpret_cast<Mask8>(v) & 0x7fffffff);
}

LUMENTA_LANES_INLINE Float8 OneForZero(Float8 v)
{
    return v == 0.0f ? Splat8(1.0f) : v;
}

LUMENTA_LANES_INLINE Float8 Larger(Float8 a, Float8 b)
{
    return a > b ? a : b;
}

LUMENTA_LANES_INLINE Float8 Select(Mask8 mask, Float8 a, Float8 b)
{
    return mask ? a : b;
}

LUMENTA_LANES_INLINE unsigned Bits(Mask8 mask)
{
    return static_cast<unsigned>(_mm256_movemask_ps(reinterpret_cast<__m256>(mask)));
}

#else

struct Mask8 {
    Mask4 low;
    Mask4 high;

    LUMENTA_LANES_INLINE Mask8 operator&(const Mask8& b) const { return {low & b.low, high & b.high}; }
    LUMENTA_LANES_INLINE Mask8 operator|(const Mask8& b) const { return {low | b.low, high | b.high}; }
};

struct Float8 {
    Float4 low;
    Float4 high;

    LUMENTA_LANES_INLINE Float8 operator+(const Float8& b) const { return {low + b.low, high + b.high}; }
    LUMENTA_LANES_INLINE Float8 operator-(const Float8& b) const { return {low - b.low, high - b.high}; }
    LUMENTA_LANES_INLINE Float8 operator*(const Float8& b) const { return {low * b.low, high * b.high}; }
    LUMENTA_LANES_INLINE Float8 operator/(const Float8& b) const { return {low / b.low, high / b.high}; }
    LUMENTA_LANES_INLINE Mask8 operator>(const Float8& b) const { return {low > b.low, high > b.high}; }
    LUMENTA_LANES_INLINE Mask8 operator<(const Float8& b) const { return {low < b.low, high < b.high}; }
    LUMENTA_LANES_INLINE Mask8 operator>=(const Float8& b) const { return {low >= b.low, high >= b.high}; }
    LUMENTA_LANES_INLINE Mask8 operator<=(const Float8& b) const { return {low <= b.low, high <= b.high}; }
    LUMENTA_LANES_INLINE Mask8 operator==(const Float8& b) const { return {low == b.low, high == b.high}; }
};

LUMENTA_LANES_INLINE Float8 Splat8(float value)
{
    return {Splat4(value), Splat4(value)};
}

LUMENTA_LANES_INLINE Float8 Join(Float4 low, Float4 high)
{
    return {low, high};
}

/// Half by half: a copy of the whole would make GCC go by way of the stack.
LUMENTA_LANES_INLINE Float8 Load8(const float* source)
{
    return {Load4(source), Load4(source + 4)};
}

LUMENTA_LANES_INLINE void Store8(float* destination, const Float8& lanes)
{
    Store4(destination, lanes.low);
    Store4(destination + 4, lanes.high);
}

LUMENTA_LANES_INLINE Float8 LoadTwice(const float* source)
{
    return {Load4(source), Load4(source)};
}

LUMENTA_LANES_INLINE Float4 Low(const Float8& v)
{
    return v.low;
}

LUMENTA_LANES_INLINE Float4 High(const Float8& v)
{
    return v.high;
}

template <int A, int B, int C, int D>
LUMENTA_LANES_INLINE Float8 Mix(const Float8& a, const Float8& b)
{
    return {__builtin_shufflevector(a.low, b.low, A, B, C, D), __builtin_shufflevector(a.high, b.high, A, B, C, D)};
}

LUMENTA_LANES_INLINE Float8 LowHigh(const Float8& a, const Float8& b)
{
    return {a.low, b.high};
}

LUMENTA_LANES_INLINE Float8 Interleave(const Float8& v)
{
    return {__builtin_shufflevector(v.low, v.high, 0, 4, 1, 5), __builtin_shufflevector(v.low, v.high, 2, 6, 3, 7)};
}

template <int Half>
LUMENTA_LANES_INLINE Float8 InterleaveTwice(const Float8& v)
{
    constexpr int i = 2 * Half;
    const Float4 half = __builtin_shufflevector(v.low, v.high, i, i + 4, i + 1, i + 5);
    return {half, half};
}

LUMENTA_LANES_INLINE Float8 Sqrt8(const Float8& v)
{
    return {Sqrt4(v.low), Sqrt4(v.high)};
}

LUMENTA_LANES_INLINE Float8 Abs(const Float8& v)
{
    return {Abs4(v.low), Abs4(v.high)};
}

LUMENTA_LANES_INLINE Float8 OneForZero(const Float8& v)
{
    return {OneForZero4(v.low), OneForZero4(v.high)};
}

LUMENTA_LANES_INLINE Float8 Larger(const Float8& a, const Float8& b)
{
    return {a.low > b.low ? a.low : b.low, a.high > b.high ? a.high : b.high};
}

LUMENTA_LANES_INLINE Float8 Select(const Mask8& mask, const Float8& a, const Float8& b)
{
    return {mask.low ? a.low : b.low, mask.high ? a.high : b.high};
}

LUMENTA_LANES_INLINE unsigned Bits(const Mask8& mask)
{
    return Bits4(mask.low) | Bits4(mask.high) << 4;
}

#endif

} // namespace
