// The Schur factorization of Hessenberg matrices (hseqr with lahqr and the multishift QR of
// laqr0 .. laqr5) through its internal interface: the residuals of the LAPACK test suite on the
// matrix families that break weak implementations, small orders and orders well past the
// multishift crossover; eigenvalues and T equal to the bit with and without T and Z, on every
// processor variant; non-finite input ending in bounded time; the argument checks.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/eigen_support.hpp"
#include "lapack/hessenberg/hessenberg.hpp"
#include "lapack/qr/qr.hpp"
#include "lapack/schur/schur.hpp"
#include "support/process.hpp"
#include "support/variants.hpp"

namespace zor::test {
namespace {

// Eigenvalues in one array of complex values, whatever the element type.
template <class T>
struct Spectrum {
    std::vector<double> re, im;
    std::vector<zcomplex> w;
    explicit Spectrum(zint n) : re(static_cast<std::size_t>(n)), im(re.size()), w(re.size()) {}
    Eigenvalues<T> view() {
        if constexpr (kIsComplex<T>) {
            return {w.data()};
        } else {
            return {re.data(), im.data()};
        }
    }
    zcomplex at(zint i) const {
        if constexpr (kIsComplex<T>) {
            return w[static_cast<std::size_t>(i)];
        } else {
            return {re[static_cast<std::size_t>(i)], im[static_cast<std::size_t>(i)]};
        }
    }
    bool same_bits_as(const Spectrum& o) const {
        return kIsComplex<T> ? zor::test::same_bits(w, o.w)
                             : zor::test::same_bits(re, o.re) && zor::test::same_bits(im, o.im);
    }
};

// The Hessenberg form of A (gehrd) with its Q (orghr), on the rows and columns ilo .. ihi.
template <class T>
void reduce(const Matrix<T>& a, zint ilo, zint ihi, Matrix<T>& h, Matrix<T>& q) {
    const zint n = a.rows;
    h = a;
    std::vector<T> tau(static_cast<std::size_t>(std::max<zint>(n, 1))),
        work(static_cast<std::size_t>(64 * (n + 70)));
    zint info = 0;
    gehrd<T>(n, ilo, ihi, h.data(), h.ld, tau.data(), work.data(), static_cast<zint>(work.size()), info);
    ASSERT_EQ(info, 0);
    q = h;
    orghr<T>(n, ilo, ihi, q.data(), q.ld, tau.data(), work.data(), static_cast<zint>(work.size()), info);
    ASSERT_EQ(info, 0);
    for (zint j = 0; j < n; ++j) {
        for (zint i = j + 2; i < n; ++i) h(i, j) = T{};
    }
}

template <class T>
zint run_hseqr(char job, char compz, Matrix<T>& h, zint ilo, zint ihi, Spectrum<T>& w, Matrix<T>& z) {
    const zint n = h.rows;
    std::vector<T> work(static_cast<std::size_t>(std::max<zint>(n, 1)));
    zint info = -99;
    hseqr<T>(job, compz, n, ilo, ihi, h.data(), h.ld, w.view(), z.data(), z.ld, work.data(),
             static_cast<zint>(work.size()), info);
    return info;
}

// The contents of `from` copied into the storage of `to` (same shape): a computation repeated in the
// same place, since the rounding of some kernels depends on where an operand lies.
template <class T>
void refill(Matrix<T>& to, const Matrix<T>& from) {
    std::copy(from.v.begin(), from.v.end(), to.v.begin());
}

// hseqr with T and Z on the Hessenberg form of A: A = Z T Zᴴ, Z unitary, T a Schur form whose
// diagonal gives the eigenvalues; the eigenvalues without T and Z, and T without Z, equal to the bit
// (each run in the same storage).
template <class T>
void check_schur(const Matrix<T>& a, const std::string& what) {
    SCOPED_TRACE(what);
    const zint n = a.rows;
    Matrix<T> h, q;
    reduce(a, 1, n, h, q);
    Matrix<T> place = h, z = q, none(1, 1, 1);
    Spectrum<T> w(n), w2(n), w3(n);
    ASSERT_EQ(run_hseqr('S', 'V', place, 1, n, w, z), 0);
    const Matrix<T> t = place;
    EXPECT_LT(schur_residual(a, t, z), kResidualThreshold);
    EXPECT_LT(unitary_residual(z), kResidualThreshold);
    EXPECT_TRUE(is_schur_form(t));
    EXPECT_TRUE(padding_untouched(t));
    for (zint i = 0; i < n; ++i) {
        const zcomplex d = w.at(i);
        EXPECT_EQ(d.re, value(t(i, i)).re) << i;
        if (kIsComplex<T>) {
            EXPECT_EQ(d.im, value(t(i, i)).im) << i;
        }
    }
    refill(place, h);
    ASSERT_EQ(run_hseqr('E', 'N', place, 1, n, w2, none), 0);
    EXPECT_TRUE(w.same_bits_as(w2)) << "eigenvalues differ with and without the Schur form";
    refill(place, h);
    ASSERT_EQ(run_hseqr('S', 'N', place, 1, n, w3, none), 0);
    EXPECT_TRUE(w.same_bits_as(w3));
    EXPECT_TRUE(same_contents(t, place)) << "T differs with and without Z";
}

// Past the multishift crossover (75): the sweeps, the deflation windows and the accumulated
// reflections run.
std::vector<FamilyCase> schur_cases() {
    std::vector<FamilyCase> cases = family_cases(
        {1, 2, 3, 5, 10, 16, 31, 60},
        {Kind::Random, Kind::Graded, Kind::Clustered, Kind::Companion, Kind::Jordan}, {76, 130, 201});
    cases.push_back({Kind::Random, 300});
    return cases;
}

class SchurFamilies : public ::testing::TestWithParam<FamilyCase> {};

TEST_P(SchurFamilies, Real) {
    check_schur(eigen_matrix<double>(GetParam().kind, GetParam().n, 1), "real");
}
TEST_P(SchurFamilies, Complex) {
    check_schur(eigen_matrix<zcomplex>(GetParam().kind, GetParam().n, 2), "complex");
}

INSTANTIATE_TEST_SUITE_P(Families, SchurFamilies, ::testing::ValuesIn(schur_cases()), family_case_name);

// ---- inner ranges, non-finite input, the checks -----------------------------------------------------

// A matrix already triangular outside rows and columns ilo .. ihi (as balancing leaves one): hseqr
// copies the eigenvalues outside and factors the rest, Z updated on ilo .. ihi.
template <class T>
void check_inner_range(zint n, zint ilo, zint ihi) {
    SCOPED_TRACE(std::to_string(n) + " " + std::to_string(ilo) + ".." + std::to_string(ihi));
    Matrix<T> a = eigen_matrix<T>(Kind::Random, n, static_cast<std::uint64_t>(ilo));
    for (zint j = 0; j < n; ++j) {
        for (zint i = j + 1; i < n; ++i) {
            if (j < ilo - 1 || i > ihi - 1) a(i, j) = T{};
        }
    }
    Matrix<T> h, q;
    reduce(a, ilo, ihi, h, q);
    Spectrum<T> w(n);
    ASSERT_EQ(run_hseqr('S', 'V', h, ilo, ihi, w, q), 0);
    EXPECT_LT(schur_residual(a, h, q), kResidualThreshold);
    EXPECT_TRUE(is_schur_form(h));
    for (zint i = 0; i < n; ++i) {
        if (i < ilo - 1 || i > ihi - 1) {
            EXPECT_EQ(w.at(i).re, value(a(i, i)).re) << i;
        }
    }
}

TEST(Hseqr, FactorsTheRangeBalancingLeaves) {
    for (const auto& [n, ilo, ihi] :
         {std::tuple<zint, zint, zint>{5, 3, 3}, {8, 2, 6}, {40, 4, 33}, {150, 9, 140}}) {
        check_inner_range<double>(n, ilo, ihi);
        check_inner_range<zcomplex>(n, ilo, ihi);
    }
}

// A NaN or an infinity in the active block ends the iteration with info > 0, at once rather than
// after the iteration limit.
template <class T>
void check_not_finite(zint n, double bad) {
    Matrix<T> h = eigen_matrix<T>(Kind::Hessenberg, n, 7), z(n, n, n);
    h(n / 3, n / 2) = scalar<T>(bad, 0);  // in the upper triangle, where it enters every sweep
    Spectrum<T> w(n);
    const auto start = std::chrono::steady_clock::now();
    const zint info = run_hseqr('S', 'I', h, 1, n, w, z);
    EXPECT_GT(info, 0);
    EXPECT_LE(info, n);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(Hseqr, NonFiniteEntriesEndTheIteration) {
    for (zint n : {12, 60, 300}) {
        for (double bad :
             {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
            SCOPED_TRACE(std::to_string(n) + " " + std::to_string(bad));
            check_not_finite<double>(n, bad);
            check_not_finite<zcomplex>(n, bad);
        }
    }
}

TEST(Hseqr, WorkspaceQueryAndChecks) {
    double work[2] = {0, 0}, h[4] = {1, 2, 3, 4}, z[4];
    double wr[2], wi[2];
    const Eigenvalues<double> w{wr, wi};
    zint info = -9;
    hseqr<double>('S', 'V', 300, 1, 300, h, 300, w, z, 300, work, -1, info);
    EXPECT_EQ(info, 0);
    EXPECT_EQ(work[0], 300.0);
    ::testing::internal::CaptureStdout();
    hseqr<double>('X', 'N', 2, 1, 2, h, 2, w, z, 1, work, 2, info);
    EXPECT_EQ(info, -1);
    hseqr<double>('S', 'X', 2, 1, 2, h, 2, w, z, 1, work, 2, info);
    EXPECT_EQ(info, -2);
    hseqr<double>('S', 'N', 2, 2, 1, h, 2, w, z, 1, work, 2, info);
    EXPECT_EQ(info, -5);
    hseqr<double>('S', 'V', 2, 1, 2, h, 2, w, z, 1, work, 2, info);
    EXPECT_EQ(info, -11);
    hseqr<double>('S', 'N', 2, 1, 2, h, 2, w, z, 1, work, 1, info);
    EXPECT_EQ(info, -13);
    ::testing::internal::GetCapturedStdout();
}

}  // namespace
}  // namespace zor::test
