// ggev: the eigenvalues and eigenvectors of a general pencil (A, B). A and B are scaled into range
// where their largest entries are extreme, permuted (ggbal "P"), B is factored B = Q R and A
// replaced by Qᴴ A, the pair reduced to Hessenberg-triangular form (gghrd) and then to generalized
// Schur form (hgeqz); tgevc computes the vectors, ggbak undoes the permutation and each vector is
// normalised. The reduction always works on the full trailing columns, with or without vectors, so
// that the eigenvalues of both are computed by the same operations and agree to the bit.

#include <cmath>
#include <limits>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/generalized/generalized.hpp"
#include "lapack/generalized/generalized_support.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

namespace {

// Work: real data keeps the permutation indices and tau in work (3n) before the work of the
// steps; complex data keeps the indices in rwork and tau in work (n).
template <class T>
constexpr zint front_of(zint n) {
    return kIsComplex<T> ? n : 3 * n;
}

template <class T>
zint minimum_work(zint n) {
    return kIsComplex<T> ? max_of(1, 2 * n) : max_of(1, 8 * n);
}

// The optimum: the front and the largest optimum of the QR steps (asked of the routines), at
// least the minimum.
template <class T>
zint optimal_work(zint n, bool wantl) {
    if (n == 0) return 1;
    T dummy[1] = {zero<T>()}, answer[1] = {zero<T>()};
    zint ierr = 0, best = 0;
    geqrf(n, n, dummy, n, dummy, answer, -1, ierr);
    best = max_of(best, static_cast<zint>(real(answer[0])));
    ormqr('L', kAdjoint<T>, n, n, n, dummy, n, dummy, dummy, n, answer, -1, ierr);
    best = max_of(best, static_cast<zint>(real(answer[0])));
    if (wantl) {
        orgqr(n, n, n, dummy, n, dummy, answer, -1, ierr);
        best = max_of(best, static_cast<zint>(real(answer[0])));
    }
    return max_of(minimum_work<T>(n), front_of<T>(n) + max_of(best, n));
}

// Each vector (a pair of columns for a complex pair of real data) scaled so that its largest
// component has |re| + |im| = 1.
template <class T>
void normalise(zint n, Eigenvalues<T> alpha, T* v, zint ldv, double smlnum) {
    for (zint jc = 0; jc < n; ++jc) {
        const bool pair = !kIsComplex<T> && alpha.get(jc).im != 0.0;
        if (!kIsComplex<T> && alpha.get(jc).im < 0.0) continue;
        double largest = 0.0;
        for (zint jr = 0; jr < n; ++jr) {
            double size = abs1(v[jr + jc * ldv]);
            if (pair) size += std::fabs(real(v[jr + (jc + 1) * ldv]));
            largest = std::fmax(largest, size);
        }
        if (largest < smlnum) continue;
        const double f = 1.0 / largest;
        Blas<T>::scal_real(n, f, v + jc * ldv, 1);
        if (pair) Blas<T>::scal_real(n, f, v + (jc + 1) * ldv, 1);
    }
}

}  // namespace

template <class T>
zint check_ggev(char jobvl, char jobvr, zint n, zint lda, zint ldb, zint ldvl, zint ldvr, zint lwork) {
    const bool wantl = lsame(jobvl, 'V'), wantr = lsame(jobvr, 'V');
    const int shift = kIsComplex<T> ? 1 : 0;
    return check_arguments(routine_name<T>("DGGEV ", "ZGGEV "),
                           {{!wantl && !lsame(jobvl, 'N'), 1},
                            {!wantr && !lsame(jobvr, 'N'), 2},
                            {n < 0, 3},
                            {lda < max_of(1, n), 5},
                            {ldb < max_of(1, n), 7},
                            {ldvl < 1 || (wantl && ldvl < n), 12 - shift},
                            {ldvr < 1 || (wantr && ldvr < n), 14 - shift},
                            {lwork < minimum_work<T>(max_of(n, 0)) && lwork != -1, 16 - shift}});
}

template <class T>
void ggev(char jobvl, char jobvr, zint n, T* a, zint lda, T* b, zint ldb, Eigenvalues<T> alpha, T* beta,
          T* vl, zint ldvl, T* vr, zint ldvr, T* work, zint lwork, double* rwork, zint& info) {
    info = check_ggev<T>(jobvl, jobvr, n, lda, ldb, ldvl, ldvr, lwork);
    if (info != 0) return;
    const bool wantl = lsame(jobvl, 'V'), wantr = lsame(jobvr, 'V'), vectors = wantl || wantr;
    const zint optimal = optimal_work<T>(n, wantl);
    work[0] = from_real<T>(static_cast<double>(optimal));
    if (lwork == -1 || n == 0) return;

    const double eps = dlamch("P");
    const double smlnum = std::sqrt(dlamch("S")) / eps, bignum = 1.0 / smlnum;
    const double anrm = lange('M', n, n, a, lda, nullptr), bnrm = lange('M', n, n, b, ldb, nullptr);
    if (!std::isfinite(anrm) || !std::isfinite(bnrm)) {
        // No eigenvalue of such a pencil can be computed.
        const double nan = std::numeric_limits<double>::quiet_NaN();
        for (zint i = 0; i < n; ++i) {
            alpha.set(i, {nan, kIsComplex<T> ? nan : 0.0});
            beta[i] = from_real<T>(nan);
        }
        info = n;
        return;
    }
    zint ierr = 0;
    // A and B into range.
    auto into_range = [&](double norm, T* m, zint ld, double& to) {
        to = norm;
        if (norm > 0.0 && norm < smlnum) to = smlnum;
        if (norm > bignum) to = bignum;
        if (to != norm) lascl('G', 0, 0, norm, to, n, n, m, ld, ierr);
        return to != norm;
    };
    double anrmto = 0.0, bnrmto = 0.0;
    const bool ascaled = into_range(anrm, a, lda, anrmto);
    const bool bscaled = into_range(bnrm, b, ldb, bnrmto);

    double* lscale = kIsComplex<T> ? rwork : reinterpret_cast<double*>(work);
    double* rscale = lscale + n;
    T* tau = kIsComplex<T> ? work : work + 2 * n;
    T* rest = work + front_of<T>(n);
    const zint rest_size = lwork - front_of<T>(n);
    zint ilo = 1, ihi = n;
    ggbal('P', n, a, lda, b, ldb, ilo, ihi, lscale, rscale, nullptr, ierr);

    // B = Q R on the active rows, A := Qᴴ A; all trailing columns in both cases.
    const zint irows = ihi + 1 - ilo, icols = n + 1 - ilo;
    T* const a0 = a + (ilo - 1) + (ilo - 1) * lda;
    T* const b0 = b + (ilo - 1) + (ilo - 1) * ldb;
    geqrf(irows, icols, b0, ldb, tau, rest, rest_size, ierr);
    ormqr('L', kAdjoint<T>, irows, icols, irows, b0, ldb, tau, a0, lda, rest, rest_size, ierr);
    if (wantl) {
        laset('F', n, n, zero<T>(), one<T>(), vl, ldvl);
        if (irows > 1) lacpy('L', irows - 1, irows - 1, b0 + 1, ldb, vl + ilo + (ilo - 1) * ldvl, ldvl);
        orgqr(irows, irows, irows, vl + (ilo - 1) + (ilo - 1) * ldvl, ldvl, tau, rest, rest_size, ierr);
    }
    if (wantr) laset('F', n, n, zero<T>(), one<T>(), vr, ldvr);
    gghrd(wantl ? 'V' : 'N', wantr ? 'V' : 'N', n, ilo, ihi, a, lda, b, ldb, vl, ldvl, vr, ldvr, ierr);

    hgeqz(vectors ? 'S' : 'E', wantl ? 'V' : 'N', wantr ? 'V' : 'N', n, ilo, ihi, a, lda, b, ldb, alpha, beta,
          vl, ldvl, vr, ldvr, rest, rest_size, nullptr, ierr);
    if (ierr != 0) {
        info = (ierr > 0 && ierr <= n) ? ierr : n + 1;
    } else if (vectors) {
        const char side = wantl ? (wantr ? 'B' : 'L') : 'R';
        zint m = 0;
        double* tgevc_rwork = kIsComplex<T> ? rwork + 2 * n : nullptr;
        T* tgevc_work = kIsComplex<T> ? work : work + 2 * n;
        tgevc(side, 'B', nullptr, n, a, lda, b, ldb, vl, ldvl, vr, ldvr, n, m, tgevc_work, tgevc_rwork, ierr);
        if (ierr != 0) {
            info = n + 2;
        } else {
            if (wantl) {
                ggbak('P', 'L', n, ilo, ihi, lscale, rscale, n, vl, ldvl, ierr);
                normalise(n, alpha, vl, ldvl, smlnum);
            }
            if (wantr) {
                ggbak('P', 'R', n, ilo, ihi, lscale, rscale, n, vr, ldvr, ierr);
                normalise(n, alpha, vr, ldvr, smlnum);
            }
        }
    }
    // The eigenvalues back to the scale of A and B.
    if (ascaled) {
        if constexpr (kIsComplex<T>) {
            lascl('G', 0, 0, anrmto, anrm, n, 1, alpha.w, n, ierr);
        } else {
            lascl('G', 0, 0, anrmto, anrm, n, 1, alpha.re, n, ierr);
            lascl('G', 0, 0, anrmto, anrm, n, 1, alpha.im, n, ierr);
        }
    }
    if (bscaled) lascl('G', 0, 0, bnrmto, bnrm, n, 1, beta, n, ierr);
    work[0] = from_real<T>(static_cast<double>(optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(ggev)
ZOR_INSTANTIATE(check_ggev)
