// gelq2: the LQ factorization row by row: a reflector for each row (made from the conjugated row),
// applied at once to the rows below it.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

template <class T>
void gelq2(zint m, zint n, T* a, zint lda, T* tau, T* work, zint& info) {
    info = check_arguments(routine_name<T>("DGELQ2", "ZGELQ2"),
                           {{m < 0, 1}, {n < 0, 2}, {lda < max_of(1, m), 4}});
    if (info != 0) return;
    const zint k = min_of(m, n);
    for (zint i = 0; i < k; ++i) {
        T* d = a + i + i * lda;
        lacgv(n - i, d, lda);
        T beta = *d;
        larfg(n - i, beta, a + i + min_of(i + 1, n - 1) * lda, lda, tau[i]);
        if (i + 1 < m) {
            *d = one<T>();
            larf('R', m - i - 1, n - i, d, lda, tau[i], d + 1, lda, work);
        }
        *d = beta;
        lacgv(n - i, d, lda);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(gelq2)
