// dlatrd_symv and zlatrd_hemv, the symmetric and Hermitian products of the tridiagonal reduction:
// 128-bit vectors below Avx, 256-bit vectors without FMA at Avx, which hands over to its FMA or
// AVX-512 paths when the processor has them (the *_with forms take the extensions to use, so that
// the tests reach every path). Real blocks of 4 columns, complex of 2: the accumulators and
// factors of a block fill the sixteen registers.

#include "lapack/kernels/reduction_symv.hpp"
#include "blas/kernel.hpp"
#include "blas/simd.hpp"
#include "lapack/kernels/kernels.hpp"
#include "service/cpu.hpp"
#include "service/letters.hpp"

namespace zor::ZOR_LEVEL_NS {

void dlatrd_symv_with(std::uint32_t extensions, const char& uplo, const zint& n, const double* a,
                      const zint& lda, const double* x, double* y) {
    const bool upper = lsame(uplo, 'U');
    if constexpr (kLevel == CpuLevel::Avx) {
        if (extensions & kExtensionAvx512f) return dlatrd_symv_avx512(upper, n, a, lda, x, y);
        if (extensions & kExtensionFma) return dlatrd_symv_fma(upper, n, a, lda, x, y);
    }
    (void)extensions;
    reduction_product<WideVec, 4>(upper, n, a, lda, x, y);
}

void zlatrd_hemv_with(std::uint32_t extensions, const char& uplo, const zint& n, const zcomplex* a,
                      const zint& lda, const zcomplex* x, zcomplex* y) {
    const bool upper = lsame(uplo, 'U');
    if constexpr (kLevel == CpuLevel::Avx) {
        if (extensions & kExtensionAvx512f) return zlatrd_hemv_avx512(upper, n, a, lda, x, y);
        if (extensions & kExtensionFma) return zlatrd_hemv_fma(upper, n, a, lda, x, y);
    }
    (void)extensions;
    reduction_product<WideVec, 2>(upper, n, a, lda, x, y);
}

void dlatrd_symv(const char& uplo, const zint& n, const double* a, const zint& lda, const double* x,
                 double* y) {
    dlatrd_symv_with(kLevel == CpuLevel::Avx ? detect_avx_extensions() : 0, uplo, n, a, lda, x, y);
}

void zlatrd_hemv(const char& uplo, const zint& n, const zcomplex* a, const zint& lda, const zcomplex* x,
                 zcomplex* y) {
    zlatrd_hemv_with(kLevel == CpuLevel::Avx ? detect_avx_extensions() : 0, uplo, n, a, lda, x, y);
}

}  // namespace zor::ZOR_LEVEL_NS
