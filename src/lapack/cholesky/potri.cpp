// potri: the inverse from the Cholesky factor, inv(U) inv(U)ᴴ (or inv(L)ᴴ inv(L)): the triangle is
// inverted, then lauum forms the product in place.

#include "lapack/cholesky/cholesky.hpp"
#include "lapack/lapack.hpp"
#include "lapack/triangular/triangular.hpp"

namespace zor {

template <class T>
zint check_potri(char uplo, zint n, zint lda) {
    return check_arguments(
        routine_name<T>("DPOTRI", "ZPOTRI"),
        {{!lsame(uplo, 'U') && !lsame(uplo, 'L'), 1}, {n < 0, 2}, {lda < max_of(1, n), 4}});
}

template <class T>
void potri(char uplo, zint n, T* a, zint lda, zint& info) {
    info = check_potri<T>(uplo, n, lda);
    if (info != 0 || n == 0) return;
    trtri(uplo, 'N', n, a, lda, info);
    if (info > 0) return;
    lauum(uplo, n, a, lda, info);
}

}  // namespace zor

ZOR_INSTANTIATE(potri)
ZOR_INSTANTIATE(check_potri)
