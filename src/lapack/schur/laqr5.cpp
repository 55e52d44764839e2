// laqr5: one small-bulge multishift QR sweep. The shifts, two per bulge, make a chain of bulges
// (3 by 3 reflectors two rows apart) that is brought in at the top of the active block and chased
// to its bottom in slabs: within each slab of 4·nbulges rows the reflectors are applied near the
// diagonal entry by entry, and with accumulation (kacc22 > 0) they are also collected in U so
// that the far-from-diagonal parts of H and Z take them by GEMM. A lone 2 by 2 reflector serves
// the last bulge when it has no room below it. After each step the vigilant deflation test sets
// negligible subdiagonal entries to zero.
//
// The products with U are split at the active block: the rows ktop .. and the columns .. kbot that
// belong to it are updated by calls of their own, the same calls whether or not T is wanted, and
// the rows above ktop and columns past kbot (only there when T is wanted) by further calls. So the
// rounding inside the active block, and with it every later decision, does not depend on wantt.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/schur/schur_support.hpp"

namespace zor {

namespace {

// The reflector I - v1 w wᴴ with w = (1, v2, v3) (v2, v3 in v[1], v[2], v1 = tau in v[0]) applied to
// the entries (x1, x2, x3) of a column from the left (`left`) or of a row from the right.
template <class T>
void reflect3(const T* v, bool left, T& x1, T& x2, T& x3) {
    if (left) {
        const T sum = conj(v[0]) * (x1 + conj(v[1]) * x2 + conj(v[2]) * x3);
        x1 -= sum;
        x2 -= sum * v[1];
        x3 -= sum * v[2];
    } else {
        const T sum = v[0] * (x1 + v[1] * x2 + v[2] * x3);
        x1 -= sum;
        x2 -= sum * conj(v[1]);
        x3 -= sum * conj(v[2]);
    }
}
template <class T>
void reflect2(const T* v, bool left, T& x1, T& x2) {
    if (left) {
        const T sum = conj(v[0]) * (x1 + conj(v[1]) * x2);
        x1 -= sum;
        x2 -= sum * v[1];
    } else {
        const T sum = v[0] * (x1 + v[1] * x2);
        x1 -= sum;
        x2 -= sum * conj(v[1]);
    }
}

template <class T>
struct Sweep {
    bool wantt, wantz, accum;
    zint n, ktop, kbot;
    OneBased<T> h, z, v, u;
    zint iloz, ihiz;
    double ulp, smlnum;

    // The vigilant deflation test of H(k + 1, k): the classic test against the neighbouring diagonal
    // entries and the one of Ahues and Tisseur must both pass.
    void vigilant(zint k) {
        if (is_zero(h(k + 1, k))) return;
        double tst1 = abs1(h(k, k)) + abs1(h(k + 1, k + 1));
        if (tst1 == 0.0) {
            if (k >= ktop + 1) tst1 += abs1(h(k, k - 1));
            if (k >= ktop + 2) tst1 += abs1(h(k, k - 2));
            if (k >= ktop + 3) tst1 += abs1(h(k, k - 3));
            if (k <= kbot - 2) tst1 += abs1(h(k + 2, k + 1));
            if (k <= kbot - 3) tst1 += abs1(h(k + 3, k + 1));
            if (k <= kbot - 4) tst1 += abs1(h(k + 4, k + 1));
        }
        if (abs1(h(k + 1, k)) > std::fmax(smlnum, ulp * tst1)) return;
        const double h12 = std::fmax(abs1(h(k + 1, k)), abs1(h(k, k + 1)));
        const double h21 = std::fmin(abs1(h(k + 1, k)), abs1(h(k, k + 1)));
        const double h11 = std::fmax(abs1(h(k + 1, k + 1)), abs1(h(k, k) - h(k + 1, k + 1)));
        const double h22 = std::fmin(abs1(h(k + 1, k + 1)), abs1(h(k, k) - h(k + 1, k + 1)));
        const double scl = h11 + h12;
        const double tst2 = h22 * (h11 / scl);
        if (tst2 == 0.0 || h21 * (h12 / scl) <= std::fmax(smlnum, ulp * tst2)) h(k + 1, k) = zero<T>();
    }
};

// C := op(U) C (horizontal: `rows` rows of H from row r0, columns c0 .. c1 in chunks of nh) or
// C := C U (vertical: rows r0 .. r1 in chunks of nv, `cols` columns from c0), through W.
template <class T>
void multiply_columns(zint nu, const T* u, zint ldu, T* hp, zint ldh, zint r0, zint c0, zint c1, zint nh,
                      T* wh, zint ldwh) {
    for (zint jcol = c0; jcol <= c1; jcol += nh) {
        const zint jlen = min_of(nh, c1 - jcol + 1);
        T* c = hp + (r0 - 1) + (jcol - 1) * ldh;
        Blas<T>::gemm(kAdjoint<T>, 'N', nu, jlen, nu, one<T>(), u, ldu, c, ldh, zero<T>(), wh, ldwh);
        lacpy('A', nu, jlen, wh, ldwh, c, ldh);
    }
}
template <class T>
void multiply_rows(zint nu, const T* u, zint ldu, T* mp, zint ldm, zint r0, zint r1, zint c0, zint nv, T* wv,
                   zint ldwv) {
    for (zint jrow = r0; jrow <= r1; jrow += nv) {
        const zint jlen = min_of(nv, r1 - jrow + 1);
        T* c = mp + (jrow - 1) + (c0 - 1) * ldm;
        Blas<T>::gemm('N', 'N', jlen, nu, nu, one<T>(), c, ldm, u, ldu, zero<T>(), wv, ldwv);
        lacpy('A', jlen, nu, wv, ldwv, c, ldm);
    }
}

}  // namespace

template <class T>
void laqr5(bool wantt, bool wantz, zint kacc22, zint n, zint ktop, zint kbot, zint nshifts,
           Eigenvalues<T> shifts, T* hp, zint ldh, zint iloz, zint ihiz, T* zp, zint ldz, T* vp, zint ldv,
           T* up, zint ldu, zint nv, T* wv, zint ldwv, zint nh, T* wh, zint ldwh) {
    if (nshifts < 2 || ktop >= kbot) return;
    if constexpr (!kIsComplex<T>) {
        // Real shifts in pairs and conjugate pairs together: move a real shift that breaks a pair
        // two places on (conjugate pairs are already adjacent).
        for (zint i = 0; i + 2 < nshifts; i += 2) {
            if (shifts.im[i] != -shifts.im[i + 1]) {
                const zcomplex first = shifts.get(i);
                shifts.set(i, shifts.get(i + 1));
                shifts.set(i + 1, shifts.get(i + 2));
                shifts.set(i + 2, first);
            }
        }
    }
    // An odd count drops the last shift, which the shuffle made real.
    const zint ns = nshifts - nshifts % 2;
    Sweep<T> sw{wantt,       wantz,     kacc22 == 1 || kacc22 == 2,
                n,           ktop,      kbot,
                {hp, ldh},   {zp, ldz}, {vp, ldv},
                {up, ldu},   iloz,      ihiz,
                dlamch("P"), 0.0};
    sw.smlnum = dlamch("S") * (static_cast<double>(n) / sw.ulp);
    const OneBased<T>& h = sw.h;
    const OneBased<T>& z = sw.z;
    const OneBased<T>& u = sw.u;
    const bool accum = sw.accum;
    if (ktop + 2 <= kbot) h(ktop + 2, ktop) = zero<T>();
    const zint nbmps = ns / 2;   // bulges in the chain
    const zint kdu = 4 * nbmps;  // the slab's width
    // The first column of bulge m (one-based) in V.
    const auto V = [&](zint m) { return sw.v.at(1, m); };

    for (zint incol = ktop - 2 * nbmps + 1; incol <= kbot - 2; incol += 2 * nbmps) {
        // jtop: the first row the right-hand updates reach near the diagonal.
        const zint jtop = accum ? max_of(ktop, incol) : (wantt ? 1 : ktop);
        const zint jbot = accum ? min_of(incol + kdu, kbot) : (wantt ? n : kbot);
        const zint ndcol = incol + kdu;
        if (accum) laset('A', kdu, kdu, zero<T>(), one<T>(), up, ldu);

        for (zint krcol = incol; krcol <= min_of(incol + 2 * nbmps - 1, kbot - 2); ++krcol) {
            // Bulges mtop .. mbot are in the active block now; a 2 by 2 one (m22) follows when the
            // last bulge has room for only that at the bottom.
            const zint mtop = max_of(1, (ktop - krcol) / 2 + 1);
            const zint mbot = min_of(nbmps, (kbot - krcol - 1) / 2);
            const zint m22 = mbot + 1;
            const bool bmp22 = mbot < nbmps && krcol + 2 * (m22 - 1) == kbot - 2;

            if (bmp22) {
                const zint k = krcol + 2 * (m22 - 1);
                T* v = V(m22);
                if (k == ktop - 1) {
                    laqr1(2, h.at(k + 1, k + 1), ldh, shifts.get(2 * m22 - 2), shifts.get(2 * m22 - 1), v);
                    T beta = v[0];
                    bulge_reflector(2, beta, v + 1, v[0]);
                } else {
                    T beta = h(k + 1, k);
                    v[1] = h(k + 2, k);
                    bulge_reflector(2, beta, v + 1, v[0]);
                    h(k + 1, k) = beta;
                    h(k + 2, k) = zero<T>();
                }
                for (zint j = jtop; j <= min_of(kbot, k + 3); ++j)
                    reflect2(v, false, h(j, k + 1), h(j, k + 2));
                for (zint j = k + 1; j <= jbot; ++j) reflect2(v, true, h(k + 1, j), h(k + 2, j));
                if (k >= ktop) sw.vigilant(k);
                if (accum) {
                    const zint kms = k - incol;
                    for (zint j = max_of(1, ktop - incol); j <= kdu; ++j)
                        reflect2(v, false, u(j, kms + 1), u(j, kms + 2));
                } else if (wantz) {
                    for (zint j = iloz; j <= ihiz; ++j) reflect2(v, false, z(j, k + 1), z(j, k + 2));
                }
            }

            // The chain of 3 by 3 reflectors, from the bottom bulge up.
            for (zint m = mbot; m >= mtop; --m) {
                const zint k = krcol + 2 * (m - 1);
                T* v = V(m);
                if (k == ktop - 1) {
                    laqr1(3, h.at(ktop, ktop), ldh, shifts.get(2 * m - 2), shifts.get(2 * m - 1), v);
                    T alpha = v[0];
                    bulge_reflector(3, alpha, v + 1, v[0]);
                } else {
                    // The row below the bulge, whose update from the left was put off: its first
                    // two entries are zero, so only the third enters.
                    const T refsum = v[0] * v[2] * h(k + 3, k + 2);
                    h(k + 3, k) = -refsum;
                    h(k + 3, k + 1) = -refsum * conj(v[1]);
                    h(k + 3, k + 2) -= refsum * conj(v[2]);
                    // The reflector that moves the bulge one step.
                    T beta = h(k + 1, k);
                    v[1] = h(k + 2, k);
                    v[2] = h(k + 3, k);
                    bulge_reflector(3, beta, v + 1, v[0]);
                    if (!is_zero(h(k + 3, k)) || !is_zero(h(k + 3, k + 1)) || is_zero(h(k + 3, k + 2))) {
                        h(k + 1, k) = beta;
                        h(k + 2, k) = zero<T>();
                        h(k + 3, k) = zero<T>();
                    } else {
                        // The bulge has collapsed (vigilant deflation or underflow): try a fresh one
                        // from the shifts, kept only when its fill below the subdiagonal is
                        // negligible.
                        T vt[3];
                        laqr1(3, h.at(k + 1, k + 1), ldh, shifts.get(2 * m - 2), shifts.get(2 * m - 1), vt);
                        T alpha = vt[0];
                        bulge_reflector(3, alpha, vt + 1, vt[0]);
                        const T refsum2 = conj(vt[0]) * (h(k + 1, k) + conj(vt[1]) * h(k + 2, k));
                        if (abs1(h(k + 2, k) - refsum2 * vt[1]) + abs1(refsum2 * vt[2]) >
                            sw.ulp * (abs1(h(k, k)) + abs1(h(k + 1, k + 1)) + abs1(h(k + 2, k + 2)))) {
                            h(k + 1, k) = beta;
                            h(k + 2, k) = zero<T>();
                            h(k + 3, k) = zero<T>();
                        } else {
                            h(k + 1, k) -= refsum2;
                            h(k + 2, k) = zero<T>();
                            h(k + 3, k) = zero<T>();
                            v[0] = vt[0];
                            v[1] = vt[1];
                            v[2] = vt[2];
                        }
                    }
                }
                // From the right, and the first column of the left update: the vigilant test
                // needs both.
                for (zint j = jtop; j <= min_of(kbot, k + 3); ++j)
                    reflect3(v, false, h(j, k + 1), h(j, k + 2), h(j, k + 3));
                reflect3(v, true, h(k + 1, k + 1), h(k + 2, k + 1), h(k + 3, k + 1));
                if (k >= ktop) sw.vigilant(k);
            }

            // The rest of the left updates, row by row of the near-diagonal part.
            for (zint m = mbot; m >= mtop; --m) {
                const zint k = krcol + 2 * (m - 1);
                const T* v = V(m);
                for (zint j = max_of(ktop, krcol + 2 * m); j <= jbot; ++j)
                    reflect3(v, true, h(k + 1, j), h(k + 2, j), h(k + 3, j));
            }

            if (accum) {
                for (zint m = mbot; m >= mtop; --m) {
                    const zint k = krcol + 2 * (m - 1), kms = k - incol;
                    const T* v = V(m);
                    for (zint j = max_of(1, ktop - incol); j <= kdu; ++j)
                        reflect3(v, false, u(j, kms + 1), u(j, kms + 2), u(j, kms + 3));
                }
            } else if (wantz) {
                for (zint m = mbot; m >= mtop; --m) {
                    const zint k = krcol + 2 * (m - 1);
                    const T* v = V(m);
                    for (zint j = iloz; j <= ihiz; ++j)
                        reflect3(v, false, z(j, k + 1), z(j, k + 2), z(j, k + 3));
                }
            }
        }

        if (!accum) continue;
        // The far-from-diagonal parts take U. k1, nu: the part of U in use when the slab starts
        // above ktop or ends below kbot.
        const zint k1 = max_of(1, ktop - incol);
        const zint nu = (kdu - max_of(0, ndcol - kbot)) - k1 + 1;
        const T* uk = u.at(k1, k1);
        const zint r0 = incol + k1;
        // The active block: columns up to kbot, rows from ktop.
        multiply_columns(nu, uk, ldu, hp, ldh, r0, min_of(ndcol, kbot) + 1, kbot, nh, wh, ldwh);
        multiply_rows(nu, uk, ldu, hp, ldh, ktop, max_of(ktop, incol) - 1, r0, nv, wv, ldwv);
        // Outside it, only for T.
        if (wantt) {
            multiply_columns(nu, uk, ldu, hp, ldh, r0, kbot + 1, n, nh, wh, ldwh);
            multiply_rows(nu, uk, ldu, hp, ldh, 1, ktop - 1, r0, nv, wv, ldwv);
        }
        if (wantz) multiply_rows(nu, uk, ldu, zp, ldz, iloz, ihiz, r0, nv, wv, ldwv);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(laqr5)
