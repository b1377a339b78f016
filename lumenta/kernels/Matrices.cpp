// Products and inverses of matrices, one by one.

#include "lumenta/kernels/Kernels.h"
#include "lumenta/kernels/MatrixLanes.h"

namespace Kernels::LUMENTA_LEVEL {

void Multiply(float* result, const float* a, const float* b)
{
    StoreRows(result, Product(LoadRows(a), LoadTwinRows(b)));
}

bool Invert(float* destination, const float* source)
{
    MatrixRows inverse;
    if (!::Invert(inverse, LoadTwinRows(source))) return false;
    StoreRows(destination, inverse);
    return true;
}

} // namespace Kernels::LUMENTA_LEVEL
