// The Fortran-style exports of the SVD and the least-squares solve through it: scalars widened;
// gesdd's iwork is the library's own 64-bit workspace (8 min(m, n) entries, none in a workspace
// query), gelsd's is sized by the frame and only its first entry, the size it needs, is narrowed
// back, with rank.

#include "interface/lapack_frame.hpp"
#include "lapack/svd/svd.hpp"
#include "service/element.hpp"
#include "zor/zor_lapack.h"

using namespace zor::fortran;
using zor::zint;

namespace {

template <class T>
void gesdd_export(const char* name, const char* jobz, const zor_int* m, const zor_int* n, T* a,
                  const zor_int* lda, double* s, T* u, const zor_int* ldu, T* vt, const zor_int* ldvt,
                  T* work, const zor_int* lwork, double* rwork, zor_int* iwork, zor_int* info) {
    const zint m_ = widen(m), n_ = widen(n), lda_ = widen(lda), ldu_ = widen(ldu), ldvt_ = widen(ldvt),
               lwork_ = widen(lwork);
    LapackCall call(name, info, zor::check_gesdd<T>(*jobz, m_, n_, lda_, ldu_, ldvt_, lwork_));
    zint* iwork_ = nullptr;
    if (!workspace_query(lwork_)) {
        const zint entries = 8 * zor::min_of(m_, n_);
        iwork_ = call.array(iwork, entries, Transfer::None, 0);
    }
    call.run([&](zint& i) {
        zor::gesdd(*jobz, m_, n_, a, lda_, s, u, ldu_, vt, ldvt_, work, lwork_, rwork, iwork_, i);
    });
}

}  // namespace

extern "C" {

ZOR_API void dgesdd(const char* jobz, const zor_int* m, const zor_int* n, double* a, const zor_int* lda,
                    double* s, double* u, const zor_int* ldu, double* vt, const zor_int* ldvt, double* work,
                    const zor_int* lwork, zor_int* iwork, zor_int* info, size_t) {
    gesdd_export("DGESDD", jobz, m, n, a, lda, s, u, ldu, vt, ldvt, work, lwork, nullptr, iwork, info);
}

ZOR_API void zgesdd(const char* jobz, const zor_int* m, const zor_int* n, zor_complex_double* a,
                    const zor_int* lda, double* s, zor_complex_double* u, const zor_int* ldu,
                    zor_complex_double* vt, const zor_int* ldvt, zor_complex_double* work,
                    const zor_int* lwork, double* rwork, zor_int* iwork, zor_int* info, size_t) {
    gesdd_export("ZGESDD", jobz, m, n, as_complex(a), lda, s, as_complex(u), ldu, as_complex(vt), ldvt,
                 as_complex(work), lwork, rwork, iwork, info);
}

ZOR_API void dgelsd(const zor_int* m, const zor_int* n, const zor_int* nrhs, double* a, const zor_int* lda,
                    double* b, const zor_int* ldb, double* s, const double* rcond, zor_int* rank,
                    double* work, const zor_int* lwork, zor_int* iwork, zor_int* info) {
    const zint m_ = widen(m), n_ = widen(n), nrhs_ = widen(nrhs), lda_ = widen(lda), ldb_ = widen(ldb),
               lwork_ = widen(lwork);
    LapackCall call("DGELSD", info, zor::check_gelsd(m_, n_, nrhs_, lda_, ldb_, lwork_));
    zint* iwork_ = call.array(iwork, dgelsd_iwork_entries(m_, n_), Transfer::FirstOut, 1);
    call.run([&](zint& i) {
        zint rank_ = 0;
        zor::gelsd(m_, n_, nrhs_, a, lda_, b, ldb_, s, *rcond, rank_, work, lwork_, iwork_, i);
        if (!workspace_query(lwork_)) *rank = narrow(rank_);
    });
}

}  // extern "C"
