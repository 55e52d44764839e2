// laed2: the deflation step of a divide-and-conquer merge.

#include <algorithm>
#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

// Column types of the merged eigenvector matrix by where their nonzero rows are.
enum ColumnType : zint { kUpper = 1, kBoth = 2, kLower = 3, kDeflated = 4 };

}  // namespace

void laed2(zint& k, zint n, zint n1, double* d, double* q, zint ldq, zint* indxq, double& rho, double* z,
           double* dlamda, double* w, double* q2, zint* indx, zint* indxc, zint* indxp, zint* coltyp,
           zint& info) {
    info = check_arguments("DLAED2",
                           {{n < 0, 2}, {ldq < max_of(1, n), 6}, {min_of(1, n / 2) > n1 || n / 2 < n1, 3}});
    if (info != 0 || n == 0) return;
    const zint n2 = n - n1;
    const auto column = [&](zint one_based) { return q + (one_based - 1) * ldq; };

    // The update is rho z zᵀ with z the last row of Q1 and the first row of Q2, each a unit vector:
    // take the sign of rho into z's lower part and normalise, so that rho > 0 and ||z|| = 1.
    if (rho < 0.0) dscal(n2, -1.0, z + n1, 1);
    dscal(n, 1.0 / std::sqrt(2.0), z, 1);
    rho = std::fabs(2.0 * rho);

    // indx: the merged ascending order of both halves' eigenvalues.
    for (zint i = n1; i < n; ++i) indxq[i] += n1;
    for (zint i = 0; i < n; ++i) dlamda[i] = d[indxq[i] - 1];
    lamrg(n1, n2, dlamda, 1, 1, indxc);
    for (zint i = 0; i < n; ++i) indx[i] = indxq[indxc[i] - 1];

    const zint imax = idamax(n, z, 1);
    const zint jmax = idamax(n, d, 1);
    const double tol = 8.0 * dlamch("E") * std::max(std::fabs(d[jmax - 1]), std::fabs(z[imax - 1]));

    // An update too small to matter: every eigenpair deflates; only the sort is left to do.
    if (rho * std::fabs(z[imax - 1]) <= tol) {
        k = 0;
        for (zint j = 0; j < n; ++j) {
            const zint i = indx[j];
            dcopy(n, column(i), 1, q2 + j * n, 1);
            dlamda[j] = d[i - 1];
        }
        lacpy('A', n, n, q2, n, q, ldq);
        dcopy(n, dlamda, 1, d, 1);
        return;
    }

    for (zint i = 0; i < n; ++i) coltyp[i] = i < n1 ? kUpper : kLower;

    // Walk the eigenvalues in ascending order. A pair deflates when its z component is negligible;
    // two neighbours deflate into one when a rotation of their vectors can zero one z component at a
    // cost below the tolerance. The survivors (k of them) go to the front of indxp in ascending
    // order, the deflated to its back, kept in descending order.
    k = 0;
    zint back = n;      // indxp(back .. n - 1) holds the deflated pairs
    zint previous = 0;  // the last survivor not yet recorded (one-based; 0 while there is none)
    for (zint j = 0; j < n; ++j) {
        const zint nj = indx[j];
        if (rho * std::fabs(z[nj - 1]) <= tol) {
            coltyp[nj - 1] = kDeflated;
            indxp[--back] = nj;
            continue;
        }
        if (previous == 0) {
            previous = nj;
            continue;
        }
        const zint pj = previous;
        double s = z[pj - 1];
        double c = z[nj - 1];
        const double tau = lapy2(c, s);
        const double t = d[nj - 1] - d[pj - 1];
        c /= tau;
        s = -s / tau;
        if (std::fabs(t * c * s) <= tol) {
            // The rotation moves all of the pair's z weight onto nj; pj deflates.
            z[nj - 1] = tau;
            z[pj - 1] = 0.0;
            if (coltyp[nj - 1] != coltyp[pj - 1]) coltyp[nj - 1] = kBoth;
            coltyp[pj - 1] = kDeflated;
            drot(n, column(pj), 1, column(nj), 1, c, s);
            const double dp = d[pj - 1] * c * c + d[nj - 1] * s * s;
            d[nj - 1] = d[pj - 1] * s * s + d[nj - 1] * c * c;
            d[pj - 1] = dp;
            // Insert pj among the deflated, which stay in descending order.
            zint p = --back;
            for (; p + 1 < n && d[pj - 1] < d[indxp[p + 1] - 1]; ++p) indxp[p] = indxp[p + 1];
            indxp[p] = pj;
        } else {
            dlamda[k] = d[pj - 1];
            w[k] = z[pj - 1];
            indxp[k] = pj;
            ++k;
        }
        previous = nj;
    }
    if (previous != 0) {
        dlamda[k] = d[previous - 1];
        w[k] = z[previous - 1];
        indxp[k] = previous;
        ++k;
    }

    // Group the columns by type (1, 2, 3, then the deflated), each group in indxp's order; indxc
    // maps a grouped position back to the position in indxp.
    zint ctot[4] = {0, 0, 0, 0};
    for (zint j = 0; j < n; ++j) ++ctot[coltyp[j] - 1];
    zint psm[4] = {0, ctot[0], ctot[0] + ctot[1], ctot[0] + ctot[1] + ctot[2]};
    k = n - ctot[3];
    for (zint j = 0; j < n; ++j) {
        const zint js = indxp[j];
        const zint type = coltyp[js - 1];
        indx[psm[type - 1]] = js;
        indxc[psm[type - 1]] = j + 1;
        ++psm[type - 1];
    }

    // q2 receives the nonzero blocks: the upper rows of types 1 and 2 (n1 each), then the lower rows
    // of types 2 and 3 (n2 each), then the deflated columns whole; z (free now) the grouped values.
    zint i = 0;
    double* upper = q2;
    double* lower = q2 + (ctot[0] + ctot[1]) * n1;
    for (zint j = 0; j < ctot[0]; ++j, ++i, upper += n1) {
        const zint js = indx[i];
        dcopy(n1, column(js), 1, upper, 1);
        z[i] = d[js - 1];
    }
    for (zint j = 0; j < ctot[1]; ++j, ++i, upper += n1, lower += n2) {
        const zint js = indx[i];
        dcopy(n1, column(js), 1, upper, 1);
        dcopy(n2, column(js) + n1, 1, lower, 1);
        z[i] = d[js - 1];
    }
    for (zint j = 0; j < ctot[2]; ++j, ++i, lower += n2) {
        const zint js = indx[i];
        dcopy(n2, column(js) + n1, 1, lower, 1);
        z[i] = d[js - 1];
    }
    double* const deflated = lower;
    for (zint j = 0; j < ctot[3]; ++j, ++i, lower += n) {
        const zint js = indx[i];
        dcopy(n, column(js), 1, lower, 1);
        z[i] = d[js - 1];
    }
    // The deflated pairs are final: back into the last n - k places of d and Q.
    if (k < n) {
        lacpy('A', n, ctot[3], deflated, n, q + k * ldq, ldq);
        dcopy(n - k, z + k, 1, d + k, 1);
    }
    for (zint j = 0; j < 4; ++j) coltyp[j] = ctot[j];
}

}  // namespace zor
