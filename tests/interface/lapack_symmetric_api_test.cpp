// The exports of the symmetric and Hermitian eigenproblem through the shared library: small spectra
// checked by hand, the workspace queries (any of the sizes -1 answers all), argument errors with
// their printed messages and nothing of the caller's touched, and NaN input that returns.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "zor/zor.h"

namespace {

// The tridiagonal [2 1 0; 1 2 1; 0 1 2] has eigenvalues 2 - √2, 2, 2 + √2 and the vector
// (1, -√2, 1) / 2 for the first; the Hermitian [2 i; -i 2] has 1 and 3.
TEST(SymmetricExports, SmallSpectra) {
    const zor_int n = 3, lwork = 64, liwork = 32;
    for (const char* uplo : {"U", "L"}) {
        double a[9] = {2, 1, 0, 1, 2, 1, 0, 1, 2}, w[3], work[64];
        zor_int iwork[32], info = 9;
        dsyevd("V", uplo, &n, a, &n, w, work, &lwork, iwork, &liwork, &info, 1, 1);
        ASSERT_EQ(info, 0);
        EXPECT_NEAR(w[0], 2 - std::sqrt(2.0), 1e-15);
        EXPECT_NEAR(w[1], 2, 1e-15);
        EXPECT_NEAR(w[2], 2 + std::sqrt(2.0), 1e-15);
        EXPECT_NEAR(std::fabs(a[1]), std::sqrt(0.5), 1e-15);
        EXPECT_NEAR(a[0] * a[1], -std::sqrt(0.125), 1e-15);

        const zor_int two = 2;
        zor_complex_double z[4] = {{2, 0}, {0, -1}, {0, 1}, {2, 0}}, zwork[64];
        double rwork[64];
        zheevd("N", uplo, &two, z, &two, w, zwork, &lwork, rwork, &lwork, iwork, &liwork, &info, 1, 1);
        ASSERT_EQ(info, 0);
        EXPECT_NEAR(w[0], 1, 1e-15);
        EXPECT_NEAR(w[1], 3, 1e-15);
    }
}

// Any of the sizes -1 is a query: the optimal sizes come back and nothing else is read.
TEST(SymmetricExports, WorkspaceQueries) {
    const zor_int n = 100, minus_one = -1, zero = 0;
    double work[2] = {0, 0}, rwork[2] = {0, 0};
    zor_complex_double zwork[2] = {};
    zor_int iwork[2] = {0, 0}, info = 9;
    dsyevd("V", "U", &n, nullptr, &n, nullptr, work, &minus_one, iwork, &zero, &info, 1, 1);
    EXPECT_TRUE(info == 0 && work[0] >= 1 + 6 * n + 2 * n * n && iwork[0] == 3 + 5 * n);
    dsyevd("N", "L", &n, nullptr, &n, nullptr, work, &zero, iwork, &minus_one, &info, 1, 1);
    EXPECT_TRUE(info == 0 && work[0] >= 2 * n + 1 && iwork[0] == 1);
    zheevd("V", "L", &n, nullptr, &n, nullptr, zwork, &zero, rwork, &minus_one, iwork, &zero, &info, 1, 1);
    EXPECT_TRUE(info == 0 && zwork[0].real >= 2 * n + n * n && rwork[0] == 1 + 5 * n + 2 * n * n &&
                iwork[0] == 3 + 5 * n);
    zheevd("N", "U", &n, nullptr, &n, nullptr, zwork, &minus_one, rwork, &zero, iwork, &zero, &info, 1, 1);
    EXPECT_TRUE(info == 0 && zwork[0].real >= n + 1 && rwork[0] == n && iwork[0] == 1);
}

struct ErrorCase {
    const char* name;
    int parameter;
    std::function<void(zor_int*)> call;
};

const zor_int kMinus = -1, kOne = 1, kTwo = 2, kThree = 3, kMany = 64;
double g_a[64], g_w[8], g_work[64], g_rwork[64];
zor_complex_double g_z[64];
zor_int g_iwork[64];

const ErrorCase kErrorCases[] = {
    {"DSYEVD", 1,
     [](zor_int* i) { dsyevd("A", "U", &kTwo, g_a, &kTwo, g_w, g_work, &kMany, g_iwork, &kMany, i, 1, 1); }},
    {"DSYEVD", 3,
     [](zor_int* i) {
         dsyevd("N", "U", &kMinus, g_a, &kOne, g_w, g_work, &kMany, g_iwork, &kMany, i, 1, 1);
     }},
    {"DSYEVD", 8,
     [](zor_int* i) {
         dsyevd("V", "L", &kThree, g_a, &kThree, g_w, g_work, &kTwo, g_iwork, &kMany, i, 1, 1);
     }},
    {"DSYEVD", 10,
     [](zor_int* i) {
         dsyevd("V", "U", &kThree, g_a, &kThree, g_w, g_work, &kMany, g_iwork, &kOne, i, 1, 1);
     }},
    {"ZHEEVD", 2,
     [](zor_int* i) {
         zheevd("N", "B", &kTwo, g_z, &kTwo, g_w, g_z, &kMany, g_rwork, &kMany, g_iwork, &kMany, i, 1, 1);
     }},
    {"ZHEEVD", 5,
     [](zor_int* i) {
         zheevd("N", "U", &kThree, g_z, &kTwo, g_w, g_z, &kMany, g_rwork, &kMany, g_iwork, &kMany, i, 1, 1);
     }},
    {"ZHEEVD", 10,
     [](zor_int* i) {
         zheevd("V", "U", &kThree, g_z, &kThree, g_w, g_z, &kMany, g_rwork, &kThree, g_iwork, &kMany, i, 1,
                1);
     }},
    {"ZHEEVD", 12,
     [](zor_int* i) {
         zheevd("V", "L", &kThree, g_z, &kThree, g_w, g_z, &kMany, g_rwork, &kMany, g_iwork, &kTwo, i, 1, 1);
     }},
};

class SymmetricExportErrors : public ::testing::TestWithParam<ErrorCase> {};

// The message, the parameter in info, and the caller's arrays as they were (the check runs before
// any copy or any answer of sizes).
TEST_P(SymmetricExportErrors, APrintedMessageAndNothingTouched) {
    const ErrorCase& c = GetParam();
    g_work[0] = g_rwork[0] = 5;
    g_z[0] = {5, 5};
    g_iwork[0] = 5;
    ::testing::internal::CaptureStdout();
    zor_int info = 0;
    c.call(&info);
    const std::string printed = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(info, -c.parameter);
    EXPECT_EQ(printed, "\nZOR ERROR: Parameter " + std::to_string(c.parameter) +
                           " was incorrect on entry to " + c.name + "\n");
    EXPECT_TRUE(g_work[0] == 5 && g_rwork[0] == 5 && g_z[0].real == 5 && g_iwork[0] == 5);
}

INSTANTIATE_TEST_SUITE_P(Exports, SymmetricExportErrors, ::testing::ValuesIn(kErrorCases),
                         [](const auto& info) {
                             return std::string(info.param.name) + "_" + std::to_string(info.param.parameter);
                         });

// A NaN entry ends the call (a convergence failure or NaN eigenvalues), with or without vectors.
TEST(SymmetricExports, NaNInputReturns) {
    const zor_int n = 40, lwork = 1 + 6 * 40 + 2 * 40 * 40, liwork = 3 + 5 * 40;
    std::vector<double> a(n * n), w(n), work(lwork);
    std::vector<zor_complex_double> z(n * n), zwork(lwork);
    std::vector<zor_int> iwork(liwork);
    for (const char* jobz : {"N", "V"}) {
        for (zor_int j = 0; j < n; ++j) {
            for (zor_int i = 0; i < n; ++i) {
                a[i + j * n] = 1.0 / (1 + i + j);
                z[i + j * n] = {1.0 / (1 + i + j), i > j ? 0.5 : i < j ? -0.5 : 0.0};
            }
        }
        a[7 + 3 * n] = z[7 + 3 * n].imag = std::numeric_limits<double>::quiet_NaN();
        zor_int info = -9;
        dsyevd(jobz, "L", &n, a.data(), &n, w.data(), work.data(), &lwork, iwork.data(), &liwork, &info, 1,
               1);
        EXPECT_TRUE(info > 0 || std::isnan(w[0]) || std::isnan(w[n - 1])) << jobz << " " << info;
        info = -9;
        zheevd(jobz, "L", &n, z.data(), &n, w.data(), zwork.data(), &lwork, work.data(), &lwork, iwork.data(),
               &liwork, &info, 1, 1);
        EXPECT_TRUE(info > 0 || std::isnan(w[0]) || std::isnan(w[n - 1])) << jobz << " " << info;
    }
}

}  // namespace
