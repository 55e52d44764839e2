// lamrg: the permutation that merges two sorted lists into one ascending list.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"

namespace zor {

void lamrg(zint n1, zint n2, const double* a, zint stride1, zint stride2, zint* index) {
    // One-based positions of the next element of each list: a list of negative stride is walked
    // from its end.
    zint next1 = stride1 > 0 ? 1 : n1;
    zint next2 = stride2 > 0 ? n1 + 1 : n1 + n2;
    zint left1 = n1, left2 = n2, out = 0;
    while (left1 > 0 && left2 > 0) {
        if (a[next1 - 1] <= a[next2 - 1]) {
            index[out++] = next1;
            next1 += stride1;
            --left1;
        } else {
            index[out++] = next2;
            next2 += stride2;
            --left2;
        }
    }
    for (; left1 > 0; --left1, next1 += stride1) index[out++] = next1;
    for (; left2 > 0; --left2, next2 += stride2) index[out++] = next2;
}

}  // namespace zor
