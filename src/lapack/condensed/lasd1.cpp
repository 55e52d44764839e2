// lasd1: one merge of bidiagonal divide and conquer with the vectors explicit.

#include <algorithm>
#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/condensed/bidiagonal_support.hpp"
#include "lapack/lapack.hpp"

namespace zor {

void lasd1(zint nl, zint nr, zint sqre, double* d, double& alpha, double& beta, double* u, zint ldu,
           double* vt, zint ldvt, zint* idxq, zint* iwork, double* work, zint& info) {
    info = check_arguments("DLASD1", {{nl < 1, 1}, {nr < 1, 2}, {sqre < 0 || sqre > 1, 3}});
    if (info != 0) return;
    const zint n = nl + nr + 1, m = n + sqre;

    // Work areas: z (m), dsigma (n), U2 (n by n), VT2 (m by m), then Q (k by k); the index areas of
    // the deflation.
    const zint ldu2 = n, ldvt2 = m;
    double* z = work;
    double* dsigma = z + m;
    double* u2 = dsigma + n;
    double* vt2 = u2 + ldu2 * n;
    double* q = vt2 + ldvt2 * m;
    zint* idx = iwork;
    zint* idxc = idx + n;
    zint* coltyp = idxc + n;
    zint* idxp = coltyp + n;

    // The merge works on values of order one: scale by the largest of them.
    const double scale = bidiagonal::scale_merge(n, nl, d, alpha, beta);
    zint ignored = 0;

    zint k = 0;
    lasd2(nl, nr, sqre, k, d, z, alpha, beta, u, ldu, vt, ldvt, dsigma, u2, ldu2, vt2, ldvt2, idxp, idx, idxc,
          idxq, coltyp, info);
    const zint ldq = k;
    lasd3(nl, nr, sqre, k, d, q, ldq, dsigma, u, ldu, u2, ldu2, vt, ldvt, vt2, ldvt2, idxc, coltyp, z, info);
    if (info != 0) return;

    lascl<double>('G', 0, 0, 1.0, scale, n, 1, d, n, ignored);
    // The k new values are decreasing, the deflated ones increasing: one merge sorts them.
    lamrg(k, n - k, d, 1, -1, idxq);
}

}  // namespace zor
