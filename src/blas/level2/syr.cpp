// Symmetric and Hermitian rank-one and rank-two updates: dsyr, dsyr2, zher, zher2. Only the uplo
// triangle is written. Element-wise, so every level gives the same bits: each stored element
// becomes A + x(i)*t (dsyr), (A + x(i)*t1) + y(i)*t2 (dsyr2, zher2), and zher's off-diagonal part
// goes through the zaxpy kernel. A column whose x (and y) element is zero is skipped; NaN is not
// zero. The Hermitian updates leave every diagonal element of the stored triangle real.

#include "blas/kernel.hpp"
#include "blas/level1/level1.hpp"
#include "blas/level2/level2.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// The stored rows of column j: [first, last).
struct Rows {
    zint first, last;
};
Rows stored_rows(bool upper, zint n, zint j, bool with_diagonal) {
    if (upper) return {0, with_diagonal ? j + 1 : j};
    return {with_diagonal ? j : j + 1, n};
}

}  // namespace

void dsyr(const char& uplo, const zint& n_ref, const double& alpha, const double* x, const zint& incx_ref,
          double* a, const zint& lda_ref) {
    const zint n = n_ref, incx = incx_ref, lda = lda_ref;  // not re-read after every store
    if (n <= 0 || alpha == 0.0) return;
    const bool upper = lsame(uplo, 'U');
    const double* xs = x + first_element(n, incx);
    for (zint j = 0; j < n; ++j) {
        const double xj = xs[j * incx];
        if (xj == 0.0) continue;
        const double temp = xj * alpha;
        double* c = a + j * lda;
        const Rows rows = stored_rows(upper, n, j, true);
        if (incx == 1) {
            double* __restrict column = c;
            const double* __restrict xv = xs;
            for (zint i = rows.first; i < rows.last; ++i) column[i] = column[i] + xv[i] * temp;
        } else {
            for (zint i = rows.first; i < rows.last; ++i) c[i] = c[i] + xs[i * incx] * temp;
        }
    }
}

void dsyr2(const char& uplo, const zint& n_ref, const double& alpha, const double* x, const zint& incx_ref,
           const double* y, const zint& incy_ref, double* a, const zint& lda_ref) {
    const zint n = n_ref, incx = incx_ref, incy = incy_ref, lda = lda_ref;  // not re-read after every store
    if (n <= 0 || alpha == 0.0) return;
    const bool upper = lsame(uplo, 'U');
    const double* xs = x + first_element(n, incx);
    const double* ys = y + first_element(n, incy);
    for (zint j = 0; j < n; ++j) {
        const double xj = xs[j * incx], yj = ys[j * incy];
        if (xj == 0.0 && yj == 0.0) continue;
        const double t1 = alpha * yj, t2 = alpha * xj;
        double* c = a + j * lda;
        const Rows rows = stored_rows(upper, n, j, true);
        for (zint i = rows.first; i < rows.last; ++i) c[i] = (c[i] + xs[i * incx] * t1) + ys[i * incy] * t2;
    }
}

void zher(const char& uplo, const zint& n_ref, const double& alpha, const zcomplex* x, const zint& incx_ref,
          zcomplex* a, const zint& lda_ref) {
    const zint n = n_ref, incx = incx_ref, lda = lda_ref;  // not re-read after every store
    if (n <= 0 || alpha == 0.0) return;
    const bool upper = lsame(uplo, 'U');
    const zcomplex* xs = x + first_element(n, incx);
    for (zint j = 0; j < n; ++j) {
        zcomplex* c = a + j * lda;
        const zcomplex xj = xs[j * incx];
        if (is_zero(xj)) {
            c[j].im = 0.0;
            continue;
        }
        const zcomplex temp{alpha * xj.re, -(alpha * xj.im)};
        const Rows rows = stored_rows(upper, n, j, false);
        const zint count = rows.last - rows.first;
        if (count > 0) zaxpy(count, temp, subvector(xs, rows.first, count, incx), incx, c + rows.first, 1);
        c[j] = {c[j].re + (xj * temp).re, 0.0};
    }
}

void zher2(const char& uplo, const zint& n_ref, const zcomplex& alpha, const zcomplex* x,
           const zint& incx_ref, const zcomplex* y, const zint& incy_ref, zcomplex* a, const zint& lda_ref) {
    const zint n = n_ref, incx = incx_ref, incy = incy_ref, lda = lda_ref;  // not re-read after every store
    if (n <= 0 || is_zero(alpha)) return;
    const bool upper = lsame(uplo, 'U');
    const zcomplex* xs = x + first_element(n, incx);
    const zcomplex* ys = y + first_element(n, incy);
    for (zint j = 0; j < n; ++j) {
        zcomplex* c = a + j * lda;
        const zcomplex xj = xs[j * incx], yj = ys[j * incy];
        if (is_zero(xj) && is_zero(yj)) {
            c[j].im = 0.0;
            continue;
        }
        // t1 = alpha*conj(y(j)), t2 = conj(alpha*x(j)).
        const zcomplex t1 = conj(yj) * alpha;
        const zcomplex t2 = conj(xj * alpha);
        const Rows rows = stored_rows(upper, n, j, false);
        for (zint i = rows.first; i < rows.last; ++i) {
            c[i] = (c[i] + xs[i * incx] * t1) + ys[i * incy] * t2;
        }
        c[j] = {c[j].re + ((xj * t1).re + (yj * t2).re), 0.0};
    }
}

}  // namespace zor::ZOR_LEVEL_NS
