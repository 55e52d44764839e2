// latrd: one panel of the blocked tridiagonal reduction. The panel's columns are reduced one at a
// time, but the triangle beyond the panel is not updated: each column is first brought up to date
// from the reflectors V and the vectors W made so far (A - V Wᴴ - W Vᴴ), and its W column is
// formed against that updated matrix without forming it, so the caller can apply all of the
// panel's updates to the rest as one rank-2k update.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/symmetric/symmetric.hpp"

namespace zor {

namespace {

// y := y - A(rows, cols) conj(b) - B(rows, cols) conj(a): a column of A - V Wᴴ - W Vᴴ, where the
// strided vectors a and b are the matching row of V (in A) and of W. The rows are conjugated in
// place around the products (a no-op for real data).
template <class T>
void update_column(zint rows, zint cols, const T* v, zint ldv, T* v_row, const T* w, zint ldw, T* w_row,
                   T* y) {
    if (cols == 0) return;
    const T minus_one = from_real<T>(-1.0);
    lacgv(cols, w_row, ldw);
    Blas<T>::gemv('N', rows, cols, minus_one, v, ldv, w_row, ldw, one<T>(), y, 1);
    lacgv(cols, w_row, ldw);
    lacgv(cols, v_row, ldv);
    Blas<T>::gemv('N', rows, cols, minus_one, w, ldw, v_row, ldv, one<T>(), y, 1);
    lacgv(cols, v_row, ldv);
}

// The W column of reflector (v, tau) of order `order` when `cols` earlier reflectors V (order by
// cols) and their W are pending: w := tau (A - V Wᴴ - W Vᴴ) v, given A v in w, then
// w := w - (tau/2)(wᴴ v) v. scratch: cols elements.
template <class T>
void finish_w(zint order, zint cols, const T* v_block, zint ldv, const T* w_block, zint ldw, const T* v,
              T tau, T* w, T* scratch) {
    if (cols > 0) {
        const T minus_one = from_real<T>(-1.0);
        Blas<T>::gemv(kAdjoint<T>, order, cols, one<T>(), w_block, ldw, v, 1, zero<T>(), scratch, 1);
        Blas<T>::gemv('N', order, cols, minus_one, v_block, ldv, scratch, 1, one<T>(), w, 1);
        Blas<T>::gemv(kAdjoint<T>, order, cols, one<T>(), v_block, ldv, v, 1, zero<T>(), scratch, 1);
        Blas<T>::gemv('N', order, cols, minus_one, w_block, ldw, scratch, 1, one<T>(), w, 1);
    }
    Blas<T>::scal(order, tau, w, 1);
    const T alpha = (-0.5 * tau) * Blas<T>::dotc(order, w, 1, v, 1);
    Blas<T>::axpy(order, alpha, v, 1, w, 1);
}

}  // namespace

template <class T>
void latrd(char uplo, zint n, zint nb, T* a, zint lda, double* e, T* tau, T* w, zint ldw) {
    if (n <= 0) return;
    const auto A = [&](zint i, zint j) -> T* { return a + i + j * lda; };
    const auto W = [&](zint i, zint j) -> T* { return w + i + j * ldw; };
    if (lsame(uplo, 'U')) {
        // Columns n - 1 down to n - nb; column i of A pairs with column iw of W.
        for (zint i = n - 1; i >= n - nb; --i) {
            const zint iw = i - n + nb;
            const zint done = n - 1 - i;
            if (done > 0) {
                *A(i, i) = real_part(*A(i, i));
                update_column(i + 1, done, A(0, i + 1), lda, A(i, i + 1), W(0, iw + 1), ldw, W(i, iw + 1),
                              A(0, i));
                *A(i, i) = real_part(*A(i, i));
            }
            if (i > 0) {
                // The reflector that annihilates A(0 : i - 2, i).
                T alpha = *A(i - 1, i);
                larfg(i, alpha, A(0, i), 1, tau[i - 1]);
                e[i - 1] = real(alpha);
                *A(i - 1, i) = one<T>();
                Blas<T>::latrd_hemv(uplo, i, a, lda, A(0, i), W(0, iw));
                finish_w(i, done, A(0, i + 1), lda, W(0, iw + 1), ldw, A(0, i), tau[i - 1], W(0, iw),
                         W(i + 1, iw));
            }
        }
    } else {
        for (zint i = 0; i < nb; ++i) {
            *A(i, i) = real_part(*A(i, i));
            update_column(n - i, i, A(i, 0), lda, A(i, 0), W(i, 0), ldw, W(i, 0), A(i, i));
            *A(i, i) = real_part(*A(i, i));
            if (i < n - 1) {
                // The reflector that annihilates A(i + 2 : n - 1, i).
                T alpha = *A(i + 1, i);
                larfg(n - i - 1, alpha, A(min_of(i + 2, n - 1), i), 1, tau[i]);
                e[i] = real(alpha);
                *A(i + 1, i) = one<T>();
                Blas<T>::latrd_hemv(uplo, n - i - 1, A(i + 1, i + 1), lda, A(i + 1, i), W(i + 1, i));
                finish_w(n - i - 1, i, A(i + 1, 0), lda, W(i + 1, 0), ldw, A(i + 1, i), tau[i], W(i + 1, i),
                         W(0, i));
            }
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(latrd)
