// lasd0: the SVD of an upper bidiagonal matrix by divide and conquer, vectors explicit.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/condensed/bidiagonal_support.hpp"
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
    const bidiagonal::Tree tree(n, smlsiz, iwork);
    zint* idxq = iwork + 3 * n;
    zint* iwk = idxq + n;

    // A leaf of `rows` rows from row `first` (one-based), with sqrei extra columns; idxq sorts its
    // ascending values as they are.
    const auto block = [&](double* a, zint ld, zint first) { return a + (first - 1) + (first - 1) * ld; };
    const auto leaf = [&](zint first, zint rows, zint sqrei) {
        lasdq('U', sqrei, rows, rows + sqrei, rows, 0, d + first - 1, e + first - 1, block(vt, ldvt, first),
              ldvt, block(u, ldu, first), ldu, block(u, ldu, first), ldu, work, info);
        for (zint j = 1; j <= rows; ++j) idxq[first - 2 + j] = j;
        return info == 0;
    };
    for (zint i = tree.first_leaf(); i <= tree.nodes; ++i) {
        if (!leaf(tree.first_row(i), tree.left(i), 1)) return;
        if (!leaf(tree.centre(i) + 1, tree.right(i), i == tree.nodes ? sqre : 1)) return;
    }

    for (zint level = tree.levels; level >= 1; --level) {
        const zint last = bidiagonal::Tree::level_last(level);
        for (zint i = bidiagonal::Tree::level_first(level); i <= last; ++i) {
            const zint ic = tree.centre(i), nlf = tree.first_row(i);
            const zint sqrei = (sqre == 0 && i == last) ? sqre : 1;
            double alpha = d[ic - 1], beta = e[ic - 1];
            lasd1(tree.left(i), tree.right(i), sqrei, d + nlf - 1, alpha, beta, block(u, ldu, nlf), ldu,
                  block(vt, ldvt, nlf), ldvt, idxq + nlf - 1, iwk, work, info);
            if (info != 0) return;
        }
    }
}

}  // namespace zor
