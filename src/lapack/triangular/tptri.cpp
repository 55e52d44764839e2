// tptri: the inverse of a packed triangular matrix, column by column with the packed multiply.

#include "lapack/lapack.hpp"
#include "lapack/triangular/triangular.hpp"

namespace zor {

template <class T>
zint check_tptri(char uplo, char diag, zint n) {
    return check_arguments(routine_name<T>("DTPTRI", "ZTPTRI"), {{!lsame(uplo, 'U') && !lsame(uplo, 'L'), 1},
                                                                 {!lsame(diag, 'N') && !lsame(diag, 'U'), 2},
                                                                 {n < 0, 3}});
}

template <class T>
void tptri(char uplo, char diag, zint n, T* ap, zint& info) {
    const bool upper = lsame(uplo, 'U');
    info = check_tptri<T>(uplo, diag, n);
    if (info != 0) return;
    info = zero_on_diagonal(upper, diag, n, ap);
    if (info != 0) return;
    const bool unit = lsame(diag, 'U');
    // Column j of the inverse is -inv(A)(other part) A(other part, j) / A(j, j), from the inverted
    // leading (upper) or trailing (lower) triangle, which is a packed triangle of its own.
    const auto invert_diagonal = [&](T& ajj) {
        if (unit) return from_real<T>(-1.0);
        ajj = reciprocal(ajj);
        return ajj * -1.0;
    };
    if (upper) {
        for (zint j = 0; j < n; ++j) {
            T* column = ap + packed_start(true, n, j);
            const T scale = invert_diagonal(column[j]);
            Blas<T>::tpmv('U', 'N', diag, j, ap, column, 1);
            Blas<T>::scal(j, scale, column, 1);
        }
    } else {
        for (zint j = n - 1; j >= 0; --j) {
            T* column = ap + packed_start(false, n, j);
            const T scale = invert_diagonal(column[0]);
            if (j + 1 < n) {
                Blas<T>::tpmv('L', 'N', diag, n - j - 1, ap + packed_start(false, n, j + 1), column + 1, 1);
                Blas<T>::scal(n - j - 1, scale, column + 1, 1);
            }
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(tptri)
ZOR_INSTANTIATE(check_tptri)
