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
#include "lapack/generalized/qz_driver.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

namespace {

template <class T>
zint minimum_work(zint n) {
    return kIsComplex<T> ? max_of(1, 2 * n) : max_of(1, 8 * n);
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
    const zint optimal = qz_optimal_work<T>(n, wantl, minimum_work<T>(n));
    work[0] = from_real<T>(static_cast<double>(optimal));
    if (lwork == -1 || n == 0) return;

    const double smlnum = std::sqrt(dlamch("S")) / dlamch("P");
    QzStart start;
    const zint ierr = qz_start(vectors ? 'S' : 'E', wantl, wantr, n, a, lda, b, ldb, alpha, beta, vl, ldvl,
                               vr, ldvr, work, lwork, rwork, start);
    if (ierr != 0) {
        info = (ierr > 0 && ierr <= n) ? ierr : n + 1;
        if (ierr == n && !std::isfinite(start.anrm + start.bnrm)) return;
    } else if (vectors) {
        const char side = wantl ? (wantr ? 'B' : 'L') : 'R';
        zint m = 0, jerr = 0;
        double* tgevc_rwork = kIsComplex<T> ? rwork + 2 * n : nullptr;
        T* tgevc_work = kIsComplex<T> ? work : work + 2 * n;
        tgevc(side, 'B', nullptr, n, a, lda, b, ldb, vl, ldvl, vr, ldvr, n, m, tgevc_work, tgevc_rwork, jerr);
        if (jerr != 0) {
            info = n + 2;
        } else {
            if (wantl) {
                ggbak('P', 'L', n, start.ilo, start.ihi, start.lscale, start.rscale, n, vl, ldvl, jerr);
                normalise(n, alpha, vl, ldvl, smlnum);
            }
            if (wantr) {
                ggbak('P', 'R', n, start.ilo, start.ihi, start.lscale, start.rscale, n, vr, ldvr, jerr);
                normalise(n, alpha, vr, ldvr, smlnum);
            }
        }
    }
    qz_unscale_values(start, n, alpha, beta);
    work[0] = from_real<T>(static_cast<double>(optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(ggev)
ZOR_INSTANTIATE(check_ggev)
