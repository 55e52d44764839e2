// gebrd: the blocked reduction to bidiagonal form. Panels of NB rows and columns are reduced by
// labrd, which returns X and Y, and the rest of the matrix is updated by A := A - V Yᴴ - X Uᴴ (two
// gemm calls: half the work of the reduction is in them); the last rows and columns (the crossover
// NX, or all of them for small matrices) go through gebd2.

#include "lapack/lapack.hpp"
#include "lapack/svd/svd.hpp"

namespace zor {

namespace {

struct BrdBlocking {
    zint nb;         // block size; blocked while nb < min(m, n) - nx
    zint crossover;  // the trailing min(m, n) - ... steps that gebd2 reduces
    zint optimal;    // the workspace query's answer
};

// NB = ilaenv(1), the crossover max(NB, ilaenv(3)); with less workspace than (m + n)·NB, the block
// shrinks to what fits, down to NBMIN (ilaenv(2)); below that the reduction is unblocked.
BrdBlocking plan_gebrd(const char* name, zint m, zint n, zint lwork) {
    const zint k = min_of(m, n);
    BrdBlocking plan{max_of(1, ilaenv(1, name, " ", m, n, -1, -1)), k, 0};
    plan.optimal = max_of(1, (m + n) * plan.nb);
    if (plan.nb > 1 && plan.nb < k) {
        plan.crossover = max_of(plan.nb, ilaenv(3, name, " ", m, n, -1, -1));
        if (plan.crossover < k && lwork != -1 && lwork < (m + n) * plan.nb) {
            const zint nbmin = ilaenv(2, name, " ", m, n, -1, -1);
            if (lwork >= (m + n) * nbmin) {
                plan.nb = lwork / (m + n);
            } else {
                plan.nb = 1;
                plan.crossover = k;
            }
        }
    }
    return plan;
}

}  // namespace

template <class T>
void gebrd(zint m, zint n, T* a, zint lda, double* d, double* e, T* tauq, T* taup, T* work, zint lwork,
           zint& info) {
    const char* name = routine_name<T>("DGEBRD", "ZGEBRD");
    const bool query = lwork == -1;
    info = check_arguments(
        name,
        {{m < 0, 1}, {n < 0, 2}, {lda < max_of(1, m), 4}, {lwork < max_of(1, max_of(m, n)) && !query, 10}});
    if (info != 0) return;
    const BrdBlocking plan = plan_gebrd(name, m, n, lwork);
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    if (query) return;
    const zint k = min_of(m, n);
    if (k == 0) {
        work[0] = one<T>();
        return;
    }
    const auto A = [&](zint i, zint j) -> T* { return a + i + j * lda; };
    const zint nb = plan.nb;
    const zint ldx = m, ldy = n;
    T* x = work;
    T* y = work + ldx * nb;
    const T one = zor::one<T>(), minus_one = -one;
    zint i = 0;
    if (nb > 1) {
        for (; i < k - plan.crossover; i += nb) {
            labrd(m - i, n - i, nb, A(i, i), lda, d + i, e + i, tauq + i, taup + i, x, ldx, y, ldy);
            const zint rows = m - i - nb, cols = n - i - nb;
            Blas<T>::gemm('N', kAdjoint<T>, rows, cols, nb, minus_one, A(i + nb, i), lda, y + nb, ldy, one,
                          A(i + nb, i + nb), lda);
            Blas<T>::gemm('N', 'N', rows, cols, nb, minus_one, x + nb, ldx, A(i, i + nb), lda, one,
                          A(i + nb, i + nb), lda);
            // The unit elements labrd left in the panel become B's entries again.
            for (zint j = i; j < i + nb; ++j) {
                *A(j, j) = from_real<T>(d[j]);
                if (m >= n) {
                    *A(j, j + 1) = from_real<T>(e[j]);
                } else {
                    *A(j + 1, j) = from_real<T>(e[j]);
                }
            }
        }
    }
    zint sub_info = 0;
    gebd2(m - i, n - i, A(i, i), lda, d + i, e + i, tauq + i, taup + i, work, sub_info);
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(gebrd)
