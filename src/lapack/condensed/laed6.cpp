// laed6: the root nearest the origin of a secular function with three poles, by the cubically
// convergent iteration of Gragg, Thornton and Warner.

#include <algorithm>
#include <cmath>

#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

constexpr zint kMaxSteps = 40;

// A root of c η² - a η + b = 0, the one the iteration steps to, in the form free of cancellation;
// (a, b, c) are first divided by their largest magnitude.
double quadratic_step(double a, double b, double c) {
    const double scale = std::max({std::fabs(a), std::fabs(b), std::fabs(c)});
    a /= scale;
    b /= scale;
    c /= scale;
    if (c == 0.0) return b / a;
    if (a <= 0.0) return (a - std::sqrt(std::fabs(a * a - 4.0 * b * c))) / (2.0 * c);
    return 2.0 * b / (a + std::sqrt(std::fabs(a * a - 4.0 * b * c)));
}

// Whether x lies in [lower, upper]; false for NaN, so a NaN step falls back to bisection.
bool inside(double x, double lower, double upper) {
    return x >= lower && x <= upper;
}

}  // namespace

void laed6(zint kniter, bool orgati, double rho, const double* d, const double* z, double finit, double& tau,
           zint& info) {
    info = 0;
    // The bracket: between the origin and the pole on the side where f changes sign.
    double lower = orgati ? d[1] : d[0];
    double upper = orgati ? d[2] : d[1];
    if (finit < 0.0) {
        lower = 0.0;
    } else {
        upper = 0.0;
    }

    tau = 0.0;
    if (kniter == 2) {
        // Start from the root of the two nearest poles, the third folded into the constant at the
        // midpoint of the interval.
        double a, b, c;
        if (orgati) {
            const double half = (d[2] - d[1]) / 2.0;
            c = rho + z[0] / ((d[0] - d[1]) - half);
            a = c * (d[1] + d[2]) + z[1] + z[2];
            b = c * d[1] * d[2] + z[1] * d[2] + z[2] * d[1];
        } else {
            const double half = (d[0] - d[1]) / 2.0;
            c = rho + z[2] / ((d[2] - d[1]) - half);
            a = c * (d[0] + d[1]) + z[0] + z[1];
            b = c * d[0] * d[1] + z[0] * d[1] + z[1] * d[0];
        }
        tau = quadratic_step(a, b, c);
        if (!inside(tau, lower, upper)) tau = (lower + upper) / 2.0;
        if (d[0] == tau || d[1] == tau || d[2] == tau) {
            tau = 0.0;
        } else {
            const double f = finit + tau * z[0] / (d[0] * (d[0] - tau)) + tau * z[1] / (d[1] * (d[1] - tau)) +
                             tau * z[2] / (d[2] * (d[2] - tau));
            if (f <= 0.0) {
                lower = tau;
            } else {
                upper = tau;
            }
            // A start no better than the origin is dropped.
            if (std::fabs(finit) <= std::fabs(f)) tau = 0.0;
        }
    }

    // 1 / (d - tau)³ may overflow when a pole is within the cube root of the underflow threshold of
    // tau: then the problem is scaled up by a power of two (the inputs are of order one here, so this
    // is safe) and tau scaled back at the end.
    const double small1 = dlamch("A");  // 2^-340, about the cube root of the safe minimum
    const double gap = orgati ? std::min(std::fabs(d[1] - tau), std::fabs(d[2] - tau))
                              : std::min(std::fabs(d[0] - tau), std::fabs(d[1] - tau));
    double scale = 1.0, unscale = 1.0;
    if (gap <= small1) {
        const bool tiny = gap <= small1 * small1;
        scale = tiny ? 1.0 / (small1 * small1) : 1.0 / small1;
        unscale = tiny ? small1 * small1 : small1;
    }
    double ds[3], zs[3];
    for (int i = 0; i < 3; ++i) {
        ds[i] = d[i] * scale;
        zs[i] = z[i] * scale;
    }
    tau *= scale;
    lower *= scale;
    upper *= scale;

    // f(tau) = finit + tau Σ z / (d (d - tau)) with its first two derivatives' sums, at the start and
    // after each step. The iterates move monotonically (up when finit < 0, down otherwise); a step
    // leaving the bracket is replaced by bisection. The start is kept only when it is a root.
    const double eps = dlamch("E");
    double f = 0.0, df = 0.0, ddf = 0.0;
    for (zint step = 1;; ++step) {
        if (step > 1) {
            const double t1 = orgati ? ds[1] - tau : ds[0] - tau;
            const double t2 = orgati ? ds[2] - tau : ds[1] - tau;
            const double a = (t1 + t2) * f - t1 * t2 * df;
            const double b = t1 * t2 * f;
            const double c = f - (t1 + t2) * df + t1 * t2 * ddf;
            double eta = quadratic_step(a, b, c);
            if (f * eta >= 0.0) eta = -f / df;  // the cubic step went the wrong way: Newton
            tau += eta;
            if (!inside(tau, lower, upper)) tau = (lower + upper) / 2.0;
        }
        double fc = 0.0, error_bound = 0.0;
        df = 0.0;
        ddf = 0.0;
        for (int i = 0; i < 3; ++i) {
            const double t = 1.0 / (ds[i] - tau);
            const double u1 = zs[i] * t;
            const double u2 = u1 * t;
            const double u4 = u1 / ds[i];
            fc += u4;
            error_bound += std::fabs(u4);
            df += u2;
            ddf += u2 * t;
        }
        f = finit + tau * fc;
        error_bound = 8.0 * (std::fabs(finit) + std::fabs(tau) * error_bound) + std::fabs(tau) * df;
        if (step == 1 ? f == 0.0 : std::fabs(f) <= eps * error_bound) break;
        if (step == kMaxSteps) {
            info = 1;
            break;
        }
        if (f <= 0.0) {
            lower = tau;
        } else {
            upper = tau;
        }
    }
    tau *= unscale;
}

}  // namespace zor
