// gehd2: the Hessenberg reduction one column at a time: a reflector zeroes column i below its
// subdiagonal and is applied from the right to rows 1 .. ihi and from the left to the columns on
// its right.

#include "lapack/hessenberg/hessenberg.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"

namespace zor {

template <class T>
void gehd2(zint n, zint ilo, zint ihi, T* a, zint lda, T* tau, T* work, zint& info) {
    info = check_arguments(routine_name<T>("DGEHD2", "ZGEHD2"), {{n < 0, 1},
                                                                 {ilo < 1 || ilo > max_of(1, n), 2},
                                                                 {ihi < min_of(ilo, n) || ihi > n, 3},
                                                                 {lda < max_of(1, n), 5}});
    if (info != 0) return;
    // Zero-based column i, its reflector of order ihi - i - 1 starting on the subdiagonal.
    for (zint i = ilo - 1; i < ihi - 1; ++i) {
        T* v = a + i + 1 + i * lda;
        larfg(ihi - i - 1, *v, a + min_of(i + 2, n - 1) + i * lda, 1, tau[i]);
        const T subdiagonal = *v;
        *v = one<T>();
        larf('R', ihi, ihi - i - 1, v, 1, tau[i], a + (i + 1) * lda, lda, work);
        larf('L', ihi - i - 1, n - i - 1, v, 1, conj(tau[i]), v + lda, lda, work);
        *v = subdiagonal;
    }
}

}  // namespace zor

ZOR_INSTANTIATE(gehd2)
