// dgetrs / zgetrs: solves with the factors of dgetrf; dgesv / zgesv: factor and solve.

#include "lapack/element.hpp"
#include "lapack/lu/lu.hpp"
#include "service/lsame.hpp"

namespace zor {

template <class T>
void getrs(char trans, zint n, zint nrhs, const T* a, zint lda, const zint* ipiv, T* b, zint ldb,
           zint& info) {
    using E = Element<T>;
    const bool plain = lsame(trans, 'N');
    const bool transposed = lsame(trans, 'T');
    info = check_arguments(E::name("DGETRS", "ZGETRS"), {{!plain && !transposed && !lsame(trans, 'C'), 1},
                                                         {n < 0, 2},
                                                         {nrhs < 0, 3},
                                                         {lda < max_of(1, n), 5},
                                                         {ldb < max_of(1, n), 8}});
    if (info != 0 || n == 0 || nrhs == 0) return;
    const T one = E::one();
    // A single right-hand side goes through the level-2 solves: no blocking to pay for.
    const auto solve = [&](char uplo, char op, char diag) {
        if (nrhs == 1) {
            E::trsv(uplo, op, diag, n, a, lda, b, 1);
        } else {
            E::trsm('L', uplo, op, diag, n, nrhs, one, a, lda, b, ldb);
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

template void getrs(char, zint, zint, const double*, zint, const zint*, double*, zint, zint&);
template void getrs(char, zint, zint, const zcomplex*, zint, const zint*, zcomplex*, zint, zint&);

void dgetrs(const char& trans, const zint& n, const zint& nrhs, const double* a, const zint& lda,
            const zint* ipiv, double* b, const zint& ldb, zint& info) {
    getrs(trans, n, nrhs, a, lda, ipiv, b, ldb, info);
}

void zgetrs(const char& trans, const zint& n, const zint& nrhs, const zcomplex* a, const zint& lda,
            const zint* ipiv, zcomplex* b, const zint& ldb, zint& info) {
    getrs(trans, n, nrhs, a, lda, ipiv, b, ldb, info);
}

namespace {

template <class T>
void gesv(zint n, zint nrhs, T* a, zint lda, zint* ipiv, T* b, zint ldb, zint& info) {
    info = check_arguments(Element<T>::name("DGESV ", "ZGESV "),
                           {{n < 0, 1}, {nrhs < 0, 2}, {lda < max_of(1, n), 4}, {ldb < max_of(1, n), 7}});
    if (info != 0) return;
    const int stopped = getrf_checked(n, n, a, lda, ipiv, info);
    if (info == 0 && stopped == 0) getrs('N', n, nrhs, a, lda, ipiv, b, ldb, info);
}

}  // namespace

void dgesv(const zint& n, const zint& nrhs, double* a, const zint& lda, zint* ipiv, double* b,
           const zint& ldb, zint& info) {
    gesv(n, nrhs, a, lda, ipiv, b, ldb, info);
}

void zgesv(const zint& n, const zint& nrhs, zcomplex* a, const zint& lda, zint* ipiv, zcomplex* b,
           const zint& ldb, zint& info) {
    gesv(n, nrhs, a, lda, ipiv, b, ldb, info);
}

}  // namespace zor
