// laed6: the root nearest the origin of a secular function with three poles, by the cubically
// convergent scheme of Gragg, Thornton and Warner, safeguarded by bisection.

#include <algorithm>
#include <cmath>

#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/tuning/tuning.hpp"

namespace zor {

namespace {

constexpr zint kMaxIterations = 40;

// The root of c x² - a x + b nearer zero (c may be zero), in the form that does not cancel.
double smaller_root(double a, double b, double c) {
    if (c == 0.0) return b / a;
    const double root = std::sqrt(std::fabs(a * a - 4.0 * b * c));
    return a <= 0.0 ? (a - root) / (2.0 * c) : 2.0 * b / (a + root);
}

}  // namespace

// f(x) = rho + Σ z_j / (d_j - x) = finit + x Σ z_j / (d_j (d_j - x)): the second form keeps the
// value at zero exact, and the root is bracketed by zero and the nearer pole of the gap.
void laed6(zint kniter, bool orgati, double rho, const double* d, const double* z, double finit, double& tau,
           zint& info) {
    info = 0;
    double lower = orgati ? d[1] : d[0];
    double upper = orgati ? d[2] : d[1];
    if (finit < 0.0) {
        lower = 0.0;
    } else {
        upper = 0.0;
    }

    tau = 0.0;
    if (kniter == 2) {
        // The first step of an outer iteration: a guess from the two poles of the gap with the
        // third folded into the constant.
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
        const double scale = std::max({std::fabs(a), std::fabs(b), std::fabs(c)});
        tau = smaller_root(a / scale, b / scale, c / scale);
        if (tau < lower || tau > upper) tau = (lower + upper) / 2.0;
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
            if (std::fabs(finit) <= std::fabs(f)) tau = 0.0;
        }
    }

    // Poles closer to the guess than the cube root of the underflow threshold would overflow the
    // third powers below: scale everything up by a power of two (the inputs are O(1) here).
    const double eps = dlamch("E");
    const double small1 = std::ldexp(1.0, static_cast<int>(std::log2(dlamch("S")) / 3.0));
    const double small2 = small1 * small1;
    double dscale[3], zscale[3];
    double scale_back = 1.0;
    const double nearest = orgati ? std::min(std::fabs(d[1] - tau), std::fabs(d[2] - tau))
                                  : std::min(std::fabs(d[0] - tau), std::fabs(d[1] - tau));
    double factor = 1.0;
    if (nearest <= small1) {
        factor = nearest <= small2 ? 1.0 / small2 : 1.0 / small1;
        scale_back = nearest <= small2 ? small2 : small1;
    }
    for (int j = 0; j < 3; ++j) {
        dscale[j] = d[j] * factor;
        zscale[j] = z[j] * factor;
    }
    tau *= factor;
    lower *= factor;
    upper *= factor;

    // f and its first two derivatives at tau (fc is Σ z_j / (d_j (d_j - tau))).
    double fc = 0.0, df = 0.0, ddf = 0.0;
    for (int j = 0; j < 3; ++j) {
        const double t = 1.0 / (dscale[j] - tau);
        const double t1 = zscale[j] * t, t2 = t1 * t;
        fc += t1 / dscale[j];
        df += t2;
        ddf += t2 * t;
    }
    double f = finit + tau * fc;
    if (std::fabs(f) > 0.0) {
        if (f <= 0.0) {
            lower = tau;
        } else {
            upper = tau;
        }
        // The iteration moves monotonically: up from a negative finit, down from a positive one.
        bool converged = false;
        for (zint iteration = 2; iteration <= kMaxIterations && !converged; ++iteration) {
            const double t1 = orgati ? dscale[1] - tau : dscale[0] - tau;
            const double t2 = orgati ? dscale[2] - tau : dscale[1] - tau;
            double a = (t1 + t2) * f - t1 * t2 * df;
            double b = t1 * t2 * f;
            double c = f - (t1 + t2) * df + t1 * t2 * ddf;
            const double scale = std::max({std::fabs(a), std::fabs(b), std::fabs(c)});
            double eta = smaller_root(a / scale, b / scale, c / scale);
            if (f * eta >= 0.0) eta = -f / df;
            tau += eta;
            if (tau < lower || tau > upper) tau = (lower + upper) / 2.0;

            fc = 0.0;
            df = 0.0;
            ddf = 0.0;
            double erretm = 0.0;
            bool at_pole = false;
            for (int j = 0; j < 3; ++j) {
                if (dscale[j] - tau == 0.0) {
                    at_pole = true;
                    break;
                }
                const double t = 1.0 / (dscale[j] - tau);
                const double w1 = zscale[j] * t, w2 = w1 * t, w4 = w1 / dscale[j];
                fc += w4;
                erretm += std::fabs(w4);
                df += w2;
                ddf += w2 * t;
            }
            if (at_pole) {
                converged = true;
                break;
            }
            f = finit + tau * fc;
            erretm = 8.0 * (std::fabs(finit) + std::fabs(tau) * erretm) + std::fabs(tau) * df;
            if (std::fabs(f) <= 4.0 * eps * erretm || (upper - lower) <= 4.0 * eps * std::fabs(tau)) {
                converged = true;
            } else if (f <= 0.0) {
                lower = tau;
            } else {
                upper = tau;
            }
        }
        if (!converged) info = 1;
    }
    tau *= scale_back;
}

}  // namespace zor
