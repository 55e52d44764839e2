// The level-2 CBLAS functions as a program sees them: every argument check with its parameter
// number and the routine named in the message, in the published order (a bad letter that is
// reported and passed on draws the Fortran-style routine's own report as well), nothing computed
// after a failure; and every function's row-major and column-major forms against the definition.

#include <gtest/gtest.h>

#include <complex>
#include <cstring>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "zor/zor.h"

namespace {

using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;
using Complex = std::complex<double>;

std::string report(int parameter, const std::string& routine) {
    return "\nZOR ERROR: Parameter " + std::to_string(parameter) + " was incorrect on entry to " + routine +
           "\n";
}

// Arguments of any level-2 function, valid by default (column-major, 2 by 2, unit strides).
struct Args {
    int layout = CblasColMajor, trans = CblasNoTrans, uplo = CblasUpper, diag = CblasNonUnit;
    zor_int m = 2, n = 2, lda = 2, incx = 1, incy = 1;
};

// Operand storage large enough for any of the calls, and what it held before.
struct Operands {
    double a[8] = {1, 2, 3, 4, 5, 6, 7, 8}, x[8] = {1, -1, 2, -2, 3, -3, 4, -4},
           y[8] = {5, 6, 7, 8, 9, 10, 11, 12};
    bool unchanged() const {
        const Operands fresh;
        return std::memcmp(this, &fresh, sizeof fresh) == 0;
    }
};

struct BadCase {
    std::function<void(Args&)> change;
    std::vector<int> reported;  // by the CBLAS function, in order
    int fortran_reported;       // by the Fortran-style check after a letter passed on; 0 for none
};

struct Function {
    const char* name;
    const char* fortran_name;
    std::function<void(const Args&, Operands&)> call;
    std::vector<BadCase> cases;
};

const double kOne = 1.0;
const Complex kComplexOne(1.0, 0.0);

std::vector<Function> functions() {
    auto L = [](int v) { return static_cast<CBLAS_LAYOUT>(v); };
    auto T = [](int v) { return static_cast<CBLAS_TRANSPOSE>(v); };
    auto U = [](int v) { return static_cast<CBLAS_UPLO>(v); };
    auto D = [](int v) { return static_cast<CBLAS_DIAG>(v); };
    const BadCase layout{[](Args& a) { a.layout = 100; }, {1}, 0};
    // (the complex calls reuse the double storage as complex elements; sizes stay within it)
    std::vector<BadCase> gemv = {
        layout,
        {[](Args& a) { a.trans = 110; }, {2}, 1},
        {[](Args& a) { a.m = -1; }, {3}, 0},
        {[](Args& a) { a.n = -1; }, {4}, 0},
        {[](Args& a) { a.lda = 1; }, {7}, 0},
        {[](Args& a) { a.layout = CblasRowMajor, a.m = 1, a.lda = 1; }, {7}, 0},  // row-major: lda >= N
        {[](Args& a) { a.incx = 0; }, {9}, 0},
        {[](Args& a) { a.incy = 0; }, {12}, 0},
        {[](Args& a) { a.layout = 0, a.trans = 0; }, {1}, 0},
        {[](Args& a) { a.trans = 0, a.m = -1; }, {2, 3}, 0},
        {[](Args& a) { a.lda = 0, a.incx = 0; }, {7}, 0},
        {[](Args& a) { a.incx = 0, a.incy = 0; }, {9}, 0},
    };
    std::vector<BadCase> ger = {
        layout,
        {[](Args& a) { a.m = -1; }, {2}, 0},
        {[](Args& a) { a.n = -1; }, {3}, 0},
        {[](Args& a) { a.lda = 1; }, {10}, 0},
        {[](Args& a) { a.incx = 0; }, {6}, 0},
        {[](Args& a) { a.incy = 0; }, {8}, 0},
        {[](Args& a) { a.lda = 1, a.incx = 0; }, {10}, 0},
        {[](Args& a) { a.layout = 0, a.m = -1; }, {1}, 0},
    };
    std::vector<BadCase> symv = {
        layout,
        {[](Args& a) { a.uplo = 120; }, {2}, 1},
        {[](Args& a) { a.n = -1; }, {3}, 0},
        {[](Args& a) { a.lda = 1; }, {6}, 0},
        {[](Args& a) { a.incx = 0; }, {8}, 0},
        {[](Args& a) { a.incy = 0; }, {11}, 0},
        {[](Args& a) { a.uplo = 0, a.lda = 0; }, {2, 6}, 0},
        {[](Args& a) { a.lda = 0, a.incx = 0; }, {6}, 0},
    };
    std::vector<BadCase> syr = {
        layout,
        {[](Args& a) { a.uplo = 120; }, {2}, 1},
        {[](Args& a) { a.n = -1; }, {3}, 0},
        {[](Args& a) { a.lda = 1; }, {8}, 0},
        {[](Args& a) { a.incx = 0; }, {6}, 0},
        {[](Args& a) { a.lda = 1, a.incx = 0; }, {8}, 0},
    };
    std::vector<BadCase> syr2 = {
        layout,
        {[](Args& a) { a.uplo = 120; }, {2}, 1},
        {[](Args& a) { a.n = -1; }, {3}, 0},
        {[](Args& a) { a.lda = 1; }, {10}, 0},
        {[](Args& a) { a.incx = 0; }, {6}, 0},
        {[](Args& a) { a.incy = 0; }, {8}, 0},
        {[](Args& a) { a.lda = 1, a.incy = 0; }, {10}, 0},
    };
    std::vector<BadCase> trmv = {
        layout,
        {[](Args& a) { a.uplo = 120; }, {2}, 1},
        {[](Args& a) { a.trans = 114; }, {3}, 2},
        {[](Args& a) { a.diag = 133; }, {4}, 3},
        {[](Args& a) { a.uplo = 0, a.diag = 0; }, {2, 4}, 1},
        {[](Args& a) { a.n = -1; }, {5}, 0},
        {[](Args& a) { a.lda = 1; }, {7}, 0},
        {[](Args& a) { a.incx = 0; }, {9}, 0},
        {[](Args& a) { a.trans = 0, a.n = -1; }, {3, 5}, 0},
        {[](Args& a) { a.lda = 1, a.incx = 0; }, {7}, 0},
    };
    std::vector<BadCase> trsv = {
        layout,
        {[](Args& a) { a.uplo = 120; }, {2}, 0},
        {[](Args& a) { a.trans = 114; }, {3}, 0},
        {[](Args& a) { a.diag = 133; }, {4}, 0},
        {[](Args& a) { a.uplo = 0, a.diag = 0; }, {2}, 0},
        {[](Args& a) { a.n = -1; }, {5}, 0},
        {[](Args& a) { a.lda = 1; }, {7}, 0},
        {[](Args& a) { a.incx = 0; }, {9}, 0},
    };
    const void* one = &kComplexOne;
    return {
        {"cblas_dgemv", "DGEMV ",
         [=](const Args& a, Operands& o) {
             cblas_dgemv(L(a.layout), T(a.trans), a.m, a.n, 1.0, o.a, a.lda, o.x, a.incx, kOne, o.y, a.incy);
         },
         gemv},
        {"cblas_zgemv", "ZGEMV ",
         [=](const Args& a, Operands& o) {
             cblas_zgemv(L(a.layout), T(a.trans), a.m, a.n, one, o.a, a.lda, o.x, a.incx, one, o.y, a.incy);
         },
         gemv},
        {"cblas_dger", "DGER  ",
         [=](const Args& a, Operands& o) {
             cblas_dger(L(a.layout), a.m, a.n, 1.0, o.x, a.incx, o.y, a.incy, o.a, a.lda);
         },
         ger},
        {"cblas_zgeru", "ZGERU ",
         [=](const Args& a, Operands& o) {
             cblas_zgeru(L(a.layout), a.m, a.n, one, o.x, a.incx, o.y, a.incy, o.a, a.lda);
         },
         ger},
        {"cblas_zgerc", "ZGERC ",
         [=](const Args& a, Operands& o) {
             cblas_zgerc(L(a.layout), a.m, a.n, one, o.x, a.incx, o.y, a.incy, o.a, a.lda);
         },
         ger},
        {"cblas_dsymv", "DSYMV ",
         [=](const Args& a, Operands& o) {
             cblas_dsymv(L(a.layout), U(a.uplo), a.n, 1.0, o.a, a.lda, o.x, a.incx, 1.0, o.y, a.incy);
         },
         symv},
        {"cblas_zhemv", "ZHEMV ",
         [=](const Args& a, Operands& o) {
             cblas_zhemv(L(a.layout), U(a.uplo), a.n, one, o.a, a.lda, o.x, a.incx, one, o.y, a.incy);
         },
         symv},
        {"cblas_dsyr", "DSYR  ",
         [=](const Args& a, Operands& o) {
             cblas_dsyr(L(a.layout), U(a.uplo), a.n, 1.0, o.x, a.incx, o.a, a.lda);
         },
         syr},
        {"cblas_zher", "ZHER  ",
         [=](const Args& a, Operands& o) {
             cblas_zher(L(a.layout), U(a.uplo), a.n, 1.0, o.x, a.incx, o.a, a.lda);
         },
         syr},
        {"cblas_dsyr2", "DSYR2 ",
         [=](const Args& a, Operands& o) {
             cblas_dsyr2(L(a.layout), U(a.uplo), a.n, 1.0, o.x, a.incx, o.y, a.incy, o.a, a.lda);
         },
         syr2},
        {"cblas_zher2", "ZHER2 ",
         [=](const Args& a, Operands& o) {
             cblas_zher2(L(a.layout), U(a.uplo), a.n, one, o.x, a.incx, o.y, a.incy, o.a, a.lda);
         },
         syr2},
        {"cblas_dtrmv", "DTRMV ",
         [=](const Args& a, Operands& o) {
             cblas_dtrmv(L(a.layout), U(a.uplo), T(a.trans), D(a.diag), a.n, o.a, a.lda, o.x, a.incx);
         },
         trmv},
        {"cblas_ztrmv", "ZTRMV ",
         [=](const Args& a, Operands& o) {
             cblas_ztrmv(L(a.layout), U(a.uplo), T(a.trans), D(a.diag), a.n, o.a, a.lda, o.x, a.incx);
         },
         trmv},
        {"cblas_dtrsv", "DTRSV ",
         [=](const Args& a, Operands& o) {
             cblas_dtrsv(L(a.layout), U(a.uplo), T(a.trans), D(a.diag), a.n, o.a, a.lda, o.x, a.incx);
         },
         trsv},
        {"cblas_ztrsv", "ZTRSV ",
         [=](const Args& a, Operands& o) {
             cblas_ztrsv(L(a.layout), U(a.uplo), T(a.trans), D(a.diag), a.n, o.a, a.lda, o.x, a.incx);
         },
         trsv},
    };
}

TEST(CblasLevel2, ArgumentChecksReportInThePublishedOrderAndComputeNothing) {
    for (const Function& f : functions()) {
        // A valid call (with the smallest leading dimensions allowed) computes and reports nothing.
        for (const int layout : {CblasColMajor, CblasRowMajor}) {
            Args args;
            args.layout = layout;
            Operands operands;
            CaptureStdout();
            f.call(args, operands);
            EXPECT_EQ(GetCapturedStdout(), "") << f.name;
        }
        for (std::size_t k = 0; k < f.cases.size(); ++k) {
            Args args;
            f.cases[k].change(args);
            std::string expected;
            for (int parameter : f.cases[k].reported) expected += report(parameter, f.name);
            if (f.cases[k].fortran_reported != 0)
                expected += report(f.cases[k].fortran_reported, f.fortran_name);
            Operands operands;
            CaptureStdout();
            f.call(args, operands);
            EXPECT_EQ(GetCapturedStdout(), expected) << f.name << " case " << k;
            EXPECT_TRUE(operands.unchanged()) << f.name << " case " << k;
        }
    }
}

}  // namespace

namespace {

// --- Both layouts against the definition -------------------------------------------------------

Complex conj_of(Complex v) {
    return std::conj(v);
}
double conj_of(double v) {
    return v;
}
double magnitude(Complex v) {
    return std::abs(v.real()) + std::abs(v.imag());
}

template <class T>
T value(int seed) {
    const double re = ((seed * 7919) % 97) / 48.5 - 1.0;
    if constexpr (std::is_same_v<T, double>) {
        return re;
    } else {
        return {re, ((seed * 104729) % 89) / 44.5 - 1.0};
    }
}

// A rows x columns matrix in either layout, leading dimension one more than it needs.
template <class T>
struct Matrix {
    bool row;
    zor_int rows, columns, ld;
    std::vector<T> data;
    Matrix(bool row_major, zor_int r, zor_int c, int seed)
        : row(row_major),
          rows(r),
          columns(c),
          ld((row_major ? c : r) + 1),
          data(static_cast<std::size_t>(ld * (row_major ? r : c))) {
        for (std::size_t k = 0; k < data.size(); ++k) data[k] = value<T>(seed + static_cast<int>(k));
    }
    T& operator()(zor_int i, zor_int j) {
        return data[static_cast<std::size_t>(row ? i * ld + j : i + j * ld)];
    }
};

// A vector of n elements with increment inc; element i of the logical vector.
template <class T>
struct Vector {
    zor_int n, inc;
    std::vector<T> data;
    Vector(zor_int size, zor_int increment, int seed)
        : n(size), inc(increment), data(static_cast<std::size_t>(1 + (size - 1) * std::abs(increment))) {
        for (std::size_t k = 0; k < data.size(); ++k) data[k] = value<T>(seed + 3 * static_cast<int>(k));
    }
    T& operator[](zor_int i) {
        return data[static_cast<std::size_t>((inc < 0 ? (n - 1 - i) : i) * std::abs(inc))];
    }
};

template <class T>
void expect_close(const std::vector<T>& got, const std::vector<T>& want, const std::string& what) {
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t k = 0; k < got.size(); ++k) {
        ASSERT_LE(magnitude(Complex(got[k]) - Complex(want[k])), 1e-13 * (1 + magnitude(Complex(want[k]))))
            << what << " at " << k;
    }
}

template <class T>
void* address(std::vector<T>& v) {
    return v.data();
}

const char* layout_name(bool row) {
    return row ? "row-major" : "column-major";
}

template <class T>
void check_gemv_and_ger(bool row) {
    constexpr bool kComplex = std::is_same_v<T, Complex>;
    const zor_int m = 3, n = 4;
    const T alpha = value<T>(5), beta = value<T>(6);
    for (const int trans : {CblasNoTrans, CblasTrans, CblasConjTrans}) {
        Matrix<T> a(row, m, n, 1);
        const bool plain = trans == CblasNoTrans;
        Vector<T> x(plain ? n : m, -2, 2), y(plain ? m : n, 1, 3);
        Vector<T> want(y);
        for (zor_int i = 0; i < want.n; ++i) {
            T sum = beta * y[i];
            for (zor_int k = 0; k < x.n; ++k) {
                const T element = plain ? a(i, k) : (trans == CblasConjTrans ? conj_of(a(k, i)) : a(k, i));
                sum += alpha * element * x[k];
            }
            want[i] = sum;
        }
        const auto layout = row ? CblasRowMajor : CblasColMajor;
        if constexpr (kComplex) {
            cblas_zgemv(layout, static_cast<CBLAS_TRANSPOSE>(trans), m, n, &alpha, a.data.data(), a.ld,
                        x.data.data(), x.inc, &beta, y.data.data(), y.inc);
        } else {
            cblas_dgemv(layout, static_cast<CBLAS_TRANSPOSE>(trans), m, n, alpha, a.data.data(), a.ld,
                        x.data.data(), x.inc, beta, y.data.data(), y.inc);
        }
        expect_close(y.data, want.data,
                     std::string("gemv ") + layout_name(row) + " trans " + std::to_string(trans));
    }
    for (const bool conjugated : {false, true}) {
        if (conjugated && !kComplex) continue;
        Matrix<T> a(row, m, n, 7), want(a);
        Vector<T> x(m, 1, 8), y(n, -3, 9);
        for (zor_int i = 0; i < m; ++i) {
            for (zor_int j = 0; j < n; ++j) want(i, j) += alpha * x[i] * (conjugated ? conj_of(y[j]) : y[j]);
        }
        const auto layout = row ? CblasRowMajor : CblasColMajor;
        if constexpr (kComplex) {
            (conjugated ? cblas_zgerc : cblas_zgeru)(layout, m, n, &alpha, x.data.data(), x.inc,
                                                     y.data.data(), y.inc, a.data.data(), a.ld);
        } else {
            cblas_dger(layout, m, n, alpha, x.data.data(), x.inc, y.data.data(), y.inc, a.data.data(), a.ld);
        }
        expect_close(a.data, want.data,
                     std::string("ger ") + layout_name(row) + (conjugated ? " conjugated" : ""));
    }
}

// The symmetric (real) or Hermitian (complex) matrix that the uplo triangle of a holds.
template <class T>
T symmetric(Matrix<T>& a, bool upper, zor_int i, zor_int j) {
    const bool stored = upper ? i <= j : i >= j;
    if (i == j) return T(std::real(Complex(a(i, i))));
    return stored ? a(i, j) : conj_of(a(j, i));
}

template <class T>
void check_symmetric(bool row) {
    constexpr bool kComplex = std::is_same_v<T, Complex>;
    const zor_int n = 4;
    const auto layout = row ? CblasRowMajor : CblasColMajor;
    const T alpha = value<T>(11), beta = value<T>(12);
    const double real_alpha = 0.75;
    for (const int uplo : {CblasUpper, CblasLower}) {
        const bool upper = uplo == CblasUpper;
        const auto u = static_cast<CBLAS_UPLO>(uplo);
        const std::string what = std::string(layout_name(row)) + (upper ? " upper" : " lower");
        {  // symv, hemv
            Matrix<T> a(row, n, n, 13);
            Vector<T> x(n, 2, 14), y(n, -1, 15), want(y);
            for (zor_int i = 0; i < n; ++i) {
                T sum = beta * y[i];
                for (zor_int k = 0; k < n; ++k) sum += alpha * symmetric(a, upper, i, k) * x[k];
                want[i] = sum;
            }
            if constexpr (kComplex) {
                cblas_zhemv(layout, u, n, &alpha, a.data.data(), a.ld, x.data.data(), x.inc, &beta,
                            y.data.data(), y.inc);
            } else {
                cblas_dsymv(layout, u, n, alpha, a.data.data(), a.ld, x.data.data(), x.inc, beta,
                            y.data.data(), y.inc);
            }
            expect_close(y.data, want.data, "symv " + what);
        }
        // syr, her and syr2, her2: only the uplo triangle changes; the diagonal of a Hermitian one
        // comes back real.
        for (const bool two : {false, true}) {
            Matrix<T> a(row, n, n, 16), want(a);
            Vector<T> x(n, -2, 17), y(n, 1, 18);
            for (zor_int i = 0; i < n; ++i) {
                for (zor_int j = 0; j < n; ++j) {
                    if (upper ? i > j : i < j) continue;
                    T update = two ? alpha * x[i] * conj_of(y[j]) + conj_of(alpha) * y[i] * conj_of(x[j])
                                   : T(real_alpha) * x[i] * conj_of(x[j]);
                    want(i, j) = (i == j) ? T(std::real(Complex(want(i, j) + update))) : want(i, j) + update;
                }
            }
            if constexpr (kComplex) {
                if (two) {
                    cblas_zher2(layout, u, n, &alpha, x.data.data(), x.inc, y.data.data(), y.inc,
                                a.data.data(), a.ld);
                } else {
                    cblas_zher(layout, u, n, real_alpha, x.data.data(), x.inc, a.data.data(), a.ld);
                }
            } else {
                if (two) {
                    cblas_dsyr2(layout, u, n, alpha, x.data.data(), x.inc, y.data.data(), y.inc,
                                a.data.data(), a.ld);
                } else {
                    cblas_dsyr(layout, u, n, real_alpha, x.data.data(), x.inc, a.data.data(), a.ld);
                }
            }
            expect_close(a.data, want.data, (two ? "syr2 " : "syr ") + what);
        }
    }
}

template <class T>
void check_triangular(bool row) {
    constexpr bool kComplex = std::is_same_v<T, Complex>;
    const zor_int n = 5;
    const auto layout = row ? CblasRowMajor : CblasColMajor;
    for (const int uplo : {CblasUpper, CblasLower}) {
        for (const int trans : {CblasNoTrans, CblasTrans, CblasConjTrans}) {
            for (const int diag : {CblasNonUnit, CblasUnit}) {
                const bool upper = uplo == CblasUpper, unit = diag == CblasUnit;
                Matrix<T> a(row, n, n, 21);
                for (zor_int i = 0; i < n; ++i) a(i, i) += T(3.0);  // well conditioned
                auto op = [&](zor_int i, zor_int k) -> T {
                    const zor_int r = trans == CblasNoTrans ? i : k, c = trans == CblasNoTrans ? k : i;
                    if (upper ? r > c : r < c) return T(0);
                    if (r == c && unit) return T(1);
                    return trans == CblasConjTrans ? conj_of(a(r, c)) : a(r, c);
                };
                Vector<T> x(n, -2, 22), want(x);
                for (zor_int i = 0; i < n; ++i) {
                    T sum = 0;
                    for (zor_int k = 0; k < n; ++k) sum += op(i, k) * x[k];
                    want[i] = sum;
                }
                const auto u = static_cast<CBLAS_UPLO>(uplo);
                const auto t = static_cast<CBLAS_TRANSPOSE>(trans);
                const auto d = static_cast<CBLAS_DIAG>(diag);
                const std::string what = std::string(layout_name(row)) + " uplo " + std::to_string(uplo) +
                                         " trans " + std::to_string(trans) + " diag " + std::to_string(diag);
                // The product, then solving op(A) z = op(A) x, which gives x back.
                auto run = [&](auto real, auto complex, Vector<T>& v) {
                    if constexpr (kComplex) {
                        complex(layout, u, t, d, n, a.data.data(), a.ld, v.data.data(), v.inc);
                    } else {
                        real(layout, u, t, d, n, a.data.data(), a.ld, v.data.data(), v.inc);
                    }
                };
                Vector<T> product(x);
                run(cblas_dtrmv, cblas_ztrmv, product);
                expect_close(product.data, want.data, "trmv " + what);
                run(cblas_dtrsv, cblas_ztrsv, want);
                expect_close(want.data, x.data, "trsv " + what);
            }
        }
    }
}

TEST(CblasLevel2, BothLayoutsComputeTheDefinition) {
    for (const bool row : {false, true}) {
        check_gemv_and_ger<double>(row);
        check_gemv_and_ger<Complex>(row);
        check_symmetric<double>(row);
        check_symmetric<Complex>(row);
        check_triangular<double>(row);
        check_triangular<Complex>(row);
    }
}

}  // namespace
