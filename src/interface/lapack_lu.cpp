// The Fortran-style exports of the LU family.

#include "interface/lapack_frame.hpp"
#include "lapack/lu/lu.hpp"
#include "service/element.hpp"
#include "zor/zor_lapack.h"

using namespace zor::fortran;
using zor::zint;

namespace {

// The factorisations' pivots are never read: the entries a stop asked for by the progress handler
// never reached keep the caller's values because only written pivots are narrowed back.
template <class T>
void getrf_export(const char* name, const zor_int* m, const zor_int* n, T* a, const zor_int* lda,
                  zor_int* ipiv, zor_int* info) {
    const zint m_ = widen(m), n_ = widen(n), lda_ = widen(lda), k = zor::min_of(m_, n_);
    LapackCall call(name, info, zor::check_getrf<T>(m_, n_, lda_));
    zint* ipiv_ = call.array(ipiv, k, Transfer::Pivots, k);
    call.run([&](zint& i) { zor::getrf(m_, n_, a, lda_, ipiv_, i); });
}

template <class T>
void gesv_export(const char* name, const zor_int* n, const zor_int* nrhs, T* a, const zor_int* lda,
                 zor_int* ipiv, T* b, const zor_int* ldb, zor_int* info) {
    const zint n_ = widen(n), nrhs_ = widen(nrhs), lda_ = widen(lda), ldb_ = widen(ldb);
    LapackCall call(name, info, zor::check_gesv<T>(n_, nrhs_, lda_, ldb_));
    zint* ipiv_ = call.array(ipiv, n_, Transfer::Pivots, n_);
    call.run([&](zint& i) { zor::gesv(n_, nrhs_, a, lda_, ipiv_, b, ldb_, i); });
}

template <class T>
void getri_export(const char* name, const zor_int* n, T* a, const zor_int* lda, const zor_int* ipiv, T* work,
                  const zor_int* lwork, zor_int* info) {
    const zint n_ = widen(n), lda_ = widen(lda), lwork_ = widen(lwork);
    LapackCall call(name, info, zor::check_getri<T>(n_, lda_, lwork_));
    const zint* ipiv_ = nullptr;
    if (!workspace_query(lwork_)) ipiv_ = call.array(const_cast<zor_int*>(ipiv), n_, Transfer::In, n_);
    call.run([&](zint& i) { zor::getri(n_, a, lda_, ipiv_, work, lwork_, i); });
}

template <class T>
void gbsv_export(const char* name, const zor_int* n, const zor_int* kl, const zor_int* ku,
                 const zor_int* nrhs, T* ab, const zor_int* ldab, zor_int* ipiv, T* b, const zor_int* ldb,
                 zor_int* info) {
    const zint n_ = widen(n), kl_ = widen(kl), ku_ = widen(ku), nrhs_ = widen(nrhs), ldab_ = widen(ldab),
               ldb_ = widen(ldb);
    LapackCall call(name, info, zor::check_gbsv<T>(n_, kl_, ku_, nrhs_, ldab_, ldb_));
    zint* ipiv_ = call.array(ipiv, n_, Transfer::Pivots, n_);
    call.run([&](zint& i) { zor::gbsv(n_, kl_, ku_, nrhs_, ab, ldab_, ipiv_, b, ldb_, i); });
}

}  // namespace

extern "C" {

ZOR_API void dgetrf(const zor_int* m, const zor_int* n, double* a, const zor_int* lda, zor_int* ipiv,
                    zor_int* info) {
    getrf_export("DGETRF", m, n, a, lda, ipiv, info);
}

ZOR_API void zgetrf(const zor_int* m, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                    zor_int* ipiv, zor_int* info) {
    getrf_export("ZGETRF", m, n, as_complex(a), lda, ipiv, info);
}

ZOR_API void dgesv(const zor_int* n, const zor_int* nrhs, double* a, const zor_int* lda, zor_int* ipiv,
                   double* b, const zor_int* ldb, zor_int* info) {
    gesv_export("DGESV", n, nrhs, a, lda, ipiv, b, ldb, info);
}

ZOR_API void zgesv(const zor_int* n, const zor_int* nrhs, zor_complex_double* a, const zor_int* lda,
                   zor_int* ipiv, zor_complex_double* b, const zor_int* ldb, zor_int* info) {
    gesv_export("ZGESV", n, nrhs, as_complex(a), lda, ipiv, as_complex(b), ldb, info);
}

ZOR_API void dgetri(const zor_int* n, double* a, const zor_int* lda, const zor_int* ipiv, double* work,
                    const zor_int* lwork, zor_int* info) {
    getri_export("DGETRI", n, a, lda, ipiv, work, lwork, info);
}

ZOR_API void zgetri(const zor_int* n, zor_complex_double* a, const zor_int* lda, const zor_int* ipiv,
                    zor_complex_double* work, const zor_int* lwork, zor_int* info) {
    getri_export("ZGETRI", n, as_complex(a), lda, ipiv, as_complex(work), lwork, info);
}

ZOR_API void dgbsv(const zor_int* n, const zor_int* kl, const zor_int* ku, const zor_int* nrhs, double* ab,
                   const zor_int* ldab, zor_int* ipiv, double* b, const zor_int* ldb, zor_int* info) {
    gbsv_export("DGBSV", n, kl, ku, nrhs, ab, ldab, ipiv, b, ldb, info);
}

ZOR_API void zgbsv(const zor_int* n, const zor_int* kl, const zor_int* ku, const zor_int* nrhs,
                   zor_complex_double* ab, const zor_int* ldab, zor_int* ipiv, zor_complex_double* b,
                   const zor_int* ldb, zor_int* info) {
    gbsv_export("ZGBSV", n, kl, ku, nrhs, as_complex(ab), ldab, ipiv, as_complex(b), ldb, info);
}

ZOR_API void dgttrf(const zor_int* n, double* dl, double* d, double* du, double* du2, zor_int* ipiv,
                    zor_int* info) {
    const zint n_ = widen(n);
    LapackCall call("DGTTRF", info, zor::check_gttrf(n_));
    zint* ipiv_ = call.array(ipiv, n_, Transfer::Out, n_);
    call.run([&](zint& i) { zor::gttrf(n_, dl, d, du, du2, ipiv_, i); });
}

ZOR_API void dgttrs(const char* trans, const zor_int* n, const zor_int* nrhs, const double* dl,
                    const double* d, const double* du, const double* du2, const zor_int* ipiv, double* b,
                    const zor_int* ldb, zor_int* info, size_t) {
    const zint n_ = widen(n), nrhs_ = widen(nrhs), ldb_ = widen(ldb);
    LapackCall call("DGTTRS", info, zor::check_gttrs(*trans, n_, nrhs_, ldb_));
    const zint* ipiv_ = call.array(const_cast<zor_int*>(ipiv), n_, Transfer::In, n_);
    call.run([&](zint& i) { zor::gttrs(*trans, n_, nrhs_, dl, d, du, du2, ipiv_, b, ldb_, i); });
}

}  // extern "C"
