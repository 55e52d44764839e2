// The reference argument checks of the 30 level-2 and level-3 BLAS routines: for each routine a
// valid call and calls with bad arguments, alone and together (the first failing argument wins),
// each with the exact message it prints; and lsame.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "interface/blas_checks.hpp"
#include "service/lsame.hpp"

namespace zor {
namespace {

using namespace fortran;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

struct CheckCase {
    std::string label;
    const char* name;  // blank-padded, as printed
    std::function<zint()> check;
    zint expected;
};

class BlasCheck : public ::testing::TestWithParam<CheckCase> {};

TEST_P(BlasCheck, ReturnsAndReportsTheFirstBadArgument) {
    const CheckCase& c = GetParam();
    CaptureStdout();
    const zint info = c.check();
    const std::string printed = GetCapturedStdout();
    EXPECT_EQ(info, c.expected);
    if (c.expected == 0) {
        EXPECT_EQ(printed, "");
    } else {
        EXPECT_EQ(printed, "\nZOR ERROR: Parameter " + std::to_string(c.expected) +
                               " was incorrect on entry to " + c.name + "\n");
    }
}

// Each shape: the arguments of a valid call, and the cases as changes to them.

struct Gemm {
    char transa = 'N', transb = 'N';
    zint m = 4, n = 3, k = 2, lda = 4, ldb = 2, ldc = 4;
};
using GemmCheck = zint (*)(const char&, const char&, const zint&, const zint&, const zint&, const zint&,
                           const zint&, const zint&);

void add_gemm(std::vector<CheckCase>& cases, const char* name, GemmCheck check) {
    auto add = [&](const char* label, Gemm a, zint expected) {
        cases.push_back({label, name,
                         [=] { return check(a.transa, a.transb, a.m, a.n, a.k, a.lda, a.ldb, a.ldc); },
                         expected});
    };
    add("valid", {}, 0);
    add("lower_case_options", {.transa = 'c', .transb = 't', .lda = 2, .ldb = 3}, 0);
    add("transa", {.transa = 'X'}, 1);
    add("transb", {.transb = 'x'}, 2);
    add("m", {.m = -1}, 3);
    add("n", {.n = -1}, 4);
    add("k", {.k = -1}, 5);
    add("lda_rows_m", {.lda = 3}, 8);
    add("lda_rows_k", {.transa = 'T', .lda = 1}, 8);
    add("ldb_rows_k", {.ldb = 1}, 10);
    add("ldb_rows_n", {.transb = 'C', .ldb = 2}, 10);
    add("ldc", {.ldc = 3}, 13);
    add("empty_lda_at_least_1", {.m = 0, .lda = 0, .ldc = 1}, 8);
    add("empty_valid", {.m = 0, .n = 0, .k = 0, .lda = 1, .ldb = 1, .ldc = 1}, 0);
    add("transa_before_m", {.transa = '?', .m = -1}, 1);
    add("m_before_lda", {.m = -1, .lda = 0}, 3);
    add("k_before_ldc", {.k = -1, .ldc = 0}, 5);
}

struct Symm {
    char side = 'L', uplo = 'U';
    zint m = 4, n = 3, lda = 4, ldb = 4, ldc = 4;
};
using SymmCheck = zint (*)(const char&, const char&, const zint&, const zint&, const zint&, const zint&,
                           const zint&);

void add_symm(std::vector<CheckCase>& cases, const char* name, SymmCheck check) {
    auto add = [&](const char* label, Symm a, zint expected) {
        cases.push_back(
            {label, name, [=] { return check(a.side, a.uplo, a.m, a.n, a.lda, a.ldb, a.ldc); }, expected});
    };
    add("valid", {}, 0);
    add("right_lower", {.side = 'r', .uplo = 'l', .lda = 3}, 0);
    add("side", {.side = 'N'}, 1);
    add("uplo", {.uplo = 'X'}, 2);
    add("m", {.m = -1}, 3);
    add("n", {.n = -1}, 4);
    add("lda_left", {.lda = 3}, 7);
    add("lda_right", {.side = 'R', .lda = 2}, 7);
    add("ldb", {.ldb = 3}, 9);
    add("ldc", {.ldc = 3}, 12);
    add("side_before_uplo", {.side = 'x', .uplo = 'x'}, 1);
    add("n_before_ldb", {.n = -2, .ldb = 0}, 4);
}

struct RankK {
    char uplo = 'U', trans = 'N';
    zint n = 4, k = 3, lda = 4, ldb = 4, ldc = 4;
};
using SyrkCheck = zint (*)(const char&, const char&, const zint&, const zint&, const zint&, const zint&);
using Syr2kCheck = zint (*)(const char&, const char&, const zint&, const zint&, const zint&, const zint&,
                            const zint&);

// `refused`: the transpose letter this routine does not accept ('T' for HERK, 'C' for complex SYRK).
template <class Check>
void add_rank_k(std::vector<CheckCase>& cases, const char* name, Check check, char accepted, char refused) {
    constexpr bool two = std::is_same_v<Check, Syr2kCheck>;
    auto add = [&](const char* label, RankK a, zint expected) {
        cases.push_back({label, name,
                         [=] {
                             if constexpr (two) {
                                 return check(a.uplo, a.trans, a.n, a.k, a.lda, a.ldb, a.ldc);
                             } else {
                                 return check(a.uplo, a.trans, a.n, a.k, a.lda, a.ldc);
                             }
                         },
                         expected});
    };
    add("valid", {}, 0);
    add("transposed", {.trans = accepted, .lda = 3, .ldb = 3}, 0);
    add("lower_case", {.uplo = 'l', .trans = 'n'}, 0);
    add("uplo", {.uplo = 'A'}, 1);
    add("trans", {.trans = 'Y'}, 2);
    if (refused != 0) add("trans_refused", {.trans = refused}, 2);
    add("n", {.n = -1}, 3);
    add("k", {.k = -1}, 4);
    add("lda_rows_n", {.lda = 3}, 7);
    add("lda_rows_k", {.trans = accepted, .lda = 2}, 7);
    if (two) {
        add("ldb_rows_n", {.ldb = 3}, 9);
        add("ldb_rows_k", {.trans = accepted, .lda = 3, .ldb = 2}, 9);
    }
    add("ldc", {.ldc = 3}, two ? 12 : 10);
    add("uplo_before_n", {.uplo = '?', .n = -1}, 1);
    add("k_before_lda", {.k = -1, .lda = 0}, 4);
}

struct Trmm {
    char side = 'L', uplo = 'U', transa = 'N', diag = 'N';
    zint m = 4, n = 3, lda = 4, ldb = 4;
};
using TrmmCheck = zint (*)(const char&, const char&, const char&, const char&, const zint&, const zint&,
                           const zint&, const zint&);

void add_trmm(std::vector<CheckCase>& cases, const char* name, TrmmCheck check) {
    auto add = [&](const char* label, Trmm a, zint expected) {
        cases.push_back({label, name,
                         [=] { return check(a.side, a.uplo, a.transa, a.diag, a.m, a.n, a.lda, a.ldb); },
                         expected});
    };
    add("valid", {}, 0);
    add("right_conjugate_unit", {.side = 'R', .uplo = 'l', .transa = 'C', .diag = 'u', .lda = 3}, 0);
    add("side", {.side = 'U'}, 1);
    add("uplo", {.uplo = 'N'}, 2);
    add("transa", {.transa = 'U'}, 3);
    add("diag", {.diag = 'L'}, 4);
    add("m", {.m = -1}, 5);
    add("n", {.n = -1}, 6);
    add("lda_left", {.lda = 3}, 9);
    add("lda_right", {.side = 'R', .lda = 2}, 9);
    add("ldb", {.ldb = 3}, 11);
    add("diag_before_ldb", {.diag = 'x', .ldb = 0}, 4);
}

struct Gemv {
    char trans = 'N';
    zint m = 4, n = 3, lda = 4, incx = 1, incy = -2;
};
using GemvCheck = zint (*)(const char&, const zint&, const zint&, const zint&, const zint&, const zint&);

void add_gemv(std::vector<CheckCase>& cases, const char* name, GemvCheck check) {
    auto add = [&](const char* label, Gemv a, zint expected) {
        cases.push_back(
            {label, name, [=] { return check(a.trans, a.m, a.n, a.lda, a.incx, a.incy); }, expected});
    };
    add("valid", {}, 0);
    add("conjugate", {.trans = 'c'}, 0);
    add("trans", {.trans = 'H'}, 1);
    add("m", {.m = -1}, 2);
    add("n", {.n = -1}, 3);
    add("lda", {.lda = 3}, 6);
    add("lda_empty", {.m = 0, .lda = 0}, 6);
    add("incx", {.incx = 0}, 8);
    add("incy", {.incy = 0}, 11);
    add("m_before_incx", {.m = -1, .incx = 0}, 2);
}

struct Ger {
    zint m = 4, n = 3, incx = 1, incy = 1, lda = 4;
};
using GerCheck = zint (*)(const zint&, const zint&, const zint&, const zint&, const zint&);

void add_ger(std::vector<CheckCase>& cases, const char* name, GerCheck check) {
    auto add = [&](const char* label, Ger a, zint expected) {
        cases.push_back({label, name, [=] { return check(a.m, a.n, a.incx, a.incy, a.lda); }, expected});
    };
    add("valid", {}, 0);
    add("m", {.m = -1}, 1);
    add("n", {.n = -1}, 2);
    add("incx", {.incx = 0}, 5);
    add("incy", {.incy = 0}, 7);
    add("lda", {.lda = 3}, 9);
    add("incy_before_lda", {.incy = 0, .lda = 0}, 7);
}

struct Symv {
    char uplo = 'L';
    zint n = 4, lda = 4, incx = 1, incy = 1;
};
using SymvCheck = zint (*)(const char&, const zint&, const zint&, const zint&, const zint&);

void add_symv(std::vector<CheckCase>& cases, const char* name, SymvCheck check) {
    auto add = [&](const char* label, Symv a, zint expected) {
        cases.push_back({label, name, [=] { return check(a.uplo, a.n, a.lda, a.incx, a.incy); }, expected});
    };
    add("valid", {}, 0);
    add("uplo", {.uplo = 'N'}, 1);
    add("n", {.n = -1}, 2);
    add("lda", {.lda = 3}, 5);
    add("incx", {.incx = 0}, 7);
    add("incy", {.incy = 0}, 10);
}

struct Syr {
    char uplo = 'u';
    zint n = 4, incx = -1, incy = 2, lda = 4;
};
using SyrCheck = zint (*)(const char&, const zint&, const zint&, const zint&);
using Syr2Check = zint (*)(const char&, const zint&, const zint&, const zint&, const zint&);

void add_syr(std::vector<CheckCase>& cases, const char* name, SyrCheck check) {
    auto add = [&](const char* label, Syr a, zint expected) {
        cases.push_back({label, name, [=] { return check(a.uplo, a.n, a.incx, a.lda); }, expected});
    };
    add("valid", {}, 0);
    add("uplo", {.uplo = 'x'}, 1);
    add("n", {.n = -1}, 2);
    add("incx", {.incx = 0}, 5);
    add("lda", {.lda = 3}, 7);
}

void add_syr2(std::vector<CheckCase>& cases, const char* name, Syr2Check check) {
    auto add = [&](const char* label, Syr a, zint expected) {
        cases.push_back({label, name, [=] { return check(a.uplo, a.n, a.incx, a.incy, a.lda); }, expected});
    };
    add("valid", {}, 0);
    add("uplo", {.uplo = 'x'}, 1);
    add("n", {.n = -1}, 2);
    add("incx", {.incx = 0}, 5);
    add("incy", {.incy = 0}, 7);
    add("lda", {.lda = 3}, 9);
}

struct Trmv {
    char uplo = 'U', trans = 'T', diag = 'U';
    zint n = 4, lda = 4, incx = 3;
};
using TrmvCheck = zint (*)(const char&, const char&, const char&, const zint&, const zint&, const zint&);

void add_trmv(std::vector<CheckCase>& cases, const char* name, TrmvCheck check) {
    auto add = [&](const char* label, Trmv a, zint expected) {
        cases.push_back(
            {label, name, [=] { return check(a.uplo, a.trans, a.diag, a.n, a.lda, a.incx); }, expected});
    };
    add("valid", {}, 0);
    add("uplo", {.uplo = 'T'}, 1);
    add("trans", {.trans = 'U'}, 2);
    add("diag", {.diag = 'T'}, 3);
    add("n", {.n = -1}, 4);
    add("lda", {.lda = 3}, 6);
    add("incx", {.incx = 0}, 8);
    add("trans_before_diag", {.trans = 'x', .diag = 'x'}, 2);
}

std::vector<CheckCase> all_cases() {
    std::vector<CheckCase> cases;
    add_gemm(cases, "DGEMM ", &check_dgemm);
    add_gemm(cases, "ZGEMM ", &check_zgemm);
    add_symm(cases, "DSYMM ", &check_dsymm);
    add_symm(cases, "ZSYMM ", &check_zsymm);
    add_symm(cases, "ZHEMM ", &check_zhemm);
    add_rank_k(cases, "DSYRK ", &check_dsyrk, 'C', 0);
    add_rank_k(cases, "ZSYRK ", &check_zsyrk, 'T', 'C');
    add_rank_k(cases, "ZHERK ", &check_zherk, 'C', 'T');
    add_rank_k(cases, "DSYR2K", &check_dsyr2k, 'T', 0);
    add_rank_k(cases, "ZSYR2K", &check_zsyr2k, 'T', 'C');
    add_rank_k(cases, "ZHER2K", &check_zher2k, 'C', 'T');
    add_trmm(cases, "DTRMM ", &check_dtrmm);
    add_trmm(cases, "ZTRMM ", &check_ztrmm);
    add_trmm(cases, "DTRSM ", &check_dtrsm);
    add_trmm(cases, "ZTRSM ", &check_ztrsm);
    add_gemv(cases, "DGEMV ", &check_dgemv);
    add_gemv(cases, "ZGEMV ", &check_zgemv);
    add_ger(cases, "DGER  ", &check_dger);
    add_ger(cases, "ZGERU ", &check_zgeru);
    add_ger(cases, "ZGERC ", &check_zgerc);
    add_symv(cases, "DSYMV ", &check_dsymv);
    add_symv(cases, "ZHEMV ", &check_zhemv);
    add_syr(cases, "DSYR  ", &check_dsyr);
    add_syr(cases, "ZHER  ", &check_zher);
    add_syr2(cases, "DSYR2 ", &check_dsyr2);
    add_syr2(cases, "ZHER2 ", &check_zher2);
    add_trmv(cases, "DTRMV ", &check_dtrmv);
    add_trmv(cases, "ZTRMV ", &check_ztrmv);
    add_trmv(cases, "DTRSV ", &check_dtrsv);
    add_trmv(cases, "ZTRSV ", &check_ztrsv);
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Routines, BlasCheck, ::testing::ValuesIn(all_cases()),
                         [](const ::testing::TestParamInfo<CheckCase>& info) {
                             std::string name = info.param.name;
                             while (name.back() == ' ') name.pop_back();
                             return name + "_" + info.param.label;
                         });

TEST(Lsame, FoldsAsciiLettersOnly) {
    const struct {
        char a, b;
        bool same;
    } cases[] = {
        {'a', 'A', true},   {'A', 'a', true},     {'n', 'n', true},        {'Z', 'z', true},
        {'1', '1', true},   {'a', 'b', false},    {'N', 'T', false},       {'[', '{', false},
        {'@', '`', false},  {'^', '~', false},    {'\xE9', '\xC9', false}, {'\xC9', '\xC9', true},
        {'\0', ' ', false}, {'a', '\x81', false},
    };
    for (const auto& c : cases) EXPECT_EQ(lsame(c.a, c.b), c.same) << "'" << c.a << "' '" << c.b << "'";
}

}  // namespace
}  // namespace zor
