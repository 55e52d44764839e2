/* The CBLAS interface of zor: the published C prototypes and enumerations of the BLAS, in double
 * (d) and double-complex (z) precision. Integers are 32-bit; complex arguments are addresses of
 * two adjacent doubles, real part first. Compiles as C and as C++. */
#ifndef ZOR_ZOR_CBLAS_H
#define ZOR_ZOR_CBLAS_H

#include <stddef.h>

#include "zor/zor_config.h"

/* A C caller may pass any int as an enumeration (a value outside it is reported as an error of that
 * parameter). In C++ the enumerations are therefore of type int, so that every int is one of their
 * values: without a fixed type a C++ enumeration holds only the values its bits need (0 to 127
 * here), and reading another is undefined. */
#ifdef __cplusplus
#define ZOR_CBLAS_ENUM_TYPE : int
#else
#define ZOR_CBLAS_ENUM_TYPE
#endif

typedef enum CBLAS_LAYOUT ZOR_CBLAS_ENUM_TYPE { CblasRowMajor = 101, CblasColMajor = 102 } CBLAS_LAYOUT;
typedef enum CBLAS_TRANSPOSE ZOR_CBLAS_ENUM_TYPE {
    CblasNoTrans = 111,
    CblasTrans = 112,
    CblasConjTrans = 113
} CBLAS_TRANSPOSE;
typedef enum CBLAS_UPLO ZOR_CBLAS_ENUM_TYPE { CblasUpper = 121, CblasLower = 122 } CBLAS_UPLO;
typedef enum CBLAS_DIAG ZOR_CBLAS_ENUM_TYPE { CblasNonUnit = 131, CblasUnit = 132 } CBLAS_DIAG;
typedef enum CBLAS_SIDE ZOR_CBLAS_ENUM_TYPE { CblasLeft = 141, CblasRight = 142 } CBLAS_SIDE;

/* The layout enumeration's older name, usable as CBLAS_ORDER and as enum CBLAS_ORDER. */
#define CBLAS_ORDER CBLAS_LAYOUT

/* The type of the zero-based indices that cblas_i?amax and cblas_i?amin return. */
#define CBLAS_INDEX size_t

ZOR_EXTERN_C_BEGIN

/* Level 1: vector operations. */
ZOR_API double cblas_dasum(const zor_int N, const double* X, const zor_int incX);
ZOR_API void cblas_daxpy(const zor_int N, const double alpha, const double* X, const zor_int incX, double* Y,
                         const zor_int incY);
ZOR_API void cblas_dcopy(const zor_int N, const double* X, const zor_int incX, double* Y, const zor_int incY);
ZOR_API double cblas_ddot(const zor_int N, const double* X, const zor_int incX, const double* Y,
                          const zor_int incY);
ZOR_API double cblas_dnrm2(const zor_int N, const double* X, const zor_int incX);
ZOR_API void cblas_drot(const zor_int N, double* X, const zor_int incX, double* Y, const zor_int incY,
                        const double c, const double s);
ZOR_API void cblas_drotg(double* a, double* b, double* c, double* s);
ZOR_API void cblas_drotm(const zor_int N, double* X, const zor_int incX, double* Y, const zor_int incY,
                         const double* P);
ZOR_API void cblas_drotmg(double* d1, double* d2, double* b1, const double b2, double* P);
ZOR_API void cblas_dscal(const zor_int N, const double alpha, double* X, const zor_int incX);
ZOR_API void cblas_dswap(const zor_int N, double* X, const zor_int incX, double* Y, const zor_int incY);
ZOR_API CBLAS_INDEX cblas_idamax(const zor_int N, const double* X, const zor_int incX);
ZOR_API CBLAS_INDEX cblas_idamin(const zor_int N, const double* X, const zor_int incX);

ZOR_API double cblas_dzasum(const zor_int N, const void* X, const zor_int incX);
ZOR_API double cblas_dznrm2(const zor_int N, const void* X, const zor_int incX);
ZOR_API CBLAS_INDEX cblas_izamax(const zor_int N, const void* X, const zor_int incX);
ZOR_API CBLAS_INDEX cblas_izamin(const zor_int N, const void* X, const zor_int incX);
ZOR_API void cblas_zaxpy(const zor_int N, const void* alpha, const void* X, const zor_int incX, void* Y,
                         const zor_int incY);
ZOR_API void cblas_zcopy(const zor_int N, const void* X, const zor_int incX, void* Y, const zor_int incY);
ZOR_API void cblas_zdotc_sub(const zor_int N, const void* X, const zor_int incX, const void* Y,
                             const zor_int incY, void* dotc);
ZOR_API void cblas_zdotu_sub(const zor_int N, const void* X, const zor_int incX, const void* Y,
                             const zor_int incY, void* dotu);
ZOR_API void cblas_zscal(const zor_int N, const void* alpha, void* X, const zor_int incX);
ZOR_API void cblas_zswap(const zor_int N, void* X, const zor_int incX, void* Y, const zor_int incY);

/* Level 2: matrix-vector operations. */
ZOR_API void cblas_dgemv(const CBLAS_LAYOUT Layout, const CBLAS_TRANSPOSE TransA, const zor_int M,
                         const zor_int N, const double alpha, const double* A, const zor_int lda,
                         const double* X, const zor_int incX, const double beta, double* Y,
                         const zor_int incY);
ZOR_API void cblas_dger(const CBLAS_LAYOUT Layout, const zor_int M, const zor_int N, const double alpha,
                        const double* X, const zor_int incX, const double* Y, const zor_int incY, double* A,
                        const zor_int lda);
ZOR_API void cblas_dsymv(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const zor_int N,
                         const double alpha, const double* A, const zor_int lda, const double* X,
                         const zor_int incX, const double beta, double* Y, const zor_int incY);
ZOR_API void cblas_dsyr(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const zor_int N, const double alpha,
                        const double* X, const zor_int incX, double* A, const zor_int lda);
ZOR_API void cblas_dsyr2(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const zor_int N,
                         const double alpha, const double* X, const zor_int incX, const double* Y,
                         const zor_int incY, double* A, const zor_int lda);
ZOR_API void cblas_dtrmv(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE TransA,
                         const CBLAS_DIAG Diag, const zor_int N, const double* A, const zor_int lda,
                         double* X, const zor_int incX);
ZOR_API void cblas_dtrsv(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE TransA,
                         const CBLAS_DIAG Diag, const zor_int N, const double* A, const zor_int lda,
                         double* X, const zor_int incX);

ZOR_API void cblas_zgemv(const CBLAS_LAYOUT Layout, const CBLAS_TRANSPOSE TransA, const zor_int M,
                         const zor_int N, const void* alpha, const void* A, const zor_int lda, const void* X,
                         const zor_int incX, const void* beta, void* Y, const zor_int incY);
ZOR_API void cblas_zgerc(const CBLAS_LAYOUT Layout, const zor_int M, const zor_int N, const void* alpha,
                         const void* X, const zor_int incX, const void* Y, const zor_int incY, void* A,
                         const zor_int lda);
ZOR_API void cblas_zgeru(const CBLAS_LAYOUT Layout, const zor_int M, const zor_int N, const void* alpha,
                         const void* X, const zor_int incX, const void* Y, const zor_int incY, void* A,
                         const zor_int lda);
ZOR_API void cblas_zhemv(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const zor_int N, const void* alpha,
                         const void* A, const zor_int lda, const void* X, const zor_int incX,
                         const void* beta, void* Y, const zor_int incY);
ZOR_API void cblas_zher(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const zor_int N, const double alpha,
                        const void* X, const zor_int incX, void* A, const zor_int lda);
ZOR_API void cblas_zher2(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const zor_int N, const void* alpha,
                         const void* X, const zor_int incX, const void* Y, const zor_int incY, void* A,
                         const zor_int lda);
ZOR_API void cblas_ztrmv(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE TransA,
                         const CBLAS_DIAG Diag, const zor_int N, const void* A, const zor_int lda, void* X,
                         const zor_int incX);
ZOR_API void cblas_ztrsv(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE TransA,
                         const CBLAS_DIAG Diag, const zor_int N, const void* A, const zor_int lda, void* X,
                         const zor_int incX);

/* Level 3: matrix-matrix operations. */
ZOR_API void cblas_dgemm(const CBLAS_LAYOUT Layout, const CBLAS_TRANSPOSE TransA,
                         const CBLAS_TRANSPOSE TransB, const zor_int M, const zor_int N, const zor_int K,
                         const double alpha, const double* A, const zor_int lda, const double* B,
                         const zor_int ldb, const double beta, double* C, const zor_int ldc);
ZOR_API void cblas_zgemm(const CBLAS_LAYOUT Layout, const CBLAS_TRANSPOSE TransA,
                         const CBLAS_TRANSPOSE TransB, const zor_int M, const zor_int N, const zor_int K,
                         const void* alpha, const void* A, const zor_int lda, const void* B,
                         const zor_int ldb, const void* beta, void* C, const zor_int ldc);
ZOR_API void cblas_dsymm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const zor_int M, const zor_int N, const double alpha, const double* A,
                         const zor_int lda, const double* B, const zor_int ldb, const double beta, double* C,
                         const zor_int ldc);
ZOR_API void cblas_dsyrk(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE Trans,
                         const zor_int N, const zor_int K, const double alpha, const double* A,
                         const zor_int lda, const double beta, double* C, const zor_int ldc);
ZOR_API void cblas_dsyr2k(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE Trans,
                          const zor_int N, const zor_int K, const double alpha, const double* A,
                          const zor_int lda, const double* B, const zor_int ldb, const double beta, double* C,
                          const zor_int ldc);
ZOR_API void cblas_dtrmm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const zor_int M,
                         const zor_int N, const double alpha, const double* A, const zor_int lda, double* B,
                         const zor_int ldb);
ZOR_API void cblas_dtrsm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const zor_int M,
                         const zor_int N, const double alpha, const double* A, const zor_int lda, double* B,
                         const zor_int ldb);

ZOR_API void cblas_zsymm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const zor_int M, const zor_int N, const void* alpha, const void* A,
                         const zor_int lda, const void* B, const zor_int ldb, const void* beta, void* C,
                         const zor_int ldc);
ZOR_API void cblas_zhemm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const zor_int M, const zor_int N, const void* alpha, const void* A,
                         const zor_int lda, const void* B, const zor_int ldb, const void* beta, void* C,
                         const zor_int ldc);
ZOR_API void cblas_zsyrk(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE Trans,
                         const zor_int N, const zor_int K, const void* alpha, const void* A,
                         const zor_int lda, const void* beta, void* C, const zor_int ldc);
ZOR_API void cblas_zherk(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE Trans,
                         const zor_int N, const zor_int K, const double alpha, const void* A,
                         const zor_int lda, const double beta, void* C, const zor_int ldc);
ZOR_API void cblas_zsyr2k(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE Trans,
                          const zor_int N, const zor_int K, const void* alpha, const void* A,
                          const zor_int lda, const void* B, const zor_int ldb, const void* beta, void* C,
                          const zor_int ldc);
ZOR_API void cblas_zher2k(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE Trans,
                          const zor_int N, const zor_int K, const void* alpha, const void* A,
                          const zor_int lda, const void* B, const zor_int ldb, const double beta, void* C,
                          const zor_int ldc);
ZOR_API void cblas_ztrmm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const zor_int M,
                         const zor_int N, const void* alpha, const void* A, const zor_int lda, void* B,
                         const zor_int ldb);
ZOR_API void cblas_ztrsm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const zor_int M,
                         const zor_int N, const void* alpha, const void* A, const zor_int lda, void* B,
                         const zor_int ldb);

ZOR_EXTERN_C_END

#endif
