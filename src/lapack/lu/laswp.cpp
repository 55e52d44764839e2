// laswp: a sequence of row interchanges applied to the columns of a matrix.

#include "lapack/lapack.hpp"
#include "lapack/lu/lu.hpp"

namespace zor {

// Row interchanges touch one element a column, so columns are taken a few at a time with the whole
// sequence while they are in cache, and the interchanges of those columns are independent of one
// another: a row-at-a-time order would stride through memory once a swap, and a column at a time
// would chain every swap on the one before it.
namespace {

template <class T, int kColumns>
void swap_rows(T* a, zint lda, zint k1, zint count, const zint* first, zint step, bool forward) {
    for (zint t = 0; t < count; ++t) {
        const zint s = forward ? t : count - 1 - t;
        const zint row = k1 - 1 + s, pivot = first[s * step] - 1;
        if (pivot == row) continue;
        for (int c = 0; c < kColumns; ++c) {
            T* column = a + c * lda;
            const T x = column[row];
            column[row] = column[pivot];
            column[pivot] = x;
        }
    }
}
}  // namespace

template <class T>
void laswp(zint n, T* a, zint lda, zint k1, zint k2, const zint* ipiv, zint incx) {
    if (incx == 0 || n <= 0 || k2 < k1) return;
    constexpr int kGroup = 4;
    const zint count = k2 - k1 + 1;
    const zint* first = ipiv + (k1 - 1);
    const zint step = incx > 0 ? incx : -incx;
    zint j = 0;
    for (; j + kGroup <= n; j += kGroup)
        swap_rows<T, kGroup>(a + j * lda, lda, k1, count, first, step, incx > 0);
    for (; j < n; ++j) swap_rows<T, 1>(a + j * lda, lda, k1, count, first, step, incx > 0);
}

}  // namespace zor

ZOR_INSTANTIATE(laswp)
