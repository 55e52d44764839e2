// The bidiagonal solvers: the SVD by QR (bdsqr, lasdq) and by divide and conquer (bdsdc) checked by
// their residuals in long double over matrices that break weak implementations (zero, rank one,
// repeated and graded values, entries near underflow and overflow, splitting, trees several levels
// deep), the secular-equation solvers against the equation itself, the least-squares solver
// (lalsd) against the pseudo-inverse formed from a checked SVD, its rank decisions and its
// minimum-norm property, NaN input, the published minimal work areas and the argument checks.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "lapack/condensed/bidiagonal.hpp"
#include "support/arguments.hpp"
#include "support/random.hpp"

namespace zor::test {
namespace {

using LongVector = std::vector<long double>;
constexpr double kEps = std::numeric_limits<double>::epsilon() / 2;
constexpr double kThreshold = 30.0;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

// ---- test matrices ------------------------------------------------------------------------------

struct Bidiagonal {
    zint n = 0;
    bool upper = true;
    std::vector<double> d, e;  // e has max(n - 1, 0) elements
};

enum class Kind { Random, Zero, RankOne, Repeated, Graded, Tiny, Huge, Splitting, Clustered };

const char* kind_name(Kind k) {
    static const char* const names[] = {"Random", "Zero", "RankOne",   "Repeated", "Graded",
                                        "Tiny",   "Huge", "Splitting", "Clustered"};
    return names[static_cast<int>(k)];
}

Bidiagonal make(Kind kind, zint n, bool upper, std::uint64_t seed) {
    Random random(seed + 17 * n + (upper ? 0 : 1));
    Bidiagonal b;
    b.n = n;
    b.upper = upper;
    b.d.resize(n);
    b.e.resize(n > 0 ? n - 1 : 0);
    for (double& x : b.d) x = random.uniform();
    for (double& x : b.e) x = random.uniform();
    switch (kind) {
        case Kind::Random:
            break;
        case Kind::Zero:
            std::fill(b.d.begin(), b.d.end(), 0.0);
            std::fill(b.e.begin(), b.e.end(), 0.0);
            break;
        case Kind::RankOne:
            // Only the first row is nonzero.
            std::fill(b.d.begin() + 1, b.d.end(), 0.0);
            std::fill(b.e.begin() + (n > 1 ? 1 : 0), b.e.end(), 0.0);
            break;
        case Kind::Repeated:
            // Two equal blocks: every singular value appears exactly twice (three times at the
            // middle for odd n would need a third block; the odd element is a 1).
            for (zint i = 0; i < n / 2; ++i) {
                b.d[n / 2 + i] = b.d[i];
                if (i + 1 < n / 2) b.e[n / 2 + i] = b.e[i];
            }
            if (n / 2 >= 1 && n / 2 - 1 < n - 1) b.e[n / 2 - 1] = 0.0;
            if (n % 2 == 1) {
                b.d[n - 1] = 1.0;
                if (n > 1) b.e[n - 2] = 0.0;
            }
            break;
        case Kind::Graded:
            // Entries from 1e-150 to 1e150 along the diagonal.
            for (zint i = 0; i < n; ++i) {
                const double g = n > 1 ? std::pow(10.0, -150.0 + 300.0 * i / (n - 1)) : 1.0;
                b.d[i] *= g;
                if (i + 1 < n) b.e[i] *= g;
            }
            break;
        case Kind::Tiny:
            for (double& x : b.d) x *= 1e-300;
            for (double& x : b.e) x *= 1e-300;
            break;
        case Kind::Huge:
            for (double& x : b.d) x *= 1e300;
            for (double& x : b.e) x *= 1e300;
            break;
        case Kind::Splitting:
            // Off-diagonals negligible against their neighbours every few rows.
            for (zint i = 0; i + 1 < n; ++i) {
                if (i % 7 == 3 || i == n - 2) b.e[i] = 1e-20 * b.e[i];
            }
            break;
        case Kind::Clustered:
            // Nearly equal diagonal entries and small off-diagonals: tight clusters of values.
            for (double& x : b.d) x = 1.0 + 1e-12 * x;
            for (double& x : b.e) x *= 1e-9;
            break;
    }
    return b;
}

// ---- checks in long double ----------------------------------------------------------------------

long double one_norm(const Bidiagonal& b) {
    long double best = 0;
    for (zint j = 0; j < b.n; ++j) {
        long double s = std::fabs(static_cast<long double>(b.d[j]));
        if (b.upper && j > 0) s += std::fabs(static_cast<long double>(b.e[j - 1]));
        if (!b.upper && j + 1 < b.n) s += std::fabs(static_cast<long double>(b.e[j]));
        best = std::max(best, s);
    }
    return best;
}

// ||B V - U S||₁ / (n ||B||₁ eps), with V = VTᵀ; B V costs O(n²) since B has two diagonals.
double svd_residual(const Bidiagonal& b, const double* s, const double* u, zint ldu, const double* vt,
                    zint ldvt) {
    const zint n = b.n;
    long double worst = 0;
    for (zint j = 0; j < n; ++j) {
        long double column = 0;
        for (zint i = 0; i < n; ++i) {
            // (B V)(i, j) = Σ_k B(i, k) V(k, j) = Σ_k B(i, k) VT(j, k)
            long double bv = static_cast<long double>(b.d[i]) * vt[j + i * ldvt];
            if (b.upper && i + 1 < n) bv += static_cast<long double>(b.e[i]) * vt[j + (i + 1) * ldvt];
            if (!b.upper && i > 0) bv += static_cast<long double>(b.e[i - 1]) * vt[j + (i - 1) * ldvt];
            column += std::fabs(bv - static_cast<long double>(u[i + j * ldu]) * s[j]);
        }
        worst = std::max(worst, column);
    }
    const long double norm = one_norm(b);
    if (norm == 0) return worst == 0 ? 0.0 : 1e300;
    return static_cast<double>(worst / (n * norm * kEps));
}

// ||I - Qᵀ Q||₁ / (n eps) for the n by n Q (transposed: ||I - Q Qᵀ||); above 300 every fifth
// column of the product is formed, which keeps the long-double work affordable.
double orthogonality(const double* q, zint ld, zint n, bool rows) {
    long double worst = 0;
    for (zint j = 0; j<n; j += n> 300 ? 5 : 1) {
        long double column = 0;
        for (zint i = 0; i < n; ++i) {
            long double dot = 0;
            for (zint k = 0; k < n; ++k) {
                dot += rows ? static_cast<long double>(q[i + k * ld]) * q[j + k * ld]
                            : static_cast<long double>(q[k + i * ld]) * q[k + j * ld];
            }
            column += std::fabs((i == j ? 1.0L : 0.0L) - dot);
        }
        worst = std::max(worst, column);
    }
    return static_cast<double>(worst / (n * kEps));
}

::testing::AssertionResult values_ordered(const std::vector<double>& s) {
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (!(s[i] >= 0)) return ::testing::AssertionFailure() << "value " << i << " is " << s[i];
        if (i > 0 && s[i] > s[i - 1]) return ::testing::AssertionFailure() << "values " << i << " increase";
    }
    return ::testing::AssertionSuccess();
}

// Values from two methods agree to the suite's threshold: |s1 - s2| / (n eps max(s)).
double value_difference(const std::vector<double>& a, const std::vector<double>& b) {
    long double worst = 0, scale = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        worst = std::max(worst, std::fabs(static_cast<long double>(a[i]) - b[i]));
        scale = std::max<long double>(scale, std::max(a[i], b[i]));
    }
    if (scale == 0) return worst == 0 ? 0.0 : 1e300;
    return static_cast<double>(worst / (a.size() * kEps * scale));
}

// ---- bdsdc and bdsqr ----------------------------------------------------------------------------

struct Svd {
    std::vector<double> s, u, vt;
    zint ld = 1;
    zint info = -99;
};

// bdsdc with exactly the published minimal work areas, followed by guard elements that must
// survive.
Svd run_bdsdc(const Bidiagonal& b, char compq) {
    const zint n = b.n;
    Svd r;
    r.ld = std::max<zint>(1, n) + 1;
    r.s = b.d;
    std::vector<double> e = b.e;
    e.push_back(0.0);
    const bool vectors = compq == 'I';
    r.u.assign(vectors ? r.ld * n : 1, kNaN);
    r.vt.assign(vectors ? r.ld * n : 1, kNaN);
    const zint lwork = bdsdc_work_size(compq, n), liwork = bdsdc_iwork_size(n);
    std::vector<double> work(lwork + 8, -7.0);
    std::vector<zint> iwork(liwork + 8, -7);
    bdsdc(b.upper ? 'U' : 'L', compq, n, r.s.data(), e.data(), r.u.data(), vectors ? r.ld : 1, r.vt.data(),
          vectors ? r.ld : 1, nullptr, nullptr, work.data(), iwork.data(), r.info);
    for (zint i = lwork; i < lwork + 8; ++i) EXPECT_EQ(work[i], -7.0) << "work written past its size";
    for (zint i = liwork; i < liwork + 8; ++i) EXPECT_EQ(iwork[i], -7) << "iwork written past its size";
    return r;
}

void check_decomposition(const Bidiagonal& b, const Svd& r, const std::string& what) {
    ASSERT_EQ(r.info, 0) << what;
    EXPECT_TRUE(values_ordered(r.s)) << what;
    EXPECT_LT(svd_residual(b, r.s.data(), r.u.data(), r.ld, r.vt.data(), r.ld), kThreshold) << what;
    EXPECT_LT(orthogonality(r.u.data(), r.ld, b.n, false), kThreshold) << what << " U";
    EXPECT_LT(orthogonality(r.vt.data(), r.ld, b.n, true), kThreshold) << what << " VT";
}

struct SvdCase {
    Kind kind;
    zint n;
};

class BidiagonalSvd : public ::testing::TestWithParam<SvdCase> {};

TEST_P(BidiagonalSvd, DivideAndConquerAndQrGiveTheDecomposition) {
    const SvdCase c = GetParam();
    for (const bool upper : {true, false}) {
        const Bidiagonal b = make(c.kind, c.n, upper, 11);
        const std::string what =
            std::string(kind_name(c.kind)) + " n=" + std::to_string(c.n) + (upper ? " U" : " L");
        const Svd full = run_bdsdc(b, 'I');
        check_decomposition(b, full, what + " bdsdc");
        const Svd values = run_bdsdc(b, 'N');
        ASSERT_EQ(values.info, 0) << what;
        EXPECT_TRUE(values_ordered(values.s)) << what;
        EXPECT_LT(value_difference(values.s, full.s), kThreshold) << what;

        // bdsqr with U and VT starting from the identity, and C := Qᵀ C for two columns.
        if (c.n > 300) continue;
        const zint n = c.n, ld = n + 2;
        Svd qr;
        qr.ld = ld;
        qr.s = b.d;
        std::vector<double> e = b.e;
        e.push_back(0.0);
        qr.u.assign(ld * n, 0.0);
        qr.vt.assign(ld * n, 0.0);
        for (zint i = 0; i < n; ++i) qr.u[i + i * ld] = qr.vt[i + i * ld] = 1.0;
        Random random(5);
        std::vector<double> c0(ld * 2);
        for (double& x : c0) x = random.uniform();
        std::vector<double> cq = c0, work(4 * n + 1);
        bdsqr(upper ? 'U' : 'L', n, n, n, 2, qr.s.data(), e.data(), qr.vt.data(), ld, qr.u.data(), ld,
              cq.data(), ld, work.data(), qr.info);
        check_decomposition(b, qr, what + " bdsqr");
        EXPECT_LT(value_difference(qr.s, full.s), kThreshold) << what;
        long double worst = 0;
        for (zint j = 0; j < 2; ++j) {
            for (zint i = 0; i < n; ++i) {
                long double x = 0;
                for (zint k = 0; k < n; ++k) x += static_cast<long double>(qr.u[k + i * ld]) * c0[k + j * ld];
                worst = std::max(worst, std::fabs(x - cq[i + j * ld]));
            }
        }
        EXPECT_LT(static_cast<double>(worst / (n * kEps)), kThreshold) << what << " C";
    }
}

const SvdCase kSvdCases[] = {
    {Kind::Random, 1},     {Kind::Random, 2},      {Kind::Random, 3},     {Kind::Random, 25},
    {Kind::Random, 26},    {Kind::Random, 100},    {Kind::Random, 257},   {Kind::Random, 1000},
    {Kind::Zero, 1},       {Kind::Zero, 40},       {Kind::RankOne, 2},    {Kind::RankOne, 60},
    {Kind::Repeated, 7},   {Kind::Repeated, 120},  {Kind::Repeated, 301}, {Kind::Graded, 2},
    {Kind::Graded, 30},    {Kind::Graded, 200},    {Kind::Tiny, 5},       {Kind::Tiny, 80},
    {Kind::Huge, 5},       {Kind::Huge, 80},       {Kind::Splitting, 20}, {Kind::Splitting, 150},
    {Kind::Clustered, 40}, {Kind::Clustered, 500},
};

std::string svd_case_name(const ::testing::TestParamInfo<SvdCase>& info) {
    return std::string(kind_name(info.param.kind)) + std::to_string(info.param.n);
}

INSTANTIATE_TEST_SUITE_P(Matrices, BidiagonalSvd, ::testing::ValuesIn(kSvdCases), svd_case_name);

// The 2 by 2 SVD: [csl snl; -snl csl] [f g; 0 h] [csr -snr; snr csr] = diag(ssmax, ssmin), with
// las2's values agreeing, over magnitudes that overflow or underflow naive formulas.
TEST(BidiagonalTwoByTwo, RotationsDiagonalizeAndValuesAgree) {
    const double big = 1e300, small = 1e-300;
    const double cases[][3] = {{1, 2, 3},      {3, 2, 1},        {0, 1, 0},     {1, 0, 1},
                               {0, 0, 0},      {big, big, 1},    {small, 1, 0}, {1, big, 1},
                               {-2, 1e-20, 5}, {4, -3, -1e-200}, {1, 1e17, 1},  {small, small, big}};
    for (const auto& c : cases) {
        const double f = c[0], g = c[1], h = c[2];
        double ssmin, ssmax, snr, csr, snl, csl, lo, hi;
        lasv2(f, g, h, ssmin, ssmax, snr, csr, snl, csl);
        las2(f, g, h, lo, hi);
        EXPECT_NEAR(std::fabs(ssmax), hi, 4 * kEps * hi) << f << " " << g << " " << h;
        EXPECT_NEAR(std::fabs(ssmin), lo, 8 * kEps * hi + 1e-320) << f << " " << g << " " << h;
        // Left rotation times the matrix times the right rotation, in long double.
        const long double a[2][2] = {{f, g}, {0, h}};
        const long double l[2][2] = {{csl, snl}, {-snl, csl}};
        const long double r[2][2] = {{csr, -snr}, {snr, csr}};
        long double p[2][2] = {}, q[2][2] = {};
        for (int i = 0; i < 2; ++i)
            for (int j = 0; j < 2; ++j)
                for (int k = 0; k < 2; ++k) p[i][j] += l[i][k] * a[k][j];
        for (int i = 0; i < 2; ++i)
            for (int j = 0; j < 2; ++j)
                for (int k = 0; k < 2; ++k) q[i][j] += p[i][k] * r[k][j];
        const long double scale = std::max({std::fabs(f), std::fabs(g), std::fabs(h), 1e-300});
        EXPECT_LT(std::fabs(q[0][0] - ssmax) / scale, 8 * kEps) << f << " " << g << " " << h;
        EXPECT_LT(std::fabs(q[1][1] - ssmin) / scale, 8 * kEps) << f << " " << g << " " << h;
        EXPECT_LT(std::fabs(q[0][1]) / scale, 8 * kEps) << f << " " << g << " " << h;
        EXPECT_LT(std::fabs(q[1][0]) / scale, 8 * kEps) << f << " " << g << " " << h;
        EXPECT_NEAR(
            static_cast<double>(csl * static_cast<long double>(csl) + snl * static_cast<long double>(snl)),
            1.0, 4 * kEps);
    }
}

// The non-square leaves: an n by n + 1 upper (or n + 1 by n lower) bidiagonal matrix by lasdq.
TEST(BidiagonalLeaves, NonSquareMatricesByLasdq) {
    for (const zint n : {1, 2, 5, 17}) {
        for (const bool upper : {true, false}) {
            Random random(31 + n);
            const zint m = n + 1, ld = m + 1;
            std::vector<double> d(n), e(n);
            for (double& x : d) x = random.uniform();
            for (double& x : e) x = random.uniform();
            // Dense B: n by m (upper) or m by n (lower).
            const zint rows = upper ? n : m, cols = upper ? m : n;
            std::vector<long double> dense(rows * cols, 0.0L);
            for (zint i = 0; i < n; ++i) {
                dense[i + i * rows] = d[i];
                if (upper) {
                    dense[i + (i + 1) * rows] = e[i];
                } else {
                    dense[(i + 1) + i * rows] = e[i];
                }
            }
            std::vector<double> u(ld * rows, 0.0), vt(ld * cols, 0.0), work(4 * m);
            for (zint i = 0; i < rows; ++i) u[i + i * ld] = 1.0;
            for (zint i = 0; i < cols; ++i) vt[i + i * ld] = 1.0;
            zint info = -1;
            lasdq(upper ? 'U' : 'L', 1, n, cols, rows, 0, d.data(), e.data(), vt.data(), ld, u.data(), ld,
                  u.data(), ld, work.data(), info);
            ASSERT_EQ(info, 0);
            std::vector<double> decreasing(d.rbegin(), d.rend());
            EXPECT_TRUE(values_ordered(decreasing));
            EXPECT_LT(orthogonality(u.data(), ld, rows, false), kThreshold);
            EXPECT_LT(orthogonality(vt.data(), ld, cols, true), kThreshold);
            // B = U(:, 1:n) diag(d) VT(1:n, :)
            long double worst = 0, norm = 0;
            for (zint i = 0; i < rows; ++i) {
                for (zint j = 0; j < cols; ++j) {
                    long double x = 0;
                    for (zint k = 0; k < n; ++k)
                        x += static_cast<long double>(u[i + k * ld]) * d[k] * vt[k + j * ld];
                    worst = std::max(worst, std::fabs(x - dense[i + j * rows]));
                    norm = std::max(norm, std::fabs(dense[i + j * rows]));
                }
            }
            EXPECT_LT(static_cast<double>(worst / (m * norm * kEps)), kThreshold)
                << n << (upper ? " U" : " L");
        }
    }
}

// ---- the secular equation -----------------------------------------------------------------------

// Every root of 1/rho + Σ z_j² / (d_j² - σ²) from lasd4 interlaces the poles, makes the function
// vanish to its own error bound, and delta and work hold d_j ∓ σ.
TEST(BidiagonalSecularEquation, RootsInterlaceAndSolveTheEquation) {
    for (const zint n : {2, 3, 4, 9, 40}) {
        for (const int spread : {0, 1, 2}) {
            Random random(n * 7 + spread);
            std::vector<double> d(n), z(n), delta(n), work(n);
            double x = 0;
            for (zint j = 0; j < n; ++j) {
                // Poles clustered (spread 1), graded (spread 2) or plain, the first one 0.
                x += spread == 1   ? 1e-10 * (1.5 + random.uniform())
                     : spread == 2 ? std::pow(10.0, j - n)
                                   : 1.0 + random.uniform();
                d[j] = j == 0 ? 0.0 : x;
                z[j] = random.uniform() + (random.uniform() > 0 ? 2.0 : -2.0);
            }
            long double norm = 0;
            for (double v : z) norm += static_cast<long double>(v) * v;
            for (double& v : z) v = static_cast<double>(v / std::sqrt(norm));
            const double rho = 0.75;
            for (zint i = 1; i <= n; ++i) {
                double sigma = 0;
                zint info = -1;
                lasd4(n, i, d.data(), z.data(), delta.data(), rho, sigma, work.data(), info);
                ASSERT_EQ(info, 0) << n << " " << i;
                EXPECT_GT(sigma, d[i - 1]) << n << " " << i;
                if (i < n) {
                    EXPECT_LT(sigma, d[i]) << n << " " << i;
                }
                long double f = 1.0L / rho, bound = 1.0L / rho;
                for (zint j = 0; j < n; ++j) {
                    EXPECT_NEAR(delta[j], d[j] - static_cast<long double>(sigma), 16 * kEps * (d[j] + sigma))
                        << n;
                    EXPECT_NEAR(work[j], d[j] + static_cast<long double>(sigma), 16 * kEps * (d[j] + sigma))
                        << n;
                    const long double term = static_cast<long double>(z[j]) * z[j] /
                                             (static_cast<long double>(delta[j]) * work[j]);
                    f += term;
                    bound += std::fabs(term);
                }
                EXPECT_LT(std::fabs(f), 100 * n * kEps * bound) << n << " " << i << " spread " << spread;
            }
        }
    }
}

// laed6's root lies in the gap around the origin (d(1)..d(2) for orgati, d(0)..d(1) otherwise),
// on the side the sign of f(0) points to, and zeroes rho + Σ z_j / (d_j - τ).
TEST(BidiagonalSecularEquation, ThreePoleRootNearestTheOrigin) {
    struct Case {
        bool orgati;
        double rho, d[3], z[3];
    };
    const Case cases[] = {{true, 1.0, {-1.0, -0.5, 2.0}, {0.3, 0.2, 0.4}},
                          {true, -3.0, {-1.0, -0.5, 2.0}, {0.3, 0.2, 0.4}},
                          {false, -1.0, {-2.0, 0.5, 1.0}, {0.3, 0.2, 0.4}},
                          {false, 2.0, {-2.0, 0.5, 1.0}, {0.3, 0.2, 0.4}},
                          {true, 0.1, {-1.0, -1e-3, 1e-3}, {1e-4, 1e-8, 0.2}},
                          {false, 0.2, {-1e-6, 1e-6, 3.0}, {1e-14, 1e-14, 0.5}},
                          {true, 0.5, {-1.0, -1e-250, 1e-250}, {0.5, 1e-250, 2e-250}}};
    for (const Case& c : cases) {
        for (const zint kniter : {1, 2}) {
            long double finit = c.rho;
            for (int j = 0; j < 3; ++j) finit += c.z[j] / static_cast<long double>(c.d[j]);
            double tau = 0;
            zint info = -1;
            laed6(kniter, c.orgati, c.rho, c.d, c.z, static_cast<double>(finit), tau, info);
            ASSERT_EQ(info, 0);
            const double lo = c.orgati ? c.d[1] : c.d[0], hi = c.orgati ? c.d[2] : c.d[1];
            EXPECT_GT(tau, lo);
            EXPECT_LT(tau, hi);
            EXPECT_EQ(tau >= 0, finit < 0) << c.rho;
            // f(τ) against its rounding error plus the change of f over one ulp of τ.
            long double f = c.rho, bound = std::fabs(c.rho);
            for (int j = 0; j < 3; ++j) {
                const long double gap = static_cast<long double>(c.d[j]) - tau, t = c.z[j] / gap;
                f += t;
                bound += std::fabs(t) + std::fabs(tau) * std::fabs(t / gap);
            }
            EXPECT_LT(std::fabs(f), 1e3 * kEps * bound) << c.rho << " " << kniter;
        }
    }
}

// ---- least squares ------------------------------------------------------------------------------

struct LsResult {
    std::vector<double> x, s;
    zint rank = -1, info = -99;
};

LsResult run_lalsd(const Bidiagonal& b, const std::vector<double>& rhs, zint nrhs, zint ldb, double rcond) {
    const zint n = b.n, smlsiz = 25;
    LsResult r;
    r.x = rhs;
    r.s = b.d;
    std::vector<double> e = b.e;
    e.push_back(0.0);
    const zint lwork = lalsd_work_size(n, nrhs, smlsiz), liwork = lalsd_iwork_size(n, smlsiz);
    std::vector<double> work(lwork + 8, -7.0);
    std::vector<zint> iwork(liwork + 8, -7);
    lalsd(b.upper ? 'U' : 'L', smlsiz, n, nrhs, r.s.data(), e.data(), r.x.data(), ldb, rcond, r.rank,
          work.data(), iwork.data(), r.info);
    for (zint i = lwork; i < lwork + 8; ++i) EXPECT_EQ(work[i], -7.0) << "work written past its size";
    for (zint i = liwork; i < liwork + 8; ++i) EXPECT_EQ(iwork[i], -7) << "iwork written past its size";
    return r;
}

// X against V S⁺ Uᵀ B formed in long double from bdsdc's checked decomposition, with the same rank
// decision; the residual is orthogonal to the kept left vectors and X to the discarded right ones.
void check_least_squares(const Bidiagonal& b, zint nrhs, double rcond, const std::string& what) {
    const zint n = b.n, ldb = n + 1;
    Random random(99 + n);
    std::vector<double> rhs(ldb * nrhs, kNaN);
    // Right-hand sides of the matrix's scale, so that the solution is of order one.
    const double size = static_cast<double>(one_norm(b)) > 0 ? static_cast<double>(one_norm(b)) : 1.0;
    for (zint j = 0; j < nrhs; ++j)
        for (zint i = 0; i < n; ++i) rhs[i + j * ldb] = random.uniform() * size;
    const LsResult ls = run_lalsd(b, rhs, nrhs, ldb, rcond);
    ASSERT_EQ(ls.info, 0) << what;
    const Svd svd = run_bdsdc(b, 'I');
    ASSERT_EQ(svd.info, 0) << what;
    EXPECT_LT(value_difference(ls.s, svd.s), kThreshold) << what;
    // Values within the perturbation both solvers make (tiny values are raised to about eps ||B||)
    // or near the tolerance make the rank ambiguous: then only its range is checked.
    const double tolerance = (rcond <= 0 || rcond >= 1 ? kEps * 2 : rcond) * svd.s[0];
    zint rank = 0, low = 0, high = 0;
    for (double v : svd.s) {
        rank += v > tolerance ? 1 : 0;
        low += v > std::max(100 * tolerance, 1e3 * kEps * svd.s[0]) ? 1 : 0;
        high += v > tolerance / 100 ? 1 : 0;
    }
    if (low != high) {
        EXPECT_GE(ls.rank, low) << what;
        EXPECT_LE(ls.rank, high) << what;
        return;
    }
    EXPECT_EQ(ls.rank, rank) << what;
    const zint ld = svd.ld;
    long double worst = 0, xnorm = 0, null_part = 0, residual_part = 0, scale = 0;
    for (zint c = 0; c < nrhs; ++c) {
        const double* bcol = rhs.data() + c * ldb;
        const double* xcol = ls.x.data() + c * ldb;
        LongVector coefficients(n);  // (Uᵀ b)_k / s_k for the kept values
        for (zint k = 0; k < n; ++k) {
            long double t = 0;
            for (zint i = 0; i < n; ++i) t += static_cast<long double>(svd.u[i + k * ld]) * bcol[i];
            coefficients[k] = k < rank ? t / svd.s[k] : 0.0L;
        }
        // B x - b in long double, then its components along the kept left vectors.
        LongVector r(n);
        for (zint i = 0; i < n; ++i) {
            long double bx = static_cast<long double>(b.d[i]) * xcol[i];
            if (b.upper && i + 1 < n) bx += static_cast<long double>(b.e[i]) * xcol[i + 1];
            if (!b.upper && i > 0) bx += static_cast<long double>(b.e[i - 1]) * xcol[i - 1];
            r[i] = bx - bcol[i];
        }
        for (zint i = 0; i < n; ++i) {
            long double expected = 0;
            for (zint k = 0; k < rank; ++k)
                expected += static_cast<long double>(svd.vt[k + i * ld]) * coefficients[k];
            worst = std::max(worst, std::fabs(expected - xcol[i]));
            xnorm = std::max(xnorm, std::fabs(expected));
        }
        for (zint k = 0; k < n; ++k) {
            long double along_v = 0, along_u = 0;
            for (zint i = 0; i < n; ++i) {
                along_v += static_cast<long double>(svd.vt[k + i * ld]) * xcol[i];
                along_u += static_cast<long double>(svd.u[i + k * ld]) * r[i];
            }
            if (k >= rank) null_part = std::max(null_part, std::fabs(along_v));
            if (k < rank) residual_part = std::max(residual_part, std::fabs(along_u));
        }
        for (zint i = 0; i < n; ++i) scale = std::max<long double>(scale, std::fabs(bcol[i]));
    }
    if (rank == 0) {
        EXPECT_EQ(worst, 0) << what;
        return;
    }
    // The solution's error grows with the condition of the kept part, s_1 / s_rank.
    const long double condition = svd.s[0] / svd.s[rank - 1];
    EXPECT_LT(static_cast<double>(worst / (xnorm * n * kEps * condition)), kThreshold) << what;
    EXPECT_LT(static_cast<double>(null_part / (xnorm * n * kEps * condition)), kThreshold) << what << " null";
    EXPECT_LT(static_cast<double>(residual_part / (scale * n * kEps * condition)), kThreshold)
        << what << " residual";
}

struct LsCase {
    Kind kind;
    zint n, nrhs;
};

class BidiagonalLeastSquares : public ::testing::TestWithParam<LsCase> {};

TEST_P(BidiagonalLeastSquares, MinimumNormSolutionThroughTheSvd) {
    const LsCase c = GetParam();
    for (const bool upper : {true, false}) {
        const Bidiagonal b = make(c.kind, c.n, upper, 23);
        for (const double rcond : {-1.0, 1e-3}) {
            check_least_squares(b, c.nrhs, rcond,
                                std::string(kind_name(c.kind)) + " n=" + std::to_string(c.n) +
                                    (upper ? " U" : " L") + " rcond=" + std::to_string(rcond));
        }
    }
}

const LsCase kLsCases[] = {{Kind::Random, 1, 1},      {Kind::Random, 2, 3},    {Kind::Random, 25, 2},
                           {Kind::Random, 26, 1},     {Kind::Random, 130, 3},  {Kind::Random, 600, 2},
                           {Kind::Zero, 30, 2},       {Kind::RankOne, 40, 2},  {Kind::Repeated, 90, 1},
                           {Kind::Graded, 60, 2},     {Kind::Tiny, 50, 1},     {Kind::Huge, 50, 1},
                           {Kind::Splitting, 100, 2}, {Kind::Clustered, 70, 2}};

std::string ls_case_name(const ::testing::TestParamInfo<LsCase>& info) {
    return std::string(kind_name(info.param.kind)) + std::to_string(info.param.n) + "x" +
           std::to_string(info.param.nrhs);
}

INSTANTIATE_TEST_SUITE_P(Matrices, BidiagonalLeastSquares, ::testing::ValuesIn(kLsCases), ls_case_name);

// rcond just above and just below s_k / s_1 decides whether value k counts, on both paths (QR
// below the leaf size, divide and conquer above it).
TEST(BidiagonalLeastSquaresRank, RcondBoundaries) {
    for (const zint n : {12, 90}) {
        Bidiagonal b = make(Kind::Random, n, true, 5);
        const Svd svd = run_bdsdc(b, 'I');
        ASSERT_EQ(svd.info, 0);
        for (const zint k : {zint{1}, n / 3, n - 1}) {
            const double ratio = svd.s[k] / svd.s[0];
            std::vector<double> rhs(n, 1.0);
            EXPECT_EQ(run_lalsd(b, rhs, 1, n, ratio * (1 + 1e-6)).rank, k) << n << " " << k;
            EXPECT_EQ(run_lalsd(b, rhs, 1, n, ratio * (1 - 1e-6)).rank, k + 1) << n << " " << k;
        }
        // rcond <= 0 or >= 1 mean eps: values below eps·s_1 are dropped, the others kept.
        b.d[n / 2] = 1e-30;
        b.e[n / 2] = 1e-30;
        if (n / 2 > 0) b.e[n / 2 - 1] = 1e-30;
        for (const double rcond : {-1.0, 0.0, 1.0}) {
            std::vector<double> rhs(n, 1.0);
            EXPECT_EQ(run_lalsd(b, rhs, 1, n, rcond).rank, n - 1) << n << " " << rcond;
        }
    }
}

// ---- NaN, work areas and arguments --------------------------------------------------------------

// NaN (or infinity) anywhere: a prompt failure, never a hang.
TEST(BidiagonalFailures, NanInputReportsFailure) {
    for (const zint n : {2, 30, 200}) {
        for (const bool in_d : {true, false}) {
            for (const double bad : {kNaN, std::numeric_limits<double>::infinity()}) {
                Bidiagonal b = make(Kind::Random, n, true, 3);
                (in_d ? b.d[n / 2] : b.e[n / 2 - 1]) = bad;
                EXPECT_GT(run_bdsdc(b, 'I').info, 0) << n;
                EXPECT_GT(run_bdsdc(b, 'N').info, 0) << n;
                std::vector<double> d = b.d, e = b.e, work(4 * n);
                zint info = 0;
                bdsqr('U', n, 0, 0, 0, d.data(), e.data(), nullptr, 1, nullptr, 1, nullptr, 1, work.data(),
                      info);
                EXPECT_GT(info, 0) << n;
                std::vector<double> rhs(n, 1.0);
                const LsResult ls = run_lalsd(b, rhs, 1, n, -1.0);
                EXPECT_EQ(ls.info, 2 * n + 1) << n;
            }
        }
    }
}

TEST(BidiagonalWorkAreas, PublishedMinimalSizes) {
    EXPECT_EQ(bdsdc_work_size('N', 10), 40);
    EXPECT_EQ(bdsdc_work_size('I', 10), 340);
    EXPECT_EQ(bdsdc_work_size('I', 0), 1);
    EXPECT_EQ(bdsdc_iwork_size(10), 80);
    EXPECT_EQ(bdsdc_iwork_size(0), 1);
    // nlvl = floor(log2(n / 26)) + 1: 1000 rows make 6 levels.
    EXPECT_EQ(lalsd_levels(1000, 25), 6);
    EXPECT_EQ(lalsd_levels(26, 25), 1);
    EXPECT_EQ(lalsd_levels(0, 25), 0);
    EXPECT_EQ(lalsd_work_size(1000, 3, 25), 9 * 1000 + 2 * 1000 * 25 + 8 * 1000 * 6 + 1000 * 3 + 26 * 26);
    EXPECT_EQ(lalsd_iwork_size(1000, 25), 3 * 1000 * 6 + 11 * 1000);
}

double g_d[16], g_e[16], g_m[64];
zint g_i[64];

const ArgumentCase kBidiagonalArgumentCases[] = {
    {"DBDSQR", -1, [] { return info_of(bdsqr, 'X', 2, 0, 0, 0, g_d, g_e, g_m, 1, g_m, 1, g_m, 1, g_m); }},
    {"DBDSQR", -2, [] { return info_of(bdsqr, 'U', -1, 0, 0, 0, g_d, g_e, g_m, 1, g_m, 1, g_m, 1, g_m); }},
    {"DBDSQR", -3, [] { return info_of(bdsqr, 'U', 2, -1, 0, 0, g_d, g_e, g_m, 1, g_m, 1, g_m, 1, g_m); }},
    {"DBDSQR", -4, [] { return info_of(bdsqr, 'L', 2, 0, -1, 0, g_d, g_e, g_m, 1, g_m, 1, g_m, 1, g_m); }},
    {"DBDSQR", -5, [] { return info_of(bdsqr, 'L', 2, 0, 0, -1, g_d, g_e, g_m, 1, g_m, 1, g_m, 1, g_m); }},
    {"DBDSQR", -9, [] { return info_of(bdsqr, 'U', 3, 1, 0, 0, g_d, g_e, g_m, 2, g_m, 1, g_m, 1, g_m); }},
    {"DBDSQR", -11, [] { return info_of(bdsqr, 'U', 3, 0, 2, 0, g_d, g_e, g_m, 1, g_m, 1, g_m, 1, g_m); }},
    {"DBDSQR", -13, [] { return info_of(bdsqr, 'U', 3, 0, 0, 1, g_d, g_e, g_m, 1, g_m, 1, g_m, 2, g_m); }},
    {"DLASDQ", -1, [] { return info_of(lasdq, 'x', 0, 2, 0, 0, 0, g_d, g_e, g_m, 1, g_m, 1, g_m, 1, g_m); }},
    {"DLASDQ", -2, [] { return info_of(lasdq, 'U', 2, 2, 0, 0, 0, g_d, g_e, g_m, 1, g_m, 1, g_m, 1, g_m); }},
    {"DLASDQ", -3, [] { return info_of(lasdq, 'U', 0, -2, 0, 0, 0, g_d, g_e, g_m, 1, g_m, 1, g_m, 1, g_m); }},
    {"DLASDQ", -12, [] { return info_of(lasdq, 'U', 1, 2, 0, 3, 0, g_d, g_e, g_m, 1, g_m, 2, g_m, 1, g_m); }},
    {"DLASDQ", -14, [] { return info_of(lasdq, 'L', 1, 2, 0, 0, 2, g_d, g_e, g_m, 1, g_m, 1, g_m, 1, g_m); }},
    {"DBDSDC", -1, [] { return info_of(bdsdc, 'A', 'N', 2, g_d, g_e, g_m, 1, g_m, 1, g_m, g_i, g_m, g_i); }},
    {"DBDSDC", -2, [] { return info_of(bdsdc, 'U', 'P', 2, g_d, g_e, g_m, 1, g_m, 1, g_m, g_i, g_m, g_i); }},
    {"DBDSDC", -3, [] { return info_of(bdsdc, 'L', 'N', -2, g_d, g_e, g_m, 1, g_m, 1, g_m, g_i, g_m, g_i); }},
    {"DBDSDC", -7, [] { return info_of(bdsdc, 'U', 'I', 3, g_d, g_e, g_m, 2, g_m, 3, g_m, g_i, g_m, g_i); }},
    {"DBDSDC", -9, [] { return info_of(bdsdc, 'U', 'I', 3, g_d, g_e, g_m, 3, g_m, 2, g_m, g_i, g_m, g_i); }},
    {"DBDSDC", 0, [] { return info_of(bdsdc, 'U', 'N', 0, g_d, g_e, g_m, 1, g_m, 1, g_m, g_i, g_m, g_i); }},
    {"DLASD0", -2, [] { return info_of(lasd0, 4, 2, g_d, g_e, g_m, 4, g_m, 4, 25, g_i, g_m); }},
    {"DLASD0", -8, [] { return info_of(lasd0, 4, 1, g_d, g_e, g_m, 4, g_m, 4, 25, g_i, g_m); }},
    {"DLASD0", -9, [] { return info_of(lasd0, 4, 0, g_d, g_e, g_m, 4, g_m, 4, 2, g_i, g_m); }},
    {"DLASDA", -2,
     [] {
         return info_of(lasda, 0, 2, 4, 0, g_d, g_e, g_m, 4, g_m, g_i, g_m, g_m, g_m, g_m, g_i, g_i, 4, g_i,
                        g_m, g_m, g_m, g_m, g_i);
     }},
    {"DLASDA", -17,
     [] {
         return info_of(lasda, 1, 3, 4, 0, g_d, g_e, g_m, 4, g_m, g_i, g_m, g_m, g_m, g_m, g_i, g_i, 3, g_i,
                        g_m, g_m, g_m, g_m, g_i);
     }},
    {"DLALSD", -3,
     [] {
         zint rank = 0;
         return info_of(lalsd, 'U', 25, -1, 1, g_d, g_e, g_m, 1, 0.0, rank, g_m, g_i);
     }},
    {"DLALSD", -4,
     [] {
         zint rank = 0;
         return info_of(lalsd, 'U', 25, 2, -1, g_d, g_e, g_m, 2, 0.0, rank, g_m, g_i);
     }},
    {"DLALSD", -8,
     [] {
         zint rank = 0;
         return info_of(lalsd, 'L', 25, 3, 1, g_d, g_e, g_m, 2, 0.0, rank, g_m, g_i);
     }},
    {"DLALSA", -3,
     [] {
         return info_of(lalsa, 0, 25, 10, 1, g_m, 30, g_m, 30, g_m, 30, g_m, g_i, g_m, g_m, g_m, g_m, g_i,
                        g_i, 30, g_i, g_m, g_m, g_m, g_m, g_i);
     }},
    {"DLALS0", -5,
     [] {
         return info_of(lals0, 0, 1, 1, 0, 0, g_m, 3, g_m, 3, g_i, 0, g_i, 3, g_m, 3, g_m, g_m, g_m, g_m, 1,
                        1.0, 0.0, g_m);
     }},
    {"DLALS0", -20,
     [] {
         return info_of(lals0, 1, 1, 1, 0, 1, g_m, 3, g_m, 3, g_i, 0, g_i, 3, g_m, 3, g_m, g_m, g_m, g_m, 0,
                        1.0, 0.0, g_m);
     }},
    // The merges check their dimensions after their shapes, and the dimensions win.
    {"DLASD1", -3,
     [] {
         double a = 1, b = 1;
         return info_of(lasd1, 1, 1, 2, g_d, a, b, g_m, 3, g_m, 3, g_i, g_i, g_m);
     }},
    {"DLASD2", -10,
     [] {
         zint k = 0;
         return info_of(lasd2, 0, 1, 0, k, g_d, g_m, 1.0, 1.0, g_m, 1, g_m, 3, g_m, g_m, 3, g_m, 3, g_i, g_i,
                        g_i, g_i, g_i);
     }},
    {"DLASD2", -1,
     [] {
         zint k = 0;
         return info_of(lasd2, 0, 1, 0, k, g_d, g_m, 1.0, 1.0, g_m, 3, g_m, 3, g_m, g_m, 3, g_m, 3, g_i, g_i,
                        g_i, g_i, g_i);
     }},
    {"DLASD3", -7,
     [] {
         return info_of(lasd3, 0, 1, 0, 2, g_d, g_m, 1, g_m, g_m, 3, g_m, 3, g_m, 3, g_m, 3, g_i, g_i, g_m);
     }},
    {"DLASD6", -4,
     [] {
         double a = 1, b = 1, c = 0, s = 0;
         zint gp = 0, k = 0;
         return info_of(lasd6, 0, 1, 1, 3, g_d, g_m, g_m, a, b, g_i, g_i, gp, g_i, 3, g_m, 3, g_m, g_m, g_m,
                        g_m, k, c, s, g_m, g_i);
     }},
    {"DLASD7", -22,
     [] {
         double c = 0, s = 0;
         zint gp = 0, k = 0;
         return info_of(lasd7, 1, 1, 1, 0, k, g_d, g_m, g_m, g_m, g_m, g_m, g_m, 1.0, 1.0, g_m, g_i, g_i, g_i,
                        g_i, gp, g_i, 2, g_m, 3, c, s);
     }},
    {"DLASD8", -9, [] { return info_of(lasd8, 1, 3, g_d, g_m, g_m, g_m, g_m, g_m, 2, g_m, g_m); }},
};

INSTANTIATE_TEST_SUITE_P(BidiagonalArguments, ArgumentChecks, ::testing::ValuesIn(kBidiagonalArgumentCases));

}  // namespace
}  // namespace zor::test
