// gesv: A X = B by the LU factorisation and the solve with its factors.

#include "lapack/lapack.hpp"
#include "lapack/lu/lu.hpp"

namespace zor {

template <class T>
zint check_gesv(zint n, zint nrhs, zint lda, zint ldb) {
    return check_arguments(routine_name<T>("DGESV ", "ZGESV "),
                           {{n < 0, 1}, {nrhs < 0, 2}, {lda < max_of(1, n), 4}, {ldb < max_of(1, n), 7}});
}

template <class T>
void gesv(zint n, zint nrhs, T* a, zint lda, zint* ipiv, T* b, zint ldb, zint& info) {
    info = check_gesv<T>(n, nrhs, lda, ldb);
    if (info != 0) return;
    const bool stopped = getrf(n, n, a, lda, ipiv, info);
    if (info == 0 && !stopped) getrs('N', n, nrhs, a, lda, ipiv, b, ldb, info);
}

}  // namespace zor

ZOR_INSTANTIATE(gesv)
ZOR_INSTANTIATE(check_gesv)
