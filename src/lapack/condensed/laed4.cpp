// laed4: one root of the secular equation 1 + rho Σ z_j² / (d_j - λ) = 0 of a rank-one update of a
// diagonal matrix, by Ren-Cang Li's rational interpolation with its safeguards.
//
// Each root is computed as tau = λ - d(origin) from the nearer pole of its interval, and every
// difference d_j - λ (delta) is formed as (d_j - d(origin)) - tau, so that the differences the
// eigenvectors are built from are accurate even when λ lies very close to a pole. Each step
// interpolates the secular function by simple rational functions fitted at the current point: two
// poles with the fixed weights of the nearer pole, or the middle way between the two sides when the
// fixed-weight steps stop gaining; three poles (laed6) where the interval's function has a pole on
// both sides worth keeping. A step is kept inside a bracket of the root that shrinks as the sign of
// the function is learnt, and falls back to Newton's step when rounding points it the wrong way.

#include <cmath>

#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

constexpr zint kMaxSteps = 30;

// Whether x lies in [lower, upper]; false for NaN, so that a NaN step falls back to bisection.
bool inside(double x, double lower, double upper) {
    return x >= lower && x <= upper;
}

// The parts of the secular function at the current deltas: psi sums the poles below the split
// (j < below), phi those above it (j >= above), each with its derivative's sum, and `error` the
// running error bound of the summation, accumulated in the published order.
struct Parts {
    double psi = 0.0, dpsi = 0.0, phi = 0.0, dphi = 0.0, error = 0.0;
};

Parts evaluate(zint n, const double* z, const double* delta, zint below, zint above) {
    Parts p;
    for (zint j = 0; j < below; ++j) {
        const double t = z[j] / delta[j];
        p.psi += z[j] * t;
        p.dpsi += t * t;
        p.error += p.psi;
    }
    p.error = std::fabs(p.error);
    for (zint j = n - 1; j >= above; --j) {
        const double t = z[j] / delta[j];
        p.phi += z[j] * t;
        p.dphi += t * t;
        p.error += p.phi;
    }
    return p;
}

// After the function was evaluated at tau: true when it has converged (|f| within eps of its error
// bound) or the steps are spent (info = 1); otherwise the bracket shrinks to the side f's sign says.
bool settled(double f, double error, double tau, zint step, double& lower, double& upper, zint& info) {
    if (std::fabs(f) <= dlamch("E") * error) return true;
    if (step == kMaxSteps) {
        info = 1;
        return true;
    }
    if (f <= 0.0) {
        lower = std::fmax(lower, tau);
    } else {
        upper = std::fmin(upper, tau);
    }
    return false;
}

void shift_deltas(zint n, double* delta, double eta) {
    for (zint j = 0; j < n; ++j) delta[j] -= eta;
}

// The largest root, above d(n): its interval is (d(n), d(n) + rho], the origin is d(n).
void largest_root(zint n, const double* d, const double* z, double* delta, double rho, double& dlam,
                  zint& info) {
    const double rhoinv = 1.0 / rho;
    const zint last = n - 1, prev = n - 2;
    const double mid = rho / 2.0;

    // The initial guess from the two poles d(n - 1), d(n) with the others frozen at the midpoint.
    for (zint j = 0; j < n; ++j) delta[j] = (d[j] - d[last]) - mid;
    double psi = 0.0;
    for (zint j = 0; j < prev; ++j) psi += z[j] * z[j] / delta[j];
    const double c = rhoinv + psi;
    const double w = c + z[prev] * z[prev] / delta[prev] + z[last] * z[last] / delta[last];
    const auto two_pole_root = [&] {
        const double gap = d[last] - d[prev];
        const double a = -c * gap + z[prev] * z[prev] + z[last] * z[last];
        const double b = z[last] * z[last] * gap;
        return a < 0.0 ? 2.0 * b / (std::sqrt(a * a + 4.0 * b * c) - a)
                       : (a + std::sqrt(a * a + 4.0 * b * c)) / (2.0 * c);
    };
    double tau, lower, upper;
    if (w <= 0.0) {
        // The root lies in [d(n) + rho/2, d(n) + rho].
        const double t = z[prev] * z[prev] / (d[last] - d[prev] + rho) + z[last] * z[last] / rho;
        tau = c <= t ? rho : two_pole_root();
        lower = mid;
        upper = rho;
    } else {
        // The root lies in (d(n), d(n) + rho/2).
        tau = two_pole_root();
        lower = 0.0;
        upper = mid;
    }
    for (zint j = 0; j < n; ++j) delta[j] = (d[j] - d[last]) - tau;

    for (zint step = 1;; ++step) {
        Parts p = evaluate(n, z, delta, last, n);
        const double t = z[last] / delta[last];
        p.phi = z[last] * t;
        p.dphi = t * t;
        const double error =
            8.0 * (-p.phi - p.psi) + p.error - p.phi + rhoinv + std::fabs(tau) * (p.dpsi + p.dphi);
        const double f = rhoinv + p.phi + p.psi;
        if (settled(f, error, tau, step, lower, upper, info)) break;
        // The two-pole interpolation with the fixed weights of d(n - 1) and d(n).
        double cc = f - delta[prev] * p.dpsi - delta[last] * p.dphi;
        const double a = (delta[prev] + delta[last]) * f - delta[prev] * delta[last] * (p.dpsi + p.dphi);
        const double b = delta[prev] * delta[last] * f;
        if (step == 1) cc = std::fabs(cc);
        double eta;
        if (cc == 0.0) {
            eta = upper - tau;
        } else if (a >= 0.0) {
            eta = (a + std::sqrt(std::fabs(a * a - 4.0 * b * cc))) / (2.0 * cc);
        } else {
            eta = 2.0 * b / (a - std::sqrt(std::fabs(a * a - 4.0 * b * cc)));
        }
        // The step must go against the sign of f; rounding that says otherwise gets Newton's step.
        if (f * eta > 0.0) eta = -f / (p.dpsi + p.dphi);
        if (!inside(tau + eta, lower, upper)) eta = f < 0.0 ? (upper - tau) / 2.0 : (lower - tau) / 2.0;
        shift_deltas(n, delta, eta);
        tau += eta;
    }
    dlam = d[last] + tau;
}

// A root between d(i) and d(i + 1) (zero-based i < n - 1).
void interior_root(zint n, zint i, const double* d, const double* z, double* delta, double rho, double& dlam,
                   zint& info) {
    const double rhoinv = 1.0 / rho;
    const zint ip1 = i + 1;
    const double gap = d[ip1] - d[i];
    const double mid = gap / 2.0;

    // The sign of the secular function at the midpoint says which half holds the root, and so
    // which pole is the origin; the initial guess is the root with the other poles frozen there.
    for (zint j = 0; j < n; ++j) delta[j] = (d[j] - d[i]) - mid;
    double psi = 0.0, phi = 0.0;
    for (zint j = 0; j < i; ++j) psi += z[j] * z[j] / delta[j];
    for (zint j = n - 1; j > ip1; --j) phi += z[j] * z[j] / delta[j];
    const double c = rhoinv + psi + phi;
    const double w0 = c + z[i] * z[i] / delta[i] + z[ip1] * z[ip1] / delta[ip1];
    const bool orgati = w0 > 0.0;
    double tau, lower, upper;
    if (orgati) {
        const double a = c * gap + z[i] * z[i] + z[ip1] * z[ip1];
        const double b = z[i] * z[i] * gap;
        tau = a > 0.0 ? 2.0 * b / (a + std::sqrt(std::fabs(a * a - 4.0 * b * c)))
                      : (a - std::sqrt(std::fabs(a * a - 4.0 * b * c))) / (2.0 * c);
        lower = 0.0;
        upper = mid;
    } else {
        const double a = c * gap - z[i] * z[i] - z[ip1] * z[ip1];
        const double b = z[ip1] * z[ip1] * gap;
        tau = a < 0.0 ? 2.0 * b / (a - std::sqrt(std::fabs(a * a + 4.0 * b * c)))
                      : -(a + std::sqrt(std::fabs(a * a + 4.0 * b * c))) / (2.0 * c);
        lower = -mid;
        upper = 0.0;
    }
    const zint origin = orgati ? i : ip1;
    for (zint j = 0; j < n; ++j) delta[j] = (d[j] - d[origin]) - tau;

    // The pole at the origin is kept apart from psi (below it) and phi (above it).
    const zint ii = origin;
    bool three_poles = false;  // decided once, from the first evaluation
    bool middle_way = false;   // toggled as the steps gain or stall
    double previous_f = 0.0;
    for (zint step = 1;; ++step) {
        Parts p = evaluate(n, z, delta, ii, ii + 1);
        const double rest = rhoinv + p.phi + p.psi;
        if (step == 1) {
            // Three poles pay when the function without the origin's pole already has the sign
            // that pushes the root away from it, and there are poles on both sides.
            three_poles = (orgati ? rest < 0.0 : rest > 0.0) && ii != 0 && ii != n - 1;
        }
        const double t = z[ii] / delta[ii];
        const double dw = p.dpsi + p.dphi + t * t;
        const double own = z[ii] * t;
        const double f = rest + own;
        const double error =
            8.0 * (p.phi - p.psi) + p.error + 2.0 * rhoinv + 3.0 * std::fabs(own) + std::fabs(tau) * dw;
        if (step == 2) {
            middle_way = orgati ? -f > std::fabs(previous_f) / 10.0 : f > std::fabs(previous_f) / 10.0;
        } else if (step > 2 && f * previous_f > 0.0 && std::fabs(f) > std::fabs(previous_f) / 10.0) {
            middle_way = !middle_way;
        }
        if (settled(f, error, tau, step, lower, upper, info)) break;

        double eta;
        if (!three_poles) {
            // Two poles, d(i) and d(i + 1): with fixed weights (the far pole's weight taken from
            // the derivative), or the middle way (each side's derivative to its own pole).
            double dpsi = p.dpsi, dphi = p.dphi;
            double cc;
            if (!middle_way) {
                cc = orgati ? f - delta[ip1] * dw - (d[i] - d[ip1]) * (z[i] / delta[i]) * (z[i] / delta[i])
                            : f - delta[i] * dw -
                                  (d[ip1] - d[i]) * (z[ip1] / delta[ip1]) * (z[ip1] / delta[ip1]);
            } else {
                if (orgati) {
                    dpsi += t * t;
                } else {
                    dphi += t * t;
                }
                cc = f - delta[i] * dpsi - delta[ip1] * dphi;
            }
            double a = (delta[i] + delta[ip1]) * f - delta[i] * delta[ip1] * dw;
            const double b = delta[i] * delta[ip1] * f;
            if (cc == 0.0) {
                if (a == 0.0) {
                    if (!middle_way) {
                        a = orgati ? z[i] * z[i] + delta[ip1] * delta[ip1] * (dpsi + dphi)
                                   : z[ip1] * z[ip1] + delta[i] * delta[i] * (dpsi + dphi);
                    } else {
                        a = delta[i] * delta[i] * dpsi + delta[ip1] * delta[ip1] * dphi;
                    }
                }
                eta = b / a;
            } else if (a <= 0.0) {
                eta = (a - std::sqrt(std::fabs(a * a - 4.0 * b * cc))) / (2.0 * cc);
            } else {
                eta = 2.0 * b / (a + std::sqrt(std::fabs(a * a - 4.0 * b * cc)));
            }
        } else {
            // Three poles, d(ii - 1), d(ii), d(ii + 1), the rest interpolated by a constant.
            const zint below = ii - 1, above = ii + 1;
            double cc, zz[3];
            if (middle_way) {
                cc = rest - delta[below] * p.dpsi - delta[above] * p.dphi;
                zz[0] = delta[below] * delta[below] * p.dpsi;
                zz[2] = delta[above] * delta[above] * p.dphi;
            } else if (orgati) {
                const double t1 = (z[below] / delta[below]) * (z[below] / delta[below]);
                cc = rest - delta[above] * (p.dpsi + p.dphi) - (d[below] - d[above]) * t1;
                zz[0] = z[below] * z[below];
                zz[2] = delta[above] * delta[above] * ((p.dpsi - t1) + p.dphi);
            } else {
                const double t1 = (z[above] / delta[above]) * (z[above] / delta[above]);
                cc = rest - delta[below] * (p.dpsi + p.dphi) - (d[above] - d[below]) * t1;
                zz[0] = delta[below] * delta[below] * (p.dpsi + (p.dphi - t1));
                zz[2] = z[above] * z[above];
            }
            zz[1] = z[ii] * z[ii];
            laed6(step + 1, orgati, cc, delta + below, zz, f, eta, info);
            if (info != 0) break;
        }
        // The step must go against the sign of f; rounding that says otherwise gets Newton's step.
        if (f * eta >= 0.0) eta = -f / dw;
        if (!inside(tau + eta, lower, upper)) eta = f < 0.0 ? (upper - tau) / 2.0 : (lower - tau) / 2.0;
        shift_deltas(n, delta, eta);
        tau += eta;
        previous_f = f;
    }
    dlam = d[origin] + tau;
}

}  // namespace

void laed4(zint n, zint i, const double* d, const double* z, double* delta, double rho, double& dlam,
           zint& info) {
    info = 0;
    if (n == 1) {
        dlam = d[0] + rho * z[0] * z[0];
        delta[0] = 1.0;
        return;
    }
    if (n == 2) {
        laed5(i, d, z, delta, rho, dlam);
        return;
    }
    if (i == n) {
        largest_root(n, d, z, delta, rho, dlam, info);
    } else {
        interior_root(n, i - 1, d, z, delta, rho, dlam, info);
    }
}

}  // namespace zor
