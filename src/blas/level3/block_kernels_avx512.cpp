// The diagonal-block kernels of the Avx variant with 512-bit vectors, for processors with AVX-512F.
// Compiled into the Avx variant only: the other levels compile this file to nothing, so that no EVEX
// code can reach them.

#include "blas/kernel.hpp"
#include "blas/level3/level3_blocks.hpp"

#if ZOR_LEVEL == 4

#pragma GCC target("avx512f,fma")
// GCC 12 flags the undefined pass-through operand inside its own AVX-512 intrinsics (its bug 105593).
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"

#include <immintrin.h>

#include "blas/level3/level3_tiles.hpp"

namespace zor::avx {

namespace {

struct Avx512Ops {
    using Vec = __m512d;
    static constexpr int kLanes = 8;
    static Vec load(const double* p) { return _mm512_load_pd(p); }
    static void storeu(double* p, Vec v) { _mm512_storeu_pd(p, v); }
    static Vec broadcast(const double* p) { return _mm512_set1_pd(*p); }
    static Vec zero() { return _mm512_setzero_pd(); }
    static Vec mul_add(Vec a, Vec b, Vec c) { return _mm512_fmadd_pd(a, b, c); }
    static Vec add(Vec a, Vec b) { return _mm512_add_pd(a, b); }
    static Vec mul(Vec a, Vec b) { return _mm512_mul_pd(a, b); }
    static Vec swap_pairs(Vec a) { return _mm512_permute_pd(a, 0x55); }
    // Even lanes a - b, odd lanes a + b.
    static Vec add_sub(Vec a, Vec b) { return _mm512_mask_sub_pd(_mm512_add_pd(a, b), 0x55, a, b); }
};

// 8 rows by 3 vectors: 24 accumulators of the 32 registers, as the GEMM tiles of this path;
// complex 4 rows by 3 vectors, two accumulators each.
constinit const BlockKernels<double> kReal = make_block_kernels<Avx512Ops, 8, 3, double>(192, 256);
constinit const BlockKernels<zcomplex> kComplex = make_block_kernels<Avx512Ops, 4, 3, zcomplex>(192, 256);

}  // namespace

const BlockKernels<double>& real_block_kernels_avx512() {
    return kReal;
}

const BlockKernels<zcomplex>& complex_block_kernels_avx512() {
    return kComplex;
}

}  // namespace zor::avx

#endif
