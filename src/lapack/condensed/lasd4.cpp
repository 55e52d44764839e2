// lasd4: one root of the secular equation of bidiagonal divide and conquer, by Ren-Cang Li's
// rational interpolation with two poles (or three where the root sits between close ones), kept
// inside a shrinking bracket.

#include <algorithm>
#include <cmath>

#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/tuning/tuning.hpp"

namespace zor {

namespace {

constexpr zint kMaxIterations = 400;

// The secular function f(σ) = 1/rho + Σ z_j² / ((d_j - σ)(d_j + σ)) split at the origin pole ii:
// psi sums the poles below it, phi those above, and the origin's own term is added apart. delta
// and work hold d_j - σ and d_j + σ; all differences are kept relative to the origin pole so that
// they do not cancel.
struct Secular {
    zint n;
    const double* d;
    const double* z;
    double* delta;
    double* work;
    double rhoinv;

    double psi = 0.0, dpsi = 0.0, phi = 0.0, dphi = 0.0, erretm = 0.0;

    // psi over the poles j < below_end, phi over j > above_start; erretm their error bound.
    void evaluate(zint below_end, zint above_start) {
        psi = dpsi = phi = dphi = erretm = 0.0;
        for (zint j = 0; j < below_end; ++j) {
            const double t = z[j] / (work[j] * delta[j]);
            psi += z[j] * t;
            dpsi += t * t;
            erretm += psi;
        }
        erretm = std::fabs(erretm);
        for (zint j = n - 1; j > above_start; --j) {
            const double t = z[j] / (work[j] * delta[j]);
            phi += z[j] * t;
            dphi += t * t;
            erretm += phi;
        }
    }
    void move(double eta) {
        for (zint j = 0; j < n; ++j) {
            work[j] += eta;
            delta[j] -= eta;
        }
    }
    void place(zint origin, double tau) {
        for (zint j = 0; j < n; ++j) {
            work[j] = d[j] + d[origin] + tau;
            delta[j] = (d[j] - d[origin]) - tau;
        }
    }
};

// The largest root, above d_n: the interpolation uses the two top poles.
void largest_root(Secular& f, double rho, double& sigma, zint& info) {
    const zint n = f.n;
    const double* d = f.d;
    const double* z = f.z;
    const double eps = dlamch("E");
    const zint top = n - 1, next = n - 2;

    // The first guess from the two top poles with the rest frozen at σ² = d_n² + rho/2.
    const double half = rho / 2.0;
    f.place(top, half / (d[top] + std::sqrt(d[top] * d[top] + half)));
    double psi = 0.0;
    for (zint j = 0; j < n - 2; ++j) psi += z[j] * z[j] / (f.delta[j] * f.work[j]);
    double c = f.rhoinv + psi;
    const double w0 = c + z[next] * z[next] / (f.delta[next] * f.work[next]) +
                      z[top] * z[top] / (f.delta[top] * f.work[top]);
    const double delsq = (d[top] - d[next]) * (d[top] + d[next]);
    const auto two_pole_guess = [&] {
        const double a = -c * delsq + z[next] * z[next] + z[top] * z[top];
        const double b = z[top] * z[top] * delsq;
        return a < 0.0 ? 2.0 * b / (std::sqrt(a * a + 4.0 * b * c) - a)
                       : (a + std::sqrt(a * a + 4.0 * b * c)) / (2.0 * c);
    };
    double tau2;  // the guess of σ² - d_n²
    if (w0 <= 0.0) {
        // The root lies above d_n² + rho/2; rho itself bounds it when the guess would exceed it.
        const double root = std::sqrt(d[top] * d[top] + rho);
        const double bound =
            z[next] * z[next] / ((d[next] + root) * (d[top] - d[next] + rho / (d[top] + root))) +
            z[top] * z[top] / rho;
        tau2 = c <= bound ? rho : two_pole_guess();
    } else {
        tau2 = two_pole_guess();
    }
    double tau = tau2 / (d[top] + std::sqrt(d[top] * d[top] + tau2));  // σ - d_n
    sigma = d[top] + tau;
    f.place(top, tau);

    const auto evaluate = [&](double& w) {
        f.evaluate(top, top);
        const double t = z[top] / (f.work[top] * f.delta[top]);
        f.phi = z[top] * t;
        f.dphi = t * t;
        f.erretm = 8.0 * (-f.phi - f.psi) + f.erretm - f.phi + f.rhoinv;
        w = f.rhoinv + f.phi + f.psi;
    };
    double w;
    evaluate(w);
    for (zint iteration = 2; iteration <= kMaxIterations; ++iteration) {
        if (std::fabs(w) <= eps * f.erretm) return;
        const double dtnsq1 = f.work[next] * f.delta[next];
        const double dtnsq = f.work[top] * f.delta[top];
        c = w - dtnsq1 * f.dpsi - dtnsq * f.dphi;
        const double a = (dtnsq + dtnsq1) * w - dtnsq * dtnsq1 * (f.dpsi + f.dphi);
        const double b = dtnsq * dtnsq1 * w;
        const bool first = iteration == 2;
        if (first && c < 0.0) c = std::fabs(c);
        double eta;
        if (c == 0.0) {
            eta = first ? rho - sigma * sigma : -w / (f.dpsi + f.dphi);
        } else if (a >= 0.0) {
            eta = (a + std::sqrt(std::fabs(a * a - 4.0 * b * c))) / (2.0 * c);
        } else {
            eta = 2.0 * b / (a - std::sqrt(std::fabs(a * a - 4.0 * b * c)));
        }
        // The step must oppose w; roundoff that turned it gets a Newton step instead.
        if (w * eta > 0.0) eta = -w / (f.dpsi + f.dphi);
        if (first) {
            if (eta - dtnsq > rho) eta = rho + dtnsq;
        } else if (eta - dtnsq <= 0.0) {
            eta /= 2.0;
        }
        eta = eta / (sigma + std::sqrt(eta + sigma * sigma));
        tau += eta;
        sigma += eta;
        f.move(eta);
        evaluate(w);
    }
    info = 1;
}

// A root between d_i and d_{i+1} (zero-based i).
void inner_root(Secular& f, zint i, double& sigma, zint& info) {
    const zint n = f.n;
    const double* d = f.d;
    const double* z = f.z;
    const double eps = dlamch("E");
    const zint ip1 = i + 1;

    // Which end of the gap is nearer the root: the sign of f at the midpoint of d_i² and d_{i+1}².
    const double delsq = (d[ip1] - d[i]) * (d[ip1] + d[i]);
    const double delsq2 = delsq / 2.0;
    const double sq2 = std::sqrt((d[i] * d[i] + d[ip1] * d[ip1]) / 2.0);
    f.place(i, delsq2 / (d[i] + sq2));
    double psi = 0.0, phi = 0.0;
    for (zint j = 0; j < i; ++j) psi += z[j] * z[j] / (f.work[j] * f.delta[j]);
    for (zint j = n - 1; j > ip1; --j) phi += z[j] * z[j] / (f.work[j] * f.delta[j]);
    double c = f.rhoinv + psi + phi;
    double w = c + z[i] * z[i] / (f.work[i] * f.delta[i]) + z[ip1] * z[ip1] / (f.work[ip1] * f.delta[ip1]);

    // The bracket [sglb, sgub] of σ - d_origin, and the first guess from the gap's two poles.
    const bool orgati = w > 0.0;
    bool geomavg = false;
    zint ii;
    double sglb, sgub, tau;
    if (orgati) {
        ii = i;
        sglb = 0.0;
        sgub = delsq2 / (d[i] + sq2);
        const double a = c * delsq + z[i] * z[i] + z[ip1] * z[ip1];
        const double b = z[i] * z[i] * delsq;
        const double tau2 = a > 0.0 ? 2.0 * b / (a + std::sqrt(std::fabs(a * a - 4.0 * b * c)))
                                    : (a - std::sqrt(std::fabs(a * a - 4.0 * b * c))) / (2.0 * c);
        tau = tau2 / (d[i] + std::sqrt(d[i] * d[i] + tau2));
        // A tiny pole with a tiny weight far below the next: the root is near d_i by a factor, not
        // by a difference, and bisection in the geometric mean finds it faster.
        const double root_eps = std::sqrt(eps);
        if (d[i] <= root_eps * d[ip1] && std::fabs(z[i]) <= root_eps && d[i] > 0.0) {
            tau = std::min(10.0 * d[i], sgub);
            geomavg = true;
        }
    } else {
        ii = ip1;
        sglb = -delsq2 / (d[ii] + sq2);
        sgub = 0.0;
        const double a = c * delsq - z[i] * z[i] - z[ip1] * z[ip1];
        const double b = z[ip1] * z[ip1] * delsq;
        const double tau2 = a < 0.0 ? 2.0 * b / (a - std::sqrt(std::fabs(a * a + 4.0 * b * c)))
                                    : -(a + std::sqrt(std::fabs(a * a + 4.0 * b * c))) / (2.0 * c);
        tau = tau2 / (d[ip1] + std::sqrt(std::fabs(d[ip1] * d[ip1] + tau2)));
    }
    sigma = d[ii] + tau;
    f.place(ii, tau);
    const zint iim1 = ii - 1, iip1 = ii + 1;

    double dw = 0.0;
    double origin_term = 0.0;
    const auto evaluate = [&] {
        f.evaluate(ii, ii);
        const double t = z[ii] / (f.work[ii] * f.delta[ii]);
        dw = f.dpsi + f.dphi + t * t;
        origin_term = z[ii] * t;
        w = f.rhoinv + f.phi + f.psi + origin_term;
        f.erretm = 8.0 * (f.phi - f.psi) + f.erretm + 2.0 * f.rhoinv + 3.0 * std::fabs(origin_term);
    };
    f.evaluate(ii, ii);
    // Three poles are used when the root is on the far side of the origin's neighbour.
    const double w_without_origin = f.rhoinv + f.phi + f.psi;
    bool three_poles = (orgati ? w_without_origin < 0.0 : w_without_origin > 0.0) && ii != 0 && ii != n - 1;
    evaluate();

    // The step of the interpolation with the gap's two poles; `swtch` selects the variant that
    // takes the origin's derivative into the other side's sum.
    const auto two_pole_step = [&](bool swtch) {
        const double dtipsq = f.work[ip1] * f.delta[ip1];
        const double dtisq = f.work[i] * f.delta[i];
        double cc;
        if (!swtch) {
            cc = orgati ? w - dtipsq * dw + delsq * (z[i] / dtisq) * (z[i] / dtisq)
                        : w - dtisq * dw - delsq * (z[ip1] / dtipsq) * (z[ip1] / dtipsq);
        } else {
            const double t = z[ii] / (f.work[ii] * f.delta[ii]);
            if (orgati) {
                f.dpsi += t * t;
            } else {
                f.dphi += t * t;
            }
            cc = w - dtisq * f.dpsi - dtipsq * f.dphi;
        }
        double a = (dtipsq + dtisq) * w - dtipsq * dtisq * dw;
        const double b = dtipsq * dtisq * w;
        if (cc == 0.0) {
            if (a == 0.0) {
                if (!swtch) {
                    a = orgati ? z[i] * z[i] + dtipsq * dtipsq * (f.dpsi + f.dphi)
                               : z[ip1] * z[ip1] + dtisq * dtisq * (f.dpsi + f.dphi);
                } else {
                    a = dtisq * dtisq * f.dpsi + dtipsq * dtipsq * f.dphi;
                }
            }
            return b / a;
        }
        if (a <= 0.0) return (a - std::sqrt(std::fabs(a * a - 4.0 * b * cc))) / (2.0 * cc);
        return 2.0 * b / (a + std::sqrt(std::fabs(a * a - 4.0 * b * cc)));
    };
    // The step of the interpolation with three poles, solved by laed6; false when it failed.
    const auto three_pole_step = [&](bool swtch, zint iteration, double& eta) {
        const double dtiim = f.work[iim1] * f.delta[iim1];
        const double dtiip = f.work[iip1] * f.delta[iip1];
        const double rest = f.rhoinv + f.psi + f.phi;
        double cc, zz[3], dd[3];
        if (swtch) {
            cc = rest - dtiim * f.dpsi - dtiip * f.dphi;
            zz[0] = dtiim * dtiim * f.dpsi;
            zz[2] = dtiip * dtiip * f.dphi;
        } else if (orgati) {
            const double t1 = (z[iim1] / dtiim) * (z[iim1] / dtiim);
            cc = rest - dtiip * (f.dpsi + f.dphi) - (d[iim1] - d[iip1]) * (d[iim1] + d[iip1]) * t1;
            zz[0] = z[iim1] * z[iim1];
            zz[2] = f.dpsi < t1 ? dtiip * dtiip * f.dphi : dtiip * dtiip * ((f.dpsi - t1) + f.dphi);
        } else {
            const double t1 = (z[iip1] / dtiip) * (z[iip1] / dtiip);
            cc = rest - dtiim * (f.dpsi + f.dphi) - (d[iip1] - d[iim1]) * (d[iim1] + d[iip1]) * t1;
            zz[0] = f.dphi < t1 ? dtiim * dtiim * f.dpsi : dtiim * dtiim * (f.dpsi + (f.dphi - t1));
            zz[2] = z[iip1] * z[iip1];
        }
        zz[1] = z[ii] * z[ii];
        dd[0] = dtiim;
        dd[1] = f.delta[ii] * f.work[ii];
        dd[2] = dtiip;
        zint failed = 0;
        laed6(iteration, orgati, cc, dd, zz, w, eta, failed);
        return failed == 0;
    };

    bool swtch = false;
    for (zint iteration = 2; iteration <= kMaxIterations; ++iteration) {
        if (std::fabs(w) <= eps * f.erretm) return;
        if (w <= 0.0) {
            sglb = std::max(sglb, tau);
        } else {
            sgub = std::min(sgub, tau);
        }
        double eta = 0.0;
        if (three_poles && !three_pole_step(swtch, iteration, eta)) three_poles = false;
        if (!three_poles) eta = two_pole_step(swtch);
        if (w * eta >= 0.0) eta = -w / dw;
        eta = eta / (sigma + std::sqrt(sigma * sigma + eta));
        // A step leaving the bracket is replaced by bisection (geometric where the root is
        // relatively close to a tiny pole).
        if (tau + eta > sgub || tau + eta < sglb) {
            eta = w < 0.0 ? (sgub - tau) / 2.0 : (sglb - tau) / 2.0;
            if (geomavg) {
                if (w < 0.0) {
                    if (tau > 0.0) eta = std::sqrt(sgub * tau) - tau;
                } else if (sglb > 0.0) {
                    eta = std::sqrt(sglb * tau) - tau;
                }
            }
        }
        const double prew = w;
        tau += eta;
        sigma += eta;
        f.move(eta);
        evaluate();
        if (iteration == 2) {
            swtch = (orgati ? -w : w) > std::fabs(prew) / 10.0;
        } else if (w * prew > 0.0 && std::fabs(w) > std::fabs(prew) / 10.0) {
            swtch = !swtch;
        }
    }
    info = 1;
}

}  // namespace

void lasd4(zint n, zint i, const double* d, const double* z, double* delta, double rho, double& sigma,
           double* work, zint& info) {
    info = 0;
    if (n == 1) {
        sigma = std::sqrt(d[0] * d[0] + rho * z[0] * z[0]);
        delta[0] = 1.0;
        work[0] = 1.0;
        return;
    }
    if (n == 2) {
        lasd5(i, d, z, delta, rho, sigma, work);
        return;
    }
    Secular f{n, d, z, delta, work, 1.0 / rho};
    if (i == n) {
        largest_root(f, rho, sigma, info);
    } else {
        inner_root(f, i - 1, sigma, info);
    }
}

}  // namespace zor
