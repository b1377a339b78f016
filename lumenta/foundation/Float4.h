#pragma once

// Private to the library. Four floats in one register, in the vector dialect
// that GCC and Clang share: +, - and * work lane by lane, and each lane rounds
// exactly as the scalar expression does.
//
// Everything here has internal linkage, so that two files compiled for
// different processors can never share one compiled copy.

#include "lumenta/foundation/Vector.h"

#include <cstring>

namespace {

using Float4 = float __attribute__((vector_size(16)));

inline Float4 Splat4(float value)
{
    return Float4{value, value, value, value};
}

/// Four floats from any address; the fourth must be readable too.
inline Float4 Load4(const void* source)
{
    Float4 lanes;
    std::memcpy(&lanes, source, sizeof lanes);
    return lanes;
}

inline void Store4(void* destination, Float4 lanes)
{
    std::memcpy(destination, &lanes, sizeof lanes);
}

/// Three lanes into a vector; what lies behind it is somebody else's.
inline void Store3(TVec3<float>& destination, Float4 lanes)
{
    using Float2 = float __attribute__((vector_size(8)));
    const Float2 firstTwo = __builtin_shufflevector(lanes, lanes, 0, 1);
    std::memcpy(&destination, &firstTwo, sizeof firstTwo);
    destination.z = lanes[2];
}

template <int A, int B, int C, int D>
inline Float4 Shuffle(Float4 v)
{
    return __builtin_shufflevector(v, v, A, B, C, D);
}

} // namespace
