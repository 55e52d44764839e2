// ggbal: balancing of a pencil. The permutation isolates eigenvalues: a row whose only entry in
// the active columns of A and B lies in one column goes to the bottom with that column, a column
// whose only entry in the active rows lies in one row goes to the top with that row. The scaling
// is Ward's: the powers of two D_l, D_r whose logarithms minimise the sum of squared logarithms
// of the scaled nonzero entries, found by conjugate gradients on the normal equations (the
// scaling is then exact).

#include <cmath>

#include "lapack/generalized/generalized.hpp"
#include "lapack/generalized/generalized_support.hpp"

namespace zor {

namespace {

template <class T>
bool nonzero(const OneBased<T>& a, const OneBased<T>& b, zint i, zint j) {
    return !is_zero(a(i, j)) || !is_zero(b(i, j));
}

// Exchanges rows r1, r2 over columns first .. n and columns c1, c2 over rows 1 .. last of A and B.
template <class T>
void exchange(const OneBased<T>& a, const OneBased<T>& b, zint n, zint r1, zint r2, zint first, zint c1,
              zint c2, zint last) {
    if (r1 != r2) {
        Blas<T>::swap(n - first + 1, a.at(r1, first), a.ld, a.at(r2, first), a.ld);
        Blas<T>::swap(n - first + 1, b.at(r1, first), b.ld, b.at(r2, first), b.ld);
    }
    if (c1 != c2) {
        Blas<T>::swap(last, a.at(1, c1), 1, a.at(1, c2), 1);
        Blas<T>::swap(last, b.at(1, c1), 1, b.at(1, c2), 1);
    }
}

// The one column (row) of rows (columns) k .. l holding the entries of row (column) `line`, or 0
// when two hold some; a line without entries answers `empty`.
template <class T>
zint single_entry(const OneBased<T>& a, const OneBased<T>& b, zint line, zint k, zint l, bool row,
                  zint empty) {
    zint found = 0;
    for (zint j = k; j <= l; ++j) {
        if (row ? nonzero(a, b, line, j) : nonzero(a, b, j, line)) {
            if (found != 0) return 0;
            found = j;
        }
    }
    return found == 0 ? empty : found;
}

// Ward's scaling of rows and columns ilo .. ihi: the exponents by preconditioned conjugate
// gradients (at most the order + 2 steps), rounded and kept where no scaled row or column
// overflows.
template <class T>
void scale_pencil(zint n, const OneBased<T>& a, const OneBased<T>& b, zint ilo, zint ihi, double* lscale,
                  double* rscale, double* work) {
    const zint nr = ihi - ilo + 1;
    // Unknowns: the row exponents x(0 .. nr - 1) in lscale, the column ones in rscale; work holds
    // the residual, the direction and its product (2 nr each).
    double* xr = lscale + ilo - 1;
    double* xc = rscale + ilo - 1;
    double* res = work;
    double* dir = work + 2 * nr;
    double* prod = work + 4 * nr;
    // Every nonzero entry of A and B in the active block, with log2 of its magnitude.
    auto for_entries = [&](auto&& visit) {
        for (zint j = ilo; j <= ihi; ++j)
            for (zint i = ilo; i <= ihi; ++i) {
                if (!is_zero(a(i, j))) visit(i - ilo, j - ilo, std::log2(abs(a(i, j))));
                if (!is_zero(b(i, j))) visit(i - ilo, j - ilo, std::log2(abs(b(i, j))));
            }
    };
    // The normal equations' diagonal (entries per row and column) is the preconditioner.
    auto precondition = [&](zint k) {
        double c = 0.0;
        if (k < nr) {
            const zint i = ilo + k;
            for (zint j = ilo; j <= ihi; ++j)
                c += (is_zero(a(i, j)) ? 0.0 : 1.0) + (is_zero(b(i, j)) ? 0.0 : 1.0);
        } else {
            const zint j = ilo + k - nr;
            for (zint i = ilo; i <= ihi; ++i)
                c += (is_zero(a(i, j)) ? 0.0 : 1.0) + (is_zero(b(i, j)) ? 0.0 : 1.0);
        }
        return c > 0.0 ? 1.0 / c : 0.0;
    };
    // The right-hand side is minus the sums of log2 |x| over each row and column; x starts at 0.
    for (zint i = 0; i < 2 * nr; ++i) res[i] = 0.0;
    for (zint i = 0; i < nr; ++i) xr[i] = xc[i] = 0.0;
    for_entries([&](zint i, zint j, double t) {
        res[i] -= t;
        res[nr + j] -= t;
    });
    double rho = 0.0;
    for (zint i = 0; i < 2 * nr; ++i) {
        dir[i] = precondition(i) * res[i];
        rho += dir[i] * res[i];
    }
    // Exponents are rounded to integers: a residual this small changes none of them.
    for (zint step = 0; step < nr + 2 && rho > 1e-6; ++step) {
        for (zint i = 0; i < 2 * nr; ++i) prod[i] = 0.0;
        for_entries([&](zint i, zint j, double) {
            const double s = dir[i] + dir[nr + j];
            prod[i] += s;
            prod[nr + j] += s;
        });
        double pq = 0.0;
        for (zint i = 0; i < 2 * nr; ++i) pq += dir[i] * prod[i];
        if (!(pq > 0.0)) break;
        const double alpha = rho / pq;
        for (zint i = 0; i < nr; ++i) {
            xr[i] += alpha * dir[i];
            xc[i] += alpha * dir[nr + i];
        }
        double rho_next = 0.0;
        for (zint i = 0; i < 2 * nr; ++i) {
            res[i] -= alpha * prod[i];
            rho_next += precondition(i) * res[i] * res[i];
        }
        const double beta = rho_next / rho;
        for (zint i = 0; i < 2 * nr; ++i) dir[i] = precondition(i) * res[i] + beta * dir[i];
        rho = rho_next;
    }
    // Rounded exponents, limited so that the largest entry of a scaled row or column stays finite
    // and above the underflow threshold.
    constexpr double kMaxExponent = 1021.0, kMinExponent = -1021.0;
    for (zint i = ilo; i <= ihi; ++i) {
        double big = 0.0;
        for (zint j = ilo; j <= n; ++j) big = std::fmax(big, std::fmax(abs(a(i, j)), abs(b(i, j))));
        const double top = big > 0.0 ? std::ceil(std::log2(big)) : 0.0;
        double e = std::nearbyint(xr[i - ilo]);
        e = std::fmin(std::fmax(e, kMinExponent - top), kMaxExponent - top);
        lscale[i - 1] = std::ldexp(1.0, static_cast<int>(e));
    }
    for (zint j = ilo; j <= ihi; ++j) {
        double big = 0.0;
        for (zint i = 1; i <= ihi; ++i) big = std::fmax(big, std::fmax(abs(a(i, j)), abs(b(i, j))));
        const double top = big > 0.0 ? std::ceil(std::log2(big)) : 0.0;
        double e = std::nearbyint(xc[j - ilo]);
        e = std::fmin(std::fmax(e, kMinExponent - top), kMaxExponent - top);
        rscale[j - 1] = std::ldexp(1.0, static_cast<int>(e));
    }
    for (zint i = ilo; i <= ihi; ++i) {
        Blas<T>::scal_real(n - ilo + 1, lscale[i - 1], a.at(i, ilo), a.ld);
        Blas<T>::scal_real(n - ilo + 1, lscale[i - 1], b.at(i, ilo), b.ld);
    }
    for (zint j = ilo; j <= ihi; ++j) {
        Blas<T>::scal_real(ihi, rscale[j - 1], a.at(1, j), 1);
        Blas<T>::scal_real(ihi, rscale[j - 1], b.at(1, j), 1);
    }
}

}  // namespace

template <class T>
void ggbal(char job, zint n, T* a, zint lda, T* b, zint ldb, zint& ilo, zint& ihi, double* lscale,
           double* rscale, double* work, zint& info) {
    info = check_arguments(routine_name<T>("DGGBAL", "ZGGBAL"),
                           {{!lsame(job, 'N') && !lsame(job, 'P') && !lsame(job, 'S') && !lsame(job, 'B'), 1},
                            {n < 0, 2},
                            {lda < max_of(1, n), 4},
                            {ldb < max_of(1, n), 6}});
    if (info != 0) return;
    ilo = 1;
    ihi = n;
    if (n == 0) return;
    for (zint i = 0; i < n; ++i) lscale[i] = rscale[i] = 1.0;
    if (lsame(job, 'N') || n == 1) return;
    const OneBased<T> A{a, lda}, B{b, ldb};
    zint k = 1, l = n;
    if (!lsame(job, 'S')) {
        // Rows with one entry in the active columns go to the bottom, one at a time, the search
        // restarting after each exchange (it at most n times, each over at most n rows).
        for (bool found = true; found && l > k;) {
            found = false;
            for (zint i = l; i >= k; --i) {
                const zint jp = single_entry(A, B, i, k, l, true, l);
                if (jp == 0) continue;
                lscale[l - 1] = static_cast<double>(i);
                rscale[l - 1] = static_cast<double>(jp);
                exchange(A, B, n, i, l, k, jp, l, l);
                --l;
                found = true;
                break;
            }
        }
        // Then columns with one entry in the active rows go to the top.
        for (bool found = true; found && l > k;) {
            found = false;
            for (zint j = k; j <= l; ++j) {
                const zint ip = single_entry(A, B, j, k, l, false, k);
                if (ip == 0) continue;
                lscale[k - 1] = static_cast<double>(ip);
                rscale[k - 1] = static_cast<double>(j);
                exchange(A, B, n, ip, k, k, j, k, l);
                ++k;
                found = true;
                break;
            }
        }
        if (l == k) {
            lscale[k - 1] = rscale[k - 1] = 1.0;
        }
    }
    ilo = k;
    ihi = l;
    if (lsame(job, 'P') || ilo == ihi) return;
    scale_pencil(n, A, B, ilo, ihi, lscale, rscale, work);
}

}  // namespace zor

ZOR_INSTANTIATE(ggbal)
