// orgl2: the first m rows of the Q of an LQ factorization, row by row from the last reflector: each
// one applied to the rows already formed below it.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

template <class T>
void orgl2(zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint& info) {
    info = check_arguments(routine_name<T>("DORGL2", "ZUNGL2"),
                           {{m < 0, 1}, {n < m, 2}, {k < 0 || k > m, 3}, {lda < max_of(1, m), 5}});
    if (info != 0 || m == 0) return;
    const auto A = [&](zint i, zint j) -> T& { return a[i + j * lda]; };
    // Rows k .. m - 1 start as those of the unit matrix.
    if (k < m) {
        for (zint j = 0; j < n; ++j) {
            for (zint i = k; i < m; ++i) A(i, j) = zero<T>();
            if (j >= k && j < m) A(j, j) = one<T>();
        }
    }
    for (zint i = k - 1; i >= 0; --i) {
        // Row i holds conj(v); H(i)ᴴ is applied from the right.
        if (i + 1 < n) {
            lacgv(n - i - 1, &A(i, i + 1), lda);
            if (i + 1 < m) {
                A(i, i) = one<T>();
                larf('R', m - i - 1, n - i, &A(i, i), lda, conj(tau[i]), &A(i + 1, i), lda, work);
            }
            Blas<T>::scal(n - i - 1, -tau[i], &A(i, i + 1), lda);
            lacgv(n - i - 1, &A(i, i + 1), lda);
        }
        A(i, i) = one<T>() - conj(tau[i]);
        for (zint l = 0; l < i; ++l) A(i, l) = zero<T>();
    }
}

}  // namespace zor

ZOR_INSTANTIATE(orgl2)
