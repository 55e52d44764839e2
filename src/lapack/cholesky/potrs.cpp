// potrs: solves A X = B with the Cholesky factor of potrf.

#include "lapack/cholesky/cholesky.hpp"
#include "lapack/lapack.hpp"

namespace zor {

template <class T>
void potrs(char uplo, zint n, zint nrhs, const T* a, zint lda, T* b, zint ldb, zint& info) {
    const bool upper = lsame(uplo, 'U');
    info = check_arguments(routine_name<T>("DPOTRS", "ZPOTRS"), {{!upper && !lsame(uplo, 'L'), 1},
                                                                 {n < 0, 2},
                                                                 {nrhs < 0, 3},
                                                                 {lda < max_of(1, n), 5},
                                                                 {ldb < max_of(1, n), 7}});
    if (info != 0 || n == 0 || nrhs == 0) return;
    const T one = zor::one<T>();
    const auto solve = [&](char op) {
        if (nrhs == 1) {
            Blas<T>::trsv(upper ? 'U' : 'L', op, 'N', n, a, lda, b, 1);
        } else {
            Blas<T>::trsm('L', upper ? 'U' : 'L', op, 'N', n, nrhs, one, a, lda, b, ldb);
        }
    };
    // A = Uᴴ U or L Lᴴ.
    solve(upper ? kAdjoint<T> : 'N');
    solve(upper ? 'N' : kAdjoint<T>);
}

}  // namespace zor

ZOR_INSTANTIATE(potrs)
