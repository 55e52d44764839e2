// lasd0: the SVD of an upper bidiagonal matrix by divide and conquer, vectors explicit.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/lapack.hpp"

namespace zor {

// The tree of lasdt: its leaves are solved by lasdq (each as an nl by nl + 1 and an nr by nr + 1
// problem, the last one square when the whole is), then the levels are merged bottom-up by lasd1.
void lasd0(zint n, zint sqre, double* d, double* e, double* u, zint ldu, double* vt, zint ldvt, zint smlsiz,
           zint* iwork, double* work, zint& info) {
    const zint m = n + sqre;
    info = check_arguments(
        "DLASD0", {{n < 0, 1}, {sqre < 0 || sqre > 1, 2}, {ldu < n, 6}, {ldvt < m, 8}, {smlsiz < 3, 9}});
    if (info != 0) return;
    if (n <= smlsiz) {
        lasdq('U', sqre, n, m, n, 0, d, e, vt, ldvt, u, ldu, u, ldu, work, info);
        return;
    }
    zint* inode = iwork;
    zint* ndiml = inode + n;
    zint* ndimr = ndiml + n;
    zint* idxq = ndimr + n;
    zint* iwk = idxq + n;
    zint levels = 0, nodes = 0;
    lasdt(n, levels, nodes, inode, ndiml, ndimr, smlsiz);

    const auto block = [&](double* a, zint ld, zint first) { return a + (first - 1) + (first - 1) * ld; };
    for (zint i = (nodes + 1) / 2; i <= nodes; ++i) {
        const zint ic = inode[i - 1], nl = ndiml[i - 1], nr = ndimr[i - 1];
        const zint nlf = ic - nl, nrf = ic + 1;
        lasdq('U', 1, nl, nl + 1, nl, 0, d + nlf - 1, e + nlf - 1, block(vt, ldvt, nlf), ldvt,
              block(u, ldu, nlf), ldu, block(u, ldu, nlf), ldu, work, info);
        if (info != 0) return;
        for (zint j = 1; j <= nl; ++j) idxq[nlf - 2 + j] = j;
        const zint sqrei = i == nodes ? sqre : 1;
        lasdq('U', sqrei, nr, nr + sqrei, nr, 0, d + nrf - 1, e + nrf - 1, block(vt, ldvt, nrf), ldvt,
              block(u, ldu, nrf), ldu, block(u, ldu, nrf), ldu, work, info);
        if (info != 0) return;
        for (zint j = 1; j <= nr; ++j) idxq[ic - 1 + j] = j;
    }

    for (zint level = levels; level >= 1; --level) {
        const zint first = level == 1 ? 1 : zint{1} << (level - 1);
        const zint last = level == 1 ? 1 : 2 * first - 1;
        for (zint i = first; i <= last; ++i) {
            const zint ic = inode[i - 1], nl = ndiml[i - 1], nr = ndimr[i - 1];
            const zint nlf = ic - nl;
            const zint sqrei = (sqre == 0 && i == last) ? sqre : 1;
            double alpha = d[ic - 1], beta = e[ic - 1];
            lasd1(nl, nr, sqrei, d + nlf - 1, alpha, beta, block(u, ldu, nlf), ldu, block(vt, ldvt, nlf),
                  ldvt, idxq + nlf - 1, iwk, work, info);
            if (info != 0) return;
        }
    }
}

}  // namespace zor
