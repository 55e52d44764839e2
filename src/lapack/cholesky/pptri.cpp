// pptri: the inverse from the packed Cholesky factor of pptrf.

#include "lapack/cholesky/cholesky.hpp"
#include "lapack/lapack.hpp"
#include "lapack/triangular/triangular.hpp"

namespace zor {

// inv(U) inv(U)ᴴ: column j's outer product goes into the triangle before it, then the column is
// scaled by its diagonal; inv(L)ᴴ inv(L): each column becomes the product of the triangle after it
// (transposed) with itself.
template <class T>
zint check_pptri(char uplo, zint n) {
    return check_arguments(routine_name<T>("DPPTRI", "ZPPTRI"),
                           {{!lsame(uplo, 'U') && !lsame(uplo, 'L'), 1}, {n < 0, 2}});
}

template <class T>
void pptri(char uplo, zint n, T* ap, zint& info) {
    const bool upper = lsame(uplo, 'U');
    info = check_pptri<T>(uplo, n);
    if (info != 0 || n == 0) return;
    tptri(uplo, 'N', n, ap, info);
    if (info > 0) return;
    for (zint j = 0; j < n; ++j) {
        T* column = column_of(ap, upper, n, j);
        if (upper) {
            if (j > 0) Blas<T>::hprk('U', j, 1, 1.0, column, 0, 0, ap);
            Blas<T>::scal_real(j + 1, real(column[j]), column, 1);
        } else {
            column[0] = from_real<T>(real(Blas<T>::dotc(n - j, column, 1, column, 1)));
            if (j + 1 < n)
                Blas<T>::tpmv('L', kAdjoint<T>, 'N', n - j - 1, column_of(ap, false, n, j + 1), column + 1,
                              1);
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(pptri)
ZOR_INSTANTIATE(check_pptri)
