// Sums of absolute values: dasum and dzasum. Absolute values are taken by clearing the sign bit.
// The Default dasum layout is fixed and the Sse levels follow it; the Avx dasum has a four-lane
// layout of its own, and so has its dzasum.

#include "blas/kernel.hpp"
#include "blas/level1/level1.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

#if ZOR_LEVEL == 4
// ((a0 + a1) + (a2 + a3)) + ((a4 + a5) + (a6 + a7)), then (l0 + l2) + (l1 + l3).
double quad_total(const __m256d* a) {
    const __m256d low = _mm256_add_pd(_mm256_add_pd(a[0], a[1]), _mm256_add_pd(a[2], a[3]));
    const __m256d high = _mm256_add_pd(_mm256_add_pd(a[4], a[5]), _mm256_add_pd(a[6], a[7]));
    const __m256d total = _mm256_add_pd(low, high);
    return lane_sum(_mm_add_pd(_mm256_castpd256_pd128(total), _mm256_extractf128_pd(total, 1)));
}
#endif

__m128d abs_pair(const double* x) {
    return clear_sign(_mm_load_pd(x));
}

__m128d abs_single(const double* x) {
    return clear_sign(_mm_load_sd(x));
}

// Any increment: elements in logical order two at a time into one accumulator (lane 0 the even
// element), a last odd one into its low lane.
double dasum_strided(zint n, const double* x, zint incx) {
    const double* xs = x + first_element(n, incx);
    __m128d a = _mm_setzero_pd();
    zint i = 0;
    for (; n - i >= 2; i += 2) a = _mm_add_pd(a, clear_sign(_mm_set_pd(xs[(i + 1) * incx], xs[i * incx])));
    if (i < n) a = _mm_add_sd(a, abs_single(xs + i * incx));
    return lane_sum(a);
}

// Unit stride, x 8-byte aligned. Blocks of 16 elements go into two accumulators, the even pairs
// q0, q2, q4, q6 into a0 and the odd ones into a1, in that order; one block of 8 into a0..a3; a
// block of 4 into a0 and a1; a pair into a0; a last element into a0's low lane.
[[maybe_unused]] double dasum_two_lane(zint n, const double* x) {
    __m128d a0 = _mm_setzero_pd(), a1 = a0, a2 = a0, a3 = a0;
    zint i = 0;
    if (!aligned16(x)) {
        a0 = _mm_add_sd(a0, abs_single(x));
        i = 1;
    }
    for (; n - i >= 16; i += 16) {
        const double* q = x + i;
        a0 = _mm_add_pd(_mm_add_pd(_mm_add_pd(_mm_add_pd(a0, abs_pair(q)), abs_pair(q + 4)), abs_pair(q + 8)),
                        abs_pair(q + 12));
        a1 = _mm_add_pd(
            _mm_add_pd(_mm_add_pd(_mm_add_pd(a1, abs_pair(q + 2)), abs_pair(q + 6)), abs_pair(q + 10)),
            abs_pair(q + 14));
    }
    if (n - i >= 8) {
        a0 = _mm_add_pd(a0, abs_pair(x + i));
        a1 = _mm_add_pd(a1, abs_pair(x + i + 2));
        a2 = _mm_add_pd(a2, abs_pair(x + i + 4));
        a3 = _mm_add_pd(a3, abs_pair(x + i + 6));
        i += 8;
    }
    if (n - i >= 4) {
        a0 = _mm_add_pd(a0, abs_pair(x + i));
        a1 = _mm_add_pd(a1, abs_pair(x + i + 2));
        i += 4;
    }
    if (n - i >= 2) {
        a0 = _mm_add_pd(a0, abs_pair(x + i));
        i += 2;
    }
    if (i < n) a0 = _mm_add_sd(a0, abs_single(x + i));
    return lane_sum(_mm_add_pd(_mm_add_pd(_mm_add_pd(a0, a1), a2), a3));
}

#if ZOR_LEVEL == 4
// Eight four-lane accumulators over 32 elements per step, then steps of 4 into the first; their
// total, summed pairwise, folded to two lanes and one; the last elements added singly.
double dasum_four_lane(zint n, const double* x) {
    const __m256d sign = _mm256_set1_pd(-0.0);
    __m256d a[8];
    for (__m256d& v : a) v = _mm256_setzero_pd();
    zint i = 0;
    for (; n - i >= 32; i += 32) {
        for (int k = 0; k < 8; ++k)
            a[k] = _mm256_add_pd(a[k], _mm256_andnot_pd(sign, _mm256_loadu_pd(x + i + 4 * k)));
    }
    for (; n - i >= 4; i += 4) a[0] = _mm256_add_pd(a[0], _mm256_andnot_pd(sign, _mm256_loadu_pd(x + i)));
    double sum = quad_total(a);
    for (; i < n; ++i) sum += abs(x[i]);
    return sum;
}
#endif

}  // namespace

double dasum(const zint& n, const double* x, const zint& incx) {
    if (n < 1) return 0.0;
    if ((incx != 1 && incx != -1) || !aligned8(x)) return dasum_strided(n, x, incx);
#if ZOR_LEVEL == 4
    return dasum_four_lane(n, x);
#else
    return dasum_two_lane(n, x);
#endif
}

// Each element's (|re|, |im|) is one two-lane term. Unit-stride vectors spread elements over four
// accumulators, summed as (a0 + a1) + (a2 + a3), the lanes added last; at the Avx level steps of
// 16 elements go first into eight four-lane accumulators, whose total comes first.
double dzasum(const zint& n, const zcomplex* x, const zint& incx) {
    if (n < 1) return 0.0;
    __m128d a[4] = {_mm_setzero_pd(), _mm_setzero_pd(), _mm_setzero_pd(), _mm_setzero_pd()};
    double total = 0.0;
    zint i = 0;
    if (incx == 1 || incx == -1) {
#if ZOR_LEVEL == 4
        const __m256d sign = _mm256_set1_pd(-0.0);
        __m256d w[8];
        for (__m256d& v : w) v = _mm256_setzero_pd();
        for (; n - i >= 16; i += 16) {
            for (int k = 0; k < 8; ++k)
                w[k] = _mm256_add_pd(w[k], _mm256_andnot_pd(sign, _mm256_loadu_pd(&x[i + 2 * k].re)));
        }
        total = quad_total(w);
#endif
        for (; n - i >= 4; i += 4) {
            for (int k = 0; k < 4; ++k) a[k] = _mm_add_pd(a[k], clear_sign(_mm_loadu_pd(&x[i + k].re)));
        }
        for (; i < n; ++i) a[0] = _mm_add_pd(a[0], clear_sign(_mm_loadu_pd(&x[i].re)));
    } else {
        const zcomplex* xs = x + first_element(n, incx);
        for (; i < n; ++i) a[0] = _mm_add_pd(a[0], clear_sign(_mm_loadu_pd(&xs[i * incx].re)));
    }
    return total + lane_sum(_mm_add_pd(_mm_add_pd(a[0], a[1]), _mm_add_pd(a[2], a[3])));
}

}  // namespace zor::ZOR_LEVEL_NS
