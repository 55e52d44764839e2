// labrd: nb steps of the bidiagonal reduction, the rest of the matrix left unchanged: each new
// column and row is first brought up to date from the steps before it (A - V Yᴴ - X Uᴴ restricted to
// it), and the columns of X and Y are grown so that gebrd can update the rest with two products.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/svd/svd.hpp"

namespace zor {

template <class T>
void labrd(zint m, zint n, zint nb, T* a, zint lda, double* d, double* e, T* tauq, T* taup, T* x, zint ldx,
           T* y, zint ldy) {
    if (m <= 0 || n <= 0) return;
    const auto A = [&](zint i, zint j) -> T* { return a + i + j * lda; };
    const auto X = [&](zint i, zint j) -> T* { return x + i + j * ldx; };
    const auto Y = [&](zint i, zint j) -> T* { return y + i + j * ldy; };
    const T one = zor::one<T>(), zero = zor::zero<T>(), minus_one = -one;
    constexpr char adj = kAdjoint<T>;
    const auto gemv = [](char trans, zint rows, zint cols, T alpha, const T* mat, zint ld, const T* vec,
                         zint incv, T beta, T* out, zint inco) {
        Blas<T>::gemv(trans, rows, cols, alpha, mat, ld, vec, incv, beta, out, inco);
    };
    if (m >= n) {
        for (zint i = 0; i < nb; ++i) {
            // Column i of the current matrix.
            lacgv(i, Y(i, 0), ldy);
            gemv('N', m - i, i, minus_one, A(i, 0), lda, Y(i, 0), ldy, one, A(i, i), 1);
            lacgv(i, Y(i, 0), ldy);
            gemv('N', m - i, i, minus_one, X(i, 0), ldx, A(0, i), 1, one, A(i, i), 1);
            T alpha = *A(i, i);
            larfg(m - i, alpha, A(min_of(i + 1, m - 1), i), 1, tauq[i]);
            d[i] = real(alpha);
            if (i + 1 >= n) continue;
            *A(i, i) = one;
            // Y(i+1:n, i) = tauq (A - V Yᴴ - X Uᴴ)ᴴ v over the trailing columns.
            gemv(adj, m - i, n - i - 1, one, A(i, i + 1), lda, A(i, i), 1, zero, Y(i + 1, i), 1);
            gemv(adj, m - i, i, one, A(i, 0), lda, A(i, i), 1, zero, Y(0, i), 1);
            gemv('N', n - i - 1, i, minus_one, Y(i + 1, 0), ldy, Y(0, i), 1, one, Y(i + 1, i), 1);
            gemv(adj, m - i, i, one, X(i, 0), ldx, A(i, i), 1, zero, Y(0, i), 1);
            gemv(adj, i, n - i - 1, minus_one, A(0, i + 1), lda, Y(0, i), 1, one, Y(i + 1, i), 1);
            Blas<T>::scal(n - i - 1, tauq[i], Y(i + 1, i), 1);
            // Row i of the current matrix, conjugated for its reflector.
            lacgv(n - i - 1, A(i, i + 1), lda);
            lacgv(i + 1, A(i, 0), lda);
            gemv('N', n - i - 1, i + 1, minus_one, Y(i + 1, 0), ldy, A(i, 0), lda, one, A(i, i + 1), lda);
            lacgv(i + 1, A(i, 0), lda);
            lacgv(i, X(i, 0), ldx);
            gemv(adj, i, n - i - 1, minus_one, A(0, i + 1), lda, X(i, 0), ldx, one, A(i, i + 1), lda);
            lacgv(i, X(i, 0), ldx);
            alpha = *A(i, i + 1);
            larfg(n - i - 1, alpha, A(i, min_of(i + 2, n - 1)), lda, taup[i]);
            e[i] = real(alpha);
            *A(i, i + 1) = one;
            // X(i+1:m, i) = taup (A - V Yᴴ - X Uᴴ) u over the trailing rows.
            gemv('N', m - i - 1, n - i - 1, one, A(i + 1, i + 1), lda, A(i, i + 1), lda, zero, X(i + 1, i),
                 1);
            gemv(adj, n - i - 1, i + 1, one, Y(i + 1, 0), ldy, A(i, i + 1), lda, zero, X(0, i), 1);
            gemv('N', m - i - 1, i + 1, minus_one, A(i + 1, 0), lda, X(0, i), 1, one, X(i + 1, i), 1);
            gemv('N', i, n - i - 1, one, A(0, i + 1), lda, A(i, i + 1), lda, zero, X(0, i), 1);
            gemv('N', m - i - 1, i, minus_one, X(i + 1, 0), ldx, X(0, i), 1, one, X(i + 1, i), 1);
            Blas<T>::scal(m - i - 1, taup[i], X(i + 1, i), 1);
            lacgv(n - i - 1, A(i, i + 1), lda);
        }
    } else {
        for (zint i = 0; i < nb; ++i) {
            // Row i of the current matrix, conjugated for its reflector.
            lacgv(n - i, A(i, i), lda);
            lacgv(i, A(i, 0), lda);
            gemv('N', n - i, i, minus_one, Y(i, 0), ldy, A(i, 0), lda, one, A(i, i), lda);
            lacgv(i, A(i, 0), lda);
            lacgv(i, X(i, 0), ldx);
            gemv(adj, i, n - i, minus_one, A(0, i), lda, X(i, 0), ldx, one, A(i, i), lda);
            lacgv(i, X(i, 0), ldx);
            T alpha = *A(i, i);
            larfg(n - i, alpha, A(i, min_of(i + 1, n - 1)), lda, taup[i]);
            d[i] = real(alpha);
            if (i + 1 >= m) {
                lacgv(n - i, A(i, i), lda);
                continue;
            }
            *A(i, i) = one;
            // X(i+1:m, i) = taup (A - V Yᴴ - X Uᴴ) u over the trailing rows.
            gemv('N', m - i - 1, n - i, one, A(i + 1, i), lda, A(i, i), lda, zero, X(i + 1, i), 1);
            gemv(adj, n - i, i, one, Y(i, 0), ldy, A(i, i), lda, zero, X(0, i), 1);
            gemv('N', m - i - 1, i, minus_one, A(i + 1, 0), lda, X(0, i), 1, one, X(i + 1, i), 1);
            gemv('N', i, n - i, one, A(0, i), lda, A(i, i), lda, zero, X(0, i), 1);
            gemv('N', m - i - 1, i, minus_one, X(i + 1, 0), ldx, X(0, i), 1, one, X(i + 1, i), 1);
            Blas<T>::scal(m - i - 1, taup[i], X(i + 1, i), 1);
            lacgv(n - i, A(i, i), lda);
            // Column i below the diagonal of the current matrix.
            lacgv(i, Y(i, 0), ldy);
            gemv('N', m - i - 1, i, minus_one, A(i + 1, 0), lda, Y(i, 0), ldy, one, A(i + 1, i), 1);
            lacgv(i, Y(i, 0), ldy);
            gemv('N', m - i - 1, i + 1, minus_one, X(i + 1, 0), ldx, A(0, i), 1, one, A(i + 1, i), 1);
            alpha = *A(i + 1, i);
            larfg(m - i - 1, alpha, A(min_of(i + 2, m - 1), i), 1, tauq[i]);
            e[i] = real(alpha);
            *A(i + 1, i) = one;
            // Y(i+1:n, i) = tauq (A - V Yᴴ - X Uᴴ)ᴴ v over the trailing columns.
            gemv(adj, m - i - 1, n - i - 1, one, A(i + 1, i + 1), lda, A(i + 1, i), 1, zero, Y(i + 1, i), 1);
            gemv(adj, m - i - 1, i, one, A(i + 1, 0), lda, A(i + 1, i), 1, zero, Y(0, i), 1);
            gemv('N', n - i - 1, i, minus_one, Y(i + 1, 0), ldy, Y(0, i), 1, one, Y(i + 1, i), 1);
            gemv(adj, m - i - 1, i + 1, one, X(i + 1, 0), ldx, A(i + 1, i), 1, zero, Y(0, i), 1);
            gemv(adj, i + 1, n - i - 1, minus_one, A(0, i + 1), lda, Y(0, i), 1, one, Y(i + 1, i), 1);
            Blas<T>::scal(n - i - 1, tauq[i], Y(i + 1, i), 1);
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(labrd)
