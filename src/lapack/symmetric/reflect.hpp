#pragma once
// The two-sided application of one reflector to a Hermitian (symmetric) matrix stored in one
// triangle, shared by the unblocked reduction and the band reduction's bulge chase.

#include "lapack/lapack.hpp"

namespace zor {

// A := Hᴴ A H for the order by order Hermitian A of the stored triangle uplo and H = I - tau v vᴴ,
// as one rank-2 update: with x = tau A v and w = x - (tau/2)(xᴴ v) v, Hᴴ A H = A - v wᴴ - w vᴴ.
// x: order elements of scratch.
template <class T>
void reflect_hermitian(char uplo, zint order, T* a, zint lda, const T* v, T tau, T* x) {
    Blas<T>::latrd_hemv(uplo, order, a, lda, v, x);
    Blas<T>::scal(order, tau, x, 1);
    const T alpha = (-0.5 * tau) * Blas<T>::dotc(order, x, 1, v, 1);
    Blas<T>::axpy(order, alpha, v, 1, x, 1);
    Blas<T>::her2(uplo, order, from_real<T>(-1.0), v, 1, x, 1, a, lda);
}

}  // namespace zor
