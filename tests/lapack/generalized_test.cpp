// The generalized eigenproblem through its internal templates: the residuals of the LAPACK test
// suite (A = Q S Zᴴ, B = Q P Zᴴ, unitary Q and Z, the Schur pair's form, (β A - α B) x = 0 for
// right and left vectors with their normalisation) on the pencils that break weak
// implementations: singular B (infinite eigenvalues), singular pencils (a common null vector), B =
// I (the standard problem's eigenvalues), zero rows and columns, badly scaled and triangular
// pencils, orders 1 and 2; balancing undone exactly; eigenvalues with and without vectors equal to
// the bit; non-finite input failing at once.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "lapack/eigen_support.hpp"
#include "lapack/generalized/generalized.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/nonsymmetric/nonsymmetric.hpp"
#include "lapack/qr/qr.hpp"

namespace zor::test {
namespace {

enum class PencilKind {
    Random,
    SingularB,
    SingularPencil,
    IdentityB,
    ZeroLines,
    Graded,
    Triangular,
    Huge,
    Tiny
};
constexpr const char* kPencilNames[] = {"Random", "SingularB",  "SingularPencil", "IdentityB", "ZeroLines",
                                        "Graded", "Triangular", "Huge",           "Tiny"};

struct PencilCase {
    PencilKind kind;
    zint n;
};

std::string pencil_case_name(const ::testing::TestParamInfo<PencilCase>& info) {
    return std::string(kPencilNames[static_cast<int>(info.param.kind)]) + "_" + std::to_string(info.param.n);
}

std::vector<PencilCase> pencil_cases() {
    std::vector<PencilCase> cases;
    for (int k = 0; k <= static_cast<int>(PencilKind::Tiny); ++k)
        for (zint n : {1, 2, 3, 6, 17}) cases.push_back({static_cast<PencilKind>(k), n});
    for (PencilKind k : {PencilKind::Random, PencilKind::SingularB, PencilKind::Graded})
        for (zint n : {45, 90}) cases.push_back({k, n});
    return cases;
}

// U X V for random orthogonal (unitary) U and V made of two reflectors each, applied to A and B
// alike: the pencil's eigenvalues and its singular structure are kept, its zeros hidden.
void mix(Random& random, Wide& a, Wide& b, bool complex) {
    const zint n = a.rows;
    for (int side = 0; side < 2; ++side) {
        for (int r = 0; r < 2; ++r) {
            std::vector<Exact> v;
            Exact tau;
            if (!random_reflector(random, n, complex, v, tau)) continue;
            for (Wide* m : {&a, &b}) {
                if (side == 0) {
                    apply_reflector(*m, v, tau, false);
                } else {
                    Wide t = op(*m, 'C');
                    apply_reflector(t, v, tau, false);
                    *m = op(t, 'C');
                }
            }
        }
    }
}

template <class T>
struct Pencil {
    Matrix<T> a, b;
};

template <class T>
Pencil<T> make_pencil(PencilKind kind, zint n, std::uint64_t seed) {
    Random random(seed * 104729 + static_cast<std::uint64_t>(n) * 31 + static_cast<std::uint64_t>(kind));
    const bool complex = kIsComplex<T>;
    const auto entry = [&]() -> Exact { return {random.uniform(), complex ? random.uniform() : 0.0}; };
    Wide a(n, n), b(n, n);
    for (auto& x : a.v) x = entry();
    for (auto& x : b.v) x = entry();
    switch (kind) {
        case PencilKind::Random:
            break;
        case PencilKind::SingularB:
            // B of rank about n/2 (every other column of a triangle zero): infinite eigenvalues.
            for (zint j = 0; j < n; ++j)
                for (zint i = 0; i < n; ++i) b(i, j) = (i <= j && j % 2 == 0) ? entry() : Exact{};
            mix(random, a, b, complex);
            break;
        case PencilKind::SingularPencil:
            // A e1 = B e1 = 0 and a zero last row in both: det(A - λB) vanishes for every λ.
            for (zint i = 0; i < n; ++i) a(i, 0) = b(i, 0) = Exact{};
            for (zint j = 0; j < n; ++j) a(n - 1, j) = b(n - 1, j) = Exact{};
            mix(random, a, b, complex);
            break;
        case PencilKind::IdentityB:
            for (zint j = 0; j < n; ++j)
                for (zint i = 0; i < n; ++i) b(i, j) = i == j ? Exact{1, 0} : Exact{};
            break;
        case PencilKind::ZeroLines:
            // A zero row and column in A, another row in B: the balancing's permutations.
            for (zint k = 0; k < n; ++k) {
                a(n / 2, k) = Exact{};
                a(k, (n - 1) / 3) = Exact{};
                b(n - 1 - n / 2, k) = Exact{};
            }
            break;
        case PencilKind::Graded:
            // Row i scaled by 10^(100 x_i), column j by 10^(-100 x_j), x from -1 to 1, in A and B
            // alike: entries from about 1e-200 to 1e200.
            for (zint j = 0; j < n; ++j)
                for (zint i = 0; i < n; ++i) {
                    const long double d = n > 1 ? 200.0L * static_cast<long double>(i - j) / (n - 1) : 0;
                    const Exact f{std::pow(10.0L, d), 0};
                    a(i, j) = a(i, j) * f;
                    b(i, j) = b(i, j) * f;
                }
            break;
        case PencilKind::Triangular:
            for (zint j = 0; j < n; ++j)
                for (zint i = j + 1; i < n; ++i) a(i, j) = b(i, j) = Exact{};
            break;
        case PencilKind::Huge:
        case PencilKind::Tiny:
            // A near overflow and B near underflow, or the other way round: both drivers scale.
            for (zint j = 0; j < n; ++j)
                for (zint i = 0; i < n; ++i) {
                    a(i, j) = a(i, j) * Exact{kind == PencilKind::Huge ? 1e300L : 1e-300L, 0};
                    b(i, j) = b(i, j) * Exact{kind == PencilKind::Huge ? 1e-300L : 1e300L, 0};
                }
            break;
    }
    return {from_wide<T>(a, 2), from_wide<T>(b, 3)};
}

// Eigenvalues of either type: alpha as complex values, beta as complex values.
template <class T>
struct PencilValues {
    std::vector<double> re, im;
    std::vector<zcomplex> w;
    std::vector<T> beta;
    explicit PencilValues(zint n)
        : re(static_cast<std::size_t>(std::max<zint>(n, 1))), im(re.size()), w(re.size()), beta(re.size()) {}
    Eigenvalues<T> view() {
        if constexpr (kIsComplex<T>) {
            return {w.data()};
        } else {
            return {re.data(), im.data()};
        }
    }
    Exact alpha(zint i) const {
        const auto k = static_cast<std::size_t>(i);
        return kIsComplex<T> ? Exact{w[k].re, w[k].im} : Exact{re[k], im[k]};
    }
    Exact b(zint i) const { return value(beta[static_cast<std::size_t>(i)]); }
    bool same_bits_as(const PencilValues& o) const {
        return same_bits(re, o.re) && same_bits(im, o.im) && same_bits(w, o.w) && same_bits(beta, o.beta);
    }
};

// Column j of V as a complex vector: for real data a pair (alphai ≠ 0) is V(:, j) ± i V(:, j + 1).
template <class T>
std::vector<Exact> vector_of(const Matrix<T>& v, const PencilValues<T>& w, zint j) {
    std::vector<Exact> x(static_cast<std::size_t>(v.rows));
    const long double im = w.alpha(j).im;
    for (zint i = 0; i < v.rows; ++i) {
        if (kIsComplex<T> || im == 0) {
            x[static_cast<std::size_t>(i)] = v.at(i, j);
        } else if (im > 0) {
            x[static_cast<std::size_t>(i)] = {v.at(i, j).re, v.at(i, j + 1).re};
        } else {
            x[static_cast<std::size_t>(i)] = {v.at(i, j - 1).re, -v.at(i, j).re};
        }
    }
    return x;
}

// max_j ||β_j A x_j - α_j B x_j||₁ / ((|β| ||A|| + |α| ||B||) ||x||₁ n eps), (α, β) scaled to
// max(|α|, |β|) = 1; the left form with xᴴ (β A - α B). Also the normalisation: the largest
// |re| + |im| of each vector is 1.
template <class T>
double vector_residual(const Matrix<T>& a, const Matrix<T>& b, const Matrix<T>& v, const PencilValues<T>& w,
                       bool left, double& normalisation) {
    const zint n = a.rows;
    const Wide wa = widen_matrix(a), wb = widen_matrix(b);
    const long double anorm = std::max<long double>(one_norm(wa), 1e-300L);
    const long double bnorm = std::max<long double>(one_norm(wb), 1e-300L);
    double worst = 0;
    normalisation = 0;
    for (zint j = 0; j < n; ++j) {
        Exact alpha = w.alpha(j), beta = w.b(j);
        const long double size = std::max(magnitude(alpha), magnitude(beta));
        if (size == 0) continue;
        alpha = alpha * Exact{1 / size, 0};
        beta = beta * Exact{1 / size, 0};
        const std::vector<Exact> x = vector_of(v, w, j);
        long double xnorm = 0, largest = 0;
        for (const Exact& e : x) {
            xnorm += magnitude(e);
            largest = std::max(largest, std::fabs(e.re) + std::fabs(e.im));
        }
        normalisation = std::max(normalisation, static_cast<double>(std::fabs(largest - 1)));
        long double r = 0;
        for (zint i = 0; i < n; ++i) {
            Exact s;
            for (zint k = 0; k < n; ++k) {
                const Exact ea = left ? conj(wa(k, i)) : wa(i, k), eb = left ? conj(wb(k, i)) : wb(i, k);
                const Exact c = (left ? conj(beta) : beta) * ea - (left ? conj(alpha) : alpha) * eb;
                s = s + c * x[static_cast<std::size_t>(k)];
            }
            r += magnitude(s);
        }
        const long double denominator = (magnitude(beta) * anorm + magnitude(alpha) * bnorm) *
                                        std::max<long double>(xnorm, 1e-300L) * n * epsilon();
        worst = std::max(worst, static_cast<double>(r / denominator));
    }
    return worst;
}

// ||A - Q S Zᴴ||₁ / (n max(||A||₁, safe min) eps)
template <class T>
double pair_residual(const Matrix<T>& a, const Matrix<T>& s, const Matrix<T>& q, const Matrix<T>& z) {
    const Wide product = multiply(multiply(widen_matrix(q), widen_matrix(s)), op(widen_matrix(z), 'C'));
    const long double norm = std::max<long double>(one_norm(a), 1e-300L);
    return static_cast<double>(difference_norm(widen_matrix(a), product) /
                               (std::max<zint>(a.rows, 1) * norm * epsilon()));
}

template <class T>
zint ggev_lwork(zint n, char jobvl) {
    std::vector<T> work(1);
    zint info = 0;
    PencilValues<T> w(n);
    ggev<T>(jobvl, 'V', n, nullptr, std::max<zint>(n, 1), nullptr, std::max<zint>(n, 1), w.view(),
            w.beta.data(), nullptr, std::max<zint>(n, 1), nullptr, std::max<zint>(n, 1), work.data(), -1,
            nullptr, info);
    EXPECT_EQ(info, 0);
    return static_cast<zint>(real(work[0]));
}

template <class T>
zint run_ggev(char jobvl, char jobvr, const Pencil<T>& p, PencilValues<T>& w, Matrix<T>& vl, Matrix<T>& vr,
              zint lwork) {
    const zint n = p.a.rows;
    Matrix<T> a = p.a, b = p.b;
    std::vector<T> work(static_cast<std::size_t>(std::max<zint>(lwork, 1)));
    std::vector<double> rwork(static_cast<std::size_t>(8 * std::max<zint>(n, 1)));
    zint info = -99;
    ggev<T>(jobvl, jobvr, n, a.data(), a.ld, b.data(), b.ld, w.view(), w.beta.data(), vl.data(), vl.ld,
            vr.data(), vr.ld, work.data(), lwork, rwork.data(), info);
    return info;
}

class Pencils : public ::testing::TestWithParam<PencilCase> {};

template <class T>
void check_ggev(PencilKind kind, zint n) {
    const Pencil<T> p = make_pencil<T>(kind, n, 1);
    PencilValues<T> w(n), values_only(n);
    Matrix<T> vl(n, n, n + 1), vr(n, n, n + 2), none(1, 1, 1);
    const zint optimal = ggev_lwork<T>(n, 'V');
    ASSERT_EQ(run_ggev('V', 'V', p, w, vl, vr, optimal), 0);
    double normalisation = 0;
    EXPECT_LT(vector_residual(p.a, p.b, vr, w, false, normalisation), kResidualThreshold) << "right vectors";
    EXPECT_LT(normalisation, 1e-14);
    EXPECT_LT(vector_residual(p.a, p.b, vl, w, true, normalisation), kResidualThreshold) << "left vectors";
    EXPECT_LT(normalisation, 1e-14);
    // Eigenvalues alone, with the optimal workspace of that call: the same bits. With the least
    // workspace the QR steps run unblocked, which changes rounding but not the accuracy.
    ASSERT_EQ(run_ggev('N', 'N', p, values_only, none, none, ggev_lwork<T>(n, 'N')), 0);
    EXPECT_TRUE(w.same_bits_as(values_only));
    const zint least = kIsComplex<T> ? std::max<zint>(1, 2 * n) : std::max<zint>(1, 8 * n);
    PencilValues<T> w_least(n);
    Matrix<T> vr_least(n, n, n);
    ASSERT_EQ(run_ggev('N', 'V', p, w_least, none, vr_least, least), 0);
    EXPECT_LT(vector_residual(p.a, p.b, vr_least, w_least, false, normalisation), kResidualThreshold);
    // Real data: a complex pair has its positive imaginary part first and conjugate quotients.
    if constexpr (!kIsComplex<T>) {
        for (zint j = 0; j < n; ++j) {
            const auto k = static_cast<std::size_t>(j);
            if (w.im[k] > 0) {
                ASSERT_LT(j + 1, n);
                EXPECT_LT(w.im[k + 1], 0.0);
                // α_k β_{k+1} = conj(α_{k+1}) β_k, without dividing by a beta that may be zero.
                const long double b0 = w.beta[k], b1 = w.beta[k + 1];
                const long double size =
                    (std::hypot(w.re[k], w.im[k]) * b1 + std::hypot(w.re[k + 1], w.im[k + 1]) * b0);
                EXPECT_LE(std::fabs(w.re[k] * b1 - w.re[k + 1] * b0), 1e-12L * size);
                EXPECT_LE(std::fabs(w.im[k] * b1 + w.im[k + 1] * b0), 1e-12L * size);
                ++j;
            } else {
                EXPECT_EQ(w.im[k], 0.0) << j;
            }
        }
    }
    for (zint j = 0; j < n; ++j) EXPECT_GE(real(w.beta[static_cast<std::size_t>(j)]), 0.0);
    if (kind == PencilKind::SingularB) {
        // At least the rank deficiency of B in infinite eigenvalues.
        zint infinite = 0;
        for (zint j = 0; j < n; ++j)
            infinite += std::fabs(real(w.beta[static_cast<std::size_t>(j)])) <= 1e-13;
        EXPECT_GE(infinite, n / 2);
    }
    if (kind == PencilKind::IdentityB) {
        // The eigenvalues of the standard problem.
        Matrix<T> a = p.a, none2(1, 1, 1);
        std::vector<double> re(static_cast<std::size_t>(n)), im(re.size()),
            rw(static_cast<std::size_t>(2 * n));
        std::vector<zcomplex> zw(re.size());
        std::vector<T> work(static_cast<std::size_t>(8 * n + 64));
        zint info = 0;
        Eigenvalues<T> ev;
        if constexpr (kIsComplex<T>) {
            ev = {zw.data()};
        } else {
            ev = {re.data(), im.data()};
        }
        geev<T>('N', 'N', n, a.data(), a.ld, ev, none2.data(), 1, none2.data(), 1, work.data(),
                static_cast<zint>(work.size()), rw.data(), info);
        ASSERT_EQ(info, 0);
        const long double scale = std::max<long double>(one_norm(p.a), 1);
        for (zint j = 0; j < n; ++j) {
            const Exact lambda{ev.get(j).re, ev.get(j).im};
            long double nearest = std::numeric_limits<long double>::infinity();
            for (zint k = 0; k < n; ++k) {
                const Exact alpha = w.alpha(k), beta = w.b(k);
                nearest =
                    std::min(nearest, magnitude(alpha - lambda * beta) / std::max(magnitude(beta), 1e-300L));
            }
            EXPECT_LT(nearest, 1e3 * n * epsilon() * scale) << j;
        }
    }
}

TEST_P(Pencils, GgevReal) {
    check_ggev<double>(GetParam().kind, GetParam().n);
}
TEST_P(Pencils, GgevComplex) {
    check_ggev<zcomplex>(GetParam().kind, GetParam().n);
}

// The steps of ggev by hand: B = Q R, A := Qᴴ A, gghrd and hgeqz with Q and Z accumulated; then
// A = Q S Zᴴ, B = Q P Zᴴ, Q and Z unitary, the form of (S, P) and (α, β) read from it, and the
// eigenvalues of hgeqz without the Schur form the same bits.
template <class T>
void check_schur_pair(PencilKind kind, zint n) {
    // hgeqz's tolerances are absolute near underflow: only the drivers, which scale, take those.
    if (kind == PencilKind::Huge || kind == PencilKind::Tiny) return;
    const Pencil<T> p = make_pencil<T>(kind, n, 2);
    Matrix<T> s = p.a, t = p.b, q(n, n, n + 1), z(n, n, n + 2);
    std::vector<T> tau(static_cast<std::size_t>(std::max<zint>(n, 1)));
    std::vector<T> work(static_cast<std::size_t>(64 * std::max<zint>(n, 1)));
    const zint lwork = static_cast<zint>(work.size());
    zint info = 0;
    geqrf(n, n, t.data(), t.ld, tau.data(), work.data(), lwork, info);
    ormqr('L', kAdjoint<T>, n, n, n, t.data(), t.ld, tau.data(), s.data(), s.ld, work.data(), lwork, info);
    for (zint j = 0; j < n; ++j)
        for (zint i = 0; i < n; ++i) q(i, j) = i > j ? t(i, j) : T{};
    orgqr(n, n, n, q.data(), q.ld, tau.data(), work.data(), lwork, info);
    ASSERT_EQ(info, 0);
    gghrd<T>('V', 'I', n, 1, n, s.data(), s.ld, t.data(), t.ld, q.data(), q.ld, z.data(), z.ld, info);
    ASSERT_EQ(info, 0);
    Matrix<T> h0 = s, t0 = t;
    for (zint j = 0; j < n; ++j)
        for (zint i = j + 2; i < n; ++i) ASSERT_TRUE(is_zero(s(i, j))) << "H is Hessenberg";
    PencilValues<T> w(n), w2(n);
    std::vector<double> rwork(static_cast<std::size_t>(std::max<zint>(n, 1)));
    hgeqz<T>('S', 'V', 'V', n, 1, n, s.data(), s.ld, t.data(), t.ld, w.view(), w.beta.data(), q.data(), q.ld,
             z.data(), z.ld, work.data(), lwork, rwork.data(), info);
    ASSERT_EQ(info, 0);
    hgeqz<T>('E', 'N', 'N', n, 1, n, h0.data(), h0.ld, t0.data(), t0.ld, w2.view(), w2.beta.data(), nullptr,
             1, nullptr, 1, work.data(), lwork, rwork.data(), info);
    ASSERT_EQ(info, 0);
    EXPECT_TRUE(w.same_bits_as(w2));
    EXPECT_LT(pair_residual(p.a, s, q, z), kResidualThreshold);
    EXPECT_LT(pair_residual(p.b, t, q, z), kResidualThreshold);
    EXPECT_LT(unitary_residual(q), kResidualThreshold);
    EXPECT_LT(unitary_residual(z), kResidualThreshold);
    for (zint j = 0; j < n; ++j) {
        EXPECT_GE(real(t(j, j)), 0.0);
        EXPECT_EQ(imag(t(j, j)), 0.0);
        for (zint i = j + 1; i < n; ++i) {
            EXPECT_TRUE(is_zero(t(i, j))) << "P(" << i << ", " << j << ")";
            const bool block = !kIsComplex<T> && i == j + 1;
            if (!block) {
                EXPECT_TRUE(is_zero(s(i, j))) << "S(" << i << ", " << j << ")";
            }
        }
    }
    for (zint j = 0; j < n; ++j) {
        const bool in_block =
            !kIsComplex<T> && ((j + 1 < n && !is_zero(s(j + 1, j))) || (j > 0 && !is_zero(s(j, j - 1))));
        if (in_block) {
            // A 2 by 2 block: P diagonal beside it, a complex pair in (α, β).
            const zint k = (j + 1 < n && !is_zero(s(j + 1, j))) ? j : j - 1;
            EXPECT_TRUE(is_zero(t(k, k + 1)));
            EXPECT_NE(w.alpha(j).im, 0.0L);
        } else {
            EXPECT_EQ(w.alpha(j).re, value(s(j, j)).re);
            EXPECT_EQ(w.alpha(j).im, value(s(j, j)).im);
            EXPECT_EQ(w.b(j).re, value(t(j, j)).re);
        }
    }
}

TEST_P(Pencils, SchurPairReal) {
    check_schur_pair<double>(GetParam().kind, GetParam().n);
}
TEST_P(Pencils, SchurPairComplex) {
    check_schur_pair<zcomplex>(GetParam().kind, GetParam().n);
}

// The caller's choice for gges: eigenvalues inside the unit circle (finite ones only).
std::int32_t inside_real(const double* ar, const double* ai, const double* b) {
    return std::hypot(*ar, *ai) < std::fabs(*b);
}
std::int32_t inside_complex(const zor_complex_double* a, const zor_complex_double* b) {
    return std::hypot(a->real, a->imag) < std::hypot(b->real, b->imag);
}

// gges with sorting: A = Q S Zᴴ, B = Q P Zᴴ, unitary Q and Z, the chosen eigenvalues leading (sdim
// of them), the eigenvalues without the vectors or sorting those of the same pair.
template <class T>
void check_gges(PencilKind kind, zint n) {
    const Pencil<T> p = make_pencil<T>(kind, n, 7);
    Matrix<T> s = p.a, t = p.b, q(n, n, n + 1), z(n, n, n + 2);
    PencilValues<T> w(n);
    std::vector<T> work(static_cast<std::size_t>(std::max<zint>(1, 8 * n + 16) + 64 * n));
    std::vector<double> rwork(static_cast<std::size_t>(8 * std::max<zint>(n, 1)));
    std::vector<zint> bwork(static_cast<std::size_t>(std::max<zint>(n, 1)));
    zint sdim = -1, info = -99;
    PairSelect<T> select;
    if constexpr (kIsComplex<T>) {
        select = inside_complex;
    } else {
        select = inside_real;
    }
    gges<T>('V', 'V', 'S', select, n, s.data(), s.ld, t.data(), t.ld, sdim, w.view(), w.beta.data(), q.data(),
            q.ld, z.data(), z.ld, work.data(), static_cast<zint>(work.size()), rwork.data(), bwork.data(),
            info);
    ASSERT_TRUE(info == 0 || info == n + 2) << info;
    EXPECT_LT(pair_residual(p.a, s, q, z), kResidualThreshold);
    EXPECT_LT(pair_residual(p.b, t, q, z), kResidualThreshold);
    EXPECT_LT(unitary_residual(q), kResidualThreshold);
    EXPECT_LT(unitary_residual(z), kResidualThreshold);
    zint chosen = 0;
    for (zint j = 0; j < n; ++j) {
        const bool inside = std::hypot(w.alpha(j).re, w.alpha(j).im) < std::hypot(w.b(j).re, w.b(j).im);
        chosen += inside;
        if (info == 0) {
            EXPECT_EQ(inside, j < sdim) << j;
        }
    }
    if (info == 0) {
        EXPECT_EQ(chosen, sdim);
    }
    for (zint j = 0; j < n; ++j)
        for (zint i = j + 1; i < n; ++i) {
            EXPECT_TRUE(is_zero(t(i, j)));
            if (kIsComplex<T> || i > j + 1) {
                EXPECT_TRUE(is_zero(s(i, j)));
            }
        }
}

TEST_P(Pencils, GgesReal) {
    check_gges<double>(GetParam().kind, GetParam().n);
}
TEST_P(Pencils, GgesComplex) {
    check_gges<zcomplex>(GetParam().kind, GetParam().n);
}

INSTANTIATE_TEST_SUITE_P(Kinds, Pencils, ::testing::ValuesIn(pencil_cases()), pencil_case_name);

// ggbal's pencil is exactly Lᵀ A R (and Lᵀ B R) for the L and R ggbak makes of the identity, and
// it is triangular outside rows and columns ilo .. ihi; for every job.
template <class T>
void check_balancing(char job, PencilKind kind, zint n) {
    const Pencil<T> p = make_pencil<T>(kind, n, 3);
    Matrix<T> a = p.a, b = p.b;
    std::vector<double> lscale(static_cast<std::size_t>(n)), rscale(lscale.size()), work(6 * lscale.size());
    zint ilo = 0, ihi = 0, info = 0;
    ggbal<T>(job, n, a.data(), a.ld, b.data(), b.ld, ilo, ihi, lscale.data(), rscale.data(), work.data(),
             info);
    ASSERT_EQ(info, 0);
    Matrix<T> l(n, n, n), r(n, n, n);
    for (zint j = 0; j < n; ++j)
        for (zint i = 0; i < n; ++i) l(i, j) = r(i, j) = i == j ? one<T>() : T{};
    ggbak<T>(job, 'L', n, ilo, ihi, lscale.data(), rscale.data(), n, l.data(), l.ld, info);
    ggbak<T>(job, 'R', n, ilo, ihi, lscale.data(), rscale.data(), n, r.data(), r.ld, info);
    ASSERT_EQ(info, 0);
    const Wide lt = op(widen_matrix(l), 'T'), wr = widen_matrix(r);
    for (const auto& [original, balanced] : {std::pair{&p.a, &a}, std::pair{&p.b, &b}}) {
        const Wide product = multiply(multiply(lt, widen_matrix(*original)), wr);
        const Wide got = widen_matrix(*balanced);
        for (zint j = 0; j < n; ++j)
            for (zint i = 0; i < n; ++i) {
                EXPECT_EQ(static_cast<double>(product(i, j).re), static_cast<double>(got(i, j).re));
                EXPECT_EQ(static_cast<double>(product(i, j).im), static_cast<double>(got(i, j).im));
                if (i > j && (j < ilo - 1 || i > ihi - 1)) {
                    EXPECT_TRUE(is_zero((*balanced)(i, j)));
                }
            }
    }
}

TEST(Balancing, PencilIsExactlyTheTransformedOne) {
    for (char job : {'N', 'P', 'S', 'B'}) {
        for (PencilKind kind : {PencilKind::ZeroLines, PencilKind::Triangular, PencilKind::Graded}) {
            check_balancing<double>(job, kind, 9);
            check_balancing<zcomplex>(job, kind, 7);
        }
    }
}

TEST(Balancing, ScalingEvensOutAGradedPencil) {
    const Pencil<double> p = make_pencil<double>(PencilKind::Graded, 12, 4);
    Matrix<double> a = p.a, b = p.b;
    std::vector<double> lscale(12), rscale(12), work(72);
    zint ilo = 0, ihi = 0, info = 0;
    ggbal<double>('S', 12, a.data(), a.ld, b.data(), b.ld, ilo, ihi, lscale.data(), rscale.data(),
                  work.data(), info);
    ASSERT_EQ(info, 0);
    auto spread = [](const Matrix<double>& m) {
        double lo = 1e308, hi = 0;
        for (zint j = 0; j < m.cols; ++j)
            for (zint i = 0; i < m.rows; ++i)
                if (m(i, j) != 0) {
                    lo = std::min(lo, std::fabs(m(i, j)));
                    hi = std::max(hi, std::fabs(m(i, j)));
                }
        return std::log10(hi / lo);
    };
    EXPECT_LT(spread(a) + spread(b), 0.25 * (spread(p.a) + spread(p.b)));
}

// A NaN or infinite entry: ggev and hgeqz report failure at once.
template <class T>
void check_not_finite(double bad) {
    const zint n = 30;
    Pencil<T> p = make_pencil<T>(PencilKind::Random, n, 5);
    p.b(7, 3) = from_real<T>(bad);
    const auto start = std::chrono::steady_clock::now();
    PencilValues<T> w(n);
    Matrix<T> vl(n, n, n), vr(n, n, n);
    EXPECT_EQ(run_ggev('V', 'V', p, w, vl, vr, ggev_lwork<T>(n, 'V')), n);
    Matrix<T> h = p.a, t = p.a;
    for (zint j = 0; j < n; ++j)
        for (zint i = 0; i < n; ++i) {
            if (i > j + 1) h(i, j) = T{};
            if (i > j) t(i, j) = T{};
        }
    h(5, 4) = from_real<T>(bad);
    std::vector<T> work(static_cast<std::size_t>(n));
    std::vector<double> rwork(static_cast<std::size_t>(n));
    zint info = 0;
    hgeqz<T>('S', 'I', 'I', n, 1, n, h.data(), h.ld, t.data(), t.ld, w.view(), w.beta.data(), vl.data(),
             vl.ld, vr.data(), vr.ld, work.data(), n, rwork.data(), info);
    EXPECT_EQ(info, n);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST(Generalized, NonFiniteEntriesFailAtOnce) {
    for (double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        check_not_finite<double>(bad);
        check_not_finite<zcomplex>(bad);
    }
}

// tgevc with a selection: the chosen vectors are the columns of the full set they stand for.
template <class T>
void check_selected_vectors() {
    const zint n = 12;
    const Pencil<T> p = make_pencil<T>(PencilKind::Random, n, 6);
    Matrix<T> s = p.a, t = p.b;
    for (zint j = 0; j < n; ++j)
        for (zint i = j + 1; i < n; ++i) t(i, j) = T{};
    for (zint j = 0; j < n; ++j)
        for (zint i = j + 2; i < n; ++i) s(i, j) = T{};
    PencilValues<T> w(n);
    std::vector<T> work(static_cast<std::size_t>(6 * n));
    std::vector<double> rwork(static_cast<std::size_t>(2 * n));
    zint info = 0, m = 0;
    hgeqz<T>('S', 'N', 'N', n, 1, n, s.data(), s.ld, t.data(), t.ld, w.view(), w.beta.data(), nullptr, 1,
             nullptr, 1, work.data(), n, rwork.data(), info);
    ASSERT_EQ(info, 0);
    Matrix<T> all(n, n, n), some(n, n, n);
    tgevc<T>('R', 'A', nullptr, n, s.data(), s.ld, t.data(), t.ld, nullptr, 1, all.data(), all.ld, n, m,
             work.data(), rwork.data(), info);
    ASSERT_EQ(info, 0);
    std::vector<zint> select(static_cast<std::size_t>(n));
    for (zint j = 0; j < n; ++j) select[static_cast<std::size_t>(j)] = j % 3 == 1;
    const zint needed = tgevc_columns(static_cast<char>('S'), select.data(), n, s.data(), s.ld);
    tgevc<T>('R', 'S', select.data(), n, s.data(), s.ld, t.data(), t.ld, nullptr, 1, some.data(), some.ld,
             needed, m, work.data(), rwork.data(), info);
    ASSERT_EQ(info, 0);
    ASSERT_EQ(m, needed);
    zint col = 0;
    for (zint j = 0; j < n; ++j) {
        const bool pair = !kIsComplex<T> && j + 1 < n && !is_zero(s(j + 1, j));
        const bool chosen =
            select[static_cast<std::size_t>(j)] || (pair && select[static_cast<std::size_t>(j + 1)]);
        const zint width = pair ? 2 : 1;
        if (chosen) {
            for (zint k = 0; k < width; ++k)
                for (zint i = 0; i < n; ++i) EXPECT_EQ(some(i, col + k), all(i, j + k)) << i << " " << j;
            col += width;
        }
        j += width - 1;
    }
}

TEST(Tgevc, SelectedVectorsAreThoseOfTheFullSet) {
    check_selected_vectors<double>();
    check_selected_vectors<zcomplex>();
}

}  // namespace
}  // namespace zor::test
