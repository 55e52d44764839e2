// The QR family through its internal interface: the residuals of the LAPACK test suite (||A - Q R||,
// ||I - Qᴴ Q||, the same for LQ, A P - Q R for the pivoted QR) against the Q that the stored
// reflectors stand for, built in long double from their definition; shapes on both sides of every
// block size and crossover, minimal and optimal workspaces, scaling near underflow and overflow,
// rank deficiency, every processor variant, the progress handler, and the argument checks.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "lapack/factor_support.hpp"
#include "lapack/qr/qr.hpp"
#include "lapack/reflector_support.hpp"
#include "lapack/tuning/tuning.hpp"
#include "service/memory.hpp"
#include "support/counting_allocator.hpp"
#include "support/process.hpp"
#include "support/variants.hpp"
#include "zor/zor_lapack.h"

namespace zor::test {
namespace {

template <class T>
const char* pick(const char* real, const char* complex) {
    return kIsComplex<T> ? complex : real;
}

// The workspace a routine answers for lwork = -1.
template <class T>
zint queried(const std::vector<T>& work) {
    return static_cast<zint>(value(work[0]).re);
}

struct Shape {
    zint m, n;
};

std::string shape_name(const ::testing::TestParamInfo<Shape>& info) {
    return std::to_string(info.param.m) + "x" + std::to_string(info.param.n);
}

// Small shapes (unblocked), shapes around the block sizes of the QR and LQ factorizations and of
// the generators (blocked from about 112 columns, NB 16 to 48, recursive panels of 8-column leaves;
// LQ and the generators from 129), and shapes cut by either dimension.
const Shape kShapes[] = {{1, 1},     {1, 5},    {5, 1},    {2, 3},     {3, 2},     {8, 8},     {17, 9},
                         {9, 17},    {33, 70},  {70, 33},  {64, 64},   {120, 120}, {129, 129}, {131, 150},
                         {150, 131}, {200, 40}, {40, 200}, {300, 170}, {170, 300}, {360, 360}};

enum class Workspace { Minimal, Optimal };

// Calls `routine(lwork, work)` with the workspace `kind` asks for: the size its query (lwork =
// -1) answers, or `least`.
template <class T, class Routine>
void with_workspace(Workspace kind, zint least, Routine routine) {
    std::vector<T> work(1);
    routine(zint{-1}, work.data());
    const zint lwork = kind == Workspace::Optimal ? queried(work) : least;
    work.assign(static_cast<std::size_t>(lwork), T{});
    routine(lwork, work.data());
}

// geqrf and orgqr (lq false), or gelqf and orglq: the factorization reproduces A through the Q of
// its reflectors, that Q is unitary, the diagonal of R (L) is real, and the generator forms the
// leading columns (rows) of Q, also from about half of the reflectors.
template <class T>
void check_factorization(bool lq, Shape s, Workspace kind) {
    Random random(static_cast<std::uint64_t>(s.m * 1000 + s.n + lq));
    const Matrix<T> a = random_matrix<T>(random, s.m, s.n);
    const zint k = std::min(s.m, s.n);
    const zint order = lq ? s.n : s.m;  // of Q
    Matrix<T> f = a;
    std::vector<T> tau(static_cast<std::size_t>(std::max<zint>(k, 1)));
    zint info = -7;
    with_workspace<T>(kind, std::max<zint>(1, lq ? s.m : s.n), [&](zint lwork, T* work) {
        const auto factor = lq ? gelqf<T> : geqrf<T>;
        EXPECT_FALSE(factor(s.m, s.n, f.data(), f.ld, tau.data(), work, lwork, info));
    });
    ASSERT_EQ(info, 0);
    EXPECT_TRUE(padding_untouched(f));
    for (zint i = 0; i < k; ++i) EXPECT_EQ(f.at(i, i).im, 0) << "diagonal " << i << " is not real";

    const Wide q = lq ? lq_q(f, tau, k) : qr_q(f, tau, k);
    const Wide product =
        lq ? multiply(lower_part(f), leading_rows(q, k)) : multiply(leading_columns(q, k), upper_part(f));
    const long double norm = std::max<long double>(one_norm(a), 1);
    EXPECT_LT(difference_norm(product, widen_matrix(a)) / (std::max<zint>(order, 1) * norm * epsilon()),
              kResidualThreshold);
    EXPECT_LT(lq ? row_orthogonality(q) : column_orthogonality(q), kResidualThreshold);

    for (const zint reflectors : {k, k / 2}) {
        const Wide partial = reflectors == k ? q : (lq ? lq_q(f, tau, reflectors) : qr_q(f, tau, reflectors));
        const Wide expected = lq ? leading_rows(partial, k) : leading_columns(partial, k);
        Matrix<T> g(lq ? k : s.m, lq ? s.n : k, f.ld);
        for (zint j = 0; j < g.cols; ++j) {
            for (zint i = 0; i < g.rows; ++i) g(i, j) = f(i, j);
        }
        with_workspace<T>(kind, std::max<zint>(1, k), [&](zint lwork, T* work) {
            const auto generate = lq ? orglq<T> : orgqr<T>;
            generate(g.rows, g.cols, reflectors, g.data(), g.ld, tau.data(), work, lwork, info);
        });
        ASSERT_EQ(info, 0);
        EXPECT_LT(scaled_distance(expected, widen_matrix(g), order), kResidualThreshold)
            << (lq ? "orglq" : "orgqr") << " with " << reflectors << " reflectors";
    }
}

class Factorizations : public ::testing::TestWithParam<Shape> {};

// The minimal workspace runs the unblocked code, which the smaller shapes cover: the largest ones
// (for NB 48, the deepest panel recursion) take the optimal workspace only.
std::vector<Workspace> workspaces(Shape s) {
    if (s.m * s.n > 100000) return {Workspace::Optimal};
    return {Workspace::Minimal, Workspace::Optimal};
}

TEST_P(Factorizations, QrReproducesTheMatrixWithAUnitaryQ) {
    for (Workspace kind : workspaces(GetParam())) {
        check_factorization<double>(false, GetParam(), kind);
        check_factorization<zcomplex>(false, GetParam(), kind);
    }
}

TEST_P(Factorizations, LqReproducesTheMatrixWithAUnitaryQ) {
    for (Workspace kind : workspaces(GetParam())) {
        check_factorization<double>(true, GetParam(), kind);
        check_factorization<zcomplex>(true, GetParam(), kind);
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, Factorizations, ::testing::ValuesIn(kShapes), shape_name);

// The unblocked routines alone give the same factors as the blocked ones up to rounding.
TEST(UnblockedFactorizations, AgreeWithTheBlockedOnes) {
    const zint m = 150, n = 130;
    Random random(5);
    const Matrix<zcomplex> a = random_matrix<zcomplex>(random, m, n);
    Matrix<zcomplex> blocked = a, unblocked = a;
    std::vector<zcomplex> tau(n), tau2(n), work(static_cast<std::size_t>(m * 64));
    zint info = 0;
    geqrf<zcomplex>(m, n, blocked.data(), blocked.ld, tau.data(), work.data(), m * 64, info);
    geqr2<zcomplex>(m, n, unblocked.data(), unblocked.ld, tau2.data(), work.data(), info);
    EXPECT_LT(scaled_distance(widen_matrix(blocked), widen_matrix(unblocked), m), kResidualThreshold);
    blocked = a;
    unblocked = a;
    gelqf<zcomplex>(m, n, blocked.data(), blocked.ld, tau.data(), work.data(), m * 64, info);
    gelq2<zcomplex>(m, n, unblocked.data(), unblocked.ld, tau2.data(), work.data(), info);
    EXPECT_LT(scaled_distance(widen_matrix(blocked), widen_matrix(unblocked), n), kResidualThreshold);
}

// Columns near underflow and overflow: the reflectors neither overflow nor lose their digits, so
// the residual relative to ||A|| holds; an exactly zero column gives tau = 0 and a zero R column.
TEST(QrScaling, ColumnsNearUnderflowAndOverflowKeepTheirDigits) {
    for (const double scale : {1e-300, 1e-310, 1e300}) {
        const zint m = 140, n = 130;
        Random random(17);
        Matrix<double> a = random_matrix<double>(random, m, n);
        for (zint j = 0; j < n; j += 3) {
            for (zint i = 0; i < m; ++i) a(i, j) *= scale;
        }
        for (zint i = 0; i < m; ++i) a(i, 7) = 0.0;
        Matrix<double> f = a;
        std::vector<double> tau(n), work(static_cast<std::size_t>(n * 64));
        zint info = 0;
        geqrf<double>(m, n, f.data(), f.ld, tau.data(), work.data(), n * 64, info);
        ASSERT_EQ(info, 0);
        for (const double x : f.v) ASSERT_FALSE(std::isinf(x)) << scale;
        EXPECT_EQ(tau[7], 0.0);
        // Each column against its own scale: the scaled ones would vanish in ||A||.
        Wide r(m, n);
        for (zint j = 0; j < n; ++j) {
            for (zint i = 0; i <= j; ++i) r(i, j) = f.at(i, j);
        }
        const Wide qr = multiply(qr_q(f, tau, n), r);
        for (zint j = 0; j < n; j += 3) {
            long double diff = 0, norm = 0;
            for (zint i = 0; i < m; ++i) {
                diff += std::fabs(qr(i, j).re - a(i, j));
                norm += std::fabs(static_cast<long double>(a(i, j)));
            }
            if (norm == 0) continue;
            EXPECT_LT(diff / (m * norm * epsilon()), kResidualThreshold)
                << "scale " << scale << " column " << j;
        }
    }
}

// ---- pivoted QR ---------------------------------------------------------------------------------

struct PivotCase {
    zint m, n, rank;  // rank < min(m, n): A = B C with B m by rank
    bool fix;         // some columns fixed through jpvt
};

template <class T>
void check_geqp3(const PivotCase& c, Workspace kind) {
    Random random(static_cast<std::uint64_t>(c.m * 31 + c.n * 7 + c.rank));
    Matrix<T> a = random_matrix<T>(random, c.m, c.n);
    const zint k = std::min(c.m, c.n);
    if (c.rank < k) {
        const Matrix<T> b = random_matrix<T>(random, c.m, c.rank), d = random_matrix<T>(random, c.rank, c.n);
        const Wide product = multiply(widen_matrix(b), widen_matrix(d));
        for (zint j = 0; j < c.n; ++j) {
            for (zint i = 0; i < c.m; ++i) a(i, j) = narrow_to<T>(product(i, j));
        }
    }
    if (c.n > 4) {
        for (zint i = 0; i < c.m; ++i) a(i, 2) = T{};  // a zero column
    }
    std::vector<zint> jpvt(static_cast<std::size_t>(c.n), 0);
    std::vector<zint> fixed;
    if (c.fix) {
        for (zint j = 1; j < c.n; j += 5) {
            jpvt[static_cast<std::size_t>(j)] = -1;  // any nonzero value fixes the column
            fixed.push_back(j + 1);
        }
    }
    Matrix<T> f = a;
    std::vector<T> tau(static_cast<std::size_t>(std::max<zint>(k, 1))), work(1);
    std::vector<double> rwork(static_cast<std::size_t>(2 * std::max<zint>(c.n, 1)));
    zint info = -7;
    geqp3<T>(c.m, c.n, f.data(), f.ld, nullptr, tau.data(), work.data(), -1, rwork.data(), info);
    ASSERT_EQ(info, 0);
    const zint lwork = kind == Workspace::Optimal ? queried(work) : (kIsComplex<T> ? c.n + 1 : 3 * c.n + 1);
    work.assign(static_cast<std::size_t>(lwork), T{});
    geqp3<T>(c.m, c.n, f.data(), f.ld, jpvt.data(), tau.data(), work.data(), lwork, rwork.data(), info);
    ASSERT_EQ(info, 0);

    // A permutation, with the fixed columns first in their order.
    std::vector<zint> sorted = jpvt;
    std::sort(sorted.begin(), sorted.end());
    for (zint j = 0; j < c.n; ++j) ASSERT_EQ(sorted[static_cast<std::size_t>(j)], j + 1);
    for (std::size_t j = 0; j < fixed.size(); ++j) EXPECT_EQ(jpvt[j], fixed[j]);

    // ||A P - Q R|| / (m ||A|| eps)
    Wide ap(c.m, c.n);
    for (zint j = 0; j < c.n; ++j) {
        for (zint i = 0; i < c.m; ++i) ap(i, j) = a.at(i, jpvt[static_cast<std::size_t>(j)] - 1);
    }
    const Wide q = qr_q(f, tau, k);
    const Wide qr = multiply(leading_columns(q, k), upper_part(f));
    const long double norm = std::max<long double>(one_norm(a), 1);
    EXPECT_LT(difference_norm(qr, ap) / (std::max<zint>(c.m, 1) * norm * epsilon()), kResidualThreshold);
    EXPECT_LT(column_orthogonality(q), kResidualThreshold);

    // The free part of R's diagonal does not increase, and reveals the rank.
    const zint first_free = std::min<zint>(static_cast<zint>(fixed.size()), k);
    for (zint i = first_free + 1; i < k; ++i)
        EXPECT_LE(std::abs(f.at(i, i).re), std::abs(f.at(i - 1, i - 1).re) * (1 + 1e-12)) << i;
    if (c.rank < k && !c.fix) {
        EXPECT_GT(std::abs(f.at(c.rank - 1, c.rank - 1).re), 1e-3);
        EXPECT_LT(std::abs(f.at(c.rank, c.rank).re), 1e-10 * norm);
    }
}

class Geqp3 : public ::testing::TestWithParam<PivotCase> {};

TEST_P(Geqp3, PivotedFactorsReproduceTheMatrixAndRevealTheRank) {
    for (Workspace kind : {Workspace::Minimal, Workspace::Optimal}) {
        check_geqp3<double>(GetParam(), kind);
        check_geqp3<zcomplex>(GetParam(), kind);
    }
}

// Blocked from 129 free columns (NB 32), with the rank deficiency inside a block and in the last
// columns; fixed columns taking part of the matrix to geqrf and ormqr.
INSTANTIATE_TEST_SUITE_P(Cases, Geqp3,
                         ::testing::Values(PivotCase{1, 1, 1, false}, PivotCase{6, 3, 3, false},
                                           PivotCase{3, 6, 3, true}, PivotCase{40, 30, 30, false},
                                           PivotCase{40, 30, 12, false}, PivotCase{30, 40, 30, true},
                                           PivotCase{180, 150, 150, false}, PivotCase{180, 150, 70, false},
                                           PivotCase{150, 190, 140, true}, PivotCase{200, 160, 159, false}),
                         [](const auto& info) {
                             return std::to_string(info.param.m) + "x" + std::to_string(info.param.n) +
                                    "_rank" + std::to_string(info.param.rank) +
                                    (info.param.fix ? "_fixed" : "");
                         });

// ---- Hessenberg Q -----------------------------------------------------------------------------

// orghr's Q must be H(ilo) ... H(ihi - 1) of the reflectors a Hessenberg reduction stores.
template <class T>
void check_orghr(zint n, zint ilo, zint ihi, Workspace kind) {
    Random random(static_cast<std::uint64_t>(n * 100 + ilo * 10 + ihi));
    const Matrix<T> a = random_matrix<T>(random, n, n);
    std::vector<T> tau;
    const Wide q = hessenberg_reflectors(random, a, ilo, ihi, tau);
    Matrix<T> g = a;
    std::vector<T> work(1);
    zint info = -7;
    orghr<T>(n, ilo, ihi, g.data(), g.ld, tau.data(), work.data(), -1, info);
    ASSERT_EQ(info, 0);
    const zint lwork = kind == Workspace::Optimal ? queried(work) : std::max<zint>(1, ihi - ilo);
    work.assign(static_cast<std::size_t>(lwork), T{});
    orghr<T>(n, ilo, ihi, g.data(), g.ld, tau.data(), work.data(), lwork, info);
    ASSERT_EQ(info, 0);
    EXPECT_LT(scaled_distance(q, widen_matrix(g), n), kResidualThreshold) << n << " " << ilo << " " << ihi;
    EXPECT_LT(column_orthogonality(widen_matrix(g)), kResidualThreshold);
}

TEST(Orghr, FormsTheProductOfTheHessenbergReflectors) {
    for (Workspace kind : {Workspace::Minimal, Workspace::Optimal}) {
        for (const auto& [n, ilo, ihi] : {std::tuple<zint, zint, zint>{1, 1, 1},
                                          {5, 1, 5},
                                          {6, 2, 4},
                                          {9, 3, 3},
                                          {40, 1, 40},
                                          {150, 1, 150},
                                          {170, 5, 160}}) {
            check_orghr<double>(n, ilo, ihi, kind);
            check_orghr<zcomplex>(n, ilo, ihi, kind);
        }
    }
}

// ---- processor variants -------------------------------------------------------------------------

// The blocked factorizations and generators on every variant of the kernels they reach, each in a
// child that starts at that level.
class QrLevels : public LevelTest {};

void factor_at_this_level() {
    check_factorization<double>(false, {150, 131}, Workspace::Optimal);
    check_factorization<zcomplex>(true, {131, 150}, Workspace::Optimal);
    check_geqp3<zcomplex>({180, 150, 70, false}, Workspace::Optimal);
    check_orghr<double>(150, 2, 140, Workspace::Optimal);
    std::exit(::testing::Test::HasFailure() ? 1 : 0);
}

TEST_P(QrLevels, FactorizationsHoldOnEveryVariant) {
    const std::string cpu_type = std::to_string(static_cast<int>(level()));
    set_env("ZOR_DEBUG_CPU_TYPE", cpu_type.c_str());
    EXPECT_EXIT(factor_at_this_level(), ::testing::ExitedWithCode(0), "") << "level " << cpu_type;
    set_env("ZOR_DEBUG_CPU_TYPE", nullptr);
}

INSTANTIATE_TEST_SUITE_P(Levels, QrLevels, kAllLevels, level_param_name);

// ---- progress -----------------------------------------------------------------------------------

void progress_child() {
    use_progress_log();
    const zint n = 200;
    Random random(1);
    Matrix<double> a = random_matrix<double>(random, n, n);
    std::vector<double> tau(n), work(static_cast<std::size_t>(n * 128));
    zint info = 0;
    geqrf<double>(n, n, a.data(), a.ld, tau.data(), work.data(), n * 128, info);
    // One report per panel, rising to n, all named "DGEQRF".
    const auto& steps = ProgressLog::steps;
    if (steps.size() < 2 || steps.back() != n) std::exit(1);
    for (std::size_t i = 1; i < steps.size(); ++i) {
        if (steps[i] <= steps[i - 1]) std::exit(2);
    }
    for (const auto& stage : ProgressLog::stages) {
        if (stage != "DGEQRF") std::exit(3);
    }
    // Stopped at the first report: the reflectors after the first panel are never made.
    ProgressLog::reset(1);
    Matrix<zcomplex> z = random_matrix<zcomplex>(random, n, n);
    std::vector<zcomplex> ztau(n, {7, 7}), zwork(static_cast<std::size_t>(n * 128));
    if (!gelqf<zcomplex>(n, n, z.data(), z.ld, ztau.data(), zwork.data(), n * 128, info)) std::exit(4);
    if (ProgressLog::calls != 1 || ProgressLog::stages[0] != "ZGELQF") std::exit(5);
    const zint done = ProgressLog::steps[0];
    if (done <= 0 || done >= n) std::exit(6);
    if (ztau[static_cast<std::size_t>(done) - 1].re == 7 || ztau[static_cast<std::size_t>(done)].re != 7)
        std::exit(7);
    // An empty matrix reports nothing.
    ProgressLog::reset();
    geqrf<double>(0, 5, a.data(), 1, tau.data(), work.data(), 1, info);
    std::exit(ProgressLog::calls == 0 ? 0 : 8);
}

TEST(QrProgress, ReportsEachPanelAndStopsWhenAsked) {
    EXPECT_EXIT(progress_child(), ::testing::ExitedWithCode(0), "");
}

// The export's frame: no memory for the 64-bit copy of jpvt gives message 1089 and info -1023,
// nothing computed; a workspace query needs no copy and so no memory.
void dgeqp3_without_memory() {
    free_all_buffers();
    AllocatorScope allocator;
    AllocatorScope::fail_next(2);  // the thread's record, then the plain path
    double a[4] = {1, 2, 3, 4}, tau[2], work[16];
    zor_int jpvt[2] = {0, 0};
    const zor_int n = 2, lwork = 16;
    zor_int info = 0;
    ::dgeqp3(&n, &n, a, &n, jpvt, tau, work, &lwork, &info);
    if (info != -1023 || a[0] != 1.0 || jpvt[0] != 0) std::exit(1);
    AllocatorScope::fail_next(2);
    const zor_int query = -1;
    ::dgeqp3(&n, &n, a, &n, nullptr, tau, work, &query, &info);
    std::exit(info == 0 ? 0 : 2);
}

TEST(QrExportFrame, NoMemoryForThePivotsReports1089) {
    EXPECT_EQ(child_output(fresh_directory("dgeqp3-no-memory"), dgeqp3_without_memory),
              "\nZOR INTERNAL ERROR: Not enough work memory in function DGEQP3\n");
}

// ---- argument checks ----------------------------------------------------------------------------

double g_a[64];
zcomplex g_z[64];
double g_rwork[16];
zint g_jpvt[8];

const ArgumentCase kQrArgumentCases[] = {
    {"DGEQR2", -1, [] { return info_of(geqr2<double>, -1, 2, g_a, 1, g_a, g_a); }},
    {"DGEQR2", -2, [] { return info_of(geqr2<double>, 2, -1, g_a, 2, g_a, g_a); }},
    {"ZGEQR2", -4, [] { return info_of(geqr2<zcomplex>, 3, 2, g_z, 2, g_z, g_z); }},
    {"DGEQRF", -1, [] { return info_of(geqrf<double>, -1, 2, g_a, 1, g_a, g_a, 4); }},
    {"DGEQRF", -2, [] { return info_of(geqrf<double>, 2, -1, g_a, 2, g_a, g_a, 4); }},
    {"DGEQRF", -4, [] { return info_of(geqrf<double>, 3, 2, g_a, 2, g_a, g_a, 4); }},
    {"DGEQRF", -7, [] { return info_of(geqrf<double>, 3, 3, g_a, 3, g_a, g_a, 2); }},
    {"ZGEQRF", -7, [] { return info_of(geqrf<zcomplex>, 0, 3, g_z, 1, g_z, g_z, 0); }},
    {"DGEQRF", 0, [] { return info_of(geqrf<double>, 0, 3, g_a, 1, g_a, g_a, 1); }},
    {"DGELQ2", -1, [] { return info_of(gelq2<double>, -1, 2, g_a, 1, g_a, g_a); }},
    {"ZGELQ2", -2, [] { return info_of(gelq2<zcomplex>, 2, -1, g_z, 2, g_z, g_z); }},
    {"DGELQ2", -4, [] { return info_of(gelq2<double>, 3, 2, g_a, 2, g_a, g_a); }},
    {"DGELQF", -1, [] { return info_of(gelqf<double>, -1, 2, g_a, 1, g_a, g_a, 4); }},
    {"DGELQF", -2, [] { return info_of(gelqf<double>, 2, -1, g_a, 2, g_a, g_a, 4); }},
    {"ZGELQF", -4, [] { return info_of(gelqf<zcomplex>, 3, 2, g_z, 2, g_z, g_z, 4); }},
    {"DGELQF", -7, [] { return info_of(gelqf<double>, 3, 5, g_a, 3, g_a, g_a, 2); }},
    {"DGEQP3", -1, [] { return info_of(geqp3<double>, -1, 2, g_a, 1, g_jpvt, g_a, g_a, 9, g_rwork); }},
    {"DGEQP3", -2, [] { return info_of(geqp3<double>, 2, -1, g_a, 2, g_jpvt, g_a, g_a, 9, g_rwork); }},
    {"DGEQP3", -4, [] { return info_of(geqp3<double>, 3, 2, g_a, 2, g_jpvt, g_a, g_a, 9, g_rwork); }},
    {"DGEQP3", -8, [] { return info_of(geqp3<double>, 3, 2, g_a, 3, g_jpvt, g_a, g_a, 6, g_rwork); }},
    {"ZGEQP3", -8, [] { return info_of(geqp3<zcomplex>, 3, 2, g_z, 3, g_jpvt, g_z, g_z, 2, g_rwork); }},
    {"ZGEQP3", 0, [] { return info_of(geqp3<zcomplex>, 3, 2, g_z, 3, g_jpvt, g_z, g_z, -1, g_rwork); }},
    {"DORG2R", -1, [] { return info_of(org2r<double>, -1, 0, 0, g_a, 1, g_a, g_a); }},
    {"DORG2R", -2, [] { return info_of(org2r<double>, 2, 3, 0, g_a, 2, g_a, g_a); }},
    {"ZUNG2R", -3, [] { return info_of(org2r<zcomplex>, 3, 2, 3, g_z, 3, g_z, g_z); }},
    {"DORG2R", -5, [] { return info_of(org2r<double>, 3, 2, 2, g_a, 2, g_a, g_a); }},
    {"DORGQR", -1, [] { return info_of(orgqr<double>, -1, 0, 0, g_a, 1, g_a, g_a, 1); }},
    {"DORGQR", -2, [] { return info_of(orgqr<double>, 2, -1, 0, g_a, 2, g_a, g_a, 1); }},
    {"DORGQR", -3, [] { return info_of(orgqr<double>, 3, 2, -1, g_a, 3, g_a, g_a, 2); }},
    {"ZUNGQR", -5, [] { return info_of(orgqr<zcomplex>, 3, 2, 2, g_z, 2, g_z, g_z, 2); }},
    {"DORGQR", -8, [] { return info_of(orgqr<double>, 3, 2, 2, g_a, 3, g_a, g_a, 1); }},
    {"DORGL2", -1, [] { return info_of(orgl2<double>, -1, 0, 0, g_a, 1, g_a, g_a); }},
    {"ZUNGL2", -2, [] { return info_of(orgl2<zcomplex>, 3, 2, 0, g_z, 3, g_z, g_z); }},
    {"DORGL2", -3, [] { return info_of(orgl2<double>, 2, 3, 3, g_a, 2, g_a, g_a); }},
    {"DORGL2", -5, [] { return info_of(orgl2<double>, 2, 3, 2, g_a, 1, g_a, g_a); }},
    {"DORGLQ", -1, [] { return info_of(orglq<double>, -1, 0, 0, g_a, 1, g_a, g_a, 1); }},
    {"DORGLQ", -2, [] { return info_of(orglq<double>, 3, 2, 0, g_a, 3, g_a, g_a, 3); }},
    {"ZUNGLQ", -3, [] { return info_of(orglq<zcomplex>, 2, 3, -1, g_z, 2, g_z, g_z, 2); }},
    {"DORGLQ", -5, [] { return info_of(orglq<double>, 2, 3, 2, g_a, 1, g_a, g_a, 2); }},
    {"DORGLQ", -8, [] { return info_of(orglq<double>, 2, 3, 2, g_a, 2, g_a, g_a, 1); }},
    {"DORGHR", -1, [] { return info_of(orghr<double>, -1, 1, 0, g_a, 1, g_a, g_a, 1); }},
    {"DORGHR", -2, [] { return info_of(orghr<double>, 3, 0, 3, g_a, 3, g_a, g_a, 3); }},
    {"DORGHR", -2, [] { return info_of(orghr<double>, 3, 4, 3, g_a, 3, g_a, g_a, 3); }},
    {"ZUNGHR", -3, [] { return info_of(orghr<zcomplex>, 3, 2, 1, g_z, 3, g_z, g_z, 3); }},
    {"DORGHR", -3, [] { return info_of(orghr<double>, 3, 1, 4, g_a, 3, g_a, g_a, 3); }},
    {"DORGHR", -5, [] { return info_of(orghr<double>, 3, 1, 3, g_a, 2, g_a, g_a, 3); }},
    {"DORGHR", -8, [] { return info_of(orghr<double>, 4, 1, 4, g_a, 4, g_a, g_a, 2); }},
    {"DORGHR", 0, [] { return info_of(orghr<double>, 0, 1, 0, g_a, 1, g_a, g_a, 1); }},
};

INSTANTIATE_TEST_SUITE_P(QrArguments, ArgumentChecks, ::testing::ValuesIn(kQrArgumentCases));

}  // namespace
}  // namespace zor::test
