// larf: one elementary reflector applied from the left or the right, with the trailing zeros of v
// and of C skipped; ilalc and ilalr find those zeros in C.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"

namespace zor {

template <class T>
zint ilalc(zint m, zint n, const T* a, zint lda) {
    if (m <= 0 || n <= 0) return 0;
    // The corners first: most matrices end in a nonzero.
    if (!is_zero(a[(n - 1) * lda]) || !is_zero(a[m - 1 + (n - 1) * lda])) return n;
    for (zint j = n - 1; j >= 0; --j) {
        for (zint i = 0; i < m; ++i) {
            if (!is_zero(a[i + j * lda])) return j + 1;
        }
    }
    return 0;
}

template <class T>
zint ilalr(zint m, zint n, const T* a, zint lda) {
    if (m <= 0 || n <= 0) return 0;
    if (!is_zero(a[m - 1]) || !is_zero(a[m - 1 + (n - 1) * lda])) return m;
    zint last = 0;
    for (zint j = 0; j < n; ++j) {
        zint i = m;
        while (i > last && is_zero(a[i - 1 + j * lda])) --i;
        last = max_of(last, i);
    }
    return last;
}

template <class T>
void larf(char side, zint m, zint n, const T* v, zint incv, T tau, T* c, zint ldc, T* work) {
    const bool left = lsame(side, 'L');
    if (is_zero(tau)) return;
    const zint length = left ? m : n;
    // Drop the trailing zeros of v (for a negative stride they come first in storage).
    zint lastv = length;
    const zint step = incv > 0 ? incv : -incv;
    while (lastv > 0 && is_zero(v[incv > 0 ? (lastv - 1) * step : (length - lastv) * step])) --lastv;
    if (lastv == 0) return;
    const T* vv = incv > 0 ? v : v + (length - lastv) * step;
    const T one = zor::one<T>(), zero = zor::zero<T>();
    if (left) {
        const zint lastc = ilalc(lastv, n, c, ldc);
        if (lastc == 0) return;
        // w := C(1:lastv, 1:lastc)ᴴ v; C := C - tau v wᴴ
        Blas<T>::gemv(kAdjoint<T>, lastv, lastc, one, c, ldc, vv, incv, zero, work, 1);
        Blas<T>::gerc(lastv, lastc, -tau, vv, incv, work, 1, c, ldc);
    } else {
        const zint lastc = ilalr(m, lastv, c, ldc);
        if (lastc == 0) return;
        // w := C(1:lastc, 1:lastv) v; C := C - tau w vᴴ
        Blas<T>::gemv('N', lastc, lastv, one, c, ldc, vv, incv, zero, work, 1);
        Blas<T>::gerc(lastc, lastv, -tau, work, 1, vv, incv, c, ldc);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(ilalc)
ZOR_INSTANTIATE(ilalr)
ZOR_INSTANTIATE(larf)
