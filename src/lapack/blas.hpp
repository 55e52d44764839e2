#pragma once
// The BLAS and LAPACK-kernel routines the LAPACK templates call, by element type: Blas<T>::gemm is
// zor::dgemm for double and zor::zgemm for zcomplex, always the dispatcher, so the variant of this
// processor runs. The list below is the one place that pairs the real and complex routines; a
// routine with one form only is called by its own name.

#include "blas/dispatch.hpp"
#include "lapack/dispatch.hpp"
#include "service/types.hpp"

// clang-format off
// (name in the templates, real routine, complex routine)
#define ZOR_ELEMENT_ROUTINES(X)                                                                     \
    /* level 1 */                                                                                   \
    X(iamax, idamax, izamax) X(swap, dswap, zswap) X(scal, dscal, zscal) X(copy, dcopy, zcopy)      \
    X(axpy, daxpy, zaxpy) X(nrm2, dnrm2, dznrm2) X(rot, drot, zdrot)                                \
    /* level 2: geru is A + alpha x yᵀ, gerc A + alpha x yᴴ (both dger for real data) */            \
    X(gemv, dgemv, zgemv) X(geru, dger, zgeru) X(gerc, dger, zgerc) X(trsv, dtrsv, ztrsv)           \
    X(trmv, dtrmv, ztrmv) X(hemv, dsymv, zhemv) X(her2, dsyr2, zher2)                               \
    /* level 3: herk and her2k are the symmetric updates for real data */                           \
    X(gemm, dgemm, zgemm) X(trsm, dtrsm, ztrsm) X(trmm, dtrmm, ztrmm) X(herk, dsyrk, zherk)        \
    X(her2k, dsyr2k, zher2k) X(hemm, dsymm, zhemm)                                                  \
    /* the LAPACK layer's kernels */                                                                \
    X(potf2_upper, dpotf2_upper, zpotf2_upper) X(potf2_lower, dpotf2_lower, zpotf2_lower)          \
    X(tpsm, dtpsm, ztpsm) X(tpmv, dtpmv, ztpmv) X(hprk, dsprk, zhprk)                               \
    X(latrd_hemv, dlatrd_symv, zlatrd_hemv) X(sb2st_right, dsb2st_right, zhb2st_right)              \
    X(sb2st_left, dsb2st_left, zhb2st_left)
// clang-format on

namespace zor {

template <class T>
struct Blas;

#define ZOR_REAL_ROUTINE(name, real, complex) static constexpr const auto& name = ::zor::real;
#define ZOR_COMPLEX_ROUTINE(name, real, complex) static constexpr const auto& name = ::zor::complex;

template <>
struct Blas<double> {
    ZOR_ELEMENT_ROUTINES(ZOR_REAL_ROUTINE)

    // conj(x)ᵀ y
    static double dotc(zint n, const double* x, zint incx, const double* y, zint incy) {
        return ::zor::ddot(n, x, incx, y, incy);
    }
    // x := alpha x with a real alpha.
    static void scal_real(zint n, double alpha, double* x, zint incx) { ::zor::dscal(n, alpha, x, incx); }
};

template <>
struct Blas<zcomplex> {
    ZOR_ELEMENT_ROUTINES(ZOR_COMPLEX_ROUTINE)

    static zcomplex dotc(zint n, const zcomplex* x, zint incx, const zcomplex* y, zint incy) {
        zcomplex result;
        ::zor::zdotc(&result, n, x, incx, y, incy);
        return result;
    }
    static void scal_real(zint n, double alpha, zcomplex* x, zint incx) {
        for (zint i = 0; i < n; ++i) x[i * incx] = {x[i * incx].re * alpha, x[i * incx].im * alpha};
    }
};

#undef ZOR_REAL_ROUTINE
#undef ZOR_COMPLEX_ROUTINE

}  // namespace zor
