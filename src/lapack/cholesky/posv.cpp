// posv: A X = B for a positive definite A, by potrf and the solve with its factor.

#include "lapack/cholesky/cholesky.hpp"
#include "lapack/lapack.hpp"

namespace zor {

template <class T>
zint check_posv(char uplo, zint n, zint nrhs, zint lda, zint ldb) {
    return check_arguments(routine_name<T>("DPOSV ", "ZPOSV "), {{!lsame(uplo, 'U') && !lsame(uplo, 'L'), 1},
                                                                 {n < 0, 2},
                                                                 {nrhs < 0, 3},
                                                                 {lda < max_of(1, n), 5},
                                                                 {ldb < max_of(1, n), 7}});
}

template <class T>
void posv(char uplo, zint n, zint nrhs, T* a, zint lda, T* b, zint ldb, zint& info) {
    info = check_posv<T>(uplo, n, nrhs, lda, ldb);
    if (info != 0) return;
    const bool stopped = potrf(uplo, n, a, lda, info);
    if (info == 0 && !stopped) potrs(uplo, n, nrhs, a, lda, b, ldb, info);
}

}  // namespace zor

ZOR_INSTANTIATE(posv)
ZOR_INSTANTIATE(check_posv)
