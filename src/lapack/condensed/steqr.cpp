// steqr: the eigenvalues and eigenvectors of a symmetric tridiagonal matrix by implicitly shifted
// QL/QR, the rotations of each sweep gathered and applied to Z in one pass.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/condensed/tridiagonal_steps.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

constexpr zint kStepsPerEigenvalue = 30;

// One block's iteration, walking from row l towards row lend in direction dir (+1 QL, -1 QR): the
// sweeps chase from the far end m back to l and eigenvalues deflate at l. Row r and row r + dir are
// coupled by e(coupling(r)). Z (n rows; null for no vectors) receives the rotations, kept in
// work(0 .. n - 2) (cosines) and work(n - 1 .. 2n - 3) (sines) until the sweep is over.
struct Sweeps {
    int dir;
    zint n;
    double* d;
    double* e;
    double* z;
    zint ldz;
    double* work;

    zint coupling(zint r) const { return dir > 0 ? r : r - 1; }

    // Applies the rotations stored for couplings first .. first + count - 2 to columns first ..
    // first + count - 1 of Z, from the far end towards l: backwards for QL, forwards for QR.
    void rotate_vectors(zint first, zint count) const {
        lasr('R', 'V', dir > 0 ? 'B' : 'F', n, count, work + first, work + n - 1 + first, z + first * ldz,
             ldz);
    }

    // The 2 by 2 block of rows l and l + dir, solved directly.
    void solve_pair(zint l) const {
        const zint top = dir > 0 ? l : l - 1;
        double rt1, rt2;
        if (z != nullptr) {
            double c, s;
            laev2(d[top], e[top], d[top + 1], rt1, rt2, c, s);
            work[top] = c;
            work[n - 1 + top] = s;
            rotate_vectors(top, 2);
        } else {
            lae2(d[top], e[top], d[top + 1], rt1, rt2);
        }
        d[top] = rt1;
        d[top + 1] = rt2;
        e[top] = 0.0;
    }

    // One implicit sweep over rows m .. l with the shift of the 2 by 2 block at l.
    void sweep(zint l, zint m) const {
        double g = (d[l + dir] - d[l]) / (2.0 * e[coupling(l)]);
        double r = lapy2(g, 1.0);
        g = d[m] - d[l] + e[coupling(l)] / (g + std::copysign(r, g));
        double s = 1.0, c = 1.0, p = 0.0;
        for (zint row = m - dir;; row -= dir) {
            const zint k = coupling(row);
            const double f = s * e[k];
            const double b = c * e[k];
            lartg(g, f, c, s, r);
            if (row != m - dir) e[coupling(row + dir)] = r;
            g = d[row + dir] - p;
            r = (d[row] - g) * s + 2.0 * c * b;
            p = s * r;
            d[row + dir] = g + p;
            g = c * r - b;
            if (z != nullptr) {
                work[k] = c;
                work[n - 1 + k] = dir > 0 ? -s : s;
            }
            if (row == l) break;
        }
        if (z != nullptr) rotate_vectors(dir > 0 ? l : m, dir > 0 ? m - l + 1 : l - m + 1);
        d[l] -= p;
        e[coupling(l)] = g;
    }

    // Iterates until every eigenvalue of the block has converged (true) or the budget shared by all
    // blocks is spent (false).
    bool iterate(zint l, zint lend, double eps2, double safe_min, zint& steps, zint max_steps) const {
        while (dir > 0 ? l <= lend : l >= lend) {
            zint m = l;
            for (; m != lend; m += dir) {
                const double t = std::fabs(e[coupling(m)]);
                if (t * t <= (eps2 * std::fabs(d[m])) * std::fabs(d[m + dir]) + safe_min) break;
            }
            if (m != lend) e[coupling(m)] = 0.0;
            if (m == l) {
                l += dir;
                continue;
            }
            if (m == l + dir) {
                solve_pair(l);
                l += 2 * dir;
                continue;
            }
            if (steps == max_steps) return false;
            ++steps;
            sweep(l, m);
        }
        return true;
    }
};

}  // namespace

void steqr(char compz, zint n, double* d, double* e, double* z, zint ldz, double* work, zint& info) {
    const int vectors = lsame(compz, 'N') ? 0 : lsame(compz, 'V') ? 1 : lsame(compz, 'I') ? 2 : -1;
    info = check_arguments(
        "DSTEQR", {{vectors < 0, 1}, {n < 0, 2}, {ldz < 1 || (vectors > 0 && ldz < max_of(1, n)), 6}});
    if (info != 0 || n == 0) return;
    if (n == 1) {
        if (vectors == 2) z[0] = 1.0;
        return;
    }
    const double eps = dlamch("E");
    const double safe_min = dlamch("S");
    if (vectors == 2) laset('A', n, n, 0.0, 1.0, z, ldz);
    const zint max_steps = n * kStepsPerEigenvalue;
    zint steps = 0;
    info = iterate_by_blocks(n, d, e, true, [&](zint l, zint lend) {
        const Sweeps sweeps{l < lend ? 1 : -1, n, d, e, vectors > 0 ? z : nullptr, ldz, work};
        return sweeps.iterate(l, lend, eps * eps, safe_min, steps, max_steps);
    });
    if (info != 0) return;
    if (vectors == 0) {
        lasrt('I', n, d, info);
    } else {
        sort_with_vectors(n, d, z, ldz);
    }
}

}  // namespace zor
