// geqrf: the QR factorization in panels of NB columns. Each panel is factored recursively (the
// halves joined through level-3 products, see panel.hpp), which also gives the panel's triangular
// factor T; the rest of the matrix is then updated with one larfb. The last columns (fewer than
// the crossover NX, or all of them for small matrices) go through geqr2.

#include "lapack/householder/blocking.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/qr/panel.hpp"
#include "lapack/qr/qr.hpp"
#include "service/handlers.hpp"

namespace zor {

namespace {

// A leaf: the panel column by column, then its T. The products of each step need n - j - 1
// elements of scratch: they borrow column j of T below the diagonal, which T does not use.
template <class T>
void factor_leaf(zint m, zint n, T* a, zint lda, T* tau, T* t, zint ldt) {
    for (zint j = 0; j < n; ++j) {
        T* d = a + j + j * lda;
        larfg(m - j, *d, a + min_of(j + 1, m - 1) + j * lda, 1, tau[j]);
        if (j + 1 < n) {
            const T beta = *d;
            *d = one<T>();
            larf('L', m - j, n - j - 1, d, 1, conj(tau[j]), d + lda, lda, t + j + 1 + j * ldt);
            *d = beta;
        }
    }
    larft('F', 'C', m, n, a, lda, tau, t, ldt);
}

// The QR factorization of the m by n panel (m >= n) with its n by n upper triangular T.
template <class T>
void factor_panel(zint m, zint n, T* a, zint lda, T* tau, T* t, zint ldt, zint leaf) {
    if (n <= leaf) {
        factor_leaf(m, n, a, lda, tau, t, ldt);
        return;
    }
    const T one = zor::one<T>(), minus_one = from_real<T>(-1.0);
    const char adjoint = kAdjoint<T>;
    const zint n1 = n / 2, n2 = n - n1;
    factor_panel(m, n1, a, lda, tau, t, ldt, leaf);

    // A2 := H1ᴴ A2 = A2 - V1 T1ᴴ (V1ᴴ A2), with X = T12's place (n1 by n2) as the workspace.
    T* a2 = a + n1 * lda;
    T* x = t + n1 * ldt;
    for (zint j = 0; j < n2; ++j) {
        for (zint i = 0; i < n1; ++i) x[i + j * ldt] = a2[i + j * lda];
    }
    Blas<T>::trmm('L', 'L', adjoint, 'U', n1, n2, one, a, lda, x, ldt);
    Blas<T>::gemm(adjoint, 'N', n1, n2, m - n1, one, a + n1, lda, a2 + n1, lda, one, x, ldt);
    Blas<T>::trmm('L', 'U', adjoint, 'N', n1, n2, one, t, ldt, x, ldt);
    Blas<T>::gemm('N', 'N', m - n1, n2, n1, minus_one, a + n1, lda, x, ldt, one, a2 + n1, lda);
    Blas<T>::trmm('L', 'L', 'N', 'U', n1, n2, one, a, lda, x, ldt);
    for (zint j = 0; j < n2; ++j) {
        for (zint i = 0; i < n1; ++i) a2[i + j * lda] -= x[i + j * ldt];
    }

    T* t2 = t + n1 + n1 * ldt;
    factor_panel(m - n1, n2, a2 + n1, lda, tau + n1, t2, ldt, leaf);

    // T12 := -T1 (V1ᴴ V2) T2. V2 starts in row n1: its unit triangle faces rows n1 .. n - 1 of V1.
    load_adjoint(n1, n2, a + n1, lda, x, ldt);
    Blas<T>::trmm('R', 'L', 'N', 'U', n1, n2, one, a2 + n1, lda, x, ldt);
    if (m > n) Blas<T>::gemm(adjoint, 'N', n1, n2, m - n, one, a + n, lda, a2 + n, lda, one, x, ldt);
    Blas<T>::trmm('L', 'U', 'N', 'N', n1, n2, minus_one, t, ldt, x, ldt);
    Blas<T>::trmm('R', 'U', 'N', 'N', n1, n2, one, t2, ldt, x, ldt);
}

}  // namespace

template <class T>
zint check_geqrf(zint m, zint n, zint lda, zint lwork) {
    const zint least = min_of(m, n) > 0 ? max_of(1, n) : 1;
    return check_arguments(
        routine_name<T>("DGEQRF", "ZGEQRF"),
        {{m < 0, 1}, {n < 0, 2}, {lda < max_of(1, m), 4}, {lwork != -1 && lwork < least, 7}});
}

template <class T>
bool geqrf(zint m, zint n, T* a, zint lda, T* tau, T* work, zint lwork, zint& info) {
    const char* name = routine_name<T>("DGEQRF", "ZGEQRF");
    const zint k = min_of(m, n);
    const bool query = lwork == -1;
    info = check_geqrf<T>(m, n, lda, lwork);
    if (info != 0) return false;
    // work: the panel's T (ib by ib) in the first rows of an n by nb array, larfb's W below it.
    ReflectorBlocking plan = plan_reflector_blocks(name, " ", m, n, -1, k, n, 0, lwork, kAnyBlock, true);
    if (k == 0) plan.optimal = 1;
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    if (query || k == 0) return false;

    const std::int32_t thread = 0;
    const auto progress = [&](zint done) {
        return report_progress(thread, static_cast<std::int32_t>(done), name, 6) != 0;
    };
    zint i = 0;
    if (plan.blocked) {
        const zint nb = plan.nb;
        for (; i < k - plan.crossover; i += nb) {
            const zint ib = min_of(k - i, nb);
            T* panel = a + i + i * lda;
            factor_panel(m - i, ib, panel, lda, tau + i, work, n, panel_leaf<T>(m - i, ib));
            if (i + ib < n)
                larfb('L', kAdjoint<T>, 'F', 'C', m - i, n - i - ib, ib, panel, lda, work, n,
                      panel + ib * lda, lda, work + ib, n);
            if (progress(i + ib)) return true;
        }
    }
    if (i < k) {
        zint sub_info = 0;
        geqr2(m - i, n - i, a + i + i * lda, lda, tau + i, work, sub_info);
        if (progress(k)) return true;
    }
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    return false;
}

}  // namespace zor

ZOR_INSTANTIATE(geqrf)
ZOR_INSTANTIATE(check_geqrf)
