// The drivers gees and geev through their internal interface: the residuals of the LAPACK test suite
// (A = Z T Zᴴ, A V = V W for right and left vectors, unit vectors with their largest component real)
// on the matrix families that break weak implementations, sorting with the caller's choice,
// matrices near underflow and overflow, non-finite input, minimal workspace; eigenvalues (and T, and
// the right vectors) equal to the bit with and without the other outputs, on the processor variants
// Default and Avx in child processes; and the allocation failure of dgees's logical copy.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "lapack/eigen_support.hpp"
#include "lapack/nonsymmetric/nonsymmetric.hpp"
#include "support/counting_allocator.hpp"
#include "support/process.hpp"
#include "support/variants.hpp"
#include "zor/zor_lapack.h"

namespace zor::test {
namespace {

// Eigenvalues of either element type, as complex values.
template <class T>
struct Values {
    std::vector<double> re, im;
    std::vector<zcomplex> w;
    explicit Values(zint n)
        : re(static_cast<std::size_t>(std::max<zint>(n, 1))), im(re.size()), w(re.size()) {}
    Eigenvalues<T> view() {
        if constexpr (kIsComplex<T>) {
            return {w.data()};
        } else {
            return {re.data(), im.data()};
        }
    }
    Exact at(zint i) const {
        const auto k = static_cast<std::size_t>(i);
        return kIsComplex<T> ? Exact{w[k].re, w[k].im} : Exact{re[k], im[k]};
    }
    bool same_bits_as(const Values& o) const {
        return same_bits(re, o.re) && same_bits(im, o.im) && same_bits(w, o.w);
    }
};

template <class T>
void refill(Matrix<T>& to, const Matrix<T>& from) {
    std::copy(from.v.begin(), from.v.end(), to.v.begin());
}

template <class T>
zint optimal_lwork(char jobvl, char jobvr, zint n) {
    std::vector<T> work(1);
    zint info = 0;
    geev<T>(jobvl, jobvr, n, nullptr, std::max<zint>(n, 1), Values<T>(n).view(), nullptr,
            std::max<zint>(n, 1), nullptr, std::max<zint>(n, 1), work.data(), -1, nullptr, info);
    return static_cast<zint>(value(work[0]).re);
}

// The work arrays of the geev runs that are compared: the same storage for each, as a caller
// comparing them would pass (some kernels' rounding depends on where their operands lie).
template <class T>
struct GeevWork {
    std::vector<T> work;
    std::vector<double> rwork;
    GeevWork(zint lwork, zint n)
        : work(static_cast<std::size_t>(std::max<zint>(lwork, 1))),
          rwork(static_cast<std::size_t>(std::max<zint>(2 * n, 1))) {}
};

// geev in `place` (refilled from a): eigenvalues, and the vectors asked for.
template <class T>
zint run_geev(char jobvl, char jobvr, const Matrix<T>& a, Matrix<T>& place, Values<T>& w, Matrix<T>& vl,
              Matrix<T>& vr, GeevWork<T>& storage) {
    const zint n = a.rows;
    refill(place, a);
    std::vector<T>& work = storage.work;
    std::vector<double>& rwork = storage.rwork;
    const zint lwork = static_cast<zint>(work.size());
    zint info = -99;
    geev<T>(jobvl, jobvr, n, place.data(), place.ld, w.view(), vl.data(), vl.ld, vr.data(), vr.ld,
            work.data(), lwork, rwork.data(), info);
    return info;
}

// The vectors as complex columns (a real pair: real and imaginary parts in two columns).
template <class T>
Wide complex_columns(const Matrix<T>& v, const Values<T>& w) {
    const zint n = v.rows;
    Wide x(n, n);
    for (zint j = 0; j < n; ++j) {
        const Exact lambda = w.at(j);
        for (zint i = 0; i < n; ++i) {
            if (kIsComplex<T> || lambda.im == 0) {
                x(i, j) = v.at(i, j);
            } else if (lambda.im > 0) {
                x(i, j) = {v.at(i, j).re, v.at(i, j + 1).re};
            } else {
                x(i, j) = {v.at(i, j - 1).re, -v.at(i, j).re};
            }
        }
    }
    return x;
}

// The LAPACK test suite's ||A x - λ x|| / (n ||A|| eps) over the columns (Aᴴ and conj(λ) for left
// vectors), and the norm and real largest component of each vector.
template <class T>
void check_vectors(const Matrix<T>& a, const Matrix<T>& v, const Values<T>& w, bool left) {
    const zint n = a.rows;
    const Wide x = complex_columns(v, w);
    const Wide m = left ? op(widen_matrix(a), 'C') : widen_matrix(a);
    const Wide mx = multiply(m, x);
    const long double norm = std::max<long double>(one_norm(m), 1e-300L);
    for (zint j = 0; j < n; ++j) {
        const Exact lambda = left ? conj(w.at(j)) : w.at(j);
        long double r = 0, squares = 0, largest = -1;
        Exact big;
        for (zint i = 0; i < n; ++i) {
            const Exact d = mx(i, j) - lambda * x(i, j);
            r += std::hypot(d.re, d.im);
            const long double s = x(i, j).re * x(i, j).re + x(i, j).im * x(i, j).im;
            squares += s;
            if (s > largest) {
                largest = s;
                big = x(i, j);
            }
        }
        EXPECT_LT(static_cast<double>(r / (n * norm * epsilon())), kResidualThreshold)
            << (left ? "left " : "right ") << j;
        EXPECT_NEAR(static_cast<double>(squares), 1.0, 1e-13 * n) << j;
        // The largest component is real (real data: for the pair's vector, of the complex vector).
        EXPECT_LE(std::fabs(static_cast<double>(big.im)), 1e-14 * std::sqrt(static_cast<double>(largest)))
            << j;
    }
}

// geev with both sets of vectors, then eigenvalues only, right only and left only in the same
// storage: the residuals, and the same bits for every eigenvalue and for the vectors each time.
template <class T>
void check_geev(const Matrix<T>& a, const std::string& what, bool minimal = false) {
    SCOPED_TRACE(what);
    const zint n = a.rows;
    const zint lwork =
        minimal ? (kIsComplex<T> ? 2 : 4) * std::max<zint>(n, 1) : optimal_lwork<T>('V', 'V', n);
    Matrix<T> place = a, vl(n, n, n + 1), vr(n, n, n + 1), vl2(n, n, n + 1), vr2(n, n, n + 1), none(1, 1, 1);
    Values<T> w(n), w2(n), w3(n), w4(n);
    GeevWork<T> storage(lwork, n);
    ASSERT_EQ(run_geev('V', 'V', a, place, w, vl, vr, storage), 0);
    if (n > 0) {
        check_vectors(a, vr, w, false);
        check_vectors(a, vl, w, true);
    }
    ASSERT_EQ(run_geev('N', 'N', a, place, w2, none, none, storage), 0);
    EXPECT_TRUE(w.same_bits_as(w2)) << "eigenvalues differ without vectors";
    ASSERT_EQ(run_geev('N', 'V', a, place, w3, none, vr2, storage), 0);
    EXPECT_TRUE(w.same_bits_as(w3));
    EXPECT_TRUE(same_contents(vr, vr2)) << "right vectors differ without the left ones";
    ASSERT_EQ(run_geev('V', 'N', a, place, w4, vl2, none, storage), 0);
    EXPECT_TRUE(w.same_bits_as(w4));
    EXPECT_TRUE(same_contents(vl, vl2)) << "left vectors differ without the right ones";
}

std::vector<FamilyCase> driver_cases() {
    std::vector<FamilyCase> cases = family_cases(
        {0, 1, 2, 3, 6, 20, 50}, {Kind::Random, Kind::Graded, Kind::Repeated, Kind::Companion}, {120});
    cases.push_back({Kind::Random, 200});
    return cases;
}

class DriverFamilies : public ::testing::TestWithParam<FamilyCase> {};

TEST_P(DriverFamilies, GeevReal) {
    check_geev(eigen_matrix<double>(GetParam().kind, GetParam().n, 3), "real");
}
TEST_P(DriverFamilies, GeevComplex) {
    check_geev(eigen_matrix<zcomplex>(GetParam().kind, GetParam().n, 4), "complex");
}

// ---- gees ----------------------------------------------------------------------------------------

// The caller's choice for the sorting tests: eigenvalues with a negative real part. The calls are
// counted, and their arguments must point into the eigenvalue arrays.
struct SelectLog {
    static inline int calls = 0;
    static inline const double* first = nullptr;
    static inline const double* last = nullptr;
    static inline bool outside = false;
};
std::int32_t negative_real(const double* re, const double* im) {
    ++SelectLog::calls;
    if (re < SelectLog::first || re >= SelectLog::last || im == nullptr) SelectLog::outside = true;
    return *re < 0 ? 1 : 0;
}
std::int32_t negative_real_complex(const zor_complex_double* w) {
    ++SelectLog::calls;
    return w->real < 0 ? 1 : 0;
}

template <class T>
EigenvalueSelect<T> negative_selector() {
    if constexpr (kIsComplex<T>) {
        return &negative_real_complex;
    } else {
        return &negative_real;
    }
}

template <class T>
void check_gees(const Matrix<T>& a, bool sort, const std::string& what) {
    SCOPED_TRACE(what + (sort ? " sorted" : ""));
    const zint n = a.rows;
    Matrix<T> t = a, vs(n, n, n + 2), none(1, 1, 1);
    Values<T> w(n), w2(n);
    std::vector<T> work(static_cast<std::size_t>(std::max<zint>(1, 6 * n + 64 * n)));
    std::vector<double> rwork(static_cast<std::size_t>(std::max<zint>(n, 1)));
    std::vector<zint> bwork(static_cast<std::size_t>(std::max<zint>(n, 1)));
    zint sdim = -1, info = -9;
    SelectLog::calls = 0;
    SelectLog::outside = false;
    SelectLog::first = w.re.data();
    SelectLog::last = w.re.data() + w.re.size();
    gees<T>('V', sort ? 'S' : 'N', negative_selector<T>(), n, t.data(), t.ld, sdim, w.view(), vs.data(),
            vs.ld, work.data(), static_cast<zint>(work.size()), rwork.data(), bwork.data(), info);
    // n + 2: reordering moved an eigenvalue across the choice (it happens to graded matrices, with
    // reference LAPACK as well); the factorization itself stands.
    const bool rounded_across = sort && info == n + 2;
    ASSERT_TRUE(info == 0 || rounded_across) << info;
    EXPECT_LT(schur_residual(a, t, vs), kResidualThreshold);
    EXPECT_LT(unitary_residual(vs), kResidualThreshold);
    EXPECT_TRUE(is_schur_form(t));
    EXPECT_TRUE(padding_untouched(vs));
    for (zint i = 0; i < n; ++i) EXPECT_EQ(w.at(i).re, value(t(i, i)).re) << i;
    if (sort && !rounded_across) {
        // select is called for every eigenvalue before reordering and (real data) once more after.
        EXPECT_EQ(SelectLog::calls, kIsComplex<T> ? n : 2 * n);
        EXPECT_FALSE(SelectLog::outside);
        zint count = 0;
        for (zint i = 0; i < n; ++i) count += w.at(i).re < 0 ? 1 : 0;
        EXPECT_EQ(sdim, count);
        for (zint i = 0; i < n; ++i) EXPECT_EQ(w.at(i).re < 0, i < sdim) << i;
    } else if (!sort) {
        EXPECT_EQ(SelectLog::calls, 0);
        EXPECT_EQ(sdim, 0);
    }
    // Without Schur vectors, in the same storage: the same T and eigenvalues, to the bit.
    const Matrix<T> t1 = t;
    refill(t, a);
    gees<T>('N', sort ? 'S' : 'N', negative_selector<T>(), n, t.data(), t.ld, sdim, w2.view(), none.data(), 1,
            work.data(), static_cast<zint>(work.size()), rwork.data(), bwork.data(), info);
    ASSERT_EQ(info, rounded_across ? n + 2 : 0);
    EXPECT_TRUE(same_contents(t, t1)) << "T differs without Schur vectors";
    EXPECT_TRUE(w.same_bits_as(w2));
}

TEST_P(DriverFamilies, GeesReal) {
    const Matrix<double> a = eigen_matrix<double>(GetParam().kind, GetParam().n, 5);
    check_gees(a, false, "real");
    check_gees(a, true, "real");
}
TEST_P(DriverFamilies, GeesComplex) {
    const Matrix<zcomplex> a = eigen_matrix<zcomplex>(GetParam().kind, GetParam().n, 6);
    check_gees(a, false, "complex");
    check_gees(a, true, "complex");
}

INSTANTIATE_TEST_SUITE_P(Families, DriverFamilies, ::testing::ValuesIn(driver_cases()), family_case_name);

// ---- scaling, workspace, non-finite input ---------------------------------------------------------

// A matrix scaled near underflow or overflow: the eigenvalues scale with it (the drivers scale A into
// range and back).
template <class T>
void check_scaled(double factor) {
    const zint n = 30;
    const Matrix<T> a = eigen_matrix<T>(Kind::Random, n, 9);
    Matrix<T> b = a;
    for (auto& x : b.v) x = x * factor;
    Matrix<T> place = a, none(1, 1, 1), vr(n, n, n);
    Values<T> w(n), wb(n);
    GeevWork<T> storage(optimal_lwork<T>('N', 'V', n), n);
    ASSERT_EQ(run_geev('N', 'N', a, place, w, none, vr, storage), 0);
    Matrix<T> place_b = b;
    ASSERT_EQ(run_geev('N', 'V', b, place_b, wb, none, vr, storage), 0);
    check_vectors(b, vr, wb, false);
    std::vector<Exact> x, y;
    for (zint i = 0; i < n; ++i) {
        x.push_back(w.at(i));
        y.push_back({wb.at(i).re / factor, wb.at(i).im / factor});
    }
    const auto order = [](const Exact& p, const Exact& q) {
        return p.re < q.re || (p.re == q.re && p.im < q.im);
    };
    std::sort(x.begin(), x.end(), order);
    std::sort(y.begin(), y.end(), order);
    for (zint i = 0; i < n; ++i) {
        EXPECT_NEAR(static_cast<double>(x[static_cast<std::size_t>(i)].re),
                    static_cast<double>(y[static_cast<std::size_t>(i)].re), 1e-12);
        EXPECT_NEAR(static_cast<double>(x[static_cast<std::size_t>(i)].im),
                    static_cast<double>(y[static_cast<std::size_t>(i)].im), 1e-12);
    }
}

TEST(Geev, ScalesMatricesNearUnderflowAndOverflow) {
    for (double factor : {1e-300, 1e-160, 1e160, 1e300}) {
        SCOPED_TRACE(factor);
        check_scaled<double>(factor);
        check_scaled<zcomplex>(factor);
    }
}

TEST(Geev, MinimalWorkspace) {
    check_geev(eigen_matrix<double>(Kind::Random, 150, 11), "real", true);
    check_geev(eigen_matrix<zcomplex>(Kind::Random, 150, 12), "complex", true);
}

// An infinite or NaN entry: info = n and NaN eigenvalues, at once (no iteration could converge).
template <class T>
void check_not_finite(double bad) {
    const zint n = 200;
    Matrix<T> a = eigen_matrix<T>(Kind::Random, n, 13);
    a(n / 2, n / 3) = scalar<T>(bad, 0);
    Matrix<T> place = a, vr(n, n, n), vs(n, n, n);
    Values<T> w(n);
    const auto start = std::chrono::steady_clock::now();
    GeevWork<T> storage(optimal_lwork<T>('N', 'V', n), n);
    EXPECT_EQ(run_geev('N', 'V', a, place, w, vr, vr, storage), n);
    for (zint i = 0; i < n; ++i) EXPECT_TRUE(std::isnan(static_cast<double>(w.at(i).re)));
    refill(place, a);
    std::vector<T> work(static_cast<std::size_t>(70 * n));
    std::vector<double> rwork(static_cast<std::size_t>(n));
    zint sdim = 0, info = 0;
    gees<T>('V', 'N', negative_selector<T>(), n, place.data(), place.ld, sdim, w.view(), vs.data(), vs.ld,
            work.data(), static_cast<zint>(work.size()), rwork.data(), nullptr, info);
    EXPECT_EQ(info, n);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST(Drivers, NonFiniteEntriesFailAtOnce) {
    for (double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        check_not_finite<double>(bad);
        check_not_finite<zcomplex>(bad);
    }
}

// ---- processor variants ------------------------------------------------------------------------

// Many random matrices past the multishift crossover: the eigenvalues of geev with and without
// vectors equal to the bit, at one processor level per child process.
void bitwise_at_this_level() {
    for (zint n : {100, 160, 230, 300}) {
        for (std::uint64_t seed = 0; seed < 3; ++seed) {
            const Matrix<double> a =
                eigen_matrix<double>(seed == 2 ? Kind::Graded : Kind::Random, n, 20 + seed);
            const Matrix<zcomplex> z = eigen_matrix<zcomplex>(Kind::Random, n - 40, 30 + seed);
            Matrix<double> place = a, vr(n, n, n), none(1, 1, 1);
            Matrix<zcomplex> zplace = z, zvr(n - 40, n - 40, n - 40), znone(1, 1, 1);
            Values<double> w1(n), w2(n);
            Values<zcomplex> z1(n - 40), z2(n - 40);
            // Separate work arrays, each of its call's optimal size: the eigenvalues depend neither on
            // where the work lies nor on how much there is beyond what the reduction uses.
            GeevWork<double> work1(optimal_lwork<double>('N', 'V', n), n),
                work2(optimal_lwork<double>('N', 'N', n), n);
            GeevWork<zcomplex> zwork1(optimal_lwork<zcomplex>('N', 'V', n - 40), n - 40),
                zwork2(optimal_lwork<zcomplex>('N', 'N', n - 40), n - 40);
            if (run_geev('N', 'V', a, place, w1, none, vr, work1) != 0) std::exit(2);
            if (run_geev('N', 'N', a, place, w2, none, none, work2) != 0) std::exit(3);
            if (!w1.same_bits_as(w2)) std::exit(4);
            if (run_geev('N', 'V', z, zplace, z1, znone, zvr, zwork1) != 0) std::exit(5);
            if (run_geev('N', 'N', z, zplace, z2, znone, znone, zwork2) != 0) std::exit(6);
            if (!z1.same_bits_as(z2)) std::exit(7);
        }
    }
    std::exit(0);
}

class DriverLevels : public LevelTest {};

TEST_P(DriverLevels, EigenvaluesWithAndWithoutVectorsAreTheSameBits) {
    const std::string cpu_type = std::to_string(static_cast<int>(level()));
    set_env("ZOR_DEBUG_CPU_TYPE", cpu_type.c_str());
    EXPECT_EXIT(bitwise_at_this_level(), ::testing::ExitedWithCode(0), "") << "level " << cpu_type;
    set_env("ZOR_DEBUG_CPU_TYPE", nullptr);
}

// The levels whose GEMM differ most: the SSE2 baseline with its fixed blocking, and AVX.
INSTANTIATE_TEST_SUITE_P(Levels, DriverLevels, ::testing::Values(CpuLevel::Default, CpuLevel::Avx),
                         level_param_name);

// ---- the logical copy of dgees ------------------------------------------------------------------

TEST(GeesExport, NoMemoryForTheLogicalCopyReports1089) {
    const std::string out = child_output(fresh_directory("gees-no-memory"), [] {
        AllocatorScope allocator;
        AllocatorScope::fail_next(2);  // the thread's record, then the plain path
        const zor_int n = 2, lda = 2, ldvs = 2, lwork = 8;
        double a[4] = {1, 0, 0, -1}, wr[2], wi[2], vs[4], work[8];
        zor_int sdim = 0, bwork[2] = {}, info = 0;
        dgees(
            "V", "S", [](const double* re, const double*) -> zor_int { return *re < 0; }, &n, a, &lda, &sdim,
            wr, wi, vs, &ldvs, work, &lwork, bwork, &info, 1, 1);
        std::exit(info == -1023 && a[0] == 1 ? 0 : 1);
    });
    EXPECT_EQ(out, "\nZOR INTERNAL ERROR: Not enough work memory in function DGEES\n");
}

}  // namespace
}  // namespace zor::test
