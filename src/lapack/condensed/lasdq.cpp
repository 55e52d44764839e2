// lasdq: the SVD of a possibly non-square bidiagonal matrix (the leaves of divide and conquer).

#include <algorithm>
#include <utility>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/condensed/bidiagonal_support.hpp"
#include "lapack/lapack.hpp"

namespace zor {

void lasdq(char uplo, zint sqre, zint n, zint ncvt, zint nru, zint ncc, double* d, double* e, double* vt,
           zint ldvt, double* u, zint ldu, double* c, zint ldc, double* work, zint& info) {
    const bool upper = lsame(uplo, 'U');
    info =
        check_arguments("DLASDQ", {{!upper && !lsame(uplo, 'L'), 1},
                                   {sqre < 0 || sqre > 1, 2},
                                   {n < 0, 3},
                                   {ncvt < 0, 4},
                                   {nru < 0, 5},
                                   {ncc < 0, 6},
                                   {(ncvt == 0 && ldvt < 1) || (ncvt > 0 && ldvt < std::max<zint>(1, n)), 10},
                                   {ldu < std::max<zint>(1, nru), 12},
                                   {(ncc == 0 && ldc < 1) || (ncc > 0 && ldc < std::max<zint>(1, n)), 14}});
    if (info != 0 || n == 0) return;

    const bool rotate = ncvt > 0 || nru > 0 || ncc > 0;
    const zint np1 = n + 1;
    double* cs = work;
    double* sn = work + n;
    const auto record = [&](zint i, double c, double s) {
        if (rotate) {
            cs[i] = c;
            sn[i] = s;
        }
    };
    bool lower = !upper;
    if (upper && sqre == 1) {
        // The extra column is rotated away from the right, leaving an n by n lower bidiagonal
        // matrix; VT takes the n + 1 rotations.
        bidiagonal::chase(n - 1, d, e, record);
        double cn, sn_last, r;
        lartg(d[n - 1], e[n - 1], cn, sn_last, r);
        d[n - 1] = r;
        e[n - 1] = 0.0;
        if (rotate) {
            cs[n - 1] = cn;
            sn[n - 1] = sn_last;
        }
        lower = true;
        sqre = 0;
        if (ncvt > 0) lasr('L', 'V', 'F', np1, ncvt, cs, sn, vt, ldvt);
    }
    if (lower) {
        // Rotations from the left make the matrix upper bidiagonal (and absorb an extra row);
        // U and C take them.
        bidiagonal::chase(n - 1, d, e, record);
        if (sqre == 1) {
            double cn, sn_last, r;
            lartg(d[n - 1], e[n - 1], cn, sn_last, r);
            d[n - 1] = r;
            if (rotate) {
                cs[n - 1] = cn;
                sn[n - 1] = sn_last;
            }
        }
        const zint rows = sqre == 0 ? n : np1;
        if (nru > 0) lasr('R', 'V', 'F', nru, rows, cs, sn, u, ldu);
        if (ncc > 0) lasr('L', 'V', 'F', rows, ncc, cs, sn, c, ldc);
    }
    // The square upper bidiagonal matrix left. bdsqr sorts decreasingly; the merges of divide and
    // conquer want the leaves ascending: selection sort, one exchange of vectors per value at most.
    bdsqr('U', n, ncvt, nru, ncc, d, e, vt, ldvt, u, ldu, c, ldc, work, info);
    for (zint i = 0; i < n; ++i) {
        zint smallest = i;
        for (zint j = i + 1; j < n; ++j) {
            if (d[j] < d[smallest]) smallest = j;
        }
        if (smallest == i) continue;
        std::swap(d[i], d[smallest]);
        if (ncvt > 0) dswap(ncvt, vt + smallest, ldvt, vt + i, ldvt);
        if (nru > 0) dswap(nru, u + smallest * ldu, 1, u + i * ldu, 1);
        if (ncc > 0) dswap(ncc, c + smallest, ldc, c + i, ldc);
    }
}

}  // namespace zor
