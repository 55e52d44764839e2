#pragma once
// What the LAPACK templates over the element type need of it: the small arithmetic traits (conj,
// real part, |x|, products written out as the kernels write them) and the BLAS routines of that
// element type, always through their dispatchers. The real and complex forms of a routine are one
// template instantiated with double and zcomplex.

#include <cmath>
#include <cstdint>
#include <initializer_list>

#include "blas/dispatch.hpp"
#include "service/types.hpp"

namespace zor {

template <class T>
struct Element;

template <>
struct Element<double> {
    static constexpr bool kComplex = false;
    using Real = double;

    // The routine's name for this element type, from the pair of names.
    static constexpr const char* name(const char* real, const char*) { return real; }

    static double zero() { return 0.0; }
    static double one() { return 1.0; }
    static double from_real(double x) { return x; }
    static double real(double x) { return x; }
    static double conj(double x) { return x; }
    static bool is_zero(double x) { return x == 0.0; }
    static double abs(double x) { return std::fabs(x); }
    static double add(double x, double y) { return x + y; }
    static double sub(double x, double y) { return x - y; }
    static double mul(double x, double y) { return x * y; }
    static double div(double x, double y) { return x / y; }
    static double recip(double x) { return 1.0 / x; }
    static double scale(double x, double r) { return x * r; }
    // x·conj(y), the term of a conjugated dot product.
    static double mul_conj(double x, double y) { return x * y; }
    static double abs_squared(double x) { return x * x; }

    static zint iamax(zint n, const double* x, zint incx) { return zor::idamax(n, x, incx); }
    static void swap(zint n, double* x, zint incx, double* y, zint incy) { zor::dswap(n, x, incx, y, incy); }
    static void scal(zint n, double alpha, double* x, zint incx) { zor::dscal(n, alpha, x, incx); }
    static void scal_real(zint n, double alpha, double* x, zint incx) { zor::dscal(n, alpha, x, incx); }
    static void copy(zint n, const double* x, zint incx, double* y, zint incy) {
        zor::dcopy(n, x, incx, y, incy);
    }
    static void axpy(zint n, double alpha, const double* x, zint incx, double* y, zint incy) {
        zor::daxpy(n, alpha, x, incx, y, incy);
    }
    // conj(x)ᵀ y
    static double dotc(zint n, const double* x, zint incx, const double* y, zint incy) {
        return zor::ddot(n, x, incx, y, incy);
    }
    static void gemv(char trans, zint m, zint n, double alpha, const double* a, zint lda, const double* x,
                     zint incx, double beta, double* y, zint incy) {
        zor::dgemv(trans, m, n, alpha, a, lda, x, incx, beta, y, incy);
    }
    // A := A + alpha x yᵀ (unconjugated for complex).
    static void geru(zint m, zint n, double alpha, const double* x, zint incx, const double* y, zint incy,
                     double* a, zint lda) {
        zor::dger(m, n, alpha, x, incx, y, incy, a, lda);
    }
    static void trsv(char uplo, char trans, char diag, zint n, const double* a, zint lda, double* x,
                     zint incx) {
        zor::dtrsv(uplo, trans, diag, n, a, lda, x, incx);
    }
    static void trmv(char uplo, char trans, char diag, zint n, const double* a, zint lda, double* x,
                     zint incx) {
        zor::dtrmv(uplo, trans, diag, n, a, lda, x, incx);
    }
    static void gemm(char transa, char transb, zint m, zint n, zint k, double alpha, const double* a,
                     zint lda, const double* b, zint ldb, double beta, double* c, zint ldc) {
        zor::dgemm(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    }
    static void trsm(char side, char uplo, char transa, char diag, zint m, zint n, double alpha,
                     const double* a, zint lda, double* b, zint ldb) {
        zor::dtrsm(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
    }
    static void trmm(char side, char uplo, char transa, char diag, zint m, zint n, double alpha,
                     const double* a, zint lda, double* b, zint ldb) {
        zor::dtrmm(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
    }
    // The symmetric (real) or Hermitian (complex) rank-k update: syrk or herk.
    static void herk(char uplo, char trans, zint n, zint k, double alpha, const double* a, zint lda,
                     double beta, double* c, zint ldc) {
        zor::dsyrk(uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
    }
};

template <>
struct Element<zcomplex> {
    static constexpr bool kComplex = true;
    using Real = double;

    static constexpr const char* name(const char*, const char* complex) { return complex; }

    static zcomplex zero() { return {0.0, 0.0}; }
    static zcomplex one() { return {1.0, 0.0}; }
    static zcomplex from_real(double x) { return {x, 0.0}; }
    static double real(const zcomplex& x) { return x.re; }
    static zcomplex conj(const zcomplex& x) { return {x.re, -x.im}; }
    static bool is_zero(const zcomplex& x) { return x.re == 0.0 && x.im == 0.0; }
    static double abs(const zcomplex& x) { return std::hypot(x.re, x.im); }
    static zcomplex add(const zcomplex& x, const zcomplex& y) { return {x.re + y.re, x.im + y.im}; }
    static zcomplex sub(const zcomplex& x, const zcomplex& y) { return {x.re - y.re, x.im - y.im}; }
    static zcomplex mul(const zcomplex& x, const zcomplex& y) {
        return {x.re * y.re - x.im * y.im, x.re * y.im + x.im * y.re};
    }
    // Smith's quotient: no intermediate overflows where the quotient is representable.
    static zcomplex div(const zcomplex& x, const zcomplex& y) {
        if (std::fabs(y.im) <= std::fabs(y.re)) {
            const double r = y.im / y.re, d = y.re + y.im * r;
            return {(x.re + x.im * r) / d, (x.im - x.re * r) / d};
        }
        const double r = y.re / y.im, d = y.im + y.re * r;
        return {(x.re * r + x.im) / d, (x.im * r - x.re) / d};
    }
    static zcomplex recip(const zcomplex& x) { return div(one(), x); }
    static zcomplex scale(const zcomplex& x, double r) { return {x.re * r, x.im * r}; }
    static zcomplex mul_conj(const zcomplex& x, const zcomplex& y) {
        return {x.re * y.re + x.im * y.im, x.im * y.re - x.re * y.im};
    }
    static double abs_squared(const zcomplex& x) { return x.re * x.re + x.im * x.im; }

    static zint iamax(zint n, const zcomplex* x, zint incx) { return zor::izamax(n, x, incx); }
    static void swap(zint n, zcomplex* x, zint incx, zcomplex* y, zint incy) {
        zor::zswap(n, x, incx, y, incy);
    }
    static void scal(zint n, const zcomplex& alpha, zcomplex* x, zint incx) { zor::zscal(n, alpha, x, incx); }
    static void scal_real(zint n, double alpha, zcomplex* x, zint incx) {
        for (zint i = 0; i < n; ++i) x[i * incx] = scale(x[i * incx], alpha);
    }
    static void copy(zint n, const zcomplex* x, zint incx, zcomplex* y, zint incy) {
        zor::zcopy(n, x, incx, y, incy);
    }
    static void axpy(zint n, const zcomplex& alpha, const zcomplex* x, zint incx, zcomplex* y, zint incy) {
        zor::zaxpy(n, alpha, x, incx, y, incy);
    }
    static zcomplex dotc(zint n, const zcomplex* x, zint incx, const zcomplex* y, zint incy) {
        zcomplex result;
        zor::zdotc(&result, n, x, incx, y, incy);
        return result;
    }
    static void gemv(char trans, zint m, zint n, const zcomplex& alpha, const zcomplex* a, zint lda,
                     const zcomplex* x, zint incx, const zcomplex& beta, zcomplex* y, zint incy) {
        zor::zgemv(trans, m, n, alpha, a, lda, x, incx, beta, y, incy);
    }
    static void geru(zint m, zint n, const zcomplex& alpha, const zcomplex* x, zint incx, const zcomplex* y,
                     zint incy, zcomplex* a, zint lda) {
        zor::zgeru(m, n, alpha, x, incx, y, incy, a, lda);
    }
    static void trsv(char uplo, char trans, char diag, zint n, const zcomplex* a, zint lda, zcomplex* x,
                     zint incx) {
        zor::ztrsv(uplo, trans, diag, n, a, lda, x, incx);
    }
    static void trmv(char uplo, char trans, char diag, zint n, const zcomplex* a, zint lda, zcomplex* x,
                     zint incx) {
        zor::ztrmv(uplo, trans, diag, n, a, lda, x, incx);
    }
    static void gemm(char transa, char transb, zint m, zint n, zint k, const zcomplex& alpha,
                     const zcomplex* a, zint lda, const zcomplex* b, zint ldb, const zcomplex& beta,
                     zcomplex* c, zint ldc) {
        zor::zgemm(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    }
    static void trsm(char side, char uplo, char transa, char diag, zint m, zint n, const zcomplex& alpha,
                     const zcomplex* a, zint lda, zcomplex* b, zint ldb) {
        zor::ztrsm(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
    }
    static void trmm(char side, char uplo, char transa, char diag, zint m, zint n, const zcomplex& alpha,
                     const zcomplex* a, zint lda, zcomplex* b, zint ldb) {
        zor::ztrmm(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
    }
    static void herk(char uplo, char trans, zint n, zint k, double alpha, const zcomplex* a, zint lda,
                     double beta, zcomplex* c, zint ldc) {
        zor::zherk(uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
    }
};

// The transpose letter that conjugates for complex elements: "T" for real, "C" for complex.
template <class T>
inline constexpr char kAdjoint = Element<T>::kComplex ? 'C' : 'T';

inline zint min_of(zint a, zint b) {
    return a < b ? a : b;
}
inline zint max_of(zint a, zint b) {
    return a > b ? a : b;
}

// The argument check of a LAPACK routine: the first failed check's (negative) info, reported
// through the error handler with the six-character name and the positive parameter number.
struct Check {
    bool failed;
    zint parameter;
};

// Runs the checks in order; returns 0, or -k for the first failing parameter k after reporting it.
zint check_arguments(const char* name, std::initializer_list<Check> checks);

}  // namespace zor
