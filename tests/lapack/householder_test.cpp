// The Householder family through its internal interface: larfg against its defining property at
// every scale (and its termination on Inf and NaN), larf's skipping of trailing zeros, larft and
// larfb in every combination against the explicit product of the reflectors, the products with Q
// (orm2r, ormqr, orml2, ormlq, ormhr) against the Q their reflectors stand for, and the argument
// checks.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "lapack/householder/householder.hpp"
#include "lapack/reflector_support.hpp"
#include "service/element.hpp"
#include "support/variants.hpp"

namespace zor::test {
namespace {

// ---- larfg --------------------------------------------------------------------------------------

struct LarfgCase {
    const char* name;
    zint n;
    double scale;       // of x and alpha
    double alpha_imag;  // imaginary part of alpha (complex only), in units of scale
    bool zero_x;
};

class Larfg : public ::testing::TestWithParam<LarfgCase> {};

// Hᴴ (alpha; x) = (beta; 0) with beta real and |beta| = ||(alpha; x)||, H unitary.
template <class T>
void check_larfg(const LarfgCase& c) {
    Random random(static_cast<std::uint64_t>(c.n * 7 + 3));
    std::vector<T> x(static_cast<std::size_t>(std::max<zint>(c.n - 1, 0)) * 2);
    for (auto& e : x) e = c.zero_x ? T{} : random_element<T>(random) * c.scale;
    T alpha = random_element<T>(random) * c.scale;
    if constexpr (kIsComplex<T>) alpha.im = c.alpha_imag * c.scale;
    const std::vector<T> x0 = x;
    const T alpha0 = alpha;
    T tau;
    larfg<T>(c.n, alpha, x.data(), 2, tau);  // stride 2: every other element belongs to x

    std::vector<Exact> original = {value(alpha0)}, v = {{1, 0}};
    long double squares = 0;
    for (zint i = 0; i + 1 < c.n; ++i) {
        original.push_back(value(x0[static_cast<std::size_t>(2 * i)]));
        v.push_back(value(x[static_cast<std::size_t>(2 * i)]));
        EXPECT_EQ(value(x[static_cast<std::size_t>(2 * i + 1)]).re,
                  value(x0[static_cast<std::size_t>(2 * i + 1)]).re);
    }
    for (const Exact& e : original) {
        const long double re = e.re / c.scale, im = e.im / c.scale;
        squares += re * re + im * im;
    }
    const long double norm = std::sqrt(squares) * c.scale;
    EXPECT_EQ(value(alpha).im, 0) << "beta is real";
    if (norm == 0 || (c.zero_x && c.alpha_imag == 0)) {
        EXPECT_EQ(value(tau).re, 0);
        EXPECT_EQ(value(tau).im, 0);
        return;
    }
    // A subnormal beta is exact to the spacing of the subnormal numbers only.
    const long double spacing = 4 * std::numeric_limits<double>::denorm_min();
    EXPECT_LT(std::fabs(std::fabs(value(alpha).re) - norm), 4 * epsilon() * norm + spacing)
        << "|beta| = ||(alpha; x)||";
    // Hᴴ (alpha; x) = (alpha; x) - conj(tau) v (vᴴ (alpha; x)).
    Wide y(c.n, 1);
    for (zint i = 0; i < c.n; ++i) y(i, 0) = original[static_cast<std::size_t>(i)];
    apply_reflector(y, v, value(tau), true);
    y(0, 0) = y(0, 0) - value(alpha);
    long double residual = 0;
    for (zint i = 0; i < c.n; ++i) residual += std::hypot(y(i, 0).re, y(i, 0).im);
    EXPECT_LT(residual, 10 * c.n * epsilon() * norm + c.n * spacing);
    // Unitary: tau + conj(tau) = |tau|² vᴴv.
    long double vv = 0;
    for (const Exact& e : v) vv += e.re * e.re + e.im * e.im;
    const Exact t = value(tau);
    EXPECT_NEAR(static_cast<double>(2 * t.re), static_cast<double>((t.re * t.re + t.im * t.im) * vv),
                10 * c.n * epsilon());
}

TEST_P(Larfg, TakesTheVectorToBetaAlongE1) {
    check_larfg<double>(GetParam());
    check_larfg<zcomplex>(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Cases, Larfg,
                         ::testing::Values(LarfgCase{"plain", 9, 1.0, 0.5, false},
                                           LarfgCase{"one_element", 1, 1.0, 0.5, false},
                                           LarfgCase{"zero_x", 6, 1.0, 0.0, true},
                                           LarfgCase{"zero_x_complex_alpha", 6, 1.0, 0.7, true},
                                           LarfgCase{"near_underflow", 17, 1e-300, 0.3, false},
                                           LarfgCase{"subnormal", 17, 1e-315, 0.3, false},
                                           LarfgCase{"near_overflow", 17, 1e300, 0.3, false},
                                           LarfgCase{"long", 300, 1.0, 0.0, false}),
                         NameOfParam());

// Inf and NaN end the rescaling loop and the call; nothing hangs and nothing outside x is written.
TEST(Larfg, InfAndNaNTerminate) {
    const double inf = std::numeric_limits<double>::infinity(),
                 nan = std::numeric_limits<double>::quiet_NaN();
    for (const double bad : {inf, -inf, nan}) {
        for (const zint where : {0, 3}) {
            double x[6] = {1e-310, 2e-310, 1e-311, 3e-310, 1e-309, 7.0};
            double alpha = 1e-310, tau = 0;
            if (where == 0) {
                alpha = bad;
            } else {
                x[where] = bad;
            }
            larfg<double>(6, alpha, x, 1, tau);
            EXPECT_EQ(x[5], 7.0);
            zcomplex z[5] = {{1e-310, 0}, {0, 2e-310}, {bad, 0}, {1e-309, 1e-309}, {7, 7}}, za{0, 1e-310},
                     ztau;
            larfg<zcomplex>(4, za, z, 1, ztau);
            EXPECT_EQ(z[4].re, 7.0);
        }
    }
}

// ---- larf ---------------------------------------------------------------------------------------

// H C (left) or C H (right) with v ending in zeros: the rows (columns) of C that only those zeros
// meet are neither read nor written (NaN there stays NaN and spreads nowhere); the rest is exact
// to rounding. A negative stride reads v backwards.
template <class T>
void check_larf(char side, zint incv) {
    const zint m = 7, n = 5, length = side == 'L' ? m : n, used = length - 2;
    Random random(static_cast<std::uint64_t>(side + incv * 3));
    Matrix<T> c = random_matrix<T>(random, m, n);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < m; ++i) {
            if ((side == 'L' ? i : j) >= used) c(i, j) = scalar<T>(kPoison, 0);
        }
    }
    std::vector<Exact> v(static_cast<std::size_t>(length));
    std::vector<T> stored(static_cast<std::size_t>(length * std::abs(incv)), scalar<T>(kPoison, 0));
    for (zint i = 0; i < length; ++i) {
        const T e = i >= used ? T{} : random_element<T>(random);
        v[static_cast<std::size_t>(i)] = value(e);
        stored[static_cast<std::size_t>(incv > 0 ? i * incv : (length - 1 - i) * -incv)] = e;
    }
    const T tau = random_element<T>(random);
    std::vector<T> work(static_cast<std::size_t>(std::max(m, n)));
    const Wide before = widen_matrix(c);
    larf<T>(side, m, n, stored.data(), incv, tau, c.data(), c.ld, work.data());
    Wide expected(side == 'L' ? used : m, side == 'L' ? n : used);
    for (zint j = 0; j < expected.cols; ++j) {
        for (zint i = 0; i < expected.rows; ++i) expected(i, j) = before(i, j);
    }
    if (side == 'L') {
        v.resize(static_cast<std::size_t>(used));
        apply_reflector(expected, v, value(tau), false);
    } else {
        // C H = (Hᴴ Cᴴ)ᴴ
        v.resize(static_cast<std::size_t>(used));
        Wide t = op(expected, 'C');
        apply_reflector(t, v, value(tau), true);
        expected = op(t, 'C');
    }
    const Wide got = widen_matrix(c);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < m; ++i) {
            const bool skipped = (side == 'L' ? i : j) >= used;
            if (skipped) {
                EXPECT_TRUE(std::isnan(got(i, j).re)) << side << " " << i << "," << j;
            } else {
                EXPECT_NEAR(static_cast<double>(got(i, j).re), static_cast<double>(expected(i, j).re), 1e-14)
                    << side << " " << incv << " " << i << "," << j;
                EXPECT_NEAR(static_cast<double>(got(i, j).im), static_cast<double>(expected(i, j).im), 1e-14);
            }
        }
    }
}

TEST(Larf, SkipsTheTrailingZerosOfVAndAppliesTheRest) {
    for (char side : {'L', 'R'}) {
        for (zint incv : {1, 3, -2}) {
            check_larf<double>(side, incv);
            check_larf<zcomplex>(side, incv);
        }
    }
    // A zero C beyond a zero column block: the last nonzero row and column are found.
    Matrix<double> z(4, 3, 4);
    for (auto& e : z.v) e = 0.0;
    z(1, 1) = 2.0;
    EXPECT_EQ(ilalc<double>(4, 3, z.data(), 4), 2);
    EXPECT_EQ(ilalr<double>(4, 3, z.data(), 4), 2);
    z(1, 1) = 0.0;
    EXPECT_EQ(ilalc<double>(4, 3, z.data(), 4), 0);
    EXPECT_EQ(ilalr<double>(4, 3, z.data(), 4), 0);
}

// ---- larft and larfb ----------------------------------------------------------------------------

struct BlockCase {
    char direct, storev;
};

class BlockReflector : public ::testing::TestWithParam<BlockCase> {};

// k reflectors of order `order` in V's layout for the case, with NaN in the unit and zero entries
// (never read); returns the vectors as columns.
template <class T>
std::vector<std::vector<Exact>> stored_vectors(Random& random, const BlockCase& c, zint order, zint k,
                                               Matrix<T>& v) {
    const bool columnwise = c.storev == 'C';
    v = columnwise ? Matrix<T>(order, k, order + 1) : Matrix<T>(k, order, k + 1);
    std::vector<std::vector<Exact>> vectors(static_cast<std::size_t>(k), std::vector<Exact>(order));
    for (zint i = 0; i < k; ++i) {
        const zint unit = c.direct == 'F' ? i : order - k + i;
        for (zint r = 0; r < order; ++r) {
            const bool structural = c.direct == 'F' ? r <= unit : r >= unit;
            T e = structural ? T{} : random_element<T>(random);
            if (r == unit) vectors[static_cast<std::size_t>(i)][static_cast<std::size_t>(r)] = {1, 0};
            if (!structural) vectors[static_cast<std::size_t>(i)][static_cast<std::size_t>(r)] = value(e);
            // Rowwise storage holds vᴴ.
            const T shown =
                structural ? scalar<T>(kPoison, kPoison) : (columnwise ? e : narrow_to<T>(conj(value(e))));
            if (columnwise) {
                v(r, i) = shown;
            } else {
                v(i, r) = shown;
            }
        }
    }
    return vectors;
}

template <class T>
void check_block_reflector(const BlockCase& c, char side, char trans, zint m, zint n, zint k) {
    const zint order = side == 'L' ? m : n;
    Random random(static_cast<std::uint64_t>(c.direct * 100 + c.storev + side * 7 + trans + m + n * 3 + k));
    Matrix<T> v;
    const auto vectors = stored_vectors<T>(random, c, order, k, v);
    std::vector<T> tau(static_cast<std::size_t>(k));
    for (auto& t : tau) t = random_element<T>(random);
    if (k > 2) tau[1] = T{};  // an identity among them
    Matrix<T> t(k, k, k + 2);
    larft<T>(c.direct, c.storev, order, k, v.data(), v.ld, tau.data(), t.data(), t.ld);
    if (k > 2) {
        EXPECT_EQ(value(t(1, 1)).re, 0);
    }

    // H = H(1) ... H(k) (forward) or H(k) ... H(1) (backward), explicitly.
    Wide h = identity(order);
    for (zint s = 0; s < k; ++s) {
        const zint i = c.direct == 'F' ? k - 1 - s : s;  // applied to the left, the last factor first
        apply_reflector(h, vectors[static_cast<std::size_t>(i)], value(tau[static_cast<std::size_t>(i)]),
                        false);
    }
    const Wide op_h = op(h, trans == 'N' ? 'N' : 'C');
    const Matrix<T> c0 = random_matrix<T>(random, m, n);
    Matrix<T> result = c0;
    std::vector<T> work(static_cast<std::size_t>((side == 'L' ? n : m) * k + 1));
    larfb<T>(side, trans, c.direct, c.storev, m, n, k, v.data(), v.ld, t.data(), t.ld, result.data(),
             result.ld, work.data(), side == 'L' ? n : m);
    const Wide expected = side == 'L' ? multiply(op_h, widen_matrix(c0)) : multiply(widen_matrix(c0), op_h);
    EXPECT_LT(scaled_distance(expected, widen_matrix(result), order), kResidualThreshold)
        << c.direct << c.storev << " " << side << trans << " " << m << "x" << n << " k " << k;
    EXPECT_TRUE(padding_untouched(result));
}

TEST_P(BlockReflector, LarfbAppliesTheProductOfTheReflectors) {
    for (char side : {'L', 'R'}) {
        for (const auto& [m, n, k] :
             {std::tuple<zint, zint, zint>{9, 6, 4}, {6, 9, 4}, {40, 37, 13}, {13, 13, 13}}) {
            check_block_reflector<double>(GetParam(), side, 'N', m, n, k);
            check_block_reflector<double>(GetParam(), side, 'T', m, n, k);
            check_block_reflector<zcomplex>(GetParam(), side, 'N', m, n, k);
            check_block_reflector<zcomplex>(GetParam(), side, 'C', m, n, k);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Storage, BlockReflector,
                         ::testing::Values(BlockCase{'F', 'C'}, BlockCase{'B', 'C'}, BlockCase{'F', 'R'},
                                           BlockCase{'B', 'R'}),
                         [](const auto& info) {
                             return std::string(1, info.param.direct) + std::string(1, info.param.storev);
                         });

// ---- products with Q ----------------------------------------------------------------------------

// ormqr, orm2r, ormlq, orml2 against the explicit Q of the same reflectors (random vectors and
// scalars), every side and option, with k below and above the block of 32, minimal and optimal
// workspaces; the reflectors' storage is as it was afterwards.
template <class T>
void check_products(bool lq, zint m, zint n, zint k) {
    const char adjoint = kIsComplex<T> ? 'C' : 'T';
    for (const char side : {'L', 'R'}) {
        const zint nq = side == 'L' ? m : n;
        Random random(static_cast<std::uint64_t>(m * 31 + n * 7 + k + side + lq));
        Matrix<T> a = lq ? random_matrix<T>(random, k, nq) : random_matrix<T>(random, nq, k);
        std::vector<T> tau(static_cast<std::size_t>(std::max<zint>(k, 1)));
        for (auto& t : tau) t = random_element<T>(random);
        const Wide q = lq ? lq_q(a, tau, k) : qr_q(a, tau, k);
        const Matrix<T> a0 = a;
        const Matrix<T> c0 = random_matrix<T>(random, m, n);
        for (const char trans : {'N', adjoint}) {
            const Wide op_q = op(q, trans == 'N' ? 'N' : 'C');
            const Wide expected =
                side == 'L' ? multiply(op_q, widen_matrix(c0)) : multiply(widen_matrix(c0), op_q);
            for (int variant = 0; variant < 3; ++variant) {  // unblocked, blocked minimal, blocked optimal
                Matrix<T> c = c0;
                zint info = -9;
                const zint nw = std::max<zint>(1, side == 'L' ? n : m);
                std::vector<T> work(static_cast<std::size_t>(nw));
                if (variant == 0) {
                    if (lq) {
                        orml2<T>(side, trans, m, n, k, a.data(), a.ld, tau.data(), c.data(), c.ld,
                                 work.data(), info);
                    } else {
                        orm2r<T>(side, trans, m, n, k, a.data(), a.ld, tau.data(), c.data(), c.ld,
                                 work.data(), info);
                    }
                } else {
                    const auto product = lq ? ormlq<T> : ormqr<T>;
                    zint lwork = nw;
                    if (variant == 2) {
                        product(side, trans, m, n, k, a.data(), a.ld, tau.data(), c.data(), c.ld, work.data(),
                                -1, info);
                        lwork = static_cast<zint>(value(work[0]).re);
                        work.resize(static_cast<std::size_t>(lwork));
                    }
                    product(side, trans, m, n, k, a.data(), a.ld, tau.data(), c.data(), c.ld, work.data(),
                            lwork, info);
                }
                ASSERT_EQ(info, 0);
                EXPECT_LT(scaled_distance(expected, widen_matrix(c), std::max(m, n)), kResidualThreshold)
                    << (lq ? "LQ " : "QR ") << side << trans << " " << m << "x" << n << " k " << k
                    << " variant " << variant;
                EXPECT_TRUE(same_contents(a, a0));
            }
        }
    }
}

TEST(QProducts, OrmqrAndOrmlqApplyTheQOfTheirReflectors) {
    for (const auto& [m, n, k] :
         {std::tuple<zint, zint, zint>{5, 4, 3}, {1, 1, 1}, {70, 75, 40}, {90, 80, 80}}) {
        check_products<double>(false, m, n, k);
        check_products<zcomplex>(false, m, n, k);
        check_products<double>(true, m, n, k);
        check_products<zcomplex>(true, m, n, k);
    }
}

// ormhr applies the Q of Hessenberg reflectors to the rows or columns ilo + 1 .. ihi.
TEST(QProducts, OrmhrAppliesTheHessenbergQ) {
    for (const auto& [order, ilo, ihi] : {std::tuple<zint, zint, zint>{7, 2, 6}, {50, 1, 50}, {1, 1, 1}}) {
        for (const char side : {'L', 'R'}) {
            Random random(static_cast<std::uint64_t>(order + ilo + side));
            const Matrix<zcomplex> a = random_matrix<zcomplex>(random, order, order);
            std::vector<zcomplex> tau;
            const Wide q = hessenberg_reflectors(random, a, ilo, ihi, tau);
            const zint m = side == 'L' ? order : 6, n = side == 'L' ? 5 : order;
            const Matrix<zcomplex> c0 = random_matrix<zcomplex>(random, m, n);
            Matrix<zcomplex> c = c0, reflectors = a;
            std::vector<zcomplex> work(1);
            zint info = -9;
            ormhr<zcomplex>(side, 'C', m, n, ilo, ihi, reflectors.data(), a.ld, tau.data(), c.data(), c.ld,
                            work.data(), -1, info);
            const zint lwork = static_cast<zint>(work[0].re);
            work.resize(static_cast<std::size_t>(lwork));
            ormhr<zcomplex>(side, 'C', m, n, ilo, ihi, reflectors.data(), a.ld, tau.data(), c.data(), c.ld,
                            work.data(), lwork, info);
            ASSERT_EQ(info, 0);
            const Wide expected =
                side == 'L' ? multiply(op(q, 'C'), widen_matrix(c0)) : multiply(widen_matrix(c0), op(q, 'C'));
            EXPECT_LT(scaled_distance(expected, widen_matrix(c), order), kResidualThreshold) << side << order;
        }
    }
}

// ---- argument checks ----------------------------------------------------------------------------

double g_a[64];
zcomplex g_z[64];

const ArgumentCase kHouseholderArgumentCases[] = {
    {"DORM2R", -1, [] { return info_of(orm2r<double>, 'X', 'N', 2, 2, 1, g_a, 2, g_a, g_a, 2, g_a); }},
    {"DORM2R", -2, [] { return info_of(orm2r<double>, 'L', 'C', 2, 2, 1, g_a, 2, g_a, g_a, 2, g_a); }},
    {"ZUNM2R", -2, [] { return info_of(orm2r<zcomplex>, 'L', 'T', 2, 2, 1, g_z, 2, g_z, g_z, 2, g_z); }},
    {"DORM2R", -3, [] { return info_of(orm2r<double>, 'L', 'N', -1, 2, 0, g_a, 1, g_a, g_a, 1, g_a); }},
    {"DORM2R", -4, [] { return info_of(orm2r<double>, 'r', 't', 2, -1, 0, g_a, 1, g_a, g_a, 2, g_a); }},
    {"DORM2R", -5, [] { return info_of(orm2r<double>, 'L', 'N', 2, 3, 3, g_a, 2, g_a, g_a, 2, g_a); }},
    {"DORM2R", -7, [] { return info_of(orm2r<double>, 'R', 'N', 2, 3, 1, g_a, 2, g_a, g_a, 2, g_a); }},
    {"DORM2R", -10, [] { return info_of(orm2r<double>, 'L', 'N', 3, 2, 1, g_a, 3, g_a, g_a, 2, g_a); }},
    {"DORMQR", -1, [] { return info_of(ormqr<double>, '?', 'N', 2, 2, 1, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"ZUNMQR", -2, [] { return info_of(ormqr<zcomplex>, 'L', 'x', 2, 2, 1, g_z, 2, g_z, g_z, 2, g_z, 4); }},
    {"DORMQR", -3, [] { return info_of(ormqr<double>, 'L', 'N', -2, 2, 0, g_a, 1, g_a, g_a, 1, g_a, 4); }},
    {"DORMQR", -4, [] { return info_of(ormqr<double>, 'L', 'N', 2, -2, 0, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"DORMQR", -5, [] { return info_of(ormqr<double>, 'R', 'T', 2, 3, -1, g_a, 3, g_a, g_a, 2, g_a, 4); }},
    {"DORMQR", -7, [] { return info_of(ormqr<double>, 'L', 'N', 4, 2, 1, g_a, 3, g_a, g_a, 4, g_a, 4); }},
    {"DORMQR", -10, [] { return info_of(ormqr<double>, 'R', 'N', 4, 2, 1, g_a, 2, g_a, g_a, 3, g_a, 4); }},
    {"DORMQR", -12, [] { return info_of(ormqr<double>, 'L', 'N', 4, 3, 1, g_a, 4, g_a, g_a, 4, g_a, 2); }},
    {"ZUNMQR", -12, [] { return info_of(ormqr<zcomplex>, 'R', 'C', 4, 3, 1, g_z, 3, g_z, g_z, 4, g_z, 3); }},
    {"DORML2", -1, [] { return info_of(orml2<double>, 'N', 'N', 2, 2, 1, g_a, 1, g_a, g_a, 2, g_a); }},
    {"ZUNML2", -2, [] { return info_of(orml2<zcomplex>, 'L', 'T', 2, 2, 1, g_z, 1, g_z, g_z, 2, g_z); }},
    {"DORML2", -5, [] { return info_of(orml2<double>, 'R', 'N', 3, 2, 3, g_a, 3, g_a, g_a, 3, g_a); }},
    {"DORML2", -7, [] { return info_of(orml2<double>, 'L', 'N', 4, 2, 3, g_a, 2, g_a, g_a, 4, g_a); }},
    {"DORML2", -10, [] { return info_of(orml2<double>, 'L', 'N', 4, 2, 2, g_a, 2, g_a, g_a, 3, g_a); }},
    {"DORMLQ", -3, [] { return info_of(ormlq<double>, 'L', 'N', -1, 2, 0, g_a, 1, g_a, g_a, 1, g_a, 4); }},
    {"DORMLQ", -7, [] { return info_of(ormlq<double>, 'R', 'T', 2, 4, 3, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"ZUNMLQ", -12, [] { return info_of(ormlq<zcomplex>, 'L', 'N', 4, 3, 2, g_z, 2, g_z, g_z, 4, g_z, 2); }},
    {"DORMLQ", 0, [] { return info_of(ormlq<double>, 'L', 'N', 4, 3, 2, g_a, 2, g_a, g_a, 4, g_a, -1); }},
    {"DORMHR", -1, [] { return info_of(ormhr<double>, 'X', 'N', 2, 2, 1, 2, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"ZUNMHR", -2,
     [] { return info_of(ormhr<zcomplex>, 'L', 'T', 2, 2, 1, 2, g_z, 2, g_z, g_z, 2, g_z, 4); }},
    {"DORMHR", -3, [] { return info_of(ormhr<double>, 'L', 'N', -1, 2, 1, 0, g_a, 1, g_a, g_a, 1, g_a, 4); }},
    {"DORMHR", -4, [] { return info_of(ormhr<double>, 'L', 'N', 2, -1, 1, 2, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"DORMHR", -5, [] { return info_of(ormhr<double>, 'L', 'N', 3, 2, 0, 2, g_a, 3, g_a, g_a, 3, g_a, 4); }},
    {"DORMHR", -5, [] { return info_of(ormhr<double>, 'R', 'N', 3, 2, 3, 2, g_a, 3, g_a, g_a, 3, g_a, 4); }},
    {"DORMHR", -6, [] { return info_of(ormhr<double>, 'L', 'N', 3, 2, 2, 1, g_a, 3, g_a, g_a, 3, g_a, 4); }},
    {"DORMHR", -6, [] { return info_of(ormhr<double>, 'L', 'N', 3, 2, 1, 4, g_a, 3, g_a, g_a, 3, g_a, 4); }},
    {"DORMHR", -8, [] { return info_of(ormhr<double>, 'L', 'N', 3, 2, 1, 3, g_a, 2, g_a, g_a, 3, g_a, 4); }},
    {"DORMHR", -11, [] { return info_of(ormhr<double>, 'L', 'N', 3, 2, 1, 3, g_a, 3, g_a, g_a, 2, g_a, 4); }},
    {"DORMHR", -13, [] { return info_of(ormhr<double>, 'R', 'N', 3, 2, 1, 2, g_a, 3, g_a, g_a, 3, g_a, 2); }},
    {"DORMHR", 0, [] { return info_of(ormhr<double>, 'L', 'N', 0, 2, 1, 0, g_a, 1, g_a, g_a, 1, g_a, 2); }},
};

INSTANTIATE_TEST_SUITE_P(HouseholderArguments, ArgumentChecks,
                         ::testing::ValuesIn(kHouseholderArgumentCases));

}  // namespace
}  // namespace zor::test
