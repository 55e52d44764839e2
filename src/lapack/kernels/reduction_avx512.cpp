// The kernels of the tridiagonal reduction with 512-bit vectors and fused multiply-adds, for
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
#include "lapack/kernels/reduction.hpp"

namespace zor::avx {

void dlatrd_symv_avx512(bool upper, zint n, const double* a, zint lda, const double* x, double* y) {
    reduction_product<Vec8, 8>(upper, n, a, lda, x, y);
}

void zlatrd_hemv_avx512(bool upper, zint n, const zcomplex* a, zint lda, const zcomplex* x, zcomplex* y) {
    reduction_product<Vec8, 4>(upper, n, a, lda, x, y);
}

void dsb2st_right_avx512(zint rows, zint cols, double* b, zint ldb, const double* v, double tau, double* w) {
    chase_right<Vec8>(rows, cols, b, ldb, v, tau, w);
}

void zhb2st_right_avx512(zint rows, zint cols, zcomplex* b, zint ldb, const zcomplex* v, zcomplex tau,
                         zcomplex* w) {
    chase_right<Vec8>(rows, cols, b, ldb, v, tau, w);
}

void dsb2st_left_avx512(zint rows, zint cols, double* b, double* d, zint ld, const double* v, double tau,
                        double* w) {
    chase_left<Vec8>(rows, cols, b, ld, v, tau);
    chase_both_sides<Vec8, 8>(rows, d, ld, v, tau, w);
}

void zhb2st_left_avx512(zint rows, zint cols, zcomplex* b, zcomplex* d, zint ld, const zcomplex* v,
                        zcomplex tau, zcomplex* w) {
    chase_left<Vec8>(rows, cols, b, ld, v, tau);
    chase_both_sides<Vec8, 4>(rows, d, ld, v, tau, w);
}

}  // namespace zor::avx

#endif
