// orm2l: the Q of a QL factorization applied reflector by reflector.

#include "lapack/householder/multiply.hpp"
#include "lapack/symmetric/symmetric.hpp"

namespace zor {

template <class T>
void orm2l(char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c, zint ldc,
           T* work, zint& info) {
    info =
        check_q_product<T>(routine_name<T>("DORM2L", "ZUNM2L"), false, side, trans, m, n, k, lda, ldc, false);
    if (info != 0 || m == 0 || n == 0 || k == 0) return;
    const bool left = lsame(side, 'L');
    const bool notran = lsame(trans, 'N');
    const zint nq = left ? m : n;
    // Q C and C Qᴴ start with H(1); Qᴴ C and C Q with H(k).
    const bool forward = left == notran;
    for (zint step = 0; step < k; ++step) {
        const zint i = forward ? step : k - 1 - step;
        // Reflector i acts on the first nq - k + i + 1 rows (columns) of C.
        const zint order = nq - k + i + 1;
        T* v = a + i * lda;
        const T unit = v[order - 1];
        v[order - 1] = one<T>();
        const T tau_i = notran ? tau[i] : conj(tau[i]);
        larf(side, left ? order : m, left ? n : order, v, 1, tau_i, c, ldc, work);
        v[order - 1] = unit;
    }
}

}  // namespace zor

ZOR_INSTANTIATE(orm2l)
