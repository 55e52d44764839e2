// lasd2: the deflation step of a bidiagonal divide-and-conquer merge.

#include <algorithm>
#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/condensed/bidiagonal_support.hpp"
#include "lapack/lapack.hpp"

namespace zor {

// The merged problem is diag(d) plus the row z; its values are found from the secular equation
// only for the entries that survive deflation: a z component below the tolerance leaves its d as a
// value, and two d closer than the tolerance are rotated so that one z component vanishes. The
// columns are then grouped by their structure (nonzero in the upper block only, the lower block
// only, dense, deflated) so that lasd3 multiplies only the nonzero blocks. The bookkeeping keeps
// the published one-based positions; at() reaches element (i, j) one-based.
void lasd2(zint nl, zint nr, zint sqre, zint& k, double* d, double* z, double alpha, double beta, double* u,
           zint ldu, double* vt, zint ldvt, double* dsigma, double* u2, zint ldu2, double* vt2, zint ldvt2,
           zint* idxp, zint* idx, zint* idxc, zint* idxq, zint* coltyp, zint& info) {
    const zint n = nl + nr + 1, m = n + sqre;
    // The dimension checks are made after the shape checks and take precedence over them.
    info = check_arguments("DLASD2", {{ldu < n, 10},
                                      {ldvt < m, 12},
                                      {ldu2 < n, 15},
                                      {ldvt2 < m, 17},
                                      {nl < 1, 1},
                                      {nr < 1, 2},
                                      {sqre != 1 && sqre != 0, 3}});
    if (info != 0) return;
    const auto at = bidiagonal::element;
    const zint nlp1 = nl + 1, nlp2 = nl + 2;

    // The first part of z from the last row of the left block's VT; the left values move down one
    // place to make room for the new row's position.
    const double z1 = alpha * at(vt, ldvt, nlp1, nlp1);
    z[0] = z1;
    for (zint i = nl; i >= 1; --i) {
        z[i] = alpha * at(vt, ldvt, i, nlp1);
        d[i] = d[i - 1];
        idxq[i] = idxq[i - 1] + 1;
    }
    for (zint i = nlp2; i <= m; ++i) z[i - 1] = beta * at(vt, ldvt, i, nlp2);
    for (zint i = 2; i <= nlp1; ++i) coltyp[i - 1] = 1;
    for (zint i = nlp2; i <= n; ++i) coltyp[i - 1] = 2;

    // Merge the two sorted halves (dsigma, idxc and U2's first column as scratch).
    for (zint i = nlp2; i <= n; ++i) idxq[i - 1] += nlp1;
    for (zint i = 2; i <= n; ++i) {
        dsigma[i - 1] = d[idxq[i - 1] - 1];
        u2[i - 1] = z[idxq[i - 1] - 1];
        idxc[i - 1] = coltyp[idxq[i - 1] - 1];
    }
    lamrg(nl, nr, dsigma + 1, 1, 1, idx + 1);
    for (zint i = 2; i <= n; ++i) {
        const zint from = 1 + idx[i - 1];
        d[i - 1] = dsigma[from - 1];
        z[i - 1] = u2[from - 1];
        coltyp[i - 1] = idxc[from - 1];
    }

    const double eps = dlamch("E");
    const double tol = 8.0 * eps * std::max(std::fabs(d[n - 1]), std::max(std::fabs(alpha), std::fabs(beta)));
    // The column of U (row of VT) holding position j of the sorted order.
    const auto source = [&](zint j) {
        const zint col = idxq[idx[j - 1]];
        return col <= nlp1 ? col - 1 : col;
    };

    // Deflation: a rotation of equal values acts on U's columns and VT's rows and makes the kept
    // column dense when the two were of different types.
    bidiagonal::deflate(
        n, d, z, tol, idxp, k, [&](zint j) { coltyp[j - 1] = 4; },
        [&](zint jprev, zint j, double c, double s) {
            const zint colp = source(jprev), col = source(j);
            drot(n, &at(u, ldu, 1, colp), 1, &at(u, ldu, 1, col), 1, c, s);
            drot(m, &at(vt, ldvt, colp, 1), ldvt, &at(vt, ldvt, col, 1), ldvt, c, s);
            if (coltyp[j - 1] != coltyp[jprev - 1]) coltyp[j - 1] = 3;
            coltyp[jprev - 1] = 4;
        },
        [&](zint kept, zint jprev) {
            u2[kept - 1] = z[jprev - 1];
            dsigma[kept - 1] = d[jprev - 1];
        });

    // Group the columns by type (positions 2.. in idxc), then gather values and vectors in that
    // order: the kept ones first, the deflated ones last.
    zint ctot[4] = {0, 0, 0, 0};
    for (zint j = 2; j <= n; ++j) ++ctot[coltyp[j - 1] - 1];
    zint psm[4] = {2, 2 + ctot[0], 2 + ctot[0] + ctot[1], 2 + ctot[0] + ctot[1] + ctot[2]};
    for (zint j = 2; j <= n; ++j) {
        const zint type = coltyp[idxp[j - 1] - 1];
        idxc[psm[type - 1] - 1] = j;
        ++psm[type - 1];
    }
    // The types are no longer needed: coltyp(j) keeps the source of position j, so that VT's rows
    // are gathered a column at a time (contiguous reads) rather than row by row.
    for (zint j = 2; j <= n; ++j) {
        dsigma[j - 1] = d[idxp[j - 1] - 1];
        coltyp[j - 1] = source(idxp[idxc[j - 1] - 1]);
        dcopy(n, &at(u, ldu, 1, coltyp[j - 1]), 1, &at(u2, ldu2, 1, j), 1);
    }
    for (zint c = 1; c <= m; ++c) {
        for (zint j = 2; j <= n; ++j) at(vt2, ldvt2, j, c) = at(vt, ldvt, coltyp[j - 1], c);
    }

    // The first value is the new zero pole; a second one too close to it is moved off.
    dsigma[0] = 0.0;
    const double hlftol = tol / 2.0;
    if (std::fabs(dsigma[1]) <= hlftol) dsigma[1] = hlftol;
    double c = 1.0, s = 0.0;
    if (m > n) {
        // The extra column's z component is rotated into the first.
        z[0] = lapy2(z1, z[m - 1]);
        if (z[0] <= tol) {
            z[0] = tol;
        } else {
            c = z1 / z[0];
            s = z[m - 1] / z[0];
        }
    } else {
        z[0] = std::fabs(z1) <= tol ? tol : z1;
    }
    dcopy(k - 1, u2 + 1, 1, z + 1, 1);

    // U2's first column is the unit vector of the new row; VT2's first row (and VT's last for the
    // extra column) take the rotation above.
    laset<double>('A', n, 1, 0.0, 0.0, u2, ldu2);
    at(u2, ldu2, nlp1, 1) = 1.0;
    if (m > n) {
        for (zint i = 1; i <= nlp1; ++i) {
            at(vt, ldvt, m, i) = -s * at(vt, ldvt, nlp1, i);
            at(vt2, ldvt2, 1, i) = c * at(vt, ldvt, nlp1, i);
        }
        for (zint i = nlp2; i <= m; ++i) {
            at(vt2, ldvt2, 1, i) = s * at(vt, ldvt, m, i);
            at(vt, ldvt, m, i) = c * at(vt, ldvt, m, i);
        }
        dcopy(m, &at(vt, ldvt, m, 1), ldvt, &at(vt2, ldvt2, m, 1), ldvt2);
    } else {
        dcopy(m, &at(vt, ldvt, nlp1, 1), ldvt, vt2, ldvt2);
    }

    // The deflated values and vectors go to the back of d, U and VT.
    if (n > k) {
        dcopy(n - k, dsigma + k, 1, d + k, 1);
        lacpy<double>('A', n, n - k, &at(u2, ldu2, 1, k + 1), ldu2, &at(u, ldu, 1, k + 1), ldu);
        lacpy<double>('A', n - k, m, &at(vt2, ldvt2, k + 1, 1), ldvt2, &at(vt, ldvt, k + 1, 1), ldvt);
    }
    for (zint j = 0; j < 4; ++j) coltyp[j] = ctot[j];
}

}  // namespace zor
