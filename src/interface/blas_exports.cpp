// The Fortran-style BLAS routines under their Fortran names (include/zor/zor_blas.h). Compiled into
// every build; only the build with ZOR_FORTRAN_BLAS_NAMES (and the drop-in library every build makes
// beside the default one) exports them. Each forwards to the internal Fortran-style routine, which
// widens the integers, runs the reference argument check and calls the kernel.

#include "interface/blas.hpp"
#include "interface/integers.hpp"
#include "zor/zor_blas.h"

using zor::fortran::as_complex;

extern "C" {

ZOR_API double dasum(const zor_int* n, const double* x, const zor_int* incx) {
    return zor::fortran::dasum(n, x, incx);
}

ZOR_API void daxpy(const zor_int* n, const double* alpha, const double* x, const zor_int* incx, double* y,
                   const zor_int* incy) {
    zor::fortran::daxpy(n, alpha, x, incx, y, incy);
}

ZOR_API void dcopy(const zor_int* n, const double* x, const zor_int* incx, double* y, const zor_int* incy) {
    zor::fortran::dcopy(n, x, incx, y, incy);
}

ZOR_API double ddot(const zor_int* n, const double* x, const zor_int* incx, const double* y,
                    const zor_int* incy) {
    return zor::fortran::ddot(n, x, incx, y, incy);
}

ZOR_API double dnrm2(const zor_int* n, const double* x, const zor_int* incx) {
    return zor::fortran::dnrm2(n, x, incx);
}

ZOR_API void drot(const zor_int* n, double* x, const zor_int* incx, double* y, const zor_int* incy,
                  const double* c, const double* s) {
    zor::fortran::drot(n, x, incx, y, incy, c, s);
}

ZOR_API void drotg(double* a, double* b, double* c, double* s) {
    zor::fortran::drotg(a, b, c, s);
}

ZOR_API void drotm(const zor_int* n, double* x, const zor_int* incx, double* y, const zor_int* incy,
                   const double* param) {
    zor::fortran::drotm(n, x, incx, y, incy, param);
}

ZOR_API void drotmg(double* d1, double* d2, double* x1, const double* y1, double* param) {
    zor::fortran::drotmg(d1, d2, x1, y1, param);
}

ZOR_API void dscal(const zor_int* n, const double* alpha, double* x, const zor_int* incx) {
    zor::fortran::dscal(n, alpha, x, incx);
}

ZOR_API void dswap(const zor_int* n, double* x, const zor_int* incx, double* y, const zor_int* incy) {
    zor::fortran::dswap(n, x, incx, y, incy);
}

ZOR_API zor_int idamax(const zor_int* n, const double* x, const zor_int* incx) {
    return zor::fortran::idamax(n, x, incx);
}

ZOR_API double dzasum(const zor_int* n, const zor_complex_double* x, const zor_int* incx) {
    return zor::fortran::dzasum(n, as_complex(x), incx);
}

ZOR_API double dznrm2(const zor_int* n, const zor_complex_double* x, const zor_int* incx) {
    return zor::fortran::dznrm2(n, as_complex(x), incx);
}

ZOR_API zor_int izamax(const zor_int* n, const zor_complex_double* x, const zor_int* incx) {
    return zor::fortran::izamax(n, as_complex(x), incx);
}

ZOR_API void zaxpy(const zor_int* n, const zor_complex_double* alpha, const zor_complex_double* x,
                   const zor_int* incx, zor_complex_double* y, const zor_int* incy) {
    zor::fortran::zaxpy(n, as_complex(alpha), as_complex(x), incx, as_complex(y), incy);
}

ZOR_API void zcopy(const zor_int* n, const zor_complex_double* x, const zor_int* incx, zor_complex_double* y,
                   const zor_int* incy) {
    zor::fortran::zcopy(n, as_complex(x), incx, as_complex(y), incy);
}

ZOR_API zor_complex_double zdotc(const zor_int* n, const zor_complex_double* x, const zor_int* incx,
                                 const zor_complex_double* y, const zor_int* incy) {
    zor_complex_double result;
    zor::fortran::zdotc(as_complex(&result), n, as_complex(x), incx, as_complex(y), incy);
    return result;
}

ZOR_API zor_complex_double zdotu(const zor_int* n, const zor_complex_double* x, const zor_int* incx,
                                 const zor_complex_double* y, const zor_int* incy) {
    zor_complex_double result;
    zor::fortran::zdotu(as_complex(&result), n, as_complex(x), incx, as_complex(y), incy);
    return result;
}

ZOR_API void zscal(const zor_int* n, const zor_complex_double* alpha, zor_complex_double* x,
                   const zor_int* incx) {
    zor::fortran::zscal(n, as_complex(alpha), as_complex(x), incx);
}

ZOR_API void zswap(const zor_int* n, zor_complex_double* x, const zor_int* incx, zor_complex_double* y,
                   const zor_int* incy) {
    zor::fortran::zswap(n, as_complex(x), incx, as_complex(y), incy);
}

ZOR_API void dgemv(const char* trans, const zor_int* m, const zor_int* n, const double* alpha,
                   const double* a, const zor_int* lda, const double* x, const zor_int* incx,
                   const double* beta, double* y, const zor_int* incy, size_t trans_length) {
    zor::fortran::dgemv(trans, m, n, alpha, a, lda, x, incx, beta, y, incy, static_cast<int>(trans_length));
}

ZOR_API void dger(const zor_int* m, const zor_int* n, const double* alpha, const double* x,
                  const zor_int* incx, const double* y, const zor_int* incy, double* a, const zor_int* lda) {
    zor::fortran::dger(m, n, alpha, x, incx, y, incy, a, lda);
}

ZOR_API void dsymv(const char* uplo, const zor_int* n, const double* alpha, const double* a,
                   const zor_int* lda, const double* x, const zor_int* incx, const double* beta, double* y,
                   const zor_int* incy, size_t uplo_length) {
    zor::fortran::dsymv(uplo, n, alpha, a, lda, x, incx, beta, y, incy, static_cast<int>(uplo_length));
}

ZOR_API void dsyr(const char* uplo, const zor_int* n, const double* alpha, const double* x,
                  const zor_int* incx, double* a, const zor_int* lda, size_t uplo_length) {
    zor::fortran::dsyr(uplo, n, alpha, x, incx, a, lda, static_cast<int>(uplo_length));
}

ZOR_API void dsyr2(const char* uplo, const zor_int* n, const double* alpha, const double* x,
                   const zor_int* incx, const double* y, const zor_int* incy, double* a, const zor_int* lda,
                   size_t uplo_length) {
    zor::fortran::dsyr2(uplo, n, alpha, x, incx, y, incy, a, lda, static_cast<int>(uplo_length));
}

ZOR_API void dtrmv(const char* uplo, const char* trans, const char* diag, const zor_int* n, const double* a,
                   const zor_int* lda, double* x, const zor_int* incx, size_t uplo_length,
                   size_t trans_length, size_t diag_length) {
    zor::fortran::dtrmv(uplo, trans, diag, n, a, lda, x, incx, static_cast<int>(uplo_length),
                        static_cast<int>(trans_length), static_cast<int>(diag_length));
}

ZOR_API void dtrsv(const char* uplo, const char* trans, const char* diag, const zor_int* n, const double* a,
                   const zor_int* lda, double* x, const zor_int* incx, size_t uplo_length,
                   size_t trans_length, size_t diag_length) {
    zor::fortran::dtrsv(uplo, trans, diag, n, a, lda, x, incx, static_cast<int>(uplo_length),
                        static_cast<int>(trans_length), static_cast<int>(diag_length));
}

ZOR_API void zgemv(const char* trans, const zor_int* m, const zor_int* n, const zor_complex_double* alpha,
                   const zor_complex_double* a, const zor_int* lda, const zor_complex_double* x,
                   const zor_int* incx, const zor_complex_double* beta, zor_complex_double* y,
                   const zor_int* incy, size_t trans_length) {
    zor::fortran::zgemv(trans, m, n, as_complex(alpha), as_complex(a), lda, as_complex(x), incx,
                        as_complex(beta), as_complex(y), incy, static_cast<int>(trans_length));
}

ZOR_API void zgerc(const zor_int* m, const zor_int* n, const zor_complex_double* alpha,
                   const zor_complex_double* x, const zor_int* incx, const zor_complex_double* y,
                   const zor_int* incy, zor_complex_double* a, const zor_int* lda) {
    zor::fortran::zgerc(m, n, as_complex(alpha), as_complex(x), incx, as_complex(y), incy, as_complex(a),
                        lda);
}

ZOR_API void zgeru(const zor_int* m, const zor_int* n, const zor_complex_double* alpha,
                   const zor_complex_double* x, const zor_int* incx, const zor_complex_double* y,
                   const zor_int* incy, zor_complex_double* a, const zor_int* lda) {
    zor::fortran::zgeru(m, n, as_complex(alpha), as_complex(x), incx, as_complex(y), incy, as_complex(a),
                        lda);
}

ZOR_API void zhemv(const char* uplo, const zor_int* n, const zor_complex_double* alpha,
                   const zor_complex_double* a, const zor_int* lda, const zor_complex_double* x,
                   const zor_int* incx, const zor_complex_double* beta, zor_complex_double* y,
                   const zor_int* incy, size_t uplo_length) {
    zor::fortran::zhemv(uplo, n, as_complex(alpha), as_complex(a), lda, as_complex(x), incx, as_complex(beta),
                        as_complex(y), incy, static_cast<int>(uplo_length));
}

ZOR_API void zher(const char* uplo, const zor_int* n, const double* alpha, const zor_complex_double* x,
                  const zor_int* incx, zor_complex_double* a, const zor_int* lda, size_t uplo_length) {
    zor::fortran::zher(uplo, n, alpha, as_complex(x), incx, as_complex(a), lda,
                       static_cast<int>(uplo_length));
}

ZOR_API void zher2(const char* uplo, const zor_int* n, const zor_complex_double* alpha,
                   const zor_complex_double* x, const zor_int* incx, const zor_complex_double* y,
                   const zor_int* incy, zor_complex_double* a, const zor_int* lda, size_t uplo_length) {
    zor::fortran::zher2(uplo, n, as_complex(alpha), as_complex(x), incx, as_complex(y), incy, as_complex(a),
                        lda, static_cast<int>(uplo_length));
}

ZOR_API void ztrmv(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                   const zor_complex_double* a, const zor_int* lda, zor_complex_double* x,
                   const zor_int* incx, size_t uplo_length, size_t trans_length, size_t diag_length) {
    zor::fortran::ztrmv(uplo, trans, diag, n, as_complex(a), lda, as_complex(x), incx,
                        static_cast<int>(uplo_length), static_cast<int>(trans_length),
                        static_cast<int>(diag_length));
}

ZOR_API void ztrsv(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                   const zor_complex_double* a, const zor_int* lda, zor_complex_double* x,
                   const zor_int* incx, size_t uplo_length, size_t trans_length, size_t diag_length) {
    zor::fortran::ztrsv(uplo, trans, diag, n, as_complex(a), lda, as_complex(x), incx,
                        static_cast<int>(uplo_length), static_cast<int>(trans_length),
                        static_cast<int>(diag_length));
}

ZOR_API void dgemm(const char* transa, const char* transb, const zor_int* m, const zor_int* n,
                   const zor_int* k, const double* alpha, const double* a, const zor_int* lda,
                   const double* b, const zor_int* ldb, const double* beta, double* c, const zor_int* ldc,
                   size_t transa_length, size_t transb_length) {
    zor::fortran::dgemm(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc,
                        static_cast<int>(transa_length), static_cast<int>(transb_length));
}

ZOR_API void zgemm(const char* transa, const char* transb, const zor_int* m, const zor_int* n,
                   const zor_int* k, const zor_complex_double* alpha, const zor_complex_double* a,
                   const zor_int* lda, const zor_complex_double* b, const zor_int* ldb,
                   const zor_complex_double* beta, zor_complex_double* c, const zor_int* ldc,
                   size_t transa_length, size_t transb_length) {
    zor::fortran::zgemm(transa, transb, m, n, k, as_complex(alpha), as_complex(a), lda, as_complex(b), ldb,
                        as_complex(beta), as_complex(c), ldc, static_cast<int>(transa_length),
                        static_cast<int>(transb_length));
}

ZOR_API void dsymm(const char* side, const char* uplo, const zor_int* m, const zor_int* n,
                   const double* alpha, const double* a, const zor_int* lda, const double* b,
                   const zor_int* ldb, const double* beta, double* c, const zor_int* ldc, size_t, size_t) {
    zor::fortran::dsymm(side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
}

ZOR_API void zsymm(const char* side, const char* uplo, const zor_int* m, const zor_int* n,
                   const zor_complex_double* alpha, const zor_complex_double* a, const zor_int* lda,
                   const zor_complex_double* b, const zor_int* ldb, const zor_complex_double* beta,
                   zor_complex_double* c, const zor_int* ldc, size_t, size_t) {
    zor::fortran::zsymm(side, uplo, m, n, as_complex(alpha), as_complex(a), lda, as_complex(b), ldb,
                        as_complex(beta), as_complex(c), ldc);
}

ZOR_API void zhemm(const char* side, const char* uplo, const zor_int* m, const zor_int* n,
                   const zor_complex_double* alpha, const zor_complex_double* a, const zor_int* lda,
                   const zor_complex_double* b, const zor_int* ldb, const zor_complex_double* beta,
                   zor_complex_double* c, const zor_int* ldc, size_t, size_t) {
    zor::fortran::zhemm(side, uplo, m, n, as_complex(alpha), as_complex(a), lda, as_complex(b), ldb,
                        as_complex(beta), as_complex(c), ldc);
}

ZOR_API void dsyrk(const char* uplo, const char* trans, const zor_int* n, const zor_int* k,
                   const double* alpha, const double* a, const zor_int* lda, const double* beta, double* c,
                   const zor_int* ldc, size_t, size_t) {
    zor::fortran::dsyrk(uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
}

ZOR_API void zsyrk(const char* uplo, const char* trans, const zor_int* n, const zor_int* k,
                   const zor_complex_double* alpha, const zor_complex_double* a, const zor_int* lda,
                   const zor_complex_double* beta, zor_complex_double* c, const zor_int* ldc, size_t,
                   size_t) {
    zor::fortran::zsyrk(uplo, trans, n, k, as_complex(alpha), as_complex(a), lda, as_complex(beta),
                        as_complex(c), ldc);
}

ZOR_API void zherk(const char* uplo, const char* trans, const zor_int* n, const zor_int* k,
                   const double* alpha, const zor_complex_double* a, const zor_int* lda, const double* beta,
                   zor_complex_double* c, const zor_int* ldc, size_t, size_t) {
    zor::fortran::zherk(uplo, trans, n, k, alpha, as_complex(a), lda, beta, as_complex(c), ldc);
}

ZOR_API void dsyr2k(const char* uplo, const char* trans, const zor_int* n, const zor_int* k,
                    const double* alpha, const double* a, const zor_int* lda, const double* b,
                    const zor_int* ldb, const double* beta, double* c, const zor_int* ldc, size_t, size_t) {
    zor::fortran::dsyr2k(uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

ZOR_API void zsyr2k(const char* uplo, const char* trans, const zor_int* n, const zor_int* k,
                    const zor_complex_double* alpha, const zor_complex_double* a, const zor_int* lda,
                    const zor_complex_double* b, const zor_int* ldb, const zor_complex_double* beta,
                    zor_complex_double* c, const zor_int* ldc, size_t, size_t) {
    zor::fortran::zsyr2k(uplo, trans, n, k, as_complex(alpha), as_complex(a), lda, as_complex(b), ldb,
                         as_complex(beta), as_complex(c), ldc);
}

ZOR_API void zher2k(const char* uplo, const char* trans, const zor_int* n, const zor_int* k,
                    const zor_complex_double* alpha, const zor_complex_double* a, const zor_int* lda,
                    const zor_complex_double* b, const zor_int* ldb, const double* beta,
                    zor_complex_double* c, const zor_int* ldc, size_t, size_t) {
    zor::fortran::zher2k(uplo, trans, n, k, as_complex(alpha), as_complex(a), lda, as_complex(b), ldb, beta,
                         as_complex(c), ldc);
}

ZOR_API void dtrmm(const char* side, const char* uplo, const char* transa, const char* diag, const zor_int* m,
                   const zor_int* n, const double* alpha, const double* a, const zor_int* lda, double* b,
                   const zor_int* ldb, size_t, size_t, size_t, size_t) {
    zor::fortran::dtrmm(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

ZOR_API void ztrmm(const char* side, const char* uplo, const char* transa, const char* diag, const zor_int* m,
                   const zor_int* n, const zor_complex_double* alpha, const zor_complex_double* a,
                   const zor_int* lda, zor_complex_double* b, const zor_int* ldb, size_t, size_t, size_t,
                   size_t) {
    zor::fortran::ztrmm(side, uplo, transa, diag, m, n, as_complex(alpha), as_complex(a), lda, as_complex(b),
                        ldb);
}

ZOR_API void dtrsm(const char* side, const char* uplo, const char* transa, const char* diag, const zor_int* m,
                   const zor_int* n, const double* alpha, const double* a, const zor_int* lda, double* b,
                   const zor_int* ldb, size_t, size_t, size_t, size_t) {
    zor::fortran::dtrsm(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

ZOR_API void ztrsm(const char* side, const char* uplo, const char* transa, const char* diag, const zor_int* m,
                   const zor_int* n, const zor_complex_double* alpha, const zor_complex_double* a,
                   const zor_int* lda, zor_complex_double* b, const zor_int* ldb, size_t, size_t, size_t,
                   size_t) {
    zor::fortran::ztrsm(side, uplo, transa, diag, m, n, as_complex(alpha), as_complex(a), lda, as_complex(b),
                        ldb);
}

}  // extern "C"
