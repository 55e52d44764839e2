// The level-1 CBLAS functions as a program sees them: called through the exported names of the
// shared library. Small integer-valued data, so that every variant's result is exact.

#include <gtest/gtest.h>

#include <limits>

#include "zor/zor.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(CblasLevel1, RealVectorFunctionsComputeThroughTheLibrary) {
    const double x[5] = {1, -2, 3, -4, 5};
    double y[5] = {2, 1, 0, -1, 3};
    EXPECT_EQ(cblas_ddot(5, x, 1, y, 1), 2 - 2 + 0 + 4 + 15);
    EXPECT_EQ(cblas_ddot(3, x, 2, y, -2), 1 * 3 + 3 * 0 + 5 * 2);  // x(1,3,5) with y backwards
    EXPECT_EQ(cblas_dasum(5, x, 1), 15);
    EXPECT_EQ(cblas_dnrm2(2, x + 2, 1), 5);
    EXPECT_EQ(cblas_dnrm2(2, x + 2, -1), 5);

    cblas_daxpy(5, 2.0, x, 1, y, 1);
    const double after_axpy[5] = {4, -3, 6, -9, 13};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(y[i], after_axpy[i]);
    cblas_dscal(3, -1.0, y, 2);
    EXPECT_TRUE(y[0] == -4 && y[1] == -3 && y[2] == -6 && y[4] == -13);
    cblas_dcopy(2, x, 1, y, -1);  // y(2) := x(1), y(1) := x(2)
    EXPECT_TRUE(y[0] == -2 && y[1] == 1);
    double u[2] = {1, 2}, v[2] = {3, 4};
    cblas_dswap(2, u, 1, v, 1);
    EXPECT_TRUE(u[0] == 3 && u[1] == 4 && v[0] == 1 && v[1] == 2);
    cblas_drot(2, u, 1, v, 1, 0.0, 1.0);  // (x, y) := (y, -x)
    EXPECT_TRUE(u[0] == 1 && u[1] == 2 && v[0] == -3 && v[1] == -4);
    const double param[5] = {-1.0, 2.0, 0.0, 0.0, 3.0};  // H = diag(2, 3)
    cblas_drotm(2, u, 1, v, 1, param);
    EXPECT_TRUE(u[0] == 2 && u[1] == 4 && v[0] == -9 && v[1] == -12);
}

TEST(CblasLevel1, IndexFunctionsAreZeroBasedAndZeroWhenThereIsNothingToSearch) {
    const double x[4] = {-7, 2, 7, 1};
    EXPECT_EQ(cblas_idamax(4, x, 1), 0u);  // the first of a tie
    EXPECT_EQ(cblas_idamin(4, x, 1), 3u);
    EXPECT_EQ(cblas_idamax(2, x + 2, 1), 0u);
    EXPECT_EQ(cblas_idamax(2, x + 1, 1), 1u);  // the largest last: N - 1
    EXPECT_EQ(cblas_idamax(2, x, 2), 0u);
    for (const zor_int n : {0, -1}) EXPECT_EQ(cblas_idamax(n, x, 1), 0u);
    for (const zor_int inc : {0, -1}) {
        EXPECT_EQ(cblas_idamax(4, x, inc), 0u);
        EXPECT_EQ(cblas_izamin(2, x, inc), 0u);
    }
    const double z[6] = {1, 1, -3, 0, 0, 2};  // measures 2, 3, 2
    EXPECT_EQ(cblas_izamax(3, z, 1), 1u);
    EXPECT_EQ(cblas_izamin(3, z, 1), 0u);
}

TEST(CblasLevel1, ComplexFunctionsComputeThroughTheLibrary) {
    const zor_complex_double x[2] = {{1, 2}, {3, -1}};
    zor_complex_double y[2] = {{2, 0}, {-1, 1}};
    zor_complex_double dot{kNaN, kNaN};
    cblas_zdotu_sub(2, x, 1, y, 1, &dot);  // (2 + 4i) + (-3 + 3i + i + 1)
    EXPECT_TRUE(dot.real == 0 && dot.imag == 8);
    cblas_zdotc_sub(2, x, 1, y, 1, &dot);  // (2 - 4i) + (-3 + 3i - i - 1)
    EXPECT_TRUE(dot.real == -2 && dot.imag == -2);
    cblas_zdotc_sub(0, x, 1, y, 1, &dot);
    EXPECT_TRUE(dot.real == 0 && dot.imag == 0);
    EXPECT_EQ(cblas_dzasum(2, x, 1), 7);
    const zor_complex_double three_four[1] = {{3, -4}};
    EXPECT_EQ(cblas_dznrm2(1, three_four, 1), 5);

    const zor_complex_double alpha{0, 1};
    cblas_zaxpy(2, &alpha, x, 1, y, 1);  // y += i x
    EXPECT_TRUE(y[0].real == 0 && y[0].imag == 1 && y[1].real == 0 && y[1].imag == 4);
    cblas_zscal(2, &alpha, y, 1);
    EXPECT_TRUE(y[0].real == -1 && y[0].imag == 0 && y[1].real == -4 && y[1].imag == 0);
    zor_complex_double w[2];
    cblas_zcopy(2, x, 1, w, -1);
    EXPECT_TRUE(w[0].real == 3 && w[1].real == 1);
    cblas_zswap(2, w, 1, y, 1);
    EXPECT_TRUE(w[0].real == -1 && y[0].real == 3 && y[1].imag == 2);
}

TEST(CblasLevel1, RotationConstructors) {
    double a = 3, b = 4, c = 0, s = 0;
    cblas_drotg(&a, &b, &c, &s);
    EXPECT_DOUBLE_EQ(a, 5);
    EXPECT_DOUBLE_EQ(c, 0.6);
    EXPECT_DOUBLE_EQ(s, 0.8);
    // y1 is passed by value; the others are updated in place.
    double d1 = 1, d2 = 1, x1 = 1, param[5] = {};
    const double y1 = 2;
    cblas_drotmg(&d1, &d2, &x1, y1, param);
    EXPECT_EQ(param[0], 1.0);
    EXPECT_DOUBLE_EQ(param[1], 0.5);
    EXPECT_DOUBLE_EQ(param[4], 0.5);
    EXPECT_DOUBLE_EQ(d1, 0.8);
    EXPECT_DOUBLE_EQ(x1, 2.5);
}

}  // namespace
