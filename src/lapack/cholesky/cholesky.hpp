#pragma once
// The Cholesky family: factorisations of symmetric (Hermitian) positive definite matrices in full
// and packed storage, and the solves and inverses that use them. Fortran calling form: everything
// by reference, 64-bit integers; each routine checks its arguments and reports the first bad one.
// info = k > 0: the leading minor of order k is not positive definite (its failed diagonal value is
// left in A(k, k) by the factorisations).

#include <cstdint>

#include "service/types.hpp"

namespace zor {

void dpotrf(const char& uplo, const zint& n, double* a, const zint& lda, zint& info);
void zpotrf(const char& uplo, const zint& n, zcomplex* a, const zint& lda, zint& info);
void dpotf2(const char& uplo, const zint& n, double* a, const zint& lda, zint& info);
void zpotf2(const char& uplo, const zint& n, zcomplex* a, const zint& lda, zint& info);
// The blocked core: returns 1 when the progress handler asked to stop, else 0.
int dpotrf_core(const char& uplo, const zint& n, double* a, const zint& lda, zint& info,
                const std::int32_t& thread, std::int32_t offset);
int zpotrf_core(const char& uplo, const zint& n, zcomplex* a, const zint& lda, zint& info,
                const std::int32_t& thread, std::int32_t offset);

void dpotrs(const char& uplo, const zint& n, const zint& nrhs, const double* a, const zint& lda, double* b,
            const zint& ldb, zint& info);
void zpotrs(const char& uplo, const zint& n, const zint& nrhs, const zcomplex* a, const zint& lda,
            zcomplex* b, const zint& ldb, zint& info);
// A stop asked for by the progress handler during the factorisation skips the solve.
void dposv(const char& uplo, const zint& n, const zint& nrhs, double* a, const zint& lda, double* b,
           const zint& ldb, zint& info);
void zposv(const char& uplo, const zint& n, const zint& nrhs, zcomplex* a, const zint& lda, zcomplex* b,
           const zint& ldb, zint& info);

// The inverse from the factor; dlauum forms U Uᴴ or Lᴴ L in place.
void dpotri(const char& uplo, const zint& n, double* a, const zint& lda, zint& info);
void zpotri(const char& uplo, const zint& n, zcomplex* a, const zint& lda, zint& info);
void dlauum(const char& uplo, const zint& n, double* a, const zint& lda, zint& info);
void zlauum(const char& uplo, const zint& n, zcomplex* a, const zint& lda, zint& info);

// Packed storage (the triangle column after column).
void dpptrf(const char& uplo, const zint& n, double* ap, zint& info);
void zpptrf(const char& uplo, const zint& n, zcomplex* ap, zint& info);
void dpptrs(const char& uplo, const zint& n, const zint& nrhs, const double* ap, double* b, const zint& ldb,
            zint& info);
void zpptrs(const char& uplo, const zint& n, const zint& nrhs, const zcomplex* ap, zcomplex* b,
            const zint& ldb, zint& info);
void dpptri(const char& uplo, const zint& n, double* ap, zint& info);
void zpptri(const char& uplo, const zint& n, zcomplex* ap, zint& info);

// The templates behind the named routines (T is double or zcomplex).
template <class T>
void potf2_kernel(bool upper, zint n, T* a, zint lda, zint& info);

}  // namespace zor
