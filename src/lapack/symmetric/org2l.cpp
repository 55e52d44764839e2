// org2l: the last n columns of the Q of a QL factorization, column by column from the first
// reflector: each one applied to the columns already formed on its left.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/symmetric/symmetric.hpp"

namespace zor {

template <class T>
void org2l(zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint& info) {
    info = check_arguments(routine_name<T>("DORG2L", "ZUNG2L"),
                           {{m < 0, 1}, {n < 0 || n > m, 2}, {k < 0 || k > n, 3}, {lda < max_of(1, m), 5}});
    if (info != 0 || n == 0) return;
    const auto A = [&](zint i, zint j) -> T& { return a[i + j * lda]; };
    // Columns 0 .. n - k - 1 start as the last columns of the unit matrix.
    for (zint j = 0; j < n - k; ++j) {
        for (zint i = 0; i < m; ++i) A(i, j) = zero<T>();
        A(m - n + j, j) = one<T>();
    }
    for (zint i = 0; i < k; ++i) {
        // Column ii holds reflector i, whose unit element is in row `unit`.
        const zint ii = n - k + i, unit = m - n + ii;
        A(unit, ii) = one<T>();
        larf('L', unit + 1, ii, &A(0, ii), 1, tau[i], a, lda, work);
        Blas<T>::scal(unit, -tau[i], &A(0, ii), 1);
        A(unit, ii) = one<T>() - tau[i];
        for (zint l = unit + 1; l < m; ++l) A(l, ii) = zero<T>();
    }
}

}  // namespace zor

ZOR_INSTANTIATE(org2l)
