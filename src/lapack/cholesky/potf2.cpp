// potf2_kernel: the unblocked Cholesky step of this processor (a dispatched kernel) by triangle.

#include "lapack/cholesky/cholesky.hpp"
#include "lapack/lapack.hpp"

namespace zor {

template <class T>
void potf2_kernel(bool upper, zint n, T* a, zint lda, zint& info) {
    upper ? Blas<T>::potf2_upper(n, a, lda, info) : Blas<T>::potf2_lower(n, a, lda, info);
}

}  // namespace zor

ZOR_INSTANTIATE(potf2_kernel)
