// Indices of the largest and smallest absolute values: idamax, idamin, izamax, izamin; the complex
// measure is |re| + |im|, one addition. The answer is that of a sequential scan in which a
// candidate replaces the best unless the ordered comparison of the two keeps the best: ties keep
// the earliest index, a NaN candidate always comes in and a NaN best is replaced by the next
// element. Results are 1-based; 0 when n < 1 or incx < 1.
//
// Unit-stride vectors are searched lane by lane: each lane keeps its extreme measure and the
// first index that reached it, so without NaN the lanes' combined answer (extreme measure, then
// smallest index) is exactly the scan's. A NaN anywhere in that part sends the call back to the
// sequential scan; the elements after it are scanned sequentially from the combined state.

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
    // The element offsets of the lanes of measures(x + base), from base.
    static V offsets(const double*, double base) { return _mm_set_pd(base + 1, base); }
    static V offsets(const zcomplex*, double base) { return _mm_set_pd(base + 1, base); }
    static V splat(double v) { return _mm_set1_pd(v); }
    static V add(V a, V b) { return _mm_add_pd(a, b); }
    static V either(V a, V b) { return _mm_or_pd(a, b); }
    static V greater(V a, V b) { return _mm_cmpgt_pd(a, b); }
    static V less(V a, V b) { return _mm_cmplt_pd(a, b); }
    static V unordered(V a) { return _mm_cmpunord_pd(a, a); }
    static V select(V mask, V if_set, V otherwise) {
        if constexpr (kLevel >= CpuLevel::Sse42) return _mm_blendv_pd(otherwise, if_set, mask);
        return _mm_or_pd(_mm_and_pd(mask, if_set), _mm_andnot_pd(mask, otherwise));
    }
    static bool any(V mask) { return _mm_movemask_pd(mask) != 0; }
    static void store(double* out, V v) { _mm_storeu_pd(out, v); }
};

#if ZOR_LEVEL == 4
struct FourLanes {
    using V = __m256d;
    static constexpr int kWidth = 4;
    static V measures(const double* x) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), _mm256_loadu_pd(x)); }
    // Four complex elements: the unpacks pair them within 128-bit halves, so the lanes hold the
    // measures of elements 0, 2, 1, 3.
    static V measures(const zcomplex* x) {
        const V sign = _mm256_set1_pd(-0.0);
        const V a = _mm256_andnot_pd(sign, _mm256_loadu_pd(&x[0].re));
        const V b = _mm256_andnot_pd(sign, _mm256_loadu_pd(&x[2].re));
        return _mm256_add_pd(_mm256_unpacklo_pd(a, b), _mm256_unpackhi_pd(a, b));
    }
    static V offsets(const double*, double base) { return _mm256_set_pd(base + 3, base + 2, base + 1, base); }
    static V offsets(const zcomplex*, double base) {
        return _mm256_set_pd(base + 3, base + 1, base + 2, base);
    }
    static V splat(double v) { return _mm256_set1_pd(v); }
    static V add(V a, V b) { return _mm256_add_pd(a, b); }
    static V either(V a, V b) { return _mm256_or_pd(a, b); }
    static V greater(V a, V b) { return _mm256_cmp_pd(a, b, _CMP_GT_OQ); }
    static V less(V a, V b) { return _mm256_cmp_pd(a, b, _CMP_LT_OQ); }
    static V unordered(V a) { return _mm256_cmp_pd(a, a, _CMP_UNORD_Q); }
    static V select(V mask, V if_set, V otherwise) { return _mm256_blendv_pd(otherwise, if_set, mask); }
    static bool any(V mask) { return _mm256_movemask_pd(mask) != 0; }
    static void store(double* out, V v) { _mm256_storeu_pd(out, v); }
};
#endif

// Four accumulators of L::kWidth lanes; indices are held as doubles (exact below 2^53).
template <class L, bool kLargest, class T>
zint search_lanes(zint n, const T* x) {
    using V = typename L::V;
    constexpr int kStep = 4 * L::kWidth;
    V best[4], index[4], offset[4];
    V nan = L::splat(0.0);
    for (int k = 0; k < 4; ++k) {
        best[k] = L::measures(x + k * L::kWidth);
        offset[k] = index[k] = L::offsets(x, k * L::kWidth);
        nan = L::either(nan, L::unordered(best[k]));
    }
    const V step = L::splat(kStep);
    zint i = kStep;
    for (; n - i >= kStep; i += kStep) {
        for (int k = 0; k < 4; ++k) {
            const V m = L::measures(x + i + k * L::kWidth);
            offset[k] = L::add(offset[k], step);
            nan = L::either(nan, L::unordered(m));
            const V better = kLargest ? L::greater(m, best[k]) : L::less(m, best[k]);
            best[k] = L::select(better, m, best[k]);
            index[k] = L::select(better, offset[k], index[k]);
        }
    }
    if (L::any(nan)) return scan(ScanState<kLargest>{measure(x[0]), 1}, 1, n, x, 1).index;
    double values[kStep], indices[kStep];
    for (int k = 0; k < 4; ++k) {
        L::store(values + k * L::kWidth, best[k]);
        L::store(indices + k * L::kWidth, index[k]);
    }
    ScanState<kLargest> state{values[0], static_cast<zint>(indices[0]) + 1};
    for (int j = 1; j < kStep; ++j) {
        const zint candidate = static_cast<zint>(indices[j]) + 1;
        const bool better = kLargest ? values[j] > state.best : values[j] < state.best;
        if (better || (values[j] == state.best && candidate < state.index)) state = {values[j], candidate};
    }
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
    if (incx == 1 && n >= 8 * Lanes::kWidth) return search_lanes<Lanes, kLargest>(n, x);
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
