// The level-3 routines beside GEMM against the reference of support/level3_reference.hpp, on every
// path (each level and, at Avx, each set of extensions): every option combination, shapes on both
// sides of the tile and block edges, padded leading dimensions, the triangles a routine must not
// read poisoned with NaN and the elements it must not write checked bit for bit. Triangular solves
// are judged by their residual, which stays meaningful for ill-conditioned triangles.

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "blas/dispatch.hpp"
#include "blas/level3/level3.hpp"
#include "service/cpu.hpp"
#include "support/counting_allocator.hpp"
#include "support/level3_reference.hpp"
#include "support/random.hpp"
#include "support/variants.hpp"

namespace zor::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// ---- the paths under test ---------------------------------------------------------------------------

// Each level and, at Avx, each set of extensions; or (dispatched) the variant of the level through its
// dispatcher, with this processor's extensions.
struct Path {
    const char* name;
    CpuLevel level;
    std::uint32_t extensions;
    bool dispatched = false;
};

const Path kPaths[] = {
    {"Default", CpuLevel::Default, 0},
    {"Sse3", CpuLevel::Sse3, 0},
    {"Ssse3", CpuLevel::Ssse3, 0},
    {"Sse42", CpuLevel::Sse42, 0},
    {"AvxPlain", CpuLevel::Avx, 0},
    {"AvxFma", CpuLevel::Avx, kExtensionFma},
    {"Avx512", CpuLevel::Avx, kExtensionFma | kExtensionAvx512f},
};

decltype(&default_::dtrsm_with) const kDtrsm[] = {ZOR_VARIANTS(dtrsm_with)};
decltype(&default_::ztrsm_with) const kZtrsm[] = {ZOR_VARIANTS(ztrsm_with)};
decltype(&default_::dtrmm_with) const kDtrmm[] = {ZOR_VARIANTS(dtrmm_with)};
decltype(&default_::ztrmm_with) const kZtrmm[] = {ZOR_VARIANTS(ztrmm_with)};
decltype(&default_::dsyrk_with) const kDsyrk[] = {ZOR_VARIANTS(dsyrk_with)};
decltype(&default_::zsyrk_with) const kZsyrk[] = {ZOR_VARIANTS(zsyrk_with)};
decltype(&default_::zherk_with) const kZherk[] = {ZOR_VARIANTS(zherk_with)};
decltype(&default_::dsyr2k_with) const kDsyr2k[] = {ZOR_VARIANTS(dsyr2k_with)};
decltype(&default_::zsyr2k_with) const kZsyr2k[] = {ZOR_VARIANTS(zsyr2k_with)};
decltype(&default_::zher2k_with) const kZher2k[] = {ZOR_VARIANTS(zher2k_with)};

int at(CpuLevel level) {
    return static_cast<int>(level);
}

// ---- operands --------------------------------------------------------------------------------------

template <class T>
T nan_element() {
    return scalar<T>(kNaN, kNaN);
}

// A square operand of `order` whose triangle outside `upper` (and the diagonal when `unit`) is NaN.
template <class T>
std::vector<T> triangular_operand(Random& random, Index order, Index ld, bool upper, bool unit) {
    std::vector<T> a = random_operand<T>(random, order, order, ld);
    for (Index j = 0; j < order; ++j) {
        for (Index i = 0; i < order; ++i) {
            if (i == j ? unit : upper != (i < j)) a[i + j * ld] = nan_element<T>();
        }
    }
    return a;
}

// A unit-size diagonal keeps the solves in range; the triangles stay ill-conditioned all the same.
template <class T>
void strengthen_diagonal(std::vector<T>& a, Index order, Index ld) {
    for (Index i = 0; i < order; ++i) {
        T& d = a[i + i * ld];
        if constexpr (kComplex<T>) {
            d.re += d.re < 0 ? -1.0 : 1.0;
        } else {
            d += d < 0 ? -1.0 : 1.0;
        }
    }
}

// ---- trsm and trmm ----------------------------------------------------------------------------------

struct Options {
    char side, uplo, trans, diag;
};

// Calls the path's routine: the `_with` form of its level with its extensions, or the variant of its
// level through the dispatcher.
template <class Table, class Dispatcher, class... Args>
void call(const Path& path, Table table, const Dispatcher& dispatcher, const Args&... args) {
    if (path.dispatched) {
        dispatcher.variant(path.level)(args...);
    } else {
        table[at(path.level)](path.extensions, args...);
    }
}

template <class T>
void run_triangular(bool solve, const Path& path, const Options& o, Index m, Index n, T alpha, const T* a,
                    Index lda, T* b, Index ldb) {
    if constexpr (kComplex<T>) {
        call(path, solve ? kZtrsm : kZtrmm, solve ? ztrsm : ztrmm, o.side, o.uplo, o.trans, o.diag, m, n,
             alpha, a, lda, b, ldb);
    } else {
        call(path, solve ? kDtrsm : kDtrmm, solve ? dtrsm : dtrmm, o.side, o.uplo, o.trans, o.diag, m, n,
             alpha, a, lda, b, ldb);
    }
}

template <class T>
::testing::AssertionResult check_triangular(bool solve, const Path& path, const Options& o, Index m, Index n,
                                            T alpha, Index pad, std::uint64_t seed) {
    Random random(seed);
    const bool left = is(o.side, 'L'), upper = is(o.uplo, 'U'), unit = is(o.diag, 'U');
    const Index order = left ? m : n, lda = order + pad, ldb = m + pad;
    std::vector<T> a = triangular_operand<T>(random, order, lda, upper, unit);
    if (solve && !unit) strengthen_diagonal(a, order, lda);
    std::vector<T> b = random_operand<T>(random, m, n, ldb);
    const std::vector<T> b0 = b;
    run_triangular(solve, path, o, m, n, alpha, a.data(), lda, b.data(), ldb);
    const Dense t = op(triangle(a.data(), order, lda, upper, unit), o.trans);
    const Dense before = load(b0.data(), m, n, ldb);
    ::testing::AssertionResult result =
        triangular_result(solve, left, value(alpha), t, before, load(b.data(), m, n, ldb), 8 * (order + 4));
    if (result) result = untouched(b, b0, ldb, [&](Index i, Index) { return i < m; });
    if (!result) {
        result << " (" << (solve ? "trsm" : "trmm") << " " << o.side << o.uplo << o.trans << o.diag << ", m "
               << m << ", n " << n << ", pad " << pad << ")";
    }
    return result;
}

std::vector<Options> all_triangular_options() {
    std::vector<Options> all;
    for (char side : {'L', 'R'}) {
        for (char uplo : {'U', 'L'}) {
            for (char trans : {'N', 'T', 'C'}) {
                for (char diag : {'N', 'U'}) all.push_back({side, uplo, trans, diag});
            }
        }
    }
    // Lower-case letters are the same options.
    all.push_back({'l', 'u', 'c', 'n'});
    all.push_back({'r', 'l', 't', 'u'});
    return all;
}

struct Shape {
    Index m, n;
};

// Orders and right-hand sides around the tiles (rows of 2, 4 and 8; strips of 2 to 24 columns, packed
// 4 strips at a time) and the unblocked limit (fewer than 4); the diagonal blocks (128, 192) in the
// test after.
const Shape kTriangularShapes[] = {{1, 1},  {3, 2},  {2, 9},   {5, 6},  {13, 29},
                                   {37, 9}, {9, 37}, {9, 101}, {101, 9}};

class Level3Path : public ::testing::TestWithParam<Path> {};
class Level3Variant : public ::testing::TestWithParam<CpuLevel> {};

TEST_P(Level3Path, TriangularSolveAndMultiplyForEveryOptionAndShape) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().extensions);
    std::uint64_t seed = 1;
    for (const Shape& s : kTriangularShapes) {
        for (const Options& o : all_triangular_options()) {
            for (bool solve : {true, false}) {
                ++seed;
                const Index pad = seed % 3 == 0 ? 0 : 2;
                const bool one = seed % 2 == 0;
                ASSERT_TRUE(
                    check_triangular<double>(solve, GetParam(), o, s.m, s.n, one ? 1.0 : -1.5, pad, seed));
                ASSERT_TRUE(check_triangular<zcomplex>(solve, GetParam(), o, s.m, s.n,
                                                       one ? zcomplex{1, 0} : zcomplex{0.75, -0.5}, pad,
                                                       seed + 1));
            }
        }
    }
}

// Several diagonal blocks, each coupled to the others through the GEMM engine.
TEST_P(Level3Path, TriangularRoutinesAcrossSeveralBlocks) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().extensions);
    std::uint64_t seed = 700;
    for (char side : {'L', 'R'}) {
        for (char uplo : {'U', 'L'}) {
            for (char trans : {'N', 'C'}) {
                const Options o{side, uplo, trans, 'N'};
                const Shape s = side == 'L' ? Shape{261, 13} : Shape{13, 261};
                for (bool solve : {true, false}) {
                    ASSERT_TRUE(check_triangular<double>(solve, GetParam(), o, s.m, s.n, 0.5, 1, ++seed));
                    ASSERT_TRUE(check_triangular<zcomplex>(solve, GetParam(), o, s.m, s.n, zcomplex{0, 1}, 1,
                                                           ++seed));
                }
            }
        }
    }
}

// alpha = 0 zeroes B without reading A or B; m = 0 or n = 0 touches nothing.
TEST_P(Level3Path, TriangularQuickReturns) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().extensions);
    for (bool solve : {true, false}) {
        for (const Options& o : {Options{'L', 'U', 'N', 'N'}, Options{'R', 'L', 'C', 'U'}}) {
            std::vector<double> b(30 * 20, kNaN);
            run_triangular<double>(solve, GetParam(), o, 30, 20, 0.0, nullptr, 30, b.data(), 30);
            for (double x : b) ASSERT_EQ(x, 0.0);
            std::vector<zcomplex> z(30 * 20, zcomplex{kNaN, kNaN});
            run_triangular<zcomplex>(solve, GetParam(), o, 30, 20, {0, 0}, nullptr, 30, z.data(), 30);
            for (const zcomplex& x : z) ASSERT_TRUE(x.re == 0 && x.im == 0);
            for (const Shape& s : {Shape{0, 5}, Shape{5, 0}}) {
                run_triangular<double>(solve, GetParam(), o, s.m, s.n, 1.0, nullptr, 5, b.data(), 5);
                run_triangular<zcomplex>(solve, GetParam(), o, s.m, s.n, {1, 0}, nullptr, 5, z.data(), 5);
            }
            for (double x : b) ASSERT_EQ(x, 0.0);
        }
    }
}

// A diagonal whose reciprocals overflow or fall into the subnormal range: the solve divides, so
// powers of two come out exact. 2^-1030 is subnormal, its reciprocal would be infinite.
TEST_P(Level3Path, SolveDividesWhereReciprocalsWouldLoseTheResult) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().extensions);
    const Index order = 37, n = 30;
    for (const double d : {0x1p-1030, 0x1p1022}) {
        std::vector<double> a(order * order, 0.0), b(order * n);
        std::vector<zcomplex> za(order * order, zcomplex{0, 0}), zb(order * n);
        for (Index i = 0; i < order; ++i) {
            a[i + i * order] = d;
            za[i + i * order] = {d, 0};
        }
        for (Index k = 0; k < order * n; ++k) {
            b[k] = (k % 7 - 3) * d * 0x1p-20;
            zb[k] = {b[k], -b[k]};
        }
        run_triangular<double>(true, GetParam(), {'L', 'L', 'N', 'N'}, order, n, 1.0, a.data(), order,
                               b.data(), order);
        run_triangular<zcomplex>(true, GetParam(), {'R', 'U', 'T', 'N'}, n, order, {1, 0}, za.data(), order,
                                 zb.data(), n);
        for (Index k = 0; k < order * n; ++k) {
            ASSERT_EQ(b[k], (k % 7 - 3) * 0x1p-20) << "d = " << d << ", element " << k;
        }
        for (Index k = 0; k < order * n; ++k) {
            const double want = (k % 7 - 3) * 0x1p-20;
            ASSERT_TRUE(zb[k].re == want && zb[k].im == -want) << "d = " << d << ", element " << k;
        }
    }
}

// ---- syrk, herk, syr2k, her2k -------------------------------------------------------------------------

enum class Update { Syrk, Herk, Syr2k, Her2k };

bool hermitian(Update u) {
    return u == Update::Herk || u == Update::Her2k;
}
bool two_terms(Update u) {
    return u == Update::Syr2k || u == Update::Her2k;
}

// herk and her2k take a real beta (and herk a real alpha): the real parts of those given.
template <class T>
void run_update(Update u, const Path& path, char uplo, char trans, Index n, Index k, T alpha, const T* a,
                Index lda, const T* b, Index ldb, T beta, T* c, Index ldc) {
    if constexpr (kComplex<T>) {
        switch (u) {
            case Update::Syrk:
                return call(path, kZsyrk, zsyrk, uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
            case Update::Herk:
                return call(path, kZherk, zherk, uplo, trans, n, k, alpha.re, a, lda, beta.re, c, ldc);
            case Update::Syr2k:
                return call(path, kZsyr2k, zsyr2k, uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
            case Update::Her2k:
                return call(path, kZher2k, zher2k, uplo, trans, n, k, alpha, a, lda, b, ldb, beta.re, c, ldc);
        }
    } else if (u == Update::Syrk) {
        call(path, kDsyrk, dsyrk, uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
    } else {
        call(path, kDsyr2k, dsyr2k, uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    }
}

template <class T>
::testing::AssertionResult check_update(Update u, const Path& path, char uplo, char trans, Index n, Index k,
                                        T alpha, T beta, Index pad, std::uint64_t seed, bool nan_c = false) {
    Random random(seed);
    const bool lower = is(uplo, 'L'), untransposed = is(trans, 'N'), herm = hermitian(u);
    const Index rows = untransposed ? n : k, cols = untransposed ? k : n;
    const Index lda = rows + pad, ldc = n + pad;
    const std::vector<T> a = random_operand<T>(random, rows, cols, lda);
    const std::vector<T> b = random_operand<T>(random, rows, cols, lda);
    std::vector<T> c = random_operand<T>(random, n, n, ldc);
    auto in_triangle = [&](Index i, Index j) { return i < n && (lower ? i >= j : i <= j); };
    for (Index j = 0; j < n; ++j) {
        for (Index i = 0; i < n; ++i) {
            if (!in_triangle(i, j) || nan_c) c[i + j * ldc] = nan_element<T>();
        }
    }
    const std::vector<T> c0 = c;
    run_update(u, path, uplo, trans, n, k, alpha, a.data(), lda, b.data(), lda, beta, c.data(), ldc);

    const Expected want =
        rank_update(herm, two_terms(u), value(alpha), value(beta), load(a.data(), rows, cols, lda),
                    load(b.data(), rows, cols, lda), trans, load(c0.data(), n, n, ldc), in_triangle);
    ::testing::AssertionResult result = near(c.data(), ldc, want, 8 * (k + 4), in_triangle);
    if (result) result = untouched(c, c0, ldc, in_triangle);
    if constexpr (kComplex<T>) {
        for (Index i = 0; result && herm && i < n; ++i) {
            if (c[i + i * ldc].im != 0.0)
                result = ::testing::AssertionFailure() << "C(" << i << ", " << i << ") is not real";
        }
    }
    if (!result) {
        result << " (update " << static_cast<int>(u) << " " << uplo << trans << ", n " << n << ", k " << k
               << ")";
    }
    return result;
}

// Orders around the tiles and the diagonal blocks (128, 256), depths around the packed depth (128
// complex, 256 real).
const Shape kUpdateShapes[] = {{1, 1}, {5, 3}, {13, 40}, {21, 270}, {260, 3}};

TEST_P(Level3Path, RankUpdatesForEveryOptionAndShape) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().extensions);
    std::uint64_t seed = 2000;
    for (const Shape& s : kUpdateShapes) {
        for (const char* options : {"UN", "UT", "UC", "LN", "LT", "LC", "lt", "uc"}) {
            const char uplo = options[0], trans = options[1];
            ++seed;
            const double beta = seed % 3 == 0 ? 1.0 : 0.5;
            for (Update u : {Update::Syrk, Update::Syr2k}) {
                ASSERT_TRUE(check_update<double>(u, GetParam(), uplo, trans, s.m, s.n, -1.25, beta, 1, seed));
            }
            for (Update u : {Update::Syrk, Update::Herk, Update::Syr2k, Update::Her2k}) {
                // zsyrk takes "N" or "T", zherk "N" or "C".
                if (is(trans, hermitian(u) ? 'T' : 'C')) continue;
                ASSERT_TRUE(check_update<zcomplex>(u, GetParam(), uplo, trans, s.m, s.n, zcomplex{0.5, -1},
                                                   zcomplex{beta, seed % 2 ? 0.25 : 0.0}, 2, seed));
            }
        }
    }
}

// beta = 0 writes zeros without reading C; alpha = 0 or k = 0 only scales (herk and her2k also
// make the diagonal real), and with beta = 1 returns without touching C at all.
TEST_P(Level3Path, RankUpdateSpecialScalars) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().extensions);
    const Path& path = GetParam();
    std::uint64_t seed = 3000;
    for (Update u : {Update::Syrk, Update::Herk, Update::Syr2k, Update::Her2k}) {
        if (!hermitian(u)) {
            ASSERT_TRUE(check_update<double>(u, path, 'L', 'T', 40, 7, 1.0, 0.0, 1, ++seed, true));
            ASSERT_TRUE(check_update<double>(u, path, 'U', 'N', 40, 0, 1.0, 2.0, 1, ++seed));
        }
        ASSERT_TRUE(check_update<zcomplex>(u, path, 'U', 'N', 40, 7, {1, 1}, {0, 0}, 1, ++seed, true));
        ASSERT_TRUE(check_update<zcomplex>(u, path, 'L', 'N', 40, 0, {1, 0}, {2, 0}, 1, ++seed));
        ASSERT_TRUE(check_update<zcomplex>(u, path, 'L', 'N', 40, 7, {0, 0}, {0.5, 0}, 1, ++seed));
        // Nothing at all: C, the imaginary parts of its diagonal included, stays as it was.
        for (const Shape& s : {Shape{40, 0}, Shape{0, 7}}) {
            std::vector<zcomplex> c(40 * 40, zcomplex{kNaN, 1});
            const std::vector<zcomplex> c0 = c;
            run_update<zcomplex>(u, path, 'U', 'N', s.m, s.n, {1, 0}, nullptr, 40, nullptr, 40, {1, 0},
                                 c.data(), 40);
            run_update<zcomplex>(u, path, 'L', 'C', 40, 7, {0, 0}, nullptr, 40, nullptr, 40, {1, 0}, c.data(),
                                 40);
            ASSERT_TRUE(untouched(c, c0, 40, [](Index, Index) { return false; }));
        }
    }
}

// ---- symm and hemm ----------------------------------------------------------------------------------

// symm and hemm have no inner paths of their own: each level's variant, through the dispatcher.
template <class T>
void run_symm(bool herm, CpuLevel level, char side, char uplo, Index m, Index n, T alpha, const T* a,
              Index lda, const T* b, Index ldb, T beta, T* c, Index ldc) {
    if constexpr (kComplex<T>) {
        (herm ? zhemm : zsymm).variant(level)(side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
    } else {
        dsymm.variant(level)(side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
    }
}

// The triangle not stored is NaN, and so are the imaginary parts of a Hermitian diagonal.
template <class T>
::testing::AssertionResult check_symm(bool herm, CpuLevel level, char side, char uplo, Index m, Index n,
                                      T alpha, T beta, Index pad, std::uint64_t seed, bool nan_c = false) {
    Random random(seed);
    const bool left = is(side, 'L'), upper = is(uplo, 'U');
    const Index order = left ? m : n, lda = order + pad, ldc = m + pad;
    std::vector<T> a = triangular_operand<T>(random, order, lda, upper, false);
    if constexpr (kComplex<T>) {
        for (Index i = 0; herm && i < order; ++i) a[i + i * lda].im = kNaN;
    }
    const std::vector<T> b = random_operand<T>(random, m, n, ldc);
    std::vector<T> c =
        nan_c ? std::vector<T>(ldc * n, nan_element<T>()) : random_operand<T>(random, m, n, ldc);
    const std::vector<T> c0 = c;
    run_symm(herm, level, side, uplo, m, n, alpha, a.data(), lda, b.data(), ldc, beta, c.data(), ldc);
    const Dense sym = symmetric(a.data(), order, lda, upper, herm), before = load(c0.data(), m, n, ldc);
    const Dense bd = load(b.data(), m, n, ldc);
    const Value al = value(alpha), be = value(beta);
    ::testing::AssertionResult result =
        near(c.data(), ldc, left ? combine(al, sym, bd, be, &before) : combine(al, bd, sym, be, &before),
             8 * (order + 4), Everywhere{});
    if (result) result = untouched(c, c0, ldc, [&](Index i, Index) { return i < m; });
    if (!result)
        result << " (" << (herm ? "hemm " : "symm ") << side << uplo << ", m " << m << ", n " << n << ")";
    return result;
}

// Orders around the expanded depth (256).
const Shape kSymmShapes[] = {{1, 1}, {3, 9}, {13, 30}, {260, 7}, {7, 260}};

TEST_P(Level3Variant, SymmetricAndHermitianMultiplyForEveryOptionAndShape) {
    const CpuLevel level = GetParam();
    ZOR_SKIP_UNLESS_RUNNABLE(level);
    std::uint64_t seed = 4000;
    for (const Shape& s : kSymmShapes) {
        for (const auto& [side, uplo] :
             {std::pair{'L', 'U'}, {'L', 'L'}, {'R', 'U'}, {'R', 'L'}, {'l', 'u'}, {'r', 'l'}}) {
            ++seed;
            ASSERT_TRUE(
                check_symm<double>(false, level, side, uplo, s.m, s.n, 1.5, seed % 2 ? 0.5 : 1.0, 1, seed));
            for (bool herm : {false, true}) {
                ASSERT_TRUE(check_symm<zcomplex>(herm, level, side, uplo, s.m, s.n, zcomplex{0.5, -1},
                                                 zcomplex{0.25, seed % 2 ? 0.5 : 0.0}, 2, seed));
            }
        }
    }
}

// beta = 0 does not read C; alpha = 0 reads neither A nor B and only scales, and with beta = 1
// returns without touching C.
TEST_P(Level3Variant, SymmetricMultiplySpecialScalars) {
    const CpuLevel level = GetParam();
    ZOR_SKIP_UNLESS_RUNNABLE(level);
    ASSERT_TRUE(check_symm<double>(false, level, 'R', 'U', 30, 20, 2.0, 0.0, 1, 5000, true));
    ASSERT_TRUE(check_symm<zcomplex>(true, level, 'L', 'L', 30, 20, {2, 1}, {0, 0}, 1, 5001, true));
    std::vector<double> c(30 * 20, 3.0);
    run_symm<double>(false, level, 'L', 'U', 30, 20, 0.0, nullptr, 30, nullptr, 30, 2.0, c.data(), 30);
    for (double x : c) ASSERT_EQ(x, 6.0);
    std::vector<zcomplex> z(30 * 20, zcomplex{kNaN, kNaN});
    run_symm<zcomplex>(true, level, 'R', 'L', 30, 20, {0, 0}, nullptr, 20, nullptr, 30, {1, 0}, z.data(), 30);
    for (const zcomplex& x : z) ASSERT_TRUE(std::isnan(x.re) && std::isnan(x.im));
    run_symm<zcomplex>(false, level, 'R', 'L', 30, 20, {0, 0}, nullptr, 20, nullptr, 30, {0, 0}, z.data(),
                       30);
    for (const zcomplex& x : z) ASSERT_TRUE(x.re == 0 && x.im == 0);
}

// ---- work areas -------------------------------------------------------------------------------------

// With every allocation failing (on a thread of its own, whose memory cache is empty), each routine
// reports the failure once under its own name and still computes the right result.
TEST_P(Level3Path, FailedAllocationIsReportedOnceAndTheResultIsStillRight) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().extensions);
    const Path path = GetParam();
    const std::pair<const char*, std::function<::testing::AssertionResult()>> cases[] = {
        {"xdtrsm",
         [&] {
             return check_triangular<double>(true, path, {'R', 'U', 'T', 'N'}, 40, 50, 2.0, 1, 6000);
         }},
        {"xztrmm",
         [&] {
             return check_triangular<zcomplex>(false, path, {'L', 'L', 'C', 'U'}, 40, 50, {1, 1}, 1, 6001);
         }},
        {"xzher2k",
         [&] {
             return check_update<zcomplex>(Update::Her2k, path, 'U', 'C', 40, 30, {1, 2}, {0.5, 0}, 1, 6002);
         }},
        {"xdsymm",
         [&] { return check_symm<double>(false, path.level, 'L', 'L', 40, 30, 1.0, 1.0, 1, 6003); }},
    };
    for (const auto& [name, check] : cases) {
        ::testing::AssertionResult result = ::testing::AssertionSuccess();
        ::testing::internal::CaptureStdout();
        std::thread([&] {
            const AllocatorScope scope;
            AllocatorScope::fail_next(1 << 30);
            result = check();
        }).join();
        EXPECT_EQ(::testing::internal::GetCapturedStdout(),
                  std::string("\nZOR INTERNAL ERROR: Not enough work memory in function ") + name + "\n");
        EXPECT_TRUE(result) << name;
    }
}

// ---- the dispatcher table ---------------------------------------------------------------------------

// Each dispatcher reaches its own routine: the variant of each level, with this processor's
// extensions, computes what its routine must.
TEST_P(Level3Variant, DispatchersReachTheirRoutines) {
    const Path path{"Dispatched", GetParam(), 0, true};
    ZOR_SKIP_UNLESS_RUNNABLE(path.level);
    std::uint64_t seed = 7000;
    for (bool solve : {true, false}) {
        ASSERT_TRUE(check_triangular<double>(solve, path, {'L', 'U', 'N', 'N'}, 29, 29, 2.0, 1, ++seed));
        ASSERT_TRUE(
            check_triangular<zcomplex>(solve, path, {'R', 'L', 'C', 'U'}, 29, 29, {0.5, 0.25}, 1, ++seed));
    }
    for (Update u : {Update::Syrk, Update::Herk, Update::Syr2k, Update::Her2k}) {
        if (!hermitian(u)) {
            ASSERT_TRUE(check_update<double>(u, path, 'U', 'N', 29, 9, 2.0, 0.5, 1, ++seed));
        }
        ASSERT_TRUE(check_update<zcomplex>(u, path, 'L', hermitian(u) ? 'C' : 'T', 29, 9, {0.5, 0.25},
                                           {0.5, 0}, 1, ++seed));
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, Level3Variant, kAllLevels, level_param_name);

INSTANTIATE_TEST_SUITE_P(Paths, Level3Path, ::testing::ValuesIn(kPaths), NameOfParam{});

}  // namespace
}  // namespace zor::test
