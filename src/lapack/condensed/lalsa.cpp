// lalsa: applies the factored singular vectors of lasda to a block of right-hand sides.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
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
    zint* inode = iwork;
    zint* ndiml = inode + n;
    zint* ndimr = ndiml + n;
    zint levels = 0, nodes = 0;
    lasdt(n, levels, nodes, inode, ndiml, ndimr, smlsiz);

    // Node i's merge: the arrays of its level at its rows, and its scalars at position j.
    const auto merge = [&](zint i, zint level, zint j, zint sqre, double* from, zint ldfrom, double* to,
                           zint ldto) {
        const zint ic = inode[i - 1], nl = ndiml[i - 1], nr = ndimr[i - 1];
        const zint row = ic - nl - 1, lvl2 = 2 * level - 1;
        lals0(icompq, nl, nr, sqre, nrhs, from + row, ldfrom, to + row, ldto,
              perm + row + (level - 1) * ldgcol, givptr[j - 1], givcol + row + (lvl2 - 1) * ldgcol, ldgcol,
              givnum + row + (lvl2 - 1) * ldu, ldu, poles + row + (lvl2 - 1) * ldu,
              difl + row + (level - 1) * ldu, difr + row + (lvl2 - 1) * ldu, z + row + (level - 1) * ldu,
              k[j - 1], c[j - 1], s[j - 1], work, info);
    };
    const auto level_nodes = [](zint level, zint& first, zint& last) {
        first = level == 1 ? 1 : zint{1} << (level - 1);
        last = level == 1 ? 1 : 2 * first - 1;
    };

    if (icompq == 0) {
        for (zint i = (nodes + 1) / 2; i <= nodes; ++i) {
            const zint ic = inode[i - 1], nl = ndiml[i - 1], nr = ndimr[i - 1];
            const zint nlf = ic - nl - 1, nrf = ic;
            dgemm('T', 'N', nl, nrhs, nl, 1.0, u + nlf, ldu, b + nlf, ldb, 0.0, bx + nlf, ldbx);
            dgemm('T', 'N', nr, nrhs, nr, 1.0, u + nrf, ldu, b + nrf, ldb, 0.0, bx + nrf, ldbx);
        }
        // The centre rows of the nodes are not touched by the leaves.
        for (zint i = 1; i <= nodes; ++i) {
            const zint ic = inode[i - 1];
            dcopy(nrhs, b + ic - 1, ldb, bx + ic - 1, ldbx);
        }
        zint j = zint{1} << levels;
        for (zint level = levels; level >= 1; --level) {
            zint first, last;
            level_nodes(level, first, last);
            for (zint i = first; i <= last; ++i) {
                --j;
                merge(i, level, j, 0, bx, ldbx, b, ldb);
            }
        }
        return;
    }

    zint j = 0;
    for (zint level = 1; level <= levels; ++level) {
        zint first, last;
        level_nodes(level, first, last);
        for (zint i = last; i >= first; --i) {
            ++j;
            merge(i, level, j, i == last ? 0 : 1, b, ldb, bx, ldbx);
        }
    }
    for (zint i = (nodes + 1) / 2; i <= nodes; ++i) {
        const zint ic = inode[i - 1], nl = ndiml[i - 1], nr = ndimr[i - 1];
        const zint nlf = ic - nl - 1, nrf = ic;
        const zint left = nl + 1, right = i == nodes ? nr : nr + 1;
        dgemm('T', 'N', left, nrhs, left, 1.0, vt + nlf, ldu, b + nlf, ldb, 0.0, bx + nlf, ldbx);
        dgemm('T', 'N', right, nrhs, right, 1.0, vt + nrf, ldu, b + nrf, ldb, 0.0, bx + nrf, ldbx);
    }
}

}  // namespace zor
