// The tridiagonal eigensolvers through their internal interface: the LAPACK test suite's residuals
// ||T Z - Z D|| / (n ||T|| eps) and ||I - Zᵀ Z|| / (n eps), ascending eigenvalues, the values of
// sterf, steqr and stedc against each other and against known spectra, on matrices that break weak
// implementations (equal, clustered, graded, glued and deflating spectra, entries near underflow and
// overflow) and sizes up to a tree of several levels; NaN and infinite input; the merge's secular
// solvers on their own; the argument checks and the workspace answers of stedc.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "blas/dispatch.hpp"
#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/tuning/tuning.hpp"
#include "support/arguments.hpp"
#include "support/random.hpp"

namespace zor::test {
namespace {

using Real = long double;
constexpr double kThreshold = 30.0;  // the LAPACK test suite's
const double kEps = std::numeric_limits<double>::epsilon() / 2;
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

struct Tridiagonal {
    std::vector<double> d, e;  // e has n - 1 entries (and one unused for n = 0)
    zint n() const { return static_cast<zint>(d.size()); }
};

// ---- matrices ----------------------------------------------------------------------------------

// A symmetric matrix in long double, column-major.
struct Symmetric {
    zint n;
    std::vector<Real> a;
    Real& operator()(zint i, zint j) { return a[i + j * n]; }
};

// A := H A H for the reflector H = I - 2 v vᵀ / vᵀv.
void reflect_both_sides(Symmetric& a, const std::vector<Real>& v) {
    const zint n = a.n;
    Real vv = 0;
    for (Real x : v) vv += x * x;
    // H A H = A - v wᵀ - w vᵀ with w = (2/vv) (A v - (vᵀ A v / vv) v).
    std::vector<Real> av(n, 0);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) av[i] += a(i, j) * v[j];
    }
    Real vav = 0;
    for (zint i = 0; i < n; ++i) vav += v[i] * av[i];
    std::vector<Real> w(n);
    for (zint i = 0; i < n; ++i) w[i] = 2 * (av[i] - vav / vv * v[i]) / vv;
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) a(i, j) -= v[i] * w[j] + w[i] * v[j];
    }
}

// The tridiagonal of Householder's reduction of a, in long double.
Tridiagonal tridiagonalise(Symmetric a) {
    const zint n = a.n;
    for (zint k = 0; k + 2 < n; ++k) {
        std::vector<Real> v(n, 0);
        Real norm = 0;
        for (zint i = k + 1; i < n; ++i) norm += a(i, k) * a(i, k);
        norm = std::sqrt(norm);
        if (norm == 0) continue;
        const Real alpha = a(k + 1, k) > 0 ? -norm : norm;
        for (zint i = k + 1; i < n; ++i) v[i] = a(i, k);
        v[k + 1] -= alpha;
        reflect_both_sides(a, v);
    }
    Tridiagonal t;
    for (zint i = 0; i < n; ++i) t.d.push_back(static_cast<double>(a(i, i)));
    for (zint i = 0; i + 1 < n; ++i) t.e.push_back(static_cast<double>(a(i + 1, i)));
    return t;
}

// A tridiagonal with the given spectrum: Q diag(λ) Qᵀ for a random orthogonal Q, reduced.
Tridiagonal with_spectrum(const std::vector<Real>& lambda, Random& random) {
    const zint n = static_cast<zint>(lambda.size());
    Symmetric a{n, std::vector<Real>(n * n, 0)};
    for (zint i = 0; i < n; ++i) a(i, i) = lambda[i];
    for (int r = 0; r < 3; ++r) {
        std::vector<Real> v(n);
        for (Real& x : v) x = random.uniform();
        reflect_both_sides(a, v);
    }
    return tridiagonalise(a);
}

// A random orthogonal n by n matrix (three reflectors), rounded to double.
std::vector<double> random_orthogonal(zint n, Random& random) {
    Symmetric q{n, std::vector<Real>(n * n, 0)};
    for (zint i = 0; i < n; ++i) q(i, i) = 1;
    for (int r = 0; r < 3; ++r) {
        std::vector<Real> v(n);
        Real vv = 0;
        for (Real& x : v) {
            x = random.uniform();
            vv += x * x;
        }
        // Q := Q H
        for (zint i = 0; i < n; ++i) {
            Real s = 0;
            for (zint j = 0; j < n; ++j) s += q(i, j) * v[j];
            for (zint j = 0; j < n; ++j) q(i, j) -= 2 * s * v[j] / vv;
        }
    }
    return std::vector<double>(q.a.begin(), q.a.end());
}

// Wilkinson's W⁺ of order m: d = |(m - 1)/2 - i|, e = 1.
void append_wilkinson(Tridiagonal& t, zint m, double glue) {
    for (zint i = 0; i < m; ++i) {
        if (!t.d.empty()) t.e.push_back(i == 0 ? glue : 1.0);
        t.d.push_back(std::fabs((m - 1) / 2.0 - static_cast<double>(i)));
    }
}

enum class Kind {
    Random,
    Diagonal,
    Identity,
    Zero,
    Constant,
    Cluster,
    Spectrum,
    Graded,
    Wilkinson,
    GluedWilkinson,
    RepeatedBlocks,
    IdentityTiny,
    IdentitySmall,
    RankOneIdentity,
    Underflow,
    Overflow
};

// The names of the kinds, in the enumeration's order (the test names).
const char* const kKindNames[] = {"Random",        "Diagonal",        "Identity",       "Zero",
                                  "Constant",      "Cluster",         "Spectrum",       "Graded",
                                  "Wilkinson",     "GluedWilkinson",  "RepeatedBlocks", "IdentityTiny",
                                  "IdentitySmall", "RankOneIdentity", "Underflow",      "Overflow"};

// The eigenvalues when the kind fixes them (empty otherwise).
struct TestMatrix {
    Tridiagonal t;
    std::vector<double> known;
};

TestMatrix make_matrix(Kind kind, zint n) {
    Random random(static_cast<std::uint64_t>(n) * 97 + static_cast<std::uint64_t>(kind) + 1);
    TestMatrix m;
    Tridiagonal& t = m.t;
    const auto fill = [&](double d_scale, double e_scale, double d_shift) {
        for (zint i = 0; i < n; ++i) t.d.push_back(d_shift + d_scale * random.uniform());
        for (zint i = 0; i + 1 < n; ++i) t.e.push_back(e_scale * random.uniform());
    };
    switch (kind) {
        case Kind::Random:
            fill(1, 1, 0);
            break;
        case Kind::Diagonal:
            fill(1, 0, 0);
            m.known = t.d;
            std::sort(m.known.begin(), m.known.end());
            break;
        case Kind::Identity:
            fill(0, 0, 1);
            m.known = t.d;
            break;
        case Kind::Zero:
            fill(0, 0, 0);
            m.known = t.d;
            break;
        case Kind::Constant:  // every eigenvalue equal
            fill(0, 0, -3.25);
            m.known = t.d;
            break;
        case Kind::Cluster:  // the whole spectrum within n·1e-14 of 1, unreduced
            fill(1e-14, 1e-14, 1);
            break;
        case Kind::Spectrum: {  // eigenvalues 1 + k·1e-14 and a few far ones
            std::vector<Real> lambda;
            for (zint k = 0; k < n; ++k) lambda.push_back(k % 7 == 6 ? 2 + k : 1 + k * 1e-14L);
            t = with_spectrum(lambda, random);
            for (Real x : lambda) m.known.push_back(static_cast<double>(x));
            std::sort(m.known.begin(), m.known.end());
            break;
        }
        case Kind::Graded:  // entries from 1e-150 to 1e150
            for (zint i = 0; i < n; ++i)
                t.d.push_back(std::pow(10.0, -150.0 + 300.0 * i / std::max<zint>(n - 1, 1)));
            for (zint i = 0; i + 1 < n; ++i) t.e.push_back(0.5 * std::sqrt(t.d[i]) * std::sqrt(t.d[i + 1]));
            break;
        case Kind::Wilkinson:
            append_wilkinson(t, n, 1.0);
            break;
        case Kind::GluedWilkinson:  // W⁺₂₁ blocks glued by 1e-7: pairs of nearly equal eigenvalues
            while (t.n() < n) append_wilkinson(t, std::min<zint>(21, n - t.n()), 1e-7);
            break;
        case Kind::RepeatedBlocks: {  // one random block of 13 repeated, glued weakly
            std::vector<double> bd(13), be(12);
            for (double& x : bd) x = random.uniform();
            for (double& x : be) x = random.uniform();
            for (zint i = 0; i < n; ++i) {
                t.d.push_back(bd[i % 13]);
                if (i + 1 < n) t.e.push_back(i % 13 == 12 ? 1e-9 : be[i % 13]);
            }
            break;
        }
        case Kind::IdentityTiny:  // couplings above the split test but below every merge's tolerance
            fill(0, 1e-15, 1);
            break;
        case Kind::IdentitySmall:  // halves with eigenvalues within 1e-12 of each other
            fill(0, 1e-13, 1);
            break;
        case Kind::RankOneIdentity: {  // I + u uᵀ reduced: n - 1 equal eigenvalues
            std::vector<Real> lambda(n, 1);
            lambda[n - 1] = 1 + 0.75L * n;
            t = with_spectrum(lambda, random);
            for (Real x : lambda) m.known.push_back(static_cast<double>(x));
            break;
        }
        case Kind::Underflow:
            fill(1e-300, 1e-300, 0);
            break;
        case Kind::Overflow:
            fill(1e300, 1e300, 0);
            break;
    }
    if (t.e.empty()) t.e.push_back(0.0);
    return m;
}

// ---- residuals ---------------------------------------------------------------------------------

Real one_norm(const Tridiagonal& t) {
    Real best = 0;
    for (zint i = 0; i < t.n(); ++i) {
        Real s = std::fabs(static_cast<Real>(t.d[i]));
        if (i > 0) s += std::fabs(static_cast<Real>(t.e[i - 1]));
        if (i + 1 < t.n()) s += std::fabs(static_cast<Real>(t.e[i]));
        best = std::max(best, s);
    }
    return best;
}

// ||T Z - Z D||₁ / (n ||T||₁ eps), in long double.
double decomposition_residual(const Tridiagonal& t, const std::vector<double>& w,
                              const std::vector<double>& z, zint ldz) {
    const zint n = t.n();
    const Real norm = one_norm(t);
    Real worst = 0;
    for (zint j = 0; j < n; ++j) {
        const double* v = z.data() + j * ldz;
        Real column = 0;
        for (zint i = 0; i < n; ++i) {
            Real r = static_cast<Real>(t.d[i]) * v[i] - static_cast<Real>(w[j]) * v[i];
            if (i > 0) r += static_cast<Real>(t.e[i - 1]) * v[i - 1];
            if (i + 1 < n) r += static_cast<Real>(t.e[i]) * v[i + 1];
            column += std::fabs(r);
        }
        worst = std::max(worst, column);
    }
    if (norm == 0) return worst == 0 ? 0.0 : kInf;
    return static_cast<double>(worst / (n * norm * kEps));
}

// ||I - Zᵀ Z||₁ / (n eps), the product by the library's dgemm.
double orthogonality_residual(zint n, const std::vector<double>& z, zint ldz) {
    std::vector<double> p(n * n);
    dgemm('T', 'N', n, n, n, 1.0, z.data(), ldz, z.data(), ldz, 0.0, p.data(), n);
    double worst = 0;
    for (zint j = 0; j < n; ++j) {
        double column = 0;
        for (zint i = 0; i < n; ++i) column += std::fabs((i == j ? 1.0 : 0.0) - p[i + j * n]);
        worst = std::max(worst, column);
    }
    return worst / (n * kEps);
}

// max |a_i - b_i| / (n ||T||₁ eps): eigenvalues are perfectly conditioned, so two correct solvers
// differ by a small multiple of eps ||T||.
double value_difference(const Tridiagonal& t, const std::vector<double>& a, const std::vector<double>& b) {
    Real worst = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        worst = std::max(worst, std::fabs(static_cast<Real>(a[i]) - b[i]));
    const Real norm = one_norm(t);
    if (norm == 0) return worst == 0 ? 0.0 : kInf;
    return static_cast<double>(worst / (t.n() * norm * kEps));
}

bool ascending(const std::vector<double>& w) {
    return std::is_sorted(w.begin(), w.end());
}

// ---- running the solvers -----------------------------------------------------------------------

// Entries past the end of every work array, which nothing may touch.
constexpr zint kGuard = 8;
constexpr double kGuardValue = -12345.5;

struct Result {
    std::vector<double> w, z;
    zint ldz = 1;
    zint info = -99;
};

bool guards_intact(const std::vector<double>& v, zint used) {
    for (zint i = used; i < used + kGuard; ++i) {
        if (v[i] != kGuardValue) return false;
    }
    return true;
}

Result run_sterf(const Tridiagonal& t) {
    Result r;
    r.w = t.d;
    std::vector<double> e = t.e;
    sterf(t.n(), r.w.data(), e.data(), r.info);
    return r;
}

// The result arrays of a solver with vectors: d's copy and Z with a padded leading dimension, Q in
// it when given (for "V"), NaN elsewhere.
Result start_with_vectors(const Tridiagonal& t, const std::vector<double>* q) {
    const zint n = t.n();
    Result r;
    r.w = t.d;
    r.ldz = n + 2;
    r.z.assign(r.ldz * std::max<zint>(n, 1), kNaN);
    if (q != nullptr) {
        for (zint j = 0; j < n; ++j) std::copy_n(q->data() + j * n, n, r.z.data() + j * r.ldz);
    }
    return r;
}

Result run_steqr(const Tridiagonal& t, char compz, const std::vector<double>* q = nullptr) {
    const zint n = t.n();
    Result r = start_with_vectors(t, q);
    std::vector<double> e = t.e;
    const zint lwork = std::max<zint>(2 * (n - 1), 1);
    std::vector<double> work(lwork + kGuard, kGuardValue);
    steqr(compz, n, r.w.data(), e.data(), r.z.data(), r.ldz, work.data(), r.info);
    EXPECT_TRUE(guards_intact(work, lwork));
    return r;
}

// The published minimal workspace of stedc, computed here independently.
struct Sizes {
    zint lwork, liwork;
};

Sizes published_sizes(char compz, zint n) {
    const zint leaf = 25;
    if (n <= 1 || compz == 'N') return {1, 1};
    if (n <= leaf) return {2 * (n - 1), 1};
    const zint lgn = static_cast<zint>(std::ceil(std::log2(static_cast<double>(n))));
    if (compz == 'V') return {1 + 3 * n + 2 * n * lgn + 4 * n * n, 6 + 6 * n + 5 * n * lgn};
    return {1 + 4 * n + n * n, 3 + 5 * n};
}

// stedc with exactly the workspace its query answers, followed by guards.
Result run_stedc(const Tridiagonal& t, char compz, const std::vector<double>* q = nullptr) {
    const zint n = t.n();
    Result r = start_with_vectors(t, q);
    std::vector<double> e = t.e;
    double lwork_answer = 0;
    zint liwork_answer = 0;
    zint info = -99;
    stedc(compz, n, r.w.data(), e.data(), r.z.data(), r.ldz, &lwork_answer, -1, &liwork_answer, -1, info);
    EXPECT_EQ(info, 0);
    const Sizes sizes = published_sizes(compz, n);
    EXPECT_EQ(lwork_answer, static_cast<double>(sizes.lwork)) << compz << n;
    EXPECT_EQ(liwork_answer, sizes.liwork) << compz << n;
    std::vector<double> work(sizes.lwork + kGuard, kGuardValue);
    std::vector<zint> iwork(sizes.liwork + kGuard, -7);
    stedc(compz, n, r.w.data(), e.data(), r.z.data(), r.ldz, work.data(), sizes.lwork, iwork.data(),
          sizes.liwork, r.info);
    EXPECT_TRUE(guards_intact(work, sizes.lwork));
    for (zint i = sizes.liwork; i < sizes.liwork + kGuard; ++i) EXPECT_EQ(iwork[i], -7);
    EXPECT_EQ(work[0], static_cast<double>(sizes.lwork));
    EXPECT_EQ(iwork[0], sizes.liwork);
    return r;
}

// ---- the solvers on the hard matrices ----------------------------------------------------------

struct Case {
    Kind kind;
    zint n;
};

std::string case_name(const ::testing::TestParamInfo<Case>& info) {
    return std::string(kKindNames[static_cast<int>(info.param.kind)]) + "_" + std::to_string(info.param.n);
}

class Solvers : public ::testing::TestWithParam<Case> {};

TEST_P(Solvers, DecomposeAndAgree) {
    const Case c = GetParam();
    const TestMatrix m = make_matrix(c.kind, c.n);
    const Tridiagonal& t = m.t;
    const zint n = t.n();

    const Result f = run_sterf(t);
    ASSERT_EQ(f.info, 0);
    EXPECT_TRUE(ascending(f.w));

    // "N" is sterf's own answer.
    const Result dn = run_stedc(t, 'N');
    ASSERT_EQ(dn.info, 0);
    EXPECT_EQ(std::memcmp(dn.w.data(), f.w.data(), n * sizeof(double)), 0);

    const Result di = run_stedc(t, 'I');
    ASSERT_EQ(di.info, 0);
    EXPECT_TRUE(ascending(di.w));
    EXPECT_LT(decomposition_residual(t, di.w, di.z, di.ldz), kThreshold);
    EXPECT_LT(orthogonality_residual(n, di.z, di.ldz), kThreshold);
    EXPECT_LT(value_difference(t, di.w, f.w), kThreshold);
    if (!m.known.empty()) {
        EXPECT_LT(value_difference(t, di.w, m.known), kThreshold);
        EXPECT_LT(value_difference(t, f.w, m.known), kThreshold);
    }
    if (n > 300) return;  // QL/QR with vectors and the "V" product are cubic in long double: kept small

    // steqr computes the same values with and without vectors, to the bit.
    const Result qn = run_steqr(t, 'N');
    const Result qi = run_steqr(t, 'I');
    ASSERT_EQ(qn.info, 0);
    ASSERT_EQ(qi.info, 0);
    EXPECT_EQ(std::memcmp(qn.w.data(), qi.w.data(), n * sizeof(double)), 0);
    EXPECT_TRUE(ascending(qi.w));
    EXPECT_LT(decomposition_residual(t, qi.w, qi.z, qi.ldz), kThreshold);
    EXPECT_LT(orthogonality_residual(n, qi.z, qi.ldz), kThreshold);
    EXPECT_LT(value_difference(t, qi.w, f.w), kThreshold);

    // "V" for steqr and stedc: Q Z for a given orthogonal Q, with the values of "I".
    Random random(static_cast<std::uint64_t>(n) + 5);
    const std::vector<double> q = random_orthogonal(n, random);
    for (const bool divide : {false, true}) {
        const Result v = divide ? run_stedc(t, 'V', &q) : run_steqr(t, 'V', &q);
        const Result& i = divide ? di : qi;
        ASSERT_EQ(v.info, 0);
        EXPECT_EQ(std::memcmp(v.w.data(), i.w.data(), n * sizeof(double)), 0) << divide;
        // Column by column up to sign: stedc sets the only vector of order 1 to +1, as published.
        Real worst = 0;
        for (zint j = 0; j < n; ++j) {
            Real same = 0, opposite = 0;
            for (zint r = 0; r < n; ++r) {
                Real s = 0;
                for (zint k = 0; k < n; ++k) s += static_cast<Real>(q[r + k * n]) * i.z[k + j * i.ldz];
                same += std::fabs(s - v.z[r + j * v.ldz]);
                opposite += std::fabs(s + v.z[r + j * v.ldz]);
            }
            worst = std::max(worst, std::min(same, opposite));
        }
        EXPECT_LT(static_cast<double>(worst / (n * kEps)), kThreshold) << divide;
    }
}

std::vector<Case> all_cases() {
    std::vector<Case> cases;
    const Kind kinds[] = {Kind::Random,         Kind::Diagonal,       Kind::Identity,     Kind::Zero,
                          Kind::Constant,       Kind::Cluster,        Kind::Graded,       Kind::Wilkinson,
                          Kind::GluedWilkinson, Kind::RepeatedBlocks, Kind::IdentityTiny, Kind::IdentitySmall,
                          Kind::Underflow,      Kind::Overflow};
    for (const Kind kind : kinds) {
        for (const zint n : {1, 2, 3, 4, 25, 26, 27, 60, 100, 257, 1000}) cases.push_back({kind, n});
    }
    // The matrices of a prescribed spectrum are reduced in long double, which is cubic: smaller sizes.
    for (const Kind kind : {Kind::Spectrum, Kind::RankOneIdentity}) {
        for (const zint n : {2, 3, 26, 60, 130, 257}) cases.push_back({kind, n});
    }
    cases.push_back({Kind::Random, 500});
    cases.push_back({Kind::Wilkinson, 21});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Matrices, Solvers, ::testing::ValuesIn(all_cases()), case_name);

// ---- NaN and infinity --------------------------------------------------------------------------

// A NaN or infinity anywhere returns, reporting a failure or giving values that are not finite, and
// never hangs.
TEST(TridiagonalNaN, ReturnsWithoutHanging) {
    for (const zint n : {2, 5, 60, 300}) {
        for (const double bad : {kNaN, kInf, -kInf}) {
            for (const int where : {0, 1, 2, 3}) {
                Tridiagonal t = make_matrix(Kind::Random, n).t;
                const zint at = where % 2 == 0 ? 0 : n / 2;
                (where < 2 ? t.d[at] : t.e[std::min(at, n - 2)]) = bad;
                const auto failed = [](const Result& r) {
                    return r.info > 0 ||
                           std::any_of(r.w.begin(), r.w.end(), [](double x) { return !std::isfinite(x); });
                };
                EXPECT_TRUE(failed(run_sterf(t))) << n << " " << where;
                for (const char compz : {'N', 'I', 'V'}) {
                    EXPECT_TRUE(failed(run_stedc(t, compz))) << compz << n << " " << where;
                    if (n <= 60) {
                        EXPECT_TRUE(failed(run_steqr(t, compz))) << compz << n << " " << where;
                    }
                }
            }
        }
    }
}

// A failure names the rows of the piece that failed: info / (n + 1) its first, mod(info, n + 1) its
// last (one-based), for stedc's small blocks, its large ones and the leaves of the tree.
TEST(TridiagonalNaN, FailureNamesTheBlock) {
    const zint n = 60;
    Tridiagonal t = make_matrix(Kind::Random, n).t;
    t.e[9] = 0.0;  // blocks of rows 1..10 (solved by steqr) and 11..60 (by the tree)
    for (const zint bad : {3, 40}) {
        Tridiagonal u = t;
        u.d[bad] = kNaN;
        for (const char compz : {'I', 'V'}) {
            const Result r = run_stedc(u, compz);
            EXPECT_EQ(r.info / (n + 1), bad < 10 ? 1 : 11) << compz;
            EXPECT_EQ(r.info % (n + 1), bad < 10 ? 10 : 60) << compz;
        }
    }
    // The tree over 100 rows has leaves of 25; row 61 lies in the third, rows 51..75.
    const zint m = 100;
    Tridiagonal v = make_matrix(Kind::Random, m).t;
    v.d[60] = kNaN;
    std::vector<double> q(m * m), work(m * m + 4 * m);
    std::vector<zint> iwork(3 + 5 * m);
    zint info = 0;
    laed0(m, v.d.data(), v.e.data(), q.data(), m, work.data(), iwork.data(), info);
    EXPECT_EQ(info / (m + 1), 51);
    EXPECT_EQ(info % (m + 1), 75);
}

// ---- the merge's pieces on their own -----------------------------------------------------------

// laed4 on secular equations with close poles, tiny weights and a large rho: every root strictly
// interlaces the poles, delta(j) is d(j) - λ, and the function vanishes to its rounding error.
TEST(SecularEquation, RootsInterlaceAndSolve) {
    Random random(41);
    for (int trial = 0; trial < 40; ++trial) {
        const zint n = 3 + trial % 9 * 7;
        std::vector<double> d(n), z(n);
        double x = random.uniform();
        for (zint j = 0; j < n; ++j) {
            // Some gaps down to a few ulps, some z components tiny.
            x += trial % 3 == 0 && j % 4 == 1 ? 4 * kEps * std::fabs(x) + 1e-300
                                              : 0.1 + std::fabs(random.uniform());
            d[j] = x;
            z[j] = trial % 4 == 1 && j % 3 == 0 ? 1e-9 * random.uniform() : random.uniform();
        }
        Real norm = 0;
        for (double v : z) norm += static_cast<Real>(v) * v;
        for (double& v : z) v = static_cast<double>(v / std::sqrt(norm));
        const double rho = trial % 5 == 0 ? 1e6 : 0.5 + std::fabs(random.uniform());
        std::vector<double> delta(n);
        for (zint i = 1; i <= n; ++i) {
            double lambda = kNaN;
            zint info = -1;
            laed4(n, i, d.data(), z.data(), delta.data(), rho, lambda, info);
            ASSERT_EQ(info, 0) << trial << " " << i;
            const double upper = i < n ? d[i] : d[n - 1] + rho;
            EXPECT_TRUE(lambda >= d[i - 1] && lambda <= upper) << trial << " " << i;
            // The differences are accurate: delta(j) agrees with d(j) - λ to the rounding of λ.
            Real f = 1 / static_cast<Real>(rho), bound = 1 / static_cast<Real>(rho);
            for (zint j = 0; j < n; ++j) {
                EXPECT_NEAR(delta[j], d[j] - lambda, 4 * kEps * (std::fabs(lambda) + std::fabs(d[j])));
                const Real term = static_cast<Real>(z[j]) * z[j] / delta[j];
                f += term;
                bound += std::fabs(term);
            }
            EXPECT_LE(std::fabs(f), 64 * n * kEps * bound) << trial << " " << i;
        }
    }
}

// laed6 finds the root nearest the origin between the two poles on its side, from either start.
TEST(SecularEquation, ThreePoleRoot) {
    Random random(5);
    for (int trial = 0; trial < 60; ++trial) {
        const bool orgati = trial % 2 == 0;
        // Poles around the origin: d[0] < 0 < d[1] < d[2] (orgati: root in (0, d[1])... between the
        // origin and the pole beyond it on the side the sign of f(0) says).
        const double d[3] = {-0.5 - std::fabs(random.uniform()), 0.2 + 0.3 * std::fabs(random.uniform()),
                             1.0 + std::fabs(random.uniform())};
        const double z[3] = {0.1 + std::fabs(random.uniform()), 0.1 + std::fabs(random.uniform()),
                             0.1 + std::fabs(random.uniform())};
        const double rho = random.uniform();
        const auto f = [&](Real x) {
            Real s = rho;
            for (int j = 0; j < 3; ++j) s += z[j] / (d[j] - x);
            return s;
        };
        const double finit = static_cast<double>(f(0));
        // The root between the origin and the pole on f's side exists when f(0) has the right sign.
        if (orgati ? finit < 0 : finit > 0) {
            for (const zint kniter : {1, 2}) {
                double tau = kNaN;
                zint info = -1;
                laed6(kniter, orgati, rho, d, z, finit, tau, info);
                ASSERT_EQ(info, 0);
                if (orgati) {
                    EXPECT_TRUE(tau >= 0 && tau < d[1]) << tau;
                } else {
                    EXPECT_TRUE(tau > d[0] && tau <= 0) << tau;
                }
                Real bound = std::fabs(static_cast<Real>(rho));
                for (int j = 0; j < 3; ++j) bound += std::fabs(z[j] / (d[j] - static_cast<Real>(tau)));
                EXPECT_LE(std::fabs(f(tau)), 1e3 * kEps * bound) << trial;
            }
        }
    }
}

// The 2 by 2 problems: values against long double, laev2's values bitwise those of lae2, and its
// rotation diagonalising the matrix.
TEST(TwoByTwo, ValuesAndVector) {
    const double cases[][3] = {
        {1, 0, 1},  {0, 0, 0},           {2, 1, 2},  {1, 1e-200, -1}, {1e300, 1e300, -1e300},
        {-3, 4, 5}, {1e-300, 1, 1e-300}, {5, 0, -5}, {0, 1, 0},       {-1, 2, -1}};
    for (const auto& c : cases) {
        const double a = c[0], b = c[1], cc = c[2];
        double r1, r2, v1, v2, cs, sn;
        lae2(a, b, cc, r1, r2);
        laev2(a, b, cc, v1, v2, cs, sn);
        EXPECT_EQ(std::memcmp(&r1, &v1, sizeof r1), 0);
        EXPECT_EQ(std::memcmp(&r2, &v2, sizeof r2), 0);
        EXPECT_GE(std::fabs(r1), std::fabs(r2));
        // The exact values in long double.
        const Real la = a, lb = b, lc = cc;
        const Real mean = (la + lc) / 2, radius = std::hypot((la - lc) / 2, lb);
        const Real big = std::fabs(mean + radius) >= std::fabs(mean - radius) ? mean + radius : mean - radius;
        const Real scale = std::max({std::fabs(la), std::fabs(lb), std::fabs(lc)});
        EXPECT_LE(std::fabs(r1 - big), 4 * kEps * scale);
        EXPECT_LE(std::fabs(r2 - (la + lc - big)), 4 * kEps * scale);
        EXPECT_NEAR(cs * cs + sn * sn, 1.0, 4 * kEps);
        // [cs sn] is rt1's eigenvector: A (cs, sn) = rt1 (cs, sn).
        EXPECT_LE(std::fabs(la * cs + lb * sn - r1 * static_cast<Real>(cs)), 8 * kEps * scale);
        EXPECT_LE(std::fabs(lb * cs + lc * sn - r1 * static_cast<Real>(sn)), 8 * kEps * scale);
    }
}

// The tree on its own with every coupling below the merges' tolerance: each merge deflates
// everything, and the last sort leaves the identity's columns in order.
TEST(MergeTree, CompleteDeflation) {
    const zint n = 200;
    std::vector<double> d(n), e(n, 0.0), q(n * n, kNaN), work(n * n + 4 * n);
    std::vector<zint> iwork(3 + 5 * n);
    for (zint i = 0; i < n; ++i) d[i] = static_cast<double>(n - i);  // descending: the tree must sort
    zint info = -1;
    laed0(n, d.data(), e.data(), q.data(), n, work.data(), iwork.data(), info);
    ASSERT_EQ(info, 0);
    for (zint i = 0; i < n; ++i) {
        EXPECT_EQ(d[i], static_cast<double>(i + 1));
        for (zint j = 0; j < n; ++j) EXPECT_EQ(q[j + i * n], j == n - 1 - i ? 1.0 : 0.0);
    }
}

// ---- arguments and workspace -------------------------------------------------------------------

double g_d[8], g_e[8], g_z[64], g_w[64];
zint g_i[64];

const ArgumentCase kTridiagonalArgumentCases[] = {
    {"DSTERF", -1, [] { return info_of(sterf, -1, g_d, g_e); }},
    {"DSTEQR", -1, [] { return info_of(steqr, 'X', 2, g_d, g_e, g_z, 2, g_w); }},
    {"DSTEQR", -2, [] { return info_of(steqr, 'N', -1, g_d, g_e, g_z, 1, g_w); }},
    {"DSTEQR", -6, [] { return info_of(steqr, 'N', 2, g_d, g_e, g_z, 0, g_w); }},
    {"DSTEQR", -6, [] { return info_of(steqr, 'i', 3, g_d, g_e, g_z, 2, g_w); }},
    {"DSTEQR", 0, [] { return info_of(steqr, 'n', 3, g_d, g_e, g_z, 1, g_w); }},
    {"DSTEDC", -1, [] { return info_of(stedc, 'X', 2, g_d, g_e, g_z, 2, g_w, 64, g_i, 64); }},
    {"DSTEDC", -2, [] { return info_of(stedc, 'I', -1, g_d, g_e, g_z, 2, g_w, 64, g_i, 64); }},
    {"DSTEDC", -6, [] { return info_of(stedc, 'N', 2, g_d, g_e, g_z, 0, g_w, 64, g_i, 64); }},
    {"DSTEDC", -6, [] { return info_of(stedc, 'v', 3, g_d, g_e, g_z, 2, g_w, 64, g_i, 64); }},
    {"DSTEDC", -8, [] { return info_of(stedc, 'I', 3, g_d, g_e, g_z, 3, g_w, 3, g_i, 64); }},
    {"DSTEDC", -10, [] { return info_of(stedc, 'I', 30, g_d, g_e, g_z, 30, g_w, 64 * 64, g_i, 152); }},
    {"DSTEDC", 0, [] { return info_of(stedc, 'N', 2, g_d, g_e, g_z, 1, g_w, -1, g_i, 0); }},
    {"DLAED0", -3, [] { return info_of(laed0, -1, g_d, g_e, g_z, 1, g_w, g_i); }},
    {"DLAED0", -7, [] { return info_of(laed0, 3, g_d, g_e, g_z, 2, g_w, g_i); }},
    {"DLAED1", -1, [] { return info_of(laed1, -1, g_d, g_z, 1, g_i, 1.0, 0, g_w, g_i); }},
    {"DLAED1", -4, [] { return info_of(laed1, 4, g_d, g_z, 3, g_i, 1.0, 2, g_w, g_i); }},
    {"DLAED1", -7, [] { return info_of(laed1, 4, g_d, g_z, 4, g_i, 1.0, 3, g_w, g_i); }},
    {"DLAED1", -7, [] { return info_of(laed1, 4, g_d, g_z, 4, g_i, 1.0, 0, g_w, g_i); }},
    {"DLAED3", -1, [] { return info_of(laed3, -1, 2, 1, g_d, g_z, 2, 1.0, g_d, g_z, g_i, g_i, g_w, g_w); }},
    {"DLAED3", -2, [] { return info_of(laed3, 3, 2, 1, g_d, g_z, 2, 1.0, g_d, g_z, g_i, g_i, g_w, g_w); }},
    {"DLAED3", -6, [] { return info_of(laed3, 2, 3, 1, g_d, g_z, 2, 1.0, g_d, g_z, g_i, g_i, g_w, g_w); }},
};

INSTANTIATE_TEST_SUITE_P(TridiagonalArguments, ArgumentChecks,
                         ::testing::ValuesIn(kTridiagonalArgumentCases));

// laed2 returns its k through a reference first, so it is checked here rather than in the table.
TEST(TridiagonalArguments, Laed2) {
    const auto info_for = [](zint n, zint n1, zint ldq) {
        zint k = 0, info = 0;
        double rho = 1.0;
        ::testing::internal::CaptureStdout();
        laed2(k, n, n1, g_d, g_z, ldq, g_i, rho, g_w, g_w, g_w, g_w, g_i, g_i, g_i, g_i, info);
        const std::string printed = ::testing::internal::GetCapturedStdout();
        EXPECT_NE(printed.find("DLAED2"), std::string::npos);
        return info;
    };
    EXPECT_EQ(info_for(-1, 0, 1), -2);
    EXPECT_EQ(info_for(4, 2, 3), -6);
    EXPECT_EQ(info_for(4, 3, 4), -3);
    EXPECT_EQ(info_for(4, 0, 4), -3);
}

// The query answers the published sizes whichever of lwork and liwork is -1, touches nothing else,
// and is answered for every compz and order around the leaf size.
TEST(TridiagonalWorkspace, QueryAnswersThePublishedSizes) {
    for (const char compz : {'N', 'I', 'V', 'i'}) {
        for (const zint n : {0, 1, 2, 25, 26, 64, 1000, 4000}) {
            for (const bool lwork_query : {true, false}) {
                double d = 7, e = 8, z = 9, work = 0;
                zint iwork = 0, info = -1;
                stedc(compz, n, &d, &e, &z, std::max<zint>(n, 1), &work, lwork_query ? -1 : 0, &iwork,
                      lwork_query ? 0 : -1, info);
                const Sizes s = published_sizes(static_cast<char>(std::toupper(compz)), n);
                EXPECT_EQ(info, 0);
                EXPECT_EQ(work, static_cast<double>(s.lwork)) << compz << n;
                EXPECT_EQ(iwork, s.liwork) << compz << n;
                EXPECT_EQ(d, 7);
                EXPECT_EQ(e, 8);
                EXPECT_EQ(z, 9);
            }
        }
    }
    EXPECT_EQ(ilaenv(9, "DSTEDC", " ", 0, 0, 0, 0), 25);
}

}  // namespace
}  // namespace zor::test
