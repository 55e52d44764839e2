// Constructing rotations: drotg, zrotg (Givens) and drotmg (modified Givens). Scalar, the same at
// every level.

#include "blas/kernel.hpp"
#include "blas/level1/level1.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// drotmg's rescaling thresholds. rgamsq is deliberately the short decimal 5.960464477539e-8
// (94 units in the last place below 2^-24), not the exact power: the thresholds, and so the
// flags, follow from it.
constexpr double kGam = 4096.0;
constexpr double kInverseGam = 0.000244140625;
constexpr double kGamSq = 16777216.0;
constexpr double kRgamSq = 5.960464477539e-8;

struct ModifiedRotation {
    double flag;
    double h11 = 0.0, h21 = 0.0, h12 = 0.0, h22 = 0.0;

    // Rescaling needs every entry explicit: a flag 0 or 1 matrix gets its implied unit entries
    // written out once, as flag -1.
    void make_explicit() {
        if (flag == 0.0) {
            h11 = 1.0;
            h22 = 1.0;
        } else if (flag > 0.0) {
            h21 = -1.0;
            h12 = 1.0;
        }
        flag = -1.0;
    }
};

}  // namespace

void drotg(double& a, double& b, double& c, double& s) {
    const double anorm = abs(a), bnorm = abs(b);
    const double scale = anorm + bnorm;
    if (scale == 0.0) {
        c = 1.0;
        s = 0.0;
        a = 0.0;
        b = 0.0;
        return;
    }
    const double roe = anorm > bnorm ? a : b;
    const double as = a / scale, bs = b / scale;
    double r = scale * square_root(as * as + bs * bs);
    if (roe < 0.0) r = -r;
    const double cr = a / r, sr = b / r;
    double z = anorm > bnorm ? sr : 1.0;
    if (bnorm >= anorm && cr != 0.0) z = 1.0 / cr;
    c = cr;
    s = sr;
    a = r;
    b = z;
}

// The magnitudes are computed unscaled, so parts beyond about 1e154 overflow: kept as it is.
void zrotg(zcomplex& ca, const zcomplex& cb, double& c, zcomplex& s) {
    const zcomplex a = ca, b = cb;
    const double abs_a = square_root(a.re * a.re + a.im * a.im);
    if (abs_a == 0.0) {
        c = 0.0;
        s = {1.0, 0.0};
        ca = b;
        return;
    }
    const double scale = square_root(b.re * b.re + b.im * b.im) + abs_a;
    const double ar = a.re / scale, ai = a.im / scale, br = b.re / scale, bi = b.im / scale;
    const double norm = scale * square_root(((ar * ar + ai * ai) + br * br) + bi * bi);
    const double alpha_re = a.re / abs_a, alpha_im = a.im / abs_a;
    c = abs_a / norm;
    s = {(b.re * alpha_re + b.im * alpha_im) / norm, (b.re * alpha_im - b.im * alpha_re) / norm};
    ca = {alpha_re * norm, alpha_im * norm};
}

void drotmg(double& d1, double& d2, double& x1, const double& y1, double* param) {
    double dd1 = d1, dd2 = d2, dx1 = x1;
    const double dy1 = y1;
    ModifiedRotation h{-1.0};
    if (dd1 < 0.0) {
        dd1 = dd2 = dx1 = 0.0;
    } else {
        const double p2 = dd2 * dy1;
        if (p2 == 0.0) {
            param[0] = -2.0;
            return;
        }
        const double p1 = dd1 * dx1;
        const double q2 = p2 * dy1;
        const double q1 = p1 * dx1;
        if (abs(q1) > abs(q2)) {
            h.h21 = -dy1 / dx1;
            h.h12 = p2 / p1;
            const double u = 1.0 - h.h12 * h.h21;
            if (u > 0.0) {
                h.flag = 0.0;
                dd1 /= u;
                dd2 /= u;
                dx1 *= u;
            } else {
                h = ModifiedRotation{-1.0};
                dd1 = dd2 = dx1 = 0.0;
            }
        } else if (q2 < 0.0) {
            dd1 = dd2 = dx1 = 0.0;
        } else {
            h.flag = 1.0;
            h.h11 = p1 / p2;
            h.h22 = dx1 / dy1;
            const double u = 1.0 + h.h11 * h.h22;
            const double temp = dd2 / u;
            dd2 = dd1 / u;
            dd1 = temp;
            dx1 = dy1 * u;
        }
        // The loops stop at an infinite weight, which no rescaling can bring into range.
        if (dd1 != 0.0) {
            while (__builtin_isfinite(dd1) && (dd1 <= kRgamSq || dd1 >= kGamSq)) {
                h.make_explicit();
                if (dd1 <= kRgamSq) {
                    dd1 *= kGamSq;
                    dx1 *= kInverseGam;
                    h.h11 *= kInverseGam;
                    h.h12 *= kInverseGam;
                } else {
                    dd1 /= kGamSq;
                    dx1 *= kGam;
                    h.h11 *= kGam;
                    h.h12 *= kGam;
                }
            }
        }
        if (dd2 != 0.0) {
            while (__builtin_isfinite(dd2) && (abs(dd2) <= kRgamSq || abs(dd2) >= kGamSq)) {
                h.make_explicit();
                if (abs(dd2) <= kRgamSq) {
                    dd2 *= kGamSq;
                    h.h21 *= kInverseGam;
                    h.h22 *= kInverseGam;
                } else {
                    dd2 /= kGamSq;
                    h.h21 *= kGam;
                    h.h22 *= kGam;
                }
            }
        }
    }
    if (h.flag < 0.0) {
        param[1] = h.h11;
        param[2] = h.h21;
        param[3] = h.h12;
        param[4] = h.h22;
    } else if (h.flag == 0.0) {
        param[2] = h.h21;
        param[3] = h.h12;
    } else {
        param[1] = h.h11;
        param[4] = h.h22;
    }
    param[0] = h.flag;
    d1 = dd1;
    d2 = dd2;
    x1 = dx1;
}

}  // namespace zor::ZOR_LEVEL_NS
