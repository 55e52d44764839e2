// Rank-one updates: dger, zgeru, zgerc. Column by column, each through the axpy kernel of the same
// level. A column whose y element is zero is skipped entirely, so NaN in x never reaches it (a NaN
// y element is not zero); the axpy kernel itself returns when the column's factor is zero.

#include "blas/kernel.hpp"
#include "blas/level1/level1.hpp"
#include "blas/level2/level2.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

template <bool kConjugate>
void zger(zint m, zint n, const zcomplex& alpha, const zcomplex* x, zint incx, const zcomplex* y, zint incy,
          zcomplex* a, zint lda) {
    if (m <= 0 || n <= 0 || is_zero(alpha)) return;
    const zcomplex* ys = y + first_element(n, incy);
    for (zint j = 0; j < n; ++j) {
        const zcomplex w = ys[j * incy];
        if (is_zero(w)) continue;
        const zcomplex t = (kConjugate ? conj(w) : w) * alpha;
        zaxpy(m, t, x, incx, a + j * lda, 1);
    }
}

}  // namespace

void dger(const zint& m, const zint& n, const double& alpha, const double* x, const zint& incx,
          const double* y, const zint& incy, double* a, const zint& lda) {
    if (m <= 0 || n <= 0 || alpha == 0.0) return;
    const double* ys = y + first_element(n, incy);
    for (zint j = 0; j < n; ++j) {
        const double temp = ys[j * incy];
        if (temp != 0.0) daxpy(m, temp * alpha, x, incx, a + j * lda, 1);
    }
}

void zgeru(const zint& m, const zint& n, const zcomplex& alpha, const zcomplex* x, const zint& incx,
           const zcomplex* y, const zint& incy, zcomplex* a, const zint& lda) {
    zger<false>(m, n, alpha, x, incx, y, incy, a, lda);
}

void zgerc(const zint& m, const zint& n, const zcomplex& alpha, const zcomplex* x, const zint& incx,
           const zcomplex* y, const zint& incy, zcomplex* a, const zint& lda) {
    zger<true>(m, n, alpha, x, incx, y, incy, a, lda);
}

}  // namespace zor::ZOR_LEVEL_NS
