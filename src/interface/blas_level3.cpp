// The Fortran-style level-3 BLAS: widen the integers, run the routine's reference check (a bad
// argument is reported there, and the routine returns), then call the engine.

#include "blas/dispatch.hpp"
#include "interface/blas.hpp"
#include "interface/blas_checks.hpp"

namespace zor::fortran {

void dgemm(const char* transa, const char* transb, const zor_int* m, const zor_int* n, const zor_int* k,
           const double* alpha, const double* a, const zor_int* lda, const double* b, const zor_int* ldb,
           const double* beta, double* c, const zor_int* ldc, int, int) {
    const zint m64 = widen(m), n64 = widen(n), k64 = widen(k);
    const zint lda64 = widen(lda), ldb64 = widen(ldb), ldc64 = widen(ldc);
    if (check_dgemm(*transa, *transb, m64, n64, k64, lda64, ldb64, ldc64) != 0) return;
    zor::dgemm(*transa, *transb, m64, n64, k64, *alpha, a, lda64, b, ldb64, *beta, c, ldc64);
}

void zgemm(const char* transa, const char* transb, const zor_int* m, const zor_int* n, const zor_int* k,
           const zcomplex* alpha, const zcomplex* a, const zor_int* lda, const zcomplex* b,
           const zor_int* ldb, const zcomplex* beta, zcomplex* c, const zor_int* ldc, int, int) {
    const zint m64 = widen(m), n64 = widen(n), k64 = widen(k);
    const zint lda64 = widen(lda), ldb64 = widen(ldb), ldc64 = widen(ldc);
    if (check_zgemm(*transa, *transb, m64, n64, k64, lda64, ldb64, ldc64) != 0) return;
    zor::zgemm(*transa, *transb, m64, n64, k64, *alpha, a, lda64, b, ldb64, *beta, c, ldc64);
}

}  // namespace zor::fortran
