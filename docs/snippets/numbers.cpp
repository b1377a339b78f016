#include "docs/snippets/Snippets.h"

#include "lumenta/foundation/Matrix.h"

#include <cmath>
#include <cstring>

//! [numbers]
/// Whether two floats are the same as far as this library promises: bit by bit,
/// and any NaN like any other.
bool IsSame(float a, float b)
{
    return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}

/// a·b as the header defines it, for comparison.
Matrix PlainProduct(const Matrix& a, const Matrix& b)
{
    Matrix result;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            result(i, j) = a(i, 0) * b(0, j) + a(i, 1) * b(1, j) + a(i, 2) * b(2, j) + a(i, 3) * b(3, j);
    return result;
}
//! [numbers]
