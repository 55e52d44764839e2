// The kernels of the tridiagonal reduction with 256-bit fused multiply-adds, for processors with
// FMA but without AVX-512F: real blocks of 4 columns, complex of 2. Compiled into the Avx variant
// only.

#include "blas/kernel.hpp"

#if ZOR_LEVEL == 4

#include <immintrin.h>

ZOR_TARGET_BEGIN("fma")

#include "blas/simd.hpp"
#include "lapack/kernels/reduction.hpp"

namespace zor::avx {

namespace {

constinit const ReductionKernels kKernels = make_reduction_kernels<Vec4Fused, 4, 2>();

}  // namespace

const ReductionKernels& reduction_kernels_fma() {
    return kKernels;
}

}  // namespace zor::avx

ZOR_TARGET_END

#endif
