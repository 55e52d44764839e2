#pragma once
// Every kernel dispatcher of the LAPACK layer: zor::dpotf2_upper(n, a, lda, info) runs the variant
// chosen for this processor. The list below is the one place that names them; dispatch.cpp
// defines them from it, and blas.hpp pairs their real and complex forms for the templates.

#include "lapack/kernels/kernels.hpp"
#include "service/dispatch.hpp"

// clang-format off
#define ZOR_LAPACK_KERNELS(X)                                                              \
    X(dpotf2_upper) X(dpotf2_lower) X(zpotf2_upper) X(zpotf2_lower) /* Cholesky steps */   \
    X(dgtts2)                                                       /* tridiagonal solve */ \
    X(dtpsm) X(ztpsm) X(dtpmv) X(ztpmv) X(dsprk) X(zhprk)           /* packed storage */    \
    X(dlatrd_symv) X(zlatrd_hemv)                                   /* tridiagonal reduction */ \
    X(dsb2st_right) X(zhb2st_right) X(dsb2st_left) X(zhb2st_left)
// clang-format on

namespace zor {

ZOR_LAPACK_KERNELS(ZOR_DECLARE_DISPATCHER)

}  // namespace zor
