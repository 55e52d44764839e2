// Balancing and the Hessenberg reduction through their internal interface: gebal's permutation
// and scaling undone exactly by gebak, the reduction's residual ||A - Q H Qᴴ|| against the Q its
// reflectors stand for on both sides of the block crossover, with minimal and optimal workspace and
// inner ilo .. ihi ranges, and the argument checks.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
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
