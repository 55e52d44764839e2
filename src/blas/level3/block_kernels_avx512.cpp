// The diagonal-block kernels of the Avx variant with 512-bit vectors, for processors with AVX-512F.
// Compiled into the Avx variant only: the other levels compile this file to nothing, so that no EVEX
// code can reach them.

#include "blas/kernel.hpp"
#include "blas/level3/level3_blocks.hpp"

#if ZOR_LEVEL == 4

#include <immintrin.h>

ZOR_TARGET_BEGIN("avx512f,fma")
#if !defined(__clang__)
// GCC 12 flags the undefined pass-through operand inside its own AVX-512 intrinsics (its bug 105593).
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

#include "blas/level3/level3_tiles.hpp"

namespace zor::avx {

namespace {

// The vector vocabulary of simd.hpp at 512 bits, with fused multiply-adds.
struct Vec8 {
    using Vec = __m512d;
    static constexpr int kLanes = 8;
    static Vec load(const double* p) { return _mm512_load_pd(p); }
    static Vec loadu(const double* p) { return _mm512_loadu_pd(p); }
    static void storeu(double* p, Vec v) { _mm512_storeu_pd(p, v); }
    static Vec broadcast(const double* p) { return _mm512_set1_pd(*p); }
    static Vec zero() { return _mm512_setzero_pd(); }
    static Vec mul_add(Vec a, Vec b, Vec c) { return _mm512_fmadd_pd(a, b, c); }
    static Vec add(Vec a, Vec b) { return _mm512_add_pd(a, b); }
    static Vec mul(Vec a, Vec b) { return _mm512_mul_pd(a, b); }
    static Vec swap_pairs(Vec a) { return _mm512_permute_pd(a, 0x55); }
    // Even lanes a - b, odd lanes a + b.
    static Vec add_sub(Vec a, Vec b) { return _mm512_mask_sub_pd(_mm512_add_pd(a, b), 0x55, a, b); }
    // 8 x 8 doubles by pairs, then by 128-bit lanes in two rounds; 4 x 4 complex values by lanes.
    static void transpose(__m512d (&r)[8]) {
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
    static void transpose_pairs(__m512d (&r)[4]) {
        const __m512d u0 = _mm512_shuffle_f64x2(r[0], r[1], 0x44),
                      u1 = _mm512_shuffle_f64x2(r[0], r[1], 0xee);
        const __m512d u2 = _mm512_shuffle_f64x2(r[2], r[3], 0x44),
                      u3 = _mm512_shuffle_f64x2(r[2], r[3], 0xee);
        r[0] = _mm512_shuffle_f64x2(u0, u2, 0x88);
        r[1] = _mm512_shuffle_f64x2(u0, u2, 0xdd);
        r[2] = _mm512_shuffle_f64x2(u1, u3, 0x88);
        r[3] = _mm512_shuffle_f64x2(u1, u3, 0xdd);
    }
    static __m512d reverse(__m512d v) {
        return _mm512_permutexvar_pd(_mm512_set_epi64(0, 1, 2, 3, 4, 5, 6, 7), v);
    }
    static __m512d reverse_pairs(__m512d v) { return _mm512_shuffle_f64x2(v, v, 0x1b); }
};

// 8 rows by 3 vectors: 24 accumulators of the 32 registers, as the GEMM tiles of this path;
// complex 4 rows by 3 vectors, two accumulators each.
constinit const BlockKernels<double> kReal = make_block_kernels<Vec8, 8, 3, double>(192, 240);
constinit const BlockKernels<zcomplex> kComplex = make_block_kernels<Vec8, 4, 3, zcomplex>(192, 256);

}  // namespace

const BlockKernels<double>& real_block_kernels_avx512() {
    return kReal;
}

const BlockKernels<zcomplex>& complex_block_kernels_avx512() {
    return kComplex;
}

}  // namespace zor::avx

ZOR_TARGET_END

#endif
