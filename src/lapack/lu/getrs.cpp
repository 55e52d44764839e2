// getrs: solves A X = B, Aᵀ X = B or Aᴴ X = B with the factors of getrf.

#include "lapack/lapack.hpp"
#include "lapack/lu/lu.hpp"

namespace zor {

template <class T>
void getrs(char trans, zint n, zint nrhs, const T* a, zint lda, const zint* ipiv, T* b, zint ldb,
           zint& info) {
    const bool plain = lsame(trans, 'N');
    const bool transposed = lsame(trans, 'T');
    info = check_arguments(routine_name<T>("DGETRS", "ZGETRS"),
                           {{!plain && !transposed && !lsame(trans, 'C'), 1},
                            {n < 0, 2},
                            {nrhs < 0, 3},
                            {lda < max_of(1, n), 5},
                            {ldb < max_of(1, n), 8}});
    if (info != 0 || n == 0 || nrhs == 0) return;
    const T one = zor::one<T>();
    // A single right-hand side goes through the level-2 solves: no blocking to pay for.
    const auto solve = [&](char uplo, char op, char diag) {
        if (nrhs == 1) {
            Blas<T>::trsv(uplo, op, diag, n, a, lda, b, 1);
        } else {
            Blas<T>::trsm('L', uplo, op, diag, n, nrhs, one, a, lda, b, ldb);
        }
    };
    if (plain) {
        laswp(nrhs, b, ldb, 1, n, ipiv, 1);
        solve('L', 'N', 'U');
        solve('U', 'N', 'N');
    } else {
        const char op = transposed ? 'T' : kAdjoint<T>;
        solve('U', op, 'N');
        solve('L', op, 'U');
        laswp(nrhs, b, ldb, 1, n, ipiv, -1);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(getrs)
