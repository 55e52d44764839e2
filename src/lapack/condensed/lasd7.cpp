// lasd7: the deflation step of a merge in the compact form of bidiagonal divide and conquer.

#include <algorithm>
#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/condensed/bidiagonal_support.hpp"
#include "lapack/lapack.hpp"

namespace zor {

// As lasd2, but only the first and last components of the right vectors (vf, vl) are carried, and
// the rotations and the permutation are recorded (givcol, givnum, perm) for lals0 to replay. The
// positions are the published one-based ones.
void lasd7(zint icompq, zint nl, zint nr, zint sqre, zint& k, double* d, double* z, double* zw, double* vf,
           double* vfw, double* vl, double* vlw, double alpha, double beta, double* dsigma, zint* idx,
           zint* idxp, zint* idxq, zint* perm, zint& givptr, zint* givcol, zint ldgcol, double* givnum,
           zint ldgnum, double& c, double& s, zint& info) {
    const zint n = nl + nr + 1, m = n + sqre;
    info = check_arguments("DLASD7", {{icompq < 0 || icompq > 1, 1},
                                      {nl < 1, 2},
                                      {nr < 1, 3},
                                      {sqre < 0 || sqre > 1, 4},
                                      {ldgcol < n, 22},
                                      {ldgnum < n, 24}});
    if (info != 0) return;
    const zint nlp1 = nl + 1, nlp2 = nl + 2;
    if (icompq == 1) givptr = 0;

    // z from the boundary components; the left values move down one place.
    const double z1 = alpha * vl[nlp1 - 1];
    vl[nlp1 - 1] = 0.0;
    const double first_vf = vf[nlp1 - 1];
    for (zint i = nl; i >= 1; --i) {
        z[i] = alpha * vl[i - 1];
        vl[i - 1] = 0.0;
        vf[i] = vf[i - 1];
        d[i] = d[i - 1];
        idxq[i] = idxq[i - 1] + 1;
    }
    vf[0] = first_vf;
    for (zint i = nlp2; i <= m; ++i) {
        z[i - 1] = beta * vf[i - 1];
        vf[i - 1] = 0.0;
    }

    // Merge the two sorted halves.
    for (zint i = nlp2; i <= n; ++i) idxq[i - 1] += nlp1;
    for (zint i = 2; i <= n; ++i) {
        const zint from = idxq[i - 1] - 1;
        dsigma[i - 1] = d[from];
        zw[i - 1] = z[from];
        vfw[i - 1] = vf[from];
        vlw[i - 1] = vl[from];
    }
    lamrg(nl, nr, dsigma + 1, 1, 1, idx + 1);
    for (zint i = 2; i <= n; ++i) {
        const zint from = idx[i - 1];
        d[i - 1] = dsigma[from];
        z[i - 1] = zw[from];
        vf[i - 1] = vfw[from];
        vl[i - 1] = vlw[from];
    }

    const double eps = dlamch("E");
    const double tol =
        64.0 * eps * std::max(std::fabs(d[n - 1]), std::max(std::fabs(alpha), std::fabs(beta)));
    // The original position (row of the node) of sorted position j.
    const auto source = [&](zint j) {
        const zint row = idxq[idx[j - 1]];
        return row <= nlp1 ? row - 1 : row;
    };

    // Deflation: a rotation of equal values is recorded for lals0 and applied to vf and vl.
    bidiagonal::deflate(
        n, d, z, tol, idxp, k, [](zint) {},
        [&](zint jprev, zint j, double cj, double sj) {
            if (icompq == 1) {
                ++givptr;
                givcol[(givptr - 1) + ldgcol] = source(jprev);
                givcol[givptr - 1] = source(j);
                givnum[(givptr - 1) + ldgnum] = cj;
                givnum[givptr - 1] = sj;
            }
            drot(1, vf + jprev - 1, 1, vf + j - 1, 1, cj, sj);
            drot(1, vl + jprev - 1, 1, vl + j - 1, 1, cj, sj);
        },
        [&](zint kept, zint jprev) {
            zw[kept - 1] = z[jprev - 1];
            dsigma[kept - 1] = d[jprev - 1];
        });
    // The values in their new order: the kept ones first, the deflated ones after them.
    for (zint j = 2; j <= n; ++j) {
        const zint from = idxp[j - 1] - 1;
        dsigma[j - 1] = d[from];
        vfw[j - 1] = vf[from];
        vlw[j - 1] = vl[from];
    }
    if (icompq == 1) {
        for (zint j = 2; j <= n; ++j) perm[j - 1] = source(idxp[j - 1]);
    }
    dcopy(n - k, dsigma + k, 1, d + k, 1);

    // The new zero pole, a second value moved off it, and the extra column's component rotated
    // into the first.
    dsigma[0] = 0.0;
    const double hlftol = tol / 2.0;
    if (std::fabs(dsigma[1]) <= hlftol) dsigma[1] = hlftol;
    if (m > n) {
        z[0] = lapy2(z1, z[m - 1]);
        if (z[0] <= tol) {
            c = 1.0;
            s = 0.0;
            z[0] = tol;
        } else {
            c = z1 / z[0];
            s = -z[m - 1] / z[0];
        }
        drot(1, vf + m - 1, 1, vf, 1, c, s);
        drot(1, vl + m - 1, 1, vl, 1, c, s);
    } else {
        z[0] = std::fabs(z1) <= tol ? tol : z1;
    }
    dcopy(k - 1, zw + 1, 1, z + 1, 1);
    dcopy(n - 1, vfw + 1, 1, vf + 1, 1);
    dcopy(n - 1, vlw + 1, 1, vl + 1, 1);
}

}  // namespace zor
