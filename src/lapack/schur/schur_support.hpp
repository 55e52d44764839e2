#pragma once
// What the QR routines of this folder share: matrices addressed from one, as the published
// algorithms count their rows and columns, the complex square root of Wilkinson's shift, and the
// test for a non-finite subdiagonal that ends an iteration which can no longer converge.

#include <cmath>

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/schur/schur.hpp"

namespace zor {

// A column-major matrix addressed from (1, 1).
template <class T>
struct OneBased {
    T* a;
    zint ld;
    T& operator()(zint i, zint j) const { return a[(i - 1) + (j - 1) * ld]; }
    T* at(zint i, zint j) const { return a + (i - 1) + (j - 1) * ld; }
};

// The principal square root (non-negative real part), with |x| taken by hypot so that it does not
// overflow where the root is representable.
inline zcomplex complex_sqrt(zcomplex x) {
    if (x.re == 0.0 && x.im == 0.0) return {0.0, x.im};
    const double modulus = std::hypot(x.re, x.im);
    if (x.re >= 0.0) {
        const double t = std::sqrt(0.5 * (modulus + x.re));
        return {t, x.im / (2.0 * t)};
    }
    const double t = std::sqrt(0.5 * (modulus - x.re));
    return {std::fabs(x.im) / (2.0 * t), std::copysign(t, x.im)};
}

// Whether a subdiagonal entry of rows first + 1 .. last (one-based) is infinite or NaN: the QR
// iteration spreads such a value over the whole active block, where no deflation test can pass,
// so the routines report the block as unconverged at once instead of running out their limit.
template <class T>
bool subdiagonal_not_finite(const OneBased<T>& h, zint first, zint last) {
    for (zint k = first + 1; k <= last; ++k) {
        const T& x = h(k, k - 1);
        if (!std::isfinite(real(x)) || !std::isfinite(imag(x))) return true;
    }
    return false;
}

// The reflector larfg makes for the 2- and 3-entry vectors of the bulge chases, (alpha; x) to
// (beta; 0), computed in line: the norm scaled by the largest magnitude rather than through the
// vector kernels, whose calls cost more than the arithmetic at this size. A norm below safe minimum
// / eps goes to larfg, which scales it up first.
template <class T>
void bulge_reflector(zint n, T& alpha, T* x, T& tau) {
    double scale = 0.0;
    for (zint i = 0; i + 1 < n; ++i) scale = std::fmax(scale, std::fmax(std::fabs(real(x[i])), std::fabs(imag(x[i]))));
    if (scale == 0.0 && imag(alpha) == 0.0) {
        tau = zero<T>();
        return;
    }
    const double ar = std::fabs(real(alpha)), ai = std::fabs(imag(alpha));
    const double w = std::fmax(std::fmax(ar, ai), scale);
    // Squares of magnitudes between 2^-500 and 2^500 neither overflow nor lose digits to underflow;
    // outside that range the entries are scaled by a power of two (exactly) that brings the
    // largest into it.
    const double f = w < 0x1p-500 ? 0x1p600 : (w > 0x1p500 ? 0x1p-600 : 1.0);
    double sum = (ar * f) * (ar * f) + (ai * f) * (ai * f);
    for (zint i = 0; i + 1 < n; ++i) {
        const double re = real(x[i]) * f, im = imag(x[i]) * f;
        sum += re * re + im * im;
    }
    const double beta = -std::copysign(std::sqrt(sum) / f, real(alpha));
    if (!(std::fabs(beta) >= dlamch("S") / dlamch("E")) || !std::isfinite(beta)) {
        larfg(n, alpha, x, 1, tau);
        return;
    }
    if constexpr (kIsComplex<T>) {
        tau = {(beta - alpha.re) / beta, -alpha.im / beta};
    } else {
        tau = (beta - alpha) / beta;
    }
    const T g = one<T>() / (alpha - from_real<T>(beta));
    for (zint i = 0; i + 1 < n; ++i) x[i] = x[i] * g;
    alpha = from_real<T>(beta);
}

}  // namespace zor
