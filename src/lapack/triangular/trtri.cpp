// trtri: the inverse of a triangular matrix in place, by block columns, with an unblocked step
// column by column.

#include "lapack/lapack.hpp"
#include "lapack/triangular/triangular.hpp"

namespace zor {

namespace {

// Column j of the inverse from the columns already inverted: for the upper triangle
// inv(A)(1:j-1, j) = -inv(A)(1:j-1, 1:j-1) A(1:j-1, j) / A(j, j), so the columns run forward; the
// lower triangle runs backward.
template <class T>
void trti2_unchecked(bool upper, char diag, zint n, T* a, zint lda) {
    const bool unit = lsame(diag, 'U');
    const auto diagonal_step = [&](zint j) {
        T& ajj = a[j + j * lda];
        if (unit) return from_real<T>(-1.0);
        ajj = reciprocal(ajj);
        return ajj * -1.0;
    };
    if (upper) {
        for (zint j = 0; j < n; ++j) {
            const T scale = diagonal_step(j);
            Blas<T>::trmv('U', 'N', diag, j, a, lda, a + j * lda, 1);
            Blas<T>::scal(j, scale, a + j * lda, 1);
        }
    } else {
        for (zint j = n - 1; j >= 0; --j) {
            const T scale = diagonal_step(j);
            if (j + 1 < n) {
                T* below = a + j + 1 + j * lda;
                Blas<T>::trmv('L', 'N', diag, n - j - 1, a + (j + 1) * (lda + 1), lda, below, 1);
                Blas<T>::scal(n - j - 1, scale, below, 1);
            }
        }
    }
}

}  // namespace

template <class T>
zint check_trtri(char uplo, char diag, zint n, zint lda) {
    return check_arguments(routine_name<T>("DTRTRI", "ZTRTRI"), {{!lsame(uplo, 'U') && !lsame(uplo, 'L'), 1},
                                                                 {!lsame(diag, 'N') && !lsame(diag, 'U'), 2},
                                                                 {n < 0, 3},
                                                                 {lda < max_of(1, n), 5}});
}

template <class T>
void trtri(char uplo, char diag, zint n, T* a, zint lda, zint& info) {
    const char* name = routine_name<T>("DTRTRI", "ZTRTRI");
    info = check_trtri<T>(uplo, diag, n, lda);
    if (info != 0 || n == 0) return;
    if (lsame(diag, 'N')) {
        for (zint j = 0; j < n; ++j) {
            if (is_zero(a[j + j * lda])) {
                info = j + 1;
                return;
            }
        }
    }
    const bool upper = lsame(uplo, 'U');
    const char options[2] = {upper ? 'U' : 'L', lsame(diag, 'U') ? 'U' : 'N'};
    const zint nb = ilaenv(1, name, options, n, -1, -1, -1, 6, 2);
    if (nb <= 1 || nb >= n) {
        trti2_unchecked(upper, diag, n, a, lda);
        return;
    }
    const T one = zor::one<T>(), minus_one = from_real<T>(-1.0);
    if (upper) {
        // inv(A)(1:j-1, J) = -inv(A11) A(1:j-1, J) inv(A(J, J)): the multiply by the inverted
        // columns before J, the solve by the block, then the block itself.
        for (zint j = 0; j < n; j += nb) {
            const zint jb = min_of(nb, n - j);
            T* block = a + j * lda;
            Blas<T>::trmm('L', 'U', 'N', diag, j, jb, one, a, lda, block, lda);
            Blas<T>::trsm('R', 'U', 'N', diag, j, jb, minus_one, block + j, lda, block, lda);
            trti2_unchecked(true, diag, jb, block + j, lda);
        }
    } else {
        for (zint j = (n - 1) / nb * nb; j >= 0; j -= nb) {
            const zint jb = min_of(nb, n - j);
            T* diagonal = a + j + j * lda;
            const zint below = n - j - jb;
            if (below > 0) {
                T* block = diagonal + jb;
                Blas<T>::trmm('L', 'L', 'N', diag, below, jb, one, diagonal + jb * (lda + 1), lda, block,
                              lda);
                Blas<T>::trsm('R', 'L', 'N', diag, below, jb, minus_one, diagonal, lda, block, lda);
            }
            trti2_unchecked(false, diag, jb, diagonal, lda);
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(trtri)
ZOR_INSTANTIATE(check_trtri)
