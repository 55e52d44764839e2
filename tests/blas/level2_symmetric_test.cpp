// The symmetric and Hermitian kernels at every level: dsymv's order bit for bit (Default to Sse42)
// or to within rounding (Avx), zhemv to within rounding, the rank-one and rank-two updates
// exactly. The triangle that is not stored holds NaN throughout, and so does the imaginary part
// of a Hermitian diagonal that is read: neither may matter.

#include <gtest/gtest.h>

#include <limits>

#include "blas/dispatch.hpp"
#include "blas/level2_support.hpp"
#include "support/variants.hpp"

namespace zor {
namespace {

using test::Complex;
using test::Random;
using test::TestMatrix;
using test::TestVector;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
const zint kIncrementPairs[][2] = {{1, 1}, {-1, 2}, {2, -3}, {1, -1}};

// dsymv's order as the kernel's header comment describes it.
void dsymv_model(bool upper, zint n, double alpha, const TestMatrix<double>& a, const TestVector<double>& x,
                 double beta, TestVector<double>& y) {
    if (n == 0 || (alpha == 0 && beta == 1)) return;
    for (zint i = 0; beta != 1 && i < n; ++i) y[i] = beta == 0 ? 0.0 : y[i] * beta;
    if (alpha == 0) return;
    const bool unit = x.inc() == 1 && y.inc() == 1;
    // The sweep of columns j0..j0+count-1 over rows [r0, r1); the t2 of each column.
    auto sweep = [&](zint j0, int count, zint r0, zint r1, double* t2) {
        double low[4] = {}, high[4] = {};
        zint i = r0;
        auto row = [&](zint r, double* sums) {
            for (int k = 0; k < count; ++k) {
                y[r] = y[r] + a.at(r, j0 + k) * (alpha * x[j0 + k]);
                sums[k] += a.at(r, j0 + k) * x[r];
            }
        };
        for (; unit && i < r1 && reinterpret_cast<std::uintptr_t>(&y[i]) % 16 != 0; ++i) row(i, low);
        for (; r1 - i >= 2; i += 2) {
            row(i, low);
            row(i + 1, high);
        }
        if (i < r1) row(i, low);
        for (int k = 0; k < count; ++k) t2[k] = low[k] + high[k];
    };
    zint j = 0;
    for (; unit && n - j >= 4; j += 4) {
        for (zint c = j; c < j + 4; ++c) {
            const double t1 = alpha * x[c];
            double s = 0.0;
            for (zint r = upper ? j : c + 1; r < (upper ? c : j + 4); ++r) {
                y[r] += a.at(r, c) * t1;
                s += a.at(r, c) * x[r];
            }
            y[c] = (y[c] + a.at(c, c) * t1) + s * alpha;
        }
        double t2[4];
        sweep(j, 4, upper ? 0 : j + 4, upper ? j : n, t2);
        for (int k = 0; k < 4; ++k) y[j + k] += t2[k] * alpha;
    }
    for (; j < n; ++j) {
        double t2;
        y[j] = y[j] + a.at(j, j) * (alpha * x[j]);
        sweep(j, 1, upper ? 0 : j + 1, upper ? j : n, &t2);
        y[j] += t2 * alpha;
    }
}

class SymmetricMatrixVector : public test::LevelTest {};

TEST_P(SymmetricMatrixVector, DsymvFollowsItsOrderOrAgreesToWithinRounding) {
    auto* symv = dsymv.variant(level());
    Random random(41);
    const double betas[] = {0.0, 1.0, -0.5};
    int round = 0;
    for (const zint n : test::kSizes) {
        for (const auto& inc : kIncrementPairs) {
            for (const char uplo : {'U', 'L'}) {
                for (int y_offset = 0; y_offset < 2; ++y_offset) {
                    const double alpha = 0.75, beta = betas[round++ % 3];
                    const TestMatrix<double> a(random, n, n, uplo);
                    const TestVector<double> x(random, n, inc[0]);
                    TestVector<double> y(random, n, inc[1], y_offset);
                    for (zint i = 0; beta == 0.0 && i < n; ++i) y[i] = kNaN;
                    TestVector<double> got(y), want(y);
                    symv(uplo, n, alpha, a.data.data(), a.ld, x.data(), inc[0], beta, got.data(), inc[1]);
                    const std::string what =
                        std::string(1, uplo) + " " + test::describe_case("dsymv", n, n, inc[0], inc[1]);
                    if (level() != CpuLevel::Avx) {
                        dsymv_model(uplo == 'U', n, alpha, a, x, beta, want);
                        ASSERT_TRUE(got.same_contents(want)) << what;
                        continue;
                    }
                    for (zint i = 0; i < n; ++i) {
                        Complex sum = beta == 0.0 ? 0.0L : static_cast<long double>(beta) * y[i];
                        long double scale = std::fabs(sum.real());
                        for (zint k = 0; k < n; ++k) {
                            const Complex term = static_cast<long double>(alpha) * a.element(i, k, uplo) *
                                                 static_cast<long double>(x[k]);
                            sum += term;
                            scale += test::size_of(term);
                        }
                        ASSERT_TRUE(test::within_rounding(got[i], sum, scale, n)) << what << " i=" << i;
                    }
                }
            }
        }
    }
}

TEST_P(SymmetricMatrixVector, ZhemvAgreesWithTheDefinitionToWithinRounding) {
    auto* hemv = zhemv.variant(level());
    Random random(42);
    const zcomplex alpha{0.75, 0.5};
    const zcomplex betas[] = {{0.0, 0.0}, {1.0, 0.0}, {-0.5, 0.25}};
    int round = 0;
    for (const zint n : test::kSizes) {
        for (const auto& inc : kIncrementPairs) {
            for (const char uplo : {'U', 'L'}) {
                const zcomplex beta = betas[round++ % 3];
                TestMatrix<zcomplex> a(random, n, n, uplo);
                for (zint i = 0; i < n; ++i)
                    a.at(i, i).im = kNaN;  // the diagonal's imaginary part is never read
                const TestVector<zcomplex> x(random, n, inc[0]);
                TestVector<zcomplex> y(random, n, inc[1]);
                for (zint i = 0; beta.re == 0.0 && i < n; ++i) y[i] = {kNaN, kNaN};
                TestVector<zcomplex> got(y);
                hemv(uplo, n, alpha, a.data.data(), a.ld, x.data(), inc[0], beta, got.data(), inc[1]);
                for (zint i = 0; i < n; ++i) {
                    Complex sum = beta.re == 0.0 ? Complex(0) : test::wide(beta) * test::wide(y[i]);
                    long double scale = test::size_of(sum);
                    for (zint k = 0; k < n; ++k) {
                        const Complex term =
                            test::wide(alpha) * a.element(i, k, uplo, false, true) * test::wide(x[k]);
                        sum += term;
                        scale += 2 * test::size_of(term);
                    }
                    ASSERT_TRUE(test::within_rounding(test::wide(got[i]), sum, scale, n))
                        << uplo << " " << test::describe_case("zhemv", n, n, inc[0], inc[1]) << " i=" << i;
                }
            }
        }
    }
}

// The element-wise updates against plain loops over the stored triangle; the other triangle
// (NaN) must come back bit for bit, and a column whose x element is zero must be left alone even
// when x holds NaN elsewhere.
TEST_P(SymmetricMatrixVector, RankOneAndRankTwoUpdatesMatchPlainLoopsExactly) {
    Random random(43);
    const double alpha = 0.625;
    const zcomplex calpha{0.5, -0.75};
    for (const zint n : {0, 1, 2, 5, 9, 33}) {
        for (const auto& inc : kIncrementPairs) {
            for (const char uplo : {'U', 'L'}) {
                auto stored = [&](zint i, zint j) { return uplo == 'U' ? i <= j : i >= j; };
                const std::string what =
                    std::string(1, uplo) + " " + test::describe_case("update", n, n, inc[0], inc[1]);
                TestVector<double> x(random, n, inc[0]), y(random, n, inc[1]);
                if (n > 2) {
                    x[1] = 0.0;
                    y[1] = 0.0;
                    x[n - 1] = kNaN;  // reaches every updated column but those skipped
                }
                TestMatrix<double> a(random, n, n, uplo), want(a);
                for (zint j = 0; j < n; ++j) {
                    for (zint i = 0; x[j] != 0.0 && i < n; ++i) {
                        if (stored(i, j)) want.at(i, j) = want.at(i, j) + x[i] * (x[j] * alpha);
                    }
                }
                dsyr.variant(level())(uplo, n, alpha, x.data(), inc[0], a.data.data(), a.ld);
                for (std::size_t k = 0; k < a.data.size(); ++k)
                    ASSERT_TRUE(test::same_bits(a.data[k], want.data[k])) << "dsyr " << what;

                TestMatrix<double> b(random, n, n, uplo), want2(b);
                for (zint j = 0; j < n; ++j) {
                    if (x[j] == 0.0 && y[j] == 0.0) continue;
                    for (zint i = 0; i < n; ++i) {
                        if (stored(i, j))
                            want2.at(i, j) = (want2.at(i, j) + x[i] * (alpha * y[j])) + y[i] * (alpha * x[j]);
                    }
                }
                dsyr2.variant(level())(uplo, n, alpha, x.data(), inc[0], y.data(), inc[1], b.data.data(),
                                       b.ld);
                for (std::size_t k = 0; k < b.data.size(); ++k)
                    ASSERT_TRUE(test::same_bits(b.data[k], want2.data[k])) << "dsyr2 " << what;

                // zher and zher2: the same rules, and every stored diagonal element real afterwards.
                TestVector<zcomplex> u(random, n, inc[0]), v(random, n, inc[1]);
                if (n > 2) {
                    u[1] = {0.0, 0.0};
                    v[1] = {0.0, 0.0};
                    u[n - 1] = {kNaN, 0.0};
                }
                auto times = [](const zcomplex& p, const zcomplex& q) {
                    return zcomplex{p.re * q.re + p.im * -q.im, p.im * q.re + p.re * q.im};
                };
                auto plus = [](const zcomplex& p, const zcomplex& q) {
                    return zcomplex{p.re + q.re, p.im + q.im};
                };
                TestMatrix<zcomplex> h(random, n, n, uplo), hwant(h);
                for (zint j = 0; j < n; ++j) {
                    if (u[j].re == 0.0 && u[j].im == 0.0) {
                        hwant.at(j, j).im = 0.0;
                        continue;
                    }
                    const zcomplex t{alpha * u[j].re, -(alpha * u[j].im)};
                    for (zint i = 0; i < n; ++i) {
                        if (i != j && stored(i, j)) hwant.at(i, j) = plus(hwant.at(i, j), times(u[i], t));
                    }
                    hwant.at(j, j) = {hwant.at(j, j).re + times(u[j], t).re, 0.0};
                }
                zher.variant(level())(uplo, n, alpha, u.data(), inc[0], h.data.data(), h.ld);
                for (std::size_t k = 0; k < h.data.size(); ++k)
                    ASSERT_TRUE(test::same_bits(h.data[k], hwant.data[k])) << "zher " << what;

                TestMatrix<zcomplex> g(random, n, n, uplo), gwant(g);
                for (zint j = 0; j < n; ++j) {
                    if (u[j].re == 0.0 && u[j].im == 0.0 && v[j].re == 0.0 && v[j].im == 0.0) {
                        gwant.at(j, j).im = 0.0;
                        continue;
                    }
                    const zcomplex t1 = times({v[j].re, -v[j].im}, calpha);
                    const zcomplex product = times(u[j], calpha);
                    const zcomplex t2{product.re, -product.im};
                    for (zint i = 0; i < n; ++i) {
                        if (i != j && stored(i, j))
                            gwant.at(i, j) = plus(plus(gwant.at(i, j), times(u[i], t1)), times(v[i], t2));
                    }
                    gwant.at(j, j) = {gwant.at(j, j).re + (times(u[j], t1).re + times(v[j], t2).re), 0.0};
                }
                zher2.variant(level())(uplo, n, calpha, u.data(), inc[0], v.data(), inc[1], g.data.data(),
                                       g.ld);
                for (std::size_t k = 0; k < g.data.size(); ++k)
                    ASSERT_TRUE(test::same_bits(g.data[k], gwant.data[k])) << "zher2 " << what;
            }
        }
    }
    // alpha 0 reads nothing; zher with x = 0 still clears the diagonal's imaginary part.
    double a[1] = {2.0};
    dsyr.variant(level())('U', 1, 0.0, nullptr, 1, a, 1);
    zcomplex h[1] = {{1.0, 5.0}};
    const zcomplex zero{0.0, 0.0};
    zher.variant(level())('L', 1, 1.0, &zero, 1, h, 1);
    EXPECT_TRUE(a[0] == 2.0 && h[0].re == 1.0 && h[0].im == 0.0);
}

INSTANTIATE_TEST_SUITE_P(Levels, SymmetricMatrixVector, test::kAllLevels, test::level_param_name);

}  // namespace
}  // namespace zor
