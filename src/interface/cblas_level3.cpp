// The level-3 CBLAS functions: the checks in the published order (Layout after the dimensions,
// then the leading dimensions), then the Fortran-style routine on the column-major form of the
// call. A row-major matrix is the transpose of the column-major one in the same storage: a
// row-major product C = op(A) op(B) is the column-major Cᵀ = op(B)ᵀ op(A)ᵀ, so the operands and
// their letters change places, and so do M and N; the other routines swap M and N, side and uplo,
// and run syrk-like updates with the flipped transpose letters.

#include <type_traits>

#include "interface/blas.hpp"
#include "interface/cblas.hpp"
#include "zor/zor_cblas.h"

using zor::zcomplex;
namespace fortran = zor::fortran;

namespace {

using namespace zor::cblas;

const zcomplex* complex_in(const void* p) {
    return static_cast<const zcomplex*>(p);
}
zcomplex* complex_out(void* p) {
    return static_cast<zcomplex*>(p);
}

template <class T, class Routine>
void symm(const char* name, Routine* routine, int layout, int side, int uplo, zor_int m, zor_int n,
          const T* alpha, const T* a, zor_int lda, const T* b, zor_int ldb, const T* beta, T* c,
          zor_int ldc) {
    const zor_int rows = row_major(layout) ? n : m;
    if (!check_arguments(name, {{!valid_side(side), 2},
                                {!valid_uplo(uplo), 3},
                                {m < 0, 4},
                                {n < 0, 5},
                                {!valid_layout(layout), 1},
                                {leading_dimension_too_small(lda, side == CblasLeft ? m : n), 8},
                                {leading_dimension_too_small(ldb, rows), 10},
                                {leading_dimension_too_small(ldc, rows), 13}})) {
        return;
    }
    const char side_ = side_letter(layout, side), uplo_ = uplo_letter(layout, uplo);
    const zor_int cols = row_major(layout) ? m : n;
    routine(&side_, &uplo_, &rows, &cols, alpha, a, &lda, b, &ldb, beta, c, &ldc);
}

// The letter of an update's Trans: row-major calls use `flipped` (the real or the Hermitian table).
char update_letter(int layout, int trans, const char (&flipped)[3]) {
    return (row_major(layout) ? flipped : kTransposeLetters)[trans - CblasNoTrans];
}

// The Trans values an update takes: every one for real data; the complex symmetric updates take no
// conjugate transpose and the Hermitian ones no plain transpose.
enum class UpdateKind { Real, ComplexSymmetric, Hermitian };

bool valid_update_transpose(int trans, UpdateKind kind) {
    if (!valid_transpose(trans)) return false;
    if (kind == UpdateKind::ComplexSymmetric) return trans != CblasConjTrans;
    if (kind == UpdateKind::Hermitian) return trans != CblasTrans;
    return true;
}

// The checks of syrk (no B: b_ld null) and syr2k.
bool update_arguments(const char* name, UpdateKind kind, int layout, int uplo, int trans, zor_int n,
                      zor_int k, zor_int lda, const zor_int* ldb, zor_int ldc) {
    const bool untransposed = trans == CblasNoTrans;
    const zor_int rows = row_major(layout) == untransposed ? k : n;
    return check_arguments(name, {{!valid_uplo(uplo), 2},
                                  {!valid_update_transpose(trans, kind), 3},
                                  {n < 0, 4},
                                  {k < 0, 5},
                                  {!valid_layout(layout), 1},
                                  {leading_dimension_too_small(lda, rows), 8},
                                  {ldb != nullptr && leading_dimension_too_small(*ldb, rows), 10},
                                  {leading_dimension_too_small(ldc, n), ldb != nullptr ? 13 : 11}});
}

template <class Scalar, class T, class Routine>
void rank_k(const char* name, Routine* routine, UpdateKind kind, const char (&flipped)[3], int layout,
            int uplo, int trans, zor_int n, zor_int k, const Scalar* alpha, const T* a, zor_int lda,
            const Scalar* beta, T* c, zor_int ldc) {
    if (!update_arguments(name, kind, layout, uplo, trans, n, k, lda, nullptr, ldc)) return;
    const char uplo_ = uplo_letter(layout, uplo), trans_ = update_letter(layout, trans, flipped);
    routine(&uplo_, &trans_, &n, &k, alpha, a, &lda, beta, c, &ldc);
}

// `conjugate_row_major`: her2k, whose row-major form is the column-major one with conj(alpha).
template <class Alpha, class T, class Beta, class Routine>
void rank_2k(const char* name, Routine* routine, UpdateKind kind, const char (&flipped)[3],
             bool conjugate_row_major, int layout, int uplo, int trans, zor_int n, zor_int k,
             const Alpha* alpha, const T* a, zor_int lda, const T* b, zor_int ldb, const Beta* beta, T* c,
             zor_int ldc) {
    if (!update_arguments(name, kind, layout, uplo, trans, n, k, lda, &ldb, ldc)) return;
    const char uplo_ = uplo_letter(layout, uplo), trans_ = update_letter(layout, trans, flipped);
    Alpha alpha_ = *alpha;
    if constexpr (std::is_same_v<Alpha, zcomplex>) {
        if (conjugate_row_major && row_major(layout)) alpha_.im = -alpha_.im;
    }
    routine(&uplo_, &trans_, &n, &k, &alpha_, a, &lda, b, &ldb, beta, c, &ldc);
}

template <class T, class Routine>
void triangular(const char* name, Routine* routine, int layout, int side, int uplo, int transa, int diag,
                zor_int m, zor_int n, const T* alpha, const T* a, zor_int lda, T* b, zor_int ldb) {
    const zor_int rows = row_major(layout) ? n : m;
    if (!check_arguments(name, {{!valid_side(side), 2},
                                {!valid_uplo(uplo), 3},
                                {!valid_transpose(transa), 4},
                                {!valid_diag(diag), 5},
                                {m < 0, 6},
                                {n < 0, 7},
                                {!valid_layout(layout), 1},
                                {leading_dimension_too_small(lda, side == CblasLeft ? m : n), 10},
                                {leading_dimension_too_small(ldb, rows), 12}})) {
        return;
    }
    const char side_ = side_letter(layout, side), uplo_ = uplo_letter(layout, uplo);
    const char transa_ = transpose_letter(transa), diag_ = diag_letter(diag);
    const zor_int cols = row_major(layout) ? m : n;
    routine(&side_, &uplo_, &transa_, &diag_, &rows, &cols, alpha, a, &lda, b, &ldb);
}

// The checks of cblas_dgemm and cblas_zgemm; true when the call may go on. A's rows as stored are
// K for a row-major A that is not transposed, M for a column-major one, and the other way round
// when transposed; likewise B's.
bool gemm_arguments(const char* routine, int layout, int transa, int transb, zor_int m, zor_int n, zor_int k,
                    zor_int lda, zor_int ldb, zor_int ldc) {
    const bool row = row_major(layout);
    const bool a_plain = transa == CblasNoTrans, b_plain = transb == CblasNoTrans;
    const zor_int a_rows = row ? (a_plain ? k : m) : (a_plain ? m : k);
    const zor_int b_rows = row ? (b_plain ? n : k) : (b_plain ? k : n);
    return check_arguments(routine, {{!valid_transpose(transa), 2},
                                     {!valid_transpose(transb), 3},
                                     {m < 0, 4},
                                     {n < 0, 5},
                                     {k < 0, 6},
                                     {!valid_layout(layout), 1},
                                     {leading_dimension_too_small(lda, a_rows), 9},
                                     {leading_dimension_too_small(ldb, b_rows), 11},
                                     {leading_dimension_too_small(ldc, row ? n : m), 14}});
}

}  // namespace

extern "C" {

void cblas_dgemm(const CBLAS_LAYOUT Layout, const CBLAS_TRANSPOSE TransA, const CBLAS_TRANSPOSE TransB,
                 const zor_int M, const zor_int N, const zor_int K, const double alpha, const double* A,
                 const zor_int lda, const double* B, const zor_int ldb, const double beta, double* C,
                 const zor_int ldc) {
    if (!gemm_arguments("cblas_dgemm", Layout, TransA, TransB, M, N, K, lda, ldb, ldc)) return;
    const char a_letter = transpose_letter(TransA), b_letter = transpose_letter(TransB);
    if (row_major(Layout)) {
        fortran::dgemm(&b_letter, &a_letter, &N, &M, &K, &alpha, B, &ldb, A, &lda, &beta, C, &ldc, 1, 1);
    } else {
        fortran::dgemm(&a_letter, &b_letter, &M, &N, &K, &alpha, A, &lda, B, &ldb, &beta, C, &ldc, 1, 1);
    }
}

void cblas_zgemm(const CBLAS_LAYOUT Layout, const CBLAS_TRANSPOSE TransA, const CBLAS_TRANSPOSE TransB,
                 const zor_int M, const zor_int N, const zor_int K, const void* alpha, const void* A,
                 const zor_int lda, const void* B, const zor_int ldb, const void* beta, void* C,
                 const zor_int ldc) {
    if (!gemm_arguments("cblas_zgemm", Layout, TransA, TransB, M, N, K, lda, ldb, ldc)) return;
    const char a_letter = transpose_letter(TransA), b_letter = transpose_letter(TransB);
    const auto* al = static_cast<const zcomplex*>(alpha);
    const auto* be = static_cast<const zcomplex*>(beta);
    const auto* a = static_cast<const zcomplex*>(A);
    const auto* b = static_cast<const zcomplex*>(B);
    auto* c = static_cast<zcomplex*>(C);
    if (row_major(Layout)) {
        fortran::zgemm(&b_letter, &a_letter, &N, &M, &K, al, b, &ldb, a, &lda, be, c, &ldc, 1, 1);
    } else {
        fortran::zgemm(&a_letter, &b_letter, &M, &N, &K, al, a, &lda, b, &ldb, be, c, &ldc, 1, 1);
    }
}

void cblas_dsymm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo, const zor_int M,
                 const zor_int N, const double alpha, const double* A, const zor_int lda, const double* B,
                 const zor_int ldb, const double beta, double* C, const zor_int ldc) {
    symm("cblas_dsymm", &fortran::dsymm, Layout, Side, Uplo, M, N, &alpha, A, lda, B, ldb, &beta, C, ldc);
}

void cblas_zsymm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo, const zor_int M,
                 const zor_int N, const void* alpha, const void* A, const zor_int lda, const void* B,
                 const zor_int ldb, const void* beta, void* C, const zor_int ldc) {
    symm("cblas_zsymm", &fortran::zsymm, Layout, Side, Uplo, M, N, complex_in(alpha), complex_in(A), lda,
         complex_in(B), ldb, complex_in(beta), complex_out(C), ldc);
}

void cblas_zhemm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo, const zor_int M,
                 const zor_int N, const void* alpha, const void* A, const zor_int lda, const void* B,
                 const zor_int ldb, const void* beta, void* C, const zor_int ldc) {
    symm("cblas_zhemm", &fortran::zhemm, Layout, Side, Uplo, M, N, complex_in(alpha), complex_in(A), lda,
         complex_in(B), ldb, complex_in(beta), complex_out(C), ldc);
}

void cblas_dsyrk(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE Trans,
                 const zor_int N, const zor_int K, const double alpha, const double* A, const zor_int lda,
                 const double beta, double* C, const zor_int ldc) {
    rank_k("cblas_dsyrk", &fortran::dsyrk, UpdateKind::Real, kFlippedRealTransposeLetters, Layout, Uplo,
           Trans, N, K, &alpha, A, lda, &beta, C, ldc);
}

void cblas_zsyrk(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE Trans,
                 const zor_int N, const zor_int K, const void* alpha, const void* A, const zor_int lda,
                 const void* beta, void* C, const zor_int ldc) {
    rank_k("cblas_zsyrk", &fortran::zsyrk, UpdateKind::ComplexSymmetric, kFlippedRealTransposeLetters, Layout,
           Uplo, Trans, N, K, complex_in(alpha), complex_in(A), lda, complex_in(beta), complex_out(C), ldc);
}

void cblas_zherk(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE Trans,
                 const zor_int N, const zor_int K, const double alpha, const void* A, const zor_int lda,
                 const double beta, void* C, const zor_int ldc) {
    rank_k("cblas_zherk", &fortran::zherk, UpdateKind::Hermitian, kFlippedHermitianTransposeLetters, Layout,
           Uplo, Trans, N, K, &alpha, complex_in(A), lda, &beta, complex_out(C), ldc);
}

void cblas_dsyr2k(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE Trans,
                  const zor_int N, const zor_int K, const double alpha, const double* A, const zor_int lda,
                  const double* B, const zor_int ldb, const double beta, double* C, const zor_int ldc) {
    rank_2k("cblas_dsyr2k", &fortran::dsyr2k, UpdateKind::Real, kFlippedRealTransposeLetters, false, Layout,
            Uplo, Trans, N, K, &alpha, A, lda, B, ldb, &beta, C, ldc);
}

void cblas_zsyr2k(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE Trans,
                  const zor_int N, const zor_int K, const void* alpha, const void* A, const zor_int lda,
                  const void* B, const zor_int ldb, const void* beta, void* C, const zor_int ldc) {
    rank_2k("cblas_zsyr2k", &fortran::zsyr2k, UpdateKind::ComplexSymmetric, kFlippedRealTransposeLetters,
            false, Layout, Uplo, Trans, N, K, complex_in(alpha), complex_in(A), lda, complex_in(B), ldb,
            complex_in(beta), complex_out(C), ldc);
}

void cblas_zher2k(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE Trans,
                  const zor_int N, const zor_int K, const void* alpha, const void* A, const zor_int lda,
                  const void* B, const zor_int ldb, const double beta, void* C, const zor_int ldc) {
    rank_2k("cblas_zher2k", &fortran::zher2k, UpdateKind::Hermitian, kFlippedHermitianTransposeLetters, true,
            Layout, Uplo, Trans, N, K, complex_in(alpha), complex_in(A), lda, complex_in(B), ldb, &beta,
            complex_out(C), ldc);
}

void cblas_dtrmm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                 const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const zor_int M, const zor_int N,
                 const double alpha, const double* A, const zor_int lda, double* B, const zor_int ldb) {
    triangular("cblas_dtrmm", &fortran::dtrmm, Layout, Side, Uplo, TransA, Diag, M, N, &alpha, A, lda, B,
               ldb);
}

void cblas_ztrmm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                 const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const zor_int M, const zor_int N,
                 const void* alpha, const void* A, const zor_int lda, void* B, const zor_int ldb) {
    triangular("cblas_ztrmm", &fortran::ztrmm, Layout, Side, Uplo, TransA, Diag, M, N, complex_in(alpha),
               complex_in(A), lda, complex_out(B), ldb);
}

void cblas_dtrsm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                 const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const zor_int M, const zor_int N,
                 const double alpha, const double* A, const zor_int lda, double* B, const zor_int ldb) {
    triangular("cblas_dtrsm", &fortran::dtrsm, Layout, Side, Uplo, TransA, Diag, M, N, &alpha, A, lda, B,
               ldb);
}

void cblas_ztrsm(const CBLAS_LAYOUT Layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                 const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const zor_int M, const zor_int N,
                 const void* alpha, const void* A, const zor_int lda, void* B, const zor_int ldb) {
    triangular("cblas_ztrsm", &fortran::ztrsm, Layout, Side, Uplo, TransA, Diag, M, N, complex_in(alpha),
               complex_in(A), lda, complex_out(B), ldb);
}

}  // extern "C"
