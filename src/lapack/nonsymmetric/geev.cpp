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

struct GeevWork {
    zint minimum, optimal;
};

// The workspace of geev; the carving below (balancing scale factors in work for real data, then
// tau, then the routines' own work) is what these sizes describe.
template <class T>
GeevWork geev_workspace(bool vectors, zint n) {
    if (n == 0) return {1, 1};
    // Real data keeps gebal's scale factors in work (n more elements), complex data in rwork.
    const zint front = kIsComplex<T> ? n : 2 * n;
    const zint rest = kIsComplex<T> ? 0 : n;  // what lies before the work of hseqr and trevc3
    const zint minimum = kIsComplex<T> ? 2 * n : (vectors ? 4 * n : 3 * n);
    // gehrd's own optimum, so that a call given this much reduces with the same blocks as any other.
    zint optimal = front + gehrd_workspace<T>(n, 1, n);
    if (vectors) {
        optimal = max_of(optimal,
                         front + (n - 1) * ilaenv(1, routine_name<T>("DORGHR", "ZUNGHR"), " ", n, 1, n, -1));
        optimal = max_of(optimal, rest + trevc3_workspace<T>(n));
    }
    optimal = max_of(optimal, rest + hseqr_workspace(n));
    return {minimum, max_of(optimal, minimum)};
}

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
    const zint least = geev_workspace<T>(wantvl || wantvr, max_of(n, 0)).minimum;
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
    const GeevWork sizes = geev_workspace<T>(wantvl || wantvr, n);
    work[0] = from_real<T>(static_cast<double>(sizes.optimal));
    if (lwork == -1 || n == 0) return;

    const DriverScaling scaling = scale_into_range(n, a, lda);
    if (not_finite<T>(scaling)) {
        fill_nan(n, w);
        info = n;
        return;
    }
    // Balancing's scale factors: work (real data) or rwork (complex data); then tau and the work of
    // the routines.
    double* balance = kIsComplex<T> ? rwork : reinterpret_cast<double*>(work);
    T* tau = kIsComplex<T> ? work : work + n;
    T* rest = tau + n;
    const zint rest_size = lwork - (rest - work);
    zint ilo = 1, ihi = n, ierr = 0;
    gebal('B', n, a, lda, ilo, ihi, balance, ierr);
    gehrd(n, ilo, ihi, a, lda, tau, rest, rest_size, ierr);

    // The Schur form, with the Schur vectors in VL (and copied to VR) or VR when vectors are wanted;
    // tau is no longer needed then, so the QR and trevc3 take the work from its place on.
    char side = 'R';
    const zint after_tau = lwork - (tau - work);
    if (wantvl || wantvr) {
        T* q = wantvl ? vl : vr;
        const zint ldq = wantvl ? ldvl : ldvr;
        lacpy('L', n, n, a, lda, q, ldq);
        orghr(n, ilo, ihi, q, ldq, tau, rest, rest_size, ierr);
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
            gebak('B', which, n, ilo, ihi, balance, n, v, ldv, ierr);
            if constexpr (kIsComplex<T>) {
                for (zint i = 0; i < n; ++i) normalise(n, v + i * ldv, scratch);
            } else {
                normalise_real(n, w, v, ldv, scratch);
            }
        };
        if (wantvl) finish('L', vl, ldvl);
        if (wantvr) finish('R', vr, ldvr);
    }

    if (scaling.scaled) {
        // The eigenvalues back to the scale of A: those computed (info + 1 .. n, and 1 .. ilo - 1
        // after a failure).
        const auto rescale = [&](zint first, zint count) {
            if (count <= 0) return;
            if constexpr (kIsComplex<T>) {
                lascl('G', 0, 0, scaling.cscale, scaling.anrm, count, 1, w.w + first, max_of(count, 1), ierr);
            } else {
                lascl('G', 0, 0, scaling.cscale, scaling.anrm, count, 1, w.re + first, max_of(count, 1),
                      ierr);
                lascl('G', 0, 0, scaling.cscale, scaling.anrm, count, 1, w.im + first, max_of(count, 1),
                      ierr);
            }
        };
        rescale(info, n - info);
        if (info > 0) rescale(0, ilo - 1);
    }
    work[0] = from_real<T>(static_cast<double>(sizes.optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(geev)
ZOR_INSTANTIATE(check_geev)
