// gelqf: the LQ factorization in panels of NB rows (the QR's block size for Aᴴ), each factored
// recursively with its triangular factor T (the mirror of geqrf's panels, see panel.hpp), the rows
// below updated with one larfb. The last rows (fewer than the crossover NX, or all of them for
// small matrices) go through gelq2.

#include "lapack/householder/blocking.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/qr/panel.hpp"
#include "lapack/qr/qr.hpp"
#include "service/handlers.hpp"

namespace zor {

namespace {

// A leaf: the panel row by row, then its T. The products of each step need m - i - 1 elements of
// scratch: they borrow column i of T below the diagonal, which T does not use.
template <class T>
void factor_leaf(zint m, zint n, T* a, zint lda, T* tau, T* t, zint ldt) {
    for (zint i = 0; i < m; ++i) {
        T* d = a + i + i * lda;
        lacgv(n - i, d, lda);
        T beta = *d;
        larfg(n - i, beta, a + i + min_of(i + 1, n - 1) * lda, lda, tau[i]);
        if (i + 1 < m) {
            *d = one<T>();
            larf('R', m - i - 1, n - i, d, lda, tau[i], d + 1, lda, t + i + 1 + i * ldt);
        }
        *d = beta;
        lacgv(n - i, d, lda);
    }
    larft('F', 'R', n, m, a, lda, tau, t, ldt);
}

// The LQ factorization of the m by n panel (n >= m) with its m by m upper triangular T.
template <class T>
void factor_panel(zint m, zint n, T* a, zint lda, T* tau, T* t, zint ldt, zint leaf) {
    if (m <= leaf) {
        factor_leaf(m, n, a, lda, tau, t, ldt);
        return;
    }
    const T one = zor::one<T>(), minus_one = from_real<T>(-1.0);
    const char adjoint = kAdjoint<T>;
    const zint m1 = m / 2, m2 = m - m1;
    factor_panel(m1, n, a, lda, tau, t, ldt, leaf);

    // A2 := A2 H1 = A2 - (A2 V1ᴴ) T1 V1, through X = (A2 V1ᴴ)ᴴ in T12's place (m1 by m2).
    T* a2 = a + m1;
    T* x = t + m1 * ldt;
    load_adjoint(m1, m2, a2, lda, x, ldt);
    Blas<T>::trmm('L', 'U', 'N', 'U', m1, m2, one, a, lda, x, ldt);
    Blas<T>::gemm('N', adjoint, m1, m2, n - m1, one, a + m1 * lda, lda, a2 + m1 * lda, lda, one, x, ldt);
    Blas<T>::trmm('L', 'U', adjoint, 'N', m1, m2, one, t, ldt, x, ldt);
    Blas<T>::gemm(adjoint, 'N', m2, n - m1, m1, minus_one, x, ldt, a + m1 * lda, lda, one, a2 + m1 * lda,
                  lda);
    Blas<T>::trmm('L', 'U', adjoint, 'U', m1, m2, one, a, lda, x, ldt);
    subtract_adjoint(m1, m2, x, ldt, a2, lda);

    T* t2 = t + m1 + m1 * ldt;
    factor_panel(m2, n - m1, a2 + m1 * lda, lda, tau + m1, t2, ldt, leaf);

    // T12 := -T1 (V1 V2ᴴ) T2. V2 starts in column m1: its unit triangle faces columns m1 .. m - 1
    // of V1.
    for (zint j = 0; j < m2; ++j) {
        for (zint i = 0; i < m1; ++i) x[i + j * ldt] = a[i + (m1 + j) * lda];
    }
    Blas<T>::trmm('R', 'U', adjoint, 'U', m1, m2, one, a2 + m1 * lda, lda, x, ldt);
    if (n > m)
        Blas<T>::gemm('N', adjoint, m1, m2, n - m, one, a + m * lda, lda, a2 + m * lda, lda, one, x, ldt);
    Blas<T>::trmm('L', 'U', 'N', 'N', m1, m2, minus_one, t, ldt, x, ldt);
    Blas<T>::trmm('R', 'U', 'N', 'N', m1, m2, one, t2, ldt, x, ldt);
}

}  // namespace

template <class T>
zint check_gelqf(zint m, zint n, zint lda, zint lwork) {
    const zint least = min_of(m, n) > 0 ? max_of(1, m) : 1;
    return check_arguments(
        routine_name<T>("DGELQF", "ZGELQF"),
        {{m < 0, 1}, {n < 0, 2}, {lda < max_of(1, m), 4}, {lwork != -1 && lwork < least, 7}});
}

template <class T>
bool gelqf(zint m, zint n, T* a, zint lda, T* tau, T* work, zint lwork, zint& info) {
    const char* name = routine_name<T>("DGELQF", "ZGELQF");
    const zint k = min_of(m, n);
    const bool query = lwork == -1;
    info = check_gelqf<T>(m, n, lda, lwork);
    if (info != 0) return false;
    // work: the panel's T (ib by ib) in the first rows of an m by nb array, larfb's W below it.
    // The LQ factorization of A is the QR factorization of Aᴴ: its block size, minimum block and
    // crossover are the QR's for the transposed shape.
    ReflectorBlocking plan = plan_reflector_blocks(routine_name<T>("DGEQRF", "ZGEQRF"), " ", n, m, -1, k, m, 0,
                                                   lwork, kAnyBlock, true);
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
            factor_panel(ib, n - i, panel, lda, tau + i, work, m, panel_leaf<T>(n - i, ib));
            if (i + ib < m)
                larfb('R', 'N', 'F', 'R', m - i - ib, n - i, ib, panel, lda, work, m, panel + ib, lda,
                      work + ib, m);
            if (progress(i + ib)) return true;
        }
    }
    if (i < k) {
        zint sub_info = 0;
        gelq2(m - i, n - i, a + i + i * lda, lda, tau + i, work, sub_info);
        if (progress(k)) return true;
    }
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    return false;
}

}  // namespace zor

ZOR_INSTANTIATE(gelqf)
ZOR_INSTANTIATE(check_gelqf)
