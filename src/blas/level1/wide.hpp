#pragma once
// The 512-bit runs of the element-wise vector kernels at the Avx level, for processors with
// AVX-512F: each element's result is the same rounded operations at any width, so these give the
// bits of the narrower paths. Only the Avx variant includes this (under #if ZOR_LEVEL == 4), and
// only after detect_avx_extensions has found AVX-512F are its functions called.

#include <immintrin.h>

#include "blas/kernel.hpp"
#include "blas/simd.hpp"
#include "blas/vector.hpp"
#include "service/cpu.hpp"

#if ZOR_LEVEL == 4

ZOR_ALLOW_AVX512_INTRINSICS

namespace zor::avx {
namespace {

inline bool has_avx512f() {
    return (detect_avx_extensions() & kExtensionAvx512f) != 0;
}

ZOR_AVX512 inline __mmask8 first_lanes(zint count) {
    return static_cast<__mmask8>((1u << count) - 1u);
}

// Runs step(at, mask) over n doubles: a masked vector up to the 64-byte boundary of `anchor` (when it
// lies on a boundary of `grain` bytes, so that the vectors after it keep whole elements of that
// size), whole vectors four at a time, whole vectors, and a masked last vector.
template <class Step>
ZOR_AVX512 inline void eight_lane_run(zint n, const void* anchor, int grain, const Step& step) {
    constexpr __mmask8 kAll = 0xff;
    zint i = 0;
    if (address(anchor) % static_cast<unsigned>(grain) == 0) {
        zint head = static_cast<zint>((64 - address(anchor) % 64) % 64 / 8);
        if (head > n) head = n;
        if (head > 0) step(0, first_lanes(head));
        i = head;
    }
    for (; n - i >= 32; i += 32) {
        step(i, kAll);
        step(i + 8, kAll);
        step(i + 16, kAll);
        step(i + 24, kAll);
    }
    for (; n - i >= 8; i += 8) step(i, kAll);
    if (i < n) step(i, first_lanes(n - i));
}

ZOR_AVX512 inline __m512d load8(const double* p, __mmask8 mask) {
    return _mm512_maskz_loadu_pd(mask, p);
}
ZOR_AVX512 inline void store8(double* p, __mmask8 mask, __m512d v) {
    _mm512_mask_storeu_pd(p, mask, v);
}

// The complex product of element.hpp lane by lane for 4 complex elements (as complex_factor).
struct ComplexFactor8 {
    __m512d ar, ai_signed;
};
ZOR_AVX512 inline ComplexFactor8 complex_factor8(const zcomplex& alpha) {
    const __m512d sign = _mm512_castsi512_pd(_mm512_set4_epi64(
        0, static_cast<long long>(0x8000000000000000ull), 0, static_cast<long long>(0x8000000000000000ull)));
    return {_mm512_set1_pd(alpha.re),
            _mm512_castsi512_pd(
                _mm512_xor_si512(_mm512_castpd_si512(_mm512_set1_pd(alpha.im)), _mm512_castpd_si512(sign)))};
}
// A real factor in every lane.
struct RealFactor8 {
    __m512d a;
};
ZOR_AVX512 inline RealFactor8 real_factor8(double alpha) {
    return {_mm512_set1_pd(alpha)};
}

// x times a real factor, or times a complex one element by element.
ZOR_AVX512 inline __m512d times(__m512d x, const RealFactor8& f) {
    return _mm512_mul_pd(x, f.a);
}
ZOR_AVX512 inline __m512d times(__m512d x, const ComplexFactor8& f) {
    return _mm512_add_pd(_mm512_mul_pd(x, f.ar), _mm512_mul_pd(_mm512_permute_pd(x, 0x55), f.ai_signed));
}

}  // namespace
}  // namespace zor::avx

#endif
