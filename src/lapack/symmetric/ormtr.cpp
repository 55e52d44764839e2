// ormtr: the Q of the tridiagonal reduction applied as the Q of the factorization its reflectors
// form: for the upper triangle a QL factorization of order nq - 1 in the columns right of the
// first, for the lower a QR factorization of order nq - 1 one row down.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/symmetric/symmetric.hpp"

namespace zor {

template <class T>
void ormtr(char side, char uplo, char trans, zint m, zint n, T* a, zint lda, const T* tau, T* c, zint ldc,
           T* work, zint lwork, zint& info) {
    const bool left = lsame(side, 'L');
    const bool upper = lsame(uplo, 'U');
    const zint nq = left ? m : n;
    const zint nw = max_of(1, left ? n : m);
    const bool query = lwork == -1;
    info = check_arguments(routine_name<T>("DORMTR", "ZUNMTR"),
                           {{!left && !lsame(side, 'R'), 1},
                            {!upper && !lsame(uplo, 'L'), 2},
                            {!lsame(trans, 'N') && !lsame(trans, kAdjoint<T>), 3},
                            {m < 0, 4},
                            {n < 0, 5},
                            {lda < max_of(1, nq), 7},
                            {ldc < max_of(1, m), 10},
                            {lwork < nw && !query, 12}});
    if (info != 0) return;
    // The sub-problem: the nq - 1 reflectors act on rows (left) or columns (right) 1 .. nq - 1 of C
    // for the lower triangle, 0 .. nq - 2 for the upper.
    const zint k = max_of(nq - 1, 0);
    const zint mi = left ? k : m;
    const zint ni = left ? n : k;
    const auto product = [&](T* a_sub, T* c_sub, zint work_size, zint& sub_info) {
        if (upper) {
            ormql(side, trans, mi, ni, k, a_sub, lda, tau, c_sub, ldc, work, work_size, sub_info);
        } else {
            ormqr(side, trans, mi, ni, k, a_sub, lda, tau, c_sub, ldc, work, work_size, sub_info);
        }
    };
    if (query) {
        // A query reads no array but work: the sub-problem is asked with the caller's pointers.
        product(a, c, -1, info);
        return;
    }
    if (m == 0 || n == 0 || nq == 1) {
        work[0] = one<T>();
        return;
    }
    zint sub_info = 0;
    product(upper ? a + lda : a + 1, upper ? c : (left ? c + 1 : c + ldc), lwork, sub_info);
}

}  // namespace zor

ZOR_INSTANTIATE(ormtr)
