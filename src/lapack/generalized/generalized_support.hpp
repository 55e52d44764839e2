#pragma once
// What the routines of the generalized eigenproblem share: one-based addressing and the plane
// rotations they apply to pairs of rows and columns.

#include "lapack/lapack.hpp"
#include "lapack/schur/schur_support.hpp"

namespace zor {

// (x, y) := (c x + s y, c y - conj(s) x) over n entries with strides incx, incy: the rotation lartg
// makes, applied to two rows (from the left) or, with s for the rotation's s, to two columns.
template <class T>
void rotate(zint n, T* x, zint incx, T* y, zint incy, double c, T s) {
    for (zint i = 0; i < n; ++i) {
        T& xi = x[i * incx];
        T& yi = y[i * incy];
        const T xv = xi;
        xi = c * xv + s * yi;
        yi = c * yi - conj(s) * xv;
    }
}

// Rows i and i + 1 of M over columns first .. last (one-based).
template <class T>
void rotate_rows(const OneBased<T>& m, zint i, zint first, zint last, double c, T s) {
    if (last >= first) rotate(last - first + 1, m.at(i, first), m.ld, m.at(i + 1, first), m.ld, c, s);
}

// Columns j and k of M over rows first .. last: column j takes c M(:, j) + s M(:, k).
template <class T>
void rotate_columns(const OneBased<T>& m, zint j, zint k, zint first, zint last, double c, T s) {
    if (last >= first) rotate(last - first + 1, m.at(first, j), 1, m.at(first, k), 1, c, s);
}

// Whether the letter is "N", "I" or "V", and what it asks for.
inline bool valid_compq(char c) {
    return lsame(c, 'N') || lsame(c, 'I') || lsame(c, 'V');
}

}  // namespace zor
