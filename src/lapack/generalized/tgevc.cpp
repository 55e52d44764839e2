// tgevc: eigenvectors of a generalized Schur pair (S, P) by substitution. For the eigenvalue
// (α, β) of diagonal block k, with the pencil C = a S - b P scaled so that a ~ β and b ~ α are of
// order one, a right vector solves C x = 0 upwards from the block (x = 1 there), a left vector
// Cᴴ y = 0 downwards. Each diagonal solve is perturbed to at least dmin = ulp (|a| ||S|| + |b|
// ||P||) and the vector is rescaled whenever the next update could overflow. Real data solves its
// 2 by 2 blocks (complex pairs, with P diagonal beside them) through laln2, carrying real and
// imaginary parts in two arrays.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/generalized/generalized.hpp"
#include "lapack/generalized/generalized_support.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"

namespace zor {

namespace {

// Whether rows j, j + 1 (one-based) of the real S form a 2 by 2 block.
template <class T>
bool pair_at(const OneBased<const T>& s, zint n, zint j) {
    if constexpr (kIsComplex<T>) {
        return false;
    } else {
        return j < n && s(j + 1, j) != 0.0;
    }
}

struct Scales {
    double safmin, ulp, bignum, small, big, anorm, bnorm, ascale, bscale;
};

// The scaled eigenvalue of the 1 by 1 block at j: C = acoef S - bcoef P, with acoef and bcoef
// raised where they would make the solves lose accuracy to underflow.
template <class T>
void scaled_eigenvalue(const OneBased<const T>& s, const OneBased<const T>& p, zint j, const Scales& c,
                       double& acoef, T& bcoef) {
    const double temp =
        1.0 / std::fmax(std::fmax(abs1(s(j, j)) * c.ascale, std::fabs(real(p(j, j))) * c.bscale), c.safmin);
    const T salpha = (temp * s(j, j)) * c.ascale;
    const double sbeta = (temp * real(p(j, j))) * c.bscale;
    acoef = sbeta * c.ascale;
    bcoef = salpha * c.bscale;
    const bool lsa = std::fabs(sbeta) >= c.safmin && std::fabs(acoef) < c.small;
    const bool lsb = abs1(salpha) >= c.safmin && abs1(bcoef) < c.small;
    double scale = 1.0;
    if (lsa) scale = (c.small / std::fabs(sbeta)) * std::fmin(c.anorm, c.big);
    if (lsb) scale = std::fmax(scale, (c.small / abs1(salpha)) * std::fmin(c.bnorm, c.big));
    if (lsa || lsb) {
        scale = std::fmin(scale, 1.0 / (c.safmin * std::fmax(1.0, std::fmax(std::fabs(acoef), abs1(bcoef)))));
        acoef = lsa ? c.ascale * (scale * sbeta) : scale * acoef;
        bcoef = lsb ? c.bscale * (scale * salpha) : scale * bcoef;
    }
}

// One eigenvector problem: solves by blocks, the vector in (xr, xi) for real data (xi only for a
// complex pair) or x for complex data.
template <class T>
struct VectorSolve {
    OneBased<const T> s, p;
    zint n;
    const Scales& c;
    const double* colnorm_s;  // column sums of |S| above each diagonal block
    const double* colnorm_p;
    double acoef;
    zcomplex bcoef;  // real data: bcoefr + i bcoefi
    double dmin;

    // C(i, k) = acoef S(i, k) - bcoef P(i, k); for the left problem its conjugate.
    zcomplex entry(zint i, zint k, bool left) const {
        const zcomplex v = zcomplex{acoef * real(s(i, k)), acoef * imag(s(i, k))} -
                           bcoef * zcomplex{real(p(i, k)), imag(p(i, k))};
        return left ? conj(v) : v;
    }
};

}  // namespace

template <class T>
void tgevc(char side, char howmny, const zint* select, zint n, const T* s, zint lds, const T* p, zint ldp,
           T* vl, zint ldvl, T* vr, zint ldvr, zint mm, zint& m, T* work, double* rwork, zint& info) {
    info = check_tgevc<T>(side, howmny, select, n, s, lds, p, ldp, ldvl, ldvr, mm);
    if (info != 0) return;
    m = tgevc_columns(howmny, select, n, s, lds);
    if (n == 0) return;
    const bool all = !lsame(howmny, 'S'), back = lsame(howmny, 'B');
    const bool right = lsame(side, 'R') || lsame(side, 'B'), left = lsame(side, 'L') || lsame(side, 'B');
    const OneBased<const T> S{s, lds}, P{p, ldp};

    // Work: the column sums of S and P above the diagonal blocks (2n doubles), the vector's real
    // and imaginary parts (2n), the back-transformed vector (2n).
    double* const base = kIsComplex<T> ? rwork : reinterpret_cast<double*>(work);
    double* colnorm_s = base;
    double* colnorm_p = base + n;
    Scales c{};
    c.safmin = dlamch("S");
    c.ulp = dlamch("E") * dlamch("B");
    c.small = c.safmin * static_cast<double>(n) / c.ulp;
    c.big = 1.0 / c.small;
    c.bignum = 1.0 / (c.safmin * static_cast<double>(n));
    c.anorm = abs1(S(1, 1));
    if (n > 1) c.anorm += abs1(S(2, 1));
    c.bnorm = abs1(P(1, 1));
    colnorm_s[0] = colnorm_p[0] = 0.0;
    for (zint j = 2; j <= n; ++j) {
        const zint iend = pair_at(S, n, j - 1) ? j - 2 : j - 1;
        double ts = 0.0, tp = 0.0;
        for (zint i = 1; i <= iend; ++i) {
            ts += abs1(S(i, j));
            tp += abs1(P(i, j));
        }
        colnorm_s[j - 1] = ts;
        colnorm_p[j - 1] = tp;
        for (zint i = iend + 1; i <= min_of(j + 1, n); ++i) {
            ts += abs1(S(i, j));
            tp += abs1(P(i, j));
        }
        c.anorm = std::fmax(c.anorm, ts);
        c.bnorm = std::fmax(c.bnorm, tp);
    }
    c.ascale = 1.0 / std::fmax(c.anorm, c.safmin);
    c.bscale = 1.0 / std::fmax(c.bnorm, c.safmin);

    // The vector and its back-transformed form, complex entries for both element types.
    zcomplex* x =
        kIsComplex<T> ? reinterpret_cast<zcomplex*>(work) : reinterpret_cast<zcomplex*>(base + 2 * n);
    zcomplex* full = x + n;

    // x(1 .. rows) -= C(1 .. rows, k) x(k), C = acoef S - bcoef P, by columns of S and P (real
    // data: the real and imaginary parts of x as strided views, the imaginary one only when needed).
    auto update_right = [&](const VectorSolve<T>& v, zint k, zint rows) {
        if (rows <= 0) return;
        const zcomplex xk = x[k - 1];
        const zcomplex bx = v.bcoef * xk;
        if constexpr (kIsComplex<T>) {
            Blas<T>::axpy(rows, -(v.acoef * xk), S.at(1, k), 1, x, 1);
            Blas<T>::axpy(rows, bx, P.at(1, k), 1, x, 1);
        } else {
            double* xd = reinterpret_cast<double*>(x);
            Blas<T>::axpy(rows, -v.acoef * xk.re, S.at(1, k), 1, xd, 2);
            Blas<T>::axpy(rows, bx.re, P.at(1, k), 1, xd, 2);
            if (xk.im != 0.0 || bx.im != 0.0) {
                Blas<T>::axpy(rows, -v.acoef * xk.im, S.at(1, k), 1, xd + 1, 2);
                Blas<T>::axpy(rows, bx.im, P.at(1, k), 1, xd + 1, 2);
            }
        }
    };
    // The sum of conj(C(k, r)) x(k) over k = from .. to, by dot products with S's and P's columns.
    auto left_sum = [&](const VectorSolve<T>& v, zint r, zint from, zint to) -> zcomplex {
        const zint len = to - from + 1;
        if (len <= 0) return {0.0, 0.0};
        zcomplex sx, px;
        if constexpr (kIsComplex<T>) {
            sx = Blas<T>::dotc(len, S.at(from, r), 1, x + from - 1, 1);
            px = Blas<T>::dotc(len, P.at(from, r), 1, x + from - 1, 1);
        } else {
            const double* xd = reinterpret_cast<const double*>(x + from - 1);
            // A real eigenvalue has a real vector: its imaginary parts are zero.
            const bool pair = v.bcoef.im != 0.0;
            sx = {Blas<T>::dotc(len, S.at(from, r), 1, xd, 2),
                  pair ? Blas<T>::dotc(len, S.at(from, r), 1, xd + 1, 2) : 0.0};
            px = {Blas<T>::dotc(len, P.at(from, r), 1, xd, 2),
                  pair ? Blas<T>::dotc(len, P.at(from, r), 1, xd + 1, 2) : 0.0};
        }
        return v.acoef * sx - conj(v.bcoef) * px;
    };

    // Solves for the vector of the block at rows jb .. jb + nb - 1 (nb 1 or 2) with eigenvalue
    // columns written to `out` (one column, or two for a complex pair of real data).
    auto one_vector = [&](zint jb, zint nb, bool leftside, T* out, zint ldout, zint columns) {
        VectorSolve<T> v{S, P, n, c, colnorm_s, colnorm_p, 0.0, {0.0, 0.0}, 0.0};
        bool singular = false;
        if (nb == 1) {
            if (abs1(S(jb, jb)) <= c.safmin && std::fabs(real(P(jb, jb))) <= c.safmin) {
                singular = true;
            } else {
                T bcoef{};
                scaled_eigenvalue(S, P, jb, c, v.acoef, bcoef);
                v.bcoef = {real(bcoef), imag(bcoef)};
            }
        } else if constexpr (!kIsComplex<T>) {
            double acoef = 0.0, temp = 0.0, bcoefr = 0.0, temp2 = 0.0, bcoefi = 0.0;
            lag2(S.at(jb, jb), lds, P.at(jb, jb), ldp, c.safmin * 100.0, acoef, temp, bcoefr, temp2, bcoefi);
            const double acoefa = std::fabs(acoef), bcoefa = std::fabs(bcoefr) + std::fabs(bcoefi);
            double scale = 1.0;
            if (acoefa * c.ulp < c.safmin && acoefa >= c.safmin) scale = (c.safmin / c.ulp) / acoefa;
            if (bcoefa * c.ulp < c.safmin && bcoefa >= c.safmin)
                scale = std::fmax(scale, (c.safmin / c.ulp) / bcoefa);
            if (c.safmin * acoefa > c.ascale) scale = c.ascale / (c.safmin * acoefa);
            if (c.safmin * bcoefa > c.bscale) scale = std::fmin(scale, c.bscale / (c.safmin * bcoefa));
            v.acoef = acoef * scale;
            v.bcoef = {bcoefr * scale, bcoefi * scale};
            if (bcoefi == 0.0) return false;
        }
        const double acoefa = std::fabs(v.acoef), bcoefa = std::fabs(v.bcoef.re) + std::fabs(v.bcoef.im);
        v.dmin = std::fmax(std::fmax(c.ulp * acoefa * c.anorm, c.ulp * bcoefa * c.bnorm), c.safmin);
        for (zint i = 0; i < n; ++i) x[i] = {0.0, 0.0};
        // The block's own part: a null vector of the 2 by 2 (or 1).
        if (singular || nb == 1) {
            x[jb - 1] = {1.0, 0.0};
        } else {
            const zint j2 = jb + 1;
            // C x = 0 (right) or Cᴴ y = 0 (left): from the row (of C, or of Cᴴ) with the larger
            // entries, (u, v) gives the null vector (v, -u).
            const zcomplex c11 = v.entry(jb, jb, leftside), c12 = v.entry(jb, j2, leftside);
            const zcomplex c21 = v.entry(j2, jb, leftside), c22 = v.entry(j2, j2, leftside);
            zcomplex u, w;
            if (!leftside) {
                if (abs1(c11) + abs1(c12) >= abs1(c21) + abs1(c22)) {
                    u = c11;
                    w = c12;
                } else {
                    u = c21;
                    w = c22;
                }
            } else {
                if (abs1(c11) + abs1(c21) >= abs1(c12) + abs1(c22)) {
                    u = c11;
                    w = c21;
                } else {
                    u = c12;
                    w = c22;
                }
            }
            const double norm = std::fmax(abs1(u), abs1(w));
            x[jb - 1] = w / norm;
            x[j2 - 1] = -u / norm;
        }
        if (!singular) {
            // Substitution over the other blocks: upwards for right vectors, downwards for left.
            double xmax = 1.0;
            auto rescale = [&](double f) {
                for (zint i = 0; i < n; ++i) x[i] = x[i] * f;
                xmax *= f;
            };
            auto solve_block = [&](zint j, zint jn) {
                // x(j .. j + jn - 1) holds the right-hand side; solve with the diagonal block.
                if constexpr (kIsComplex<T>) {
                    zcomplex d = v.entry(j, j, leftside);
                    if (abs1(d) < v.dmin) d = {v.dmin, 0.0};
                    const zcomplex r = x[j - 1];
                    if (abs1(d) < 1.0 && abs1(r) >= c.bignum * abs1(d)) rescale(1.0 / abs1(r));
                    x[j - 1] = x[j - 1] / d;
                } else {
                    double b[4], sol[4], scale = 1.0, xnorm = 0.0;
                    for (zint k = 0; k < jn; ++k) {
                        b[k] = x[j - 1 + k].re;
                        b[2 + k] = x[j - 1 + k].im;
                    }
                    const zint nw = v.bcoef.im != 0.0 ? 2 : 1;
                    zint ierr = 0;
                    const double wi = leftside ? -v.bcoef.im : v.bcoef.im;
                    laln2(leftside, jn, nw, v.dmin, v.acoef, S.at(j, j), lds, real(P(j, j)),
                          jn == 2 ? real(P(j + 1, j + 1)) : 0.0, b, 2, v.bcoef.re, wi, sol, 2, scale, xnorm,
                          ierr);
                    if (scale < 1.0) {
                        for (zint k = 0; k < jn; ++k) x[j - 1 + k] = {b[k], b[2 + k]};
                        rescale(scale);
                    }
                    for (zint k = 0; k < jn; ++k) x[j - 1 + k] = {sol[k], nw == 2 ? sol[2 + k] : 0.0};
                }
                double bound = 0.0;
                for (zint k = 0; k < jn; ++k) bound = std::fmax(bound, abs1(x[j - 1 + k]));
                xmax = std::fmax(xmax, bound);
                // The next updates use these columns (right) or rows (left); keep them finite.
                double colnorm = 0.0;
                for (zint k = 0; k < jn; ++k)
                    colnorm =
                        std::fmax(colnorm, acoefa * colnorm_s[j - 1 + k] + bcoefa * colnorm_p[j - 1 + k]);
                if (xmax > 1.0 && colnorm > c.bignum / xmax) rescale(1.0 / xmax);
            };
            if (!leftside) {
                const zint top = jb;
                // rhs := -C(1 .. top - 1, block) x(block)
                for (zint k = jb; k < jb + nb; ++k) update_right(v, k, top - 1);
                for (zint j = top - 1; j >= 1;) {
                    const zint jn = (j > 1 && pair_at(S, n, j - 1)) ? 2 : 1;
                    const zint j0 = j - jn + 1;
                    solve_block(j0, jn);
                    for (zint k = j0; k <= j; ++k) update_right(v, k, j0 - 1);
                    j = j0 - 1;
                }
            } else {
                for (zint j = jb + nb; j <= n;) {
                    const zint jn = pair_at(S, n, j) ? 2 : 1;
                    for (zint r = j; r < j + jn; ++r) {
                        x[r - 1] = -left_sum(v, r, jb, j - 1);
                    }
                    solve_block(j, jn);
                    j += jn;
                }
            }
        }
        // Back-transformation by the given Q (left) or Z (right), then the normalisation.
        const zint lo = leftside ? jb : 1, hi = leftside ? n : jb + nb - 1;
        zcomplex* result = x;
        if (back) {
            const T* basis = leftside ? vl : vr;
            const zint ldb = leftside ? ldvl : ldvr;
            const T* first = basis + (lo - 1) * ldb;
            if constexpr (kIsComplex<T>) {
                Blas<T>::gemv('N', n, hi - lo + 1, one<T>(), first, ldb, x + lo - 1, 1, zero<T>(), full, 1);
            } else {
                // Real and imaginary parts apart, each a strided view of the complex values.
                const double* xd = reinterpret_cast<const double*>(x + lo - 1);
                double* fd = reinterpret_cast<double*>(full);
                Blas<T>::gemv('N', n, hi - lo + 1, 1.0, first, ldb, xd, 2, 0.0, fd, 2);
                if (columns == 2) {
                    Blas<T>::gemv('N', n, hi - lo + 1, 1.0, first, ldb, xd + 1, 2, 0.0, fd + 1, 2);
                } else {
                    for (zint i = 0; i < n; ++i) full[i].im = 0.0;
                }
            }
            result = full;
        } else {
            for (zint i = 0; i < n; ++i)
                if (i + 1 < lo || i + 1 > hi) x[i] = {0.0, 0.0};
        }
        double xmax = 0.0;
        for (zint i = 0; i < n; ++i) xmax = std::fmax(xmax, abs1(result[i]));
        const double f = xmax > c.safmin ? 1.0 / xmax : 1.0;
        for (zint i = 0; i < n; ++i) {
            if constexpr (kIsComplex<T>) {
                out[i] = result[i] * f;
            } else {
                out[i] = result[i].re * f;
                if (columns == 2) out[i + ldout] = result[i].im * f;
            }
        }
        return true;
    };

    auto chosen = [&](zint j, zint nb) { return all || select[j - 1] != 0 || (nb == 2 && select[j] != 0); };
    if (left) {
        zint col = 0;
        for (zint j = 1; j <= n;) {
            const zint nb = pair_at(S, n, j) ? 2 : 1;
            if (chosen(j, nb)) {
                if (!one_vector(j, nb, true, vl + col * ldvl, ldvl, nb)) {
                    info = j;
                    return;
                }
                col += nb;
            }
            j += nb;
        }
    }
    if (right) {
        zint col = m;
        for (zint j = n; j >= 1;) {
            const zint nb = (j > 1 && pair_at(S, n, j - 1)) ? 2 : 1;
            const zint j0 = j - nb + 1;
            if (chosen(j0, nb)) {
                col -= nb;
                if (!one_vector(j0, nb, false, vr + col * ldvr, ldvr, nb)) {
                    info = j0;
                    return;
                }
            }
            j = j0 - 1;
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(tgevc)
