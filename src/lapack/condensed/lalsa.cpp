// lalsa: applies the factored singular vectors of lasda to a block of right-hand sides.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/condensed/bidiagonal_support.hpp"
#include "lapack/lapack.hpp"

namespace zor {

// icompq 0: BX := Uᵀ B, the leaves' explicit U first, then the merges' left factors bottom-up;
// icompq 1: B := V BX, the merges' right factors top-down, then the leaves' explicit VT. The
// arrays are lasda's, in its layout.
void lalsa(zint icompq, zint smlsiz, zint n, zint nrhs, double* b, zint ldb, double* bx, zint ldbx,
           const double* u, zint ldu, const double* vt, const zint* k, const double* difl, const double* difr,
           const double* z, const double* poles, const zint* givptr, const zint* givcol, zint ldgcol,
           const zint* perm, const double* givnum, const double* c, const double* s, double* work,
           zint* iwork, zint& info) {
    info = check_arguments("DLALSA", {{icompq < 0 || icompq > 1, 1},
                                      {smlsiz < 3, 2},
                                      {n < smlsiz, 3},
                                      {nrhs < 1, 4},
                                      {ldb < n, 6},
                                      {ldbx < n, 8},
                                      {ldu < n, 10},
                                      {ldgcol < n, 19}});
    if (info != 0) return;
    const bidiagonal::Tree tree(n, smlsiz, iwork);

    // Node i's merge: the arrays of its level at its rows, and its scalars at position j.
    const auto merge = [&](zint i, zint level, zint j, zint sqre, double* from, zint ldfrom, double* to,
                           zint ldto) {
        const zint row = tree.first_row(i) - 1, lvl2 = 2 * level - 1;
        lals0(icompq, tree.left(i), tree.right(i), sqre, nrhs, from + row, ldfrom, to + row, ldto,
              perm + row + (level - 1) * ldgcol, givptr[j - 1], givcol + row + (lvl2 - 1) * ldgcol, ldgcol,
              givnum + row + (lvl2 - 1) * ldu, ldu, poles + row + (lvl2 - 1) * ldu,
              difl + row + (level - 1) * ldu, difr + row + (lvl2 - 1) * ldu, z + row + (level - 1) * ldu,
              k[j - 1], c[j - 1], s[j - 1], work, info);
    };

    if (icompq == 0) {
        for (zint i = tree.first_leaf(); i <= tree.nodes; ++i) {
            const zint nl = tree.left(i), nr = tree.right(i);
            const zint nlf = tree.first_row(i) - 1, nrf = tree.centre(i);
            dgemm('T', 'N', nl, nrhs, nl, 1.0, u + nlf, ldu, b + nlf, ldb, 0.0, bx + nlf, ldbx);
            dgemm('T', 'N', nr, nrhs, nr, 1.0, u + nrf, ldu, b + nrf, ldb, 0.0, bx + nrf, ldbx);
        }
        // The centre rows of the nodes are not touched by the leaves.
        for (zint i = 1; i <= tree.nodes; ++i) {
            const zint ic = tree.centre(i);
            dcopy(nrhs, b + ic - 1, ldb, bx + ic - 1, ldbx);
        }
        zint j = zint{1} << tree.levels;
        for (zint level = tree.levels; level >= 1; --level) {
            for (zint i = bidiagonal::Tree::level_first(level); i <= bidiagonal::Tree::level_last(level);
                 ++i) {
                --j;
                merge(i, level, j, 0, bx, ldbx, b, ldb);
            }
        }
        return;
    }

    zint j = 0;
    for (zint level = 1; level <= tree.levels; ++level) {
        const zint last = bidiagonal::Tree::level_last(level);
        for (zint i = last; i >= bidiagonal::Tree::level_first(level); --i) {
            ++j;
            merge(i, level, j, i == last ? 0 : 1, b, ldb, bx, ldbx);
        }
    }
    for (zint i = tree.first_leaf(); i <= tree.nodes; ++i) {
        const zint nlf = tree.first_row(i) - 1, nrf = tree.centre(i);
        const zint left = tree.left(i) + 1, right = i == tree.nodes ? tree.right(i) : tree.right(i) + 1;
        dgemm('T', 'N', left, nrhs, left, 1.0, vt + nlf, ldu, b + nlf, ldb, 0.0, bx + nlf, ldbx);
        dgemm('T', 'N', right, nrhs, right, 1.0, vt + nrf, ldu, b + nrf, ldb, 0.0, bx + nrf, ldbx);
    }
}

}  // namespace zor
