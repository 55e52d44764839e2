// Solves op(T)*x = b in place for triangular T: dtrsv and ztrsv, in blocks of 32. Each diagonal
// block goes to the block solver of its case (uplo, trans and diag: eight real, twelve complex);
// the part of the right-hand side that depends on it is updated through the gemv dispatcher with
// alpha -1 and beta 1. A zero on a non-unit diagonal divides as the arithmetic does.

#include "blas/dispatch.hpp"
#include "blas/kernel.hpp"
#include "blas/level2/level2.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

constexpr zint kBlock = 32;

// Solves the nb by nb diagonal block at a; x's logical elements at xs[i*inc] (with kUnitStride,
// inc is 1 and the compiler may vectorise the inner loops).
template <class T, bool kUpper, bool kPlain, bool kConjugated, bool kUnit, bool kUnitStride>
void solve_block(zint nb, const T* a, zint lda, T* xs, zint inc) {
    auto at = [&](zint i, zint j) { return conj_if(kConjugated, a[i + j * lda]); };
    auto x = [&](zint i) -> T& { return kUnitStride ? xs[i] : xs[i * inc]; };
    if constexpr (kPlain && kUpper) {
        for (zint j = nb - 1; j >= 0; --j) {
            if (!kUnit) x(j) = x(j) / at(j, j);
            const T temp = x(j);
            for (zint i = j - 1; i >= 0; --i) x(i) = x(i) - (temp * at(i, j));
        }
    } else if constexpr (kPlain) {
        for (zint j = 0; j < nb; ++j) {
            if (!kUnit) x(j) = x(j) / at(j, j);
            const T temp = x(j);
            for (zint i = j + 1; i < nb; ++i) x(i) = x(i) - (temp * at(i, j));
        }
    } else if constexpr (kUpper) {
        for (zint j = 0; j < nb; ++j) {
            T temp = x(j);
            for (zint i = 0; i < j; ++i) temp = temp - (at(i, j) * x(i));
            x(j) = kUnit ? temp : temp / at(j, j);
        }
    } else {
        for (zint j = nb - 1; j >= 0; --j) {
            T temp = x(j);
            for (zint i = nb - 1; i > j; --i) temp = temp - (at(i, j) * x(i));
            x(j) = kUnit ? temp : temp / at(j, j);
        }
    }
}

template <class T>
using BlockSolver = void (*)(zint, const T*, zint, T*, zint);

template <class T, bool kUpper, bool kPlain, bool kConjugated>
BlockSolver<T> solver_for_diagonal(bool unit, bool unit_stride) {
    if (unit_stride) {
        return unit ? &solve_block<T, kUpper, kPlain, kConjugated, true, true>
                    : &solve_block<T, kUpper, kPlain, kConjugated, false, true>;
    }
    return unit ? &solve_block<T, kUpper, kPlain, kConjugated, true, false>
                : &solve_block<T, kUpper, kPlain, kConjugated, false, false>;
}

template <class T, bool kConjugated>
BlockSolver<T> solver_for_transpose(bool upper, bool plain, bool unit, bool unit_stride) {
    if (plain) {
        return upper ? solver_for_diagonal<T, true, true, false>(unit, unit_stride)
                     : solver_for_diagonal<T, false, true, false>(unit, unit_stride);
    }
    return upper ? solver_for_diagonal<T, true, false, kConjugated>(unit, unit_stride)
                 : solver_for_diagonal<T, false, false, kConjugated>(unit, unit_stride);
}

void update(char trans, zint m, zint n, const double* a, zint lda, const double* x, zint incx, double* y) {
    ::zor::dgemv(trans, m, n, -1.0, a, lda, x, incx, 1.0, y, incx);
}
void update(char trans, zint m, zint n, const zcomplex* a, zint lda, const zcomplex* x, zint incx,
            zcomplex* y) {
    ::zor::zgemv(trans, m, n, zcomplex{-1.0, 0.0}, a, lda, x, incx, zcomplex{1.0, 0.0}, y, incx);
}

template <class T>
void trsv(char uplo, char trans, char diag, zint n, const T* a, zint lda, T* x, zint incx) {
    if (n <= 0) return;
    const bool upper = lsame(uplo, 'U'), plain = lsame(trans, 'N');
    const bool unit = lsame(diag, 'U'), unit_stride = incx == 1;
    const BlockSolver<T> solve = lsame(trans, 'C')
                                     ? solver_for_transpose<T, true>(upper, plain, unit, unit_stride)
                                     : solver_for_transpose<T, false>(upper, plain, unit, unit_stride);
    T* xs = x + first_element(n, incx);
    auto part = [&](zint from, zint count) { return subvector(xs, from, count, incx); };
    auto block = [&](zint s, zint b) { solve(b, a + s + s * lda, lda, xs + s * incx, incx); };
    if (plain != upper) {
        // Forward substitution (lower, or upper transposed): full blocks from the first, the
        // partial one last.
        for (zint s = 0; s < n; s += kBlock) {
            const zint b = n - s < kBlock ? n - s : kBlock;
            if (plain) {
                block(s, b);
                if (n - s - b > 0)
                    update('N', n - s - b, b, a + s + b + s * lda, lda, part(s, b), incx,
                           part(s + b, n - s - b));
            } else {
                if (s > 0) update(trans, s, b, a + s * lda, lda, part(0, s), incx, part(s, b));
                block(s, b);
            }
        }
        return;
    }
    // Backward substitution (upper, or lower transposed): from the last block, the partial one
    // first in storage.
    for (zint e = n; e > 0; e -= kBlock) {
        const zint s = e > kBlock ? e - kBlock : 0;
        const zint b = e - s;
        if (plain) {
            block(s, b);
            if (s > 0) update('N', s, b, a + s * lda, lda, part(s, b), incx, part(0, s));
        } else {
            if (e < n) update(trans, n - e, b, a + e + s * lda, lda, part(e, n - e), incx, part(s, b));
            block(s, b);
        }
    }
}

}  // namespace

void dtrsv(const char& uplo, const char& trans, const char& diag, const zint& n, const double* a,
           const zint& lda, double* x, const zint& incx) {
    trsv(uplo, trans, diag, n, a, lda, x, incx);
}

void ztrsv(const char& uplo, const char& trans, const char& diag, const zint& n, const zcomplex* a,
           const zint& lda, zcomplex* x, const zint& incx) {
    trsv(uplo, trans, diag, n, a, lda, x, incx);
}

}  // namespace zor::ZOR_LEVEL_NS
