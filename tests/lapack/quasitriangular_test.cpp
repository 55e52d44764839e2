// The routines on a Schur form through their internal interface: trexc moving 1 by 1 and 2 by 2
// blocks up and down with the eigenvalues kept and Q T Qᴴ unchanged, trsyl's residual with its
// scale factor for every transpose and sign (close eigenvalues and entries near overflow
// included), trevc3's eigenvector residuals for right and left vectors, all or selected, with and
// without back-transformation, blocked and one at a time, and the argument checks.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "lapack/eigen_support.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"
#include "lapack/schur/schur.hpp"

namespace zor::test {
namespace {

// A Schur form of order n: an upper triangle of random entries whose diagonal (for real data)
// holds standardised 2 by 2 blocks [d b; c d] (b c < 0) at every third position.
template <class T>
Matrix<T> schur_form(zint n, std::uint64_t seed, double diagonal_scale = 1.0) {
    Random random(seed);
    Matrix<T> t(n, n, n + 1);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) t(i, j) = i <= j ? random_element<T>(random) : T{};
        t(j, j) = t(j, j) * diagonal_scale;
    }
    if constexpr (!kIsComplex<T>) {
        for (zint k = 0; k + 1 < n; k += 3) {
            t(k + 1, k + 1) = t(k, k);
            const double b = std::fabs(t(k, k + 1)) + 0.25, c = -(std::fabs(random.uniform()) + 0.25);
            t(k, k + 1) = b;
            t(k + 1, k) = c;
        }
    }
    return t;
}

template <class T>
Matrix<T> unit(zint n) {
    Matrix<T> q(n, n, n);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) q(i, j) = i == j ? scalar<T>(1, 0) : T{};
    }
    return q;
}

// The eigenvalues of a Schur form in the order of its diagonal (a real pair: positive imaginary
// part first), and sorted by real part then imaginary part.
template <class T>
std::vector<Exact> diagonal_eigenvalues(const Matrix<T>& t) {
    std::vector<Exact> w;
    const zint n = t.rows;
    for (zint k = 0; k < n; ++k) {
        if constexpr (!kIsComplex<T>) {
            if (k + 1 < n && t(k + 1, k) != 0) {
                const double im = std::sqrt(std::fabs(t(k, k + 1))) * std::sqrt(std::fabs(t(k + 1, k)));
                w.push_back({t(k, k), im});
                w.push_back({t(k, k), -im});
                ++k;
                continue;
            }
        }
        w.push_back(value(t(k, k)));
    }
    return w;
}
template <class T>
std::vector<std::pair<double, double>> spectrum(const Matrix<T>& t) {
    std::vector<std::pair<double, double>> w;
    for (const Exact& x : diagonal_eigenvalues(t))
        w.push_back({static_cast<double>(x.re), static_cast<double>(x.im)});
    std::sort(w.begin(), w.end());
    return w;
}

// ---- trexc -------------------------------------------------------------------------------------

struct Move {
    zint n, ifst, ilst;
};

template <class T>
void check_move(Move mv) {
    SCOPED_TRACE(std::to_string(mv.ifst) + " -> " + std::to_string(mv.ilst) + " of " + std::to_string(mv.n));
    const Matrix<T> t0 = schur_form<T>(mv.n, static_cast<std::uint64_t>(mv.n * 100 + mv.ifst));
    Matrix<T> t = t0, q = unit<T>(mv.n);
    std::vector<T> work(static_cast<std::size_t>(mv.n));
    zint ifst = mv.ifst, ilst = mv.ilst, info = -9;
    trexc<T>('V', mv.n, t.data(), t.ld, q.data(), q.ld, ifst, ilst, work.data(), info);
    ASSERT_EQ(info, 0);
    // Q T Qᴴ is the original form, Q is unitary, T is still a Schur form with the same eigenvalues.
    EXPECT_LT(schur_residual(t0, t, q), kResidualThreshold);
    EXPECT_LT(unitary_residual(q), kResidualThreshold);
    EXPECT_TRUE(is_schur_form(t));
    const auto before = spectrum(t0), after = spectrum(t);
    ASSERT_EQ(before.size(), after.size());
    for (std::size_t k = 0; k < before.size(); ++k) {
        EXPECT_NEAR(before[k].first, after[k].first, 1e-12);
        EXPECT_NEAR(before[k].second, after[k].second, 1e-12);
    }
    // The moved eigenvalue sits at ilst (the first row of its block).
    const zint from =
        mv.ifst > 1 && !kIsComplex<T> && value(t0(mv.ifst - 1, mv.ifst - 2)).re != 0 ? mv.ifst - 1 : mv.ifst;
    EXPECT_NEAR(value(t(ilst - 1, ilst - 1)).re, value(t0(from - 1, from - 1)).re, 1e-12);
    EXPECT_NEAR(value(t(ilst - 1, ilst - 1)).im, value(t0(from - 1, from - 1)).im, 1e-12);
}

// Real blocks sit at rows 1-2, 4-5, 7-8, ...: moves of 1 by 1 and 2 by 2 blocks past both kinds, up
// and down, ends included.
const Move kMoves[] = {{2, 1, 2}, {2, 2, 1}, {6, 1, 6}, {6, 6, 1},   {9, 3, 7},
                       {9, 8, 1}, {9, 4, 9}, {9, 9, 4}, {10, 2, 10}, {12, 11, 3}};

TEST(Trexc, MovesBlocksKeepingTheEigenvalues) {
    for (const Move& mv : kMoves) {
        check_move<double>(mv);
        check_move<zcomplex>(mv);
    }
}

TEST(Trexc, ChecksItsArguments) {
    double t[4] = {1, 0, 0, 2}, q[4], work[2];
    zint ifst = 1, ilst = 3, info = 0;
    ::testing::internal::CaptureStdout();
    trexc<double>('V', 2, t, 2, q, 2, ifst, ilst, work, info);
    ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(info, -8);
    ilst = 2;
    ::testing::internal::CaptureStdout();
    trexc<double>('X', 2, t, 2, q, 2, ifst, ilst, work, info);
    ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(info, -1);
}

// ---- trsyl -------------------------------------------------------------------------------------

// op(A) X + isgn X op(B) - scale C, relative to (||A|| + ||B||) ||X|| eps.
template <class T>
double sylvester_residual(char trana, char tranb, zint isgn, const Matrix<T>& a, const Matrix<T>& b,
                          const Matrix<T>& x, const Matrix<T>& c, double scale) {
    const Wide oa = op(widen_matrix(a), trana == 'T' && kIsComplex<T> ? 'C' : trana);
    const Wide ob = op(widen_matrix(b), tranb == 'T' && kIsComplex<T> ? 'C' : tranb);
    const Wide wx = widen_matrix(x);
    Wide r = multiply(oa, wx);
    const Wide xb = multiply(wx, ob);
    const Wide wc = widen_matrix(c);
    for (std::size_t k = 0; k < r.v.size(); ++k) {
        r.v[k] = r.v[k] + Exact{isgn * xb.v[k].re, isgn * xb.v[k].im} -
                 Exact{scale * wc.v[k].re, scale * wc.v[k].im};
    }
    const long double denominator = std::max<long double>(
        (one_norm(oa) + one_norm(ob)) * std::max<long double>(one_norm(wx), 1e-300L) * epsilon(), 1e-300L);
    return static_cast<double>(one_norm(r) / denominator);
}

template <class T>
void check_trsyl(zint m, zint n, char trana, char tranb, zint isgn, double scale_a, std::uint64_t seed) {
    SCOPED_TRACE(std::to_string(m) + "x" + std::to_string(n) + " " + trana + tranb + " " +
                 std::to_string(isgn));
    const Matrix<T> a = schur_form<T>(m, seed, scale_a), b = schur_form<T>(n, seed + 1);
    Random random(seed + 2);
    const Matrix<T> c = random_matrix<T>(random, m, n, 1);
    Matrix<T> x = c;
    double scale = -1;
    zint info = -9;
    trsyl<T>(trana, tranb, isgn, m, n, a.data(), a.ld, b.data(), b.ld, x.data(), x.ld, scale, info);
    ASSERT_GE(info, 0);
    EXPECT_GT(scale, 0.0);
    EXPECT_LE(scale, 1.0);
    EXPECT_TRUE(padding_untouched(x));
    EXPECT_LT(sylvester_residual(trana, tranb, isgn, a, b, x, c, scale), kResidualThreshold);
}

TEST(Trsyl, SolvesForEveryTransposeAndSign) {
    for (char ta : {'N', 'T', 'C'}) {
        for (char tb : {'N', 'T', 'C'}) {
            for (zint isgn : {1, -1}) {
                for (const auto& [m, n] :
                     {std::pair<zint, zint>{1, 1}, {2, 1}, {1, 2}, {7, 5}, {13, 17}, {40, 31}}) {
                    check_trsyl<double>(m, n, ta, tb, isgn, 1.0, static_cast<std::uint64_t>(m * n + ta + tb));
                    // Complex data takes "C" for the conjugate transpose only.
                    if (ta != 'T' && tb != 'T')
                        check_trsyl<zcomplex>(m, n, ta, tb, isgn, 1.0,
                                              static_cast<std::uint64_t>(m + n + ta));
                }
            }
        }
    }
    // Entries near overflow: the scale factor keeps X finite.
    check_trsyl<double>(9, 8, 'N', 'N', 1, 1e300, 5);
    check_trsyl<zcomplex>(9, 8, 'N', 'C', -1, 1e300, 6);
}

TEST(Trsyl, PerturbsCloseEigenvaluesAndSaysSo) {
    // A = B = diag(1, 2): A X - X B is singular; info = 1 and the solution stays finite.
    for (zint n : {2, 4}) {
        Matrix<double> a(n, n, n), x(n, n, n);
        for (zint j = 0; j < n; ++j) {
            for (zint i = 0; i < n; ++i) {
                a(i, j) = i == j ? static_cast<double>(j + 1) : 0.0;
                x(i, j) = 1.0;
            }
        }
        double scale = 0;
        zint info = 0;
        trsyl<double>('N', 'N', -1, n, n, a.data(), n, a.data(), n, x.data(), n, scale, info);
        EXPECT_EQ(info, 1);
        for (double v : x.v) EXPECT_TRUE(std::isfinite(v));
    }
}

TEST(Trsyl, ChecksItsArguments) {
    double a[1] = {1}, c[1] = {1}, scale = 0;
    zcomplex z[1] = {{1, 0}};
    zint info = 0;
    ::testing::internal::CaptureStdout();
    trsyl<double>('X', 'N', 1, 1, 1, a, 1, a, 1, c, 1, scale, info);
    EXPECT_EQ(info, -1);
    trsyl<zcomplex>('N', 'T', 1, 1, 1, z, 1, z, 1, z, 1, scale, info);
    EXPECT_EQ(info, -2);
    trsyl<double>('N', 'N', 2, 1, 1, a, 1, a, 1, c, 1, scale, info);
    EXPECT_EQ(info, -3);
    trsyl<double>('N', 'N', 1, 2, 1, a, 1, a, 1, c, 1, scale, info);
    EXPECT_EQ(info, -7);
    ::testing::internal::GetCapturedStdout();
}

// ---- trevc3 ------------------------------------------------------------------------------------

// The vectors as complex columns: real data keeps a pair's real and imaginary parts in two columns
// (the second of the pair is the conjugate vector).
template <class T>
Wide complex_vectors(const Matrix<T>& v, const std::vector<Exact>& w) {
    Wide x(v.rows, v.cols);
    for (zint j = 0; j < v.cols; ++j) {
        for (zint i = 0; i < v.rows; ++i) {
            if (kIsComplex<T> || w[static_cast<std::size_t>(j)].im == 0) {
                x(i, j) = v.at(i, j);
            } else if (w[static_cast<std::size_t>(j)].im > 0) {
                x(i, j) = {v.at(i, j).re, v.at(i, j + 1).re};
            } else {
                x(i, j) = {v.at(i, j - 1).re, -v.at(i, j).re};
            }
        }
    }
    return x;
}

// max over the columns of ||M x - λ x||₁ / (n ||M||₁ ||x||₁ eps), with M = A (right) or Aᴴ and conj(λ)
// (left).
inline double eigenvector_residual(const Wide& a, const Wide& x, const std::vector<Exact>& w, bool left) {
    const Wide m = left ? op(a, 'C') : a;
    const Wide mx = multiply(m, x);
    double worst = 0;
    const long double norm = std::max<long double>(one_norm(m), 1e-300L);
    for (zint j = 0; j < x.cols; ++j) {
        const Exact lambda = left ? conj(w[static_cast<std::size_t>(j)]) : w[static_cast<std::size_t>(j)];
        long double r = 0, xn = 0;
        for (zint i = 0; i < x.rows; ++i) {
            const Exact d = mx(i, j) - lambda * x(i, j);
            r += std::hypot(d.re, d.im);
            xn += std::hypot(x(i, j).re, x(i, j).im);
        }
        worst = std::max(
            worst, static_cast<double>(r / (x.rows * norm * std::max<long double>(xn, 1e-300L) * epsilon())));
    }
    return worst;
}

template <class T>
void check_trevc3(zint n, char side, char howmny, bool blocked) {
    SCOPED_TRACE(std::to_string(n) + " " + side + howmny + (blocked ? " blocked" : " one at a time"));
    const Matrix<T> t0 =
        schur_form<T>(n, static_cast<std::uint64_t>(n) * 3 + static_cast<std::uint64_t>(side));
    Matrix<T> t = t0;
    // For "B" the vectors are multiplied by a unitary Q: A = Q T Qᴴ is the matrix they belong to.
    Matrix<T> q = unit<T>(n);
    Wide a = widen_matrix(t0);
    if (howmny == 'B') {
        Random random(static_cast<std::uint64_t>(n));
        const Wide wq = similar(random, widen_matrix(unit<T>(n)), kIsComplex<T>);
        q = from_wide<T>(wq, 0);
        a = multiply(multiply(widen_matrix(q), a), op(widen_matrix(q), 'C'));
    }
    Matrix<T> vl = q, vr = q;
    std::vector<zint> select(static_cast<std::size_t>(std::max<zint>(n, 1)), 1);
    std::vector<T> work(1);
    std::vector<double> rwork(static_cast<std::size_t>(std::max<zint>(n, 1)));
    zint m = 0, info = -9;
    trevc3<T>(side, howmny, select.data(), n, t.data(), t.ld, vl.data(), vl.ld, vr.data(), vr.ld, n, m,
              work.data(), -1, rwork.data(), info);
    ASSERT_EQ(info, 0);
    const zint lwork =
        blocked ? static_cast<zint>(value(work[0]).re) : (kIsComplex<T> ? 2 : 3) * std::max<zint>(n, 1);
    work.assign(static_cast<std::size_t>(lwork), T{});
    trevc3<T>(side, howmny, select.data(), n, t.data(), t.ld, vl.data(), vl.ld, vr.data(), vr.ld, n, m,
              work.data(), lwork, rwork.data(), info);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(m, n);
    EXPECT_TRUE(same_contents(t, t0)) << "T changed";
    const std::vector<Exact> w = diagonal_eigenvalues(t0);
    if (side != 'L') {
        EXPECT_LT(eigenvector_residual(a, complex_vectors(vr, w), w, false), kResidualThreshold);
    }
    if (side != 'R') {
        EXPECT_LT(eigenvector_residual(a, complex_vectors(vl, w), w, true), kResidualThreshold);
    }
}

TEST(Trevc3, EigenvectorsOfSchurForms) {
    for (zint n : {1, 2, 3, 7, 40, 150}) {
        for (char side : {'R', 'L', 'B'}) {
            for (char howmny : {'A', 'B'}) {
                for (bool blocked : {false, true}) {
                    check_trevc3<double>(n, side, howmny, blocked);
                    check_trevc3<zcomplex>(n, side, howmny, blocked);
                }
            }
        }
    }
}

// The selected vectors are the columns "A" computes for them; a pair is chosen by either entry.
template <class T>
void check_selected(zint n) {
    const Matrix<T> t0 = schur_form<T>(n, 77);
    Matrix<T> t = t0, all(n, n, n), some(n, n, n);
    std::vector<zint> select(static_cast<std::size_t>(n), 0);
    std::vector<zint> every(static_cast<std::size_t>(n), 1);
    for (zint k = 1; k < n; k += 3) select[static_cast<std::size_t>(k)] = 1;  // second rows of the real pairs
    std::vector<T> work(static_cast<std::size_t>(3 * n));
    std::vector<double> rwork(static_cast<std::size_t>(n));
    zint m = 0, info = 0;
    trevc3<T>('R', 'A', every.data(), n, t.data(), t.ld, nullptr, 1, all.data(), all.ld, n, m, work.data(),
              3 * n, rwork.data(), info);
    ASSERT_EQ(info, 0);
    trevc3<T>('R', 'S', select.data(), n, t.data(), t.ld, nullptr, 1, some.data(), some.ld, n, m, work.data(),
              3 * n, rwork.data(), info);
    ASSERT_EQ(info, 0);
    zint column = 0;
    for (zint k = 0; k < n; ++k) {
        const bool pair = !kIsComplex<T> && k + 1 < n && value(t0(k + 1, k)).re != 0;
        const bool chosen = select[static_cast<std::size_t>(k)] != 0 ||
                            (pair && select[static_cast<std::size_t>(k + 1)] != 0);
        const zint width = pair ? 2 : 1;
        if (chosen) {
            for (zint c = 0; c < width; ++c) {
                for (zint i = 0; i < n; ++i) {
                    EXPECT_EQ(value(some(i, column + c)).re, value(all(i, k + c)).re) << k;
                    EXPECT_EQ(value(some(i, column + c)).im, value(all(i, k + c)).im) << k;
                }
            }
            column += width;
        }
        if (pair) ++k;
    }
    EXPECT_EQ(m, column);
}

TEST(Trevc3, SelectedVectorsAreTheColumnsOfAll) {
    check_selected<double>(11);
    check_selected<zcomplex>(11);
}

TEST(Trevc3, ChecksItsArguments) {
    double t[4] = {1, 0, 0, 2}, v[4], work[6];
    zint select[2] = {1, 1}, m = 0, info = 0;
    ::testing::internal::CaptureStdout();
    trevc3<double>('X', 'A', select, 2, t, 2, v, 2, v, 2, 2, m, work, 6, nullptr, info);
    EXPECT_EQ(info, -1);
    trevc3<double>('R', 'A', select, 2, t, 2, v, 2, v, 2, 1, m, work, 6, nullptr, info);
    EXPECT_EQ(info, -11);
    trevc3<double>('R', 'A', select, 2, t, 2, v, 2, v, 2, 2, m, work, 5, nullptr, info);
    EXPECT_EQ(info, -14);
    ::testing::internal::GetCapturedStdout();
}

}  // namespace
}  // namespace zor::test
