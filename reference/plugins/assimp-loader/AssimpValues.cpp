#include "reference/plugins/assimp-loader/AssimpValues.h"

#include <algorithm>

namespace Host {

namespace {

constexpr unsigned int kRows = 4;

template <typename Predicate>
bool AllElements(const WideMatrix& matrix, Predicate holds)
{
    for (unsigned int row = 0; row < kRows; ++row)
        if (!std::all_of(matrix[row], matrix[row] + kRows, holds))
            return false;
    return true;
}

} // namespace

QString ToText(const aiString& text)
{
    return QString::fromUtf8(text.data, static_cast<int>(text.length));
}

float ToFloat(double value)
{
    return static_cast<float>(std::isnan(value) ? value : std::clamp(value, -kLargestFloat, kLargestFloat));
}

Matrix ToMatrix(const WideMatrix& matrix)
{
    Matrix result;
    for (unsigned int row = 0; row < kRows; ++row)
        for (unsigned int column = 0; column < kRows; ++column)
            result.m[4 * column + row] = ToFloat(matrix[row][column]);
    return result;
}

WideMatrix ToWideMatrix(const Matrix& matrix)
{
    WideMatrix result;
    for (unsigned int row = 0; row < kRows; ++row)
        for (unsigned int column = 0; column < kRows; ++column)
            result[row][column] = static_cast<double>(matrix.m[4 * column + row]);
    return result;
}

WideMatrix Widen(const aiMatrix4x4& matrix)
{
    return static_cast<WideMatrix>(matrix);
}

bool IsFinite(const WideMatrix& matrix)
{
    return AllElements(matrix, [](double element) { return std::isfinite(element); });
}

bool IsInvertible(const WideMatrix& matrix)
{
    return IsFinite(matrix)
        && AllElements(InverseOf(matrix), [](double element) { return std::fabs(element) <= kLargestFloat; });
}

} // namespace Host
