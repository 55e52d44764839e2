#pragma once
// The inner paths of the Avx GEMM variants beyond plain AVX: macro-kernels with 512-bit FMA
// (gemm_avx512.cpp) and with 256-bit FMA (gemm_fma.cpp). They are defined in the Avx variant only and
// run only after detect_avx_extensions has found the extension; other levels see the declarations
// so that their discarded `if constexpr` branches compile, and never call them.
//
// Every macro-kernel takes the packed blocks of the table-driven design (A in panels of mr rows,
// B in panels of nr columns, depth kb a multiple of kr) and does C := beta C + A B on an mb x nb
// block; beta = 0 does not read C.

#include "service/dispatch.hpp"
#include "service/types.hpp"

ZOR_DECLARE_VARIANTS(
    void dgemm_macro_avx512(const zint& mb, const zint& nb, const zint& kb, const double* packed_a,
                            const double* packed_b, const double* beta, double* c, const zint& ldc);
    void zgemm_macro_avx512(const zint& mb, const zint& nb, const zint& kb, const zcomplex* packed_a,
                            const zcomplex* packed_b, const zcomplex* beta, zcomplex* c, const zint& ldc);
    void dgemm_macro_fma(const zint& mb, const zint& nb, const zint& kb, const double* packed_a,
                         const double* packed_b, const double* beta, double* c, const zint& ldc);
    void zgemm_macro_fma(const zint& mb, const zint& nb, const zint& kb, const zcomplex* packed_a,
                         const zcomplex* packed_b, const zcomplex* beta, zcomplex* c, const zint& ldc);
    // C += alpha·op(A)·op(B) from the caller's arrays (gemm/direct.cpp) when dgemm_direct_suits the
    // shape, with the bits of the blocked AVX-512 path; false, having done nothing, otherwise.
    bool dgemm_direct_avx512(const char& transa, const char& transb, const zint& m, const zint& n,
                             const zint& k, const double& alpha, const double* a, const zint& lda,
                             const double* b, const zint& ldb, double* c, const zint& ldc);
    // The unblocked real path in the order of the blocked kernels (gemm/direct.cpp), with fused
    // multiply-adds (the FMA and AVX-512 kernels) or without (plain AVX): small products get the bits
    // they would get as part of a larger one.
    void dgemm_small_fused(const char& transa, const char& transb, const zint& m, const zint& n,
                           const zint& k, const double& alpha, const double* a, const zint& lda,
                           const double* b, const zint& ldb, const double& beta, double* c, const zint& ldc);
    void dgemm_small_unfused(const char& transa, const char& transb, const zint& m, const zint& n,
                             const zint& k, const double& alpha, const double* a, const zint& lda,
                             const double* b, const zint& ldb, const double& beta, double* c,
                             const zint& ldc);)
