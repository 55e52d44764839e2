// Balancing and the Hessenberg reduction through their internal interface: gebal's permutation
// and scaling undone exactly by gebak, the reduction's residual ||A - Q H Qᴴ|| against the Q its
// reflectors stand for on both sides of the block crossover, with minimal and optimal workspace and
// inner ilo .. ihi ranges, and the argument checks.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "lapack/eigen_support.hpp"
#include "lapack/hessenberg/hessenberg.hpp"
#include "lapack/qr/qr.hpp"

namespace zor::test {
namespace {

struct Reduction {
    zint n, ilo, ihi;
};

// A matrix already upper triangular outside rows and columns ilo .. ihi (as gebal leaves it).
template <class T>
Matrix<T> balanced_shape(zint n, zint ilo, zint ihi, std::uint64_t seed) {
    Matrix<T> a = eigen_matrix<T>(Kind::Random, n, seed);
    for (zint j = 0; j < n; ++j) {
        for (zint i = j + 1; i < n; ++i) {
            if (j < ilo - 1 || i > ihi - 1) a(i, j) = T{};
        }
    }
    return a;
}

template <class T>
void check_gehrd(Reduction r, bool optimal) {
    SCOPED_TRACE(std::to_string(r.n) + " " + std::to_string(r.ilo) + ".." + std::to_string(r.ihi) +
                 (optimal ? " optimal" : " minimal"));
    const Matrix<T> a = balanced_shape<T>(r.n, r.ilo, r.ihi, static_cast<std::uint64_t>(r.n * 31 + r.ilo));
    Matrix<T> h = a;
    std::vector<T> tau(static_cast<std::size_t>(std::max<zint>(r.n, 1)), scalar<T>(kPoison, kPoison));
    std::vector<T> work(1);
    zint info = -7;
    gehrd<T>(r.n, r.ilo, r.ihi, h.data(), h.ld, tau.data(), work.data(), -1, info);
    ASSERT_EQ(info, 0);
    const zint lwork = optimal ? static_cast<zint>(value(work[0]).re) : std::max<zint>(1, r.n);
    work.assign(static_cast<std::size_t>(lwork), T{});
    gehrd<T>(r.n, r.ilo, r.ihi, h.data(), h.ld, tau.data(), work.data(), lwork, info);
    ASSERT_EQ(info, 0);
    EXPECT_TRUE(padding_untouched(h));
    for (zint i = 0; i + 1 < r.n; ++i) {
        if (i < r.ilo - 1 || i >= r.ihi - 1) {
            EXPECT_EQ(value(tau[static_cast<std::size_t>(i)]).re, 0) << i;
            EXPECT_EQ(value(tau[static_cast<std::size_t>(i)]).im, 0) << i;
        }
    }
    Matrix<T> q = h;
    std::vector<T> qwork(static_cast<std::size_t>(64 * std::max<zint>(r.n, 1)));
    orghr<T>(r.n, r.ilo, r.ihi, q.data(), q.ld, tau.data(), qwork.data(), static_cast<zint>(qwork.size()),
             info);
    ASSERT_EQ(info, 0);
    for (zint j = 0; j < r.n; ++j) {
        for (zint i = j + 2; i < r.n; ++i) h(i, j) = T{};
    }
    EXPECT_LT(schur_residual(a, h, q), kResidualThreshold);
    EXPECT_LT(unitary_residual(q), kResidualThreshold);
}

// ---- gebal and gebak ---------------------------------------------------------------------------------

// A = Pᵀ B P for a random permutation P and a block upper triangular B whose first `top` and last
// `bottom` rows and columns are triangular (their eigenvalues can be isolated), the middle dense and
// graded by powers of two from 2^-40 to 2^40 (so that scaling has work to do).
template <class T>
Matrix<T> balancing_case(zint n, zint top, zint bottom, std::uint64_t seed) {
    Random random(seed);
    Matrix<T> b(n, n, n);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) {
            const bool below_triangle = i > j && (j < top || i >= n - bottom);
            const double grade = std::ldexp(1.0, static_cast<int>((i - j) * 80 / std::max<zint>(n, 1)));
            const Exact x = value(random_element<T>(random));
            b(i, j) = below_triangle ? T{} : narrow_to<T>({x.re * grade, x.im * grade});
        }
    }
    std::vector<zint> p(static_cast<std::size_t>(n));
    for (zint i = 0; i < n; ++i) p[static_cast<std::size_t>(i)] = i;
    for (zint i = n - 1; i > 0; --i)
        std::swap(p[static_cast<std::size_t>(i)],
                  p[static_cast<std::size_t>(random.next() % static_cast<std::uint64_t>(i + 1))]);
    Matrix<T> a(n, n, n + 1);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i)
            a(p[static_cast<std::size_t>(i)], p[static_cast<std::size_t>(j)]) = b(i, j);
    }
    return a;
}

// M = gebak(job, side) applied to the unit matrix: P D (right) or P D⁻¹ (left).
template <class T>
Matrix<T> back_transform(char job, char side, zint n, zint ilo, zint ihi, const std::vector<double>& scale) {
    Matrix<T> m(n, n, std::max<zint>(n, 1));
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) m(i, j) = i == j ? scalar<T>(1, 0) : T{};
    }
    zint info = -1;
    gebak<T>(job, side, n, ilo, ihi, scale.data(), n, m.data(), m.ld, info);
    EXPECT_EQ(info, 0);
    return m;
}

// gebal then gebak undo each other exactly (the permutation and the powers of two are exact): A M = M B
// with M = P D from the right vectors' back-transformation, and Lᵀ A = B Lᵀ with L = P D⁻¹ from the
// left ones; B is upper triangular outside ilo .. ihi.
template <class T>
void check_balancing(char job, zint n, zint top, zint bottom) {
    SCOPED_TRACE(std::string(1, job) + " " + std::to_string(n) + " " + std::to_string(top) + "/" +
                 std::to_string(bottom));
    const Matrix<T> a = balancing_case<T>(n, top, bottom, static_cast<std::uint64_t>(n * 13 + top));
    Matrix<T> b = a;
    std::vector<double> scale(static_cast<std::size_t>(std::max<zint>(n, 1)), kPoison);
    zint ilo = -1, ihi = -1, info = -1;
    gebal<T>(job, n, b.data(), b.ld, ilo, ihi, scale.data(), info);
    ASSERT_EQ(info, 0);
    if (job == 'P' || job == 'B') {
        // The triangular ends are isolated at least (more when the dense middle is too small to
        // resist).
        EXPECT_LE(ilo, top + 1);
        if (n - top - bottom >= 2) {
            EXPECT_GE(ihi, n - bottom);
        }
    } else {
        EXPECT_EQ(ilo, 1);
        EXPECT_EQ(ihi, n);
    }
    for (zint j = 0; j < n; ++j) {
        for (zint i = j + 1; i < n; ++i) {
            if (j < ilo - 1 || i > ihi - 1) {
                EXPECT_EQ(value(b(i, j)).re, 0) << i << "," << j;
            }
        }
    }
    const Wide wa = widen_matrix(a), wb = widen_matrix(b);
    const Wide right = widen_matrix(back_transform<T>(job, 'R', n, ilo, ihi, scale));
    const Wide left = widen_matrix(back_transform<T>(job, 'L', n, ilo, ihi, scale));
    EXPECT_EQ(difference_norm(multiply(wa, right), multiply(right, wb)), 0);
    EXPECT_EQ(difference_norm(multiply(op(left, 'T'), wa), multiply(wb, op(left, 'T'))), 0);
    if (job == 'S' || job == 'B') {
        // The scaling pays: the graded part's norm comes down by orders of magnitude.
        if (n > 8) {
            EXPECT_LT(one_norm(wb), one_norm(wa) * 1e-3L);
        } else {
            EXPECT_LE(one_norm(wb), one_norm(wa));
        }
    }
}

TEST(Gebal, PermutationAndScalingUndoneExactlyByGebak) {
    for (char job : {'N', 'P', 'S', 'B'}) {
        for (const auto& [n, top, bottom] : {std::tuple<zint, zint, zint>{0, 0, 0},
                                             {1, 0, 0},
                                             {2, 1, 0},
                                             {6, 0, 6},
                                             {12, 3, 4},
                                             {40, 0, 0},
                                             {40, 7, 11}}) {
            check_balancing<double>(job, n, top, bottom);
            check_balancing<zcomplex>(job, n, top, bottom);
        }
    }
}

// A NaN met while scaling is reported as argument 3, as published; ilo and ihi are still those of
// the permutation.
TEST(Gebal, ReportsANan) {
    Matrix<double> a = eigen_matrix<double>(Kind::Random, 5, 1);
    a(2, 3) = kPoison;
    std::vector<double> scale(5);
    zint ilo = 0, ihi = 0, info = 0;
    ::testing::internal::CaptureStdout();
    gebal<double>('B', 5, a.data(), a.ld, ilo, ihi, scale.data(), info);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              "\nZOR ERROR: Parameter 3 was incorrect on entry to DGEBAL\n");
    EXPECT_EQ(info, -3);
    EXPECT_EQ(ilo, 1);
    EXPECT_EQ(ihi, 5);
}

TEST(Gebak, PassesOverIndicesGebalCannotHaveWritten) {
    // A scale factor outside 1 .. n in a permuted position is not followed outside V.
    const std::vector<double> scale = {1e9, 1, 1, -4};
    Matrix<double> v(4, 1, 4);
    for (zint i = 0; i < 4; ++i) v(i, 0) = static_cast<double>(i);
    zint info = -1;
    gebak<double>('P', 'R', 4, 2, 3, scale.data(), 1, v.data(), v.ld, info);
    EXPECT_EQ(info, 0);
    for (zint i = 0; i < 4; ++i) EXPECT_EQ(v(i, 0), static_cast<double>(i));
}

// Unblocked below the crossover (128), blocked past it (NB 32): whole matrices and inner ranges.
const Reduction kReductions[] = {{0, 1, 0},     {1, 1, 1},     {2, 1, 2},     {5, 1, 5},
                                 {8, 3, 6},     {40, 1, 40},   {130, 1, 130}, {161, 1, 161},
                                 {200, 1, 200}, {260, 7, 251}, {300, 60, 290}};

TEST(Gehrd, ReducesToHessenbergForm) {
    for (const Reduction& r : kReductions) {
        for (bool optimal : {false, true}) {
            check_gehrd<double>(r, optimal);
            check_gehrd<zcomplex>(r, optimal);
        }
    }
}

}  // namespace
}  // namespace zor::test
