// The Fortran-style exports of the Cholesky and triangular families: scalars widened, no arrays to
// copy.

#include "interface/lapack_frame.hpp"
#include "lapack/cholesky/cholesky.hpp"
#include "lapack/triangular/triangular.hpp"
#include "zor/zor_lapack.h"

using namespace zor::fortran;
using zor::zint;

namespace {

zor::zcomplex* complex(zor_complex_double* x) {
    return reinterpret_cast<zor::zcomplex*>(x);
}
const zor::zcomplex* complex(const zor_complex_double* x) {
    return reinterpret_cast<const zor::zcomplex*>(x);
}

// Starts the frame, runs `routine` with the 64-bit info and stores it back.
template <class Routine>
void run(const char* name, zor_int* info, Routine routine) {
    LapackCall call(name, info);
    if (!call.start()) return;
    zint info_ = 0;
    routine(info_);
    call.finish(info_);
}

}  // namespace

extern "C" {

ZOR_API void dpotrf(const char* uplo, const zor_int* n, double* a, const zor_int* lda, zor_int* info,
                    size_t) {
    run("DPOTRF", info, [&](zint& i) { zor::dpotrf(*uplo, widen(n), a, widen(lda), i); });
}

ZOR_API void zpotrf(const char* uplo, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                    zor_int* info, size_t) {
    run("ZPOTRF", info, [&](zint& i) { zor::zpotrf(*uplo, widen(n), complex(a), widen(lda), i); });
}

ZOR_API void dposv(const char* uplo, const zor_int* n, const zor_int* nrhs, double* a, const zor_int* lda,
                   double* b, const zor_int* ldb, zor_int* info, size_t) {
    run("DPOSV", info,
        [&](zint& i) { zor::dposv(*uplo, widen(n), widen(nrhs), a, widen(lda), b, widen(ldb), i); });
}

ZOR_API void zposv(const char* uplo, const zor_int* n, const zor_int* nrhs, zor_complex_double* a,
                   const zor_int* lda, zor_complex_double* b, const zor_int* ldb, zor_int* info, size_t) {
    run("ZPOSV", info, [&](zint& i) {
        zor::zposv(*uplo, widen(n), widen(nrhs), complex(a), widen(lda), complex(b), widen(ldb), i);
    });
}

ZOR_API void dpotri(const char* uplo, const zor_int* n, double* a, const zor_int* lda, zor_int* info,
                    size_t) {
    run("DPOTRI", info, [&](zint& i) { zor::dpotri(*uplo, widen(n), a, widen(lda), i); });
}

ZOR_API void zpotri(const char* uplo, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                    zor_int* info, size_t) {
    run("ZPOTRI", info, [&](zint& i) { zor::zpotri(*uplo, widen(n), complex(a), widen(lda), i); });
}

ZOR_API void dpptrf(const char* uplo, const zor_int* n, double* ap, zor_int* info, size_t) {
    run("DPPTRF", info, [&](zint& i) { zor::dpptrf(*uplo, widen(n), ap, i); });
}

ZOR_API void zpptrf(const char* uplo, const zor_int* n, zor_complex_double* ap, zor_int* info, size_t) {
    run("ZPPTRF", info, [&](zint& i) { zor::zpptrf(*uplo, widen(n), complex(ap), i); });
}

ZOR_API void dpptrs(const char* uplo, const zor_int* n, const zor_int* nrhs, const double* ap, double* b,
                    const zor_int* ldb, zor_int* info, size_t) {
    run("DPPTRS", info, [&](zint& i) { zor::dpptrs(*uplo, widen(n), widen(nrhs), ap, b, widen(ldb), i); });
}

ZOR_API void zpptrs(const char* uplo, const zor_int* n, const zor_int* nrhs, const zor_complex_double* ap,
                    zor_complex_double* b, const zor_int* ldb, zor_int* info, size_t) {
    run("ZPPTRS", info,
        [&](zint& i) { zor::zpptrs(*uplo, widen(n), widen(nrhs), complex(ap), complex(b), widen(ldb), i); });
}

ZOR_API void dpptri(const char* uplo, const zor_int* n, double* ap, zor_int* info, size_t) {
    run("DPPTRI", info, [&](zint& i) { zor::dpptri(*uplo, widen(n), ap, i); });
}

ZOR_API void zpptri(const char* uplo, const zor_int* n, zor_complex_double* ap, zor_int* info, size_t) {
    run("ZPPTRI", info, [&](zint& i) { zor::zpptri(*uplo, widen(n), complex(ap), i); });
}

ZOR_API void dtrtri(const char* uplo, const char* diag, const zor_int* n, double* a, const zor_int* lda,
                    zor_int* info, size_t, size_t) {
    run("DTRTRI", info, [&](zint& i) { zor::dtrtri(*uplo, *diag, widen(n), a, widen(lda), i); });
}

ZOR_API void ztrtri(const char* uplo, const char* diag, const zor_int* n, zor_complex_double* a,
                    const zor_int* lda, zor_int* info, size_t, size_t) {
    run("ZTRTRI", info, [&](zint& i) { zor::ztrtri(*uplo, *diag, widen(n), complex(a), widen(lda), i); });
}

ZOR_API void dtptri(const char* uplo, const char* diag, const zor_int* n, double* ap, zor_int* info, size_t,
                    size_t) {
    run("DTPTRI", info, [&](zint& i) { zor::dtptri(*uplo, *diag, widen(n), ap, i); });
}

ZOR_API void ztptri(const char* uplo, const char* diag, const zor_int* n, zor_complex_double* ap,
                    zor_int* info, size_t, size_t) {
    run("ZTPTRI", info, [&](zint& i) { zor::ztptri(*uplo, *diag, widen(n), complex(ap), i); });
}

ZOR_API void dtptrs(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                    const zor_int* nrhs, const double* ap, double* b, const zor_int* ldb, zor_int* info,
                    size_t, size_t, size_t) {
    run("DTPTRS", info,
        [&](zint& i) { zor::dtptrs(*uplo, *trans, *diag, widen(n), widen(nrhs), ap, b, widen(ldb), i); });
}

ZOR_API void ztptrs(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                    const zor_int* nrhs, const zor_complex_double* ap, zor_complex_double* b,
                    const zor_int* ldb, zor_int* info, size_t, size_t, size_t) {
    run("ZTPTRS", info, [&](zint& i) {
        zor::ztptrs(*uplo, *trans, *diag, widen(n), widen(nrhs), complex(ap), complex(b), widen(ldb), i);
    });
}

}  // extern "C"
