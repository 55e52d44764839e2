#pragma once
// What the bidiagonal solvers share: the chase that turns a lower bidiagonal matrix into an upper
// one, the test for input that cannot converge, the tree of divide and conquer carved from an
// integer work area, and the scaling and deflation scan of a merge.

#include <algorithm>
#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/lapack.hpp"

namespace zor::bidiagonal {

// Rotations of rows (or columns) i and i + 1, for i < count, that move e(i) off the diagonal's
// other side: d(i) := r, e(i) := s d(i + 1), d(i + 1) := c d(i + 1). record(i, c, s) keeps them.
template <class Record>
void chase(zint count, double* d, double* e, Record&& record) {
    for (zint i = 0; i < count; ++i) {
        double c, s, r;
        lartg(d[i], e[i], c, s, r);
        d[i] = r;
        e[i] = s * d[i + 1];
        d[i + 1] *= c;
        record(i, c, s);
    }
}

// Element (i, j), one-based, of a column-major matrix: the merges keep the published positions.
inline double& element(double* a, zint ld, zint i, zint j) {
    return a[(i - 1) + (j - 1) * ld];
}

// Whether d (n) or e (n - 1) holds NaN or infinity, which no convergence test can accept.
inline bool has_nonfinite(zint n, const double* d, const double* e) {
    for (zint i = 0; i < n; ++i) {
        if (!std::isfinite(d[i]) || (i + 1 < n && !std::isfinite(e[i]))) return true;
    }
    return false;
}

// The divide-and-conquer tree of lasdt in the first 3n integers of iwork; nodes are one-based.
struct Tree {
    zint* inode;
    zint* ndiml;
    zint* ndimr;
    zint levels = 0, nodes = 0;

    Tree(zint n, zint smlsiz, zint* iwork) : inode(iwork), ndiml(iwork + n), ndimr(iwork + 2 * n) {
        lasdt(n, levels, nodes, inode, ndiml, ndimr, smlsiz);
    }
    zint centre(zint i) const { return inode[i - 1]; }
    zint left(zint i) const { return ndiml[i - 1]; }
    zint right(zint i) const { return ndimr[i - 1]; }
    zint first_row(zint i) const { return inode[i - 1] - ndiml[i - 1]; }
    zint first_leaf() const { return (nodes + 1) / 2; }
    // The nodes of a level (one-based): 2^(level - 1) .. 2^level - 1.
    static zint level_first(zint level) { return level == 1 ? 1 : zint{1} << (level - 1); }
    static zint level_last(zint level) { return level == 1 ? 1 : 2 * level_first(level) - 1; }
};

// A merge works on values of order one: d (n, its entry nl replaced by zero), alpha and beta are
// divided by the largest magnitude among them, which is returned (1 when all are zero).
inline double scale_merge(zint n, zint nl, double* d, double& alpha, double& beta) {
    double scale = std::max(std::fabs(alpha), std::fabs(beta));
    d[nl] = 0.0;
    for (zint i = 0; i < n; ++i) scale = std::max(scale, std::fabs(d[i]));
    if (scale == 0.0) scale = 1.0;
    zint ignored = 0;
    lascl<double>('G', 0, 0, scale, 1.0, n, 1, d, n, ignored);
    alpha /= scale;
    beta /= scale;
    return scale;
}

// The deflation scan of a merge over the sorted positions 2..n (one-based) of d and z: a z
// component at most tol deflates its value (small(j)); a value within tol of the previous kept
// one has its component rotated into the later one (rotate(jprev, j, c, s) after z is updated)
// and deflates the earlier; the others are kept (keep(k, jprev) in order, k their new count). Kept positions
// fill idxp from 2 up (k counts them, the first position included), deflated ones from n down.
template <class Small, class Rotate, class Keep>
void deflate(zint n, const double* d, double* z, double tol, zint* idxp, zint& k, Small&& small,
             Rotate&& rotate, Keep&& keep) {
    k = 1;
    zint k2 = n + 1;
    zint jprev = 0;
    for (zint j = 2; j <= n; ++j) {
        if (std::fabs(z[j - 1]) <= tol) {
            idxp[--k2 - 1] = j;
            small(j);
        } else if (jprev == 0) {
            jprev = j;
        } else if (std::fabs(d[j - 1] - d[jprev - 1]) <= tol) {
            const double tau = lapy2(z[j - 1], z[jprev - 1]);
            const double c = z[j - 1] / tau, s = -z[jprev - 1] / tau;
            z[j - 1] = tau;
            z[jprev - 1] = 0.0;
            rotate(jprev, j, c, s);
            idxp[--k2 - 1] = jprev;
            jprev = j;
        } else {
            idxp[++k - 1] = jprev;
            keep(k, jprev);
            jprev = j;
        }
    }
    if (jprev != 0) {
        idxp[++k - 1] = jprev;
        keep(k, jprev);
    }
}

}  // namespace zor::bidiagonal
