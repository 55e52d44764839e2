// The triangular inverses and solves in full and packed storage: residuals for every option over
// orders across the block size, exact zeros on the diagonal, and the argument checks.

#include <gtest/gtest.h>

#include <vector>

#include "lapack/factor_support.hpp"
#include "lapack/triangular/triangular.hpp"
#include "lapack/tuning/tuning.hpp"

namespace zor::test {
namespace {

struct Options {
    char uplo, diag;
};

// A well-conditioned triangle: off-diagonal entries scaled down, a dominant diagonal. The unit
// case keeps a poisoned diagonal, which must not be read.
template <class T>
Matrix<T> random_triangle(Random& random, zint n, Options o) {
    Matrix<T> a(n, n, n + 2);
    const bool upper = o.uplo == 'U';
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) {
            if (i == j) {
                a(i, j) = o.diag == 'U' ? narrow_to<T>({kPoison, kPoison})
                                        : narrow_to<T>(Exact{2, 0} + value(random_element<T>(random)));
            } else if (upper ? i < j : i > j) {
                a(i, j) = narrow_to<T>(value(random_element<T>(random)) * Exact{1.0L / n, 0});
            }
        }
    }
    return a;
}

Wide dense_triangle(const Wide& a, Options o) {
    return triangle(a, o.uplo == 'U', o.diag == 'U');
}

template <class T>
void check_inverses(zint n, Options o) {
    Random random(static_cast<std::uint64_t>(n * 4 + o.uplo + o.diag));
    const Matrix<T> a = random_triangle<T>(random, n, o);
    const Wide t = dense_triangle(widen_matrix(a), o);
    Matrix<T> full = a;
    std::vector<T> ap = pack(a, o.uplo);
    zint info = -1;
    trtri<T>(o.uplo, o.diag, n, full.data(), full.ld, info);
    ASSERT_EQ(info, 0);
    tptri<T>(o.uplo, o.diag, n, ap.data(), info);
    ASSERT_EQ(info, 0);
    EXPECT_LT(inverse_residual(t, dense_triangle(widen_matrix(full), o)), kResidualThreshold)
        << n << o.uplo << o.diag;
    EXPECT_TRUE(padding_untouched(full));
    EXPECT_LT(inverse_residual(t, dense_triangle(unpack(ap, n, o.uplo), o)), kResidualThreshold)
        << n << o.uplo << o.diag;
}

const Options kOptions[] = {{'U', 'N'}, {'U', 'U'}, {'L', 'N'}, {'L', 'U'}};

TEST(TriangularInverse, FullAndPackedForEveryOption) {
    const zint nb = ilaenv(1, "DTRTRI", "UN", 500, -1, -1, -1, 6, 2);
    for (zint n : {zint{1}, zint{2}, zint{13}, nb - 1, nb, nb + 1, 2 * nb + 9}) {
        for (const Options& o : kOptions) {
            check_inverses<double>(n, o);
            check_inverses<zcomplex>(n, o);
        }
    }
}

template <class T>
void check_tptrs(zint n, zint nrhs, Options o, char trans) {
    Random random(static_cast<std::uint64_t>(n + nrhs + trans));
    const Matrix<T> a = random_triangle<T>(random, n, o);
    const std::vector<T> ap = pack(a, o.uplo);
    const Matrix<T> b = random_matrix<T>(random, n, nrhs, 2);
    Matrix<T> x = b;
    zint info = -1;
    tptrs<T>(o.uplo, trans, o.diag, n, nrhs, ap.data(), x.data(), x.ld, info);
    ASSERT_EQ(info, 0);
    EXPECT_LT(solve_residual(dense_triangle(widen_matrix(a), o), trans, x, b), kResidualThreshold)
        << n << nrhs << o.uplo << o.diag << trans;
    EXPECT_TRUE(padding_untouched(x));
}

TEST(PackedTriangularSolve, EveryOptionAndBlockOfRightHandSides) {
    const zint nb = ilaenv(1, "DTPTRS", "N", 100, 100, -1, -1);
    for (zint n : {1, 30, 90}) {
        for (zint nrhs : {zint{1}, nb + 3}) {
            for (const Options& o : kOptions) {
                for (char trans : {'N', 'T', 'C'}) {
                    check_tptrs<double>(n, nrhs, o, trans);
                    check_tptrs<zcomplex>(n, nrhs, o, trans);
                }
            }
        }
    }
}

TEST(TriangularInfo, TheFirstZeroOnANonUnitDiagonalIsReported) {
    for (char uplo : {'U', 'L'}) {
        Random random(4);
        Matrix<double> a = random_triangle<double>(random, 90, {uplo, 'N'});
        a(40, 40) = 0.0;
        a(70, 70) = 0.0;
        std::vector<double> ap = pack(a, uplo);
        const std::vector<double> ap0 = ap;
        zint info = 0;
        trtri<double>(uplo, 'N', 90, a.data(), a.ld, info);
        EXPECT_EQ(info, 41);
        tptri<double>(uplo, 'N', 90, ap.data(), info);
        EXPECT_EQ(info, 41);
        EXPECT_EQ(ap, ap0);  // nothing inverted
        std::vector<double> b(90, 1.0);
        tptrs<double>(uplo, 'N', 'N', 90, 1, ap.data(), b.data(), 90, info);
        EXPECT_EQ(info, 41);
        // With a unit diagonal the zeros are not read.
        tptri<double>(uplo, 'U', 90, ap.data(), info);
        EXPECT_EQ(info, 0);
    }
}

double g_a[16];
zcomplex g_z[16];

const ArgumentCase kTriangularArgumentCases[] = {
    {"DTRTRI", -1, [] { return info_of(trtri<double>, 'X', 'N', 2, g_a, 2); }},
    {"DTRTRI", -2, [] { return info_of(trtri<double>, 'U', 'X', 2, g_a, 2); }},
    {"DTRTRI", -3, [] { return info_of(trtri<double>, 'L', 'U', -1, g_a, 2); }},
    {"ZTRTRI", -5, [] { return info_of(trtri<zcomplex>, 'L', 'N', 3, g_z, 2); }},
    {"DTPTRI", -1, [] { return info_of(tptri<double>, 'X', 'N', 2, g_a); }},
    {"DTPTRI", -2, [] { return info_of(tptri<double>, 'U', 'T', 2, g_a); }},
    {"ZTPTRI", -3, [] { return info_of(tptri<zcomplex>, 'u', 'n', -3, g_z); }},
    {"DTPTRS", -1, [] { return info_of(tptrs<double>, 'N', 'N', 'N', 2, 1, g_a, g_a, 2); }},
    {"DTPTRS", -2, [] { return info_of(tptrs<double>, 'U', 'U', 'N', 2, 1, g_a, g_a, 2); }},
    {"DTPTRS", -3, [] { return info_of(tptrs<double>, 'U', 'N', 'T', 2, 1, g_a, g_a, 2); }},
    {"DTPTRS", -4, [] { return info_of(tptrs<double>, 'L', 'T', 'U', -1, 1, g_a, g_a, 2); }},
    {"DTPTRS", -5, [] { return info_of(tptrs<double>, 'L', 'C', 'U', 2, -1, g_a, g_a, 2); }},
    {"ZTPTRS", -8, [] { return info_of(tptrs<zcomplex>, 'L', 'C', 'U', 2, 1, g_z, g_z, 1); }},
};

INSTANTIATE_TEST_SUITE_P(TriangularArguments, ArgumentChecks, ::testing::ValuesIn(kTriangularArgumentCases));

}  // namespace
}  // namespace zor::test
