#pragma once
// The Schur factorization of an upper Hessenberg matrix, H = Z T Zᴴ, by the QR algorithm: the
// small-bulge multishift QR sweep with aggressive early deflation of Braman, Byers and Mathias
// (hseqr, laqr0 .. laqr5) for large active blocks, and the double-shift (real) or single-shift
// (complex) QR of lahqr for small ones and for the deflation windows.
//
// T is upper triangular for complex data and upper quasi-triangular for real data: 1 by 1 blocks
// for real eigenvalues, 2 by 2 blocks in standard form for complex pairs (equal diagonal entries,
// off-diagonal entries of opposite signs, as lanv2 leaves them); the pair (re ± i im) is stored
// with the positive imaginary part first.
//
// Eigenvalues computed with and without T and Z are equal to the bit: every operation that decides
// the active block is the same call with the same shape whether or not T or Z is wanted; the parts
// of H outside the active block (there only when T is wanted) and Z are updated by calls of their
// own.
//
// Templates over double and zcomplex; indices at the interfaces are one-based, as published.

#include "service/element.hpp"
#include "service/types.hpp"

namespace zor {

// Eigenvalues as the routines store them: real data keeps real and imaginary parts in two arrays
// (wr, wi), complex data one array of complex values (w). Indices are zero-based; `from(k)` is the
// view starting at entry k.
template <class T>
struct Eigenvalues;

template <>
struct Eigenvalues<double> {
    double* re;
    double* im;
    zcomplex get(zint i) const { return {re[i], im[i]}; }
    void set(zint i, zcomplex v) const {
        re[i] = v.re;
        im[i] = v.im;
    }
    Eigenvalues from(zint k) const { return {re + k, im + k}; }
};

template <>
struct Eigenvalues<zcomplex> {
    zcomplex* w;
    zcomplex get(zint i) const { return w[i]; }
    void set(zint i, zcomplex v) const { w[i] = v; }
    Eigenvalues from(zint k) const { return {w + k}; }
};

// The Schur factorization of the upper Hessenberg H (n by n; already upper triangular outside rows
// and columns ilo .. ihi, as gebal and gehrd leave it). job "E": eigenvalues only; "S": also T in H.
// compz "N": no Z; "I": Z := the Schur vectors of H; "V": Z := Z times them (Z the Q of gehrd). The
// eigenvalues go to w in the order of T's diagonal. lwork >= max(1, n); lwork = -1 answers max(1,
// n) in work(1), which is all the routine uses: its own scratch lies in H below the subdiagonal,
// so its path does not depend on lwork. info = i > 0: the iteration limit was reached with rows and
// columns ilo .. i unconverged (eigenvalues i + 1 .. ihi and those outside ilo .. ihi are
// computed; H is then unitarily similar to the input, and Z updated to match); a non-finite value
// on the active block's subdiagonal ends the iteration at once with the same report.
template <class T>
void hseqr(char job, char compz, zint n, zint ilo, zint ihi, T* h, zint ldh, Eigenvalues<T> w, T* z, zint ldz,
           T* work, zint lwork, zint& info);

// The multishift QR with aggressive early deflation on rows and columns ilo .. ihi of H, updating
// rows iloz .. ihiz of Z (wantz). `nested`: the laqr4 form, called inside the deflation window of
// another one, whose own windows use lahqr only (laqr2) instead of recursing. Needs n > 15;
// work of max(1, n) elements. info as hseqr's.
template <class T>
void laqr0(bool wantt, bool wantz, zint n, zint ilo, zint ihi, T* h, zint ldh, Eigenvalues<T> w, zint iloz,
           zint ihiz, T* z, zint ldz, T* work, zint lwork, zint& info, bool nested = false);

// Aggressive early deflation on the window of order nw at the bottom of the active block ktop ..
// kbot: the window's Schur form, the deflatable eigenvalues found by the spike test (nd of them,
// removed from the active block), the rest (ns) returned as shifts in w(kbot - nd - ns + 1 ..);
// the window is reduced back to Hessenberg form and H and Z updated. v (nw by nw), t (nw by nh)
// and wv (nv by nw) are scratch. `nested`: the window's Schur form by lahqr only (laqr2).
template <class T>
void laqr3(bool wantt, bool wantz, zint n, zint ktop, zint kbot, zint nw, T* h, zint ldh, zint iloz,
           zint ihiz, T* z, zint ldz, zint& ns, zint& nd, Eigenvalues<T> w, T* v, zint ldv, zint nh, T* t,
           zint ldt, zint nv, T* wv, zint ldwv, T* work, zint lwork, bool nested);

// One small-bulge multishift QR sweep on the active block ktop .. kbot with the nshifts shifts in
// `shifts` (real data: real ones in pairs and complex ones in conjugate pairs, rearranged here).
// kacc22 > 0 accumulates each chain's reflections in U and applies them to the rest of H and to Z
// by GEMM. v (3 by nshifts / 2), u (kdu by kdu, kdu = 2 nshifts), wh (kdu by nh) and wv (nv by
// kdu) are scratch.
template <class T>
void laqr5(bool wantt, bool wantz, zint kacc22, zint n, zint ktop, zint kbot, zint nshifts,
           Eigenvalues<T> shifts, T* h, zint ldh, zint iloz, zint ihiz, T* z, zint ldz, T* v, zint ldv, T* u,
           zint ldu, zint nv, T* wv, zint ldwv, zint nh, T* wh, zint ldwh);

// A multiple of the first column of (H - s1 I)(H - s2 I) for the n by n H, n = 2 or 3, scaled
// against overflow (s1, s2 a complex conjugate pair or two real shifts for real data).
template <class T>
void laqr1(zint n, const T* h, zint ldh, zcomplex s1, zcomplex s2, T* v);

// The double-shift (real) or single-shift (complex) QR algorithm on rows and columns ilo .. ihi,
// for small matrices and windows; no work array. info as hseqr's.
template <class T>
void lahqr(bool wantt, bool wantz, zint n, zint ilo, zint ihi, T* h, zint ldh, Eigenvalues<T> w, zint iloz,
           zint ihiz, T* z, zint ldz, zint& info);

// The standardised Schur factorization of the real 2 by 2 matrix [a b; c d] = [cs -sn; sn cs] [aa
// bb; cc dd] [cs sn; -sn cs]: [a b; c d] is overwritten by the standard form, its eigenvalues are
// (rt1r, rt1i) and (rt2r, rt2i).
void lanv2(double& a, double& b, double& c, double& d, double& rt1r, double& rt1i, double& rt2r, double& rt2i,
           double& cs, double& sn);

// The work hseqr uses and its workspace query answers: max(1, n).
inline zint hseqr_workspace(zint n) {
    return max_of(1, n);
}

// The argument check of hseqr, as published ("DHSEQR", "ZHSEQR").
template <class T>
zint check_hseqr(char job, char compz, zint n, zint ilo, zint ihi, zint ldh, zint ldz, zint lwork);

}  // namespace zor
