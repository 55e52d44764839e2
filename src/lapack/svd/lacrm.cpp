// lacrm and larcm: products of a complex and a real matrix in real arithmetic, half the work of a
// complex product with the real factor made complex.

#include "lapack/lapack.hpp"
#include "lapack/svd/svd.hpp"

namespace zor {

void lacrm(zint m, zint n, const zcomplex* a, zint lda, const double* b, zint ldb, zcomplex* c, zint ldc) {
    if (m <= 0 || n <= 0) return;
    // Column j of A as doubles is (re, im, re, im, ...): a 2m by n real matrix with leading
    // dimension 2·lda whose product with B is C's doubles in the same order.
    Blas<double>::gemm('N', 'N', 2 * m, n, n, 1.0, reinterpret_cast<const double*>(a), 2 * lda, b, ldb, 0.0,
                       reinterpret_cast<double*>(c), 2 * ldc);
}

void larcm(zint m, zint n, const double* a, zint lda, const zcomplex* b, zint ldb, zcomplex* c, zint ldc,
           double* rwork) {
    if (m <= 0 || n <= 0) return;
    // The parts of B side by side (m by 2n), one real product, and the parts back into C.
    double* parts = rwork;
    double* product = rwork + m * n;
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < m; ++i) parts[i + j * m] = b[i + j * ldb].re;
    }
    Blas<double>::gemm('N', 'N', m, n, m, 1.0, a, lda, parts, m, 0.0, product, m);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < m; ++i) {
            parts[i + j * m] = b[i + j * ldb].im;
            c[i + j * ldc].re = product[i + j * m];
        }
    }
    Blas<double>::gemm('N', 'N', m, n, m, 1.0, a, lda, parts, m, 0.0, product, m);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < m; ++i) c[i + j * ldc].im = product[i + j * m];
    }
}

}  // namespace zor
