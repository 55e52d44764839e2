// The Fortran-style dgemm and zgemm: letters in either case reach the engine, a rejected call is
// reported under the blank-padded name and computes nothing.

#include <gtest/gtest.h>

#include <vector>

#include "interface/blas.hpp"

namespace zor::fortran {
namespace {

using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

TEST(FortranGemm, LettersInEitherCaseAreAccepted) {
    const zor_int m = 3, n = 2, k = 4, ld = 4;
    const std::vector<double> a(16, 1.0), b(16, 2.0);
    const double alpha = 1.0, beta = 0.0;
    for (const char* letters : {"nn", "tc", "CT", "Nt"}) {
        std::vector<double> c(16, -1.0);
        CaptureStdout();
        dgemm(&letters[0], &letters[1], &m, &n, &k, &alpha, a.data(), &ld, b.data(), &ld, &beta, c.data(),
              &ld, 1, 1);
        EXPECT_EQ(GetCapturedStdout(), "") << letters;
        EXPECT_EQ(c[0], 8.0) << letters;
        EXPECT_EQ(c[3], -1.0) << letters;  // below the three rows
    }
}

TEST(FortranGemm, RejectedCallsReportTheReferenceNumberAndComputeNothing) {
    const zor_int m = 3, n = 2, k = 4, ld = 4, short_ld = 2;
    const std::vector<zcomplex> a(16, zcomplex{1, 0}), b(16, zcomplex{1, 0});
    const zcomplex one{1, 0};
    std::vector<zcomplex> c(16, zcomplex{5, 5});
    CaptureStdout();
    zgemm("X", "N", &m, &n, &k, &one, a.data(), &ld, b.data(), &ld, &one, c.data(), &ld, 1, 1);
    zgemm("N", "N", &m, &n, &k, &one, a.data(), &short_ld, b.data(), &ld, &one, c.data(), &ld, 1, 1);
    EXPECT_EQ(GetCapturedStdout(),
              "\nZOR ERROR: Parameter 1 was incorrect on entry to ZGEMM \n"
              "\nZOR ERROR: Parameter 8 was incorrect on entry to ZGEMM \n");
    for (const zcomplex& x : c) EXPECT_TRUE(x.re == 5 && x.im == 5);
}

}  // namespace
}  // namespace zor::fortran
