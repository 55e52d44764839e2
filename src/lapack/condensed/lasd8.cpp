// lasd8: the secular equation of a merge in the compact form of bidiagonal divide and conquer.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/lapack.hpp"

namespace zor {

// The roots σ_j of the secular equation, with difl(j) = σ_j - dsigma_j and difr(j, 1) = σ_j -
// dsigma_{j+1} kept for lals0 (they are the differences the vectors are built from, computed
// without cancellation), z recomputed from the roots as in lasd3, and vf, vl multiplied by the
// right singular vectors of the merged problem. difr's second column receives the vectors' norms
// for icompq 1.
void lasd8(zint icompq, zint k, double* d, double* z, double* vf, double* vl, double* difl, double* difr,
           zint lddifr, double* dsigma, double* work, zint& info) {
    info = check_arguments("DLASD8", {{icompq < 0 || icompq > 1, 1}, {k < 1, 2}, {lddifr < k, 9}});
    if (info != 0) return;
    if (k == 1) {
        d[0] = std::fabs(z[0]);
        difl[0] = d[0];
        if (icompq == 1) {
            difl[1] = 1.0;
            difr[lddifr] = 1.0;
        }
        return;
    }

    double* delta = work;            // dsigma - σ_j for the current root
    double* sums = work + k;         // dsigma + σ_j
    double* product = work + 2 * k;  // the running products that give the new z
    double rho = dnrm2(k, z, 1);
    lascl<double>('G', 0, 0, rho, 1.0, k, 1, z, k, info);
    rho *= rho;
    for (zint i = 0; i < k; ++i) product[i] = 1.0;

    for (zint j = 0; j < k; ++j) {
        lasd4(k, j + 1, dsigma, z, delta, rho, d[j], sums, info);
        if (info != 0) return;
        product[j] *= delta[j] * sums[j];
        difl[j] = -delta[j];
        if (j + 1 < k) difr[j] = -delta[j + 1];
        for (zint i = 0; i < k; ++i) {
            if (i != j)
                product[i] =
                    product[i] * delta[i] * sums[i] / (dsigma[i] - dsigma[j]) / (dsigma[i] + dsigma[j]);
        }
    }
    for (zint i = 0; i < k; ++i) z[i] = std::copysign(std::sqrt(std::fabs(product[i])), z[i]);

    // Row j of the new right vectors is z_i / ((dsigma_i - σ_j)(dsigma_i + σ_j)), normalized; its
    // products with vf and vl are the new boundary components.
    double* new_vf = sums;
    double* new_vl = product;
    for (zint j = 0; j < k; ++j) {
        const double diflj = difl[j], dj = d[j], dsigj = -dsigma[j];
        const double difrj = j + 1 < k ? -difr[j] : 0.0;
        const double dsigjp = j + 1 < k ? -dsigma[j + 1] : 0.0;
        delta[j] = -z[j] / diflj / (dsigma[j] + dj);
        for (zint i = 0; i < j; ++i) delta[i] = z[i] / ((dsigma[i] + dsigj) - diflj) / (dsigma[i] + dj);
        for (zint i = j + 1; i < k; ++i) delta[i] = z[i] / ((dsigma[i] + dsigjp) + difrj) / (dsigma[i] + dj);
        const double norm = dnrm2(k, delta, 1);
        new_vf[j] = ddot(k, delta, 1, vf, 1) / norm;
        new_vl[j] = ddot(k, delta, 1, vl, 1) / norm;
        if (icompq == 1) difr[j + lddifr] = norm;
    }
    dcopy(k, new_vf, 1, vf, 1);
    dcopy(k, new_vl, 1, vl, 1);
}

}  // namespace zor
