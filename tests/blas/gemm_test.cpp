// The GEMM engines against an independent product accumulated in long double: every variant and
// every inner path, every operation pair, shapes around each threshold and block edge, padded
// leading dimensions, and the special values of alpha, beta and C.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "blas/dispatch.hpp"
#include "blas/gemm/blocking.hpp"
#include "blas/gemm/gemm.hpp"
#include "service/cpu.hpp"
#include "support/counting_allocator.hpp"
#include "support/level3_reference.hpp"
#include "support/random.hpp"
#include "support/variants.hpp"
#include "support/vectors.hpp"

namespace zor::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// ---- the paths under test --------------------------------------------------------------------------

struct Path {
    const char* name;
    CpuLevel level;
    GemmChoice choice;
    std::uint32_t needs;  // extensions the processor must have
};

const Path kPaths[] = {
    {"Default", CpuLevel::Default, {0, 0, false}, 0},
    {"DefaultFamily10h", CpuLevel::Default, {0, 0, true}, 0},
    {"Sse3", CpuLevel::Sse3, {0, 0, false}, 0},
    {"Ssse3Record0", CpuLevel::Ssse3, {0, 32, false}, 0},
    {"Ssse3Record1", CpuLevel::Ssse3, {0, 33, false}, 0},
    {"Sse42Record0", CpuLevel::Sse42, {0, 64, false}, 0},
    {"Sse42Record1", CpuLevel::Sse42, {0, 66, false}, 0},
    {"AvxPlain", CpuLevel::Avx, {0, 128, false}, 0},
    {"AvxFma", CpuLevel::Avx, {kExtensionFma, 128, false}, kExtensionFma},
    {"Avx512", CpuLevel::Avx, {kExtensionFma | kExtensionAvx512f, 128, false}, kExtensionAvx512f},
    {"Avx512Packed", CpuLevel::Avx, {kExtensionFma | kExtensionAvx512f, 128, false, true}, kExtensionAvx512f},
};

decltype(&default_::dgemm_with) const kDgemmWith[] = {ZOR_VARIANTS(dgemm_with)};
decltype(&default_::zgemm_with) const kZgemmWith[] = {ZOR_VARIANTS(zgemm_with)};

// ---- one call ----------------------------------------------------------------------------------------

struct Shape {
    zint m, n, k;
};

// Runs one product through `run` on random operands with padded leading dimensions (pad extra rows,
// poisoned) and compares with the reference: every element of C within rounding (NaN where the
// reference is NaN), its padding rows untouched.
template <class T, class Run>
::testing::AssertionResult check_product(Run run, char transa, char transb, Shape s, T alpha, T beta,
                                         zint pad, std::uint64_t seed, double c_fill = 0.0) {
    Random random(seed);
    const bool plain_a = is(transa, 'N'), plain_b = is(transb, 'N');
    const zint a_rows = plain_a ? s.m : s.k, a_cols = plain_a ? s.k : s.m;
    const zint b_rows = plain_b ? s.k : s.n, b_cols = plain_b ? s.n : s.k;
    const zint lda = std::max<zint>(a_rows + pad, 1), ldb = std::max<zint>(b_rows + pad, 1);
    const zint ldc = std::max<zint>(s.m + pad, 1);
    const std::vector<T> a = random_operand<T>(random, a_rows, a_cols, lda);
    const std::vector<T> b = random_operand<T>(random, b_rows, b_cols, ldb);
    std::vector<T> c = random_operand<T>(random, s.m, s.n, ldc);
    for (zint j = 0; c_fill != 0.0 && j < s.n; ++j) {
        for (zint i = 0; i < s.m; ++i) c[i + j * ldc] = scalar<T>(c_fill, c_fill);
    }
    const std::vector<T> c0 = c;
    run(transa, transb, s.m, s.n, s.k, alpha, a.data(), lda, b.data(), ldb, beta, c.data(), ldc);
    // With k = 0 nothing is added, whatever alpha is; a NaN or infinite beta reaches every element.
    const Dense before = load(c0.data(), s.m, s.n, ldc);
    const Expected want =
        combine(s.k > 0 ? value(alpha) : Value{}, op(load(a.data(), a_rows, a_cols, lda), transa),
                op(load(b.data(), b_rows, b_cols, ldb), transb), value(beta), &before);
    ::testing::AssertionResult result = near(c.data(), ldc, want, 8 * (s.k + 4), Everywhere{});
    if (result) result = untouched(c, c0, ldc, [&](zint i, zint) { return i < s.m; });
    if (!result) {
        result << " (op " << transa << transb << ", m " << s.m << ", n " << s.n << ", k " << s.k << ", lda "
               << lda << ", ldb " << ldb << ", ldc " << ldc << ")";
    }
    return result;
}

// Shapes around every threshold and block edge: the register tiles (mr 1..4, nr 2..8 and the
// 8 x 24 and 4 x 12 multi-tiles), the small-path limits, the depths where the blocks change
// (128, 256, 257, 511, 512, and the fixed designs' 112/224 and 64), odd m, n mod 4 != 0.
const Shape kShapes[] = {
    {1, 1, 1},     {3, 3, 3},      {3, 8, 4},     {4, 7, 4},     {4, 8, 3},     {4, 8, 4},     {7, 13, 6},
    {8, 24, 4},    {9, 25, 7},     {17, 23, 11},  {31, 33, 65},  {33, 49, 130}, {25, 26, 113}, {13, 17, 257},
    {63, 65, 129}, {2, 41, 300},   {65, 7, 64},   {37, 29, 225}, {21, 18, 256}, {19, 22, 511}, {23, 21, 512},
    {11, 19, 513}, {130, 67, 100}, {101, 203, 9}, {96, 96, 96},  {50, 3, 40},   {3, 50, 40},   {260, 30, 20},
};

const char kRealOps[] = {'N', 'T', 'C', 'n', 't'};
const char kComplexOps[] = {'N', 'T', 'C', 'c'};

class GemmPath : public ::testing::TestWithParam<Path> {
  protected:
    // The path's engine for elements T, called as the dispatched routine is.
    template <class T>
    auto run() const {
        const Path path = GetParam();
        return [path](auto... args) {
            const int l = static_cast<int>(path.level);
            ZOR_D_OR_Z(T, kDgemmWith[l], kZgemmWith[l], path.choice, args...);
        };
    }
};

TEST_P(GemmPath, MatchesTheReferenceForEveryOperationPairAndShape) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().needs);
    std::uint64_t seed = 1;
    const zcomplex alpha{0.75, -0.25}, beta{-0.5, 0.375};
    for (const Shape& s : kShapes) {
        for (char ta : kRealOps) {
            for (char tb : kRealOps) {
                ASSERT_TRUE(check_product<double>(run<double>(), ta, tb, s, 0.75, -0.5,
                                                  (ta + tb + s.m) % 3 ? 3 : 0, ++seed));
            }
        }
        for (char ta : kComplexOps) {
            for (char tb : kComplexOps) {
                ASSERT_TRUE(check_product<zcomplex>(run<zcomplex>(), ta, tb, s, alpha, beta,
                                                    (ta + tb + s.m) % 3 ? 2 : 0, ++seed));
            }
        }
    }
}

// The row and column blocks: m beyond the largest mc any cache gives here, n beyond every nc
// (4992, 5000, 2000), the wide-problem rows of the fixed designs (m + n >= 10000, k <= 256).
TEST_P(GemmPath, BlockEdgesOfRowsAndColumns) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().needs);
    const Shape shapes[] = {{5, 5001, 5}, {13313, 9, 4}, {9990, 12, 16}, {9, 4999, 33}};
    std::uint64_t seed = 77;
    for (const Shape& s : shapes) {
        ASSERT_TRUE(check_product<double>(run<double>(), 'N', 'T', s, 1.0, 1.0, 1, ++seed));
        ASSERT_TRUE(check_product<zcomplex>(run<zcomplex>(), 'C', 'N', s, zcomplex{1, 0.5}, zcomplex{1, 0}, 1,
                                            ++seed));
    }
}

struct Scalars {
    double alpha_re, alpha_im, beta_re, beta_im;
    double c_fill;  // 0: random C
};

// alpha and beta at 0, 1, -1, NaN and complex (1, NaN), (0, 1); NaN and infinity in C with beta = 0.
const Scalars kScalars[] = {
    {1, 0, 1, 0, 0},    {-1, 0, 0, 0, 0},  {0, 0, 2, 0, 0},    {0, 0, 0, 0, kNaN}, {1, 0, 0, 0, kNaN},
    {1, 0, 0, 0, kInf}, {-1, 0, -1, 0, 0}, {kNaN, 0, 1, 0, 0}, {1, 0, kNaN, 0, 0}, {0, 1, 1, 0, 0},
    {1, 0, 1, kNaN, 0}, {0, 1, 0, 1, 0},   {0, 0, 1, 0, kNaN}, {2, 0, 0.5, 0, 0},
};

TEST_P(GemmPath, SpecialScalarsAndValuesInC) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().needs);
    const Shape shapes[] = {{3, 2, 5}, {37, 41, 43}, {8, 24, 0}, {2, 9, 0}};
    std::uint64_t seed = 500;
    for (const Shape& s : shapes) {
        // Both unblocked branches (A untransposed or not) as well as the blocked path.
        const char ta = s.m == 3 ? 'N' : 'T';
        for (const Scalars& v : kScalars) {
            if (v.alpha_im == 0 && v.beta_im == 0) {
                ASSERT_TRUE(check_product<double>(run<double>(), ta, 'N', s, v.alpha_re, v.beta_re, 1, ++seed,
                                                  v.c_fill))
                    << "alpha " << v.alpha_re << ", beta " << v.beta_re;
            }
            ASSERT_TRUE(check_product<zcomplex>(run<zcomplex>(), ta, 'C', s, zcomplex{v.alpha_re, v.alpha_im},
                                                zcomplex{v.beta_re, v.beta_im}, 1, ++seed, v.c_fill))
                << "alpha (" << v.alpha_re << ", " << v.alpha_im << "), beta (" << v.beta_re << ", "
                << v.beta_im << ")";
        }
    }
}

// alpha = 0 never reads A or B (null here); m = 0 or n = 0 never touches C, even with beta = 0.
TEST_P(GemmPath, QuickReturnsReadNothingTheyNeedNot) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().needs);
    const Path path = GetParam();
    auto* dgemm_with = kDgemmWith[static_cast<int>(path.level)];
    auto* zgemm_with = kZgemmWith[static_cast<int>(path.level)];
    for (zint k : {0, 1, 300}) {
        std::vector<double> c(50 * 40, 3.0);
        dgemm_with(path.choice, 'N', 'T', 50, 40, k, 0.0, nullptr, 50, nullptr, 40, 2.0, c.data(), 50);
        for (double x : c) ASSERT_EQ(x, 6.0);
        std::vector<zcomplex> z(50 * 40, zcomplex{kNaN, 1});
        zgemm_with(path.choice, 'C', 'N', 50, 40, k, zcomplex{0, 0}, nullptr, 50, nullptr, 300,
                   zcomplex{0, 0}, z.data(), 50);
        for (const zcomplex& x : z) ASSERT_TRUE(x.re == 0.0 && x.im == 0.0);
    }
    std::vector<double> c(16, kNaN);
    for (zint m : {0, 4}) {
        const zint n = 4 - m;
        dgemm_with(path.choice, 'N', 'N', m, n, 4, 1.0, c.data(), 4, c.data(), 4, 0.0, c.data(), 4);
        zgemm_with(path.choice, 'N', 'N', m, n, 4, zcomplex{1, 0}, nullptr, 4, nullptr, 4, zcomplex{0, 0},
                   reinterpret_cast<zcomplex*>(c.data()), 4);
    }
    for (double x : c) ASSERT_TRUE(std::isnan(x));
}

// ---- work areas -------------------------------------------------------------------------------------

// Runs `f` on a thread of its own: the memory manager has no cached block for it, so every work area
// it takes reaches the system allocator.
template <class F>
void on_fresh_thread(F&& f) {
    std::thread(std::forward<F>(f)).join();
}

// The smallest problem each path blocks: the record's thresholds for the table-driven designs, the
// documented ones for the fixed designs and the alternate drivers.
Shape smallest_blocked(const Path& path, bool complex) {
    const bool table =
        path.level == CpuLevel::Avx || path.level == CpuLevel::Sse42 || path.level == CpuLevel::Ssse3;
    if (table) {
        const GemmRecord r = complex ? complex_gemm_record(path.level, path.choice.sublevel)
                                     : real_gemm_record(path.level, path.choice.sublevel);
        return {std::max(r.mr, r.min_m), std::max(r.nr, r.min_n), std::max(r.kr, r.min_k)};
    }
    if (path.choice.family_10h) return complex ? Shape{2, 4, 4} : Shape{4, 2, 4};
    if (complex) return {4, 8, 8};
    return path.level == CpuLevel::Sse3 ? Shape{3, 3, 3} : Shape{2, 2, 2};
}

template <class T, class Run>
int allocations_of(Run run, Shape s) {
    int count = -1;
    on_fresh_thread([&] {
        Random random(s.m * 10000 + s.n * 100 + s.k);
        const AllocatorScope scope;
        // op(A) = Aᵀ: the direct path of small products copies it.
        const std::vector<T> a = random_operand<T>(random, s.k, s.m, s.k),
                             b = random_operand<T>(random, s.k, s.n, s.k);
        std::vector<T> c = random_operand<T>(random, s.m, s.n, s.m);
        AllocatorScope::reset();
        run('T', 'N', s.m, s.n, s.k, scalar<T>(1, 0), a.data(), s.k, b.data(), s.k, scalar<T>(1, 0), c.data(),
            s.m);
        count = AllocatorScope::allocations();
    });
    return count;
}

TEST_P(GemmPath, ProblemsBelowTheThresholdsNeverAllocate) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().needs);
    for (bool complex : {false, true}) {
        auto allocations = [&](Shape s) {
            return complex ? allocations_of<zcomplex>(run<zcomplex>(), s)
                           : allocations_of<double>(run<double>(), s);
        };
        const Shape s = smallest_blocked(GetParam(), complex);
        EXPECT_GT(allocations(s), 0) << "the smallest blocked problem";
        for (const Shape below : {Shape{s.m - 1, s.n + 9, s.k + 9}, Shape{s.m + 9, s.n - 1, s.k + 9},
                                  Shape{s.m + 9, s.n + 9, s.k - 1}, Shape{1, 1, 1}}) {
            EXPECT_EQ(allocations(below), 0)
                << complex << " " << below.m << " x " << below.n << " x " << below.k;
        }
    }
}

// The name the failure is reported under: "xdgemm" for the real fixed design and its alternate
// driver, "xgemm" for the rest.
std::string failure_report(const Path& path, bool complex) {
    const bool fixed_real = !complex && (path.level == CpuLevel::Default || path.level == CpuLevel::Sse3);
    return std::string("\nZOR INTERNAL ERROR: Not enough work memory in function ") +
           (fixed_real ? "xdgemm" : "xgemm") + "\n";
}

TEST_P(GemmPath, FailedAllocationIsReportedOnceAndCIsStillRight) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().needs);
    const Path path = GetParam();
    // Every allocation of the call fails; the call runs on a thread of its own.
    auto failing = [](auto call) {
        return [call](auto... args) {
            on_fresh_thread([&] {
                const AllocatorScope scope;
                AllocatorScope::fail_next(1 << 30);
                call(args...);
            });
        };
    };
    auto real = failing(run<double>());
    auto complex = failing(run<zcomplex>());
    ::testing::internal::CaptureStdout();
    const ::testing::AssertionResult real_result =
        check_product<double>(real, 'T', 'N', Shape{41, 43, 45}, -1.5, 0.5, 1, 31);
    const std::string real_out = ::testing::internal::GetCapturedStdout();
    ::testing::internal::CaptureStdout();
    const ::testing::AssertionResult complex_result =
        check_product<zcomplex>(complex, 'N', 'C', Shape{41, 43, 45}, zcomplex{1, -1}, zcomplex{0, 0}, 1, 32);
    const std::string complex_out = ::testing::internal::GetCapturedStdout();
    EXPECT_TRUE(real_result);
    EXPECT_TRUE(complex_result);
    EXPECT_EQ(real_out, failure_report(path, false));
    EXPECT_EQ(complex_out, failure_report(path, true));
}

INSTANTIATE_TEST_SUITE_P(Paths, GemmPath, ::testing::ValuesIn(kPaths), NameOfParam{});

// Random operands for op(A) (m x k) and op(B) (k x n) with padded leading dimensions, and C.
struct Operands {
    zint lda, ldb, ldc;
    std::vector<double> a, b, c;
    Operands(Random& random, char ta, char tb, Shape s, zint pad)
        : lda((ta == 'N' ? s.m : s.k) + pad), ldb((tb == 'N' ? s.k : s.n) + pad), ldc(s.m + pad) {
        a = random_operand<double>(random, lda, ta == 'N' ? s.k : s.m, lda);
        b = random_operand<double>(random, ldb, tb == 'N' ? s.n : s.k, ldb);
        c = random_operand<double>(random, ldc, s.n, ldc);
    }
};

// The direct AVX-512 path gives the bits of the packed one: every operation pair, alpha 1, -1
// (negated products) and another, depths not a multiple of 4 (the packed path's zero padding) and
// across the depth blocks (256, 257, 511, 513), rows and columns around the 24 x 8 tiles and on both
// sides of the direct path's limits.
TEST(GemmDirectPath, GivesThePackedPathsBits) {
    ZOR_SKIP_UNLESS_PATH_RUNS(CpuLevel::Avx, kExtensionAvx512f);
    const GemmChoice direct{kExtensionFma | kExtensionAvx512f, 128, false},
        packed{kExtensionFma | kExtensionAvx512f, 128, false, true};
    const Shape shapes[] = {{4, 8, 4},       {5, 9, 5},       {23, 7, 13},   {24, 8, 256},   {25, 17, 257},
                            {64, 64, 64},    {96, 700, 300},  {97, 20, 300}, {33, 160, 511}, {47, 9, 513},
                            {161, 161, 100}, {384, 512, 256}, {385, 40, 30}, {200, 513, 40}, {8, 300, 130}};
    Random random(4242);
    for (const Shape& s : shapes) {
        for (const char ta : {'N', 'T'}) {
            for (const char tb : {'N', 'T'}) {
                for (const double alpha : {1.0, -1.0, 0.7}) {
                    Operands x(random, ta, tb, s, (s.m + ta + tb) % 3);
                    std::vector<double> c2 = x.c;
                    avx::dgemm_with(direct, ta, tb, s.m, s.n, s.k, alpha, x.a.data(), x.lda, x.b.data(),
                                    x.ldb, -0.5, x.c.data(), x.ldc);
                    avx::dgemm_with(packed, ta, tb, s.m, s.n, s.k, alpha, x.a.data(), x.lda, x.b.data(),
                                    x.ldb, -0.5, c2.data(), x.ldc);
                    for (std::size_t i = 0; i < c2.size(); ++i) {
                        ASSERT_TRUE(same_bits(x.c[i], c2[i]))
                            << ta << tb << " " << s.m << " x " << s.n << " x " << s.k << " alpha " << alpha
                            << " at " << i;
                    }
                }
            }
        }
    }
}

// An element of C gets the same bits whatever the shape of the call it is part of, on each Avx
// path: the leading block of a product computed alone, below the blocking thresholds (the small
// path), on both sides of the direct path's limits and in the packed path.
TEST(GemmAvxPaths, AnElementsBitsDoNotDependOnTheShape) {
    ZOR_SKIP_UNLESS_RUNNABLE(CpuLevel::Avx);
    struct Pair {
        Shape whole, part;
    };
    const Pair pairs[] = {{{4, 9, 6}, {3, 9, 6}},           {{9, 8, 6}, {9, 7, 6}},
                          {{40, 30, 3}, {40, 30, 3}},       {{97, 30, 300}, {96, 30, 300}},
                          {{385, 20, 130}, {384, 20, 130}}, {{200, 513, 40}, {200, 512, 40}},
                          {{600, 12, 257}, {1, 12, 257}},   {{50, 600, 70}, {50, 1, 70}}};
    for (const Path& path : kPaths) {
        if (path.level != CpuLevel::Avx || (detect_avx_extensions() & path.needs) != path.needs) continue;
        Random random(99);
        for (const Pair& pair : pairs) {
            for (const char ta : {'N', 'T'}) {
                const char tb = ta == 'N' ? 'T' : 'N';
                Operands x(random, ta, tb, pair.whole, 1);
                std::vector<double> part = x.c;
                const Shape& w = pair.whole;
                const Shape& p = pair.part;
                avx::dgemm_with(path.choice, ta, tb, w.m, w.n, w.k, 0.7, x.a.data(), x.lda, x.b.data(), x.ldb,
                                1.0, x.c.data(), x.ldc);
                avx::dgemm_with(path.choice, ta, tb, p.m, p.n, p.k, 0.7, x.a.data(), x.lda, x.b.data(), x.ldb,
                                1.0, part.data(), x.ldc);
                for (zint j = 0; j < p.n; ++j) {
                    for (zint i = 0; i < p.m; ++i) {
                        ASSERT_TRUE(same_bits(x.c[i + j * x.ldc], part[i + j * x.ldc]))
                            << path.name << " " << ta << tb << " " << w.m << " x " << w.n << " against "
                            << p.m << " x " << p.n << " x " << p.k << " at (" << i << ", " << j << ")";
                    }
                }
            }
        }
    }
}

// Through the dispatcher table: each level's variant, with the choices of this processor.
class GemmVariant : public ::testing::TestWithParam<CpuLevel> {};

TEST_P(GemmVariant, DispatchedVariantMatchesTheReference) {
    const CpuLevel level = GetParam();
    ZOR_SKIP_UNLESS_RUNNABLE(level);
    auto run_real = [level](auto... args) { dgemm.variant(level)(args...); };
    auto run_complex = [level](auto... args) { zgemm.variant(level)(args...); };
    const Shape shapes[] = {{3, 7, 3}, {57, 61, 259}, {130, 129, 64}};
    std::uint64_t seed = 9000;
    for (const Shape& s : shapes) {
        ASSERT_TRUE(check_product<double>(run_real, 'T', 'N', s, 1.5, 0.0, 2, ++seed));
        ASSERT_TRUE(
            check_product<zcomplex>(run_complex, 'N', 'C', s, zcomplex{1, 1}, zcomplex{0, -1}, 2, ++seed));
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, GemmVariant, kAllLevels, level_param_name);

}  // namespace
}  // namespace zor::test
