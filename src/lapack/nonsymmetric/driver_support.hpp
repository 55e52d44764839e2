#pragma once
// What gees and geev share: the range [sqrt(safe minimum) / eps, its reciprocal] their matrix is
// scaled into and back out of, the answer to a matrix with an infinite or NaN entry, and the steps
// up to the Hessenberg form with the work they take.

#include <cmath>
#include <limits>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/hessenberg/hessenberg.hpp"
#include "lapack/lapack.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"
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

// The eigenvalues count .. count + first - 1 back to the scale of A.
template <class T>
void scale_back(const DriverScaling& s, Eigenvalues<T> w, zint first, zint count) {
    if (!s.scaled || count <= 0) return;
    zint ierr = 0;
    if constexpr (kIsComplex<T>) {
        lascl('G', 0, 0, s.cscale, s.anrm, count, 1, w.w + first, count, ierr);
    } else {
        lascl('G', 0, 0, s.cscale, s.anrm, count, 1, w.re + first, count, ierr);
        lascl('G', 0, 0, s.cscale, s.anrm, count, 1, w.im + first, count, ierr);
    }
}

// The work of the drivers: real data keeps gebal's factors in work (n elements) before tau (n),
// complex data in rwork; the steps after the Hessenberg reduction take the work from tau's place on
// (`rest` elements before it for real data).
template <class T>
constexpr zint driver_front(zint n) {
    return kIsComplex<T> ? n : 2 * n;
}
template <class T>
constexpr zint driver_rest(zint n) {
    return kIsComplex<T> ? 0 : n;
}

struct DriverWork {
    zint minimum, optimal;
};

// The workspace of the drivers, what the carving of start_driver and the later steps describes: the
// minimum is the published one (real data 3n, 4n with eigenvectors; complex data 2n), the optimum
// the largest of what each step is given (gehrd's own optimum, so that a call given this much
// reduces with the same blocks as any other; orghr's when the Schur vectors are formed; hseqr's;
// trevc3's with eigenvectors).
template <class T>
DriverWork driver_workspace(bool schur_vectors, bool eigenvectors, zint n) {
    if (n == 0) return {1, 1};
    const zint front = driver_front<T>(n), rest = driver_rest<T>(n);
    const zint minimum = kIsComplex<T> ? 2 * n : (eigenvectors ? 4 * n : 3 * n);
    zint optimal = front + gehrd_workspace<T>(n, 1, n);
    if (schur_vectors) {
        const zint nb = ilaenv(1, routine_name<T>("DORGHR", "ZUNGHR"), " ", n, 1, n, -1);
        optimal = max_of(optimal, front + (n - 1) * nb);
    }
    if (eigenvectors) optimal = max_of(optimal, rest + trevc3_workspace<T>(n));
    optimal = max_of(optimal, rest + hseqr_workspace(n));
    return {minimum, max_of(optimal, minimum)};
}

// Where the drivers are once A is in Hessenberg form.
template <class T>
struct HessenbergStart {
    DriverScaling scaling;
    double* balance;  // gebal's factors
    T* tau;           // the reflectors' scalars, then the work of the later steps
    T* rest;          // the work of gehrd and orghr
    zint rest_size, after_tau;
    zint ilo = 1, ihi = 0;
};

// A scaled into range, balanced (job "B" or "P") and reduced to Hessenberg form. A matrix with an
// infinite or NaN entry has no computable eigenvalues: then nothing is done but info = n and NaN
// eigenvalues, and the answer is false.
template <class T>
bool start_driver(char job, zint n, T* a, zint lda, Eigenvalues<T> w, T* work, zint lwork, double* rwork,
                  HessenbergStart<T>& start, zint& info) {
    start.scaling = scale_into_range(n, a, lda);
    if (!std::isfinite(start.scaling.anrm)) {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        for (zint i = 0; i < n; ++i) w.set(i, {nan, kIsComplex<T> ? nan : 0.0});
        info = n;
        return false;
    }
    if constexpr (kIsComplex<T>) {
        start.balance = rwork;
        start.tau = work;
    } else {
        start.balance = work;
        start.tau = work + n;
    }
    start.rest = start.tau + n;
    start.rest_size = lwork - (start.rest - work);
    start.after_tau = lwork - (start.tau - work);
    zint ierr = 0;
    gebal(job, n, a, lda, start.ilo, start.ihi, start.balance, ierr);
    gehrd(n, start.ilo, start.ihi, a, lda, start.tau, start.rest, start.rest_size, ierr);
    return true;
}

}  // namespace zor
