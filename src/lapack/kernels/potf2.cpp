// The unblocked Cholesky steps dpotf2_upper, dpotf2_lower and their complex forms, five variants.
//
// Default and Sse3 always go through the level-1 and level-2 kernels of their level (ddot, dgemv,
// dscal). Ssse3, Sse42 and Avx do so from order 50 (upper) or 40 (lower) on; below that the dot
// products and updates are loops of their own, which for small blocks costs less than the calls.

#include "blas/kernel.hpp"
#include "blas/level1/level1.hpp"
#include "blas/level2/level2.hpp"
#include "blas/vector.hpp"
#include "lapack/kernels/kernels.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

constexpr bool kHasSmallPath = static_cast<int>(kLevel) >= static_cast<int>(CpuLevel::Ssse3);
constexpr zint kUpperSplit = 50;
constexpr zint kLowerSplit = 40;

// What the two element types need here: |x|² sums, x·conj(y) products, the level-1 and level-2 calls.
struct RealOps {
    using T = double;
    static double norm_term(double x) { return x * x; }
    static double real(double x) { return x; }
    static double conj(double x) { return x; }
    static double dot_self(zint n, const double* x, zint inc) { return ddot(n, x, inc, x, inc); }
    static void conjugate(zint, double*, zint) {}
    static void gemv(char trans, zint m, zint n, const double* a, zint lda, const double* x, zint incx,
                     double* y, zint incy) {
        const double minus_one = -1.0, one = 1.0;
        dgemv(trans, m, n, minus_one, a, lda, x, incx, one, y, incy);
    }
    static void scale(zint n, double r, double* x, zint inc) { dscal(n, r, x, inc); }
    static double from_real(double x) { return x; }
    static double scaled(double x, double r) { return x * r; }
};

struct ComplexOps {
    using T = zcomplex;
    static double norm_term(const zcomplex& x) { return x.re * x.re + x.im * x.im; }
    static double real(const zcomplex& x) { return x.re; }
    static zcomplex conj(const zcomplex& x) { return {x.re, -x.im}; }
    static double dot_self(zint n, const zcomplex* x, zint inc) {
        zcomplex d;
        zdotc(&d, n, x, inc, x, inc);
        return d.re;
    }
    static void conjugate(zint n, zcomplex* x, zint inc) {
        for (zint i = 0; i < n; ++i) x[i * inc].im = -x[i * inc].im;
    }
    static void gemv(char trans, zint m, zint n, const zcomplex* a, zint lda, const zcomplex* x, zint incx,
                     zcomplex* y, zint incy) {
        const zcomplex minus_one = {-1.0, 0.0}, one = {1.0, 0.0};
        zgemv(trans, m, n, minus_one, a, lda, x, incx, one, y, incy);
    }
    static void scale(zint n, double r, zcomplex* x, zint inc) {
        for (zint i = 0; i < n; ++i) x[i * inc] = {x[i * inc].re * r, x[i * inc].im * r};
    }
    static zcomplex from_real(double x) { return {x, 0.0}; }
    static zcomplex scaled(const zcomplex& x, double r) { return {x.re * r, x.im * r}; }
};

// The diagonal step shared by both triangles: ajj from A(j, j) and the squared norm of the finished
// part; false (with ajj stored and info set) when it is not positive.
template <class Ops>
bool diagonal(typename Ops::T& ajj_cell, double sum, zint j, zint& info, double& root) {
    const double ajj = Ops::real(ajj_cell) - sum;
    if (!(ajj > 0.0)) {
        ajj_cell = Ops::from_real(ajj);
        info = j + 1;
        return false;
    }
    root = square_root(ajj);
    ajj_cell = Ops::from_real(root);
    return true;
}

// Upper: column j's finished part is A(0:j, j); row j to its right is updated by the dot products of
// the columns there with it (a transposed gemv in the level-2 path).
template <class Ops>
void potf2_upper(zint n, typename Ops::T* a, zint lda, zint& info) {
    using T = typename Ops::T;
    const bool small = kHasSmallPath && n < kUpperSplit;
    for (zint j = 0; j < n; ++j) {
        T* column = a + j * lda;
        double sum = 0.0;
        if (small) {
            for (zint i = 0; i < j; ++i) sum += Ops::norm_term(column[i]);
        } else {
            sum = Ops::dot_self(j, column, 1);
        }
        double root;
        if (!diagonal<Ops>(column[j], sum, j, info, root)) return;
        if (j + 1 == n) continue;
        const double r = 1.0 / root;
        if (small) {
            for (zint k = j + 1; k < n; ++k) {
                T* other = a + k * lda;
                T t = other[j];
                for (zint i = 0; i < j; ++i) t = minus(t, times(other[i], Ops::conj(column[i])));
                other[j] = Ops::scaled(t, r);
            }
        } else {
            Ops::conjugate(j, column, 1);
            Ops::gemv('T', j, n - j - 1, column + lda, lda, column, 1, column + lda + j, lda);
            Ops::conjugate(j, column, 1);
            Ops::scale(n - j - 1, r, column + lda + j, lda);
        }
    }
}

// Lower: row j's finished part is A(j, 0:j); column j below it is updated by the rows there times
// its conjugate (a plain gemv in the level-2 path, column by column in the small path).
template <class Ops>
void potf2_lower(zint n, typename Ops::T* a, zint lda, zint& info) {
    using T = typename Ops::T;
    const bool small = kHasSmallPath && n < kLowerSplit;
    for (zint j = 0; j < n; ++j) {
        T* row = a + j;
        double sum = 0.0;
        if (small) {
            for (zint k = 0; k < j; ++k) sum += Ops::norm_term(row[k * lda]);
        } else {
            sum = Ops::dot_self(j, row, lda);
        }
        double root;
        if (!diagonal<Ops>(row[j * lda], sum, j, info, root)) return;
        if (j + 1 == n) continue;
        T* below = row + j * lda + 1;
        const zint count = n - j - 1;
        const double r = 1.0 / root;
        if (small) {
            for (zint k = 0; k < j; ++k) {
                const T f = Ops::conj(row[k * lda]);
                const T* source = row + k * lda + 1;
                for (zint i = 0; i < count; ++i) below[i] = minus(below[i], times(source[i], f));
            }
            for (zint i = 0; i < count; ++i) below[i] = Ops::scaled(below[i], r);
        } else {
            Ops::conjugate(j, row, lda);
            Ops::gemv('N', count, j, row + 1, lda, row, lda, below, 1);
            Ops::conjugate(j, row, lda);
            Ops::scale(count, r, below, 1);
        }
    }
}

}  // namespace

void dpotf2_upper(const zint& n, double* a, const zint& lda, zint& info) {
    potf2_upper<RealOps>(n, a, lda, info);
}

void dpotf2_lower(const zint& n, double* a, const zint& lda, zint& info) {
    potf2_lower<RealOps>(n, a, lda, info);
}

void zpotf2_upper(const zint& n, zcomplex* a, const zint& lda, zint& info) {
    potf2_upper<ComplexOps>(n, a, lda, info);
}

void zpotf2_lower(const zint& n, zcomplex* a, const zint& lda, zint& info) {
    potf2_lower<ComplexOps>(n, a, lda, info);
}

}  // namespace zor::ZOR_LEVEL_NS
