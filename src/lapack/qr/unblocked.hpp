#pragma once
// The unblocked QR and LQ factorizations, written once for both: the LQ's vectors are the rows,
// conjugated, so with the element (i, j) of the QR's view at A(j, i) the same steps do either.
// A reflector for each vector (column or row), applied at once to the vectors after it.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"

namespace zor {

// geqr2 (lq false) and gelq2 (true) after their checks. work: n (QR) or m (LQ) elements.
template <class T>
void factor_unblocked(bool lq, zint m, zint n, T* a, zint lda, T* tau, T* work) {
    const zint order = lq ? n : m;  // the length of the vectors
    const zint count = lq ? m : n;  // the vectors of the matrix
    const zint stride = lq ? lda : 1;
    const auto at = [&](zint i, zint j) -> T* { return lq ? a + j + i * lda : a + i + j * lda; };
    for (zint i = 0; i < min_of(m, n); ++i) {
        T* v = at(i, i);
        // LQ: the reflector is made from the conjugated row, which is stored back conjugated.
        if (lq) lacgv(order - i, v, stride);
        T beta = *v;
        larfg(order - i, beta, at(min_of(i + 1, order - 1), i), stride, tau[i]);
        if (i + 1 < count) {
            *v = one<T>();
            if (lq) {
                larf('R', count - i - 1, order - i, v, stride, tau[i], at(i, i + 1), lda, work);
            } else {
                larf('L', order - i, count - i - 1, v, stride, conj(tau[i]), at(i, i + 1), lda, work);
            }
        }
        *v = beta;
        if (lq) lacgv(order - i, v, stride);
    }
}

}  // namespace zor

// geqr2 and gelq2 are the code above: each one's source file defines and instantiates its routine
// with this.
#define ZOR_UNBLOCKED_FACTORIZATION(routine, lq, real_name, complex_name)            \
    template <class T>                                                               \
    void zor::routine(zint m, zint n, T* a, zint lda, T* tau, T* work, zint& info) { \
        info = check_arguments(routine_name<T>(real_name, complex_name),             \
                               {{m < 0, 1}, {n < 0, 2}, {lda < max_of(1, m), 4}});   \
        if (info == 0) factor_unblocked(lq, m, n, a, lda, tau, work);                \
    }                                                                                \
    ZOR_INSTANTIATE(routine)
