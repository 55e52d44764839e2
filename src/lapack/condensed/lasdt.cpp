// lasdt: the tree of subproblems of bidiagonal divide and conquer.

#include <cmath>

#include "lapack/condensed/bidiagonal.hpp"

namespace zor {

void lasdt(zint n, zint& lvl, zint& nd, zint* inode, zint* ndiml, zint* ndimr, zint msub) {
    const double rows = static_cast<double>(n > 1 ? n : 1);
    lvl = static_cast<zint>(std::log(rows / static_cast<double>(msub + 1)) / std::log(2.0)) + 1;
    // The root splits at the middle row; each level halves every node of the one above, the left
    // child of node j becoming node 2j, the right 2j + 1 (one-based).
    const zint half = n / 2;
    inode[0] = half + 1;
    ndiml[0] = half;
    ndimr[0] = n - half - 1;
    zint left = -1, right = 0, width = 1;
    for (zint level = 1; level < lvl; ++level) {
        for (zint j = 0; j < width; ++j) {
            left += 2;
            right += 2;
            const zint parent = width + j - 1;
            ndiml[left] = ndiml[parent] / 2;
            ndimr[left] = ndiml[parent] - ndiml[left] - 1;
            inode[left] = inode[parent] - ndimr[left] - 1;
            ndiml[right] = ndimr[parent] / 2;
            ndimr[right] = ndimr[parent] - ndiml[right] - 1;
            inode[right] = inode[parent] + ndiml[right] + 1;
        }
        width *= 2;
    }
    nd = 2 * width - 1;
}

}  // namespace zor
