// The level-2 CBLAS functions: the argument checks in each function's published order (Layout
// first, the leading dimension before the increments; some report a bad letter enumeration and go
// on), then the column-major Fortran-style routine. A row-major call runs it on the transposed
// problem: uplo flipped, m and n swapped, and where that would need a conjugated matrix, the
// operands are conjugated instead (copies of x or y from ZOR_malloc, y's imaginary parts negated
// around the call, conjugated alpha and beta).

#include <cstdint>
#include <type_traits>

#include "interface/blas.hpp"
#include "interface/cblas.hpp"
#include "service/handlers.hpp"
#include "zor/zor_cblas.h"
#include "zor/zor_memory.h"

using zor::zcomplex;
namespace fortran = zor::fortran;
using namespace zor::cblas;

namespace {

const zcomplex* complex_in(const void* p) {
    return static_cast<const zcomplex*>(p);
}
zcomplex* complex_out(void* p) {
    return static_cast<zcomplex*>(p);
}
zcomplex conjugated(const void* p) {
    const zcomplex v = *complex_in(p);
    return {v.re, -v.im};
}

// Negates the imaginary parts of n elements at stride |inc|: conjugates a vector in place. The
// offsets are 64-bit: |inc| of the most negative increment, or (n - 1) |inc|, need not fit 32 bits.
void conjugate_in_place(zor_int n, void* v, zor_int inc) {
    const std::int64_t step = inc < 0 ? -static_cast<std::int64_t>(inc) : inc;
    zcomplex* p = complex_out(v);
    for (std::int64_t i = 0; i < n; ++i) p[i * step].im = -p[i * step].im;
}

// The n logical elements of x conjugated, with unit stride, in a block of ZOR_malloc; with n < 1
// nothing is copied and x stands as it is. Check failed() at once.
class ConjugatedCopy {
  public:
    ConjugatedCopy(zor_int n, const void* x, zor_int inc) : x_(x), inc_(inc) {
        if (n < 1) return;
        copy_ = static_cast<zcomplex*>(ZOR_malloc(static_cast<size_t>(n) * sizeof(zcomplex), 128));
        missing_ = copy_ == nullptr;
        if (missing_) return;
        const zcomplex* first = complex_in(x) + (inc < 0 ? static_cast<std::int64_t>(1 - n) * inc : 0);
        for (zor_int i = 0; i < n; ++i) {
            const zcomplex v = first[static_cast<std::int64_t>(i) * inc];
            copy_[i] = {v.re, -v.im};
        }
        x_ = copy_;
        inc_ = 1;
    }
    ~ConjugatedCopy() { ZOR_free(copy_); }
    ConjugatedCopy(const ConjugatedCopy&) = delete;
    ConjugatedCopy& operator=(const ConjugatedCopy&) = delete;

    // A copy was needed and its block could not be had: reported (message 1089) here.
    bool failed(const char* routine) const {
        return missing_ && zor::check_allocation(nullptr, routine) != 0;
    }
    const zcomplex* data() const { return complex_in(x_); }
    const zor_int* inc() const { return &inc_; }

  private:
    const void* x_;
    zor_int inc_;
    zcomplex* copy_ = nullptr;
    bool missing_ = false;
};

// The argument checks of each shape of function, shared by its real and complex forms. Each is
// the published order with its parameter numbers; true when the call may go on.
bool gemv_arguments(const char* routine, int layout, int trans, zor_int m, zor_int n, zor_int lda,
                    zor_int incx, zor_int incy) {
    return check_arguments(routine, {{!valid_layout(layout), 1},
                                     {!valid_transpose(trans), 2, false},
                                     {m < 0, 3},
                                     {n < 0, 4},
                                     {leading_dimension_too_small(lda, row_major(layout) ? n : m), 7},
                                     {incx == 0, 9},
                                     {incy == 0, 12}});
}
bool ger_arguments(const char* routine, int layout, zor_int m, zor_int n, zor_int lda, zor_int incx,
                   zor_int incy) {
    return check_arguments(routine, {{!valid_layout(layout), 1},
                                     {m < 0, 2},
                                     {n < 0, 3},
                                     {leading_dimension_too_small(lda, row_major(layout) ? n : m), 10},
                                     {incx == 0, 6},
                                     {incy == 0, 8}});
}
bool symv_arguments(const char* routine, int layout, int uplo, zor_int n, zor_int lda, zor_int incx,
                    zor_int incy) {
    return check_arguments(routine, {{!valid_layout(layout), 1},
                                     {!valid_uplo(uplo), 2, false},
                                     {n < 0, 3},
                                     {leading_dimension_too_small(lda, n), 6},
                                     {incx == 0, 8},
                                     {incy == 0, 11}});
}
bool syr_arguments(const char* routine, int layout, int uplo, zor_int n, zor_int lda, zor_int incx) {
    return check_arguments(routine, {{!valid_layout(layout), 1},
                                     {!valid_uplo(uplo), 2, false},
                                     {n < 0, 3},
                                     {leading_dimension_too_small(lda, n), 8},
                                     {incx == 0, 6}});
}
bool syr2_arguments(const char* routine, int layout, int uplo, zor_int n, zor_int lda, zor_int incx,
                    zor_int incy) {
    return check_arguments(routine, {{!valid_layout(layout), 1},
                                     {!valid_uplo(uplo), 2, false},
                                     {n < 0, 3},
                                     {leading_dimension_too_small(lda, n), 10},
                                     {incx == 0, 6},
                                     {incy == 0, 8}});
}

template <bool kConjugated>
void cblas_zger(const char* routine, const CBLAS_LAYOUT Layout, const zor_int M, const zor_int N,
                const void* alpha, const void* X, const zor_int incX, const void* Y, const zor_int incY,
                void* A, const zor_int lda) {
    const bool row = row_major(Layout);
    if (!ger_arguments(routine, Layout, M, N, lda, incX, incY)) return;
    auto* const update = kConjugated ? &fortran::zgerc : &fortran::zgeru;
    if (!row) {
        update(&M, &N, complex_in(alpha), complex_in(X), &incX, complex_in(Y), &incY, complex_out(A), &lda);
    } else if (!kConjugated) {
        fortran::zgeru(&N, &M, complex_in(alpha), complex_in(Y), &incY, complex_in(X), &incX, complex_out(A),
                       &lda);
    } else {
        // A' += alpha * conj(y) * x', A' the column-major view.
        const ConjugatedCopy y(N, Y, incY);
        if (y.failed(routine)) return;
        fortran::zgeru(&N, &M, complex_in(alpha), y.data(), y.inc(), complex_in(X), &incX, complex_out(A),
                       &lda);
    }
}

// trmv and trsv: trmv reports a bad uplo, trans or diag and goes on, trsv returns.
template <class T, class Routine>
void cblas_triangular(const char* routine, bool goes_on, Routine fortran_routine, const CBLAS_LAYOUT Layout,
                      const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag,
                      const zor_int N, const T* A, const zor_int lda, T* X, const zor_int incX) {
    if (!check_arguments(routine, {{!valid_layout(Layout), 1},
                                   {!valid_uplo(Uplo), 2, !goes_on},
                                   {!valid_transpose(TransA), 3, !goes_on},
                                   {!valid_diag(Diag), 4, !goes_on},
                                   {N < 0, 5},
                                   {leading_dimension_too_small(lda, N), 7},
                                   {incX == 0, 9}})) {
        return;
    }
    const bool row = row_major(Layout);
    const char uplo = uplo_letter(Layout, Uplo), diag = diag_letter(Diag);
    const char trans = row ? flipped_transpose_letter(TransA) : transpose_letter(TransA);
    // Row-major: op(A) = conj(A') for a conjugate transpose, so conj(x) takes A' itself.
    const bool conjugate = row && TransA == CblasConjTrans && std::is_same_v<T, zcomplex>;
    if (conjugate) conjugate_in_place(N, X, incX);
    fortran_routine(&uplo, &trans, &diag, &N, A, &lda, X, &incX, 1, 1, 1);
    if (conjugate) conjugate_in_place(N, X, incX);
}

}  // namespace

extern "C" {

void cblas_dgemv(const CBLAS_LAYOUT Layout, const CBLAS_TRANSPOSE TransA, const zor_int M, const zor_int N,
                 const double alpha, const double* A, const zor_int lda, const double* X, const zor_int incX,
                 const double beta, double* Y, const zor_int incY) {
    const bool row = row_major(Layout);
    if (!gemv_arguments("cblas_dgemv", Layout, TransA, M, N, lda, incX, incY)) return;
    const char trans = row ? flipped_transpose_letter(TransA) : transpose_letter(TransA);
    fortran::dgemv(&trans, row ? &N : &M, row ? &M : &N, &alpha, A, &lda, X, &incX, &beta, Y, &incY, 1);
}

void cblas_zgemv(const CBLAS_LAYOUT Layout, const CBLAS_TRANSPOSE TransA, const zor_int M, const zor_int N,
                 const void* alpha, const void* A, const zor_int lda, const void* X, const zor_int incX,
                 const void* beta, void* Y, const zor_int incY) {
    const bool row = row_major(Layout);
    if (!gemv_arguments("cblas_zgemv", Layout, TransA, M, N, lda, incX, incY)) return;
    const zcomplex* a = complex_in(A);
    if (!row) {
        const char trans = transpose_letter(TransA);
        fortran::zgemv(&trans, &M, &N, complex_in(alpha), a, &lda, complex_in(X), &incX, complex_in(beta),
                       complex_out(Y), &incY, 1);
        return;
    }
    const char trans = flipped_transpose_letter(TransA);
    if (TransA != CblasConjTrans) {
        fortran::zgemv(&trans, &N, &M, complex_in(alpha), a, &lda, complex_in(X), &incX, complex_in(beta),
                       complex_out(Y), &incY, 1);
        return;
    }
    // conj(y) := conj(alpha) * A' * conj(x) + conj(beta) * conj(y), A' the column-major view.
    const ConjugatedCopy x(M, X, incX);
    if (x.failed("cblas_zgemv")) return;
    const zcomplex alpha_c = conjugated(alpha), beta_c = conjugated(beta);
    conjugate_in_place(N, Y, incY);
    fortran::zgemv(&trans, &N, &M, &alpha_c, a, &lda, x.data(), x.inc(), &beta_c, complex_out(Y), &incY, 1);
    conjugate_in_place(N, Y, incY);
}

void cblas_dger(const CBLAS_LAYOUT Layout, const zor_int M, const zor_int N, const double alpha,
                const double* X, const zor_int incX, const double* Y, const zor_int incY, double* A,
                const zor_int lda) {
    const bool row = row_major(Layout);
    if (!ger_arguments("cblas_dger", Layout, M, N, lda, incX, incY)) return;
    if (row) {
        fortran::dger(&N, &M, &alpha, Y, &incY, X, &incX, A, &lda);
    } else {
        fortran::dger(&M, &N, &alpha, X, &incX, Y, &incY, A, &lda);
    }
}

void cblas_zgeru(const CBLAS_LAYOUT Layout, const zor_int M, const zor_int N, const void* alpha,
                 const void* X, const zor_int incX, const void* Y, const zor_int incY, void* A,
                 const zor_int lda) {
    cblas_zger<false>("cblas_zgeru", Layout, M, N, alpha, X, incX, Y, incY, A, lda);
}

void cblas_zgerc(const CBLAS_LAYOUT Layout, const zor_int M, const zor_int N, const void* alpha,
                 const void* X, const zor_int incX, const void* Y, const zor_int incY, void* A,
                 const zor_int lda) {
    cblas_zger<true>("cblas_zgerc", Layout, M, N, alpha, X, incX, Y, incY, A, lda);
}

void cblas_dsymv(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const zor_int N, const double alpha,
                 const double* A, const zor_int lda, const double* X, const zor_int incX, const double beta,
                 double* Y, const zor_int incY) {
    if (!symv_arguments("cblas_dsymv", Layout, Uplo, N, lda, incX, incY)) return;
    const char uplo = uplo_letter(Layout, Uplo);
    fortran::dsymv(&uplo, &N, &alpha, A, &lda, X, &incX, &beta, Y, &incY, 1);
}

void cblas_zhemv(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const zor_int N, const void* alpha,
                 const void* A, const zor_int lda, const void* X, const zor_int incX, const void* beta,
                 void* Y, const zor_int incY) {
    if (!symv_arguments("cblas_zhemv", Layout, Uplo, N, lda, incX, incY)) return;
    const char uplo = uplo_letter(Layout, Uplo);
    if (!row_major(Layout)) {
        fortran::zhemv(&uplo, &N, complex_in(alpha), complex_in(A), &lda, complex_in(X), &incX,
                       complex_in(beta), complex_out(Y), &incY, 1);
        return;
    }
    // The column-major view of a row-major Hermitian matrix is its conjugate.
    const ConjugatedCopy x(N, X, incX);
    if (x.failed("cblas_zhemv")) return;
    const zcomplex alpha_c = conjugated(alpha), beta_c = conjugated(beta);
    conjugate_in_place(N, Y, incY);
    fortran::zhemv(&uplo, &N, &alpha_c, complex_in(A), &lda, x.data(), x.inc(), &beta_c, complex_out(Y),
                   &incY, 1);
    conjugate_in_place(N, Y, incY);
}

void cblas_dsyr(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const zor_int N, const double alpha,
                const double* X, const zor_int incX, double* A, const zor_int lda) {
    if (!syr_arguments("cblas_dsyr", Layout, Uplo, N, lda, incX)) return;
    const char uplo = uplo_letter(Layout, Uplo);
    fortran::dsyr(&uplo, &N, &alpha, X, &incX, A, &lda, 1);
}

void cblas_zher(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const zor_int N, const double alpha,
                const void* X, const zor_int incX, void* A, const zor_int lda) {
    if (!syr_arguments("cblas_zher", Layout, Uplo, N, lda, incX)) return;
    const char uplo = uplo_letter(Layout, Uplo);
    if (!row_major(Layout)) {
        fortran::zher(&uplo, &N, &alpha, complex_in(X), &incX, complex_out(A), &lda, 1);
        return;
    }
    const ConjugatedCopy x(N, X, incX);
    if (x.failed("cblas_zher")) return;
    fortran::zher(&uplo, &N, &alpha, x.data(), x.inc(), complex_out(A), &lda, 1);
}

void cblas_dsyr2(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const zor_int N, const double alpha,
                 const double* X, const zor_int incX, const double* Y, const zor_int incY, double* A,
                 const zor_int lda) {
    if (!syr2_arguments("cblas_dsyr2", Layout, Uplo, N, lda, incX, incY)) return;
    const char uplo = uplo_letter(Layout, Uplo);
    fortran::dsyr2(&uplo, &N, &alpha, X, &incX, Y, &incY, A, &lda, 1);
}

void cblas_zher2(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const zor_int N, const void* alpha,
                 const void* X, const zor_int incX, const void* Y, const zor_int incY, void* A,
                 const zor_int lda) {
    if (!syr2_arguments("cblas_zher2", Layout, Uplo, N, lda, incX, incY)) return;
    const char uplo = uplo_letter(Layout, Uplo);
    if (!row_major(Layout)) {
        fortran::zher2(&uplo, &N, complex_in(alpha), complex_in(X), &incX, complex_in(Y), &incY,
                       complex_out(A), &lda, 1);
        return;
    }
    // A' += alpha * conj(y) * conj(conj(x))' + conj(alpha) * conj(x) * conj(conj(y))'.
    const ConjugatedCopy x(N, X, incX), y(N, Y, incY);
    if (x.failed("cblas_zher2") || y.failed("cblas_zher2")) return;
    fortran::zher2(&uplo, &N, complex_in(alpha), y.data(), y.inc(), x.data(), x.inc(), complex_out(A), &lda,
                   1);
}

void cblas_dtrmv(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE TransA,
                 const CBLAS_DIAG Diag, const zor_int N, const double* A, const zor_int lda, double* X,
                 const zor_int incX) {
    cblas_triangular("cblas_dtrmv", true, &fortran::dtrmv, Layout, Uplo, TransA, Diag, N, A, lda, X, incX);
}

void cblas_dtrsv(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE TransA,
                 const CBLAS_DIAG Diag, const zor_int N, const double* A, const zor_int lda, double* X,
                 const zor_int incX) {
    cblas_triangular("cblas_dtrsv", false, &fortran::dtrsv, Layout, Uplo, TransA, Diag, N, A, lda, X, incX);
}

void cblas_ztrmv(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE TransA,
                 const CBLAS_DIAG Diag, const zor_int N, const void* A, const zor_int lda, void* X,
                 const zor_int incX) {
    cblas_triangular("cblas_ztrmv", true, &fortran::ztrmv, Layout, Uplo, TransA, Diag, N, complex_in(A), lda,
                     complex_out(X), incX);
}

void cblas_ztrsv(const CBLAS_LAYOUT Layout, const CBLAS_UPLO Uplo, const CBLAS_TRANSPOSE TransA,
                 const CBLAS_DIAG Diag, const zor_int N, const void* A, const zor_int lda, void* X,
                 const zor_int incX) {
    cblas_triangular("cblas_ztrsv", false, &fortran::ztrsv, Layout, Uplo, TransA, Diag, N, complex_in(A), lda,
                     complex_out(X), incX);
}

}  // extern "C"
