#pragma once

// Private to the kernels: matrices, two rows side by side.
//
// A row of a product is four lanes, so each of its terms is a broadcast element
// times a row: lane by lane the scalar terms in the scalar order.
//
// For the inverse, lane j of row i is the minor that leaves out row i and column
// j. Its other three columns are shuffles within the row, and the rows that two
// minors' rows need stand side by side. Signs come last: the terms of the
// determinant are added and subtracted in turns, and a minor times a negative
// reciprocal is the negative minor times the reciprocal, to the bit.

#include "lumenta/kernels/Lanes.h"

namespace {

/// The rows of a matrix.
struct MatrixRows {
    Float8 first; ///< Rows 0 and 1.
    Float8 last;  ///< Rows 2 and 3.
};

/// Each row of a matrix in both halves, as it takes to stand on the right of a
/// product, or to be inverted.
struct TwinRows {
    Float8 row[4];
};

/// \param m sixteen floats, row by row, at any address
LUMENTA_LANES_INLINE MatrixRows LoadRows(const float* m)
{
    return {Load8(m), Load8(m + 8)};
}

LUMENTA_LANES_INLINE void StoreRows(float* m, const MatrixRows& rows)
{
    Store8(m, rows.first);
    Store8(m + 8, rows.last);
}

LUMENTA_LANES_INLINE TwinRows LoadTwinRows(const float* m)
{
    return {LoadTwice(m), LoadTwice(m + 4), LoadTwice(m + 8), LoadTwice(m + 12)};
}

LUMENTA_LANES_INLINE TwinRows TwinRowsOf(const MatrixRows& m)
{
    return {Join(Low(m.first), Low(m.first)), Join(High(m.first), High(m.first)), Join(Low(m.last), Low(m.last)),
            Join(High(m.last), High(m.last))};
}

/// Two rows of a product.
LUMENTA_LANES_INLINE Float8 RowsTimes(const Float8& a, const TwinRows& b)
{
    return Mix<0, 0, 0, 0>(a, a) * b.row[0] + Mix<1, 1, 1, 1>(a, a) * b.row[1] + Mix<2, 2, 2, 2>(a, a) * b.row[2]
           + Mix<3, 3, 3, 3>(a, a) * b.row[3];
}

LUMENTA_LANES_INLINE MatrixRows Product(const MatrixRows& a, const TwinRows& b)
{
    return {RowsTimes(a.first, b), RowsTimes(a.last, b)};
}

/// Of rows, lane j: the first, second and third of the columns other than j.
struct OtherColumns {
    Float8 first, second, third;
};

LUMENTA_LANES_INLINE OtherColumns OtherColumnsOf(const Float8& rows)
{
    return {Mix<1, 0, 0, 0>(rows, rows), Mix<2, 2, 1, 1>(rows, rows), Mix<3, 3, 3, 2>(rows, rows)};
}

LUMENTA_LANES_INLINE OtherColumns LowHigh(const OtherColumns& a, const OtherColumns& b)
{
    return {LowHigh(a.first, b.first), LowHigh(a.second, b.second), LowHigh(a.third, b.third)};
}

/// Determinants of three rows of three. Every cofactor, and through them the
/// determinant, comes from this one expansion: another order of the same terms
/// would round differently.
LUMENTA_LANES_INLINE Float8 Minors(const OtherColumns& top, const OtherColumns& middle, const OtherColumns& bottom)
{
    return top.first * (middle.second * bottom.third - middle.third * bottom.second)
           - top.second * (middle.first * bottom.third - middle.third * bottom.first)
           + top.third * (middle.first * bottom.second - middle.second * bottom.first);
}

/// Four columns, two side by side.
struct MatrixColumns {
    Float8 first, last;
};

/// \return false, and nothing written, where the determinant is exactly 0
LUMENTA_LANES_INLINE bool Invert(MatrixColumns& inverse, const TwinRows& m)
{
    const OtherColumns row0 = OtherColumnsOf(m.row[0]);
    const OtherColumns row1 = OtherColumnsOf(m.row[1]);
    const OtherColumns row2 = OtherColumnsOf(m.row[2]);
    const OtherColumns row3 = OtherColumnsOf(m.row[3]);
    const Float8 minors0And1 = Minors(LowHigh(row1, row0), row2, row3);
    const Float8 minors2And3 = Minors(row0, row1, LowHigh(row3, row2));

    const Float4 terms = Low(m.row[0]) * Low(minors0And1);
    const float determinant = terms[0] - terms[1] + terms[2] - terms[3];
    if (determinant == 0.0f) return false;

    const Float8 reciprocal =
        Join(Float4{1.0f, -1.0f, 1.0f, -1.0f}, Float4{-1.0f, 1.0f, -1.0f, 1.0f}) / Splat8(determinant);
    inverse = {minors0And1 * reciprocal, minors2And3 * reciprocal};
    return true;
}

LUMENTA_LANES_INLINE bool Invert(MatrixRows& inverse, const TwinRows& m)
{
    MatrixColumns columns;
    if (!Invert(columns, m)) return false;
    inverse = {Interleave(Mix<0, 4, 1, 5>(columns.first, columns.last)),
               Interleave(Mix<2, 6, 3, 7>(columns.first, columns.last))};
    return true;
}

LUMENTA_LANES_INLINE TwinRows TwinRowsOf(const MatrixColumns& m)
{
    const Float8 rows0And1 = Mix<0, 4, 1, 5>(m.first, m.last);
    const Float8 rows2And3 = Mix<2, 6, 3, 7>(m.first, m.last);
    return {InterleaveTwice<0>(rows0And1), InterleaveTwice<1>(rows0And1), InterleaveTwice<0>(rows2And3),
            InterleaveTwice<1>(rows2And3)};
}

} // namespace
