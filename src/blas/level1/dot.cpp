// Dot products: ddot, zdotc, zdotu. The accumulation orders are part of the results: the Default
// layouts are fixed, the Sse3 to Sse42 ddot follows the Default layout, and the Avx ddot has a
// four-lane layout of its own with a two-lane one for long vectors.

#include "blas/kernel.hpp"
#include "blas/level1/level1.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// Vectors of this many elements or more take the long path of the Avx ddot (x and y together
// then fill 32 KiB or more).
constexpr zint kLongDot = 2048;

__m128d product_sd(const double* x, const double* y) {
    return _mm_mul_sd(_mm_load_sd(x), _mm_load_sd(y));
}

// Four two-lane accumulators summed as ((a0 + a1) + a2) + a3, then the two lanes.
double finish_pairs(__m128d a0, __m128d a1, __m128d a2, __m128d a3) {
    return lane_sum(_mm_add_pd(_mm_add_pd(_mm_add_pd(a0, a1), a2), a3));
}

[[maybe_unused]] double ddot_two_lane(zint n, const double* x, zint incx, const double* y, zint incy) {
    __m128d a0 = _mm_setzero_pd(), a1 = a0, a2 = a0, a3 = a0;
    zint i = 0;
    if (unit_strides(incx, incy)) {
        if ((address(x) & 15) == (address(y) & 15)) {
            // Pointers that are not even 8-byte aligned never reach a boundary: all of it peels.
            for (; i < n && !aligned16(x + i); ++i) a0 = _mm_add_sd(a0, product_sd(x + i, y + i));
            for (; n - i >= 16; i += 16) {
                const double* xs = x + i;
                const double* ys = y + i;
                __m128d p[8];
                for (int k = 0; k < 8; ++k)
                    p[k] = _mm_mul_pd(_mm_load_pd(xs + 2 * k), _mm_load_pd(ys + 2 * k));
                a0 = _mm_add_pd(_mm_add_pd(a0, p[0]), p[4]);
                a1 = _mm_add_pd(_mm_add_pd(a1, p[1]), p[5]);
                a2 = _mm_add_pd(_mm_add_pd(a2, p[2]), p[6]);
                a3 = _mm_add_pd(_mm_add_pd(a3, p[3]), p[7]);
            }
            if (n - i >= 8) {
                a0 = _mm_add_pd(a0, _mm_mul_pd(_mm_load_pd(x + i), _mm_load_pd(y + i)));
                a1 = _mm_add_pd(a1, _mm_mul_pd(_mm_load_pd(x + i + 2), _mm_load_pd(y + i + 2)));
                a2 = _mm_add_pd(a2, _mm_mul_pd(_mm_load_pd(x + i + 4), _mm_load_pd(y + i + 4)));
                a3 = _mm_add_pd(a3, _mm_mul_pd(_mm_load_pd(x + i + 6), _mm_load_pd(y + i + 6)));
                i += 8;
            }
        } else {
            for (; i < n && !aligned16(y + i); ++i) a0 = _mm_add_sd(a0, product_sd(x + i, y + i));
            for (; n - i >= 8; i += 8) {
                a0 = _mm_add_pd(a0, _mm_mul_pd(_mm_loadu_pd(x + i), _mm_load_pd(y + i)));
                a1 = _mm_add_pd(a1, _mm_mul_pd(_mm_loadu_pd(x + i + 2), _mm_load_pd(y + i + 2)));
                a2 = _mm_add_pd(a2, _mm_mul_pd(_mm_loadu_pd(x + i + 4), _mm_load_pd(y + i + 4)));
                a3 = _mm_add_pd(a3, _mm_mul_pd(_mm_loadu_pd(x + i + 6), _mm_load_pd(y + i + 6)));
            }
        }
        for (; n - i >= 2; i += 2) a0 = _mm_add_pd(a0, _mm_mul_pd(_mm_loadu_pd(x + i), _mm_load_pd(y + i)));
        if (i < n) a0 = _mm_add_sd(a0, product_sd(x + i, y + i));
    } else {
        const double* xs = x + first_element(n, incx);
        const double* ys = y + first_element(n, incy);
        for (; n - i >= 2; i += 2) {
            const __m128d xv = _mm_set_pd(xs[(i + 1) * incx], xs[i * incx]);
            const __m128d yv = _mm_set_pd(ys[(i + 1) * incy], ys[i * incy]);
            a0 = _mm_add_pd(a0, _mm_mul_pd(xv, yv));
        }
        if (i < n) a0 = _mm_add_sd(a0, product_sd(xs + i * incx, ys + i * incy));
    }
    return finish_pairs(a0, a1, a2, a3);
}

#if ZOR_LEVEL == 4
// (v0 + v2) + (v1 + v3).
double quad_sum(__m256d v) {
    return lane_sum(_mm_add_pd(_mm256_castpd256_pd128(v), _mm256_extractf128_pd(v, 1)));
}

// (a0 + a1) + (a2 + a3), then (l0 + l2) + (l1 + l3): the shortest chain after the main steps.
double four_lane_total(__m256d a0, __m256d a1, __m256d a2, __m256d a3) {
    return quad_sum(_mm256_add_pd(_mm256_add_pd(a0, a1), _mm256_add_pd(a2, a3)));
}

__m256d product4(const double* x, const double* y) {
    return _mm256_mul_pd(_mm256_loadu_pd(x), _mm256_loadu_pd(y));
}

// The Avx ddot. One scalar sum collects, in this order, the products peeled to bring y to a
// 32-byte boundary (when any are), the vector part's total, and the last elements one by one.
double ddot_four_lane(zint n, const double* x, zint incx, const double* y, zint incy) {
    double sum = 0.0;
    zint i = 0;
    if (unit_strides(incx, incy)) {
        zint peel = (4 - static_cast<zint>((address(y) % 32) / 8)) % 4;
        if (peel > n) peel = n;
        for (; i < peel; ++i) sum += x[i] * y[i];
        if (n >= kLongDot) {
            // Long vectors stream from beyond the first-level cache; two-lane steps over 32
            // elements keep the loads unaligned-safe and the chains short enough.
            __m128d a[4] = {_mm_setzero_pd(), _mm_setzero_pd(), _mm_setzero_pd(), _mm_setzero_pd()};
            for (; n - i >= 32; i += 32) {
                for (int k = 0; k < 16; ++k) {
                    a[k % 4] = _mm_add_pd(
                        a[k % 4], _mm_mul_pd(_mm_loadu_pd(x + i + 2 * k), _mm_loadu_pd(y + i + 2 * k)));
                }
            }
            for (; n - i >= 2; i += 2) {
                a[0] = _mm_add_pd(a[0], _mm_mul_pd(_mm_loadu_pd(x + i), _mm_loadu_pd(y + i)));
            }
            const double body = finish_pairs(a[0], a[1], a[2], a[3]);
            sum = peel > 0 ? sum + body : body;
        } else {
            __m256d a0 = _mm256_setzero_pd(), a1 = a0, a2 = a0, a3 = a0;
            for (; n - i >= 16; i += 16) {
                a0 = _mm256_add_pd(a0, product4(x + i, y + i));
                a1 = _mm256_add_pd(a1, product4(x + i + 4, y + i + 4));
                a2 = _mm256_add_pd(a2, product4(x + i + 8, y + i + 8));
                a3 = _mm256_add_pd(a3, product4(x + i + 12, y + i + 12));
            }
            for (; n - i >= 4; i += 4) a0 = _mm256_add_pd(a0, product4(x + i, y + i));
            const double body = four_lane_total(a0, a1, a2, a3);
            sum = peel > 0 ? sum + body : body;
        }
        for (; i < n; ++i) sum += x[i] * y[i];
        return sum;
    }
    const double* xs = x + first_element(n, incx);
    const double* ys = y + first_element(n, incy);
    auto gather = [](const double* v, zint at, zint inc) {
        return _mm256_set_pd(v[(at + 3) * inc], v[(at + 2) * inc], v[(at + 1) * inc], v[at * inc]);
    };
    __m256d a0 = _mm256_setzero_pd(), a1 = a0, a2 = a0, a3 = a0;
    for (; n - i >= 16; i += 16) {
        a0 = _mm256_add_pd(a0, _mm256_mul_pd(gather(xs, i, incx), gather(ys, i, incy)));
        a1 = _mm256_add_pd(a1, _mm256_mul_pd(gather(xs, i + 4, incx), gather(ys, i + 4, incy)));
        a2 = _mm256_add_pd(a2, _mm256_mul_pd(gather(xs, i + 8, incx), gather(ys, i + 8, incy)));
        a3 = _mm256_add_pd(a3, _mm256_mul_pd(gather(xs, i + 12, incx), gather(ys, i + 12, incy)));
    }
    for (; n - i >= 4; i += 4)
        a0 = _mm256_add_pd(a0, _mm256_mul_pd(gather(xs, i, incx), gather(ys, i, incy)));
    sum = four_lane_total(a0, a1, a2, a3);
    for (; i < n; ++i) sum += xs[i * incx] * ys[i * incy];
    return sum;
}
#endif

// Complex products are collected without signs: A takes the lane products (xr*yr, xi*yi) and B
// the products (xr*yi, xi*yr) of x with y's halves swapped; the signs of conj(x)*y or x*y are
// applied once at the end.
struct ProductSums {
    __m128d a, b;
};

inline void add_product(ProductSums& s, __m128d xv, __m128d yv) {
    s.a = _mm_add_pd(s.a, _mm_mul_pd(xv, yv));
    s.b = _mm_add_pd(s.b, _mm_mul_pd(xv, _mm_shuffle_pd(yv, yv, 1)));
}

// zdotu: (A.first - A.second, B.first + B.second); zdotc: (A.first + A.second, B.first - B.second).
// One lane's sign bit is flipped, then a single two-lane addition.
template <bool kConjugate>
void store_dot(zcomplex* result, __m128d a, __m128d b) {
    const __m128d firsts = _mm_unpacklo_pd(a, b);
    const __m128d seconds = _mm_unpackhi_pd(a, b);
    const __m128d sign = kConjugate ? _mm_set_pd(-0.0, 0.0) : _mm_set_pd(0.0, -0.0);
    _mm_storeu_pd(&result->re, _mm_add_pd(firsts, _mm_xor_pd(seconds, sign)));
}

__m128d load_complex(const zcomplex* v) {
    return _mm_loadu_pd(&v->re);
}

// The strided form of every level: one element per step into one pair of sums.
template <bool kConjugate>
void zdot_strided(zcomplex* result, zint n, const zcomplex* x, zint incx, const zcomplex* y, zint incy) {
    const zcomplex* xs = x + first_element(n, incx);
    const zcomplex* ys = y + first_element(n, incy);
    ProductSums s{_mm_setzero_pd(), _mm_setzero_pd()};
    for (zint i = 0; i < n; ++i) add_product(s, load_complex(xs + i * incx), load_complex(ys + i * incy));
    store_dot<kConjugate>(result, s.a, s.b);
}

// Default: aligned unit-stride vectors in steps of 8, 4, 2 and 1, even elements into the first
// pair of sums and odd ones into the second, each chain in element order.
template <bool kConjugate>
void zdot_default(zcomplex* result, zint n, const zcomplex* x, zint incx, const zcomplex* y, zint incy) {
    if (!unit_strides(incx, incy) || !aligned16(x) || !aligned16(y)) {
        zdot_strided<kConjugate>(result, n, x, incx, y, incy);
        return;
    }
    ProductSums s[2] = {{_mm_setzero_pd(), _mm_setzero_pd()}, {_mm_setzero_pd(), _mm_setzero_pd()}};
    zint i = 0;
    for (; n - i >= 8; i += 8) {
        for (int e = 0; e < 8; ++e)
            add_product(s[e % 2], _mm_load_pd(&x[i + e].re), _mm_load_pd(&y[i + e].re));
    }
    for (zint step = 4; step >= 2; step /= 2) {
        if (n - i >= step) {
            for (int e = 0; e < step; ++e)
                add_product(s[e % 2], _mm_load_pd(&x[i + e].re), _mm_load_pd(&y[i + e].re));
            i += step;
        }
    }
    if (i < n) add_product(s[0], _mm_load_pd(&x[i].re), _mm_load_pd(&y[i].re));
    store_dot<kConjugate>(result, _mm_add_pd(s[0].a, s[1].a), _mm_add_pd(s[0].b, s[1].b));
}

// Sse3 to Sse42: four pairs of sums over any unit-stride vectors, element e of a step of four
// into pair e, combined as (0 + 1) + (2 + 3).
template <bool kConjugate>
void zdot_sse(zcomplex* result, zint n, const zcomplex* x, zint incx, const zcomplex* y, zint incy) {
    if (!unit_strides(incx, incy)) {
        zdot_strided<kConjugate>(result, n, x, incx, y, incy);
        return;
    }
    ProductSums s[4];
    for (ProductSums& p : s) p = {_mm_setzero_pd(), _mm_setzero_pd()};
    zint i = 0;
    for (; n - i >= 8; i += 8) {
        for (int e = 0; e < 8; ++e) add_product(s[e % 4], load_complex(x + i + e), load_complex(y + i + e));
    }
    for (; i < n; ++i) add_product(s[0], load_complex(x + i), load_complex(y + i));
    store_dot<kConjugate>(result, _mm_add_pd(_mm_add_pd(s[0].a, s[1].a), _mm_add_pd(s[2].a, s[3].a)),
                          _mm_add_pd(_mm_add_pd(s[0].b, s[1].b), _mm_add_pd(s[2].b, s[3].b)));
}

#if ZOR_LEVEL == 4
// Avx: two elements per four-lane vector, four pairs of sums over 8 elements per step, then
// steps of 2 and a last element; combined as (0 + 1) + (2 + 3), then the two halves.
template <bool kConjugate>
void zdot_avx(zcomplex* result, zint n, const zcomplex* x, zint incx, const zcomplex* y, zint incy) {
    if (!unit_strides(incx, incy)) {
        zdot_strided<kConjugate>(result, n, x, incx, y, incy);
        return;
    }
    __m256d a[4], b[4];
    for (int k = 0; k < 4; ++k) a[k] = b[k] = _mm256_setzero_pd();
    zint i = 0;
    for (; n - i >= 8; i += 8) {
        // Two cache lines of each vector per step; fetching them well ahead keeps both streams
        // coming from the second-level cache.
        _mm_prefetch(reinterpret_cast<const char*>(x + i + 32), _MM_HINT_T0);
        _mm_prefetch(reinterpret_cast<const char*>(x + i + 36), _MM_HINT_T0);
        _mm_prefetch(reinterpret_cast<const char*>(y + i + 32), _MM_HINT_T0);
        _mm_prefetch(reinterpret_cast<const char*>(y + i + 36), _MM_HINT_T0);
        for (int k = 0; k < 4; ++k) {
            const __m256d xv = _mm256_loadu_pd(&x[i + 2 * k].re);
            const __m256d yv = _mm256_loadu_pd(&y[i + 2 * k].re);
            a[k] = _mm256_add_pd(a[k], _mm256_mul_pd(xv, yv));
            b[k] = _mm256_add_pd(b[k], _mm256_mul_pd(xv, _mm256_permute_pd(yv, 5)));
        }
    }
    for (; n - i >= 2; i += 2) {
        const __m256d xv = _mm256_loadu_pd(&x[i].re);
        const __m256d yv = _mm256_loadu_pd(&y[i].re);
        a[0] = _mm256_add_pd(a[0], _mm256_mul_pd(xv, yv));
        b[0] = _mm256_add_pd(b[0], _mm256_mul_pd(xv, _mm256_permute_pd(yv, 5)));
    }
    const __m256d a4 = _mm256_add_pd(_mm256_add_pd(a[0], a[1]), _mm256_add_pd(a[2], a[3]));
    const __m256d b4 = _mm256_add_pd(_mm256_add_pd(b[0], b[1]), _mm256_add_pd(b[2], b[3]));
    ProductSums s{_mm_add_pd(_mm256_castpd256_pd128(a4), _mm256_extractf128_pd(a4, 1)),
                  _mm_add_pd(_mm256_castpd256_pd128(b4), _mm256_extractf128_pd(b4, 1))};
    if (i < n) add_product(s, load_complex(x + i), load_complex(y + i));
    store_dot<kConjugate>(result, s.a, s.b);
}
#endif

// The result is stored last, so that it may share memory with x or y.
template <bool kConjugate>
void zdot(zcomplex* result, zint n, const zcomplex* x, zint incx, const zcomplex* y, zint incy) {
    zcomplex value{0.0, 0.0};
    if (n >= 1) {
#if ZOR_LEVEL == 4
        zdot_avx<kConjugate>(&value, n, x, incx, y, incy);
#else
        if constexpr (kLevel == CpuLevel::Default) {
            zdot_default<kConjugate>(&value, n, x, incx, y, incy);
        } else {
            zdot_sse<kConjugate>(&value, n, x, incx, y, incy);
        }
#endif
    }
    *result = value;
}

}  // namespace

double ddot(const zint& n, const double* x, const zint& incx, const double* y, const zint& incy) {
    if (n < 1) return 0.0;
#if ZOR_LEVEL == 4
    return ddot_four_lane(n, x, incx, y, incy);
#else
    return ddot_two_lane(n, x, incx, y, incy);
#endif
}

void zdotc(zcomplex* result, const zint& n, const zcomplex* x, const zint& incx, const zcomplex* y,
           const zint& incy) {
    zdot<true>(result, n, x, incx, y, incy);
}

void zdotu(zcomplex* result, const zint& n, const zcomplex* x, const zint& incx, const zcomplex* y,
           const zint& incy) {
    zdot<false>(result, n, x, incx, y, incy);
}

}  // namespace zor::ZOR_LEVEL_NS
