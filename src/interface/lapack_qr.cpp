// The Fortran-style exports of the orthogonal factorizations: scalars widened; jpvt of the pivoted
// QR copied in and out, except in a workspace query.

#include "interface/lapack_frame.hpp"
#include "lapack/qr/qr.hpp"
#include "zor/zor_lapack.h"

using namespace zor::fortran;
using zor::zint;

namespace {

// geqrf and gelqf share their argument list; so do orgqr and orglq.
template <class T, class Check, class Factor>
void factor_export(const char* name, Check check, Factor factor, const zor_int* m, const zor_int* n, T* a,
                   const zor_int* lda, T* tau, T* work, const zor_int* lwork, zor_int* info) {
    const zint m_ = widen(m), n_ = widen(n), lda_ = widen(lda), lwork_ = widen(lwork);
    LapackCall(name, info, check(m_, n_, lda_, lwork_)).run([&](zint& i) {
        factor(m_, n_, a, lda_, tau, work, lwork_, i);
    });
}

template <class T, class Check, class Generate>
void generate_export(const char* name, Check check, Generate generate, const zor_int* m, const zor_int* n,
                     const zor_int* k, T* a, const zor_int* lda, const T* tau, T* work, const zor_int* lwork,
                     zor_int* info) {
    const zint m_ = widen(m), n_ = widen(n), k_ = widen(k), lda_ = widen(lda), lwork_ = widen(lwork);
    LapackCall(name, info, check(m_, n_, k_, lda_, lwork_)).run([&](zint& i) {
        generate(m_, n_, k_, a, lda_, tau, work, lwork_, i);
    });
}

template <class T>
void geqp3_export(const char* name, const zor_int* m, const zor_int* n, T* a, const zor_int* lda,
                  zor_int* jpvt, T* tau, T* work, const zor_int* lwork, double* rwork, zor_int* info) {
    const zint m_ = widen(m), n_ = widen(n), lda_ = widen(lda), lwork_ = widen(lwork);
    LapackCall call(name, info, zor::check_geqp3<T>(m_, n_, lda_, lwork_));
    zint* jpvt_ = nullptr;
    if (!workspace_query(lwork_)) jpvt_ = call.array(jpvt, n_, Transfer::InOut, n_);
    call.run([&](zint& i) { zor::geqp3(m_, n_, a, lda_, jpvt_, tau, work, lwork_, rwork, i); });
}

template <class T>
void orghr_export(const char* name, const zor_int* n, const zor_int* ilo, const zor_int* ihi, T* a,
                  const zor_int* lda, const T* tau, T* work, const zor_int* lwork, zor_int* info) {
    const zint n_ = widen(n), ilo_ = widen(ilo), ihi_ = widen(ihi), lda_ = widen(lda), lwork_ = widen(lwork);
    LapackCall(name, info, zor::check_orghr<T>(n_, ilo_, ihi_, lda_, lwork_)).run([&](zint& i) {
        zor::orghr(n_, ilo_, ihi_, a, lda_, tau, work, lwork_, i);
    });
}

}  // namespace

// The real and complex exports of the factorizations (geqrf, gelqf) and of the generators (orgqr,
// orglq): one wrapper each around the shared templates above.
#define ZOR_FACTOR_EXPORTS(routine, real, complex, real_name, complex_name)                                 \
    ZOR_API void real(const zor_int* m, const zor_int* n, double* a, const zor_int* lda, double* tau,       \
                      double* work, const zor_int* lwork, zor_int* info) {                                  \
        factor_export(real_name, zor::check_##routine<double>, zor::routine<double>, m, n, a, lda, tau,     \
                      work, lwork, info);                                                                   \
    }                                                                                                       \
    ZOR_API void complex(const zor_int* m, const zor_int* n, zor_complex_double* a, const zor_int* lda,     \
                         zor_complex_double* tau, zor_complex_double* work, const zor_int* lwork,           \
                         zor_int* info) {                                                                   \
        factor_export(complex_name, zor::check_##routine<zor::zcomplex>, zor::routine<zor::zcomplex>, m, n, \
                      as_complex(a), lda, as_complex(tau), as_complex(work), lwork, info);                  \
    }
#define ZOR_GENERATOR_EXPORTS(routine, real, complex, real_name, complex_name)                               \
    ZOR_API void real(const zor_int* m, const zor_int* n, const zor_int* k, double* a, const zor_int* lda,   \
                      const double* tau, double* work, const zor_int* lwork, zor_int* info) {                \
        generate_export(real_name, zor::check_##routine<double>, zor::routine<double>, m, n, k, a, lda, tau, \
                        work, lwork, info);                                                                  \
    }                                                                                                        \
    ZOR_API void complex(const zor_int* m, const zor_int* n, const zor_int* k, zor_complex_double* a,        \
                         const zor_int* lda, const zor_complex_double* tau, zor_complex_double* work,        \
                         const zor_int* lwork, zor_int* info) {                                              \
        generate_export(complex_name, zor::check_##routine<zor::zcomplex>, zor::routine<zor::zcomplex>, m,   \
                        n, k, as_complex(a), lda, as_complex(tau), as_complex(work), lwork, info);           \
    }

extern "C" {

ZOR_FACTOR_EXPORTS(geqrf, dgeqrf, zgeqrf, "DGEQRF", "ZGEQRF")
ZOR_FACTOR_EXPORTS(gelqf, dgelqf, zgelqf, "DGELQF", "ZGELQF")

ZOR_API void dgeqp3(const zor_int* m, const zor_int* n, double* a, const zor_int* lda, zor_int* jpvt,
                    double* tau, double* work, const zor_int* lwork, zor_int* info) {
    geqp3_export("DGEQP3", m, n, a, lda, jpvt, tau, work, lwork, nullptr, info);
}

ZOR_API void zgeqp3(const zor_int* m, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                    zor_int* jpvt, zor_complex_double* tau, zor_complex_double* work, const zor_int* lwork,
                    double* rwork, zor_int* info) {
    geqp3_export("ZGEQP3", m, n, as_complex(a), lda, jpvt, as_complex(tau), as_complex(work), lwork, rwork,
                 info);
}

ZOR_GENERATOR_EXPORTS(orgqr, dorgqr, zungqr, "DORGQR", "ZUNGQR")
ZOR_GENERATOR_EXPORTS(orglq, dorglq, zunglq, "DORGLQ", "ZUNGLQ")

ZOR_API void dorghr(const zor_int* n, const zor_int* ilo, const zor_int* ihi, double* a, const zor_int* lda,
                    const double* tau, double* work, const zor_int* lwork, zor_int* info) {
    orghr_export("DORGHR", n, ilo, ihi, a, lda, tau, work, lwork, info);
}

ZOR_API void zunghr(const zor_int* n, const zor_int* ilo, const zor_int* ihi, zor_complex_double* a,
                    const zor_int* lda, const zor_complex_double* tau, zor_complex_double* work,
                    const zor_int* lwork, zor_int* info) {
    orghr_export("ZUNGHR", n, ilo, ihi, as_complex(a), lda, as_complex(tau), as_complex(work), lwork, info);
}

}  // extern "C"
