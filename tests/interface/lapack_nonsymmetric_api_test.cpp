// The exports of the nonsymmetric eigenproblem through the shared library: small problems checked
// by hand, the caller's select function called by reference with its 32-bit logical answer, the
// output scalars narrowed back, the workspace queries, and an argument error of every export with
// its printed message.

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <functional>
#include <string>
#include <vector>

#include "zor/zor.h"

namespace {

using Complex = std::complex<double>;

Complex c(const zor_complex_double& z) {
    return {z.real, z.imag};
}

// The rotation by 90 degrees has the eigenvalues ±i; its right eigenvector of +i is (1, -i)/√2,
// normalised with its largest component real, stored as real and imaginary parts in two columns.
TEST(NonsymmetricExports, EigenvaluesAndVectorsOfARotation) {
    const zor_int n = 2, lwork = 64;
    double a[4] = {0, 1, -1, 0}, wr[2], wi[2], vl[4], vr[4], work[64];
    zor_int info = 9;
    dgeev("V", "V", &n, a, &n, wr, wi, vl, &n, vr, &n, work, &lwork, &info, 1, 1);
    ASSERT_EQ(info, 0);
    EXPECT_NEAR(wr[0], 0, 1e-15);
    EXPECT_NEAR(wi[0], 1, 1e-15);
    EXPECT_NEAR(wi[1], -1, 1e-15);
    const Complex x0(vr[0], vr[2]), x1(vr[1], vr[3]);
    // A x = i x for A = [[0, -1], [1, 0]].
    EXPECT_NEAR(std::abs(-x1 - Complex(0, 1) * x0), 0, 1e-15);
    EXPECT_NEAR(std::abs(x0 - Complex(0, 1) * x1), 0, 1e-15);
    EXPECT_NEAR(std::norm(x0) + std::norm(x1), 1, 1e-15);
    // zgeev on the same matrix, right vectors only (vl not referenced, ldvl 1).
    zor_complex_double z[4] = {{0, 0}, {1, 0}, {-1, 0}, {0, 0}}, w[2], zvr[4], zwork[64];
    double rwork[4];
    const zor_int one = 1;
    zgeev("N", "V", &n, z, &n, w, nullptr, &one, zvr, &n, zwork, &lwork, rwork, &info, 1, 1);
    ASSERT_EQ(info, 0);
    EXPECT_NEAR(std::abs(std::abs(c(w[0]).imag()) - 1), 0, 1e-15);
    EXPECT_NEAR(c(w[0]).real(), 0, 1e-15);
    for (int k = 0; k < 2; ++k) {
        const Complex v0 = c(zvr[2 * k]), v1 = c(zvr[2 * k + 1]);
        EXPECT_NEAR(std::abs(-v1 - c(w[k]) * v0), 0, 1e-15);
        EXPECT_TRUE(v0.imag() == 0 || v1.imag() == 0) << "the largest component is real";
    }
}

// The select function sees each eigenvalue by reference, inside the caller's arrays, and answers a
// 32-bit logical; the selected ones lead T and sdim counts them.
const double* g_wr = nullptr;
int g_calls = 0;
bool g_inside = true;
zor_int select_negative(const double* re, const double* im) {
    ++g_calls;
    g_inside = g_inside && re >= g_wr && re < g_wr + 4 && im != nullptr;
    return *re < 0 ? 1 : 0;
}
zor_int select_negative_complex(const zor_complex_double* w) {
    ++g_calls;
    return w->real < 0 ? 1 : 0;
}

TEST(NonsymmetricExports, SortedSchurForm) {
    const zor_int n = 4, lwork = 64;
    // Upper triangular with the eigenvalues 1, -2, 3, -4 in that order.
    double a[16] = {1, 0, 0, 0, 5, -2, 0, 0, 1, 2, 3, 0, 7, 1, 2, -4}, wr[4], wi[4], vs[16], work[64];
    zor_int sdim = -1, bwork[4] = {7, 7, 7, 7}, info = 9;
    g_wr = wr;
    g_calls = 0;
    dgees("V", "S", select_negative, &n, a, &n, &sdim, wr, wi, vs, &n, work, &lwork, bwork, &info, 1, 1);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(sdim, 2);
    EXPECT_LT(wr[0], 0);
    EXPECT_LT(wr[1], 0);
    EXPECT_GT(wr[2], 0);
    EXPECT_GT(wr[3], 0);
    EXPECT_EQ(g_calls, 8);  // once to choose, once to check the reordering
    EXPECT_TRUE(g_inside);
    zor_complex_double z[16] = {}, w[4], zvs[16], zwork[64];
    double rwork[4];
    const double diagonal[4] = {1, -2, 3, -4};
    for (int i = 0; i < 4; ++i) {
        z[5 * i] = {diagonal[i], 0.5};
        if (i < 3) z[5 * i + 4] = {1, 1};
    }
    g_calls = 0;
    zgees("V", "S", select_negative_complex, &n, z, &n, &sdim, w, zvs, &n, zwork, &lwork, rwork, bwork, &info,
          1, 1);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(sdim, 2);
    EXPECT_EQ(g_calls, 4);
    EXPECT_LT(w[0].real, 0);
    EXPECT_LT(w[1].real, 0);
    EXPECT_GT(w[2].real, 0);
}

// dgebal permutes a triangular matrix completely (ilo = ihi), and dgebak with the unit matrix gives
// the permutation, which maps the balanced matrix back: A P = P B.
TEST(NonsymmetricExports, BalanceAndBack) {
    const zor_int n = 3;
    // Lower triangular: its rows and columns isolate.
    const double original[9] = {1, 2, 3, 0, 4, 5, 0, 0, 6};
    double a[9], scale[3], p[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    std::copy(original, original + 9, a);
    zor_int ilo = -1, ihi = -1, info = 9;
    dgebal("B", &n, a, &n, &ilo, &ihi, scale, &info, 1);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(ilo, ihi);
    dgebak("B", "R", &n, &ilo, &ihi, scale, &n, p, &n, &info, 1, 1);
    ASSERT_EQ(info, 0);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            double ap = 0, pb = 0;
            for (int k = 0; k < 3; ++k) {
                ap += original[i + 3 * k] * p[k + 3 * j];
                pb += p[i + 3 * k] * a[k + 3 * j];
            }
            EXPECT_EQ(ap, pb) << i << "," << j;
        }
    }
    // An upper triangular complex matrix is already isolated: ilo = ihi.
    zor_complex_double z[4] = {{1, 1}, {0, 0}, {2, 0}, {3, -1}};
    const zor_int two = 2;
    zgebal("P", &two, z, &two, &ilo, &ihi, scale, &info, 1);
    EXPECT_EQ(info, 0);
    EXPECT_EQ(ilo, ihi);
}

// dgehrd and dorghr: Q H Qᵀ = A for a 4 by 4 matrix.
TEST(NonsymmetricExports, HessenbergReduction) {
    const zor_int n = 4, one = 1, lwork = 64;
    const double original[16] = {4, 1, -2, 2, 1, 2, 0, 1, -2, 0, 3, -2, 2, 1, -2, -1};
    double h[16], q[16], tau[3], work[64];
    std::copy(original, original + 16, h);
    zor_int info = 9;
    dgehrd(&n, &one, &n, h, &n, tau, work, &lwork, &info);
    ASSERT_EQ(info, 0);
    std::copy(h, h + 16, q);
    dorghr(&n, &one, &n, q, &n, tau, work, &lwork, &info);
    ASSERT_EQ(info, 0);
    for (int j = 0; j < 4; ++j) {
        for (int i = j + 2; i < 4; ++i) h[i + 4 * j] = 0;
    }
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            double s = 0;
            for (int k = 0; k < 4; ++k) {
                for (int l = 0; l < 4; ++l) s += q[i + 4 * k] * h[k + 4 * l] * q[j + 4 * l];
            }
            EXPECT_NEAR(s, original[i + 4 * j], 1e-14) << i << "," << j;
        }
    }
}

// dtrexc moves the 2 by 2 block at rows 2-3 (ifst names its second row) to the top; ifst and ilst
// come back as the block's first rows.
TEST(NonsymmetricExports, ReorderAndSylvester) {
    const zor_int n = 3;
    double t[9] = {5, 0, 0, 1, 1, -2, 2, 3, 1}, q[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1}, work[3];
    zor_int ifst = 3, ilst = 1, info = 9;
    dtrexc("V", &n, t, &n, q, &n, &ifst, &ilst, work, &info, 1);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(ifst, 2);
    EXPECT_EQ(ilst, 1);
    EXPECT_NEAR(t[8], 5, 1e-14);  // the 1 by 1 block now last
    zor_complex_double zt[4] = {{1, 0}, {0, 0}, {2, 1}, {3, 0}}, zq[4] = {{1, 0}, {0, 0}, {0, 0}, {1, 0}};
    const zor_int two = 2, first = 1, last = 2;
    ztrexc("V", &two, zt, &two, zq, &two, &first, &last, &info, 1);
    ASSERT_EQ(info, 0);
    EXPECT_NEAR(zt[0].real, 3, 1e-14);
    EXPECT_NEAR(zt[3].real, 1, 1e-14);
    // A X + X B = C with A = [1 1; 0 2], B = [3], C = (5, 10): (A + 3 I) X = C, X = (0.75, 2).
    const double sa[4] = {1, 0, 1, 2}, sb[1] = {3};
    double sc[2] = {5, 10}, scale = 0;
    const zor_int m = 2, plus = 1;
    dtrsyl("N", "N", &plus, &m, &first, sa, &m, sb, &first, sc, &m, &scale, &info, 1, 1);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(scale, 1.0);
    EXPECT_NEAR(sc[0], 0.75, 1e-14);
    EXPECT_NEAR(sc[1], 2, 1e-14);
    const zor_complex_double za[1] = {{1, 1}}, zb[1] = {{0, -1}};
    zor_complex_double zc[1] = {{2, 0}};
    ztrsyl("N", "C", &plus, &first, &first, za, &first, zb, &first, zc, &first, &scale, &info, 1, 1);
    ASSERT_EQ(info, 0);  // (1 + i) x + x conj(-i) = (1 + 2i) x = 2
    EXPECT_NEAR(std::abs(c(zc[0]) - Complex(2, 0) / Complex(1, 2)), 0, 1e-15);
}

// lwork = -1 answers at least the least workspace and reads no array but work (not bwork).
TEST(NonsymmetricExports, WorkspaceQueries) {
    const zor_int n = 300, minus_one = -1, one = 1;
    double work[2] = {0, 0};
    zor_complex_double zwork[2] = {};
    zor_int info = 9, sdim = 0;
    dgehrd(&n, &one, &n, nullptr, &n, nullptr, work, &minus_one, &info);
    EXPECT_TRUE(info == 0 && work[0] >= n);
    zgehrd(&n, &one, &n, nullptr, &n, nullptr, zwork, &minus_one, &info);
    EXPECT_TRUE(info == 0 && zwork[0].real >= n);
    dgeev("V", "V", &n, nullptr, &n, nullptr, nullptr, nullptr, &n, nullptr, &n, work, &minus_one, &info, 1,
          1);
    EXPECT_TRUE(info == 0 && work[0] >= 4 * n);
    zgeev("N", "N", &n, nullptr, &n, nullptr, nullptr, &one, nullptr, &one, zwork, &minus_one, nullptr, &info,
          1, 1);
    EXPECT_TRUE(info == 0 && zwork[0].real >= 2 * n);
    dgees("V", "S", select_negative, &n, nullptr, &n, &sdim, nullptr, nullptr, nullptr, &n, work, &minus_one,
          nullptr, &info, 1, 1);
    EXPECT_TRUE(info == 0 && work[0] >= 3 * n);
    zgees("N", "S", select_negative_complex, &n, nullptr, &n, &sdim, nullptr, nullptr, &one, zwork,
          &minus_one, nullptr, nullptr, &info, 1, 1);
    EXPECT_TRUE(info == 0 && zwork[0].real >= 2 * n);
}

struct ErrorCase {
    const char* message_name;
    int parameter;
    std::function<zor_int()> call;
};

const zor_int kMinus = -1, kOne = 1, kTwo = 2, kThree = 3;
double g_a[16], g_work[16], g_scale[4];
zor_complex_double g_z[16], g_zwork[16];
zor_int g_ints[4];

zor_int info_after(const std::function<void(zor_int*)>& call) {
    zor_int info = 0;
    call(&info);
    return info;
}

const ErrorCase kErrorCases[] = {
    {"DGEBAL", 1,
     [] {
         return info_after([](zor_int* i) { dgebal("X", &kTwo, g_a, &kTwo, g_ints, g_ints, g_scale, i, 1); });
     }},
    {"ZGEBAL", 2,
     [] {
         return info_after(
             [](zor_int* i) { zgebal("B", &kMinus, g_z, &kOne, g_ints, g_ints, g_scale, i, 1); });
     }},
    {"DGEBAK", 2,
     [] {
         return info_after(
             [](zor_int* i) { dgebak("B", "X", &kTwo, &kOne, &kTwo, g_scale, &kOne, g_a, &kTwo, i, 1, 1); });
     }},
    {"ZGEBAK", 9,
     [] {
         return info_after([](zor_int* i) {
             zgebak("B", "L", &kThree, &kOne, &kThree, g_scale, &kOne, g_z, &kTwo, i, 1, 1);
         });
     }},
    {"DGEHRD", 8,
     [] {
         return info_after(
             [](zor_int* i) { dgehrd(&kThree, &kOne, &kThree, g_a, &kThree, g_a, g_work, &kTwo, i); });
     }},
    {"ZGEHRD", 2,
     [] {
         return info_after(
             [](zor_int* i) { zgehrd(&kTwo, &kThree, &kTwo, g_z, &kTwo, g_z, g_zwork, &kTwo, i); });
     }},
    {"DGEES ", 2,
     [] {
         return info_after([](zor_int* i) {
             dgees("V", "X", select_negative, &kTwo, g_a, &kTwo, g_ints, g_a, g_a, g_a, &kTwo, g_work,
                   &kThree, g_ints, i, 1, 1);
         });
     }},
    {"ZGEES ", 10,
     [] {
         return info_after([](zor_int* i) {
             zgees("V", "N", select_negative_complex, &kTwo, g_z, &kTwo, g_ints, g_z, g_z, &kOne, g_zwork,
                   &kThree, g_a, g_ints, i, 1, 1);
         });
     }},
    {"DGEEV ", 9,
     [] {
         return info_after([](zor_int* i) {
             dgeev("V", "N", &kTwo, g_a, &kTwo, g_a, g_a, g_a, &kOne, g_a, &kOne, g_work, &kThree, i, 1, 1);
         });
     }},
    {"ZGEEV ", 12,
     [] {
         return info_after([](zor_int* i) {
             zgeev("N", "N", &kTwo, g_z, &kTwo, g_z, g_z, &kOne, g_z, &kOne, g_zwork, &kOne, g_a, i, 1, 1);
         });
     }},
    {"DTREXC", 8,
     [] {
         return info_after([](zor_int* i) {
             zor_int ifst = 1, ilst = 3;
             dtrexc("N", &kTwo, g_a, &kTwo, g_a, &kOne, &ifst, &ilst, g_work, i, 1);
         });
     }},
    {"ZTREXC", 1,
     [] {
         return info_after(
             [](zor_int* i) { ztrexc("X", &kTwo, g_z, &kTwo, g_z, &kTwo, &kOne, &kTwo, i, 1); });
     }},
    {"DTRSYL", 3,
     [] {
         double scale = 0;
         return info_after([&](zor_int* i) {
             dtrsyl("N", "T", &kTwo, &kOne, &kOne, g_a, &kOne, g_a, &kOne, g_a, &kOne, &scale, i, 1, 1);
         });
     }},
    {"ZTRSYL", 1,
     [] {
         double scale = 0;
         return info_after([&](zor_int* i) {
             ztrsyl("T", "N", &kOne, &kOne, &kOne, g_z, &kOne, g_z, &kOne, g_z, &kOne, &scale, i, 1, 1);
         });
     }},
};

class NonsymmetricExportErrors : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(NonsymmetricExportErrors, APrintedMessageAndTheParameterInInfo) {
    const ErrorCase& ec = GetParam();
    ::testing::internal::CaptureStdout();
    const zor_int info = ec.call();
    const std::string printed = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(info, -ec.parameter);
    EXPECT_EQ(printed, "\nZOR ERROR: Parameter " + std::to_string(ec.parameter) +
                           " was incorrect on entry to " + ec.message_name + "\n");
}

INSTANTIATE_TEST_SUITE_P(Exports, NonsymmetricExportErrors, ::testing::ValuesIn(kErrorCases),
                         [](const auto& info) {
                             std::string name = info.param.message_name;
                             name.erase(name.find_last_not_of(' ') + 1);
                             return name;
                         });

}  // namespace
