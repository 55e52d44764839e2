// lasd6: one merge of bidiagonal divide and conquer in the compact form.

#include <algorithm>
#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/condensed/bidiagonal_support.hpp"
#include "lapack/lapack.hpp"

namespace zor {

void lasd6(zint icompq, zint nl, zint nr, zint sqre, double* d, double* vf, double* vl, double& alpha,
           double& beta, zint* idxq, zint* perm, zint& givptr, zint* givcol, zint ldgcol, double* givnum,
           zint ldgnum, double* poles, double* difl, double* difr, double* z, zint& k, double& c, double& s,
           double* work, zint* iwork, zint& info) {
    const zint n = nl + nr + 1, m = n + sqre;
    info = check_arguments("DLASD6", {{icompq < 0 || icompq > 1, 1},
                                      {nl < 1, 2},
                                      {nr < 1, 3},
                                      {sqre < 0 || sqre > 1, 4},
                                      {ldgcol < n, 14},
                                      {ldgnum < n, 16}});
    if (info != 0) return;
    // Work areas: dsigma (n), the saved z (m), vf and vl copies (m each); idx, idxc, idxp (n each).
    double* dsigma = work;
    double* zw = dsigma + n;
    double* vfw = zw + m;
    double* vlw = vfw + m;
    zint* idx = iwork;
    zint* idxp = idx + 2 * n;

    const double scale = bidiagonal::scale_merge(n, nl, d, alpha, beta);
    zint ignored = 0;

    lasd7(icompq, nl, nr, sqre, k, d, z, zw, vf, vfw, vl, vlw, alpha, beta, dsigma, idx, idxp, idxq, perm,
          givptr, givcol, ldgcol, givnum, ldgnum, c, s, info);
    lasd8(icompq, k, d, z, vf, vl, difl, difr, ldgnum, dsigma, zw, info);
    if (info != 0) return;
    if (icompq == 1) {
        dcopy(k, d, 1, poles, 1);
        dcopy(k, dsigma, 1, poles + ldgnum, 1);
    }
    lascl<double>('G', 0, 0, 1.0, scale, n, 1, d, n, ignored);
    lamrg(k, n - k, d, 1, -1, idxq);
}

}  // namespace zor
