// lasd3: the new singular values and vectors of a bidiagonal divide-and-conquer merge.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/condensed/bidiagonal_support.hpp"
#include "lapack/lapack.hpp"

namespace zor {

// The values are the roots of the secular equation of diag(dsigma) + e_1 zᵀ. Vectors computed
// straight from the computed roots lose orthogonality when roots are close; instead z is recomputed
// from the roots (Gu and Eisenstat's Löwner formula) so that the computed roots are the exact
// values of a nearby problem, whose vectors are then exactly orthogonal up to rounding. The
// updates multiply only the nonzero blocks of U2 and VT2, as grouped by lasd2 (ctot: the counts of
// the column types, idxc: the grouping).
void lasd3(zint nl, zint nr, zint sqre, zint k, double* d, double* q, zint ldq, double* dsigma, double* u,
           zint ldu, double* u2, zint ldu2, double* vt, zint ldvt, double* vt2, zint ldvt2, const zint* idxc,
           const zint* ctot, double* z, zint& info) {
    const zint n = nl + nr + 1, m = n + sqre;
    const zint nlp1 = nl + 1, nlp2 = nl + 2;
    const auto at = bidiagonal::element;
    info = check_arguments("DLASD3", {{k < 1 || k > n, 4},
                                      {ldq < k, 7},
                                      {ldu < n, 10},
                                      {ldu2 < n, 12},
                                      {ldvt < m, 14},
                                      {ldvt2 < m, 16},
                                      {nl < 1, 1},
                                      {nr < 1, 2},
                                      {sqre != 1 && sqre != 0, 3}});
    if (info != 0) return;

    if (k == 1) {
        d[0] = std::fabs(z[0]);
        dcopy(m, vt2, ldvt2, vt, ldvt);
        const double sign = z[0] > 0.0 ? 1.0 : -1.0;
        for (zint i = 0; i < n; ++i) u[i] = sign * u2[i];
        return;
    }

    // z is kept (its signs) in q's first column, then normalized; rho = |z|².
    dcopy(k, z, 1, q, 1);
    double rho = dnrm2(k, z, 1);
    lascl<double>('G', 0, 0, rho, 1.0, k, 1, z, k, info);
    rho *= rho;

    // The roots: column j of U receives dsigma - σ_j, column j of VT dsigma + σ_j.
    for (zint j = 1; j <= k; ++j) {
        lasd4(k, j, dsigma, z, &at(u, ldu, 1, j), rho, d[j - 1], &at(vt, ldvt, 1, j), info);
        if (info != 0) return;
    }

    // z recomputed from the roots: z_i² = Π_j (σ_j² - dsigma_i²) / Π_{j≠i} (dsigma_j² - dsigma_i²).
    for (zint i = 1; i <= k; ++i) {
        double zi = at(u, ldu, i, k) * at(vt, ldvt, i, k);
        for (zint j = 1; j < i; ++j) {
            zi *= at(u, ldu, i, j) * at(vt, ldvt, i, j) / (dsigma[i - 1] - dsigma[j - 1]) /
                  (dsigma[i - 1] + dsigma[j - 1]);
        }
        for (zint j = i; j < k; ++j) {
            zi *= at(u, ldu, i, j) * at(vt, ldvt, i, j) / (dsigma[i - 1] - dsigma[j]) /
                  (dsigma[i - 1] + dsigma[j]);
        }
        z[i - 1] = std::copysign(std::sqrt(std::fabs(zi)), q[i - 1]);
    }

    // The singular vectors of the merged diagonal-plus-row matrix: the left ones, normalized and
    // permuted into q; VT keeps z_j / (dsigma_j² - σ_i²) for the right ones.
    for (zint i = 1; i <= k; ++i) {
        at(vt, ldvt, 1, i) = z[0] / at(u, ldu, 1, i) / at(vt, ldvt, 1, i);
        at(u, ldu, 1, i) = -1.0;
        for (zint j = 2; j <= k; ++j) {
            at(vt, ldvt, j, i) = z[j - 1] / at(u, ldu, j, i) / at(vt, ldvt, j, i);
            at(u, ldu, j, i) = dsigma[j - 1] * at(vt, ldvt, j, i);
        }
        const double norm = dnrm2(k, &at(u, ldu, 1, i), 1);
        at(q, ldq, 1, i) = at(u, ldu, 1, i) / norm;
        for (zint j = 2; j <= k; ++j) at(q, ldq, j, i) = at(u, ldu, idxc[j - 1], i) / norm;
    }

    // U := U2 Q by blocks: the upper rows take the type-1 and dense columns, the middle row is
    // q's first row, the lower rows take the type-2 and dense columns.
    if (k == 2) {
        dgemm('N', 'N', n, k, k, 1.0, u2, ldu2, q, ldq, 0.0, u, ldu);
    } else {
        const zint dense = 2 + ctot[0] + ctot[1];
        if (ctot[0] > 0) {
            dgemm('N', 'N', nl, k, ctot[0], 1.0, &at(u2, ldu2, 1, 2), ldu2, &at(q, ldq, 2, 1), ldq, 0.0, u,
                  ldu);
            if (ctot[2] > 0) {
                dgemm('N', 'N', nl, k, ctot[2], 1.0, &at(u2, ldu2, 1, dense), ldu2, &at(q, ldq, dense, 1),
                      ldq, 1.0, u, ldu);
            }
        } else if (ctot[2] > 0) {
            dgemm('N', 'N', nl, k, ctot[2], 1.0, &at(u2, ldu2, 1, dense), ldu2, &at(q, ldq, dense, 1), ldq,
                  0.0, u, ldu);
        } else {
            lacpy<double>('F', nl, k, u2, ldu2, u, ldu);
        }
        dcopy(k, q, ldq, &at(u, ldu, nlp1, 1), ldu);
        const zint first = 2 + ctot[0];
        dgemm('N', 'N', nr, k, ctot[1] + ctot[2], 1.0, &at(u2, ldu2, nlp2, first), ldu2,
              &at(q, ldq, first, 1), ldq, 0.0, &at(u, ldu, nlp2, 1), ldu);
    }

    // The right vectors, normalized and permuted into q's rows.
    for (zint i = 1; i <= k; ++i) {
        const double norm = dnrm2(k, &at(vt, ldvt, 1, i), 1);
        at(q, ldq, i, 1) = at(vt, ldvt, 1, i) / norm;
        for (zint j = 2; j <= k; ++j) at(q, ldq, i, j) = at(vt, ldvt, idxc[j - 1], i) / norm;
    }

    // VT := Q VT2 by blocks: the left columns from the first row, the type-1 and the dense rows;
    // the right columns from the first row, the type-2 and the dense rows (the first row and
    // column are moved next to them so that one product covers them).
    if (k == 2) {
        dgemm('N', 'N', k, m, k, 1.0, q, ldq, vt2, ldvt2, 0.0, vt, ldvt);
        return;
    }
    dgemm('N', 'N', k, nlp1, 1 + ctot[0], 1.0, q, ldq, vt2, ldvt2, 0.0, vt, ldvt);
    const zint dense = 2 + ctot[0] + ctot[1];
    if (ctot[2] > 0) {
        dgemm('N', 'N', k, nlp1, ctot[2], 1.0, &at(q, ldq, 1, dense), ldq, &at(vt2, ldvt2, dense, 1), ldvt2,
              1.0, vt, ldvt);
    }
    const zint first = ctot[0] + 1;
    if (first > 1) {
        for (zint i = 1; i <= k; ++i) at(q, ldq, i, first) = at(q, ldq, i, 1);
        for (zint i = nlp2; i <= m; ++i) at(vt2, ldvt2, first, i) = at(vt2, ldvt2, 1, i);
    }
    dgemm('N', 'N', k, nr + sqre, 1 + ctot[1] + ctot[2], 1.0, &at(q, ldq, 1, first), ldq,
          &at(vt2, ldvt2, first, nlp2), ldvt2, 0.0, &at(vt, ldvt, 1, nlp2), ldvt);
}

}  // namespace zor
