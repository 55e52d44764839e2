// lartg: a plane rotation that zeroes the second of two values, with the safe scaling of Anderson's
// algorithm (the scaling is applied only when a square could overflow or underflow).

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

constexpr double kSafeMin = 0x1p-1022;
constexpr double kSafeMax = 0x1p1022;

double clamp_scale(double v) {
    return v < kSafeMin ? kSafeMin : (v > kSafeMax ? kSafeMax : v);
}

void real_rotation(double f, double g, double& c, double& s, double& r) {
    const double root_min = std::sqrt(kSafeMin), root_max = std::sqrt(kSafeMax / 2);
    const double f1 = std::fabs(f), g1 = std::fabs(g);
    if (g == 0.0) {
        c = 1.0;
        s = 0.0;
        r = f;
    } else if (f == 0.0) {
        c = 0.0;
        s = std::copysign(1.0, g);
        r = g1;
    } else if (f1 > root_min && f1 < root_max && g1 > root_min && g1 < root_max) {
        const double d = std::sqrt(f * f + g * g);
        c = f1 / d;
        r = std::copysign(d, f);
        s = g / r;
    } else {
        const double u = clamp_scale(f1 > g1 ? f1 : g1);
        const double fs = f / u, gs = g / u;
        const double d = std::sqrt(fs * fs + gs * gs);
        c = std::fabs(fs) / d;
        r = std::copysign(d, f);
        s = gs / r;
        r *= u;
    }
}

double larger_part(const zcomplex& x) {
    const double re = std::fabs(x.re), im = std::fabs(x.im);
    return re > im ? re : im;
}

// f ≠ 0 and g ≠ 0, both (already) scaled so that their squared moduli are safe; w relates the scale
// of f to that of g (f was divided by w times g's scale).
void complex_rotation_scaled(const zcomplex& f, const zcomplex& g, double f2, double h2, double& c,
                             zcomplex& s, zcomplex& r) {
    const double root_min = std::sqrt(kSafeMin), root_max = std::sqrt(kSafeMax / 2) * 2;
    if (f2 >= h2 * kSafeMin) {
        c = std::sqrt(f2 / h2);
        r = f / c;
        if (f2 > root_min && h2 < root_max) {
            s = conj(g) * (f / std::sqrt(f2 * h2));
        } else {
            s = conj(g) * (r / h2);
        }
    } else {
        // f is so much smaller than g that f2 / h2 underflows: divide through by sqrt(f2 h2).
        const double d = std::sqrt(f2 * h2);
        c = f2 / d;
        r = c >= kSafeMin ? f / c : f * (h2 / d);
        s = conj(g) * (f / d);
    }
}

void complex_rotation(const zcomplex& f, const zcomplex& g, double& c, zcomplex& s, zcomplex& r) {
    const double root_min = std::sqrt(kSafeMin), root_max = std::sqrt(kSafeMax / 2);
    if (is_zero(g)) {
        c = 1.0;
        s = {0.0, 0.0};
        r = f;
        return;
    }
    if (is_zero(f)) {
        c = 0.0;
        if (g.re == 0.0 || g.im == 0.0) {
            const double d = std::fabs(g.re == 0.0 ? g.im : g.re);
            r = {d, 0.0};
            s = conj(g) / d;
            return;
        }
        const double g1 = larger_part(g);
        if (g1 > root_min && g1 < root_max) {
            const double d = std::sqrt(abs_squared(g));
            s = conj(g) / d;
            r = {d, 0.0};
        } else {
            const double u = clamp_scale(g1);
            const zcomplex gs = g / u;
            const double d = std::sqrt(abs_squared(gs));
            s = conj(gs) / d;
            r = {d * u, 0.0};
        }
        return;
    }
    const double f1 = larger_part(f), g1 = larger_part(g);
    if (f1 > root_min && f1 < root_max && g1 > root_min && g1 < root_max) {
        const double f2 = abs_squared(f), g2 = abs_squared(g);
        complex_rotation_scaled(f, g, f2, f2 + g2, c, s, r);
        return;
    }
    // Scale both by u; a much smaller f gets a scale of its own, v = w u.
    const double u = clamp_scale(f1 > g1 ? f1 : g1);
    const zcomplex gs = g / u;
    const double g2 = abs_squared(gs);
    double w = 1.0, f2, h2;
    zcomplex fs;
    if (f1 / u < root_min) {
        const double v = clamp_scale(f1);
        w = v / u;
        fs = f / v;
        f2 = abs_squared(fs);
        h2 = f2 * w * w + g2;
    } else {
        fs = f / u;
        f2 = abs_squared(fs);
        h2 = f2 + g2;
    }
    complex_rotation_scaled(fs, gs, f2, h2, c, s, r);
    c *= w;
    r = r * u;
}

}  // namespace

template <class T>
void lartg(const T& f, const T& g, double& c, T& s, T& r) {
    if constexpr (kIsComplex<T>) {
        complex_rotation(f, g, c, s, r);
    } else {
        real_rotation(f, g, c, s, r);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(lartg)
