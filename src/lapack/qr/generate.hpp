#pragma once
// The blocked generation of Q that orgqr and orglq share, written once for both: the LQ's Q is
// the mirror image of the QR's (its vectors are rows, conjugated), so with the element (i, j) of
// the QR's view at A(j, i) for LQ, the same steps form either. From the last block of reflectors to
// the first: the unblocked routine forms the vectors after the blocked ones, each block's larft
// and larfb carry them back, and the unblocked routine forms the block's own vectors.

#include "lapack/householder/blocking.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

// The checks of orgqr and orglq: 1 m, 2 n (m >= n >= 0 for QR, n >= m for LQ), 3 k (0 <= k <= n
// for QR, m for LQ), 5 lda, 8 lwork below max(1, n) (QR) or max(1, m) (LQ), not for a query.
template <class T>
zint check_generator(bool lq, zint m, zint n, zint k, zint lda, zint lwork) {
    const zint count = lq ? m : n;
    return check_arguments(routine_name<T>(lq ? "DORGLQ" : "DORGQR", lq ? "ZUNGLQ" : "ZUNGQR"),
                           {{m < 0, 1},
                            {lq ? n < m : n < 0 || n > m, 2},
                            {k < 0 || k > count, 3},
                            {lda < max_of(1, m), 5},
                            {lwork != -1 && lwork < max_of(1, count), 8}});
}

// The first `count` vectors (columns for QR: count = n; rows for LQ: count = m) of the Q of k
// reflectors of order `order` (m for QR, n for LQ), arguments checked; lwork = -1 answers the
// query in work(1). The work array is T (ib by ib) in the first rows of a count by NB array, W
// below it.
template <class T>
void generate_q(bool lq, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint lwork) {
    const zint order = lq ? n : m;
    const zint count = lq ? m : n;
    const ReflectorBlocking plan =
        plan_reflector_blocks(routine_name<T>(lq ? "DORGLQ" : "DORGQR", lq ? "ZUNGLQ" : "ZUNGQR"), " ", m, n,
                              k, k, count, 0, lwork, kAnyBlock, true);
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    if (lwork == -1 || count == 0) return;
    // Element (i, j) of the QR's view: row i of the vectors, vector j.
    const auto at = [&](zint i, zint j) -> T* { return lq ? a + j + i * lda : a + i + j * lda; };
    const auto unblocked = [&](zint start, zint length, zint vectors, zint reflectors) {
        zint sub_info = 0;
        if (lq) {
            orgl2(vectors, length, reflectors, at(start, start), lda, tau + start, work, sub_info);
        } else {
            org2r(length, vectors, reflectors, at(start, start), lda, tau + start, work, sub_info);
        }
    };
    const zint nb = plan.nb;
    zint last_block = 0, blocked = 0;
    if (plan.blocked) {
        last_block = (k - plan.crossover - 1) / nb * nb;
        blocked = min_of(k, last_block + nb);
        // The blocked reflectors' entries in the vectors the unblocked routine forms start at zero.
        for (zint j = blocked; j < count; ++j) {
            for (zint i = 0; i < blocked; ++i) *at(i, j) = zero<T>();
        }
    }
    if (blocked < count) unblocked(blocked, order - blocked, count - blocked, k - blocked);
    for (zint i = last_block; blocked > 0 && i >= 0; i -= nb) {
        const zint ib = min_of(nb, k - i);
        if (i + ib < count) {
            larft('F', lq ? 'R' : 'C', order - i, ib, at(i, i), lda, tau + i, work, count);
            if (lq) {
                larfb('R', kAdjoint<T>, 'F', 'R', count - i - ib, order - i, ib, at(i, i), lda, work, count,
                      at(i, i + ib), lda, work + ib, count);
            } else {
                larfb('L', 'N', 'F', 'C', order - i, count - i - ib, ib, at(i, i), lda, work, count,
                      at(i, i + ib), lda, work + ib, count);
            }
        }
        unblocked(i, order - i, ib, ib);
        for (zint j = i; j < i + ib; ++j) {
            for (zint l = 0; l < i; ++l) *at(l, j) = zero<T>();
        }
    }
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
}

}  // namespace zor

// orgqr and orglq are the code above: each one's source file defines and instantiates its routine and
// its check with this.
#define ZOR_Q_GENERATOR(routine, lq)                                                             \
    template <class T>                                                                           \
    zor::zint zor::check_##routine(zint m, zint n, zint k, zint lda, zint lwork) {               \
        return check_generator<T>(lq, m, n, k, lda, lwork);                                      \
    }                                                                                            \
    template <class T>                                                                           \
    void zor::routine(zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint lwork, \
                      zint& info) {                                                              \
        info = check_##routine<T>(m, n, k, lda, lwork);                                          \
        if (info == 0) generate_q(lq, m, n, k, a, lda, tau, work, lwork);                        \
    }                                                                                            \
    ZOR_INSTANTIATE(routine)                                                                     \
    ZOR_INSTANTIATE(check_##routine)
