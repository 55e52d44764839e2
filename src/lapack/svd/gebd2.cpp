// gebd2: the reduction to bidiagonal form one column and one row at a time, each reflector applied
// to the rest of the matrix by larf.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/svd/svd.hpp"

namespace zor {

template <class T>
void gebd2(zint m, zint n, T* a, zint lda, double* d, double* e, T* tauq, T* taup, T* work, zint& info) {
    info = check_arguments(routine_name<T>("DGEBD2", "ZGEBD2"),
                           {{m < 0, 1}, {n < 0, 2}, {lda < max_of(1, m), 4}});
    if (info != 0) return;
    const auto A = [&](zint i, zint j) -> T* { return a + i + j * lda; };
    if (m >= n) {
        // Upper bidiagonal: a column reflector from the left, then a row reflector from the right.
        for (zint i = 0; i < n; ++i) {
            T alpha = *A(i, i);
            larfg(m - i, alpha, A(min_of(i + 1, m - 1), i), 1, tauq[i]);
            d[i] = real(alpha);
            *A(i, i) = one<T>();
            if (i + 1 < n) larf('L', m - i, n - i - 1, A(i, i), 1, conj(tauq[i]), A(i, i + 1), lda, work);
            *A(i, i) = from_real<T>(d[i]);
            if (i + 1 < n) {
                // The row is reduced as the column conj(row)ᵀ, and stored conjugated again.
                lacgv(n - i - 1, A(i, i + 1), lda);
                alpha = *A(i, i + 1);
                larfg(n - i - 1, alpha, A(i, min_of(i + 2, n - 1)), lda, taup[i]);
                e[i] = real(alpha);
                *A(i, i + 1) = one<T>();
                larf('R', m - i - 1, n - i - 1, A(i, i + 1), lda, taup[i], A(i + 1, i + 1), lda, work);
                lacgv(n - i - 1, A(i, i + 1), lda);
                *A(i, i + 1) = from_real<T>(e[i]);
            } else {
                taup[i] = zero<T>();
            }
        }
    } else {
        // Lower bidiagonal: a row reflector from the right, then a column reflector from the left.
        for (zint i = 0; i < m; ++i) {
            lacgv(n - i, A(i, i), lda);
            T alpha = *A(i, i);
            larfg(n - i, alpha, A(i, min_of(i + 1, n - 1)), lda, taup[i]);
            d[i] = real(alpha);
            *A(i, i) = one<T>();
            if (i + 1 < m) larf('R', m - i - 1, n - i, A(i, i), lda, taup[i], A(i + 1, i), lda, work);
            lacgv(n - i, A(i, i), lda);
            *A(i, i) = from_real<T>(d[i]);
            if (i + 1 < m) {
                alpha = *A(i + 1, i);
                larfg(m - i - 1, alpha, A(min_of(i + 2, m - 1), i), 1, tauq[i]);
                e[i] = real(alpha);
                *A(i + 1, i) = one<T>();
                larf('L', m - i - 1, n - i - 1, A(i + 1, i), 1, conj(tauq[i]), A(i + 1, i + 1), lda, work);
                *A(i + 1, i) = from_real<T>(e[i]);
            } else {
                tauq[i] = zero<T>();
            }
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(gebd2)
