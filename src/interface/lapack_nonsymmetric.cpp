// The Fortran-style exports of the nonsymmetric eigenproblem: balancing (dgebal, dgebak), the
// Hessenberg reduction (dgehrd), the drivers (dgees, dgeev) and the routines on a Schur form
// (dtrexc, dtrsyl), with their z forms. Scalars are widened and the output scalars (ilo, ihi,
// sdim, ifst, ilst) narrowed back; dgees and zgees copy bwork (64-bit logicals inside) only when
// they sort and it is not a workspace query. The caller's select function is called as it is, with
// its arguments by reference and a 32-bit logical answer.

#include "interface/lapack_frame.hpp"
#include "lapack/hessenberg/hessenberg.hpp"
#include "lapack/nonsymmetric/nonsymmetric.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"
#include "zor/zor_lapack.h"

using namespace zor::fortran;
using zor::zint;

namespace {

template <class T>
void gebal_export(const char* name, const char* job, const zor_int* n, T* a, const zor_int* lda, zor_int* ilo,
                  zor_int* ihi, double* scale, zor_int* info) {
    const zint n_ = widen(n), lda_ = widen(lda);
    LapackCall(name, info, zor::check_gebal<T>(*job, n_, lda_)).run([&](zint& i) {
        zint ilo_ = 0, ihi_ = 0;
        zor::gebal(*job, n_, a, lda_, ilo_, ihi_, scale, i);
        *ilo = narrow(ilo_);
        *ihi = narrow(ihi_);
    });
}

template <class T>
void gebak_export(const char* name, const char* job, const char* side, const zor_int* n, const zor_int* ilo,
                  const zor_int* ihi, const double* scale, const zor_int* m, T* v, const zor_int* ldv,
                  zor_int* info) {
    const zint n_ = widen(n), ilo_ = widen(ilo), ihi_ = widen(ihi), m_ = widen(m), ldv_ = widen(ldv);
    LapackCall(name, info, zor::check_gebak<T>(*job, *side, n_, ilo_, ihi_, m_, ldv_)).run([&](zint& i) {
        zor::gebak(*job, *side, n_, ilo_, ihi_, scale, m_, v, ldv_, i);
    });
}

template <class T>
void gehrd_export(const char* name, const zor_int* n, const zor_int* ilo, const zor_int* ihi, T* a,
                  const zor_int* lda, T* tau, T* work, const zor_int* lwork, zor_int* info) {
    const zint n_ = widen(n), ilo_ = widen(ilo), ihi_ = widen(ihi), lda_ = widen(lda), lwork_ = widen(lwork);
    LapackCall(name, info, zor::check_gehrd<T>(n_, ilo_, ihi_, lda_, lwork_)).run([&](zint& i) {
        zor::gehrd(n_, ilo_, ihi_, a, lda_, tau, work, lwork_, i);
    });
}

template <class T>
void gees_export(const char* name, const char* jobvs, const char* sort, zor::EigenvalueSelect<T> select,
                 const zor_int* n, T* a, const zor_int* lda, zor_int* sdim, zor::Eigenvalues<T> w, T* vs,
                 const zor_int* ldvs, T* work, const zor_int* lwork, double* rwork, zor_int* bwork,
                 zor_int* info) {
    const zint n_ = widen(n), lda_ = widen(lda), ldvs_ = widen(ldvs), lwork_ = widen(lwork);
    LapackCall call(name, info, zor::check_gees<T>(*jobvs, *sort, n_, lda_, ldvs_, lwork_));
    zint* bwork_ = nullptr;
    if (!workspace_query(lwork_) && sorts(*sort)) bwork_ = call.array(bwork, n_, Transfer::None, 0);
    call.run([&](zint& i) {
        zint sdim_ = 0;
        zor::gees(*jobvs, *sort, select, n_, a, lda_, sdim_, w, vs, ldvs_, work, lwork_, rwork, bwork_, i);
        if (!workspace_query(lwork_)) *sdim = narrow(sdim_);
    });
}

template <class T>
void geev_export(const char* name, const char* jobvl, const char* jobvr, const zor_int* n, T* a,
                 const zor_int* lda, zor::Eigenvalues<T> w, T* vl, const zor_int* ldvl, T* vr,
                 const zor_int* ldvr, T* work, const zor_int* lwork, double* rwork, zor_int* info) {
    const zint n_ = widen(n), lda_ = widen(lda), ldvl_ = widen(ldvl), ldvr_ = widen(ldvr),
               lwork_ = widen(lwork);
    LapackCall(name, info, zor::check_geev<T>(*jobvl, *jobvr, n_, lda_, ldvl_, ldvr_, lwork_))
        .run([&](zint& i) {
            zor::geev(*jobvl, *jobvr, n_, a, lda_, w, vl, ldvl_, vr, ldvr_, work, lwork_, rwork, i);
        });
}

template <class T>
void trexc_export(const char* name, const char* compq, const zor_int* n, T* t, const zor_int* ldt, T* q,
                  const zor_int* ldq, zint& ifst, zint& ilst, T* work, zor_int* info) {
    const zint n_ = widen(n), ldt_ = widen(ldt), ldq_ = widen(ldq);
    LapackCall(name, info, zor::check_trexc<T>(*compq, n_, ldt_, ldq_, ifst, ilst)).run([&](zint& i) {
        zor::trexc(*compq, n_, t, ldt_, q, ldq_, ifst, ilst, work, i);
    });
}

template <class T>
void trsyl_export(const char* name, const char* trana, const char* tranb, const zor_int* isgn,
                  const zor_int* m, const zor_int* n, const T* a, const zor_int* lda, const T* b,
                  const zor_int* ldb, T* c, const zor_int* ldc, double* scale, zor_int* info) {
    const zint isgn_ = widen(isgn), m_ = widen(m), n_ = widen(n), lda_ = widen(lda), ldb_ = widen(ldb),
               ldc_ = widen(ldc);
    LapackCall(name, info, zor::check_trsyl<T>(*trana, *tranb, isgn_, m_, n_, lda_, ldb_, ldc_))
        .run([&](zint& i) {
            zor::trsyl(*trana, *tranb, isgn_, m_, n_, a, lda_, b, ldb_, c, ldc_, *scale, i);
        });
}

zor::Eigenvalues<double> real_eigenvalues(double* wr, double* wi) {
    return {wr, wi};
}
zor::Eigenvalues<zor::zcomplex> complex_eigenvalues(zor_complex_double* w) {
    return {as_complex(w)};
}

}  // namespace

extern "C" {

ZOR_API void dgebal(const char* job, const zor_int* n, double* a, const zor_int* lda, zor_int* ilo,
                    zor_int* ihi, double* scale, zor_int* info, size_t) {
    gebal_export("DGEBAL", job, n, a, lda, ilo, ihi, scale, info);
}

ZOR_API void zgebal(const char* job, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                    zor_int* ilo, zor_int* ihi, double* scale, zor_int* info, size_t) {
    gebal_export("ZGEBAL", job, n, as_complex(a), lda, ilo, ihi, scale, info);
}

ZOR_API void dgebak(const char* job, const char* side, const zor_int* n, const zor_int* ilo,
                    const zor_int* ihi, const double* scale, const zor_int* m, double* v, const zor_int* ldv,
                    zor_int* info, size_t, size_t) {
    gebak_export("DGEBAK", job, side, n, ilo, ihi, scale, m, v, ldv, info);
}

ZOR_API void zgebak(const char* job, const char* side, const zor_int* n, const zor_int* ilo,
                    const zor_int* ihi, const double* scale, const zor_int* m, zor_complex_double* v,
                    const zor_int* ldv, zor_int* info, size_t, size_t) {
    gebak_export("ZGEBAK", job, side, n, ilo, ihi, scale, m, as_complex(v), ldv, info);
}

ZOR_API void dgehrd(const zor_int* n, const zor_int* ilo, const zor_int* ihi, double* a, const zor_int* lda,
                    double* tau, double* work, const zor_int* lwork, zor_int* info) {
    gehrd_export("DGEHRD", n, ilo, ihi, a, lda, tau, work, lwork, info);
}

ZOR_API void zgehrd(const zor_int* n, const zor_int* ilo, const zor_int* ihi, zor_complex_double* a,
                    const zor_int* lda, zor_complex_double* tau, zor_complex_double* work,
                    const zor_int* lwork, zor_int* info) {
    gehrd_export("ZGEHRD", n, ilo, ihi, as_complex(a), lda, as_complex(tau), as_complex(work), lwork, info);
}

ZOR_API void dgees(const char* jobvs, const char* sort, zor_dselect2 select, const zor_int* n, double* a,
                   const zor_int* lda, zor_int* sdim, double* wr, double* wi, double* vs, const zor_int* ldvs,
                   double* work, const zor_int* lwork, zor_int* bwork, zor_int* info, size_t, size_t) {
    gees_export<double>("DGEES", jobvs, sort, select, n, a, lda, sdim, real_eigenvalues(wr, wi), vs, ldvs,
                        work, lwork, nullptr, bwork, info);
}

ZOR_API void zgees(const char* jobvs, const char* sort, zor_zselect1 select, const zor_int* n,
                   zor_complex_double* a, const zor_int* lda, zor_int* sdim, zor_complex_double* w,
                   zor_complex_double* vs, const zor_int* ldvs, zor_complex_double* work,
                   const zor_int* lwork, double* rwork, zor_int* bwork, zor_int* info, size_t, size_t) {
    // zor_complex_double and the library's complex type are the same two doubles.
    gees_export<zor::zcomplex>("ZGEES", jobvs, sort, select, n,
                               as_complex(a), lda, sdim, complex_eigenvalues(w), as_complex(vs), ldvs,
                               as_complex(work), lwork, rwork, bwork, info);
}

ZOR_API void dgeev(const char* jobvl, const char* jobvr, const zor_int* n, double* a, const zor_int* lda,
                   double* wr, double* wi, double* vl, const zor_int* ldvl, double* vr, const zor_int* ldvr,
                   double* work, const zor_int* lwork, zor_int* info, size_t, size_t) {
    geev_export<double>("DGEEV", jobvl, jobvr, n, a, lda, real_eigenvalues(wr, wi), vl, ldvl, vr, ldvr, work,
                        lwork, nullptr, info);
}

ZOR_API void zgeev(const char* jobvl, const char* jobvr, const zor_int* n, zor_complex_double* a,
                   const zor_int* lda, zor_complex_double* w, zor_complex_double* vl, const zor_int* ldvl,
                   zor_complex_double* vr, const zor_int* ldvr, zor_complex_double* work,
                   const zor_int* lwork, double* rwork, zor_int* info, size_t, size_t) {
    geev_export<zor::zcomplex>("ZGEEV", jobvl, jobvr, n, as_complex(a), lda, complex_eigenvalues(w),
                               as_complex(vl), ldvl, as_complex(vr), ldvr, as_complex(work), lwork, rwork,
                               info);
}

ZOR_API void dtrexc(const char* compq, const zor_int* n, double* t, const zor_int* ldt, double* q,
                    const zor_int* ldq, zor_int* ifst, zor_int* ilst, double* work, zor_int* info, size_t) {
    zint ifst_ = widen(ifst), ilst_ = widen(ilst);
    trexc_export("DTREXC", compq, n, t, ldt, q, ldq, ifst_, ilst_, work, info);
    // The block's first rows, as the routine adjusted them (unchanged after an argument error).
    if (*info >= 0) {
        *ifst = narrow(ifst_);
        *ilst = narrow(ilst_);
    }
}

ZOR_API void ztrexc(const char* compq, const zor_int* n, zor_complex_double* t, const zor_int* ldt,
                    zor_complex_double* q, const zor_int* ldq, const zor_int* ifst, const zor_int* ilst,
                    zor_int* info, size_t) {
    zint ifst_ = widen(ifst), ilst_ = widen(ilst);
    trexc_export<zor::zcomplex>("ZTREXC", compq, n, as_complex(t), ldt, as_complex(q), ldq, ifst_, ilst_,
                                nullptr, info);
}

ZOR_API void dtrsyl(const char* trana, const char* tranb, const zor_int* isgn, const zor_int* m,
                    const zor_int* n, const double* a, const zor_int* lda, const double* b,
                    const zor_int* ldb, double* c, const zor_int* ldc, double* scale, zor_int* info, size_t,
                    size_t) {
    trsyl_export("DTRSYL", trana, tranb, isgn, m, n, a, lda, b, ldb, c, ldc, scale, info);
}

ZOR_API void ztrsyl(const char* trana, const char* tranb, const zor_int* isgn, const zor_int* m,
                    const zor_int* n, const zor_complex_double* a, const zor_int* lda,
                    const zor_complex_double* b, const zor_int* ldb, zor_complex_double* c,
                    const zor_int* ldc, double* scale, zor_int* info, size_t, size_t) {
    trsyl_export("ZTRSYL", trana, tranb, isgn, m, n, as_complex(a), lda, as_complex(b), ldb, as_complex(c),
                 ldc, scale, info);
}

}  // extern "C"
