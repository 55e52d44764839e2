// laed1: one merge of divide and conquer: the eigensystem of two halves joined by a rank-one update.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/lapack.hpp"

namespace zor {

void laed1(zint n, double* d, double* q, zint ldq, zint* indxq, double rho, zint cutpnt, double* work,
           zint* iwork, zint& info) {
    info = check_arguments(
        "DLAED1", {{n < 0, 1}, {ldq < max_of(1, n), 4}, {min_of(1, n / 2) > cutpnt || n / 2 < cutpnt, 7}});
    if (info != 0 || n == 0) return;
    double* const z = work;
    double* const dlamda = work + n;
    double* const w = work + 2 * n;
    double* const q2 = work + 3 * n;
    zint* const indx = iwork;
    zint* const indxc = iwork + n;
    zint* const coltyp = iwork + 2 * n;
    zint* const indxp = iwork + 3 * n;

    // z: the last row of the upper half's eigenvectors and the first row of the lower half's.
    dcopy(cutpnt, q + (cutpnt - 1), ldq, z, 1);
    dcopy(n - cutpnt, q + cutpnt + cutpnt * ldq, ldq, z + cutpnt, 1);

    zint k = 0;
    laed2(k, n, cutpnt, d, q, ldq, indxq, rho, z, dlamda, w, q2, indx, indxc, indxp, coltyp, info);
    if (info != 0) return;
    if (k == 0) {
        for (zint i = 0; i < n; ++i) indxq[i] = i + 1;
        return;
    }
    // laed3's scratch follows the blocks laed2 left in q2 (coltyp holds the counts of the types).
    const zint used = (coltyp[0] + coltyp[1]) * cutpnt + (coltyp[1] + coltyp[2]) * (n - cutpnt);
    laed3(k, n, cutpnt, d, q, ldq, rho, dlamda, q2, indxc, coltyp, w, q2 + used, info);
    if (info != 0) return;
    // The k new eigenvalues ascend, the n - k deflated ones descend: merge them.
    lamrg(k, n - k, d, 1, -1, indxq);
}

}  // namespace zor
