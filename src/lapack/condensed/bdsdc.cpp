// bdsdc: the SVD of a bidiagonal matrix by divide and conquer.

#include <algorithm>
#include <cmath>
#include <utility>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/condensed/bidiagonal_support.hpp"
#include "lapack/lapack.hpp"

namespace zor {

zint bdsdc_work_size(char compq, zint n) {
    if (n <= 0) return 1;
    if (lsame(compq, 'I')) return 3 * n * n + 4 * n;
    return 4 * n;
}

zint bdsdc_iwork_size(zint n) {
    return std::max<zint>(1, 8 * n);
}

// Values only: lasdq (QR) on the whole matrix. With vectors: the matrix is scaled to norm one, tiny
// diagonal entries are raised to eps (the merges divide by them), it is split at negligible
// off-diagonals and each piece is solved by lasd0; a lower bidiagonal matrix is first made upper
// by rotations from the left, which are applied to U at the end.
void bdsdc(char uplo, char compq, zint n, double* d, double* e, double* u, zint ldu, double* vt, zint ldvt,
           double* q, zint* iq, double* work, zint* iwork, zint& info) {
    const bool upper = lsame(uplo, 'U'), lower = lsame(uplo, 'L');
    const bool values_only = lsame(compq, 'N'), vectors = lsame(compq, 'I');
    info = check_arguments("DBDSDC", {{!upper && !lower, 1},
                                      {!values_only && !vectors, 2},
                                      {n < 0, 3},
                                      {ldu < 1 || (vectors && ldu < n), 7},
                                      {ldvt < 1 || (vectors && ldvt < n), 9}});
    if (info != 0 || n == 0) return;
    (void)q;
    (void)iq;
    const zint smlsiz = ilaenv(9, "DBDSDC", " ", 0, 0, 0, 0);
    if (n == 1) {
        if (vectors) {
            u[0] = std::copysign(1.0, d[0]);
            vt[0] = 1.0;
        }
        d[0] = std::fabs(d[0]);
        return;
    }
    if (bidiagonal::has_nonfinite(n, d, e)) {
        info = 1;
        return;
    }
    const zint nm1 = n - 1;

    // Lower to upper: the rotations (c, -s) are kept in work(0 : 2n - 2) for U.
    double* rest = work;
    if (lower) {
        if (vectors) rest = work + 2 * nm1;
        bidiagonal::chase(nm1, d, e, [&](zint i, double cs, double sn) {
            if (vectors) {
                work[i] = cs;
                work[nm1 + i] = -sn;
            }
        });
    }

    if (values_only) {
        lasdq('U', 0, n, 0, 0, 0, d, e, vt, ldvt, u, ldu, u, ldu, work, info);
    } else if (n <= smlsiz) {
        laset<double>('A', n, n, 0.0, 1.0, u, ldu);
        laset<double>('A', n, n, 0.0, 1.0, vt, ldvt);
        lasdq('U', 0, n, n, n, 0, d, e, vt, ldvt, u, ldu, u, ldu, rest, info);
    } else {
        laset<double>('A', n, n, 0.0, 1.0, u, ldu);
        laset<double>('A', n, n, 0.0, 1.0, vt, ldvt);
        const double scale = lanst('M', n, d, e);
        if (scale == 0.0) return;
        zint ignored = 0;
        lascl<double>('G', 0, 0, scale, 1.0, n, 1, d, n, ignored);
        lascl<double>('G', 0, 0, scale, 1.0, nm1, 1, e, nm1, ignored);
        const double eps = 0.9 * dlamch("E");
        for (zint i = 0; i < n; ++i) {
            if (std::fabs(d[i]) < eps) d[i] = std::copysign(eps, d[i]);
        }
        zint start = 0;
        for (zint i = 0; i < nm1; ++i) {
            const bool negligible = std::fabs(e[i]) < eps;
            if (!negligible && i != nm1 - 1) continue;
            zint size;
            if (i < nm1 - 1) {
                size = i - start + 1;
            } else if (!negligible) {
                size = n - start;
            } else {
                // The last off-diagonal is negligible: the last row is a 1 by 1 piece.
                size = i - start + 1;
                u[(n - 1) + (n - 1) * ldu] = std::copysign(1.0, d[n - 1]);
                vt[(n - 1) + (n - 1) * ldvt] = 1.0;
                d[n - 1] = std::fabs(d[n - 1]);
            }
            lasd0(size, 0, d + start, e + start, u + start + start * ldu, ldu, vt + start + start * ldvt,
                  ldvt, smlsiz, iwork, rest, info);
            if (info != 0) return;
            start = i + 1;
        }
        lascl<double>('G', 0, 0, 1.0, scale, n, 1, d, n, ignored);
    }
    if (info != 0) return;

    // The pieces' values are sorted within each piece only: selection sort, one exchange of U's
    // columns per value at most; VT's rows follow the same exchanges, gathered a column at a time
    // (contiguous) through the permutation they make. The work area is free again by now, except
    // for the rotations of a lower matrix at its start.
    zint* order = iwork;
    for (zint i = 0; i < n; ++i) order[i] = i;
    for (zint i = 0; i + 1 < n; ++i) {
        zint largest = i;
        for (zint j = i + 1; j < n; ++j) {
            if (d[j] > d[largest]) largest = j;
        }
        if (largest != i) {
            std::swap(d[i], d[largest]);
            std::swap(order[i], order[largest]);
            if (vectors) dswap(n, u + i * ldu, 1, u + largest * ldu, 1);
        }
    }
    if (vectors) {
        double* row = work + 2 * n;
        for (zint j = 0; j < n; ++j) {
            double* column = vt + j * ldvt;
            for (zint i = 0; i < n; ++i) row[i] = column[order[i]];
            for (zint i = 0; i < n; ++i) column[i] = row[i];
        }
    }
    if (lower && vectors) lasr('L', 'V', 'B', n, n, work, work + nm1, u, ldu);
}

}  // namespace zor
