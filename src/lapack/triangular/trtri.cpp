// dtrtri / ztrtri: the inverse of a triangular matrix in place, by block columns; dtrti2 / ztrti2,
// the unblocked step, column by column.

#include "lapack/element.hpp"
#include "lapack/triangular/triangular.hpp"
#include "lapack/tuning/tuning.hpp"
#include "service/lsame.hpp"

namespace zor {

namespace {

// Column j of the inverse from the columns already inverted: for the upper triangle
// inv(A)(1:j-1, j) = -inv(A)(1:j-1, 1:j-1) A(1:j-1, j) / A(j, j), so the columns run forward; the
// lower triangle runs backward.
template <class T>
void trti2_unchecked(bool upper, char diag, zint n, T* a, zint lda) {
    using E = Element<T>;
    const bool unit = lsame(diag, 'U');
    const auto diagonal_step = [&](zint j) {
        T& ajj = a[j + j * lda];
        if (unit) return E::from_real(-1.0);
        ajj = E::recip(ajj);
        return E::scale(ajj, -1.0);
    };
    if (upper) {
        for (zint j = 0; j < n; ++j) {
            const T scale = diagonal_step(j);
            E::trmv('U', 'N', diag, j, a, lda, a + j * lda, 1);
            E::scal(j, scale, a + j * lda, 1);
        }
    } else {
        for (zint j = n - 1; j >= 0; --j) {
            const T scale = diagonal_step(j);
            if (j + 1 < n) {
                T* below = a + j + 1 + j * lda;
                E::trmv('L', 'N', diag, n - j - 1, a + (j + 1) * (lda + 1), lda, below, 1);
                E::scal(n - j - 1, scale, below, 1);
            }
        }
    }
}

template <class T>
zint check_triangle(const char* name, char uplo, char diag, zint n, zint lda) {
    return check_arguments(name, {{!lsame(uplo, 'U') && !lsame(uplo, 'L'), 1},
                                  {!lsame(diag, 'N') && !lsame(diag, 'U'), 2},
                                  {n < 0, 3},
                                  {lda < max_of(1, n), 5}});
}

}  // namespace

template <class T>
void trtri(char uplo, char diag, zint n, T* a, zint lda, zint& info) {
    using E = Element<T>;
    const char* name = E::name("DTRTRI", "ZTRTRI");
    info = check_triangle<T>(name, uplo, diag, n, lda);
    if (info != 0 || n == 0) return;
    if (lsame(diag, 'N')) {
        for (zint j = 0; j < n; ++j) {
            if (E::is_zero(a[j + j * lda])) {
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
    const T one = E::one(), minus_one = E::from_real(-1.0);
    if (upper) {
        // inv(A)(1:j-1, J) = -inv(A11) A(1:j-1, J) inv(A(J, J)): the multiply by the inverted
        // columns before J, the solve by the block, then the block itself.
        for (zint j = 0; j < n; j += nb) {
            const zint jb = min_of(nb, n - j);
            T* block = a + j * lda;
            E::trmm('L', 'U', 'N', diag, j, jb, one, a, lda, block, lda);
            E::trsm('R', 'U', 'N', diag, j, jb, minus_one, block + j, lda, block, lda);
            trti2_unchecked(true, diag, jb, block + j, lda);
        }
    } else {
        for (zint j = (n - 1) / nb * nb; j >= 0; j -= nb) {
            const zint jb = min_of(nb, n - j);
            T* diagonal = a + j + j * lda;
            const zint below = n - j - jb;
            if (below > 0) {
                T* block = diagonal + jb;
                E::trmm('L', 'L', 'N', diag, below, jb, one, diagonal + jb * (lda + 1), lda, block, lda);
                E::trsm('R', 'L', 'N', diag, below, jb, minus_one, diagonal, lda, block, lda);
            }
            trti2_unchecked(false, diag, jb, diagonal, lda);
        }
    }
}

template void trtri(char, char, zint, double*, zint, zint&);
template void trtri(char, char, zint, zcomplex*, zint, zint&);

void dtrtri(const char& uplo, const char& diag, const zint& n, double* a, const zint& lda, zint& info) {
    trtri(uplo, diag, n, a, lda, info);
}

void ztrtri(const char& uplo, const char& diag, const zint& n, zcomplex* a, const zint& lda, zint& info) {
    trtri(uplo, diag, n, a, lda, info);
}

namespace {

template <class T>
void trti2(char uplo, char diag, zint n, T* a, zint lda, zint& info) {
    info = check_triangle<T>(Element<T>::name("DTRTI2", "ZTRTI2"), uplo, diag, n, lda);
    if (info == 0) trti2_unchecked(lsame(uplo, 'U'), diag, n, a, lda);
}

}  // namespace

void dtrti2(const char& uplo, const char& diag, const zint& n, double* a, const zint& lda, zint& info) {
    trti2(uplo, diag, n, a, lda, info);
}

void ztrti2(const char& uplo, const char& diag, const zint& n, zcomplex* a, const zint& lda, zint& info) {
    trti2(uplo, diag, n, a, lda, info);
}

}  // namespace zor
