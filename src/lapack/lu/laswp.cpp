// dlaswp / zlaswp: a sequence of row interchanges applied to the columns of a matrix.

#include "lapack/element.hpp"
#include "lapack/lu/lu.hpp"

namespace zor {

// Column by column, each column taking the whole sequence while it is in cache: row interchanges
// touch one element a column, so a row-at-a-time order would stride through memory once a swap.
template <class T>
void laswp(zint n, T* a, zint lda, zint k1, zint k2, const zint* ipiv, zint incx) {
    if (incx == 0 || n <= 0 || k2 < k1) return;
    const zint count = k2 - k1 + 1;
    const zint* first = ipiv + (k1 - 1);
    const zint step = incx > 0 ? incx : -incx;
    for (zint j = 0; j < n; ++j) {
        T* column = a + j * lda - 1;  // one-based rows
        if (incx > 0) {
            for (zint s = 0; s < count; ++s) {
                const zint row = k1 + s, pivot = first[s * step];
                if (pivot != row) {
                    const T t = column[row];
                    column[row] = column[pivot];
                    column[pivot] = t;
                }
            }
        } else {
            for (zint s = count - 1; s >= 0; --s) {
                const zint row = k1 + s, pivot = first[s * step];
                if (pivot != row) {
                    const T t = column[row];
                    column[row] = column[pivot];
                    column[pivot] = t;
                }
            }
        }
    }
}

template void laswp(zint, double*, zint, zint, zint, const zint*, zint);
template void laswp(zint, zcomplex*, zint, zint, zint, const zint*, zint);

void dlaswp(const zint& n, double* a, const zint& lda, const zint& k1, const zint& k2, const zint* ipiv,
            const zint& incx) {
    laswp(n, a, lda, k1, k2, ipiv, incx);
}

void zlaswp(const zint& n, zcomplex* a, const zint& lda, const zint& k1, const zint& k2, const zint* ipiv,
            const zint& incx) {
    laswp(n, a, lda, k1, k2, ipiv, incx);
}

}  // namespace zor
