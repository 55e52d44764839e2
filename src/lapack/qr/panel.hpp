#pragma once
// The recursive panels of geqrf and gelqf: a panel of nb columns (rows) is split in halves, the
// left (upper) half factored, its block reflector applied to the other half, the other half
// factored, and the two triangular factors joined, T = [T1, -T1 (V1ᴴ V2) T2; 0, T2], so that the
// panel hands its T to the update of the rest of the matrix without a larft of its own. The halves
// recurse down to leaves of `panel_leaf` columns, factored column by column.

#include "lapack/lapack.hpp"

namespace zor {

// The width of the recursion's leaves for a panel of rows by cols: the tuning function's block
// size for QR panels (opts "P").
template <class T>
zint panel_leaf(zint rows, zint cols) {
    return max_of(1, ilaenv(1, routine_name<T>("DGEQRF", "ZGEQRF"), "P", rows, cols, -1, -1));
}

// X(i, j) := conj(A(j, i)) for the rows by cols matrix X.
template <class T>
void load_adjoint(zint rows, zint cols, const T* a, zint lda, T* x, zint ldx) {
    for (zint j = 0; j < cols; ++j) {
        for (zint i = 0; i < rows; ++i) x[i + j * ldx] = conj(a[j + i * lda]);
    }
}

// A(j, i) := A(j, i) - conj(X(i, j)) for the rows by cols matrix X.
template <class T>
void subtract_adjoint(zint rows, zint cols, const T* x, zint ldx, T* a, zint lda) {
    for (zint i = 0; i < rows; ++i) {
        for (zint j = 0; j < cols; ++j) a[j + i * lda] -= conj(x[i + j * ldx]);
    }
}

}  // namespace zor
