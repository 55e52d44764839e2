// gelqf: the LQ factorization in panels of NB rows (the QR's block size for Aᴴ), each factored
// recursively with its triangular factor T (the mirror of geqrf's panels, see panel.hpp), the rows
// below updated with one larfb. The last rows (fewer than the crossover NX, or all of them for
// small matrices) go through gelq2.

#include "lapack/householder/blocking.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/qr/panel.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

namespace {

// A2 := A2 H1 = A2 - (A2 V1ᴴ) T1 V1 for the rows A2 below the first ones, through X = (A2 V1ᴴ)ᴴ in
// T12's place (first by second).
template <class T>
void apply_first_rows(const PanelHalves<T>& h) {
    load_adjoint(h.first, h.second, h.a2, h.lda, h.x, h.ldt);
    const char adjoint = kAdjoint<T>;
    const zint right = h.n - h.first;
    T* v1_rest = h.a + h.first * h.lda;
    Blas<T>::trmm('L', 'U', 'N', 'U', h.first, h.second, one<T>(), h.a, h.lda, h.x, h.ldt);
    Blas<T>::gemm('N', adjoint, h.first, h.second, right, one<T>(), v1_rest, h.lda, h.a2 + h.first * h.lda,
                  h.lda, one<T>(), h.x, h.ldt);
    Blas<T>::trmm('L', 'U', adjoint, 'N', h.first, h.second, one<T>(), h.t, h.ldt, h.x, h.ldt);
    Blas<T>::gemm(adjoint, 'N', h.second, right, h.first, from_real<T>(-1.0), h.x, h.ldt, v1_rest, h.lda,
                  one<T>(), h.a2 + h.first * h.lda, h.lda);
    Blas<T>::trmm('L', 'U', adjoint, 'U', h.first, h.second, one<T>(), h.a, h.lda, h.x, h.ldt);
    subtract_adjoint(h.first, h.second, h.x, h.ldt, h.a2, h.lda);
}

// T12 := -T1 (V1 V2ᴴ) T2. V2 starts in column `first`: its unit triangle faces columns first ..
// m - 1 of V1, the rest of it the columns right of m.
template <class T>
void join_row_factors(const PanelHalves<T>& h) {
    for (zint j = 0; j < h.second; ++j) {
        for (zint i = 0; i < h.first; ++i) h.x[i + j * h.ldt] = h.a[i + (h.first + j) * h.lda];
    }
    Blas<T>::trmm('R', 'U', kAdjoint<T>, 'U', h.first, h.second, one<T>(), h.v2, h.lda, h.x, h.ldt);
    if (h.n > h.m)
        Blas<T>::gemm('N', kAdjoint<T>, h.first, h.second, h.n - h.m, one<T>(), h.a + h.m * h.lda, h.lda,
                      h.v2 + h.second * h.lda, h.lda, one<T>(), h.x, h.ldt);
    Blas<T>::trmm('L', 'U', 'N', 'N', h.first, h.second, from_real<T>(-1.0), h.t, h.ldt, h.x, h.ldt);
    Blas<T>::trmm('R', 'U', 'N', 'N', h.first, h.second, one<T>(), h.t2, h.ldt, h.x, h.ldt);
}

}  // namespace
}  // namespace zor

ZOR_PANEL_FACTORIZATION(gelqf, true, apply_first_rows, join_row_factors)
