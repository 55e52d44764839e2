#pragma once
// Triangular inverses and solves, in full and packed storage (packed: column j of the triangle
// follows column j - 1, n (n + 1) / 2 elements in all). info = k > 0: the diagonal element k is
// exactly zero (a non-unit triangle is singular).

#include "lapack/kernels/kernels.hpp"
#include "service/element.hpp"
#include "service/letters.hpp"
#include "service/types.hpp"

namespace zor {

template <class T>
void trtri(char uplo, char diag, zint n, T* a, zint lda, zint& info);
template <class T>
void tptri(char uplo, char diag, zint n, T* ap, zint& info);
template <class T>
void tptrs(char uplo, char trans, char diag, zint n, zint nrhs, const T* ap, T* b, zint ldb, zint& info);

// The index (one-based) of the first zero on a non-unit diagonal of a packed triangle, or 0.
template <class T>
zint zero_on_diagonal(bool upper, char diag, zint n, const T* ap) {
    if (lsame(diag, 'U')) return 0;
    for (zint j = 0; j < n; ++j) {
        if (is_zero(ap[packed_start(upper, n, j) + (upper ? j : 0)])) return j + 1;
    }
    return 0;
}

// The argument checks of the exported routines, run by the exports first and by the routines
// themselves: 0, or -k after reporting parameter k.
template <class T>
zint check_trtri(char uplo, char diag, zint n, zint lda);
template <class T>
zint check_tptri(char uplo, char diag, zint n);
template <class T>
zint check_tptrs(char uplo, char trans, char diag, zint n, zint nrhs, zint ldb);

}  // namespace zor
