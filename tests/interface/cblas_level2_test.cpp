// The level-2 CBLAS functions as a program sees them: every argument check with its parameter
// number and the routine named in the message, in the published order (a bad letter that is
// reported and passed on draws the Fortran-style routine's own report as well), nothing computed
// after a failure; and every function's row-major and column-major forms against the reference of
// support/level3_reference.hpp, vectors as one-column matrices.

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "support/cblas.hpp"

namespace zor::test {
namespace {

// ---- argument checks --------------------------------------------------------------------------------

// Arguments of any level-2 function, valid by default (column-major, 2 by 2, unit strides).
struct Args {
    int layout = CblasColMajor, trans = CblasNoTrans, uplo = CblasUpper, diag = CblasNonUnit;
    zor_int m = 2, n = 2, lda = 2, incx = 1, incy = 1;
};

// Operand storage large enough for any of the calls (the complex calls read it as complex elements).
struct Operands {
    double a[8] = {1, 2, 3, 4, 5, 6, 7, 8}, x[8] = {1, -1, 2, -2, 3, -3, 4, -4},
           y[8] = {5, 6, 7, 8, 9, 10, 11, 12};
    bool operator==(const Operands&) const = default;
};

using Function = Checked<Args, Operands>;

const double kOne[2] = {1.0, 0.0};

// The valid call with the smallest leading dimensions allowed, in both layouts, and a bad layout,
// before the cases of each shape.
void check(const std::vector<Function>& functions, std::vector<BadCall<Args>> cases) {
    cases.insert(cases.begin(), {{[](Args&) {}, {}},
                                 {[](Args& a) { a.layout = CblasRowMajor; }, {}},
                                 {[](Args& a) { a.layout = 100; }, {1}}});
    check_table(functions, cases);
}

TEST(CblasLevel2Checks, Gemv) {
    check({ZOR_CHECKED(cblas_dgemv, "DGEMV ", L(a.layout), T(a.trans), a.m, a.n, 1.0, o.a, a.lda, o.x, a.incx,
                       1.0, o.y, a.incy),
           ZOR_CHECKED(cblas_zgemv, "ZGEMV ", L(a.layout), T(a.trans), a.m, a.n, kOne, o.a, a.lda, o.x,
                       a.incx, kOne, o.y, a.incy)},
          {
              {[](Args& a) { a.trans = 110; }, {2}, 1},
              {[](Args& a) { a.trans = 0, a.m = -1; }, {2, 3}},
              {[](Args& a) { a.n = -1; }, {4}},
              {[](Args& a) { a.lda = 1; }, {7}},
              {[](Args& a) { a.layout = CblasRowMajor, a.m = 1, a.lda = 1; }, {7}},  // row-major: lda >= N
              {[](Args& a) { a.incx = 0, a.incy = 0; }, {9}},
              {[](Args& a) { a.incy = 0; }, {12}},
              {[](Args& a) { a.layout = 0, a.trans = 0; }, {1}},
          });
}

TEST(CblasLevel2Checks, Ger) {
    check(
        {ZOR_CHECKED(cblas_dger, "DGER  ", L(a.layout), a.m, a.n, 1.0, o.x, a.incx, o.y, a.incy, o.a, a.lda),
         ZOR_CHECKED(cblas_zgeru, "ZGERU ", L(a.layout), a.m, a.n, kOne, o.x, a.incx, o.y, a.incy, o.a,
                     a.lda),
         ZOR_CHECKED(cblas_zgerc, "ZGERC ", L(a.layout), a.m, a.n, kOne, o.x, a.incx, o.y, a.incy, o.a,
                     a.lda)},
        {
            {[](Args& a) { a.layout = 0, a.m = -1; }, {1}},
            {[](Args& a) { a.m = -1; }, {2}},
            {[](Args& a) { a.n = -1; }, {3}},
            {[](Args& a) { a.incx = 0; }, {6}},
            {[](Args& a) { a.incy = 0; }, {8}},
            {[](Args& a) { a.lda = 1, a.incx = 0; }, {10}},
        });
}

TEST(CblasLevel2Checks, SymmetricAndHermitian) {
    check({ZOR_CHECKED(cblas_dsymv, "DSYMV ", L(a.layout), U(a.uplo), a.n, 1.0, o.a, a.lda, o.x, a.incx, 1.0,
                       o.y, a.incy),
           ZOR_CHECKED(cblas_zhemv, "ZHEMV ", L(a.layout), U(a.uplo), a.n, kOne, o.a, a.lda, o.x, a.incx,
                       kOne, o.y, a.incy)},
          {
              {[](Args& a) { a.uplo = 120; }, {2}, 1},
              {[](Args& a) { a.uplo = 0, a.lda = 0; }, {2, 6}},
              {[](Args& a) { a.n = -1; }, {3}},
              {[](Args& a) { a.lda = 0, a.incx = 0; }, {6}},
              {[](Args& a) { a.incx = 0; }, {8}},
              {[](Args& a) { a.incy = 0; }, {11}},
          });
    check({ZOR_CHECKED(cblas_dsyr, "DSYR  ", L(a.layout), U(a.uplo), a.n, 1.0, o.x, a.incx, o.a, a.lda),
           ZOR_CHECKED(cblas_zher, "ZHER  ", L(a.layout), U(a.uplo), a.n, 1.0, o.x, a.incx, o.a, a.lda)},
          {
              {[](Args& a) { a.uplo = 120; }, {2}, 1},
              {[](Args& a) { a.n = -1; }, {3}},
              {[](Args& a) { a.incx = 0; }, {6}},
              {[](Args& a) { a.lda = 1, a.incx = 0; }, {8}},
          });
    check({ZOR_CHECKED(cblas_dsyr2, "DSYR2 ", L(a.layout), U(a.uplo), a.n, 1.0, o.x, a.incx, o.y, a.incy, o.a,
                       a.lda),
           ZOR_CHECKED(cblas_zher2, "ZHER2 ", L(a.layout), U(a.uplo), a.n, kOne, o.x, a.incx, o.y, a.incy,
                       o.a, a.lda)},
          {
              {[](Args& a) { a.uplo = 120; }, {2}, 1},
              {[](Args& a) { a.n = -1; }, {3}},
              {[](Args& a) { a.incx = 0; }, {6}},
              {[](Args& a) { a.incy = 0; }, {8}},
              {[](Args& a) { a.lda = 1, a.incy = 0; }, {10}},
          });
}

// trmv reports a bad letter and goes on (the Fortran-style check then rejects it); trsv stops.
TEST(CblasLevel2Checks, Triangular) {
    check({ZOR_CHECKED(cblas_dtrmv, "DTRMV ", L(a.layout), U(a.uplo), T(a.trans), D(a.diag), a.n, o.a, a.lda,
                       o.x, a.incx),
           ZOR_CHECKED(cblas_ztrmv, "ZTRMV ", L(a.layout), U(a.uplo), T(a.trans), D(a.diag), a.n, o.a, a.lda,
                       o.x, a.incx)},
          {
              {[](Args& a) { a.uplo = 120; }, {2}, 1},
              {[](Args& a) { a.trans = 114; }, {3}, 2},
              {[](Args& a) { a.diag = 133; }, {4}, 3},
              {[](Args& a) { a.uplo = 0, a.diag = 0; }, {2, 4}, 1},
              {[](Args& a) { a.trans = 0, a.n = -1; }, {3, 5}},
              {[](Args& a) { a.lda = 1, a.incx = 0; }, {7}},
              {[](Args& a) { a.incx = 0; }, {9}},
          });
    check({ZOR_CHECKED(cblas_dtrsv, "DTRSV ", L(a.layout), U(a.uplo), T(a.trans), D(a.diag), a.n, o.a, a.lda,
                       o.x, a.incx),
           ZOR_CHECKED(cblas_ztrsv, "ZTRSV ", L(a.layout), U(a.uplo), T(a.trans), D(a.diag), a.n, o.a, a.lda,
                       o.x, a.incx)},
          {
              {[](Args& a) { a.uplo = 120; }, {2}},
              {[](Args& a) { a.trans = 114; }, {3}},
              {[](Args& a) { a.uplo = 0, a.diag = 0; }, {2}},
              {[](Args& a) { a.diag = 133; }, {4}},
              {[](Args& a) { a.n = -1; }, {5}},
              {[](Args& a) { a.lda = 1; }, {7}},
              {[](Args& a) { a.incx = 0; }, {9}},
          });
}

// ---- both layouts against the reference -------------------------------------------------------------

TEST(CblasLevel2Results, GemvAndGer) {
    const Index m = 3, n = 4;
    for (const bool row : kLayouts) {
        for_both([&](auto e) {
            using E = decltype(e);
            const Value al = alpha_of<E>(), be = beta_of<E>();
            const E alpha = as<E>(al), beta = as<E>(be);
            for (const int t : kTransposes) {
                const bool plain = t == CblasNoTrans;
                LayoutMatrix<E> a(row, m, n, 1);
                StridedVector<E> x(plain ? n : m, -2, 2), y(plain ? m : n, 1, 3);
                const Dense yd = y.dense();
                const Expected want = combine(al, op(a.dense(), letter(t)), x.dense(), be, &yd);
                ZOR_D_OR_Z(E, cblas_dgemv, cblas_zgemv, layout_of(row), T(t), m, n, arg(alpha), a.data.data(),
                           a.ld, x.data.data(), x.inc, arg(beta), y.data.data(), y.inc);
                EXPECT_TRUE(near(y.dense(), want, 64, Everywhere{})) << "gemv " << row << " " << t;
            }
            for (const bool conjugated : {false, true}) {
                LayoutMatrix<E> a(row, m, n, 7);
                StridedVector<E> x(m, 1, 8), y(n, -3, 9);
                const std::vector<E> a0 = a.data;
                const Dense ad = a.dense();
                const Expected want =
                    combine(al, x.dense(), op(y.dense(), conjugated ? 'C' : 'T'), {1, 0}, &ad);
                ZOR_D_OR_Z(E, cblas_dger, (conjugated ? cblas_zgerc : cblas_zgeru), layout_of(row), m, n,
                           arg(alpha), x.data.data(), x.inc, y.data.data(), y.inc, a.data.data(), a.ld);
                EXPECT_TRUE(near(a.dense(), want, 64, Everywhere{}) && a.untouched_except(a0, Everywhere{}))
                    << "ger " << row << " " << conjugated;
            }
        });
    }
}

// symv and hemv; syr, her, syr2 and her2 change only the uplo triangle, and a Hermitian diagonal
// comes back real.
TEST(CblasLevel2Results, SymmetricAndHermitian) {
    const Index n = 4;
    const double real_alpha = 0.75;
    for (const bool row : kLayouts) {
        for (const int uplo : {CblasUpper, CblasLower}) {
            for_both([&](auto e) {
                using E = decltype(e);
                constexpr bool herm = kComplex<E>;
                const Value al = alpha_of<E>(), be = beta_of<E>();
                const E alpha = as<E>(al), beta = as<E>(be);
                const auto u = U(uplo);
                auto triangle = [&](Index i, Index j) { return uplo == CblasUpper ? i <= j : i >= j; };
                {
                    LayoutMatrix<E> a(row, n, n, 13);
                    StridedVector<E> x(n, 2, 14), y(n, -1, 15);
                    const Dense yd = y.dense();
                    const Expected want =
                        combine(al, symmetric(a.dense(), uplo == CblasUpper, herm), x.dense(), be, &yd);
                    ZOR_D_OR_Z(E, cblas_dsymv, cblas_zhemv, layout_of(row), u, n, arg(alpha), a.data.data(),
                               a.ld, x.data.data(), x.inc, arg(beta), y.data.data(), y.inc);
                    EXPECT_TRUE(near(y.dense(), want, 64, Everywhere{})) << "symv " << row << uplo;
                }
                for (const bool two : {false, true}) {
                    LayoutMatrix<E> a(row, n, n, 16);
                    StridedVector<E> x(n, -2, 17), y(n, 1, 18);
                    const std::vector<E> a0 = a.data;
                    Dense ad = a.dense();
                    for (Index i = 0; herm && i < n; ++i) ad(i, i).im = 0;
                    const Dense xd = x.dense(), yd = y.dense();
                    Expected want =
                        combine(two ? al : Value{real_alpha, 0}, xd, op(two ? yd : xd, 'C'), {1, 0}, &ad);
                    if (two) add(want, combine(conj(al), yd, op(xd, 'C'), {}, nullptr));
                    if (two) {
                        ZOR_D_OR_Z(E, cblas_dsyr2, cblas_zher2, layout_of(row), u, n, arg(alpha),
                                   x.data.data(), x.inc, y.data.data(), y.inc, a.data.data(), a.ld);
                    } else {
                        ZOR_D_OR_Z(E, cblas_dsyr, cblas_zher, layout_of(row), u, n, real_alpha, x.data.data(),
                                   x.inc, a.data.data(), a.ld);
                    }
                    bool real_diagonal = true;
                    for (Index i = 0; herm && i < n; ++i)
                        real_diagonal = real_diagonal && value(a(i, i)).im == 0;
                    EXPECT_TRUE(near(a.dense(), want, 64, triangle) && a.untouched_except(a0, triangle) &&
                                real_diagonal)
                        << (two ? "syr2 " : "syr ") << row << uplo;
                }
            });
        }
    }
}

// The row-major Hermitian paths conjugate y in place at stride |incY|: with the most negative
// increment that stride is taken in 64 bits (the asan preset's UBSan stops a 32-bit negation).
TEST(CblasLevel2Results, MostNegativeIncrement) {
    const zor_int most_negative = std::numeric_limits<zor_int>::min();
    const double a[2] = {2.0, 5.0}, x[2] = {3.0, -1.0}, alpha[2] = {1.0, 0.0}, beta[2] = {0.0, 0.0};
    double y[2] = {7.0, 7.0};
    cblas_zhemv(CblasRowMajor, CblasUpper, 1, alpha, a, 1, x, most_negative, beta, y, most_negative);
    EXPECT_EQ(y[0], 6.0);  // the diagonal's imaginary part is not read: y = 2 x
    EXPECT_EQ(y[1], -2.0);
}

// The product, then solving op(A) z = x by its residual.
class TriangularProductAndSolve : public OptionTest<bool, int, int, int> {};

TEST_P(TriangularProductAndSolve, EveryOption) {
    const auto [row, uplo, t, diag] = GetParam();
    const Index n = 5;
    for_both([&](auto e) {
        using E = decltype(e);
        LayoutMatrix<E> a(row, n, n, 21);
        for (Index i = 0; i < n; ++i) a(i, i) = scalar<E>(4.0, 1.0);  // well conditioned
        const Dense t_op = op(triangle(a.dense(), uplo == CblasUpper, diag == CblasUnit), letter(t));
        StridedVector<E> x(n, -2, 22);
        const Dense before = x.dense();
        const auto run = [&](auto real, auto complex) {
            ZOR_D_OR_Z(E, real, complex, layout_of(row), U(uplo), T(t), D(diag), n, a.data.data(), a.ld,
                       x.data.data(), x.inc);
        };
        run(cblas_dtrmv, cblas_ztrmv);
        EXPECT_TRUE(near(x.dense(), combine({1, 0}, t_op, before, {}, nullptr), 64, Everywhere{})) << "trmv";
        const Dense product = x.dense();
        run(cblas_dtrsv, cblas_ztrsv);
        EXPECT_TRUE(small(combine({1, 0}, t_op, x.dense(), {-1, 0}, &product), 64)) << "trsv";
    });
}

INSTANTIATE_TEST_SUITE_P(Layouts, TriangularProductAndSolve,
                         ::testing::Combine(::testing::Bool(), ::testing::Values(CblasUpper, CblasLower),
                                            ::testing::ValuesIn(kTransposes),
                                            ::testing::Values(CblasNonUnit, CblasUnit)));

}  // namespace
}  // namespace zor::test
