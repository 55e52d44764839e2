// lasr: a sequence of real plane rotations applied to the rows or the columns of a matrix.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

// (x, y) := (c x + s y, c y - s x) along `count` elements at strides incx and incy.
template <class T>
void rotate(zint count, T* x, zint incx, T* y, zint incy, double c, double s) {
    for (zint i = 0; i < count; ++i) {
        const T xi = x[i * incx], yi = y[i * incy];
        y[i * incy] = yi * c - xi * s;
        x[i * incx] = xi * c + yi * s;
    }
}

}  // namespace

template <class T>
void lasr(char side, char pivot, char direct, zint m, zint n, const double* c, const double* s, T* a,
          zint lda) {
    const bool left = lsame(side, 'L');
    if (m <= 0 || n <= 0) return;
    // The rotated lines are rows (side "L": `count` of them, n long) or columns (side "R").
    const zint count = left ? m : n, length = left ? n : m;
    const zint line_step = left ? 1 : lda, element_step = left ? lda : 1;
    const auto line = [&](zint k) { return a + k * line_step; };
    const bool forward = lsame(direct, 'F');
    for (zint t = 0; t + 1 < count; ++t) {
        const zint j = forward ? t : count - 2 - t;
        const double cj = c[j], sj = s[j];
        if (cj == 1.0 && sj == 0.0) continue;
        if (lsame(pivot, 'V')) {
            rotate(length, line(j), element_step, line(j + 1), element_step, cj, sj);
        } else if (lsame(pivot, 'T')) {
            rotate(length, line(0), element_step, line(j + 1), element_step, cj, sj);
        } else {
            rotate(length, line(j), element_step, line(count - 1), element_step, cj, sj);
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(lasr)
