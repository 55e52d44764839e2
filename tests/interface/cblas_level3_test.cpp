// The level-3 CBLAS functions beside GEMM as a program sees them, through the shared library: for
// each function a table of bad arguments with the parameter number its report must name (the first
// in the published check order winning when two are bad), the letters that only the Fortran-style
// check rejects, and every option in both layouts against the reference of
// support/level3_reference.hpp.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "support/level3_reference.hpp"
#include "zor/zor.h"

namespace {

using zor::test::Dense;
using zor::test::Expected;
using zor::test::Index;
using zor::test::Value;

using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The library's complex values, with the member names the reference uses.
struct Complex {
    double re, im;
};

std::string report(int parameter, const char* routine) {
    return "\nZOR ERROR: Parameter " + std::to_string(parameter) + " was incorrect on entry to " + routine +
           "\n";
}

// ---- argument checks --------------------------------------------------------------------------------

// A valid call, column-major: A is 4 x 4 (or 4 x 2 for the updates), B and C 4 x 3.
struct Args {
    int layout = CblasColMajor, side = CblasLeft, uplo = CblasUpper, trans = CblasNoTrans,
        diag = CblasNonUnit;
    zor_int m = 4, n = 3, k = 2, lda = 4, ldb = 4, ldc = 4;
};

struct Bad {
    const char* what;
    std::function<void(Args&)> change;
    int parameter;  // 0: the call is valid
};

// Each function of one argument shape, called with arrays large enough for every case below.
using Call = std::function<void(const Args&, double* a, double* b, double* c)>;

struct Function {
    const char* name;
    Call call;
};

CBLAS_LAYOUT layout(const Args& x) {
    return static_cast<CBLAS_LAYOUT>(x.layout);
}
CBLAS_SIDE side(const Args& x) {
    return static_cast<CBLAS_SIDE>(x.side);
}
CBLAS_UPLO uplo(const Args& x) {
    return static_cast<CBLAS_UPLO>(x.uplo);
}
CBLAS_TRANSPOSE trans(const Args& x) {
    return static_cast<CBLAS_TRANSPOSE>(x.trans);
}
CBLAS_DIAG diag(const Args& x) {
    return static_cast<CBLAS_DIAG>(x.diag);
}

// Every bad call prints one report naming the function and the parameter, and leaves B and C as
// they were; every valid one prints nothing.
void check_table(const std::vector<Function>& functions, const std::vector<Bad>& table) {
    for (const Function& f : functions) {
        for (const Bad& bad : table) {
            Args args;
            bad.change(args);
            std::vector<double> a(200, 0.5), b(200, 0.25), c(200, 0.125);
            const std::vector<double> b0 = b, c0 = c;
            CaptureStdout();
            f.call(args, a.data(), b.data(), c.data());
            const std::string out = GetCapturedStdout();
            if (bad.parameter == 0) {
                EXPECT_EQ(out, "") << f.name << ": " << bad.what;
                continue;
            }
            EXPECT_EQ(out, report(bad.parameter, f.name)) << bad.what;
            EXPECT_TRUE(b == b0 && c == c0) << f.name << ": " << bad.what << " wrote an operand";
        }
    }
}

TEST(CblasLevel3Checks, SymmetricMultiply) {
    const std::vector<Function> functions = {
        {"cblas_dsymm",
         [](const Args& x, double* a, double* b, double* c) {
             cblas_dsymm(layout(x), side(x), uplo(x), x.m, x.n, 1.0, a, x.lda, b, x.ldb, 0.0, c, x.ldc);
         }},
        {"cblas_zsymm",
         [](const Args& x, double* a, double* b, double* c) {
             const double one[2] = {1, 0};
             cblas_zsymm(layout(x), side(x), uplo(x), x.m, x.n, one, a, x.lda, b, x.ldb, one, c, x.ldc);
         }},
        {"cblas_zhemm",
         [](const Args& x, double* a, double* b, double* c) {
             const double one[2] = {1, 0};
             cblas_zhemm(layout(x), side(x), uplo(x), x.m, x.n, one, a, x.lda, b, x.ldb, one, c, x.ldc);
         }},
    };
    check_table(
        functions,
        {
            {"valid", [](Args&) {}, 0},
            {"side", [](Args& x) { x.side = 140; }, 2},
            {"uplo", [](Args& x) { x.uplo = 123; }, 3},
            {"m", [](Args& x) { x.m = -1; }, 4},
            {"n", [](Args& x) { x.n = -1; }, 5},
            {"layout", [](Args& x) { x.layout = 100; }, 1},
            {"lda, left: m", [](Args& x) { x.lda = 3; }, 8},
            {"lda, right: n",
             [](Args& x) {
                 x.side = CblasRight;
                 x.lda = 2;
             },
             8},
            {"right, lda = n", [](Args& x) { x.side = CblasRight, x.lda = 3; }, 0},
            {"ldb", [](Args& x) { x.ldb = 3; }, 10},
            {"ldc", [](Args& x) { x.ldc = 3; }, 13},
            {"row-major ldb = n", [](Args& x) { x.layout = CblasRowMajor, x.ldb = 3, x.ldc = 3; }, 0},
            {"row-major ldb < n", [](Args& x) { x.layout = CblasRowMajor, x.ldb = 2, x.ldc = 3; }, 10},
            {"row-major ldc < n", [](Args& x) { x.layout = CblasRowMajor, x.ldc = 2; }, 13},
            {"m = 0, ld = 1", [](Args& x) { x.m = 0, x.lda = 1, x.ldb = 1, x.ldc = 1; }, 0},
            {"side before uplo", [](Args& x) { x.side = 0, x.uplo = 0; }, 2},
            {"m before layout", [](Args& x) { x.layout = 0, x.m = -1; }, 4},
            {"layout before lda", [](Args& x) { x.layout = 0, x.lda = 0; }, 1},
            {"lda before ldc", [](Args& x) { x.ldc = 0, x.lda = 0; }, 8},
        });
}

TEST(CblasLevel3Checks, RankKUpdates) {
    const std::vector<Function> functions = {
        {"cblas_dsyrk",
         [](const Args& x, double* a, double*, double* c) {
             cblas_dsyrk(layout(x), uplo(x), trans(x), x.n, x.k, 1.0, a, x.lda, 1.0, c, x.ldc);
         }},
        {"cblas_zsyrk",
         [](const Args& x, double* a, double*, double* c) {
             const double one[2] = {1, 0};
             cblas_zsyrk(layout(x), uplo(x), trans(x), x.n, x.k, one, a, x.lda, one, c, x.ldc);
         }},
        {"cblas_zherk",
         [](const Args& x, double* a, double*, double* c) {
             cblas_zherk(layout(x), uplo(x), trans(x), x.n, x.k, 1.0, a, x.lda, 1.0, c, x.ldc);
         }},
    };
    // Column-major A is n x k untransposed, k x n transposed; row-major the other way round.
    check_table(functions, {
                               {"valid", [](Args&) {}, 0},
                               {"uplo", [](Args& x) { x.uplo = 0; }, 2},
                               {"trans", [](Args& x) { x.trans = 114; }, 3},
                               {"n", [](Args& x) { x.n = -1; }, 4},
                               {"k", [](Args& x) { x.k = -1; }, 5},
                               {"layout", [](Args& x) { x.layout = 103; }, 1},
                               {"lda < n", [](Args& x) { x.lda = 2; }, 8},
                               {"row-major lda = k", [](Args& x) { x.layout = CblasRowMajor, x.lda = 2; }, 0},
                               {"row-major lda < k", [](Args& x) { x.layout = CblasRowMajor, x.lda = 1; }, 8},
                               {"ldc", [](Args& x) { x.ldc = 2; }, 11},
                               {"uplo before trans", [](Args& x) { x.uplo = 0, x.trans = 0; }, 2},
                               {"k before layout", [](Args& x) { x.layout = 0, x.k = -1; }, 5},
                               {"lda before ldc", [](Args& x) { x.lda = 1, x.ldc = 1; }, 8},
                           });
}

TEST(CblasLevel3Checks, Rank2KUpdates) {
    const std::vector<Function> functions = {
        {"cblas_dsyr2k",
         [](const Args& x, double* a, double* b, double* c) {
             cblas_dsyr2k(layout(x), uplo(x), trans(x), x.n, x.k, 1.0, a, x.lda, b, x.ldb, 1.0, c, x.ldc);
         }},
        {"cblas_zsyr2k",
         [](const Args& x, double* a, double* b, double* c) {
             const double one[2] = {1, 0};
             cblas_zsyr2k(layout(x), uplo(x), trans(x), x.n, x.k, one, a, x.lda, b, x.ldb, one, c, x.ldc);
         }},
        {"cblas_zher2k",
         [](const Args& x, double* a, double* b, double* c) {
             const double one[2] = {1, 0};
             cblas_zher2k(layout(x), uplo(x), trans(x), x.n, x.k, one, a, x.lda, b, x.ldb, 1.0, c, x.ldc);
         }},
    };
    check_table(functions,
                {
                    {"valid", [](Args&) {}, 0},
                    {"uplo", [](Args& x) { x.uplo = 124; }, 2},
                    {"trans", [](Args& x) { x.trans = 110; }, 3},
                    {"n", [](Args& x) { x.n = -1; }, 4},
                    {"k", [](Args& x) { x.k = -2; }, 5},
                    {"layout", [](Args& x) { x.layout = 0; }, 1},
                    {"lda", [](Args& x) { x.lda = 2; }, 8},
                    {"ldb", [](Args& x) { x.ldb = 2; }, 10},
                    {"transposed: ldb < k", [](Args& x) { x.trans = CblasTrans, x.lda = 2, x.ldb = 1; }, 10},
                    {"row-major: lda < k", [](Args& x) { x.layout = CblasRowMajor, x.lda = 1; }, 8},
                    {"ldc", [](Args& x) { x.ldc = 1; }, 13},
                    {"n before k", [](Args& x) { x.n = -1, x.k = -1; }, 4},
                    {"ldb before ldc", [](Args& x) { x.ldb = 1, x.ldc = 1; }, 10},
                });
}

TEST(CblasLevel3Checks, TriangularMultiplyAndSolve) {
    std::vector<Function> functions;
    for (const bool solve : {false, true}) {
        functions.push_back(
            {solve ? "cblas_dtrsm" : "cblas_dtrmm", [solve](const Args& x, double* a, double* b, double*) {
                 (solve ? cblas_dtrsm : cblas_dtrmm)(layout(x), side(x), uplo(x), trans(x), diag(x), x.m, x.n,
                                                     1.0, a, x.lda, b, x.ldb);
             }});
        functions.push_back(
            {solve ? "cblas_ztrsm" : "cblas_ztrmm", [solve](const Args& x, double* a, double* b, double*) {
                 const double one[2] = {1, 0};
                 (solve ? cblas_ztrsm : cblas_ztrmm)(layout(x), side(x), uplo(x), trans(x), diag(x), x.m, x.n,
                                                     one, a, x.lda, b, x.ldb);
             }});
    }
    check_table(functions,
                {
                    {"valid", [](Args&) {}, 0},
                    {"side", [](Args& x) { x.side = 143; }, 2},
                    {"uplo", [](Args& x) { x.uplo = 120; }, 3},
                    {"transa", [](Args& x) { x.trans = 0; }, 4},
                    {"diag", [](Args& x) { x.diag = 133; }, 5},
                    {"m", [](Args& x) { x.m = -1; }, 6},
                    {"n", [](Args& x) { x.n = -1; }, 7},
                    {"layout", [](Args& x) { x.layout = 1; }, 1},
                    {"lda, left: m", [](Args& x) { x.lda = 3; }, 10},
                    {"lda, right: n", [](Args& x) { x.side = CblasRight, x.lda = 2; }, 10},
                    {"ldb", [](Args& x) { x.ldb = 3; }, 12},
                    {"row-major ldb < n", [](Args& x) { x.layout = CblasRowMajor, x.ldb = 2; }, 12},
                    {"row-major ldb = n", [](Args& x) { x.layout = CblasRowMajor, x.ldb = 3; }, 0},
                    {"diag before m", [](Args& x) { x.diag = 0, x.m = -1; }, 5},
                    {"n before layout", [](Args& x) { x.n = -1, x.layout = 0; }, 7},
                    {"lda before ldb", [](Args& x) { x.lda = 0, x.ldb = 0; }, 10},
                });
}

// A transpose letter the CBLAS check accepts but the routine does not: the Fortran-style check
// reports it under the routine's own name. Row-major calls flip it into one they take.
TEST(CblasLevel3Checks, LettersOnlyTheRoutineRejects) {
    double a[32] = {}, c[32] = {};
    const double one[2] = {1, 0};
    CaptureStdout();
    cblas_zsyrk(CblasColMajor, CblasUpper, CblasConjTrans, 2, 2, one, a, 2, one, c, 2);
    cblas_zherk(CblasColMajor, CblasLower, CblasTrans, 2, 2, 1.0, a, 2, 1.0, c, 2);
    cblas_zsyr2k(CblasColMajor, CblasUpper, CblasConjTrans, 2, 2, one, a, 2, a, 2, one, c, 2);
    cblas_zher2k(CblasColMajor, CblasLower, CblasTrans, 2, 2, one, a, 2, a, 2, 1.0, c, 2);
    EXPECT_EQ(GetCapturedStdout(),
              "\nZOR ERROR: Parameter 2 was incorrect on entry to ZSYRK \n"
              "\nZOR ERROR: Parameter 2 was incorrect on entry to ZHERK \n"
              "\nZOR ERROR: Parameter 2 was incorrect on entry to ZSYR2K\n"
              "\nZOR ERROR: Parameter 2 was incorrect on entry to ZHER2K\n");
    CaptureStdout();
    cblas_zsyrk(CblasRowMajor, CblasUpper, CblasConjTrans, 2, 2, one, a, 2, one, c, 2);
    cblas_zherk(CblasRowMajor, CblasLower, CblasTrans, 2, 2, 1.0, a, 2, 1.0, c, 2);
    EXPECT_EQ(GetCapturedStdout(), "");
}

// ---- results in both layouts ------------------------------------------------------------------------

// A matrix of rows x cols in either layout, with ld - (row-major ? cols : rows) padding elements
// per line, NaN.
template <class E>
struct Matrix {
    bool row_major;
    Index rows, cols, ld;
    std::vector<E> data;

    Matrix(bool row, Index r, Index c, int seed) : row_major(row), rows(r), cols(c), ld((row ? c : r) + 1) {
        data.assign(static_cast<std::size_t>(ld * (row ? r : c)), zor::test::scalar<E>(kNaN, kNaN));
        for (Index i = 0; i < rows; ++i) {
            for (Index j = 0; j < cols; ++j) {
                const double re = ((i * 7 + j * 13 + seed * 31) % 17) / 8.0 - 1.0;
                (*this)(i, j) = zor::test::scalar<E>(re, ((i * 5 + j * 3 + seed) % 11) / 5.0 - 1.0);
            }
        }
    }
    E& operator()(Index i, Index j) {
        return data[static_cast<std::size_t>(row_major ? i * ld + j : i + j * ld)];
    }
    // The column-major copy the reference reads.
    Dense dense() const {
        const Dense stored =
            zor::test::load(data.data(), row_major ? cols : rows, row_major ? rows : cols, ld);
        return row_major ? zor::test::op(stored, 'T') : stored;
    }
    // Whether storage element k is one of the matrix's (not padding).
    bool element(std::size_t k) const { return static_cast<Index>(k) % ld < (row_major ? cols : rows); }
};

template <class E>
::testing::AssertionResult padding_untouched(const Matrix<E>& x, const std::vector<E>& before) {
    for (std::size_t k = 0; k < before.size(); ++k) {
        if (!x.element(k) && std::memcmp(&x.data[k], &before[k], sizeof(E)) != 0) {
            return ::testing::AssertionFailure() << "padding element " << k << " was written";
        }
    }
    return ::testing::AssertionSuccess();
}

// Every element of X within tolerance of `want`, the padding untouched.
template <class E>
::testing::AssertionResult matches(const Matrix<E>& x, const std::vector<E>& before, const Expected& want,
                                   long double terms, const std::function<bool(Index, Index)>& compared) {
    const Dense got = x.dense();
    for (Index j = 0; j < x.cols; ++j) {
        for (Index i = 0; i < x.rows; ++i) {
            if (!compared(i, j)) continue;
            const Value g = got(i, j), w = want.value(i, j);
            if (!(zor::test::magnitude(g - w) <= terms * zor::test::kEps * want.size(i, j).re)) {
                return ::testing::AssertionFailure()
                       << "element (" << i << ", " << j << ") is " << static_cast<double>(g.re) << " + "
                       << static_cast<double>(g.im) << "i, expected " << static_cast<double>(w.re) << " + "
                       << static_cast<double>(w.im) << "i";
            }
        }
    }
    return padding_untouched(x, before);
}

// The triangle of a square matrix that `uplo` names, as seen in the call's own layout.
bool in(int uplo_value, Index i, Index j) {
    return uplo_value == CblasUpper ? i <= j : i >= j;
}

template <class E>
void poison_outside(Matrix<E>& a, int uplo_value, bool diagonal_too) {
    for (Index i = 0; i < a.rows; ++i) {
        for (Index j = 0; j < a.cols; ++j) {
            if (!in(uplo_value, i, j) || (diagonal_too && i == j)) a(i, j) = zor::test::scalar<E>(kNaN, kNaN);
        }
    }
}

const bool kLayouts[] = {false, true};
const Value kAlpha{0.75, -0.5}, kBeta{0.5, 0.25};

template <class E>
E as(Value v) {
    return zor::test::scalar<E>(static_cast<double>(v.re), static_cast<double>(v.im));
}

TEST(CblasLevel3Results, SymmetricAndHermitianMultiply) {
    const Index m = 6, n = 5;
    for (const bool row : kLayouts) {
        for (const int s : {CblasLeft, CblasRight}) {
            for (const int u : {CblasUpper, CblasLower}) {
                for (const int which : {0, 1, 2}) {  // dsymm, zsymm, zhemm
                    const bool complex = which > 0, herm = which == 2;
                    const Index order = s == CblasLeft ? m : n;
                    const CBLAS_LAYOUT l = row ? CblasRowMajor : CblasColMajor;
                    auto run = [&](auto e) {
                        using E = decltype(e);
                        Matrix<E> a(row, order, order, 1), b(row, m, n, 2), c(row, m, n, 3);
                        poison_outside(a, u, false);
                        const std::vector<E> c0 = c.data;
                        Dense sym = a.dense();  // the stored triangle, mirrored
                        for (Index i = 0; i < order; ++i) {
                            for (Index j = 0; j < order; ++j) {
                                if (!in(u, i, j)) sym(i, j) = herm ? zor::test::conj(sym(j, i)) : sym(j, i);
                            }
                            if (herm) sym(i, i).im = 0;
                        }
                        const Dense bd = b.dense(), cd = c.dense();
                        const Value al = complex ? kAlpha : Value{1.5, 0},
                                    be = complex ? kBeta : Value{-0.5, 0};
                        const Expected want = s == CblasLeft ? zor::test::combine(al, sym, bd, be, &cd)
                                                             : zor::test::combine(al, bd, sym, be, &cd);
                        const E alpha = as<E>(al), beta = as<E>(be);
                        if constexpr (zor::test::kComplex<E>) {
                            (herm ? cblas_zhemm : cblas_zsymm)(l, CBLAS_SIDE(s), CBLAS_UPLO(u), m, n, &alpha,
                                                               a.data.data(), a.ld, b.data.data(), b.ld,
                                                               &beta, c.data.data(), c.ld);
                        } else {
                            cblas_dsymm(l, CBLAS_SIDE(s), CBLAS_UPLO(u), m, n, alpha, a.data.data(), a.ld,
                                        b.data.data(), b.ld, beta, c.data.data(), c.ld);
                        }
                        EXPECT_TRUE(matches(c, c0, want, 64, [](Index, Index) { return true; }))
                            << "function " << which << ", row-major " << row << ", side " << s << ", uplo "
                            << u;
                    };
                    complex ? run(Complex{}) : run(0.0);
                }
            }
        }
    }
}

TEST(CblasLevel3Results, RankUpdates) {
    const Index n = 6, k = 5;
    for (const bool row : kLayouts) {
        for (const int u : {CblasUpper, CblasLower}) {
            for (const int t : {CblasNoTrans, CblasTrans, CblasConjTrans}) {
                for (const int which : {0, 1, 2, 3, 4, 5}) {  // dsyrk, dsyr2k, zsyrk, zsyr2k, zherk, zher2k
                    const bool complex = which >= 2, herm = which >= 4, two = which % 2 == 1;
                    // zsyrk and zsyr2k take no conjugate transposition, zherk and zher2k no transposition.
                    if (complex && t != CblasNoTrans && (t == CblasConjTrans) != herm) continue;
                    const CBLAS_LAYOUT l = row ? CblasRowMajor : CblasColMajor;
                    const bool untransposed = t == CblasNoTrans;
                    auto run = [&](auto e) {
                        using E = decltype(e);
                        Matrix<E> a(row, untransposed ? n : k, untransposed ? k : n, 4);
                        Matrix<E> b(row, untransposed ? n : k, untransposed ? k : n, 5), c(row, n, n, 6);
                        poison_outside(c, u, false);
                        const std::vector<E> c0 = c.data;
                        const char to_p = untransposed ? 'N' : (herm ? 'C' : 'T'), across = herm ? 'C' : 'T';
                        const Dense p = zor::test::op(a.dense(), to_p), q = zor::test::op(b.dense(), to_p);
                        Dense cd = c.dense();
                        Value al = complex ? kAlpha : Value{1.5, 0}, be = complex ? kBeta : Value{-0.5, 0};
                        if (herm) {
                            be.im = 0;
                            if (!two) al.im = 0;
                            for (Index i = 0; i < n; ++i) cd(i, i).im = 0;
                        }
                        Expected want =
                            zor::test::combine(al, p, zor::test::op(two ? q : p, across), be, &cd);
                        if (two) {
                            zor::test::add(want, zor::test::combine(herm ? zor::test::conj(al) : al, q,
                                                                    zor::test::op(p, across), {}, nullptr));
                        }
                        const E alpha = as<E>(al), beta = as<E>(be);
                        const CBLAS_UPLO up = CBLAS_UPLO(u);
                        const CBLAS_TRANSPOSE tr = CBLAS_TRANSPOSE(t);
                        E* cc = c.data.data();
                        const E *ad = a.data.data(), *bd = b.data.data();
                        if constexpr (zor::test::kComplex<E>) {
                            if (which == 2) cblas_zsyrk(l, up, tr, n, k, &alpha, ad, a.ld, &beta, cc, c.ld);
                            if (which == 3)
                                cblas_zsyr2k(l, up, tr, n, k, &alpha, ad, a.ld, bd, b.ld, &beta, cc, c.ld);
                            if (which == 4)
                                cblas_zherk(l, up, tr, n, k, alpha.re, ad, a.ld, beta.re, cc, c.ld);
                            if (which == 5)
                                cblas_zher2k(l, up, tr, n, k, &alpha, ad, a.ld, bd, b.ld, beta.re, cc, c.ld);
                        } else if (two) {
                            cblas_dsyr2k(l, up, tr, n, k, alpha, ad, a.ld, bd, b.ld, beta, cc, c.ld);
                        } else {
                            cblas_dsyrk(l, up, tr, n, k, alpha, ad, a.ld, beta, cc, c.ld);
                        }
                        auto triangle = [&](Index i, Index j) { return in(u, i, j); };
                        EXPECT_TRUE(matches(c, c0, want, 64, triangle))
                            << "function " << which << ", row-major " << row << ", uplo " << u << ", trans "
                            << t;
                        // The other triangle is never written.
                        for (Index i = 0; i < n; ++i) {
                            for (Index j = 0; j < n; ++j) {
                                if (!triangle(i, j)) {
                                    EXPECT_TRUE(std::isnan(zor::test::value(c(i, j)).re));
                                }
                            }
                        }
                    };
                    complex ? run(Complex{}) : run(0.0);
                }
            }
        }
    }
}

TEST(CblasLevel3Results, TriangularMultiplyAndSolve) {
    const Index m = 7, n = 6;
    for (const bool row : kLayouts) {
        for (const int s : {CblasLeft, CblasRight}) {
            for (const int u : {CblasUpper, CblasLower}) {
                for (const int t : {CblasNoTrans, CblasTrans, CblasConjTrans}) {
                    for (const int d : {CblasNonUnit, CblasUnit}) {
                        for (const int which : {0, 1, 2, 3}) {  // dtrmm, dtrsm, ztrmm, ztrsm
                            const bool complex = which >= 2, solve = which % 2 == 1;
                            const Index order = s == CblasLeft ? m : n;
                            const CBLAS_LAYOUT l = row ? CblasRowMajor : CblasColMajor;
                            auto run = [&](auto e) {
                                using E = decltype(e);
                                Matrix<E> a(row, order, order, 7), b(row, m, n, 8);
                                for (Index i = 0; i < order; ++i) a(i, i) = zor::test::scalar<E>(4.0, 1.0);
                                poison_outside(a, u, d == CblasUnit);
                                const std::vector<E> b0 = b.data;
                                Dense tri = a.dense();
                                for (Index i = 0; i < order; ++i) {
                                    for (Index j = 0; j < order; ++j) {
                                        if (!in(u, i, j)) tri(i, j) = Value{};
                                    }
                                    if (d == CblasUnit) tri(i, i) = Value{1, 0};
                                }
                                const char letter = t == CblasNoTrans ? 'N' : t == CblasTrans ? 'T' : 'C';
                                const Dense op_a = zor::test::op(tri, letter), before = b.dense();
                                const Value al = complex ? kAlpha : Value{1.5, 0};
                                const E alpha = as<E>(al);
                                const CBLAS_SIDE sd = CBLAS_SIDE(s);
                                const CBLAS_UPLO up = CBLAS_UPLO(u);
                                const CBLAS_TRANSPOSE tr = CBLAS_TRANSPOSE(t);
                                const CBLAS_DIAG dg = CBLAS_DIAG(d);
                                if constexpr (zor::test::kComplex<E>) {
                                    (solve ? cblas_ztrsm : cblas_ztrmm)(l, sd, up, tr, dg, m, n, &alpha,
                                                                        a.data.data(), a.ld, b.data.data(),
                                                                        b.ld);
                                } else {
                                    (solve ? cblas_dtrsm : cblas_dtrmm)(l, sd, up, tr, dg, m, n, alpha,
                                                                        a.data.data(), a.ld, b.data.data(),
                                                                        b.ld);
                                }
                                // The solve: op(A) X (or X op(A)) multiplied back gives alpha B.
                                const Dense x = b.dense();
                                const Dense& left = s == CblasLeft ? op_a : (solve ? x : before);
                                const Dense& right = s == CblasLeft ? (solve ? x : before) : op_a;
                                Expected want =
                                    zor::test::combine(solve ? Value{1, 0} : al, left, right, {}, nullptr);
                                if (!solve) {
                                    EXPECT_TRUE(matches(b, b0, want, 64, [](Index, Index) { return true; }))
                                        << "function " << which << ", row-major " << row << ", " << s << u
                                        << t << d;
                                } else {
                                    EXPECT_TRUE(padding_untouched(b, b0));
                                    // want holds op(A) X; compare it with alpha B.
                                    for (Index j = 0; j < n; ++j) {
                                        for (Index i = 0; i < m; ++i) {
                                            const Value ab = al * before(i, j), got = want.value(i, j);
                                            EXPECT_LE(zor::test::magnitude(got - ab),
                                                      64 * zor::test::kEps *
                                                          (want.size(i, j).re + zor::test::magnitude(ab)))
                                                << "function " << which << ", row-major " << row << ", " << s
                                                << u << t << d << " at (" << i << ", " << j << ")";
                                        }
                                    }
                                }
                            };
                            complex ? run(Complex{}) : run(0.0);
                        }
                    }
                }
            }
        }
    }
}

}  // namespace
