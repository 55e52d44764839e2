// The diagonal-block kernels of the Avx variant with 256-bit fused multiply-adds, for processors
// with FMA but without AVX-512F. Compiled into the Avx variant only.

#include "blas/kernel.hpp"
#include "blas/level3/level3_blocks.hpp"

#if ZOR_LEVEL == 4

#include <immintrin.h>

// Everything defined below, the shared tiles included, may use FMA.
ZOR_TARGET_BEGIN("fma")

#include "blas/level3/level3_tiles.hpp"
#include "blas/simd.hpp"

namespace zor::avx {

namespace {

constinit const BlockKernels<double> kReal = make_block_kernels<Vec4Fused, 4, 3, double>(128, 128);
constinit const BlockKernels<zcomplex> kComplex = make_block_kernels<Vec4Fused, 2, 2, zcomplex>(128, 128);

}  // namespace

const BlockKernels<double>& real_block_kernels_fma() {
    return kReal;
}

const BlockKernels<zcomplex>& complex_block_kernels_fma() {
    return kComplex;
}

}  // namespace zor::avx

ZOR_TARGET_END

#endif
