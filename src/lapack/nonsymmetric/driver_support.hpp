#pragma once
// What gees and geev share: the range [sqrt(safe minimum) / eps, its reciprocal] their matrix is
// scaled into, and the answer to a matrix with an infinite or NaN entry.

#include <cmath>
#include <limits>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"
#include "lapack/schur/schur.hpp"

namespace zor {

// The scaling of A into range, and back.
struct DriverScaling {
    double anrm = 0.0;    // the largest |a_ij|
    double cscale = 1.0;  // what it was scaled to
    bool scaled = false;
    double smlnum = 0.0;
};

template <class T>
DriverScaling scale_into_range(zint n, T* a, zint lda) {
    DriverScaling s;
    const double eps = dlamch("P");
    s.smlnum = std::sqrt(dlamch("S")) / eps;
    const double bignum = 1.0 / s.smlnum;
    s.anrm = lange('M', n, n, a, lda, nullptr);
    if (s.anrm > 0.0 && s.anrm < s.smlnum) {
        s.scaled = true;
        s.cscale = s.smlnum;
    } else if (s.anrm > bignum && std::isfinite(s.anrm)) {
        s.scaled = true;
        s.cscale = bignum;
    }
    zint ierr = 0;
    if (s.scaled) lascl('G', 0, 0, s.anrm, s.cscale, n, n, a, lda, ierr);
    return s;
}

// A matrix with an infinite or NaN entry has no computable eigenvalues: the drivers report that
// the QR algorithm computed none (info = n) with NaN eigenvalues, without iterating.
template <class T>
bool not_finite(const DriverScaling& s) {
    return !std::isfinite(s.anrm);
}
template <class T>
void fill_nan(zint n, Eigenvalues<T> w) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (zint i = 0; i < n; ++i) w.set(i, {nan, kIsComplex<T> ? nan : 0.0});
}

}  // namespace zor
