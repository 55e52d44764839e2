// laqr1: the first column of the double-shift polynomial (H - s1 I)(H - s2 I), up to a scalar, for
// a 2 by 2 or 3 by 3 H: the vector that starts a bulge. The shifts are scaled out against the
// first column of H so that nothing overflows.

#include "lapack/schur/schur_support.hpp"

namespace zor {

template <class T>
void laqr1(zint n, const T* hp, zint ldh, zcomplex s1, zcomplex s2, T* v) {
    if (n != 2 && n != 3) return;
    const auto h = [&](zint i, zint j) { return hp[(i - 1) + (j - 1) * ldh]; };
    if constexpr (kIsComplex<T>) {
        const double s = abs1(h(1, 1) - s2) + abs1(h(2, 1)) + (n == 3 ? abs1(h(3, 1)) : 0.0);
        if (s == 0.0) {
            for (zint i = 0; i < n; ++i) v[i] = {};
            return;
        }
        const zcomplex h21s = h(2, 1) / s;
        if (n == 2) {
            v[0] = h21s * h(1, 2) + (h(1, 1) - s1) * ((h(1, 1) - s2) / s);
            v[1] = h21s * (h(1, 1) + h(2, 2) - s1 - s2);
            return;
        }
        const zcomplex h31s = h(3, 1) / s;
        v[0] = (h(1, 1) - s1) * ((h(1, 1) - s2) / s) + h(1, 2) * h21s + h(1, 3) * h31s;
        v[1] = h21s * (h(1, 1) + h(2, 2) - s1 - s2) + h(2, 3) * h31s;
        v[2] = h31s * (h(1, 1) + h(3, 3) - s1 - s2) + h21s * h(3, 2);
    } else {
        // A conjugate pair or two real shifts: the polynomial is real; the imaginary parts enter
        // through their product only.
        const double sr1 = s1.re, si1 = s1.im, sr2 = s2.re, si2 = s2.im;
        const double s = std::fabs(h(1, 1) - sr2) + std::fabs(si2) + std::fabs(h(2, 1)) +
                         (n == 3 ? std::fabs(h(3, 1)) : 0.0);
        if (s == 0.0) {
            for (zint i = 0; i < n; ++i) v[i] = 0.0;
            return;
        }
        const double h21s = h(2, 1) / s;
        if (n == 2) {
            v[0] = h21s * h(1, 2) + (h(1, 1) - sr1) * ((h(1, 1) - sr2) / s) - si1 * (si2 / s);
            v[1] = h21s * (h(1, 1) + h(2, 2) - sr1 - sr2);
            return;
        }
        const double h31s = h(3, 1) / s;
        v[0] = (h(1, 1) - sr1) * ((h(1, 1) - sr2) / s) - si1 * (si2 / s) + h(1, 2) * h21s + h(1, 3) * h31s;
        v[1] = h21s * (h(1, 1) + h(2, 2) - sr1 - sr2) + h(2, 3) * h31s;
        v[2] = h31s * (h(1, 1) + h(3, 3) - sr1 - sr2) + h21s * h(3, 2);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(laqr1)
