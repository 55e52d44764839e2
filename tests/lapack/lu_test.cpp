// The LU family through its internal interface: residuals of the factorisations and solves in the
// style of the LAPACK test suite over sizes on both sides of every block size and crossover, the
// info codes, the pivot rules, the progress handler, and the argument checks of every parameter.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lapack/dispatch.hpp"
#include "lapack/factor_support.hpp"
#include "lapack/lu/lu.hpp"
#include "lapack/tuning/tuning.hpp"
#include "support/variants.hpp"

namespace zor::test {
namespace {

// ||A - P L U||₁ / (n ||A||₁ eps) from the factors of an m by n matrix, and the pivots in range.
template <class T>
double lu_residual(const Matrix<T>& a, const Matrix<T>& f, const std::vector<zint>& ipiv) {
    const zint m = a.rows, n = a.cols, k = std::min(m, n);
    Wide l(m, k), u(k, n);
    for (zint j = 0; j < k; ++j) {
        l(j, j) = {1, 0};
        for (zint i = j + 1; i < m; ++i) l(i, j) = f.at(i, j);
    }
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i <= std::min(j, k - 1); ++i) u(i, j) = f.at(i, j);
    }
    Wide lu = multiply(l, u);
    for (zint i = k - 1; i >= 0; --i) {
        EXPECT_GE(ipiv[i], i + 1);
        EXPECT_LE(ipiv[i], m);
        const zint p = ipiv[i] - 1;
        if (p != i) {
            for (zint j = 0; j < n; ++j) std::swap(lu(i, j), lu(p, j));
        }
    }
    const long double norm = one_norm(a);
    return static_cast<double>(difference_norm(lu, widen_matrix(a)) /
                               (std::max<zint>(n, 1) * (norm > 0 ? norm : 1) * epsilon()));
}

struct Shape {
    zint m, n;
};

// Orders around the unblocked leaves (up to 32 columns), the first splits (64, 128), the widest
// blocks (256), and shapes cut by either dimension.
const Shape kLuShapes[] = {{1, 1},     {2, 2},     {3, 3},     {5, 5},     {8, 8},     {17, 17}, {31, 31},
                           {32, 32},   {33, 33},   {47, 47},   {63, 63},   {64, 64},   {65, 65}, {70, 70},
                           {127, 127}, {128, 128}, {129, 129}, {200, 200}, {257, 257}, {70, 33}, {33, 70},
                           {200, 65},  {65, 200},  {130, 257}, {257, 40},  {1, 9},     {9, 1},   {300, 3}};

class Getrf : public ::testing::TestWithParam<Shape> {};

template <class T>
void check_getrf(Shape s) {
    Random random(static_cast<std::uint64_t>(s.m * 1000 + s.n));
    const Matrix<T> a = random_matrix<T>(random, s.m, s.n);
    Matrix<T> f = a;
    std::vector<zint> ipiv(static_cast<std::size_t>(std::min(s.m, s.n)));
    zint info = -7;
    getrf<T>(s.m, s.n, f.data(), f.ld, ipiv.data(), info);
    EXPECT_EQ(info, 0);
    EXPECT_LT(lu_residual(a, f, ipiv), kResidualThreshold);
    EXPECT_TRUE(padding_untouched(f));
}

TEST_P(Getrf, FactorsReproduceTheMatrix) {
    check_getrf<double>(GetParam());
    check_getrf<zcomplex>(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Shapes, Getrf, ::testing::ValuesIn(kLuShapes), [](const auto& info) {
    return std::to_string(info.param.m) + "x" + std::to_string(info.param.n);
});

// Zero columns: the first one's index is info, later ones leave it, and the factors still
// reproduce the matrix, on the unblocked path and inside the blocked one.
TEST(GetrfInfo, FirstExactZeroPivotWinsAndTheFactorisationCompletes) {
    for (const auto& [n, first, second] :
         {std::tuple<zint, zint, zint>{5, 3, 5}, {100, 40, 90}, {260, 150, 151}}) {
        Random random(static_cast<std::uint64_t>(n));
        Matrix<double> a = random_matrix<double>(random, n, n);
        // Column `first` zero; column `second` a copy of column 0, so its pivot is zero too.
        for (zint i = 0; i < n; ++i) {
            a(i, first - 1) = 0.0;
            a(i, second - 1) = a(i, 0);
        }
        Matrix<double> f = a;
        std::vector<zint> ipiv(static_cast<std::size_t>(n));
        zint info = 0;
        getrf<double>(n, n, f.data(), f.ld, ipiv.data(), info);
        EXPECT_EQ(info, first) << n;
        EXPECT_EQ(f(first - 1, first - 1), 0.0);
        EXPECT_LT(lu_residual(a, f, ipiv), kResidualThreshold) << n;
    }
    // getri reports the first zero on the diagonal of U.
    Matrix<double> u(4, 4, 4);
    for (auto& v : u.v) v = 1.0;
    u(2, 2) = 0.0;
    const zint ipiv[4] = {1, 2, 3, 4};
    double work[4];
    zint info = 0;
    getri<double>(4, u.data(), 4, ipiv, work, 4, info);
    EXPECT_EQ(info, 3);
}

TEST(GetrfPivots, TheUpperOfTwoEqualMagnitudesIsChosen) {
    Matrix<double> a(3, 3, 3);
    a.v = {2, -2, 1, 1, 3, 1, 1, 1, 4};
    zint ipiv[3];
    zint info = 0;
    getrf<double>(3, 3, a.data(), 3, ipiv, info);
    EXPECT_EQ(ipiv[0], 1);
    Matrix<double> b(3, 1, 3);
    b.v = {1, -2, 2};
    getrf<double>(3, 1, b.data(), 3, ipiv, info);
    EXPECT_EQ(ipiv[0], 2);
    EXPECT_EQ(b(1, 0), -0.5);
}

// A pivot below the safe minimum: the column is divided entry by entry, so the multipliers are
// finite (its reciprocal would overflow to infinity); on both the general and the band path.
TEST(GetrfPivots, APivotBelowTheSafeMinimumGivesFiniteMultipliers) {
    const double tiny = 1e-310;
    auto entry = [&](zint i) { return i == 0 ? tiny : tiny * (i % 2 ? 0.5 : -0.25); };
    Matrix<double> a(19, 2, 19);
    for (zint i = 0; i < 19; ++i) {
        a(i, 0) = entry(i);
        a(i, 1) = i == 1 ? 100.0 : 1.0;  // no interchange at the second step
    }
    zint ipiv[2];
    zint info = 0;
    getrf<double>(19, 2, a.data(), 19, ipiv, info);
    EXPECT_EQ(info, 0);
    EXPECT_EQ(ipiv[0], 1);
    for (zint i = 1; i < 19; ++i) EXPECT_NEAR(a(i, 0), i % 2 ? 0.5 : -0.25, 1e-4) << i;

    // The same column as a band matrix with kl = 18.
    const zint kl = 18, ku = 1, ldab = 2 * kl + ku + 1;
    std::vector<double> ab(static_cast<std::size_t>(ldab * 19), 0.0);
    for (zint i = 0; i < 19; ++i) ab[static_cast<std::size_t>(kl + ku + i)] = entry(i);
    for (zint j = 1; j < 19; ++j) ab[static_cast<std::size_t>(kl + ku + j * ldab)] = 1.0;
    std::vector<zint> band_pivots(19);
    gbtrf<double>(19, 19, kl, ku, ab.data(), ldab, band_pivots.data(), info);
    EXPECT_EQ(band_pivots[0], 1);
    for (zint i = 1; i < 19; ++i)
        EXPECT_NEAR(ab[static_cast<std::size_t>(kl + ku + i)], i % 2 ? 0.5 : -0.25, 1e-4) << i;
}

// op(A) X = B for every option, one right-hand side (level-2 solves) and several.
template <class T>
void check_getrs(zint n, zint nrhs, char trans) {
    Random random(static_cast<std::uint64_t>(n * 31 + nrhs));
    const Matrix<T> a = random_matrix<T>(random, n, n);
    const Matrix<T> b = random_matrix<T>(random, n, nrhs, 2);
    Matrix<T> f = a, x = b;
    std::vector<zint> ipiv(static_cast<std::size_t>(n));
    zint info = 0;
    getrf<T>(n, n, f.data(), f.ld, ipiv.data(), info);
    ASSERT_EQ(info, 0);
    getrs<T>(trans, n, nrhs, f.data(), f.ld, ipiv.data(), x.data(), x.ld, info);
    ASSERT_EQ(info, 0);
    EXPECT_LT(solve_residual(widen_matrix(a), trans, x, b), kResidualThreshold)
        << n << " " << nrhs << " " << trans;
    EXPECT_TRUE(padding_untouched(x));
}

TEST(Getrs, EveryOptionSolves) {
    for (char trans : {'N', 'T', 'C', 'n', 't', 'c'}) {
        for (zint n : {1, 7, 70, 150}) {
            for (zint nrhs : {1, 2, 9}) {
                check_getrs<double>(n, nrhs, trans);
                check_getrs<zcomplex>(n, nrhs, trans);
            }
        }
    }
}

// The optimal workspace (n NB), the least allowed (unblocked) and room for a narrower block.
template <class T>
void check_getri(zint n, zint lwork_kind) {
    Random random(static_cast<std::uint64_t>(n + 77));
    const Matrix<T> a = random_matrix<T>(random, n, n);
    Matrix<T> f = a;
    std::vector<zint> ipiv(static_cast<std::size_t>(n));
    zint info = 0;
    getrf<T>(n, n, f.data(), f.ld, ipiv.data(), info);
    ASSERT_EQ(info, 0);
    T query{};
    getri<T>(n, f.data(), f.ld, nullptr, &query, zint{-1}, info);
    const zint optimal = static_cast<zint>(value(query).re);
    EXPECT_EQ(optimal,
              std::max<zint>(1, n * ilaenv(1, kIsComplex<T> ? "ZGETRI" : "DGETRI", " ", n, -1, -1, -1)));
    const zint lwork = lwork_kind == 0 ? optimal : std::max<zint>(1, n * (lwork_kind == 1 ? 1 : 5));
    std::vector<T> work(static_cast<std::size_t>(lwork));
    getri<T>(n, f.data(), f.ld, ipiv.data(), work.data(), lwork, info);
    ASSERT_EQ(info, 0);
    EXPECT_LT(inverse_residual(widen_matrix(a), widen_matrix(f)), kResidualThreshold)
        << n << " lwork " << lwork;
}

TEST(Getri, InverseTimesMatrixIsTheIdentity) {
    for (zint n : {1, 2, 17, 63, 64, 65, 130, 200}) {
        for (zint kind : {0, 1, 2}) {
            check_getri<double>(n, kind);
            check_getri<zcomplex>(n, kind);
        }
    }
}

TEST(Laswp, BackwardUndoesForwardAndStridesReadEveryOtherPivot) {
    Random random(3);
    Matrix<double> a = random_matrix<double>(random, 8, 5, 0);
    const Matrix<double> original = a;
    const zint ipiv[8] = {3, 3, 8, 4, 6, 6, 8, 8};
    laswp<double>(5, a.data(), 8, 2, 7, ipiv, 1);
    EXPECT_EQ(a(1, 0), original(2, 0));  // row 2 with row 3 first
    laswp<double>(5, a.data(), 8, 2, 7, ipiv, -1);
    EXPECT_EQ(a.v, original.v);
    // incx = 2: rows 1, 2, 3 take ipiv(1), ipiv(3), ipiv(5).
    const zint strided[5] = {2, 99, 3, 99, 3};
    laswp<double>(5, a.data(), 8, 1, 3, strided, 2);
    for (zint j = 0; j < 5; ++j) {
        EXPECT_EQ(a(0, j), original(1, j));
        EXPECT_EQ(a(1, j), original(2, j));
        EXPECT_EQ(a(2, j), original(0, j));
    }
}

// ---- band ---------------------------------------------------------------------------------------

// The band matrix (kl, ku) in band storage of leading dimension ldab, with random entries.
template <class T>
std::vector<T> random_band(Random& random, zint m, zint n, zint kl, zint ku, zint ldab) {
    std::vector<T> band(static_cast<std::size_t>(ldab * n), narrow_to<T>({0, 0}));
    for (zint j = 0; j < n; ++j) {
        for (zint i = std::max<zint>(0, j - ku); i < std::min(m, j + kl + 1); ++i)
            band[static_cast<std::size_t>(kl + ku + i - j + j * ldab)] = random_element<T>(random);
    }
    return band;
}

// A = P1 L1 P2 L2 ... U rebuilt from the band factors, against the band matrix.
template <class T>
double gb_residual(zint m, zint n, zint kl, zint ku, const std::vector<T>& band, const std::vector<T>& f,
                   zint ldab, const std::vector<zint>& ipiv) {
    const zint kv = kl + ku, k = std::min(m, n);
    Wide x(m, n), a(m, n);
    for (zint j = 0; j < n; ++j) {
        for (zint i = std::max<zint>(0, j - ku); i < std::min(m, j + kl + 1); ++i)
            a(i, j) = value(band[static_cast<std::size_t>(kv + i - j + j * ldab)]);
        for (zint i = std::max<zint>(0, j - kv); i <= std::min(j, m - 1); ++i)
            x(i, j) = value(f[static_cast<std::size_t>(kv + i - j + j * ldab)]);
    }
    for (zint j = k - 1; j >= 0; --j) {
        const zint below = std::min(kl, m - j - 1);
        for (zint c = 0; c < n; ++c) {
            const Exact top = x(j, c);
            for (zint i = 1; i <= below; ++i)
                x(j + i, c) = x(j + i, c) + value(f[static_cast<std::size_t>(kv + i + j * ldab)]) * top;
        }
        const zint p = ipiv[static_cast<std::size_t>(j)] - 1;
        EXPECT_GE(p, j);
        EXPECT_LE(p, j + kl);
        for (zint c = 0; c < n; ++c) std::swap(x(j, c), x(p, c));
    }
    const long double norm = one_norm(a);
    return static_cast<double>(difference_norm(x, a) / (n * (norm > 0 ? norm : 1) * epsilon()));
}

struct BandCase {
    zint m, n, kl, ku;
};

template <class T>
void check_gbtrf(const BandCase& c) {
    Random random(static_cast<std::uint64_t>(c.m * 7 + c.n * 13 + c.kl * 17 + c.ku));
    const zint ldab = 2 * c.kl + c.ku + 1 + 2;
    const std::vector<T> band = random_band<T>(random, c.m, c.n, c.kl, c.ku, ldab);
    // The fill-in rows start as garbage: the factorisation must clear what it reads.
    std::vector<T> f = band;
    for (zint j = 0; j < c.n; ++j) {
        for (zint i = 0; i < c.kl; ++i) f[static_cast<std::size_t>(i + j * ldab)] = narrow_to<T>({7, 7});
    }
    std::vector<zint> ipiv(static_cast<std::size_t>(std::max<zint>(1, std::min(c.m, c.n))));
    zint info = 0;
    gbtrf<T>(c.m, c.n, c.kl, c.ku, f.data(), ldab, ipiv.data(), info);
    ASSERT_EQ(info, 0);
    EXPECT_LT(gb_residual(c.m, c.n, c.kl, c.ku, band, f, ldab, ipiv), kResidualThreshold)
        << c.m << "x" << c.n << " kl " << c.kl << " ku " << c.ku;
}

// Band widths on both sides of the blocking decision (block size against kl) and matrices cut by
// the band at either end.
TEST(Gbtrf, FactorsReproduceTheBandMatrix) {
    std::vector<BandCase> cases = {{1, 1, 0, 0},     {9, 9, 1, 1},       {9, 9, 4, 0},
                                   {9, 9, 0, 4},     {50, 30, 7, 2},     {30, 50, 2, 7},
                                   {12, 12, 20, 20}, {260, 300, 40, 80}, {300, 240, 40, 80}};
    const zint nb = ilaenv(1, "DGBTRF", " ", 300, 300, 40, 80);
    for (zint kl : {nb - 1, nb, nb + 5, 2 * nb + 3}) {
        if (kl < 1) continue;
        for (zint ku : {zint{3}, kl, zint{80}}) cases.push_back({300, 300, kl, ku});
    }
    for (const BandCase& c : cases) {
        check_gbtrf<double>(c);
        check_gbtrf<zcomplex>(c);
    }
}

template <class T>
void check_gbsv(zint n, zint kl, zint ku, zint nrhs, char trans) {
    Random random(static_cast<std::uint64_t>(n + kl * 3 + ku * 5 + nrhs));
    const zint ldab = 2 * kl + ku + 1;
    std::vector<T> band = random_band<T>(random, n, n, kl, ku, ldab);
    Wide a(n, n);
    for (zint j = 0; j < n; ++j) {
        for (zint i = std::max<zint>(0, j - ku); i < std::min(n, j + kl + 1); ++i)
            a(i, j) = value(band[static_cast<std::size_t>(kl + ku + i - j + j * ldab)]);
    }
    const Matrix<T> b = random_matrix<T>(random, n, nrhs, 1);
    Matrix<T> x = b;
    std::vector<zint> ipiv(static_cast<std::size_t>(n));
    zint info = 0;
    if (trans == 'N') {
        gbsv<T>(n, kl, ku, nrhs, band.data(), ldab, ipiv.data(), x.data(), x.ld, info);
    } else {
        gbtrf<T>(n, n, kl, ku, band.data(), ldab, ipiv.data(), info);
        gbtrs<T>(trans, n, kl, ku, nrhs, band.data(), ldab, ipiv.data(), x.data(), x.ld, info);
    }
    ASSERT_EQ(info, 0);
    EXPECT_LT(solve_residual(a, trans, x, b), kResidualThreshold)
        << n << " " << kl << " " << ku << " " << trans;
    EXPECT_TRUE(padding_untouched(x));
}

TEST(Gbsv, EveryOptionSolves) {
    const zint nb = ilaenv(1, "DGBTRF", " ", 200, 200, 40, 80);
    for (char trans : {'N', 'T', 'C'}) {
        for (const auto& [n, kl, ku] : {std::tuple<zint, zint, zint>{1, 0, 0},
                                        {20, 0, 3},
                                        {20, 3, 0},
                                        {40, 2, 5},
                                        {200, std::max<zint>(nb, 1) + 4, 80}}) {
            for (zint nrhs : {1, 4}) {
                check_gbsv<double>(n, kl, ku, nrhs, trans);
                check_gbsv<zcomplex>(n, kl, ku, nrhs, trans);
            }
        }
    }
}

TEST(Gbtrf, ZeroPivotsAreReportedAndTheFactorisationCompletes) {
    const zint n = 200, kl = 40, ku = 80, ldab = 2 * kl + ku + 1;
    Random random(9);
    std::vector<double> band = random_band<double>(random, n, n, kl, ku, ldab);
    for (zint j : {69, 150}) {  // zero columns: zero pivots at 70 and 151
        for (zint i = 0; i < ldab; ++i) band[static_cast<std::size_t>(i + j * ldab)] = 0.0;
    }
    std::vector<double> f = band;
    std::vector<zint> ipiv(static_cast<std::size_t>(n));
    zint info = 0;
    gbtrf<double>(n, n, kl, ku, f.data(), ldab, ipiv.data(), info);
    EXPECT_EQ(info, 70);
    EXPECT_LT(gb_residual(n, n, kl, ku, band, f, ldab, ipiv), kResidualThreshold);
}

// ---- tridiagonal --------------------------------------------------------------------------------

struct Tridiagonal {
    std::vector<double> dl, d, du;
};

Tridiagonal random_tridiagonal(Random& random, zint n) {
    Tridiagonal t;
    for (zint i = 0; i < n; ++i) {
        t.d.push_back(random.uniform());
        if (i + 1 < n) {
            t.dl.push_back(random.uniform() * 2);
            t.du.push_back(random.uniform());
        }
    }
    return t;
}

TEST(Gttrs, EveryOptionAndBlockOfRightHandSidesSolves) {
    const zint nb = ilaenv(1, "DGTTRS", "N", 100, 40, -1, -1);
    for (zint n : {1, 2, 3, 10, 100}) {
        for (zint nrhs : {zint{1}, zint{3}, std::max<zint>(2, nb) * 2 + 1}) {
            for (char trans : {'N', 'n', 'T', 't', 'C', 'c'}) {
                Random random(static_cast<std::uint64_t>(n * 100 + nrhs));
                const Tridiagonal t = random_tridiagonal(random, n);
                Tridiagonal f = t;
                std::vector<double> du2(static_cast<std::size_t>(std::max<zint>(n - 2, 1)));
                std::vector<zint> ipiv(static_cast<std::size_t>(n));
                zint info = 0;
                gttrf(n, f.dl.data(), f.d.data(), f.du.data(), du2.data(), ipiv.data(), info);
                ASSERT_EQ(info, 0);
                const Matrix<double> b = random_matrix<double>(random, n, nrhs, 2);
                Matrix<double> x = b;
                gttrs(trans, n, nrhs, f.dl.data(), f.d.data(), f.du.data(), du2.data(), ipiv.data(), x.data(),
                      x.ld, info);
                ASSERT_EQ(info, 0);
                Wide a(n, n);
                for (zint i = 0; i < n; ++i) {
                    a(i, i) = {t.d[static_cast<std::size_t>(i)], 0};
                    if (i + 1 < n) {
                        a(i + 1, i) = {t.dl[static_cast<std::size_t>(i)], 0};
                        a(i, i + 1) = {t.du[static_cast<std::size_t>(i)], 0};
                    }
                }
                EXPECT_LT(solve_residual(a, trans, x, b), kResidualThreshold)
                    << n << " " << nrhs << " " << trans;
                EXPECT_TRUE(padding_untouched(x));
            }
        }
    }
}

TEST(Gttrf, AnExactZeroOnTheDiagonalOfUIsReported) {
    // Column 1 is [0, 1, 0]: interchanged to [1, 0]; then column 2 of U becomes zero.
    std::vector<double> dl = {1, 0}, d = {0, 0, 1}, du = {0, 1}, du2(1);
    std::vector<zint> ipiv(3);
    zint info = 0;
    gttrf(3, dl.data(), d.data(), du.data(), du2.data(), ipiv.data(), info);
    EXPECT_EQ(ipiv[0], 2);
    EXPECT_EQ(info, 2);
}

// Every variant of the solve kernel computes the same bits.
class Gtts2Levels : public LevelTest {};

TEST_P(Gtts2Levels, EveryVariantGivesTheDefaultBits) {
    const zint n = 37, nrhs = 7;
    Random random(11);
    Tridiagonal f = random_tridiagonal(random, n);
    std::vector<double> du2(n - 2);
    std::vector<zint> ipiv(n);
    zint info = 0;
    gttrf(n, f.dl.data(), f.d.data(), f.du.data(), du2.data(), ipiv.data(), info);
    const Matrix<double> b = random_matrix<double>(random, n, nrhs, 1);
    for (zint itrans : {0, 1}) {
        Matrix<double> expected = b, got = b;
        dgtts2.variant(CpuLevel::Default)(itrans, n, nrhs, f.dl.data(), f.d.data(), f.du.data(), du2.data(),
                                          ipiv.data(), expected.data(), expected.ld);
        dgtts2.variant(level())(itrans, n, nrhs, f.dl.data(), f.d.data(), f.du.data(), du2.data(),
                                ipiv.data(), got.data(), got.ld);
        EXPECT_TRUE(same_contents(expected, got)) << itrans;
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, Gtts2Levels, kAllLevels, level_param_name);

// ---- argument checks ----------------------------------------------------------------------------

double g_a[64];
zcomplex g_z[64];
zint g_pivots[8] = {1, 2, 3, 4, 5, 6, 7, 8};

const ArgumentCase kLuArgumentCases[] = {
    {"DGETRF", -1, [] { return info_of(getrf<double>, -1, 2, g_a, 2, g_pivots); }},
    {"DGETRF", -2, [] { return info_of(getrf<double>, 2, -1, g_a, 2, g_pivots); }},
    {"ZGETRF", -4, [] { return info_of(getrf<zcomplex>, 3, 2, g_z, 2, g_pivots); }},
    {"DGETRS", -1, [] { return info_of(getrs<double>, 'X', 2, 1, g_a, 2, g_pivots, g_a, 2); }},
    {"DGETRS", -2, [] { return info_of(getrs<double>, 'N', -1, 1, g_a, 2, g_pivots, g_a, 2); }},
    {"DGETRS", -3, [] { return info_of(getrs<double>, 'T', 2, -1, g_a, 2, g_pivots, g_a, 2); }},
    {"DGETRS", -5, [] { return info_of(getrs<double>, 'C', 2, 1, g_a, 1, g_pivots, g_a, 2); }},
    {"ZGETRS", -8, [] { return info_of(getrs<zcomplex>, 'n', 2, 1, g_z, 2, g_pivots, g_z, 1); }},
    {"DGESV ", -1, [] { return info_of(gesv<double>, -1, 1, g_a, 1, g_pivots, g_a, 1); }},
    {"DGESV ", -2, [] { return info_of(gesv<double>, 2, -1, g_a, 2, g_pivots, g_a, 2); }},
    {"DGESV ", -4, [] { return info_of(gesv<double>, 2, 1, g_a, 1, g_pivots, g_a, 2); }},
    {"ZGESV ", -7, [] { return info_of(gesv<zcomplex>, 2, 1, g_z, 2, g_pivots, g_z, 1); }},
    {"DGETRI", -1, [] { return info_of(getri<double>, -1, g_a, 1, g_pivots, g_a, 1); }},
    {"DGETRI", -3, [] { return info_of(getri<double>, 3, g_a, 2, g_pivots, g_a, 9); }},
    {"ZGETRI", -6, [] { return info_of(getri<zcomplex>, 3, g_z, 3, g_pivots, g_z, 0); }},
    {"DGBTRF", -1, [] { return info_of(gbtrf<double>, -1, 2, 1, 1, g_a, 4, g_pivots); }},
    {"DGBTRF", -2, [] { return info_of(gbtrf<double>, 2, -1, 1, 1, g_a, 4, g_pivots); }},
    {"DGBTRF", -3, [] { return info_of(gbtrf<double>, 2, 2, -1, 1, g_a, 4, g_pivots); }},
    {"DGBTRF", -4, [] { return info_of(gbtrf<double>, 2, 2, 1, -1, g_a, 4, g_pivots); }},
    {"DGBTRF", -6, [] { return info_of(gbtrf<double>, 2, 2, 1, 1, g_a, 3, g_pivots); }},
    {"DGBTRS", -1, [] { return info_of(gbtrs<double>, '/', 2, 1, 1, 1, g_a, 4, g_pivots, g_a, 2); }},
    {"DGBTRS", -2, [] { return info_of(gbtrs<double>, 'N', -2, 1, 1, 1, g_a, 4, g_pivots, g_a, 2); }},
    {"DGBTRS", -3, [] { return info_of(gbtrs<double>, 'N', 2, -1, 1, 1, g_a, 4, g_pivots, g_a, 2); }},
    {"DGBTRS", -4, [] { return info_of(gbtrs<double>, 'N', 2, 1, -1, 1, g_a, 4, g_pivots, g_a, 2); }},
    {"DGBTRS", -5, [] { return info_of(gbtrs<double>, 'T', 2, 1, 1, -1, g_a, 4, g_pivots, g_a, 2); }},
    {"DGBTRS", -7, [] { return info_of(gbtrs<double>, 'C', 2, 1, 1, 1, g_a, 3, g_pivots, g_a, 2); }},
    {"ZGBTRS", -10, [] { return info_of(gbtrs<zcomplex>, 'N', 2, 1, 1, 1, g_z, 4, g_pivots, g_z, 1); }},
    {"DGBSV ", -1, [] { return info_of(gbsv<double>, -1, 1, 1, 1, g_a, 4, g_pivots, g_a, 1); }},
    {"DGBSV ", -2, [] { return info_of(gbsv<double>, 2, -1, 1, 1, g_a, 4, g_pivots, g_a, 2); }},
    {"DGBSV ", -3, [] { return info_of(gbsv<double>, 2, 1, -1, 1, g_a, 4, g_pivots, g_a, 2); }},
    {"DGBSV ", -4, [] { return info_of(gbsv<double>, 2, 1, 1, -1, g_a, 4, g_pivots, g_a, 2); }},
    {"DGBSV ", -6, [] { return info_of(gbsv<double>, 2, 1, 1, 1, g_a, 3, g_pivots, g_a, 2); }},
    {"ZGBSV ", -9, [] { return info_of(gbsv<zcomplex>, 2, 1, 1, 1, g_z, 4, g_pivots, g_z, 1); }},
    {"DGTTRF", -1, [] { return info_of(gttrf, -1, g_a, g_a, g_a, g_a, g_pivots); }},
    {"DGTTRS", -1, [] { return info_of(gttrs, 'x', 2, 1, g_a, g_a, g_a, g_a, g_pivots, g_a, 2); }},
    {"DGTTRS", -2, [] { return info_of(gttrs, 'N', -1, 1, g_a, g_a, g_a, g_a, g_pivots, g_a, 2); }},
    {"DGTTRS", -3, [] { return info_of(gttrs, 't', 2, -1, g_a, g_a, g_a, g_a, g_pivots, g_a, 2); }},
    {"DGTTRS", -10, [] { return info_of(gttrs, 'c', 2, 1, g_a, g_a, g_a, g_a, g_pivots, g_a, 1); }},
};

INSTANTIATE_TEST_SUITE_P(LuArguments, ArgumentChecks, ::testing::ValuesIn(kLuArgumentCases));

// Quick returns: nothing is read or written and no progress is reported.
TEST(LuQuickReturns, EmptyMatricesTouchNothing) {
    zint info = 5;
    getrf<double>(0, 3, nullptr, 1, nullptr, info);
    EXPECT_EQ(info, 0);
    getrf<zcomplex>(4, 0, nullptr, 4, nullptr, info);
    EXPECT_EQ(info, 0);
    getrs<double>('N', 0, 3, nullptr, 1, nullptr, nullptr, 1, info);
    getrs<double>('N', 3, 0, nullptr, 3, nullptr, nullptr, 3, info);
    gbtrf<double>(0, 0, 1, 1, nullptr, 4, nullptr, info);
    gttrs('N', 3, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 3, info);
    EXPECT_EQ(info, 0);
}

// ---- progress -----------------------------------------------------------------------------------

// The handler slot is per process and the first registration wins, so each case runs in a child
// that installs the test's handler first.
void progress_child() {
    use_progress_log();
    const zint n = 150;
    Random random(1);
    Matrix<double> a = random_matrix<double>(random, n, n);
    std::vector<zint> ipiv(n);
    zint info = 0;
    getrf<double>(n, n, a.data(), a.ld, ipiv.data(), info);
    // Steps rise to n, one report per unblocked leaf, every one named "DGETRF".
    const auto& steps = ProgressLog::steps;
    if (steps.empty() || steps.back() != n) std::exit(1);
    for (std::size_t i = 1; i < steps.size(); ++i) {
        if (steps[i] <= steps[i - 1]) std::exit(2);
    }
    for (const auto& stage : ProgressLog::stages) {
        if (stage != "DGETRF") std::exit(3);
    }
    // Stopped on its first report: only the first leaf is factored, the rest untouched.
    ProgressLog::reset(1);
    Matrix<zcomplex> z = random_matrix<zcomplex>(random, n, n);
    const Matrix<zcomplex> original = z;
    std::vector<zint> zipiv(n, -1);
    getrf<zcomplex>(n, n, z.data(), z.ld, zipiv.data(), info);
    if (ProgressLog::calls != 1 || ProgressLog::stages[0] != "ZGETRF") std::exit(4);
    const zint leaf = ProgressLog::steps[0];
    if (leaf <= 0 || leaf >= n) std::exit(5);
    if (zipiv[static_cast<std::size_t>(leaf)] != -1) std::exit(6);
    if (z(n - 1, n - 1).re != original(n - 1, n - 1).re) std::exit(7);
    // dgesv skips the solve after a stop.
    ProgressLog::reset(1);
    Matrix<double> b = random_matrix<double>(random, n, 1);
    const Matrix<double> b0 = b;
    gesv<double>(n, 1, a.data(), a.ld, ipiv.data(), b.data(), b.ld, info);
    if (info != 0 || !same_contents(b, b0)) std::exit(8);
    // The band factorisation reports its block columns as "XDGBTRF".
    ProgressLog::reset();
    const zint kl = 40, ku = 80, ldab = 2 * kl + ku + 1;
    std::vector<double> band(ldab * n, 1.0);
    for (zint j = 0; j < n; ++j) band[kl + ku + j * ldab] = 1000.0;
    gbtrf<double>(n, n, kl, ku, band.data(), ldab, ipiv.data(), info);
    if (ProgressLog::stages.empty() || ProgressLog::stages[0] != "XDGBTRF") std::exit(9);
    if (ProgressLog::steps.back() != n) std::exit(10);
    // Empty matrices report nothing.
    ProgressLog::reset();
    getrf<double>(0, 5, a.data(), 1, ipiv.data(), info);
    std::exit(ProgressLog::calls == 0 ? 0 : 11);
}

TEST(LuProgress, ReportsEachLeafAndStopsAtOnceWhenAsked) {
    EXPECT_EXIT(progress_child(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace zor::test

namespace zor::test {
namespace {

// Copies of one matrix factor to the same bits wherever they lie (the kernels above Default take
// no alignment peels), as programs comparing two factorisations of one matrix expect.
TEST(LuReproducibility, CopiesAtAnyAddressFactorAlike) {
    Random random(17);
    const zint m = 30, n = 40;
    const Matrix<double> a = random_matrix<double>(random, m, n, 0);
    std::vector<double> first;
    for (std::size_t offset = 0; offset < 8; ++offset) {
        std::vector<double> storage(a.v.size() + 16);
        double* base = storage.data();
        while (reinterpret_cast<std::uintptr_t>(base) % 64 != 0) ++base;
        std::copy(a.v.begin(), a.v.end(), base + offset);
        std::vector<zint> ipiv(m);
        zint info = 0;
        getrf<double>(m, n, base + offset, m, ipiv.data(), info);
        std::vector<double> factors(base + offset, base + offset + a.v.size());
        if (offset == 0) {
            first = factors;
        } else if (detect_cpu_level() != CpuLevel::Default) {
            EXPECT_EQ(factors, first) << offset;
        }
    }
}

}  // namespace
}  // namespace zor::test
