// The Fortran-style level-2 BLAS: widen the integers, run the routine's reference check (a bad
// argument is reported there, and the routine returns), then call the kernel.

#include "blas/dispatch.hpp"
#include "interface/blas.hpp"
#include "interface/blas_checks.hpp"

namespace zor::fortran {

void dgemv(const char* trans, const zor_int* m, const zor_int* n, const double* alpha, const double* a,
           const zor_int* lda, const double* x, const zor_int* incx, const double* beta, double* y,
           const zor_int* incy, int) {
    const zint m64 = widen(m), n64 = widen(n), lda64 = widen(lda), incx64 = widen(incx), incy64 = widen(incy);
    if (check_dgemv(*trans, m64, n64, lda64, incx64, incy64) != 0) return;
    zor::dgemv(*trans, m64, n64, *alpha, a, lda64, x, incx64, *beta, y, incy64);
}

void zgemv(const char* trans, const zor_int* m, const zor_int* n, const zcomplex* alpha, const zcomplex* a,
           const zor_int* lda, const zcomplex* x, const zor_int* incx, const zcomplex* beta, zcomplex* y,
           const zor_int* incy, int) {
    const zint m64 = widen(m), n64 = widen(n), lda64 = widen(lda), incx64 = widen(incx), incy64 = widen(incy);
    if (check_zgemv(*trans, m64, n64, lda64, incx64, incy64) != 0) return;
    zor::zgemv(*trans, m64, n64, *alpha, a, lda64, x, incx64, *beta, y, incy64);
}

void dger(const zor_int* m, const zor_int* n, const double* alpha, const double* x, const zor_int* incx,
          const double* y, const zor_int* incy, double* a, const zor_int* lda) {
    const zint m64 = widen(m), n64 = widen(n), incx64 = widen(incx), incy64 = widen(incy), lda64 = widen(lda);
    if (check_dger(m64, n64, incx64, incy64, lda64) != 0) return;
    zor::dger(m64, n64, *alpha, x, incx64, y, incy64, a, lda64);
}

void zgerc(const zor_int* m, const zor_int* n, const zcomplex* alpha, const zcomplex* x, const zor_int* incx,
           const zcomplex* y, const zor_int* incy, zcomplex* a, const zor_int* lda) {
    const zint m64 = widen(m), n64 = widen(n), incx64 = widen(incx), incy64 = widen(incy), lda64 = widen(lda);
    if (check_zgerc(m64, n64, incx64, incy64, lda64) != 0) return;
    zor::zgerc(m64, n64, *alpha, x, incx64, y, incy64, a, lda64);
}

void zgeru(const zor_int* m, const zor_int* n, const zcomplex* alpha, const zcomplex* x, const zor_int* incx,
           const zcomplex* y, const zor_int* incy, zcomplex* a, const zor_int* lda) {
    const zint m64 = widen(m), n64 = widen(n), incx64 = widen(incx), incy64 = widen(incy), lda64 = widen(lda);
    if (check_zgeru(m64, n64, incx64, incy64, lda64) != 0) return;
    zor::zgeru(m64, n64, *alpha, x, incx64, y, incy64, a, lda64);
}

void dsymv(const char* uplo, const zor_int* n, const double* alpha, const double* a, const zor_int* lda,
           const double* x, const zor_int* incx, const double* beta, double* y, const zor_int* incy, int) {
    const zint n64 = widen(n), lda64 = widen(lda), incx64 = widen(incx), incy64 = widen(incy);
    if (check_dsymv(*uplo, n64, lda64, incx64, incy64) != 0) return;
    zor::dsymv(*uplo, n64, *alpha, a, lda64, x, incx64, *beta, y, incy64);
}

void zhemv(const char* uplo, const zor_int* n, const zcomplex* alpha, const zcomplex* a, const zor_int* lda,
           const zcomplex* x, const zor_int* incx, const zcomplex* beta, zcomplex* y, const zor_int* incy,
           int) {
    const zint n64 = widen(n), lda64 = widen(lda), incx64 = widen(incx), incy64 = widen(incy);
    if (check_zhemv(*uplo, n64, lda64, incx64, incy64) != 0) return;
    zor::zhemv(*uplo, n64, *alpha, a, lda64, x, incx64, *beta, y, incy64);
}

void dsyr(const char* uplo, const zor_int* n, const double* alpha, const double* x, const zor_int* incx,
          double* a, const zor_int* lda, int) {
    const zint n64 = widen(n), incx64 = widen(incx), lda64 = widen(lda);
    if (check_dsyr(*uplo, n64, incx64, lda64) != 0) return;
    zor::dsyr(*uplo, n64, *alpha, x, incx64, a, lda64);
}

void zher(const char* uplo, const zor_int* n, const double* alpha, const zcomplex* x, const zor_int* incx,
          zcomplex* a, const zor_int* lda, int) {
    const zint n64 = widen(n), incx64 = widen(incx), lda64 = widen(lda);
    if (check_zher(*uplo, n64, incx64, lda64) != 0) return;
    zor::zher(*uplo, n64, *alpha, x, incx64, a, lda64);
}

void dsyr2(const char* uplo, const zor_int* n, const double* alpha, const double* x, const zor_int* incx,
           const double* y, const zor_int* incy, double* a, const zor_int* lda, int) {
    const zint n64 = widen(n), incx64 = widen(incx), incy64 = widen(incy), lda64 = widen(lda);
    if (check_dsyr2(*uplo, n64, incx64, incy64, lda64) != 0) return;
    zor::dsyr2(*uplo, n64, *alpha, x, incx64, y, incy64, a, lda64);
}

void zher2(const char* uplo, const zor_int* n, const zcomplex* alpha, const zcomplex* x, const zor_int* incx,
           const zcomplex* y, const zor_int* incy, zcomplex* a, const zor_int* lda, int) {
    const zint n64 = widen(n), incx64 = widen(incx), incy64 = widen(incy), lda64 = widen(lda);
    if (check_zher2(*uplo, n64, incx64, incy64, lda64) != 0) return;
    zor::zher2(*uplo, n64, *alpha, x, incx64, y, incy64, a, lda64);
}

void dtrmv(const char* uplo, const char* trans, const char* diag, const zor_int* n, const double* a,
           const zor_int* lda, double* x, const zor_int* incx, int, int, int) {
    const zint n64 = widen(n), lda64 = widen(lda), incx64 = widen(incx);
    if (check_dtrmv(*uplo, *trans, *diag, n64, lda64, incx64) != 0) return;
    zor::dtrmv(*uplo, *trans, *diag, n64, a, lda64, x, incx64);
}

void dtrsv(const char* uplo, const char* trans, const char* diag, const zor_int* n, const double* a,
           const zor_int* lda, double* x, const zor_int* incx, int, int, int) {
    const zint n64 = widen(n), lda64 = widen(lda), incx64 = widen(incx);
    if (check_dtrsv(*uplo, *trans, *diag, n64, lda64, incx64) != 0) return;
    zor::dtrsv(*uplo, *trans, *diag, n64, a, lda64, x, incx64);
}

void ztrmv(const char* uplo, const char* trans, const char* diag, const zor_int* n, const zcomplex* a,
           const zor_int* lda, zcomplex* x, const zor_int* incx, int, int, int) {
    const zint n64 = widen(n), lda64 = widen(lda), incx64 = widen(incx);
    if (check_ztrmv(*uplo, *trans, *diag, n64, lda64, incx64) != 0) return;
    zor::ztrmv(*uplo, *trans, *diag, n64, a, lda64, x, incx64);
}

void ztrsv(const char* uplo, const char* trans, const char* diag, const zor_int* n, const zcomplex* a,
           const zor_int* lda, zcomplex* x, const zor_int* incx, int, int, int) {
    const zint n64 = widen(n), lda64 = widen(lda), incx64 = widen(incx);
    if (check_ztrsv(*uplo, *trans, *diag, n64, lda64, incx64) != 0) return;
    zor::ztrsv(*uplo, *trans, *diag, n64, a, lda64, x, incx64);
}

}  // namespace zor::fortran
