// lahr2: one panel of the blocked Hessenberg reduction. Column j of the panel is first brought up
// to date with the reflectors before it (A := (I - V T Vᴴ)ᴴ (A - Y Vᴴ) restricted to the column),
// then gets its own reflector; Y = A V T is built a column at a time from the matrix-vector
// product with the trailing columns, the part of the whole computation that stays on level 2.
// The rows above the reduced part (the first k) get their Y in one go at the end.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/hessenberg/hessenberg.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"

namespace zor {

template <class T>
void lahr2(zint n, zint k, zint nb, T* a, zint lda, T* tau, T* t, zint ldt, T* y, zint ldy) {
    if (n <= 1) return;
    const T one = zor::one<T>(), zero = zor::zero<T>(), minus_one = from_real<T>(-1.0);
    const char adjoint = kAdjoint<T>;
    const auto A = [&](zint i, zint j) { return a + i + j * lda; };
    T* w = t + (nb - 1) * ldt;  // the last column of T holds the scratch vector until it is formed
    T saved{};
    for (zint j = 0; j < nb; ++j) {
        if (j > 0) {
            // A(k:n, j) -= Y(k:n, 0:j) conj(A(k + j - 1, 0:j))ᵀ
            lacgv(j, A(k + j - 1, 0), lda);
            Blas<T>::gemv('N', n - k, j, minus_one, y + k, ldy, A(k + j - 1, 0), lda, one, A(k, j), 1);
            lacgv(j, A(k + j - 1, 0), lda);
            // b := (I - V T Vᴴ)ᴴ b with V = [V1; V2] (V1 unit lower triangular, j rows) and b = [b1; b2]:
            // w := Tᴴ (V1ᴴ b1 + V2ᴴ b2), b2 -= V2 w, b1 -= V1 w.
            Blas<T>::copy(j, A(k, j), 1, w, 1);
            Blas<T>::trmv('L', adjoint, 'U', j, A(k, 0), lda, w, 1);
            Blas<T>::gemv(adjoint, n - k - j, j, one, A(k + j, 0), lda, A(k + j, j), 1, one, w, 1);
            Blas<T>::trmv('U', adjoint, 'N', j, t, ldt, w, 1);
            Blas<T>::gemv('N', n - k - j, j, minus_one, A(k + j, 0), lda, w, 1, one, A(k + j, j), 1);
            Blas<T>::trmv('L', 'N', 'U', j, A(k, 0), lda, w, 1);
            Blas<T>::axpy(j, minus_one, w, 1, A(k, j), 1);
            *A(k + j - 1, j - 1) = saved;
        }
        // The reflector of column j, its unit element on row k + j.
        larfg(n - k - j, *A(k + j, j), A(min_of(k + j + 1, n - 1), j), 1, tau[j]);
        saved = *A(k + j, j);
        *A(k + j, j) = one;
        // Y(k:n, j) = tau (A(k:n, j+1:) v - Y(k:n, 0:j) (V2ᴴ v))
        T* yj = y + k + j * ldy;
        Blas<T>::gemv('N', n - k, n - k - j, one, A(k, j + 1), lda, A(k + j, j), 1, zero, yj, 1);
        T* tj = t + j * ldt;
        Blas<T>::gemv(adjoint, n - k - j, j, one, A(k + j, 0), lda, A(k + j, j), 1, zero, tj, 1);
        Blas<T>::gemv('N', n - k, j, minus_one, y + k, ldy, tj, 1, one, yj, 1);
        Blas<T>::scal(n - k, tau[j], yj, 1);
        // T(0:j, j) = -tau T(0:j, 0:j) (V2ᴴ v)
        Blas<T>::scal(j, -tau[j], tj, 1);
        Blas<T>::trmv('U', 'N', 'N', j, t, ldt, tj, 1);
        tj[j] = tau[j];
    }
    *A(k + nb - 1, nb - 1) = saved;
    // Y(0:k, :) = A(0:k, 1:) V T, V's unit triangle first.
    lacpy('A', k, nb, A(0, 1), lda, y, ldy);
    Blas<T>::trmm('R', 'L', 'N', 'U', k, nb, one, A(k, 0), lda, y, ldy);
    if (n > k + nb)
        Blas<T>::gemm('N', 'N', k, nb, n - k - nb, one, A(0, 1 + nb), lda, A(k + nb, 0), lda, one, y, ldy);
    Blas<T>::trmm('R', 'U', 'N', 'N', k, nb, one, t, ldt, y, ldy);
}

}  // namespace zor

ZOR_INSTANTIATE(lahr2)
