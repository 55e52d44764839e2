#pragma once
// The unblocked real GEMM path in the order of the blocked kernels of the Avx variant, for the
// problems below its blocking thresholds: so that an element of C gets the same bits whether the
// call's shape sends it here, to the direct path or to the packed one. Fused for the FMA and
// AVX-512 kernels (included by gemm/fma.cpp, under its target), plain for the AVX ones (small.cpp).
// Internal linkage.

#include <immintrin.h>

#include "blas/gemm/blocking.hpp"
#include "blas/kernel.hpp"
#include "service/letters.hpp"

namespace zor::ZOR_LEVEL_NS {
namespace {

// C := beta C + alpha op(A) op(B) one element at a time, in the blocked path's order: per depth block
// of gemm_kc(k, 4), an accumulator from zero takes (alpha·a)·b fused (or rounded product, then sum),
// then C + accumulator, and + 0 for a depth not a multiple of 4.
template <bool kFused>
void ordered_small(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                   const double& alpha, const double* a, const zint& lda, const double* b, const zint& ldb,
                   const double& beta, double* c, const zint& ldc) {
    const bool plain_a = lsame(transa, 'N'), plain_b = lsame(transb, 'N');
    const zint kc = gemm_kc(k, 4);
    for (zint j = 0; j < n; ++j) {
        double* column = c + j * ldc;
        if (beta != 1.0) {
            for (zint i = 0; i < m; ++i) column[i] = beta == 0.0 ? 0.0 : column[i] * beta;
        }
        for (zint pc = 0; pc < k; pc += kc) {
            const zint depth = k - pc < kc ? k - pc : kc;
            for (zint i = 0; i < m; ++i) {
                __m128d acc = _mm_setzero_pd();
                for (zint p = pc; p < pc + depth; ++p) {
                    const __m128d x = _mm_set_sd(alpha * (plain_a ? a[i + p * lda] : a[p + i * lda]));
                    const __m128d y = _mm_set_sd(plain_b ? b[p + j * ldb] : b[j + p * ldb]);
                    if constexpr (kFused) {
                        acc = _mm_fmadd_sd(x, y, acc);
                    } else {
                        acc = _mm_add_sd(_mm_mul_sd(x, y), acc);
                    }
                }
                if (depth % 4 != 0) acc = _mm_add_sd(acc, _mm_setzero_pd());
                column[i] += _mm_cvtsd_f64(acc);
            }
        }
    }
}

}  // namespace
}  // namespace zor::ZOR_LEVEL_NS
