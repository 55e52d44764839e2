// hgeqz: the QZ iteration of Moler and Stewart on a Hessenberg-triangular pair (H, T). Each step
// first looks for a negligible subdiagonal entry of H (a split) or a negligible diagonal entry of T
// (an infinite eigenvalue, which is chased to the bottom of the active block, or to its top where
// H has a split there too, and deflated); otherwise it runs an implicit shifted QZ sweep on the
// active block. Complex data takes one Wilkinson-type shift per sweep; real data takes a real
// shift or a complex pair (the Francis double-shift sweep with 3-entry reflectors), and a 2 by 2
// block with complex eigenvalues is put in standard form (T diagonal, positive) and deflated.
// Every tenth sweep without deflation uses an exceptional shift; 30 sweeps per row are allowed.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/generalized/generalized.hpp"
#include "lapack/generalized/generalized_support.hpp"

namespace zor {

namespace {

// The Frobenius norm of the upper Hessenberg (band = 1) or upper triangular (band = 0) matrix of
// order n at m(first, first).
template <class T>
double upper_norm(const OneBased<T>& m, zint first, zint n, zint band) {
    double scale = 0.0, sumsq = 1.0;
    for (zint j = 0; j < n; ++j) lassq(min_of(j + 1 + band, n), m.at(first, first + j), 1, scale, sumsq);
    return scale * std::sqrt(sumsq);
}

template <class T>
struct Qz {
    OneBased<T> h, t, q, z;
    zint n;
    bool wantt, wantq, wantz;
    Eigenvalues<T> alpha;
    T* beta;
    double safmin, ulp, atol, btol, ascale, bscale;
    zint ifrstm = 1, ilastm = 0;

    void rows(zint i, zint first, double c, T s) const {
        rotate_rows(h, i, first, ilastm, c, s);
        rotate_rows(t, i, first, ilastm, c, s);
        if (wantq) rotate_columns(q, i, i + 1, 1, n, c, conj(s));
    }
    void z_columns(zint j, zint k, double c, T s) const {
        if (wantz) rotate_columns(z, j, k, 1, n, c, s);
    }

    // The eigenvalue at row j once it is 1 by 1: T(j, j) made real and non-negative by scaling
    // column j (of H and T over rows `first` .. j, of Z).
    void deflate_one(zint j, zint first) const {
        if constexpr (kIsComplex<T>) {
            const double absb = abs(t(j, j));
            if (absb > safmin) {
                const T sign = conj(t(j, j) / absb);
                t(j, j) = from_real<T>(absb);
                if (wantt) {
                    Blas<T>::scal(j - first, sign, t.at(first, j), 1);
                    Blas<T>::scal(j - first + 1, sign, h.at(first, j), 1);
                } else {
                    h(j, j) = h(j, j) * sign;
                }
                if (wantz) Blas<T>::scal(n, sign, z.at(1, j), 1);
            } else {
                t(j, j) = zero<T>();
            }
            alpha.set(j - 1, h(j, j));
        } else {
            if (t(j, j) < 0.0) {
                if (wantt) {
                    for (zint i = first; i <= j; ++i) {
                        h(i, j) = -h(i, j);
                        t(i, j) = -t(i, j);
                    }
                } else {
                    h(j, j) = -h(j, j);
                    t(j, j) = -t(j, j);
                }
                if (wantz)
                    for (zint i = 1; i <= n; ++i) z(i, j) = -z(i, j);
            }
            alpha.set(j - 1, {h(j, j), 0.0});
        }
        beta[j - 1] = t(j, j);
    }

    // A zero T(ilast, ilast): one rotation of columns ilast - 1, ilast zeroes H(ilast, ilast - 1).
    void zero_bottom(zint ilast) const {
        double c = 0.0;
        T s{}, r{};
        lartg(h(ilast, ilast), h(ilast, ilast - 1), c, s, r);
        h(ilast, ilast) = r;
        h(ilast, ilast - 1) = zero<T>();
        rotate_columns(h, ilast, ilast - 1, ifrstm, ilast - 1, c, s);
        rotate_columns(t, ilast, ilast - 1, ifrstm, ilast - 1, c, s);
        z_columns(ilast, ilast - 1, c, s);
    }

    // The single-shift sweep over istart .. ilast, started by the rotation of (first, second).
    void single_sweep(zint istart, zint ilast, T first, T second) const {
        double c = 0.0;
        T s{}, r{};
        lartg(first, second, c, s, r);
        for (zint j = istart; j < ilast; ++j) {
            if (j > istart) {
                lartg(h(j, j - 1), h(j + 1, j - 1), c, s, r);
                h(j, j - 1) = r;
                h(j + 1, j - 1) = zero<T>();
            }
            rows(j, j, c, s);
            lartg(t(j + 1, j + 1), t(j + 1, j), c, s, r);
            t(j + 1, j + 1) = r;
            t(j + 1, j) = zero<T>();
            rotate_columns(h, j + 1, j, ifrstm, min_of(j + 2, ilast), c, s);
            rotate_columns(t, j + 1, j, ifrstm, j, c, s);
            z_columns(j + 1, j, c, s);
        }
    }

    // The start of a sweep with shift w/s1 (s1 real): from the bottom, the row where two small
    // consecutive subdiagonal entries let the sweep begin; the sweep from there.
    void shifted_sweep(zint ifirst, zint ilast, double s1, T w) const {
        zint istart = ifirst;
        for (zint j = ilast - 1; j > ifirst; --j) {
            double temp = abs1(s1 * h(j, j - 1));
            double temp2 = abs1(s1 * h(j, j) - w * t(j, j));
            const double tempr = std::fmax(temp, temp2);
            if (tempr < 1.0 && tempr != 0.0) {
                temp /= tempr;
                temp2 /= tempr;
            }
            if (abs1(ascale * h(j + 1, j)) * temp <= (ascale * atol) * temp2) {
                istart = j;
                break;
            }
        }
        single_sweep(istart, ilast, s1 * h(istart, istart) - w * t(istart, istart),
                     s1 * h(istart + 1, istart));
    }

    void complex_step(zint ifirst, zint ilast, zint iiter, T& eshift) const;
    // Answers the new ilast when a 2 by 2 block deflated, else ilast.
    zint real_step(zint ifirst, zint ilast, zint& iiter, double& eshift, zint maxit) const;
    void standardise_block(zint il) const;
    void double_sweep(zint ifirst, zint ilast) const;
};

template <class T>
void Qz<T>::complex_step(zint ifirst, zint ilast, zint iiter, T& eshift) const {
    if constexpr (kIsComplex<T>) {
        T shift{};
        if (iiter % 10 != 0) {
            // The eigenvalue of the bottom 2 by 2 of H T⁻¹ nearer to its last diagonal entry.
            const T u12 = (bscale * t(ilast - 1, ilast)) / (bscale * t(ilast, ilast));
            const T ad11 = (ascale * h(ilast - 1, ilast - 1)) / (bscale * t(ilast - 1, ilast - 1));
            const T ad21 = (ascale * h(ilast, ilast - 1)) / (bscale * t(ilast - 1, ilast - 1));
            const T ad12 = (ascale * h(ilast - 1, ilast)) / (bscale * t(ilast, ilast));
            const T ad22 = (ascale * h(ilast, ilast)) / (bscale * t(ilast, ilast));
            const T abi22 = ad22 - u12 * ad21;
            const T abi12 = ad12 - u12 * ad11;
            shift = abi22;
            const T ctemp = complex_sqrt(abi12) * complex_sqrt(ad21);
            if (!is_zero(ctemp)) {
                const T x = 0.5 * (ad11 - shift);
                const double temp2 = abs1(x);
                const double temp = std::fmax(abs1(ctemp), temp2);
                const T xs = x / temp, cs = ctemp / temp;
                T y = temp * complex_sqrt(xs * xs + cs * cs);
                if (temp2 > 0.0) {
                    const T xd = x / temp2;
                    if (xd.re * y.re + xd.im * y.im < 0.0) y = -y;
                }
                shift = shift - ctemp * (ctemp / (x + y));
            }
        } else {
            // Exceptional shifts: the accumulated ratios of the bottom entries.
            if (iiter % 20 == 0 && bscale * abs1(t(ilast, ilast)) > safmin) {
                eshift = eshift + (ascale * h(ilast, ilast)) / (bscale * t(ilast, ilast));
            } else {
                eshift = eshift + (ascale * h(ilast, ilast - 1)) / (bscale * t(ilast - 1, ilast - 1));
            }
            shift = eshift;
        }
        // The sweep with shift `shift` on the scaled pencil: s1 = 1 on (ascale H, bscale T).
        zint istart = ifirst;
        for (zint j = ilast - 1; j > ifirst; --j) {
            const T ctemp = ascale * h(j, j) - shift * (bscale * t(j, j));
            double temp = abs1(ctemp);
            double temp2 = ascale * abs1(h(j + 1, j));
            const double tempr = std::fmax(temp, temp2);
            if (tempr < 1.0 && tempr != 0.0) {
                temp /= tempr;
                temp2 /= tempr;
            }
            if (abs1(h(j, j - 1)) * temp2 <= temp * atol) {
                istart = j;
                break;
            }
        }
        single_sweep(istart, ilast, ascale * h(istart, istart) - shift * (bscale * t(istart, istart)),
                     ascale * h(istart + 1, istart));
    }
}

// Rows and columns il, il + 1: T's 2 by 2 made diagonal with a positive first entry by the
// rotations of its SVD, the second made non-negative by negating a column.
template <class T>
void Qz<T>::standardise_block(zint il) const {
    if constexpr (!kIsComplex<T>) {
        double b22 = 0.0, b11 = 0.0, sr = 0.0, cr = 0.0, sl = 0.0, cl = 0.0;
        lasv2(t(il, il), t(il, il + 1), t(il + 1, il + 1), b22, b11, sr, cr, sl, cl);
        if (b11 < 0.0) {
            cr = -cr;
            sr = -sr;
            b11 = -b11;
            b22 = -b22;
        }
        rotate_rows(h, il, il, ilastm, cl, sl);
        rotate_columns(h, il, il + 1, ifrstm, il + 1, cr, sr);
        if (il + 1 < ilastm) rotate_rows(t, il, il + 2, ilastm, cl, sl);
        if (ifrstm < il) rotate_columns(t, il, il + 1, ifrstm, il - 1, cr, sr);
        if (wantq) rotate_columns(q, il, il + 1, 1, n, cl, sl);
        if (wantz) rotate_columns(z, il, il + 1, 1, n, cr, sr);
        t(il, il) = b11;
        t(il, il + 1) = 0.0;
        t(il + 1, il) = 0.0;
        t(il + 1, il + 1) = b22;
        if (b22 < 0.0) {
            for (zint i = ifrstm; i <= il + 1; ++i) {
                h(i, il + 1) = -h(i, il + 1);
                t(i, il + 1) = -t(i, il + 1);
            }
            if (wantz)
                for (zint i = 1; i <= n; ++i) z(i, il + 1) = -z(i, il + 1);
        }
    }
}

// The Francis double-shift sweep over ifirst .. ilast with the two eigenvalues of the bottom 2 by
// 2 of the (scaled) pencil as shifts, implicitly: the first column of the shifted product from the
// top 3 by 2 entries, then 3-entry reflectors from the left chase the bulge and reflectors from
// the right (their vectors from a 2 by 2 solve with T) keep T triangular; rotations finish.
template <class T>
void Qz<T>::double_sweep(zint ifirst, zint ilast) const {
    if constexpr (!kIsComplex<T>) {
        const zint il = ilast;
        const double ad11 = (ascale * h(il - 1, il - 1)) / (bscale * t(il - 1, il - 1));
        const double ad21 = (ascale * h(il, il - 1)) / (bscale * t(il - 1, il - 1));
        const double ad12 = (ascale * h(il - 1, il)) / (bscale * t(il, il));
        const double ad22 = (ascale * h(il, il)) / (bscale * t(il, il));
        const double u12 = t(il - 1, il) / t(il, il);
        const zint f = ifirst;
        const double ad11l = (ascale * h(f, f)) / (bscale * t(f, f));
        const double ad21l = (ascale * h(f + 1, f)) / (bscale * t(f, f));
        const double ad12l = (ascale * h(f, f + 1)) / (bscale * t(f + 1, f + 1));
        const double ad22l = (ascale * h(f + 1, f + 1)) / (bscale * t(f + 1, f + 1));
        const double ad32l = (ascale * h(f + 2, f + 1)) / (bscale * t(f + 1, f + 1));
        const double u12l = t(f, f + 1) / t(f + 1, f + 1);
        double v[3];
        v[0] = (ad11 - ad11l) * (ad22 - ad11l) - ad12 * ad21 + ad21 * u12 * ad11l +
               (ad12l - ad11l * u12l) * ad21l;
        v[1] = ((ad22l - ad11l) - ad21l * u12l - (ad11 - ad11l) - (ad22 - ad11l) + ad21 * u12) * ad21l;
        v[2] = ad32l * ad21l;
        double tau = 0.0;
        larfg(3, v[0], v + 1, 1, tau);
        v[0] = 1.0;
        for (zint j = f; j + 2 <= il; ++j) {
            if (j > f) {
                v[0] = h(j, j - 1);
                v[1] = h(j + 1, j - 1);
                v[2] = h(j + 2, j - 1);
                larfg(3, h(j, j - 1), v + 1, 1, tau);
                v[0] = 1.0;
                h(j + 1, j - 1) = 0.0;
                h(j + 2, j - 1) = 0.0;
            }
            // The reflector from the left on rows j .. j + 2.
            for (zint jc = j; jc <= ilastm; ++jc) {
                double w = tau * (h(j, jc) + v[1] * h(j + 1, jc) + v[2] * h(j + 2, jc));
                h(j, jc) -= w;
                h(j + 1, jc) -= w * v[1];
                h(j + 2, jc) -= w * v[2];
                w = tau * (t(j, jc) + v[1] * t(j + 1, jc) + v[2] * t(j + 2, jc));
                t(j, jc) -= w;
                t(j + 1, jc) -= w * v[1];
                t(j + 2, jc) -= w * v[2];
            }
            if (wantq) {
                for (zint jr = 1; jr <= n; ++jr) {
                    const double w = tau * (q(jr, j) + v[1] * q(jr, j + 1) + v[2] * q(jr, j + 2));
                    q(jr, j) -= w;
                    q(jr, j + 1) -= w * v[1];
                    q(jr, j + 2) -= w * v[2];
                }
            }
            // Column j of T below its diagonal: the reflector from the right whose first column
            // is proportional to (scale; u), with T(j+1 .. j+2, j+1 .. j+2) u = -scale T(j+1 ..
            // j+2, j) solved by elimination with pivoting (scale < 1 keeps u finite).
            bool pivoted = false;
            double scale = 1.0, u1 = 0.0, u2 = 0.0;
            const double temp = std::fmax(std::fabs(t(j + 1, j + 1)), std::fabs(t(j + 1, j + 2)));
            const double temp2 = std::fmax(std::fabs(t(j + 2, j + 1)), std::fabs(t(j + 2, j + 2)));
            if (std::fmax(temp, temp2) < safmin) {
                scale = 0.0;
                u1 = 1.0;
                u2 = 0.0;
            } else {
                double w11, w21, w12, w22;
                if (temp >= temp2) {
                    w11 = t(j + 1, j + 1);
                    w21 = t(j + 2, j + 1);
                    w12 = t(j + 1, j + 2);
                    w22 = t(j + 2, j + 2);
                    u1 = t(j + 1, j);
                    u2 = t(j + 2, j);
                } else {
                    w21 = t(j + 1, j + 1);
                    w11 = t(j + 2, j + 1);
                    w22 = t(j + 1, j + 2);
                    w12 = t(j + 2, j + 2);
                    u2 = t(j + 1, j);
                    u1 = t(j + 2, j);
                }
                if (std::fabs(w12) > std::fabs(w11)) {
                    pivoted = true;
                    std::swap(w12, w11);
                    std::swap(w22, w21);
                }
                const double m = w21 / w11;
                u2 -= m * u1;
                w22 -= m * w12;
                if (std::fabs(w22) < safmin) {
                    scale = 0.0;
                    u2 = 1.0;
                    u1 = -w12 / w11;
                } else {
                    if (std::fabs(w22) < std::fabs(u2)) scale = std::fabs(w22 / u2);
                    if (std::fabs(w11) < std::fabs(u1)) scale = std::fmin(scale, std::fabs(w11 / u1));
                    u2 = (scale * u2) / w22;
                    u1 = (scale * u1 - w12 * u2) / w11;
                }
            }
            if (pivoted) std::swap(u1, u2);
            const double t1 = std::sqrt(scale * scale + u1 * u1 + u2 * u2);
            tau = 1.0 + scale / t1;
            const double vs = -1.0 / (scale + t1);
            v[0] = 1.0;
            v[1] = vs * u1;
            v[2] = vs * u2;
            auto right = [&](const OneBased<double>& m, zint first, zint last) {
                for (zint jr = first; jr <= last; ++jr) {
                    const double w = tau * (m(jr, j) + v[1] * m(jr, j + 1) + v[2] * m(jr, j + 2));
                    m(jr, j) -= w;
                    m(jr, j + 1) -= w * v[1];
                    m(jr, j + 2) -= w * v[2];
                }
            };
            right(h, ifrstm, min_of(j + 3, il));
            right(t, ifrstm, j + 2);
            if (wantz) right(z, 1, n);
            t(j + 1, j) = 0.0;
            t(j + 2, j) = 0.0;
        }
        // The last two rows and columns by rotations.
        const zint j = il - 1;
        double c = 0.0, s = 0.0, r = 0.0;
        lartg(h(j, j - 1), h(j + 1, j - 1), c, s, r);
        h(j, j - 1) = r;
        h(j + 1, j - 1) = 0.0;
        rows(j, j, c, s);
        lartg(t(j + 1, j + 1), t(j + 1, j), c, s, r);
        t(j + 1, j + 1) = r;
        t(j + 1, j) = 0.0;
        rotate_columns(h, j + 1, j, ifrstm, il, c, s);
        rotate_columns(t, j + 1, j, ifrstm, il - 1, c, s);
        z_columns(j + 1, j, c, s);
    }
}

template <class T>
zint Qz<T>::real_step(zint ifirst, zint ilast, zint& iiter, double& eshift, zint maxit) const {
    if constexpr (kIsComplex<T>) {
        return ilast;
    } else {
        constexpr double kSafety = 100.0;
        const double safmax = 1.0 / safmin;
        // At most two passes: a 2 by 2 block whose eigenvalues turn out real after standardising
        // takes the single-shift sweep in the second.
        for (int pass = 0; pass < 2; ++pass) {
            if (pass > 0) ++iiter;
            double s1 = 1.0, wr = 0.0, wi = 0.0;
            if (iiter % 10 == 0) {
                // Exceptional single shift.
                if ((static_cast<double>(maxit) * safmin) * std::fabs(h(ilast, ilast - 1)) <
                    std::fabs(t(ilast - 1, ilast - 1))) {
                    eshift = h(ilast, ilast - 1) / t(ilast - 1, ilast - 1);
                } else {
                    eshift += 1.0 / (safmin * static_cast<double>(maxit));
                }
                wr = eshift;
            } else {
                // The eigenvalues of the bottom 2 by 2; a real one, that nearer T⁻¹H's last entry.
                double s2 = 0.0, wr2 = 0.0;
                lag2(h.at(ilast - 1, ilast - 1), h.ld, t.at(ilast - 1, ilast - 1), t.ld, safmin * kSafety, s1,
                     s2, wr, wr2, wi);
                if (std::fabs((wr / s1) * t(ilast, ilast) - h(ilast, ilast)) >
                    std::fabs((wr2 / s2) * t(ilast, ilast) - h(ilast, ilast))) {
                    std::swap(wr, wr2);
                    std::swap(s1, s2);
                }
            }
            if (wi == 0.0) {
                // Single real shift wr/s1, both scaled down where their products could overflow.
                double scale = 1.0;
                double limit = std::fmin(ascale, 1.0) * (0.5 * safmax);
                if (s1 > limit) scale = limit / s1;
                limit = std::fmin(bscale, 1.0) * (0.5 * safmax);
                if (std::fabs(wr) > limit) scale = std::fmin(scale, limit / std::fabs(wr));
                shifted_sweep(ifirst, ilast, scale * s1, scale * wr);
                return ilast;
            }
            if (ifirst + 1 != ilast) {
                double_sweep(ifirst, ilast);
                return ilast;
            }
            // A 2 by 2 block: standardised, and deflated when its eigenvalues stay complex.
            standardise_block(ilast - 1);
            double ar[2], ai[2], br[2];
            if (!pair_values(h.at(ilast - 1, ilast - 1), h.ld, t.at(ilast - 1, ilast - 1), t.ld, safmin, ar,
                             ai, br))
                continue;
            for (int k = 0; k < 2; ++k) {
                beta[ilast - 2 + k] = br[k];
                alpha.set(ilast - 2 + k, {ar[k], ai[k]});
            }
            return ifirst - 1;
        }
        return ilast;
    }
}

}  // namespace

template <class T>
zint check_hgeqz(char job, char compq, char compz, zint n, zint ilo, zint ihi, zint ldh, zint ldt, zint ldq,
                 zint ldz, zint lwork) {
    const bool wantq = lsame(compq, 'I') || lsame(compq, 'V');
    const bool wantz = lsame(compz, 'I') || lsame(compz, 'V');
    const int shift = kIsComplex<T> ? 1 : 0;
    return check_arguments(routine_name<T>("DHGEQZ", "ZHGEQZ"),
                           {{!lsame(job, 'E') && !lsame(job, 'S'), 1},
                            {!valid_compq(compq), 2},
                            {!valid_compq(compz), 3},
                            {n < 0, 4},
                            {ilo < 1, 5},
                            {ihi > n || ihi < ilo - 1, 6},
                            {ldh < n, 8},
                            {ldt < n, 10},
                            {ldq < 1 || (wantq && ldq < n), 15 - shift},
                            {ldz < 1 || (wantz && ldz < n), 17 - shift},
                            {lwork < max_of(1, n) && lwork != -1, 19 - shift}});
}

template <class T>
void hgeqz(char job, char compq, char compz, zint n, zint ilo, zint ihi, T* h, zint ldh, T* t, zint ldt,
           Eigenvalues<T> alpha, T* beta, T* q, zint ldq, T* z, zint ldz, T* work, zint lwork, double*,
           zint& info) {
    info = check_hgeqz<T>(job, compq, compz, n, ilo, ihi, ldh, ldt, ldq, ldz, lwork);
    if (info != 0) return;
    work[0] = from_real<T>(static_cast<double>(max_of(1, n)));
    if (lwork == -1 || n <= 0) return;
    Qz<T> qz{{h, ldh},
             {t, ldt},
             {q, ldq},
             {z, ldz},
             n,
             lsame(job, 'S'),
             !lsame(compq, 'N'),
             !lsame(compz, 'N'),
             alpha,
             beta,
             0,
             0,
             0,
             0,
             0,
             0};
    if (lsame(compq, 'I')) laset('F', n, n, zero<T>(), one<T>(), q, ldq);
    if (lsame(compz, 'I')) laset('F', n, n, zero<T>(), one<T>(), z, ldz);
    const OneBased<T>& H = qz.h;
    const OneBased<T>& Tm = qz.t;
    const zint in = ihi + 1 - ilo;
    qz.safmin = dlamch("S");
    qz.ulp = dlamch("E") * dlamch("B");
    const double anorm = in > 0 ? upper_norm(H, ilo, in, 1) : 0.0;
    const double bnorm = in > 0 ? upper_norm(Tm, ilo, in, 0) : 0.0;
    qz.atol = std::fmax(qz.safmin, qz.ulp * anorm);
    qz.btol = std::fmax(qz.safmin, qz.ulp * bnorm);
    qz.ascale = 1.0 / std::fmax(qz.safmin, anorm);
    qz.bscale = 1.0 / std::fmax(qz.safmin, bnorm);
    const double safmin = qz.safmin, ulp = qz.ulp, atol = qz.atol, btol = qz.btol;

    // The eigenvalues below the active block.
    for (zint j = ihi + 1; j <= n; ++j) qz.deflate_one(j, 1);
    work[0] = from_real<T>(static_cast<double>(n));
    if (ihi >= ilo && !(std::isfinite(anorm) && std::isfinite(bnorm))) {
        // Infinite or NaN entries: no test could ever pass.
        info = ihi;
        return;
    }

    zint ilast = ihi;
    qz.ifrstm = qz.wantt ? 1 : ilo;
    qz.ilastm = qz.wantt ? n : ihi;
    zint iiter = 0;
    T eshift{};
    double real_eshift = 0.0;
    const zint maxit = 30 * in;
    bool converged = ilast < ilo;
    auto negligible_subdiagonal = [&](zint j) {
        return abs1(H(j, j - 1)) <= std::fmax(safmin, ulp * (abs1(H(j, j)) + abs1(H(j - 1, j - 1))));
    };
    for (zint jiter = 1; jiter <= maxit && !converged; ++jiter) {
        enum class Next { Deflate, ZeroBottom, Step } next = Next::Step;
        zint ifirst = ilo;
        bool decided = false;
        if (ilast == ilo) {
            next = Next::Deflate;
            decided = true;
        } else if (negligible_subdiagonal(ilast)) {
            H(ilast, ilast - 1) = zero<T>();
            next = Next::Deflate;
            decided = true;
        } else if (abs(Tm(ilast, ilast)) <= btol) {
            Tm(ilast, ilast) = zero<T>();
            next = Next::ZeroBottom;
            decided = true;
        }
        // From the bottom up: a split of H, or a negligible diagonal entry of T.
        for (zint j = ilast - 1; !decided && j >= ilo; --j) {
            bool ilazro = j == ilo;
            if (!ilazro && negligible_subdiagonal(j)) {
                H(j, j - 1) = zero<T>();
                ilazro = true;
            }
            if (abs(Tm(j, j)) < btol) {
                Tm(j, j) = zero<T>();
                // Two consecutive small subdiagonal entries count as a split too.
                bool ilazr2 = false;
                if (!ilazro) {
                    double temp = abs1(H(j, j - 1)), temp2 = abs1(H(j, j));
                    const double tempr = std::fmax(temp, temp2);
                    if (tempr < 1.0 && tempr != 0.0) {
                        temp /= tempr;
                        temp2 /= tempr;
                    }
                    ilazr2 = temp * (qz.ascale * abs1(H(j + 1, j))) <= temp2 * (qz.ascale * atol);
                }
                decided = true;
                next = Next::ZeroBottom;
                if (ilazro || ilazr2) {
                    // The zero of T moves down through rotations of rows that keep H Hessenberg
                    // until T's diagonal is large enough again.
                    for (zint jch = j; jch < ilast; ++jch) {
                        double c = 0.0;
                        T s{}, r{};
                        lartg(H(jch, jch), H(jch + 1, jch), c, s, r);
                        H(jch, jch) = r;
                        H(jch + 1, jch) = zero<T>();
                        qz.rows(jch, jch + 1, c, s);
                        if (ilazr2) H(jch, jch - 1) = H(jch, jch - 1) * c;
                        ilazr2 = false;
                        if (abs1(Tm(jch + 1, jch + 1)) >= btol) {
                            if (jch + 1 >= ilast) {
                                next = Next::Deflate;
                            } else {
                                ifirst = jch + 1;
                                next = Next::Step;
                            }
                            break;
                        }
                        Tm(jch + 1, jch + 1) = zero<T>();
                    }
                } else {
                    // The zero of T is chased to the bottom, H kept Hessenberg by column rotations.
                    for (zint jch = j; jch < ilast; ++jch) {
                        double c = 0.0;
                        T s{}, r{};
                        lartg(Tm(jch, jch + 1), Tm(jch + 1, jch + 1), c, s, r);
                        Tm(jch, jch + 1) = r;
                        Tm(jch + 1, jch + 1) = zero<T>();
                        if (jch < qz.ilastm - 1) rotate_rows(Tm, jch, jch + 2, qz.ilastm, c, s);
                        rotate_rows(H, jch, jch - 1, qz.ilastm, c, s);
                        if (qz.wantq) rotate_columns(qz.q, jch, jch + 1, 1, n, c, conj(s));
                        lartg(H(jch + 1, jch), H(jch + 1, jch - 1), c, s, r);
                        H(jch + 1, jch) = r;
                        H(jch + 1, jch - 1) = zero<T>();
                        rotate_columns(H, jch, jch - 1, qz.ifrstm, jch, c, s);
                        rotate_columns(Tm, jch, jch - 1, qz.ifrstm, jch - 1, c, s);
                        qz.z_columns(jch, jch - 1, c, s);
                    }
                }
            } else if (ilazro) {
                ifirst = j;
                next = Next::Step;
                decided = true;
            }
        }
        if (next == Next::ZeroBottom) {
            qz.zero_bottom(ilast);
            next = Next::Deflate;
        }
        if (next == Next::Deflate) {
            qz.deflate_one(ilast, qz.ifrstm);
            --ilast;
        } else {
            ++iiter;
            if (!qz.wantt) qz.ifrstm = ifirst;
            const zint before = ilast;
            if constexpr (kIsComplex<T>) {
                qz.complex_step(ifirst, ilast, iiter, eshift);
            } else {
                ilast = qz.real_step(ifirst, ilast, iiter, real_eshift, maxit);
            }
            if (ilast == before) continue;
        }
        // A deflation: the next active block.
        converged = ilast < ilo;
        iiter = 0;
        eshift = T{};
        real_eshift = 0.0;
        if (!qz.wantt) {
            qz.ilastm = ilast;
            if (qz.ifrstm > ilast) qz.ifrstm = ilo;
        }
    }
    if (!converged) {
        info = ilast;
        return;
    }
    // The eigenvalues above the active block.
    for (zint j = 1; j < ilo; ++j) qz.deflate_one(j, 1);
}

}  // namespace zor

ZOR_INSTANTIATE(hgeqz)
ZOR_INSTANTIATE(check_hgeqz)
