// tgex2: exchanges two adjacent diagonal blocks (orders n1, n2 in {1, 2}; complex data 1 and 1) of
// a generalized Schur pair (A, B) by orthogonal (unitary) Q and Z. The generalized Sylvester
// equation A11 R - L A22 = -s A12, B11 R - L B22 = -s B12 gives the deflating subspaces of the
// second block: (A, B) [R; s I] = [L; s I] (A22, B22). Z's first n2 columns span [R; s I] and Q's
// span [L; s I] (QR factorizations), so Qᴴ (A, B) Z has the second block's eigenvalues first. The
// exchange is made only when the blocks it should annihilate are at most 20 eps ||A|| and 20 eps
// ||B|| and the transformed pair reproduces the old one to that accuracy (A and B judged apart); a 2 by 2
// block of real data is then put back in standard form (B diagonal, positive), and refused if its eigenvalues
// became real.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/generalized/generalized.hpp"
#include "lapack/generalized/generalized_support.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

namespace {

constexpr zint kMost = 4;

// A small square matrix of order at most 4, column-major with leading dimension 4.
template <class T>
struct Small {
    T v[kMost * kMost] = {};
    T& operator()(zint i, zint j) { return v[i + j * kMost]; }
    const T& operator()(zint i, zint j) const { return v[i + j * kMost]; }
};

// Solves the Kronecker form of the generalized Sylvester equation (order k = 2 n1 n2 <= 8) by
// Gaussian elimination with complete pivoting; pivots below smin are raised to it. False when the
// solution is not finite.
template <class T>
bool solve_small(zint k, T* m, T* rhs, double smin) {
    zint col_perm[8];
    for (zint i = 0; i < k; ++i) col_perm[i] = i;
    auto M = [&](zint i, zint j) -> T& { return m[i + j * 8]; };
    for (zint p = 0; p < k; ++p) {
        zint bi = p, bj = p;
        double best = -1.0;
        for (zint j = p; j < k; ++j)
            for (zint i = p; i < k; ++i)
                if (abs(M(i, j)) > best) {
                    best = abs(M(i, j));
                    bi = i;
                    bj = j;
                }
        if (bi != p) {
            for (zint j = 0; j < k; ++j) std::swap(M(p, j), M(bi, j));
            std::swap(rhs[p], rhs[bi]);
        }
        if (bj != p) {
            for (zint i = 0; i < k; ++i) std::swap(M(i, p), M(i, bj));
            std::swap(col_perm[p], col_perm[bj]);
        }
        if (!(abs(M(p, p)) >= smin)) M(p, p) = from_real<T>(smin);
        for (zint i = p + 1; i < k; ++i) {
            const T f = M(i, p) / M(p, p);
            for (zint j = p + 1; j < k; ++j) M(i, j) = M(i, j) - f * M(p, j);
            rhs[i] = rhs[i] - f * rhs[p];
        }
    }
    T x[8];
    for (zint i = k - 1; i >= 0; --i) {
        T s = rhs[i];
        for (zint j = i + 1; j < k; ++j) s = s - M(i, j) * x[j];
        x[i] = s / M(i, i);
    }
    for (zint i = 0; i < k; ++i) {
        if (!std::isfinite(real(x[i])) || !std::isfinite(imag(x[i]))) return false;
        rhs[col_perm[i]] = x[i];
    }
    return true;
}

// The unitary m by m matrix whose first n2 columns span the columns of X (m by n2).
template <class T>
void span_basis(zint m, zint n2, const Small<T>& x, Small<T>& q) {
    T tau[kMost], work[kMost];
    zint info = 0;
    q = x;
    geqr2(m, n2, q.v, kMost, tau, work, info);
    org2r(m, m, n2, q.v, kMost, tau, work, info);
}

// Qᴴ M Z for the small matrices.
template <class T>
Small<T> transform(zint m, const Small<T>& q, const Small<T>& mat, const Small<T>& z) {
    Small<T> t, r;
    for (zint j = 0; j < m; ++j)
        for (zint i = 0; i < m; ++i) {
            T s{};
            for (zint p = 0; p < m; ++p) s = s + mat(i, p) * z(p, j);
            t(i, j) = s;
        }
    for (zint j = 0; j < m; ++j)
        for (zint i = 0; i < m; ++i) {
            T s{};
            for (zint p = 0; p < m; ++p) s = s + conj(q(p, i)) * t(p, j);
            r(i, j) = s;
        }
    return r;
}

template <class T>
double frobenius(zint m, const Small<T>& a) {
    double scale = 0.0, sumsq = 1.0;
    for (zint j = 0; j < m; ++j) lassq(m, &a.v[j * kMost], 1, scale, sumsq);
    return scale * std::sqrt(sumsq);
}

// Rows i, i + 1 of the small S and T rotated (and the rotation taken into Q), or columns (into Z).
template <class T>
void small_rows(zint m, Small<T>& s, Small<T>& t, Small<T>& q, zint i, double c, T sn) {
    rotate(m, &s(i, 0), kMost, &s(i + 1, 0), kMost, c, sn);
    rotate(m, &t(i, 0), kMost, &t(i + 1, 0), kMost, c, sn);
    rotate(m, &q(0, i), 1, &q(0, i + 1), 1, c, conj(sn));
}
template <class T>
void small_columns(zint m, Small<T>& s, Small<T>& t, Small<T>& z, zint j, double c, T sn) {
    rotate(m, &s(0, j), 1, &s(0, j + 1), 1, c, sn);
    rotate(m, &t(0, j), 1, &t(0, j + 1), 1, c, sn);
    rotate(m, &z(0, j), 1, &z(0, j + 1), 1, c, sn);
}

// The 2 by 2 block of real data at i in standard form: T triangular by a row rotation, then
// diagonal and positive by the rotations of its singular value decomposition. False when its
// eigenvalues are real.
bool standardise(zint m, Small<double>& s, Small<double>& t, Small<double>& q, Small<double>& z, zint i,
                 double safmin) {
    double c = 0.0, sn = 0.0, r = 0.0;
    lartg(t(i, i), t(i + 1, i), c, sn, r);
    small_rows(m, s, t, q, i, c, sn);
    t(i + 1, i) = 0.0;
    double ssmin = 0.0, ssmax = 0.0, snr = 0.0, csr = 0.0, snl = 0.0, csl = 0.0;
    lasv2(t(i, i), t(i, i + 1), t(i + 1, i + 1), ssmin, ssmax, snr, csr, snl, csl);
    small_rows(m, s, t, q, i, csl, snl);
    small_columns(m, s, t, z, i, csr, snr);
    t(i, i + 1) = t(i + 1, i) = 0.0;
    for (zint k = i; k <= i + 1; ++k) {
        if (t(k, k) < 0.0) {
            for (zint jj = 0; jj < m; ++jj) {
                s(k, jj) = -s(k, jj);
                t(k, jj) = -t(k, jj);
            }
            for (zint ii = 0; ii < m; ++ii) q(ii, k) = -q(ii, k);
        }
    }
    double scale1 = 0.0, scale2 = 0.0, wr1 = 0.0, wr2 = 0.0, wi = 0.0;
    lag2(&s(i, i), kMost, &t(i, i), kMost, safmin * 100.0, scale1, scale2, wr1, wr2, wi);
    return wi != 0.0;
}

}  // namespace

template <class T>
void tgex2(bool wantq, bool wantz, zint n, T* a, zint lda, T* b, zint ldb, T* q, zint ldq, T* z, zint ldz,
           zint j1, zint n1, zint n2, zint& info) {
    info = 0;
    if (n <= 1 || n1 <= 0 || n2 <= 0) return;
    const zint m = n1 + n2;
    if (j1 + m - 1 > n) return;
    const OneBased<T> A{a, lda}, B{b, ldb};
    Small<T> s, t;
    for (zint j = 0; j < m; ++j)
        for (zint i = 0; i < m; ++i) {
            s(i, j) = A(j1 + i, j1 + j);
            t(i, j) = B(j1 + i, j1 + j);
        }
    // A and B are judged apart: their norms may differ by any factor.
    const double eps = dlamch("P"), smlnum = dlamch("S") / eps;
    double na = 0.0, nb = 0.0;
    {
        double scale = 0.0, sumsq = 1.0, tscale = 0.0, tsumsq = 1.0;
        for (zint j = 0; j < m; ++j) {
            lassq(m, &s.v[j * kMost], 1, scale, sumsq);
            lassq(m, &t.v[j * kMost], 1, tscale, tsumsq);
        }
        na = scale * std::sqrt(sumsq);
        nb = tscale * std::sqrt(tsumsq);
    }
    const double thresha = std::fmax(20.0 * eps * na, smlnum), threshb = std::fmax(20.0 * eps * nb, smlnum);

    // The Kronecker form: unknowns R(p, k) at p + k n1, L(i, q) at n1 n2 + i + q n1.
    const zint k = 2 * n1 * n2;
    T kron[64] = {}, rhs[8] = {};
    // Each half of the equations divided by its matrix's norm, so that pivoting compares like with
    // like.
    for (zint half = 0; half < 2; ++half) {
        const Small<T>& x = half == 0 ? s : t;
        const double f = 1.0 / std::fmax(half == 0 ? na : nb, smlnum);
        for (zint kk = 0; kk < n2; ++kk)
            for (zint i = 0; i < n1; ++i) {
                const zint row = half * n1 * n2 + i + kk * n1;
                for (zint p = 0; p < n1; ++p) kron[row + (p + kk * n1) * 8] = f * x(i, p);
                for (zint qq = 0; qq < n2; ++qq)
                    kron[row + (n1 * n2 + i + qq * n1) * 8] = -f * x(n1 + qq, n1 + kk);
                rhs[row] = -f * x(i, n1 + kk);
            }
    }
    if (!solve_small(k, kron, rhs, eps)) {
        info = 1;
        return;
    }
    Small<T> xr, xl, qs, zs;
    for (zint kk = 0; kk < n2; ++kk) {
        for (zint i = 0; i < n1; ++i) {
            xr(i, kk) = rhs[i + kk * n1];
            xl(i, kk) = rhs[n1 * n2 + i + kk * n1];
        }
        xr(n1 + kk, kk) = one<T>();
        xl(n1 + kk, kk) = one<T>();
    }
    span_basis(m, n2, xr, zs);
    span_basis(m, n2, xl, qs);
    Small<T> s2 = transform(m, qs, s, zs), t2 = transform(m, qs, t, zs);
    // The block that moved below the diagonal must be negligible.
    double below_a = 0.0, below_b = 0.0;
    for (zint j = 0; j < n2; ++j)
        for (zint i = n2; i < m; ++i) {
            below_a = std::fmax(below_a, abs(s2(i, j)));
            below_b = std::fmax(below_b, abs(t2(i, j)));
        }
    if (!(below_a <= thresha && below_b <= threshb)) {
        info = 1;
        return;
    }
    for (zint j = 0; j < n2; ++j)
        for (zint i = n2; i < m; ++i) s2(i, j) = t2(i, j) = T{};
    // B's diagonal blocks triangular (and real 2 by 2 blocks standard) again.
    if constexpr (!kIsComplex<T>) {
        const double safmin = dlamch("S");
        for (zint start : {zint{0}, n2}) {
            const zint size = start == 0 ? n2 : n1;
            if (size == 2 && !standardise(m, s2, t2, qs, zs, start, safmin)) {
                info = 1;
                return;
            }
        }
    } else {
        for (zint i = 0; i + 1 < m; ++i) t2(i + 1, i) = T{};
    }
    // The strong test: the pair back from the new one.
    Small<T> qh, zh;
    for (zint j = 0; j < m; ++j)
        for (zint i = 0; i < m; ++i) {
            qh(i, j) = conj(qs(j, i));
            zh(i, j) = conj(zs(j, i));
        }
    Small<T> sback = transform(m, qh, s2, zh), tback = transform(m, qh, t2, zh);
    for (zint j = 0; j < m; ++j)
        for (zint i = 0; i < m; ++i) {
            sback(i, j) = sback(i, j) - s(i, j);
            tback(i, j) = tback(i, j) - t(i, j);
        }
    if (!(frobenius(m, sback) <= thresha && frobenius(m, tback) <= threshb)) {
        info = 1;
        return;
    }

    // The exchange on the whole pair, Q and Z.
    T tmp[kMost];
    for (const OneBased<T>* mat : {&A, &B}) {
        for (zint c = j1 + m; c <= n; ++c) {
            for (zint i = 0; i < m; ++i) {
                T sum{};
                for (zint p = 0; p < m; ++p) sum = sum + conj(qs(p, i)) * (*mat)(j1 + p, c);
                tmp[i] = sum;
            }
            for (zint i = 0; i < m; ++i) (*mat)(j1 + i, c) = tmp[i];
        }
        for (zint r = 1; r < j1; ++r) {
            for (zint j = 0; j < m; ++j) {
                T sum{};
                for (zint p = 0; p < m; ++p) sum = sum + (*mat)(r, j1 + p) * zs(p, j);
                tmp[j] = sum;
            }
            for (zint j = 0; j < m; ++j) (*mat)(r, j1 + j) = tmp[j];
        }
    }
    for (zint j = 0; j < m; ++j)
        for (zint i = 0; i < m; ++i) {
            A(j1 + i, j1 + j) = s2(i, j);
            B(j1 + i, j1 + j) = t2(i, j);
        }
    auto columns = [&](T* x, zint ldx, const Small<T>& u) {
        for (zint r = 0; r < n; ++r) {
            for (zint j = 0; j < m; ++j) {
                T sum{};
                for (zint p = 0; p < m; ++p) sum = sum + x[r + (j1 - 1 + p) * ldx] * u(p, j);
                tmp[j] = sum;
            }
            for (zint j = 0; j < m; ++j) x[r + (j1 - 1 + j) * ldx] = tmp[j];
        }
    };
    if (wantq) columns(q, ldq, qs);
    if (wantz) columns(z, ldz, zs);
}

}  // namespace zor

ZOR_INSTANTIATE(tgex2)
