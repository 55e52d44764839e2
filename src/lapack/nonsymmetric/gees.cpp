// gees: the Schur factorization of a general matrix, optionally with the eigenvalues the caller
// selects moved to the top of T. The matrix is scaled into range, permuted (no scaling, which would
// spoil the Schur vectors' orthogonality), reduced to Hessenberg and then Schur form; the selected
// eigenvalues are collected by trsen; the permutation and scaling are undone on Z and T.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/hessenberg/hessenberg.hpp"
#include "lapack/nonsymmetric/driver_support.hpp"
#include "lapack/nonsymmetric/nonsymmetric.hpp"
#include "lapack/qr/qr.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"

namespace zor {

namespace {

// The caller's answer for eigenvalue i (zero-based), in the Fortran convention.
inline bool selected(RealSelect select, Eigenvalues<double> w, zint i) {
    return select(w.re + i, w.im + i) != 0;
}
inline bool selected(ComplexSelect select, Eigenvalues<zcomplex> w, zint i) {
    return select(reinterpret_cast<const zor_complex_double*>(w.w + i)) != 0;
}

// Real data scaled back towards underflow: a 2 by 2 block whose off-diagonal entries underflowed
// describes real eigenvalues now; its wi are set to zero, and a block whose upper entry vanished is
// turned into upper triangular form by exchanging its rows and columns.
void repair_underflowed_pairs(zint n, double* a, zint lda, double* wi, double* vs, zint ldvs, bool wantvs,
                              zint i1, zint i2) {
    const auto A = [&](zint i, zint j) -> double& { return a[(i - 1) + (j - 1) * lda]; };
    for (zint i = i1; i <= i2;) {
        if (wi[i - 1] == 0.0) {
            ++i;
            continue;
        }
        if (A(i + 1, i) == 0.0) {
            wi[i - 1] = wi[i] = 0.0;
        } else if (A(i, i + 1) == 0.0) {
            wi[i - 1] = wi[i] = 0.0;
            if (i > 1) Blas<double>::swap(i - 1, &A(1, i), 1, &A(1, i + 1), 1);
            if (n > i + 1) Blas<double>::swap(n - i - 1, &A(i, i + 2), lda, &A(i + 1, i + 2), lda);
            if (wantvs) Blas<double>::swap(n, vs + (i - 1) * ldvs, 1, vs + i * ldvs, 1);
            A(i, i + 1) = A(i + 1, i);
            A(i + 1, i) = 0.0;
        }
        i += 2;
    }
}

// After a real reordering: sdim recounted from the caller's choices, and whether a selected
// eigenvalue follows one that is not (n + 2), which rounding in the reordering can cause.
zint recount(zint n, RealSelect select, Eigenvalues<double> w, zint& sdim) {
    zint info = 0;
    bool lastsl = true, lst2sl = true, first_of_pair = false;
    sdim = 0;
    for (zint i = 0; i < n; ++i) {
        bool cursl = selected(select, w, i);
        if (w.im[i] == 0.0) {
            if (cursl) ++sdim;
            first_of_pair = false;
            if (cursl && !lastsl) info = n + 2;
        } else if (first_of_pair) {
            // The second of a pair: the pair is selected when either is.
            cursl = cursl || lastsl;
            lastsl = cursl;
            if (cursl) sdim += 2;
            first_of_pair = false;
            if (cursl && !lst2sl) info = n + 2;
        } else {
            first_of_pair = true;
        }
        lst2sl = lastsl;
        lastsl = cursl;
    }
    return info;
}

}  // namespace

template <class T>
zint check_gees(char jobvs, char sort, zint n, zint lda, zint ldvs, zint lwork) {
    const bool wantvs = lsame(jobvs, 'V');
    const int shift = kIsComplex<T> ? 1 : 0;
    const zint least = driver_workspace<T>(wantvs, false, max_of(n, 0)).minimum;
    return check_arguments(routine_name<T>("DGEES ", "ZGEES "),
                           {{!wantvs && !lsame(jobvs, 'N'), 1},
                            {!lsame(sort, 'S') && !lsame(sort, 'N'), 2},
                            {n < 0, 4},
                            {lda < max_of(1, n), 6},
                            {ldvs < 1 || (wantvs && ldvs < n), 11 - shift},
                            {lwork != -1 && lwork < least, 13 - shift}});
}

template <class T>
void gees(char jobvs, char sort, EigenvalueSelect<T> select, zint n, T* a, zint lda, zint& sdim,
          Eigenvalues<T> w, T* vs, zint ldvs, T* work, zint lwork, double* rwork, zint* bwork, zint& info) {
    info = check_gees<T>(jobvs, sort, n, lda, ldvs, lwork);
    if (info != 0) return;
    const bool wantvs = lsame(jobvs, 'V'), wantst = lsame(sort, 'S');
    const DriverWork sizes = driver_workspace<T>(wantvs, false, n);
    work[0] = from_real<T>(static_cast<double>(sizes.optimal));
    if (lwork == -1) return;
    sdim = 0;
    if (n == 0) return;

    HessenbergStart<T> start;
    if (!start_driver('P', n, a, lda, w, work, lwork, rwork, start, info)) return;
    const DriverScaling& scaling = start.scaling;
    const zint ilo = start.ilo, ihi = start.ihi;
    T* tau = start.tau;
    const zint after_tau = start.after_tau;
    zint ierr = 0;
    if (wantvs) {
        lacpy('L', n, n, a, lda, vs, ldvs);
        orghr(n, ilo, ihi, vs, ldvs, tau, start.rest, start.rest_size, ierr);
    }
    zint ieval = 0;
    hseqr('S', wantvs ? 'V' : 'N', n, ilo, ihi, a, lda, w, vs, ldvs, tau, after_tau, ieval);
    if (ieval > 0) info = ieval;

    if (wantst && info == 0) {
        // The caller chooses among the eigenvalues at the scale of A.
        scale_back(scaling, w, 0, n);
        for (zint i = 0; i < n; ++i) bwork[i] = selected(select, w, i) ? 1 : 0;
        zint icond = 0;
        trsen('N', wantvs ? 'V' : 'N', bwork, n, a, lda, vs, ldvs, w, sdim, tau, after_tau, icond);
        if (icond > 0) info = n + icond;
    }
    if (wantvs) gebak('P', 'R', n, ilo, ihi, start.balance, n, vs, ldvs, ierr);

    if (scaling.scaled) {
        // T back to the scale of A, and the eigenvalues from it.
        if constexpr (kIsComplex<T>) {
            lascl('U', 0, 0, scaling.cscale, scaling.anrm, n, n, a, lda, ierr);
            for (zint i = 0; i < n; ++i) w.w[i] = a[i + i * lda];
        } else {
            lascl('H', 0, 0, scaling.cscale, scaling.anrm, n, n, a, lda, ierr);
            for (zint i = 0; i < n; ++i) w.re[i] = a[i + i * lda];
            if (scaling.cscale == scaling.smlnum) {
                zint i1 = ilo, i2 = ihi - 1;
                if (ieval > 0) {
                    i1 = ieval + 1;
                    i2 = ihi - 1;
                    lascl('G', 0, 0, scaling.cscale, scaling.anrm, ilo - 1, 1, w.im, max_of(ilo - 1, 1),
                          ierr);
                } else if (wantst) {
                    i1 = 1;
                    i2 = n - 1;
                }
                repair_underflowed_pairs(n, a, lda, w.im, vs, ldvs, wantvs, i1, i2);
            }
            lascl('G', 0, 0, scaling.cscale, scaling.anrm, n - ieval, 1, w.im + ieval, max_of(n - ieval, 1),
                  ierr);
        }
    }

    if constexpr (!kIsComplex<T>) {
        if (wantst && info == 0) info = recount(n, select, w, sdim);
    }
    work[0] = from_real<T>(static_cast<double>(sizes.optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(gees)
ZOR_INSTANTIATE(check_gees)
