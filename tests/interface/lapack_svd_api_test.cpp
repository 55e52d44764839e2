// The exports of the SVD and least squares through the shared library: small decompositions and
// solves checked by hand, the workspace queries against the published least sizes, the integer
// workspace and rank of dgelsd, and an argument error of each export with its printed message.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "zor/zor.h"

namespace {

// A = [[3, 0], [4, 5]] has singular values sqrt(45) and sqrt(5) (their squares sum to ||A||² = 50
// and multiply to det(A)² = 225); U diag(s) Vᵀ gives A back, for every jobz.
TEST(SvdExports, TwoByTwo) {
    const zor_int n = 2, lwork = 200;
    for (const char* jobz : {"N", "O", "S", "A"}) {
        double a[4] = {3, 4, 0, 5}, s[2], u[4] = {}, vt[4] = {}, work[200];
        zor_int iwork[16], info = 9;
        dgesdd(jobz, &n, &n, a, &n, s, u, &n, vt, &n, work, &lwork, iwork, &info, 1);
        ASSERT_EQ(info, 0) << jobz;
        EXPECT_NEAR(s[0], std::sqrt(45.0), 1e-14);
        EXPECT_NEAR(s[1], std::sqrt(5.0), 1e-14);
        if (*jobz == 'N') continue;
        const double* uu = *jobz == 'O' ? a : u;
        const double expected[4] = {3, 4, 0, 5};
        for (int i = 0; i < 2; ++i) {
            for (int j = 0; j < 2; ++j) {
                const double x = uu[i] * s[0] * vt[2 * j] + uu[i + 2] * s[1] * vt[1 + 2 * j];
                EXPECT_NEAR(x, expected[i + 2 * j], 1e-14) << jobz << i << j;
            }
        }
    }
    // i·A has the same values.
    zor_complex_double z[4] = {{0, 3}, {0, 4}, {0, 0}, {0, 5}}, zu[4], zvt[4], zwork[200];
    double s[2], rwork[100];
    zor_int iwork[16], info = 9;
    zgesdd("S", &n, &n, z, &n, s, zu, &n, zvt, &n, zwork, &lwork, rwork, iwork, &info, 1);
    ASSERT_EQ(info, 0);
    EXPECT_NEAR(s[0], std::sqrt(45.0), 1e-14);
    EXPECT_NEAR(s[1], std::sqrt(5.0), 1e-14);
}

// The published least workspaces are enough (k = min(m, n), x = max(m, n)): dgesdd "N" 3k +
// max(x, 7k), "O" 3k + max(x, 5k² + 4k), "S" and "A" 4k² + 6k + x; zgesdd "N" 2k + x, "O" 2k² + 2k
// + x, "S" and "A" k² + 2k + x; the query answers at least as much and reads no other array.
TEST(SvdExports, PublishedLeastWorkspacesAndQueries) {
    const zor_int shapes[][2] = {{30, 8}, {8, 30}, {12, 10}, {10, 12}, {1, 40}};
    for (const auto& shape : shapes) {
        const zor_int m = shape[0], n = shape[1], k = std::min(m, n), x = std::max(m, n), minus_one = -1;
        for (const char* jobz : {"N", "O", "S", "A"}) {
            const char j = *jobz;
            const zor_int dleast = j == 'N'   ? 3 * k + std::max(x, 7 * k)
                                   : j == 'O' ? 3 * k + std::max(x, 5 * k * k + 4 * k)
                                              : 4 * k * k + 6 * k + x;
            const zor_int zleast = j == 'N'   ? 2 * k + x
                                   : j == 'O' ? 2 * k * k + 2 * k + x
                                              : k * k + 2 * k + x;
            std::vector<double> a(static_cast<std::size_t>(m * n)), u(static_cast<std::size_t>(m * m)),
                vt(static_cast<std::size_t>(n * n)), s(static_cast<std::size_t>(k)), work(1);
            for (std::size_t i = 0; i < a.size(); ++i) a[i] = std::sin(1.0 + static_cast<double>(i));
            std::vector<zor_int> iwork(static_cast<std::size_t>(8 * k));
            zor_int info = 9;
            const zor_int ldu = m, ldvt = n;
            dgesdd(jobz, &m, &n, nullptr, &m, nullptr, nullptr, &ldu, nullptr, &ldvt, work.data(), &minus_one,
                   nullptr, &info, 1);
            ASSERT_EQ(info, 0);
            EXPECT_GE(work[0], 1.0);
            work.assign(static_cast<std::size_t>(dleast), 0.0);
            dgesdd(jobz, &m, &n, a.data(), &m, s.data(), u.data(), &ldu, vt.data(), &ldvt, work.data(),
                   &dleast, iwork.data(), &info, 1);
            EXPECT_EQ(info, 0) << m << "x" << n << j;
            std::vector<zor_complex_double> za(a.size()), zu(u.size()), zvt(vt.size()), zwork(1);
            for (std::size_t i = 0; i < a.size(); ++i) za[i] = {a[i], -a[i]};
            std::vector<double> rwork(
                static_cast<std::size_t>(std::max(5 * k * k + 5 * k, 2 * x * k + 2 * k * k + k)));
            zgesdd(jobz, &m, &n, nullptr, &m, nullptr, nullptr, &ldu, nullptr, &ldvt, zwork.data(),
                   &minus_one, nullptr, nullptr, &info, 1);
            ASSERT_EQ(info, 0);
            EXPECT_GE(zwork[0].real, 1.0);
            zwork.assign(static_cast<std::size_t>(zleast), {0, 0});
            zgesdd(jobz, &m, &n, za.data(), &m, s.data(), zu.data(), &ldu, zvt.data(), &ldvt, zwork.data(),
                   &zleast, rwork.data(), iwork.data(), &info, 1);
            EXPECT_EQ(info, 0) << m << "x" << n << j;
        }
    }
}

// min ||b - A x|| for A = [[1, 0], [0, 1], [1, 1]], b = (1, 2, 3): the normal equations give
// x = (1, 2) exactly; rank 2 and iwork(1), the integer workspace, come back as 32-bit values.
TEST(SvdExports, LeastSquares) {
    const zor_int m = 3, n = 2, nrhs = 1, minus_one = -1;
    double a[6] = {1, 0, 1, 0, 1, 1}, b[3] = {1, 2, 3}, s[2], work[1] = {0};
    const double rcond = -1;
    zor_int iwork[64], rank = -7, info = 9;
    dgelsd(&m, &n, &nrhs, a, &m, b, &m, s, &rcond, &rank, work, &minus_one, iwork, &info);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(rank, -7);  // a query leaves rank alone
    // 11 min(m, n) + 3 min(m, n) nlvl, with no level below the leaf size.
    EXPECT_EQ(iwork[0], 11 * 2);
    const zor_int lwork = static_cast<zor_int>(work[0]);
    std::vector<double> optimal(static_cast<std::size_t>(lwork));
    dgelsd(&m, &n, &nrhs, a, &m, b, &m, s, &rcond, &rank, optimal.data(), &lwork, iwork, &info);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(rank, 2);
    EXPECT_NEAR(b[0], 1.0, 1e-14);
    EXPECT_NEAR(b[1], 2.0, 1e-14);
    EXPECT_NEAR(s[0], std::sqrt(3.0), 1e-14);
    EXPECT_NEAR(s[1], 1.0, 1e-14);
}

struct ErrorCase {
    const char* name;
    int parameter;
    std::function<zor_int()> call;
};

const zor_int kOne = 1, kTwo = 2, kThree = 3, kBig = 1000;
double g_a[64], g_work[1000];
zor_complex_double g_z[64], g_zwork[1000];
zor_int g_iwork[64];
const double g_rcond = -1;

zor_int info_after(const std::function<void(zor_int*)>& call) {
    zor_int info = 0;
    call(&info);
    return info;
}

const ErrorCase kErrorCases[] = {
    {"DGESDD", 10,
     [] {
         return info_after([](zor_int* i) {
             dgesdd("A", &kTwo, &kThree, g_a, &kTwo, g_a, g_a, &kTwo, g_a, &kTwo, g_work, &kBig, g_iwork, i,
                    1);
         });
     }},
    {"ZGESDD", 12,
     [] {
         return info_after([](zor_int* i) {
             zgesdd("A", &kThree, &kTwo, g_z, &kThree, g_a, g_z, &kThree, g_z, &kTwo, g_zwork, &kThree, g_a,
                    g_iwork, i, 1);
         });
     }},
    {"DGELSD", 7,
     [] {
         return info_after([](zor_int* i) {
             zor_int rank = 0;
             dgelsd(&kTwo, &kThree, &kOne, g_a, &kTwo, g_a, &kTwo, g_a, &g_rcond, &rank, g_work, &kBig,
                    g_iwork, i);
         });
     }},
};

// Each case prints the report of its parameter and returns it in info.
TEST(SvdExports, ArgumentErrors) {
    for (const ErrorCase& c : kErrorCases) {
        ::testing::internal::CaptureStdout();
        const zor_int info = c.call();
        const std::string expected = "\nZOR ERROR: Parameter " + std::to_string(c.parameter) +
                                     " was incorrect on entry to " + c.name + "\n";
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), expected);
        EXPECT_EQ(info, -c.parameter) << c.name;
    }
}

}  // namespace
