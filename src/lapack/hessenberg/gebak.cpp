// gebak: eigenvectors of the balanced matrix back to those of the original one: the scaling of
// rows ilo .. ihi undone (D for right vectors, D⁻¹ for left ones), then the row interchanges
// undone in the reverse of the order gebal made them.

#include "lapack/hessenberg/hessenberg.hpp"
#include "lapack/lapack.hpp"

namespace zor {

template <class T>
zint check_gebak(char job, char side, zint n, zint ilo, zint ihi, zint m, zint ldv) {
    return check_arguments(routine_name<T>("DGEBAK", "ZGEBAK"),
                           {{!lsame(job, 'N') && !lsame(job, 'P') && !lsame(job, 'S') && !lsame(job, 'B'), 1},
                            {!lsame(side, 'L') && !lsame(side, 'R'), 2},
                            {n < 0, 3},
                            {ilo < 1 || ilo > max_of(1, n), 4},
                            {ihi < min_of(ilo, n) || ihi > n, 5},
                            {m < 0, 7},
                            {ldv < max_of(1, n), 9}});
}

template <class T>
void gebak(char job, char side, zint n, zint ilo, zint ihi, const double* scale, zint m, T* v, zint ldv,
           zint& info) {
    info = check_gebak<T>(job, side, n, ilo, ihi, m, ldv);
    if (info != 0 || n == 0 || m == 0 || lsame(job, 'N')) return;
    const bool right = lsame(side, 'R');
    if (ilo != ihi && (lsame(job, 'S') || lsame(job, 'B'))) {
        for (zint i = ilo - 1; i < ihi; ++i) {
            Blas<T>::scal_real(m, right ? scale[i] : 1.0 / scale[i], v + i, ldv);
        }
    }
    if (lsame(job, 'P') || lsame(job, 'B')) {
        // gebal isolated rows from the bottom up and columns from the top down; the rows above
        // ilo are undone from ilo - 1 upwards, those below ihi downwards.
        for (zint step = 0; step < n; ++step) {
            zint i = step;
            if (i >= ilo - 1 && i < ihi) continue;
            if (i < ilo - 1) i = ilo - 2 - step;
            // An index outside 1 .. n (not one gebal wrote) is passed over rather than followed
            // outside V.
            const double index = scale[i];
            if (!(index >= 1.0 && index <= static_cast<double>(n))) continue;
            const zint k = static_cast<zint>(index) - 1;
            if (k != i) Blas<T>::swap(m, v + i, ldv, v + k, ldv);
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(gebak)
ZOR_INSTANTIATE(check_gebak)
