// The Fortran-style LAPACK exports, called through the shared library.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "zor/zor.h"

#ifndef _WIN32
// The Fortran linkage name of ELF platforms: the same function.
extern "C" double dlapy2_(const double* x, const double* y);
extern "C" void zdrot_(const zor_int* n, zor_complex_double* x, const zor_int* incx, zor_complex_double* y,
                       const zor_int* incy, const double* c, const double* s);
#endif

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();

struct Dlapy2Case {
    double x, y, expected;
};

class Dlapy2 : public ::testing::TestWithParam<Dlapy2Case> {};

// Within two units in the last place of the exact value, in every sign and order of the
// arguments; no overflow or underflow where the result is representable.
TEST_P(Dlapy2, ComputesTheHypotenuseWithoutSpuriousOverflow) {
    const Dlapy2Case& c = GetParam();
    for (const auto& [x, y] :
         {std::pair{c.x, c.y}, std::pair{c.y, c.x}, std::pair{-c.x, c.y}, std::pair{c.x, -c.y}}) {
        const double result = dlapy2(&x, &y);
        if (std::isinf(c.expected) || c.expected == 0.0) {
            EXPECT_EQ(result, c.expected) << x << ", " << y;
        } else {
            EXPECT_NEAR(result, c.expected, 2 * (c.expected - std::nextafter(c.expected, 0.0)))
                << x << ", " << y;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Values, Dlapy2,
                         ::testing::Values(Dlapy2Case{3.0, 4.0, 5.0}, Dlapy2Case{0.0, 0.0, 0.0},
                                           Dlapy2Case{1e300, 1e300, 1.4142135623730951e300},
                                           Dlapy2Case{1e-300, 1e-300, 1.4142135623730951e-300},
                                           Dlapy2Case{kTiny, kTiny, kTiny}, Dlapy2Case{6e307, 8e307, 1e308},
                                           Dlapy2Case{kInf, 1.0, kInf}, Dlapy2Case{kMax, kMax, kInf}));

TEST(Dlapy2, NaNArgumentsAreReturned) {
    const double nan_x = std::numeric_limits<double>::quiet_NaN();
    const double nan_y = -std::numeric_limits<double>::quiet_NaN();
    const double one = 1.0;
    const double inf = kInf;
    EXPECT_TRUE(std::isnan(dlapy2(&nan_x, &one)));
    EXPECT_TRUE(std::isnan(dlapy2(&inf, &nan_y)));
    // Both NaN: y is returned (its sign bit tells).
    EXPECT_TRUE(std::signbit(dlapy2(&nan_x, &nan_y)));
    EXPECT_FALSE(std::signbit(dlapy2(&nan_y, &nan_x)));
}

#ifndef _WIN32
TEST(Dlapy2, FortranLinkageNameIsTheSameRoutine) {
    const double x = 5.0;
    const double y = 12.0;
    EXPECT_EQ(dlapy2_(&x, &y), 13.0);
}
#endif

// The rotation exports forward to their kernels: zdrot with its increments widened, zrotg_ as it
// is.
TEST(ComplexRotations, ZdrotAndZrotgReachTheirKernels) {
    zor_complex_double x[3] = {{1, 2}, {0, 0}, {3, -1}}, y[2] = {{2, 0}, {-1, 1}};
    const zor_int n = 2, two = 2, minus_one = -1;
    const double c = 0.0, s = 1.0;
    zdrot(&n, x, &two, y, &minus_one, &c, &s);  // x(1), x(3) with y backwards: (x, y) := (y, -x)
    EXPECT_TRUE(x[0].real == -1 && x[0].imag == 1 && x[2].real == 2 && x[2].imag == 0);
    EXPECT_TRUE(y[1].real == -1 && y[1].imag == -2 && y[0].real == -3 && y[0].imag == 1);
#ifndef _WIN32
    zdrot_(&n, x, &two, y, &minus_one, &c, &s);
    EXPECT_TRUE(x[0].real == -1 && x[0].imag == -2);  // twice: (x, y) := (-x, -y)
#endif
    zor_complex_double ca = {3, 0}, sv = {9, 9};
    const zor_complex_double cb = {4, 0};
    double cv = 9;
    zrotg_(&ca, &cb, &cv, &sv);
    EXPECT_DOUBLE_EQ(cv, 0.6);
    EXPECT_DOUBLE_EQ(sv.real, 0.8);
    EXPECT_DOUBLE_EQ(ca.real, 5.0);
}

}  // namespace

// ---- the LU, Cholesky and triangular exports ----------------------------------------------------

#ifndef _WIN32
extern "C" void dgesv_(const zor_int* n, const zor_int* nrhs, double* a, const zor_int* lda, zor_int* ipiv,
                       double* b, const zor_int* ldb, zor_int* info);
#endif

namespace {

// [[4, 3], [6, 3]] x = [10, 12] has the solution [1, 2]; the pivots come back as 32-bit integers.
TEST(LuExports, SolveSmallSystemsExactly) {
    const zor_int n = 2, one = 1, two = 2;
    double a[4] = {4, 6, 3, 3}, b[2] = {10, 12};
    zor_int ipiv[3] = {-9, -9, -9}, info = 99;
    dgesv(&n, &one, a, &two, ipiv, b, &two, &info);
    EXPECT_TRUE(info == 0 && ipiv[0] == 2 && ipiv[1] == 2 && ipiv[2] == -9);
    EXPECT_TRUE(b[0] == 1.0 && b[1] == 2.0);
    zor_complex_double z[4] = {{4, 0}, {6, 0}, {3, 0}, {3, 0}}, zb[2] = {{10, 1}, {12, 0}};
    zgesv(&n, &one, z, &two, ipiv, zb, &two, &info);
    EXPECT_EQ(info, 0);
    EXPECT_NEAR(zb[0].real, 1.0, 1e-15);
    EXPECT_NEAR(zb[1].imag, 1.0, 1e-15);
#ifndef _WIN32
    double c[4] = {4, 6, 3, 3}, d[2] = {10, 12};
    dgesv_(&n, &one, c, &two, ipiv, d, &two, &info);
    EXPECT_DOUBLE_EQ(d[1], 2.0);
#endif
}

TEST(LuExports, FactorInvertAndBandAndTridiagonalSolves) {
    const zor_int zero = 0, two = 2, three = 3, one = 1, minus_one = -1;
    zor_int ipiv[3] = {7, 7, 7}, info = 5;
    double a[4] = {4, 6, 3, 3};
    dgetrf(&zero, &two, a, &one, ipiv, &info);
    EXPECT_EQ(info, 0);
    EXPECT_EQ(ipiv[0], 7);  // no pivots written
    dgetrf(&two, &two, a, &two, ipiv, &info);
    // The workspace query reads neither ipiv nor a.
    double work[8];
    dgetri(&two, a, &two, nullptr, work, &minus_one, &info);
    EXPECT_EQ(info, 0);
    EXPECT_GE(work[0], 2.0);
    const zor_int lwork = 8;
    dgetri(&two, a, &two, ipiv, work, &lwork, &info);
    EXPECT_EQ(info, 0);
    EXPECT_NEAR(a[0], -0.5, 1e-15);  // inv([[4, 3], [6, 3]]) = [[-1/2, 1/2], [1, -2/3]]
    EXPECT_NEAR(a[3], -2.0 / 3.0, 1e-15);
    // The same system as a band matrix, kl = ku = 1: ldab = 4.
    const zor_int ldab = 4;
    double ab[8] = {0, 0, 4, 6, 0, 3, 3, 0}, b[2] = {10, 12};
    dgbsv(&two, &one, &one, &one, ab, &ldab, ipiv, b, &two, &info);
    EXPECT_EQ(info, 0);
    EXPECT_DOUBLE_EQ(b[1], 2.0);
    // Tridiagonal [[2, 1, 0], [1, 2, 1], [0, 1, 2]] x = [4, 8, 8]: x = [1, 2, 3].
    double dl[2] = {1, 1}, d[3] = {2, 2, 2}, du[2] = {1, 1}, du2[1], x[3] = {4, 8, 8};
    dgttrf(&three, dl, d, du, du2, ipiv, &info);
    EXPECT_EQ(info, 0);
    dgttrs("N", &three, &one, dl, d, du, du2, ipiv, x, &three, &info, 1);
    EXPECT_EQ(info, 0);
    EXPECT_NEAR(x[2], 3.0, 1e-15);
    dgttrs("?", &three, &one, dl, d, du, du2, ipiv, x, &three, &info, 1);
    EXPECT_EQ(info, -1);
}

TEST(CholeskyExports, FactorSolveAndInvertInFullAndPackedStorage) {
    const zor_int two = 2, one = 1;
    zor_int info = 9;
    // [[4, 2], [2, 5]] = Uᵀ U with U = [[2, 1], [0, 2]]; [[4, 2], [2, 5]] x = [8, 12]: x = [1, 2].
    double a[4] = {4, 2, 2, 5}, b[2] = {8, 12};
    dposv("U", &two, &one, a, &two, b, &two, &info, 1);
    EXPECT_EQ(info, 0);
    EXPECT_DOUBLE_EQ(a[3], 2.0);
    EXPECT_DOUBLE_EQ(b[1], 2.0);
    dpotri("U", &two, a, &two, &info, 1);
    EXPECT_NEAR(a[0], 5.0 / 16, 1e-15);
    double f[4] = {4, 2, 2, 5};
    dpotrf("L", &two, f, &two, &info, 1);
    EXPECT_DOUBLE_EQ(f[1], 1.0);
    double ap[3] = {4, 2, 5}, pb[2] = {8, 12};
    dpptrf("L", &two, ap, &info, 1);
    dpptrs("L", &two, &one, ap, pb, &two, &info, 1);
    EXPECT_DOUBLE_EQ(pb[0], 1.0);
    dpptri("L", &two, ap, &info, 1);
    EXPECT_NEAR(ap[2], 4.0 / 16, 1e-15);
    zor_complex_double z[4] = {{4, 0}, {2, 1}, {2, -1}, {5, 0}};
    zpotrf("U", &two, z, &two, &info, 1);
    EXPECT_EQ(info, 0);
    EXPECT_DOUBLE_EQ(z[2].imag, -0.5);
    // Not positive definite: info 2 and the failed value in place.
    double indefinite[4] = {1, 2, 2, 1};
    dpotrf("U", &two, indefinite, &two, &info, 1);
    EXPECT_EQ(info, 2);
    EXPECT_DOUBLE_EQ(indefinite[3], -3.0);
}

TEST(TriangularExports, InvertAndSolve) {
    const zor_int two = 2, one = 1;
    zor_int info = 9;
    double t[4] = {2, 0, 1, 4};  // [[2, 1], [0, 4]]
    dtrtri("U", "N", &two, t, &two, &info, 1, 1);
    EXPECT_EQ(info, 0);
    EXPECT_DOUBLE_EQ(t[2], -0.125);
    double tp[3] = {2, 1, 4}, b[2] = {4, 8};
    dtptrs("U", "N", "N", &two, &one, tp, b, &two, &info, 1, 1, 1);
    EXPECT_DOUBLE_EQ(b[0], 1.0);
    dtptri("U", "N", &two, tp, &info, 1, 1);
    EXPECT_DOUBLE_EQ(tp[1], -0.125);
    zor_complex_double z[3] = {{0, 0}, {1, 0}, {4, 0}};
    ztptri("U", "N", &two, z, &info, 1, 1);
    EXPECT_EQ(info, 1);
}

TEST(LapackExports, ABadArgumentIsPrintedWithTheBlankPaddedName) {
    ::testing::internal::CaptureStdout();
    const zor_int n = -1, one = 1;
    zor_int info = 0;
    dgesv(&n, &one, nullptr, &one, nullptr, nullptr, &one, &info);
    const std::string printed = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(info, -1);
    EXPECT_EQ(printed, "\nZOR ERROR: Parameter 1 was incorrect on entry to DGESV \n");
}

}  // namespace

// Huge orders with a bad leading dimension and arrays sized for a small call: the argument error
// must be reported before any array of the caller is read or written and before anything is sized
// from the orders (reading min(m, n) pivots here would fault; allocating them could fail first).
TEST(LapackExports, AnArgumentErrorTouchesNoArrayWhateverTheOrder) {
    const zor_int huge = 1000000, one = 1, zero = 0, bad = 1, lwork = 16;
    zor_int ipiv[16];
    for (zor_int& p : ipiv) p = -7;
    double a[16] = {}, b[16] = {};
    zor_complex_double z[16] = {};
    const auto info_of = [](auto call) {
        ::testing::internal::CaptureStdout();
        zor_int info = 0;
        call(&info);
        const std::string printed = ::testing::internal::GetCapturedStdout();
        return std::pair{info, printed};
    };
    const auto dgetrf_result = info_of([&](zor_int* info) { dgetrf(&huge, &huge, a, &bad, ipiv, info); });
    EXPECT_EQ(dgetrf_result.first, -4);
    EXPECT_EQ(dgetrf_result.second, "\nZOR ERROR: Parameter 4 was incorrect on entry to DGETRF\n");
    EXPECT_EQ(info_of([&](zor_int* info) { zgetrf(&huge, &huge, z, &bad, ipiv, info); }).first, -4);
    EXPECT_EQ(info_of([&](zor_int* info) { dgesv(&huge, &one, a, &bad, ipiv, b, &huge, info); }).first, -4);
    EXPECT_EQ(info_of([&](zor_int* info) { zgesv(&huge, &one, z, &huge, ipiv, z, &bad, info); }).first, -7);
    EXPECT_EQ(info_of([&](zor_int* info) { dgetri(&huge, a, &bad, ipiv, b, &lwork, info); }).first, -3);
    EXPECT_EQ(info_of([&](zor_int* info) { zgetri(&huge, z, &huge, ipiv, z, &lwork, info); }).first, -6);
    EXPECT_EQ(info_of([&](zor_int* info) { dgbsv(&huge, &one, &one, &one, a, &bad, ipiv, b, &huge, info); }).first,
              -6);
    EXPECT_EQ(info_of([&](zor_int* info) { zgbsv(&huge, &one, &one, &one, z, &huge, ipiv, z, &bad, info); }).first,
              -9);
    EXPECT_EQ(info_of([&](zor_int* info) { dgttrs("N", &huge, &one, a, a, a, a, ipiv, b, &bad, info, 1); }).first,
              -10);
    EXPECT_EQ(info_of([&](zor_int* info) { dgttrs("X", &huge, &zero, a, a, a, a, ipiv, b, &bad, info, 1); }).first,
              -1);
    for (const zor_int p : ipiv) EXPECT_EQ(p, -7);
}
