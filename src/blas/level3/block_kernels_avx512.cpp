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
#include "blas/simd.hpp"

namespace zor::avx {

namespace {

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
