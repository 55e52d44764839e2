// lacpy: a copy of a matrix or of its upper or lower trapezoid.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"

namespace zor {

template <class T>
void lacpy(char uplo, zint m, zint n, const T* a, zint lda, T* b, zint ldb) {
    const bool upper = lsame(uplo, 'U'), lower = lsame(uplo, 'L');
    for (zint j = 0; j < n; ++j) {
        const zint first = lower ? j : 0, last = upper ? min_of(j + 1, m) : m;
        for (zint i = first; i < last; ++i) b[i + j * ldb] = a[i + j * lda];
    }
}

}  // namespace zor

ZOR_INSTANTIATE(lacpy)
