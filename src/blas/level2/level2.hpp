#pragma once
// The level-2 kernels (matrix-vector operations), in their five variants. Fortran form: every
// argument by reference, 64-bit integers, option letters as single characters; matrices are
// column-major with a leading dimension. Only 'N'/'n' selects the plain form of a transpose
// letter, 'U'/'u' the upper triangle or the unit diagonal; the entry layer has rejected
// anything else.

#include "service/dispatch.hpp"
#include "service/types.hpp"

ZOR_DECLARE_VARIANTS(
    void dgemv(const char& trans, const zint& m, const zint& n, const double& alpha, const double* a,
               const zint& lda, const double* x, const zint& incx, const double& beta, double* y,
               const zint& incy);
    void dger(const zint& m, const zint& n, const double& alpha, const double* x, const zint& incx,
              const double* y, const zint& incy, double* a, const zint& lda);
    void zgemv(const char& trans, const zint& m, const zint& n, const zcomplex& alpha, const zcomplex* a,
               const zint& lda, const zcomplex* x, const zint& incx, const zcomplex& beta, zcomplex* y,
               const zint& incy);
    void zgeru(const zint& m, const zint& n, const zcomplex& alpha, const zcomplex* x, const zint& incx,
               const zcomplex* y, const zint& incy, zcomplex* a, const zint& lda);
    void zgerc(const zint& m, const zint& n, const zcomplex& alpha, const zcomplex* x, const zint& incx,
               const zcomplex* y, const zint& incy, zcomplex* a, const zint& lda);

    void dsymv(const char& uplo, const zint& n, const double& alpha, const double* a, const zint& lda,
               const double* x, const zint& incx, const double& beta, double* y, const zint& incy);
    void dsyr(const char& uplo, const zint& n, const double& alpha, const double* x, const zint& incx,
              double* a, const zint& lda);
    void dsyr2(const char& uplo, const zint& n, const double& alpha, const double* x, const zint& incx,
               const double* y, const zint& incy, double* a, const zint& lda);
    void zhemv(const char& uplo, const zint& n, const zcomplex& alpha, const zcomplex* a, const zint& lda,
               const zcomplex* x, const zint& incx, const zcomplex& beta, zcomplex* y, const zint& incy);
    void zher(const char& uplo, const zint& n, const double& alpha, const zcomplex* x, const zint& incx,
              zcomplex* a, const zint& lda);
    void zher2(const char& uplo, const zint& n, const zcomplex& alpha, const zcomplex* x, const zint& incx,
               const zcomplex* y, const zint& incy, zcomplex* a, const zint& lda);

    void dtrmv(const char& uplo, const char& trans, const char& diag, const zint& n, const double* a,
               const zint& lda, double* x, const zint& incx);
    void dtrsv(const char& uplo, const char& trans, const char& diag, const zint& n, const double* a,
               const zint& lda, double* x, const zint& incx);
    void ztrmv(const char& uplo, const char& trans, const char& diag, const zint& n, const zcomplex* a,
               const zint& lda, zcomplex* x, const zint& incx);
    void ztrsv(const char& uplo, const char& trans, const char& diag, const zint& n, const zcomplex* a,
               const zint& lda, zcomplex* x, const zint& incx);)
