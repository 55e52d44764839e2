// The reference argument checks of the 30 level-2 and level-3 BLAS routines: for each argument
// shape a valid call and calls with bad arguments, alone and together (the first failing argument
// wins), run against every routine of that shape, each with the exact message it prints; and lsame.

#include <gtest/gtest.h>

#include <initializer_list>
#include <tuple>
#include <utility>
#include <vector>

#include "interface/blas_checks.hpp"
#include "service/letters.hpp"
#include "support/arguments.hpp"

namespace zor::test {
namespace {

using namespace fortran;

// The cases of one shape (a valid call's arguments, changed) for each routine of that shape.
template <class Shape, class Check>
void add(std::vector<ArgumentCase>& cases, std::initializer_list<std::pair<const char*, Check>> routines,
         const std::vector<std::pair<Shape, zint>>& table) {
    for (const auto& [name, check] : routines) {
        for (const auto& [shape, expected] : table) {
            cases.push_back(
                {name, expected, [=, check = check] { return std::apply(check, shape.arguments()); }});
        }
    }
}

struct Gemm {
    char transa = 'N', transb = 'N';
    zint m = 4, n = 3, k = 2, lda = 4, ldb = 2, ldc = 4;
    auto arguments() const { return std::tie(transa, transb, m, n, k, lda, ldb, ldc); }
};

struct Symm {
    char side = 'L', uplo = 'U';
    zint m = 4, n = 3, lda = 4, ldb = 4, ldc = 4;
    auto arguments() const { return std::tie(side, uplo, m, n, lda, ldb, ldc); }
};

// SYRK and HERK; with Two, SYR2K and HER2K (B's leading dimension too).
template <bool Two>
struct RankUpdate {
    char uplo = 'U', trans = 'N';
    zint n = 4, k = 3, lda = 4, ldb = 4, ldc = 4;
    auto arguments() const {
        if constexpr (Two) {
            return std::tie(uplo, trans, n, k, lda, ldb, ldc);
        } else {
            return std::tie(uplo, trans, n, k, lda, ldc);
        }
    }
};

// The rank updates differ in the transpose letter they take besides "N": "T" and "C" (real), "T"
// (complex symmetric), "C" (Hermitian); `refused` is the other one.
template <bool Two, class Check>
void add_rank_updates(std::vector<ArgumentCase>& cases,
                      std::initializer_list<std::tuple<const char*, Check, char, char>> routines) {
    for (const auto& [name, check, accepted, refused] : routines) {
        std::vector<std::pair<RankUpdate<Two>, zint>> table = {
            {{}, 0},
            {{.uplo = 'l', .trans = 'n'}, 0},
            {{.trans = accepted, .lda = 3, .ldb = 3}, 0},
            {{.uplo = '?', .n = -1}, 1},
            {{.trans = refused == '\0' ? 'Y' : refused}, 2},
            {{.n = -1}, 3},
            {{.k = -1, .lda = 0}, 4},
            {{.lda = 3}, 7},
            {{.trans = accepted, .lda = 2, .ldb = 2}, 7},
            {{.ldc = 3}, Two ? 12 : 10}};
        if (Two) table.insert(table.end(), {{{.ldb = 3}, 9}, {{.trans = accepted, .lda = 3, .ldb = 2}, 9}});
        add<RankUpdate<Two>, Check>(cases, {{name, check}}, table);
    }
}

struct Trmm {
    char side = 'L', uplo = 'U', transa = 'N', diag = 'N';
    zint m = 4, n = 3, lda = 4, ldb = 4;
    auto arguments() const { return std::tie(side, uplo, transa, diag, m, n, lda, ldb); }
};

struct Gemv {
    char trans = 'N';
    zint m = 4, n = 3, lda = 4, incx = 1, incy = -2;
    auto arguments() const { return std::tie(trans, m, n, lda, incx, incy); }
};

struct Ger {
    zint m = 4, n = 3, incx = 1, incy = 1, lda = 4;
    auto arguments() const { return std::tie(m, n, incx, incy, lda); }
};

struct Symv {
    char uplo = 'L';
    zint n = 4, lda = 4, incx = 1, incy = 1;
    auto arguments() const { return std::tie(uplo, n, lda, incx, incy); }
};

struct Syr {
    char uplo = 'u';
    zint n = 4, incx = -1, lda = 4;
    auto arguments() const { return std::tie(uplo, n, incx, lda); }
};

struct Syr2 {
    char uplo = 'u';
    zint n = 4, incx = -1, incy = 2, lda = 4;
    auto arguments() const { return std::tie(uplo, n, incx, incy, lda); }
};

struct Trmv {
    char uplo = 'U', trans = 'T', diag = 'U';
    zint n = 4, lda = 4, incx = 3;
    auto arguments() const { return std::tie(uplo, trans, diag, n, lda, incx); }
};

using GemmCheck = decltype(&check_dgemm);
using SymmCheck = decltype(&check_dsymm);
using TrmmCheck = decltype(&check_dtrmm);
using GemvCheck = decltype(&check_dgemv);
using GerCheck = decltype(&check_dger);
using SymvCheck = decltype(&check_dsymv);
using SyrCheck = decltype(&check_dsyr);
using Syr2Check = decltype(&check_dsyr2);
using TrmvCheck = decltype(&check_dtrmv);

std::vector<ArgumentCase> all_cases() {
    std::vector<ArgumentCase> cases;
    add<Gemm, GemmCheck>(cases, {{"DGEMM ", &check_dgemm}, {"ZGEMM ", &check_zgemm}},
                         {{{}, 0},
                          {{.transa = 'c', .transb = 't', .lda = 2, .ldb = 3}, 0},
                          {{.m = 0, .n = 0, .k = 0, .lda = 1, .ldb = 1, .ldc = 1}, 0},
                          {{.transa = '?', .m = -1}, 1},
                          {{.transb = 'x'}, 2},
                          {{.m = -1, .lda = 0}, 3},
                          {{.n = -1}, 4},
                          {{.k = -1, .ldc = 0}, 5},
                          {{.lda = 3}, 8},
                          {{.transa = 'T', .lda = 1}, 8},
                          {{.m = 0, .lda = 0, .ldc = 1}, 8},
                          {{.ldb = 1}, 10},
                          {{.transb = 'C', .ldb = 2}, 10},
                          {{.ldc = 3}, 13}});
    add<Symm, SymmCheck>(cases,
                         {{"DSYMM ", &check_dsymm}, {"ZSYMM ", &check_zsymm}, {"ZHEMM ", &check_zhemm}},
                         {{{}, 0},
                          {{.side = 'r', .uplo = 'l', .lda = 3}, 0},
                          {{.side = 'x', .uplo = 'x'}, 1},
                          {{.uplo = 'X'}, 2},
                          {{.m = -1}, 3},
                          {{.n = -2, .ldb = 0}, 4},
                          {{.lda = 3}, 7},
                          {{.side = 'R', .lda = 2}, 7},
                          {{.ldb = 3}, 9},
                          {{.ldc = 3}, 12}});
    add_rank_updates<false, decltype(&check_dsyrk)>(cases, {{"DSYRK ", &check_dsyrk, 'C', '\0'},
                                                            {"ZSYRK ", &check_zsyrk, 'T', 'C'},
                                                            {"ZHERK ", &check_zherk, 'C', 'T'}});
    add_rank_updates<true, decltype(&check_dsyr2k)>(cases, {{"DSYR2K", &check_dsyr2k, 'T', '\0'},
                                                            {"ZSYR2K", &check_zsyr2k, 'T', 'C'},
                                                            {"ZHER2K", &check_zher2k, 'C', 'T'}});
    add<Trmm, TrmmCheck>(cases,
                         {{"DTRMM ", &check_dtrmm},
                          {"ZTRMM ", &check_ztrmm},
                          {"DTRSM ", &check_dtrsm},
                          {"ZTRSM ", &check_ztrsm}},
                         {{{}, 0},
                          {{.side = 'R', .uplo = 'l', .transa = 'C', .diag = 'u', .lda = 3}, 0},
                          {{.side = 'U'}, 1},
                          {{.uplo = 'N'}, 2},
                          {{.transa = 'U'}, 3},
                          {{.diag = 'x', .ldb = 0}, 4},
                          {{.m = -1}, 5},
                          {{.n = -1}, 6},
                          {{.lda = 3}, 9},
                          {{.side = 'R', .lda = 2}, 9},
                          {{.ldb = 3}, 11}});
    add<Gemv, GemvCheck>(cases, {{"DGEMV ", &check_dgemv}, {"ZGEMV ", &check_zgemv}},
                         {{{}, 0},
                          {{.trans = 'c'}, 0},
                          {{.trans = 'H'}, 1},
                          {{.m = -1, .incx = 0}, 2},
                          {{.n = -1}, 3},
                          {{.lda = 3}, 6},
                          {{.m = 0, .lda = 0}, 6},
                          {{.incx = 0}, 8},
                          {{.incy = 0}, 11}});
    add<Ger, GerCheck>(cases, {{"DGER  ", &check_dger}, {"ZGERU ", &check_zgeru}, {"ZGERC ", &check_zgerc}},
                       {{{}, 0},
                        {{.m = -1}, 1},
                        {{.n = -1}, 2},
                        {{.incx = 0}, 5},
                        {{.incy = 0, .lda = 0}, 7},
                        {{.lda = 3}, 9}});
    add<Symv, SymvCheck>(
        cases, {{"DSYMV ", &check_dsymv}, {"ZHEMV ", &check_zhemv}},
        {{{}, 0}, {{.uplo = 'N'}, 1}, {{.n = -1}, 2}, {{.lda = 3}, 5}, {{.incx = 0}, 7}, {{.incy = 0}, 10}});
    add<Syr, SyrCheck>(cases, {{"DSYR  ", &check_dsyr}, {"ZHER  ", &check_zher}},
                       {{{}, 0}, {{.uplo = 'x'}, 1}, {{.n = -1}, 2}, {{.incx = 0}, 5}, {{.lda = 3}, 7}});
    add<Syr2, Syr2Check>(
        cases, {{"DSYR2 ", &check_dsyr2}, {"ZHER2 ", &check_zher2}},
        {{{}, 0}, {{.uplo = 'x'}, 1}, {{.n = -1}, 2}, {{.incx = 0}, 5}, {{.incy = 0}, 7}, {{.lda = 3}, 9}});
    add<Trmv, TrmvCheck>(cases,
                         {{"DTRMV ", &check_dtrmv},
                          {"ZTRMV ", &check_ztrmv},
                          {"DTRSV ", &check_dtrsv},
                          {"ZTRSV ", &check_ztrsv}},
                         {{{}, 0},
                          {{.uplo = 'T'}, 1},
                          {{.trans = 'x', .diag = 'x'}, 2},
                          {{.diag = 'T'}, 3},
                          {{.n = -1}, 4},
                          {{.lda = 3}, 6},
                          {{.incx = 0}, 8}});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Routines, ArgumentChecks, ::testing::ValuesIn(all_cases()));

TEST(Lsame, FoldsAsciiLettersOnly) {
    const struct {
        char a, b;
        bool same;
    } cases[] = {
        {'a', 'A', true},  {'Z', 'z', true},  {'1', '1', true},        {'N', 'T', false},
        {'[', '{', false}, {'@', '`', false}, {'\xE9', '\xC9', false}, {'\xC9', '\xC9', true},
    };
    for (const auto& c : cases) EXPECT_EQ(lsame(c.a, c.b), c.same) << "'" << c.a << "' '" << c.b << "'";
}

}  // namespace
}  // namespace zor::test
