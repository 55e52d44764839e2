// The Fortran-style exports of the Cholesky and triangular families: scalars widened, no arrays to
// copy.

#include "interface/lapack_frame.hpp"
#include "lapack/cholesky/cholesky.hpp"
#include "lapack/triangular/triangular.hpp"
#include "zor/zor_lapack.h"

using namespace zor::fortran;
using zor::zint;

extern "C" {

ZOR_API void dpotrf(const char* uplo, const zor_int* n, double* a, const zor_int* lda, zor_int* info,
                    size_t) {
    LapackCall("DPOTRF", info).run([&](zint& i) { zor::potrf(*uplo, widen(n), a, widen(lda), i); });
}

ZOR_API void zpotrf(const char* uplo, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                    zor_int* info, size_t) {
    LapackCall("ZPOTRF", info).run([&](zint& i) {
        zor::potrf(*uplo, widen(n), as_complex(a), widen(lda), i);
    });
}

ZOR_API void dposv(const char* uplo, const zor_int* n, const zor_int* nrhs, double* a, const zor_int* lda,
                   double* b, const zor_int* ldb, zor_int* info, size_t) {
    LapackCall("DPOSV", info).run([&](zint& i) {
        zor::posv(*uplo, widen(n), widen(nrhs), a, widen(lda), b, widen(ldb), i);
    });
}

ZOR_API void zposv(const char* uplo, const zor_int* n, const zor_int* nrhs, zor_complex_double* a,
                   const zor_int* lda, zor_complex_double* b, const zor_int* ldb, zor_int* info, size_t) {
    LapackCall("ZPOSV", info).run([&](zint& i) {
        zor::posv(*uplo, widen(n), widen(nrhs), as_complex(a), widen(lda), as_complex(b), widen(ldb), i);
    });
}

ZOR_API void dpotri(const char* uplo, const zor_int* n, double* a, const zor_int* lda, zor_int* info,
                    size_t) {
    LapackCall("DPOTRI", info).run([&](zint& i) { zor::potri(*uplo, widen(n), a, widen(lda), i); });
}

ZOR_API void zpotri(const char* uplo, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                    zor_int* info, size_t) {
    LapackCall("ZPOTRI", info).run([&](zint& i) {
        zor::potri(*uplo, widen(n), as_complex(a), widen(lda), i);
    });
}

ZOR_API void dpptrf(const char* uplo, const zor_int* n, double* ap, zor_int* info, size_t) {
    LapackCall("DPPTRF", info).run([&](zint& i) { zor::pptrf(*uplo, widen(n), ap, i); });
}

ZOR_API void zpptrf(const char* uplo, const zor_int* n, zor_complex_double* ap, zor_int* info, size_t) {
    LapackCall("ZPPTRF", info).run([&](zint& i) { zor::pptrf(*uplo, widen(n), as_complex(ap), i); });
}

ZOR_API void dpptrs(const char* uplo, const zor_int* n, const zor_int* nrhs, const double* ap, double* b,
                    const zor_int* ldb, zor_int* info, size_t) {
    LapackCall("DPPTRS", info).run([&](zint& i) {
        zor::pptrs(*uplo, widen(n), widen(nrhs), ap, b, widen(ldb), i);
    });
}

ZOR_API void zpptrs(const char* uplo, const zor_int* n, const zor_int* nrhs, const zor_complex_double* ap,
                    zor_complex_double* b, const zor_int* ldb, zor_int* info, size_t) {
    LapackCall("ZPPTRS", info).run([&](zint& i) {
        zor::pptrs(*uplo, widen(n), widen(nrhs), as_complex(ap), as_complex(b), widen(ldb), i);
    });
}

ZOR_API void dpptri(const char* uplo, const zor_int* n, double* ap, zor_int* info, size_t) {
    LapackCall("DPPTRI", info).run([&](zint& i) { zor::pptri(*uplo, widen(n), ap, i); });
}

ZOR_API void zpptri(const char* uplo, const zor_int* n, zor_complex_double* ap, zor_int* info, size_t) {
    LapackCall("ZPPTRI", info).run([&](zint& i) { zor::pptri(*uplo, widen(n), as_complex(ap), i); });
}

ZOR_API void dtrtri(const char* uplo, const char* diag, const zor_int* n, double* a, const zor_int* lda,
                    zor_int* info, size_t, size_t) {
    LapackCall("DTRTRI", info).run([&](zint& i) { zor::trtri(*uplo, *diag, widen(n), a, widen(lda), i); });
}

ZOR_API void ztrtri(const char* uplo, const char* diag, const zor_int* n, zor_complex_double* a,
                    const zor_int* lda, zor_int* info, size_t, size_t) {
    LapackCall("ZTRTRI", info).run([&](zint& i) {
        zor::trtri(*uplo, *diag, widen(n), as_complex(a), widen(lda), i);
    });
}

ZOR_API void dtptri(const char* uplo, const char* diag, const zor_int* n, double* ap, zor_int* info, size_t,
                    size_t) {
    LapackCall("DTPTRI", info).run([&](zint& i) { zor::tptri(*uplo, *diag, widen(n), ap, i); });
}

ZOR_API void ztptri(const char* uplo, const char* diag, const zor_int* n, zor_complex_double* ap,
                    zor_int* info, size_t, size_t) {
    LapackCall("ZTPTRI", info).run([&](zint& i) { zor::tptri(*uplo, *diag, widen(n), as_complex(ap), i); });
}

ZOR_API void dtptrs(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                    const zor_int* nrhs, const double* ap, double* b, const zor_int* ldb, zor_int* info,
                    size_t, size_t, size_t) {
    LapackCall("DTPTRS", info).run([&](zint& i) {
        zor::tptrs(*uplo, *trans, *diag, widen(n), widen(nrhs), ap, b, widen(ldb), i);
    });
}

ZOR_API void ztptrs(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                    const zor_int* nrhs, const zor_complex_double* ap, zor_complex_double* b,
                    const zor_int* ldb, zor_int* info, size_t, size_t, size_t) {
    LapackCall("ZTPTRS", info).run([&](zint& i) {
        zor::tptrs(*uplo, *trans, *diag, widen(n), widen(nrhs), as_complex(ap), as_complex(b), widen(ldb), i);
    });
}

}  // extern "C"
