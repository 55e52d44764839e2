// org2r: the first n columns of the Q of a QR factorization, column by column from the last
// reflector: each one applied to the columns already formed on its right.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

template <class T>
void org2r(zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint& info) {
    info = check_arguments(routine_name<T>("DORG2R", "ZUNG2R"),
                           {{m < 0, 1}, {n < 0 || n > m, 2}, {k < 0 || k > n, 3}, {lda < max_of(1, m), 5}});
    if (info != 0 || n == 0) return;
    const auto A = [&](zint i, zint j) -> T& { return a[i + j * lda]; };
    // Columns k .. n - 1 start as those of the unit matrix.
    for (zint j = k; j < n; ++j) {
        for (zint i = 0; i < m; ++i) A(i, j) = zero<T>();
        A(j, j) = one<T>();
    }
    for (zint i = k - 1; i >= 0; --i) {
        if (i + 1 < n) {
            A(i, i) = one<T>();
            larf('L', m - i, n - i - 1, &A(i, i), 1, tau[i], &A(i, i + 1), lda, work);
        }
        if (i + 1 < m) Blas<T>::scal(m - i - 1, -tau[i], &A(i + 1, i), 1);
        A(i, i) = one<T>() - tau[i];
        for (zint l = 0; l < i; ++l) A(l, i) = zero<T>();
    }
}

}  // namespace zor

ZOR_INSTANTIATE(org2r)
