#pragma once
// Every kernel dispatcher of the BLAS layer. A dispatcher is called like the routine it serves:
// zor::ddot(n, x, incx, y, incy) runs the variant chosen for this processor. The list below is the
// one place that names them; dispatch.cpp defines them from it.

#include "blas/gemm/gemm.hpp"
#include "blas/level1/level1.hpp"
#include "blas/level2/level2.hpp"
#include "blas/level3/level3.hpp"
#include "blas/probe.hpp"
#include "service/dispatch.hpp"

// clang-format off
#define ZOR_BLAS_KERNELS(X)                                                                        \
    X(variant_probe)                                                                               \
    /* level 1, real */                                                                            \
    X(dasum) X(daxpy) X(dcopy) X(ddot) X(dnrm2) X(drot) X(drotg) X(drotm) X(drotmg) X(dscal)       \
    X(dswap) X(idamax) X(idamin)                                                                   \
    /* level 1, complex */                                                                         \
    X(dzasum) X(dznrm2) X(izamax) X(izamin) X(zaxpy) X(zcopy) X(zdotc) X(zdotu) X(zdrot) X(zrotg) \
    X(zscal) X(zswap)                                                                              \
    /* level 2 */                                                                                  \
    X(dgemv) X(dger) X(dsymv) X(dsyr) X(dsyr2) X(dtrmv) X(dtrsv)                                   \
    X(zgemv) X(zgerc) X(zgeru) X(zhemv) X(zher) X(zher2) X(ztrmv) X(ztrsv)                         \
    /* level 3 */                                                                                  \
    X(dgemm) X(zgemm) X(dsymm) X(zsymm) X(zhemm) X(dsyrk) X(zsyrk) X(zherk) X(dsyr2k) X(zsyr2k)    \
    X(zher2k) X(dtrmm) X(ztrmm) X(dtrsm) X(ztrsm)
// clang-format on

namespace zor {

ZOR_BLAS_KERNELS(ZOR_DECLARE_DISPATCHER)

}  // namespace zor
