#pragma once
// What ggev and gges share: the workspace, and the steps up to the generalized Schur form. A and B
// are scaled into [sqrt(safe minimum) / eps, its reciprocal] where their largest entries lie
// outside it, permuted (ggbal "P"), B factored B = Q R and A replaced by Qᴴ A over all trailing
// columns (with or without vectors, so that the eigenvalues are computed by the same operations
// either way), reduced by gghrd and iterated by hgeqz.

#include <cmath>
#include <limits>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/generalized/generalized.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

// Real data keeps the permutation indices and tau in work (3n) before the work of the steps;
// complex data keeps the indices in rwork and tau in work (n).
template <class T>
constexpr zint qz_front(zint n) {
    return kIsComplex<T> ? n : 3 * n;
}

// The optimum: the front and the largest optimum of the QR steps (asked of the routines), at least
// `minimum`.
template <class T>
zint qz_optimal_work(zint n, bool wantl, zint minimum) {
    if (n == 0) return 1;
    T dummy[1] = {zero<T>()}, answer[1] = {zero<T>()};
    zint ierr = 0, best = n;
    geqrf(n, n, dummy, n, dummy, answer, -1, ierr);
    best = max_of(best, static_cast<zint>(real(answer[0])));
    ormqr('L', kAdjoint<T>, n, n, n, dummy, n, dummy, dummy, n, answer, -1, ierr);
    best = max_of(best, static_cast<zint>(real(answer[0])));
    if (wantl) {
        orgqr(n, n, n, dummy, n, dummy, answer, -1, ierr);
        best = max_of(best, static_cast<zint>(real(answer[0])));
    }
    return max_of(minimum, qz_front<T>(n) + best);
}

struct QzStart {
    double anrm = 0.0, bnrm = 0.0, anrmto = 0.0, bnrmto = 0.0;
    bool ascaled = false, bscaled = false;
    zint ilo = 1, ihi = 0;
    double* lscale = nullptr;
    double* rscale = nullptr;
};

// The steps to the generalized Schur form (job "S", or "E" for eigenvalues only). Answers hgeqz's
// info; a pencil with an infinite or NaN entry is not touched: its eigenvalues are NaN and the
// answer is n.
template <class T>
zint qz_start(char job, bool wantl, bool wantr, zint n, T* a, zint lda, T* b, zint ldb, Eigenvalues<T> alpha,
              T* beta, T* vl, zint ldvl, T* vr, zint ldvr, T* work, zint lwork, double* rwork, QzStart& s) {
    const double eps = dlamch("P");
    const double smlnum = std::sqrt(dlamch("S")) / eps, bignum = 1.0 / smlnum;
    s.anrm = lange('M', n, n, a, lda, nullptr);
    s.bnrm = lange('M', n, n, b, ldb, nullptr);
    if (!std::isfinite(s.anrm) || !std::isfinite(s.bnrm)) {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        for (zint i = 0; i < n; ++i) {
            alpha.set(i, {nan, kIsComplex<T> ? nan : 0.0});
            beta[i] = from_real<T>(nan);
        }
        return n;
    }
    zint ierr = 0;
    auto into_range = [&](double norm, T* m, zint ld, double& to) {
        to = norm;
        if (norm > 0.0 && norm < smlnum) to = smlnum;
        if (norm > bignum) to = bignum;
        if (to != norm) lascl('G', 0, 0, norm, to, n, n, m, ld, ierr);
        return to != norm;
    };
    s.ascaled = into_range(s.anrm, a, lda, s.anrmto);
    s.bscaled = into_range(s.bnrm, b, ldb, s.bnrmto);

    s.lscale = kIsComplex<T> ? rwork : reinterpret_cast<double*>(work);
    s.rscale = s.lscale + n;
    T* tau = kIsComplex<T> ? work : work + 2 * n;
    T* rest = work + qz_front<T>(n);
    const zint rest_size = lwork - qz_front<T>(n);
    ggbal('P', n, a, lda, b, ldb, s.ilo, s.ihi, s.lscale, s.rscale, nullptr, ierr);
    const zint ilo = s.ilo, irows = s.ihi + 1 - ilo, icols = n + 1 - ilo;
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
    gghrd(wantl ? 'V' : 'N', wantr ? 'V' : 'N', n, ilo, s.ihi, a, lda, b, ldb, vl, ldvl, vr, ldvr, ierr);
    zint info = 0;
    hgeqz(job, wantl ? 'V' : 'N', wantr ? 'V' : 'N', n, ilo, s.ihi, a, lda, b, ldb, alpha, beta, vl, ldvl, vr,
          ldvr, rest, rest_size, nullptr, info);
    return info;
}

// The eigenvalues back to the scale of A and B.
template <class T>
void qz_unscale_values(const QzStart& s, zint n, Eigenvalues<T> alpha, T* beta) {
    zint ierr = 0;
    if (s.ascaled) {
        if constexpr (kIsComplex<T>) {
            lascl('G', 0, 0, s.anrmto, s.anrm, n, 1, alpha.w, n, ierr);
        } else {
            lascl('G', 0, 0, s.anrmto, s.anrm, n, 1, alpha.re, n, ierr);
            lascl('G', 0, 0, s.anrmto, s.anrm, n, 1, alpha.im, n, ierr);
        }
    }
    if (s.bscaled) lascl('G', 0, 0, s.bnrmto, s.bnrm, n, 1, beta, n, ierr);
}

}  // namespace zor
