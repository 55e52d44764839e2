#pragma once
// Every kernel dispatcher of the LAPACK layer, in one table: zor::dpotf2_upper(n, a, lda, info)
// runs the variant chosen for this processor.

#include <type_traits>

#include "lapack/kernels/kernels.hpp"
#include "service/dispatch.hpp"

namespace zor {

// Cholesky steps.
ZOR_DECLARE_DISPATCHER(dpotf2_upper);
ZOR_DECLARE_DISPATCHER(dpotf2_lower);
ZOR_DECLARE_DISPATCHER(zpotf2_upper);
ZOR_DECLARE_DISPATCHER(zpotf2_lower);

// Tridiagonal solve.
ZOR_DECLARE_DISPATCHER(dgtts2);

// Packed storage.
ZOR_DECLARE_DISPATCHER(dtpsm);
ZOR_DECLARE_DISPATCHER(ztpsm);
ZOR_DECLARE_DISPATCHER(dtpmv);
ZOR_DECLARE_DISPATCHER(ztpmv);
ZOR_DECLARE_DISPATCHER(dsprk);
ZOR_DECLARE_DISPATCHER(zhprk);

// The packed kernels by element type, for the templates over double and zcomplex.
template <class T>
void tpsm(char uplo, char trans, char diag, zint n, zint nrhs, const T* ap, T* b, zint ldb, zint growth) {
    if constexpr (std::is_same_v<T, zcomplex>) {
        ztpsm(uplo, trans, diag, n, nrhs, ap, b, ldb, growth);
    } else {
        dtpsm(uplo, trans, diag, n, nrhs, ap, b, ldb, growth);
    }
}

template <class T>
void tpmv(char uplo, char trans, char diag, zint n, const T* ap, T* x) {
    if constexpr (std::is_same_v<T, zcomplex>) {
        ztpmv(uplo, trans, diag, n, ap, x, 1);
    } else {
        dtpmv(uplo, trans, diag, n, ap, x, 1);
    }
}

template <class T>
void hprk(char uplo, zint n, zint k, double alpha, const T* x, zint ldx, zint growth, T* ap) {
    if constexpr (std::is_same_v<T, zcomplex>) {
        zhprk(uplo, n, k, alpha, x, ldx, growth, ap);
    } else {
        dsprk(uplo, n, k, alpha, x, ldx, growth, ap);
    }
}

}  // namespace zor
