#pragma once
// Triangular inverses and solves, in full and packed storage. Fortran calling form: everything by
// reference, 64-bit integers; each routine checks its arguments and reports the first bad one.
// info = k > 0: the diagonal element k is exactly zero (a non-unit triangle is singular).

#include "service/types.hpp"

namespace zor {

void dtrtri(const char& uplo, const char& diag, const zint& n, double* a, const zint& lda, zint& info);
void ztrtri(const char& uplo, const char& diag, const zint& n, zcomplex* a, const zint& lda, zint& info);
void dtrti2(const char& uplo, const char& diag, const zint& n, double* a, const zint& lda, zint& info);
void ztrti2(const char& uplo, const char& diag, const zint& n, zcomplex* a, const zint& lda, zint& info);

// Packed storage: column j of the triangle follows column j - 1, n (n + 1) / 2 elements in all.
void dtptri(const char& uplo, const char& diag, const zint& n, double* ap, zint& info);
void ztptri(const char& uplo, const char& diag, const zint& n, zcomplex* ap, zint& info);
void dtptrs(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& nrhs,
            const double* ap, double* b, const zint& ldb, zint& info);
void ztptrs(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& nrhs,
            const zcomplex* ap, zcomplex* b, const zint& ldb, zint& info);

// The templates behind them (T is double or zcomplex).
template <class T>
void trtri(char uplo, char diag, zint n, T* a, zint lda, zint& info);
template <class T>
void tptri(char uplo, char diag, zint n, T* ap, zint& info);

}  // namespace zor
