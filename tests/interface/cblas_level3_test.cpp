// The level-3 CBLAS functions as a program sees them, through the shared library: for each function
// a table of bad arguments with the parameter number its report must name (the first in the
// published check order winning when two are bad), the letters that only the Fortran-style check
// rejects, and every option in both layouts against the reference of support/level3_reference.hpp.

#include <gtest/gtest.h>

#include <vector>

#include "support/cblas.hpp"

namespace zor::test {
namespace {

// ---- argument checks --------------------------------------------------------------------------------

// A valid call, column-major: A is 4 x 4 (4 x 2 for the updates and GEMM), B and C 4 x 3.
struct Args {
    int layout = CblasColMajor, side = CblasLeft, uplo = CblasUpper, trans = CblasNoTrans,
        transb = CblasNoTrans, diag = CblasNonUnit;
    zor_int m = 4, n = 3, k = 2, lda = 4, ldb = 4, ldc = 4;
};

struct Operands {
    double a[200], b[200], c[200];
    Operands() {
        for (int i = 0; i < 200; ++i) a[i] = 0.5, b[i] = 0.25, c[i] = 0.125;
    }
    bool operator==(const Operands&) const = default;
};

using Function = Checked<Args, Operands>;
using Table = std::vector<BadCall<Args>>;

const double kOne[2] = {1, 0};

TEST(CblasLevel3Checks, Gemm) {
    check_table<Args, Operands>(
        {ZOR_CHECKED(cblas_dgemm, "DGEMM ", L(a.layout), T(a.trans), T(a.transb), a.m, a.n, a.k, 1.0, o.a,
                     a.lda, o.b, a.ldb, 0.0, o.c, a.ldc),
         ZOR_CHECKED(cblas_zgemm, "ZGEMM ", L(a.layout), T(a.trans), T(a.transb), a.m, a.n, a.k, kOne, o.a,
                     a.lda, o.b, a.ldb, kOne, o.c, a.ldc)},
        Table{
            {[](Args&) {}, {}},
            {[](Args& x) { x.layout = 100; }, {1}},
            {[](Args& x) { x.layout = 100, x.trans = 110; }, {2}},
            {[](Args& x) { x.layout = 100, x.m = -1; }, {4}},  // the dimensions come before the layout
            {[](Args& x) { x.transb = 114, x.m = -1; }, {3}},
            {[](Args& x) { x.n = -1; }, {5}},
            {[](Args& x) { x.k = -1; }, {6}},
            {[](Args& x) { x.lda = 3; }, {9}},
            {[](Args& x) { x.trans = CblasTrans, x.lda = 1; }, {9}},
            {[](Args& x) { x.ldb = 1; }, {11}},
            {[](Args& x) { x.transb = CblasConjTrans, x.ldb = 2; }, {11}},
            {[](Args& x) { x.ldc = 3; }, {14}},
            // Row-major: A stored M x K (K x M transposed), B K x N, C M x N.
            {[](Args& x) { x.layout = CblasRowMajor, x.lda = 2, x.ldb = 3, x.ldc = 3; }, {}},
            {[](Args& x) { x.layout = CblasRowMajor, x.lda = 1, x.ldb = 3, x.ldc = 3; }, {9}},
            {[](Args& x) { x.layout = CblasRowMajor, x.trans = CblasTrans, x.lda = 3, x.ldb = 3, x.ldc = 3; },
             {9}},
            {[](Args& x) { x.layout = CblasRowMajor, x.lda = 2, x.ldb = 2, x.ldc = 3; }, {11}},
            {[](Args& x) { x.layout = CblasRowMajor, x.lda = 2, x.ldb = 3, x.ldc = 2; }, {14}},
            {[](Args& x) { x.m = x.n = x.k = 0, x.lda = x.ldb = x.ldc = 1; }, {}},  // ld = 1 is enough
            {[](Args& x) { x.m = x.n = x.k = 0, x.lda = 0, x.ldb = x.ldc = 1; }, {9}},
        });
}

TEST(CblasLevel3Checks, SymmetricMultiply) {
    check_table<Args, Operands>({ZOR_CHECKED(cblas_dsymm, "DSYMM ", L(a.layout), S(a.side), U(a.uplo), a.m,
                                             a.n, 1.0, o.a, a.lda, o.b, a.ldb, 0.0, o.c, a.ldc),
                                 ZOR_CHECKED(cblas_zsymm, "ZSYMM ", L(a.layout), S(a.side), U(a.uplo), a.m,
                                             a.n, kOne, o.a, a.lda, o.b, a.ldb, kOne, o.c, a.ldc),
                                 ZOR_CHECKED(cblas_zhemm, "ZHEMM ", L(a.layout), S(a.side), U(a.uplo), a.m,
                                             a.n, kOne, o.a, a.lda, o.b, a.ldb, kOne, o.c, a.ldc)},
                                Table{
                                    {[](Args&) {}, {}},
                                    {[](Args& x) { x.side = 0, x.uplo = 0; }, {2}},
                                    {[](Args& x) { x.uplo = 123; }, {3}},
                                    {[](Args& x) { x.layout = 0, x.m = -1; }, {4}},
                                    {[](Args& x) { x.n = -1; }, {5}},
                                    {[](Args& x) { x.layout = 100, x.lda = 0; }, {1}},
                                    {[](Args& x) { x.lda = 3, x.ldc = 0; }, {8}},
                                    {[](Args& x) { x.side = CblasRight, x.lda = 2; }, {8}},
                                    {[](Args& x) { x.side = CblasRight, x.lda = 3; }, {}},
                                    {[](Args& x) { x.ldb = 3; }, {10}},
                                    {[](Args& x) { x.ldc = 3; }, {13}},
                                    {[](Args& x) { x.layout = CblasRowMajor, x.ldb = 3, x.ldc = 3; }, {}},
                                    {[](Args& x) { x.layout = CblasRowMajor, x.ldb = 2, x.ldc = 3; }, {10}},
                                    {[](Args& x) { x.layout = CblasRowMajor, x.ldc = 2; }, {13}},
                                    {[](Args& x) { x.m = 0, x.lda = 1, x.ldb = 1, x.ldc = 1; }, {}},
                                });
}

// Column-major A is n x k untransposed, k x n transposed; row-major the other way round.
TEST(CblasLevel3Checks, RankUpdates) {
    const std::vector<Function> rank_k = {
        ZOR_CHECKED(cblas_dsyrk, "DSYRK ", L(a.layout), U(a.uplo), T(a.trans), a.n, a.k, 1.0, o.a, a.lda, 1.0,
                    o.c, a.ldc),
        ZOR_CHECKED(cblas_zsyrk, "ZSYRK ", L(a.layout), U(a.uplo), T(a.trans), a.n, a.k, kOne, o.a, a.lda,
                    kOne, o.c, a.ldc),
        ZOR_CHECKED(cblas_zherk, "ZHERK ", L(a.layout), U(a.uplo), T(a.trans), a.n, a.k, 1.0, o.a, a.lda, 1.0,
                    o.c, a.ldc),
    };
    const std::vector<Function> rank_2k = {
        ZOR_CHECKED(cblas_dsyr2k, "DSYR2K", L(a.layout), U(a.uplo), T(a.trans), a.n, a.k, 1.0, o.a, a.lda,
                    o.b, a.ldb, 1.0, o.c, a.ldc),
        ZOR_CHECKED(cblas_zsyr2k, "ZSYR2K", L(a.layout), U(a.uplo), T(a.trans), a.n, a.k, kOne, o.a, a.lda,
                    o.b, a.ldb, kOne, o.c, a.ldc),
        ZOR_CHECKED(cblas_zher2k, "ZHER2K", L(a.layout), U(a.uplo), T(a.trans), a.n, a.k, kOne, o.a, a.lda,
                    o.b, a.ldb, 1.0, o.c, a.ldc),
    };
    // Positions 1 to 8 alike; ldc is 11 for the rank-k updates and 13 for the rank-2k ones.
    Table common = {
        {[](Args&) {}, {}},
        {[](Args& x) { x.uplo = 0, x.trans = 0; }, {2}},
        {[](Args& x) { x.trans = 114; }, {3}},
        {[](Args& x) { x.n = -1, x.k = -1; }, {4}},
        {[](Args& x) { x.layout = 0, x.k = -1; }, {5}},
        {[](Args& x) { x.layout = 103; }, {1}},
        {[](Args& x) { x.lda = 2, x.ldc = 1; }, {8}},
        {[](Args& x) { x.layout = CblasRowMajor, x.lda = 2; }, {}},
        {[](Args& x) { x.layout = CblasRowMajor, x.lda = 1; }, {8}},
    };
    Table two = common;
    common.push_back({[](Args& x) { x.ldc = 2; }, {11}});
    check_table(rank_k, common);
    two.push_back({[](Args& x) { x.ldb = 2, x.ldc = 1; }, {10}});
    two.push_back({[](Args& x) { x.ldc = 1; }, {13}});
    check_table(rank_2k, two);
}

TEST(CblasLevel3Checks, TriangularMultiplyAndSolve) {
    const std::vector<Function> functions = {
        ZOR_CHECKED(cblas_dtrmm, "DTRMM ", L(a.layout), S(a.side), U(a.uplo), T(a.trans), D(a.diag), a.m, a.n,
                    1.0, o.a, a.lda, o.b, a.ldb),
        ZOR_CHECKED(cblas_ztrmm, "ZTRMM ", L(a.layout), S(a.side), U(a.uplo), T(a.trans), D(a.diag), a.m, a.n,
                    kOne, o.a, a.lda, o.b, a.ldb),
        ZOR_CHECKED(cblas_dtrsm, "DTRSM ", L(a.layout), S(a.side), U(a.uplo), T(a.trans), D(a.diag), a.m, a.n,
                    1.0, o.a, a.lda, o.b, a.ldb),
        ZOR_CHECKED(cblas_ztrsm, "ZTRSM ", L(a.layout), S(a.side), U(a.uplo), T(a.trans), D(a.diag), a.m, a.n,
                    kOne, o.a, a.lda, o.b, a.ldb),
    };
    check_table(functions, Table{
                               {[](Args&) {}, {}},
                               {[](Args& x) { x.side = 143; }, {2}},
                               {[](Args& x) { x.uplo = 120; }, {3}},
                               {[](Args& x) { x.trans = 0; }, {4}},
                               {[](Args& x) { x.diag = 0, x.m = -1; }, {5}},
                               {[](Args& x) { x.m = -1; }, {6}},
                               {[](Args& x) { x.n = -1, x.layout = 0; }, {7}},
                               {[](Args& x) { x.layout = 1; }, {1}},
                               {[](Args& x) { x.lda = 3, x.ldb = 0; }, {10}},
                               {[](Args& x) { x.side = CblasRight, x.lda = 2; }, {10}},
                               {[](Args& x) { x.ldb = 3; }, {12}},
                               {[](Args& x) { x.layout = CblasRowMajor, x.ldb = 2; }, {12}},
                               {[](Args& x) { x.layout = CblasRowMajor, x.ldb = 3; }, {}},
                           });
}

// The transposes an update does not take (the complex symmetric ones no conjugate transpose, the
// Hermitian ones no plain transpose) are parameter 3 of the CBLAS function in either layout, and
// nothing is computed.
TEST(CblasLevel3Checks, TransposesTheUpdateDoesNotTake) {
    double a[32] = {}, c[32] = {};
    c[0] = 7.0;
    for (const CBLAS_LAYOUT layout : {CblasColMajor, CblasRowMajor}) {
        ::testing::internal::CaptureStdout();
        cblas_zsyrk(layout, CblasUpper, CblasConjTrans, 2, 2, kOne, a, 2, kOne, c, 2);
        cblas_zherk(layout, CblasLower, CblasTrans, 2, 2, 1.0, a, 2, 1.0, c, 2);
        cblas_zsyr2k(layout, CblasUpper, CblasConjTrans, 2, 2, kOne, a, 2, a, 2, kOne, c, 2);
        cblas_zher2k(layout, CblasLower, CblasTrans, 2, 2, kOne, a, 2, a, 2, 1.0, c, 2);
        EXPECT_EQ(::testing::internal::GetCapturedStdout(),
                  "\nZOR ERROR: Parameter 3 was incorrect on entry to cblas_zsyrk\n"
                  "\nZOR ERROR: Parameter 3 was incorrect on entry to cblas_zherk\n"
                  "\nZOR ERROR: Parameter 3 was incorrect on entry to cblas_zsyr2k\n"
                  "\nZOR ERROR: Parameter 3 was incorrect on entry to cblas_zher2k\n");
    }
    EXPECT_EQ(c[0], 7.0);
}

// ---- results in both layouts ------------------------------------------------------------------------

bool in(int uplo_value, Index i, Index j) {
    return uplo_value == CblasUpper ? i <= j : i >= j;
}

class Gemm : public OptionTest<bool, int, int> {};

TEST_P(Gemm, EveryPairOfOperations) {
    const auto [row, ta, tb] = GetParam();
    for (const auto& [m, n, k] : {std::tuple<Index, Index, Index>{5, 3, 4}, {37, 41, 19}}) {
        for_both([&, m = m, n = n, k = k](auto e) {
            using E = decltype(e);
            const bool plain_a = ta == CblasNoTrans, plain_b = tb == CblasNoTrans;
            LayoutMatrix<E> a(row, plain_a ? m : k, plain_a ? k : m, 1),
                b(row, plain_b ? k : n, plain_b ? n : k, 2), c(row, m, n, 3);
            const std::vector<E> c0 = c.data;
            const Dense cd = c.dense();
            const Expected want = combine(alpha_of<E>(), op(a.dense(), letter(ta)), op(b.dense(), letter(tb)),
                                          beta_of<E>(), &cd);
            const E alpha = as<E>(alpha_of<E>()), beta = as<E>(beta_of<E>());
            ZOR_D_OR_Z(E, cblas_dgemm, cblas_zgemm, layout_of(row), T(ta), T(tb), m, n, k, arg(alpha),
                       a.data.data(), a.ld, b.data.data(), b.ld, arg(beta), c.data.data(), c.ld);
            EXPECT_TRUE(near(c.dense(), want, 8 * (k + 4), Everywhere{}) &&
                        c.untouched_except(c0, Everywhere{}))
                << "k " << k;
        });
    }
}

INSTANTIATE_TEST_SUITE_P(Layouts, Gemm,
                         ::testing::Combine(::testing::Bool(), ::testing::ValuesIn(kTransposes),
                                            ::testing::ValuesIn(kTransposes)));

class SymmetricMultiply : public OptionTest<bool, int, int, bool> {};

TEST_P(SymmetricMultiply, EitherSideAndTriangle) {
    const auto [row, s, u, herm] = GetParam();
    const Index m = 6, n = 5, order = s == CblasLeft ? m : n;
    for_both([&](auto e) {
        using E = decltype(e);
        if (herm && !kComplex<E>) return;
        LayoutMatrix<E> a(row, order, order, 1), b(row, m, n, 2), c(row, m, n, 3);
        a.poison_outside([&](Index i, Index j) { return in(u, i, j); });
        const std::vector<E> c0 = c.data;
        const Dense sym = symmetric(a.dense(), u == CblasUpper, herm), bd = b.dense(), cd = c.dense();
        const Expected want = s == CblasLeft ? combine(alpha_of<E>(), sym, bd, beta_of<E>(), &cd)
                                             : combine(alpha_of<E>(), bd, sym, beta_of<E>(), &cd);
        const E alpha = as<E>(alpha_of<E>()), beta = as<E>(beta_of<E>());
        const auto call = [&](auto function) {
            function(layout_of(row), S(s), U(u), m, n, arg(alpha), a.data.data(), a.ld, b.data.data(), b.ld,
                     arg(beta), c.data.data(), c.ld);
        };
        if constexpr (kComplex<E>) {
            call(herm ? cblas_zhemm : cblas_zsymm);
        } else {
            call(cblas_dsymm);
        }
        EXPECT_TRUE(near(c.dense(), want, 64, Everywhere{}) && c.untouched_except(c0, Everywhere{}));
    });
}

INSTANTIATE_TEST_SUITE_P(Layouts, SymmetricMultiply,
                         ::testing::Combine(::testing::Bool(), ::testing::Values(CblasLeft, CblasRight),
                                            ::testing::Values(CblasUpper, CblasLower), ::testing::Bool()));

// The triangle that uplo names is updated; the other one (NaN) is never written. zsyrk and zsyr2k
// take no conjugate transposition, zherk and zher2k no transposition; herk and her2k take the real
// parts of the scalars that are real for them.
class RankUpdates : public OptionTest<bool, int, int, bool, bool> {};

TEST_P(RankUpdates, EitherTriangleAndTransposition) {
    const auto [row, u, t, herm, two] = GetParam();
    const Index n = 6, k = 5;
    for_both([&](auto e) {
        using E = decltype(e);
        constexpr bool complex = kComplex<E>;
        if ((herm && !complex) || (complex && t != CblasNoTrans && (t == CblasConjTrans) != herm)) return;
        const bool plain = t == CblasNoTrans;
        LayoutMatrix<E> a(row, plain ? n : k, plain ? k : n, 4), b(row, plain ? n : k, plain ? k : n, 5),
            c(row, n, n, 6);
        auto triangle = [&](Index i, Index j) { return in(u, i, j); };
        c.poison_outside(triangle);
        const std::vector<E> c0 = c.data;
        const Expected want =
            rank_update(herm, two, alpha_of<E>(), beta_of<E>(), a.dense(), b.dense(), letter(t), c.dense());
        const E alpha = as<E>(alpha_of<E>()), beta = as<E>(beta_of<E>());
        const CBLAS_LAYOUT l = layout_of(row);
        const CBLAS_UPLO up = U(u);
        E *cc = c.data.data(), *ad = a.data.data(), *bd = b.data.data();
        if constexpr (complex) {
            if (!herm && !two) cblas_zsyrk(l, up, T(t), n, k, &alpha, ad, a.ld, &beta, cc, c.ld);
            if (!herm && two) cblas_zsyr2k(l, up, T(t), n, k, &alpha, ad, a.ld, bd, b.ld, &beta, cc, c.ld);
            if (herm && !two) cblas_zherk(l, up, T(t), n, k, alpha.re, ad, a.ld, beta.re, cc, c.ld);
            if (herm && two) cblas_zher2k(l, up, T(t), n, k, &alpha, ad, a.ld, bd, b.ld, beta.re, cc, c.ld);
        } else if (two) {
            cblas_dsyr2k(l, up, T(t), n, k, alpha, ad, a.ld, bd, b.ld, beta, cc, c.ld);
        } else {
            cblas_dsyrk(l, up, T(t), n, k, alpha, ad, a.ld, beta, cc, c.ld);
        }
        EXPECT_TRUE(near(c.dense(), want, 64, triangle) && c.untouched_except(c0, triangle));
    });
}

INSTANTIATE_TEST_SUITE_P(Layouts, RankUpdates,
                         ::testing::Combine(::testing::Bool(), ::testing::Values(CblasUpper, CblasLower),
                                            ::testing::ValuesIn(kTransposes), ::testing::Bool(),
                                            ::testing::Bool()));

// trmm against the product; trsm by its residual: op(A) X (or X op(A)) within rounding of alpha B.
class TriangularMultiplyAndSolve : public OptionTest<bool, int, int, int, int, bool> {};

TEST_P(TriangularMultiplyAndSolve, EveryOption) {
    const auto [row, s, u, t, d, solve] = GetParam();
    const Index m = 7, n = 6, order = s == CblasLeft ? m : n;
    for_both([&](auto e) {
        using E = decltype(e);
        LayoutMatrix<E> a(row, order, order, 7), b(row, m, n, 8);
        for (Index i = 0; i < order; ++i) a(i, i) = scalar<E>(4.0, 1.0);
        a.poison_outside([&](Index i, Index j) { return in(u, i, j) && !(i == j && d == CblasUnit); });
        const std::vector<E> b0 = b.data;
        const Dense op_a = op(triangle(a.dense(), u == CblasUpper, d == CblasUnit), letter(t)),
                    before = b.dense();
        const E alpha = as<E>(alpha_of<E>());
        ZOR_D_OR_Z(E, (solve ? cblas_dtrsm : cblas_dtrmm), (solve ? cblas_ztrsm : cblas_ztrmm),
                   layout_of(row), S(s), U(u), T(t), D(d), m, n, arg(alpha), a.data.data(), a.ld,
                   b.data.data(), b.ld);
        EXPECT_TRUE(triangular_result(solve, s == CblasLeft, alpha_of<E>(), op_a, before, b.dense(), 64) &&
                    b.untouched_except(b0, Everywhere{}));
    });
}

INSTANTIATE_TEST_SUITE_P(Layouts, TriangularMultiplyAndSolve,
                         ::testing::Combine(::testing::Bool(), ::testing::Values(CblasLeft, CblasRight),
                                            ::testing::Values(CblasUpper, CblasLower),
                                            ::testing::ValuesIn(kTransposes),
                                            ::testing::Values(CblasNonUnit, CblasUnit), ::testing::Bool()));

}  // namespace
}  // namespace zor::test
