// orgql: the last n columns of the Q of a QL factorization in blocks of reflectors, from the first
// block: the unblocked org2l forms the leading columns, then each block's larfb builds on them and
// org2l finishes the block's own columns.

#include "lapack/householder/blocking.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/symmetric/symmetric.hpp"

namespace zor {

template <class T>
void orgql(zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint lwork, zint& info) {
    const char* name = routine_name<T>("DORGQL", "ZUNGQL");
    const bool query = lwork == -1;
    info = check_arguments(name, {{m < 0, 1},
                                  {n < 0 || n > m, 2},
                                  {k < 0 || k > n, 3},
                                  {lda < max_of(1, m), 5},
                                  {lwork < max_of(1, n) && !query, 8}});
    if (info != 0) return;
    // work: T (ib by ib) in the first rows of an n by nb array, W below it.
    const ReflectorBlocking plan = plan_reflector_blocks(name, " ", m, n, k, k, n, 0, lwork, kAnyBlock, true);
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    if (query || n == 0) return;
    const auto A = [&](zint i, zint j) -> T* { return a + i + j * lda; };
    const zint nb = plan.nb;
    // The last `blocked` reflectors go by blocks; their rows in the columns org2l forms start at zero.
    zint blocked = 0;
    if (plan.blocked) {
        blocked = min_of(k, (k - plan.crossover + nb - 1) / nb * nb);
        for (zint j = 0; j < n - blocked; ++j) {
            for (zint i = m - blocked; i < m; ++i) *A(i, j) = zero<T>();
        }
    }
    zint sub_info = 0;
    org2l(m - blocked, n - blocked, k - blocked, a, lda, tau, work, sub_info);
    for (zint i = k - blocked; i < k; i += nb) {
        const zint ib = min_of(nb, k - i), column = n - k + i, rows = m - k + i + ib;
        if (column > 0) {
            larft('B', 'C', rows, ib, A(0, column), lda, tau + i, work, n);
            larfb('L', 'N', 'B', 'C', rows, column, ib, A(0, column), lda, work, n, a, lda, work + ib, n);
        }
        org2l(rows, ib, ib, A(0, column), lda, tau + i, work, sub_info);
        for (zint j = column; j < column + ib; ++j) {
            for (zint l = rows; l < m; ++l) *A(l, j) = zero<T>();
        }
    }
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(orgql)
