// The CBLAS exports in the fuzzer: for each, its arguments, its model and its arrays. The models
// state the published interface, not the library's code: the enumeration values, the order of the
// checks and their parameter numbers (Layout is parameter 1), and for the level-2 functions whose
// letters are reported without ending the call, the Fortran-style routine's own number of that
// letter, which it rejects once the call goes on with the letter unset.

#include <type_traits>

#include "fuzz.hpp"

namespace zor::fuzz {

namespace {

template <class T>
constexpr bool kComplex = std::is_same_v<T, zor_complex_double>;

bool is_layout(int v) {
    return v == CblasRowMajor || v == CblasColMajor;
}
bool is_transpose(int v) {
    return v == CblasNoTrans || v == CblasTrans || v == CblasConjTrans;
}
bool is_uplo(int v) {
    return v == CblasUpper || v == CblasLower;
}
bool is_diag(int v) {
    return v == CblasNonUnit || v == CblasUnit;
}
bool is_side(int v) {
    return v == CblasLeft || v == CblasRight;
}
// A leading dimension below max(1, rows).
bool too_small(zor_int ld, std::int64_t rows) {
    return ld < max1(rows);
}

// ---- level 1: no checks; N <= 0 changes nothing -------------------------------------------------

// dasum, dnrm2, dzasum, dznrm2: 0 for N <= 0.
template <class T, auto f>
void norm(Call& c) {
    const zor_int n = c.dimension("N"), incx = c.increment("incX");
    c.unchecked(n <= 0);
    const T* x = c.vector<T>("X", n, incx, Use::In);
    c.run([&] {
        const double r = f(n, x, incx);
        if (n <= 0) c.require(r == 0.0, "0 for N <= 0");
    });
}

// i?amax, i?amin: 0 without calling anything when N < 1 or incX < 1, else a zero-based index.
template <class T, auto f>
void index(Call& c) {
    const zor_int n = c.dimension("N"), incx = c.increment("incX");
    const bool none = n < 1 || incx < 1;
    c.unchecked(none);
    const T* x = c.vector<T>("X", n, incx, Use::In);
    c.run([&] {
        const std::size_t r = f(n, x, incx);
        c.require(none ? r == 0 : r < static_cast<std::size_t>(n),
                  "0 when N < 1 or incX < 1, else an index below N");
    });
}

template <class T, auto f>
void axpy(Call& c) {
    const zor_int n = c.dimension("N");
    const T alpha = c.scalar<T>("alpha");
    const zor_int incx = c.increment("incX"), incy = c.increment("incY");
    c.unchecked(n <= 0);
    const T* x = c.vector<T>("X", n, incx, Use::In);
    T* y = c.vector<T>("Y", n, incy, Use::InOut);
    c.run([&] { f(n, pass(alpha), x, incx, y, incy); });
}

template <class T, auto f>
void copy(Call& c) {
    const zor_int n = c.dimension("N"), incx = c.increment("incX"), incy = c.increment("incY");
    c.unchecked(n <= 0);
    const T* x = c.vector<T>("X", n, incx, Use::In);
    T* y = c.vector<T>("Y", n, incy, Use::InOut);
    c.run([&] { f(n, x, incx, y, incy); });
}

template <class T, auto f>
void swap(Call& c) {
    const zor_int n = c.dimension("N"), incx = c.increment("incX"), incy = c.increment("incY");
    c.unchecked(n <= 0);
    T* x = c.vector<T>("X", n, incx, Use::InOut);
    T* y = c.vector<T>("Y", n, incy, Use::InOut);
    c.run([&] { f(n, x, incx, y, incy); });
}

void ddot(Call& c) {
    const zor_int n = c.dimension("N"), incx = c.increment("incX"), incy = c.increment("incY");
    c.unchecked(n <= 0);
    const double* x = c.vector<double>("X", n, incx, Use::In);
    const double* y = c.vector<double>("Y", n, incy, Use::In);
    c.run([&] {
        const double r = cblas_ddot(n, x, incx, y, incy);
        if (n <= 0) c.require(r == 0.0, "0 for N <= 0");
    });
}

// zdotc_sub, zdotu_sub: the result through the last argument, 0 for N <= 0.
template <auto f>
void zdot(Call& c) {
    const zor_int n = c.dimension("N"), incx = c.increment("incX"), incy = c.increment("incY");
    c.unchecked(n <= 0);
    const auto* x = c.vector<zor_complex_double>("X", n, incx, Use::In);
    const auto* y = c.vector<zor_complex_double>("Y", n, incy, Use::In);
    c.run([&] {
        zor_complex_double r{7.0, 7.0};
        f(n, x, incx, y, incy, &r);
        if (n <= 0) c.require(r.real == 0.0 && r.imag == 0.0, "0 for N <= 0");
    });
}

template <class T, class Alpha, auto f>
void scal(Call& c) {
    const zor_int n = c.dimension("N");
    const Alpha alpha = c.scalar<Alpha>("alpha");
    const zor_int incx = c.increment("incX");
    c.unchecked(n <= 0);
    T* x = c.vector<T>("X", n, incx, Use::InOut);
    c.run([&] { f(n, pass(alpha), x, incx); });
}

void drot(Call& c) {
    const zor_int n = c.dimension("N"), incx = c.increment("incX"), incy = c.increment("incY");
    const double cs = c.real("c"), sn = c.real("s");
    c.unchecked(n <= 0);
    double* x = c.vector<double>("X", n, incx, Use::InOut);
    double* y = c.vector<double>("Y", n, incy, Use::InOut);
    c.run([&] { cblas_drot(n, x, incx, y, incy, cs, sn); });
}

void drotm(Call& c) {
    const zor_int n = c.dimension("N"), incx = c.increment("incX"), incy = c.increment("incY");
    const double flag = c.enumeration("P[0]", -2, 4);
    c.unchecked(n <= 0);
    double* x = c.vector<double>("X", n, incx, Use::InOut);
    double* y = c.vector<double>("Y", n, incy, Use::InOut);
    // P is five numbers whatever N says; only its flag is drawn.
    double p[5] = {flag, 0.5, -0.25, 0.75, 2.0};
    c.run([&] { cblas_drotm(n, x, incx, y, incy, p); });
}

void drotg(Call& c) {
    double a = c.real("a"), b = c.real("b"), cs = 0.0, sn = 0.0;
    c.unchecked();
    c.run([&] { cblas_drotg(&a, &b, &cs, &sn); });
}

void drotmg(Call& c) {
    double d1 = c.real("d1"), d2 = c.real("d2"), b1 = c.real("b1");
    const double b2 = c.real("b2");
    double p[5] = {};
    c.unchecked();
    c.run([&] { cblas_drotmg(&d1, &d2, &b1, b2, p); });
}

// ---- level 2: Layout first, the leading dimension before the increments --------------------------

template <class T, auto f>
void gemv(Call& c) {
    const auto layout = c.layout();
    const auto trans = c.transpose("TransA");
    const zor_int m = c.dimension("M"), n = c.dimension("N");
    const bool row = layout == CblasRowMajor;
    const zor_int lda = c.leading("lda", row ? n : m);
    const zor_int incx = c.increment("incX"), incy = c.increment("incY");
    const T alpha = c.scalar<T>("alpha"), beta = c.scalar<T>("beta");
    c.cblas({{!is_layout(layout), 1},
             {!is_transpose(trans), 2, 1},
             {m < 0, 3},
             {n < 0, 4},
             {too_small(lda, row ? n : m), 7},
             {incx == 0, 9},
             {incy == 0, 12}},
            kComplex<T> ? "ZGEMV " : "DGEMV ");
    // With TransA unset the lengths are unknown: either will do, nothing may be touched.
    const std::int64_t xn = !is_transpose(trans) ? max_of(m, n) : trans == CblasNoTrans ? n : m;
    const std::int64_t yn = !is_transpose(trans) ? max_of(m, n) : trans == CblasNoTrans ? m : n;
    const T* a = c.matrix<T>("A", m, n, lda, Use::In, row);
    const T* x = c.vector<T>("X", xn, incx, Use::In);
    T* y = c.vector<T>("Y", yn, incy, Use::InOut);
    c.run([&] { f(layout, trans, m, n, pass(alpha), a, lda, x, incx, pass(beta), y, incy); });
}

// dger, zgeru, zgerc: no letter, every failure ends the call.
template <class T, auto f>
void ger(Call& c) {
    const auto layout = c.layout();
    const zor_int m = c.dimension("M"), n = c.dimension("N");
    const bool row = layout == CblasRowMajor;
    const zor_int lda = c.leading("lda", row ? n : m);
    const zor_int incx = c.increment("incX"), incy = c.increment("incY");
    const T alpha = c.scalar<T>("alpha");
    c.cblas({{!is_layout(layout), 1},
             {m < 0, 2},
             {n < 0, 3},
             {too_small(lda, row ? n : m), 10},
             {incx == 0, 6},
             {incy == 0, 8}});
    const T* x = c.vector<T>("X", m, incx, Use::In);
    const T* y = c.vector<T>("Y", n, incy, Use::In);
    T* a = c.matrix<T>("A", m, n, lda, Use::InOut, row);
    c.run([&] { f(layout, m, n, pass(alpha), x, incx, y, incy, a, lda); });
}

// dsymv, zhemv: a bad Uplo goes on.
template <class T, auto f>
void symv(Call& c) {
    const auto layout = c.layout();
    const auto uplo = c.uplo();
    const zor_int n = c.dimension("N"), lda = c.leading("lda", n);
    const zor_int incx = c.increment("incX"), incy = c.increment("incY");
    const T alpha = c.scalar<T>("alpha"), beta = c.scalar<T>("beta");
    c.cblas({{!is_layout(layout), 1},
             {!is_uplo(uplo), 2, 1},
             {n < 0, 3},
             {too_small(lda, n), 6},
             {incx == 0, 8},
             {incy == 0, 11}},
            kComplex<T> ? "ZHEMV " : "DSYMV ");
    const T* a = c.matrix<T>("A", n, n, lda, Use::In);
    const T* x = c.vector<T>("X", n, incx, Use::In);
    T* y = c.vector<T>("Y", n, incy, Use::InOut);
    c.run([&] { f(layout, uplo, n, pass(alpha), a, lda, x, incx, pass(beta), y, incy); });
}

// dsyr, zher (alpha real for both): a bad Uplo goes on.
template <class T, auto f>
void syr(Call& c) {
    const auto layout = c.layout();
    const auto uplo = c.uplo();
    const zor_int n = c.dimension("N"), lda = c.leading("lda", n), incx = c.increment("incX");
    const double alpha = c.real("alpha");
    c.cblas(
        {{!is_layout(layout), 1}, {!is_uplo(uplo), 2, 1}, {n < 0, 3}, {too_small(lda, n), 8}, {incx == 0, 6}},
        kComplex<T> ? "ZHER  " : "DSYR  ");
    const T* x = c.vector<T>("X", n, incx, Use::In);
    T* a = c.matrix<T>("A", n, n, lda, Use::InOut);
    c.run([&] { f(layout, uplo, n, alpha, x, incx, a, lda); });
}

// dsyr2, zher2: a bad Uplo goes on.
template <class T, auto f>
void syr2(Call& c) {
    const auto layout = c.layout();
    const auto uplo = c.uplo();
    const zor_int n = c.dimension("N"), lda = c.leading("lda", n);
    const zor_int incx = c.increment("incX"), incy = c.increment("incY");
    const T alpha = c.scalar<T>("alpha");
    c.cblas({{!is_layout(layout), 1},
             {!is_uplo(uplo), 2, 1},
             {n < 0, 3},
             {too_small(lda, n), 10},
             {incx == 0, 6},
             {incy == 0, 8}},
            kComplex<T> ? "ZHER2 " : "DSYR2 ");
    const T* x = c.vector<T>("X", n, incx, Use::In);
    const T* y = c.vector<T>("Y", n, incy, Use::In);
    T* a = c.matrix<T>("A", n, n, lda, Use::InOut);
    c.run([&] { f(layout, uplo, n, pass(alpha), x, incx, y, incy, a, lda); });
}

// dtrmv, ztrmv (`goes_on`: bad Uplo, TransA and Diag are reported and the call goes on; the
// Fortran-style routine numbers them 1, 2, 3) and dtrsv, ztrsv (every failure ends the call).
template <class T, auto f, bool goes_on>
void trmv(Call& c) {
    const auto layout = c.layout();
    const auto uplo = c.uplo();
    const auto trans = c.transpose("TransA");
    const auto diag = c.diag();
    const zor_int n = c.dimension("N"), lda = c.leading("lda", n), incx = c.increment("incX");
    c.cblas({{!is_layout(layout), 1},
             {!is_uplo(uplo), 2, goes_on ? 1 : 0},
             {!is_transpose(trans), 3, goes_on ? 2 : 0},
             {!is_diag(diag), 4, goes_on ? 3 : 0},
             {n < 0, 5},
             {too_small(lda, n), 7},
             {incx == 0, 9}},
            kComplex<T> ? "ZTRMV " : "DTRMV ");
    const T* a = c.matrix<T>("A", n, n, lda, Use::In);
    T* x = c.vector<T>("X", n, incx, Use::InOut);
    c.run([&] { f(layout, uplo, trans, diag, n, a, lda, x, incx); });
}

// ---- level 3: the letters, the dimensions, then Layout, then the leading dimensions --------------

template <class T, auto f>
void gemm(Call& c) {
    const auto layout = c.layout();
    const auto ta = c.transpose("TransA");
    const auto tb = c.transpose("TransB");
    const zor_int m = c.dimension("M"), n = c.dimension("N"), k = c.dimension("K");
    const bool row = layout == CblasRowMajor;
    // op(A) is M x K and op(B) K x N; A and B as stored:
    const std::int64_t a_rows = ta == CblasNoTrans ? m : k, a_cols = ta == CblasNoTrans ? k : m;
    const std::int64_t b_rows = tb == CblasNoTrans ? k : n, b_cols = tb == CblasNoTrans ? n : k;
    const zor_int lda = c.leading("lda", row ? a_cols : a_rows),
                  ldb = c.leading("ldb", row ? b_cols : b_rows);
    const zor_int ldc = c.leading("ldc", row ? n : m);
    const T alpha = c.scalar<T>("alpha"), beta = c.scalar<T>("beta");
    c.cblas({{!is_transpose(ta), 2},
             {!is_transpose(tb), 3},
             {m < 0, 4},
             {n < 0, 5},
             {k < 0, 6},
             {!is_layout(layout), 1},
             {too_small(lda, row ? a_cols : a_rows), 9},
             {too_small(ldb, row ? b_cols : b_rows), 11},
             {too_small(ldc, row ? n : m), 14}});
    const T* a = c.matrix<T>("A", a_rows, a_cols, lda, Use::In, row);
    const T* b = c.matrix<T>("B", b_rows, b_cols, ldb, Use::In, row);
    T* cc = c.matrix<T>("C", m, n, ldc, Use::InOut, row);
    c.run([&] { f(layout, ta, tb, m, n, k, pass(alpha), a, lda, b, ldb, pass(beta), cc, ldc); });
}

// dsymm, zsymm, zhemm: A is M x M on the left, N x N on the right.
template <class T, auto f>
void symm(Call& c) {
    const auto layout = c.layout();
    const auto side = c.side();
    const auto uplo = c.uplo();
    const zor_int m = c.dimension("M"), n = c.dimension("N");
    const bool row = layout == CblasRowMajor;
    const std::int64_t order = side == CblasLeft ? m : n;
    const zor_int lda = c.leading("lda", order), ldb = c.leading("ldb", row ? n : m);
    const zor_int ldc = c.leading("ldc", row ? n : m);
    const T alpha = c.scalar<T>("alpha"), beta = c.scalar<T>("beta");
    c.cblas({{!is_side(side), 2},
             {!is_uplo(uplo), 3},
             {m < 0, 4},
             {n < 0, 5},
             {!is_layout(layout), 1},
             {too_small(lda, order), 8},
             {too_small(ldb, row ? n : m), 10},
             {too_small(ldc, row ? n : m), 13}});
    const T* a = c.matrix<T>("A", order, order, lda, Use::In);
    const T* b = c.matrix<T>("B", m, n, ldb, Use::In, row);
    T* cc = c.matrix<T>("C", m, n, ldc, Use::InOut, row);
    c.run([&] { f(layout, side, uplo, m, n, pass(alpha), a, lda, b, ldb, pass(beta), cc, ldc); });
}

// Which Trans the rank updates take: all three for real data; the complex symmetric ones no
// conjugate transpose, the Hermitian ones no plain transpose.
enum class Update { Real, Symmetric, Hermitian };

bool takes(Update kind, int trans) {
    switch (kind) {
        case Update::Real:
            return is_transpose(trans);
        case Update::Symmetric:
            return trans == CblasNoTrans || trans == CblasTrans;
        case Update::Hermitian:
            return trans == CblasNoTrans || trans == CblasConjTrans;
    }
    return false;
}

// dsyrk, zsyrk, zherk and, with `two`, dsyr2k, zsyr2k, zher2k (B beside A). Alpha and Beta are
// real for zherk, Beta for zher2k.
template <class T, class Alpha, class Beta, Update kind, bool two, auto f>
void update(Call& c) {
    const auto layout = c.layout();
    const auto uplo = c.uplo();
    const auto trans = c.transpose("Trans");
    const zor_int n = c.dimension("N"), k = c.dimension("K");
    const bool row = layout == CblasRowMajor;
    // A (and B) as stored: N x K untransposed, K x N otherwise.
    const std::int64_t rows = trans == CblasNoTrans ? n : k, cols = trans == CblasNoTrans ? k : n;
    const zor_int lda = c.leading("lda", row ? cols : rows),
                  ldb = two ? c.leading("ldb", row ? cols : rows) : 0;
    const zor_int ldc = c.leading("ldc", n);
    const Alpha alpha = c.scalar<Alpha>("alpha");
    const Beta beta = c.scalar<Beta>("beta");
    c.cblas({{!is_uplo(uplo), 2},
             {!takes(kind, trans), 3},
             {n < 0, 4},
             {k < 0, 5},
             {!is_layout(layout), 1},
             {too_small(lda, row ? cols : rows), 8},
             {two && too_small(ldb, row ? cols : rows), 10},
             {too_small(ldc, n), two ? 13 : 11}});
    const T* a = c.matrix<T>("A", rows, cols, lda, Use::In, row);
    const T* b = two ? c.matrix<T>("B", rows, cols, ldb, Use::In, row) : nullptr;
    T* cc = c.matrix<T>("C", n, n, ldc, Use::InOut, row);
    c.run([&] {
        if constexpr (two) {
            f(layout, uplo, trans, n, k, pass(alpha), a, lda, b, ldb, pass(beta), cc, ldc);
        } else {
            f(layout, uplo, trans, n, k, pass(alpha), a, lda, pass(beta), cc, ldc);
        }
    });
}

// dtrmm, dtrsm, ztrmm, ztrsm.
template <class T, auto f>
void trmm(Call& c) {
    const auto layout = c.layout();
    const auto side = c.side();
    const auto uplo = c.uplo();
    const auto trans = c.transpose("TransA");
    const auto diag = c.diag();
    const zor_int m = c.dimension("M"), n = c.dimension("N");
    const bool row = layout == CblasRowMajor;
    const std::int64_t order = side == CblasLeft ? m : n;
    const zor_int lda = c.leading("lda", order), ldb = c.leading("ldb", row ? n : m);
    const T alpha = c.scalar<T>("alpha");
    c.cblas({{!is_side(side), 2},
             {!is_uplo(uplo), 3},
             {!is_transpose(trans), 4},
             {!is_diag(diag), 5},
             {m < 0, 6},
             {n < 0, 7},
             {!is_layout(layout), 1},
             {too_small(lda, order), 10},
             {too_small(ldb, row ? n : m), 12}});
    const T* a = c.matrix<T>("A", order, order, lda, Use::In);
    T* b = c.matrix<T>("B", m, n, ldb, Use::InOut, row);
    c.run([&] { f(layout, side, uplo, trans, diag, m, n, pass(alpha), a, lda, b, ldb); });
}

using D = double;
using Z = zor_complex_double;

constexpr Export kExports[] = {
    {"cblas_dasum", norm<D, cblas_dasum>},
    {"cblas_dnrm2", norm<D, cblas_dnrm2>},
    {"cblas_dzasum", norm<Z, cblas_dzasum>},
    {"cblas_dznrm2", norm<Z, cblas_dznrm2>},
    {"cblas_idamax", index<D, cblas_idamax>},
    {"cblas_idamin", index<D, cblas_idamin>},
    {"cblas_izamax", index<Z, cblas_izamax>},
    {"cblas_izamin", index<Z, cblas_izamin>},
    {"cblas_daxpy", axpy<D, cblas_daxpy>},
    {"cblas_zaxpy", axpy<Z, cblas_zaxpy>},
    {"cblas_dcopy", copy<D, cblas_dcopy>},
    {"cblas_zcopy", copy<Z, cblas_zcopy>},
    {"cblas_dswap", swap<D, cblas_dswap>},
    {"cblas_zswap", swap<Z, cblas_zswap>},
    {"cblas_ddot", ddot},
    {"cblas_zdotc_sub", zdot<cblas_zdotc_sub>},
    {"cblas_zdotu_sub", zdot<cblas_zdotu_sub>},
    {"cblas_dscal", scal<D, D, cblas_dscal>},
    {"cblas_zscal", scal<Z, Z, cblas_zscal>},
    {"cblas_drot", drot},
    {"cblas_drotm", drotm},
    {"cblas_drotg", drotg},
    {"cblas_drotmg", drotmg},
    {"cblas_dgemv", gemv<D, cblas_dgemv>},
    {"cblas_zgemv", gemv<Z, cblas_zgemv>},
    {"cblas_dger", ger<D, cblas_dger>},
    {"cblas_zgeru", ger<Z, cblas_zgeru>},
    {"cblas_zgerc", ger<Z, cblas_zgerc>},
    {"cblas_dsymv", symv<D, cblas_dsymv>},
    {"cblas_zhemv", symv<Z, cblas_zhemv>},
    {"cblas_dsyr", syr<D, cblas_dsyr>},
    {"cblas_zher", syr<Z, cblas_zher>},
    {"cblas_dsyr2", syr2<D, cblas_dsyr2>},
    {"cblas_zher2", syr2<Z, cblas_zher2>},
    {"cblas_dtrmv", trmv<D, cblas_dtrmv, true>},
    {"cblas_ztrmv", trmv<Z, cblas_ztrmv, true>},
    {"cblas_dtrsv", trmv<D, cblas_dtrsv, false>},
    {"cblas_ztrsv", trmv<Z, cblas_ztrsv, false>},
    {"cblas_dgemm", gemm<D, cblas_dgemm>},
    {"cblas_zgemm", gemm<Z, cblas_zgemm>},
    {"cblas_dsymm", symm<D, cblas_dsymm>},
    {"cblas_zsymm", symm<Z, cblas_zsymm>},
    {"cblas_zhemm", symm<Z, cblas_zhemm>},
    {"cblas_dsyrk", update<D, D, D, Update::Real, false, cblas_dsyrk>},
    {"cblas_zsyrk", update<Z, Z, Z, Update::Symmetric, false, cblas_zsyrk>},
    {"cblas_zherk", update<Z, D, D, Update::Hermitian, false, cblas_zherk>},
    {"cblas_dsyr2k", update<D, D, D, Update::Real, true, cblas_dsyr2k>},
    {"cblas_zsyr2k", update<Z, Z, Z, Update::Symmetric, true, cblas_zsyr2k>},
    {"cblas_zher2k", update<Z, Z, D, Update::Hermitian, true, cblas_zher2k>},
    {"cblas_dtrmm", trmm<D, cblas_dtrmm>},
    {"cblas_dtrsm", trmm<D, cblas_dtrsm>},
    {"cblas_ztrmm", trmm<Z, cblas_ztrmm>},
    {"cblas_ztrsm", trmm<Z, cblas_ztrsm>},
};

}  // namespace

std::span<const Export> cblas_exports() {
    return kExports;
}

}  // namespace zor::fuzz
