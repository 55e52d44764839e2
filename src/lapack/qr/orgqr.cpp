// orgqr: the first n columns of the Q of a QR factorization in blocks of reflectors, from the last
// block: the unblocked org2r forms the trailing columns, then each block's larfb builds on them and
// org2r finishes the block's own columns.

#include "lapack/householder/blocking.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

template <class T>
zint check_orgqr(zint m, zint n, zint k, zint lda, zint lwork) {
    return check_arguments(routine_name<T>("DORGQR", "ZUNGQR"), {{m < 0, 1},
                                                                 {n < 0 || n > m, 2},
                                                                 {k < 0 || k > n, 3},
                                                                 {lda < max_of(1, m), 5},
                                                                 {lwork != -1 && lwork < max_of(1, n), 8}});
}

template <class T>
void orgqr(zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint lwork, zint& info) {
    const char* name = routine_name<T>("DORGQR", "ZUNGQR");
    const bool query = lwork == -1;
    info = check_orgqr<T>(m, n, k, lda, lwork);
    if (info != 0) return;
    // work: T (ib by ib) in the first rows of an n by nb array, W below it.
    const ReflectorBlocking plan = plan_reflector_blocks(name, " ", m, n, k, k, n, 0, lwork, kAnyBlock, true);
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    if (query || n == 0) return;
    const auto A = [&](zint i, zint j) -> T* { return a + i + j * lda; };
    const zint nb = plan.nb;
    zint last_block = 0, blocked_columns = 0;
    if (plan.blocked) {
        last_block = (k - plan.crossover - 1) / nb * nb;
        blocked_columns = min_of(k, last_block + nb);
        // The rows of the blocked reflectors in the columns org2r forms start at zero.
        for (zint j = blocked_columns; j < n; ++j) {
            for (zint i = 0; i < blocked_columns; ++i) *A(i, j) = zero<T>();
        }
    }
    zint sub_info = 0;
    if (blocked_columns < n)
        org2r(m - blocked_columns, n - blocked_columns, k - blocked_columns,
              A(blocked_columns, blocked_columns), lda, tau + blocked_columns, work, sub_info);
    if (blocked_columns > 0) {
        for (zint i = last_block; i >= 0; i -= nb) {
            const zint ib = min_of(nb, k - i);
            if (i + ib < n) {
                larft('F', 'C', m - i, ib, A(i, i), lda, tau + i, work, n);
                larfb('L', 'N', 'F', 'C', m - i, n - i - ib, ib, A(i, i), lda, work, n, A(i, i + ib), lda,
                      work + ib, n);
            }
            org2r(m - i, ib, ib, A(i, i), lda, tau + i, work, sub_info);
            for (zint j = i; j < i + ib; ++j) {
                for (zint l = 0; l < i; ++l) *A(l, j) = zero<T>();
            }
        }
    }
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(orgqr)
ZOR_INSTANTIATE(check_orgqr)
