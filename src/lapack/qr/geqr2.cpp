// geqr2: the QR factorization column by column: a reflector for each column, applied at once to
// the columns on its right.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

template <class T>
void geqr2(zint m, zint n, T* a, zint lda, T* tau, T* work, zint& info) {
    info = check_arguments(routine_name<T>("DGEQR2", "ZGEQR2"),
                           {{m < 0, 1}, {n < 0, 2}, {lda < max_of(1, m), 4}});
    if (info != 0) return;
    const zint k = min_of(m, n);
    for (zint i = 0; i < k; ++i) {
        T* d = a + i + i * lda;
        larfg(m - i, *d, a + min_of(i + 1, m - 1) + i * lda, 1, tau[i]);
        if (i + 1 < n) {
            const T beta = *d;
            *d = one<T>();
            larf('L', m - i, n - i - 1, d, 1, conj(tau[i]), d + lda, lda, work);
            *d = beta;
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(geqr2)
