// lauum: U Uᴴ or Lᴴ L formed in place from a triangle, by block columns with an unblocked step at
// each diagonal block.

#include "lapack/cholesky/cholesky.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

template <class T>
void conjugate(zint n, T* x, zint inc) {
    if constexpr (kIsComplex<T>) {
        for (zint i = 0; i < n; ++i) x[i * inc].im = -x[i * inc].im;
    }
}

// U Uᴴ: row i of U times the rows below it is added into column i; Lᴴ L: column i of L times the
// columns right of it into row i.
template <class T>
void lauu2(bool upper, zint n, T* a, zint lda) {
    const T one = zor::one<T>();
    for (zint i = 0; i < n; ++i) {
        T* diagonal = a + i + i * lda;
        const double aii = real(*diagonal);
        const zint rest = n - i - 1;
        if (rest == 0) {
            upper ? Blas<T>::scal_real(i + 1, aii, a + i * lda, 1)
                  : Blas<T>::scal_real(i + 1, aii, a + i, lda);
            continue;
        }
        if (upper) {
            T* row = diagonal + lda;  // U(i, i+1..)
            *diagonal = from_real<T>(aii * aii + real(Blas<T>::dotc(rest, row, lda, row, lda)));
            conjugate(rest, row, lda);
            Blas<T>::gemv('N', i, rest, one, a + (i + 1) * lda, lda, row, lda, from_real<T>(aii), a + i * lda,
                          1);
            conjugate(rest, row, lda);
        } else {
            T* column = diagonal + 1;  // L(i+1.., i)
            *diagonal = from_real<T>(aii * aii + real(Blas<T>::dotc(rest, column, 1, column, 1)));
            conjugate(i, a + i, lda);
            Blas<T>::gemv(kAdjoint<T>, rest, i, one, a + i + 1, lda, column, 1, from_real<T>(aii), a + i,
                          lda);
            conjugate(i, a + i, lda);
        }
    }
}

}  // namespace

template <class T>
void lauum(char uplo, zint n, T* a, zint lda, zint& info) {
    const char* name = routine_name<T>("DLAUUM", "ZLAUUM");
    const bool upper = lsame(uplo, 'U');
    info = check_arguments(name, {{!upper && !lsame(uplo, 'L'), 1}, {n < 0, 2}, {lda < max_of(1, n), 4}});
    if (info != 0 || n == 0) return;
    const char options[1] = {uplo};
    const zint nb = ilaenv(1, name, options, n, -1, -1, -1);
    if (nb <= 1 || nb >= n) {
        lauu2(upper, n, a, lda);
        return;
    }
    const T one = zor::one<T>();
    const char adjoint = kAdjoint<T>;
    for (zint i = 0; i < n; i += nb) {
        const zint ib = min_of(nb, n - i), rest = n - i - ib;
        T* diagonal = a + i + i * lda;
        if (upper) {
            T* column = a + i * lda;  // U(0:i, block)
            Blas<T>::trmm('R', 'U', adjoint, 'N', i, ib, one, diagonal, lda, column, lda);
            lauu2(true, ib, diagonal, lda);
            if (rest > 0) {
                const T* right = diagonal + ib * lda;  // U(block, right of it)
                Blas<T>::gemm('N', adjoint, i, ib, rest, one, a + (i + ib) * lda, lda, right, lda, one,
                              column, lda);
                Blas<T>::herk('U', 'N', ib, rest, 1.0, right, lda, 1.0, diagonal, lda);
            }
        } else {
            T* row = a + i;  // L(block, 0:i)
            Blas<T>::trmm('L', 'L', adjoint, 'N', ib, i, one, diagonal, lda, row, lda);
            lauu2(false, ib, diagonal, lda);
            if (rest > 0) {
                const T* below = diagonal + ib;
                Blas<T>::gemm(adjoint, 'N', ib, i, rest, one, below, lda, a + i + ib, lda, one, row, lda);
                Blas<T>::herk('L', adjoint, ib, rest, 1.0, below, lda, 1.0, diagonal, lda);
            }
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(lauum)
