#pragma once
// What the QR routines of this folder share: matrices addressed from one, as the published
// algorithms count their rows and columns, the complex square root of Wilkinson's shift, and the
// test for a non-finite subdiagonal that ends an iteration which can no longer converge.

#include <cmath>

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

}  // namespace zor
