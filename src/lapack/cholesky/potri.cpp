// dpotri / zpotri: the inverse from the Cholesky factor, inv(U) inv(U)ᴴ (or inv(L)ᴴ inv(L)): the
// triangle is inverted, then dlauum forms the product in place by block columns.

#include "lapack/cholesky/cholesky.hpp"
#include "lapack/element.hpp"
#include "lapack/triangular/triangular.hpp"
#include "lapack/tuning/tuning.hpp"
#include "service/lsame.hpp"

namespace zor {

namespace {

template <class T>
void conjugate(zint n, T* x, zint inc) {
    if constexpr (Element<T>::kComplex) {
        for (zint i = 0; i < n; ++i) x[i * inc].im = -x[i * inc].im;
    }
}

// U Uᴴ: row i of U times the rows below it is added into column i; Lᴴ L: column i of L times the
// columns right of it into row i.
template <class T>
void lauu2(bool upper, zint n, T* a, zint lda) {
    using E = Element<T>;
    const T one = E::one();
    for (zint i = 0; i < n; ++i) {
        T* diagonal = a + i + i * lda;
        const double aii = E::real(*diagonal);
        const zint rest = n - i - 1;
        if (rest == 0) {
            upper ? E::scal_real(i + 1, aii, a + i * lda, 1) : E::scal_real(i + 1, aii, a + i, lda);
            continue;
        }
        if (upper) {
            T* row = diagonal + lda;  // U(i, i+1..)
            *diagonal = E::from_real(aii * aii + E::real(E::dotc(rest, row, lda, row, lda)));
            conjugate(rest, row, lda);
            E::gemv('N', i, rest, one, a + (i + 1) * lda, lda, row, lda, E::from_real(aii), a + i * lda, 1);
            conjugate(rest, row, lda);
        } else {
            T* column = diagonal + 1;  // L(i+1.., i)
            *diagonal = E::from_real(aii * aii + E::real(E::dotc(rest, column, 1, column, 1)));
            conjugate(i, a + i, lda);
            E::gemv(kAdjoint<T>, rest, i, one, a + i + 1, lda, column, 1, E::from_real(aii), a + i, lda);
            conjugate(i, a + i, lda);
        }
    }
}

template <class T>
void lauum(char uplo, zint n, T* a, zint lda, zint& info) {
    using E = Element<T>;
    const char* name = E::name("DLAUUM", "ZLAUUM");
    const bool upper = lsame(uplo, 'U');
    info = check_arguments(name, {{!upper && !lsame(uplo, 'L'), 1}, {n < 0, 2}, {lda < max_of(1, n), 4}});
    if (info != 0 || n == 0) return;
    const char options[1] = {uplo};
    const zint nb = ilaenv(1, name, options, n, -1, -1, -1);
    if (nb <= 1 || nb >= n) {
        lauu2(upper, n, a, lda);
        return;
    }
    const T one = E::one();
    const char adjoint = kAdjoint<T>;
    for (zint i = 0; i < n; i += nb) {
        const zint ib = min_of(nb, n - i), rest = n - i - ib;
        T* diagonal = a + i + i * lda;
        if (upper) {
            T* column = a + i * lda;  // U(0:i, block)
            E::trmm('R', 'U', adjoint, 'N', i, ib, one, diagonal, lda, column, lda);
            lauu2(true, ib, diagonal, lda);
            if (rest > 0) {
                const T* right = diagonal + ib * lda;  // U(block, right of it)
                E::gemm('N', adjoint, i, ib, rest, one, a + (i + ib) * lda, lda, right, lda, one, column,
                        lda);
                E::herk('U', 'N', ib, rest, 1.0, right, lda, 1.0, diagonal, lda);
            }
        } else {
            T* row = a + i;  // L(block, 0:i)
            E::trmm('L', 'L', adjoint, 'N', ib, i, one, diagonal, lda, row, lda);
            lauu2(false, ib, diagonal, lda);
            if (rest > 0) {
                const T* below = diagonal + ib;
                E::gemm(adjoint, 'N', ib, i, rest, one, below, lda, a + i + ib, lda, one, row, lda);
                E::herk('L', adjoint, ib, rest, 1.0, below, lda, 1.0, diagonal, lda);
            }
        }
    }
}

template <class T>
void potri(char uplo, zint n, T* a, zint lda, zint& info) {
    info =
        check_arguments(Element<T>::name("DPOTRI", "ZPOTRI"),
                        {{!lsame(uplo, 'U') && !lsame(uplo, 'L'), 1}, {n < 0, 2}, {lda < max_of(1, n), 4}});
    if (info != 0 || n == 0) return;
    trtri(uplo, 'N', n, a, lda, info);
    if (info > 0) return;
    lauum(uplo, n, a, lda, info);
}

}  // namespace

void dlauum(const char& uplo, const zint& n, double* a, const zint& lda, zint& info) {
    lauum(uplo, n, a, lda, info);
}

void zlauum(const char& uplo, const zint& n, zcomplex* a, const zint& lda, zint& info) {
    lauum(uplo, n, a, lda, info);
}

void dpotri(const char& uplo, const zint& n, double* a, const zint& lda, zint& info) {
    potri(uplo, n, a, lda, info);
}

void zpotri(const char& uplo, const zint& n, zcomplex* a, const zint& lda, zint& info) {
    potri(uplo, n, a, lda, info);
}

}  // namespace zor
