// The SVD family through its internal interface: the LAPACK test suite's residuals of the bidiagonal
// reduction (A = Q B Pᴴ through the generated Q and P, their products with ormbr against the
// explicit matrices), of gesdd (||A - U Σ Vᴴ||, ||I - Uᴴ U||, ||I - V Vᴴ||, the values of "N"
// against those with vectors, their order) for every jobz on both sides of the QR/LQ crossover with
// the least and the optimal workspaces, on matrices that break weak implementations (zero, rank
// one, repeated and graded values, entries near underflow and overflow, one row or column, orders
// that make the divide-and-conquer tree several levels deep), gelsd against the minimum-norm
// solution formed from the SVD with its rank decisions, NaN input, the export frame's allocation
// failure, and the argument checks.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "lapack/blas.hpp"
#include "lapack/factor_support.hpp"
#include "lapack/qr/qr.hpp"
#include "lapack/svd/svd.hpp"
#include "service/element.hpp"
#include "service/memory.hpp"
#include "support/arguments.hpp"
#include "support/counting_allocator.hpp"
#include "support/process.hpp"
#include "zor/zor_lapack.h"

namespace zor::test {
namespace {

// The transpose letter that conjugates for complex elements.
template <class T>
inline constexpr char adjoint = kIsComplex<T> ? 'C' : 'T';

// A column-major matrix in double precision with its leading dimension.
template <class T>
struct Mat {
    zint rows = 0, cols = 0, ld = 1;
    std::vector<T> v;
    Mat(zint m, zint n, zint ld_ = 0) : rows(m), cols(n), ld(std::max<zint>(1, ld_ > 0 ? ld_ : m)) {
        v.assign(static_cast<std::size_t>(ld * std::max<zint>(n, 1)), zor::zero<T>());
    }
    T& operator()(zint i, zint j) { return v[static_cast<std::size_t>(i + j * ld)]; }
    const T& operator()(zint i, zint j) const { return v[static_cast<std::size_t>(i + j * ld)]; }
    T* data() { return v.data(); }
    const T* data() const { return v.data(); }
};

template <class T>
Mat<T> random_mat(Random& random, zint m, zint n) {
    Mat<T> a(m, n);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < m; ++i) a(i, j) = random_element<T>(random);
    }
    return a;
}

template <class T>
double norm1(const Mat<T>& a) {
    double best = 0;
    for (zint j = 0; j < a.cols; ++j) {
        double s = 0;
        for (zint i = 0; i < a.rows; ++i) s += zor::abs(a(i, j));
        if (s > best || std::isnan(s)) best = s;
    }
    return best;
}

// op(a) op(b) by the library's gemm.
template <class T>
Mat<T> product(const Mat<T>& a, char ta, const Mat<T>& b, char tb) {
    const zint m = ta == 'N' ? a.rows : a.cols, k = ta == 'N' ? a.cols : a.rows;
    const zint n = tb == 'N' ? b.cols : b.rows;
    Mat<T> c(m, n);
    Blas<T>::gemm(ta, tb, m, n, k, zor::one<T>(), a.data(), a.ld, b.data(), b.ld, zor::zero<T>(), c.data(),
                  c.ld);
    return c;
}

template <class T>
Mat<T> difference(const Mat<T>& a, const Mat<T>& b) {
    Mat<T> d(a.rows, a.cols);
    for (zint j = 0; j < a.cols; ++j) {
        for (zint i = 0; i < a.rows; ++i) d(i, j) = a(i, j) - b(i, j);
    }
    return d;
}

// ||I - Xᴴ X||₁ / (rows eps) for the columns of X (or, with rows_of, XXᴴ for its rows).
template <class T>
double orthogonality(const Mat<T>& x, bool rows_of) {
    Mat<T> g = rows_of ? product(x, 'N', x, adjoint<T>) : product(x, adjoint<T>, x, 'N');
    for (zint i = 0; i < g.rows; ++i) g(i, i) = g(i, i) - zor::one<T>();
    const zint order = rows_of ? x.cols : x.rows;
    return norm1(g) / (std::max<zint>(order, 1) * epsilon());
}

template <class T>
Mat<T> leading(const Mat<T>& a, zint m, zint n) {
    Mat<T> b(m, n);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < m; ++i) b(i, j) = a(i, j);
    }
    return b;
}

// ---- bidiagonal reduction -----------------------------------------------------------------------

struct Shape {
    zint m, n;
};

std::string shape_name(const ::testing::TestParamInfo<Shape>& info) {
    return std::to_string(info.param.m) + "x" + std::to_string(info.param.n);
}

// The explicit Q (m by m) and Pᴴ (n by n) of a reduction in f, and B (m by n).
template <class T>
struct Reduction {
    Mat<T> q, ph, b;
};

template <class T>
Reduction<T> explicit_factors(const Mat<T>& f, const std::vector<double>& d, const std::vector<double>& e,
                              const std::vector<T>& tauq, const std::vector<T>& taup) {
    const zint m = f.rows, n = f.cols;
    Reduction<T> r{Mat<T>(m, m), Mat<T>(n, n), Mat<T>(m, n)};
    for (zint j = 0; j < std::min(m, n); ++j) {
        for (zint i = 0; i < m; ++i) r.q(i, j) = f(i, j);
    }
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < std::min(m, n); ++i) r.ph(i, j) = f(i, j);
    }
    std::vector<T> work(static_cast<std::size_t>(std::max<zint>(1, 64 * (m + n))));
    const zint lwork = static_cast<zint>(work.size());
    zint info = 0;
    orgbr('Q', m, m, n, r.q.data(), r.q.ld, tauq.data(), work.data(), lwork, info);
    EXPECT_EQ(info, 0);
    orgbr('P', n, n, m, r.ph.data(), r.ph.ld, taup.data(), work.data(), lwork, info);
    EXPECT_EQ(info, 0);
    const zint k = std::min(m, n);
    for (zint i = 0; i < k; ++i) {
        r.b(i, i) = from_real<T>(d[static_cast<std::size_t>(i)]);
        if (i + 1 == k) continue;
        T& off = m >= n ? r.b(i, i + 1) : r.b(i + 1, i);
        off = from_real<T>(e[static_cast<std::size_t>(i)]);
    }
    return r;
}

// gebrd (with the least and the optimal workspace, so both its unblocked and blocked code) and
// gebd2 reproduce A through the Q and P that orgbr forms, which are unitary; ormbr applies them as
// the explicit matrices do, from either side, plain and adjoint.
template <class T>
void check_reduction(Shape s) {
    Random random(static_cast<std::uint64_t>(7 * s.m + s.n));
    const Mat<T> a = random_mat<T>(random, s.m, s.n);
    const zint m = s.m, n = s.n, k = std::min(m, n);
    const double anorm = norm1(a);
    for (int variant = 0; variant < 3; ++variant) {
        Mat<T> f = a;
        std::vector<double> d(static_cast<std::size_t>(k)), e(static_cast<std::size_t>(k));
        std::vector<T> tauq(static_cast<std::size_t>(k)), taup(static_cast<std::size_t>(k));
        zint info = 0;
        std::vector<T> work(1);
        if (variant == 2) {
            work.resize(static_cast<std::size_t>(std::max(m, n)));
            gebd2(m, n, f.data(), f.ld, d.data(), e.data(), tauq.data(), taup.data(), work.data(), info);
        } else {
            gebrd(m, n, f.data(), f.ld, d.data(), e.data(), tauq.data(), taup.data(), work.data(), -1, info);
            const zint optimal = static_cast<zint>(zor::real(work[0]));
            const zint lwork = variant == 0 ? std::max<zint>(m, n) : optimal;
            EXPECT_GE(optimal, std::max<zint>(m, n));
            work.assign(static_cast<std::size_t>(lwork), zor::zero<T>());
            gebrd(m, n, f.data(), f.ld, d.data(), e.data(), tauq.data(), taup.data(), work.data(), lwork,
                  info);
        }
        ASSERT_EQ(info, 0);
        const Reduction<T> r = explicit_factors(f, d, e, tauq, taup);
        const Mat<T> qbp = product(product(r.q, 'N', r.b, 'N'), 'N', r.ph, 'N');
        EXPECT_LT(norm1(difference(a, qbp)) / (std::max(m, n) * anorm * epsilon()), kResidualThreshold)
            << "variant " << variant;
        EXPECT_LT(orthogonality(r.q, false), kResidualThreshold);
        EXPECT_LT(orthogonality(r.ph, true), kResidualThreshold);
        if (variant != 0) continue;
        // ormbr against the explicit Q and P = (Pᴴ)ᴴ on a random C from each side.
        std::vector<T> mwork(static_cast<std::size_t>(64 * (m + n) + 4160));
        const zint lw = static_cast<zint>(mwork.size());
        for (const char vect : {'Q', 'P'}) {
            const Mat<T>& x = vect == 'Q' ? r.q : r.ph;
            const zint order = x.rows;
            for (const char side : {'L', 'R'}) {
                for (const char trans : {'N', adjoint<T>}) {
                    const Mat<T> c =
                        side == 'L' ? random_mat<T>(random, order, 3) : random_mat<T>(random, 3, order);
                    Mat<T> out = c;
                    // Q for "Q", P for "P": the explicit P is the adjoint of the formed Pᴴ.
                    const char op = vect == 'Q' ? trans : (trans == 'N' ? adjoint<T> : 'N');
                    const Mat<T> expected = side == 'L' ? product(x, op, c, 'N') : product(c, 'N', x, op);
                    ormbr(vect, side, trans, out.rows, out.cols, vect == 'Q' ? n : m, f.data(), f.ld,
                          vect == 'Q' ? tauq.data() : taup.data(), out.data(), out.ld, mwork.data(), lw,
                          info);
                    ASSERT_EQ(info, 0);
                    EXPECT_LT(norm1(difference(expected, out)) / (order * norm1(c) * epsilon()),
                              kResidualThreshold)
                        << vect << side << trans;
                }
            }
        }
    }
}

class Bidiagonalisation : public ::testing::TestWithParam<Shape> {};

TEST_P(Bidiagonalisation, Real) {
    check_reduction<double>(GetParam());
}
TEST_P(Bidiagonalisation, Complex) {
    check_reduction<zcomplex>(GetParam());
}

// Small shapes, and shapes on both sides of the crossover NX = 128 where gebrd blocks (NB 32).
INSTANTIATE_TEST_SUITE_P(Shapes, Bidiagonalisation,
                         ::testing::Values(Shape{1, 1}, Shape{1, 4}, Shape{4, 1}, Shape{5, 3}, Shape{3, 5},
                                           Shape{8, 8}, Shape{150, 140}, Shape{140, 150}, Shape{200, 200},
                                           Shape{260, 161}),
                         shape_name);

// ---- gesdd ---------------------------------------------------------------------------------------

enum class Family { Random, Zero, RankOne, Repeated, Graded, Tiny, Huge };

// Their names in test names, in the order of the enumeration.
const char* const kFamilyNames[] = {"random", "zero", "rank_one", "repeated", "graded", "tiny", "huge"};

const char* family_name(Family f) {
    return kFamilyNames[static_cast<int>(f)];
}

// An m by n matrix with orthonormal columns (m >= n), from the QR factorization of a random one.
template <class T>
Mat<T> orthonormal(Random& random, zint m, zint n) {
    Mat<T> q = random_mat<T>(random, m, n);
    std::vector<T> tau(static_cast<std::size_t>(std::max<zint>(n, 1))),
        work(static_cast<std::size_t>(64 * std::max<zint>(n, 1)));
    zint info = 0;
    geqrf(m, n, q.data(), q.ld, tau.data(), work.data(), static_cast<zint>(work.size()), info);
    orgqr(m, n, n, q.data(), q.ld, tau.data(), work.data(), static_cast<zint>(work.size()), info);
    return q;
}

// X diag(values) Yᴴ for random orthonormal X (m by k) and Y (n by k).
template <class T>
Mat<T> with_values(Random& random, zint m, zint n, const std::vector<double>& values) {
    const zint k = static_cast<zint>(values.size());
    Mat<T> x = orthonormal<T>(random, m, k);
    const Mat<T> y = orthonormal<T>(random, n, k);
    for (zint j = 0; j < k; ++j) {
        for (zint i = 0; i < m; ++i) x(i, j) = x(i, j) * values[static_cast<std::size_t>(j)];
    }
    return product(x, 'N', y, adjoint<T>);
}

// The matrix of a family and, where it prescribes them, its singular values (descending).
template <class T>
Mat<T> family_matrix(Family family, zint m, zint n, std::vector<double>& values) {
    Random random(static_cast<std::uint64_t>(1000 * m + n + 77 * static_cast<int>(family)));
    const zint k = std::min(m, n);
    values.clear();
    switch (family) {
        case Family::Random:
        case Family::Tiny:
        case Family::Huge: {
            Mat<T> a = random_mat<T>(random, m, n);
            const double scale = family == Family::Tiny ? 0x1p-1000 : family == Family::Huge ? 0x1p1000 : 1.0;
            for (T& x : a.v) x = x * scale;
            return a;
        }
        case Family::Zero:
            values.assign(static_cast<std::size_t>(k), 0.0);
            return Mat<T>(m, n);
        case Family::RankOne: {
            Mat<T> a(m, n);
            std::vector<T> x(static_cast<std::size_t>(m)), y(static_cast<std::size_t>(n));
            double nx = 0, ny = 0;
            for (T& v : x) nx += abs_squared(v = random_element<T>(random));
            for (T& v : y) ny += abs_squared(v = random_element<T>(random));
            for (zint j = 0; j < n; ++j) {
                for (zint i = 0; i < m; ++i)
                    a(i, j) = x[static_cast<std::size_t>(i)] * zor::conj(y[static_cast<std::size_t>(j)]);
            }
            values.assign(static_cast<std::size_t>(k), 0.0);
            values[0] = std::sqrt(nx * ny);
            return a;
        }
        case Family::Repeated:
            // Three clusters of exactly equal values.
            for (zint i = 0; i < k; ++i) values.push_back(i < k / 3 ? 2.0 : i < 2 * k / 3 ? 1.0 : 0.5);
            return with_values<T>(random, m, n, values);
        case Family::Graded:
            for (zint i = 0; i < k; ++i)
                values.push_back(std::pow(10.0, -12.0 * i / std::max<zint>(1, k - 1)));
            return with_values<T>(random, m, n, values);
    }
    return Mat<T>(m, n);
}

struct SvdCase {
    Shape shape;
    char jobz;
    bool minimal;  // the least workspace, else the optimal one
    Family family;
};

// gesdd on one case: the residuals, the values against those of "N" and against the family's
// prescribed ones, the order, nothing written past lwork or the columns asked for.
template <class T>
void check_gesdd(const SvdCase& c) {
    const zint m = c.shape.m, n = c.shape.n, k = std::min(m, n);
    std::vector<double> prescribed;
    const Mat<T> a = family_matrix<T>(c.family, m, n, prescribed);
    const char jobz = c.jobz;
    const bool all = jobz == 'A', over = jobz == 'O';
    const zint ucols = all ? m : k, vrows = all ? n : k;
    // U is not referenced by "O" with m >= n, nor VT with m < n: give them their least size.
    const bool u_in_a = over && m >= n, vt_in_a = over && m < n;
    Mat<T> f(m, n, m + 2);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < f.ld; ++i) f(i, j) = i < m ? a(i, j) : from_real<T>(kPoison);
    }
    Mat<T> u(u_in_a ? 1 : m, u_in_a ? 1 : ucols, (u_in_a ? 1 : m) + 1);
    Mat<T> vt(vt_in_a ? 1 : vrows, vt_in_a ? 1 : n, (vt_in_a ? 1 : vrows) + 1);
    if (jobz == 'N') u = Mat<T>(1, 1), vt = Mat<T>(1, 1);
    const WorkSizes sizes = gesdd_work_sizes<T>(jobz, m, n);
    const zint lwork = c.minimal ? sizes.minimal : sizes.optimal;
    constexpr zint kTail = 8;
    std::vector<T> work(static_cast<std::size_t>(lwork + kTail), from_real<T>(kPoison));
    const zint mx = std::max(m, n);
    const std::size_t lrwork = static_cast<std::size_t>(
        std::max<zint>(1, jobz == 'N' ? 5 * k : std::max(5 * k * k + 5 * k, 2 * mx * k + 2 * k * k + k)));
    std::vector<double> rwork(lrwork + kTail, kPoison);
    std::vector<zint> iwork(static_cast<std::size_t>(std::max<zint>(1, 8 * k)));
    std::vector<double> s(static_cast<std::size_t>(std::max<zint>(k, 1)));
    zint info = 0;
    std::vector<T> query(1);
    gesdd(jobz, m, n, f.data(), f.ld, s.data(), u.data(), u.ld, vt.data(), vt.ld, query.data(), -1,
          rwork.data(), iwork.data(), info);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(static_cast<zint>(zor::real(query[0])), sizes.optimal);
    gesdd(jobz, m, n, f.data(), f.ld, s.data(), u.data(), u.ld, vt.data(), vt.ld, work.data(), lwork,
          rwork.data(), iwork.data(), info);
    ASSERT_EQ(info, 0);
    for (zint i = 0; i < kTail; ++i) {
        EXPECT_TRUE(std::isnan(zor::real(work[static_cast<std::size_t>(lwork + i)])))
            << "work written past lwork";
        if (kIsComplex<T>) {
            EXPECT_TRUE(std::isnan(rwork[lrwork + static_cast<std::size_t>(i)])) << "rwork overrun";
        }
    }
    for (zint j = 0; j < n; ++j) EXPECT_TRUE(std::isnan(zor::real(f(m, j)))) << "A's padding written";
    // Values: non-negative, non-increasing.
    for (zint i = 0; i < k; ++i) {
        EXPECT_GE(s[static_cast<std::size_t>(i)], 0.0);
        if (i > 0) {
            EXPECT_GE(s[static_cast<std::size_t>(i - 1)], s[static_cast<std::size_t>(i)]);
        }
    }
    const double smax = k > 0 ? s[0] : 0.0;
    const double tolerance = kResidualThreshold * std::max<zint>(mx, 1) * epsilon();
    for (std::size_t i = 0; i < prescribed.size(); ++i)
        EXPECT_LE(std::fabs(s[i] - prescribed[i]), tolerance * std::max(smax, prescribed[0]))
            << "value " << i;
    if (jobz != 'N') {
        // The values without vectors agree with these.
        Mat<T> g(m, n);
        for (zint j = 0; j < n; ++j) {
            for (zint i = 0; i < m; ++i) g(i, j) = a(i, j);
        }
        const WorkSizes values_only = gesdd_work_sizes<T>('N', m, n);
        std::vector<T> w2(static_cast<std::size_t>(values_only.minimal));
        std::vector<double> s2(s.size());
        T dummy[1];
        gesdd('N', m, n, g.data(), g.ld, s2.data(), dummy, 1, dummy, 1, w2.data(), values_only.minimal,
              rwork.data(), iwork.data(), info);
        ASSERT_EQ(info, 0);
        for (zint i = 0; i < k; ++i)
            EXPECT_LE(std::fabs(s[static_cast<std::size_t>(i)] - s2[static_cast<std::size_t>(i)]),
                      tolerance * smax);
        // A = U Σ Vᴴ with the vectors from where jobz puts them.
        const Mat<T> uu = u_in_a ? leading(f, m, k) : leading(u, m, ucols);
        const Mat<T> vv = vt_in_a ? leading(f, k, n) : leading(vt, vrows, n);
        Mat<T> us = leading(uu, m, k);
        for (zint j = 0; j < k; ++j) {
            for (zint i = 0; i < m; ++i) us(i, j) = us(i, j) * s[static_cast<std::size_t>(j)];
        }
        const Mat<T> usv = product(us, 'N', leading(vv, k, n), 'N');
        const double anorm = norm1(a);
        if (anorm > 0) {
            EXPECT_LT(norm1(difference(a, usv)) / (mx * anorm * epsilon()), kResidualThreshold);
        }
        EXPECT_LT(orthogonality(uu, false), kResidualThreshold);
        EXPECT_LT(orthogonality(vv, true), kResidualThreshold);
    }
}

std::string case_name(const ::testing::TestParamInfo<SvdCase>& info) {
    const SvdCase& c = info.param;
    return std::to_string(c.shape.m) + "x" + std::to_string(c.shape.n) + "_" + c.jobz + "_" +
           (c.minimal ? "least" : "optimal") + "_" + family_name(c.family);
}

class Gesdd : public ::testing::TestWithParam<SvdCase> {};

TEST_P(Gesdd, Real) {
    check_gesdd<double>(GetParam());
}
TEST_P(Gesdd, Complex) {
    check_gesdd<zcomplex>(GetParam());
}

// Shapes around the crossover (query 6 answers 1.6 min(m, n): 25 for 16 columns, so 24 x 16 is
// reduced directly and 27 x 16 after a QR factorization), square ones, a single row or column, and
// orders above the leaf size 25 of the divide-and-conquer tree.
const Shape kSvdShapes[] = {{1, 1},   {1, 6},   {6, 1},   {2, 3},   {3, 2},    {10, 10},  {24, 16},
                            {27, 16}, {16, 24}, {16, 27}, {60, 60}, {130, 40}, {40, 130}, {70, 50}};

std::vector<SvdCase> random_cases() {
    std::vector<SvdCase> cases;
    for (const Shape& s : kSvdShapes) {
        for (const char jobz : {'N', 'O', 'S', 'A'}) {
            for (const bool minimal : {true, false}) cases.push_back({s, jobz, minimal, Family::Random});
        }
    }
    return cases;
}

std::vector<SvdCase> family_cases() {
    std::vector<SvdCase> cases;
    for (const Family f :
         {Family::Zero, Family::RankOne, Family::Repeated, Family::Graded, Family::Tiny, Family::Huge}) {
        for (const Shape s : {Shape{1, 5}, Shape{30, 30}, Shape{50, 20}, Shape{20, 50}}) {
            for (const char jobz : {'N', 'O', 'S', 'A'}) cases.push_back({s, jobz, jobz == 'O', f});
        }
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(RandomMatrices, Gesdd, ::testing::ValuesIn(random_cases()), case_name);
INSTANTIATE_TEST_SUITE_P(Families, Gesdd, ::testing::ValuesIn(family_cases()), case_name);
// Several levels of the divide-and-conquer tree, blocked reductions and generators.
INSTANTIATE_TEST_SUITE_P(Large, Gesdd,
                         ::testing::Values(SvdCase{{300, 300}, 'A', false, Family::Random},
                                           SvdCase{{1000, 1000}, 'S', false, Family::Random},
                                           SvdCase{{800, 200}, 'O', true, Family::Graded},
                                           SvdCase{{200, 700}, 'O', false, Family::Random},
                                           SvdCase{{250, 400}, 'S', true, Family::Repeated}),
                         case_name);

// A NaN in A is reported as info -4 at once, with no message; an infinite entry does not hang.
TEST(GesddNonFinite, NanReturnsMinusFourInfinityFinishes) {
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        Mat<zcomplex> a(20, 12);
        Random random(5);
        for (zcomplex& x : a.v) x = random.complex();
        a(3, 4) = {bad, 0};
        Mat<zcomplex> u(20, 20), vt(12, 12);
        std::vector<double> s(12), rwork(2000);
        std::vector<zint> iwork(96);
        const zint lwork = gesdd_work_sizes<zcomplex>('A', 20, 12).optimal;
        std::vector<zcomplex> work(static_cast<std::size_t>(lwork));
        zint info = 0;
        ::testing::internal::CaptureStdout();
        gesdd('A', 20, 12, a.data(), 20, s.data(), u.data(), 20, vt.data(), 12, work.data(), lwork,
              rwork.data(), iwork.data(), info);
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
        if (std::isnan(bad)) {
            EXPECT_EQ(info, -4);
        } else {
            EXPECT_TRUE(info > 0 || std::isnan(s[0]) || std::isinf(s[0])) << info;
        }
    }
}

// ---- gelsd ---------------------------------------------------------------------------------------

struct LsCase {
    Shape shape;
    zint nrhs;
    zint rank;     // the number of values above the threshold; the others are tiny
    double rcond;  // < 0: machine precision
    bool minimal;
};

std::string ls_name(const ::testing::TestParamInfo<LsCase>& info) {
    const LsCase& c = info.param;
    return std::to_string(c.shape.m) + "x" + std::to_string(c.shape.n) + "_rhs" + std::to_string(c.nrhs) +
           "_rank" + std::to_string(c.rank) + (c.rcond < 0 ? "_eps" : "") +
           (c.minimal ? "_least" : "_optimal");
}

// The minimum-norm solution through the SVD from gesdd: X = V Σ⁺ Uᴴ B over the values above
// rcond·σ₁.
Mat<double> svd_solution(const Mat<double>& a, const Mat<double>& b, double rcond, zint& rank) {
    const zint m = a.rows, n = a.cols, k = std::min(m, n);
    Mat<double> f = a, u(m, k), vt(k, n);
    std::vector<double> s(static_cast<std::size_t>(k)), work(gesdd_work_sizes<double>('S', m, n).optimal);
    std::vector<zint> iwork(static_cast<std::size_t>(8 * k));
    zint info = 0;
    double dummy[1];
    gesdd('S', m, n, f.data(), f.ld, s.data(), u.data(), u.ld, vt.data(), vt.ld, work.data(),
          static_cast<zint>(work.size()), dummy, iwork.data(), info);
    EXPECT_EQ(info, 0);
    const double threshold = (rcond < 0 ? epsilon() : rcond) * s[0];
    Mat<double> c = product(u, 'T', b, 'N');
    rank = 0;
    for (zint i = 0; i < k; ++i) {
        const bool kept = s[static_cast<std::size_t>(i)] > threshold;
        rank += kept ? 1 : 0;
        for (zint j = 0; j < b.cols; ++j) c(i, j) = kept ? c(i, j) / s[static_cast<std::size_t>(i)] : 0.0;
    }
    return product(vt, 'T', c, 'N');
}

void check_gelsd(const LsCase& c) {
    const zint m = c.shape.m, n = c.shape.n, k = std::min(m, n), nrhs = c.nrhs;
    Random random(static_cast<std::uint64_t>(31 * m + n + nrhs));
    // Values 1 .. 1e-3 for the first `rank`, 1e-13 times smaller after them.
    std::vector<double> values;
    for (zint i = 0; i < k; ++i)
        values.push_back(i < c.rank ? std::pow(10.0, -3.0 * i / std::max<zint>(1, c.rank)) : 1e-16);
    const Mat<double> a = with_values<double>(random, m, n, values);
    const zint ldb = std::max(m, n) + 1;
    Mat<double> b0 = random_mat<double>(random, m, nrhs);
    Mat<double> b(std::max(m, n), nrhs, ldb);
    for (zint j = 0; j < nrhs; ++j) {
        for (zint i = 0; i < m; ++i) b(i, j) = b0(i, j);
    }
    Mat<double> f = a;
    const WorkSizes sizes = gelsd_work_sizes(m, n, nrhs);
    const zint lwork = c.minimal ? sizes.minimal : sizes.optimal;
    std::vector<double> work(static_cast<std::size_t>(lwork) + 4, kPoison), s(static_cast<std::size_t>(k));
    std::vector<zint> iwork(static_cast<std::size_t>(gelsd_iwork_size(m, n)));
    zint rank = -1, info = 0;
    gelsd(m, n, nrhs, f.data(), f.ld, b.data(), b.ld, s.data(), c.rcond, rank, work.data(), lwork,
          iwork.data(), info);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(iwork[0], gelsd_iwork_size(m, n));
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(std::isnan(work[static_cast<std::size_t>(lwork + i)]));
    zint expected_rank = 0;
    const Mat<double> x = svd_solution(a, b0, c.rcond, expected_rank);
    EXPECT_EQ(rank, expected_rank);
    EXPECT_EQ(rank, c.rcond < 0 ? k : c.rank);
    for (zint i = 0; i < k; ++i)
        EXPECT_NEAR(s[static_cast<std::size_t>(i)], values[static_cast<std::size_t>(i)], 1e-13);
    // The solutions agree to the conditioning of the kept part (σ₁ / σ_rank ≤ 1e3, or 1e16 when
    // every value is kept, where only the residual's orthogonality to the range is compared).
    const Mat<double> xl = leading(b, n, nrhs);
    if (c.rcond >= 0) {
        EXPECT_LT(norm1(difference(x, xl)) / (norm1(x) * 1e3 * std::max(m, n) * epsilon()),
                  kResidualThreshold);
    }
    // Aᵀ (A X - B) = 0 over the kept part: the normal equations' residual.
    const Mat<double> r = difference(product(a, 'N', xl, 'N'), b0);
    const Mat<double> atr = product(a, 'T', r, 'N');
    EXPECT_LT(
        norm1(atr) / (norm1(a) * norm1(a) * std::max(norm1(xl), 1.0) * std::max(m, n) * epsilon() * 1e3),
        kResidualThreshold);
}

class Gelsd : public ::testing::TestWithParam<LsCase> {};

TEST_P(Gelsd, MinimumNormSolution) {
    check_gelsd(GetParam());
}

// Both sides of the QR crossover (1.6 n) and of the LQ one, the LQ path with and without the
// workspace it needs, rank decisions on either side of a gap of 1e-13 (rcond 1e-10 keeps the large
// values, machine precision keeps all), one and several right-hand sides, and orders that make
// lalsd's tree several levels deep.
INSTANTIATE_TEST_SUITE_P(
    Shapes, Gelsd,
    ::testing::Values(LsCase{{1, 1}, 1, 1, 1e-10, true}, LsCase{{5, 3}, 2, 3, 1e-10, true},
                      LsCase{{3, 5}, 2, 3, 1e-10, false}, LsCase{{40, 30}, 3, 20, 1e-10, true},
                      LsCase{{60, 30}, 3, 20, 1e-10, false}, LsCase{{30, 40}, 3, 25, 1e-10, true},
                      LsCase{{30, 60}, 3, 25, 1e-10, true}, LsCase{{30, 60}, 3, 25, 1e-10, false},
                      LsCase{{200, 120}, 1, 120, -1.0, false}, LsCase{{120, 300}, 4, 100, 1e-10, false},
                      LsCase{{300, 120}, 4, 90, 1e-10, true}, LsCase{{150, 150}, 2, 150, -1.0, true}),
    ls_name);

// The rank at rcond's edges: values 1, 1e-5, 1e-9 keep 2 for rcond 1e-7, 1 for 1e-3 and all three
// for rcond < 0 (machine precision); a zero A gives rank 0 and the zero solution.
TEST(GelsdRank, DecidedByRcond) {
    Random random(9);
    const Mat<double> a = with_values<double>(random, 6, 3, {1.0, 1e-5, 1e-9});
    for (const auto& [rcond, expected] :
         {std::pair{1e-7, 2}, std::pair{1e-3, 1}, std::pair{-1.0, 3}, std::pair{0.99, 1}}) {
        Mat<double> f = a, b(6, 1);
        for (zint i = 0; i < 6; ++i) b(i, 0) = 1.0;
        std::vector<double> s(3), work(static_cast<std::size_t>(gelsd_work_sizes(6, 3, 1).optimal));
        std::vector<zint> iwork(static_cast<std::size_t>(gelsd_iwork_size(6, 3)));
        zint rank = 0, info = 0;
        gelsd(6, 3, 1, f.data(), 6, b.data(), 6, s.data(), rcond, rank, work.data(),
              static_cast<zint>(work.size()), iwork.data(), info);
        ASSERT_EQ(info, 0);
        EXPECT_EQ(rank, expected) << rcond;
    }
    Mat<double> zero(4, 3), b(4, 2);
    for (double& x : b.v) x = 3.0;
    std::vector<double> s(3, 7.0), work(static_cast<std::size_t>(gelsd_work_sizes(4, 3, 2).optimal));
    std::vector<zint> iwork(static_cast<std::size_t>(gelsd_iwork_size(4, 3)));
    zint rank = 9, info = 0;
    gelsd(4, 3, 2, zero.data(), 4, b.data(), 4, s.data(), -1.0, rank, work.data(),
          static_cast<zint>(work.size()), iwork.data(), info);
    EXPECT_EQ(info, 0);
    EXPECT_EQ(rank, 0);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(s[static_cast<std::size_t>(i)], 0.0);
    for (zint i = 0; i < 3; ++i) EXPECT_EQ(b(i, 0), 0.0);
}

// No right-hand side: the same singular values (to the bit) and rank as with one, on both sides
// of lalsd's leaf size and of the QR crossover.
TEST(GelsdRank, NoRightHandSideStillGivesValuesAndRank) {
    Random random(11);
    for (const auto& [m, n] : {std::pair{6, 3}, std::pair{3, 6}, std::pair{80, 60}, std::pair{200, 60}}) {
        const zint k = std::min(m, n);
        std::vector<double> values(static_cast<std::size_t>(k));
        for (zint i = 0; i < k; ++i) values[static_cast<std::size_t>(i)] = i < k / 2 ? 1.0 / (i + 1) : 1e-14;
        const Mat<double> a = with_values<double>(random, m, n, values);
        std::vector<double> s[2];
        zint rank[2] = {-1, -1};
        for (const zint nrhs : {0, 1}) {
            Mat<double> f = a, b(std::max(m, n), std::max<zint>(nrhs, 1));
            std::vector<double> work(static_cast<std::size_t>(gelsd_work_sizes(m, n, nrhs).minimal));
            std::vector<zint> iwork(static_cast<std::size_t>(gelsd_iwork_size(m, n)));
            s[nrhs].resize(static_cast<std::size_t>(k));
            zint info = 0;
            gelsd(m, n, nrhs, f.data(), m, b.data(), b.ld, s[nrhs].data(), 1e-10, rank[nrhs], work.data(),
                  static_cast<zint>(work.size()), iwork.data(), info);
            ASSERT_EQ(info, 0) << m << "x" << n << " nrhs " << nrhs;
        }
        EXPECT_EQ(rank[0], rank[1]) << m << "x" << n;
        EXPECT_EQ(rank[0], k / 2) << m << "x" << n;
        EXPECT_EQ(s[0], s[1]) << m << "x" << n;
    }
}

// NaN or infinity in A: the bidiagonal solver reports failure (info > 0) without hanging, and
// iwork(1) still answers the size it needs.
TEST(GelsdNonFinite, ReportsFailure) {
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        Random random(3);
        Mat<double> a = random_mat<double>(random, 50, 40), b = random_mat<double>(random, 50, 2);
        a(7, 9) = bad;
        std::vector<double> s(40), work(static_cast<std::size_t>(gelsd_work_sizes(50, 40, 2).optimal));
        std::vector<zint> iwork(static_cast<std::size_t>(gelsd_iwork_size(50, 40)));
        zint rank = 0, info = 0;
        gelsd(50, 40, 2, a.data(), 50, b.data(), 50, s.data(), -1.0, rank, work.data(),
              static_cast<zint>(work.size()), iwork.data(), info);
        EXPECT_GT(info, 0) << bad;
        EXPECT_EQ(iwork[0], gelsd_iwork_size(50, 40));
    }
}

// ---- the exports' frame --------------------------------------------------------------------------

// No memory for the 64-bit iwork gives message 1089 and info -1023, nothing computed; a workspace
// query of dgesdd needs no copy and so no memory.
void svd_exports_without_memory() {
    free_all_buffers();
    AllocatorScope allocator;
    double a[4] = {1, 2, 3, 4}, s[2], u[4], vt[4], work[1024];
    zor_int iwork[16], info = 0, rank = 5;
    const zor_int n = 2, lwork = 1024, query = -1;
    AllocatorScope::fail_next(2);  // the thread's record, then the plain path
    ::dgesdd("A", &n, &n, a, &n, s, u, &n, vt, &n, work, &lwork, iwork, &info, 1);
    if (info != -1023 || a[0] != 1.0) std::exit(1);
    AllocatorScope::fail_next(2);
    const double rcond = -1;
    ::dgelsd(&n, &n, &n, a, &n, u, &n, s, &rcond, &rank, work, &lwork, iwork, &info);
    if (info != -1023 || rank != 5 || a[0] != 1.0) std::exit(2);
    AllocatorScope::fail_next(2);
    ::dgesdd("S", &n, &n, a, &n, s, u, &n, vt, &n, work, &query, iwork, &info, 1);
    std::exit(info == 0 && work[0] >= 1 ? 0 : 3);
}

TEST(SvdExportFrame, NoMemoryForIworkReports1089) {
    EXPECT_EQ(child_output(fresh_directory("svd-no-memory"), svd_exports_without_memory),
              "\nZOR INTERNAL ERROR: Not enough work memory in function DGESDD\n"
              "\nZOR INTERNAL ERROR: Not enough work memory in function DGELSD\n");
}

// ---- argument checks ----------------------------------------------------------------------------

double g_a[64];
zcomplex g_z[64];
double g_d[64];
zint g_iwork[64];

// gelsd's info for the dimensions given (its arrays the globals above).
zint gelsd_info(zint m, zint n, zint nrhs, zint lda, zint ldb, zint lwork) {
    zint rank = 0, info = 0;
    gelsd(m, n, nrhs, g_a, lda, g_a, ldb, g_d, -1, rank, g_a, lwork, g_iwork, info);
    return info;
}

const ArgumentCase kSvdArgumentCases[] = {
    {"DGEBD2", -4, [] { return info_of(gebd2<double>, 3, 2, g_a, 2, g_d, g_d, g_a, g_a, g_a); }},
    {"ZGEBRD", -4, [] { return info_of(gebrd<zcomplex>, 3, 2, g_z, 2, g_d, g_d, g_z, g_z, g_z, 4); }},
    {"DGEBRD", -10, [] { return info_of(gebrd<double>, 3, 4, g_a, 3, g_d, g_d, g_a, g_a, g_a, 3); }},
    {"DGEBRD", 0, [] { return info_of(gebrd<double>, 0, 0, g_a, 1, g_d, g_d, g_a, g_a, g_a, 1); }},
    {"DORGBR", -1, [] { return info_of(orgbr<double>, 'X', 2, 2, 2, g_a, 2, g_a, g_a, 4); }},
    {"DORGBR", -3, [] { return info_of(orgbr<double>, 'Q', 2, 3, 2, g_a, 2, g_a, g_a, 4); }},
    {"ZUNGBR", -3, [] { return info_of(orgbr<zcomplex>, 'P', 3, 2, 2, g_z, 3, g_z, g_z, 4); }},
    {"DORGBR", -6, [] { return info_of(orgbr<double>, 'Q', 3, 2, 2, g_a, 2, g_a, g_a, 4); }},
    {"ZUNGBR", -9, [] { return info_of(orgbr<zcomplex>, 'Q', 3, 3, 3, g_z, 3, g_z, g_z, 2); }},
    {"DORMBR", -1,
     [] { return info_of(ormbr<double>, 'X', 'L', 'N', 2, 2, 2, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"DORMBR", -2,
     [] { return info_of(ormbr<double>, 'Q', 'X', 'N', 2, 2, 2, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"ZUNMBR", -3,
     [] { return info_of(ormbr<zcomplex>, 'Q', 'L', 'T', 2, 2, 2, g_z, 2, g_z, g_z, 2, g_z, 4); }},
    {"DORMBR", -8,
     [] { return info_of(ormbr<double>, 'Q', 'L', 'N', 3, 2, 2, g_a, 2, g_a, g_a, 3, g_a, 4); }},
    {"DORMBR", -8,
     [] { return info_of(ormbr<double>, 'P', 'R', 'N', 2, 4, 3, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"DORMBR", 0, [] { return info_of(ormbr<double>, 'P', 'R', 'N', 2, 4, 1, g_a, 1, g_a, g_a, 2, g_a, 4); }},
    {"DORMBR", -11,
     [] { return info_of(ormbr<double>, 'Q', 'L', 'N', 3, 2, 2, g_a, 3, g_a, g_a, 2, g_a, 4); }},
    {"ZUNMBR", -13,
     [] { return info_of(ormbr<zcomplex>, 'Q', 'R', 'C', 3, 2, 2, g_z, 3, g_z, g_z, 3, g_z, 2); }},
    {"DGESDD", -1,
     [] { return info_of(gesdd<double>, 'X', 2, 2, g_a, 2, g_d, g_a, 2, g_a, 2, g_a, 64, g_d, g_iwork); }},
    {"DGESDD", -2,
     [] { return info_of(gesdd<double>, 'N', -1, 2, g_a, 1, g_d, g_a, 1, g_a, 1, g_a, 64, g_d, g_iwork); }},
    {"ZGESDD", -3,
     [] { return info_of(gesdd<zcomplex>, 'N', 2, -1, g_z, 2, g_d, g_z, 1, g_z, 1, g_z, 64, g_d, g_iwork); }},
    {"DGESDD", -5,
     [] { return info_of(gesdd<double>, 'N', 3, 2, g_a, 2, g_d, g_a, 1, g_a, 1, g_a, 64, g_d, g_iwork); }},
    // ldu: m for "A" and "S", and for "O" when m < n (U is then not in A).
    {"DGESDD", -8,
     [] { return info_of(gesdd<double>, 'S', 3, 2, g_a, 3, g_d, g_a, 2, g_a, 2, g_a, 64, g_d, g_iwork); }},
    {"ZGESDD", -8,
     [] { return info_of(gesdd<zcomplex>, 'O', 2, 3, g_z, 2, g_d, g_z, 1, g_z, 1, g_z, 64, g_d, g_iwork); }},
    {"DGESDD", 0,
     [] { return info_of(gesdd<double>, 'O', 3, 2, g_a, 3, g_d, g_a, 1, g_a, 2, g_a, -1, g_d, g_iwork); }},
    // ldvt: n for "A", min(m, n) for "S", n for "O" when m >= n.
    {"DGESDD", -10,
     [] { return info_of(gesdd<double>, 'A', 2, 3, g_a, 2, g_d, g_a, 2, g_a, 2, g_a, 64, g_d, g_iwork); }},
    {"DGESDD", -10,
     [] { return info_of(gesdd<double>, 'S', 4, 3, g_a, 4, g_d, g_a, 4, g_a, 2, g_a, 64, g_d, g_iwork); }},
    {"ZGESDD", -10,
     [] { return info_of(gesdd<zcomplex>, 'O', 3, 2, g_z, 3, g_d, g_z, 1, g_z, 1, g_z, 64, g_d, g_iwork); }},
    {"DGESDD", -12,
     [] { return info_of(gesdd<double>, 'N', 4, 3, g_a, 4, g_d, g_a, 1, g_a, 1, g_a, 3, g_d, g_iwork); }},
    {"ZGESDD", -12,
     [] { return info_of(gesdd<zcomplex>, 'A', 4, 3, g_z, 4, g_d, g_z, 4, g_z, 3, g_z, 5, g_d, g_iwork); }},
    {"DGESDD", 0,
     [] { return info_of(gesdd<double>, 'A', 0, 3, g_a, 1, g_d, g_a, 1, g_a, 3, g_a, 1, g_d, g_iwork); }},
    {"DGELSD", -1, [] { return gelsd_info(-1, 2, 1, 1, 2, 64); }},
    {"DGELSD", -2, [] { return gelsd_info(2, -1, 1, 2, 2, 64); }},
    {"DGELSD", -3, [] { return gelsd_info(2, 2, -1, 2, 2, 64); }},
    {"DGELSD", -5, [] { return gelsd_info(3, 2, 1, 2, 3, 64); }},
    {"DGELSD", -7, [] { return gelsd_info(2, 3, 1, 2, 2, 64); }},
    {"DGELSD", -12, [] { return gelsd_info(3, 2, 1, 3, 3, 2); }},
    {"DGELSD", 0, [] { return gelsd_info(3, 2, 1, 3, 3, -1); }},
};

INSTANTIATE_TEST_SUITE_P(SvdArguments, ArgumentChecks, ::testing::ValuesIn(kSvdArgumentCases));

}  // namespace
}  // namespace zor::test
