#pragma once
// The Cholesky family: factorisations of symmetric (Hermitian) positive definite matrices in full
// and packed storage (the triangle column after column, n (n + 1) / 2 elements), and the solves
// and inverses that use them. info = k > 0: the leading minor of order k is not positive definite,
// its failed diagonal value left in A(k, k) by the factorisations. The blocked factorisations
// report progress and answer true when the progress handler asked them to stop.

#include "service/types.hpp"

namespace zor {

template <class T>
bool potrf(char uplo, zint n, T* a, zint lda, zint& info);
// The dispatched unblocked step of the upper or lower triangle, unchecked.
template <class T>
void potf2_kernel(bool upper, zint n, T* a, zint lda, zint& info);
template <class T>
void potrs(char uplo, zint n, zint nrhs, const T* a, zint lda, T* b, zint ldb, zint& info);
// A stop asked for by the progress handler during the factorisation skips the solve.
template <class T>
void posv(char uplo, zint n, zint nrhs, T* a, zint lda, T* b, zint ldb, zint& info);

// The inverse from the factor; lauum forms U Uᴴ or Lᴴ L in place.
template <class T>
void potri(char uplo, zint n, T* a, zint lda, zint& info);
template <class T>
void lauum(char uplo, zint n, T* a, zint lda, zint& info);

template <class T>
void pptrf(char uplo, zint n, T* ap, zint& info);
template <class T>
void pptrs(char uplo, zint n, zint nrhs, const T* ap, T* b, zint ldb, zint& info);
template <class T>
void pptri(char uplo, zint n, T* ap, zint& info);

// The argument checks of the exported routines, run by the exports first and by the routines
// themselves: 0, or -k after reporting parameter k.
template <class T>
zint check_potrf(char uplo, zint n, zint lda);
template <class T>
zint check_posv(char uplo, zint n, zint nrhs, zint lda, zint ldb);
template <class T>
zint check_potri(char uplo, zint n, zint lda);
template <class T>
zint check_pptrf(char uplo, zint n);
template <class T>
zint check_pptrs(char uplo, zint n, zint nrhs, zint ldb);
template <class T>
zint check_pptri(char uplo, zint n);

}  // namespace zor
