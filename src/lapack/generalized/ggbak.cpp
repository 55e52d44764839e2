// ggbak: the eigenvectors of a balanced pencil back to the original one. Right vectors take the
// column scaling and permutation, left vectors the row ones; the exchanges are undone in the
// reverse of the order ggbal made them (the bottom ones first, then the top ones).

#include "lapack/generalized/generalized.hpp"
#include "lapack/generalized/generalized_support.hpp"

namespace zor {

template <class T>
void ggbak(char job, char side, zint n, zint ilo, zint ihi, const double* lscale, const double* rscale,
           zint m, T* v, zint ldv, zint& info) {
    const bool right = lsame(side, 'R'), left = lsame(side, 'L');
    info = check_arguments(routine_name<T>("DGGBAK", "ZGGBAK"),
                           {{!lsame(job, 'N') && !lsame(job, 'P') && !lsame(job, 'S') && !lsame(job, 'B'), 1},
                            {!right && !left, 2},
                            {n < 0, 3},
                            {ilo < 1 || (n > 0 && ilo > n) || (n == 0 && ilo != 1), 4},
                            {(n > 0 && (ihi < ilo || ihi > n)) || (n == 0 && ihi != 0), 5},
                            {m < 0, 8},
                            {ldv < max_of(1, n), 10}});
    if (info != 0 || n == 0 || m == 0 || lsame(job, 'N')) return;
    const double* factors = right ? rscale : lscale;
    if (ilo != ihi && (lsame(job, 'S') || lsame(job, 'B'))) {
        for (zint i = ilo; i <= ihi; ++i) Blas<T>::scal_real(m, factors[i - 1], v + (i - 1), ldv);
    }
    if (lsame(job, 'P') || lsame(job, 'B')) {
        auto exchange = [&](zint i) {
            const zint k = static_cast<zint>(factors[i - 1]);
            if (k != i) Blas<T>::swap(m, v + (i - 1), ldv, v + (k - 1), ldv);
        };
        for (zint i = ilo - 1; i >= 1; --i) exchange(i);
        for (zint i = ihi + 1; i <= n; ++i) exchange(i);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(ggbak)
