#pragma once
// Helpers of the vector and matrix-vector kernels, compiled into each level's namespace. The
// element arithmetic and the option letters they use are service/element.hpp and letters.hpp.
//
// Code that uses AVX intrinsics sits under #if ZOR_LEVEL == 4: a function holding one cannot be
// compiled at the other levels even when nothing calls it (unoptimised builds still emit it).
// The two-lane helpers that the Avx level replaces are [[maybe_unused]] there.

#include <immintrin.h>

#include <cstdint>

#include "blas/kernel.hpp"
#include "service/element.hpp"
#include "service/letters.hpp"

namespace zor::ZOR_LEVEL_NS {

// The offset of the first logical element of a vector of n elements: with a negative increment
// the vector is walked backwards from its far end.
inline zint first_element(zint n, zint inc) {
    return inc < 0 ? (1 - n) * inc : 0;
}

inline std::uintptr_t address(const void* p) {
    return reinterpret_cast<std::uintptr_t>(p);
}
inline bool aligned8(const void* p) {
    return (address(p) & 7) == 0;
}
inline bool aligned16(const void* p) {
    return (address(p) & 15) == 0;
}

// Both increments 1 or both -1: element i of x meets element i of y whichever way both run, so
// the kernels treat either case as one contiguous run from the pointers.
inline bool unit_strides(zint incx, zint incy) {
    return (incx == 1 && incy == 1) || (incx == -1 && incy == -1);
}

// Whether the byte ranges [x, x + bytes) and [y, y + bytes) meet.
inline bool overlapping(const void* x, const void* y, zint bytes) {
    const std::uintptr_t a = address(x), b = address(y);
    return a < b + static_cast<std::uintptr_t>(bytes) && b < a + static_cast<std::uintptr_t>(bytes);
}

// The correctly rounded square root, inline at every level (no errno path into libm).
inline double square_root(double v) {
    return _mm_cvtsd_f64(_mm_sqrt_sd(_mm_setzero_pd(), _mm_set_sd(v)));
}

// The low lane plus the high lane.
inline double lane_sum(__m128d v) {
    return _mm_cvtsd_f64(_mm_add_sd(v, _mm_unpackhi_pd(v, v)));
}

inline __m128d clear_sign(__m128d v) {
    return _mm_andnot_pd(_mm_set1_pd(-0.0), v);
}

// Complex products of vectors in the form every kernel uses (element.hpp's, lane by lane): two
// rounded products and one sum per part, re = (xr*ar) + (xi*(-ai)), im = (xi*ar) + (xr*ai). `ar` holds
// re(alpha) in both lanes and `ai_signed` holds (-im(alpha), im(alpha)), the sign flipped once by its sign
// bit.
struct ComplexFactor {
    __m128d ar, ai_signed;
};
inline ComplexFactor complex_factor(const zcomplex& alpha) {
    return {_mm_set1_pd(alpha.re), _mm_xor_pd(_mm_set1_pd(alpha.im), _mm_set_pd(0.0, -0.0))};
}
inline __m128d operator*(__m128d x, const ComplexFactor& f) {
    return _mm_add_pd(_mm_mul_pd(x, f.ar), _mm_mul_pd(_mm_shuffle_pd(x, x, 1), f.ai_signed));
}

// The logical sub-vector of `count` elements starting at logical index `from` of a vector whose
// first logical element is at `first`: the pointer a kernel expects for it, so that the kernel's
// own negative-increment rule lands on the right elements.
template <class T>
T* subvector(T* first, zint from, zint count, zint inc) {
    return first + from * inc - first_element(count, inc);
}

// y := beta*y over len logical elements, for the beta step of the matrix-vector kernels. A zero
// beta writes exact zeros without reading y, so NaN and infinity in y are discarded.
inline void scale_vector(zint len, double beta, double* y, zint inc) {
    if (inc == 1) {
        if (beta == 0.0) {
            for (zint i = 0; i < len; ++i) y[i] = 0.0;
        } else {
            for (zint i = 0; i < len; ++i) y[i] *= beta;
        }
        return;
    }
    double* ys = y + first_element(len, inc);
    for (zint i = 0; i < len; ++i) ys[i * inc] = beta == 0.0 ? 0.0 : ys[i * inc] * beta;
}
inline void scale_vector(zint len, const zcomplex& beta, zcomplex* y, zint inc) {
    zcomplex* ys = y + first_element(len, inc);
    const bool zero = is_zero(beta);
    for (zint i = 0; i < len; ++i) ys[i * inc] = zero ? zcomplex{0.0, 0.0} : ys[i * inc] * beta;
}

#if ZOR_LEVEL == 4
// The same for two complex elements in a four-lane vector.
struct ComplexFactor4 {
    __m256d ar, ai_signed;
};
inline ComplexFactor4 complex_factor4(const zcomplex& alpha) {
    const ComplexFactor f = complex_factor(alpha);
    return {_mm256_set_m128d(f.ar, f.ar), _mm256_set_m128d(f.ai_signed, f.ai_signed)};
}
inline __m256d operator*(__m256d x, const ComplexFactor4& f) {
    return _mm256_add_pd(_mm256_mul_pd(x, f.ar), _mm256_mul_pd(_mm256_permute_pd(x, 5), f.ai_signed));
}
#endif

}  // namespace zor::ZOR_LEVEL_NS
