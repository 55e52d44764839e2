// laed3: the roots of a merge's secular equation and the eigenvectors they give, multiplied back into
// the eigenvector blocks of the two halves.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/lapack.hpp"

namespace zor {

void laed3(zint k, zint n, zint n1, double* d, double* q, zint ldq, double rho, double* dlamda,
           const double* q2, const zint* indx, const zint* ctot, double* w, double* s, zint& info) {
    info = check_arguments("DLAED3", {{k < 0, 1}, {n < k, 2}, {ldq < max_of(1, n), 6}});
    if (info != 0 || k == 0) return;
    // Column j of Q receives the differences dlamda(i) - λ_j (for k <= 2 the eigenvector itself).
    for (zint j = 0; j < k; ++j) {
        laed4(k, j + 1, dlamda, w, q + j * ldq, rho, d[j], info);
        if (info != 0) return;
    }
    if (k == 2) {
        // Only the rows go from the sorted order to the grouped one.
        for (zint j = 0; j < 2; ++j) {
            const double v[2] = {q[j * ldq], q[1 + j * ldq]};
            q[j * ldq] = v[indx[0] - 1];
            q[1 + j * ldq] = v[indx[1] - 1];
        }
    } else if (k > 2) {
        // The Löwner formula: the z for which the computed roots are the exact eigenvalues,
        // z_i² = Π_j (λ_j - d_i) / Π_{j≠i} (d_j - d_i) (rho aside, which the normalisation removes),
        // from the differences alone. Vectors built from it are orthogonal to working accuracy
        // however close the roots are; the signs are those of the original z.
        dcopy(k, w, 1, s, 1);
        dcopy(k, q, ldq + 1, w, 1);
        for (zint j = 0; j < k; ++j) {
            const double* column = q + j * ldq;
            for (zint i = 0; i < j; ++i) w[i] *= column[i] / (dlamda[i] - dlamda[j]);
            for (zint i = j + 1; i < k; ++i) w[i] *= column[i] / (dlamda[i] - dlamda[j]);
        }
        for (zint i = 0; i < k; ++i) w[i] = std::copysign(std::sqrt(-w[i]), s[i]);
        // Eigenvector j: z_i / (d_i - λ_j), normalised, its rows put in the grouped order.
        for (zint j = 0; j < k; ++j) {
            double* column = q + j * ldq;
            for (zint i = 0; i < k; ++i) s[i] = w[i] / column[i];
            const double norm = dnrm2(k, s, 1);
            for (zint i = 0; i < k; ++i) column[i] = s[indx[i] - 1] / norm;
        }
    }

    // Back to the basis of T: the rows of the upper half meet the columns of types 1 and 2, those of
    // the lower half types 2 and 3 (q2 holds those blocks one after the other).
    const zint n2 = n - n1;
    const zint n12 = ctot[0] + ctot[1];
    const zint n23 = ctot[1] + ctot[2];
    lacpy('A', n23, k, q + ctot[0], ldq, s, n23);
    if (n23 != 0) {
        dgemm('N', 'N', n2, k, n23, 1.0, q2 + n1 * n12, n2, s, n23, 0.0, q + n1, ldq);
    } else {
        laset('A', n2, k, 0.0, 0.0, q + n1, ldq);
    }
    lacpy('A', n12, k, q, ldq, s, n12);
    if (n12 != 0) {
        dgemm('N', 'N', n1, k, n12, 1.0, q2, n1, s, n12, 0.0, q, ldq);
    } else {
        laset('A', n1, k, 0.0, 0.0, q, ldq);
    }
}

}  // namespace zor
