// The Cholesky family through its internal interface: residuals of the factorisations, solves and
// inverses in full and packed storage (both packed paths, the second forced by an allocator that
// fails), the failure rule of every unblocked kernel variant on both sides of its split, the
// progress handler, and the argument checks of every parameter.

#include <gtest/gtest.h>

#include <vector>

#include "lapack/cholesky/cholesky.hpp"
#include "lapack/dispatch.hpp"
#include "lapack/factor_support.hpp"
#include "lapack/tuning/tuning.hpp"
#include "service/memory.hpp"
#include "support/counting_allocator.hpp"
#include "support/variants.hpp"

namespace zor::test {
namespace {

constexpr bool is_upper(char uplo) {
    return uplo == 'U' || uplo == 'u';
}

// ||A - Uᴴ U||₁ or ||A - L Lᴴ||₁ over n ||A||₁ eps, the factor the triangle `uplo` names of f.
template <class T>
double cholesky_residual(const Matrix<T>& a, const Wide& f, char uplo) {
    const Wide factor = triangle(f, is_upper(uplo), false);
    const Wide product =
        is_upper(uplo) ? multiply(op(factor, 'C'), factor) : multiply(factor, op(factor, 'C'));
    return static_cast<double>(difference_norm(product, widen_matrix(a)) /
                               (a.rows * one_norm(a) * epsilon()));
}

// The Hermitian inverse one triangle of f holds, against A.
template <class T>
double potri_residual(const Matrix<T>& a, const Wide& f, char uplo) {
    Wide inverse(a.rows, a.rows);
    for (zint j = 0; j < a.rows; ++j) {
        for (zint i = 0; i < a.rows; ++i) {
            inverse(i, j) = (is_upper(uplo) ? i <= j : i >= j) ? f(i, j) : conj(f(j, i));
        }
    }
    return inverse_residual(widen_matrix(a), inverse);
}

// Orders around the crossover to the kernel (32), the kernels' own split (40 lower, 50 upper), the
// diagonal blocks (64) and their halving.
const zint kCholeskyOrders[] = {1,  2,  3,  5,  17, 31, 32, 33,  39,  40,  41,
                                49, 50, 51, 63, 64, 65, 70, 100, 129, 200, 300};

template <class T>
void check_potrf_and_potri(zint n, char uplo) {
    Random random(static_cast<std::uint64_t>(n * 3 + uplo));
    const Matrix<T> a = random_positive_definite<T>(random, n);
    Matrix<T> f = a;
    zint info = -1;
    potrf<T>(uplo, n, f.data(), f.ld, info);
    ASSERT_EQ(info, 0);
    EXPECT_LT(cholesky_residual(a, widen_matrix(f), uplo), kResidualThreshold) << n << uplo;
    // The other triangle is never touched.
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) {
            if (is_upper(uplo) ? i > j : i < j) {
                ASSERT_TRUE(std::memcmp(&f(i, j), &a(i, j), sizeof(T)) == 0);
            }
        }
    }
    EXPECT_TRUE(padding_untouched(f));
    if (n % 3 != 0 && n < 200) return;  // the inverse on a sample of the orders
    potri<T>(uplo, n, f.data(), f.ld, info);
    ASSERT_EQ(info, 0);
    EXPECT_LT(potri_residual(a, widen_matrix(f), uplo), kResidualThreshold) << n << uplo;
}

class Potrf : public ::testing::TestWithParam<zint> {};

TEST_P(Potrf, FactorAndInverseReproduceTheMatrix) {
    for (char uplo : {'U', 'L', 'u', 'l'}) {
        if ((uplo == 'u' || uplo == 'l') && GetParam() != 17 && GetParam() != 70) continue;
        check_potrf_and_potri<double>(GetParam(), uplo);
        check_potrf_and_potri<zcomplex>(GetParam(), uplo);
    }
}

INSTANTIATE_TEST_SUITE_P(Orders, Potrf, ::testing::ValuesIn(kCholeskyOrders));

// A(k, k) (k >= 3) driven to exactly -1 by the columns before it: info k, the value left in A(k, k), on the
// kernel path and inside the blocked one; a NaN on the diagonal fails the same way.
template <class T>
Matrix<T> indefinite_at(zint n, zint k, double diagonal_value) {
    Matrix<T> a(n, n, n);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) a(i, j) = narrow_to<T>({i == j ? 1.0 : 0.0, 0.0});
    }
    for (zint i : {zint{0}, k - 2}) {
        a(i, k - 1) = narrow_to<T>({1.0, 0.0});
        a(k - 1, i) = narrow_to<T>({1.0, 0.0});
    }
    a(k - 1, k - 1) = narrow_to<T>({diagonal_value, 0.0});
    return a;
}

TEST(PotrfInfo, TheFailedDiagonalValueStaysInPlace) {
    for (const auto& [n, k] : {std::pair<zint, zint>{5, 3}, {100, 70}, {300, 190}}) {
        for (char uplo : {'U', 'L'}) {
            Matrix<double> a = indefinite_at<double>(n, k, 1.0);
            zint info = 0;
            potrf<double>(uplo, n, a.data(), a.ld, info);
            EXPECT_EQ(info, k) << n << uplo;
            EXPECT_EQ(a(k - 1, k - 1), -1.0) << n << uplo;
            Matrix<zcomplex> z = indefinite_at<zcomplex>(n, k, 1.0);
            potrf<zcomplex>(uplo, n, z.data(), z.ld, info);
            EXPECT_EQ(info, k) << n << uplo;
            EXPECT_EQ(z(k - 1, k - 1).re, -1.0);
            Matrix<double> nan = indefinite_at<double>(n, k, std::numeric_limits<double>::quiet_NaN());
            nan(0, k - 1) = nan(k - 1, 0) = nan(k - 2, k - 1) = nan(k - 1, k - 2) = 0.0;
            potrf<double>(uplo, n, nan.data(), nan.ld, info);
            EXPECT_EQ(info, k) << n << uplo;
        }
    }
}

// Every variant of the unblocked kernels, on both sides of the split at 50 (upper) and 40 (lower):
// a valid factor, and the same info with the failed value in place.
class Potf2Levels : public LevelTest {};

template <class T>
void check_potf2_variant(CpuLevel level, bool upper, zint n) {
    const char uplo = upper ? 'U' : 'L';
    Random random(static_cast<std::uint64_t>(n));
    const Matrix<T> a = random_positive_definite<T>(random, n, 1);
    Matrix<T> f = a;
    zint info = 0;
    auto kernel = [&](Matrix<T>& m) {
        ZOR_D_OR_Z(T, (upper ? dpotf2_upper : dpotf2_lower).variant(level),
                   (upper ? zpotf2_upper : zpotf2_lower).variant(level), n, m.data(), m.ld, info);
    };
    kernel(f);
    ASSERT_EQ(info, 0);
    EXPECT_LT(cholesky_residual(a, widen_matrix(f), uplo), kResidualThreshold) << n << uplo;
    const zint k = n - 1;
    Matrix<T> bad = indefinite_at<T>(n, k, 1.0);
    kernel(bad);
    EXPECT_EQ(info, k);
    EXPECT_TRUE(value(bad(k - 1, k - 1)).re == -1 && value(bad(k - 1, k - 1)).im == 0);
}

TEST_P(Potf2Levels, BothPathsFactorAndFailAlike) {
    for (zint n : {4, 39, 40, 49, 50, 64}) {
        for (bool upper : {true, false}) {
            check_potf2_variant<double>(level(), upper, n);
            check_potf2_variant<zcomplex>(level(), upper, n);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, Potf2Levels, kAllLevels, level_param_name);

template <class T>
void check_posv(zint n, zint nrhs, char uplo) {
    Random random(static_cast<std::uint64_t>(n + nrhs * 7));
    const Matrix<T> a = random_positive_definite<T>(random, n);
    const Matrix<T> b = random_matrix<T>(random, n, nrhs, 2);
    Matrix<T> f = a, x = b;
    zint info = 0;
    posv<T>(uplo, n, nrhs, f.data(), f.ld, x.data(), x.ld, info);
    ASSERT_EQ(info, 0);
    EXPECT_LT(solve_residual(widen_matrix(a), 'N', x, b), kResidualThreshold) << n << " " << nrhs << uplo;
}

TEST(Posv, SolvesWithEitherTriangle) {
    for (char uplo : {'U', 'L'}) {
        for (zint n : {1, 20, 100}) {
            for (zint nrhs : {1, 3}) {
                check_posv<double>(n, nrhs, uplo);
                check_posv<zcomplex>(n, nrhs, uplo);
            }
        }
    }
}

// ---- packed storage -----------------------------------------------------------------------------

// Runs `call` with every allocation failing when `starve` (the cached blocks freed first, so that
// the system is asked); returns how many allocations it asked for.
template <class F>
int with_allocations(bool starve, F call) {
    free_all_buffers();
    AllocatorScope allocator;
    if (starve) AllocatorScope::fail_next(1 << 30);
    call();
    return AllocatorScope::allocations();
}

// Factor, solve and invert in packed storage; `starve` makes every allocation fail, so that the
// factorisation and the solve take their paths on the packed storage.
template <class T>
void check_packed(zint n, char uplo, bool starve) {
    Random random(static_cast<std::uint64_t>(n * 5 + uplo));
    const Matrix<T> a = random_positive_definite<T>(random, n);
    std::vector<T> ap = pack(a, uplo);
    zint info = -1;
    ::testing::internal::CaptureStdout();
    const int asked = with_allocations(starve, [&] { pptrf<T>(uplo, n, ap.data(), info); });
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");  // the fallback is silent
    EXPECT_TRUE(!starve || n <= ilaenv(3, "DPPTRF", " ", n, -1, -1, -1) || asked > 0)
        << "the work block was not asked for";
    ASSERT_EQ(info, 0);
    EXPECT_LT(cholesky_residual(a, unpack(ap, n, uplo), uplo), kResidualThreshold) << n << uplo << starve;

    for (zint nrhs : {zint{1}, zint{12}}) {
        const Matrix<T> b = random_matrix<T>(random, n, nrhs, 1);
        Matrix<T> x = b;
        with_allocations(starve, [&] { pptrs<T>(uplo, n, nrhs, ap.data(), x.data(), x.ld, info); });
        ASSERT_EQ(info, 0);
        EXPECT_LT(solve_residual(widen_matrix(a), 'N', x, b), kResidualThreshold)
            << n << uplo << nrhs << starve;
    }
    pptri<T>(uplo, n, ap.data(), info);
    ASSERT_EQ(info, 0);
    EXPECT_LT(potri_residual(a, unpack(ap, n, uplo), uplo), kResidualThreshold) << n << uplo;
}

TEST(Packed, FactorSolveAndInverseOnBothPaths) {
    const zint nx = ilaenv(3, "DPPTRF", " ", 1000, -1, -1, -1);
    const zint nb = ilaenv(1, "DPPTRF", "Memory", 1000, -1, -1, -1, 6, 6);
    for (zint n : {zint{1}, zint{9}, nx, nx + 1, nb + 37, 2 * nb + 5}) {
        for (char uplo : {'U', 'L'}) {
            for (bool starve : {false, true}) {
                check_packed<double>(n, uplo, starve);
                check_packed<zcomplex>(n, uplo, starve);
            }
        }
    }
}

TEST(Packed, NotPositiveDefiniteOnEveryPath) {
    const zint nx = ilaenv(3, "DPPTRF", " ", 1000, -1, -1, -1);
    for (zint n : {zint{6}, nx + 90}) {
        for (char uplo : {'U', 'L'}) {
            for (bool starve : {false, true}) {
                const zint k = n - 2;
                std::vector<double> ap = pack(indefinite_at<double>(n, k, 1.0), uplo);
                zint info = 0;
                with_allocations(starve, [&] { pptrf<double>(uplo, n, ap.data(), info); });
                EXPECT_EQ(info, k) << n << uplo << starve;
                EXPECT_EQ(unpack(ap, n, uplo)(k - 1, k - 1).re, -1) << n << uplo << starve;
            }
        }
    }
}

// The packed kernels compute the same bits at every level.
class PackedKernelLevels : public LevelTest {};

TEST_P(PackedKernelLevels, EveryVariantGivesTheDefaultBits) {
    const zint n = 45, k = 5;
    Random random(21);
    for (char uplo : {'U', 'L'}) {
        std::vector<double> ap(n * (n + 1) / 2);
        for (auto& v : ap) v = random.uniform() + 2.0;
        const Matrix<double> b = random_matrix<double>(random, n, k, 0);
        for (char trans : {'N', 'T'}) {
            Matrix<double> expected = b, got = b;
            dtpsm.variant(CpuLevel::Default)(uplo, trans, 'N', n, k, ap.data(), expected.data(), n, 0);
            dtpsm.variant(level())(uplo, trans, 'N', n, k, ap.data(), got.data(), n, 0);
            EXPECT_TRUE(same_contents(expected, got)) << uplo << trans;
            dtpmv.variant(CpuLevel::Default)(uplo, trans, 'U', n, ap.data(), expected.data(), 1);
            dtpmv.variant(level())(uplo, trans, 'U', n, ap.data(), got.data(), 1);
            EXPECT_TRUE(same_contents(expected, got)) << uplo << trans;
        }
        std::vector<double> expected = ap, got = ap;
        dsprk.variant(CpuLevel::Default)(uplo, n - 5, 3, -0.5, b.data(), n - 1, -1, expected.data());
        dsprk.variant(level())(uplo, n - 5, 3, -0.5, b.data(), n - 1, -1, got.data());
        EXPECT_EQ(expected, got);
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, PackedKernelLevels, kAllLevels, level_param_name);

// ---- argument checks ----------------------------------------------------------------------------

double g_a[16];
zcomplex g_z[16];

const ArgumentCase kCholeskyArgumentCases[] = {
    {"DPOTRF", -1, [] { return info_of(potrf<double>, 'X', 2, g_a, 2); }},
    {"DPOTRF", -2, [] { return info_of(potrf<double>, 'U', -1, g_a, 2); }},
    {"DPOTRF", -4, [] { return info_of(potrf<double>, 'L', 3, g_a, 2); }},
    {"ZPOTRF", -4, [] { return info_of(potrf<zcomplex>, 'l', 3, g_z, 2); }},
    {"DPOTRS", -1, [] { return info_of(potrs<double>, 'x', 2, 1, g_a, 2, g_a, 2); }},
    {"DPOTRS", -2, [] { return info_of(potrs<double>, 'U', -1, 1, g_a, 2, g_a, 2); }},
    {"DPOTRS", -3, [] { return info_of(potrs<double>, 'U', 2, -1, g_a, 2, g_a, 2); }},
    {"DPOTRS", -5, [] { return info_of(potrs<double>, 'U', 2, 1, g_a, 1, g_a, 2); }},
    {"DPOTRS", -7, [] { return info_of(potrs<double>, 'U', 2, 1, g_a, 2, g_a, 1); }},
    {"DPOSV ", -1, [] { return info_of(posv<double>, 'A', 2, 1, g_a, 2, g_a, 2); }},
    {"DPOSV ", -2, [] { return info_of(posv<double>, 'U', -1, 1, g_a, 2, g_a, 2); }},
    {"DPOSV ", -3, [] { return info_of(posv<double>, 'U', 2, -1, g_a, 2, g_a, 2); }},
    {"DPOSV ", -5, [] { return info_of(posv<double>, 'L', 2, 1, g_a, 1, g_a, 2); }},
    {"ZPOSV ", -7, [] { return info_of(posv<zcomplex>, 'L', 2, 1, g_z, 2, g_z, 1); }},
    {"DPOTRI", -1, [] { return info_of(potri<double>, 'B', 2, g_a, 2); }},
    {"DPOTRI", -2, [] { return info_of(potri<double>, 'U', -1, g_a, 2); }},
    {"ZPOTRI", -4, [] { return info_of(potri<zcomplex>, 'U', 2, g_z, 1); }},
    {"DPPTRF", -1, [] { return info_of(pptrf<double>, 'Q', 2, g_a); }},
    {"ZPPTRF", -2, [] { return info_of(pptrf<zcomplex>, 'U', -1, g_z); }},
    {"DPPTRS", -1, [] { return info_of(pptrs<double>, 'Q', 2, 1, g_a, g_a, 2); }},
    {"DPPTRS", -2, [] { return info_of(pptrs<double>, 'U', -2, 1, g_a, g_a, 2); }},
    {"DPPTRS", -3, [] { return info_of(pptrs<double>, 'U', 2, -1, g_a, g_a, 2); }},
    {"ZPPTRS", -6, [] { return info_of(pptrs<zcomplex>, 'L', 2, 1, g_z, g_z, 1); }},
    {"DPPTRI", -1, [] { return info_of(pptri<double>, '0', 2, g_a); }},
    {"ZPPTRI", -2, [] { return info_of(pptri<zcomplex>, 'L', -5, g_z); }},
};

INSTANTIATE_TEST_SUITE_P(CholeskyArguments, ArgumentChecks, ::testing::ValuesIn(kCholeskyArgumentCases));

TEST(CholeskyQuickReturns, EmptyMatricesTouchNothing) {
    zint info = 3;
    potrf<double>('U', 0, nullptr, 1, info);
    EXPECT_EQ(info, 0);
    pptrf<zcomplex>('L', 0, nullptr, info);
    pptrs<double>('U', 4, 0, nullptr, nullptr, 4, info);
    potri<double>('L', 0, nullptr, 1, info);
    EXPECT_EQ(info, 0);
}

// ---- progress -----------------------------------------------------------------------------------

void progress_child() {
    use_progress_log();
    Random random(2);
    const zint n = 300;
    Matrix<double> a = random_positive_definite<double>(random, n);
    Matrix<double> f = a;
    zint info = 0;
    potrf<double>('L', n, f.data(), f.ld, info);
    const auto& steps = ProgressLog::steps;
    if (info != 0 || steps.empty() || steps.back() != n) std::exit(1);
    for (std::size_t i = 1; i < steps.size(); ++i) {
        if (steps[i] <= steps[i - 1]) std::exit(2);
    }
    if (ProgressLog::stages[0] != "DPOTRF") std::exit(3);
    // Stopped at its first report: only the first diagonal block was factored.
    ProgressLog::reset(1);
    Matrix<zcomplex> z = random_positive_definite<zcomplex>(random, n);
    const Matrix<zcomplex> z0 = z;
    potrf<zcomplex>('U', n, z.data(), z.ld, info);
    if (ProgressLog::calls != 1 || ProgressLog::stages[0] != "ZPOTRF") std::exit(4);
    if (std::memcmp(&z(n - 1, n - 1), &z0(n - 1, n - 1), sizeof(zcomplex)) != 0) std::exit(5);
    // dposv skips the solve after a stop.
    ProgressLog::reset(1);
    Matrix<double> b = random_matrix<double>(random, n, 1);
    const Matrix<double> b0 = b;
    f = a;
    posv<double>('U', n, 1, f.data(), f.ld, b.data(), b.ld, info);
    if (!same_contents(b, b0)) std::exit(6);
    // Below the crossover the kernel runs without a report.
    ProgressLog::reset();
    const zint small = ilaenv(3, "DPOTRF", "U", 10, -1, -1, -1) - 1;
    if (small > 0) {
        Matrix<double> s = random_positive_definite<double>(random, small);
        potrf<double>('U', small, s.data(), s.ld, info);
        if (ProgressLog::calls != 0) std::exit(7);
    }
    // The packed factorisation reports its diagonal blocks as "DPPTRF".
    std::vector<double> ap = pack(a, 'U');
    pptrf<double>('U', n, ap.data(), info);
    if (ProgressLog::stages.empty() || ProgressLog::stages.back() != "DPPTRF") std::exit(8);
    if (ProgressLog::steps.back() != n) std::exit(9);
    potrf<double>('U', 0, f.data(), 1, info);
    std::exit(ProgressLog::steps.back() == n ? 0 : 10);
}

TEST(CholeskyProgress, ReportsDiagonalBlocksAndStopsAtOnceWhenAsked) {
    EXPECT_EXIT(progress_child(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace zor::test
