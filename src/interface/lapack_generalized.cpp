// The Fortran-style exports of the generalized eigenproblem: the Hessenberg-triangular reduction
// (dgghrd), the QZ iteration (dhgeqz), the eigenvectors of a Schur pair (dtgevc), the reordering
// (dtgexc) and the drivers dggev and dgges, with their z forms; dgges copies bwork only when it
// sorts and it is not a workspace query, and calls the caller's selctg as it is. Scalars are widened, m
// narrowed back; dtgevc copies select (64-bit logicals inside) only when howmny selects, and its check counts
// the selected columns on the caller's own array before anything is copied.

#include "interface/lapack_frame.hpp"
#include "lapack/generalized/generalized.hpp"
#include "zor/zor_lapack.h"

using namespace zor::fortran;
using zor::zint;

namespace {

template <class T>
void gghrd_export(const char* name, const char* compq, const char* compz, const zor_int* n,
                  const zor_int* ilo, const zor_int* ihi, T* a, const zor_int* lda, T* b, const zor_int* ldb,
                  T* q, const zor_int* ldq, T* z, const zor_int* ldz, zor_int* info) {
    const zint n_ = widen(n), ilo_ = widen(ilo), ihi_ = widen(ihi), lda_ = widen(lda), ldb_ = widen(ldb),
               ldq_ = widen(ldq), ldz_ = widen(ldz);
    LapackCall(name, info, zor::check_gghrd<T>(*compq, *compz, n_, ilo_, ihi_, lda_, ldb_, ldq_, ldz_))
        .run([&](zint& i) {
            zor::gghrd(*compq, *compz, n_, ilo_, ihi_, a, lda_, b, ldb_, q, ldq_, z, ldz_, i);
        });
}

template <class T>
void hgeqz_export(const char* name, const char* job, const char* compq, const char* compz, const zor_int* n,
                  const zor_int* ilo, const zor_int* ihi, T* h, const zor_int* ldh, T* t, const zor_int* ldt,
                  zor::Eigenvalues<T> alpha, T* beta, T* q, const zor_int* ldq, T* z, const zor_int* ldz,
                  T* work, const zor_int* lwork, double* rwork, zor_int* info) {
    const zint n_ = widen(n), ilo_ = widen(ilo), ihi_ = widen(ihi), ldh_ = widen(ldh), ldt_ = widen(ldt),
               ldq_ = widen(ldq), ldz_ = widen(ldz), lwork_ = widen(lwork);
    LapackCall(name, info,
               zor::check_hgeqz<T>(*job, *compq, *compz, n_, ilo_, ihi_, ldh_, ldt_, ldq_, ldz_, lwork_))
        .run([&](zint& i) {
            zor::hgeqz(*job, *compq, *compz, n_, ilo_, ihi_, h, ldh_, t, ldt_, alpha, beta, q, ldq_, z, ldz_,
                       work, lwork_, rwork, i);
        });
}

template <class T>
void tgevc_export(const char* name, const char* side, const char* howmny, const zor_int* select,
                  const zor_int* n, const T* s, const zor_int* lds, const T* p, const zor_int* ldp, T* vl,
                  const zor_int* ldvl, T* vr, const zor_int* ldvr, const zor_int* mm, zor_int* m, T* work,
                  double* rwork, zor_int* info) {
    const zint n_ = widen(n), lds_ = widen(lds), ldp_ = widen(ldp), ldvl_ = widen(ldvl), ldvr_ = widen(ldvr),
               mm_ = widen(mm);
    LapackCall call(name, info,
                    zor::check_tgevc(*side, *howmny, select, n_, s, lds_, p, ldp_, ldvl_, ldvr_, mm_));
    zint* select_ = nullptr;
    // The routine only reads select.
    if (selects_vectors(*howmny)) select_ = call.array(const_cast<zor_int*>(select), n_, Transfer::In, n_);
    call.run([&](zint& i) {
        zint m_ = 0;
        zor::tgevc(*side, *howmny, select_, n_, s, lds_, p, ldp_, vl, ldvl_, vr, ldvr_, mm_, m_, work, rwork,
                   i);
        *m = narrow(m_);
    });
}

template <class T>
void ggev_export(const char* name, const char* jobvl, const char* jobvr, const zor_int* n, T* a,
                 const zor_int* lda, T* b, const zor_int* ldb, zor::Eigenvalues<T> alpha, T* beta, T* vl,
                 const zor_int* ldvl, T* vr, const zor_int* ldvr, T* work, const zor_int* lwork,
                 double* rwork, zor_int* info) {
    const zint n_ = widen(n), lda_ = widen(lda), ldb_ = widen(ldb), ldvl_ = widen(ldvl), ldvr_ = widen(ldvr),
               lwork_ = widen(lwork);
    LapackCall(name, info, zor::check_ggev<T>(*jobvl, *jobvr, n_, lda_, ldb_, ldvl_, ldvr_, lwork_))
        .run([&](zint& i) {
            zor::ggev(*jobvl, *jobvr, n_, a, lda_, b, ldb_, alpha, beta, vl, ldvl_, vr, ldvr_, work, lwork_,
                      rwork, i);
        });
}

template <class T>
void gges_export(const char* name, const char* jobvsl, const char* jobvsr, const char* sort,
                 zor::PairSelect<T> selctg, const zor_int* n, T* a, const zor_int* lda, T* b,
                 const zor_int* ldb, zor_int* sdim, zor::Eigenvalues<T> alpha, T* beta, T* vsl,
                 const zor_int* ldvsl, T* vsr, const zor_int* ldvsr, T* work, const zor_int* lwork,
                 double* rwork, zor_int* bwork, zor_int* info) {
    const zint n_ = widen(n), lda_ = widen(lda), ldb_ = widen(ldb), ldvsl_ = widen(ldvsl),
               ldvsr_ = widen(ldvsr), lwork_ = widen(lwork);
    LapackCall call(name, info,
                    zor::check_gges<T>(*jobvsl, *jobvsr, *sort, n_, lda_, ldb_, ldvsl_, ldvsr_, lwork_));
    zint* bwork_ = nullptr;
    if (!workspace_query(lwork_) && sorts(*sort)) bwork_ = call.array(bwork, n_, Transfer::None, 0);
    call.run([&](zint& i) {
        zint sdim_ = 0;
        zor::gges(*jobvsl, *jobvsr, *sort, selctg, n_, a, lda_, b, ldb_, sdim_, alpha, beta, vsl, ldvsl_, vsr,
                  ldvsr_, work, lwork_, rwork, bwork_, i);
        if (!workspace_query(lwork_)) *sdim = narrow(sdim_);
    });
}

template <class T>
void tgexc_export(const char* name, const zor_int* wantq, const zor_int* wantz, const zor_int* n, T* a,
                  const zor_int* lda, T* b, const zor_int* ldb, T* q, const zor_int* ldq, T* z,
                  const zor_int* ldz, zint& ifst, zint& ilst, T* work, const zor_int* lwork, zor_int* info) {
    const bool wq = *wantq != 0, wz = *wantz != 0;
    const zint n_ = widen(n), lda_ = widen(lda), ldb_ = widen(ldb), ldq_ = widen(ldq), ldz_ = widen(ldz),
               lwork_ = lwork == nullptr ? 1 : widen(lwork);
    LapackCall(name, info, zor::check_tgexc<T>(wq, wz, n_, lda_, ldb_, ldq_, ldz_, ifst, ilst, lwork_))
        .run([&](zint& i) {
            zor::tgexc(wq, wz, n_, a, lda_, b, ldb_, q, ldq_, z, ldz_, ifst, ilst, work, lwork_, i);
        });
}

zor::Eigenvalues<zor::zcomplex> complex_values(zor_complex_double* w) {
    return {as_complex(w)};
}

}  // namespace

extern "C" {

ZOR_API void dgghrd(const char* compq, const char* compz, const zor_int* n, const zor_int* ilo,
                    const zor_int* ihi, double* a, const zor_int* lda, double* b, const zor_int* ldb,
                    double* q, const zor_int* ldq, double* z, const zor_int* ldz, zor_int* info, size_t,
                    size_t) {
    gghrd_export("DGGHRD", compq, compz, n, ilo, ihi, a, lda, b, ldb, q, ldq, z, ldz, info);
}

ZOR_API void zgghrd(const char* compq, const char* compz, const zor_int* n, const zor_int* ilo,
                    const zor_int* ihi, zor_complex_double* a, const zor_int* lda, zor_complex_double* b,
                    const zor_int* ldb, zor_complex_double* q, const zor_int* ldq, zor_complex_double* z,
                    const zor_int* ldz, zor_int* info, size_t, size_t) {
    gghrd_export("ZGGHRD", compq, compz, n, ilo, ihi, as_complex(a), lda, as_complex(b), ldb, as_complex(q),
                 ldq, as_complex(z), ldz, info);
}

ZOR_API void dhgeqz(const char* job, const char* compq, const char* compz, const zor_int* n,
                    const zor_int* ilo, const zor_int* ihi, double* h, const zor_int* ldh, double* t,
                    const zor_int* ldt, double* alphar, double* alphai, double* beta, double* q,
                    const zor_int* ldq, double* z, const zor_int* ldz, double* work, const zor_int* lwork,
                    zor_int* info, size_t, size_t, size_t) {
    hgeqz_export<double>("DHGEQZ", job, compq, compz, n, ilo, ihi, h, ldh, t, ldt, {alphar, alphai}, beta, q,
                         ldq, z, ldz, work, lwork, nullptr, info);
}

ZOR_API void zhgeqz(const char* job, const char* compq, const char* compz, const zor_int* n,
                    const zor_int* ilo, const zor_int* ihi, zor_complex_double* h, const zor_int* ldh,
                    zor_complex_double* t, const zor_int* ldt, zor_complex_double* alpha,
                    zor_complex_double* beta, zor_complex_double* q, const zor_int* ldq,
                    zor_complex_double* z, const zor_int* ldz, zor_complex_double* work, const zor_int* lwork,
                    double* rwork, zor_int* info, size_t, size_t, size_t) {
    hgeqz_export<zor::zcomplex>("ZHGEQZ", job, compq, compz, n, ilo, ihi, as_complex(h), ldh, as_complex(t),
                                ldt, complex_values(alpha), as_complex(beta), as_complex(q), ldq,
                                as_complex(z), ldz, as_complex(work), lwork, rwork, info);
}

ZOR_API void dtgevc(const char* side, const char* howmny, const zor_int* select, const zor_int* n,
                    const double* s, const zor_int* lds, const double* p, const zor_int* ldp, double* vl,
                    const zor_int* ldvl, double* vr, const zor_int* ldvr, const zor_int* mm, zor_int* m,
                    double* work, zor_int* info, size_t, size_t) {
    tgevc_export("DTGEVC", side, howmny, select, n, s, lds, p, ldp, vl, ldvl, vr, ldvr, mm, m, work, nullptr,
                 info);
}

ZOR_API void ztgevc(const char* side, const char* howmny, const zor_int* select, const zor_int* n,
                    const zor_complex_double* s, const zor_int* lds, const zor_complex_double* p,
                    const zor_int* ldp, zor_complex_double* vl, const zor_int* ldvl, zor_complex_double* vr,
                    const zor_int* ldvr, const zor_int* mm, zor_int* m, zor_complex_double* work,
                    double* rwork, zor_int* info, size_t, size_t) {
    tgevc_export("ZTGEVC", side, howmny, select, n, as_complex(s), lds, as_complex(p), ldp, as_complex(vl),
                 ldvl, as_complex(vr), ldvr, mm, m, as_complex(work), rwork, info);
}

ZOR_API void dggev(const char* jobvl, const char* jobvr, const zor_int* n, double* a, const zor_int* lda,
                   double* b, const zor_int* ldb, double* alphar, double* alphai, double* beta, double* vl,
                   const zor_int* ldvl, double* vr, const zor_int* ldvr, double* work, const zor_int* lwork,
                   zor_int* info, size_t, size_t) {
    ggev_export<double>("DGGEV", jobvl, jobvr, n, a, lda, b, ldb, {alphar, alphai}, beta, vl, ldvl, vr, ldvr,
                        work, lwork, nullptr, info);
}

ZOR_API void zggev(const char* jobvl, const char* jobvr, const zor_int* n, zor_complex_double* a,
                   const zor_int* lda, zor_complex_double* b, const zor_int* ldb, zor_complex_double* alpha,
                   zor_complex_double* beta, zor_complex_double* vl, const zor_int* ldvl,
                   zor_complex_double* vr, const zor_int* ldvr, zor_complex_double* work,
                   const zor_int* lwork, double* rwork, zor_int* info, size_t, size_t) {
    ggev_export<zor::zcomplex>("ZGGEV", jobvl, jobvr, n, as_complex(a), lda, as_complex(b), ldb,
                               complex_values(alpha), as_complex(beta), as_complex(vl), ldvl, as_complex(vr),
                               ldvr, as_complex(work), lwork, rwork, info);
}

ZOR_API void dgges(const char* jobvsl, const char* jobvsr, const char* sort, zor_dselect3 selctg,
                   const zor_int* n, double* a, const zor_int* lda, double* b, const zor_int* ldb,
                   zor_int* sdim, double* alphar, double* alphai, double* beta, double* vsl,
                   const zor_int* ldvsl, double* vsr, const zor_int* ldvsr, double* work,
                   const zor_int* lwork, zor_int* bwork, zor_int* info, size_t, size_t, size_t) {
    gges_export<double>("DGGES", jobvsl, jobvsr, sort, selctg, n, a, lda, b, ldb, sdim, {alphar, alphai},
                        beta, vsl, ldvsl, vsr, ldvsr, work, lwork, nullptr, bwork, info);
}

ZOR_API void zgges(const char* jobvsl, const char* jobvsr, const char* sort, zor_zselect2 selctg,
                   const zor_int* n, zor_complex_double* a, const zor_int* lda, zor_complex_double* b,
                   const zor_int* ldb, zor_int* sdim, zor_complex_double* alpha, zor_complex_double* beta,
                   zor_complex_double* vsl, const zor_int* ldvsl, zor_complex_double* vsr,
                   const zor_int* ldvsr, zor_complex_double* work, const zor_int* lwork, double* rwork,
                   zor_int* bwork, zor_int* info, size_t, size_t, size_t) {
    gges_export<zor::zcomplex>("ZGGES", jobvsl, jobvsr, sort, selctg, n, as_complex(a), lda, as_complex(b),
                               ldb, sdim, complex_values(alpha), as_complex(beta), as_complex(vsl), ldvsl,
                               as_complex(vsr), ldvsr, as_complex(work), lwork, rwork, bwork, info);
}

ZOR_API void dtgexc(const zor_int* wantq, const zor_int* wantz, const zor_int* n, double* a,
                    const zor_int* lda, double* b, const zor_int* ldb, double* q, const zor_int* ldq,
                    double* z, const zor_int* ldz, zor_int* ifst, zor_int* ilst, double* work,
                    const zor_int* lwork, zor_int* info) {
    zint ifst_ = widen(ifst), ilst_ = widen(ilst);
    tgexc_export("DTGEXC", wantq, wantz, n, a, lda, b, ldb, q, ldq, z, ldz, ifst_, ilst_, work, lwork, info);
    // The blocks' first rows as the routine adjusted them (unchanged after an argument error).
    if (*info >= 0) {
        *ifst = narrow(ifst_);
        *ilst = narrow(ilst_);
    }
}

ZOR_API void ztgexc(const zor_int* wantq, const zor_int* wantz, const zor_int* n, zor_complex_double* a,
                    const zor_int* lda, zor_complex_double* b, const zor_int* ldb, zor_complex_double* q,
                    const zor_int* ldq, zor_complex_double* z, const zor_int* ldz, const zor_int* ifst,
                    zor_int* ilst, zor_int* info) {
    zint ifst_ = widen(ifst), ilst_ = widen(ilst);
    tgexc_export<zor::zcomplex>("ZTGEXC", wantq, wantz, n, as_complex(a), lda, as_complex(b), ldb,
                                as_complex(q), ldq, as_complex(z), ldz, ifst_, ilst_, nullptr, nullptr, info);
    if (*info >= 0) *ilst = narrow(ilst_);
}

}  // extern "C"
