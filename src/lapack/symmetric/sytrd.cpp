// sytrd: the blocked tridiagonal reduction. Panels of NB columns are reduced by latrd, which leaves
// the rest of the triangle to one rank-2k update per panel on the level-3 engine (her2k); the last
// columns (the first, for the upper triangle), below the crossover, are reduced by sytd2.

#include "lapack/lapack.hpp"
#include "lapack/symmetric/symmetric.hpp"

namespace zor {

namespace {

// The block size for the workspace given, answering the query and the carving alike: the panel's W
// is n by nb (ldwork = n). The published rule: NB from ilaenv(1); blocked only when 1 < NB < n and
// the crossover NX = max(NB, ilaenv(3)) is below n; with less workspace than n·NB the block
// shrinks to what fits, and below ilaenv(2) the reduction runs unblocked.
struct Blocking {
    zint nb = 1;
    zint crossover = 0;  // NX: the columns left to sytd2 (n when unblocked)
    zint optimal = 1;    // the query's answer
};

Blocking plan_blocks(const char* name, char uplo, zint n, zint lwork) {
    const char opts[2] = {uplo, '\0'};
    Blocking plan;
    plan.nb = ilaenv(1, name, opts, n, -1, -1, -1);
    plan.optimal = max_of(1, n * plan.nb);
    plan.crossover = n;
    if (plan.nb > 1 && plan.nb < n) {
        const zint crossover = max_of(plan.nb, ilaenv(3, name, opts, n, -1, -1, -1));
        if (crossover < n) {
            plan.crossover = crossover;
            if (lwork < n * plan.nb) {
                plan.nb = max_of(lwork / n, 1);
                if (plan.nb < ilaenv(2, name, opts, n, -1, -1, -1)) plan.crossover = n;
            }
        }
    } else {
        plan.nb = 1;
    }
    return plan;
}

}  // namespace

template <class T>
void sytrd(char uplo, zint n, T* a, zint lda, double* d, double* e, T* tau, T* work, zint lwork, zint& info) {
    const char* name = routine_name<T>("DSYTRD", "ZHETRD");
    const bool upper = lsame(uplo, 'U');
    const bool query = lwork == -1;
    info = check_arguments(
        name,
        {{!upper && !lsame(uplo, 'L'), 1}, {n < 0, 2}, {lda < max_of(1, n), 4}, {lwork < 1 && !query, 9}});
    if (info != 0) return;
    const Blocking plan = plan_blocks(name, uplo, n, lwork);
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    if (query) return;
    if (n == 0) {
        work[0] = one<T>();
        return;
    }
    const auto A = [&](zint i, zint j) -> T* { return a + i + j * lda; };
    const zint nb = plan.nb, ldwork = n;
    const T minus_one = from_real<T>(-1.0);
    zint sub_info = 0;
    if (upper) {
        // Panels from the last column; the first `rest` columns go to sytd2.
        const zint rest = n - (n - plan.crossover + nb - 1) / nb * nb;
        for (zint i = n - nb; i >= rest; i -= nb) {
            latrd(uplo, i + nb, nb, a, lda, e, tau, work, ldwork);
            Blas<T>::her2k(uplo, 'N', i, nb, minus_one, A(0, i), lda, work, ldwork, 1.0, a, lda);
            // The superdiagonal elements latrd left as the reflectors' unit entries.
            for (zint j = i; j < i + nb; ++j) {
                *A(j - 1, j) = from_real<T>(e[j - 1]);
                d[j] = real(*A(j, j));
            }
        }
        sytd2(uplo, rest, a, lda, d, e, tau, sub_info);
    } else {
        zint i = 0;
        for (; i < n - plan.crossover; i += nb) {
            latrd(uplo, n - i, nb, A(i, i), lda, e + i, tau + i, work, ldwork);
            Blas<T>::her2k(uplo, 'N', n - i - nb, nb, minus_one, A(i + nb, i), lda, work + nb, ldwork, 1.0,
                           A(i + nb, i + nb), lda);
            for (zint j = i; j < i + nb; ++j) {
                *A(j + 1, j) = from_real<T>(e[j]);
                d[j] = real(*A(j, j));
            }
        }
        sytd2(uplo, n - i, A(i, i), lda, d + i, e + i, tau + i, sub_info);
    }
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(sytrd)
