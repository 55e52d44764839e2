// The Fortran-style level-3 BLAS: widen the integers, run the routine's reference check (a bad
// argument is reported there, and the routine returns), then call the engine. Beside GEMM, one
// template per argument shape; the routines of a shape differ in their check, their kernel and
// their scalar types.

#include "blas/dispatch.hpp"
#include "interface/blas.hpp"
#include "interface/blas_checks.hpp"

namespace zor::fortran {

namespace {

template <class Check, class Kernel, class Scalar, class T>
void symm(Check* check, const Kernel& kernel, const char* side, const char* uplo, const zor_int* m,
          const zor_int* n, const Scalar* alpha, const T* a, const zor_int* lda, const T* b,
          const zor_int* ldb, const Scalar* beta, T* c, const zor_int* ldc) {
    const zint m_ = widen(m), n_ = widen(n), lda_ = widen(lda), ldb_ = widen(ldb), ldc_ = widen(ldc);
    if (check(*side, *uplo, m_, n_, lda_, ldb_, ldc_) != 0) return;
    kernel(*side, *uplo, m_, n_, *alpha, a, lda_, b, ldb_, *beta, c, ldc_);
}

template <class Check, class Kernel, class Scalar, class T>
void rank_k(Check* check, const Kernel& kernel, const char* uplo, const char* trans, const zor_int* n,
            const zor_int* k, const Scalar* alpha, const T* a, const zor_int* lda, const Scalar* beta, T* c,
            const zor_int* ldc) {
    const zint n_ = widen(n), k_ = widen(k), lda_ = widen(lda), ldc_ = widen(ldc);
    if (check(*uplo, *trans, n_, k_, lda_, ldc_) != 0) return;
    kernel(*uplo, *trans, n_, k_, *alpha, a, lda_, *beta, c, ldc_);
}

template <class Check, class Kernel, class Alpha, class T, class Beta>
void rank_2k(Check* check, const Kernel& kernel, const char* uplo, const char* trans, const zor_int* n,
             const zor_int* k, const Alpha* alpha, const T* a, const zor_int* lda, const T* b,
             const zor_int* ldb, const Beta* beta, T* c, const zor_int* ldc) {
    const zint n_ = widen(n), k_ = widen(k), lda_ = widen(lda), ldb_ = widen(ldb), ldc_ = widen(ldc);
    if (check(*uplo, *trans, n_, k_, lda_, ldb_, ldc_) != 0) return;
    kernel(*uplo, *trans, n_, k_, *alpha, a, lda_, b, ldb_, *beta, c, ldc_);
}

template <class Check, class Kernel, class T>
void triangular(Check* check, const Kernel& kernel, const char* side, const char* uplo, const char* transa,
                const char* diag, const zor_int* m, const zor_int* n, const T* alpha, const T* a,
                const zor_int* lda, T* b, const zor_int* ldb) {
    const zint m_ = widen(m), n_ = widen(n), lda_ = widen(lda), ldb_ = widen(ldb);
    if (check(*side, *uplo, *transa, *diag, m_, n_, lda_, ldb_) != 0) return;
    kernel(*side, *uplo, *transa, *diag, m_, n_, *alpha, a, lda_, b, ldb_);
}

}  // namespace

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

void dsymm(const char* side, const char* uplo, const zor_int* m, const zor_int* n, const double* alpha,
           const double* a, const zor_int* lda, const double* b, const zor_int* ldb, const double* beta,
           double* c, const zor_int* ldc) {
    symm(&check_dsymm, zor::dsymm, side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
}

void zsymm(const char* side, const char* uplo, const zor_int* m, const zor_int* n, const zcomplex* alpha,
           const zcomplex* a, const zor_int* lda, const zcomplex* b, const zor_int* ldb, const zcomplex* beta,
           zcomplex* c, const zor_int* ldc) {
    symm(&check_zsymm, zor::zsymm, side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
}

void zhemm(const char* side, const char* uplo, const zor_int* m, const zor_int* n, const zcomplex* alpha,
           const zcomplex* a, const zor_int* lda, const zcomplex* b, const zor_int* ldb, const zcomplex* beta,
           zcomplex* c, const zor_int* ldc) {
    symm(&check_zhemm, zor::zhemm, side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
}

void dsyrk(const char* uplo, const char* trans, const zor_int* n, const zor_int* k, const double* alpha,
           const double* a, const zor_int* lda, const double* beta, double* c, const zor_int* ldc) {
    rank_k(&check_dsyrk, zor::dsyrk, uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
}

void zsyrk(const char* uplo, const char* trans, const zor_int* n, const zor_int* k, const zcomplex* alpha,
           const zcomplex* a, const zor_int* lda, const zcomplex* beta, zcomplex* c, const zor_int* ldc) {
    rank_k(&check_zsyrk, zor::zsyrk, uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
}

void zherk(const char* uplo, const char* trans, const zor_int* n, const zor_int* k, const double* alpha,
           const zcomplex* a, const zor_int* lda, const double* beta, zcomplex* c, const zor_int* ldc) {
    rank_k(&check_zherk, zor::zherk, uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
}

void dsyr2k(const char* uplo, const char* trans, const zor_int* n, const zor_int* k, const double* alpha,
            const double* a, const zor_int* lda, const double* b, const zor_int* ldb, const double* beta,
            double* c, const zor_int* ldc) {
    rank_2k(&check_dsyr2k, zor::dsyr2k, uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

void zsyr2k(const char* uplo, const char* trans, const zor_int* n, const zor_int* k, const zcomplex* alpha,
            const zcomplex* a, const zor_int* lda, const zcomplex* b, const zor_int* ldb,
            const zcomplex* beta, zcomplex* c, const zor_int* ldc) {
    rank_2k(&check_zsyr2k, zor::zsyr2k, uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

void zher2k(const char* uplo, const char* trans, const zor_int* n, const zor_int* k, const zcomplex* alpha,
            const zcomplex* a, const zor_int* lda, const zcomplex* b, const zor_int* ldb, const double* beta,
            zcomplex* c, const zor_int* ldc) {
    rank_2k(&check_zher2k, zor::zher2k, uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

void dtrmm(const char* side, const char* uplo, const char* transa, const char* diag, const zor_int* m,
           const zor_int* n, const double* alpha, const double* a, const zor_int* lda, double* b,
           const zor_int* ldb) {
    triangular(&check_dtrmm, zor::dtrmm, side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

void ztrmm(const char* side, const char* uplo, const char* transa, const char* diag, const zor_int* m,
           const zor_int* n, const zcomplex* alpha, const zcomplex* a, const zor_int* lda, zcomplex* b,
           const zor_int* ldb) {
    triangular(&check_ztrmm, zor::ztrmm, side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

void dtrsm(const char* side, const char* uplo, const char* transa, const char* diag, const zor_int* m,
           const zor_int* n, const double* alpha, const double* a, const zor_int* lda, double* b,
           const zor_int* ldb) {
    triangular(&check_dtrsm, zor::dtrsm, side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

void ztrsm(const char* side, const char* uplo, const char* transa, const char* diag, const zor_int* m,
           const zor_int* n, const zcomplex* alpha, const zcomplex* a, const zor_int* lda, zcomplex* b,
           const zor_int* ldb) {
    triangular(&check_ztrsm, zor::ztrsm, side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

}  // namespace zor::fortran
