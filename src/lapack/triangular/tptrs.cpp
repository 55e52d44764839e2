// tptrs: solves op(A) X = B with a packed triangle, after checking its diagonal, in blocks of
// right-hand sides through the packed kernel.

#include "lapack/lapack.hpp"
#include "lapack/triangular/triangular.hpp"

namespace zor {

template <class T>
zint check_tptrs(char uplo, char trans, char diag, zint n, zint nrhs, zint ldb) {
    return check_arguments(routine_name<T>("DTPTRS", "ZTPTRS"),
                           {{!lsame(uplo, 'U') && !lsame(uplo, 'L'), 1},
                            {!lsame(trans, 'N') && !lsame(trans, 'T') && !lsame(trans, 'C'), 2},
                            {!lsame(diag, 'N') && !lsame(diag, 'U'), 3},
                            {n < 0, 4},
                            {nrhs < 0, 5},
                            {ldb < max_of(1, n), 8}});
}

template <class T>
void tptrs(char uplo, char trans, char diag, zint n, zint nrhs, const T* ap, T* b, zint ldb, zint& info) {
    const char* name = routine_name<T>("DTPTRS", "ZTPTRS");
    const bool upper = lsame(uplo, 'U');
    info = check_tptrs<T>(uplo, trans, diag, n, nrhs, ldb);
    if (info != 0 || n == 0) return;
    info = zero_on_diagonal(upper, diag, n, ap);
    if (info != 0) return;
    // Right-hand sides in blocks: the kernel reads each column of the triangle once a block.
    const char options[1] = {trans};
    const zint nb = max_of(1, ilaenv(1, name, options, n, nrhs, -1, -1));
    for (zint j = 0; j < nrhs; j += nb)
        Blas<T>::tpsm(uplo, trans, diag, n, min_of(nb, nrhs - j), ap, b + j * ldb, ldb, 0);
}

}  // namespace zor

ZOR_INSTANTIATE(tptrs)
ZOR_INSTANTIATE(check_tptrs)
