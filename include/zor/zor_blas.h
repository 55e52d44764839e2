/* The Fortran-style BLAS routines of zor under their Fortran names, for the build that exports them
 * (the CMake setting ZOR_FORTRAN_BLAS_NAMES): every argument by address, integers of 32 bits, the
 * option letters' hidden lengths trailing (ignored). On ELF platforms each is also exported with a
 * trailing underscore (dgemm_), the name gfortran-built programs call, so that loading zor ahead of
 * the system BLAS accelerates them; the routines zor does not have keep coming from the system
 * library. Bad arguments are checked and reported as the reference BLAS does, with this library's
 * xerbla message. Complex functions return their value as gfortran does. */
#ifndef ZOR_ZOR_BLAS_H
#define ZOR_ZOR_BLAS_H

#include <stddef.h>

#include "zor/zor_config.h"

ZOR_EXTERN_C_BEGIN

/* ---- level 1 ----------------------------------------------------------------------------------- */

ZOR_FORTRAN_BLAS_API double dasum(const zor_int* n, const double* x, const zor_int* incx);
ZOR_FORTRAN_BLAS_API void daxpy(const zor_int* n, const double* alpha, const double* x, const zor_int* incx,
                                double* y, const zor_int* incy);
ZOR_FORTRAN_BLAS_API void dcopy(const zor_int* n, const double* x, const zor_int* incx, double* y,
                                const zor_int* incy);
ZOR_FORTRAN_BLAS_API double ddot(const zor_int* n, const double* x, const zor_int* incx, const double* y,
                                 const zor_int* incy);
ZOR_FORTRAN_BLAS_API double dnrm2(const zor_int* n, const double* x, const zor_int* incx);
ZOR_FORTRAN_BLAS_API void drot(const zor_int* n, double* x, const zor_int* incx, double* y,
                               const zor_int* incy, const double* c, const double* s);
ZOR_FORTRAN_BLAS_API void drotg(double* a, double* b, double* c, double* s);
ZOR_FORTRAN_BLAS_API void drotm(const zor_int* n, double* x, const zor_int* incx, double* y,
                                const zor_int* incy, const double* param);
ZOR_FORTRAN_BLAS_API void drotmg(double* d1, double* d2, double* x1, const double* y1, double* param);
ZOR_FORTRAN_BLAS_API void dscal(const zor_int* n, const double* alpha, double* x, const zor_int* incx);
ZOR_FORTRAN_BLAS_API void dswap(const zor_int* n, double* x, const zor_int* incx, double* y,
                                const zor_int* incy);
ZOR_FORTRAN_BLAS_API zor_int idamax(const zor_int* n, const double* x, const zor_int* incx);
ZOR_FORTRAN_BLAS_API double dzasum(const zor_int* n, const zor_complex_double* x, const zor_int* incx);
ZOR_FORTRAN_BLAS_API double dznrm2(const zor_int* n, const zor_complex_double* x, const zor_int* incx);
ZOR_FORTRAN_BLAS_API zor_int izamax(const zor_int* n, const zor_complex_double* x, const zor_int* incx);
ZOR_FORTRAN_BLAS_API void zaxpy(const zor_int* n, const zor_complex_double* alpha,
                                const zor_complex_double* x, const zor_int* incx, zor_complex_double* y,
                                const zor_int* incy);
ZOR_FORTRAN_BLAS_API void zcopy(const zor_int* n, const zor_complex_double* x, const zor_int* incx,
                                zor_complex_double* y, const zor_int* incy);
ZOR_FORTRAN_BLAS_API zor_complex_double zdotc(const zor_int* n, const zor_complex_double* x,
                                              const zor_int* incx, const zor_complex_double* y,
                                              const zor_int* incy);
ZOR_FORTRAN_BLAS_API zor_complex_double zdotu(const zor_int* n, const zor_complex_double* x,
                                              const zor_int* incx, const zor_complex_double* y,
                                              const zor_int* incy);
ZOR_FORTRAN_BLAS_API void zscal(const zor_int* n, const zor_complex_double* alpha, zor_complex_double* x,
                                const zor_int* incx);
ZOR_FORTRAN_BLAS_API void zswap(const zor_int* n, zor_complex_double* x, const zor_int* incx,
                                zor_complex_double* y, const zor_int* incy);

/* ---- level 2 ----------------------------------------------------------------------------------- */

ZOR_FORTRAN_BLAS_API void dgemv(const char* trans, const zor_int* m, const zor_int* n, const double* alpha,
                                const double* a, const zor_int* lda, const double* x, const zor_int* incx,
                                const double* beta, double* y, const zor_int* incy, size_t trans_length);
ZOR_FORTRAN_BLAS_API void dger(const zor_int* m, const zor_int* n, const double* alpha, const double* x,
                               const zor_int* incx, const double* y, const zor_int* incy, double* a,
                               const zor_int* lda);
ZOR_FORTRAN_BLAS_API void dsymv(const char* uplo, const zor_int* n, const double* alpha, const double* a,
                                const zor_int* lda, const double* x, const zor_int* incx, const double* beta,
                                double* y, const zor_int* incy, size_t uplo_length);
ZOR_FORTRAN_BLAS_API void dsyr(const char* uplo, const zor_int* n, const double* alpha, const double* x,
                               const zor_int* incx, double* a, const zor_int* lda, size_t uplo_length);
ZOR_FORTRAN_BLAS_API void dsyr2(const char* uplo, const zor_int* n, const double* alpha, const double* x,
                                const zor_int* incx, const double* y, const zor_int* incy, double* a,
                                const zor_int* lda, size_t uplo_length);
ZOR_FORTRAN_BLAS_API void dtrmv(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                                const double* a, const zor_int* lda, double* x, const zor_int* incx,
                                size_t uplo_length, size_t trans_length, size_t diag_length);
ZOR_FORTRAN_BLAS_API void dtrsv(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                                const double* a, const zor_int* lda, double* x, const zor_int* incx,
                                size_t uplo_length, size_t trans_length, size_t diag_length);
ZOR_FORTRAN_BLAS_API void zgemv(const char* trans, const zor_int* m, const zor_int* n,
                                const zor_complex_double* alpha, const zor_complex_double* a,
                                const zor_int* lda, const zor_complex_double* x, const zor_int* incx,
                                const zor_complex_double* beta, zor_complex_double* y, const zor_int* incy,
                                size_t trans_length);
ZOR_FORTRAN_BLAS_API void zgerc(const zor_int* m, const zor_int* n, const zor_complex_double* alpha,
                                const zor_complex_double* x, const zor_int* incx, const zor_complex_double* y,
                                const zor_int* incy, zor_complex_double* a, const zor_int* lda);
ZOR_FORTRAN_BLAS_API void zgeru(const zor_int* m, const zor_int* n, const zor_complex_double* alpha,
                                const zor_complex_double* x, const zor_int* incx, const zor_complex_double* y,
                                const zor_int* incy, zor_complex_double* a, const zor_int* lda);
ZOR_FORTRAN_BLAS_API void zhemv(const char* uplo, const zor_int* n, const zor_complex_double* alpha,
                                const zor_complex_double* a, const zor_int* lda, const zor_complex_double* x,
                                const zor_int* incx, const zor_complex_double* beta, zor_complex_double* y,
                                const zor_int* incy, size_t uplo_length);
ZOR_FORTRAN_BLAS_API void zher(const char* uplo, const zor_int* n, const double* alpha,
                               const zor_complex_double* x, const zor_int* incx, zor_complex_double* a,
                               const zor_int* lda, size_t uplo_length);
ZOR_FORTRAN_BLAS_API void zher2(const char* uplo, const zor_int* n, const zor_complex_double* alpha,
                                const zor_complex_double* x, const zor_int* incx, const zor_complex_double* y,
                                const zor_int* incy, zor_complex_double* a, const zor_int* lda,
                                size_t uplo_length);
ZOR_FORTRAN_BLAS_API void ztrmv(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                                const zor_complex_double* a, const zor_int* lda, zor_complex_double* x,
                                const zor_int* incx, size_t uplo_length, size_t trans_length,
                                size_t diag_length);
ZOR_FORTRAN_BLAS_API void ztrsv(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                                const zor_complex_double* a, const zor_int* lda, zor_complex_double* x,
                                const zor_int* incx, size_t uplo_length, size_t trans_length,
                                size_t diag_length);

/* ---- level 3 ----------------------------------------------------------------------------------- */

ZOR_FORTRAN_BLAS_API void dgemm(const char* transa, const char* transb, const zor_int* m, const zor_int* n,
                                const zor_int* k, const double* alpha, const double* a, const zor_int* lda,
                                const double* b, const zor_int* ldb, const double* beta, double* c,
                                const zor_int* ldc, size_t transa_length, size_t transb_length);
ZOR_FORTRAN_BLAS_API void zgemm(const char* transa, const char* transb, const zor_int* m, const zor_int* n,
                                const zor_int* k, const zor_complex_double* alpha,
                                const zor_complex_double* a, const zor_int* lda, const zor_complex_double* b,
                                const zor_int* ldb, const zor_complex_double* beta, zor_complex_double* c,
                                const zor_int* ldc, size_t transa_length, size_t transb_length);
ZOR_FORTRAN_BLAS_API void dsymm(const char* side, const char* uplo, const zor_int* m, const zor_int* n,
                                const double* alpha, const double* a, const zor_int* lda, const double* b,
                                const zor_int* ldb, const double* beta, double* c, const zor_int* ldc,
                                size_t side_length, size_t uplo_length);
ZOR_FORTRAN_BLAS_API void zsymm(const char* side, const char* uplo, const zor_int* m, const zor_int* n,
                                const zor_complex_double* alpha, const zor_complex_double* a,
                                const zor_int* lda, const zor_complex_double* b, const zor_int* ldb,
                                const zor_complex_double* beta, zor_complex_double* c, const zor_int* ldc,
                                size_t side_length, size_t uplo_length);
ZOR_FORTRAN_BLAS_API void zhemm(const char* side, const char* uplo, const zor_int* m, const zor_int* n,
                                const zor_complex_double* alpha, const zor_complex_double* a,
                                const zor_int* lda, const zor_complex_double* b, const zor_int* ldb,
                                const zor_complex_double* beta, zor_complex_double* c, const zor_int* ldc,
                                size_t side_length, size_t uplo_length);
ZOR_FORTRAN_BLAS_API void dsyrk(const char* uplo, const char* trans, const zor_int* n, const zor_int* k,
                                const double* alpha, const double* a, const zor_int* lda, const double* beta,
                                double* c, const zor_int* ldc, size_t uplo_length, size_t trans_length);
ZOR_FORTRAN_BLAS_API void zsyrk(const char* uplo, const char* trans, const zor_int* n, const zor_int* k,
                                const zor_complex_double* alpha, const zor_complex_double* a,
                                const zor_int* lda, const zor_complex_double* beta, zor_complex_double* c,
                                const zor_int* ldc, size_t uplo_length, size_t trans_length);
ZOR_FORTRAN_BLAS_API void zherk(const char* uplo, const char* trans, const zor_int* n, const zor_int* k,
                                const double* alpha, const zor_complex_double* a, const zor_int* lda,
                                const double* beta, zor_complex_double* c, const zor_int* ldc,
                                size_t uplo_length, size_t trans_length);
ZOR_FORTRAN_BLAS_API void dsyr2k(const char* uplo, const char* trans, const zor_int* n, const zor_int* k,
                                 const double* alpha, const double* a, const zor_int* lda, const double* b,
                                 const zor_int* ldb, const double* beta, double* c, const zor_int* ldc,
                                 size_t uplo_length, size_t trans_length);
ZOR_FORTRAN_BLAS_API void zsyr2k(const char* uplo, const char* trans, const zor_int* n, const zor_int* k,
                                 const zor_complex_double* alpha, const zor_complex_double* a,
                                 const zor_int* lda, const zor_complex_double* b, const zor_int* ldb,
                                 const zor_complex_double* beta, zor_complex_double* c, const zor_int* ldc,
                                 size_t uplo_length, size_t trans_length);
ZOR_FORTRAN_BLAS_API void zher2k(const char* uplo, const char* trans, const zor_int* n, const zor_int* k,
                                 const zor_complex_double* alpha, const zor_complex_double* a,
                                 const zor_int* lda, const zor_complex_double* b, const zor_int* ldb,
                                 const double* beta, zor_complex_double* c, const zor_int* ldc,
                                 size_t uplo_length, size_t trans_length);
ZOR_FORTRAN_BLAS_API void dtrmm(const char* side, const char* uplo, const char* transa, const char* diag,
                                const zor_int* m, const zor_int* n, const double* alpha, const double* a,
                                const zor_int* lda, double* b, const zor_int* ldb, size_t side_length,
                                size_t uplo_length, size_t transa_length, size_t diag_length);
ZOR_FORTRAN_BLAS_API void ztrmm(const char* side, const char* uplo, const char* transa, const char* diag,
                                const zor_int* m, const zor_int* n, const zor_complex_double* alpha,
                                const zor_complex_double* a, const zor_int* lda, zor_complex_double* b,
                                const zor_int* ldb, size_t side_length, size_t uplo_length,
                                size_t transa_length, size_t diag_length);
ZOR_FORTRAN_BLAS_API void dtrsm(const char* side, const char* uplo, const char* transa, const char* diag,
                                const zor_int* m, const zor_int* n, const double* alpha, const double* a,
                                const zor_int* lda, double* b, const zor_int* ldb, size_t side_length,
                                size_t uplo_length, size_t transa_length, size_t diag_length);
ZOR_FORTRAN_BLAS_API void ztrsm(const char* side, const char* uplo, const char* transa, const char* diag,
                                const zor_int* m, const zor_int* n, const zor_complex_double* alpha,
                                const zor_complex_double* a, const zor_int* lda, zor_complex_double* b,
                                const zor_int* ldb, size_t side_length, size_t uplo_length,
                                size_t transa_length, size_t diag_length);

ZOR_EXTERN_C_END

#endif
