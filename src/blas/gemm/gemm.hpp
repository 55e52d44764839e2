#pragma once
// The GEMM engines: C := alpha·op(A)·op(B) + beta·C in real and complex double precision, in the
// internal calling form (everything by reference, 64-bit integers, unchecked arguments). op(X) is X
// for "N"/"n"; for real data any other letter is Xᵀ; for complex data "T"/"t" is Xᵀ and any other
// letter Xᴴ.
//
// Avx, Sse42 and Ssse3 are table-driven (gemm_blocking.hpp); Default and Sse3 follow the fixed
// design, and Default hands the whole call to an alternate driver on an AMD family-10h processor.

#include <cstdint>

#include "service/dispatch.hpp"
#include "service/types.hpp"

namespace zor {

// What a GEMM variant adapts to besides its level: the extensions beyond AVX (Avx), the sub-level
// (the Sse42 and Ssse3 records) and whether the processor is an AMD family 10h running at level
// Default. The variants ask the processor; tests pass their own to reach every path.
struct GemmChoice {
    std::uint32_t extensions;
    int sublevel;
    bool family_10h;
    // Every blocked-size product through the packed path, none through the direct one (tests
    // compare the two).
    bool packed_only = false;
};

}  // namespace zor

ZOR_DECLARE_VARIANTS(
    void dgemm(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
               const double& alpha, const double* a, const zint& lda, const double* b, const zint& ldb,
               const double& beta, double* c, const zint& ldc);
    void zgemm(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
               const zcomplex& alpha, const zcomplex* a, const zint& lda, const zcomplex* b, const zint& ldb,
               const zcomplex& beta, zcomplex* c, const zint& ldc);
    void dgemm_with(const GemmChoice& choice, const char& transa, const char& transb, const zint& m,
                    const zint& n, const zint& k, const double& alpha, const double* a, const zint& lda,
                    const double* b, const zint& ldb, const double& beta, double* c, const zint& ldc);
    void zgemm_with(const GemmChoice& choice, const char& transa, const char& transb, const zint& m,
                    const zint& n, const zint& k, const zcomplex& alpha, const zcomplex* a, const zint& lda,
                    const zcomplex* b, const zint& ldb, const zcomplex& beta, zcomplex* c, const zint& ldc);
    // The unblocked paths: C := beta·C + alpha·op(A)·op(B), never allocating; beta = 0 does not read C.
    void dgemm_small(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                     const double& alpha, const double* a, const zint& lda, const double* b, const zint& ldb,
                     const double& beta, double* c, const zint& ldc);
    void zgemm_small(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                     const zcomplex& alpha, const zcomplex* a, const zint& lda, const zcomplex* b,
                     const zint& ldb, const zcomplex& beta, zcomplex* c, const zint& ldc);
    // C := beta·C; beta = 0 stores zeros without reading C.
    void scale_c(const zint& m, const zint& n, const double& beta, double* c, const zint& ldc);
    void zscale_c(const zint& m, const zint& n, const zcomplex& beta, zcomplex* c, const zint& ldc);)
