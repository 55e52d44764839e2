// The exports of the orthogonal factorizations through the shared library: small factorizations
// checked by hand, the 32-bit pivots of dgeqp3, the workspace queries, and an argument error of
// every export with its printed message.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "zor/zor.h"

namespace {

// Qᵀ Q = I and Q R = A for the 3 by 2 A = [[3, 1], [4, 2], [0, 2]] (column norms 5 and 3): R has
// |R(1, 1)| = 5, and dorgqr forms Q from dgeqrf's reflectors.
TEST(QrExports, FactorAndFormQ) {
    const zor_int m = 3, n = 2, lwork = 64;
    const double a[6] = {3, 4, 0, 1, 2, 2};
    double f[6], tau[2], work[64];
    std::copy(a, a + 6, f);
    zor_int info = 9;
    dgeqrf(&m, &n, f, &m, tau, work, &lwork, &info);
    ASSERT_EQ(info, 0);
    EXPECT_NEAR(std::fabs(f[0]), 5.0, 1e-14);
    const double r[4] = {f[0], 0, f[3], f[4]};
    dorgqr(&m, &n, &n, f, &m, tau, work, &lwork, &info);
    ASSERT_EQ(info, 0);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 2; ++j) {
            double qr = 0;
            for (int k = 0; k < 2; ++k) qr += f[i + 3 * k] * r[k + 2 * j];
            EXPECT_NEAR(qr, a[i + 3 * j], 1e-14) << i << "," << j;
        }
    }
    // The LQ of Aᵀ in complex arithmetic: the same magnitudes, L's diagonal real.
    const zor_int two = 2, three = 3;
    zor_complex_double z[6] = {{3, 0}, {1, 0}, {4, 0}, {2, 0}, {0, 0}, {2, 0}}, ztau[2], zwork[64];
    zgelqf(&two, &three, z, &two, ztau, zwork, &lwork, &info);
    ASSERT_EQ(info, 0);
    EXPECT_NEAR(std::fabs(z[0].real), 5.0, 1e-14);
    EXPECT_EQ(z[0].imag, 0.0);
    zunglq(&two, &three, &two, z, &two, ztau, zwork, &lwork, &info);
    ASSERT_EQ(info, 0);
    double row_norm = 0;
    for (int j = 0; j < 3; ++j) row_norm += z[2 * j].real * z[2 * j].real + z[2 * j].imag * z[2 * j].imag;
    EXPECT_NEAR(row_norm, 1.0, 1e-14);
}

// The pivots go in as 32-bit integers (a nonzero entry fixes its column first) and come back as
// one-based column numbers; the largest remaining column comes next.
TEST(QrExports, PivotedQrNarrowsItsPivots) {
    const zor_int m = 3, n = 3, lwork = 64;
    // Column norms 1, 5, 2: column 3 fixed, then column 2, then column 1.
    double a[9] = {1, 0, 0, 0, 3, 4, 0, 0, 2}, tau[3], work[64];
    zor_int jpvt[4] = {0, 0, 7, -5}, info = 9;
    dgeqp3(&m, &n, a, &m, jpvt, tau, work, &lwork, &info);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(jpvt[0], 3);
    EXPECT_EQ(jpvt[1], 2);
    EXPECT_EQ(jpvt[2], 1);
    EXPECT_EQ(jpvt[3], -5);
    EXPECT_NEAR(std::fabs(a[0]), 2.0, 1e-14);
    zor_complex_double z[4] = {{0, 1}, {0, 0}, {0, 0}, {0, 3}}, ztau[2], zwork[8];
    double rwork[4];
    const zor_int two = 2, zlwork = 8;
    zor_int zjpvt[2] = {0, 0};
    zgeqp3(&two, &two, z, &two, zjpvt, ztau, zwork, &zlwork, rwork, &info);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(zjpvt[0], 2);
    EXPECT_NEAR(std::fabs(z[0].real), 3.0, 1e-14);
    EXPECT_EQ(z[0].imag, 0.0);
}

// dorghr on one reflector of order 3 (ilo = 1, ihi = 3): H(1) with v = (0, 1, 1), tau = 1 swaps
// and negates rows 2 and 3 of the unit matrix.
TEST(QrExports, HessenbergQ) {
    const zor_int n = 3, ilo = 1, ihi = 3, lwork = 64;
    double a[9] = {9, 9, 1, 9, 9, 9, 9, 9, 9}, tau[2] = {1, 0}, work[64];
    zor_int info = 9;
    dorghr(&n, &ilo, &ihi, a, &n, tau, work, &lwork, &info);
    ASSERT_EQ(info, 0);
    const double expected[9] = {1, 0, 0, 0, 0, -1, 0, -1, 0};
    for (int i = 0; i < 9; ++i) EXPECT_NEAR(a[i], expected[i], 1e-15) << i;
    zor_complex_double z[9] = {}, ztau[2] = {{0, 0}, {0, 0}}, zwork[64];
    zunghr(&n, &ilo, &ihi, z, &n, ztau, zwork, &lwork, &info);
    EXPECT_EQ(info, 0);
    EXPECT_EQ(z[4].real, 1.0);  // tau = 0: the unit matrix
}

// lwork = -1 answers at least the least workspace and reads no array but work (jpvt not at all).
TEST(QrExports, WorkspaceQueries) {
    const zor_int m = 300, n = 200, k = 200, minus_one = -1, one = 1;
    double work[2] = {0, 0};
    zor_complex_double zwork[2] = {};
    zor_int info = 9;
    dgeqrf(&m, &n, nullptr, &m, nullptr, work, &minus_one, &info);
    EXPECT_TRUE(info == 0 && work[0] >= n);
    zgeqrf(&m, &n, nullptr, &m, nullptr, zwork, &minus_one, &info);
    EXPECT_TRUE(info == 0 && zwork[0].real >= n);
    dgelqf(&n, &m, nullptr, &n, nullptr, work, &minus_one, &info);
    EXPECT_TRUE(info == 0 && work[0] >= n);
    zgelqf(&n, &m, nullptr, &n, nullptr, zwork, &minus_one, &info);
    EXPECT_TRUE(info == 0 && zwork[0].real >= n);
    dgeqp3(&m, &n, nullptr, &m, nullptr, nullptr, work, &minus_one, &info);
    EXPECT_TRUE(info == 0 && work[0] >= 3 * n + 1);
    zgeqp3(&m, &n, nullptr, &m, nullptr, nullptr, zwork, &minus_one, nullptr, &info);
    EXPECT_TRUE(info == 0 && zwork[0].real >= n + 1);
    dorgqr(&m, &n, &k, nullptr, &m, nullptr, work, &minus_one, &info);
    EXPECT_TRUE(info == 0 && work[0] >= n);
    zungqr(&m, &n, &k, nullptr, &m, nullptr, zwork, &minus_one, &info);
    EXPECT_TRUE(info == 0 && zwork[0].real >= n);
    dorglq(&n, &m, &k, nullptr, &n, nullptr, work, &minus_one, &info);
    EXPECT_TRUE(info == 0 && work[0] >= n);
    zunglq(&n, &m, &k, nullptr, &n, nullptr, zwork, &minus_one, &info);
    EXPECT_TRUE(info == 0 && zwork[0].real >= n);
    dorghr(&n, &one, &n, nullptr, &n, nullptr, work, &minus_one, &info);
    EXPECT_TRUE(info == 0 && work[0] >= n - 1);
    zunghr(&n, &one, &n, nullptr, &n, nullptr, zwork, &minus_one, &info);
    EXPECT_TRUE(info == 0 && zwork[0].real >= n - 1);
}

struct ErrorCase {
    const char* message_name;
    int parameter;
    std::function<zor_int()> call;
};

const zor_int kMinus = -1, kOne = 1, kTwo = 2, kThree = 3;
double g_a[16], g_work[16];
zor_complex_double g_z[16], g_zwork[16];
zor_int g_jpvt[4];

zor_int info_after(const std::function<void(zor_int*)>& call) {
    zor_int info = 0;
    call(&info);
    return info;
}

const ErrorCase kErrorCases[] = {
    {"DGEQRF", 1,
     [] {
         return info_after([](zor_int* i) { dgeqrf(&kMinus, &kOne, g_a, &kOne, g_a, g_work, &kOne, i); });
     }},
    {"ZGEQRF", 7,
     [] {
         return info_after([](zor_int* i) { zgeqrf(&kTwo, &kThree, g_z, &kTwo, g_z, g_zwork, &kTwo, i); });
     }},
    {"DGELQF", 4,
     [] {
         return info_after([](zor_int* i) { dgelqf(&kThree, &kOne, g_a, &kTwo, g_a, g_work, &kThree, i); });
     }},
    {"ZGELQF", 2,
     [] {
         return info_after([](zor_int* i) { zgelqf(&kOne, &kMinus, g_z, &kOne, g_z, g_zwork, &kOne, i); });
     }},
    {"DGEQP3", 8,
     [] {
         return info_after(
             [](zor_int* i) { dgeqp3(&kTwo, &kTwo, g_a, &kTwo, g_jpvt, g_a, g_work, &kThree, i); });
     }},
    {"ZGEQP3", 4,
     [] {
         return info_after(
             [](zor_int* i) { zgeqp3(&kTwo, &kTwo, g_z, &kOne, g_jpvt, g_z, g_zwork, &kThree, g_a, i); });
     }},
    {"DORGQR", 2,
     [] {
         return info_after(
             [](zor_int* i) { dorgqr(&kTwo, &kThree, &kOne, g_a, &kTwo, g_a, g_work, &kThree, i); });
     }},
    {"ZUNGQR", 8,
     [] {
         return info_after(
             [](zor_int* i) { zungqr(&kThree, &kTwo, &kTwo, g_z, &kThree, g_z, g_zwork, &kOne, i); });
     }},
    {"DORGLQ", 3,
     [] {
         return info_after(
             [](zor_int* i) { dorglq(&kTwo, &kThree, &kThree, g_a, &kTwo, g_a, g_work, &kTwo, i); });
     }},
    {"ZUNGLQ", 5,
     [] {
         return info_after(
             [](zor_int* i) { zunglq(&kTwo, &kThree, &kTwo, g_z, &kOne, g_z, g_zwork, &kTwo, i); });
     }},
    {"DORGHR", 3,
     [] {
         return info_after(
             [](zor_int* i) { dorghr(&kTwo, &kTwo, &kOne, g_a, &kTwo, g_a, g_work, &kTwo, i); });
     }},
    {"ZUNGHR", 8,
     [] {
         return info_after(
             [](zor_int* i) { zunghr(&kThree, &kOne, &kThree, g_z, &kThree, g_z, g_zwork, &kOne, i); });
     }},
};

class QrExportErrors : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(QrExportErrors, APrintedMessageAndTheParameterInInfo) {
    const ErrorCase& c = GetParam();
    ::testing::internal::CaptureStdout();
    const zor_int info = c.call();
    const std::string printed = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(info, -c.parameter);
    EXPECT_EQ(printed, "\nZOR ERROR: Parameter " + std::to_string(c.parameter) +
                           " was incorrect on entry to " + c.message_name + "\n");
}

INSTANTIATE_TEST_SUITE_P(Exports, QrExportErrors, ::testing::ValuesIn(kErrorCases),
                         [](const auto& info) { return std::string(info.param.message_name); });

}  // namespace
