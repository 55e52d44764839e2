// ormbr: Q or P of the bidiagonal reduction applied through ormqr or ormlq. P's reflectors are an
// LQ factorization's whose Q is Pᴴ, hence the opposite op; when the reduction's other dimension
// does not exceed the order, the vectors sit one off the diagonal and act on rows (columns) 2..nq.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/svd/svd.hpp"

namespace zor {

template <class T>
void ormbr(char vect, char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c,
           zint ldc, T* work, zint lwork, zint& info) {
    const bool apply_q = lsame(vect, 'Q');
    const bool left = lsame(side, 'L');
    const bool notran = lsame(trans, 'N');
    const bool query = lwork == -1;
    const zint nq = left ? m : n;
    const zint nw = max_of(1, left ? n : m);
    info = check_arguments(routine_name<T>("DORMBR", "ZUNMBR"),
                           {{!apply_q && !lsame(vect, 'P'), 1},
                            {!left && !lsame(side, 'R'), 2},
                            {!notran && !lsame(trans, kAdjoint<T>), 3},
                            {m < 0, 4},
                            {n < 0, 5},
                            {k < 0, 6},
                            {lda < max_of(1, apply_q ? nq : min_of(nq, k)), 8},
                            {ldc < max_of(1, m), 11},
                            {lwork < nw && !query, 13}});
    if (info != 0) return;
    // The reflectors act on all of C, or (shifted) on its rows or columns after the first. A query
    // computes no pointer from the caller's arrays.
    const bool shifted = apply_q ? nq < k : nq <= k;
    const zint steps = shifted ? nq - 1 : k;
    const zint mi = shifted && left ? m - 1 : m, ni = shifted && !left ? n - 1 : n;
    const bool offset = shifted && !query;
    T* cc = offset ? (left ? c + 1 : c + ldc) : c;
    T* aa = offset ? (apply_q ? a + 1 : a + lda) : a;
    zint sub = 0;
    if (m == 0 || n == 0 || steps <= 0) {
        work[0] = one<T>();
        return;
    }
    if (apply_q) {
        ormqr(side, trans, mi, ni, steps, aa, lda, tau, cc, ldc, work, lwork, sub);
    } else {
        const char op = notran ? kAdjoint<T> : 'N';
        ormlq(side, op, mi, ni, steps, aa, lda, tau, cc, ldc, work, lwork, sub);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(ormbr)
