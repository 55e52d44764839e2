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
#include "blas/simd.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

inline double measure(double v) {
    return abs(v);
}
inline double measure(const zcomplex& v) {
    return abs(v.re) + abs(v.im);
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

// The measures of the elements of one vector's width; complex ones in some order of lanes (only a
// block's extreme is used).
template <class L>
typename L::Vec measures(const double* x) {
    return L::abs(L::loadu(x));
}
template <class L>
typename L::Vec measures(const zcomplex* x) {
    const typename L::Vec a = L::abs(L::loadu(&x[0].re)), b = L::abs(L::loadu(&x[L::kLanes / 2].re));
    return L::add(L::unpack_low(a, b), L::unpack_high(a, b));
}

// Blocks of four vectors: a block in which no measure beats the best so far cannot change the
// scan's state (without NaN), so only blocks that do are scanned element by element. A running
// sum of all measures turns NaN if any is, and then the whole vector is scanned.
template <class L, bool kLargest, class T>
zint search_blocks(zint n, const T* x) {
    using V = typename L::Vec;
    constexpr zint kBlock = 4 * L::kLanes;
    ScanState<kLargest> state{measure(x[0]), 1};
    V best = L::splat(state.best);
    V probe = L::zero();
    zint i = 0;
    for (; n - i >= kBlock; i += kBlock) {
        const V m0 = measures<L>(x + i), m1 = measures<L>(x + i + L::kLanes);
        const V m2 = measures<L>(x + i + 2 * L::kLanes), m3 = measures<L>(x + i + 3 * L::kLanes);
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
    if (incx == 1 && n >= 4 * WideVec::kLanes) return search_blocks<WideVec, kLargest>(n, x);
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
