// The exports of the generalized eigenproblem through the shared library: small pencils checked by
// hand (an infinite eigenvalue, a complex pair), the chain dgghrd, dhgeqz, dtgevc, the selection
// of dtgevc read from the caller's 32-bit logicals, the workspace queries, and an argument error of
// every export with its printed message.

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <functional>
#include <string>

#include "zor/zor.h"

namespace {

using Complex = std::complex<double>;

const zor_int kTrue = 1;

Complex c(const zor_complex_double& z) {
    return {z.real, z.imag};
}

// A = [[2, 1], [0, 1]], B = [[1, 1], [0, 0]]: the eigenvalue 2 and an infinite one (β = 0).
TEST(GeneralizedExports, AnInfiniteEigenvalue) {
    const zor_int n = 2, lwork = 64;
    double a[4] = {2, 0, 1, 1}, b[4] = {1, 0, 1, 0}, wr[2], wi[2], beta[2], vl[4], vr[4], work[64];
    zor_int info = 9;
    dggev("V", "V", &n, a, &n, b, &n, wr, wi, beta, vl, &n, vr, &n, work, &lwork, &info, 1, 1);
    ASSERT_EQ(info, 0);
    int finite = beta[0] != 0 ? 0 : 1;
    EXPECT_EQ(beta[1 - finite], 0.0);
    EXPECT_NEAR(wr[finite] / beta[finite], 2, 1e-14);
    EXPECT_EQ(wi[0], 0.0);
    EXPECT_EQ(wi[1], 0.0);
    // The infinite eigenvalue's right vector is B's null vector (1, -1), scaled to largest entry 1.
    const double* x = vr + 2 * (1 - finite);
    EXPECT_NEAR(std::fabs(x[0]), 1, 1e-14);
    EXPECT_NEAR(x[0] + x[1], 0, 1e-14);
}

// A = [[0, -1], [1, 0]], B = 2 I: the pair ±i/2, a complex vector of real data in two columns.
TEST(GeneralizedExports, AComplexPair) {
    const zor_int n = 2, lwork = 64, one = 1;
    double a[4] = {0, 1, -1, 0}, b[4] = {2, 0, 0, 2}, wr[2], wi[2], beta[2], vr[4], work[64];
    zor_int info = 9;
    dggev("N", "V", &n, a, &n, b, &n, wr, wi, beta, nullptr, &one, vr, &n, work, &lwork, &info, 1, 1);
    ASSERT_EQ(info, 0);
    EXPECT_GT(wi[0], 0);
    EXPECT_EQ(wi[1], -wi[0]);
    EXPECT_NEAR(wi[0] / beta[0], 0.5, 1e-15);
    const Complex lambda(wr[0] / beta[0], wi[0] / beta[0]);
    const Complex x0(vr[0], vr[2]), x1(vr[1], vr[3]);
    EXPECT_NEAR(std::abs(-x1 - 2.0 * lambda * x0), 0, 1e-15);
    zor_complex_double za[4] = {{0, 0}, {1, 0}, {-1, 0}, {0, 0}}, zb[4] = {{2, 0}, {0, 0}, {0, 0}, {2, 0}};
    zor_complex_double alpha[2], zbeta[2], zvr[4], zwork[64];
    double rwork[16];
    zggev("N", "V", &n, za, &n, zb, &n, alpha, zbeta, nullptr, &one, zvr, &n, zwork, &lwork, rwork, &info, 1,
          1);
    ASSERT_EQ(info, 0);
    for (int k = 0; k < 2; ++k) {
        const Complex l = c(alpha[k]) / c(zbeta[k]);
        EXPECT_NEAR(std::abs(l.imag()), 0.5, 1e-15);
        EXPECT_NEAR(std::abs(-c(zvr[2 * k + 1]) - 2.0 * l * c(zvr[2 * k])), 0, 1e-15);
    }
}

// dgghrd, dhgeqz and dtgevc in a chain on a 3 by 3 pencil with B triangular; dtgevc with a
// selection of one eigenvalue given as 32-bit logicals.
TEST(GeneralizedExports, HessenbergQzAndVectors) {
    const zor_int n = 3, ilo = 1, lwork = 3;
    double a[9] = {4, 1, 2, 1, 3, 1, 2, 1, 5}, b[9] = {2, 0, 0, 1, 3, 0, 1, 1, 1};
    const double a0[9] = {4, 1, 2, 1, 3, 1, 2, 1, 5}, b0[9] = {2, 0, 0, 1, 3, 0, 1, 1, 1};
    double q[9], z[9], wr[3], wi[3], beta[3], work[18];
    zor_int info = 9;
    dgghrd("I", "I", &n, &ilo, &n, a, &n, b, &n, q, &n, z, &n, &info, 1, 1);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(a[2], 0.0);  // H(3, 1)
    dhgeqz("S", "V", "V", &n, &ilo, &n, a, &n, b, &n, wr, wi, beta, q, &n, z, &n, work, &lwork, &info, 1, 1,
           1);
    ASSERT_EQ(info, 0);
    double vr[9];
    for (int k = 0; k < 9; ++k) vr[k] = z[k];
    zor_int m = 0;
    const zor_int select[3] = {0, 0, 0};
    dtgevc("R", "B", select, &n, a, &n, b, &n, nullptr, &n, vr, &n, &n, &m, work, &info, 1, 1);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(m, 3);
    for (int j = 0; j < 3; ++j) {
        if (wi[j] != 0) continue;
        for (int i = 0; i < 3; ++i) {
            double r = 0;
            for (int k = 0; k < 3; ++k)
                r += (beta[j] * a0[i + 3 * k] - wr[j] * b0[i + 3 * k]) * vr[k + 3 * j];
            EXPECT_NEAR(r, 0, 1e-13) << i << " " << j;
        }
    }
    const zor_int one_selected[3] = {0, 1, 0}, mm = 1;
    double v1[3];
    zor_int m1 = 0;
    dtgevc("R", "S", one_selected, &n, a, &n, b, &n, nullptr, &n, v1, &n, &mm, &m1, work, &info, 1, 1);
    if (wi[1] == 0) {
        ASSERT_EQ(info, 0);
        EXPECT_EQ(m1, 1);
    } else {
        EXPECT_EQ(info, -13);  // a pair needs two columns
    }
}

// dgges calls selctg with alpha and beta by reference inside the caller's arrays and reads its
// 32-bit answer: the chosen eigenvalues (here the finite ones of magnitude below 2) lead, sdim of
// them; dtgexc then moves the last block to the top.
const double* g_alphar = nullptr;
bool g_inside = true;
zor_int small_finite(const double* ar, const double* ai, const double* b) {
    g_inside = g_inside && ar >= g_alphar && ar < g_alphar + 4;
    return *b != 0 && std::hypot(*ar, *ai) < 2 * *b;
}

TEST(GeneralizedExports, SchurFormSortedBySelctg) {
    const zor_int n = 4, lwork = 200;
    double a[16] = {4, 0, 0, 0, 1, 1, 0, 0, 2, 1, -3, 0, 1, 2, 1, 0.5};
    double b[16] = {1, 0, 0, 0, 1, 1, 0, 0, 0, 1, 1, 0, 1, 0, 1, 1};
    double wr[4], wi[4], beta[4], vsl[16], vsr[16], work[200];
    zor_int bwork[4], sdim = -1, info = 9;
    g_alphar = wr;
    dgges("V", "V", "S", small_finite, &n, a, &n, b, &n, &sdim, wr, wi, beta, vsl, &n, vsr, &n, work, &lwork,
          bwork, &info, 1, 1, 1);
    ASSERT_EQ(info, 0);
    EXPECT_TRUE(g_inside);
    EXPECT_EQ(sdim, 2);  // 1 and 0.5; 4 and -3 stay behind
    for (int i = 0; i < 4; ++i) EXPECT_EQ(std::fabs(wr[i] / beta[i]) < 2, i < sdim) << i;
    zor_int ifst = 4, ilst = 1;
    dtgexc(&kTrue, &kTrue, &n, a, &n, b, &n, vsl, &n, vsr, &n, &ifst, &ilst, work, &lwork, &info);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(ilst, 1);
    EXPECT_NEAR(std::fabs(a[0] / b[0]), std::fabs(wr[3] / beta[3]), 1e-13);
}

// lwork = -1 answers at least the least workspace and reads no array but work.
TEST(GeneralizedExports, WorkspaceQueries) {
    const zor_int n = 300, minus_one = -1, one = 1;
    double work[2] = {0, 0};
    zor_complex_double zwork[2] = {};
    zor_int info = 9;
    dggev("V", "V", &n, nullptr, &n, nullptr, &n, nullptr, nullptr, nullptr, nullptr, &n, nullptr, &n, work,
          &minus_one, &info, 1, 1);
    EXPECT_TRUE(info == 0 && work[0] >= 8 * n);
    zggev("N", "N", &n, nullptr, &n, nullptr, &n, nullptr, nullptr, nullptr, &one, nullptr, &one, zwork,
          &minus_one, nullptr, &info, 1, 1);
    EXPECT_TRUE(info == 0 && zwork[0].real >= 2 * n);
    dhgeqz("E", "N", "N", &n, &one, &n, nullptr, &n, nullptr, &n, nullptr, nullptr, nullptr, nullptr, &one,
           nullptr, &one, work, &minus_one, &info, 1, 1, 1);
    EXPECT_TRUE(info == 0 && work[0] == n);
    zhgeqz("S", "I", "I", &n, &one, &n, nullptr, &n, nullptr, &n, nullptr, nullptr, nullptr, &n, nullptr, &n,
           zwork, &minus_one, nullptr, &info, 1, 1, 1);
    EXPECT_TRUE(info == 0 && zwork[0].real == n);
}

struct ErrorCase {
    const char* message_name;
    int parameter;
    std::function<zor_int()> call;
};

const zor_int kMinus = -1, kOne = 1, kTwo = 2, kThree = 3;
double g_a[16], g_work[64];
zor_complex_double g_z[16], g_zwork[64];
zor_int g_select[4];

zor_int info_after(const std::function<void(zor_int*)>& call) {
    zor_int info = 0;
    call(&info);
    return info;
}

const ErrorCase kErrorCases[] = {
    {"DGGHRD", 1,
     [] {
         return info_after([](zor_int* i) {
             dgghrd("X", "N", &kTwo, &kOne, &kTwo, g_a, &kTwo, g_a, &kTwo, g_a, &kTwo, g_a, &kTwo, i, 1, 1);
         });
     }},
    {"ZGGHRD", 13,
     [] {
         return info_after([](zor_int* i) {
             zgghrd("N", "I", &kTwo, &kOne, &kTwo, g_z, &kTwo, g_z, &kTwo, g_z, &kOne, g_z, &kOne, i, 1, 1);
         });
     }},
    {"DHGEQZ", 6,
     [] {
         return info_after([](zor_int* i) {
             dhgeqz("E", "N", "N", &kTwo, &kOne, &kThree, g_a, &kTwo, g_a, &kTwo, g_a, g_a, g_a, g_a, &kOne,
                    g_a, &kOne, g_work, &kTwo, i, 1, 1, 1);
         });
     }},
    {"ZHGEQZ", 18,
     [] {
         return info_after([](zor_int* i) {
             zhgeqz("E", "N", "N", &kTwo, &kOne, &kTwo, g_z, &kTwo, g_z, &kTwo, g_z, g_z, g_z, &kOne, g_z,
                    &kOne, g_zwork, &kOne, g_a, i, 1, 1, 1);
         });
     }},
    {"DTGEVC", 2,
     [] {
         return info_after([](zor_int* i) {
             zor_int m = 0;
             dtgevc("R", "X", g_select, &kTwo, g_a, &kTwo, g_a, &kTwo, g_a, &kTwo, g_a, &kTwo, &kTwo, &m,
                    g_work, i, 1, 1);
         });
     }},
    {"ZTGEVC", 13,
     [] {
         return info_after([](zor_int* i) {
             zor_int m = 0;
             zor_complex_double s[4] = {}, p[4] = {};
             ztgevc("B", "A", g_select, &kTwo, s, &kTwo, p, &kTwo, g_z, &kTwo, g_z, &kTwo, &kOne, &m, g_zwork,
                    g_a, i, 1, 1);
         });
     }},
    {"DGGEV ", 16,
     [] {
         return info_after([](zor_int* i) {
             dggev("N", "N", &kTwo, g_a, &kTwo, g_a, &kTwo, g_a, g_a, g_a, g_a, &kOne, g_a, &kOne, g_work,
                   &kThree, i, 1, 1);
         });
     }},
    {"DGGES ", 19,
     [] {
         return info_after([](zor_int* i) {
             zor_int sdim = 0;
             dgges("N", "N", "S", small_finite, &kTwo, g_a, &kTwo, g_a, &kTwo, &sdim, g_a, g_a, g_a, g_a,
                   &kOne, g_a, &kOne, g_work, &kThree, g_select, i, 1, 1, 1);
         });
     }},
    {"ZGGES ", 3,
     [] {
         return info_after([](zor_int* i) {
             zor_int sdim = 0;
             zgges("N", "N", "X", nullptr, &kTwo, g_z, &kTwo, g_z, &kTwo, &sdim, g_z, g_z, g_z, &kOne, g_z,
                   &kOne, g_zwork, &kThree, g_a, g_select, i, 1, 1, 1);
         });
     }},
    {"DTGEXC", 13,
     [] {
         return info_after([](zor_int* i) {
             zor_int ifst = 1, ilst = 3;
             dtgexc(&kOne, &kOne, &kTwo, g_a, &kTwo, g_a, &kTwo, g_a, &kTwo, g_a, &kTwo, &ifst, &ilst, g_work,
                    &kThree, i);
         });
     }},
    {"ZTGEXC", 9,
     [] {
         return info_after([](zor_int* i) {
             zor_int ilst = 1;
             ztgexc(&kOne, &kOne, &kTwo, g_z, &kTwo, g_z, &kTwo, g_z, &kOne, g_z, &kTwo, &kOne, &ilst, i);
         });
     }},
    {"ZGGEV ", 3,
     [] {
         return info_after([](zor_int* i) {
             zggev("N", "N", &kMinus, g_z, &kOne, g_z, &kOne, g_z, g_z, g_z, &kOne, g_z, &kOne, g_zwork,
                   &kOne, g_a, i, 1, 1);
         });
     }},
};

class GeneralizedExportErrors : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(GeneralizedExportErrors, APrintedMessageAndTheParameterInInfo) {
    const ErrorCase& ec = GetParam();
    ::testing::internal::CaptureStdout();
    const zor_int info = ec.call();
    const std::string printed = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(info, -ec.parameter);
    EXPECT_EQ(printed, "\nZOR ERROR: Parameter " + std::to_string(ec.parameter) +
                           " was incorrect on entry to " + ec.message_name + "\n");
}

INSTANTIATE_TEST_SUITE_P(Exports, GeneralizedExportErrors, ::testing::ValuesIn(kErrorCases),
                         [](const ::testing::TestParamInfo<ErrorCase>& info) {
                             std::string name = info.param.message_name;
                             while (!name.empty() && name.back() == ' ') name.pop_back();
                             return name;
                         });

}  // namespace
