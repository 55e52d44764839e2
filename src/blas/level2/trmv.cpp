// x := op(T)*x for triangular T: dtrmv (blocks of 64) and ztrmv (blocks of 32). Diagonal blocks go
// to one column-oriented block kernel; everything off the diagonal to the gemv kernel of the same
// level (alpha 1, beta 1). Each step reads only elements of x that are not yet overwritten.

#include "blas/kernel.hpp"
#include "blas/level2/level2.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// x(0..nb) := op(T)*x for the diagonal block at a; x's logical elements at xs[i*inc].
template <class T>
void trmv_block(bool upper, bool plain, bool conjugated, bool unit, zint nb, const T* a, zint lda, T* xs,
                zint inc) {
    auto at = [&](zint i, zint j) { return conj_if(conjugated, a[i + j * lda]); };
    auto x = [&](zint i) -> T& { return xs[i * inc]; };
    if (plain && upper) {
        for (zint j = 0; j < nb; ++j) {
            const T temp = x(j);
            for (zint i = 0; i < j; ++i) x(i) = x(i) + (temp * at(i, j));
            if (!unit) x(j) = x(j) * at(j, j);
        }
    } else if (plain) {
        for (zint j = nb - 1; j >= 0; --j) {
            const T temp = x(j);
            for (zint i = nb - 1; i > j; --i) x(i) = x(i) + (temp * at(i, j));
            if (!unit) x(j) = x(j) * at(j, j);
        }
    } else if (upper) {
        for (zint j = nb - 1; j >= 0; --j) {
            T temp = unit ? x(j) : x(j) * at(j, j);
            for (zint i = j - 1; i >= 0; --i) temp = temp + (at(i, j) * x(i));
            x(j) = temp;
        }
    } else {
        for (zint j = 0; j < nb; ++j) {
            T temp = unit ? x(j) : x(j) * at(j, j);
            for (zint i = j + 1; i < nb; ++i) temp = temp + (at(i, j) * x(i));
            x(j) = temp;
        }
    }
}

void gemv_same_level(char trans, zint m, zint n, const double* a, zint lda, const double* x, zint incx,
                     double* y) {
    dgemv(trans, m, n, 1.0, a, lda, x, incx, 1.0, y, incx);
}
void gemv_same_level(char trans, zint m, zint n, const zcomplex* a, zint lda, const zcomplex* x, zint incx,
                     zcomplex* y) {
    const zcomplex one{1.0, 0.0};
    zgemv(trans, m, n, one, a, lda, x, incx, one, y, incx);
}

template <class T, zint kBlock>
void trmv(char uplo, char trans, char diag, zint n, const T* a, zint lda, T* x, zint incx) {
    if (n <= 0) return;
    const bool upper = lsame(uplo, 'U'), plain = lsame(trans, 'N'), unit = lsame(diag, 'U');
    const bool conjugated = lsame(trans, 'C');
    T* xs = x + first_element(n, incx);
    auto part = [&](zint from, zint count) { return subvector(xs, from, count, incx); };
    auto block = [&](zint s, zint b) {
        trmv_block(upper, plain, conjugated, unit, b, a + s + s * lda, lda, xs + s * incx, incx);
    };
    if (plain == upper) {
        // Upper not transposed, lower transposed: blocks from the first; the part of x the
        // off-diagonal product needs lies after the block and is still untouched.
        for (zint s = 0; s < n; s += kBlock) {
            const zint b = n - s < kBlock ? n - s : kBlock;
            if (plain) {
                if (s > 0) gemv_same_level('N', s, b, a + s * lda, lda, part(s, b), incx, part(0, s));
                block(s, b);
            } else {
                block(s, b);
                const zint below = n - s - b;
                if (below > 0)
                    gemv_same_level(trans, below, b, a + s + b + s * lda, lda, part(s + b, below), incx,
                                    part(s, b));
            }
        }
        return;
    }
    // Lower not transposed, upper transposed: blocks from the last, the partial block first in
    // storage (block starts at max(0, n - 64), and so on).
    for (zint e = n; e > 0; e -= kBlock) {
        const zint s = e > kBlock ? e - kBlock : 0;
        const zint b = e - s;
        if (plain) {
            if (e < n) gemv_same_level('N', n - e, b, a + e + s * lda, lda, part(s, b), incx, part(e, n - e));
            block(s, b);
        } else {
            block(s, b);
            if (s > 0) gemv_same_level(trans, s, b, a + s * lda, lda, part(0, s), incx, part(s, b));
        }
    }
}

}  // namespace

void dtrmv(const char& uplo, const char& trans, const char& diag, const zint& n, const double* a,
           const zint& lda, double* x, const zint& incx) {
    trmv<double, 64>(uplo, trans, diag, n, a, lda, x, incx);
}

void ztrmv(const char& uplo, const char& trans, const char& diag, const zint& n, const zcomplex* a,
           const zint& lda, zcomplex* x, const zint& incx) {
    trmv<zcomplex, 32>(uplo, trans, diag, n, a, lda, x, incx);
}

}  // namespace zor::ZOR_LEVEL_NS
