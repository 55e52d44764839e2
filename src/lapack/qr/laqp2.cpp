// laqp2: the pivoted QR of a block, column by column: the column of largest remaining norm moves
// to the front, its reflector is applied to the columns on its right, and their norms are
// downdated (or recomputed when the downdate has lost too many digits).

#include <cmath>

#include "lapack/householder/householder.hpp"
#include "lapack/qr/pivoting.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

template <class T>
void laqp2(zint m, zint n, zint offset, T* a, zint lda, zint* jpvt, T* tau, double* vn1, double* vn2,
           T* work) {
    const zint steps = min_of(m - offset, n);
    const double tolerance = std::sqrt(dlamch("E"));
    const auto A = [&](zint i, zint j) -> T* { return a + i + j * lda; };
    for (zint i = 0; i < steps; ++i) {
        const zint row = offset + i;
        bring_largest_forward<T>(m, n, i, a, lda, jpvt, vn1, vn2, nullptr, 0);
        // H(i): a reflector of length 1 too, which makes a complex diagonal real.
        if (row < m - 1) {
            larfg(m - row, *A(row, i), A(row + 1, i), 1, tau[i]);
        } else {
            larfg(1, *A(m - 1, i), A(m - 1, i), 1, tau[i]);
        }
        if (i + 1 < n) {
            const T diagonal = *A(row, i);
            *A(row, i) = one<T>();
            larf('L', m - row, n - i - 1, A(row, i), 1, conj(tau[i]), A(row, i + 1), lda, work);
            *A(row, i) = diagonal;
        }
        for (zint j = i + 1; j < n; ++j) {
            if (vn1[j] == 0.0) continue;
            if (downdated_norm_reliable(abs(*A(row, j)), vn1[j], vn2[j], tolerance)) continue;
            // Recomputed from the rows below the one just eliminated.
            if (row < m - 1) {
                vn1[j] = Blas<T>::nrm2(m - row - 1, A(row + 1, j), 1);
                vn2[j] = vn1[j];
            } else {
                vn1[j] = 0.0;
                vn2[j] = 0.0;
            }
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(laqp2)
