// laqr3: aggressive early deflation. The trailing window of the active block is reduced to Schur
// form (by lahqr, or for large windows by the multishift QR itself); in that basis the
// subdiagonal entry that joins the window to the rest becomes a spike s·V(1, :) along the window's
// top row, and every eigenvalue whose spike entry is negligible deflates. The others are moved to
// the top of the window and returned as shifts for the next sweep; the spike is folded back by
// one reflector and the window reduced to Hessenberg form again; H and Z take the window's
// orthogonal V by GEMM.
//
// The Schur form of the window and its reduction back to Hessenberg form are always computed the
// same way (whole, unblocked, independent of wantt and of lwork), and the update of the rows above
// the window is split at ktop, so the active block is computed the same way whether or not T is
// wanted.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/hessenberg/hessenberg.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"
#include "lapack/schur/schur_support.hpp"

namespace zor {

namespace {

// Which eigenvalues of the window's Schur form T deflate: ns counts down from jw as the bottom
// block passes the spike test; the others are moved up to ilst. Returns the number left (ns).
zint deflate_window(zint jw, double* tp, zint ldt, double* vp, zint ldv, zint infqr, double s, double ulp,
                    double smlnum, double* work) {
    const OneBased<double> t{tp, ldt}, v{vp, ldv};
    zint ns = jw, ilst = infqr + 1;
    while (ilst <= ns) {
        const bool bulge = ns > 1 && t(ns, ns - 1) != 0.0;
        zint ierr = 0, ifst = ns;
        if (!bulge) {
            double foo = std::fabs(t(ns, ns));
            if (foo == 0.0) foo = std::fabs(s);
            if (std::fabs(s * v(1, ns)) <= std::fmax(smlnum, ulp * foo)) {
                --ns;
            } else {
                // Not deflatable: out of the way (a 1 by 1 block cannot fail to move).
                trexc('V', jw, tp, ldt, vp, ldv, ifst, ilst, work, ierr);
                ++ilst;
            }
        } else {
            double foo = std::fabs(t(ns, ns)) +
                         std::sqrt(std::fabs(t(ns, ns - 1))) * std::sqrt(std::fabs(t(ns - 1, ns)));
            if (foo == 0.0) foo = std::fabs(s);
            if (std::fmax(std::fabs(s * v(1, ns)), std::fabs(s * v(1, ns - 1))) <=
                std::fmax(smlnum, ulp * foo)) {
                ns -= 2;
            } else {
                // trexc leaves ilst right even when the exchange fails.
                trexc('V', jw, tp, ldt, vp, ldv, ifst, ilst, work, ierr);
                ilst += 2;
            }
        }
    }
    return ns;
}

zint deflate_window(zint jw, zcomplex* tp, zint ldt, zcomplex* vp, zint ldv, zint infqr, zcomplex s,
                    double ulp, double smlnum, zcomplex* work) {
    const OneBased<zcomplex> t{tp, ldt}, v{vp, ldv};
    zint ns = jw, ilst = infqr + 1;
    while (ilst <= ns) {
        double foo = abs1(t(ns, ns));
        if (foo == 0.0) foo = abs1(s);
        if (abs1(s) * abs1(v(1, ns)) <= std::fmax(smlnum, ulp * foo)) {
            --ns;
        } else {
            zint ierr = 0, ifst = ns;
            trexc('V', jw, tp, ldt, vp, ldv, ifst, ilst, work, ierr);
            ++ilst;
        }
    }
    return ns;
}

// The magnitude a block's eigenvalue is sorted by: |t(i, i)|, plus sqrt|b| sqrt|c| for a 2 by 2
// block.
double block_size(const OneBased<double>& t, zint i, zint last) {
    if (i == last || t(i + 1, i) == 0.0) return std::fabs(t(i, i));
    return std::fabs(t(i, i)) + std::sqrt(std::fabs(t(i + 1, i))) * std::sqrt(std::fabs(t(i, i + 1)));
}

// The undeflated blocks infqr + 1 .. ns sorted by decreasing magnitude (graded matrices are more
// accurate so), by a bubble sort that passes over a failed exchange; the passes are bounded.
void sort_window(zint jw, double* tp, zint ldt, double* vp, zint ldv, zint infqr, zint ns, double* work) {
    const OneBased<double> t{tp, ldt};
    const auto next_block = [&](zint i, zint kend) {
        return i == kend || t(i + 1, i) == 0.0 ? i + 1 : i + 2;
    };
    zint kend = ns;
    for (zint pass = 0; pass < ns; ++pass) {
        bool sorted = true;
        zint i = infqr + 1;
        if (i > kend) break;
        zint k = next_block(i, kend);
        while (k <= kend) {
            if (block_size(t, i, kend) >= block_size(t, k, kend)) {
                i = k;
            } else {
                zint ifst = i, ilst = k, ierr = 0;
                trexc('V', jw, tp, ldt, vp, ldv, ifst, ilst, work, ierr);
                if (ierr == 0) {
                    sorted = false;
                    i = ilst;
                } else {
                    i = k;
                }
            }
            k = next_block(i, kend);
        }
        if (sorted) break;
        kend = i - 1;
    }
}

void sort_window(zint jw, zcomplex* tp, zint ldt, zcomplex* vp, zint ldv, zint infqr, zint ns,
                 zcomplex* work) {
    const OneBased<zcomplex> t{tp, ldt};
    for (zint i = infqr + 1; i <= ns; ++i) {
        zint ifst = i;
        for (zint j = i + 1; j <= ns; ++j) {
            if (abs1(t(j, j)) > abs1(t(ifst, ifst))) ifst = j;
        }
        zint ilst = i, ierr = 0;
        if (ifst != ilst) trexc('V', jw, tp, ldt, vp, ldv, ifst, ilst, work, ierr);
    }
}

// The eigenvalues of the window's Schur form into w (one-based window rows from infqr + 1).
void window_eigenvalues(zint jw, double* tp, zint ldt, zint infqr, Eigenvalues<double> w) {
    const OneBased<double> t{tp, ldt};
    for (zint i = jw; i >= infqr + 1;) {
        if (i == infqr + 1 || t(i, i - 1) == 0.0) {
            w.set(i - 1, {t(i, i), 0.0});
            --i;
        } else {
            double aa = t(i - 1, i - 1), bb = t(i - 1, i), cc = t(i, i - 1), dd = t(i, i);
            double rt1r, rt1i, rt2r, rt2i, cs, sn;
            lanv2(aa, bb, cc, dd, rt1r, rt1i, rt2r, rt2i, cs, sn);
            w.set(i - 2, {rt1r, rt1i});
            w.set(i - 1, {rt2r, rt2i});
            i -= 2;
        }
    }
}

void window_eigenvalues(zint jw, zcomplex* tp, zint ldt, zint infqr, Eigenvalues<zcomplex> w) {
    for (zint i = infqr + 1; i <= jw; ++i) w.set(i - 1, tp[(i - 1) + (i - 1) * ldt]);
}

}  // namespace

template <class T>
void laqr3(bool wantt, bool wantz, zint n, zint ktop, zint kbot, zint nw, T* hp, zint ldh, zint iloz,
           zint ihiz, T* zp, zint ldz, zint& ns, zint& nd, Eigenvalues<T> w, T* vp, zint ldv, zint nh, T* tp,
           zint ldt, zint nv, T* wv, zint ldwv, T* work, zint lwork, bool nested) {
    ns = 0;
    nd = 0;
    if (ktop > kbot || nw < 1) return;
    const OneBased<T> h{hp, ldh}, z{zp, ldz}, v{vp, ldv}, t{tp, ldt};
    const double ulp = dlamch("P"), smlnum = dlamch("S") * (static_cast<double>(n) / ulp);
    const zint jw = min_of(nw, kbot - ktop + 1);
    const zint kwtop = kbot - jw + 1;
    T s = kwtop == ktop ? zero<T>() : h(kwtop, kwtop - 1);

    if (kbot == kwtop) {
        // A 1 by 1 window.
        w.set(kwtop - 1, zcomplex{real(h(kwtop, kwtop)), imag(h(kwtop, kwtop))});
        ns = 1;
        if (abs1(s) <= std::fmax(smlnum, ulp * abs1(h(kwtop, kwtop)))) {
            ns = 0;
            nd = 1;
            if (kwtop > ktop) h(kwtop, kwtop - 1) = zero<T>();
        }
        return;
    }

    // The window's Schur form T = Vᴴ H(window) V.
    lacpy('U', jw, jw, h.at(kwtop, kwtop), ldh, tp, ldt);
    Blas<T>::copy(jw - 1, h.at(kwtop + 1, kwtop), ldh + 1, t.at(2, 1), ldt + 1);
    laset('A', jw, jw, zero<T>(), one<T>(), vp, ldv);
    const zint nmin = ilaenv(12, routine_name<T>("DLAQR3", "ZLAQR3"), "SV", jw, 1, jw, lwork, 6, 2);
    zint infqr = 0;
    const Eigenvalues<T> ww = w.from(kwtop - 1);
    if (!nested && jw > nmin) {
        laqr0(true, true, jw, 1, jw, tp, ldt, ww, 1, jw, vp, ldv, work, lwork, infqr, true);
    } else {
        lahqr(true, true, jw, 1, jw, tp, ldt, ww, 1, jw, vp, ldv, infqr);
    }
    // trexc works on the diagonal blocks only: clear below them.
    for (zint j = 1; j <= jw - 3; ++j) {
        t(j + 2, j) = zero<T>();
        t(j + 3, j) = zero<T>();
    }
    if (jw > 2) t(jw, jw - 2) = zero<T>();

    ns = deflate_window(jw, tp, ldt, vp, ldv, infqr, s, ulp, smlnum, work);
    if (ns == 0) s = zero<T>();
    if (ns < jw) sort_window(jw, tp, ldt, vp, ldv, infqr, ns, work);
    window_eigenvalues(jw, tp, ldt, infqr, ww);

    if (ns < jw || is_zero(s)) {
        T* tau = work;
        T* scratch = work + jw;
        if (ns > 1 && !is_zero(s)) {
            // Fold the spike (the first row of V) back by one reflector, then reduce the window's
            // leading ns rows and columns to Hessenberg form again.
            for (zint i = 0; i < ns; ++i) work[i] = conj(v(1, i + 1));
            T beta = work[0], spike_tau;
            larfg(ns, beta, work + 1, 1, spike_tau);
            work[0] = one<T>();
            laset('L', jw - 2, jw - 2, zero<T>(), zero<T>(), t.at(3, 1), ldt);
            larf('L', ns, jw, work, 1, conj(spike_tau), tp, ldt, scratch);
            larf('R', ns, ns, work, 1, spike_tau, tp, ldt, scratch);
            larf('R', jw, ns, work, 1, spike_tau, vp, ldv, scratch);
            zint info = 0;
            gehd2(jw, 1, ns, tp, ldt, tau, scratch, info);
        }
        if (kwtop > 1) h(kwtop, kwtop - 1) = s * conj(v(1, 1));
        lacpy('U', jw, jw, tp, ldt, h.at(kwtop, kwtop), ldh);
        Blas<T>::copy(jw - 1, t.at(2, 1), ldt + 1, h.at(kwtop + 1, kwtop), ldh + 1);
        if (ns > 1 && !is_zero(s)) {
            // V := V Q, Q the reflectors of that reduction (columns 2 .. ns of V).
            zint info = 0;
            orm2r('R', 'N', jw, ns - 1, ns - 1, t.at(2, 1), ldt, tau, v.at(1, 2), ldv, scratch, info);
        }
        // The rows above the window: those of the active block, then (for T) those above it.
        const auto update_rows = [&](zint first, zint last) {
            for (zint krow = first; krow <= last; krow += nv) {
                const zint kln = min_of(nv, last - krow + 1);
                Blas<T>::gemm('N', 'N', kln, jw, jw, one<T>(), h.at(krow, kwtop), ldh, vp, ldv, zero<T>(), wv,
                              ldwv);
                lacpy('A', kln, jw, wv, ldwv, h.at(krow, kwtop), ldh);
            }
        };
        update_rows(ktop, kwtop - 1);
        if (wantt) {
            update_rows(1, ktop - 1);
            // The columns right of the active block.
            for (zint kcol = kbot + 1; kcol <= n; kcol += nh) {
                const zint kln = min_of(nh, n - kcol + 1);
                Blas<T>::gemm(kAdjoint<T>, 'N', jw, kln, jw, one<T>(), vp, ldv, h.at(kwtop, kcol), ldh,
                              zero<T>(), tp, ldt);
                lacpy('A', jw, kln, tp, ldt, h.at(kwtop, kcol), ldh);
            }
        }
        if (wantz) {
            for (zint krow = iloz; krow <= ihiz; krow += nv) {
                const zint kln = min_of(nv, ihiz - krow + 1);
                Blas<T>::gemm('N', 'N', kln, jw, jw, one<T>(), z.at(krow, kwtop), ldz, vp, ldv, zero<T>(), wv,
                              ldwv);
                lacpy('A', kln, jw, wv, ldwv, z.at(krow, kwtop), ldz);
            }
        }
    }
    nd = jw - ns;
    // Shifts from a window whose QR failed in part leave out its unconverged top.
    ns -= infqr;
}

}  // namespace zor

ZOR_INSTANTIATE(laqr3)
