#pragma once
// The recursive panels of geqrf and gelqf: a panel of nb columns (rows) is split in halves, the
// left (upper) half factored, its block reflector applied to the other half, the other half
// factored, and the two triangular factors joined, T = [T1, -T1 (V1ᴴ V2) T2; 0, T2], so that the
// panel hands its T to the update of the rest of the matrix without a larft of its own. The halves
// recurse down to leaves of `panel_leaf` columns, factored column by column.

#include <cstdint>

#include "lapack/householder/blocking.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/qr/unblocked.hpp"
#include "service/handlers.hpp"

namespace zor {

// The width of the recursion's leaves for a panel of rows by cols: the tuning function's block
// size for QR panels (opts "P").
template <class T>
zint panel_leaf(zint rows, zint cols) {
    return max_of(1, ilaenv(1, routine_name<T>("DGEQRF", "ZGEQRF"), "P", rows, cols, -1, -1));
}

// A panel split after its first `first` reflectors (columns for QR, rows for LQ; `second` after
// them): the panel a (m by n), the part a2 the first ones are applied to (the columns after them,
// or the rows below), the second half's own block v2, and T with its blocks t (T1), x (T12's place)
// and t2 (T2).
template <class T>
struct PanelHalves {
    zint m, n, first, second;
    T *a, *a2, *v2;
    zint lda;
    T *t, *x, *t2;
    zint ldt;
};

// The two steps in which the QR and LQ panels differ: apply the first reflectors' block reflector
// to a2 (through T12's place as the workspace), and, once the second half is factored too, form
// T12 = -T1 (V1ᴴ V2) T2.
template <class T>
struct PanelSteps {
    void (*apply_first)(const PanelHalves<T>& h);
    void (*join_factors)(const PanelHalves<T>& h);
};

// The m by n panel's factorization (QR: m >= n, n reflectors; LQ: n >= m, m reflectors) with its
// upper triangular T: halves down to leaves of `leaf` reflectors, factored by the unblocked code
// (its scratch is column 1 of T below the diagonal, which T does not use) and given their T by
// larft.
template <class T>
void factor_panel(bool lq, const PanelSteps<T>& steps, zint m, zint n, T* a, zint lda, T* tau, T* t, zint ldt,
                  zint leaf) {
    const zint count = lq ? m : n;
    if (count <= leaf) {
        factor_unblocked(lq, m, n, a, lda, tau, t + 1);
        larft('F', lq ? 'R' : 'C', lq ? n : m, count, a, lda, tau, t, ldt);
        return;
    }
    const zint first = count / 2;
    T* v2 = a + first + first * lda;
    const PanelHalves<T> h{
        m,   n, first,           count - first,           a,  lq ? a + first : a + first * lda, v2,
        lda, t, t + first * ldt, t + first + first * ldt, ldt};
    factor_panel(lq, steps, lq ? first : m, lq ? n : first, a, lda, tau, t, ldt, leaf);
    steps.apply_first(h);
    factor_panel(lq, steps, m - first, n - first, v2, lda, tau + first, h.t2, ldt, leaf);
    steps.join_factors(h);
}

// X(i, j) := conj(A(j, i)) for the rows by cols matrix X.
template <class T>
void load_adjoint(zint rows, zint cols, const T* a, zint lda, T* x, zint ldx) {
    for (zint j = 0; j < cols; ++j) {
        for (zint i = 0; i < rows; ++i) x[i + j * ldx] = conj(a[j + i * lda]);
    }
}

// A(j, i) := A(j, i) - conj(X(i, j)) for the rows by cols matrix X.
template <class T>
void subtract_adjoint(zint rows, zint cols, const T* x, zint ldx, T* a, zint lda) {
    for (zint i = 0; i < rows; ++i) {
        for (zint j = 0; j < cols; ++j) a[j + i * lda] -= conj(x[i + j * ldx]);
    }
}

// The checks of geqrf (lq false) and gelqf: 1 m, 2 n, 4 lda, 7 lwork below n (QR) or m (LQ), 1
// when min(m, n) = 0 (not for a query).
template <class T>
zint check_panel_factorization(bool lq, zint m, zint n, zint lda, zint lwork) {
    const zint least = min_of(m, n) > 0 ? max_of(1, lq ? m : n) : 1;
    return check_arguments(
        routine_name<T>(lq ? "DGELQF" : "DGEQRF", lq ? "ZGELQF" : "ZGEQRF"),
        {{m < 0, 1}, {n < 0, 2}, {lda < max_of(1, m), 4}, {lwork != -1 && lwork < least, 7}});
}

// geqrf and gelqf after their checks: panels of NB reflectors while more than the crossover
// remain, each factored recursively with its T (the work array's first rows; larfb's W below them
// in an ldwork by NB array, ldwork = n for QR, m for LQ) and applied to the rest of A; then the
// remaining steps unblocked. The LQ factorization of A is the QR factorization of Aᴴ, so both take
// the QR's block size, minimum block and crossover, for Aᴴ's shape in the LQ case. After each
// panel and after the unblocked steps the progress handler hears the steps done; true when it
// asked to stop (A partly factored). lwork = -1 answers the query in work(1).
template <class T>
bool factor_in_panels(bool lq, const PanelSteps<T>& steps, zint m, zint n, T* a, zint lda, T* tau, T* work,
                      zint lwork) {
    const zint k = min_of(m, n);
    const zint ldwork = lq ? m : n;
    ReflectorBlocking plan = plan_reflector_blocks(routine_name<T>("DGEQRF", "ZGEQRF"), " ", lq ? n : m,
                                                   lq ? m : n, -1, k, ldwork, 0, lwork, kAnyBlock, true);
    if (k == 0) plan.optimal = 1;
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    if (lwork == -1 || k == 0) return false;
    const char* name = routine_name<T>(lq ? "DGELQF" : "DGEQRF", lq ? "ZGELQF" : "ZGEQRF");
    const std::int32_t thread = 0;
    const auto stop = [&](zint done) {
        return report_progress(thread, static_cast<std::int32_t>(done), name, 6) != 0;
    };
    zint i = 0;
    for (; plan.blocked && i < k - plan.crossover; i += plan.nb) {
        const zint ib = min_of(k - i, plan.nb);
        T* p = a + i + i * lda;
        if (lq) {
            factor_panel(true, steps, ib, n - i, p, lda, tau + i, work, m, panel_leaf<T>(n - i, ib));
            if (i + ib < m)
                larfb('R', 'N', 'F', 'R', m - i - ib, n - i, ib, p, lda, work, m, p + ib, lda, work + ib, m);
        } else {
            factor_panel(false, steps, m - i, ib, p, lda, tau + i, work, n, panel_leaf<T>(m - i, ib));
            if (i + ib < n)
                larfb('L', kAdjoint<T>, 'F', 'C', m - i, n - i - ib, ib, p, lda, work, n, p + ib * lda, lda,
                      work + ib, n);
        }
        if (stop(i + ib)) return true;
    }
    if (i < k) {
        factor_unblocked(lq, m - i, n - i, a + i + i * lda, lda, tau + i, work);
        if (stop(k)) return true;
    }
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    return false;
}

}  // namespace zor

// geqrf and gelqf are the code above with their own two panel steps: each one's source file defines
// and instantiates its routine and its check with this.
#define ZOR_PANEL_FACTORIZATION(routine, lq, apply_first, join_factors)                                  \
    template <class T>                                                                                   \
    zor::zint zor::check_##routine(zint m, zint n, zint lda, zint lwork) {                               \
        return check_panel_factorization<T>(lq, m, n, lda, lwork);                                       \
    }                                                                                                    \
    template <class T>                                                                                   \
    bool zor::routine(zint m, zint n, T* a, zint lda, T* tau, T* work, zint lwork, zint& info) {         \
        info = check_##routine<T>(m, n, lda, lwork);                                                     \
        if (info != 0) return false;                                                                     \
        return factor_in_panels(lq, PanelSteps<T>{&apply_first<T>, &join_factors<T>}, m, n, a, lda, tau, \
                                work, lwork);                                                            \
    }                                                                                                    \
    ZOR_INSTANTIATE(routine)                                                                             \
    ZOR_INSTANTIATE(check_##routine)
