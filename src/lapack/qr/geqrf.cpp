// geqrf: the QR factorization in panels of NB columns. Each panel is factored recursively (the
// halves joined through level-3 products, see panel.hpp), which also gives the panel's triangular
// factor T; the rest of the matrix is then updated with one larfb. The last columns (fewer than
// the crossover NX, or all of them for small matrices) go through geqr2.

#include "lapack/householder/blocking.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/qr/panel.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

namespace {

// A2 := H1ᴴ A2 = A2 - V1 T1ᴴ (V1ᴴ A2) for the columns A2 after the first ones, with X = T12's
// place (first by second) as the workspace.
template <class T>
void apply_first_columns(const PanelHalves<T>& h) {
    for (zint j = 0; j < h.second; ++j) {
        for (zint i = 0; i < h.first; ++i) h.x[i + j * h.ldt] = h.a2[i + j * h.lda];
    }
    const char adjoint = kAdjoint<T>;
    const zint below = h.m - h.first;
    Blas<T>::trmm('L', 'L', adjoint, 'U', h.first, h.second, one<T>(), h.a, h.lda, h.x, h.ldt);
    Blas<T>::gemm(adjoint, 'N', h.first, h.second, below, one<T>(), h.a + h.first, h.lda, h.a2 + h.first,
                  h.lda, one<T>(), h.x, h.ldt);
    Blas<T>::trmm('L', 'U', adjoint, 'N', h.first, h.second, one<T>(), h.t, h.ldt, h.x, h.ldt);
    Blas<T>::gemm('N', 'N', below, h.second, h.first, from_real<T>(-1.0), h.a + h.first, h.lda, h.x, h.ldt,
                  one<T>(), h.a2 + h.first, h.lda);
    Blas<T>::trmm('L', 'L', 'N', 'U', h.first, h.second, one<T>(), h.a, h.lda, h.x, h.ldt);
    for (zint j = 0; j < h.second; ++j) {
        for (zint i = 0; i < h.first; ++i) h.a2[i + j * h.lda] -= h.x[i + j * h.ldt];
    }
}

// T12 := -T1 (V1ᴴ V2) T2. V2 starts in row `first`: its unit triangle faces rows first .. n - 1 of
// V1, the rest of it the rows below n.
template <class T>
void join_column_factors(const PanelHalves<T>& h) {
    load_adjoint(h.first, h.second, h.a + h.first, h.lda, h.x, h.ldt);
    Blas<T>::trmm('R', 'L', 'N', 'U', h.first, h.second, one<T>(), h.v2, h.lda, h.x, h.ldt);
    if (h.m > h.n)
        Blas<T>::gemm(kAdjoint<T>, 'N', h.first, h.second, h.m - h.n, one<T>(), h.a + h.n, h.lda,
                      h.v2 + h.second, h.lda, one<T>(), h.x, h.ldt);
    Blas<T>::trmm('L', 'U', 'N', 'N', h.first, h.second, from_real<T>(-1.0), h.t, h.ldt, h.x, h.ldt);
    Blas<T>::trmm('R', 'U', 'N', 'N', h.first, h.second, one<T>(), h.t2, h.ldt, h.x, h.ldt);
}

}  // namespace
}  // namespace zor

ZOR_PANEL_FACTORIZATION(geqrf, false, apply_first_columns, join_column_factors)
