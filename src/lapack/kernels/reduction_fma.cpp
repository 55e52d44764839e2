// The kernels of the tridiagonal reduction with 256-bit fused multiply-adds, for processors with
// FMA but without AVX-512F: real blocks of 4 columns, complex of 2. Compiled into the Avx variant
// only.

#include "blas/kernel.hpp"

#if ZOR_LEVEL == 4

#pragma GCC target("fma")

#include <immintrin.h>

#include "blas/simd.hpp"
#include "lapack/kernels/reduction.hpp"

namespace zor::avx {

void dlatrd_symv_fma(bool upper, zint n, const double* a, zint lda, const double* x, double* y) {
    reduction_product<Vec4Fused, 4>(upper, n, a, lda, x, y);
}

void zlatrd_hemv_fma(bool upper, zint n, const zcomplex* a, zint lda, const zcomplex* x, zcomplex* y) {
    reduction_product<Vec4Fused, 2>(upper, n, a, lda, x, y);
}

void dsb2st_right_fma(zint rows, zint cols, double* b, zint ldb, const double* v, double tau, double* w) {
    chase_right<Vec4Fused>(rows, cols, b, ldb, v, tau, w);
}

void zhb2st_right_fma(zint rows, zint cols, zcomplex* b, zint ldb, const zcomplex* v, zcomplex tau,
                      zcomplex* w) {
    chase_right<Vec4Fused>(rows, cols, b, ldb, v, tau, w);
}

void dsb2st_left_fma(zint rows, zint cols, double* b, double* d, zint ld, const double* v, double tau,
                     double* w) {
    chase_left<Vec4Fused>(rows, cols, b, ld, v, tau);
    chase_both_sides<Vec4Fused, 4>(rows, d, ld, v, tau, w);
}

void zhb2st_left_fma(zint rows, zint cols, zcomplex* b, zcomplex* d, zint ld, const zcomplex* v, zcomplex tau,
                     zcomplex* w) {
    chase_left<Vec4Fused>(rows, cols, b, ld, v, tau);
    chase_both_sides<Vec4Fused, 2>(rows, d, ld, v, tau, w);
}

}  // namespace zor::avx

#endif
