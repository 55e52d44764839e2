#pragma once
// The level-3 routines beside GEMM: symmetric and Hermitian multiply (symm, hemm), rank-k and rank-2k
// updates (syrk, herk, syr2k, her2k), triangular multiply and solve (trmm, trsm), in the internal
// calling form (everything by reference, 64-bit integers, unchecked arguments, option letters
// compared without regard to case). They keep the published semantics and quick returns; only the
// referenced triangle of a symmetric or triangular operand is read, only the referenced triangle of
// C is written, beta = 0 writes zeros without reading C and alpha = 0 reads neither A nor B.
//
// Off-diagonal blocks go to the GEMM engine of the same level; the diagonal blocks to the register-
// tile kernels of level3_tiles.hpp. The *_with forms of the routines that have such blocks take the
// extensions beyond AVX that the Avx variant may use (cpu.hpp), so that tests reach every inner
// path; the plain forms ask the processor.

#include <cstdint>

#include "service/dispatch.hpp"
#include "service/types.hpp"

ZOR_DECLARE_VARIANTS(
    void dsymm(const char& side, const char& uplo, const zint& m, const zint& n, const double& alpha,
               const double* a, const zint& lda, const double* b, const zint& ldb, const double& beta,
               double* c, const zint& ldc);
    void zsymm(const char& side, const char& uplo, const zint& m, const zint& n, const zcomplex& alpha,
               const zcomplex* a, const zint& lda, const zcomplex* b, const zint& ldb, const zcomplex& beta,
               zcomplex* c, const zint& ldc);
    void zhemm(const char& side, const char& uplo, const zint& m, const zint& n, const zcomplex& alpha,
               const zcomplex* a, const zint& lda, const zcomplex* b, const zint& ldb, const zcomplex& beta,
               zcomplex* c, const zint& ldc);
    void dsyrk(const char& uplo, const char& trans, const zint& n, const zint& k, const double& alpha,
               const double* a, const zint& lda, const double& beta, double* c, const zint& ldc);
    void zsyrk(const char& uplo, const char& trans, const zint& n, const zint& k, const zcomplex& alpha,
               const zcomplex* a, const zint& lda, const zcomplex& beta, zcomplex* c, const zint& ldc);
    void zherk(const char& uplo, const char& trans, const zint& n, const zint& k, const double& alpha,
               const zcomplex* a, const zint& lda, const double& beta, zcomplex* c, const zint& ldc);
    void dsyr2k(const char& uplo, const char& trans, const zint& n, const zint& k, const double& alpha,
                const double* a, const zint& lda, const double* b, const zint& ldb, const double& beta,
                double* c, const zint& ldc);
    void zsyr2k(const char& uplo, const char& trans, const zint& n, const zint& k, const zcomplex& alpha,
                const zcomplex* a, const zint& lda, const zcomplex* b, const zint& ldb, const zcomplex& beta,
                zcomplex* c, const zint& ldc);
    void zher2k(const char& uplo, const char& trans, const zint& n, const zint& k, const zcomplex& alpha,
                const zcomplex* a, const zint& lda, const zcomplex* b, const zint& ldb, const double& beta,
                zcomplex* c, const zint& ldc);
    void dtrmm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
               const zint& n, const double& alpha, const double* a, const zint& lda, double* b,
               const zint& ldb);
    void ztrmm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
               const zint& n, const zcomplex& alpha, const zcomplex* a, const zint& lda, zcomplex* b,
               const zint& ldb);
    void dtrsm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
               const zint& n, const double& alpha, const double* a, const zint& lda, double* b,
               const zint& ldb);
    void ztrsm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
               const zint& n, const zcomplex& alpha, const zcomplex* a, const zint& lda, zcomplex* b,
               const zint& ldb);

    void dsyrk_with(std::uint32_t extensions, const char& uplo, const char& trans, const zint& n,
                    const zint& k, const double& alpha, const double* a, const zint& lda, const double& beta,
                    double* c, const zint& ldc);
    void zsyrk_with(std::uint32_t extensions, const char& uplo, const char& trans, const zint& n,
                    const zint& k, const zcomplex& alpha, const zcomplex* a, const zint& lda,
                    const zcomplex& beta, zcomplex* c, const zint& ldc);
    void zherk_with(std::uint32_t extensions, const char& uplo, const char& trans, const zint& n,
                    const zint& k, const double& alpha, const zcomplex* a, const zint& lda,
                    const double& beta, zcomplex* c, const zint& ldc);
    void dsyr2k_with(std::uint32_t extensions, const char& uplo, const char& trans, const zint& n,
                     const zint& k, const double& alpha, const double* a, const zint& lda, const double* b,
                     const zint& ldb, const double& beta, double* c, const zint& ldc);
    void zsyr2k_with(std::uint32_t extensions, const char& uplo, const char& trans, const zint& n,
                     const zint& k, const zcomplex& alpha, const zcomplex* a, const zint& lda,
                     const zcomplex* b, const zint& ldb, const zcomplex& beta, zcomplex* c, const zint& ldc);
    void zher2k_with(std::uint32_t extensions, const char& uplo, const char& trans, const zint& n,
                     const zint& k, const zcomplex& alpha, const zcomplex* a, const zint& lda,
                     const zcomplex* b, const zint& ldb, const double& beta, zcomplex* c, const zint& ldc);
    void dtrmm_with(std::uint32_t extensions, const char& side, const char& uplo, const char& transa,
                    const char& diag, const zint& m, const zint& n, const double& alpha, const double* a,
                    const zint& lda, double* b, const zint& ldb);
    void ztrmm_with(std::uint32_t extensions, const char& side, const char& uplo, const char& transa,
                    const char& diag, const zint& m, const zint& n, const zcomplex& alpha, const zcomplex* a,
                    const zint& lda, zcomplex* b, const zint& ldb);
    void dtrsm_with(std::uint32_t extensions, const char& side, const char& uplo, const char& transa,
                    const char& diag, const zint& m, const zint& n, const double& alpha, const double* a,
                    const zint& lda, double* b, const zint& ldb);
    void ztrsm_with(std::uint32_t extensions, const char& side, const char& uplo, const char& transa,
                    const char& diag, const zint& m, const zint& n, const zcomplex& alpha, const zcomplex* a,
                    const zint& lda, zcomplex* b, const zint& ldb);)
