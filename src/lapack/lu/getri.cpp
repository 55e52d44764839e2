// getri: the inverse from the LU factors. U is inverted in place, then inv(A) L = inv(U)
// is solved for inv(A) from the last block column of L to the first, and the column interchanges
// of the pivots are undone in reverse.

#include "lapack/lapack.hpp"
#include "lapack/lu/lu.hpp"
#include "lapack/triangular/triangular.hpp"

namespace zor {

template <class T>
zint check_getri(zint n, zint lda, zint lwork) {
    return check_arguments(routine_name<T>("DGETRI", "ZGETRI"),
                           {{n < 0, 1}, {lda < max_of(1, n), 3}, {lwork < max_of(1, n) && lwork != -1, 6}});
}

template <class T>
void getri(zint n, T* a, zint lda, const zint* ipiv, T* work, zint lwork, zint& info) {
    const char* name = routine_name<T>("DGETRI", "ZGETRI");
    zint nb = ilaenv(1, name, " ", n, -1, -1, -1);
    const bool query = lwork == -1;
    info = check_getri<T>(n, lda, lwork);
    if (info != 0) return;
    work[0] = from_real<T>(static_cast<double>(max_of(1, n * nb)));
    if (query || n == 0) return;

    trtri('U', 'N', n, a, lda, info);
    if (info > 0) return;

    // With less workspace than n·nb, the largest block that fits, unless that is too small to pay.
    const zint ldwork = n;
    zint needed = n;
    if (nb > 1 && nb < n) {
        needed = ldwork * nb;
        if (lwork < needed) {
            nb = lwork / ldwork;
            if (nb < max_of(2, ilaenv(2, name, " ", n, -1, -1, -1))) nb = 1;
        }
    }
    const T zero = zor::zero<T>(), one = zor::one<T>(), minus_one = from_real<T>(-1.0);
    if (nb <= 1 || nb >= n) {
        for (zint j = n - 1; j >= 0; --j) {
            T* column = a + j * lda;
            for (zint i = j + 1; i < n; ++i) {
                work[i] = column[i];
                column[i] = zero;
            }
            if (j + 1 < n)
                Blas<T>::gemv('N', n, n - j - 1, minus_one, column + lda, lda, work + j + 1, 1, one, column,
                              1);
        }
    } else {
        for (zint j = (n - 1) / nb * nb; j >= 0; j -= nb) {
            const zint jb = min_of(nb, n - j);
            // The block column of L moves to the workspace, its place becoming zero.
            for (zint jj = j; jj < j + jb; ++jj) {
                T* column = a + jj * lda;
                T* saved = work + (jj - j) * ldwork;
                for (zint i = jj + 1; i < n; ++i) {
                    saved[i] = column[i];
                    column[i] = zero;
                }
            }
            if (j + jb < n)
                Blas<T>::gemm('N', 'N', n, jb, n - j - jb, minus_one, a + (j + jb) * lda, lda, work + j + jb,
                              ldwork, one, a + j * lda, lda);
            Blas<T>::trsm('R', 'L', 'N', 'U', n, jb, one, work + j, ldwork, a + j * lda, lda);
        }
    }
    for (zint j = n - 2; j >= 0; --j) {
        const zint pivot = ipiv[j] - 1;
        if (pivot != j) Blas<T>::swap(n, a + j * lda, 1, a + pivot * lda, 1);
    }
    work[0] = from_real<T>(static_cast<double>(needed));
}

}  // namespace zor

ZOR_INSTANTIATE(getri)
ZOR_INSTANTIATE(check_getri)
