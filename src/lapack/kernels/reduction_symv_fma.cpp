// The products of the tridiagonal reduction with 256-bit fused multiply-adds, for processors with
// FMA but without AVX-512F: real blocks of 4 columns, complex of 2. Compiled into the Avx variant
// only.

#include "blas/kernel.hpp"

#if ZOR_LEVEL == 4

#pragma GCC target("fma")

#include <immintrin.h>

#include "blas/simd.hpp"
#include "lapack/kernels/reduction_symv.hpp"

namespace zor::avx {

void dlatrd_symv_fma(bool upper, zint n, const double* a, zint lda, const double* x, double* y) {
    reduction_product<Vec4Fused, 4>(upper, n, a, lda, x, y);
}

void zlatrd_hemv_fma(bool upper, zint n, const zcomplex* a, zint lda, const zcomplex* x, zcomplex* y) {
    reduction_product<Vec4Fused, 2>(upper, n, a, lda, x, y);
}

}  // namespace zor::avx

#endif
