// sterf: all eigenvalues of a symmetric tridiagonal matrix by the Pal-Walker-Kahan variant of QL/QR,
// which works on the squares of the off-diagonal elements and takes no square roots in its sweeps.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/condensed/tridiagonal_steps.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

constexpr zint kStepsPerEigenvalue = 30;

// The QL/QR iteration of one block, walking from row l towards row lend in direction dir (+1 QL, -1
// QR: the sweeps chase from the far end back to l and deflate at l). Row r and row r + dir are
// coupled by e(coupling(r)).
struct Direction {
    int dir;
    zint coupling(zint r) const { return dir > 0 ? r : r - 1; }
};

// The shift: the eigenvalue nearer p of the 2 by 2 block [p rte; rte next] at l, e_squared = rte².
double wilkinson_shift(double p, double next, double e_squared) {
    const double rte = std::sqrt(e_squared);
    const double sigma = (next - p) / (2.0 * rte);
    const double r = lapy2(sigma, 1.0);
    return p - rte / (sigma + std::copysign(r, sigma));
}

// One root-free sweep with shift sigma over rows m - dir back to l (e holds squares).
void root_free_sweep(Direction w, double* d, double* e, zint l, zint m, double sigma) {
    double c = 1.0, s = 0.0;
    double gamma = d[m] - sigma;
    double p = gamma * gamma;
    for (zint r = m - w.dir;; r -= w.dir) {
        const double bb = e[w.coupling(r)];
        const double sum = p + bb;
        if (r != m - w.dir) e[w.coupling(r + w.dir)] = s * sum;
        const double old_c = c;
        c = p / sum;
        s = bb / sum;
        const double old_gamma = gamma;
        const double alpha = d[r];
        gamma = c * (alpha - sigma) - s * old_gamma;
        d[r + w.dir] = old_gamma + (alpha - gamma);
        p = c != 0.0 ? (gamma * gamma) / c : old_c * bb;
        if (r == l) break;
    }
    e[w.coupling(l)] = s * p;
    d[l] = sigma + gamma;
}

// Iterates on the block from l to lend until every eigenvalue has converged (true) or the shared
// budget of steps is spent (false).
bool iterate_block(Direction w, double* d, double* e, zint l, zint lend, double eps2, zint& steps,
                   zint max_steps) {
    while (w.dir > 0 ? l <= lend : l >= lend) {
        // The nearest row m from l on whose coupling to the next row is negligible.
        zint m = l;
        for (; m != lend; m += w.dir) {
            if (std::fabs(e[w.coupling(m)]) <= eps2 * std::fabs(d[m] * d[m + w.dir])) break;
        }
        if (m != lend) e[w.coupling(m)] = 0.0;
        if (m == l) {
            l += w.dir;
            continue;
        }
        if (m == l + w.dir) {
            double rt1, rt2;
            lae2(d[l], std::sqrt(e[w.coupling(l)]), d[l + w.dir], rt1, rt2);
            d[l] = rt1;
            d[l + w.dir] = rt2;
            e[w.coupling(l)] = 0.0;
            l += 2 * w.dir;
            continue;
        }
        if (steps == max_steps) return false;
        ++steps;
        root_free_sweep(w, d, e, l, m, wilkinson_shift(d[l], d[l + w.dir], e[w.coupling(l)]));
    }
    return true;
}

}  // namespace

void sterf(zint n, double* d, double* e, zint& info) {
    info = check_arguments("DSTERF", {{n < 0, 1}});
    if (info != 0 || n <= 1) return;
    const double eps = dlamch("E");
    const zint max_steps = n * kStepsPerEigenvalue;
    zint steps = 0;
    info = iterate_by_blocks(n, d, e, false, [&](zint l, zint lend) {
        for (zint i = min_of(l, lend); i < max_of(l, lend); ++i) e[i] *= e[i];
        return iterate_block({l < lend ? 1 : -1}, d, e, l, lend, eps * eps, steps, max_steps);
    });
    if (info == 0) lasrt('I', n, d, info);
}

}  // namespace zor
