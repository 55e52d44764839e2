// The diagonal-block kernels of each level: 128-bit vectors below Avx, 256-bit vectors without FMA
// at Avx; the Avx variant hands over to its FMA or AVX-512 kernels when the processor has them.

#include "blas/kernel.hpp"
#include "blas/level3/level3_blocks.hpp"
#include "blas/level3/level3_tiles.hpp"
#include "blas/simd.hpp"
#include "service/cpu.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// Tiles that fill the sixteen vector registers: 4 x 3 vectors real, 2 x 2 vectors complex, whose
// two accumulators per vector make 8.
#ifdef __AVX__
using Ops = Vec4;
#else
using Ops = Vec2;
#endif

constinit const BlockKernels<double> kReal = make_block_kernels<Ops, 4, 3, double>(128, 128);
constinit const BlockKernels<zcomplex> kComplex = make_block_kernels<Ops, 2, 2, zcomplex>(128, 128);

}  // namespace

const BlockKernels<double>& real_block_kernels(std::uint32_t extensions) {
    if constexpr (kLevel == CpuLevel::Avx) {
        if (extensions & kExtensionAvx512f) return real_block_kernels_avx512();
        if (extensions & kExtensionFma) return real_block_kernels_fma();
    }
    (void)extensions;
    return kReal;
}

const BlockKernels<zcomplex>& complex_block_kernels(std::uint32_t extensions) {
    if constexpr (kLevel == CpuLevel::Avx) {
        if (extensions & kExtensionAvx512f) return complex_block_kernels_avx512();
        if (extensions & kExtensionFma) return complex_block_kernels_fma();
    }
    (void)extensions;
    return kComplex;
}

}  // namespace zor::ZOR_LEVEL_NS
