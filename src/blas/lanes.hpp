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

}  // namespace zor::ZOR_LEVEL_NS
