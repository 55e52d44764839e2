// orglq: the first m rows of the Q of an LQ factorization in blocks of reflectors, from the last
// block: the unblocked orgl2 forms the trailing rows, then each block's larfb builds on them and
// orgl2 finishes the block's own rows.

#include "lapack/householder/blocking.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

template <class T>
zint check_orglq(zint m, zint n, zint k, zint lda, zint lwork) {
    return check_arguments(routine_name<T>("DORGLQ", "ZUNGLQ"), {{m < 0, 1},
                                                                 {n < m, 2},
                                                                 {k < 0 || k > m, 3},
                                                                 {lda < max_of(1, m), 5},
                                                                 {lwork != -1 && lwork < max_of(1, m), 8}});
}

template <class T>
void orglq(zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint lwork, zint& info) {
    const char* name = routine_name<T>("DORGLQ", "ZUNGLQ");
    const bool query = lwork == -1;
    info = check_orglq<T>(m, n, k, lda, lwork);
    if (info != 0) return;
    // work: T (ib by ib) in the first rows of an m by nb array, W below it.
    const ReflectorBlocking plan = plan_reflector_blocks(name, " ", m, n, k, k, m, 0, lwork, kAnyBlock, true);
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    if (query || m == 0) return;
    const auto A = [&](zint i, zint j) -> T* { return a + i + j * lda; };
    const zint nb = plan.nb;
    zint last_block = 0, blocked_rows = 0;
    if (plan.blocked) {
        last_block = (k - plan.crossover - 1) / nb * nb;
        blocked_rows = min_of(k, last_block + nb);
        // The columns of the blocked reflectors in the rows orgl2 forms start at zero.
        for (zint j = 0; j < blocked_rows; ++j) {
            for (zint i = blocked_rows; i < m; ++i) *A(i, j) = zero<T>();
        }
    }
    zint sub_info = 0;
    if (blocked_rows < m)
        orgl2(m - blocked_rows, n - blocked_rows, k - blocked_rows, A(blocked_rows, blocked_rows), lda,
              tau + blocked_rows, work, sub_info);
    if (blocked_rows > 0) {
        for (zint i = last_block; i >= 0; i -= nb) {
            const zint ib = min_of(nb, k - i);
            if (i + ib < m) {
                larft('F', 'R', n - i, ib, A(i, i), lda, tau + i, work, m);
                larfb('R', kAdjoint<T>, 'F', 'R', m - i - ib, n - i, ib, A(i, i), lda, work, m, A(i + ib, i),
                      lda, work + ib, m);
            }
            orgl2(ib, n - i, ib, A(i, i), lda, tau + i, work, sub_info);
            for (zint j = 0; j < i; ++j) {
                for (zint l = i; l < i + ib; ++l) *A(l, j) = zero<T>();
            }
        }
    }
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(orglq)
ZOR_INSTANTIATE(check_orglq)
