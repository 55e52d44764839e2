// The kernels of the tridiagonal reduction: dlatrd_symv and zlatrd_hemv, the symmetric and
// Hermitian products of the one-stage reduction, and the bulge-chase steps of the two-stage one
// (dsb2st_right, dsb2st_left and the z forms). 128-bit vectors below Avx, 256-bit vectors without
// FMA at Avx, which hands over to its FMA or AVX-512 paths when the processor has them (the *_with
// forms take the extensions to use, so that the tests reach every path). Real blocks of 4 columns,
// complex of 2: the accumulators and factors of a block fill the sixteen registers.

#include "lapack/kernels/reduction.hpp"
#include "blas/kernel.hpp"
#include "blas/simd.hpp"
#include "lapack/kernels/kernels.hpp"
#include "service/cpu.hpp"
#include "service/letters.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

constinit const ReductionKernels kPlain = make_reduction_kernels<WideVec, 4, 2>();

const ReductionKernels& kernels_for(std::uint32_t extensions) {
    if constexpr (kLevel == CpuLevel::Avx) {
        if (extensions & kExtensionAvx512f) return reduction_kernels_avx512();
        if (extensions & kExtensionFma) return reduction_kernels_fma();
    }
    (void)extensions;
    return kPlain;
}

// The extensions this processor offers the Avx variant (none below it).
std::uint32_t usable_extensions() {
    return kLevel == CpuLevel::Avx ? detect_avx_extensions() : 0;
}

}  // namespace

void dlatrd_symv_with(std::uint32_t extensions, const char& uplo, const zint& n, const double* a,
                      const zint& lda, const double* x, double* y) {
    kernels_for(extensions).dsymv(lsame(uplo, 'U'), n, a, lda, x, y);
}

void zlatrd_hemv_with(std::uint32_t extensions, const char& uplo, const zint& n, const zcomplex* a,
                      const zint& lda, const zcomplex* x, zcomplex* y) {
    kernels_for(extensions).zhemv(lsame(uplo, 'U'), n, a, lda, x, y);
}

void dsb2st_right_with(std::uint32_t extensions, const zint& rows, const zint& cols, double* b,
                       const zint& ldb, const double* v, const double& tau, double* w) {
    kernels_for(extensions).dright(rows, cols, b, ldb, v, tau, w);
}

void zhb2st_right_with(std::uint32_t extensions, const zint& rows, const zint& cols, zcomplex* b,
                       const zint& ldb, const zcomplex* v, const zcomplex& tau, zcomplex* w) {
    kernels_for(extensions).zright(rows, cols, b, ldb, v, tau, w);
}

void dsb2st_left_with(std::uint32_t extensions, const zint& rows, const zint& cols, double* b, double* d,
                      const zint& ld, const double* v, const double& tau, double* w) {
    kernels_for(extensions).dleft(rows, cols, b, d, ld, v, tau, w);
}

void zhb2st_left_with(std::uint32_t extensions, const zint& rows, const zint& cols, zcomplex* b, zcomplex* d,
                      const zint& ld, const zcomplex* v, const zcomplex& tau, zcomplex* w) {
    kernels_for(extensions).zleft(rows, cols, b, d, ld, v, tau, w);
}

void dlatrd_symv(const char& uplo, const zint& n, const double* a, const zint& lda, const double* x,
                 double* y) {
    dlatrd_symv_with(usable_extensions(), uplo, n, a, lda, x, y);
}

void zlatrd_hemv(const char& uplo, const zint& n, const zcomplex* a, const zint& lda, const zcomplex* x,
                 zcomplex* y) {
    zlatrd_hemv_with(usable_extensions(), uplo, n, a, lda, x, y);
}

void dsb2st_right(const zint& rows, const zint& cols, double* b, const zint& ldb, const double* v,
                  const double& tau, double* w) {
    dsb2st_right_with(usable_extensions(), rows, cols, b, ldb, v, tau, w);
}

void zhb2st_right(const zint& rows, const zint& cols, zcomplex* b, const zint& ldb, const zcomplex* v,
                  const zcomplex& tau, zcomplex* w) {
    zhb2st_right_with(usable_extensions(), rows, cols, b, ldb, v, tau, w);
}

void dsb2st_left(const zint& rows, const zint& cols, double* b, double* d, const zint& ld, const double* v,
                 const double& tau, double* w) {
    dsb2st_left_with(usable_extensions(), rows, cols, b, d, ld, v, tau, w);
}

void zhb2st_left(const zint& rows, const zint& cols, zcomplex* b, zcomplex* d, const zint& ld,
                 const zcomplex* v, const zcomplex& tau, zcomplex* w) {
    zhb2st_left_with(usable_extensions(), rows, cols, b, d, ld, v, tau, w);
}

}  // namespace zor::ZOR_LEVEL_NS
