// orm2r: the Q of a QR factorization applied reflector by reflector.

#include "lapack/householder/multiply.hpp"

namespace zor {

template <class T>
void orm2r(char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c, zint ldc,
           T* work, zint& info) {
    info =
        check_q_product<T>(routine_name<T>("DORM2R", "ZUNM2R"), false, side, trans, m, n, k, lda, ldc, false);
    if (info != 0 || m == 0 || n == 0 || k == 0) return;
    q_product_unblocked(false, side, trans, m, n, k, a, lda, tau, c, ldc, work);
}

}  // namespace zor

ZOR_INSTANTIATE(orm2r)
