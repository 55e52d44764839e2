// laqr0: the multishift QR algorithm with aggressive early deflation (Braman, Byers and Mathias).
// Each iteration finds the active block at the bottom of what is not yet converged, runs aggressive
// early deflation on a window at its bottom (laqr3), and, unless that deflated enough to make a
// sweep not worth it, runs one small-bulge multishift sweep (laqr5) with the undeflated window
// eigenvalues as shifts: exceptional shifts after every sixth iteration without a deflation, and
// the eigenvalues of a trailing submatrix when the window gave too few. The window grows when
// deflations stop coming. Its scratch lives in H below the subdiagonal, as published.
//
// `nested` is the laqr4 form, which runs inside another window: its own windows use lahqr only.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/schur/schur_support.hpp"

namespace zor {

namespace {

constexpr zint kTiny = 15;              // below this order lahqr does the whole job
constexpr zint kExceptionalWindow = 5;  // iterations without a deflation before the window varies
constexpr zint kExceptionalShifts = 6;  // ... and before exceptional shifts
constexpr double kWilkinson1 = 0.75, kWilkinson2 = -0.4375;

// The shifts of the exceptional iterations: from the subdiagonal entries at the bottom.
void exceptional_shifts(const OneBased<double>& h, zint ktop, zint kbot, zint ks, Eigenvalues<double> w) {
    for (zint i = kbot; i >= max_of(ks + 1, ktop + 2); i -= 2) {
        const double ss = std::fabs(h(i, i - 1)) + std::fabs(h(i - 1, i - 2));
        double aa = kWilkinson1 * ss + h(i, i), bb = ss, cc = kWilkinson2 * ss, dd = aa;
        double rt1r, rt1i, rt2r, rt2i, cs, sn;
        lanv2(aa, bb, cc, dd, rt1r, rt1i, rt2r, rt2i, cs, sn);
        w.set(i - 2, {rt1r, rt1i});
        w.set(i - 1, {rt2r, rt2i});
    }
    if (ks == ktop) {
        w.set(ks, {h(ks + 1, ks + 1), 0.0});
        w.set(ks - 1, w.get(ks));
    }
}

void exceptional_shifts(const OneBased<zcomplex>& h, zint, zint kbot, zint ks, Eigenvalues<zcomplex> w) {
    for (zint i = kbot; i >= ks + 1; i -= 2) {
        const zcomplex shift = h(i, i) + zcomplex{kWilkinson1 * abs1(h(i, i - 1)), 0.0};
        w.set(i - 1, shift);
        w.set(i - 2, shift);
    }
}

// The eigenvalues of the trailing 2 by 2 block, when the QR of a trailing submatrix failed.
void trailing_pair(const OneBased<double>& h, zint kbot, Eigenvalues<double> w) {
    double aa = h(kbot - 1, kbot - 1), cc = h(kbot, kbot - 1), bb = h(kbot - 1, kbot), dd = h(kbot, kbot);
    double rt1r, rt1i, rt2r, rt2i, cs, sn;
    lanv2(aa, bb, cc, dd, rt1r, rt1i, rt2r, rt2i, cs, sn);
    w.set(kbot - 2, {rt1r, rt1i});
    w.set(kbot - 1, {rt2r, rt2i});
}

void trailing_pair(const OneBased<zcomplex>& h, zint kbot, Eigenvalues<zcomplex> w) {
    const double s =
        abs1(h(kbot - 1, kbot - 1)) + abs1(h(kbot, kbot - 1)) + abs1(h(kbot - 1, kbot)) + abs1(h(kbot, kbot));
    const zcomplex aa = h(kbot - 1, kbot - 1) / s, cc = h(kbot, kbot - 1) / s, bb = h(kbot - 1, kbot) / s,
                   dd = h(kbot, kbot) / s;
    const zcomplex tr2 = (aa + dd) / 2.0;
    const zcomplex det = (aa - tr2) * (dd - tr2) - bb * cc;
    const zcomplex rtdisc = complex_sqrt(-det);
    w.set(kbot - 2, (tr2 + rtdisc) * s);
    w.set(kbot - 1, (tr2 - rtdisc) * s);
}

// Shifts ks .. kbot sorted by decreasing magnitude (a bubble sort keeps real conjugate pairs
// together), then, for real data, arranged in pairs: two real ones or a conjugate pair.
template <class T>
void arrange_shifts(zint ks, zint kbot, Eigenvalues<T> w) {
    for (zint k = kbot; k >= ks + 1; --k) {
        bool sorted = true;
        for (zint i = ks; i <= k - 1; ++i) {
            if (abs1(w.get(i - 1)) < abs1(w.get(i))) {
                sorted = false;
                const zcomplex swap = w.get(i - 1);
                w.set(i - 1, w.get(i));
                w.set(i, swap);
            }
        }
        if (sorted) break;
    }
}

void pair_shifts(zint ks, zint kbot, Eigenvalues<double> w) {
    for (zint i = kbot; i >= ks + 2; i -= 2) {
        if (w.im[i - 1] != -w.im[i - 2]) {
            const zcomplex swap = w.get(i - 1);
            w.set(i - 1, w.get(i - 2));
            w.set(i - 2, w.get(i - 3));
            w.set(i - 3, swap);
        }
    }
}
void pair_shifts(zint, zint, Eigenvalues<zcomplex>) {}

}  // namespace

template <class T>
void laqr0(bool wantt, bool wantz, zint n, zint ilo, zint ihi, T* hp, zint ldh, Eigenvalues<T> w, zint iloz,
           zint ihiz, T* zp, zint ldz, T* work, zint lwork, zint& info, bool nested) {
    info = 0;
    if (n == 0) return;
    if (n <= kTiny) {
        lahqr(wantt, wantz, n, ilo, ihi, hp, ldh, w, iloz, ihiz, zp, ldz, info);
        return;
    }
    const OneBased<T> h{hp, ldh};
    const char* name = nested ? routine_name<T>("DLAQR4", "ZLAQR4") : routine_name<T>("DLAQR0", "ZLAQR0");
    const char jobs[2] = {wantt ? 'S' : 'E', wantz ? 'V' : 'N'};
    const auto tuning = [&](std::int32_t ispec) {
        return ilaenv(ispec, name, jobs, n, ilo, ihi, lwork, 6, 2);
    };
    // The recommended window size and number of shifts, within the room below the subdiagonal.
    zint nwr = max_of(2, tuning(13));
    nwr = min_of(min_of(ihi - ilo + 1, (n - 1) / 3), nwr);
    zint nsr = min_of(min_of(tuning(15), (n - 3) / 6), ihi - ilo);
    nsr = max_of(2, nsr - nsr % 2);
    const zint nmin = max_of(kTiny, tuning(12));
    const zint nibble = max_of(0, tuning(14));
    const zint kacc22 = min_of(2, max_of(0, tuning(16)));
    const zint nwmax = min_of((n - 1) / 3, lwork / 2);
    zint nsmax = min_of((n - 3) / 6, 2 * lwork / 3);
    nsmax -= nsmax % 2;
    zint nw = nwmax;
    zint ndfl = 1;  // iterations since the last deflation
    zint ndec = -1;
    const zint itmax = max_of(30, 2 * kExceptionalShifts) * max_of(10, ihi - ilo + 1);

    zint kbot = ihi;
    for (zint it = 1; it <= itmax; ++it) {
        if (kbot < ilo) return;
        // The active block ktop .. kbot.
        zint k = kbot;
        while (k > ilo && !is_zero(h(k, k - 1))) --k;
        const zint ktop = k;
        if (subdiagonal_not_finite(h, ktop, kbot)) break;

        // The window: the whole block when it is small enough, else nwr or nwr + 1 (the one with the
        // smaller subdiagonal entry at its top); after kExceptionalWindow iterations without a
        // deflation it doubles up to the largest, then shrinks step by step.
        const zint nh = kbot - ktop + 1;
        const zint nwupbd = min_of(nh, nwmax);
        nw = ndfl < kExceptionalWindow ? min_of(nwupbd, nwr) : min_of(nwupbd, 2 * nw);
        if (nw < nwmax) {
            if (nw >= nh - 1) {
                nw = nh;
            } else {
                const zint kwtop = kbot - nw + 1;
                if (abs1(h(kwtop, kwtop - 1)) > abs1(h(kwtop - 1, kwtop - 2))) ++nw;
            }
        }
        if (ndfl < kExceptionalWindow) {
            ndec = -1;
        } else if (ndec >= 0 || nw >= nwupbd) {
            ++ndec;
            if (nw - ndec < 2) ndec = 0;
            nw -= ndec;
        }

        // Aggressive early deflation, its scratch under the subdiagonal: V (nw by nw) in the bottom
        // left corner, T along the bottom edge, WV along the left edge.
        const zint kv = n - nw + 1, kt = nw + 1, nho = (n - nw - 1) - kt + 1;
        const zint kwv = nw + 2, nve = (n - nw) - kwv + 1;
        zint ls = 0, ld = 0;
        laqr3(wantt, wantz, n, ktop, kbot, nw, hp, ldh, iloz, ihiz, zp, ldz, ls, ld, w, h.at(kv, 1), ldh, nho,
              h.at(kv, kt), ldh, nve, h.at(kwv, 1), ldh, work, lwork, nested);
        kbot -= ld;
        zint ks = kbot - ls + 1;

        // Skip the sweep when the window deflated much and the block left is small enough.
        if (ld == 0 || (100 * ld <= nw * nibble && kbot - ktop + 1 > min_of(nmin, nwmax))) {
            zint ns = min_of(min_of(nsmax, nsr), max_of(2, kbot - ktop));
            ns -= ns % 2;
            if (ndfl % kExceptionalShifts == 0) {
                ks = kbot - ns + 1;
                exceptional_shifts(h, ktop, kbot, ks, w);
            } else {
                if (kbot - ks + 1 <= ns / 2) {
                    // Too few shifts: the eigenvalues of a trailing submatrix, copied into the scratch
                    // space under the subdiagonal.
                    ks = kbot - ns + 1;
                    const zint kt2 = n - ns + 1;
                    lacpy('A', ns, ns, h.at(ks, ks), ldh, h.at(kt2, 1), ldh);
                    zint inf = 0;
                    T unused{};
                    if (!nested && ns > nmin) {
                        laqr0(false, false, ns, 1, ns, h.at(kt2, 1), ldh, w.from(ks - 1), 1, 1, &unused, 1,
                              work, lwork, inf, true);
                    } else {
                        lahqr(false, false, ns, 1, ns, h.at(kt2, 1), ldh, w.from(ks - 1), 1, 1, &unused, 1,
                              inf);
                    }
                    ks += inf;
                    if (ks >= kbot) {
                        trailing_pair(h, kbot, w);
                        ks = kbot - 1;
                    }
                }
                if (kbot - ks + 1 > ns) arrange_shifts(ks, kbot, w);
                pair_shifts(ks, kbot, w);
            }
            // Two shifts, and (for real data) both real: use the one nearer H(kbot, kbot) twice.
            if (kbot - ks + 1 == 2) {
                const zcomplex last = w.get(kbot - 1), before = w.get(kbot - 2);
                if (kIsComplex<T> || last.im == 0.0) {
                    const zcomplex hkk{real(h(kbot, kbot)), imag(h(kbot, kbot))};
                    if (abs1(last - hkk) < abs1(before - hkk)) {
                        w.set(kbot - 2, last);
                    } else {
                        w.set(kbot - 1, before);
                    }
                }
            }
            // At most ns of the smallest shifts, an even number.
            ns = min_of(ns, kbot - ks + 1);
            ns -= ns % 2;
            ks = kbot - ns + 1;

            // The sweep, its scratch under the subdiagonal: U (kdu by kdu) in the bottom left
            // corner, WH along the bottom edge, WV along the left edge; V in work.
            const zint kdu = 2 * ns, ku = n - kdu + 1, kwh = kdu + 1;
            const zint nho2 = (n - kdu + 1 - 4) - (kdu + 1) + 1;
            const zint kwv2 = kdu + 4, nve2 = n - kdu - kwv2 + 1;
            laqr5(wantt, wantz, kacc22, n, ktop, kbot, ns, w.from(ks - 1), hp, ldh, iloz, ihiz, zp, ldz, work,
                  3, h.at(ku, 1), ldh, nve2, h.at(kwv2, 1), ldh, nho2, h.at(ku, kwh), ldh);
        }
        ndfl = ld > 0 ? 1 : ndfl + 1;
    }
    // The iteration limit, or a value no iteration can deflate.
    info = kbot;
}

}  // namespace zor

ZOR_INSTANTIATE(laqr0)
