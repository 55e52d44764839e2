// The symmetric and Hermitian eigenproblem through its internal interface: the tridiagonal
// reduction (sytrd, sytd2, latrd) against the Q its reflectors stand for (orgtr, ormtr), the Q of a
// QL factorization (orgql, org2l, ormql, orm2l) against the reflectors' definition, and the driver
// syevd with the LAPACK test suite's residuals ||A - Z D Zᴴ|| / (n ||A|| eps), ||I - Zᴴ Z|| / (n eps),
// ascending eigenvalues and "N" against "V", on matrices that break weak implementations (equal,
// clustered, graded, Wilkinson and deflating spectra, entries near underflow and overflow) of
// orders up to a divide-and-conquer tree of several levels; both triangles, both element types,
// every processor variant, NaN input, the export's frame and the argument checks.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/dispatch.hpp"
#include "lapack/factor_support.hpp"
#include "lapack/reflector_support.hpp"
#include "lapack/symmetric/symmetric.hpp"
#include "service/cpu.hpp"
#include "service/memory.hpp"
#include "support/counting_allocator.hpp"
#include "support/process.hpp"
#include "support/variants.hpp"
#include "zor/zor_lapack.h"

namespace zor::test {
namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();

template <class T>
zint queried(const std::vector<T>& work) {
    return static_cast<zint>(value(work[0]).re);
}

template <class T>
const char* type_name() {
    return kIsComplex<T> ? "complex" : "real";
}

// ---- Hermitian matrices in long double --------------------------------------------------------------

// A := H A H for H = I - 2 v vᴴ / vᴴv (Hermitian and unitary): A - v wᴴ - w vᴴ with p = (2/vᴴv) A v
// and w = p - (vᴴp / vᴴv) v.
void reflect_both_sides(Wide& a, const std::vector<Exact>& v) {
    const zint n = a.rows;
    long double vv = 0;
    for (const Exact& x : v) vv += x.re * x.re + x.im * x.im;
    std::vector<Exact> p(static_cast<std::size_t>(n));
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) p[i] = p[i] + a(i, j) * v[j];
    }
    Exact vp;
    for (zint i = 0; i < n; ++i) {
        p[i] = p[i] * Exact{2 / vv, 0};
        vp = vp + conj(v[i]) * p[i];
    }
    const Exact k{vp.re / vv, 0};
    for (zint i = 0; i < n; ++i) p[i] = p[i] - k * v[i];
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) a(i, j) = a(i, j) - v[i] * conj(p[j]) - p[i] * conj(v[j]);
    }
}

// U diag(lambda) Uᴴ for a random unitary U made of three reflectors (complex ones for complex T).
template <class T>
Wide with_spectrum(const std::vector<long double>& lambda, Random& random) {
    const zint n = static_cast<zint>(lambda.size());
    Wide a(n, n);
    for (zint i = 0; i < n; ++i) a(i, i) = {lambda[i], 0};
    for (int r = 0; r < 3 && n > 1; ++r) {
        std::vector<Exact> v(static_cast<std::size_t>(n));
        for (Exact& x : v) x = value(random_element<T>(random));
        reflect_both_sides(a, v);
    }
    return a;
}

enum class Kind {
    Random,
    Diagonal,
    Identity,
    Zero,
    Constant,
    Cluster,
    Graded,
    Wilkinson,
    RankOneIdentity,
    Tiny,
    Huge
};

const char* const kKindNames[] = {"Random", "Diagonal",  "Identity",        "Zero", "Constant", "Cluster",
                                  "Graded", "Wilkinson", "RankOneIdentity", "Tiny", "Huge"};

struct TestMatrix {
    Wide a{0, 0};
    std::vector<long double> known;  // the eigenvalues in ascending order, when the kind fixes them
};

template <class T>
TestMatrix make_matrix(Kind kind, zint n) {
    Random random(static_cast<std::uint64_t>(n) * 131 + static_cast<std::uint64_t>(kind) * 7 +
                  (kIsComplex<T> ? 3 : 1));
    TestMatrix m;
    m.a = Wide(n, n);
    Wide& a = m.a;
    const auto random_hermitian = [&](long double scale) {
        for (zint j = 0; j < n; ++j) {
            for (zint i = 0; i < j; ++i) {
                const Exact x = value(random_element<T>(random));
                a(i, j) = {x.re * scale, x.im * scale};
                a(j, i) = conj(a(i, j));
            }
            a(j, j) = {random.uniform() * scale, 0};
        }
    };
    switch (kind) {
        case Kind::Random:
            random_hermitian(1);
            break;
        case Kind::Diagonal:
            for (zint i = 0; i < n; ++i) {
                a(i, i) = {random.uniform(), 0};
                m.known.push_back(a(i, i).re);
            }
            break;
        case Kind::Identity:
        case Kind::Zero:
        case Kind::Constant: {
            const long double c = kind == Kind::Identity ? 1 : kind == Kind::Zero ? 0 : -3.25L;
            for (zint i = 0; i < n; ++i) {
                a(i, i) = {c, 0};
                m.known.push_back(c);
            }
            break;
        }
        case Kind::Cluster: {  // eigenvalues 1 + k·1e-14 and every seventh far away
            for (zint k = 0; k < n; ++k) m.known.push_back(k % 7 == 6 ? 2 + k : 1 + k * 1e-14L);
            a = with_spectrum<T>(m.known, random);
            break;
        }
        case Kind::Graded: {  // entries from 1e-150 to 1e150
            random_hermitian(1);
            for (zint j = 0; j < n; ++j) {
                for (zint i = 0; i < n; ++i) {
                    const long double g =
                        std::pow(10.0L, -75 + 150.0L * (i + j) / (2 * std::max<zint>(n - 1, 1)));
                    a(i, j) = {a(i, j).re * g * g, a(i, j).im * g * g};
                }
            }
            break;
        }
        case Kind::Wilkinson:  // W⁺: |(n - 1)/2 - i| on the diagonal, ones beside it
            for (zint i = 0; i < n; ++i) {
                a(i, i) = {std::fabs((n - 1) / 2.0L - i), 0};
                if (i + 1 < n) a(i + 1, i) = a(i, i + 1) = {1, 0};
            }
            break;
        case Kind::RankOneIdentity: {  // I + u uᴴ: n - 1 eigenvalues 1, massive deflation
            std::vector<Exact> u(static_cast<std::size_t>(n));
            long double uu = 0;
            for (Exact& x : u) {
                x = value(random_element<T>(random));
                uu += x.re * x.re + x.im * x.im;
            }
            for (zint j = 0; j < n; ++j) {
                for (zint i = 0; i < n; ++i) a(i, j) = u[i] * conj(u[j]);
                a(j, j) = {a(j, j).re + 1, 0};
            }
            m.known.assign(static_cast<std::size_t>(n), 1);
            if (n > 0) m.known.back() = 1 + uu;
            break;
        }
        case Kind::Tiny:
            random_hermitian(1e-300L);
            break;
        case Kind::Huge:
            random_hermitian(1e300L);
            break;
    }
    std::sort(m.known.begin(), m.known.end());
    return m;
}

// The triangle `uplo` of the Hermitian a, rounded, in a padded matrix: the other triangle and the
// padding hold NaN (only the triangle may be read) and a complex diagonal carries an imaginary part
// that must be ignored.
template <class T>
Matrix<T> stored_triangle(const Wide& a, char uplo) {
    const zint n = a.rows;
    Matrix<T> s(n, n, n + 2);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < n; ++i) {
            const bool kept = i == j || (uplo == 'U') == (i < j);
            s(i, j) = kept ? narrow_to<T>(a(i, j)) : scalar<T>(kNaN, kNaN);
        }
        if constexpr (kIsComplex<T>) s(j, j).im = 0.25;
    }
    return s;
}

// ---- residuals ---------------------------------------------------------------------------------------

// The columns whose residuals are measured: all of them up to order 200, about 40 spread over the
// spectrum (its ends included) above.
std::vector<zint> measured_columns(zint n) {
    std::vector<zint> columns;
    const zint step = n <= 200 ? 1 : n / 40;
    for (zint j = 0; j < n; j += step) columns.push_back(j);
    if (n > 0 && columns.back() != n - 1) columns.push_back(n - 1);
    return columns;
}

// max over the measured columns j of ||A z_j - w_j z_j||₁ / (n ||A||₁ eps) and of
// ||Zᴴ z_j - e_j||₁ / (n eps): the suite's ||A - Z D Zᴴ|| and ||I - Zᴴ Z|| read column by column.
struct Residuals {
    double eigen = 0, orthogonality = 0;
};

template <class T>
Residuals residuals(const Wide& a, const Matrix<T>& z, const std::vector<double>& w) {
    const zint n = a.rows;
    const long double norm = std::max<long double>(one_norm(a), std::numeric_limits<double>::min());
    Residuals r;
    for (const zint j : measured_columns(n)) {
        long double eigen = 0, orthogonality = 0;
        for (zint i = 0; i < n; ++i) {
            Exact s = Exact{-w[j], 0} * z.at(i, j), g;
            for (zint k = 0; k < n; ++k) s = s + a(i, k) * z.at(k, j);
            for (zint k = 0; k < n; ++k) g = g + conj(z.at(k, i)) * z.at(k, j);
            if (i == j) g.re -= 1;
            eigen += std::hypot(s.re, s.im);
            orthogonality += std::hypot(g.re, g.im);
        }
        r.eigen = std::max(r.eigen, static_cast<double>(eigen / (n * norm * epsilon())));
        r.orthogonality = std::max(r.orthogonality, static_cast<double>(orthogonality / (n * epsilon())));
    }
    return r;
}

// ---- the driver ----------------------------------------------------------------------------------------

enum class Workspace { Minimal, Optimal };

// syevd on the stored triangle with the workspace kind asked for; returns info.
template <class T>
zint run_syevd(char jobz, char uplo, Matrix<T>& s, std::vector<double>& w, Workspace kind) {
    const zint n = s.rows;
    std::vector<T> work(1);
    std::vector<double> rwork(1);
    std::vector<zint> iwork(1);
    zint info = -99;
    syevd<T>(jobz, uplo, n, s.data(), s.ld, w.data(), work.data(), -1, rwork.data(), -1, iwork.data(), -1,
             info);
    EXPECT_EQ(info, 0);
    const bool v = jobz == 'V';
    zint lwork = queried(work), lrwork = static_cast<zint>(rwork[0]), liwork = iwork[0];
    if (kind == Workspace::Minimal) {
        const zint nn = n * n;
        if (kIsComplex<T>) {
            lwork = n <= 1 ? 1 : v ? 2 * n + nn : n + 1;
            lrwork = n <= 1 ? 1 : v ? 1 + 5 * n + 2 * nn : n;
        } else {
            lwork = n <= 1 ? 1 : v ? 1 + 6 * n + 2 * nn : 2 * n + 1;
        }
        liwork = n <= 1 || !v ? 1 : 3 + 5 * n;
    }
    work.assign(static_cast<std::size_t>(lwork), T{});
    rwork.assign(static_cast<std::size_t>(std::max<zint>(lrwork, 1)), 0.0);
    iwork.assign(static_cast<std::size_t>(liwork), 0);
    syevd<T>(jobz, uplo, n, s.data(), s.ld, w.data(), work.data(), lwork, rwork.data(), lrwork, iwork.data(),
             liwork, info);
    return info;
}

struct DriverCase {
    Kind kind;
    zint n;
};

// Both triangles, "V" then "N": the residuals of the vectors, ascending values, the values of "N"
// near those of "V", and the known spectrum where the kind fixes it.
template <class T>
void check_syevd(const DriverCase& c, Workspace kind, const std::vector<char>& triangles) {
    const TestMatrix m = make_matrix<T>(c.kind, c.n);
    const zint n = c.n;
    const long double norm = one_norm(m.a);
    for (const char uplo : triangles) {
        SCOPED_TRACE(std::string(type_name<T>()) + " uplo " + uplo);
        Matrix<T> z = stored_triangle<T>(m.a, uplo);
        std::vector<double> wv(static_cast<std::size_t>(std::max<zint>(n, 1)), kNaN);
        ASSERT_EQ(run_syevd('V', uplo, z, wv, kind), 0);
        EXPECT_TRUE(padding_untouched(z));
        EXPECT_TRUE(std::is_sorted(wv.begin(), wv.begin() + n));
        const Residuals r = residuals(m.a, z, wv);
        EXPECT_LT(r.eigen, kResidualThreshold);
        EXPECT_LT(r.orthogonality, kResidualThreshold);

        Matrix<T> s = stored_triangle<T>(m.a, uplo);
        std::vector<double> wn(wv.size(), kNaN);
        ASSERT_EQ(run_syevd('N', uplo, s, wn, kind), 0);
        EXPECT_TRUE(std::is_sorted(wn.begin(), wn.begin() + n));
        long double largest = 0, difference = 0;
        for (zint i = 0; i < n; ++i) {
            largest = std::max({largest, std::fabs(static_cast<long double>(wv[i])),
                                std::fabs(static_cast<long double>(wn[i]))});
            difference = std::max(difference, std::fabs(static_cast<long double>(wv[i]) - wn[i]));
        }
        // The suite's ratio |w_N - w_V| / (ulp max|w|) grows with the order for any implementation
        // (reference LAPACK's reaches 33 at order 1000): scaled by n like the other residuals.
        const long double ulp = 2 * epsilon();
        EXPECT_LT(difference / std::max<long double>(std::numeric_limits<double>::min(),
                                                     std::max<zint>(n, 1) * ulp * largest),
                  kResidualThreshold)
            << "the eigenvalues of \"N\" and \"V\" differ by " << static_cast<double>(difference);
        if (!m.known.empty()) {
            long double error = 0;
            for (zint i = 0; i < n; ++i) error = std::max(error, std::fabs(wv[i] - m.known[i]));
            EXPECT_LT(error / (std::max<zint>(n, 1) * std::max<long double>(norm, 1e-300L) * epsilon()),
                      kResidualThreshold);
        }
    }
}

class Syevd : public ::testing::TestWithParam<DriverCase> {};

TEST_P(Syevd, ResidualsOfBothTrianglesAndBothJobs) {
    const DriverCase& c = GetParam();
    // The largest orders only for one triangle per element type: the tree is the same.
    const bool large = c.n > 300;
    check_syevd<double>(c, Workspace::Optimal, large ? std::vector<char>{'U'} : std::vector<char>{'U', 'L'});
    check_syevd<zcomplex>(c, Workspace::Optimal,
                          large ? std::vector<char>{'L'} : std::vector<char>{'U', 'L'});
}

std::vector<DriverCase> driver_cases() {
    std::vector<DriverCase> cases;
    const Kind all[] = {Kind::Random,          Kind::Diagonal, Kind::Identity, Kind::Zero,
                        Kind::Constant,        Kind::Cluster,  Kind::Graded,   Kind::Wilkinson,
                        Kind::RankOneIdentity, Kind::Tiny,     Kind::Huge};
    for (const Kind kind : all) {
        for (const zint n : {1, 2, 3, 26, 100}) cases.push_back({kind, n});
    }
    // Orders where the reduction blocks and the divide-and-conquer tree has several levels.
    for (const Kind kind :
         {Kind::Random, Kind::Cluster, Kind::Graded, Kind::Wilkinson, Kind::RankOneIdentity})
        cases.push_back({kind, 300});
    cases.push_back({Kind::Random, 1000});
    cases.push_back({Kind::RankOneIdentity, 1000});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Kinds, Syevd, ::testing::ValuesIn(driver_cases()), [](const auto& info) {
    return std::string(kKindNames[static_cast<int>(info.param.kind)]) + "_" + std::to_string(info.param.n);
});

// The published minimal workspaces leave the reduction unblocked ("N") and the products with the
// narrowest blocks; the results hold all the same.
TEST(SyevdDriver, MinimalWorkspaces) {
    for (const zint n : {2, 40, 150}) {
        check_syevd<double>({Kind::Random, n}, Workspace::Minimal, {'U', 'L'});
        check_syevd<zcomplex>({Kind::Random, n}, Workspace::Minimal, {'U', 'L'});
    }
}

// n = 0 does nothing; n = 1 returns the (real part of the) element and, for "V", the vector 1.
TEST(SyevdDriver, OrdersZeroAndOne) {
    zint info = -1, iwork[1] = {7};
    double w[1] = {kNaN}, rwork[1];
    zcomplex a[1] = {{-2.5, 9}}, work[1];
    syevd<zcomplex>('N', 'U', 0, a, 1, w, work, 1, rwork, 1, iwork, 1, info);
    EXPECT_EQ(info, 0);
    EXPECT_TRUE(std::isnan(w[0]));
    syevd<zcomplex>('V', 'L', 1, a, 1, w, work, 1, rwork, 1, iwork, 1, info);
    EXPECT_EQ(info, 0);
    EXPECT_EQ(w[0], -2.5);
    EXPECT_TRUE(a[0].re == 1.0 && a[0].im == 0.0);
}

// A NaN in the matrix comes back as a failure or as NaN eigenvalues, without hanging; an infinite
// entry the same way (the scaling makes it NaN). Order 1500 takes the two-stage reduction.
TEST(SyevdDriver, NonFiniteInputEndsWithoutHanging) {
    for (const double bad : {kNaN, std::numeric_limits<double>::infinity()}) {
        for (const char jobz : {'N', 'V'}) {
            for (const zint n : {zint{5}, zint{60}, jobz == 'N' ? zint{1500} : zint{61}}) {
                TestMatrix m = make_matrix<double>(Kind::Random, n);
                Matrix<double> s = stored_triangle<double>(m.a, 'L');
                s(n - 1, 1) = bad;
                std::vector<double> w(static_cast<std::size_t>(n));
                const zint info = run_syevd(jobz, 'L', s, w, Workspace::Optimal);
                EXPECT_GE(info, 0);
                if (info == 0) {
                    EXPECT_TRUE(std::any_of(w.begin(), w.end(), [](double x) { return std::isnan(x); }));
                }
            }
        }
    }
}

// ---- the reduction and its Q ---------------------------------------------------------------------------

// T from d and e, in long double.
Wide tridiagonal(const std::vector<double>& d, const std::vector<double>& e) {
    const zint n = static_cast<zint>(d.size());
    Wide t(n, n);
    for (zint i = 0; i < n; ++i) {
        t(i, i) = {d[i], 0};
        if (i + 1 < n) t(i + 1, i) = t(i, i + 1) = {e[i], 0};
    }
    return t;
}

// sytrd (with the workspace given) reproduces A as Q T Qᴴ with the Q orgtr forms, that Q is unitary,
// and ormtr applies the same Q from either side, plain and adjoint.
template <class T>
void check_reduction(zint n, char uplo, zint lwork) {
    SCOPED_TRACE(std::string(type_name<T>()) + " n " + std::to_string(n) + " uplo " + uplo + " lwork " +
                 std::to_string(lwork));
    const TestMatrix m = make_matrix<T>(Kind::Random, n);
    Matrix<T> f = stored_triangle<T>(m.a, uplo);
    std::vector<double> d(static_cast<std::size_t>(std::max<zint>(n, 1))), e(d.size());
    std::vector<T> tau(d.size()), work(static_cast<std::size_t>(std::max<zint>(lwork, 1)));
    zint info = -1;
    sytrd<T>(uplo, n, f.data(), f.ld, d.data(), e.data(), tau.data(), work.data(), lwork, info);
    ASSERT_EQ(info, 0);
    EXPECT_TRUE(padding_untouched(f));
    if (n == 0) return;

    Matrix<T> q = f;
    std::vector<T> qwork(1);
    orgtr<T>(uplo, n, q.data(), q.ld, tau.data(), qwork.data(), -1, info);
    qwork.resize(static_cast<std::size_t>(queried(qwork)));
    orgtr<T>(uplo, n, q.data(), q.ld, tau.data(), qwork.data(), queried(qwork), info);
    ASSERT_EQ(info, 0);
    const Wide wq = widen_matrix(q);
    const Wide qtq = multiply(multiply(wq, tridiagonal(d, e)), op(wq, 'C'));
    EXPECT_LT(difference_norm(qtq, m.a) / (n * std::max<long double>(one_norm(m.a), 1) * epsilon()),
              kResidualThreshold);
    EXPECT_LT(column_orthogonality(wq), kResidualThreshold);

    Random random(static_cast<std::uint64_t>(n) + 5);
    const zint other = 7;
    for (const char side : {'L', 'R'}) {
        for (const char trans : {'N', kIsComplex<T> ? 'C' : 'T'}) {
            const bool left = side == 'L';
            const Matrix<T> c = random_matrix<T>(random, left ? n : other, left ? other : n);
            Matrix<T> product = c;
            std::vector<T> mwork(1);
            ormtr<T>(side, uplo, trans, c.rows, c.cols, f.data(), f.ld, tau.data(), product.data(),
                     product.ld, mwork.data(), -1, info);
            // The least workspace the product takes, and the optimal.
            for (const zint size : {other, queried(mwork)}) {
                product = c;
                std::vector<T> buffer(static_cast<std::size_t>(size));
                ormtr<T>(side, uplo, trans, c.rows, c.cols, f.data(), f.ld, tau.data(), product.data(),
                         product.ld, buffer.data(), size, info);
                ASSERT_EQ(info, 0);
                const Wide oq = op(wq, trans), wc = widen_matrix(c);
                const Wide expected = left ? multiply(oq, wc) : multiply(wc, oq);
                EXPECT_LT(scaled_distance(expected, widen_matrix(product), n), kResidualThreshold)
                    << side << trans << " lwork " << size;
                EXPECT_TRUE(padding_untouched(product));
            }
        }
    }
}

// Orders on both sides of the block size (32) and the crossover (32); lwork 1 (unblocked), room for
// a block of 3 columns, and the optimal workspace.
TEST(Sytrd, ReducesToTheTridiagonalOfItsQ) {
    for (const zint n : {0, 1, 2, 3, 31, 33, 34, 65, 97, 130}) {
        for (const char uplo : {'U', 'L'}) {
            for (const zint lwork : {zint{1}, 3 * std::max<zint>(n, 1), 64 * std::max<zint>(n, 1)}) {
                check_reduction<double>(n, uplo, lwork);
                check_reduction<zcomplex>(n, uplo, lwork);
            }
        }
    }
}

// ---- the two-stage reduction ---------------------------------------------------------------------------

// The eigenvalues of the Hermitian a by the one-stage reduction and sterf, in ascending order.
template <class T>
std::vector<double> reference_eigenvalues(const Wide& a) {
    const zint n = a.rows;
    Matrix<T> s = stored_triangle<T>(a, 'L');
    std::vector<double> w(static_cast<std::size_t>(std::max<zint>(n, 1)));
    EXPECT_EQ(run_syevd('N', 'L', s, w, Workspace::Minimal), 0);
    return w;
}

// max |w_i - v_i| / (n ||a||₁ eps).
double spectrum_distance(const std::vector<double>& w, const std::vector<double>& v, const Wide& a) {
    long double largest = 0;
    for (std::size_t i = 0; i < w.size(); ++i)
        largest = std::max(largest, std::fabs(static_cast<long double>(w[i]) - v[i]));
    const zint n = a.rows;
    return static_cast<double>(
        largest / (std::max<zint>(n, 1) * std::max<long double>(one_norm(a), 1e-300L) * epsilon()));
}

// sb2st then sterf on a band (lower band storage, ldab = 2 kd + 1).
template <class T>
std::vector<double> chase(zint n, zint kd, std::vector<T> ab) {
    std::vector<double> d(static_cast<std::size_t>(std::max<zint>(n, 1))), e(d.size());
    std::vector<T> work(static_cast<std::size_t>(3 * kd + 1));
    zint info = -1;
    sb2st<T>(n, kd, ab.data(), 2 * kd + 1, d.data(), e.data(), work.data(), info);
    EXPECT_EQ(info, 0);
    sterf(n, d.data(), e.data(), info);
    EXPECT_EQ(info, 0);
    return d;
}

// sy2sb leaves a band with the eigenvalues of A (either triangle), and sb2st a tridiagonal matrix
// with those of a band (a random one, and sy2sb's); the bands' widths on both sides of the panels.
template <class T>
void check_two_stages(zint n, zint kd) {
    SCOPED_TRACE(std::string(type_name<T>()) + " n " + std::to_string(n) + " kd " + std::to_string(kd));
    const TestMatrix m = make_matrix<T>(Kind::Random, n);
    const std::vector<double> expected = reference_eigenvalues<T>(m.a);
    const zint ldab = 2 * kd + 1;
    for (const char uplo : {'U', 'L'}) {
        Matrix<T> s = stored_triangle<T>(m.a, uplo);
        std::vector<T> ab(static_cast<std::size_t>(ldab * std::max<zint>(n, 1)), scalar<T>(kNaN, kNaN));
        std::vector<T> work(static_cast<std::size_t>(sy2sb_work_size(n, kd)));
        zint info = -1;
        sy2sb<T>(uplo, n, kd, s.data(), s.ld, ab.data(), ldab, work.data(), static_cast<zint>(work.size()),
                 info);
        ASSERT_EQ(info, 0);
        EXPECT_TRUE(padding_untouched(s));
        // The band as a dense matrix: its eigenvalues are A's.
        Wide band(n, n);
        for (zint j = 0; j < n; ++j) {
            EXPECT_EQ(value(ab[static_cast<std::size_t>(j * ldab)]).im, 0) << "diagonal " << j;
            for (zint r = 0; r <= kd && j + r < n; ++r) {
                band(j + r, j) = value(ab[static_cast<std::size_t>(r + j * ldab)]);
                band(j, j + r) = conj(band(j + r, j));
            }
        }
        EXPECT_LT(spectrum_distance(reference_eigenvalues<T>(band), expected, m.a), kResidualThreshold)
            << uplo;
        EXPECT_LT(spectrum_distance(chase<T>(n, kd, ab), expected, m.a), kResidualThreshold) << uplo;
    }
    // A random band of its own: diagonal real, the rest complex for complex data.
    Random random(static_cast<std::uint64_t>(n * 17 + kd));
    std::vector<T> ab(static_cast<std::size_t>(ldab * std::max<zint>(n, 1)));
    Wide band(n, n);
    for (zint j = 0; j < n; ++j) {
        for (zint r = 0; r <= kd && j + r < n; ++r) {
            T x = random_element<T>(random);
            if (r == 0) x = scalar<T>(value(x).re, 0);
            ab[static_cast<std::size_t>(r + j * ldab)] = x;
            band(j + r, j) = value(x);
            band(j, j + r) = conj(value(x));
        }
    }
    EXPECT_LT(spectrum_distance(chase<T>(n, kd, ab), reference_eigenvalues<T>(band), band),
              kResidualThreshold);
}

TEST(TwoStageReduction, KeepsTheEigenvalues) {
    for (const auto& [n, kd] : {std::pair<zint, zint>{1, 1},
                                {2, 1},
                                {5, 1},
                                {5, 4},
                                {6, 8},
                                {9, 2},
                                {17, 3},
                                {40, 8},
                                {41, 8},
                                {70, 16},
                                {130, 32}}) {
        check_two_stages<double>(n, kd);
        check_two_stages<zcomplex>(n, kd);
    }
}

// The eigenvalues-only driver takes the two-stage reduction from order 1500 when the workspace
// holds it (the optimal size does), the one-stage reduction with the minimal one; both give the known
// spectrum.
TEST(TwoStageReduction, TheDriverTakesItForLargeOrders) {
    const zint n = 1500;
    for (const Workspace kind : {Workspace::Optimal, Workspace::Minimal}) {
        const TestMatrix m = make_matrix<double>(Kind::Cluster, n);
        Matrix<double> s = stored_triangle<double>(m.a, 'U');
        std::vector<double> w(static_cast<std::size_t>(n));
        ASSERT_EQ(run_syevd('N', 'U', s, w, kind), 0);
        std::vector<double> known(m.known.begin(), m.known.end());
        EXPECT_LT(spectrum_distance(w, known, m.a), kResidualThreshold);
    }
    const TestMatrix z = make_matrix<zcomplex>(Kind::Cluster, n);
    Matrix<zcomplex> s = stored_triangle<zcomplex>(z.a, 'L');
    std::vector<double> w(static_cast<std::size_t>(n));
    ASSERT_EQ(run_syevd('N', 'L', s, w, Workspace::Optimal), 0);
    std::vector<double> known(z.known.begin(), z.known.end());
    EXPECT_LT(spectrum_distance(w, known, z.a), kResidualThreshold);
}

// ---- the Q of a QL factorization ------------------------------------------------------------------

// Reflectors as a QL factorization of the m by k... matrix stores them in the k columns of f from
// column `first`: vector i has its unit element in row m - k + i and the entries of f above it,
// tau(i) = (1 + e^{iθ}) / vᴴv so that each H is unitary. Returns Q = H(k) ... H(1).
template <class T>
Wide ql_reflectors(Random& random, const Matrix<T>& f, zint first, zint k, std::vector<T>& tau) {
    const zint m = f.rows;
    tau.assign(static_cast<std::size_t>(std::max<zint>(k, 1)), T{});
    Wide q = identity(m);
    for (zint i = 0; i < k; ++i) {
        const zint unit = m - k + i;
        std::vector<Exact> v(static_cast<std::size_t>(m));
        v[unit] = {1, 0};
        long double squares = 1;
        for (zint r = 0; r < unit; ++r) {
            v[r] = f.at(r, first + i);
            squares += v[r].re * v[r].re + v[r].im * v[r].im;
        }
        const double theta = kIsComplex<T> ? random.uniform() * 3 : 0.0;
        const T t = narrow_to<T>({(1 + std::cos(theta)) / squares, std::sin(theta) / squares});
        tau[static_cast<std::size_t>(i)] = t;
        apply_reflector(q, v, value(t), false);
    }
    return q;
}

struct QlShape {
    zint m, n, k;
};

// orgql forms the last n columns of Q; ormql (and orm2l through it) applies Q from either side.
template <class T>
void check_ql(QlShape s, Workspace kind) {
    SCOPED_TRACE(std::string(type_name<T>()) + " " + std::to_string(s.m) + "x" + std::to_string(s.n) + " k " +
                 std::to_string(s.k));
    Random random(static_cast<std::uint64_t>(s.m * 7 + s.n * 3 + s.k));
    const Matrix<T> f = random_matrix<T>(random, s.m, s.n);
    std::vector<T> tau;
    const Wide q = ql_reflectors(random, f, s.n - s.k, s.k, tau);
    Matrix<T> g = f;
    std::vector<T> work(1);
    zint info = -1;
    orgql<T>(s.m, s.n, s.k, g.data(), g.ld, tau.data(), work.data(), -1, info);
    ASSERT_EQ(info, 0);
    const zint lwork = kind == Workspace::Optimal ? queried(work) : std::max<zint>(1, s.n);
    work.assign(static_cast<std::size_t>(lwork), T{});
    orgql<T>(s.m, s.n, s.k, g.data(), g.ld, tau.data(), work.data(), lwork, info);
    ASSERT_EQ(info, 0);
    Wide last(s.m, s.n);
    for (zint j = 0; j < s.n; ++j) {
        for (zint i = 0; i < s.m; ++i) last(i, j) = q(i, s.m - s.n + j);
    }
    EXPECT_LT(scaled_distance(last, widen_matrix(g), s.m), kResidualThreshold) << "orgql";
    EXPECT_TRUE(padding_untouched(g));

    // ormql with Q of order m from the left and from the right (the vectors of f's last k columns).
    const zint other = 5;
    for (const char side : {'L', 'R'}) {
        for (const char trans : {'N', kIsComplex<T> ? 'C' : 'T'}) {
            const bool left = side == 'L';
            const Matrix<T> c = random_matrix<T>(random, left ? s.m : other, left ? other : s.m);
            Matrix<T> product = c, a = f;
            std::vector<T> mwork(1);
            const zint cols = s.k;
            T* vectors = a.data() + (s.n - s.k) * a.ld;
            ormql<T>(side, trans, c.rows, c.cols, cols, vectors, a.ld, tau.data(), product.data(), product.ld,
                     mwork.data(), -1, info);
            const zint size = kind == Workspace::Optimal ? queried(mwork) : other;
            mwork.assign(static_cast<std::size_t>(size), T{});
            ormql<T>(side, trans, c.rows, c.cols, cols, vectors, a.ld, tau.data(), product.data(), product.ld,
                     mwork.data(), size, info);
            ASSERT_EQ(info, 0);
            EXPECT_TRUE(same_contents(a, f)) << "A is restored";
            const Wide oq = op(q, trans), wc = widen_matrix(c);
            EXPECT_LT(scaled_distance(left ? multiply(oq, wc) : multiply(wc, oq), widen_matrix(product), s.m),
                      kResidualThreshold)
                << side << trans;
        }
    }
}

// Unblocked shapes, shapes around the products' block (32) and the generator's crossover (128).
TEST(QlQ, FormsAndAppliesTheProductOfTheReflectors) {
    for (const Workspace kind : {Workspace::Minimal, Workspace::Optimal}) {
        for (const QlShape s : {QlShape{1, 1, 1},
                                {5, 3, 3},
                                {6, 4, 2},
                                {9, 9, 0},
                                {40, 33, 33},
                                {70, 40, 35},
                                {180, 170, 150},
                                {200, 150, 131}}) {
            check_ql<double>(s, kind);
            check_ql<zcomplex>(s, kind);
        }
    }
}

// ---- the reduction's symmetric product ---------------------------------------------------------------

struct KernelPath {
    const char* name;
    CpuLevel level;
    std::uint32_t extensions;
};

const KernelPath kKernelPaths[] = {
    {"Default", CpuLevel::Default, 0},
    {"Sse3", CpuLevel::Sse3, 0},
    {"Ssse3", CpuLevel::Ssse3, 0},
    {"Sse42", CpuLevel::Sse42, 0},
    {"AvxPlain", CpuLevel::Avx, 0},
    {"AvxFma", CpuLevel::Avx, kExtensionFma},
    {"Avx512", CpuLevel::Avx, kExtensionFma | kExtensionAvx512f},
};

decltype(&default_::dlatrd_symv_with) const kSymv[] = {ZOR_VARIANTS(dlatrd_symv_with)};
decltype(&default_::zlatrd_hemv_with) const kHemv[] = {ZOR_VARIANTS(zlatrd_hemv_with)};

// y := A x from the stored triangle (the other one NaN, a complex diagonal with an imaginary part
// to ignore), each element within 2n roundings of the sum of its terms' magnitudes.
template <class T>
void check_reduction_product(const KernelPath& path, char uplo, zint n) {
    Random random(static_cast<std::uint64_t>(n) * 3 + (uplo == 'U'));
    const Wide a = make_matrix<T>(Kind::Random, n).a;
    const Matrix<T> s = stored_triangle<T>(a, uplo);
    std::vector<T> x(static_cast<std::size_t>(n + 1)),
        y(static_cast<std::size_t>(n + 1), scalar<T>(kNaN, kNaN));
    for (T& e : x) e = random_element<T>(random);
    const int level = static_cast<int>(path.level);
    if constexpr (kIsComplex<T>) {
        kHemv[level](path.extensions, uplo, n, s.data(), s.ld, x.data(), y.data());
    } else {
        kSymv[level](path.extensions, uplo, n, s.data(), s.ld, x.data(), y.data());
    }
    for (zint i = 0; i < n; ++i) {
        Exact sum;
        long double size = 0;
        for (zint j = 0; j < n; ++j) {
            sum = sum + a(i, j) * value(x[j]);
            size += magnitude(a(i, j)) * magnitude(value(x[j]));
        }
        const Exact got = value(y[i]);
        EXPECT_LE(magnitude(got - sum), 2 * n * epsilon() * size)
            << type_name<T>() << " " << uplo << " n " << n << " row " << i;
    }
    EXPECT_TRUE(std::isnan(value(y[n]).re)) << "y is written beyond its n elements";
}

class ReductionProduct : public ::testing::TestWithParam<KernelPath> {};

// Orders around the blocks of columns (1, 2, 4, 8) and the vectors of rows (1 to 8 doubles).
TEST_P(ReductionProduct, MatchesTheProductOfTheStoredTriangle) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().extensions);
    for (const char uplo : {'U', 'L'}) {
        for (const zint n : {0, 1, 2, 3, 5, 8, 9, 15, 17, 34, 71}) {
            check_reduction_product<double>(GetParam(), uplo, n);
            check_reduction_product<zcomplex>(GetParam(), uplo, n);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Paths, ReductionProduct, ::testing::ValuesIn(kKernelPaths), NameOfParam{});

decltype(&default_::dsb2st_right_with) const kChaseRight[] = {ZOR_VARIANTS(dsb2st_right_with)};
decltype(&default_::zhb2st_right_with) const kChaseRightComplex[] = {ZOR_VARIANTS(zhb2st_right_with)};
decltype(&default_::dsb2st_left_with) const kChaseLeft[] = {ZOR_VARIANTS(dsb2st_left_with)};
decltype(&default_::zhb2st_left_with) const kChaseLeftComplex[] = {ZOR_VARIANTS(zhb2st_left_with)};

// A unitary reflector of order n in long double and as stored: v(0) = 1, tau with |1 - tau vᴴv| = 1.
template <class T>
std::vector<Exact> chase_reflector(Random& random, zint n, std::vector<T>& v, T& tau) {
    v.assign(static_cast<std::size_t>(n), T{});
    std::vector<Exact> exact(static_cast<std::size_t>(n));
    long double squares = 0;
    for (zint i = 0; i < n; ++i) {
        v[i] = i == 0 ? scalar<T>(1, 0) : random_element<T>(random);
        exact[i] = value(v[i]);
        squares += magnitude(exact[i]) * magnitude(exact[i]);
    }
    const double theta = kIsComplex<T> ? random.uniform() * 3 : 0.0;
    tau = narrow_to<T>({(1 + std::cos(theta)) / squares, std::sin(theta) / squares});
    return exact;
}

// The chase steps against H = I - tau v vᴴ applied in long double: B H (right), Hᴴ B and Hᴴ D H
// (left; D Hermitian of the lower triangle, the rest of its storage NaN).
template <class T>
void check_chase_steps(const KernelPath& path, zint rows, zint cols) {
    SCOPED_TRACE(std::string(type_name<T>()) + " " + std::to_string(rows) + "x" + std::to_string(cols));
    Random random(static_cast<std::uint64_t>(rows * 100 + cols));
    const int level = static_cast<int>(path.level);
    const zint ld = std::max(rows, cols) + 3;
    std::vector<T> w(static_cast<std::size_t>(std::max(rows, cols) + 1));
    // Right: B (rows by cols) H, H of order cols.
    {
        Matrix<T> b = random_matrix<T>(random, rows, cols, ld - rows);
        std::vector<T> v;
        T tau;
        const std::vector<Exact> ve = chase_reflector(random, cols, v, tau);
        Wide expected = op(widen_matrix(b), 'C');
        apply_reflector(expected, ve, value(tau), true);  // (B H)ᴴ = Hᴴ Bᴴ
        expected = op(expected, 'C');
        if constexpr (kIsComplex<T>) {
            kChaseRightComplex[level](path.extensions, rows, cols, b.data(), b.ld, v.data(), tau, w.data());
        } else {
            kChaseRight[level](path.extensions, rows, cols, b.data(), b.ld, v.data(), tau, w.data());
        }
        EXPECT_LT(scaled_distance(expected, widen_matrix(b), std::max(rows, cols)), kResidualThreshold)
            << "right";
        EXPECT_TRUE(padding_untouched(b));
    }
    // Left: Hᴴ B and Hᴴ D H, H of order rows; B and D share their leading dimension.
    {
        const Wide a = make_matrix<T>(Kind::Random, rows).a;
        Matrix<T> d = stored_triangle<T>(a, 'L');
        Matrix<T> b = random_matrix<T>(random, rows, cols, d.ld - rows);
        std::vector<T> v;
        T tau;
        const std::vector<Exact> ve = chase_reflector(random, rows, v, tau);
        Wide expected_b = widen_matrix(b);
        apply_reflector(expected_b, ve, value(tau), true);
        Wide expected_d = a;
        apply_reflector(expected_d, ve, value(tau), true);
        expected_d = op(expected_d, 'C');
        apply_reflector(expected_d, ve, value(tau), true);  // (Hᴴ D H)ᴴ = Hᴴ (Hᴴ D)ᴴ
        if constexpr (kIsComplex<T>) {
            kChaseLeftComplex[level](path.extensions, rows, cols, b.data(), d.data(), d.ld, v.data(), tau,
                                     w.data());
        } else {
            kChaseLeft[level](path.extensions, rows, cols, b.data(), d.data(), d.ld, v.data(), tau, w.data());
        }
        EXPECT_LT(scaled_distance(expected_b, widen_matrix(b), rows), kResidualThreshold) << "left";
        Wide got(rows, rows);
        for (zint j = 0; j < rows; ++j) {
            EXPECT_EQ(value(d(j, j)).im, 0) << "diagonal " << j;
            for (zint i = j; i < rows; ++i) got(i, j) = value(d(i, j));
            for (zint i = 0; i < j; ++i) got(i, j) = conj(value(d(j, i)));
            for (zint i = 0; i < j; ++i)
                EXPECT_TRUE(std::isnan(d.at(i, j).re)) << "the upper triangle is not touched";
        }
        EXPECT_LT(scaled_distance(expected_d, got, rows), kResidualThreshold) << "both sides";
    }
}

class ChaseSteps : public ::testing::TestWithParam<KernelPath> {};

// Blocks around the vectors (1 to 8 doubles), the register chunks (8 vectors) and the lane groups.
TEST_P(ChaseSteps, MatchTheReflectorsDefinition) {
    ZOR_SKIP_UNLESS_PATH_RUNS(GetParam().level, GetParam().extensions);
    for (const auto& [rows, cols] : {std::pair<zint, zint>{1, 1},
                                     {2, 3},
                                     {5, 4},
                                     {8, 8},
                                     {9, 17},
                                     {16, 16},
                                     {31, 32},
                                     {33, 30},
                                     {64, 64},
                                     {65, 40},
                                     {70, 66}}) {
        check_chase_steps<double>(GetParam(), rows, cols);
        check_chase_steps<zcomplex>(GetParam(), rows, cols);
    }
}

INSTANTIATE_TEST_SUITE_P(Paths, ChaseSteps, ::testing::ValuesIn(kKernelPaths), NameOfParam{});

// ---- processor variants -------------------------------------------------------------------------------

class SymmetricLevels : public LevelTest {};

void solve_at_this_level() {
    check_syevd<double>({Kind::Random, 150}, Workspace::Optimal, {'U', 'L'});
    check_syevd<zcomplex>({Kind::Cluster, 120}, Workspace::Optimal, {'L'});
    std::exit(::testing::Test::HasFailure() ? 1 : 0);
}

TEST_P(SymmetricLevels, TheDriverHoldsOnEveryVariant) {
    const std::string cpu_type = std::to_string(static_cast<int>(level()));
    set_env("ZOR_DEBUG_CPU_TYPE", cpu_type.c_str());
    EXPECT_EXIT(solve_at_this_level(), ::testing::ExitedWithCode(0), "") << "level " << cpu_type;
    set_env("ZOR_DEBUG_CPU_TYPE", nullptr);
}

INSTANTIATE_TEST_SUITE_P(Levels, SymmetricLevels, kAllLevels, level_param_name);

// ---- the export's frame -----------------------------------------------------------------------------

// No memory for the 64-bit copy of iwork: message 1089 and info -1023, nothing computed; a workspace
// query copies one entry only and answers all the sizes.
void dsyevd_without_memory() {
    free_all_buffers();
    AllocatorScope allocator;
    AllocatorScope::fail_next(2);  // the thread's record, then the plain path
    double a[4] = {2, 1, 1, 2}, w[2] = {7, 7}, work[64];
    zor_int iwork[16] = {5};
    const zor_int n = 2, lwork = 64, liwork = 16;
    zor_int info = 0;
    ::dsyevd("V", "U", &n, a, &n, w, work, &lwork, iwork, &liwork, &info, 1, 1);
    if (info != -1023 || a[0] != 2.0 || w[0] != 7.0 || iwork[0] != 5) std::exit(1);
    // The next call gets its memory: a query answers all three sizes.
    const zor_int query = -1;
    zor_complex_double zwork[1];
    ::zheevd("V", "L", &n, nullptr, &n, w, zwork, &query, work, &query, iwork, &query, &info, 1, 1);
    if (info != 0 || zwork[0].real < 8 || work[0] != 1 + 5 * 2 + 2 * 4 || iwork[0] != 3 + 5 * 2) std::exit(2);
    std::exit(0);
}

TEST(SymmetricExportFrame, NoMemoryForTheIntegerWorkspaceReports1089) {
    EXPECT_EQ(child_output(fresh_directory("dsyevd-no-memory"), dsyevd_without_memory),
              "\nZOR INTERNAL ERROR: Not enough work memory in function DSYEVD\n");
}

// ---- argument checks -------------------------------------------------------------------------------

double g_a[64], g_d[8], g_e[8], g_rwork[64];
zcomplex g_z[64];
zint g_iwork[64];

const ArgumentCase kSymmetricArgumentCases[] = {
    {"DSYTD2", -1, [] { return info_of(sytd2<double>, 'X', 2, g_a, 2, g_d, g_e, g_a); }},
    {"ZHETD2", -2, [] { return info_of(sytd2<zcomplex>, 'U', -1, g_z, 1, g_d, g_e, g_z); }},
    {"DSYTD2", -4, [] { return info_of(sytd2<double>, 'L', 3, g_a, 2, g_d, g_e, g_a); }},
    {"DSYTRD", -1, [] { return info_of(sytrd<double>, 'X', 2, g_a, 2, g_d, g_e, g_a, g_a, 4); }},
    {"ZHETRD", -2, [] { return info_of(sytrd<zcomplex>, 'U', -1, g_z, 1, g_d, g_e, g_z, g_z, 4); }},
    {"DSYTRD", -4, [] { return info_of(sytrd<double>, 'u', 3, g_a, 2, g_d, g_e, g_a, g_a, 4); }},
    {"DSYTRD", -9, [] { return info_of(sytrd<double>, 'l', 3, g_a, 3, g_d, g_e, g_a, g_a, 0); }},
    {"DSYTRD", 0, [] { return info_of(sytrd<double>, 'L', 3, g_a, 3, g_d, g_e, g_a, g_a, -1); }},
    {"DORG2L", -1, [] { return info_of(org2l<double>, -1, 0, 0, g_a, 1, g_a, g_a); }},
    {"ZUNG2L", -2, [] { return info_of(org2l<zcomplex>, 2, 3, 0, g_z, 2, g_z, g_z); }},
    {"DORG2L", -3, [] { return info_of(org2l<double>, 3, 2, 3, g_a, 3, g_a, g_a); }},
    {"DORG2L", -5, [] { return info_of(org2l<double>, 3, 2, 2, g_a, 2, g_a, g_a); }},
    {"DORGQL", -1, [] { return info_of(orgql<double>, -1, 0, 0, g_a, 1, g_a, g_a, 1); }},
    {"ZUNGQL", -2, [] { return info_of(orgql<zcomplex>, 2, 3, 0, g_z, 2, g_z, g_z, 3); }},
    {"DORGQL", -3, [] { return info_of(orgql<double>, 3, 2, -1, g_a, 3, g_a, g_a, 2); }},
    {"DORGQL", -5, [] { return info_of(orgql<double>, 3, 2, 2, g_a, 2, g_a, g_a, 2); }},
    {"DORGQL", -8, [] { return info_of(orgql<double>, 3, 2, 2, g_a, 3, g_a, g_a, 1); }},
    {"DORM2L", -1, [] { return info_of(orm2l<double>, 'X', 'N', 2, 2, 1, g_a, 2, g_a, g_a, 2, g_a); }},
    {"ZUNM2L", -2, [] { return info_of(orm2l<zcomplex>, 'L', 'T', 2, 2, 1, g_z, 2, g_z, g_z, 2, g_z); }},
    {"DORM2L", -5, [] { return info_of(orm2l<double>, 'R', 'T', 2, 2, 3, g_a, 2, g_a, g_a, 2, g_a); }},
    {"DORMQL", -3, [] { return info_of(ormql<double>, 'L', 'N', -1, 2, 0, g_a, 1, g_a, g_a, 1, g_a, 4); }},
    {"ZUNMQL", -7, [] { return info_of(ormql<zcomplex>, 'L', 'C', 3, 2, 1, g_z, 2, g_z, g_z, 3, g_z, 4); }},
    {"DORMQL", -10, [] { return info_of(ormql<double>, 'R', 'N', 3, 2, 1, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"DORMQL", -12, [] { return info_of(ormql<double>, 'L', 'N', 3, 2, 1, g_a, 3, g_a, g_a, 3, g_a, 1); }},
    {"DORGTR", -1, [] { return info_of(orgtr<double>, 'X', 2, g_a, 2, g_a, g_a, 2); }},
    {"ZUNGTR", -2, [] { return info_of(orgtr<zcomplex>, 'U', -1, g_z, 1, g_z, g_z, 2); }},
    {"DORGTR", -4, [] { return info_of(orgtr<double>, 'L', 3, g_a, 2, g_a, g_a, 2); }},
    {"DORGTR", -7, [] { return info_of(orgtr<double>, 'U', 4, g_a, 4, g_a, g_a, 2); }},
    {"DORGTR", 0, [] { return info_of(orgtr<double>, 'U', 4, g_a, 4, g_a, g_a, -1); }},
    {"DORMTR", -1, [] { return info_of(ormtr<double>, 'X', 'U', 'N', 2, 2, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"DORMTR", -2, [] { return info_of(ormtr<double>, 'L', 'X', 'N', 2, 2, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"ZUNMTR", -3, [] { return info_of(ormtr<zcomplex>, 'L', 'U', 'T', 2, 2, g_z, 2, g_z, g_z, 2, g_z, 4); }},
    {"DORMTR", -4, [] { return info_of(ormtr<double>, 'L', 'U', 'N', -1, 2, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"DORMTR", -5, [] { return info_of(ormtr<double>, 'L', 'U', 'N', 2, -1, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"DORMTR", -7, [] { return info_of(ormtr<double>, 'R', 'L', 'T', 2, 3, g_a, 2, g_a, g_a, 2, g_a, 4); }},
    {"ZUNMTR", -10,
     [] { return info_of(ormtr<zcomplex>, 'L', 'L', 'C', 3, 2, g_z, 3, g_z, g_z, 2, g_z, 4); }},
    {"DORMTR", -12, [] { return info_of(ormtr<double>, 'R', 'U', 'N', 3, 2, g_a, 2, g_a, g_a, 3, g_a, 2); }},
    {"DORMTR", 0, [] { return info_of(ormtr<double>, 'R', 'U', 'N', 0, 2, g_a, 2, g_a, g_a, 1, g_a, 1); }},
    {"DSYEVD", -1,
     [] { return info_of(syevd<double>, 'X', 'U', 2, g_a, 2, g_d, g_a, 64, g_rwork, 64, g_iwork, 64); }},
    {"ZHEEVD", -2,
     [] { return info_of(syevd<zcomplex>, 'N', 'X', 2, g_z, 2, g_d, g_z, 64, g_rwork, 64, g_iwork, 64); }},
    {"DSYEVD", -3,
     [] { return info_of(syevd<double>, 'v', 'l', -1, g_a, 1, g_d, g_a, 64, g_rwork, 64, g_iwork, 64); }},
    {"DSYEVD", -5,
     [] { return info_of(syevd<double>, 'N', 'U', 3, g_a, 2, g_d, g_a, 64, g_rwork, 64, g_iwork, 64); }},
    // "N" needs 2n + 1 = 7, "V" 1 + 6n + 2n² = 37 and liwork 3 + 5n = 18 at n = 3.
    {"DSYEVD", -8,
     [] { return info_of(syevd<double>, 'N', 'U', 3, g_a, 3, g_d, g_a, 6, g_rwork, 0, g_iwork, 1); }},
    {"DSYEVD", -8,
     [] { return info_of(syevd<double>, 'V', 'U', 3, g_a, 3, g_d, g_a, 36, g_rwork, 0, g_iwork, 18); }},
    {"DSYEVD", -10,
     [] { return info_of(syevd<double>, 'V', 'L', 3, g_a, 3, g_d, g_a, 37, g_rwork, 0, g_iwork, 17); }},
    {"DSYEVD", 0,
     [] { return info_of(syevd<double>, 'V', 'L', 3, g_a, 3, g_d, g_a, -1, g_rwork, 0, g_iwork, 0); }},
    // Complex, n = 3: "V" needs lwork 15, lrwork 34, liwork 18; "N" 4, 3, 1.
    {"ZHEEVD", -8,
     [] { return info_of(syevd<zcomplex>, 'V', 'U', 3, g_z, 3, g_d, g_z, 14, g_rwork, 34, g_iwork, 18); }},
    {"ZHEEVD", -10,
     [] { return info_of(syevd<zcomplex>, 'N', 'U', 3, g_z, 3, g_d, g_z, 4, g_rwork, 2, g_iwork, 1); }},
    {"ZHEEVD", -12,
     [] { return info_of(syevd<zcomplex>, 'V', 'U', 3, g_z, 3, g_d, g_z, 15, g_rwork, 34, g_iwork, 17); }},
    {"ZHEEVD", 0,
     [] { return info_of(syevd<zcomplex>, 'V', 'U', 3, g_z, 3, g_d, g_z, 15, g_rwork, -1, g_iwork, 0); }},
    {"ZHEEVD", 0,
     [] { return info_of(syevd<zcomplex>, 'N', 'U', 1, g_z, 1, g_d, g_z, 1, g_rwork, 1, g_iwork, 1); }},
};

INSTANTIATE_TEST_SUITE_P(SymmetricArguments, ArgumentChecks, ::testing::ValuesIn(kSymmetricArgumentCases));

}  // namespace
}  // namespace zor::test
