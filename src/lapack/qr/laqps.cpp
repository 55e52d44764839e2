// laqps: up to nb steps of the pivoted QR with the update of the rest of the block deferred: F
// collects, for every column, what the reflectors so far would subtract from it, so each step
// touches only its pivot column and pivot row (matrix-vector products), and one gemm applies the
// whole block at the end. A column whose norm can no longer be downdated reliably ends the block
// early; its norm is recomputed after the gemm.

#include <cmath>

#include "lapack/householder/householder.hpp"
#include "lapack/qr/pivoting.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

template <class T>
void laqps(zint m, zint n, zint offset, zint nb, zint& kb, T* a, zint lda, zint* jpvt, T* tau, double* vn1,
           double* vn2, T* auxv, T* f, zint ldf) {
    const zint last_row = min_of(m, n + offset);
    const double tolerance = std::sqrt(dlamch("E"));
    const T one = zor::one<T>(), zero = zor::zero<T>(), minus_one = from_real<T>(-1.0);
    const char adjoint = kAdjoint<T>;
    const auto A = [&](zint i, zint j) -> T* { return a + i + j * lda; };
    const auto F = [&](zint i, zint j) -> T* { return f + i + j * ldf; };
    // Columns whose norm must be recomputed, linked through vn2 (one-based; 0 ends the list).
    zint recompute = 0;
    zint k = 0;
    while (k < nb && recompute == 0) {
        const zint row = offset + k;
        bring_largest_forward(m, n, k, a, lda, jpvt, vn1, vn2, f, ldf);
        // Column k := column k - A(row:, 0:k) F(k, 0:k)ᴴ: the earlier reflectors reach it.
        if (k > 0) {
            lacgv(k, F(k, 0), ldf);
            Blas<T>::gemv('N', m - row, k, minus_one, A(row, 0), lda, F(k, 0), ldf, one, A(row, k), 1);
            lacgv(k, F(k, 0), ldf);
        }
        if (row < m - 1) {
            larfg(m - row, *A(row, k), A(row + 1, k), 1, tau[k]);
        } else {
            larfg(1, *A(row, k), A(row, k), 1, tau[k]);
        }
        const T diagonal = *A(row, k);
        *A(row, k) = one;
        // F(k+1:n, k) := tau(k) A(row:, k+1:n)ᴴ v, then less the earlier reflectors' share:
        // F(:, k) -= tau(k) F(:, 0:k) (A(row:, 0:k)ᴴ v).
        if (k + 1 < n)
            Blas<T>::gemv(adjoint, m - row, n - k - 1, tau[k], A(row, k + 1), lda, A(row, k), 1, zero,
                          F(k + 1, k), 1);
        for (zint j = 0; j <= k; ++j) *F(j, k) = zero;
        if (k > 0) {
            Blas<T>::gemv(adjoint, m - row, k, -tau[k], A(row, 0), lda, A(row, k), 1, zero, auxv, 1);
            Blas<T>::gemv('N', n, k, one, f, ldf, auxv, 1, one, F(0, k), 1);
        }
        // The pivot row: A(row, k+1:n) -= A(row, 0:k+1) F(k+1:n, 0:k+1)ᴴ.
        if (k + 1 < n) {
            if constexpr (kIsComplex<T>) {
                Blas<T>::gemm('N', 'C', 1, n - k - 1, k + 1, minus_one, A(row, 0), lda, F(k + 1, 0), ldf, one,
                              A(row, k + 1), lda);
            } else {
                Blas<T>::gemv('N', n - k - 1, k + 1, minus_one, F(k + 1, 0), ldf, A(row, 0), lda, one,
                              A(row, k + 1), lda);
            }
        }
        if (row < last_row - 1) {
            for (zint j = k + 1; j < n; ++j) {
                if (vn1[j] == 0.0) continue;
                if (downdated_norm_reliable(abs(*A(row, j)), vn1[j], vn2[j], tolerance)) continue;
                vn2[j] = static_cast<double>(recompute);
                recompute = j + 1;
            }
        }
        *A(row, k) = diagonal;
        ++k;
    }
    kb = k;
    const zint row = offset + kb;
    // The rest of the block: A(row:, kb:n) -= A(row:, 0:kb) F(kb:n, 0:kb)ᴴ.
    if (kb < min_of(n, m - offset))
        Blas<T>::gemm('N', adjoint, m - row, n - kb, kb, minus_one, A(row, 0), lda, F(kb, 0), ldf, one,
                      A(row, kb), lda);
    while (recompute > 0) {
        const zint j = recompute - 1;
        recompute = static_cast<zint>(std::lround(vn2[j]));
        vn1[j] = Blas<T>::nrm2(m - row, A(row, j), 1);
        vn2[j] = vn1[j];
    }
}

}  // namespace zor

ZOR_INSTANTIATE(laqps)
