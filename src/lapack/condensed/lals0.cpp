// lals0: applies the singular vectors of one divide-and-conquer merge, from their factored form, to
// a block of right-hand sides.

#include <algorithm>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/lapack.hpp"

namespace zor {

// The merge's left vectors are (deflation rotations) (permutation) (the secular equation's
// vectors), the right ones likewise with the extra column's rotation; the secular vectors are
// rebuilt one at a time from poles, difl, difr and z as lasd8 defined them, with the differences
// formed the way lasd8 formed them so that they do not cancel. icompq 0 applies the inverse of the
// left factor (B to BX to B), 1 the right factor (B to BX to B). Row positions are one-based.
void lals0(zint icompq, zint nl, zint nr, zint sqre, zint nrhs, double* b, zint ldb, double* bx, zint ldbx,
           const zint* perm, zint givptr, const zint* givcol, zint ldgcol, const double* givnum, zint ldgnum,
           const double* poles, const double* difl, const double* difr, const double* z, zint k, double c,
           double s, double* work, zint& info) {
    const zint n = nl + nr + 1;
    info = check_arguments("DLALS0", {{icompq < 0 || icompq > 1, 1},
                                      {nl < 1, 2},
                                      {nr < 1, 3},
                                      {sqre < 0 || sqre > 1, 4},
                                      {nrhs < 1, 5},
                                      {ldb < n, 7},
                                      {ldbx < n, 9},
                                      {givptr < 0, 11},
                                      {ldgcol < n, 13},
                                      {ldgnum < n, 15},
                                      {k < 1, 20}});
    if (info != 0) return;
    const zint m = n + sqre, nlp1 = nl + 1;
    const auto col = [](const double* a, zint ld, zint j) { return a + (j - 1) * ld; };
    const double* poles_d = poles;                  // the new values
    const double* poles_s = col(poles, ldgnum, 2);  // the old ones (dsigma)
    const double* difr_norm = col(difr, ldgnum, 2);

    if (icompq == 0) {
        // The deflation rotations, then the permutation into BX.
        for (zint i = 0; i < givptr; ++i) {
            drot(nrhs, b + givcol[i + ldgcol] - 1, ldb, b + givcol[i] - 1, ldb, givnum[i + ldgnum],
                 givnum[i]);
        }
        dcopy(nrhs, b + nlp1 - 1, ldb, bx, ldbx);
        for (zint i = 2; i <= n; ++i) dcopy(nrhs, b + perm[i - 1] - 1, ldb, bx + i - 1, ldbx);
        if (k == 1) {
            dcopy(nrhs, bx, ldbx, b, ldb);
            if (z[0] < 0.0) dscal(nrhs, -1.0, b, ldb);
        } else {
            // Row j of the inverse is the j-th left secular vector: its components are
            // dsigma_i z_i / ((dsigma_i - σ_j)(dsigma_i + σ_j)) with the first one -1, normalized.
            for (zint j = 0; j < k; ++j) {
                const double diflj = difl[j], dj = poles_d[j], dsigj = -poles_s[j];
                const double difrj = j + 1 < k ? -difr[j] : 0.0;
                const double dsigjp = j + 1 < k ? -poles_s[j + 1] : 0.0;
                const auto skip = [&](zint i) { return z[i] == 0.0 || poles_s[i] == 0.0; };
                work[j] = skip(j) ? 0.0 : -poles_s[j] * z[j] / diflj / (poles_s[j] + dj);
                for (zint i = 0; i < j; ++i) {
                    work[i] = skip(i)
                                  ? 0.0
                                  : poles_s[i] * z[i] / ((poles_s[i] + dsigj) - diflj) / (poles_s[i] + dj);
                }
                for (zint i = j + 1; i < k; ++i) {
                    work[i] = skip(i)
                                  ? 0.0
                                  : poles_s[i] * z[i] / ((poles_s[i] + dsigjp) + difrj) / (poles_s[i] + dj);
                }
                work[0] = -1.0;
                const double norm = dnrm2(k, work, 1);
                dgemv('T', k, nrhs, 1.0, bx, ldbx, work, 1, 0.0, b + j, ldb);
                lascl<double>('G', 0, 0, norm, 1.0, 1, nrhs, b + j, ldb, info);
            }
        }
        // The deflated rows pass unchanged.
        if (k < std::max(m, n)) lacpy<double>('A', n - k, nrhs, bx + k, ldbx, b + k, ldb);
        return;
    }

    // The right secular vectors: column j has components z_j / ((dsigma_j - σ_i)(dsigma_j + σ_i)),
    // normalized by the norms lasd8 kept in difr's second column.
    if (k == 1) {
        dcopy(nrhs, b, ldb, bx, ldbx);
    } else {
        for (zint j = 0; j < k; ++j) {
            const double dsigj = poles_s[j];
            const bool zero = z[j] == 0.0;
            work[j] = zero ? 0.0 : -z[j] / difl[j] / (dsigj + poles_d[j]) / difr_norm[j];
            for (zint i = 0; i < j; ++i) {
                work[i] =
                    zero ? 0.0
                         : z[j] / ((dsigj - poles_s[i + 1]) - difr[i]) / (dsigj + poles_d[i]) / difr_norm[i];
            }
            for (zint i = j + 1; i < k; ++i) {
                work[i] = zero
                              ? 0.0
                              : z[j] / ((dsigj - poles_s[i]) - difl[i]) / (dsigj + poles_d[i]) / difr_norm[i];
            }
            dgemv('T', k, nrhs, 1.0, b, ldb, work, 1, 0.0, bx + j, ldbx);
        }
    }
    // The extra column's rotation, the deflated rows, the permutation back and the deflation
    // rotations in reverse.
    if (sqre == 1) {
        dcopy(nrhs, b + m - 1, ldb, bx + m - 1, ldbx);
        drot(nrhs, bx, ldbx, bx + m - 1, ldbx, c, s);
    }
    if (k < std::max(m, n)) lacpy<double>('A', n - k, nrhs, b + k, ldb, bx + k, ldbx);
    dcopy(nrhs, bx, ldbx, b + nlp1 - 1, ldb);
    if (sqre == 1) dcopy(nrhs, bx + m - 1, ldbx, b + m - 1, ldb);
    for (zint i = 2; i <= n; ++i) dcopy(nrhs, bx + i - 1, ldbx, b + perm[i - 1] - 1, ldb);
    for (zint i = givptr - 1; i >= 0; --i) {
        drot(nrhs, b + givcol[i + ldgcol] - 1, ldb, b + givcol[i] - 1, ldb, givnum[i + ldgnum], -givnum[i]);
    }
}

}  // namespace zor
