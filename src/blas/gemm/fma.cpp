// The 256-bit FMA path of the Avx GEMM variants, for processors with FMA but without AVX-512.
// Compiled into the Avx variant only. The column tiles of gemm_tiles.hpp with fused multiply-adds:
// 3 panels of A (12 rows) times 4 columns of B give 12 accumulators, enough to cover the FMA latency
// with the 16 registers of AVX.

#include "blas/gemm/avx_paths.hpp"
#include "blas/gemm/blocking.hpp"
#include "blas/kernel.hpp"

#if ZOR_LEVEL == 4

#include <immintrin.h>

// Everything defined below, the shared tiles included, may use FMA.
ZOR_TARGET_BEGIN("fma")

#include "blas/gemm/tiles.hpp"
#include "blas/simd.hpp"

namespace zor::avx {

void dgemm_macro_fma(const zint& mb, const zint& nb, const zint& kb, const double* packed_a,
                     const double* packed_b, const double* beta, double* c, const zint& ldc) {
    dgemm_macro_columns<Vec4Fused, 4, 8, 3, 4>(mb, nb, kb, packed_a, packed_b, *beta, c, ldc,
                                               gemm_a_group_bytes());
}

void zgemm_macro_fma(const zint& mb, const zint& nb, const zint& kb, const zcomplex* packed_a,
                     const zcomplex* packed_b, const zcomplex* beta, zcomplex* c, const zint& ldc) {
    alignas(16) double beta_vector[4];
    make_beta_vector(*beta, beta_vector);
    zgemm_macro_columns<Vec4Fused, 2, 4, 3, 2>(mb, nb, kb, packed_a, packed_b, beta_vector, c, ldc,
                                               gemm_a_group_bytes());
}

}  // namespace zor::avx

ZOR_TARGET_END

#endif
