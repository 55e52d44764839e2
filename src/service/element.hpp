#pragma once
// Arithmetic on the library's two element types, double and zcomplex, for the code written once as
// a template over them (the level-3 routines, the LAPACK routines, the kernels of both).
//
// Complex products are the written-out formulas every kernel uses, (ar br - ai bi, ar bi + ai br),
// two rounded products and one rounded sum per part; the library is built without contraction, so
// nothing here is fused. Division is Smith's: the larger part of the divisor is divided out first,
// so no intermediate square overflows or underflows where the quotient is representable. Kernels
// whose order of accumulation is fixed keep their own scalar code where that code states the order.

#include <cmath>
#include <type_traits>

#include "service/types.hpp"

namespace zor {
ZOR_INLINE_BEGIN

template <class T>
inline constexpr bool kIsComplex = std::is_same_v<T, zcomplex>;

// ---- zcomplex operators --------------------------------------------------------------------------

constexpr zcomplex operator+(const zcomplex& a, const zcomplex& b) {
    return {a.re + b.re, a.im + b.im};
}
constexpr zcomplex operator-(const zcomplex& a, const zcomplex& b) {
    return {a.re - b.re, a.im - b.im};
}
constexpr zcomplex operator-(const zcomplex& a) {
    return {-a.re, -a.im};
}
constexpr zcomplex operator*(const zcomplex& a, const zcomplex& b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
// A real factor multiplies both parts: no products with a zero imaginary part, so infinities stay
// infinities where the complex product would make NaN of them.
constexpr zcomplex operator*(const zcomplex& a, double r) {
    return {a.re * r, a.im * r};
}
constexpr zcomplex operator*(double r, const zcomplex& a) {
    return {r * a.re, r * a.im};
}
constexpr zcomplex operator/(const zcomplex& a, double r) {
    return {a.re / r, a.im / r};
}
// Smith's quotient.
constexpr zcomplex operator/(const zcomplex& a, const zcomplex& b) {
    const double abs_re = b.re < 0 ? -b.re : b.re, abs_im = b.im < 0 ? -b.im : b.im;
    if (abs_re >= abs_im) {
        const double r = b.im / b.re, d = b.re + b.im * r;
        return {(a.re + a.im * r) / d, (a.im - a.re * r) / d};
    }
    const double r = b.re / b.im, d = b.im + b.re * r;
    return {(a.re * r + a.im) / d, (a.im * r - a.re) / d};
}
constexpr zcomplex& operator+=(zcomplex& a, const zcomplex& b) {
    return a = a + b;
}
constexpr zcomplex& operator-=(zcomplex& a, const zcomplex& b) {
    return a = a - b;
}
constexpr zcomplex& operator*=(zcomplex& a, const zcomplex& b) {
    return a = a * b;
}
constexpr zcomplex& operator*=(zcomplex& a, double r) {
    return a = a * r;
}
constexpr bool operator==(const zcomplex& a, const zcomplex& b) {
    return a.re == b.re && a.im == b.im;
}
constexpr bool operator!=(const zcomplex& a, const zcomplex& b) {
    return !(a == b);
}

// ---- the same names for both element types ----------------------------------------------------

template <class T>
constexpr T zero() {
    return T{};
}
template <class T>
constexpr T one() {
    if constexpr (kIsComplex<T>) {
        return {1.0, 0.0};
    } else {
        return 1.0;
    }
}
// x as an element of type T.
template <class T>
constexpr T from_real(double x) {
    if constexpr (kIsComplex<T>) {
        return {x, 0.0};
    } else {
        return x;
    }
}

constexpr double real(double x) {
    return x;
}
constexpr double real(const zcomplex& x) {
    return x.re;
}
constexpr double imag(double) {
    return 0.0;
}
constexpr double imag(const zcomplex& x) {
    return x.im;
}
constexpr double conj(double x) {
    return x;
}
constexpr zcomplex conj(const zcomplex& x) {
    return {x.re, -x.im};
}
// x with its imaginary part cleared: what a Hermitian matrix's diagonal is taken as.
constexpr double real_part(double x) {
    return x;
}
constexpr zcomplex real_part(const zcomplex& x) {
    return {x.re, 0.0};
}
constexpr bool is_zero(double x) {
    return x == 0.0;
}
constexpr bool is_zero(const zcomplex& x) {
    return x.re == 0.0 && x.im == 0.0;
}
constexpr bool is_one(double x) {
    return x == 1.0;
}
constexpr bool is_one(const zcomplex& x) {
    return x.re == 1.0 && x.im == 0.0;
}
// Whether x is NaN (either part, for complex values).
constexpr bool is_nan(double x) {
    return x != x;
}
constexpr bool is_nan(const zcomplex& x) {
    return x.re != x.re || x.im != x.im;
}

// |x|: the modulus, without overflow or underflow on the way (hypot).
inline double abs(double x) {
    return std::fabs(x);
}
inline double abs(const zcomplex& x) {
    return std::hypot(x.re, x.im);
}
// |re| + |im|, the cheap magnitude of the BLAS index searches and of LAPACK's tests.
inline double abs1(double x) {
    return std::fabs(x);
}
inline double abs1(const zcomplex& x) {
    return std::fabs(x.re) + std::fabs(x.im);
}
constexpr double abs_squared(double x) {
    return x * x;
}
constexpr double abs_squared(const zcomplex& x) {
    return x.re * x.re + x.im * x.im;
}
// x·conj(y), the term of a conjugated dot product.
constexpr double mul_conj(double x, double y) {
    return x * y;
}
constexpr zcomplex mul_conj(const zcomplex& x, const zcomplex& y) {
    return {x.re * y.re + x.im * y.im, x.im * y.re - x.re * y.im};
}
// conj(x) when `conjugated`, else x.
constexpr double conj_if(bool, double x) {
    return x;
}
constexpr zcomplex conj_if(bool conjugated, const zcomplex& x) {
    return conjugated ? conj(x) : x;
}
template <class T>
constexpr T reciprocal(const T& x) {
    return one<T>() / x;
}

// Whether x·(1/d) may stand in for x/d: 1/d neither overflows nor loses bits to the subnormal range
// (real d outside [2^-1021, 2^1021], complex d with its larger part outside [2^-500, 2^500]).
// Zero, infinite and NaN real divisors give the same answers both ways; complex ones do not.
constexpr bool reciprocal_safe(double d) {
    const double magnitude = d < 0 ? -d : d;
    if (!(magnitude > 0.0 && magnitude <= 0x1.fffffffffffffp1023)) return true;
    return magnitude >= 0x1p-1021 && magnitude <= 0x1p1021;
}
constexpr bool reciprocal_safe(const zcomplex& d) {
    const double abs_re = d.re < 0 ? -d.re : d.re, abs_im = d.im < 0 ? -d.im : d.im;
    const double larger = abs_re > abs_im ? abs_re : abs_im;
    return larger >= 0x1p-500 && larger <= 0x1p500;
}

constexpr zint min_of(zint a, zint b) {
    return a < b ? a : b;
}
constexpr zint max_of(zint a, zint b) {
    return a > b ? a : b;
}

ZOR_INLINE_END
}  // namespace zor
