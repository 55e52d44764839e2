// ormql: the Q of a QL factorization applied in blocks of reflectors (larft and larfb backward),
// or one by one when the block would not pay or the workspace holds too narrow a block.

#include "lapack/householder/multiply.hpp"
#include "lapack/symmetric/symmetric.hpp"

namespace zor {

template <class T>
void ormql(char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c, zint ldc,
           T* work, zint lwork, zint& info) {
    const char* name = routine_name<T>("DORMQL", "ZUNMQL");
    const bool left = lsame(side, 'L');
    const bool notran = lsame(trans, 'N');
    const zint nq = left ? m : n;
    const zint nw = max_of(1, left ? n : m);
    const bool query = lwork == -1;
    info = check_q_product<T>(name, false, side, trans, m, n, k, lda, ldc, lwork < nw && !query);
    if (info != 0) return;
    const char opts[3] = {side, trans, '\0'};
    // work: W (nw by nb), then T (kProductTRows by nb), as the QR and LQ products carve it.
    const ReflectorBlocking plan =
        plan_reflector_blocks(name, opts, m, n, k, k, nw, kProductTSize, lwork, kProductMaxBlock, false);
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    if (query) return;
    if (m == 0 || n == 0 || k == 0) {
        work[0] = one<T>();
        return;
    }
    if (!plan.blocked) {
        zint sub_info = 0;
        orm2l(side, trans, m, n, k, a, lda, tau, c, ldc, work, sub_info);
    } else {
        const zint nb = plan.nb;
        T* t = work + nw * nb;
        const bool forward = left == notran;
        const zint blocks = (k + nb - 1) / nb;
        for (zint b = 0; b < blocks; ++b) {
            const zint i = (forward ? b : blocks - 1 - b) * nb;
            const zint ib = min_of(nb, k - i), order = nq - k + i + ib;
            const T* v = a + i * lda;
            // The block H(i + ib - 1) ... H(i) = I - V T Vᴴ with T lower triangular.
            larft('B', 'C', order, ib, v, lda, tau + i, t, kProductTRows);
            larfb(side, trans, 'B', 'C', left ? order : m, left ? n : order, ib, v, lda, t, kProductTRows, c,
                  ldc, work, nw);
        }
    }
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(ormql)
