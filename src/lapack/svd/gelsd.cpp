// gelsd: the minimum-norm least-squares solution through the SVD. A and B are scaled into range,
// A is reduced to bidiagonal form (after a QR factorization when it is much taller than wide, or an
// LQ factorization when it is much wider and the workspace holds L), B is carried along by the
// reduction's Q, lalsd solves the bidiagonal problem with the rank decision, and P carries the
// solution back.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/qr/qr.hpp"
#include "lapack/svd/scaling.hpp"
#include "lapack/svd/svd.hpp"

namespace zor {

namespace {

struct GelsdPlan {
    zint minimal, optimal;
    zint smlsiz;
    bool factor_first;  // QR (m >= n) or LQ (m < n) before the reduction, when the workspace allows
    zint ldl;           // the LQ path: leading dimension of L's copy in work
};

GelsdPlan plan_gelsd(zint m, zint n, zint nrhs, zint lda, zint lwork) {
    GelsdPlan p{1, 1, ilaenv(9, "DGELSD", " ", 0, 0, 0, 0), false, 0};
    const zint k = min_of(m, n);
    if (k == 0) return p;
    const zint smlsiz = p.smlsiz;
    const zint crossover = ilaenv(6, "DGELSD", " ", m, n, nrhs, -1);
    const zint wlalsd = lalsd_work_size(k, nrhs, smlsiz);
    double w[1] = {0}, dd[1] = {0};
    zint sub = 0;
    // The optimal workspaces of the routines on each path, from their own queries.
    const auto brd = [&](zint r, zint c) {
        gebrd(r, c, w, r, dd, dd, w, w, w, -1, sub);
        return static_cast<zint>(w[0]);
    };
    const auto mbr = [&](char vect, char trans, zint r, zint kk) {
        ormbr(vect, 'L', trans, r, nrhs, kk, w, max_of(1, vect == 'Q' ? r : min_of(r, kk)), w, w,
              max_of(1, r), w, -1, sub);
        return static_cast<zint>(w[0]);
    };
    if (m >= n) {
        zint mm = m, optimal = 0;
        p.factor_first = m >= crossover;
        if (p.factor_first) {
            mm = n;
            geqrf(m, n, w, m, w, w, -1, sub);
            optimal = max_of(optimal, n + static_cast<zint>(w[0]));
            ormqr('L', 'T', m, nrhs, n, w, m, w, w, m, w, -1, sub);
            optimal = max_of(optimal, n + static_cast<zint>(w[0]));
        }
        optimal = max_of(optimal, 3 * n + brd(mm, n));
        optimal = max_of(optimal, 3 * n + mbr('Q', 'T', mm, n));
        optimal = max_of(optimal, 3 * n + mbr('P', 'N', n, n));
        optimal = max_of(optimal, 3 * n + wlalsd);
        p.minimal = max_of(3 * n + mm, max_of(3 * n + nrhs, 3 * n + wlalsd));
        p.optimal = optimal;
    } else {
        // The LQ path needs L (m by m) beside the reduction's scalars and lalsd's work.
        const zint lq_least =
            4 * m + m * m + max_of(max_of(m, 2 * m - 4), max_of(max_of(nrhs, n - 3 * m), wlalsd));
        zint optimal = 0;
        if (n >= crossover) {
            gelqf(m, n, w, m, w, w, -1, sub);
            optimal = m + static_cast<zint>(w[0]);
            optimal = max_of(optimal, m * m + 4 * m + brd(m, m));
            optimal = max_of(optimal, m * m + 4 * m + mbr('Q', 'T', m, m));
            optimal = max_of(optimal, m * m + 4 * m + mbr('P', 'N', m, m));
            ormlq('L', 'T', n, nrhs, m, w, m, w, w, n, w, -1, sub);
            optimal = max_of(optimal, m + static_cast<zint>(w[0]));
            optimal = max_of(optimal, lq_least);
            p.factor_first = lwork == -1 || lwork >= lq_least;
        } else {
            optimal = 3 * m + brd(m, n);
            optimal = max_of(optimal, 3 * m + mbr('Q', 'T', m, n));
            optimal = max_of(optimal, 3 * m + mbr('P', 'N', n, m));
            optimal = max_of(optimal, 3 * m + wlalsd);
        }
        p.minimal = max_of(3 * m + nrhs, max_of(3 * m + m, 3 * m + wlalsd));
        p.optimal = optimal;
        if (p.factor_first) {
            // L keeps the caller's leading dimension when everything fits beside it.
            const zint wide =
                max_of(max_of(4 * m + m * lda + max_of(max_of(m, 2 * m - 4), max_of(nrhs, n - 3 * m)),
                              m * lda + m + m * nrhs),
                       4 * m + m * lda + wlalsd);
            p.ldl = lwork >= wide ? lda : m;
        }
    }
    p.minimal = min_of(p.minimal, p.optimal);
    return p;
}

}  // namespace

WorkSizes gelsd_work_sizes(zint m, zint n, zint nrhs) {
    const GelsdPlan plan = plan_gelsd(m, n, nrhs, max_of(1, m), -1);
    return {plan.minimal, plan.optimal};
}

zint gelsd_iwork_size(zint m, zint n) {
    const zint k = max_of(1, min_of(m, n));
    const zint levels = lalsd_levels(k, ilaenv(9, "DGELSD", " ", 0, 0, 0, 0));
    return 3 * k * levels + 11 * k;
}

zint check_gelsd(zint m, zint n, zint nrhs, zint lda, zint ldb, zint lwork) {
    const bool dims_ok = m >= 0 && n >= 0 && nrhs >= 0;
    return check_arguments("DGELSD",
                           {{m < 0, 1},
                            {n < 0, 2},
                            {nrhs < 0, 3},
                            {lda < max_of(1, m), 5},
                            {ldb < max_of(1, max_of(m, n)), 7},
                            {dims_ok && lwork != -1 && lwork < gelsd_work_sizes(m, n, nrhs).minimal, 12}});
}

void gelsd(zint m, zint n, zint nrhs, double* a, zint lda, double* b, zint ldb, double* s, double rcond,
           zint& rank, double* work, zint lwork, zint* iwork, zint& info) {
    info = check_gelsd(m, n, nrhs, lda, ldb, lwork);
    if (info != 0) return;
    const GelsdPlan plan = plan_gelsd(m, n, nrhs, lda, lwork);
    const zint liwork = gelsd_iwork_size(m, n);
    work[0] = static_cast<double>(plan.optimal);
    iwork[0] = liwork;
    if (lwork == -1) return;
    const zint k = min_of(m, n);
    if (k == 0) {
        rank = 0;
        return;
    }
    // work(1) and iwork(1) answer the sizes on every return, a failed solve's too (lalsd uses iwork).
    const auto finish = [&] {
        work[0] = static_cast<double>(plan.optimal);
        iwork[0] = liwork;
    };
    const double smlnum = dlamch("S") / dlamch("P");
    double dummy[1];
    zint sub = 0;
    // A into [smlnum, 1 / smlnum]; a zero A has the zero solution.
    const double anrm = lange('M', m, n, a, lda, dummy);
    if (anrm == 0) {
        laset('F', max_of(m, n), nrhs, 0.0, 0.0, b, ldb);
        laset('F', k, 1, 0.0, 0.0, s, 1);
        rank = 0;
        finish();
        return;
    }
    const double a_to = range_target(anrm, smlnum);
    if (a_to != 0) lascl('G', 0, 0, anrm, a_to, m, n, a, lda, sub);
    // B likewise.
    const double bnrm = lange('M', m, nrhs, b, ldb, dummy);
    const double b_to = range_target(bnrm, smlnum);
    if (b_to != 0) lascl('G', 0, 0, bnrm, b_to, m, nrhs, b, ldb, sub);
    // The solution's rows below m start at zero.
    if (m < n) laset('F', n - m, nrhs, 0.0, 0.0, b + m, ldb);

    const auto A = [&](zint i, zint j) { return a + i + j * lda; };
    const zint smlsiz = plan.smlsiz;
    // The bidiagonal problem of the rows by cols matrix r (its scalars and lalsd's work from `at`
    // on): B := Qᵀ B, the solve with its rank decision, B := P B.
    const auto solve = [&](char uplo, zint rows, zint cols, double* r, zint ldr, double* at) {
        double* e = at;
        double* tauq = at + k;
        double* taup = at + 2 * k;
        double* rest = at + 3 * k;
        const zint left = lwork - (rest - work);
        gebrd(rows, cols, r, ldr, s, e, tauq, taup, rest, left, sub);
        ormbr('Q', 'L', 'T', rows, nrhs, cols, r, ldr, tauq, b, ldb, rest, left, sub);
        lalsd(uplo, smlsiz, k, nrhs, s, e, b, ldb, rcond, rank, rest, iwork, info);
        if (info == 0) ormbr('P', 'L', 'N', cols, nrhs, rows, r, ldr, taup, b, ldb, rest, left, sub);
        return info == 0;
    };
    if (m >= n) {
        zint rows = m;
        if (plan.factor_first) {
            // A = Q R; B := Qᵀ B; R is then reduced.
            if (geqrf(m, n, a, lda, work, work + n, lwork - n, sub)) return finish();
            ormqr('L', 'T', m, nrhs, n, a, lda, work, b, ldb, work + n, lwork - n, sub);
            if (n > 1) laset('L', n - 1, n - 1, 0.0, 0.0, A(1, 0), lda);
            rows = n;
        }
        if (!solve('U', rows, n, a, lda, work)) return finish();
    } else if (plan.factor_first) {
        // A = L Q; the m by m L is reduced in work and the solution carried back by Qᵀ.
        const zint ldl = plan.ldl;
        double* tau = work;
        if (gelqf(m, n, a, lda, tau, work + m, lwork - m, sub)) return finish();
        double* l = work + m;
        lacpy('L', m, m, a, lda, l, ldl);
        if (m > 1) laset('U', m - 1, m - 1, 0.0, 0.0, l + ldl, ldl);
        if (!solve('U', m, m, l, ldl, l + ldl * m)) return finish();
        laset('F', n - m, nrhs, 0.0, 0.0, b + m, ldb);
        ormlq('L', 'T', n, nrhs, m, a, lda, tau, b, ldb, work + m, lwork - m, sub);
    } else {
        // The lower bidiagonal reduction of A itself.
        if (!solve('L', m, n, a, lda, work)) return finish();
    }
    // Undo the scaling: the solution scales with B over A, the values with A.
    if (a_to != 0) {
        lascl('G', 0, 0, anrm, a_to, n, nrhs, b, ldb, sub);
        lascl('G', 0, 0, a_to, anrm, k, 1, s, k, sub);
    }
    if (b_to != 0) lascl('G', 0, 0, b_to, bnrm, n, nrhs, b, ldb, sub);
    finish();
}

}  // namespace zor
