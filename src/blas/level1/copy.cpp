// dcopy, zcopy, dswap, zswap. Element-wise: elements are visited from the first logical element
// onward. Vectors that share memory take the element loop, so that an overlapping call gives
// the same answer at every level as visiting one element at a time.

#include "blas/kernel.hpp"
#include "blas/level1/level1.hpp"
#include "blas/level1/wide.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

template <class T>
void copy_strided(zint n, const T* x, zint incx, T* y, zint incy) {
    const T* xs = x + first_element(n, incx);
    T* ys = y + first_element(n, incy);
    for (zint i = 0; i < n; ++i) ys[i * incy] = xs[i * incx];
}

template <class T>
void swap_strided(zint n, T* x, zint incx, T* y, zint incy) {
    T* xs = x + first_element(n, incx);
    T* ys = y + first_element(n, incy);
    for (zint i = 0; i < n; ++i) {
        const T t = xs[i * incx];
        xs[i * incx] = ys[i * incy];
        ys[i * incy] = t;
    }
}

#if ZOR_LEVEL == 4
struct CopyStep {
    const double* x;
    double* y;
    ZOR_AVX512 void operator()(zint at, __mmask8 mask) const { store8(y + at, mask, load8(x + at, mask)); }
};

struct SwapStep {
    double* x;
    double* y;
    ZOR_AVX512 void operator()(zint at, __mmask8 mask) const {
        const __m512d xv = load8(x + at, mask), yv = load8(y + at, mask);
        store8(x + at, mask, yv);
        store8(y + at, mask, xv);
    }
};

ZOR_AVX512 void copy_eight_lane(zint count, const double* x, double* y) {
    eight_lane_run(count, y, 8, CopyStep{x, y});
}

ZOR_AVX512 void swap_eight_lane(zint count, double* x, double* y) {
    eight_lane_run(count, y, 8, SwapStep{x, y});
}
#endif

// `count` doubles of two vectors that do not overlap.
void copy_run(zint count, const double* x, double* y) {
    zint i = 0;
#if ZOR_LEVEL == 4
    if (has_avx512f()) {
        copy_eight_lane(count, x, y);
        return;
    }
    for (; count - i >= 16; i += 16) {
        for (int k = 0; k < 16; k += 4) _mm256_storeu_pd(y + i + k, _mm256_loadu_pd(x + i + k));
    }
    for (; count - i >= 4; i += 4) _mm256_storeu_pd(y + i, _mm256_loadu_pd(x + i));
#else
    for (; count - i >= 8; i += 8) {
        for (int k = 0; k < 8; k += 2) _mm_storeu_pd(y + i + k, _mm_loadu_pd(x + i + k));
    }
#endif
    for (; count - i >= 2; i += 2) _mm_storeu_pd(y + i, _mm_loadu_pd(x + i));
    if (i < count) y[i] = x[i];
}

void swap_run(zint count, double* x, double* y) {
    zint i = 0;
#if ZOR_LEVEL == 4
    if (has_avx512f()) {
        swap_eight_lane(count, x, y);
        return;
    }
    for (; count - i >= 8; i += 8) {
        const __m256d x0 = _mm256_loadu_pd(x + i), x1 = _mm256_loadu_pd(x + i + 4);
        const __m256d y0 = _mm256_loadu_pd(y + i), y1 = _mm256_loadu_pd(y + i + 4);
        _mm256_storeu_pd(x + i, y0);
        _mm256_storeu_pd(x + i + 4, y1);
        _mm256_storeu_pd(y + i, x0);
        _mm256_storeu_pd(y + i + 4, x1);
    }
#endif
    for (; count - i >= 2; i += 2) {
        const __m128d xv = _mm_loadu_pd(x + i), yv = _mm_loadu_pd(y + i);
        _mm_storeu_pd(x + i, yv);
        _mm_storeu_pd(y + i, xv);
    }
    if (i < count) {
        const double t = x[i];
        x[i] = y[i];
        y[i] = t;
    }
}

}  // namespace

void dcopy(const zint& n, const double* x, const zint& incx, double* y, const zint& incy) {
    if (n <= 0) return;
    if (unit_strides(incx, incy) && !overlapping(x, y, n * 8)) {
        copy_run(n, x, y);
    } else {
        copy_strided(n, x, incx, y, incy);
    }
}

void zcopy(const zint& n, const zcomplex* x, const zint& incx, zcomplex* y, const zint& incy) {
    if (n <= 0) return;
    if (unit_strides(incx, incy) && !overlapping(x, y, n * 16)) {
        copy_run(2 * n, &x->re, &y->re);
    } else {
        copy_strided(n, x, incx, y, incy);
    }
}

void dswap(const zint& n, double* x, const zint& incx, double* y, const zint& incy) {
    if (n <= 0) return;
    if (unit_strides(incx, incy) && !overlapping(x, y, n * 8)) {
        swap_run(n, x, y);
    } else {
        swap_strided(n, x, incx, y, incy);
    }
}

void zswap(const zint& n, zcomplex* x, const zint& incx, zcomplex* y, const zint& incy) {
    if (n <= 0) return;
    if (unit_strides(incx, incy) && !overlapping(x, y, n * 16)) {
        swap_run(2 * n, &x->re, &y->re);
    } else {
        swap_strided(n, x, incx, y, incy);
    }
}

}  // namespace zor::ZOR_LEVEL_NS
