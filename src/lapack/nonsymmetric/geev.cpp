// geev: eigenvalues and eigenvectors of a general matrix. The matrix is scaled into range,
// balanced (permutation and scaling), reduced to Hessenberg form and to Schur form by the QR
// algorithm, with the Schur vectors accumulated when vectors are wanted; trevc3 then computes the
// eigenvectors of T and transforms them back, and gebak undoes the balancing. Each vector is
// normalised to Euclidean norm 1 and turned so that its largest component is real.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/hessenberg/hessenberg.hpp"
#include "lapack/nonsymmetric/driver_support.hpp"
#include "lapack/nonsymmetric/nonsymmetric.hpp"
#include "lapack/qr/qr.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"

namespace zor {

namespace {

// x := x / ||x||₂, then turned by a unit factor so that its largest component is real.
void normalise(zint n, zcomplex* x, double* scratch) {
    Blas<zcomplex>::scal_real(n, 1.0 / Blas<zcomplex>::nrm2(n, x, 1), x, 1);
    for (zint k = 0; k < n; ++k) scratch[k] = x[k].re * x[k].re + x[k].im * x[k].im;
    const zint k = Blas<double>::iamax(n, scratch, 1) - 1;
    const zcomplex turn = conj(x[k]) / std::sqrt(scratch[k]);
    Blas<zcomplex>::scal(n, turn, x, 1);
    x[k].im = 0.0;
}

// Real data: a real vector to norm 1; a complex pair (real and imaginary parts in two columns) to
// norm 1 with its largest component rotated onto the real part.
void normalise_real(zint n, Eigenvalues<double> w, double* v, zint ldv, double* scratch) {
    for (zint i = 0; i < n; ++i) {
        double* x = v + i * ldv;
        if (w.im[i] == 0.0) {
            Blas<double>::scal(n, 1.0 / Blas<double>::nrm2(n, x, 1), x, 1);
        } else if (w.im[i] > 0.0) {
            double* y = x + ldv;
            const double scl = 1.0 / lapy2(Blas<double>::nrm2(n, x, 1), Blas<double>::nrm2(n, y, 1));
            Blas<double>::scal(n, scl, x, 1);
            Blas<double>::scal(n, scl, y, 1);
            for (zint k = 0; k < n; ++k) scratch[k] = x[k] * x[k] + y[k] * y[k];
            const zint k = Blas<double>::iamax(n, scratch, 1) - 1;
            double cs, sn, r;
            lartg(x[k], y[k], cs, sn, r);
            Blas<double>::rot(n, x, 1, y, 1, cs, sn);
            y[k] = 0.0;
        }
    }
}

}  // namespace

template <class T>
zint check_geev(char jobvl, char jobvr, zint n, zint lda, zint ldvl, zint ldvr, zint lwork) {
    const bool wantvl = lsame(jobvl, 'V'), wantvr = lsame(jobvr, 'V');
    // The complex form has no wi: its later parameters are numbered one less.
    const int shift = kIsComplex<T> ? 1 : 0;
    const zint least = driver_workspace<T>(wantvl || wantvr, wantvl || wantvr, max_of(n, 0)).minimum;
    return check_arguments(routine_name<T>("DGEEV ", "ZGEEV "),
                           {{!wantvl && !lsame(jobvl, 'N'), 1},
                            {!wantvr && !lsame(jobvr, 'N'), 2},
                            {n < 0, 3},
                            {lda < max_of(1, n), 5},
                            {ldvl < 1 || (wantvl && ldvl < n), 9 - shift},
                            {ldvr < 1 || (wantvr && ldvr < n), 11 - shift},
                            {lwork != -1 && lwork < least, 13 - shift}});
}

template <class T>
void geev(char jobvl, char jobvr, zint n, T* a, zint lda, Eigenvalues<T> w, T* vl, zint ldvl, T* vr,
          zint ldvr, T* work, zint lwork, double* rwork, zint& info) {
    info = check_geev<T>(jobvl, jobvr, n, lda, ldvl, ldvr, lwork);
    if (info != 0) return;
    const bool wantvl = lsame(jobvl, 'V'), wantvr = lsame(jobvr, 'V');
    const DriverWork sizes = driver_workspace<T>(wantvl || wantvr, wantvl || wantvr, n);
    work[0] = from_real<T>(static_cast<double>(sizes.optimal));
    if (lwork == -1 || n == 0) return;

    HessenbergStart<T> start;
    if (!start_driver('B', n, a, lda, w, work, lwork, rwork, start, info)) return;
    const zint ilo = start.ilo, ihi = start.ihi;
    zint ierr = 0;

    // The Schur form, with the Schur vectors in VL (and copied to VR) or VR when vectors are wanted;
    // tau is no longer needed then, so the QR and trevc3 take the work from its place on.
    char side = 'R';
    T* tau = start.tau;
    const zint after_tau = start.after_tau;
    if (wantvl || wantvr) {
        T* q = wantvl ? vl : vr;
        const zint ldq = wantvl ? ldvl : ldvr;
        lacpy('L', n, n, a, lda, q, ldq);
        orghr(n, ilo, ihi, q, ldq, tau, start.rest, start.rest_size, ierr);
        hseqr('S', 'V', n, ilo, ihi, a, lda, w, q, ldq, tau, after_tau, info);
        if (wantvl) side = wantvr ? 'B' : 'L';
        if (wantvl && wantvr) lacpy('A', n, n, vl, ldvl, vr, ldvr);
    } else {
        hseqr('E', 'N', n, ilo, ihi, a, lda, w, vr, ldvr, tau, after_tau, info);
    }

    if (info == 0 && (wantvl || wantvr)) {
        zint m = 0;
        trevc3(side, 'B', static_cast<zint*>(nullptr), n, a, lda, vl, ldvl, vr, ldvr, n, m, tau, after_tau,
               kIsComplex<T> ? rwork + n : nullptr, ierr);
        double* scratch = kIsComplex<T> ? rwork + n : reinterpret_cast<double*>(tau);
        const auto finish = [&](char which, T* v, zint ldv) {
            gebak('B', which, n, ilo, ihi, start.balance, n, v, ldv, ierr);
            if constexpr (kIsComplex<T>) {
                for (zint i = 0; i < n; ++i) normalise(n, v + i * ldv, scratch);
            } else {
                normalise_real(n, w, v, ldv, scratch);
            }
        };
        if (wantvl) finish('L', vl, ldvl);
        if (wantvr) finish('R', vr, ldvr);
    }

    // The eigenvalues back to the scale of A: those computed (info + 1 .. n, and 1 .. ilo - 1 after
    // a failure).
    scale_back(start.scaling, w, info, n - info);
    if (info > 0) scale_back(start.scaling, w, 0, ilo - 1);
    work[0] = from_real<T>(static_cast<double>(sizes.optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(geev)
ZOR_INSTANTIATE(check_geev)
