#pragma once
// Vectors of doubles for kernels written once for several register widths: Vec2 (128-bit SSE2
// registers, with the SSE3 pair instructions from level Sse3 on) at every level, Vec4 (256-bit AVX
// registers) at the Avx level, and Vec8 (512-bit) where a source enables AVX-512 itself. Every
// kernel template over the vector type uses these names; a multiply-add here is a multiply and an
// add, two roundings, unless a path with FMA derives a fused one.
//
// Internal linkage: sources that enable FMA or AVX-512 by target pragmas include this too, and a
// copy they compiled must never serve another path. Code with AVX intrinsics sits under
// #if ZOR_LEVEL == 4: a function holding one cannot be compiled at the other levels even when
// nothing calls it (unoptimised builds still emit it).

#include <immintrin.h>

#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {
namespace {

struct Vec2 {
    using Vec = __m128d;
    static constexpr int kLanes = 2;
    static Vec zero() { return _mm_setzero_pd(); }
    static Vec splat(double v) { return _mm_set1_pd(v); }
    static Vec broadcast(const double* p) { return _mm_load1_pd(p); }
    // The complex value at p in every pair of lanes.
    static Vec broadcast_pair(const double* p) { return _mm_loadu_pd(p); }
    static Vec load(const double* p) { return _mm_load_pd(p); }
    static Vec loadu(const double* p) { return _mm_loadu_pd(p); }
    static void store(double* p, Vec v) { _mm_store_pd(p, v); }
    static void storeu(double* p, Vec v) { _mm_storeu_pd(p, v); }
    static Vec add(Vec a, Vec b) { return _mm_add_pd(a, b); }
    static Vec sub(Vec a, Vec b) { return _mm_sub_pd(a, b); }
    static Vec mul(Vec a, Vec b) { return _mm_mul_pd(a, b); }
    static Vec mul_add(Vec a, Vec b, Vec c) { return _mm_add_pd(_mm_mul_pd(a, b), c); }
    static Vec abs(Vec v) { return clear_sign(v); }
    static Vec larger(Vec a, Vec b) { return _mm_max_pd(a, b); }
    static Vec smaller(Vec a, Vec b) { return _mm_min_pd(a, b); }
    static bool any_greater(Vec a, Vec b) { return _mm_movemask_pd(_mm_cmpgt_pd(a, b)) != 0; }
    static bool any_less(Vec a, Vec b) { return _mm_movemask_pd(_mm_cmplt_pd(a, b)) != 0; }
    static bool any_nan(Vec a) { return _mm_movemask_pd(_mm_cmpunord_pd(a, a)) != 0; }
    // The even lanes of a and b interleaved, and the odd ones (within each 128-bit half).
    static Vec unpack_low(Vec a, Vec b) { return _mm_unpacklo_pd(a, b); }
    static Vec unpack_high(Vec a, Vec b) { return _mm_unpackhi_pd(a, b); }
    // (re, im) pairs with their halves swapped: (im, re).
    static Vec swap_pairs(Vec v) { return _mm_shuffle_pd(v, v, 1); }
    // Even lanes a - b, odd lanes a + b.
    static Vec add_sub(Vec a, Vec b) {
        if constexpr (kLevel >= CpuLevel::Sse3) {
            return _mm_addsub_pd(a, b);
        } else {
            return _mm_add_pd(a, _mm_xor_pd(b, _mm_set_pd(0.0, -0.0)));
        }
    }
    // The lanes added: v0 + v1.
    static double sum(Vec v) { return lane_sum(v); }
    // (v, 0): a sum whose first lane starts at v.
    static Vec first_lane(double v) { return _mm_set_sd(v); }
    // (a, b) in every pair of lanes.
    static Vec pairs_of(double a, double b) { return _mm_set_pd(b, a); }
    static double first(Vec v) { return _mm_cvtsd_f64(v); }
    // sum() with the first lane replaced by `first`.
    static double sum_with_first(Vec v, double first) {
        return _mm_cvtsd_f64(_mm_add_sd(_mm_set_sd(first), _mm_unpackhi_pd(v, v)));
    }
    // The complex elements held: one. Their sum as (re, im).
    static __m128d pair_sum(Vec v) { return v; }
    using Factor = ComplexFactor;
    static Factor factor(const zcomplex& alpha) { return complex_factor(alpha); }
    // Square blocks of lanes turned around in registers (copies between packed strips and the
    // columns of a matrix): by doubles, and by complex values (pairs of lanes); reverse for
    // columns read backwards.
    static void transpose(Vec (&r)[2]) {
        const Vec low = _mm_unpacklo_pd(r[0], r[1]);
        r[1] = _mm_unpackhi_pd(r[0], r[1]);
        r[0] = low;
    }
    static void transpose_pairs(Vec (&)[1]) {}
    static Vec reverse(Vec v) { return _mm_shuffle_pd(v, v, 1); }
    static Vec reverse_pairs(Vec v) { return v; }
};

#if ZOR_LEVEL == 4
struct Vec4 {
    using Vec = __m256d;
    static constexpr int kLanes = 4;
    static Vec zero() { return _mm256_setzero_pd(); }
    static Vec splat(double v) { return _mm256_set1_pd(v); }
    static Vec broadcast(const double* p) { return _mm256_broadcast_sd(p); }
    static Vec broadcast_pair(const double* p) {
        return _mm256_broadcast_pd(reinterpret_cast<const __m128d*>(p));
    }
    static Vec load(const double* p) { return _mm256_load_pd(p); }
    static Vec loadu(const double* p) { return _mm256_loadu_pd(p); }
    static void store(double* p, Vec v) { _mm256_store_pd(p, v); }
    static void storeu(double* p, Vec v) { _mm256_storeu_pd(p, v); }
    static Vec add(Vec a, Vec b) { return _mm256_add_pd(a, b); }
    static Vec sub(Vec a, Vec b) { return _mm256_sub_pd(a, b); }
    static Vec mul(Vec a, Vec b) { return _mm256_mul_pd(a, b); }
    static Vec mul_add(Vec a, Vec b, Vec c) { return _mm256_add_pd(_mm256_mul_pd(a, b), c); }
    static Vec abs(Vec v) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), v); }
    static Vec larger(Vec a, Vec b) { return _mm256_max_pd(a, b); }
    static Vec smaller(Vec a, Vec b) { return _mm256_min_pd(a, b); }
    static bool any_greater(Vec a, Vec b) { return _mm256_movemask_pd(_mm256_cmp_pd(a, b, _CMP_GT_OQ)) != 0; }
    static bool any_less(Vec a, Vec b) { return _mm256_movemask_pd(_mm256_cmp_pd(a, b, _CMP_LT_OQ)) != 0; }
    static bool any_nan(Vec a) { return _mm256_movemask_pd(_mm256_cmp_pd(a, a, _CMP_UNORD_Q)) != 0; }
    static Vec unpack_low(Vec a, Vec b) { return _mm256_unpacklo_pd(a, b); }
    static Vec unpack_high(Vec a, Vec b) { return _mm256_unpackhi_pd(a, b); }
    static Vec swap_pairs(Vec v) { return _mm256_permute_pd(v, 5); }
    static Vec add_sub(Vec a, Vec b) { return _mm256_addsub_pd(a, b); }
    // (v0 + v2) + (v1 + v3).
    static double sum(Vec v) { return lane_sum(pair_sum(v)); }
    static Vec first_lane(double v) { return _mm256_set_pd(0.0, 0.0, 0.0, v); }
    static Vec pairs_of(double a, double b) { return _mm256_set_pd(b, a, b, a); }
    static double first(Vec v) { return _mm_cvtsd_f64(_mm256_castpd256_pd128(v)); }
    static double sum_with_first(Vec v, double first) {
        const __m128d low = _mm_move_sd(_mm256_castpd256_pd128(v), _mm_set_sd(first));
        return lane_sum(_mm_add_pd(low, _mm256_extractf128_pd(v, 1)));
    }
    // Two complex elements: (re0 + re1, im0 + im1).
    static __m128d pair_sum(Vec v) {
        return _mm_add_pd(_mm256_castpd256_pd128(v), _mm256_extractf128_pd(v, 1));
    }
    using Factor = ComplexFactor4;
    static Factor factor(const zcomplex& alpha) { return complex_factor4(alpha); }
    static void transpose(Vec (&r)[4]) {
        const Vec t0 = _mm256_unpacklo_pd(r[0], r[1]), t1 = _mm256_unpackhi_pd(r[0], r[1]);
        const Vec t2 = _mm256_unpacklo_pd(r[2], r[3]), t3 = _mm256_unpackhi_pd(r[2], r[3]);
        r[0] = _mm256_permute2f128_pd(t0, t2, 0x20);
        r[1] = _mm256_permute2f128_pd(t1, t3, 0x20);
        r[2] = _mm256_permute2f128_pd(t0, t2, 0x31);
        r[3] = _mm256_permute2f128_pd(t1, t3, 0x31);
    }
    static void transpose_pairs(Vec (&r)[2]) {
        const Vec low = _mm256_permute2f128_pd(r[0], r[1], 0x20);
        r[1] = _mm256_permute2f128_pd(r[0], r[1], 0x31);
        r[0] = low;
    }
    static Vec reverse(Vec v) { return _mm256_permute_pd(_mm256_permute2f128_pd(v, v, 0x01), 0x5); }
    static Vec reverse_pairs(Vec v) { return _mm256_permute2f128_pd(v, v, 0x01); }
};
// Vec4 with fused multiply-adds, for the paths that run only once FMA has been found (their sources
// enable it by a target pragma).
struct Vec4Fused : Vec4 {
    [[gnu::target("fma")]] static Vec mul_add(Vec a, Vec b, Vec c) { return _mm256_fmadd_pd(a, b, c); }
};
// The same at 512 bits with fused multiply-adds, for the paths that run only once AVX-512F has been
// found; every member is compiled for AVX-512F whatever the source's own flags.
// GCC 12 flags the undefined pass-through operand inside its own AVX-512 intrinsics (its bug 105593).
#if !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif
#define ZOR_AVX512 [[gnu::target("avx512f,fma")]]
struct Vec8 {
    using Vec = __m512d;
    static constexpr int kLanes = 8;
    ZOR_AVX512 static Vec load(const double* p) { return _mm512_load_pd(p); }
    ZOR_AVX512 static Vec loadu(const double* p) { return _mm512_loadu_pd(p); }
    ZOR_AVX512 static void storeu(double* p, Vec v) { _mm512_storeu_pd(p, v); }
    ZOR_AVX512 static Vec broadcast(const double* p) { return _mm512_set1_pd(*p); }
    ZOR_AVX512 static Vec zero() { return _mm512_setzero_pd(); }
    ZOR_AVX512 static Vec mul_add(Vec a, Vec b, Vec c) { return _mm512_fmadd_pd(a, b, c); }
    ZOR_AVX512 static Vec add(Vec a, Vec b) { return _mm512_add_pd(a, b); }
    ZOR_AVX512 static Vec mul(Vec a, Vec b) { return _mm512_mul_pd(a, b); }
    ZOR_AVX512 static Vec swap_pairs(Vec a) { return _mm512_permute_pd(a, 0x55); }
    // Even lanes a - b, odd lanes a + b.
    ZOR_AVX512 static Vec add_sub(Vec a, Vec b) {
        return _mm512_mask_sub_pd(_mm512_add_pd(a, b), 0x55, a, b);
    }
    // 8 x 8 doubles by pairs, then by 128-bit lanes in two rounds; 4 x 4 complex values by lanes.
    ZOR_AVX512 static void transpose(__m512d (&r)[8]) {
        __m512d t[8], u[8];
        for (int k = 0; k < 4; ++k) {
            t[2 * k] = _mm512_unpacklo_pd(r[2 * k], r[2 * k + 1]);
            t[2 * k + 1] = _mm512_unpackhi_pd(r[2 * k], r[2 * k + 1]);
        }
        for (int h = 0; h < 2; ++h) {
            u[4 * h] = _mm512_shuffle_f64x2(t[4 * h], t[4 * h + 2], 0x88);
            u[4 * h + 1] = _mm512_shuffle_f64x2(t[4 * h], t[4 * h + 2], 0xdd);
            u[4 * h + 2] = _mm512_shuffle_f64x2(t[4 * h + 1], t[4 * h + 3], 0x88);
            u[4 * h + 3] = _mm512_shuffle_f64x2(t[4 * h + 1], t[4 * h + 3], 0xdd);
        }
        r[0] = _mm512_shuffle_f64x2(u[0], u[4], 0x88);
        r[4] = _mm512_shuffle_f64x2(u[0], u[4], 0xdd);
        r[1] = _mm512_shuffle_f64x2(u[2], u[6], 0x88);
        r[5] = _mm512_shuffle_f64x2(u[2], u[6], 0xdd);
        r[2] = _mm512_shuffle_f64x2(u[1], u[5], 0x88);
        r[6] = _mm512_shuffle_f64x2(u[1], u[5], 0xdd);
        r[3] = _mm512_shuffle_f64x2(u[3], u[7], 0x88);
        r[7] = _mm512_shuffle_f64x2(u[3], u[7], 0xdd);
    }
    ZOR_AVX512 static void transpose_pairs(__m512d (&r)[4]) {
        const __m512d u0 = _mm512_shuffle_f64x2(r[0], r[1], 0x44),
                      u1 = _mm512_shuffle_f64x2(r[0], r[1], 0xee);
        const __m512d u2 = _mm512_shuffle_f64x2(r[2], r[3], 0x44),
                      u3 = _mm512_shuffle_f64x2(r[2], r[3], 0xee);
        r[0] = _mm512_shuffle_f64x2(u0, u2, 0x88);
        r[1] = _mm512_shuffle_f64x2(u0, u2, 0xdd);
        r[2] = _mm512_shuffle_f64x2(u1, u3, 0x88);
        r[3] = _mm512_shuffle_f64x2(u1, u3, 0xdd);
    }
    ZOR_AVX512 static __m512d reverse(__m512d v) {
        return _mm512_permutexvar_pd(_mm512_set_epi64(0, 1, 2, 3, 4, 5, 6, 7), v);
    }
    ZOR_AVX512 static __m512d reverse_pairs(__m512d v) { return _mm512_shuffle_f64x2(v, v, 0x1b); }
};

#if !defined(__clang__)
#pragma GCC diagnostic pop
#endif

// The widest vector of the level, without extensions beyond AVX.
using WideVec = Vec4;
#else
using WideVec = Vec2;
#endif

// The products of K columns' elements at row r with their factors, summed pairwise (K a power of
// two): a short chain of additions whatever K is.
template <class L, int K>
typename L::Vec column_products(const double* const* c, const typename L::Vec* factors, zint r) {
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

}  // namespace
}  // namespace zor::ZOR_LEVEL_NS
