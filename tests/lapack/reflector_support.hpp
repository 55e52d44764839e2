#pragma once
// Reflectors in long double for the tests of the Householder and QR families: the Q that a set of
// stored reflectors stands for, built from the published definitions (H = I - tau v vᴴ), and the
// residuals of the LAPACK test suite against it.

#include <algorithm>
#include <vector>

#include "lapack/factor_support.hpp"

namespace zor::test {

// C := H C or Hᴴ C for H = I - tau v vᴴ (v of C's row count).
inline void apply_reflector(Wide& c, const std::vector<Exact>& v, Exact tau, bool adjoint) {
    const Exact t = adjoint ? conj(tau) : tau;
    for (zint j = 0; j < c.cols; ++j) {
        Exact s;
        for (zint i = 0; i < c.rows; ++i) s = s + conj(v[static_cast<std::size_t>(i)]) * c(i, j);
        s = t * s;
        for (zint i = 0; i < c.rows; ++i) c(i, j) = c(i, j) - v[static_cast<std::size_t>(i)] * s;
    }
}

inline Wide identity(zint n) {
    Wide q(n, n);
    for (zint i = 0; i < n; ++i) q(i, i) = {1, 0};
    return q;
}

// Vector i of a QR factorization of order `order`: zeros above `unit`, one there, then the stored
// entries below it in column `column` of f.
template <class T>
std::vector<Exact> column_vector(const Matrix<T>& f, zint column, zint unit, zint order) {
    std::vector<Exact> v(static_cast<std::size_t>(order));
    v[static_cast<std::size_t>(unit)] = {1, 0};
    for (zint i = unit + 1; i < order; ++i) v[static_cast<std::size_t>(i)] = f.at(i, column);
    return v;
}

// Q = H(1) ... H(k) (order m) of a QR factorization, vector i below the diagonal of column i.
template <class T>
Wide qr_q(const Matrix<T>& f, const std::vector<T>& tau, zint k) {
    const zint m = f.rows;
    Wide q = identity(m);
    for (zint i = k - 1; i >= 0; --i)
        apply_reflector(q, column_vector(f, i, i, m), value(tau[static_cast<std::size_t>(i)]), false);
    return q;
}

// Q = H(k)ᴴ ... H(1)ᴴ (order n) of an LQ factorization, conj(v) of vector i right of the diagonal
// of row i.
template <class T>
Wide lq_q(const Matrix<T>& f, const std::vector<T>& tau, zint k) {
    const zint n = f.cols;
    Wide q = identity(n);
    for (zint i = 0; i < k; ++i) {
        std::vector<Exact> v(static_cast<std::size_t>(n));
        v[static_cast<std::size_t>(i)] = {1, 0};
        for (zint j = i + 1; j < n; ++j) v[static_cast<std::size_t>(j)] = conj(f.at(i, j));
        apply_reflector(q, v, value(tau[static_cast<std::size_t>(i)]), true);
    }
    return q;
}

// Reflectors as a Hessenberg reduction stores them in the n by n A, made unitary: for one-based
// i = ilo .. ihi - 1, vector i has zeros in rows 1 .. i, one in row i + 1, and the entries of A
// in rows i + 2 .. ihi of column i (zero below ihi); tau(i) = (1 + e^{iθ}) / vᴴv with a random
// phase θ (zero for real data), so that |1 - tau vᴴv| = 1. Returns H(ilo) ... H(ihi - 1).
template <class T>
Wide hessenberg_reflectors(Random& random, const Matrix<T>& a, zint ilo, zint ihi, std::vector<T>& tau) {
    const zint n = a.rows;
    tau.assign(static_cast<std::size_t>(std::max<zint>(n - 1, 1)), T{});
    Wide q = identity(n);
    for (zint i = ihi - 1; i >= ilo; --i) {
        std::vector<Exact> v(static_cast<std::size_t>(n));
        v[static_cast<std::size_t>(i)] = {1, 0};
        long double squares = 1;
        for (zint r = i + 1; r < ihi; ++r) {
            const Exact x = a.at(r, i - 1);
            v[static_cast<std::size_t>(r)] = x;
            squares += x.re * x.re + x.im * x.im;
        }
        const double theta = kIsComplex<T> ? random.uniform() * 3 : 0.0;
        const T t = narrow_to<T>({(1 + std::cos(theta)) / squares, std::sin(theta) / squares});
        tau[static_cast<std::size_t>(i - 1)] = t;
        apply_reflector(q, v, value(t), false);
    }
    return q;
}

// The first `cols` columns (or rows) of a matrix.
inline Wide leading_columns(const Wide& a, zint cols) {
    Wide b(a.rows, cols);
    for (zint j = 0; j < cols; ++j) {
        for (zint i = 0; i < a.rows; ++i) b(i, j) = a(i, j);
    }
    return b;
}
inline Wide leading_rows(const Wide& a, zint rows) {
    Wide b(rows, a.cols);
    for (zint j = 0; j < a.cols; ++j) {
        for (zint i = 0; i < rows; ++i) b(i, j) = a(i, j);
    }
    return b;
}

// ||I - Qᴴ Q||₁ / (m eps) for the m by n Q (orthonormal columns), or ||I - Q Qᴴ|| for its rows.
inline double column_orthogonality(const Wide& q) {
    Wide g = multiply(op(q, 'C'), q);
    for (zint i = 0; i < g.rows; ++i) g(i, i).re -= 1;
    return static_cast<double>(one_norm(g) / (std::max<zint>(q.rows, 1) * epsilon()));
}
inline double row_orthogonality(const Wide& q) {
    return column_orthogonality(op(q, 'C'));
}

// ||a - b||₁ / (order · max(||a||₁, 1) · eps): the distance of two results of one computation.
inline double scaled_distance(const Wide& a, const Wide& b, zint order) {
    const long double norm = std::max<long double>(one_norm(a), 1);
    return static_cast<double>(difference_norm(a, b) / (std::max<zint>(order, 1) * norm * epsilon()));
}

// R (upper trapezoid, min(m, n) by n) and L (lower trapezoid, m by min(m, n)) of a factorization.
template <class T>
Wide upper_part(const Matrix<T>& f) {
    const zint k = std::min(f.rows, f.cols);
    Wide r(k, f.cols);
    for (zint j = 0; j < f.cols; ++j) {
        for (zint i = 0; i <= std::min(j, k - 1); ++i) r(i, j) = f.at(i, j);
    }
    return r;
}
template <class T>
Wide lower_part(const Matrix<T>& f) {
    const zint k = std::min(f.rows, f.cols);
    Wide l(f.rows, k);
    for (zint j = 0; j < k; ++j) {
        for (zint i = j; i < f.rows; ++i) l(i, j) = f.at(i, j);
    }
    return l;
}

}  // namespace zor::test
