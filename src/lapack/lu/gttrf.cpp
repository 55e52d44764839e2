// dgttrf: LU factorisation of a tridiagonal matrix with partial pivoting; dgttrs: the solve with it.

#include <cmath>

#include "lapack/dispatch.hpp"
#include "lapack/element.hpp"
#include "lapack/lu/lu.hpp"
#include "lapack/tuning/tuning.hpp"

namespace zor {

void dgttrf(const zint& n, double* dl, double* d, double* du, double* du2, zint* ipiv, zint& info) {
    info = check_arguments("DGTTRF", {{n < 0, 1}});
    if (info != 0 || n == 0) return;
    for (zint i = 0; i < n; ++i) ipiv[i] = i + 1;
    for (zint i = 0; i + 2 < n; ++i) du2[i] = 0.0;
    // Row i + 1 is eliminated by row i, or the two are exchanged when the subdiagonal element is
    // larger; an exchange moves a second superdiagonal element into du2.
    for (zint i = 0; i + 1 < n; ++i) {
        if (std::fabs(d[i]) >= std::fabs(dl[i])) {
            if (d[i] != 0.0) {
                const double factor = dl[i] / d[i];
                dl[i] = factor;
                d[i + 1] -= factor * du[i];
            }
        } else {
            const double factor = d[i] / dl[i];
            d[i] = dl[i];
            dl[i] = factor;
            const double t = du[i];
            du[i] = d[i + 1];
            d[i + 1] = t - factor * d[i + 1];
            if (i + 2 < n) {
                du2[i] = du[i + 1];
                du[i + 1] = -factor * du[i + 1];
            }
            ipiv[i] = i + 2;
        }
    }
    for (zint i = 0; i < n; ++i) {
        if (d[i] == 0.0) {
            info = i + 1;
            return;
        }
    }
}

void dgttrs(const char& trans, const zint& n, const zint& nrhs, const double* dl, const double* d,
            const double* du, const double* du2, const zint* ipiv, double* b, const zint& ldb, zint& info) {
    // The letter is compared as it stands, not through lsame.
    const bool plain = trans == 'N' || trans == 'n';
    const bool transposed = trans == 'T' || trans == 't' || trans == 'C' || trans == 'c';
    info = check_arguments("DGTTRS",
                           {{!plain && !transposed, 1}, {n < 0, 2}, {nrhs < 0, 3}, {ldb < max_of(1, n), 10}});
    if (info != 0 || n == 0 || nrhs == 0) return;
    const zint itrans = plain ? 0 : 1;
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
