// ilaenv and iparmq over tables of (query, name, options, sizes, processor) -> answer, dlamch bit
// for bit, and the processor level that ilaenv reads in child processes.

#include <gtest/gtest.h>

#include <bit>
#include <cctype>
#include <climits>
#include <cstring>
#include <sstream>
#include <string>

#include "lapack/tuning/tuning.hpp"
#include "support/process.hpp"

namespace zor {
namespace {

constexpr int kAnyLevel = -1;

struct TuningCase {
    std::int32_t ispec;
    const char* name;
    const char* opts;
    zint n1, n2, n3, n4;
    zint expected;
    int level = kAnyLevel;  // kAnyLevel: the same answer at every level, on every vendor
    bool authentic_amd = false;
};

std::string describe(const TuningCase& c) {
    std::ostringstream text;
    text << "ilaenv(" << c.ispec << ", \"" << c.name << "\", \"" << c.opts << "\", " << c.n1 << ", " << c.n2
         << ", " << c.n3 << ", " << c.n4 << ")";
    return text.str();
}

zint answer_on(const TuningCase& c, CpuLevel level, bool amd) {
    return tuned_answer({level, amd}, c.ispec, c.name, static_cast<zint>(std::strlen(c.name)), c.opts,
                        static_cast<zint>(std::strlen(c.opts)), c.n1, c.n2, c.n3, c.n4);
}

class Ilaenv : public ::testing::TestWithParam<TuningCase> {};

TEST_P(Ilaenv, Answers) {
    const TuningCase& c = GetParam();
    if (c.level != kAnyLevel) {
        EXPECT_EQ(answer_on(c, static_cast<CpuLevel>(c.level), c.authentic_amd), c.expected)
            << describe(c) << " at level " << c.level << (c.authentic_amd ? " on AuthenticAMD" : "");
        return;
    }
    for (int level = 0; level < kCpuLevelCount; ++level) {
        for (bool amd : {false, true}) {
            EXPECT_EQ(answer_on(c, static_cast<CpuLevel>(level), amd), c.expected)
                << describe(c) << " at level " << level << (amd ? " on AuthenticAMD" : "");
        }
    }
}

std::string case_name(const ::testing::TestParamInfo<TuningCase>& info) {
    std::ostringstream name;
    name << "q" << (info.param.ispec < 0 ? 0 : info.param.ispec) << "_";
    for (const char* p = info.param.name; *p; ++p)
        name << (std::isalnum(static_cast<unsigned char>(*p)) ? *p : '_');
    name << "_" << info.index;
    return name.str();
}

constexpr zint kNever = 1000000;
using C = TuningCase;

// One row for each rule and each edge of a rule; the rows of the table itself are its own.
INSTANTIATE_TEST_SUITE_P(
    QueriesWithoutName, Ilaenv,
    ::testing::Values(C{20, "DGETRF", " ", 1, 1, 1, 1, -1}, C{9, "DGELSD", " ", 0, 0, 0, 0, 25},
                      // Query 6: min(n1, n2) * 1.6 truncated, in single precision, saturated.
                      C{6, "DGESVD", " ", 10, 7, 0, 0, 11},
                      C{6, "DGESVD", " ", 33554432, 33554432, 0, 0, 53687092},
                      C{6, "DGESVD", " ", LLONG_MAX, LLONG_MAX, 0, 0, LLONG_MAX},
                      C{6, "DGESVD", " ", LLONG_MIN, 0, 0, 0, LLONG_MIN},
                      // Queries 13 to 16 go to iparmq with n1..n4 as n, ilo, ihi, lwork.
                      C{13, "ZHSEQR", "SV", 1000, 1, 1000, -1, 96}),
    case_name);

INSTANTIATE_TEST_SUITE_P(
    NamePieces, Ilaenv,
    ::testing::Values(
        // A name that is not S, D, C or Z answers 1 to every name-dependent query.
        C{1, "XGETRF", " ", 100, 100, -1, -1, 1}, C{19, "", " ", 0, 0, 0, 0, 1},
        // Any case: a lower-case name answers as its upper-case form.
        C{1, "dgeqrf", " ", 1000, 1000, -1, -1, 64}, C{3, "dgetrf", " ", 5000, 3000, 8, 0, 4000, 4},
        // Entries by precision: OR real, UN complex; SY real and HE complex for TRD.
        C{1, "DORMBR", " ", 500, 500, 500, -1, 32}, C{1, "DUNGQR", " ", 500, 500, 500, -1, 1},
        C{1, "ZORGQR", " ", 500, 500, 500, -1, 1}, C{1, "DORG2R", " ", 500, 500, 500, -1, 1},
        C{1, "ZSYTRD", " ", 500, -1, -1, -1, 1}, C{1, "ZHETRD", " ", 500, -1, -1, -1, 32},
        // Names the table does not know; the band rules' edge.
        C{1, "DNOTAB", " ", 1000, 1000, -1, -1, 1}, C{3, "DNOTAB", " ", 1000, 1000, -1, -1, 0},
        C{18, "ZPOTRF", "U", 0, 0, 0, 0, kNever}, C{1, "DGBTRF", " ", 1000, 1000, 10, 64, 1},
        C{1, "ZGBTRF", " ", 1000, 1000, 10, 65, 32},
        // The LU, Cholesky and packed rules.
        C{1, "DGETRF", "S", 3000, 32, -1, -1, 32}, C{1, "ZGETRF", "S", 33, 3000, -1, -1, 16},
        C{1, "DGETRF", "S", 3000, 3000, -1, -1, 256}, C{1, "ZPOTRF", "L", 100, -1, -1, -1, 56},
        C{1, "DPOTRF", "U", 1000, -1, -1, -1, 256}, C{1, "DPPTRF", "No Memory", 1000, -1, -1, -1, 32},
        C{1, "ZPPTRS", "Memory", 1000, 7, -1, -1, 1}, C{1, "DPPTRS", "Memory", 1000, 8, -1, -1, 128}),
    case_name);

INSTANTIATE_TEST_SUITE_P(
    Crossovers, Ilaenv,
    ::testing::Values(
        // GETRF: 4000 for D names with n3 = 8 and n2 above 2800, except at Default on AuthenticAMD.
        C{3, "DGETRF", " ", 5000, 2801, 8, 0, 4000, 4}, C{3, "DGETRF", " ", 5000, 2800, 8, 0, 64},
        C{3, "ZGETRF", " ", 5000, 5000, 8, 0, 64}, C{3, "DGETRF", " ", 5000, 5000, 8, 0, 64, 0, true},
        // GEQRF: by n1 and the area, by n1 alone for options beginning with "2", and n1 + n2 with n3 >= 1.
        C{3, "DGEQRF", " ", 125, 100, -1, -1, 128}, C{3, "DGEQRF", " ", 126, 100, -1, -1, 8},
        C{3, "DGEQRF", " ", LLONG_MAX, LLONG_MAX, -1, -1, 8}, C{3, "DGEQRF", "2", 200, 1, -1, -1, 128},
        C{3, "DGEQRF", "2", 201, 1, -1, -1, 80}, C{3, "DGEQRF", "2", 150, 49, 2, -1, 199}),
    case_name);

INSTANTIATE_TEST_SUITE_P(
    BlockSizes, Ilaenv,
    ::testing::Values(
        // Query 1 for names ending in QRF by n2; query 12 for TRF and QRF; query 7 by processor level.
        C{1, "DGEQRF", " ", 9, 300, -1, -1, 16}, C{1, "DGEQRF", " ", 9, 301, -1, -1, 24},
        C{1, "DGEQRF", "p", 9, 201, -1, -1, 16}, C{12, "DGEQRF", "P", 0, 1901, 0, 0, 128},
        C{12, "DGETRF", "P", 0, 5000, 0, 0, 16}, C{12, "DHSEQR", "SV", 1000, 1, 1000, -1, 75},
        C{7, "ZHGEQZ", " ", 0, 0, 0, 0, 2, 2}, C{7, "dgghrd", " ", 0, 0, 0, 0, 32, 3}),
    case_name);

TEST(Ilaenv, ReadsOnlyTheCharactersItIsGiven) {
    // A name of four characters is padded with blanks, not read beyond.
    const char name[4] = {'D', 'G', 'E', 'Q'};
    EXPECT_EQ(tuned_answer({CpuLevel::Avx, false}, 1, name, 4, " ", 1, 9, 9, -1, -1), 1);
    // Options of length 0 have no first character: "P" is not read.
    const char qrf[6] = {'d', 'g', 'e', 'q', 'r', 'f'};
    EXPECT_EQ(tuned_answer({CpuLevel::Avx, false}, 1, qrf, 6, "P", 0, 9, 500, -1, -1), 48);
    EXPECT_EQ(tuned_answer({CpuLevel::Avx, false}, 1, qrf, 6, "P", 1, 9, 500, -1, -1), 32);
}

// The level ilaenv reads is the one in force, in a child process with "ZOR_DEBUG_CPU_TYPE".
TEST(Ilaenv, FollowsTheProcessorLevelInForce) {
    const struct {
        const char* cpu_type;
        int answer;
    } cases[] = {{"2", 2}, {"JRD", 32}};
    for (const auto& c : cases) {
        test::set_env("ZOR_DEBUG_CPU_TYPE", c.cpu_type);
        EXPECT_EXIT(std::exit(static_cast<int>(ilaenv(7, "ZHGEQZ", " ", 0, 0, 0, 0))),
                    ::testing::ExitedWithCode(c.answer), "")
            << "ZOR_DEBUG_CPU_TYPE=" << c.cpu_type;
    }
    test::set_env("ZOR_DEBUG_CPU_TYPE", nullptr);
}

struct IparmqCase {
    zint ispec;
    zint ilo, ihi;
    zint expected;
};

class Iparmq : public ::testing::TestWithParam<IparmqCase> {};

TEST_P(Iparmq, PublishedMultishiftParameters) {
    const IparmqCase& c = GetParam();
    EXPECT_EQ(iparmq(c.ispec, "DHSEQR", "SV    ", c.ihi, c.ilo, c.ihi, -1, 6, 6), c.expected)
        << "ispec " << c.ispec << ", active block " << c.ilo << ".." << c.ihi;
}

INSTANTIATE_TEST_SUITE_P(
    Parameters, Iparmq,
    ::testing::Values(IparmqCase{12, 1, 10, 75}, IparmqCase{17, 1, 10, -1},
                      // Shifts by the order of the active block, deflation window, accumulation.
                      IparmqCase{15, 1, 29, 2}, IparmqCase{15, 1, 30, 4}, IparmqCase{15, 5, 1, 2},
                      IparmqCase{15, LLONG_MIN, LLONG_MAX, 256}, IparmqCase{13, 1, 500, 54},
                      IparmqCase{13, 1, 501, 81}, IparmqCase{16, 1, 149, 0}, IparmqCase{16, 1, 150, 2}));

struct MachineConstantCase {
    const char* query;
    std::uint64_t bits;
};

class Dlamch : public ::testing::TestWithParam<MachineConstantCase> {};

TEST_P(Dlamch, AnswersTheBitPatternInEitherCase) {
    const MachineConstantCase& c = GetParam();
    const auto length = static_cast<zint>(std::strlen(c.query));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(dlamch(c.query, length)), c.bits) << c.query;
    char lower[32];
    std::strcpy(lower, c.query);
    lower[0] = static_cast<char>(lower[0] >= 'A' && lower[0] <= 'Z' ? lower[0] + 32 : lower[0]);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(dlamch(lower, length)), c.bits) << lower;
}

INSTANTIATE_TEST_SUITE_P(Constants, Dlamch,
                         ::testing::Values(MachineConstantCase{"Epsilon", 0x3CA0000000000000},
                                           MachineConstantCase{"Safe minimum", 0x0010000000000000},
                                           MachineConstantCase{"Base", 0x4000000000000000},
                                           MachineConstantCase{"Precision", 0x3CB0000000000000},
                                           MachineConstantCase{"Number of digits", 0x404A800000000000},
                                           MachineConstantCase{"Rounding mode", 0x3FF0000000000000},
                                           MachineConstantCase{"Minimum exponent", 0xC08FE80000000000},
                                           MachineConstantCase{"Underflow threshold", 0x0010000000000000},
                                           MachineConstantCase{"Largest exponent", 0x4090000000000000},
                                           MachineConstantCase{"Overflow threshold", 0x7FEFFFFFFFFFFFFF},
                                           MachineConstantCase{"A", 0x2AB0000000000000},
                                           MachineConstantCase{"I", 0x5530000000000000},
                                           MachineConstantCase{"F", 0x21B0000000000000},
                                           MachineConstantCase{"X", 0x5E30000000000000},
                                           MachineConstantCase{"T", 0x4058ACE5422AA0DB},
                                           // Other letters and characters: +0.0.
                                           MachineConstantCase{"Q", 0}, MachineConstantCase{"", 0},
                                           MachineConstantCase{" E", 0}, MachineConstantCase{"\xC5", 0}));

}  // namespace
}  // namespace zor
