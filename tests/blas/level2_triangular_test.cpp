// The triangular kernels at every level, over every uplo, trans and diag and sizes across their
// 32- and 64-element blocks: products to within rounding of the definition, solves by their
// residual. The other triangle holds NaN, and so does the diagonal when it is declared unit.

#include <gtest/gtest.h>

#include <type_traits>

#include "blas/dispatch.hpp"
#include "blas/level2_support.hpp"
#include "support/variants.hpp"

namespace zor {
namespace {

using test::Complex;
using test::Random;
using test::TestMatrix;
using test::TestVector;

struct Options {
    char uplo, trans, diag;
};

std::vector<Options> all_options(bool complex) {
    std::vector<Options> options;
    for (const char uplo : {'U', 'L'}) {
        for (const char trans : {'N', 'T', 'C'}) {
            if (trans == 'C' && !complex) continue;
            for (const char diag : {'N', 'U'}) options.push_back({uplo, trans, diag});
        }
    }
    return options;
}

// A well-conditioned triangle: the diagonal in [1, 2) in magnitude, off-diagonal elements of
// size at most 1/n, so that solves are accurate to a few units of rounding.
template <class T>
TestMatrix<T> triangle(Random& random, zint n, const Options& o) {
    TestMatrix<T> a(random, n, n, o.uplo, o.diag == 'U');
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) {
            const bool stored = o.uplo == 'U' ? i < j : i > j;
            if (!stored) continue;
            if constexpr (std::is_same_v<T, double>) {
                a.at(i, j) = random.uniform() / n;
            } else {
                a.at(i, j) = {random.uniform() / n, random.uniform() / n};
            }
        }
        if (o.diag == 'N') {
            const double d = 1.0 + std::fabs(random.uniform());
            if constexpr (std::is_same_v<T, double>) {
                a.at(j, j) = random.next() % 2 ? d : -d;
            } else {
                a.at(j, j) = {d * 0.6, random.next() % 2 ? d * 0.8 : -d * 0.8};
            }
        }
    }
    return a;
}

// Element (i, k) of op(T).
template <class T>
Complex op_element(const TestMatrix<T>& a, const Options& o, zint i, zint k) {
    const bool plain = o.trans == 'N';
    Complex v = plain ? a.element(i, k, o.uplo, o.diag == 'U') : a.element(k, i, o.uplo, o.diag == 'U');
    const bool outside = o.uplo == 'U' ? (plain ? i > k : k > i) : (plain ? i < k : k < i);
    if (outside) return 0;
    return o.trans == 'C' ? std::conj(v) : v;
}

class TriangularMatrixVector : public test::LevelTest {
  protected:
    // Runs product and solve of one element type over every case.
    template <class T, class Product, class Solve>
    void check_all(Product product, Solve solve) {
        Random random(51);
        const bool complex = std::is_same_v<T, zcomplex>;
        for (const zint n : test::kSizes) {
            for (const zint inc : {1, -1, 2, -3}) {
                for (const Options& o : all_options(complex)) {
                    const std::string what = std::string{o.uplo, o.trans, o.diag} +
                                             " n=" + std::to_string(n) + " inc=" + std::to_string(inc);
                    const TestMatrix<T> a = triangle<T>(random, n, o);
                    const TestVector<T> x(random, n, inc);
                    // Row i of op(T) v in long double, and the sum of its terms' sizes.
                    auto row = [&](const TestVector<T>& v, zint i, long double& scale) {
                        Complex sum = 0;
                        scale = 0;
                        for (zint k = 0; k < n; ++k) {
                            const Complex term = op_element(a, o, i, k) * test::wide(v[k]);
                            sum += term;
                            scale += 2 * test::size_of(term);
                        }
                        return sum;
                    };
                    // x := op(T) x.
                    TestVector<T> got(x);
                    product(o.uplo, o.trans, o.diag, n, a.data.data(), a.ld, got.data(), inc);
                    long double scale;
                    for (zint i = 0; i < n; ++i) {
                        const Complex want = row(x, i, scale);
                        ASSERT_TRUE(test::within_rounding(test::wide(got[i]), want, scale, n))
                            << "product " << what << " i=" << i;
                    }
                    // Solve op(T) z = x: the residual op(T) z - x is within rounding of |op(T)| |z|.
                    TestVector<T> z(x);
                    solve(o.uplo, o.trans, o.diag, n, a.data.data(), a.ld, z.data(), inc);
                    for (zint i = 0; i < n; ++i) {
                        const Complex residual = row(z, i, scale);
                        ASSERT_TRUE(test::within_rounding(residual, test::wide(x[i]), 4 * scale, n))
                            << "solve " << what << " i=" << i;
                    }
                    if (n == 0) {
                        ASSERT_TRUE(got.same_contents(x) && z.same_contents(x)) << what;
                    }
                }
            }
        }
    }
};

TEST_P(TriangularMatrixVector, RealProductsAndSolves) {
    check_all<double>(dtrmv.variant(level()), dtrsv.variant(level()));
}

TEST_P(TriangularMatrixVector, ComplexProductsAndSolves) {
    check_all<zcomplex>(ztrmv.variant(level()), ztrsv.variant(level()));
}

INSTANTIATE_TEST_SUITE_P(Levels, TriangularMatrixVector, test::kAllLevels, test::level_param_name);

}  // namespace
}  // namespace zor
