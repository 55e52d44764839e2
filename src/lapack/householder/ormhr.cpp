// ormhr: the Q of a Hessenberg reduction applied as the Q of the QR factorization its reflectors
// form: nh = ihi - ilo vectors whose unit elements sit one row below the diagonal.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"

namespace zor {

template <class T>
void ormhr(char side, char trans, zint m, zint n, zint ilo, zint ihi, T* a, zint lda, const T* tau, T* c,
           zint ldc, T* work, zint lwork, zint& info) {
    const bool left = lsame(side, 'L');
    const zint nq = left ? m : n;
    const zint nw = max_of(1, left ? n : m);
    const bool query = lwork == -1;
    info = check_arguments(routine_name<T>("DORMHR", "ZUNMHR"),
                           {{!left && !lsame(side, 'R'), 1},
                            {!lsame(trans, 'N') && !lsame(trans, kAdjoint<T>), 2},
                            {m < 0, 3},
                            {n < 0, 4},
                            {ilo < 1 || ilo > max_of(1, nq), 5},
                            {ihi < min_of(ilo, nq) || ihi > nq, 6},
                            {lda < max_of(1, nq), 8},
                            {ldc < max_of(1, m), 11},
                            {lwork < nw && !query, 13}});
    if (info != 0) return;
    // nh is -1 for an empty matrix (ilo = 1, ihi = 0).
    const zint nh = max_of(ihi - ilo, 0);
    // The sub-problem: rows (left) or columns (right) ilo + 1 .. ihi of C.
    const zint mi = left ? nh : m;
    const zint ni = left ? n : nh;
    if (query) {
        // A query reads no array but work: the sub-problem is asked with the caller's pointers.
        ormqr(side, trans, mi, ni, nh, a, lda, tau, c, ldc, work, lwork, info);
        return;
    }
    if (m == 0 || n == 0 || nh == 0) {
        work[0] = one<T>();
        return;
    }
    zint sub_info = 0;
    T* a_sub = a + ilo + (ilo - 1) * lda;
    T* c_sub = left ? c + ilo : c + ilo * ldc;
    ormqr(side, trans, mi, ni, nh, a_sub, lda, tau + ilo - 1, c_sub, ldc, work, lwork, sub_info);
}

}  // namespace zor

ZOR_INSTANTIATE(ormhr)
