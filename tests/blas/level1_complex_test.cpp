// The complex vector kernels at every level: the Default dot products bit for bit against a model
// of their order, the other orders to within rounding, the element-wise kernels exactly against
// plain loops, and the documented quirks.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "blas/dispatch.hpp"
#include "support/variants.hpp"
#include "support/vectors.hpp"

namespace zor {
namespace {

using test::Random;
using test::same_bits;
using test::TestVector;
using Vector = TestVector<zcomplex>;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Layout {
    zint n, incx, incy;
    int x_offset, y_offset;
};

// Lengths across the steps of 8, 4, 2 and 1; every pair of increments; x and y on and off
// 16-byte boundaries.
void for_each_layout(const std::function<void(const Layout&)>& check) {
    const zint incs[] = {1, -1, 2, -3, 0};
    for (zint n = 0; n <= 40; ++n) {
        for (const zint incx : incs) {
            for (const zint incy : incs) {
                for (int xo = 0; xo < 2; ++xo) {
                    for (int yo = 0; yo < 2; ++yo) check({n, incx, incy, xo, yo});
                }
            }
        }
    }
}

std::string describe(const Layout& l) {
    return "n=" + std::to_string(l.n) + " incx=" + std::to_string(l.incx) +
           " incy=" + std::to_string(l.incy) + " x+" + std::to_string(l.x_offset) + " y+" +
           std::to_string(l.y_offset);
}

// The Default order: aligned unit strides spread even elements to the first pair of sums and odd
// ones to the second (steps of 8, 4, 2, then a last element into the first); anything else one
// element at a time into the first. A sums (xr*yr, xi*yi), B sums (xr*yi, xi*yr).
zcomplex zdot_default_model(bool conjugate, zint n, const zcomplex* x, zint incx, const zcomplex* y,
                            zint incy) {
    if (n < 1) return {0.0, 0.0};
    double a[2][2] = {}, b[2][2] = {};
    auto add = [&](int s, const zcomplex& u, const zcomplex& v) {
        a[s][0] += u.re * v.re;
        a[s][1] += u.im * v.im;
        b[s][0] += u.re * v.im;
        b[s][1] += u.im * v.re;
    };
    const bool unit = (incx == 1 && incy == 1) || (incx == -1 && incy == -1);
    const bool aligned =
        reinterpret_cast<std::uintptr_t>(x) % 16 == 0 && reinterpret_cast<std::uintptr_t>(y) % 16 == 0;
    if (unit && aligned) {
        zint i = 0;
        for (; n - i >= 8; i += 8) {
            for (int e = 0; e < 8; ++e) add(e % 2, x[i + e], y[i + e]);
        }
        for (int step : {4, 2}) {
            if (n - i >= step) {
                for (int e = 0; e < step; ++e) add(e % 2, x[i + e], y[i + e]);
                i += step;
            }
        }
        if (i < n) add(0, x[i], y[i]);
    } else {
        const zcomplex* xs = incx < 0 ? x + (1 - n) * incx : x;
        const zcomplex* ys = incy < 0 ? y + (1 - n) * incy : y;
        for (zint i = 0; i < n; ++i) add(0, xs[i * incx], ys[i * incy]);
    }
    const double a0 = a[0][0] + a[1][0], a1 = a[0][1] + a[1][1];
    const double b0 = b[0][0] + b[1][0], b1 = b[0][1] + b[1][1];
    return conjugate ? zcomplex{a0 + a1, b0 - b1} : zcomplex{a0 - a1, b0 + b1};
}

class ComplexVectorKernels : public test::LevelTest {};

TEST_P(ComplexVectorKernels, DotProductsFollowTheDefaultOrderOrAgreeToWithinRounding) {
    Random random(21);
    for_each_layout([&](const Layout& l) {
        Vector x(random, l.n, l.incx, l.x_offset), y(random, l.n, l.incy, l.y_offset);
        for (const bool conjugate : {false, true}) {
            zcomplex got{kNaN, kNaN};
            (conjugate ? zdotc : zdotu).variant(level())(&got, l.n, x.data(), l.incx, y.data(), l.incy);
            if (level() == CpuLevel::Default) {
                ASSERT_TRUE(
                    same_bits(got, zdot_default_model(conjugate, l.n, x.data(), l.incx, y.data(), l.incy)))
                    << (conjugate ? "zdotc " : "zdotu ") << describe(l);
                continue;
            }
            long double re = 0, im = 0, bound = 0;
            const double sign = conjugate ? -1.0 : 1.0;
            for (zint i = 0; i < l.n; ++i) {
                const zcomplex u = x[i], v = y[i];
                re += static_cast<long double>(u.re) * v.re - sign * static_cast<long double>(u.im) * v.im;
                im += static_cast<long double>(u.re) * v.im + sign * static_cast<long double>(u.im) * v.re;
                bound += std::fabs(u.re * v.re) + std::fabs(u.im * v.im) + std::fabs(u.re * v.im) +
                         std::fabs(u.im * v.re);
            }
            const double tolerance = static_cast<double>(bound) * (l.n + 2) * 0x1p-53;
            ASSERT_NEAR(got.re, static_cast<double>(re), tolerance) << describe(l);
            ASSERT_NEAR(got.im, static_cast<double>(im), tolerance) << describe(l);
        }
    });
    // n = 0 writes (0, 0).
    zcomplex result{kNaN, kNaN};
    zdotc.variant(level())(&result, 0, nullptr, 1, nullptr, 1);
    EXPECT_TRUE(result.re == 0.0 && result.im == 0.0);
}

// The complex product of every element-wise kernel: re = (xr*ar) + (xi*(-ai)), im = (xi*ar) + (xr*ai).
zcomplex times(const zcomplex& alpha, const zcomplex& x) {
    return {x.re * alpha.re + x.im * -alpha.im, x.im * alpha.re + x.re * alpha.im};
}

TEST_P(ComplexVectorKernels, ElementWiseKernelsMatchPlainLoopsExactly) {
    const CpuLevel lv = level();
    Random random(22);
    const zcomplex alpha{0.8125, -0.375};
    const double c = 0.6, s = -0.8;
    for_each_layout([&](const Layout& l) {
        const zint n = l.n;
        Vector x(random, n, l.incx, l.x_offset), y(random, n, l.incy, l.y_offset);
        auto check = [&](const char* name, const std::function<void(Vector&, Vector&)>& kernel,
                         const std::function<void(Vector&, Vector&)>& loop) {
            Vector xk(x), yk(y), xm(x), ym(y);
            kernel(xk, yk);
            loop(xm, ym);
            ASSERT_TRUE(xk.same_contents(xm) && yk.same_contents(ym)) << name << " " << describe(l);
        };
        check(
            "zaxpy",
            [&](Vector& a, Vector& b) { zaxpy.variant(lv)(n, alpha, a.data(), l.incx, b.data(), l.incy); },
            [&](Vector& a, Vector& b) {
                for (zint i = 0; i < n; ++i) {
                    const zcomplex t = times(alpha, a[i]);
                    b[i] = {b[i].re + t.re, b[i].im + t.im};
                }
            });
        check(
            "zscal", [&](Vector& a, Vector&) { zscal.variant(lv)(n, alpha, a.data(), l.incx); },
            [&](Vector& a, Vector&) {
                for (zint i = 0; i < n; ++i) a[i] = times(alpha, a[i]);
            });
        check(
            "zcopy", [&](Vector& a, Vector& b) { zcopy.variant(lv)(n, a.data(), l.incx, b.data(), l.incy); },
            [&](Vector& a, Vector& b) {
                for (zint i = 0; i < n; ++i) b[i] = a[i];
            });
        check(
            "zswap", [&](Vector& a, Vector& b) { zswap.variant(lv)(n, a.data(), l.incx, b.data(), l.incy); },
            [&](Vector& a, Vector& b) {
                for (zint i = 0; i < n; ++i) std::swap(a[i], b[i]);
            });
        check(
            "zdrot",
            [&](Vector& a, Vector& b) { zdrot.variant(lv)(n, a.data(), l.incx, b.data(), l.incy, c, s); },
            [&](Vector& a, Vector& b) {
                for (zint i = 0; i < n; ++i) {
                    const zcomplex w = a[i], z = b[i];
                    a[i] = {c * w.re + s * z.re, c * w.im + s * z.im};
                    b[i] = {c * z.re - s * w.re, c * z.im - s * w.im};
                }
            });
    });
    // Overlapping vectors are copied element by element.
    zcomplex v[20];
    for (int i = 0; i < 20; ++i) v[i] = {double(i), -double(i)};
    zcopy.variant(lv)(19, v, 1, v + 1, 1);
    for (int i = 0; i < 20; ++i) EXPECT_TRUE(v[i].re == 0.0 && v[i].im == 0.0) << i;
}

TEST_P(ComplexVectorKernels, AsumAndNorm) {
    Random random(23);
    for (zint n = 0; n <= 40; ++n) {
        for (const zint inc : {1, -1, 2, -3}) {
            for (int offset = 0; offset < 2; ++offset) {
                Vector x(random, n, inc, offset);
                long double sum = 0, squares = 0;
                for (zint i = 0; i < n; ++i) {
                    sum += std::fabs(x[i].re) + std::fabs(x[i].im);
                    squares += static_cast<long double>(x[i].re) * x[i].re +
                               static_cast<long double>(x[i].im) * x[i].im;
                }
                const double asum = dzasum.variant(level())(n, x.data(), inc);
                ASSERT_NEAR(asum, static_cast<double>(sum), static_cast<double>(sum) * 2 * n * 0x1p-53);
                const double norm = dznrm2.variant(level())(n, x.data(), inc);
                ASSERT_TRUE(same_bits(norm, dznrm2.variant(CpuLevel::Default)(n, x.data(), inc)));
                ASSERT_NEAR(norm, std::sqrt(static_cast<double>(squares)), 4 * n * 0x1p-53);
            }
        }
    }
    auto* nrm2 = dznrm2.variant(level());
    const zcomplex both_infinite{kInf, kInf}, half_nan{1.0, kNaN}, three_four{3.0, 4.0};
    EXPECT_TRUE(std::isnan(nrm2(1, &both_infinite, 1)));
    EXPECT_TRUE(std::isnan(nrm2(1, &half_nan, 1)));
    EXPECT_EQ(nrm2(1, &three_four, 1), 5.0);
    const zcomplex inf_one[2] = {{kInf, 0.0}, {1.0, -2.0}};
    EXPECT_EQ(nrm2(2, inf_one, 1), kInf);
}

TEST_P(ComplexVectorKernels, AmaxAndAminMeasureAbsoluteRealPlusImaginary) {
    auto* amax = izamax.variant(level());
    auto* amin = izamin.variant(level());
    struct Case {
        std::vector<zcomplex> x;
        zint max_index, min_index;
    } cases[] = {
        {{{3, 0}, {1, -2}}, 1, 1},
        {{{1, 1}, {0, 3}, {-2, -1}}, 2, 1},
        {{{1, 0}, {kNaN, 0}}, 2, 2},
        {{{0, kNaN}, {5, 5}, {1, 0}}, 2, 3},
        {{{2, 2}, {-4, 0.5}, {0.5, -4}}, 2, 1},
    };
    for (const Case& c : cases) {
        const zint n = static_cast<zint>(c.x.size());
        EXPECT_EQ(amax(n, c.x.data(), 1), c.max_index) << n;
        EXPECT_EQ(amin(n, c.x.data(), 1), c.min_index) << n;
        EXPECT_EQ(amax(n, c.x.data(), 0), 0);
        EXPECT_EQ(amin(n, c.x.data(), -1), 0);
    }
    // Longer vectors with ties (equal measures from different parts), infinities and NaN.
    Random random(25);
    for (zint n = 0; n <= 80; ++n) {
        for (int trial = 0; trial < 12; ++trial) {
            const zint inc = trial % 4 == 3 ? 2 : 1;
            Vector v(random, n, inc);
            if (n > 2) {
                const zint a = static_cast<zint>(random.next() % n), b = static_cast<zint>(random.next() % n);
                const zcomplex special[] = {{1.5, 1.0}, {2.0, -0.5}, {kInf, 0.0},
                                            {0.0, 0.0}, {0.0, kNaN}, {kNaN, 1.0}};
                v[a] = special[trial % 6];
                v[b] = {v[a].im, -v[a].re};
            }
            zint want_max = n > 0, want_min = n > 0;
            auto m = [&](zint i) { return std::fabs(v[i].re) + std::fabs(v[i].im); };
            double best_max = n > 0 ? m(0) : 0, best_min = best_max;
            for (zint i = 1; i < n; ++i) {
                if (!(best_max >= m(i))) best_max = m(i), want_max = i + 1;
                if (!(m(i) >= best_min)) best_min = m(i), want_min = i + 1;
            }
            ASSERT_EQ(amax(n, v.data(), inc), want_max) << n << " " << trial;
            ASSERT_EQ(amin(n, v.data(), inc), want_min) << n << " " << trial;
        }
    }
}

TEST_P(ComplexVectorKernels, ZeroAlphaQuirksOfZaxpyAndZscal) {
    const zcomplex x[3] = {{kNaN, 1.0}, {kInf, -kInf}, {1.0, 2.0}};
    zcomplex y[3] = {{1, 2}, {3, 4}, {5, 6}};
    zaxpy.variant(level())(3, zcomplex{0.0, -0.0}, x, 1, y, 1);
    EXPECT_TRUE(y[0].re == 1 && y[0].im == 2 && y[1].re == 3 && y[1].im == 4 && y[2].re == 5 && y[2].im == 6);
    zcomplex v[3] = {{kInf, 0.0}, {1.0, kNaN}, {2.0, -3.0}};
    zscal.variant(level())(3, zcomplex{0.0, 0.0}, v, 1);
    EXPECT_TRUE(std::isnan(v[0].re) && std::isnan(v[1].re) && std::isnan(v[1].im));
    EXPECT_TRUE(v[2].re == 0.0 && v[2].im == 0.0);
}

TEST_P(ComplexVectorKernels, ZrotgBuildsTheRotationThatZerosCb) {
    auto* rotg = zrotg.variant(level());
    zcomplex ca{0.0, 0.0}, s{9, 9};
    double c = 9;
    rotg(ca, zcomplex{2.0, -3.0}, c, s);
    EXPECT_TRUE(c == 0.0 && s.re == 1.0 && s.im == 0.0 && ca.re == 2.0 && ca.im == -3.0);
    Random random(24);
    for (int trial = 0; trial < 100; ++trial) {
        const zcomplex a = random.complex(), b = trial == 0 ? zcomplex{0, 0} : random.complex();
        ca = a;
        rotg(ca, b, c, s);
        // [c s; -conj(s) c] (a, b)' = (r, 0)', r = ca on return, and c^2 + |s|^2 = 1.
        const double r_re = c * a.re + (s.re * b.re - s.im * b.im),
                     r_im = c * a.im + (s.re * b.im + s.im * b.re);
        const double z_re = -(s.re * a.re + s.im * a.im) + c * b.re,
                     z_im = -(s.re * a.im - s.im * a.re) + c * b.im;
        EXPECT_NEAR(r_re, ca.re, 1e-15 * 4);
        EXPECT_NEAR(r_im, ca.im, 1e-15 * 4);
        EXPECT_NEAR(z_re, 0.0, 1e-15 * 4);
        EXPECT_NEAR(z_im, 0.0, 1e-15 * 4);
        EXPECT_NEAR(c * c + s.re * s.re + s.im * s.im, 1.0, 1e-15 * 4);
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, ComplexVectorKernels, test::kAllLevels, test::level_param_name);

}  // namespace
}  // namespace zor
