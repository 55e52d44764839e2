// laset: alpha off the diagonal and beta on it, in a matrix or in its strict upper or lower part.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"

namespace zor {

template <class T>
void laset(char uplo, zint m, zint n, const T& alpha, const T& beta, T* a, zint lda) {
    const bool upper = lsame(uplo, 'U'), lower = lsame(uplo, 'L');
    for (zint j = 0; j < n; ++j) {
        // The off-diagonal rows of column j this call sets: above the diagonal, below it, or both.
        const zint above = lower ? 0 : min_of(j, m);
        for (zint i = 0; i < above; ++i) a[i + j * lda] = alpha;
        if (!upper) {
            for (zint i = j + 1; i < m; ++i) a[i + j * lda] = alpha;
        }
    }
    for (zint i = 0; i < min_of(m, n); ++i) a[i + i * lda] = beta;
}

}  // namespace zor

ZOR_INSTANTIATE(laset)
