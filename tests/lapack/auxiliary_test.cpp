// The shared LAPACK auxiliaries: scaling across the exponent range, norms against long-double sums,
// rotations that must zero their second value without overflow, the rotation sequences against the
// rotations applied one by one, sorting and merging with awkward inputs.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/factor_support.hpp"
#include "service/element.hpp"

namespace zor::test {
namespace {

template <class T>
class Auxiliary : public ::testing::Test {};
using ElementTypes = ::testing::Types<double, zcomplex>;
TYPED_TEST_SUITE(Auxiliary, ElementTypes);

// Scaling by cto / cfrom when the quotient itself is far outside the range of either: the steps
// must neither overflow nor flush to zero, and only the named part of the matrix changes.
TYPED_TEST(Auxiliary, LasclScalesAcrossTheExponentRangeAndOnlyItsPart) {
    using T = TypeParam;
    Random random(3);
    // Quotients cto / cfrom that overflow or underflow although every scaled entry is representable.
    const struct {
        double from, to, entries;
    } ratios[] = {{1e-300, 1e200, 1e-200}, {1e300, 1e-200, 1e200}, {3.0, 6.0, 1.0}, {0x1p-1074, 1.0, 1e-300}};
    for (const char type : {'G', 'L', 'U', 'H'}) {
        for (const auto& r : ratios) {
            Matrix<T> a = random_matrix<T>(random, 5, 4);
            for (T& x : a.v) x = x * r.entries;
            Matrix<T> b = a;
            zint info = 1;
            lascl(type, 0, 0, r.from, r.to, 5, 4, b.data(), b.ld, info);
            ASSERT_EQ(info, 0);
            const long double factor = static_cast<long double>(r.to) / r.from;
            for (zint j = 0; j < 4; ++j) {
                for (zint i = 0; i < 5; ++i) {
                    const bool in = type == 'G' || (type == 'L' && i >= j) || (type == 'U' && i <= j) ||
                                    (type == 'H' && i <= j + 1);
                    const long double expected = in ? a.at(i, j).re * factor : a.at(i, j).re;
                    EXPECT_NEAR(b.at(i, j).re / expected, 1.0L, 1e-14) << type << " " << i << "," << j;
                }
            }
            EXPECT_TRUE(padding_untouched(b));
        }
    }
}

TEST(AuxiliaryChecks, LasclRejectsWhatCannotBeScaled) {
    double a[4] = {1, 2, 3, 4};
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto info = [&](char type, zint kl, zint ku, double from, double to, zint m, zint n, zint lda) {
        zint result = 0;
        lascl(type, kl, ku, from, to, m, n, a, lda, result);
        return result;
    };
    EXPECT_EQ(info('X', 0, 0, 1, 2, 2, 2, 2), -1);
    EXPECT_EQ(info('G', 0, 0, 0.0, 2, 2, 2, 2), -4);
    EXPECT_EQ(info('G', 0, 0, nan, 2, 2, 2, 2), -4);
    EXPECT_EQ(info('G', 0, 0, 1, nan, 2, 2, 2), -5);
    EXPECT_EQ(info('G', 0, 0, 1, 2, 2, 2, 1), -9);
    EXPECT_EQ(info('B', 1, 1, 1, 2, 2, 3, 2), -7);
    EXPECT_EQ(info('Z', 2, 0, 1, 2, 2, 2, 5), -2);
    EXPECT_EQ(a[0], 1.0);
}

// The norms against long-double sums of the stored values, over both triangles of a Hermitian
// matrix whose diagonal holds imaginary garbage that must be ignored.
TYPED_TEST(Auxiliary, NormsMatchLongDoubleSums) {
    using T = TypeParam;
    Random random(11);
    const zint m = 7, n = 5;
    const Matrix<T> a = random_matrix<T>(random, m, n);
    std::vector<double> work(m);
    long double max = 0, one = 0, inf = 0, fro = 0;
    std::vector<long double> rows(m);
    for (zint j = 0; j < n; ++j) {
        long double column = 0;
        for (zint i = 0; i < m; ++i) {
            const long double v = std::hypot(a.at(i, j).re, a.at(i, j).im);
            max = std::max(max, v);
            column += v;
            rows[i] += v;
            fro += v * v;
        }
        one = std::max(one, column);
    }
    for (long double r : rows) inf = std::max(inf, r);
    EXPECT_NEAR(lange('M', m, n, a.data(), a.ld, work.data()), max, 1e-15);
    EXPECT_NEAR(lange('1', m, n, a.data(), a.ld, work.data()), one, 1e-14);
    EXPECT_NEAR(lange('I', m, n, a.data(), a.ld, work.data()), inf, 1e-14);
    EXPECT_NEAR(lange('F', m, n, a.data(), a.ld, work.data()), std::sqrt(fro), 1e-14);

    Matrix<T> h = random_positive_definite<T>(random, n);
    if constexpr (kIsComplex<T>) {
        for (zint i = 0; i < n; ++i) h(i, i).im = 1e3;
    }
    const Wide full = widen_matrix(h);
    long double h_one = 0, h_fro = 0;
    for (zint j = 0; j < n; ++j) {
        long double column = 0;
        for (zint i = 0; i < n; ++i) {
            const long double v =
                i == j ? std::fabs(full(i, j).re) : std::hypot(full(i, j).re, full(i, j).im);
            column += v;
            h_fro += v * v;
        }
        h_one = std::max(h_one, column);
    }
    for (const char uplo : {'U', 'L'}) {
        Matrix<T> stored = h;
        // Poison the triangle that must not be read.
        for (zint j = 0; j < n; ++j) {
            for (zint i = 0; i < n; ++i) {
                if (uplo == 'U' ? i > j : i < j) stored(i, j) = scalar<T>(1e9, 1e9);
            }
        }
        EXPECT_NEAR(lanhe('1', uplo, n, stored.data(), stored.ld, work.data()), h_one, 1e-13) << uplo;
        EXPECT_NEAR(lanhe('F', uplo, n, stored.data(), stored.ld, work.data()), std::sqrt(h_fro), 1e-13)
            << uplo;
    }
}

TEST(AuxiliaryNorms, NanReachesEveryNormAndHugeValuesDoNotOverflow) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    double a[6] = {1, 2, nan, 4, 5, 6};
    double work[3];
    for (const char norm : {'M', '1', 'I', 'F'})
        EXPECT_TRUE(std::isnan(lange(norm, 3, 2, a, 3, work))) << norm;
    const double d[3] = {1e300, -1e300, 1e300}, e[2] = {1e300, 1e300};
    EXPECT_DOUBLE_EQ(lanst('F', 3, d, e), std::sqrt(7.0) * 1e300);
    EXPECT_DOUBLE_EQ(lanst('1', 3, d, e), 3e300);
    const double d_nan[2] = {1, nan}, e_zero[1] = {0};
    EXPECT_TRUE(std::isnan(lanst('M', 2, d_nan, e_zero)));
}

// A rotation must satisfy c² + |s|² = 1, zero g and give r of the norm of (f, g), across scales where
// the squares would overflow or underflow.
TYPED_TEST(Auxiliary, LartgZeroesTheSecondValueAtEveryScale) {
    using T = TypeParam;
    for (const double scale : {1.0, 1e-300, 1e300}) {
        for (const double ratio : {1.0, 1e-20, 1e20}) {
            if (scale * ratio > 1e307) continue;
            const T f = scalar<T>(0.6 * scale, -0.3 * scale);
            const T g = scalar<T>(0.8 * scale * ratio, 0.1 * scale * ratio);
            double c;
            T s, r;
            lartg(f, g, c, s, r);
            const Value vf = value(f), vg = value(g), vs = value(s), vr = value(r);
            const long double norm =
                std::sqrt(static_cast<long double>(vf.re) * vf.re + static_cast<long double>(vf.im) * vf.im +
                          static_cast<long double>(vg.re) * vg.re + static_cast<long double>(vg.im) * vg.im);
            EXPECT_NEAR(c * static_cast<long double>(c) + vs.re * vs.re + vs.im * vs.im, 1.0L, 1e-15);
            EXPECT_NEAR(std::hypot(vr.re, vr.im) / norm, 1.0L, 1e-15);
            // -conj(s) f + c g = 0, relative to the norm.
            const Value zero_part = Value{-vs.re, vs.im} * vf + Value{c, 0} * vg;
            EXPECT_LT(std::hypot(zero_part.re, zero_part.im) / norm, 1e-15L) << scale << " " << ratio;
        }
    }
    double c;
    T s, r;
    lartg(scalar<T>(2, 0), scalar<T>(0, 0), c, s, r);
    EXPECT_EQ(c, 1.0);
    EXPECT_TRUE(is_zero(s));
    lartg(scalar<T>(0, 0), scalar<T>(-3, 0), c, s, r);
    EXPECT_EQ(c, 0.0);
    EXPECT_EQ(value(r).re, 3.0);
}

// The sequence applied by lasr against the rotations applied one at a time, for every pivot and
// direction, on rows and on columns.
TYPED_TEST(Auxiliary, LasrIsItsRotationsInOrder) {
    using T = TypeParam;
    Random random(5);
    const zint m = 5, n = 4;
    for (const char side : {'L', 'R'}) {
        const zint k = side == 'L' ? m : n;
        std::vector<double> c(k - 1), s(k - 1);
        for (zint j = 0; j + 1 < k; ++j) {
            const double angle = 0.3 + j;
            c[j] = std::cos(angle);
            s[j] = std::sin(angle);
        }
        c[1] = 1.0;
        s[1] = 0.0;  // an identity in the middle is skipped, not misapplied
        for (const char pivot : {'V', 'T', 'B'}) {
            for (const char direct : {'F', 'B'}) {
                const Matrix<T> a = random_matrix<T>(random, m, n);
                Matrix<T> got = a, want = a;
                lasr(side, pivot, direct, m, n, c.data(), s.data(), got.data(), got.ld);
                for (zint t = 0; t + 1 < k; ++t) {
                    const zint j = direct == 'F' ? t : k - 2 - t;
                    const zint p = pivot == 'T' ? 0 : j, q = pivot == 'B' ? k - 1 : j + 1;
                    // rows (columns) p and q: (x, y) := (c x + s y, c y - s x), with x the first
                    // of the plane except for pivot "B", whose plane is (j, last).
                    for (zint e = 0; e < (side == 'L' ? n : m); ++e) {
                        T& x = side == 'L' ? want(p, e) : want(e, p);
                        T& y = side == 'L' ? want(q, e) : want(e, q);
                        const T xv = x, yv = y;
                        x = xv * c[j] + yv * s[j];
                        y = yv * c[j] - xv * s[j];
                    }
                }
                EXPECT_TRUE(same_contents(got, want)) << side << pivot << direct;
            }
        }
    }
}

TEST(AuxiliarySort, LasrtSortsBothWaysAndSurvivesNan) {
    Random random(9);
    for (const zint n : {0, 1, 2, 17, 1000}) {
        std::vector<double> d(static_cast<std::size_t>(n));
        for (double& x : d) x = random.uniform();
        if (n > 2) d[1] = d[n - 1];  // a repeated value
        zint info = 1;
        std::vector<double> up = d;
        lasrt('I', n, up.data(), info);
        EXPECT_EQ(info, 0);
        EXPECT_TRUE(std::is_sorted(up.begin(), up.end()));
        std::vector<double> down = d;
        lasrt('d', n, down.data(), info);
        EXPECT_TRUE(std::is_sorted(down.rbegin(), down.rend()));
        std::vector<double> sorted = d;
        std::sort(sorted.begin(), sorted.end());
        EXPECT_EQ(up, sorted);
    }
    std::vector<double> with_nan = {3, std::numeric_limits<double>::quiet_NaN(), 1, 2};
    zint info = 0;
    lasrt('I', 4, with_nan.data(), info);
    EXPECT_EQ(std::count_if(with_nan.begin(), with_nan.end(), [](double x) { return std::isnan(x); }), 1);
    lasrt('X', 4, with_nan.data(), info);
    EXPECT_EQ(info, -1);
}

TEST(AuxiliarySort, LamrgMergesListsOfEitherDirection) {
    // An ascending list and a descending one, with a tie across them.
    const double a[7] = {1, 4, 6, 9, 5, 4, 0};
    std::vector<zint> index(7);
    lamrg(4, 3, a, 1, -1, index.data());
    std::vector<double> merged;
    for (zint i : index) merged.push_back(a[i - 1]);
    EXPECT_EQ(merged, (std::vector<double>{0, 1, 4, 4, 5, 6, 9}));
    EXPECT_EQ(index[2], 2);  // the tie takes the first list's element first
}

TYPED_TEST(Auxiliary, LacpyAndLasetTouchOnlyTheirTrapezoid) {
    using T = TypeParam;
    Random random(4);
    const Matrix<T> a = random_matrix<T>(random, 4, 6);
    for (const char uplo : {'U', 'L', 'A'}) {
        Matrix<T> b(4, 6, 6);
        for (zint j = 0; j < 6; ++j) {
            for (zint i = 0; i < 4; ++i) b(i, j) = scalar<T>(-1, 0);
        }
        lacpy(uplo, 4, 6, a.data(), a.ld, b.data(), b.ld);
        Matrix<T> c = b;
        laset(uplo, 4, 6, scalar<T>(7, 1), scalar<T>(8, 0), c.data(), c.ld);
        for (zint j = 0; j < 6; ++j) {
            for (zint i = 0; i < 4; ++i) {
                const bool in = uplo == 'A' || (uplo == 'U' && i <= j) || (uplo == 'L' && i >= j);
                EXPECT_EQ(b.at(i, j).re, in ? a.at(i, j).re : -1) << uplo << i << j;
                EXPECT_EQ(c.at(i, j).re, !in ? -1 : (i == j ? 8 : 7)) << uplo << i << j;
            }
        }
        EXPECT_TRUE(padding_untouched(c));
    }
}

}  // namespace
}  // namespace zor::test
