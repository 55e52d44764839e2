// gges: the generalized Schur factorization of a pencil, optionally with the eigenvalues the
// caller selects moved to the top. The steps to the Schur pair are ggev's (qz_driver.hpp); the
// caller chooses among the eigenvalues at the scale of A and B, tgsen reorders, ggbak undoes the
// permutation on the Schur vectors and the pair and its eigenvalues are scaled back.

#include "lapack/generalized/generalized.hpp"
#include "lapack/generalized/generalized_support.hpp"
#include "lapack/generalized/qz_driver.hpp"

namespace zor {

namespace {

template <class T>
zint minimum_work(zint n) {
    if constexpr (kIsComplex<T>) {
        return max_of(1, 2 * n);
    } else {
        return n == 0 ? 1 : max_of(8 * n, 6 * n + 16);
    }
}

// The caller's answer for eigenvalue i (zero-based), in the Fortran convention.
inline bool chosen(RealPairSelect select, Eigenvalues<double> alpha, const double* beta, zint i) {
    return select(alpha.re + i, alpha.im + i, beta + i) != 0;
}
inline bool chosen(ComplexPairSelect select, Eigenvalues<zcomplex> alpha, const zcomplex* beta, zint i) {
    return select(reinterpret_cast<const zor_complex_double*>(alpha.w + i),
                  reinterpret_cast<const zor_complex_double*>(beta + i)) != 0;
}

// sdim recounted from the caller's choices after reordering (a real pair counts when either of its
// eigenvalues is chosen), and n + 2 when a chosen eigenvalue follows one that is not.
template <class T>
zint recount(zint n, PairSelect<T> select, Eigenvalues<T> alpha, const T* beta, zint& sdim) {
    zint info = 0;
    sdim = 0;
    bool lastsl = true, lst2sl = true, second_of_pair = false;
    for (zint i = 0; i < n; ++i) {
        bool cursl = chosen(select, alpha, beta, i);
        if (kIsComplex<T> || alpha.get(i).im == 0.0) {
            if (cursl) ++sdim;
            second_of_pair = false;
            if (cursl && !lastsl) info = n + 2;
        } else if (second_of_pair) {
            cursl = cursl || lastsl;
            lastsl = cursl;
            if (cursl) sdim += 2;
            second_of_pair = false;
            if (cursl && !lst2sl) info = n + 2;
        } else {
            second_of_pair = true;
        }
        lst2sl = lastsl;
        lastsl = cursl;
    }
    return info;
}

}  // namespace

template <class T>
zint check_gges(char jobvsl, char jobvsr, char sort, zint n, zint lda, zint ldb, zint ldvsl, zint ldvsr,
                zint lwork) {
    const bool wantl = lsame(jobvsl, 'V'), wantr = lsame(jobvsr, 'V');
    const int shift = kIsComplex<T> ? 1 : 0;
    return check_arguments(routine_name<T>("DGGES ", "ZGGES "),
                           {{!wantl && !lsame(jobvsl, 'N'), 1},
                            {!wantr && !lsame(jobvsr, 'N'), 2},
                            {!lsame(sort, 'S') && !lsame(sort, 'N'), 3},
                            {n < 0, 5},
                            {lda < max_of(1, n), 7},
                            {ldb < max_of(1, n), 9},
                            {ldvsl < 1 || (wantl && ldvsl < n), 15 - shift},
                            {ldvsr < 1 || (wantr && ldvsr < n), 17 - shift},
                            {lwork < minimum_work<T>(max_of(n, 0)) && lwork != -1, 19 - shift}});
}

template <class T>
void gges(char jobvsl, char jobvsr, char sort, PairSelect<T> selctg, zint n, T* a, zint lda, T* b, zint ldb,
          zint& sdim, Eigenvalues<T> alpha, T* beta, T* vsl, zint ldvsl, T* vsr, zint ldvsr, T* work,
          zint lwork, double* rwork, zint* bwork, zint& info) {
    info = check_gges<T>(jobvsl, jobvsr, sort, n, lda, ldb, ldvsl, ldvsr, lwork);
    if (info != 0) return;
    const bool wantl = lsame(jobvsl, 'V'), wantr = lsame(jobvsr, 'V'), wantst = lsame(sort, 'S');
    const zint optimal = qz_optimal_work<T>(n, wantl, minimum_work<T>(n));
    work[0] = from_real<T>(static_cast<double>(optimal));
    if (lwork == -1) return;
    sdim = 0;
    if (n == 0) return;

    QzStart start;
    const zint ierr = qz_start('S', wantl, wantr, n, a, lda, b, ldb, alpha, beta, vsl, ldvsl, vsr, ldvsr,
                               work, lwork, rwork, start);
    if (ierr != 0) {
        info = (ierr > 0 && ierr <= n) ? ierr : n + 1;
        return;
    }
    zint jerr = 0;
    if (wantst) {
        // The choice among the eigenvalues at the scale of the pencil; tgsen recomputes them.
        qz_unscale_values(start, n, alpha, beta);
        for (zint i = 0; i < n; ++i) bwork[i] = chosen(selctg, alpha, beta, i) ? 1 : 0;
        zint m = 0;
        tgsen(wantl, wantr, bwork, n, a, lda, b, ldb, alpha, beta, vsl, ldvsl, vsr, ldvsr, m, jerr);
        if (jerr == 1) info = n + 3;
    }
    if (wantl) ggbak('P', 'L', n, start.ilo, start.ihi, start.lscale, start.rscale, n, vsl, ldvsl, jerr);
    if (wantr) ggbak('P', 'R', n, start.ilo, start.ihi, start.lscale, start.rscale, n, vsr, ldvsr, jerr);
    if (start.ascaled) lascl('H', 0, 0, start.anrmto, start.anrm, n, n, a, lda, jerr);
    if (start.bscaled) lascl('U', 0, 0, start.bnrmto, start.bnrm, n, n, b, ldb, jerr);
    qz_unscale_values(start, n, alpha, beta);
    if (wantst) {
        const zint order = recount<T>(n, selctg, alpha, beta, sdim);
        if (info == 0) info = order;
    }
    work[0] = from_real<T>(static_cast<double>(optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(gges)
ZOR_INSTANTIATE(check_gges)
