// gbsv: A X = B for a band matrix, by the band factorisation and the solve with its factors.

#include "lapack/lapack.hpp"
#include "lapack/lu/lu.hpp"

namespace zor {

template <class T>
zint check_gbsv(zint n, zint kl, zint ku, zint nrhs, zint ldab, zint ldb) {
    return check_arguments(routine_name<T>("DGBSV ", "ZGBSV "), {{n < 0, 1},
                                                                 {kl < 0, 2},
                                                                 {ku < 0, 3},
                                                                 {nrhs < 0, 4},
                                                                 {ldab < 2 * kl + ku + 1, 6},
                                                                 {ldb < max_of(n, 1), 9}});
}

template <class T>
void gbsv(zint n, zint kl, zint ku, zint nrhs, T* ab, zint ldab, zint* ipiv, T* b, zint ldb, zint& info) {
    info = check_gbsv<T>(n, kl, ku, nrhs, ldab, ldb);
    if (info != 0) return;
    const bool stopped = gbtrf(n, n, kl, ku, ab, ldab, ipiv, info);
    if (info == 0 && !stopped) gbtrs('N', n, kl, ku, nrhs, ab, ldab, ipiv, b, ldb, info);
}

}  // namespace zor

ZOR_INSTANTIATE(gbsv)
ZOR_INSTANTIATE(check_gbsv)
