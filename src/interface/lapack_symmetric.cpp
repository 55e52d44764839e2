// The Fortran-style exports of the symmetric and Hermitian eigenproblem: scalars widened; iwork
// copied as 64-bit entries, as many as liwork gives up to what the solver uses (at least 1), of
// which only iwork(1) goes back (the size a query answers; the rest is the solver's workspace).

#include <algorithm>

#include "interface/lapack_frame.hpp"
#include "lapack/symmetric/symmetric.hpp"
#include "zor/zor_lapack.h"

using namespace zor::fortran;
using zor::zint;

namespace {

// rwork and lrwork are null for the real form.
template <class T>
void syevd_export(const char* name, const char* jobz, const char* uplo, const zor_int* n, T* a,
                  const zor_int* lda, double* w, T* work, const zor_int* lwork, double* rwork,
                  const zor_int* lrwork, zor_int* iwork, const zor_int* liwork, zor_int* info) {
    const zint n_ = widen(n), lda_ = widen(lda), lwork_ = widen(lwork), liwork_ = widen(liwork);
    const zint lrwork_ = lrwork != nullptr ? widen(lrwork) : 0;
    LapackCall call(name, info, zor::check_syevd<T>(*jobz, *uplo, n_, lda_, lwork_, lrwork_, liwork_));
    // A query keeps liwork = -1; otherwise the solver is given the entries copied.
    const zint entries = liwork_ < 0 ? liwork_ : std::min(liwork_, zor::syevd_iwork_entries(*jobz, n_));
    zint* iwork_ = call.array(iwork, entries, Transfer::FirstOut, 1);
    call.run([&](zint& i) {
        zor::syevd(*jobz, *uplo, n_, a, lda_, w, work, lwork_, rwork, lrwork_, iwork_, entries, i);
    });
}

}  // namespace

extern "C" {

ZOR_API void dsyevd(const char* jobz, const char* uplo, const zor_int* n, double* a, const zor_int* lda,
                    double* w, double* work, const zor_int* lwork, zor_int* iwork, const zor_int* liwork,
                    zor_int* info, size_t, size_t) {
    syevd_export("DSYEVD", jobz, uplo, n, a, lda, w, work, lwork, nullptr, nullptr, iwork, liwork, info);
}

ZOR_API void zheevd(const char* jobz, const char* uplo, const zor_int* n, zor_complex_double* a,
                    const zor_int* lda, double* w, zor_complex_double* work, const zor_int* lwork,
                    double* rwork, const zor_int* lrwork, zor_int* iwork, const zor_int* liwork,
                    zor_int* info, size_t, size_t) {
    syevd_export("ZHEEVD", jobz, uplo, n, as_complex(a), lda, w, as_complex(work), lwork, rwork, lrwork,
                 iwork, liwork, info);
}

}  // extern "C"
