// x := alpha*x: dscal and zscal. There is no special case for any alpha: every element is
// multiplied, so a zero alpha turns infinities and NaNs into NaN rather than into zero.

#include "blas/kernel.hpp"
#include "blas/level1/level1.hpp"
#include "blas/level1/wide.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// Element by element from the first logical element. With increment 0 element 0 is multiplied
// n times (x(1) := alpha^n * x(1)), as the strided loop has always done.
void dscal_strided(zint n, double alpha, double* x, zint incx) {
    double* xs = x + first_element(n, incx);
    for (zint i = 0; i < n; ++i) xs[i * incx] *= alpha;
}

void scale_pairs(double* x, __m128d a, int count) {
    for (int k = 0; k < count; k += 2) _mm_store_pd(x + k, _mm_mul_pd(_mm_load_pd(x + k), a));
}

// Unit stride, x 8-byte aligned: one element to reach a 16-byte boundary, then blocks of 8, one
// of 4, one pair and a last element.
[[maybe_unused]] void dscal_two_lane(zint n, double alpha, double* x) {
    const __m128d a = _mm_set1_pd(alpha);
    zint i = 0;
    if (!aligned16(x)) {
        x[0] *= alpha;
        i = 1;
    }
    for (; n - i >= 8; i += 8) scale_pairs(x + i, a, 8);
    if (n - i >= 4) {
        scale_pairs(x + i, a, 4);
        i += 4;
    }
    if (n - i >= 2) {
        scale_pairs(x + i, a, 2);
        i += 2;
    }
    if (i < n) x[i] *= alpha;
}

#if ZOR_LEVEL == 4
void dscal_four_lane(zint n, double alpha, double* x) {
    const __m256d a = _mm256_set1_pd(alpha);
    zint i = (4 - static_cast<zint>((address(x) % 32) / 8)) % 4;
    if (i > n) i = n;
    for (zint k = 0; k < i; ++k) x[k] *= alpha;
    for (; n - i >= 16; i += 16) {
        for (int k = 0; k < 16; k += 4)
            _mm256_store_pd(x + i + k, _mm256_mul_pd(_mm256_load_pd(x + i + k), a));
    }
    for (; n - i >= 4; i += 4) _mm256_store_pd(x + i, _mm256_mul_pd(_mm256_load_pd(x + i), a));
    for (; i < n; ++i) x[i] *= alpha;
}

// x := alpha x over the lanes of `mask`; F is RealFactor8 or ComplexFactor8.
template <class F>
struct ScalStep {
    double* x;
    F alpha;
    ZOR_AVX512 void operator()(zint at, __mmask8 mask) const {
        store8(x + at, mask, times(load8(x + at, mask), alpha));
    }
};

ZOR_AVX512 void dscal_eight_lane(zint n, double alpha, double* x) {
    eight_lane_run(n, x, 8, ScalStep<RealFactor8>{x, real_factor8(alpha)});
}

ZOR_AVX512 void zscal_eight_lane(zint n, const zcomplex& alpha, zcomplex* x) {
    eight_lane_run(2 * n, x, 16, ScalStep<ComplexFactor8>{&x->re, complex_factor8(alpha)});
}

void zscal_four_lane(zint n, const zcomplex& alpha, zcomplex* x) {
    const ComplexFactor4 f = complex_factor4(alpha);
    zint i = 0;
    for (; n - i >= 8; i += 8) {
        for (int k = 0; k < 8; k += 2) {
            double* p = &x[i + k].re;
            _mm256_storeu_pd(p, _mm256_loadu_pd(p) * f);
        }
    }
    for (; n - i >= 2; i += 2) _mm256_storeu_pd(&x[i].re, _mm256_loadu_pd(&x[i].re) * f);
    if (i < n) _mm_storeu_pd(&x[i].re, _mm_loadu_pd(&x[i].re) * complex_factor(alpha));
}
#endif

template <bool kAligned>
void zscal_element(zcomplex* x, const ComplexFactor& f) {
    if constexpr (kAligned) {
        _mm_store_pd(&x->re, _mm_load_pd(&x->re) * f);
    } else {
        _mm_storeu_pd(&x->re, _mm_loadu_pd(&x->re) * f);
    }
}

}  // namespace

void dscal(const zint& n, const double& alpha, double* x, const zint& incx) {
    if (n <= 0) return;
    if ((incx != 1 && incx != -1) || !aligned8(x)) {
        dscal_strided(n, alpha, x, incx);
        return;
    }
#if ZOR_LEVEL == 4
    if (has_avx512f()) {
        dscal_eight_lane(n, alpha, x);
    } else {
        dscal_four_lane(n, alpha, x);
    }
#else
    dscal_two_lane(n, alpha, x);
#endif
}

void zscal(const zint& n_ref, const zcomplex& alpha, zcomplex* x, const zint& incx_ref) {
    const zint n = n_ref, incx = incx_ref;  // not re-read after every store
    if (n <= 0) return;
    const bool unit = incx == 1 || incx == -1;
#if ZOR_LEVEL == 4
    if (unit) {
        if (has_avx512f()) {
            zscal_eight_lane(n, alpha, x);
        } else {
            zscal_four_lane(n, alpha, x);
        }
        return;
    }
#endif
    const ComplexFactor f = complex_factor(alpha);
    if (unit && aligned16(x)) {
        for (zint i = 0; i < n; ++i) zscal_element<true>(x + i, f);
        return;
    }
    zcomplex* xs = x + first_element(n, incx);
    for (zint i = 0; i < n; ++i) zscal_element<false>(xs + i * incx, f);
}

}  // namespace zor::ZOR_LEVEL_NS
