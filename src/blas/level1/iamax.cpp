// Indices of the largest and smallest absolute values: idamax, idamin, izamax, izamin; the complex
// measure is |re| + |im|, one addition. The answer is that of a sequential scan in which a
// candidate replaces the best unless the ordered comparison of the two keeps the best: ties keep
// the earliest index, a NaN candidate always comes in and a NaN best is replaced by the next
// element. Results are 1-based; 0 when n < 1 or incx < 1.
//
// Unit-stride vectors are searched block by block, and only the blocks that can change the scan's
// state are scanned element by element, so the answer is exactly the scan's.

#include "blas/kernel.hpp"
#include "blas/level1/level1.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

inline double measure(double v) {
    return magnitude(v);
}
inline double measure(const zcomplex& v) {
    return magnitude(v.re) + magnitude(v.im);
}

template <bool kLargest>
struct ScanState {
    double best;
    zint index;  // 1-based

    void offer(double m, zint candidate) {
        const bool keep = kLargest ? best >= m : m >= best;
        if (!keep) {
            best = m;
            index = candidate;
        }
    }
};

template <bool kLargest, class T>
ScanState<kLargest> scan(ScanState<kLargest> state, zint from, zint n, const T* x, zint incx) {
    for (zint i = from; i < n; ++i) state.offer(measure(x[i * incx]), i + 1);
    return state;
}

struct TwoLanes {
    using V = __m128d;
    static constexpr int kWidth = 2;
    static V measures(const double* x) { return clear_sign(_mm_loadu_pd(x)); }
    static V measures(const zcomplex* x) {
        const V a = clear_sign(_mm_loadu_pd(&x[0].re)), b = clear_sign(_mm_loadu_pd(&x[1].re));
        return _mm_add_pd(_mm_unpacklo_pd(a, b), _mm_unpackhi_pd(a, b));
    }
    static V zero() { return _mm_setzero_pd(); }
    static V splat(double v) { return _mm_set1_pd(v); }
    static V add(V a, V b) { return _mm_add_pd(a, b); }
    static V larger(V a, V b) { return _mm_max_pd(a, b); }
    static V smaller(V a, V b) { return _mm_min_pd(a, b); }
    static bool any_greater(V a, V b) { return _mm_movemask_pd(_mm_cmpgt_pd(a, b)) != 0; }
    static bool any_less(V a, V b) { return _mm_movemask_pd(_mm_cmplt_pd(a, b)) != 0; }
    static bool any_nan(V a) { return _mm_movemask_pd(_mm_cmpunord_pd(a, a)) != 0; }
};

#if ZOR_LEVEL == 4
struct FourLanes {
    using V = __m256d;
    static constexpr int kWidth = 4;
    static V measures(const double* x) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), _mm256_loadu_pd(x)); }
    // Four complex elements, their measures in some order of lanes (only the block's extreme is
    // used).
    static V measures(const zcomplex* x) {
        const V sign = _mm256_set1_pd(-0.0);
        const V a = _mm256_andnot_pd(sign, _mm256_loadu_pd(&x[0].re));
        const V b = _mm256_andnot_pd(sign, _mm256_loadu_pd(&x[2].re));
        return _mm256_add_pd(_mm256_unpacklo_pd(a, b), _mm256_unpackhi_pd(a, b));
    }
    static V zero() { return _mm256_setzero_pd(); }
    static V splat(double v) { return _mm256_set1_pd(v); }
    static V add(V a, V b) { return _mm256_add_pd(a, b); }
    static V larger(V a, V b) { return _mm256_max_pd(a, b); }
    static V smaller(V a, V b) { return _mm256_min_pd(a, b); }
    static bool any_greater(V a, V b) { return _mm256_movemask_pd(_mm256_cmp_pd(a, b, _CMP_GT_OQ)) != 0; }
    static bool any_less(V a, V b) { return _mm256_movemask_pd(_mm256_cmp_pd(a, b, _CMP_LT_OQ)) != 0; }
    static bool any_nan(V a) { return _mm256_movemask_pd(_mm256_cmp_pd(a, a, _CMP_UNORD_Q)) != 0; }
};
#endif

// Blocks of four vectors: a block in which no measure beats the best so far cannot change the
// scan's state (without NaN), so only blocks that do are scanned element by element. A running
// sum of all measures turns NaN if any is, and then the whole vector is scanned.
template <class L, bool kLargest, class T>
zint search_blocks(zint n, const T* x) {
    using V = typename L::V;
    constexpr zint kBlock = 4 * L::kWidth;
    ScanState<kLargest> state{measure(x[0]), 1};
    V best = L::splat(state.best);
    V probe = L::zero();
    zint i = 0;
    for (; n - i >= kBlock; i += kBlock) {
        const V m0 = L::measures(x + i), m1 = L::measures(x + i + L::kWidth);
        const V m2 = L::measures(x + i + 2 * L::kWidth), m3 = L::measures(x + i + 3 * L::kWidth);
        probe = L::add(probe, L::add(L::add(m0, m1), L::add(m2, m3)));
        if constexpr (kLargest) {
            if (!L::any_greater(L::larger(L::larger(m0, m1), L::larger(m2, m3)), best)) continue;
        } else {
            if (!L::any_less(L::smaller(L::smaller(m0, m1), L::smaller(m2, m3)), best)) continue;
        }
        state = scan(state, i, i + kBlock, x, 1);
        best = L::splat(state.best);
    }
    if (L::any_nan(probe)) return scan(ScanState<kLargest>{measure(x[0]), 1}, 1, n, x, 1).index;
    return scan(state, i, n, x, 1).index;
}

template <bool kLargest, class T>
zint extreme_index(zint n, const T* x, zint incx) {
    if (n <= 0 || incx <= 0) return 0;
#if ZOR_LEVEL == 4
    using Lanes = FourLanes;
#else
    using Lanes = TwoLanes;
#endif
    if (incx == 1 && n >= 4 * Lanes::kWidth) return search_blocks<Lanes, kLargest>(n, x);
    return scan(ScanState<kLargest>{measure(x[0]), 1}, 1, n, x, incx).index;
}

}  // namespace

zint idamax(const zint& n, const double* x, const zint& incx) {
    return extreme_index<true>(n, x, incx);
}

zint idamin(const zint& n, const double* x, const zint& incx) {
    return extreme_index<false>(n, x, incx);
}

zint izamax(const zint& n, const zcomplex* x, const zint& incx) {
    return extreme_index<true>(n, x, incx);
}

zint izamin(const zint& n, const zcomplex* x, const zint& incx) {
    return extreme_index<false>(n, x, incx);
}

}  // namespace zor::ZOR_LEVEL_NS
