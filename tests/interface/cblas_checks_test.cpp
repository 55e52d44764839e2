// The CBLAS machinery every level-2 and level-3 entry point uses: checks reported in the given
// order up to the first failure that ends the call, and the letters of the row-major flips.

#include <gtest/gtest.h>

#include "interface/cblas.hpp"

namespace zor::cblas {
namespace {

using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

std::string report(int parameter, const char* routine) {
    return "\nZOR ERROR: Parameter " + std::to_string(parameter) + " was incorrect on entry to " + routine +
           "\n";
}

TEST(CblasChecks, TheFirstFailureInTheGivenOrderEndsTheCall) {
    CaptureStdout();
    EXPECT_FALSE(check_arguments("cblas_dgemm", {{false, 2}, {true, 4}, {true, 1}, {true, 9}}));
    EXPECT_EQ(GetCapturedStdout(), report(4, "cblas_dgemm"));
    CaptureStdout();
    EXPECT_TRUE(check_arguments("cblas_dgemm", {{false, 2}, {false, 4}, {false, 1}}));
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(CblasChecks, AFailureThatGoesOnIsReportedAndLaterChecksStillRun) {
    CaptureStdout();
    EXPECT_TRUE(check_arguments("cblas_dtrmv", {{false, 1}, {true, 2, false}, {true, 4, false}, {false, 5}}));
    EXPECT_EQ(GetCapturedStdout(), report(2, "cblas_dtrmv") + report(4, "cblas_dtrmv"));
    CaptureStdout();
    EXPECT_FALSE(check_arguments("cblas_dtrmv", {{true, 3, false}, {true, 7}, {true, 9}}));
    EXPECT_EQ(GetCapturedStdout(), report(3, "cblas_dtrmv") + report(7, "cblas_dtrmv"));
}

TEST(CblasLetters, RowMajorCallsFlipUploAndSide) {
    EXPECT_EQ(uplo_letter(CblasColMajor, CblasUpper), 'U');
    EXPECT_EQ(uplo_letter(CblasRowMajor, CblasUpper), 'L');
    EXPECT_EQ(uplo_letter(CblasRowMajor, CblasLower), 'U');
    EXPECT_EQ(side_letter(CblasColMajor, CblasRight), 'R');
    EXPECT_EQ(side_letter(CblasRowMajor, CblasRight), 'L');
    EXPECT_EQ(transpose_letter(CblasConjTrans), 'C');
    EXPECT_EQ(diag_letter(CblasUnit), 'U');
    EXPECT_EQ(kFlippedRealTransposeLetters[CblasNoTrans - CblasNoTrans], 'T');
    EXPECT_EQ(kFlippedHermitianTransposeLetters[CblasNoTrans - CblasNoTrans], 'C');
    // Values outside an enumeration give the letter that the Fortran-style checks reject.
    EXPECT_EQ(uplo_letter(CblasColMajor, 120), kUnsetLetter);
    EXPECT_EQ(transpose_letter(114), kUnsetLetter);
    EXPECT_EQ(side_letter(CblasRowMajor, 0), kUnsetLetter);
    EXPECT_TRUE(leading_dimension_too_small(0, 0));
    EXPECT_FALSE(leading_dimension_too_small(1, 0));
    EXPECT_TRUE(leading_dimension_too_small(4, 5));
}

}  // namespace
}  // namespace zor::cblas
