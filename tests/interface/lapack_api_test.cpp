// The Fortran-style LAPACK exports, called through the shared library.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

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
                                           Dlapy2Case{0.0, 7.5, 7.5},
                                           Dlapy2Case{1.0, 1.0, 1.4142135623730951},
                                           Dlapy2Case{1e300, 1e300, 1.4142135623730951e300},
                                           Dlapy2Case{1e-300, 1e-300, 1.4142135623730951e-300},
                                           Dlapy2Case{kMax, 1.0, kMax}, Dlapy2Case{kTiny, kTiny, kTiny},
                                           Dlapy2Case{6e307, 8e307, 1e308}, Dlapy2Case{kInf, 1.0, kInf},
                                           Dlapy2Case{kInf, kInf, kInf}, Dlapy2Case{kMax, kMax, kInf}));

TEST(Dlapy2, NaNArgumentsAreReturned) {
    const double nan_x = std::numeric_limits<double>::quiet_NaN();
    const double nan_y = -std::numeric_limits<double>::quiet_NaN();
    const double one = 1.0;
    const double inf = kInf;
    EXPECT_TRUE(std::isnan(dlapy2(&nan_x, &one)));
    EXPECT_TRUE(std::isnan(dlapy2(&one, &nan_y)));
    EXPECT_TRUE(std::isnan(dlapy2(&inf, &nan_y)));
    EXPECT_TRUE(std::isnan(dlapy2(&nan_x, &inf)));
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
