// The kernels of the tridiagonal reduction with 512-bit vectors and fused multiply-adds, for
// processors with AVX-512F: real blocks of 8 columns, complex of 4. Compiled into the Avx variant
// only: the other levels compile this file to nothing, so that no EVEX code can reach them.

#include "blas/kernel.hpp"

#if ZOR_LEVEL == 4

#include <immintrin.h>

ZOR_TARGET_BEGIN("avx512f,fma")
#if !defined(__clang__)
// GCC 12 flags the undefined pass-through operand inside its own AVX-512 intrinsics (its bug 105593).
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

#include "blas/simd.hpp"
#include "lapack/kernels/reduction.hpp"

namespace zor::avx {

namespace {

constinit const ReductionKernels kKernels = make_reduction_kernels<Vec8, 8, 4>();

}  // namespace

const ReductionKernels& reduction_kernels_avx512() {
    return kKernels;
}

}  // namespace zor::avx

ZOR_TARGET_END

#endif
