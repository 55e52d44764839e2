// bdsqr: the SVD of a bidiagonal matrix by the implicit zero-shift and shifted QR iterations of
// Demmel and Kahan, with their relative-accuracy convergence criteria.

#include <algorithm>
#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/condensed/bidiagonal_support.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

constexpr zint kSweepsPerValue = 6;  // the iteration limit: 6 n sweeps over n rows

// The transformations of one sweep, recorded so that they can be applied to the vectors as
// sequences of plane rotations: the right ones (cr, sr) and the left ones (cl, sl).
struct Sweep {
    double* cr;
    double* sr;
    double* cl;
    double* sl;
};

// The singular vectors' updates for a sweep over rows ll..m (zero-based, inclusive). A downward
// sweep applies its rotations first to last, an upward one last to first.
struct Vectors {
    zint ncvt, nru, ncc;
    double* vt;
    zint ldvt;
    double* u;
    zint ldu;
    double* c;
    zint ldc;

    void apply(const Sweep& w, zint ll, zint m, bool downward) const {
        const zint rows = m - ll + 1;
        const char direct = downward ? 'F' : 'B';
        if (ncvt > 0) lasr('L', 'V', direct, rows, ncvt, w.cr, w.sr, vt + ll, ldvt);
        if (nru > 0) lasr('R', 'V', direct, nru, rows, w.cl, w.sl, u + ll * ldu, ldu);
        if (ncc > 0) lasr('L', 'V', direct, rows, ncc, w.cl, w.sl, c + ll, ldc);
    }
    void rotate_pair(zint i, double cosr, double sinr, double cosl, double sinl) const {
        if (ncvt > 0) drot(ncvt, vt + i, ldvt, vt + i + 1, ldvt, cosr, sinr);
        if (nru > 0) drot(nru, u + i * ldu, 1, u + (i + 1) * ldu, 1, cosl, sinl);
        if (ncc > 0) drot(ncc, c + i, ldc, c + i + 1, ldc, cosl, sinl);
    }
    void swap(zint i, zint j) const {
        if (ncvt > 0) dswap(ncvt, vt + i, ldvt, vt + j, ldvt);
        if (nru > 0) dswap(nru, u + i * ldu, 1, u + j * ldu, 1);
        if (ncc > 0) dswap(ncc, c + i, ldc, c + j, ldc);
    }
};

// Chases the bulge of one QR sweep with zero shift (Demmel and Kahan's variant, which keeps the
// relative accuracy of small values) over rows ll..m, downward or upward.
void zero_shift_sweep(double* d, double* e, zint ll, zint m, bool downward, const Sweep& w) {
    double cs = 1.0, oldcs = 1.0, sn = 0.0, oldsn = 0.0, r = 0.0;
    if (downward) {
        for (zint i = ll; i < m; ++i) {
            lartg(d[i] * cs, e[i], cs, sn, r);
            if (i > ll) e[i - 1] = oldsn * r;
            lartg(oldcs * r, d[i + 1] * sn, oldcs, oldsn, d[i]);
            const zint k = i - ll;
            w.cr[k] = cs;
            w.sr[k] = sn;
            w.cl[k] = oldcs;
            w.sl[k] = oldsn;
        }
        const double h = d[m] * cs;
        d[m] = h * oldcs;
        e[m - 1] = h * oldsn;
    } else {
        for (zint i = m; i > ll; --i) {
            lartg(d[i] * cs, e[i - 1], cs, sn, r);
            if (i < m) e[i] = oldsn * r;
            lartg(oldcs * r, d[i - 1] * sn, oldcs, oldsn, d[i]);
            const zint k = i - ll - 1;
            w.cr[k] = oldcs;
            w.sr[k] = -oldsn;
            w.cl[k] = cs;
            w.sl[k] = -sn;
        }
        const double h = d[ll] * cs;
        d[ll] = h * oldcs;
        e[ll] = h * oldsn;
    }
}

// One implicitly shifted QR sweep over rows ll..m.
void shifted_sweep(double* d, double* e, zint ll, zint m, bool downward, double shift, const Sweep& w) {
    double cosr, sinr, cosl, sinl, r;
    if (downward) {
        double f = (std::fabs(d[ll]) - shift) * (std::copysign(1.0, d[ll]) + shift / d[ll]);
        double g = e[ll];
        for (zint i = ll; i < m; ++i) {
            lartg(f, g, cosr, sinr, r);
            if (i > ll) e[i - 1] = r;
            f = cosr * d[i] + sinr * e[i];
            e[i] = cosr * e[i] - sinr * d[i];
            g = sinr * d[i + 1];
            d[i + 1] = cosr * d[i + 1];
            lartg(f, g, cosl, sinl, r);
            d[i] = r;
            f = cosl * e[i] + sinl * d[i + 1];
            d[i + 1] = cosl * d[i + 1] - sinl * e[i];
            if (i + 1 < m) {
                g = sinl * e[i + 1];
                e[i + 1] = cosl * e[i + 1];
            }
            const zint k = i - ll;
            w.cr[k] = cosr;
            w.sr[k] = sinr;
            w.cl[k] = cosl;
            w.sl[k] = sinl;
        }
        e[m - 1] = f;
    } else {
        double f = (std::fabs(d[m]) - shift) * (std::copysign(1.0, d[m]) + shift / d[m]);
        double g = e[m - 1];
        for (zint i = m; i > ll; --i) {
            lartg(f, g, cosr, sinr, r);
            if (i < m) e[i] = r;
            f = cosr * d[i] + sinr * e[i - 1];
            e[i - 1] = cosr * e[i - 1] - sinr * d[i];
            g = sinr * d[i - 1];
            d[i - 1] = cosr * d[i - 1];
            lartg(f, g, cosl, sinl, r);
            d[i] = r;
            f = cosl * e[i - 1] + sinl * d[i - 1];
            d[i - 1] = cosl * d[i - 1] - sinl * e[i - 1];
            if (i > ll + 1) {
                g = sinl * e[i - 2];
                e[i - 2] = cosl * e[i - 2];
            }
            const zint k = i - ll - 1;
            w.cr[k] = cosl;
            w.sr[k] = -sinl;
            w.cl[k] = cosr;
            w.sl[k] = -sinr;
        }
        e[ll] = f;
    }
}

// Signs moved into VT and the values sorted decreasingly (selection sort: one exchange of vectors
// per value at most).
void finish(zint n, double* d, const Vectors& v) {
    for (zint i = 0; i < n; ++i) {
        if (d[i] < 0.0) {
            d[i] = -d[i];
            if (v.ncvt > 0) dscal(v.ncvt, -1.0, v.vt + i, v.ldvt);
        }
    }
    for (zint i = 0; i + 1 < n; ++i) {
        const zint last = n - 1 - i;
        zint smallest = 0;
        for (zint j = 1; j <= last; ++j) {
            if (d[j] <= d[smallest]) smallest = j;
        }
        if (smallest != last) {
            std::swap(d[smallest], d[last]);
            v.swap(smallest, last);
        }
    }
}

}  // namespace

void bdsqr(char uplo, zint n, zint ncvt, zint nru, zint ncc, double* d, double* e, double* vt, zint ldvt,
           double* u, zint ldu, double* c, zint ldc, double* work, zint& info) {
    const bool lower = lsame(uplo, 'L');
    info =
        check_arguments("DBDSQR", {{!lsame(uplo, 'U') && !lower, 1},
                                   {n < 0, 2},
                                   {ncvt < 0, 3},
                                   {nru < 0, 4},
                                   {ncc < 0, 5},
                                   {(ncvt == 0 && ldvt < 1) || (ncvt > 0 && ldvt < std::max<zint>(1, n)), 9},
                                   {ldu < std::max<zint>(1, nru), 11},
                                   {(ncc == 0 && ldc < 1) || (ncc > 0 && ldc < std::max<zint>(1, n)), 13}});
    if (info != 0 || n == 0) return;
    const Vectors vectors{ncvt, nru, ncc, vt, ldvt, u, ldu, c, ldc};
    if (n == 1) {
        finish(n, d, vectors);
        return;
    }
    // NaN or infinity would keep every convergence test false: refuse before iterating.
    if (bidiagonal::has_nonfinite(n, d, e)) {
        info = n - 1;
        return;
    }

    const zint nm1 = n - 1;
    const double eps = dlamch("E"), unfl = dlamch("S");
    // The convergence threshold has an absolute floor of a few hundred underflow thresholds, and
    // the shifts square the entries: a matrix far from norm one is scaled by a power of two
    // (exact) and the values scaled back at the end.
    double largest = 0.0;
    for (zint i = 0; i < n; ++i) largest = std::max(largest, std::fabs(d[i]));
    for (zint i = 0; i < nm1; ++i) largest = std::max(largest, std::fabs(e[i]));
    int exponent = 0;
    if (largest != 0.0 && (largest < 0x1p-400 || largest > 0x1p400)) {
        exponent = -std::ilogb(largest);
        for (zint i = 0; i < n; ++i) d[i] = std::ldexp(d[i], exponent);
        for (zint i = 0; i < nm1; ++i) e[i] = std::ldexp(e[i], exponent);
    }
    const auto unscale = [&] {
        if (exponent == 0) return;
        for (zint i = 0; i < n; ++i) d[i] = std::ldexp(d[i], -exponent);
        for (zint i = 0; i < nm1; ++i) e[i] = std::ldexp(e[i], -exponent);
    };
    // A lower bidiagonal matrix is made upper by rotations from the left, applied to U and C.
    if (lower) {
        bidiagonal::chase(nm1, d, e, [&](zint i, double cs, double sn) {
            work[i] = cs;
            work[nm1 + i] = sn;
        });
        if (nru > 0) lasr('R', 'V', 'F', nru, n, work, work + nm1, u, ldu);
        if (ncc > 0) lasr('L', 'V', 'F', n, ncc, work, work + nm1, c, ldc);
    }

    // The tolerance of relative accuracy, and the absolute threshold from an estimate of the
    // smallest singular value.
    const double tolmul = std::max(10.0, std::min(100.0, std::pow(eps, -0.125)));
    const double tol = tolmul * eps;
    double smax = 0.0;
    for (zint i = 0; i < n; ++i) smax = std::max(smax, std::fabs(d[i]));
    for (zint i = 0; i < nm1; ++i) smax = std::max(smax, std::fabs(e[i]));
    double sminoa = std::fabs(d[0]);
    if (sminoa != 0.0) {
        double mu = sminoa;
        for (zint i = 1; i < n && sminoa != 0.0; ++i) {
            mu = std::fabs(d[i]) * (mu / (mu + std::fabs(e[i - 1])));
            sminoa = std::min(sminoa, mu);
        }
    }
    sminoa /= std::sqrt(static_cast<double>(n));
    const double dn = static_cast<double>(n);
    const double thresh = std::max(tol * sminoa, static_cast<double>(kSweepsPerValue) * (dn * (dn * unfl)));

    const Sweep sweep{work, work + nm1, work + 2 * nm1, work + 3 * nm1};
    // Iterations are counted in rows swept; n of them make one unit of the limit.
    const zint limit = kSweepsPerValue * n;
    zint units = 0, swept = 0;
    zint oldll = -1, oldm = -1;
    bool downward = true;
    zint m = n - 1;  // the bottom row of the part not yet converged
    while (m > 0) {
        if (swept > n) {
            swept -= n;
            if (++units >= limit) {
                info = 0;
                for (zint i = 0; i < nm1; ++i) {
                    if (e[i] != 0.0) ++info;
                }
                unscale();
                return;
            }
        }
        // The unreduced block ll..m above the bottom, split at a negligible off-diagonal.
        smax = std::fabs(d[m]);
        zint ll = -1;
        for (zint i = m - 1; i >= 0; --i) {
            const double abss = std::fabs(d[i]), abse = std::fabs(e[i]);
            if (abse <= thresh) {
                e[i] = 0.0;
                ll = i;
                break;
            }
            smax = std::max({smax, abss, abse});
        }
        if (ll == m - 1) {
            --m;  // d[m] is a converged value
            continue;
        }
        ++ll;  // the block's first row (zero when nothing split)

        if (ll == m - 1) {
            // A 2 by 2 block is finished directly.
            double sigmn, sigmx, sinr, cosr, sinl, cosl;
            lasv2(d[m - 1], e[m - 1], d[m], sigmn, sigmx, sinr, cosr, sinl, cosl);
            d[m - 1] = sigmx;
            e[m - 1] = 0.0;
            d[m] = sigmn;
            vectors.rotate_pair(m - 1, cosr, sinr, cosl, sinl);
            m -= 2;
            continue;
        }

        // A new block chases its bulge from the larger end towards the smaller.
        if (ll > oldm || m < oldll) downward = std::fabs(d[ll]) >= std::fabs(d[m]);

        // Convergence tests: the last (or first) off-diagonal against its diagonal, then the
        // relative test along the whole block, which also estimates the smallest value.
        double sminl = 0.0;
        bool split = false;
        if (downward) {
            if (std::fabs(e[m - 1]) <= tol * std::fabs(d[m])) {
                e[m - 1] = 0.0;
                continue;
            }
            double mu = std::fabs(d[ll]);
            sminl = mu;
            for (zint i = ll; i < m; ++i) {
                if (std::fabs(e[i]) <= tol * mu) {
                    e[i] = 0.0;
                    split = true;
                    break;
                }
                mu = std::fabs(d[i + 1]) * (mu / (mu + std::fabs(e[i])));
                sminl = std::min(sminl, mu);
            }
        } else {
            if (std::fabs(e[ll]) <= tol * std::fabs(d[ll])) {
                e[ll] = 0.0;
                continue;
            }
            double mu = std::fabs(d[m]);
            sminl = mu;
            for (zint i = m - 1; i >= ll; --i) {
                if (std::fabs(e[i]) <= tol * mu) {
                    e[i] = 0.0;
                    split = true;
                    break;
                }
                mu = std::fabs(d[i]) * (mu / (mu + std::fabs(e[i])));
                sminl = std::min(sminl, mu);
            }
        }
        if (split) continue;
        oldll = ll;
        oldm = m;

        // The shift: zero when it could not be resolved against the smallest value (the
        // zero-shift sweep keeps high relative accuracy), else the smaller value of the trailing
        // (or leading) 2 by 2.
        double shift = 0.0;
        if (!(dn * tol * (sminl / smax) <= std::max(eps, 0.01 * tol))) {
            double sll, r;
            if (downward) {
                sll = std::fabs(d[ll]);
                las2(d[m - 1], e[m - 1], d[m], shift, r);
            } else {
                sll = std::fabs(d[m]);
                las2(d[ll], e[ll], d[ll + 1], shift, r);
            }
            if (sll > 0.0 && (shift / sll) * (shift / sll) < eps) shift = 0.0;
        }
        swept += m - ll;

        if (shift == 0.0) {
            zero_shift_sweep(d, e, ll, m, downward, sweep);
        } else {
            shifted_sweep(d, e, ll, m, downward, shift, sweep);
        }
        vectors.apply(sweep, ll, m, downward);
        double& last = downward ? e[m - 1] : e[ll];
        if (std::fabs(last) <= thresh) last = 0.0;
    }
    unscale();
    finish(n, d, vectors);
}

}  // namespace zor
