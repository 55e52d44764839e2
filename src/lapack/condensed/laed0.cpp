// laed0: the divide-and-conquer tree over an unreduced symmetric tridiagonal matrix, for its
// eigenvalues and eigenvectors.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/lapack.hpp"

namespace zor {

void laed0(zint n, double* d, double* e, double* q, zint ldq, double* work, zint* iwork, zint& info) {
    info = check_arguments("DLAED0", {{n < 0, 3}, {ldq < max_of(1, n), 7}});
    if (info != 0 || n == 0) return;
    // Leaves of at least two rows, so that every split of a larger piece leaves both halves nonempty.
    const zint leaf = max_of(ilaenv(9, "DSTEDC", " ", 0, 0, 0, 0), 2);

    // The leaves: halve every piece, the lower half the smaller, until the largest fits a leaf;
    // ends(i) is then the row after leaf i. They live at the front of iwork, the merges' scratch
    // right after them and the sort of each piece's eigenvalues (indxq) at the back.
    zint* const ends = iwork;
    zint* const indxq = iwork + 4 * n + 3;
    zint pieces = 1;
    ends[0] = n;
    while (ends[pieces - 1] > leaf) {
        for (zint j = pieces - 1; j >= 0; --j) {
            ends[2 * j + 1] = (ends[j] + 1) / 2;
            ends[2 * j] = ends[j] / 2;
        }
        pieces *= 2;
    }
    for (zint j = 1; j < pieces; ++j) ends[j] += ends[j - 1];

    // Each cut removes the coupling e between two leaves by a rank-one term |e| v vᵀ, which takes
    // |e| from the two diagonal elements it joins.
    for (zint i = 1; i < pieces; ++i) {
        const zint cut = ends[i - 1];
        d[cut - 1] -= std::fabs(e[cut - 1]);
        d[cut] -= std::fabs(e[cut - 1]);
    }

    // The failure code: the piece's first row (one-based) and its last, as info / (n + 1) and
    // mod(info, n + 1).
    const auto failed = [&](zint first, zint size) { info = (first + 1) * (n + 1) + first + size; };

    laset('A', n, n, 0.0, 1.0, q, ldq);
    for (zint i = 0; i < pieces; ++i) {
        const zint first = i == 0 ? 0 : ends[i - 1];
        const zint size = ends[i] - first;
        steqr('I', size, d + first, e + first, q + first + first * ldq, ldq, work, info);
        if (info != 0) return failed(first, size);
        for (zint j = 0; j < size; ++j) indxq[first + j] = j + 1;
    }

    // Merge neighbouring pieces level by level; each merge restores the coupling its cut removed.
    while (pieces > 1) {
        for (zint i = 0; i + 1 < pieces; i += 2) {
            const zint first = i == 0 ? 0 : ends[i - 1];
            const zint size = ends[i + 1] - first;
            const zint upper = ends[i] - first;
            laed1(size, d + first, q + first + first * ldq, ldq, indxq + first, e[first + upper - 1], upper,
                  work, iwork + pieces, info);
            if (info != 0) return failed(first, size);
            ends[i / 2] = ends[i + 1];
        }
        pieces /= 2;
    }

    // The last merge left its deflated pairs out of order: sort d and the columns of Q by indxq.
    for (zint i = 0; i < n; ++i) {
        const zint j = indxq[i] - 1;
        work[i] = d[j];
        dcopy(n, q + j * ldq, 1, work + n + i * n, 1);
    }
    dcopy(n, work, 1, d, 1);
    lacpy('A', n, n, work + n, n, q, ldq);
}

}  // namespace zor
