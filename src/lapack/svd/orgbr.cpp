// orgbr: Q or Pᴴ of the bidiagonal reduction through orgqr or orglq. When the reduction's other
// dimension does not exceed this one, the vectors sit one column (row) off the diagonal: they are
// moved onto it and the first row and column become those of the unit matrix.

#include "lapack/lapack.hpp"
#include "lapack/qr/qr.hpp"
#include "lapack/svd/svd.hpp"

namespace zor {

template <class T>
void orgbr(char vect, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint lwork, zint& info) {
    const bool want_q = lsame(vect, 'Q');
    const bool query = lwork == -1;
    const zint mn = min_of(m, n);
    info = check_arguments(
        routine_name<T>("DORGBR", "ZUNGBR"),
        {{!want_q && !lsame(vect, 'P'), 1},
         {m < 0, 2},
         {n < 0 || (want_q && (n > m || n < min_of(m, k))) || (!want_q && (m > n || m < min_of(n, k))), 3},
         {k < 0, 4},
         {lda < max_of(1, m), 6},
         {lwork < max_of(1, mn) && !query, 9}});
    if (info != 0) return;
    const auto A = [&](zint i, zint j) -> T* { return a + i + j * lda; };
    zint sub_info = 0;
    // The generator that will run and its dimensions, asked the same question in a query.
    const bool shifted = want_q ? m < k : k >= n;
    const zint order = want_q ? m : n;
    if (query) {
        zint optimal = 1;
        if (mn > 0) {
            if (want_q) {
                orgqr(shifted ? m - 1 : m, shifted ? m - 1 : n, shifted ? m - 1 : k, a, lda, tau, work, -1,
                      sub_info);
            } else {
                orglq(shifted ? n - 1 : m, shifted ? n - 1 : n, shifted ? n - 1 : k, a, lda, tau, work, -1,
                      sub_info);
            }
            optimal = max_of(mn, static_cast<zint>(real(work[0])));
        }
        work[0] = from_real<T>(static_cast<double>(optimal));
        return;
    }
    if (mn == 0) {
        work[0] = one<T>();
        return;
    }
    if (!shifted) {
        if (want_q) {
            orgqr(m, n, k, a, lda, tau, work, lwork, sub_info);
        } else {
            orglq(m, n, k, a, lda, tau, work, lwork, sub_info);
        }
        return;
    }
    if (want_q) {
        // The vectors move one column to the right; the first row and column are e₁.
        for (zint j = order - 1; j >= 1; --j) {
            *A(0, j) = zero<T>();
            for (zint i = j + 1; i < order; ++i) *A(i, j) = *A(i, j - 1);
        }
        *A(0, 0) = one<T>();
        for (zint i = 1; i < order; ++i) *A(i, 0) = zero<T>();
        if (order > 1) orgqr(order - 1, order - 1, order - 1, A(1, 1), lda, tau, work, lwork, sub_info);
    } else {
        // The vectors move one row down; the first row and column are e₁ᵀ.
        *A(0, 0) = one<T>();
        for (zint i = 1; i < order; ++i) *A(i, 0) = zero<T>();
        for (zint j = 1; j < order; ++j) {
            for (zint i = j - 1; i >= 1; --i) *A(i, j) = *A(i - 1, j);
            *A(0, j) = zero<T>();
        }
        if (order > 1) orglq(order - 1, order - 1, order - 1, A(1, 1), lda, tau, work, lwork, sub_info);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(orgbr)
