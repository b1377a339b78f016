#pragma once

#include "lumenta/kernels/Kernels.h"

#include <vector>

namespace Fuzz {

/// The kernels of each level that this processor can run.
inline std::vector<const Kernels::Table*> Levels()
{
    std::vector<const Kernels::Table*> levels{&Kernels::baselineTable};
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2")) levels.push_back(&Kernels::avx2Table);
#endif
    return levels;
}

} // namespace Fuzz
