// ormqr: the Q of a QR factorization applied in blocks of reflectors (larft, larfb), or one by one
// when the block would not pay or the workspace holds too narrow a block.

#include "lapack/householder/multiply.hpp"

namespace zor {

template <class T>
void ormqr(char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c, zint ldc,
           T* work, zint lwork, zint& info) {
    q_product(routine_name<T>("DORMQR", "ZUNMQR"), false, side, trans, m, n, k, a, lda, tau, c, ldc, work,
              lwork, info);
}

}  // namespace zor

ZOR_INSTANTIATE(ormqr)
