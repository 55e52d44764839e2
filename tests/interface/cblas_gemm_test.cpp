// cblas_dgemm and cblas_zgemm as a program sees them, through the exported names of the shared
// library: the argument checks in their published order, and both layouts for every pair of
// operations against a product computed here.

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <string>
#include <vector>

#include "zor/zor.h"

namespace {

using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

std::string report(int parameter, const char* routine) {
    return "\nZOR ERROR: Parameter " + std::to_string(parameter) + " was incorrect on entry to " + routine +
           "\n";
}

struct CheckCase {
    int layout, transa, transb;
    zor_int m, n, k, lda, ldb, ldc;
    int parameter;  // the one reported; 0: accepted
};

constexpr int kCol = CblasColMajor, kRow = CblasRowMajor, kN = CblasNoTrans, kT = CblasTrans,
              kC = CblasConjTrans;

const CheckCase kCheckCases[] = {
    {kCol, kN, kN, 2, 2, 2, 1, 2, 2, 9},
    {100, kN, kN, 2, 2, 2, 2, 2, 2, 1},
    {100, 110, kN, 2, 2, 2, 2, 2, 2, 2},
    {100, kN, kN, -1, 2, 2, 2, 2, 2, 4},  // the dimensions come before the layout
    {kCol, kN, 114, -1, 2, 2, 2, 2, 2, 3},
    {kCol, kN, kN, 2, -1, 2, 2, 2, 2, 5},
    {kCol, kN, kN, 2, 2, -1, 2, 2, 2, 6},
    {kRow, kN, kN, 3, 4, 5, 5, 4, 4, 0},
    {kRow, kN, kN, 3, 4, 5, 3, 4, 4, 9},
    {kRow, kN, kN, 3, 4, 5, 5, 3, 4, 11},
    {kRow, kN, kN, 3, 4, 5, 5, 4, 3, 14},
    {kRow, kT, kC, 3, 4, 5, 3, 5, 4, 0},  // A stored K x M, B stored N x K
    {kRow, kT, kC, 3, 4, 5, 2, 5, 4, 9},
    {kRow, kT, kC, 3, 4, 5, 3, 4, 4, 11},
    {kCol, kN, kN, 3, 4, 5, 3, 5, 3, 0},
    {kCol, kT, kT, 3, 4, 5, 5, 4, 3, 0},
    {kCol, kT, kT, 3, 4, 5, 4, 4, 3, 9},
    {kCol, kT, kT, 3, 4, 5, 5, 3, 3, 11},
    {kCol, kN, kN, 3, 4, 5, 3, 5, 2, 14},
    {kCol, kN, kN, 0, 0, 0, 1, 1, 1, 0},  // ld = 1 is enough for empty matrices
    {kCol, kN, kN, 0, 0, 0, 0, 1, 1, 9},
};

class GemmChecks : public ::testing::TestWithParam<CheckCase> {};

// A rejected call reports its first bad parameter and leaves C as it was; an accepted one computes.
TEST_P(GemmChecks, ReportTheFirstBadParameterInThePublishedOrder) {
    const CheckCase& c = GetParam();
    std::vector<double> a(64, 1.0), b(64, 1.0), real_c(64, 7.0);
    std::vector<zor_complex_double> za(64, {1.0, 0.0}), zb(64, {1.0, 0.0}), zc(64, {7.0, 0.0});
    const zor_complex_double one{1.0, 0.0};
    CaptureStdout();
    cblas_dgemm(static_cast<CBLAS_LAYOUT>(c.layout), static_cast<CBLAS_TRANSPOSE>(c.transa),
                static_cast<CBLAS_TRANSPOSE>(c.transb), c.m, c.n, c.k, 1.0, a.data(), c.lda, b.data(), c.ldb,
                0.0, real_c.data(), c.ldc);
    EXPECT_EQ(GetCapturedStdout(), c.parameter ? report(c.parameter, "cblas_dgemm") : "");
    CaptureStdout();
    cblas_zgemm(static_cast<CBLAS_LAYOUT>(c.layout), static_cast<CBLAS_TRANSPOSE>(c.transa),
                static_cast<CBLAS_TRANSPOSE>(c.transb), c.m, c.n, c.k, &one, za.data(), c.lda, zb.data(),
                c.ldb, &one, zc.data(), c.ldc);
    EXPECT_EQ(GetCapturedStdout(), c.parameter ? report(c.parameter, "cblas_zgemm") : "");
    const bool computed = c.parameter == 0 && c.m > 0 && c.n > 0;
    EXPECT_EQ(real_c[0], computed ? c.k : 7.0);
    EXPECT_EQ(zc[0].real, computed ? 7.0 + c.k : 7.0);
}

INSTANTIATE_TEST_SUITE_P(Cases, GemmChecks, ::testing::ValuesIn(kCheckCases));

// ---- results in both layouts ----------------------------------------------------------------------

using Complex = std::complex<long double>;

// Element (i, j) of an r x c matrix stored in `layout` with leading dimension ld.
template <class T>
T& at(std::vector<T>& x, int layout, zor_int ld, zor_int i, zor_int j) {
    return layout == kCol ? x[i + j * ld] : x[j + i * ld];
}

Complex value(double x) {
    return {x, 0};
}
Complex value(const zor_complex_double& x) {
    return {x.real, x.imag};
}

// Element (i, j) of op(X), X stored with `rows` x `cols` in `layout`.
template <class T>
Complex op(std::vector<T>& x, int layout, zor_int ld, int trans, zor_int i, zor_int j) {
    if (trans == kN) return value(at(x, layout, ld, i, j));
    const Complex v = value(at(x, layout, ld, j, i));
    return trans == kC ? std::conj(v) : v;
}

template <class T>
void fill(std::vector<T>& x, std::uint64_t seed) {
    for (T& v : x) {
        seed = seed * 6364136223846793005u + 1442695040888963407u;
        const double re = static_cast<double>(static_cast<int>(seed >> 59) - 16) / 8;
        if constexpr (std::is_same_v<T, double>) {
            v = re;
        } else {
            v = {re, static_cast<double>(static_cast<int>((seed >> 40) & 31) - 16) / 8};
        }
    }
}

// Small dyadic values: every product and sum here is exact, whatever the order.
template <class T>
void check_layout(int layout, int transa, int transb, zor_int m, zor_int n, zor_int k) {
    const bool a_plain = transa == kN, b_plain = transb == kN;
    const zor_int a_rows = a_plain ? m : k, a_cols = a_plain ? k : m;
    const zor_int b_rows = b_plain ? k : n, b_cols = b_plain ? n : k;
    // Leading dimensions one larger than needed, in whichever direction the layout stores.
    const zor_int lda = (layout == kCol ? a_rows : a_cols) + 1, ldb = (layout == kCol ? b_rows : b_cols) + 1;
    const zor_int ldc = (layout == kCol ? m : n) + 1;
    std::vector<T> a(lda * (layout == kCol ? a_cols : a_rows)), b(ldb * (layout == kCol ? b_cols : b_rows));
    std::vector<T> c(ldc * (layout == kCol ? n : m));
    fill(a, 1 + m);
    fill(b, 2 + n);
    fill(c, 3 + k);
    std::vector<T> c0 = c;
    if constexpr (std::is_same_v<T, double>) {
        cblas_dgemm(static_cast<CBLAS_LAYOUT>(layout), static_cast<CBLAS_TRANSPOSE>(transa),
                    static_cast<CBLAS_TRANSPOSE>(transb), m, n, k, 0.5, a.data(), lda, b.data(), ldb, -2.0,
                    c.data(), ldc);
    } else {
        const zor_complex_double alpha{0.5, -1.0}, beta{-2.0, 0.25};
        cblas_zgemm(static_cast<CBLAS_LAYOUT>(layout), static_cast<CBLAS_TRANSPOSE>(transa),
                    static_cast<CBLAS_TRANSPOSE>(transb), m, n, k, &alpha, a.data(), lda, b.data(), ldb,
                    &beta, c.data(), ldc);
    }
    const Complex alpha = std::is_same_v<T, double> ? Complex(0.5, 0) : Complex(0.5, -1.0);
    const Complex beta = std::is_same_v<T, double> ? Complex(-2.0, 0) : Complex(-2.0, 0.25);
    for (zor_int i = 0; i < m; ++i) {
        for (zor_int j = 0; j < n; ++j) {
            Complex sum = 0;
            for (zor_int p = 0; p < k; ++p)
                sum += op(a, layout, lda, transa, i, p) * op(b, layout, ldb, transb, p, j);
            const Complex want = alpha * sum + beta * value(at(c0, layout, ldc, i, j));
            ASSERT_EQ(value(at(c, layout, ldc, i, j)), want)
                << (layout == kCol ? "column" : "row") << "-major, op " << transa << " " << transb << ", C("
                << i << ", " << j << ")";
        }
    }
}

TEST(GemmLayouts, RowMajorAndColumnMajorCallsComputeTheSameProduct) {
    for (const int layout : {kCol, kRow}) {
        for (const int transa : {kN, kT, kC}) {
            for (const int transb : {kN, kT, kC}) {
                for (const auto& [m, n, k] : {std::tuple<zor_int, zor_int, zor_int>{5, 3, 4}, {37, 41, 19}}) {
                    check_layout<double>(layout, transa, transb, m, n, k);
                    check_layout<zor_complex_double>(layout, transa, transb, m, n, k);
                }
            }
        }
    }
}

}  // namespace
