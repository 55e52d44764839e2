// lasv2: the SVD of a 2 by 2 upper triangular matrix, values and rotations.

#include <cmath>
#include <utility>

#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/tuning/tuning.hpp"

namespace zor {

namespace {

double sign_of(double x) {
    return std::copysign(1.0, x);
}

}  // namespace

void lasv2(double f, double g, double h, double& ssmin, double& ssmax, double& snr, double& csr, double& snl,
           double& csl) {
    // Work with |ft| >= |ht|; swapping the diagonal transposes the problem, which exchanges the
    // left and right rotations at the end.
    double ft = f, ht = h;
    double fa = std::fabs(ft), ha = std::fabs(ht);
    int largest = 1;  // which of f (1), g (2), h (3) is largest in magnitude: it fixes the signs
    const bool swapped = ha > fa;
    if (swapped) {
        largest = 3;
        std::swap(ft, ht);
        std::swap(fa, ha);
    }
    const double gt = g, ga = std::fabs(gt);
    double clt, crt, slt, srt;
    if (ga == 0.0) {
        ssmin = ha;
        ssmax = fa;
        clt = crt = 1.0;
        slt = srt = 0.0;
    } else {
        bool general = true;
        if (ga > fa) {
            largest = 2;
            if (fa / ga < dlamch("E")) {
                // g is so large that σ_max = |g| to working precision.
                general = false;
                ssmax = ga;
                ssmin = ha > 1.0 ? fa / (ga / ha) : (fa / ga) * ha;
                clt = 1.0;
                slt = ht / gt;
                srt = 1.0;
                crt = ft / gt;
            }
        }
        if (general) {
            const double d = fa - ha;
            double l = d == fa ? 1.0 : d / fa;  // in [0, 1]
            const double m = gt / ft;
            double t = 2.0 - l;
            const double mm = m * m, tt = t * t, s = std::sqrt(tt + mm);
            const double r = l == 0.0 ? std::fabs(m) : std::sqrt(l * l + mm);
            const double a = 0.5 * (s + r);  // in [1, 1 + |m|]
            ssmin = ha / a;
            ssmax = fa * a;
            if (mm == 0.0) {
                // m underflowed: the formulas below would lose it.
                t = l == 0.0 ? std::copysign(2.0, ft) * sign_of(gt) : gt / std::copysign(d, ft) + m / t;
            } else {
                t = (m / (s + t) + m / (r + l)) * (1.0 + a);
            }
            l = std::sqrt(t * t + 4.0);
            crt = 2.0 / l;
            srt = t / l;
            clt = (crt + srt * m) / a;
            slt = (ht / ft) * srt / a;
        }
    }
    if (swapped) {
        csl = srt;
        snl = crt;
        csr = slt;
        snr = clt;
    } else {
        csl = clt;
        snl = slt;
        csr = crt;
        snr = srt;
    }
    // The signs of the values follow from the sign of the largest entry and its rotations.
    double tsign;
    if (largest == 1) {
        tsign = sign_of(csr) * sign_of(csl) * sign_of(f);
    } else if (largest == 2) {
        tsign = sign_of(snr) * sign_of(csl) * sign_of(g);
    } else {
        tsign = sign_of(snr) * sign_of(snl) * sign_of(h);
    }
    ssmax = std::copysign(ssmax, tsign);
    ssmin = std::copysign(ssmin, tsign * sign_of(f) * sign_of(h));
}

}  // namespace zor
