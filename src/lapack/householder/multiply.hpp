#pragma once
// What the routines that apply the Q of a QR or LQ factorization share: their argument checks
// (the same numbering for all four), and the products themselves, written once for both: the QR's
// Q = H(1) ... H(k) has its vectors below the diagonal of A's columns, the LQ's Q = H(k)ᴴ ... H(1)ᴴ
// has conj(v) right of the diagonal of A's rows.

#include "lapack/householder/blocking.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"

namespace zor {

// The widest block the blocked products use, and the room for its T at the end of the work array.
inline constexpr zint kProductMaxBlock = 64;
inline constexpr zint kProductTRows = kProductMaxBlock + 1;
inline constexpr zint kProductTSize = kProductTRows * kProductMaxBlock;

// Checks 1 side, 2 trans ("N" or "T" real, "N" or "C" complex), 3 m, 4 n, 5 k (0 <= k <= nq),
// 7 lda >= max(1, nq (QR) or k (LQ)), 10 ldc >= max(1, m), 12 the workspace (`lwork_short`).
template <class T>
zint check_q_product(const char* name, bool lq, char side, char trans, zint m, zint n, zint k, zint lda,
                     zint ldc, bool lwork_short) {
    const bool left = lsame(side, 'L');
    const zint nq = left ? m : n;
    return check_arguments(name, {{!left && !lsame(side, 'R'), 1},
                                  {!lsame(trans, 'N') && !lsame(trans, kAdjoint<T>), 2},
                                  {m < 0, 3},
                                  {n < 0, 4},
                                  {k < 0 || k > nq, 5},
                                  {lda < max_of(1, lq ? k : nq), 7},
                                  {ldc < max_of(1, m), 10},
                                  {lwork_short, 12}});
}

// Whether op(Q) C (left) or C op(Q) (right) meets the first reflector first.
inline bool q_product_forward(bool lq, bool left, bool notran) {
    // QR: Qᴴ C and C Q start with H(1); LQ: Q C and C Qᴴ start with H(1)ᴴ.
    return lq ? left == notran : left != notran;
}

// The product reflector by reflector (arguments checked; m, n, k > 0). work: n (left) or m.
template <class T>
void q_product_unblocked(bool lq, char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau,
                         T* c, zint ldc, T* work);

// orm2r and orml2: the checks, then the product reflector by reflector.
template <class T>
void q_product_one_by_one(const char* name, bool lq, char side, char trans, zint m, zint n, zint k, T* a,
                          zint lda, const T* tau, T* c, zint ldc, T* work, zint& info) {
    info = check_q_product<T>(name, lq, side, trans, m, n, k, lda, ldc, false);
    if (info != 0 || m == 0 || n == 0 || k == 0) return;
    q_product_unblocked(lq, side, trans, m, n, k, a, lda, tau, c, ldc, work);
}

// The product reflector by reflector (arguments checked; m, n, k > 0). work: n (left) or m.
template <class T>
void q_product_unblocked(bool lq, char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau,
                         T* c, zint ldc, T* work) {
    const bool left = lsame(side, 'L');
    const bool notran = lsame(trans, 'N');
    const bool forward = q_product_forward(lq, left, notran);
    const zint nq = left ? m : n;
    const zint stride = lq ? lda : 1;
    for (zint step = 0; step < k; ++step) {
        const zint i = forward ? step : k - 1 - step;
        T* v = a + i + i * lda;
        if (lq) lacgv(nq - i - 1, v + lda, lda);
        const T diagonal = *v;
        *v = one<T>();
        // H(i) for the QR's Q, H(i)ᴴ for the LQ's, and the other one for Qᴴ.
        const T tau_i = notran != lq ? tau[i] : conj(tau[i]);
        if (left) {
            larf('L', m - i, n, v, stride, tau_i, c + i, ldc, work);
        } else {
            larf('R', m, n - i, v, stride, tau_i, c + i * ldc, ldc, work);
        }
        *v = diagonal;
        if (lq) lacgv(nq - i - 1, v + lda, lda);
    }
}

// The product in blocks of reflectors through larft and larfb, with the workspace query: work is
// W (nw by nb, nw = n left or m right) then T (kProductTRows by nb).
template <class T>
void q_product(const char* name, bool lq, char side, char trans, zint m, zint n, zint k, T* a, zint lda,
               const T* tau, T* c, zint ldc, T* work, zint lwork, zint& info) {
    const bool left = lsame(side, 'L');
    const bool notran = lsame(trans, 'N');
    const zint nq = left ? m : n;
    const zint nw = max_of(1, left ? n : m);
    const bool query = lwork == -1;
    info = check_q_product<T>(name, lq, side, trans, m, n, k, lda, ldc, lwork < nw && !query);
    if (info != 0) return;
    const char opts[3] = {side, trans, '\0'};
    const ReflectorBlocking plan =
        plan_reflector_blocks(name, opts, m, n, k, k, nw, kProductTSize, lwork, kProductMaxBlock, false);
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    if (query) return;
    if (m == 0 || n == 0 || k == 0) {
        work[0] = one<T>();
        return;
    }
    if (!plan.blocked) {
        q_product_unblocked(lq, side, trans, m, n, k, a, lda, tau, c, ldc, work);
    } else {
        const zint nb = plan.nb;
        T* t = work + nw * nb;
        const bool forward = q_product_forward(lq, left, notran);
        // The LQ's block of reflectors is (H(i) ... H(i + ib - 1))ᴴ: the other op.
        const char op = (notran != lq) ? 'N' : kAdjoint<T>;
        const zint blocks = (k + nb - 1) / nb;
        for (zint b = 0; b < blocks; ++b) {
            const zint i = (forward ? b : blocks - 1 - b) * nb;
            const zint ib = min_of(nb, k - i);
            const T* v = a + i + i * lda;
            larft('F', lq ? 'R' : 'C', nq - i, ib, v, lda, tau + i, t, kProductTRows);
            if (left) {
                larfb('L', op, 'F', lq ? 'R' : 'C', m - i, n, ib, v, lda, t, kProductTRows, c + i, ldc, work,
                      nw);
            } else {
                larfb('R', op, 'F', lq ? 'R' : 'C', m, n - i, ib, v, lda, t, kProductTRows, c + i * ldc, ldc,
                      work, nw);
            }
        }
    }
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
}

}  // namespace zor

// The four products are the code above: each one's source file defines and instantiates its routine
// with one of these, named by the published routines (the real and the complex one).
#define ZOR_Q_PRODUCT_ONE_BY_ONE(routine, lq, real_name, complex_name)                                   \
    template <class T>                                                                                   \
    void zor::routine(char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c, \
                      zint ldc, T* work, zint& info) {                                                   \
        q_product_one_by_one(routine_name<T>(real_name, complex_name), lq, side, trans, m, n, k, a, lda, \
                             tau, c, ldc, work, info);                                                   \
    }                                                                                                    \
    ZOR_INSTANTIATE(routine)
#define ZOR_Q_PRODUCT_IN_BLOCKS(routine, lq, real_name, complex_name)                                      \
    template <class T>                                                                                     \
    void zor::routine(char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c,   \
                      zint ldc, T* work, zint lwork, zint& info) {                                         \
        q_product(routine_name<T>(real_name, complex_name), lq, side, trans, m, n, k, a, lda, tau, c, ldc, \
                  work, lwork, info);                                                                      \
    }                                                                                                      \
    ZOR_INSTANTIATE(routine)
