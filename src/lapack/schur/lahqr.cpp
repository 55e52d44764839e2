// lahqr: the QR algorithm of Francis for small Hessenberg matrices and deflation windows, one bulge
// at a time: a double shift (two real shifts or a conjugate pair) in real arithmetic, a single
// complex shift in complex arithmetic. Each iteration looks for a negligible subdiagonal entry by
// the test of Ahues and Tisseur, picks the shifts from the trailing 2 by 2 block (an exceptional
// shift after 10 and 20 iterations without a deflation), starts the sweep where two consecutive
// small subdiagonal entries allow, and chases the bulge to the bottom. Real 2 by 2 blocks that
// split off are standardised by lanv2.
//
// The sweeps are written as loops over single rows and columns, so every entry of the active block
// is computed the same way whatever range of H the sweep also updates: the eigenvalues do not
// depend on wantt or wantz.

#include "lapack/householder/householder.hpp"
#include "lapack/schur/schur_support.hpp"

namespace zor {

namespace {

constexpr double kShiftWeight = 0.75;  // the exceptional shifts' diagonal offset
constexpr double kShiftOffDiagonal = -0.4375;
constexpr zint kExceptionalPeriod = 10;  // iterations without a deflation before an exceptional shift

// The Ahues-Tisseur test: H(k, k - 1) is negligible beside its neighbours (one-based k > l).
template <class T>
bool negligible(const OneBased<T>& h, zint k, zint ilo, zint ihi, double ulp, double smlnum) {
    const double sub = abs1(h(k, k - 1));
    if (sub <= smlnum) return true;
    double tst = abs1(h(k - 1, k - 1)) + abs1(h(k, k));
    if (tst == 0.0) {
        if (k - 2 >= ilo) tst += std::fabs(real(h(k - 1, k - 2)));
        if (k + 1 <= ihi) tst += std::fabs(real(h(k + 1, k)));
    }
    if (std::fabs(real(h(k, k - 1))) > ulp * tst) return false;
    const double ab = std::fmax(sub, abs1(h(k - 1, k))), ba = std::fmin(sub, abs1(h(k - 1, k)));
    const double aa = std::fmax(abs1(h(k, k)), abs1(h(k - 1, k - 1) - h(k, k)));
    const double bb = std::fmin(abs1(h(k, k)), abs1(h(k - 1, k - 1) - h(k, k)));
    const double s = aa + ab;
    return ba * (ab / s) <= std::fmax(smlnum, ulp * (bb * (aa / s)));
}

// The iteration both forms share: from the bottom row i of what has not converged, find the lowest
// negligible subdiagonal entry l and run sweeps on rows l .. i until a block of at most `order` rows
// (2 for real data, 1 for complex data) splits off, whose eigenvalues `converged(l, i, i1, i2)`
// takes; then on to the rows above it. i1 and i2 are the first row and the last column the
// transformations reach. At most 30 max(10, nh) sweeps a block, and a non-finite subdiagonal entry
// ends the iteration at once. Returns 0, or the last row of the block that did not converge.
template <class T, class Sweep, class Converged>
zint iterate(const OneBased<T>& h, bool wantt, zint n, zint ilo, zint ihi, zint order, Sweep&& sweep,
             Converged&& converged) {
    const zint nh = ihi - ilo + 1;
    const double ulp = dlamch("P"), smlnum = dlamch("S") * (static_cast<double>(nh) / ulp);
    zint i1 = 1, i2 = n;
    const zint itmax = 30 * max_of(10, nh);
    zint kdefl = 0;  // iterations since the last deflation
    for (zint i = ihi; i >= ilo;) {
        zint l = ilo;
        bool split = false;
        for (zint its = 0; its <= itmax; ++its) {
            zint k = i;
            while (k > l && !negligible(h, k, ilo, ihi, ulp, smlnum)) --k;
            l = k;
            if (l > ilo) h(l, l - 1) = zero<T>();
            if (l > i - order) {
                split = true;
                break;
            }
            if (subdiagonal_not_finite(h, l, i)) break;
            ++kdefl;
            if (!wantt) {
                i1 = l;
                i2 = i;
            }
            sweep(l, i, i1, i2, kdefl, ulp);
        }
        if (!split) return i;
        converged(l, i, i1, i2);
        kdefl = 0;
        i = l - 1;
    }
    return 0;
}

// ---- real data: the double-shift QR ---------------------------------------------------------------

void real_qr(bool wantt, bool wantz, zint n, zint ilo, zint ihi, double* hp, zint ldh, Eigenvalues<double> w,
             zint iloz, zint ihiz, double* zp, zint ldz, zint& info) {
    const OneBased<double> h{hp, ldh}, z{zp, ldz};
    const auto sweep = [&](zint l, zint i, zint i1, zint i2, zint kdefl, double ulp) {
        // The shifts: the eigenvalues of the trailing 2 by 2 block, or an exceptional pair.
        double h11, h12, h21, h22;
        if (kdefl % (2 * kExceptionalPeriod) == 0) {
            const double s = std::fabs(h(i, i - 1)) + std::fabs(h(i - 1, i - 2));
            h11 = kShiftWeight * s + h(i, i);
            h12 = kShiftOffDiagonal * s;
            h21 = s;
            h22 = h11;
        } else if (kdefl % kExceptionalPeriod == 0) {
            const double s = std::fabs(h(l + 1, l)) + std::fabs(h(l + 2, l + 1));
            h11 = kShiftWeight * s + h(l, l);
            h12 = kShiftOffDiagonal * s;
            h21 = s;
            h22 = h11;
        } else {
            h11 = h(i - 1, i - 1);
            h21 = h(i, i - 1);
            h12 = h(i - 1, i);
            h22 = h(i, i);
        }
        double rt1r = 0.0, rt1i = 0.0, rt2r = 0.0, rt2i = 0.0;
        const double s = std::fabs(h11) + std::fabs(h12) + std::fabs(h21) + std::fabs(h22);
        if (s != 0.0) {
            h11 /= s;
            h21 /= s;
            h12 /= s;
            h22 /= s;
            const double tr = (h11 + h22) / 2.0;
            const double det = (h11 - tr) * (h22 - tr) - h12 * h21;
            const double rtdisc = std::sqrt(std::fabs(det));
            if (det >= 0.0) {
                rt1r = tr * s;
                rt2r = rt1r;
                rt1i = rtdisc * s;
                rt2i = -rt1i;
            } else {
                // Two real shifts: the one nearer h22, twice.
                rt1r = tr + rtdisc;
                rt2r = tr - rtdisc;
                rt1r = std::fabs(rt1r - h22) <= std::fabs(rt2r - h22) ? rt1r * s : rt2r * s;
                rt2r = rt1r;
            }
        }
        // Start the sweep at row m where H(m, m - 1) is negligible against the first column
        // of the double-shift polynomial (two consecutive small subdiagonal entries).
        double v[3];
        zint m = i - 2;
        for (;; --m) {
            const double h21s0 = h(m + 1, m);
            double sc = std::fabs(h(m, m) - rt2r) + std::fabs(rt2i) + std::fabs(h21s0);
            const double h21s = h(m + 1, m) / sc;
            v[0] = h21s * h(m, m + 1) + (h(m, m) - rt1r) * ((h(m, m) - rt2r) / sc) - rt1i * (rt2i / sc);
            v[1] = h21s * (h(m, m) + h(m + 1, m + 1) - rt1r - rt2r);
            v[2] = h21s * h(m + 2, m + 1);
            sc = std::fabs(v[0]) + std::fabs(v[1]) + std::fabs(v[2]);
            v[0] /= sc;
            v[1] /= sc;
            v[2] /= sc;
            if (m == l) break;
            const double h00 = std::fabs(h(m, m - 1)) * (std::fabs(v[1]) + std::fabs(v[2]));
            const double h01 = ulp * std::fabs(v[0]) *
                               (std::fabs(h(m - 1, m - 1)) + std::fabs(h(m, m)) + std::fabs(h(m + 1, m + 1)));
            if (h00 <= h01) break;
        }
        // The double-shift sweep: the first reflector makes the bulge, the others chase it.
        for (zint k = m; k <= i - 1; ++k) {
            const zint nr = min_of(3, i - k + 1);
            if (k > m) {
                for (zint r = 0; r < nr; ++r) v[r] = h(k + r, k - 1);
            }
            double t1;
            bulge_reflector(nr, v[0], v + 1, t1);
            if (k > m) {
                h(k, k - 1) = v[0];
                h(k + 1, k - 1) = 0.0;
                if (k < i - 1) h(k + 2, k - 1) = 0.0;
            } else if (m > l) {
                // Not a sign flip: v(2) and v(3) may have underflowed.
                h(k, k - 1) *= 1.0 - t1;
            }
            const double v2 = v[1], t2 = t1 * v2;
            if (nr == 3) {
                const double v3 = v[2], t3 = t1 * v3;
                for (zint j = k; j <= i2; ++j) {
                    const double sum = h(k, j) + v2 * h(k + 1, j) + v3 * h(k + 2, j);
                    h(k, j) -= sum * t1;
                    h(k + 1, j) -= sum * t2;
                    h(k + 2, j) -= sum * t3;
                }
                for (zint j = i1; j <= min_of(k + 3, i); ++j) {
                    const double sum = h(j, k) + v2 * h(j, k + 1) + v3 * h(j, k + 2);
                    h(j, k) -= sum * t1;
                    h(j, k + 1) -= sum * t2;
                    h(j, k + 2) -= sum * t3;
                }
                if (wantz) {
                    for (zint j = iloz; j <= ihiz; ++j) {
                        const double sum = z(j, k) + v2 * z(j, k + 1) + v3 * z(j, k + 2);
                        z(j, k) -= sum * t1;
                        z(j, k + 1) -= sum * t2;
                        z(j, k + 2) -= sum * t3;
                    }
                }
            } else if (nr == 2) {
                for (zint j = k; j <= i2; ++j) {
                    const double sum = h(k, j) + v2 * h(k + 1, j);
                    h(k, j) -= sum * t1;
                    h(k + 1, j) -= sum * t2;
                }
                for (zint j = i1; j <= i; ++j) {
                    const double sum = h(j, k) + v2 * h(j, k + 1);
                    h(j, k) -= sum * t1;
                    h(j, k + 1) -= sum * t2;
                }
                if (wantz) {
                    for (zint j = iloz; j <= ihiz; ++j) {
                        const double sum = z(j, k) + v2 * z(j, k + 1);
                        z(j, k) -= sum * t1;
                        z(j, k + 1) -= sum * t2;
                    }
                }
            }
        }
    };
    const auto converged = [&](zint l, zint i, zint i1, zint i2) {
        if (l == i) {
            w.set(i - 1, {h(i, i), 0.0});
        } else {
            // A 2 by 2 block: its standard form and its rotation applied to the rest of H and Z.
            double cs, sn, rt1r, rt1i, rt2r, rt2i;
            lanv2(h(i - 1, i - 1), h(i - 1, i), h(i, i - 1), h(i, i), rt1r, rt1i, rt2r, rt2i, cs, sn);
            w.set(i - 2, {rt1r, rt1i});
            w.set(i - 1, {rt2r, rt2i});
            const auto rotate = [&](double& x, double& y) {
                const double tx = cs * x + sn * y;
                y = cs * y - sn * x;
                x = tx;
            };
            if (wantt) {
                for (zint j = i + 1; j <= i2; ++j) rotate(h(i - 1, j), h(i, j));
                for (zint j = i1; j <= i - 2; ++j) rotate(h(j, i - 1), h(j, i));
            }
            if (wantz) {
                for (zint j = iloz; j <= ihiz; ++j) rotate(z(j, i - 1), z(j, i));
            }
        }
    };
    info = iterate(h, wantt, n, ilo, ihi, 2, sweep, converged);
}

// ---- complex data: the single-shift QR --------------------------------------------------------------

// x := x·f for the entries of a row or column (one at a time, the same formula for every entry).
void scale_entries(zint count, zcomplex f, zcomplex* x, zint step) {
    for (zint e = 0; e < count; ++e) x[e * step] = x[e * step] * f;
}

void complex_qr(bool wantt, bool wantz, zint n, zint ilo, zint ihi, zcomplex* hp, zint ldh,
                Eigenvalues<zcomplex> w, zint iloz, zint ihiz, zcomplex* zp, zint ldz, zint& info) {
    const OneBased<zcomplex> h{hp, ldh}, z{zp, ldz};
    // Make the subdiagonal real by a diagonal unitary similarity.
    const zint jlo = wantt ? 1 : ilo, jhi = wantt ? n : ihi;
    for (zint i = ilo + 1; i <= ihi; ++i) {
        if (h(i, i - 1).im == 0.0) continue;
        // Normalised twice against underflow in |H(i, i - 1)|.
        zcomplex sc = h(i, i - 1) / abs1(h(i, i - 1));
        sc = conj(sc) / abs(sc);
        h(i, i - 1) = {abs(h(i, i - 1)), 0.0};
        scale_entries(jhi - i + 1, sc, h.at(i, i), ldh);
        scale_entries(min_of(jhi, i + 1) - jlo + 1, conj(sc), h.at(jlo, i), 1);
        if (wantz) scale_entries(ihiz - iloz + 1, conj(sc), z.at(iloz, i), 1);
    }
    const zint nz = ihiz - iloz + 1;
    const auto sweep = [&](zint l, zint i, zint i1, zint i2, zint kdefl, double ulp) {
        zcomplex shift;
        if (kdefl % (2 * kExceptionalPeriod) == 0) {
            shift = h(i, i) + zcomplex{kShiftWeight * std::fabs(h(i, i - 1).re), 0.0};
        } else if (kdefl % kExceptionalPeriod == 0) {
            shift = h(l, l) + zcomplex{kShiftWeight * std::fabs(h(l + 1, l).re), 0.0};
        } else {
            // Wilkinson's shift: the eigenvalue of the trailing 2 by 2 block nearer H(i, i).
            shift = h(i, i);
            const zcomplex u = complex_sqrt(h(i - 1, i)) * complex_sqrt(h(i, i - 1));
            double s = abs1(u);
            if (s != 0.0) {
                const zcomplex x = 0.5 * (h(i - 1, i - 1) - shift);
                const double sx = abs1(x);
                s = std::fmax(s, sx);
                const zcomplex xs = x / s, us = u / s;
                zcomplex y = s * complex_sqrt(xs * xs + us * us);
                if (sx > 0.0) {
                    const zcomplex xn = x / sx;
                    if (xn.re * y.re + xn.im * y.im < 0.0) y = -y;
                }
                shift = shift - u * (u / (x + y));
            }
        }
        // Start where two consecutive small subdiagonal entries allow.
        zcomplex v[2];
        zint m = i - 1;
        for (;; --m) {
            const zcomplex h11 = h(m, m), h22 = h(m + 1, m + 1);
            zcomplex h11s = h11 - shift;
            double h21 = h(m + 1, m).re;
            const double s = abs1(h11s) + std::fabs(h21);
            h11s = h11s / s;
            h21 /= s;
            v[0] = h11s;
            v[1] = {h21, 0.0};
            if (m == l) break;
            const double h10 = h(m, m - 1).re;
            if (std::fabs(h10) * std::fabs(h21) <= ulp * (abs1(h11s) * (abs1(h11) + abs1(h22)))) break;
        }
        for (zint k = m; k <= i - 1; ++k) {
            if (k > m) {
                v[0] = h(k, k - 1);
                v[1] = h(k + 1, k - 1);
            }
            zcomplex t1;
            bulge_reflector(2, v[0], v + 1, t1);
            if (k > m) {
                h(k, k - 1) = v[0];
                h(k + 1, k - 1) = {};
            }
            // v(2) is real before the reflector is made, so t1·v(2) is real too.
            const zcomplex v2 = v[1];
            const double t2 = (t1 * v2).re;
            for (zint j = k; j <= i2; ++j) {
                const zcomplex sum = conj(t1) * h(k, j) + t2 * h(k + 1, j);
                h(k, j) -= sum;
                h(k + 1, j) -= sum * v2;
            }
            for (zint j = i1; j <= min_of(k + 2, i); ++j) {
                const zcomplex sum = t1 * h(j, k) + t2 * h(j, k + 1);
                h(j, k) -= sum;
                h(j, k + 1) -= sum * conj(v2);
            }
            if (wantz) {
                for (zint j = iloz; j <= ihiz; ++j) {
                    const zcomplex sum = t1 * z(j, k) + t2 * z(j, k + 1);
                    z(j, k) -= sum;
                    z(j, k + 1) -= sum * conj(v2);
                }
            }
            if (k == m && m > l) {
                // The sweep started below l: keep H(m, m - 1) real by a further diagonal
                // similarity.
                zcomplex temp = one<zcomplex>() - t1;
                temp = temp / abs(temp);
                h(m + 1, m) = h(m + 1, m) * conj(temp);
                if (m + 2 <= i) h(m + 2, m + 1) = h(m + 2, m + 1) * temp;
                for (zint j = m; j <= i; ++j) {
                    if (j == m + 1) continue;
                    if (i2 > j) scale_entries(i2 - j, temp, h.at(j, j + 1), ldh);
                    scale_entries(j - i1, conj(temp), h.at(i1, j), 1);
                    if (wantz) scale_entries(nz, conj(temp), z.at(iloz, j), 1);
                }
            }
        }
        // Keep H(i, i - 1) real.
        zcomplex temp = h(i, i - 1);
        if (temp.im != 0.0) {
            const double rtemp = abs(temp);
            h(i, i - 1) = {rtemp, 0.0};
            temp = temp / rtemp;
            if (i2 > i) scale_entries(i2 - i, conj(temp), h.at(i, i + 1), ldh);
            scale_entries(i - i1, temp, h.at(i1, i), 1);
            if (wantz) scale_entries(nz, temp, z.at(iloz, i), 1);
        }
    };
    const auto converged = [&](zint, zint i, zint, zint) { w.set(i - 1, h(i, i)); };
    info = iterate(h, wantt, n, ilo, ihi, 1, sweep, converged);
}

}  // namespace

template <class T>
void lahqr(bool wantt, bool wantz, zint n, zint ilo, zint ihi, T* h, zint ldh, Eigenvalues<T> w, zint iloz,
           zint ihiz, T* z, zint ldz, zint& info) {
    info = 0;
    if (n == 0) return;
    const OneBased<T> hh{h, ldh};
    if (ilo == ihi) {
        w.set(ilo - 1, zcomplex{real(hh(ilo, ilo)), imag(hh(ilo, ilo))});
        return;
    }
    // Clear what lies below the first subdiagonal (scratch of the callers).
    for (zint j = ilo; j <= ihi - 3; ++j) {
        hh(j + 2, j) = zero<T>();
        hh(j + 3, j) = zero<T>();
    }
    if (ilo <= ihi - 2) hh(ihi, ihi - 2) = zero<T>();
    if constexpr (kIsComplex<T>) {
        complex_qr(wantt, wantz, n, ilo, ihi, h, ldh, w, iloz, ihiz, z, ldz, info);
    } else {
        real_qr(wantt, wantz, n, ilo, ihi, h, ldh, w, iloz, ihiz, z, ldz, info);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(lahqr)
