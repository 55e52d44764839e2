// The general matrix-vector kernels at every level: dgemv's Default order bit for bit and the
// blocked levels to within rounding, zgemv to within rounding, the rank-one updates exactly, and
// the beta and zero-skip rules.

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

const std::vector<zint> kColumnCounts = {0, 1, 3, 4, 5, 9, 33, 64, 65, 127, 128, 129};
const zint kIncrementPairs[][2] = {{1, 1}, {-1, 2}, {2, -3}, {-3, -1}};

// The Default order of dgemv, written from its description.
void dgemv_default_model(bool plain, zint m, zint n, double alpha, const TestMatrix<double>& a,
                         const TestVector<double>& x, double beta, TestVector<double>& y) {
    const zint leny = plain ? m : n;
    if (m == 0 || n == 0 || (alpha == 0 && beta == 1)) return;
    for (zint i = 0; beta != 1 && i < leny; ++i) y[i] = beta == 0 ? 0.0 : y[i] * beta;
    if (alpha == 0) return;
    if (plain) {
        zint j = 0;
        for (; n - j >= 4; j += 4) {
            double t[4];
            for (int k = 0; k < 4; ++k) t[k] = x[j + k] * alpha;
            for (zint i = 0; i < m; ++i) {
                double v = (a.at(i, j) * t[0]) + y[i];
                for (int k = 1; k < 4; ++k) v = v + a.at(i, j + k) * t[k];
                y[i] = v;
            }
        }
        for (; j < n; ++j) {
            const double t = x[j] * alpha;
            for (zint i = 0; i < m; ++i) y[i] = y[i] + a.at(i, j) * t;
        }
        return;
    }
    for (zint j = 0; j < n; ++j) {
        const double* c = &a.at(0, j);
        double s = c[0] * x[0];
        zint i = 1;
        for (; i < m && reinterpret_cast<std::uintptr_t>(c + i) % 16 != 0; ++i) s += c[i] * x[i];
        double low = s, high = 0.0;
        for (; m - i >= 2; i += 2) {
            low += c[i] * x[i];
            high += c[i + 1] * x[i + 1];
        }
        s = low + high;
        if (i < m) s += c[i] * x[i];
        y[j] = s * alpha + y[j];
    }
}

class GeneralMatrixVector : public test::LevelTest {};

TEST_P(GeneralMatrixVector, DgemvFollowsTheDefaultOrderOrAgreesToWithinRounding) {
    auto* gemv = dgemv.variant(level());
    Random random(31);
    const double betas[] = {0.0, 1.0, -0.5};
    int round = 0;
    for (const zint m : test::kSizes) {
        for (const zint n : kColumnCounts) {
            for (const auto& inc : kIncrementPairs) {
                for (const char trans : {'N', 'T'}) {
                    const bool plain = trans == 'N';
                    const double alpha = 0.75, beta = betas[round++ % 3];
                    const TestMatrix<double> a(random, m, n);
                    const TestVector<double> x(random, plain ? n : m, inc[0]);
                    TestVector<double> y(random, plain ? m : n, inc[1]);
                    const zint leny = plain ? m : n;
                    if (beta == 0.0) {
                        for (zint i = 0; i < leny; ++i) y[i] = kNaN;  // to be discarded, not multiplied
                    }
                    TestVector<double> want(y), got(y);
                    gemv(trans, m, n, alpha, a.data.data(), a.ld, x.data(), inc[0], beta, got.data(), inc[1]);
                    const std::string what =
                        test::describe_case(plain ? "dgemv N" : "dgemv T", m, n, inc[0], inc[1]);
                    if (m == 0 || n == 0) {
                        ASSERT_TRUE(got.same_contents(y)) << what;  // untouched, even with beta 0
                        continue;
                    }
                    if (level() == CpuLevel::Default) {
                        dgemv_default_model(plain, m, n, alpha, a, x, beta, want);
                        ASSERT_TRUE(got.same_contents(want)) << what;
                        continue;
                    }
                    for (zint i = 0; i < leny; ++i) {
                        Complex sum = beta == 0.0 ? 0.0L : beta * static_cast<long double>(y[i]);
                        long double scale = std::fabs(static_cast<double>(sum.real()));
                        for (zint k = 0; k < (plain ? n : m); ++k) {
                            const long double term =
                                alpha * static_cast<long double>(plain ? a.at(i, k) : a.at(k, i)) * x[k];
                            sum += term;
                            scale += std::fabs(term);
                        }
                        ASSERT_TRUE(test::within_rounding(got[i], sum, scale, plain ? n : m))
                            << what << " i=" << i;
                    }
                    for (zint i = 0; i < leny; ++i) got[i] = y[i];
                    ASSERT_TRUE(got.same_contents(y)) << what << ": written outside y";
                }
            }
        }
    }
}

TEST_P(GeneralMatrixVector, DgemvQuickReturnsReadNothingTheyNeedNot) {
    auto* gemv = dgemv.variant(level());
    const double poisoned[4] = {kNaN, kNaN, kNaN, kNaN};
    double y[2] = {kNaN, 3.0};
    gemv('N', 0, 2, 1.0, poisoned, 1, poisoned, 1, 0.0, y, 1);  // m = 0: y untouched even with beta 0
    EXPECT_TRUE(std::isnan(y[0]) && y[1] == 3.0);
    y[0] = 1.5;
    gemv('T', 2, 2, 0.0, poisoned, 2, poisoned, 1, 2.0, y, 1);  // alpha 0: beta*y only
    EXPECT_TRUE(y[0] == 3.0 && y[1] == 6.0);
    gemv('N', 2, 2, 0.0, poisoned, 2, poisoned, 1, 1.0, y, 1);
    EXPECT_TRUE(y[0] == 3.0 && y[1] == 6.0);
}

TEST_P(GeneralMatrixVector, ZgemvAgreesWithTheDefinitionToWithinRounding) {
    auto* gemv = zgemv.variant(level());
    Random random(32);
    const zcomplex alpha{0.75, -0.5};
    const zcomplex betas[] = {{0.0, 0.0}, {1.0, 0.0}, {-0.5, 0.25}};
    int round = 0;
    for (const zint m : test::kSizes) {
        for (const zint n : {0, 1, 3, 4, 5, 33, 129}) {
            for (const auto& inc : kIncrementPairs) {
                for (const char trans : {'N', 'T', 'C'}) {
                    const bool plain = trans == 'N';
                    const zcomplex beta = betas[round++ % 3];
                    const TestMatrix<zcomplex> a(random, m, n);
                    const TestVector<zcomplex> x(random, plain ? n : m, inc[0]);
                    TestVector<zcomplex> y(random, plain ? m : n, inc[1]);
                    const zint leny = plain ? m : n, k_count = plain ? n : m;
                    if (beta.re == 0.0) {
                        for (zint i = 0; i < leny; ++i) y[i] = {kNaN, kNaN};
                    }
                    TestVector<zcomplex> got(y);
                    gemv(trans, m, n, alpha, a.data.data(), a.ld, x.data(), inc[0], beta, got.data(), inc[1]);
                    const std::string what =
                        std::string(1, trans) + " " + test::describe_case("zgemv", m, n, inc[0], inc[1]);
                    if (m == 0 || n == 0) {
                        ASSERT_TRUE(got.same_contents(y)) << what;
                        continue;
                    }
                    for (zint i = 0; i < leny; ++i) {
                        Complex sum = beta.re == 0.0 ? Complex(0) : test::wide(beta) * test::wide(y[i]);
                        long double scale = test::size_of(sum);
                        for (zint k = 0; k < k_count; ++k) {
                            Complex element = plain ? test::wide(a.at(i, k)) : test::wide(a.at(k, i));
                            if (trans == 'C') element = std::conj(element);
                            const Complex term = test::wide(alpha) * element * test::wide(x[k]);
                            sum += term;
                            scale += test::size_of(term) * 2;
                        }
                        ASSERT_TRUE(test::within_rounding(test::wide(got[i]), sum, scale, k_count))
                            << what << " i=" << i;
                    }
                }
            }
        }
    }
}

// A := alpha*x*y' + A, element by element as the axpy kernels compute it.
TEST_P(GeneralMatrixVector, RankOneUpdatesMatchAPlainLoopExactly) {
    Random random(33);
    for (const zint m : {0, 1, 5, 33, 129}) {
        for (const zint n : {0, 1, 4, 7}) {
            for (const auto& inc : kIncrementPairs) {
                const std::string what = test::describe_case("ger", m, n, inc[0], inc[1]);
                TestMatrix<double> a(random, m, n);
                TestVector<double> x(random, m, inc[0]), y(random, n, inc[1]);
                if (n > 1) {
                    y[1] = 0.0;  // this column is skipped: the NaN in x must not reach it
                    if (m > 0) x[0] = kNaN;
                }
                TestMatrix<double> want(a);
                for (zint j = 0; j < n; ++j) {
                    for (zint i = 0; y[j] != 0.0 && i < m; ++i)
                        want.at(i, j) = want.at(i, j) + x[i] * (y[j] * 0.625);
                }
                dger.variant(level())(m, n, 0.625, x.data(), inc[0], y.data(), inc[1], a.data.data(), a.ld);
                for (std::size_t k = 0; k < a.data.size(); ++k)
                    ASSERT_TRUE(test::same_bits(a.data[k], want.data[k])) << what;

                for (const bool conjugated : {false, true}) {
                    TestMatrix<zcomplex> c(random, m, n);
                    TestVector<zcomplex> u(random, m, inc[0]), v(random, n, inc[1]);
                    if (n > 1) {
                        v[1] = {0.0, -0.0};
                        if (m > 0) u[0] = {kNaN, 0.0};
                    }
                    const zcomplex alpha{0.5, -0.25};
                    TestMatrix<zcomplex> cwant(c);
                    for (zint j = 0; j < n; ++j) {
                        if (v[j].re == 0.0 && v[j].im == 0.0) continue;
                        const zcomplex w = conjugated ? zcomplex{v[j].re, -v[j].im} : v[j];
                        const zcomplex t{w.re * alpha.re + w.im * -alpha.im,
                                         w.im * alpha.re + w.re * alpha.im};
                        for (zint i = 0; i < m; ++i) {
                            const zcomplex p{u[i].re * t.re + u[i].im * -t.im,
                                             u[i].im * t.re + u[i].re * t.im};
                            cwant.at(i, j) = {cwant.at(i, j).re + p.re, cwant.at(i, j).im + p.im};
                        }
                    }
                    (conjugated ? zgerc : zgeru)
                        .variant(level())(m, n, alpha, u.data(), inc[0], v.data(), inc[1], c.data.data(),
                                          c.ld);
                    for (std::size_t k = 0; k < c.data.size(); ++k) {
                        ASSERT_TRUE(test::same_bits(c.data[k], cwant.data[k]))
                            << (conjugated ? "zgerc " : "zgeru ") << what;
                    }
                }
            }
        }
    }
    // A zero alpha returns before reading x or y.
    double a[1] = {2.0};
    dger.variant(level())(1, 1, 0.0, nullptr, 1, nullptr, 1, a, 1);
    zcomplex c[1] = {{2.0, 1.0}};
    zgerc.variant(level())(1, 1, zcomplex{0.0, 0.0}, nullptr, 1, nullptr, 1, c, 1);
    EXPECT_TRUE(a[0] == 2.0 && c[0].re == 2.0);
}

INSTANTIATE_TEST_SUITE_P(Levels, GeneralMatrixVector, test::kAllLevels, test::level_param_name);

}  // namespace
}  // namespace zor
