// lasda: bidiagonal divide and conquer keeping the singular vectors in factored form.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/condensed/bidiagonal_support.hpp"
#include "lapack/lapack.hpp"

namespace zor {

// The leaves are solved by lasdq with their vectors explicit (icompq 1: stored in U and VT at the
// leaves' rows; icompq 0: in a scratch block, of which only the first and last rows of VT are
// kept in vf and vl). Each merge above them (lasd6) needs only those boundary rows, and records
// what lals0 needs to apply its vectors later: level l (one-based) stores into column l of perm,
// difl and z, columns 2l - 1 and 2l of givcol, givnum, poles and difr, and node j's scalars at
// position j of k, givptr, c and s (nodes numbered from the last one of the deepest level).
void lasda(zint icompq, zint smlsiz, zint n, zint sqre, double* d, double* e, double* u, zint ldu, double* vt,
           zint* k, double* difl, double* difr, double* z, double* poles, zint* givptr, zint* givcol,
           zint ldgcol, zint* perm, double* givnum, double* c, double* s, double* work, zint* iwork,
           zint& info) {
    info = check_arguments("DLASDA", {{icompq < 0 || icompq > 1, 1},
                                      {smlsiz < 3, 2},
                                      {n < 0, 3},
                                      {sqre < 0 || sqre > 1, 4},
                                      {ldu < n + sqre, 8},
                                      {ldgcol < n, 17}});
    if (info != 0) return;
    const zint m = n + sqre;
    if (n <= smlsiz) {
        if (icompq == 0) {
            lasdq('U', sqre, n, 0, 0, 0, d, e, vt, ldu, u, ldu, u, ldu, work, info);
        } else {
            lasdq('U', sqre, n, m, n, 0, d, e, vt, ldu, u, ldu, u, ldu, work, info);
        }
        return;
    }

    const bidiagonal::Tree tree(n, smlsiz, iwork);
    zint* idxq = iwork + 3 * n;
    zint* iwk = idxq + n;
    const zint smlszp = smlsiz + 1;
    double* vf = work;
    double* vl = vf + m;
    double* block = vl + m;  // a leaf's VT for icompq 0 (smlszp by smlszp)
    double* scratch = block + smlszp * smlszp;

    // One leaf of `rows` rows starting at row `first` (one-based), square or with one more column.
    const auto leaf = [&](zint first, zint rows, zint sqrei) {
        const zint cols = rows + sqrei;
        double* vfi = vf + first - 1;
        double* vli = vl + first - 1;
        if (icompq == 0) {
            laset<double>('A', cols, cols, 0.0, 1.0, block, smlszp);
            lasdq('U', sqrei, rows, cols, 0, 0, d + first - 1, e + first - 1, block, smlszp, scratch, rows,
                  scratch, rows, scratch, info);
            dcopy(cols, block, 1, vfi, 1);
            dcopy(cols, block + (cols - 1) * smlszp, 1, vli, 1);
        } else {
            double* ui = u + (first - 1);
            double* vti = vt + (first - 1);
            laset<double>('A', rows, rows, 0.0, 1.0, ui, ldu);
            laset<double>('A', cols, cols, 0.0, 1.0, vti, ldu);
            lasdq('U', sqrei, rows, cols, rows, 0, d + first - 1, e + first - 1, vti, ldu, ui, ldu, ui, ldu,
                  block, info);
            dcopy(cols, vti, 1, vfi, 1);
            dcopy(cols, vti + (cols - 1) * ldu, 1, vli, 1);
        }
        if (info != 0) return false;
        for (zint j = 1; j <= rows; ++j) idxq[first - 2 + j] = j;
        return true;
    };
    for (zint i = tree.first_leaf(); i <= tree.nodes; ++i) {
        if (!leaf(tree.first_row(i), tree.left(i), 1)) return;
        if (!leaf(tree.centre(i) + 1, tree.right(i), (i == tree.nodes && sqre == 0) ? 0 : 1)) return;
    }

    // The merges, bottom-up.
    zint j = zint{1} << tree.levels;
    for (zint level = tree.levels; level >= 1; --level) {
        const zint lvl2 = 2 * level - 1;
        const zint last = bidiagonal::Tree::level_last(level);
        for (zint i = bidiagonal::Tree::level_first(level); i <= last; ++i) {
            const zint ic = tree.centre(i), nl = tree.left(i), nr = tree.right(i);
            const zint nlf = tree.first_row(i);
            const zint sqrei = i == last ? sqre : 1;
            double alpha = d[ic - 1], beta = e[ic - 1];
            double* vfi = vf + nlf - 1;
            double* vli = vl + nlf - 1;
            zint* idxqi = idxq + nlf - 1;
            if (icompq == 0) {
                lasd6(icompq, nl, nr, sqrei, d + nlf - 1, vfi, vli, alpha, beta, idxqi, perm, givptr[0],
                      givcol, ldgcol, givnum, ldu, poles, difl, difr, z, k[0], c[0], s[0], block, iwk, info);
            } else {
                --j;
                const zint row = nlf - 1;
                lasd6(icompq, nl, nr, sqrei, d + nlf - 1, vfi, vli, alpha, beta, idxqi,
                      perm + row + (level - 1) * ldgcol, givptr[j - 1], givcol + row + (lvl2 - 1) * ldgcol,
                      ldgcol, givnum + row + (lvl2 - 1) * ldu, ldu, poles + row + (lvl2 - 1) * ldu,
                      difl + row + (level - 1) * ldu, difr + row + (lvl2 - 1) * ldu,
                      z + row + (level - 1) * ldu, k[j - 1], c[j - 1], s[j - 1], block, iwk, info);
            }
            if (info != 0) return;
        }
    }
}

}  // namespace zor
