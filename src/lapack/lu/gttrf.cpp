// gttrf: LU factorisation of a real tridiagonal matrix with partial pivoting.

#include <cmath>

#include "lapack/lapack.hpp"
#include "lapack/lu/lu.hpp"

namespace zor {

zint check_gttrf(zint n) {
    return check_arguments("DGTTRF", {{n < 0, 1}});
}

void gttrf(zint n, double* dl, double* d, double* du, double* du2, zint* ipiv, zint& info) {
    info = check_gttrf(n);
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

}  // namespace zor
