// The Fortran-style exports of the LU family.

#include "interface/lapack_frame.hpp"
#include "lapack/lu/lu.hpp"
#include "zor/zor_lapack.h"

using namespace zor::fortran;
using zor::zint;

namespace {

zor::zcomplex* complex(zor_complex_double* x) {
    return reinterpret_cast<zor::zcomplex*>(x);
}

// The factorisations' pivots go in as well as out, so that a stop asked for by the progress
// handler leaves the entries it never reached as the caller had them.
template <class T, class Routine>
void getrf_export(const char* name, Routine routine, const zor_int* m, const zor_int* n, T* a,
                  const zor_int* lda, zor_int* ipiv, zor_int* info) {
    LapackCall call(name, info);
    const zint m_ = widen(m), n_ = widen(n), lda_ = widen(lda);
    const zint k = m_ < n_ ? m_ : n_;
    zint* ipiv_ = call.array(ipiv, k, Transfer::InOut, k);
    if (!call.start()) return;
    zint info_ = 0;
    routine(m_, n_, a, lda_, ipiv_, info_);
    call.finish(info_);
}

template <class T, class Routine>
void gesv_export(const char* name, Routine routine, const zor_int* n, const zor_int* nrhs, T* a,
                 const zor_int* lda, zor_int* ipiv, T* b, const zor_int* ldb, zor_int* info) {
    LapackCall call(name, info);
    const zint n_ = widen(n), nrhs_ = widen(nrhs), lda_ = widen(lda), ldb_ = widen(ldb);
    zint* ipiv_ = call.array(ipiv, n_, Transfer::InOut, n_);
    if (!call.start()) return;
    zint info_ = 0;
    routine(n_, nrhs_, a, lda_, ipiv_, b, ldb_, info_);
    call.finish(info_);
}

template <class T, class Routine>
void getri_export(const char* name, Routine routine, const zor_int* n, T* a, const zor_int* lda,
                  const zor_int* ipiv, T* work, const zor_int* lwork, zor_int* info) {
    LapackCall call(name, info);
    const zint n_ = widen(n), lda_ = widen(lda), lwork_ = widen(lwork);
    const zint* ipiv_ = nullptr;
    if (!workspace_query(lwork_)) ipiv_ = call.array(const_cast<zor_int*>(ipiv), n_, Transfer::In, n_);
    if (!call.start()) return;
    zint info_ = 0;
    routine(n_, a, lda_, ipiv_, work, lwork_, info_);
    call.finish(info_);
}

template <class T, class Routine>
void gbsv_export(const char* name, Routine routine, const zor_int* n, const zor_int* kl, const zor_int* ku,
                 const zor_int* nrhs, T* ab, const zor_int* ldab, zor_int* ipiv, T* b, const zor_int* ldb,
                 zor_int* info) {
    LapackCall call(name, info);
    const zint n_ = widen(n), kl_ = widen(kl), ku_ = widen(ku), nrhs_ = widen(nrhs), ldab_ = widen(ldab),
               ldb_ = widen(ldb);
    zint* ipiv_ = call.array(ipiv, n_, Transfer::InOut, n_);
    if (!call.start()) return;
    zint info_ = 0;
    routine(n_, kl_, ku_, nrhs_, ab, ldab_, ipiv_, b, ldb_, info_);
    call.finish(info_);
}

}  // namespace

extern "C" {

ZOR_API void dgetrf(const zor_int* m, const zor_int* n, double* a, const zor_int* lda, zor_int* ipiv,
                    zor_int* info) {
    getrf_export("DGETRF", zor::dgetrf, m, n, a, lda, ipiv, info);
}

ZOR_API void zgetrf(const zor_int* m, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                    zor_int* ipiv, zor_int* info) {
    getrf_export("ZGETRF", zor::zgetrf, m, n, complex(a), lda, ipiv, info);
}

ZOR_API void dgesv(const zor_int* n, const zor_int* nrhs, double* a, const zor_int* lda, zor_int* ipiv,
                   double* b, const zor_int* ldb, zor_int* info) {
    gesv_export("DGESV", zor::dgesv, n, nrhs, a, lda, ipiv, b, ldb, info);
}

ZOR_API void zgesv(const zor_int* n, const zor_int* nrhs, zor_complex_double* a, const zor_int* lda,
                   zor_int* ipiv, zor_complex_double* b, const zor_int* ldb, zor_int* info) {
    gesv_export("ZGESV", zor::zgesv, n, nrhs, complex(a), lda, ipiv, complex(b), ldb, info);
}

ZOR_API void dgetri(const zor_int* n, double* a, const zor_int* lda, const zor_int* ipiv, double* work,
                    const zor_int* lwork, zor_int* info) {
    getri_export("DGETRI", zor::dgetri, n, a, lda, ipiv, work, lwork, info);
}

ZOR_API void zgetri(const zor_int* n, zor_complex_double* a, const zor_int* lda, const zor_int* ipiv,
                    zor_complex_double* work, const zor_int* lwork, zor_int* info) {
    getri_export("ZGETRI", zor::zgetri, n, complex(a), lda, ipiv, complex(work), lwork, info);
}

ZOR_API void dgbsv(const zor_int* n, const zor_int* kl, const zor_int* ku, const zor_int* nrhs, double* ab,
                   const zor_int* ldab, zor_int* ipiv, double* b, const zor_int* ldb, zor_int* info) {
    gbsv_export("DGBSV", zor::dgbsv, n, kl, ku, nrhs, ab, ldab, ipiv, b, ldb, info);
}

ZOR_API void zgbsv(const zor_int* n, const zor_int* kl, const zor_int* ku, const zor_int* nrhs,
                   zor_complex_double* ab, const zor_int* ldab, zor_int* ipiv, zor_complex_double* b,
                   const zor_int* ldb, zor_int* info) {
    gbsv_export("ZGBSV", zor::zgbsv, n, kl, ku, nrhs, complex(ab), ldab, ipiv, complex(b), ldb, info);
}

ZOR_API void dgttrf(const zor_int* n, double* dl, double* d, double* du, double* du2, zor_int* ipiv,
                    zor_int* info) {
    LapackCall call("DGTTRF", info);
    const zint n_ = widen(n);
    zint* ipiv_ = call.array(ipiv, n_, Transfer::Out, n_);
    if (!call.start()) return;
    zint info_ = 0;
    zor::dgttrf(n_, dl, d, du, du2, ipiv_, info_);
    call.finish(info_);
}

ZOR_API void dgttrs(const char* trans, const zor_int* n, const zor_int* nrhs, const double* dl,
                    const double* d, const double* du, const double* du2, const zor_int* ipiv, double* b,
                    const zor_int* ldb, zor_int* info, size_t) {
    LapackCall call("DGTTRS", info);
    const zint n_ = widen(n), nrhs_ = widen(nrhs), ldb_ = widen(ldb);
    const zint* ipiv_ = call.array(const_cast<zor_int*>(ipiv), n_, Transfer::In, n_);
    if (!call.start()) return;
    zint info_ = 0;
    zor::dgttrs(*trans, n_, nrhs_, dl, d, du, du2, ipiv_, b, ldb_, info_);
    call.finish(info_);
}

}  // extern "C"
