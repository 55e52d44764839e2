// gttrs: solves with the tridiagonal factors of gttrf, in blocks of right-hand sides through the
// dispatched dgtts2.

#include "lapack/lapack.hpp"
#include "lapack/lu/lu.hpp"

namespace zor {

namespace {

// The letter is compared as it stands, not through lsame.
bool plain(char trans) {
    return trans == 'N' || trans == 'n';
}
bool transposed(char trans) {
    return trans == 'T' || trans == 't' || trans == 'C' || trans == 'c';
}

}  // namespace

zint check_gttrs(char trans, zint n, zint nrhs, zint ldb) {
    return check_arguments(
        "DGTTRS",
        {{!plain(trans) && !transposed(trans), 1}, {n < 0, 2}, {nrhs < 0, 3}, {ldb < max_of(1, n), 10}});
}

void gttrs(char trans, zint n, zint nrhs, const double* dl, const double* d, const double* du,
           const double* du2, const zint* ipiv, double* b, zint ldb, zint& info) {
    info = check_gttrs(trans, n, nrhs, ldb);
    if (info != 0 || n == 0 || nrhs == 0) return;
    const zint itrans = plain(trans) ? 0 : 1;
    const char options[1] = {trans};
    const zint nb = nrhs == 1 ? 1 : max_of(1, ilaenv(1, "DGTTRS", options, n, nrhs, -1, -1));
    if (nb >= nrhs) {
        zor::dgtts2(itrans, n, nrhs, dl, d, du, du2, ipiv, b, ldb);
        return;
    }
    for (zint j = 0; j < nrhs; j += nb) {
        zor::dgtts2(itrans, n, min_of(nb, nrhs - j), dl, d, du, du2, ipiv, b + j * ldb, ldb);
    }
}

}  // namespace zor
