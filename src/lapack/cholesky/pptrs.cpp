// pptrs: solves A X = B with the packed Cholesky factor of pptrf: in full-storage block columns of
// the factor when a work block can be had and the block size says the copies pay, else through the
// packed kernels.

#include "lapack/cholesky/cholesky.hpp"
#include "lapack/lapack.hpp"
#include "service/handlers.hpp"
#include "service/memory.hpp"

namespace zor {

namespace {

// Solves with the factor in blocks of nb right-hand sides through the packed kernels.
template <class T>
void pptrs_packed(bool upper, zint n, zint nrhs, zint nb, const T* ap, T* b, zint ldb) {
    const char uplo = upper ? 'U' : 'L';
    for (zint j = 0; j < nrhs; j += nb) {
        const zint count = min_of(nb, nrhs - j);
        T* block = b + j * ldb;
        Blas<T>::tpsm(uplo, upper ? kAdjoint<T> : 'N', 'N', n, count, ap, block, ldb, 0);
        Blas<T>::tpsm(uplo, upper ? 'N' : kAdjoint<T>, 'N', n, count, ap, block, ldb, 0);
    }
}

// Solves in full-storage block columns of the factor (n by nb, leading dimension n), each copied out
// once a pass: Uᴴ U or L Lᴴ, the first pass forward, the second backward.
template <class T>
void pptrs_memory(bool upper, zint n, zint nrhs, zint nb, const T* ap, T* b, zint ldb, T* w) {
    const T one = zor::one<T>(), minus_one = from_real<T>(-1.0);
    const char adjoint = kAdjoint<T>;
    // Block column J: for U rows 0..j0+jb-1 (diagonal block's upper part), for L rows j0..n-1.
    const auto copy_out = [&](zint j0, zint jb) {
        for (zint c = j0; c < j0 + jb; ++c) {
            const T* packed = ap + packed_start(upper, n, c);
            if (upper) {
                Blas<T>::copy(c + 1, packed, 1, w + (c - j0) * n, 1);
            } else {
                Blas<T>::copy(n - c, packed, 1, w + (c - j0) + (c - j0) * n, 1);
            }
        }
    };
    const zint last = (n - 1) / nb * nb;
    for (zint j0 = 0; j0 < n; j0 += nb) {
        const zint jb = min_of(nb, n - j0), after = n - j0 - jb;
        copy_out(j0, jb);
        if (upper) {
            Blas<T>::gemm(adjoint, 'N', jb, nrhs, j0, minus_one, w, n, b, ldb, one, b + j0, ldb);
            Blas<T>::trsm('L', 'U', adjoint, 'N', jb, nrhs, one, w + j0, n, b + j0, ldb);
        } else {
            Blas<T>::trsm('L', 'L', 'N', 'N', jb, nrhs, one, w, n, b + j0, ldb);
            Blas<T>::gemm('N', 'N', after, nrhs, jb, minus_one, w + jb, n, b + j0, ldb, one, b + j0 + jb,
                          ldb);
        }
    }
    for (zint j0 = last; j0 >= 0; j0 -= nb) {
        const zint jb = min_of(nb, n - j0), after = n - j0 - jb;
        copy_out(j0, jb);
        if (upper) {
            Blas<T>::trsm('L', 'U', 'N', 'N', jb, nrhs, one, w + j0, n, b + j0, ldb);
            Blas<T>::gemm('N', 'N', j0, nrhs, jb, minus_one, w, n, b + j0, ldb, one, b, ldb);
        } else {
            Blas<T>::gemm(adjoint, 'N', jb, nrhs, after, minus_one, w + jb, n, b + j0 + jb, ldb, one, b + j0,
                          ldb);
            Blas<T>::trsm('L', 'L', adjoint, 'N', jb, nrhs, one, w, n, b + j0, ldb);
        }
    }
}

}  // namespace

template <class T>
zint check_pptrs(char uplo, zint n, zint nrhs, zint ldb) {
    return check_arguments(
        routine_name<T>("DPPTRS", "ZPPTRS"),
        {{!lsame(uplo, 'U') && !lsame(uplo, 'L'), 1}, {n < 0, 2}, {nrhs < 0, 3}, {ldb < max_of(1, n), 6}});
}

template <class T>
void pptrs(char uplo, zint n, zint nrhs, const T* ap, T* b, zint ldb, zint& info) {
    const char* name = routine_name<T>("DPPTRS", "ZPPTRS");
    const bool upper = lsame(uplo, 'U');
    info = check_pptrs<T>(uplo, n, nrhs, ldb);
    if (info != 0 || n == 0 || nrhs == 0) return;
    // A block size of 1 says the copies would not pay for themselves (few right-hand sides).
    const zint nb = min_of(n, ilaenv(1, name, "Memory", n, nrhs, -1, -1, 6, 6));
    if (nb > 1) {
        const WorkArea<T> work(static_cast<std::size_t>(n * nb));
        if (work) {
            pptrs_memory(upper, n, nrhs, nb, ap, b, ldb, work.get());
            return;
        }
    }
    const zint packed_nb = max_of(1, ilaenv(1, name, "No Memory", n, nrhs, -1, -1, 6, 9));
    pptrs_packed(upper, n, nrhs, packed_nb, ap, b, ldb);
}

}  // namespace zor

ZOR_INSTANTIATE(pptrs)
ZOR_INSTANTIATE(check_pptrs)
