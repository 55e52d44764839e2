#pragma once
// The LU family: general, band and tridiagonal factorisations with partial pivoting, and the solves
// and inverse that use them. Pivot indices are one-based: row i was interchanged with row ipiv(i).
// info = k > 0: U(k, k) is exactly zero (the factorisation itself is complete). The factorisations
// report progress after each panel and answer true when the progress handler asked them to stop,
// leaving the matrix and the pivots partly updated.

#include "service/types.hpp"

namespace zor {

// Row interchanges k1..k2 of ipiv applied to the n columns of A: forwards for incx > 0, backwards
// for incx < 0, nothing for incx = 0 (only ipiv(k1 .. k1 + (k2 - k1)|incx|) is read).
template <class T>
void laswp(zint n, T* a, zint lda, zint k1, zint k2, const zint* ipiv, zint incx);

template <class T>
bool getrf(zint m, zint n, T* a, zint lda, zint* ipiv, zint& info);
template <class T>
void getrs(char trans, zint n, zint nrhs, const T* a, zint lda, const zint* ipiv, T* b, zint ldb, zint& info);
// A stop asked for by the progress handler during the factorisation skips the solve.
template <class T>
void gesv(zint n, zint nrhs, T* a, zint lda, zint* ipiv, T* b, zint ldb, zint& info);
// lwork = -1 is a workspace query: work(1) receives the optimal size and ipiv is not read.
template <class T>
void getri(zint n, T* a, zint lda, const zint* ipiv, T* work, zint lwork, zint& info);

// Band storage: A(i, j) is ab(kl + ku + 1 + i - j, j), the first kl rows free for the fill-in of
// the factorisation (ldab >= 2 kl + ku + 1).
template <class T>
bool gbtrf(zint m, zint n, zint kl, zint ku, T* ab, zint ldab, zint* ipiv, zint& info);
template <class T>
void gbtrs(char trans, zint n, zint kl, zint ku, zint nrhs, const T* ab, zint ldab, const zint* ipiv, T* b,
           zint ldb, zint& info);
template <class T>
void gbsv(zint n, zint kl, zint ku, zint nrhs, T* ab, zint ldab, zint* ipiv, T* b, zint ldb, zint& info);

// Tridiagonal, real only: dl (n - 1), d (n), du (n - 1) become L's multipliers, U's diagonal and
// first superdiagonal; du2 (n - 2) receives U's second superdiagonal.
void gttrf(zint n, double* dl, double* d, double* du, double* du2, zint* ipiv, zint& info);
void gttrs(char trans, zint n, zint nrhs, const double* dl, const double* d, const double* du,
           const double* du2, const zint* ipiv, double* b, zint ldb, zint& info);

// The argument checks of the exported routines, run by the exports before any array of the caller
// is touched and by the routines themselves: 0, or -k after reporting parameter k.
template <class T>
zint check_getrf(zint m, zint n, zint lda);
template <class T>
zint check_gesv(zint n, zint nrhs, zint lda, zint ldb);
template <class T>
zint check_getri(zint n, zint lda, zint lwork);
template <class T>
zint check_gbsv(zint n, zint kl, zint ku, zint nrhs, zint ldab, zint ldb);
zint check_gttrf(zint n);
zint check_gttrs(char trans, zint n, zint nrhs, zint ldb);

}  // namespace zor
