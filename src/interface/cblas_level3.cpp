// The level-3 CBLAS functions: the argument checks in the published order (the transposes and the
// dimensions before the layout, then the leading dimensions), then the column-major Fortran-style
// routine. A row-major product C = op(A) op(B) is the column-major Cᵀ = op(B)ᵀ op(A)ᵀ: the operands
// and their letters change places, and so do M and N.

#include "interface/blas.hpp"
#include "interface/cblas.hpp"
#include "zor/zor_cblas.h"

using zor::zcomplex;
namespace fortran = zor::fortran;
using namespace zor::cblas;

namespace {

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

}  // extern "C"
