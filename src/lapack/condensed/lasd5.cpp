// lasd5: the secular equation of bidiagonal divide and conquer for two poles, in closed form.

#include <cmath>

#include "lapack/condensed/bidiagonal.hpp"

namespace zor {

// The roots are found as τ = σ² - d_k² from a quadratic written so that no difference cancels,
// then σ - d_k = τ / (d_k + σ); delta and work get d_j - σ and d_j + σ from those differences.
void lasd5(zint i, const double* d, const double* z, double* delta, double rho, double& dsigma,
           double* work) {
    const double gap = d[1] - d[0];
    const double gap_squares = gap * (d[1] + d[0]);
    const double weight = rho * (z[0] * z[0] + z[1] * z[1]);
    if (i == 1) {
        // The sign of the secular function at the midpoint of d_1² and d_2² tells which pole is
        // nearer the root: that one becomes the origin.
        const double w =
            1.0 + 4.0 * rho * (z[1] * z[1] / (d[0] + 3.0 * d[1]) - z[0] * z[0] / (3.0 * d[0] + d[1])) / gap;
        if (w > 0.0) {
            const double b = gap_squares + weight;
            const double c = rho * z[0] * z[0] * gap_squares;
            double tau = 2.0 * c / (b + std::sqrt(std::fabs(b * b - 4.0 * c)));
            tau = tau / (d[0] + std::sqrt(d[0] * d[0] + tau));
            dsigma = d[0] + tau;
            delta[0] = -tau;
            delta[1] = gap - tau;
            work[0] = 2.0 * d[0] + tau;
            work[1] = (d[0] + tau) + d[1];
            return;
        }
        const double b = -gap_squares + weight;
        const double c = rho * z[1] * z[1] * gap_squares;
        double tau =
            b > 0.0 ? -2.0 * c / (b + std::sqrt(b * b + 4.0 * c)) : (b - std::sqrt(b * b + 4.0 * c)) / 2.0;
        tau = tau / (d[1] + std::sqrt(std::fabs(d[1] * d[1] + tau)));
        dsigma = d[1] + tau;
        delta[0] = -(gap + tau);
        delta[1] = -tau;
        work[0] = d[0] + tau + d[1];
        work[1] = 2.0 * d[1] + tau;
        return;
    }
    // The larger root lies above d_2.
    const double b = -gap_squares + weight;
    const double c = rho * z[1] * z[1] * gap_squares;
    double tau =
        b > 0.0 ? (b + std::sqrt(b * b + 4.0 * c)) / 2.0 : 2.0 * c / (-b + std::sqrt(b * b + 4.0 * c));
    tau = tau / (d[1] + std::sqrt(d[1] * d[1] + tau));
    dsigma = d[1] + tau;
    delta[0] = -(gap + tau);
    delta[1] = -tau;
    work[0] = d[0] + tau + d[1];
    work[1] = 2.0 * d[1] + tau;
}

}  // namespace zor
