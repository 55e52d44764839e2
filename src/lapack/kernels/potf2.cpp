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

// The level-1 and level-2 kernels of this level by element type.
template <class T>
double dot_self(zint n, const T* x, zint inc) {
    if constexpr (kIsComplex<T>) {
        zcomplex d;
        zdotc(&d, n, x, inc, x, inc);
        return d.re;
    } else {
        return ddot(n, x, inc, x, inc);
    }
}

template <class T>
void conjugate(zint n, T* x, zint inc) {
    if constexpr (kIsComplex<T>) {
        for (zint i = 0; i < n; ++i) x[i * inc].im = -x[i * inc].im;
    }
}

// y := y - op(A) x.
template <class T>
void gemv_minus(char trans, zint m, zint n, const T* a, zint lda, const T* x, zint incx, T* y, zint incy) {
    const T minus_one = from_real<T>(-1.0), plus_one = one<T>();
    if constexpr (kIsComplex<T>) {
        zgemv(trans, m, n, minus_one, a, lda, x, incx, plus_one, y, incy);
    } else {
        dgemv(trans, m, n, minus_one, a, lda, x, incx, plus_one, y, incy);
    }
}

template <class T>
void scale(zint n, double r, T* x, zint inc) {
    if constexpr (kIsComplex<T>) {
        for (zint i = 0; i < n; ++i) x[i * inc] = x[i * inc] * r;
    } else {
        dscal(n, r, x, inc);
    }
}

// The diagonal step shared by both triangles: ajj from A(j, j) and the squared norm of the finished
// part; false (with ajj stored and info set) when it is not positive.
template <class T>
bool diagonal(T& ajj_cell, double sum, zint j, zint& info, double& root) {
    const double ajj = real(ajj_cell) - sum;
    if (!(ajj > 0.0)) {
        ajj_cell = from_real<T>(ajj);
        info = j + 1;
        return false;
    }
    root = square_root(ajj);
    ajj_cell = from_real<T>(root);
    return true;
}

// Upper: column j's finished part is A(0:j, j); row j to its right is updated by the dot products of
// the columns there with it (a transposed gemv in the level-2 path).
template <class T>
void potf2_upper(zint n, T* a, zint lda, zint& info) {
    const bool small = kHasSmallPath && n < kUpperSplit;
    for (zint j = 0; j < n; ++j) {
        T* column = a + j * lda;
        double sum = 0.0;
        if (small) {
            for (zint i = 0; i < j; ++i) sum += abs_squared(column[i]);
        } else {
            sum = dot_self(j, column, 1);
        }
        double root;
        if (!diagonal(column[j], sum, j, info, root)) return;
        if (j + 1 == n) continue;
        const double r = 1.0 / root;
        if (small) {
            for (zint k = j + 1; k < n; ++k) {
                T* other = a + k * lda;
                T t = other[j];
                for (zint i = 0; i < j; ++i) t = t - (other[i] * conj(column[i]));
                other[j] = t * r;
            }
        } else {
            conjugate(j, column, 1);
            gemv_minus('T', j, n - j - 1, column + lda, lda, column, 1, column + lda + j, lda);
            conjugate(j, column, 1);
            scale(n - j - 1, r, column + lda + j, lda);
        }
    }
}

// Lower: row j's finished part is A(j, 0:j); column j below it is updated by the rows there times
// its conjugate (a plain gemv in the level-2 path, column by column in the small path).
template <class T>
void potf2_lower(zint n, T* a, zint lda, zint& info) {
    const bool small = kHasSmallPath && n < kLowerSplit;
    for (zint j = 0; j < n; ++j) {
        T* row = a + j;
        double sum = 0.0;
        if (small) {
            for (zint k = 0; k < j; ++k) sum += abs_squared(row[k * lda]);
        } else {
            sum = dot_self(j, row, lda);
        }
        double root;
        if (!diagonal(row[j * lda], sum, j, info, root)) return;
        if (j + 1 == n) continue;
        T* below = row + j * lda + 1;
        const zint count = n - j - 1;
        const double r = 1.0 / root;
        if (small) {
            for (zint k = 0; k < j; ++k) {
                const T f = conj(row[k * lda]);
                const T* source = row + k * lda + 1;
                for (zint i = 0; i < count; ++i) below[i] = below[i] - (source[i] * f);
            }
            for (zint i = 0; i < count; ++i) below[i] = below[i] * r;
        } else {
            conjugate(j, row, lda);
            gemv_minus('N', count, j, row + 1, lda, row, lda, below, 1);
            conjugate(j, row, lda);
            scale(count, r, below, 1);
        }
    }
}

}  // namespace

void dpotf2_upper(const zint& n, double* a, const zint& lda, zint& info) {
    potf2_upper<double>(n, a, lda, info);
}

void dpotf2_lower(const zint& n, double* a, const zint& lda, zint& info) {
    potf2_lower<double>(n, a, lda, info);
}

void zpotf2_upper(const zint& n, zcomplex* a, const zint& lda, zint& info) {
    potf2_upper<zcomplex>(n, a, lda, info);
}

void zpotf2_lower(const zint& n, zcomplex* a, const zint& lda, zint& info) {
    potf2_lower<zcomplex>(n, a, lda, info);
}

}  // namespace zor::ZOR_LEVEL_NS
