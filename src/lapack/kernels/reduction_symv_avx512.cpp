// The products of the tridiagonal reduction with 512-bit vectors and fused multiply-adds, for
// processors with AVX-512F: real blocks of 8 columns, complex of 4. Compiled into the Avx variant
// only: the other levels compile this file to nothing, so that no EVEX code can reach them.

#include "blas/kernel.hpp"

#if ZOR_LEVEL == 4

#pragma GCC target("avx512f,fma")
// GCC 12 flags the undefined pass-through operand inside its own AVX-512 intrinsics (its bug 105593).
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"

#include <immintrin.h>

#include "blas/simd.hpp"
#include "lapack/kernels/reduction_symv.hpp"

namespace zor::avx {

void dlatrd_symv_avx512(bool upper, zint n, const double* a, zint lda, const double* x, double* y) {
    reduction_product<Vec8, 8>(upper, n, a, lda, x, y);
}

void zlatrd_hemv_avx512(bool upper, zint n, const zcomplex* a, zint lda, const zcomplex* x, zcomplex* y) {
    reduction_product<Vec8, 4>(upper, n, a, lda, x, y);
}

}  // namespace zor::avx

#endif
