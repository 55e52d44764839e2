// orghr: the Q of a Hessenberg reduction. Its reflectors are those of a QR factorization of order
// ihi - ilo one row and column further in: the vectors move one column right, the rows and
// columns outside ilo + 1 .. ihi become those of the unit matrix, and orgqr forms the rest.

#include "lapack/lapack.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

template <class T>
zint check_orghr(zint n, zint ilo, zint ihi, zint lda, zint lwork) {
    return check_arguments(routine_name<T>("DORGHR", "ZUNGHR"),
                           {{n < 0, 1},
                            {ilo < 1 || ilo > max_of(1, n), 2},
                            {ihi < min_of(ilo, n) || ihi > n, 3},
                            {lda < max_of(1, n), 5},
                            {lwork != -1 && lwork < max_of(1, ihi - ilo), 8}});
}

template <class T>
void orghr(zint n, zint ilo, zint ihi, T* a, zint lda, const T* tau, T* work, zint lwork, zint& info) {
    const bool query = lwork == -1;
    info = check_orghr<T>(n, ilo, ihi, lda, lwork);
    if (info != 0) return;
    const zint nh = max_of(ihi - ilo, 0);
    if (query) {
        // A query reads no array but work: the sub-problem is asked with the caller's pointers.
        orgqr(nh, nh, nh, a, lda, tau, work, lwork, info);
        return;
    }
    if (n == 0) {
        work[0] = one<T>();
        return;
    }
    const auto A = [&](zint i, zint j) -> T& { return a[i + j * lda]; };
    // Zero-based: the vector of reflector j (column j - 1) moves to column j, j = ihi - 1 .. ilo.
    for (zint j = ihi - 1; j >= ilo; --j) {
        for (zint i = 0; i < j; ++i) A(i, j) = zero<T>();
        for (zint i = j + 1; i < ihi; ++i) A(i, j) = A(i, j - 1);
        for (zint i = ihi; i < n; ++i) A(i, j) = zero<T>();
    }
    const auto unit_column = [&](zint j) {
        for (zint i = 0; i < n; ++i) A(i, j) = zero<T>();
        A(j, j) = one<T>();
    };
    for (zint j = 0; j < ilo; ++j) unit_column(j);
    for (zint j = ihi; j < n; ++j) unit_column(j);
    zint sub_info = 0;
    if (nh > 0) {
        orgqr(nh, nh, nh, a + ilo + ilo * lda, lda, tau + ilo - 1, work, lwork, sub_info);
    } else {
        work[0] = one<T>();
    }
}

}  // namespace zor

ZOR_INSTANTIATE(orghr)
ZOR_INSTANTIATE(check_orghr)
