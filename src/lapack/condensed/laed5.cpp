// laed5: one eigenpair of a rank-one update of a 2 by 2 diagonal matrix.

#include <cmath>

#include "lapack/condensed/tridiagonal.hpp"

namespace zor {

namespace {

// delta := (v0, v1) / ||(v0, v1)||. The callers pass z_j / (d_j - λ) written with tau = λ - d(origin)
// and the gap, quotients that never cancel.
void unit_vector(double v0, double v1, double* delta) {
    const double norm = std::sqrt(v0 * v0 + v1 * v1);
    delta[0] = v0 / norm;
    delta[1] = v1 / norm;
}

}  // namespace

void laed5(zint i, const double* d, const double* z, double* delta, double rho, double& dlam) {
    const double gap = d[1] - d[0];
    const double z0 = z[0] * z[0], z1 = z[1] * z[1];
    // The smaller root lies in (d0, d1): relative to d0 when it is in the lower half of the gap (w > 0,
    // the secular function positive at the midpoint), relative to d1 otherwise. The larger root lies
    // above d1 and is taken relative to d1.
    if (i == 1 && 1.0 + 2.0 * rho * (z1 - z0) / gap > 0.0) {
        const double b = gap + rho * (z0 + z1);
        const double c = rho * z0 * gap;
        const double tau = 2.0 * c / (b + std::sqrt(std::fabs(b * b - 4.0 * c)));  // b > 0
        dlam = d[0] + tau;
        unit_vector(-z[0] / tau, z[1] / (gap - tau), delta);
        return;
    }
    const double b = -gap + rho * (z0 + z1);
    const double c = rho * z1 * gap;
    const double root = std::sqrt(b * b + 4.0 * c);
    double tau;
    if (i == 1) {
        tau = b > 0.0 ? -2.0 * c / (b + root) : (b - root) / 2.0;
    } else {
        tau = b > 0.0 ? (b + root) / 2.0 : 2.0 * c / (-b + root);
    }
    dlam = d[1] + tau;
    unit_vector(-z[0] / (gap + tau), -z[1] / tau, delta);
}

}  // namespace zor
