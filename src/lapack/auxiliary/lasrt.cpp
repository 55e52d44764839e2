// lasrt: sorts a vector of doubles into increasing or decreasing order.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

// Whether x belongs after y.
bool after(double x, double y, bool increasing) {
    return increasing ? x > y : x < y;
}

}  // namespace

// Shell sort over the gaps 3h + 1: comparisons only, so NaN entries cannot make it read or write
// outside d (they just land somewhere), and the passes are bounded by the gaps.
void lasrt(char id, zint n, double* d, zint& info) {
    const bool increasing = lsame(id, 'I');
    info = check_arguments("DLASRT", {{!increasing && !lsame(id, 'D'), 1}, {n < 0, 2}});
    if (info != 0 || n <= 1) return;
    zint gap = 1;
    while (gap < n / 3) gap = 3 * gap + 1;
    for (; gap >= 1; gap /= 3) {
        for (zint i = gap; i < n; ++i) {
            const double v = d[i];
            zint j = i;
            for (; j >= gap && after(d[j - gap], v, increasing); j -= gap) d[j] = d[j - gap];
            d[j] = v;
        }
    }
}

}  // namespace zor
