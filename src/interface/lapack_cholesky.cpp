// The Fortran-style exports of the Cholesky and triangular families: scalars widened, no arrays to
// copy.

#include "interface/lapack_frame.hpp"
#include "lapack/cholesky/cholesky.hpp"
#include "lapack/triangular/triangular.hpp"
#include "zor/zor_lapack.h"

using namespace zor::fortran;
using zor::zint;

namespace {

template <class T>
void potrf_export(const char* name, const char* uplo, const zor_int* n, T* a, const zor_int* lda,
                  zor_int* info) {
    const zint n_ = widen(n), lda_ = widen(lda);
    LapackCall(name, info, zor::check_potrf<T>(*uplo, n_, lda_)).run([&](zint& i) {
        zor::potrf(*uplo, n_, a, lda_, i);
    });
}

template <class T>
void posv_export(const char* name, const char* uplo, const zor_int* n, const zor_int* nrhs, T* a,
                 const zor_int* lda, T* b, const zor_int* ldb, zor_int* info) {
    const zint n_ = widen(n), nrhs_ = widen(nrhs), lda_ = widen(lda), ldb_ = widen(ldb);
    LapackCall(name, info, zor::check_posv<T>(*uplo, n_, nrhs_, lda_, ldb_)).run([&](zint& i) {
        zor::posv(*uplo, n_, nrhs_, a, lda_, b, ldb_, i);
    });
}

template <class T>
void potri_export(const char* name, const char* uplo, const zor_int* n, T* a, const zor_int* lda,
                  zor_int* info) {
    const zint n_ = widen(n), lda_ = widen(lda);
    LapackCall(name, info, zor::check_potri<T>(*uplo, n_, lda_)).run([&](zint& i) {
        zor::potri(*uplo, n_, a, lda_, i);
    });
}

template <class T>
void pptrf_export(const char* name, const char* uplo, const zor_int* n, T* ap, zor_int* info) {
    const zint n_ = widen(n);
    LapackCall(name, info, zor::check_pptrf<T>(*uplo, n_)).run([&](zint& i) {
        zor::pptrf(*uplo, n_, ap, i);
    });
}

template <class T>
void pptrs_export(const char* name, const char* uplo, const zor_int* n, const zor_int* nrhs, const T* ap,
                  T* b, const zor_int* ldb, zor_int* info) {
    const zint n_ = widen(n), nrhs_ = widen(nrhs), ldb_ = widen(ldb);
    LapackCall(name, info, zor::check_pptrs<T>(*uplo, n_, nrhs_, ldb_)).run([&](zint& i) {
        zor::pptrs(*uplo, n_, nrhs_, ap, b, ldb_, i);
    });
}

template <class T>
void pptri_export(const char* name, const char* uplo, const zor_int* n, T* ap, zor_int* info) {
    const zint n_ = widen(n);
    LapackCall(name, info, zor::check_pptri<T>(*uplo, n_)).run([&](zint& i) {
        zor::pptri(*uplo, n_, ap, i);
    });
}

template <class T>
void trtri_export(const char* name, const char* uplo, const char* diag, const zor_int* n, T* a,
                  const zor_int* lda, zor_int* info) {
    const zint n_ = widen(n), lda_ = widen(lda);
    LapackCall(name, info, zor::check_trtri<T>(*uplo, *diag, n_, lda_)).run([&](zint& i) {
        zor::trtri(*uplo, *diag, n_, a, lda_, i);
    });
}

template <class T>
void tptri_export(const char* name, const char* uplo, const char* diag, const zor_int* n, T* ap,
                  zor_int* info) {
    const zint n_ = widen(n);
    LapackCall(name, info, zor::check_tptri<T>(*uplo, *diag, n_)).run([&](zint& i) {
        zor::tptri(*uplo, *diag, n_, ap, i);
    });
}

template <class T>
void tptrs_export(const char* name, const char* uplo, const char* trans, const char* diag, const zor_int* n,
                  const zor_int* nrhs, const T* ap, T* b, const zor_int* ldb, zor_int* info) {
    const zint n_ = widen(n), nrhs_ = widen(nrhs), ldb_ = widen(ldb);
    LapackCall(name, info, zor::check_tptrs<T>(*uplo, *trans, *diag, n_, nrhs_, ldb_)).run([&](zint& i) {
        zor::tptrs(*uplo, *trans, *diag, n_, nrhs_, ap, b, ldb_, i);
    });
}

}  // namespace

extern "C" {

ZOR_API void dpotrf(const char* uplo, const zor_int* n, double* a, const zor_int* lda, zor_int* info,
                    size_t) {
    potrf_export("DPOTRF", uplo, n, a, lda, info);
}

ZOR_API void zpotrf(const char* uplo, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                    zor_int* info, size_t) {
    potrf_export("ZPOTRF", uplo, n, as_complex(a), lda, info);
}

ZOR_API void dposv(const char* uplo, const zor_int* n, const zor_int* nrhs, double* a, const zor_int* lda,
                   double* b, const zor_int* ldb, zor_int* info, size_t) {
    posv_export("DPOSV", uplo, n, nrhs, a, lda, b, ldb, info);
}

ZOR_API void zposv(const char* uplo, const zor_int* n, const zor_int* nrhs, zor_complex_double* a,
                   const zor_int* lda, zor_complex_double* b, const zor_int* ldb, zor_int* info, size_t) {
    posv_export("ZPOSV", uplo, n, nrhs, as_complex(a), lda, as_complex(b), ldb, info);
}

ZOR_API void dpotri(const char* uplo, const zor_int* n, double* a, const zor_int* lda, zor_int* info,
                    size_t) {
    potri_export("DPOTRI", uplo, n, a, lda, info);
}

ZOR_API void zpotri(const char* uplo, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                    zor_int* info, size_t) {
    potri_export("ZPOTRI", uplo, n, as_complex(a), lda, info);
}

ZOR_API void dpptrf(const char* uplo, const zor_int* n, double* ap, zor_int* info, size_t) {
    pptrf_export("DPPTRF", uplo, n, ap, info);
}

ZOR_API void zpptrf(const char* uplo, const zor_int* n, zor_complex_double* ap, zor_int* info, size_t) {
    pptrf_export("ZPPTRF", uplo, n, as_complex(ap), info);
}

ZOR_API void dpptrs(const char* uplo, const zor_int* n, const zor_int* nrhs, const double* ap, double* b,
                    const zor_int* ldb, zor_int* info, size_t) {
    pptrs_export("DPPTRS", uplo, n, nrhs, ap, b, ldb, info);
}

ZOR_API void zpptrs(const char* uplo, const zor_int* n, const zor_int* nrhs, const zor_complex_double* ap,
                    zor_complex_double* b, const zor_int* ldb, zor_int* info, size_t) {
    pptrs_export("ZPPTRS", uplo, n, nrhs, as_complex(ap), as_complex(b), ldb, info);
}

ZOR_API void dpptri(const char* uplo, const zor_int* n, double* ap, zor_int* info, size_t) {
    pptri_export("DPPTRI", uplo, n, ap, info);
}

ZOR_API void zpptri(const char* uplo, const zor_int* n, zor_complex_double* ap, zor_int* info, size_t) {
    pptri_export("ZPPTRI", uplo, n, as_complex(ap), info);
}

ZOR_API void dtrtri(const char* uplo, const char* diag, const zor_int* n, double* a, const zor_int* lda,
                    zor_int* info, size_t, size_t) {
    trtri_export("DTRTRI", uplo, diag, n, a, lda, info);
}

ZOR_API void ztrtri(const char* uplo, const char* diag, const zor_int* n, zor_complex_double* a,
                    const zor_int* lda, zor_int* info, size_t, size_t) {
    trtri_export("ZTRTRI", uplo, diag, n, as_complex(a), lda, info);
}

ZOR_API void dtptri(const char* uplo, const char* diag, const zor_int* n, double* ap, zor_int* info, size_t,
                    size_t) {
    tptri_export("DTPTRI", uplo, diag, n, ap, info);
}

ZOR_API void ztptri(const char* uplo, const char* diag, const zor_int* n, zor_complex_double* ap,
                    zor_int* info, size_t, size_t) {
    tptri_export("ZTPTRI", uplo, diag, n, as_complex(ap), info);
}

ZOR_API void dtptrs(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                    const zor_int* nrhs, const double* ap, double* b, const zor_int* ldb, zor_int* info,
                    size_t, size_t, size_t) {
    tptrs_export("DTPTRS", uplo, trans, diag, n, nrhs, ap, b, ldb, info);
}

ZOR_API void ztptrs(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                    const zor_int* nrhs, const zor_complex_double* ap, zor_complex_double* b,
                    const zor_int* ldb, zor_int* info, size_t, size_t, size_t) {
    tptrs_export("ZTPTRS", uplo, trans, diag, n, nrhs, as_complex(ap), as_complex(b), ldb, info);
}

}  // extern "C"
