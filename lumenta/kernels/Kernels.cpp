#include "lumenta/kernels/Kernels.h"

namespace Kernels {

const Table& Chosen()
{
#if defined(__x86_64__)
    static const Table& chosen = __builtin_cpu_supports("avx2") ? avx2Table : baselineTable;
    return chosen;
#else
    return baselineTable;
#endif
}

} // namespace Kernels
