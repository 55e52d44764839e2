// y := alpha*x + y: daxpy and zaxpy. Element-wise, so the variants differ only in speed; every
// element is y + (alpha*x) with the product rounded before the sum.

#include "blas/kernel.hpp"
#include "blas/level1/level1.hpp"
#include "blas/level1/wide.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

template <bool kAligned>
__m128d load_pair(const double* p) {
    if constexpr (kAligned) return _mm_load_pd(p);
    return _mm_loadu_pd(p);
}

// `count` elements from y's 16-byte boundary on, two at a time.
template <bool kXAligned, int kCount>
void axpy_block(const double* x, double* y, __m128d alpha) {
    for (int k = 0; k < kCount; k += 2) {
        _mm_store_pd(y + k, _mm_add_pd(_mm_load_pd(y + k), _mm_mul_pd(load_pair<kXAligned>(x + k), alpha)));
    }
}

void daxpy_strided(zint n, double alpha, const double* x, zint incx, double* y, zint incy) {
    const double* xs = x + first_element(n, incx);
    double* ys = y + first_element(n, incy);
    for (zint i = 0; i < n; ++i) ys[i * incy] += xs[i * incx] * alpha;
}

[[maybe_unused]] void daxpy_two_lane(zint n, double alpha, const double* x, double* y) {
    const __m128d a = _mm_set1_pd(alpha);
    zint i = 0;
    for (; i < n && !aligned16(y + i); ++i) y[i] += x[i] * alpha;
    if (aligned16(x + i)) {
        for (; n - i >= 16; i += 16) axpy_block<true, 16>(x + i, y + i, a);
    } else if constexpr (kLevel == CpuLevel::Default) {
        for (; n - i >= 8; i += 8) axpy_block<false, 8>(x + i, y + i, a);
    } else {
        for (; n - i >= 16; i += 16) axpy_block<false, 16>(x + i, y + i, a);
    }
    for (; n - i >= 2; i += 2) axpy_block<false, 2>(x + i, y + i, a);
    if (i < n) y[i] += x[i] * alpha;
}

#if ZOR_LEVEL == 4
void daxpy_four_lane(zint n, double alpha, const double* x, double* y) {
    const __m256d a = _mm256_set1_pd(alpha);
    zint i = (4 - static_cast<zint>((address(y) % 32) / 8)) % 4;
    if (i > n) i = n;
    for (zint k = 0; k < i; ++k) y[k] += x[k] * alpha;
    auto step = [&](zint at) {
        _mm256_storeu_pd(y + at,
                         _mm256_add_pd(_mm256_loadu_pd(y + at), _mm256_mul_pd(_mm256_loadu_pd(x + at), a)));
    };
    for (; n - i >= 16; i += 16) {
        step(i);
        step(i + 4);
        step(i + 8);
        step(i + 12);
    }
    for (; n - i >= 4; i += 4) step(i);
    for (; i < n; ++i) y[i] += x[i] * alpha;
}

// y := y + alpha x over the lanes of `mask`; F is RealFactor8 or ComplexFactor8.
template <class F>
struct AxpyStep {
    const double* x;
    double* y;
    F alpha;
    ZOR_AVX512 void operator()(zint at, __mmask8 mask) const {
        store8(y + at, mask, _mm512_add_pd(load8(y + at, mask), times(load8(x + at, mask), alpha)));
    }
};

ZOR_AVX512 void daxpy_eight_lane(zint n, double alpha, const double* x, double* y) {
    eight_lane_run(n, y, 8, AxpyStep<RealFactor8>{x, y, real_factor8(alpha)});
}

ZOR_AVX512 void zaxpy_eight_lane(zint n, const zcomplex& alpha, const zcomplex* x, zcomplex* y) {
    eight_lane_run(2 * n, y, 16, AxpyStep<ComplexFactor8>{&x->re, &y->re, complex_factor8(alpha)});
}

void zaxpy_four_lane(zint n, const zcomplex& alpha, const zcomplex* x, zcomplex* y) {
    const ComplexFactor4 f = complex_factor4(alpha);
    auto step = [&](zint at) {
        double* yp = &y[at].re;
        _mm256_storeu_pd(yp, _mm256_add_pd(_mm256_loadu_pd(yp), _mm256_loadu_pd(&x[at].re) * f));
    };
    zint i = 0;
    for (; n - i >= 8; i += 8) {
        step(i);
        step(i + 2);
        step(i + 4);
        step(i + 6);
    }
    for (; n - i >= 2; i += 2) step(i);
    if (i < n) {
        const ComplexFactor f2 = complex_factor(alpha);
        _mm_storeu_pd(&y[i].re, _mm_add_pd(_mm_loadu_pd(&y[i].re), _mm_loadu_pd(&x[i].re) * f2));
    }
}
#endif

template <bool kAligned>
void zaxpy_element(const zcomplex* x, zcomplex* y, const ComplexFactor& f) {
    double* yp = &y->re;
    const __m128d product = (load_pair<kAligned>(&x->re)) * f;
    if constexpr (kAligned) {
        _mm_store_pd(yp, _mm_add_pd(_mm_load_pd(yp), product));
    } else {
        _mm_storeu_pd(yp, _mm_add_pd(_mm_loadu_pd(yp), product));
    }
}

// Default: the aligned unit-stride path takes 8 elements per step; the Sse levels take any
// unit-stride vector that way.
template <bool kAligned>
void zaxpy_contiguous(zint n, const ComplexFactor& f, const zcomplex* x, zcomplex* y) {
    zint i = 0;
    for (; n - i >= 8; i += 8) {
        for (int k = 0; k < 8; ++k) zaxpy_element<kAligned>(x + i + k, y + i + k, f);
    }
    for (; i < n; ++i) zaxpy_element<kAligned>(x + i, y + i, f);
}

}  // namespace

void daxpy(const zint& n, const double& alpha, const double* x, const zint& incx, double* y,
           const zint& incy) {
    // An alpha of zero (either sign; NaN is not zero) leaves y as it is, NaN in x included.
    if (n < 1 || alpha == 0.0) return;
    if (!unit_strides(incx, incy)) {
        daxpy_strided(n, alpha, x, incx, y, incy);
        return;
    }
#if ZOR_LEVEL == 4
    // Vectors that overlap without coinciding keep the four-lane steps, whose results depend on the width.
    if (has_avx512f() && (x == y || !overlapping(x, y, n * 8))) {
        daxpy_eight_lane(n, alpha, x, y);
    } else {
        daxpy_four_lane(n, alpha, x, y);
    }
#else
    daxpy_two_lane(n, alpha, x, y);
#endif
}

void zaxpy(const zint& n_ref, const zcomplex& alpha, const zcomplex* x, const zint& incx_ref, zcomplex* y,
           const zint& incy_ref) {
    const zint n = n_ref, incx = incx_ref, incy = incy_ref;  // not re-read after every store
    if (n <= 0 || (alpha.re == 0.0 && alpha.im == 0.0)) return;
    if (incx == incy && (incx == 1 || incx == -1)) {
#if ZOR_LEVEL == 4
        if (has_avx512f() && (x == y || !overlapping(x, y, n * 16))) {
            zaxpy_eight_lane(n, alpha, x, y);
        } else {
            zaxpy_four_lane(n, alpha, x, y);
        }
        return;
#else
        const ComplexFactor f = complex_factor(alpha);
        if (aligned16(x) && aligned16(y)) {
            zaxpy_contiguous<true>(n, f, x, y);
            return;
        }
        if constexpr (kLevel != CpuLevel::Default) {
            zaxpy_contiguous<false>(n, f, x, y);
            return;
        }
#endif
    }
    const ComplexFactor f = complex_factor(alpha);
    const zcomplex* xs = x + first_element(n, incx);
    zcomplex* ys = y + first_element(n, incy);
    for (zint i = 0; i < n; ++i) zaxpy_element<false>(xs + i * incx, ys + i * incy, f);
}

}  // namespace zor::ZOR_LEVEL_NS
