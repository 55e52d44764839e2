// The matrix-vector kernels at every level: dgemv's Default order and dsymv's order (Default to
// Sse42, which take no peel above Default) bit for bit against scalar models written from their descriptions,
// the other levels and the complex kernels to within rounding of a long-double sum, the rank-one and rank-two
// updates exactly, the triangular products to within rounding and the solves by their residual. Padding rows,
// the triangle that is not stored, a unit diagonal and the imaginary part of a Hermitian diagonal hold NaN:
// none of them may matter.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "blas/dispatch.hpp"
#include "support/level3_reference.hpp"
#include "support/variants.hpp"
#include "support/vectors.hpp"

namespace zor::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

template <class T>
constexpr bool kReal = std::is_same_v<T, double>;

bool is_zero(double v) {
    return v == 0.0;
}
bool is_zero(const zcomplex& v) {
    return v.re == 0.0 && v.im == 0.0;
}
template <class T>
T real_scalar(double v) {
    if constexpr (kReal<T>) {
        return v;
    } else {
        return {v, 0.0};
    }
}
template <class T>
T conj_of(T v) {
    if constexpr (!kReal<T>) v.im = -v.im;
    return v;
}

// Sizes across the block boundaries of the kernels (4-column groups, the 32 and 64 triangular
// blocks, the 128-element gather buffers).
const std::vector<zint> kSizes = {0, 1, 2, 3, 4, 5, 7, 8, 9, 31, 32, 33, 63, 64, 65, 127, 128, 129};
const zint kIncrementPairs[][2] = {{1, 1}, {-1, 2}, {2, -3}, {-3, -1}, {1, -1}};

// An m x n matrix in storage of leading dimension m + 3: the padding rows poisoned. With a
// triangle given ('U' or 'L'), the other triangle is poisoned too, and with unit_diagonal the
// diagonal: none of them may be read.
template <class T>
struct TestMatrix {
    zint m, n, ld;
    std::vector<T> data;

    TestMatrix(Random& random, zint rows, zint columns, char triangle = ' ', bool unit_diagonal = false)
        : m(rows),
          n(columns),
          ld(rows + 3),
          data(static_cast<std::size_t>(ld * (columns > 0 ? columns : 1)), poison_value(T{})) {
        for (zint j = 0; j < n; ++j) {
            for (zint i = 0; i < m; ++i) {
                const bool other = (triangle == 'U' && i > j) || (triangle == 'L' && i < j);
                if (!other && !(unit_diagonal && i == j)) at(i, j) = random_value(random, T{});
            }
        }
    }
    T& at(zint i, zint j) { return data[static_cast<std::size_t>(i + j * ld)]; }
    const T& at(zint i, zint j) const { return data[static_cast<std::size_t>(i + j * ld)]; }
    // The matrix for the reference: the triangle `triangle` names, its unit diagonal not read.
    Dense dense() const { return load(data.data(), m, n, ld); }
    ::testing::AssertionResult same_bits_as(const TestMatrix& want) const {
        for (std::size_t k = 0; k < data.size(); ++k) {
            if (!same_bits(data[k], want.data[k]))
                return ::testing::AssertionFailure() << "storage element " << k;
        }
        return ::testing::AssertionSuccess();
    }
};

// A vector as a one-column matrix for the reference.
template <class T>
Dense column(const TestVector<T>& v) {
    Dense d(v.size(), 1);
    for (zint i = 0; i < v.size(); ++i) d(i, 0) = value(v[i]);
    return d;
}

// Every element of `got` within rounding of alpha M x + beta y, y as it was before the call (not
// read when beta is zero), a sum of `terms` products; nothing else of got's storage written.
template <class T>
::testing::AssertionResult matches_product(const TestVector<T>& got, const TestVector<T>& y, T alpha, T beta,
                                           const Dense& m, const TestVector<T>& x) {
    const Dense before = column(y);
    ::testing::AssertionResult result =
        near(column(got), combine(value(alpha), m, column(x), value(beta), &before), 2 * (m.cols + 4),
             Everywhere{});
    TestVector<T> rest(got);
    for (zint i = 0; i < got.size(); ++i) rest[i] = y[i];
    if (result && !rest.same_contents(y)) return ::testing::AssertionFailure() << "written outside y";
    return result;
}

std::string describe_case(char option, zint m, zint n, zint incx, zint incy) {
    return std::string(1, option) + " m=" + std::to_string(m) + " n=" + std::to_string(n) +
           " incx=" + std::to_string(incx) + " incy=" + std::to_string(incy);
}

class MatrixVector : public LevelTest {};

// ---- general ------------------------------------------------------------------------------------

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

// beta = 0 discards y (NaN here) rather than multiplying it; m = 0 or n = 0 leaves y untouched.
template <class T, class Kernel>
void check_gemv(CpuLevel level, Kernel* gemv, const std::vector<char>& transes,
                const std::vector<zint>& columns, T alpha, const T (&betas)[3]) {
    Random random(31);
    int round = 0;
    for (const zint m : kSizes) {
        for (const zint n : columns) {
            for (const auto& inc : kIncrementPairs) {
                for (const char trans : transes) {
                    const bool plain = trans == 'N';
                    const T beta = betas[round++ % 3];
                    const TestMatrix<T> a(random, m, n);
                    const TestVector<T> x(random, plain ? n : m, inc[0]);
                    TestVector<T> y(random, plain ? m : n, inc[1]);
                    for (zint i = 0; is_zero(beta) && i < y.size(); ++i) y[i] = poison_value(T{});
                    TestVector<T> got(y);
                    gemv(trans, m, n, alpha, a.data.data(), a.ld, x.data(), inc[0], beta, got.data(), inc[1]);
                    const std::string what = describe_case(trans, m, n, inc[0], inc[1]);
                    if (m == 0 || n == 0) {
                        ASSERT_TRUE(got.same_contents(y)) << what;
                        continue;
                    }
                    if constexpr (kReal<T>) {
                        if (level == CpuLevel::Default) {
                            TestVector<T> want(y);
                            dgemv_default_model(plain, m, n, alpha, a, x, beta, want);
                            ASSERT_TRUE(got.same_contents(want)) << what;
                            continue;
                        }
                    }
                    ASSERT_TRUE(matches_product(got, y, alpha, beta, op(a.dense(), trans), x)) << what;
                }
            }
        }
    }
}

TEST_P(MatrixVector, GemvFollowsTheDefaultOrderOrAgreesToWithinRounding) {
    check_gemv<double>(level(), dgemv.variant(level()), {'N', 'T'},
                       {0, 1, 3, 4, 5, 9, 33, 64, 65, 127, 128, 129}, 0.75, {0.0, 1.0, -0.5});
    check_gemv<zcomplex>(level(), zgemv.variant(level()), {'N', 'T', 'C'}, {0, 1, 3, 4, 5, 33, 129},
                         zcomplex{0.75, -0.5}, {{0.0, 0.0}, {1.0, 0.0}, {-0.5, 0.25}});
}

// Above Default (whose orders peel to vector boundaries by their description), the same operands
// placed at every 8-byte offset of a 64-byte line give the same bits: LAPACK routines on copies of
// one matrix must agree wherever the copies lie.
TEST_P(MatrixVector, ResultsDoNotDependOnWhereTheOperandsLie) {
    if (level() == CpuLevel::Default) GTEST_SKIP() << "the Default orders are address-dependent by design";
    Random random(5);
    const zint m = 70, n = 37, ld = 72;
    std::vector<double> a0(static_cast<std::size_t>(ld * n)), x0(m), y0(m);
    for (double& v : a0) v = random.uniform();
    for (double& v : x0) v = random.uniform();
    for (double& v : y0) v = random.uniform();
    const auto run = [&](std::size_t offset, char kind) {
        std::vector<double> storage(a0.size() + 2 * m + 32);
        double* base = storage.data();
        while (reinterpret_cast<std::uintptr_t>(base) % 64 != 0) ++base;
        double* a = base + offset;
        double* x = a + a0.size();
        double* y = x + m;
        std::copy(a0.begin(), a0.end(), a);
        std::copy(x0.begin(), x0.end(), x);
        std::copy(y0.begin(), y0.end(), y);
        if (kind == 'S') {
            dsymv.variant(level())('L', n - 1, 0.75, a, ld, x, 1, 0.5, y, 1);
        } else {
            dgemv.variant(level())(kind, kind == 'N' ? m : m - 1, kind == 'N' ? n : n - 1, 0.75, a, ld, x, 1,
                                   0.5, y, 1);
        }
        return std::vector<double>(y, y + m);
    };
    for (const char kind : {'N', 'T', 'S'}) {
        const std::vector<double> first = run(0, kind);
        for (std::size_t offset = 1; offset < 8; ++offset)
            EXPECT_EQ(run(offset, kind), first) << kind << offset;
    }
}

TEST_P(MatrixVector, GemvQuickReturnsReadNothingTheyNeedNot) {
    auto* gemv = dgemv.variant(level());
    const double poisoned[4] = {kNaN, kNaN, kNaN, kNaN};
    double y[2] = {1.5, 3.0};
    gemv('T', 2, 2, 0.0, poisoned, 2, poisoned, 1, 2.0, y, 1);  // alpha 0: beta*y only
    EXPECT_TRUE(y[0] == 3.0 && y[1] == 6.0);
    gemv('N', 2, 2, 0.0, poisoned, 2, poisoned, 1, 1.0, y, 1);
    EXPECT_TRUE(y[0] == 3.0 && y[1] == 6.0);
}

// A := alpha x y' + A (y conjugated for zgerc), column by column as the axpy kernels compute it;
// a column whose y element is zero is skipped, so the NaN in x must not reach it.
template <class T, class Kernel>
void check_ger(Kernel* ger, bool conjugated, T alpha, Random& random) {
    for (const zint m : {0, 1, 5, 33, 129}) {
        for (const zint n : {0, 1, 4, 7}) {
            for (const auto& inc : kIncrementPairs) {
                TestMatrix<T> a(random, m, n);
                TestVector<T> x(random, m, inc[0]), y(random, n, inc[1]);
                if (n > 1) {
                    y[1] = real_scalar<T>(-0.0);
                    if (m > 0) x[0] = poison_value(T{});
                }
                TestMatrix<T> want(a);
                for (zint j = 0; j < n; ++j) {
                    if (is_zero(y[j])) continue;
                    const T t = times(alpha, conjugated ? conj_of(y[j]) : y[j]);
                    for (zint i = 0; i < m; ++i) want.at(i, j) = plus(want.at(i, j), times(t, x[i]));
                }
                ger(m, n, alpha, x.data(), inc[0], y.data(), inc[1], a.data.data(), a.ld);
                ASSERT_TRUE(a.same_bits_as(want))
                    << conjugated << " " << describe_case(' ', m, n, inc[0], inc[1]);
            }
        }
    }
}

TEST_P(MatrixVector, RankOneUpdatesMatchAPlainLoopExactly) {
    Random random(33);
    check_ger<double>(dger.variant(level()), false, 0.625, random);
    check_ger<zcomplex>(zgeru.variant(level()), false, zcomplex{0.5, -0.25}, random);
    check_ger<zcomplex>(zgerc.variant(level()), true, zcomplex{0.5, -0.25}, random);
    // A zero alpha returns before reading x or y.
    double a[1] = {2.0};
    dger.variant(level())(1, 1, 0.0, nullptr, 1, nullptr, 1, a, 1);
    zcomplex c[1] = {{2.0, 1.0}};
    zgerc.variant(level())(1, 1, zcomplex{0.0, 0.0}, nullptr, 1, nullptr, 1, c, 1);
    EXPECT_TRUE(a[0] == 2.0 && c[0].re == 2.0);
}

// ---- symmetric and Hermitian --------------------------------------------------------------------

// dsymv's order as the kernel's header comment describes it; `peel` at Default only.
void dsymv_model(bool peel, bool upper, zint n, double alpha, const TestMatrix<double>& a,
                 const TestVector<double>& x, double beta, TestVector<double>& y) {
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
        for (; peel && unit && i < r1 && reinterpret_cast<std::uintptr_t>(&y[i]) % 16 != 0; ++i) row(i, low);
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

template <class T, class Kernel>
void check_symv(CpuLevel level, Kernel* symv, T alpha, const T (&betas)[3]) {
    Random random(41);
    int round = 0;
    for (const zint n : kSizes) {
        for (const auto& inc : kIncrementPairs) {
            for (const char uplo : {'U', 'L'}) {
                for (int y_offset = 0; y_offset < 2; ++y_offset) {
                    const T beta = betas[round++ % 3];
                    TestMatrix<T> a(random, n, n, uplo);
                    if constexpr (!kReal<T>) {
                        for (zint i = 0; i < n; ++i) a.at(i, i).im = kNaN;
                    }
                    const TestVector<T> x(random, n, inc[0]);
                    TestVector<T> y(random, n, inc[1], y_offset);
                    for (zint i = 0; is_zero(beta) && i < n; ++i) y[i] = poison_value(T{});
                    TestVector<T> got(y);
                    symv(uplo, n, alpha, a.data.data(), a.ld, x.data(), inc[0], beta, got.data(), inc[1]);
                    const std::string what = describe_case(uplo, n, n, inc[0], inc[1]);
                    if constexpr (kReal<T>) {
                        if (level != CpuLevel::Avx) {
                            TestVector<T> want(y);
                            dsymv_model(level == CpuLevel::Default, uplo == 'U', n, alpha, a, x, beta, want);
                            ASSERT_TRUE(got.same_contents(want)) << what;
                            continue;
                        }
                    }
                    ASSERT_TRUE(
                        matches_product(got, y, alpha, beta, symmetric(a.dense(), uplo == 'U', !kReal<T>), x))
                        << what;
                }
            }
        }
    }
}

TEST_P(MatrixVector, SymvFollowsItsOrderOrAgreesToWithinRounding) {
    check_symv<double>(level(), dsymv.variant(level()), 0.75, {0.0, 1.0, -0.5});
    check_symv<zcomplex>(level(), zhemv.variant(level()), zcomplex{0.75, 0.5},
                         {{0.0, 0.0}, {1.0, 0.0}, {-0.5, 0.25}});
}

// The element-wise updates of the stored triangle as the kernels compute them: a column whose x
// (and y) elements are zero is skipped, and a Hermitian diagonal is written back real, skipped
// columns included.
template <class T>
void make_real(T& v) {
    if constexpr (!kReal<T>) v.im = 0.0;
}
double scaled(double alpha, double v) {
    return alpha * v;
}
zcomplex scaled(double alpha, const zcomplex& v) {
    return {alpha * v.re, alpha * v.im};
}

template <class T>
TestMatrix<T> rank_one_model(TestMatrix<T> a, char uplo, double alpha, const TestVector<T>& x) {
    for (zint j = 0; j < a.n; ++j) {
        if (is_zero(x[j])) {
            make_real(a.at(j, j));
            continue;
        }
        const T t = scaled(alpha, conj_of(x[j]));
        for (zint i = 0; i < a.n; ++i) {
            if (uplo == 'U' ? i <= j : i >= j) a.at(i, j) = plus(a.at(i, j), times(t, x[i]));
        }
        make_real(a.at(j, j));
    }
    return a;
}

template <class T>
TestMatrix<T> rank_two_model(TestMatrix<T> a, char uplo, T alpha, const TestVector<T>& x,
                             const TestVector<T>& y) {
    for (zint j = 0; j < a.n; ++j) {
        if (is_zero(x[j]) && is_zero(y[j])) {
            make_real(a.at(j, j));
            continue;
        }
        const T t1 = times(alpha, conj_of(y[j])), t2 = conj_of(times(alpha, x[j]));
        for (zint i = 0; i < a.n; ++i) {
            if (!(uplo == 'U' ? i <= j : i >= j)) continue;
            if constexpr (!kReal<T>) {
                if (i == j) {
                    a.at(j, j) = {a.at(j, j).re + (times(t1, x[j]).re + times(t2, y[j]).re), 0.0};
                    continue;
                }
            }
            a.at(i, j) = plus(plus(a.at(i, j), times(t1, x[i])), times(t2, y[i]));
        }
    }
    return a;
}

template <class T, class Syr, class Syr2>
void check_updates(Syr* syr, Syr2* syr2, T alpha, Random& random) {
    for (const zint n : {0, 1, 2, 5, 9, 33}) {
        for (const auto& inc : kIncrementPairs) {
            for (const char uplo : {'U', 'L'}) {
                const std::string what = describe_case(uplo, n, n, inc[0], inc[1]);
                TestVector<T> x(random, n, inc[0]), y(random, n, inc[1]);
                if (n > 2) {
                    x[1] = y[1] = T{};
                    x[n - 1] = poison_value(T{});  // reaches every updated column but those skipped
                }
                TestMatrix<T> a(random, n, n, uplo);
                const TestMatrix<T> want = rank_one_model(a, uplo, 0.625, x);
                syr(uplo, n, 0.625, x.data(), inc[0], a.data.data(), a.ld);
                ASSERT_TRUE(a.same_bits_as(want)) << "rank one " << what;
                TestMatrix<T> b(random, n, n, uplo);
                const TestMatrix<T> want2 = rank_two_model(b, uplo, alpha, x, y);
                syr2(uplo, n, alpha, x.data(), inc[0], y.data(), inc[1], b.data.data(), b.ld);
                ASSERT_TRUE(b.same_bits_as(want2)) << "rank two " << what;
            }
        }
    }
}

TEST_P(MatrixVector, SymmetricUpdatesMatchPlainLoopsExactly) {
    Random random(43);
    check_updates<double>(dsyr.variant(level()), dsyr2.variant(level()), 0.625, random);
    check_updates<zcomplex>(zher.variant(level()), zher2.variant(level()), zcomplex{0.5, -0.75}, random);
    // alpha 0 reads nothing; zher with x = 0 still clears the diagonal's imaginary part.
    double a[1] = {2.0};
    dsyr.variant(level())('U', 1, 0.0, nullptr, 1, a, 1);
    zcomplex h[1] = {{1.0, 5.0}};
    const zcomplex zero{0.0, 0.0};
    zher.variant(level())('L', 1, 1.0, &zero, 1, h, 1);
    EXPECT_TRUE(a[0] == 2.0 && h[0].re == 1.0 && h[0].im == 0.0);
}

// ---- triangular ---------------------------------------------------------------------------------

struct Options {
    char uplo, trans, diag;
};

// A well-conditioned triangle: the diagonal in [1, 2) in magnitude, off-diagonal elements of
// size at most 1/n, so that solves are accurate to a few units of rounding.
template <class T>
TestMatrix<T> triangle(Random& random, zint n, const Options& o) {
    TestMatrix<T> a(random, n, n, o.uplo, o.diag == 'U');
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) {
            if (o.uplo == 'U' ? i < j : i > j) {
                if constexpr (kReal<T>) {
                    a.at(i, j) = random.uniform() / n;
                } else {
                    a.at(i, j) = {random.uniform() / n, random.uniform() / n};
                }
            }
        }
        if (o.diag == 'N') {
            const double d = 1.0 + std::fabs(random.uniform());
            if constexpr (kReal<T>) {
                a.at(j, j) = random.next() % 2 ? d : -d;
            } else {
                a.at(j, j) = {d * 0.6, random.next() % 2 ? d * 0.8 : -d * 0.8};
            }
        }
    }
    return a;
}

// Every uplo, trans and diag over sizes across the 32- and 64-element blocks: x := op(T) x to
// within rounding; op(T) z = x solved, the residual op(T) z - x within rounding of |op(T)| |z|.
template <class T, class Product, class Solve>
void check_triangular(Product product, Solve solve) {
    Random random(51);
    for (const zint n : kSizes) {
        for (const zint inc : {1, -1, 2, -3}) {
            for (const char uplo : {'U', 'L'}) {
                for (const char trans : {'N', 'T', 'C'}) {
                    for (const char diag : {'N', 'U'}) {
                        if (trans == 'C' && kReal<T>) continue;
                        const Options o{uplo, trans, diag};
                        const std::string what = std::string{uplo, trans, diag} + " n=" + std::to_string(n) +
                                                 " inc=" + std::to_string(inc);
                        const TestMatrix<T> a = triangle<T>(random, n, o);
                        const TestVector<T> x(random, n, inc);
                        const Dense t = op(triangle(a.dense(), uplo == 'U', diag == 'U'), trans);
                        TestVector<T> got(x);
                        product(uplo, trans, diag, n, a.data.data(), a.ld, got.data(), inc);
                        ASSERT_TRUE(matches_product(got, x, real_scalar<T>(1), T{}, t, x))
                            << "product " << what;
                        TestVector<T> z(x);
                        solve(uplo, trans, diag, n, a.data.data(), a.ld, z.data(), inc);
                        const Dense before = column(x);
                        ASSERT_TRUE(small(combine({1, 0}, t, column(z), {-1, 0}, &before), 8 * (n + 4)))
                            << "solve " << what;
                        if (n == 0) {
                            ASSERT_TRUE(z.same_contents(x)) << what;
                        }
                    }
                }
            }
        }
    }
}

TEST_P(MatrixVector, TriangularProductsAndSolves) {
    check_triangular<double>(dtrmv.variant(level()), dtrsv.variant(level()));
    check_triangular<zcomplex>(ztrmv.variant(level()), ztrsv.variant(level()));
}

INSTANTIATE_TEST_SUITE_P(Levels, MatrixVector, kAllLevels, level_param_name);

}  // namespace
}  // namespace zor::test
