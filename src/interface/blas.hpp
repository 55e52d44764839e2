#pragma once
// The Fortran-style BLAS routines behind the CBLAS entry points: every argument by address,
// integers of 32 bits. Internal (not exported). Each widens its integers to 64 bits and calls the
// kernel through its dispatcher; the level-1 routines check nothing, the others run the reference
// check of blas_checks.hpp first.

#include "interface/integers.hpp"
#include "service/types.hpp"
#include "zor/zor_config.h"

namespace zor::fortran {

double dasum(const zor_int* n, const double* x, const zor_int* incx);
void daxpy(const zor_int* n, const double* alpha, const double* x, const zor_int* incx, double* y,
           const zor_int* incy);
void dcopy(const zor_int* n, const double* x, const zor_int* incx, double* y, const zor_int* incy);
double ddot(const zor_int* n, const double* x, const zor_int* incx, const double* y, const zor_int* incy);
double dnrm2(const zor_int* n, const double* x, const zor_int* incx);
void drot(const zor_int* n, double* x, const zor_int* incx, double* y, const zor_int* incy, const double* c,
          const double* s);
void drotg(double* a, double* b, double* c, double* s);
void drotm(const zor_int* n, double* x, const zor_int* incx, double* y, const zor_int* incy,
           const double* param);
void drotmg(double* d1, double* d2, double* x1, const double* y1, double* param);
void dscal(const zor_int* n, const double* alpha, double* x, const zor_int* incx);
void dswap(const zor_int* n, double* x, const zor_int* incx, double* y, const zor_int* incy);
zor_int idamax(const zor_int* n, const double* x, const zor_int* incx);
zor_int idamin(const zor_int* n, const double* x, const zor_int* incx);

double dzasum(const zor_int* n, const zcomplex* x, const zor_int* incx);
double dznrm2(const zor_int* n, const zcomplex* x, const zor_int* incx);
zor_int izamax(const zor_int* n, const zcomplex* x, const zor_int* incx);
zor_int izamin(const zor_int* n, const zcomplex* x, const zor_int* incx);
void zaxpy(const zor_int* n, const zcomplex* alpha, const zcomplex* x, const zor_int* incx, zcomplex* y,
           const zor_int* incy);
void zcopy(const zor_int* n, const zcomplex* x, const zor_int* incx, zcomplex* y, const zor_int* incy);
// The result comes first, as the Fortran calling convention for a complex function passes it.
void zdotc(zcomplex* result, const zor_int* n, const zcomplex* x, const zor_int* incx, const zcomplex* y,
           const zor_int* incy);
void zdotu(zcomplex* result, const zor_int* n, const zcomplex* x, const zor_int* incx, const zcomplex* y,
           const zor_int* incy);
void zscal(const zor_int* n, const zcomplex* alpha, zcomplex* x, const zor_int* incx);
void zswap(const zor_int* n, zcomplex* x, const zor_int* incx, zcomplex* y, const zor_int* incy);

// Level 2: each runs the reference check of its routine (which reports a bad argument through
// xerbla with the routine's blank-padded name) and on success calls the kernel. The trailing
// integers are the hidden lengths of the option letters, always 1.
void dgemv(const char* trans, const zor_int* m, const zor_int* n, const double* alpha, const double* a,
           const zor_int* lda, const double* x, const zor_int* incx, const double* beta, double* y,
           const zor_int* incy, int trans_length);
void dger(const zor_int* m, const zor_int* n, const double* alpha, const double* x, const zor_int* incx,
          const double* y, const zor_int* incy, double* a, const zor_int* lda);
void dsymv(const char* uplo, const zor_int* n, const double* alpha, const double* a, const zor_int* lda,
           const double* x, const zor_int* incx, const double* beta, double* y, const zor_int* incy,
           int uplo_length);
void dsyr(const char* uplo, const zor_int* n, const double* alpha, const double* x, const zor_int* incx,
          double* a, const zor_int* lda, int uplo_length);
void dsyr2(const char* uplo, const zor_int* n, const double* alpha, const double* x, const zor_int* incx,
           const double* y, const zor_int* incy, double* a, const zor_int* lda, int uplo_length);
void dtrmv(const char* uplo, const char* trans, const char* diag, const zor_int* n, const double* a,
           const zor_int* lda, double* x, const zor_int* incx, int uplo_length, int trans_length,
           int diag_length);
void dtrsv(const char* uplo, const char* trans, const char* diag, const zor_int* n, const double* a,
           const zor_int* lda, double* x, const zor_int* incx, int uplo_length, int trans_length,
           int diag_length);
void zgemv(const char* trans, const zor_int* m, const zor_int* n, const zcomplex* alpha, const zcomplex* a,
           const zor_int* lda, const zcomplex* x, const zor_int* incx, const zcomplex* beta, zcomplex* y,
           const zor_int* incy, int trans_length);
void zgerc(const zor_int* m, const zor_int* n, const zcomplex* alpha, const zcomplex* x, const zor_int* incx,
           const zcomplex* y, const zor_int* incy, zcomplex* a, const zor_int* lda);
void zgeru(const zor_int* m, const zor_int* n, const zcomplex* alpha, const zcomplex* x, const zor_int* incx,
           const zcomplex* y, const zor_int* incy, zcomplex* a, const zor_int* lda);
void zhemv(const char* uplo, const zor_int* n, const zcomplex* alpha, const zcomplex* a, const zor_int* lda,
           const zcomplex* x, const zor_int* incx, const zcomplex* beta, zcomplex* y, const zor_int* incy,
           int uplo_length);
void zher(const char* uplo, const zor_int* n, const double* alpha, const zcomplex* x, const zor_int* incx,
          zcomplex* a, const zor_int* lda, int uplo_length);
void zher2(const char* uplo, const zor_int* n, const zcomplex* alpha, const zcomplex* x, const zor_int* incx,
           const zcomplex* y, const zor_int* incy, zcomplex* a, const zor_int* lda, int uplo_length);
void ztrmv(const char* uplo, const char* trans, const char* diag, const zor_int* n, const zcomplex* a,
           const zor_int* lda, zcomplex* x, const zor_int* incx, int uplo_length, int trans_length,
           int diag_length);
void ztrsv(const char* uplo, const char* trans, const char* diag, const zor_int* n, const zcomplex* a,
           const zor_int* lda, zcomplex* x, const zor_int* incx, int uplo_length, int trans_length,
           int diag_length);

// Level 3: the reference check, then the kernel. The option letters' hidden lengths trail.
void dgemm(const char* transa, const char* transb, const zor_int* m, const zor_int* n, const zor_int* k,
           const double* alpha, const double* a, const zor_int* lda, const double* b, const zor_int* ldb,
           const double* beta, double* c, const zor_int* ldc, int transa_length, int transb_length);
void zgemm(const char* transa, const char* transb, const zor_int* m, const zor_int* n, const zor_int* k,
           const zcomplex* alpha, const zcomplex* a, const zor_int* lda, const zcomplex* b,
           const zor_int* ldb, const zcomplex* beta, zcomplex* c, const zor_int* ldc, int transa_length,
           int transb_length);

void dsymm(const char* side, const char* uplo, const zor_int* m, const zor_int* n, const double* alpha,
           const double* a, const zor_int* lda, const double* b, const zor_int* ldb, const double* beta,
           double* c, const zor_int* ldc);
void zsymm(const char* side, const char* uplo, const zor_int* m, const zor_int* n, const zcomplex* alpha,
           const zcomplex* a, const zor_int* lda, const zcomplex* b, const zor_int* ldb, const zcomplex* beta,
           zcomplex* c, const zor_int* ldc);
void zhemm(const char* side, const char* uplo, const zor_int* m, const zor_int* n, const zcomplex* alpha,
           const zcomplex* a, const zor_int* lda, const zcomplex* b, const zor_int* ldb, const zcomplex* beta,
           zcomplex* c, const zor_int* ldc);
void dsyrk(const char* uplo, const char* trans, const zor_int* n, const zor_int* k, const double* alpha,
           const double* a, const zor_int* lda, const double* beta, double* c, const zor_int* ldc);
void zsyrk(const char* uplo, const char* trans, const zor_int* n, const zor_int* k, const zcomplex* alpha,
           const zcomplex* a, const zor_int* lda, const zcomplex* beta, zcomplex* c, const zor_int* ldc);
void zherk(const char* uplo, const char* trans, const zor_int* n, const zor_int* k, const double* alpha,
           const zcomplex* a, const zor_int* lda, const double* beta, zcomplex* c, const zor_int* ldc);
void dsyr2k(const char* uplo, const char* trans, const zor_int* n, const zor_int* k, const double* alpha,
            const double* a, const zor_int* lda, const double* b, const zor_int* ldb, const double* beta,
            double* c, const zor_int* ldc);
void zsyr2k(const char* uplo, const char* trans, const zor_int* n, const zor_int* k, const zcomplex* alpha,
            const zcomplex* a, const zor_int* lda, const zcomplex* b, const zor_int* ldb,
            const zcomplex* beta, zcomplex* c, const zor_int* ldc);
void zher2k(const char* uplo, const char* trans, const zor_int* n, const zor_int* k, const zcomplex* alpha,
            const zcomplex* a, const zor_int* lda, const zcomplex* b, const zor_int* ldb, const double* beta,
            zcomplex* c, const zor_int* ldc);
void dtrmm(const char* side, const char* uplo, const char* transa, const char* diag, const zor_int* m,
           const zor_int* n, const double* alpha, const double* a, const zor_int* lda, double* b,
           const zor_int* ldb);
void ztrmm(const char* side, const char* uplo, const char* transa, const char* diag, const zor_int* m,
           const zor_int* n, const zcomplex* alpha, const zcomplex* a, const zor_int* lda, zcomplex* b,
           const zor_int* ldb);
void dtrsm(const char* side, const char* uplo, const char* transa, const char* diag, const zor_int* m,
           const zor_int* n, const double* alpha, const double* a, const zor_int* lda, double* b,
           const zor_int* ldb);
void ztrsm(const char* side, const char* uplo, const char* transa, const char* diag, const zor_int* m,
           const zor_int* n, const zcomplex* alpha, const zcomplex* a, const zor_int* lda, zcomplex* b,
           const zor_int* ldb);

}  // namespace zor::fortran
