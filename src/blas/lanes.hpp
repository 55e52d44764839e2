#pragma once
// Vectors of doubles for kernels written once for two lanes (SSE2 registers) and four lanes (AVX
// registers): the same template code, instantiated with TwoLanes at every level and with
// FourLanes at the Avx level.

#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

struct TwoLanes {
    using V = __m128d;
    static constexpr int kWidth = 2;
    static V zero() { return _mm_setzero_pd(); }
    static V splat(double v) { return _mm_set1_pd(v); }
    static V load(const double* p) { return _mm_load_pd(p); }
    static V loadu(const double* p) { return _mm_loadu_pd(p); }
    static void store(double* p, V v) { _mm_store_pd(p, v); }
    static void storeu(double* p, V v) { _mm_storeu_pd(p, v); }
    static V add(V a, V b) { return _mm_add_pd(a, b); }
    static V sub(V a, V b) { return _mm_sub_pd(a, b); }
    static V mul(V a, V b) { return _mm_mul_pd(a, b); }
    // (re, im) pairs with their halves swapped: (im, re).
    static V swap_pairs(V v) { return _mm_shuffle_pd(v, v, 1); }
    // The lanes added: v0 + v1.
    static double sum(V v) { return lane_sum(v); }
    // (v, 0): a sum whose first lane starts at v.
    static V first_lane(double v) { return _mm_set_sd(v); }
    // (a, b) in every pair of lanes.
    static V pairs_of(double a, double b) { return _mm_set_pd(b, a); }
    static double first(V v) { return _mm_cvtsd_f64(v); }
    // sum() with the first lane replaced by `first`.
    static double sum_with_first(V v, double first) {
        return _mm_cvtsd_f64(_mm_add_sd(_mm_set_sd(first), _mm_unpackhi_pd(v, v)));
    }
    // The complex elements held: one. Their sum as (re, im).
    static __m128d pair_sum(V v) { return v; }
    using Factor = ComplexFactor;
    static Factor factor(const zcomplex& alpha) { return complex_factor(alpha); }
};

#if ZOR_LEVEL == 4
struct FourLanes {
    using V = __m256d;
    static constexpr int kWidth = 4;
    static V zero() { return _mm256_setzero_pd(); }
    static V splat(double v) { return _mm256_set1_pd(v); }
    static V load(const double* p) { return _mm256_load_pd(p); }
    static V loadu(const double* p) { return _mm256_loadu_pd(p); }
    static void store(double* p, V v) { _mm256_store_pd(p, v); }
    static void storeu(double* p, V v) { _mm256_storeu_pd(p, v); }
    static V add(V a, V b) { return _mm256_add_pd(a, b); }
    static V sub(V a, V b) { return _mm256_sub_pd(a, b); }
    static V mul(V a, V b) { return _mm256_mul_pd(a, b); }
    static V swap_pairs(V v) { return _mm256_permute_pd(v, 5); }
    // (v0 + v2) + (v1 + v3).
    static double sum(V v) { return lane_sum(pair_sum(v)); }
    static V first_lane(double v) { return _mm256_set_pd(0.0, 0.0, 0.0, v); }
    static V pairs_of(double a, double b) { return _mm256_set_pd(b, a, b, a); }
    static double first(V v) { return _mm_cvtsd_f64(_mm256_castpd256_pd128(v)); }
    static double sum_with_first(V v, double first) {
        const __m128d low = _mm_move_sd(_mm256_castpd256_pd128(v), _mm_set_sd(first));
        return lane_sum(_mm_add_pd(low, _mm256_extractf128_pd(v, 1)));
    }
    // Two complex elements: (re0 + re1, im0 + im1).
    static __m128d pair_sum(V v) {
        return _mm_add_pd(_mm256_castpd256_pd128(v), _mm256_extractf128_pd(v, 1));
    }
    using Factor = ComplexFactor4;
    static Factor factor(const zcomplex& alpha) { return complex_factor4(alpha); }
};
using WideLanes = FourLanes;
#else
using WideLanes = TwoLanes;
#endif

// The products of K columns' elements at row r with their factors, summed pairwise (K a power of
// two): a short chain of additions whatever K is.
template <class L, int K>
typename L::V column_products(const double* const* c, const typename L::V* factors, zint r) {
    if constexpr (K == 1) {
        return L::mul(L::loadu(c[0] + r), factors[0]);
    } else {
        return L::add(column_products<L, K / 2>(c, factors, r),
                      column_products<L, K / 2>(c + K / 2, factors + K / 2, r));
    }
}
template <int K>
double column_products(const double* const* c, const double* t, zint r) {
    if constexpr (K == 1) {
        return c[0][r] * t[0];
    } else {
        return column_products<K / 2>(c, t, r) + column_products<K / 2>(c + K / 2, t + K / 2, r);
    }
}

}  // namespace zor::ZOR_LEVEL_NS
