// The vector kernels at every level: the fixed accumulation orders bit for bit against scalar
// models of those orders, the open orders to within rounding, the element-wise kernels exactly
// against plain loops, and the documented quirks.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "blas/dispatch.hpp"
#include "support/variants.hpp"
#include "support/vectors.hpp"

namespace zor::test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Lengths across the unroll and peel boundaries (steps of 32, 16, 8, 4, 2 and 1), and around the
// long-vector switch of the real dot product at 2048.
std::vector<zint> lengths(bool long_vectors) {
    std::vector<zint> n;
    for (zint i = 0; i <= 40; ++i) n.push_back(i);
    if (long_vectors) n.insert(n.end(), {63, 64, 65, 2047, 2048, 2049});
    return n;
}

struct Layout {
    zint n, incx, incy;
    int x_offset, y_offset;  // elements past a 64-byte boundary
};

// Every length with every pair of increments; x and y at `offsets` offsets each, and at
// `unit_offsets` when both run at the same unit stride.
void for_each_layout(const std::vector<zint>& ns, int offsets, int unit_offsets,
                     const std::function<void(const Layout&)>& check) {
    const zint incs[] = {1, -1, 2, -3, 0};
    for (const zint n : ns) {
        for (const zint incx : incs) {
            for (const zint incy : incs) {
                const int count = (incx == incy && (incx == 1 || incx == -1)) ? unit_offsets : offsets;
                for (int xo = 0; xo < count; ++xo) {
                    for (int yo = 0; yo < count; ++yo) check({n, incx, incy, xo, yo});
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

// --- Scalar models of the fixed orders, written from their descriptions. -------------------------

bool unit(zint incx, zint incy) {
    return (incx == 1 && incy == 1) || (incx == -1 && incy == -1);
}
std::uintptr_t address(const void* p) {
    return reinterpret_cast<std::uintptr_t>(p);
}
template <class T>
const T* first(const T* v, zint n, zint inc) {
    return inc < 0 ? v + (1 - n) * inc : v;
}

// Two-lane accumulators as pairs of doubles.
struct Lanes {
    double lane[2] = {0.0, 0.0};
};

double sum_lanes(const Lanes (&a)[4]) {
    double t[2];
    for (int l = 0; l < 2; ++l) t[l] = ((a[0].lane[l] + a[1].lane[l]) + a[2].lane[l]) + a[3].lane[l];
    return t[0] + t[1];
}

double ddot_default_model(zint n, const double* x, zint incx, const double* y, zint incy) {
    if (n < 1) return 0.0;
    Lanes a[4];
    auto p = [&](zint i) { return x[i] * y[i]; };
    zint i = 0;
    if (unit(incx, incy)) {
        if (address(x) % 16 == address(y) % 16) {
            for (; i < n && address(x + i) % 16 != 0; ++i) a[0].lane[0] += p(i);
            for (; n - i >= 16; i += 16) {
                for (int k = 0; k < 4; ++k) {
                    for (int l = 0; l < 2; ++l)
                        a[k].lane[l] = (a[k].lane[l] + p(i + 2 * k + l)) + p(i + 2 * k + 8 + l);
                }
            }
            if (n - i >= 8) {
                for (int k = 0; k < 4; ++k) {
                    for (int l = 0; l < 2; ++l) a[k].lane[l] += p(i + 2 * k + l);
                }
                i += 8;
            }
        } else {
            for (; i < n && address(y + i) % 16 != 0; ++i) a[0].lane[0] += p(i);
            for (; n - i >= 8; i += 8) {
                for (int k = 0; k < 4; ++k) {
                    for (int l = 0; l < 2; ++l) a[k].lane[l] += p(i + 2 * k + l);
                }
            }
        }
        for (; n - i >= 2; i += 2) {
            for (int l = 0; l < 2; ++l) a[0].lane[l] += p(i + l);
        }
        if (i < n) a[0].lane[0] += p(i);
    } else {
        const double* xs = first(x, n, incx);
        const double* ys = first(y, n, incy);
        for (; n - i >= 2; i += 2) {
            for (int l = 0; l < 2; ++l) a[0].lane[l] += xs[(i + l) * incx] * ys[(i + l) * incy];
        }
        if (i < n) a[0].lane[0] += xs[i * incx] * ys[i * incy];
    }
    return sum_lanes(a);
}

// The Avx order: products peeled until y is on a 32-byte boundary, then either (n >= 2048, unit
// strides) four two-lane accumulators over 32 elements with accumulator k taking pairs k, k+4,
// k+8, k+12, or four four-lane accumulators over 16 elements; then the rest as the code's
// comment says: pairs or quads into the first accumulator, the total (added to the peeled sum
// when there is one), the last elements singly.
double ddot_avx_model(zint n, const double* x, zint incx, const double* y, zint incy) {
    if (n < 1) return 0.0;
    double sum = 0.0;
    zint i = 0, peel = 0;
    const double* xs = x;
    const double* ys = y;
    zint ix = 1, iy = 1;
    if (unit(incx, incy)) {
        peel = std::min<zint>(n, (4 - static_cast<zint>(address(y) % 32 / 8)) % 4);
        for (; i < peel; ++i) sum += x[i] * y[i];
    } else {
        xs = first(x, n, incx);
        ys = first(y, n, incy);
        ix = incx;
        iy = incy;
    }
    auto p = [&](zint k) { return xs[k * ix] * ys[k * iy]; };
    if (unit(incx, incy) && n >= 2048) {
        Lanes a[4];
        for (; n - i >= 32; i += 32) {
            for (int k = 0; k < 16; ++k) {
                for (int l = 0; l < 2; ++l) a[k % 4].lane[l] += p(i + 2 * k + l);
            }
        }
        for (; n - i >= 2; i += 2) {
            for (int l = 0; l < 2; ++l) a[0].lane[l] += p(i + l);
        }
        sum = peel > 0 ? sum + sum_lanes(a) : sum_lanes(a);
    } else {
        double a[4][4] = {};
        for (; n - i >= 16; i += 16) {
            for (int k = 0; k < 4; ++k) {
                for (int l = 0; l < 4; ++l) a[k][l] += p(i + 4 * k + l);
            }
        }
        for (; n - i >= 4; i += 4) {
            for (int l = 0; l < 4; ++l) a[0][l] += p(i + l);
        }
        double t[4];
        for (int l = 0; l < 4; ++l) t[l] = (a[0][l] + a[1][l]) + (a[2][l] + a[3][l]);
        const double body = (t[0] + t[2]) + (t[1] + t[3]);
        sum = peel > 0 ? sum + body : body;
    }
    for (; i < n; ++i) sum += p(i);
    return sum;
}

double dasum_default_model(zint n, const double* x, zint incx) {
    if (n < 1) return 0.0;
    Lanes a[4];
    zint i = 0;
    if ((incx == 1 || incx == -1) && address(x) % 8 == 0) {
        auto q = [&](zint k, int l) { return std::fabs(x[k + l]); };
        if (address(x) % 16 != 0) a[0].lane[0] += q(i++, 0);
        for (; n - i >= 16; i += 16) {
            for (int l = 0; l < 2; ++l) {
                for (int k = 0; k < 4; ++k) a[0].lane[l] += q(i + 4 * k, l);
                for (int k = 0; k < 4; ++k) a[1].lane[l] += q(i + 4 * k + 2, l);
            }
        }
        for (int block : {8, 4, 2}) {
            if (n - i >= block) {
                for (int k = 0; k < block / 2; ++k) {
                    for (int l = 0; l < 2; ++l) a[k].lane[l] += q(i + 2 * k, l);
                }
                i += block;
            }
        }
        if (i < n) a[0].lane[0] += q(i, 0);
    } else {
        const double* xs = first(x, n, incx);
        for (; n - i >= 2; i += 2) {
            for (int l = 0; l < 2; ++l) a[0].lane[l] += std::fabs(xs[(i + l) * incx]);
        }
        if (i < n) a[0].lane[0] += std::fabs(xs[i * incx]);
    }
    return sum_lanes(a);
}

// The complex Default order: aligned unit strides spread even elements to the first pair of sums
// and odd ones to the second (steps of 8, 4, 2, then a last element into the first); anything else
// one element at a time into the first. A sums (xr*yr, xi*yi), B sums (xr*yi, xi*yr).
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
    if (unit(incx, incy) && address(x) % 16 == 0 && address(y) % 16 == 0) {
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
        const zcomplex* xs = first(x, n, incx);
        const zcomplex* ys = first(y, n, incy);
        for (zint i = 0; i < n; ++i) add(0, xs[i * incx], ys[i * incy]);
    }
    const double a0 = a[0][0] + a[1][0], a1 = a[0][1] + a[1][1];
    const double b0 = b[0][0] + b[1][0], b1 = b[0][1] + b[1][1];
    return conjugate ? zcomplex{a0 + a1, b0 - b1} : zcomplex{a0 - a1, b0 + b1};
}

class VectorKernels : public LevelTest {};

TEST_P(VectorKernels, DdotFollowsTheOrderOfItsLevelBitForBit) {
    auto* kernel = ddot.variant(level());
    auto* model = level() == CpuLevel::Avx ? &ddot_avx_model : &ddot_default_model;
    Random random(11);
    for_each_layout(lengths(true), 2, 4, [&](const Layout& l) {
        TestVector<double> x(random, l.n, l.incx, l.x_offset), y(random, l.n, l.incy, l.y_offset);
        ASSERT_TRUE(same_bits(kernel(l.n, x.data(), l.incx, y.data(), l.incy),
                              model(l.n, x.data(), l.incx, y.data(), l.incy)))
            << describe(l);
    });
}

TEST_P(VectorKernels, ZdotFollowsTheDefaultOrderOrAgreesToWithinRounding) {
    Random random(21);
    for_each_layout(lengths(false), 2, 2, [&](const Layout& l) {
        TestVector<zcomplex> x(random, l.n, l.incx, l.x_offset), y(random, l.n, l.incy, l.y_offset);
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
}

// dasum in the Default order (Avx: to within rounding), dzasum to within rounding; the norms run
// the same scalar sequence at every level, its scaling keeping huge elements finite.
TEST_P(VectorKernels, SumsAndNormsOfMagnitudes) {
    Random random(12);
    for (const zint n : lengths(true)) {
        for (const zint inc : {1, -1, 2, -3, 0}) {
            for (int offset = 0; offset < 2; ++offset) {
                const std::string what = "n=" + std::to_string(n) + " inc=" + std::to_string(inc);
                TestVector<double> x(random, n, inc, offset);
                TestVector<zcomplex> z(random, n, inc, offset);
                for (zint i = 0; inc != 0 && i < n; i += 3)
                    x[i] *= 1e200;  // the scaling must keep these finite
                long double sum = 0, squares = 0, zsum = 0, zsquares = 0;
                for (zint i = 0; i < n; ++i) {
                    sum += std::fabs(x[i]);
                    squares += static_cast<long double>(x[i] / 1e200) * (x[i] / 1e200);
                    zsum += std::fabs(z[i].re) + std::fabs(z[i].im);
                    zsquares += static_cast<long double>(z[i].re) * z[i].re +
                                static_cast<long double>(z[i].im) * z[i].im;
                }
                const double asum = dasum.variant(level())(n, x.data(), inc);
                if (level() != CpuLevel::Avx) {
                    ASSERT_TRUE(same_bits(asum, dasum_default_model(n, x.data(), inc))) << what;
                }
                ASSERT_NEAR(asum, static_cast<double>(sum), 2.0 * n * 0x1p-53 * static_cast<double>(sum))
                    << what;
                const double zasum = dzasum.variant(level())(n, z.data(), inc);
                ASSERT_NEAR(zasum, static_cast<double>(zsum), static_cast<double>(zsum) * 2 * n * 0x1p-53);

                const double norm = dnrm2.variant(level())(n, x.data(), inc);
                ASSERT_TRUE(same_bits(norm, dnrm2.variant(CpuLevel::Default)(n, x.data(), inc))) << what;
                const double expected = static_cast<double>(std::sqrt(squares)) * 1e200;
                ASSERT_NEAR(norm, expected, 1e-14 * expected * (1 + n / 64)) << what;
                // A negative increment reads the same elements as its magnitude, from x(1) on.
                if (inc > 0) {
                    ASSERT_TRUE(same_bits(dnrm2.variant(level())(n, x.data(), -inc), norm)) << what;
                }
                const double znorm = dznrm2.variant(level())(n, z.data(), inc);
                ASSERT_TRUE(same_bits(znorm, dznrm2.variant(CpuLevel::Default)(n, z.data(), inc)));
                ASSERT_NEAR(znorm, std::sqrt(static_cast<double>(zsquares)), 4 * n * 0x1p-53) << what;
            }
        }
    }
}

TEST_P(VectorKernels, NormsPropagateInfinityAndNaN) {
    auto* nrm2 = dnrm2.variant(level());
    struct Case {
        std::vector<double> x;
        double expected;
    } cases[] = {{{1.0, kInf}, kInf}, {{kInf, kInf}, kNaN}, {{-kInf, 2.0, kInf}, kNaN},
                 {{1.0, kNaN}, kNaN}, {{0.0, 0.0}, 0.0},    {{3.0, 0.0, -4.0}, 5.0}};
    for (const Case& c : cases) {
        const zint n = static_cast<zint>(c.x.size());
        EXPECT_TRUE(same_bits(nrm2(n, c.x.data(), 1), c.expected)) << c.x[0] << " n=" << n;
    }
    // n = 1 reads neither the increment nor more than x(1); increment 0 reads x(1) n times.
    const double one[1] = {-2.5}, three = 3.0;
    EXPECT_EQ(nrm2(1, one, 0), 2.5);
    EXPECT_DOUBLE_EQ(nrm2(4, &three, 0), 6.0);
    auto* znrm2 = dznrm2.variant(level());
    const zcomplex both_infinite{kInf, kInf}, half_nan{1.0, kNaN}, inf_one[2] = {{kInf, 0.0}, {1.0, -2.0}};
    EXPECT_TRUE(std::isnan(znrm2(1, &both_infinite, 1)));
    EXPECT_TRUE(std::isnan(znrm2(1, &half_nan, 1)));
    EXPECT_EQ(znrm2(2, inf_one, 1), kInf);
}

// --- Element-wise kernels ------------------------------------------------------------------------

void rotate(double c, double s, double& x, double& y) {
    const double w = x, z = y;
    x = c * w + s * z;
    y = c * z - s * w;
}
void rotate(double c, double s, zcomplex& x, zcomplex& y) {
    rotate(c, s, x.re, y.re);
    rotate(c, s, x.im, y.im);
}

// The element-wise kernels of one element type against plain loops over the logical elements,
// exactly; with increment 0 the loops visit the one element repeatedly, as the kernels do.
template <class T, class Axpy, class Scal, class Copy, class Swap, class Rot>
void check_element_wise(CpuLevel lv, T alpha, Axpy& axpy, Scal& scal, Copy& copy, Swap& swap, Rot& rot) {
    using Vector = TestVector<T>;
    Random random(13);
    const double c = 0.6, s = -0.8;
    const double params[][5] = {{-1.0, 0.5, -0.25, 0.75, 1.5},
                                {0.0, 9.0, -0.25, 0.75, 9.0},
                                {1.0, 0.5, 9.0, 9.0, 1.5},
                                {-2.0, 9.0, 9.0, 9.0, 9.0}};
    for_each_layout(lengths(true), 2, 4, [&](const Layout& l) {
        const zint n = l.n;
        Vector x(random, n, l.incx, l.x_offset), y(random, n, l.incy, l.y_offset);
        auto check = [&](const char* name, const std::function<void(Vector&, Vector&)>& kernel,
                         const std::function<void(zint, Vector&, Vector&)>& element) {
            Vector xk(x), yk(y), xm(x), ym(y);
            kernel(xk, yk);
            for (zint i = 0; i < n; ++i) element(i, xm, ym);
            ASSERT_TRUE(xk.same_contents(xm) && yk.same_contents(ym)) << name << " " << describe(l);
        };
        check(
            "axpy",
            [&](Vector& a, Vector& b) { axpy.variant(lv)(n, alpha, a.data(), l.incx, b.data(), l.incy); },
            [&](zint i, Vector& a, Vector& b) { b[i] = plus(b[i], times(alpha, a[i])); });
        check(
            "scal", [&](Vector& a, Vector&) { scal.variant(lv)(n, alpha, a.data(), l.incx); },
            [&](zint i, Vector& a, Vector&) { a[i] = times(alpha, a[i]); });
        check(
            "copy", [&](Vector& a, Vector& b) { copy.variant(lv)(n, a.data(), l.incx, b.data(), l.incy); },
            [&](zint i, Vector& a, Vector& b) { b[i] = a[i]; });
        check(
            "swap", [&](Vector& a, Vector& b) { swap.variant(lv)(n, a.data(), l.incx, b.data(), l.incy); },
            [&](zint i, Vector& a, Vector& b) { std::swap(a[i], b[i]); });
        check(
            "rot",
            [&](Vector& a, Vector& b) { rot.variant(lv)(n, a.data(), l.incx, b.data(), l.incy, c, s); },
            [&](zint i, Vector& a, Vector& b) { rotate(c, s, a[i], b[i]); });
        if constexpr (std::is_same_v<T, double>) {
            for (const auto& p : params) {
                // The published forms: flag -1 the full H, 0 unit diagonal, 1 unit off-diagonal
                // (h12 = 1, h21 = -1), -2 the identity.
                const double flag = p[0];
                const double h11 = flag == 0.0 ? 1.0 : p[1], h22 = flag == 0.0 ? 1.0 : p[4];
                const double h21 = flag == 1.0 ? -1.0 : p[2], h12 = flag == 1.0 ? 1.0 : p[3];
                check(
                    "drotm",
                    [&](Vector& a, Vector& b) {
                        drotm.variant(lv)(n, a.data(), l.incx, b.data(), l.incy, p);
                    },
                    [&](zint i, Vector& a, Vector& b) {
                        if (flag == -2.0) return;
                        const double w = a[i], z = b[i];
                        a[i] = flag == 0.0 ? w + z * h12 : flag == 1.0 ? w * h11 + z : w * h11 + z * h12;
                        b[i] = flag == 0.0 ? w * h21 + z : flag == 1.0 ? -w + h22 * z : w * h21 + z * h22;
                    });
            }
        }
    });
    // Overlapping vectors are copied element by element.
    for (zint n : {5, 16, 37}) {
        std::vector<T> v(n + 1);
        for (T& e : v) e = random_value(random, T{});
        const T head = v[0];
        copy.variant(lv)(n, v.data(), 1, v.data() + 1, 1);
        for (const T& e : v) ASSERT_TRUE(same_bits(e, head)) << n;
    }
}

TEST_P(VectorKernels, ElementWiseKernelsMatchPlainLoopsExactly) {
    check_element_wise<double>(level(), 0.8125, daxpy, dscal, dcopy, dswap, drot);
    check_element_wise<zcomplex>(level(), zcomplex{0.8125, -0.375}, zaxpy, zscal, zcopy, zswap, zdrot);
}

TEST_P(VectorKernels, ZeroAlphaQuirksOfAxpyAndScal) {
    // axpy with a zero alpha returns at once: NaN and infinity in x do not reach y.
    const double x[4] = {kNaN, kInf, -kInf, 1.0};
    for (const double alpha : {0.0, -0.0}) {
        double y[4] = {1.0, 2.0, 3.0, 4.0};
        daxpy.variant(level())(4, alpha, x, 1, y, 1);
        EXPECT_TRUE(y[0] == 1.0 && y[1] == 2.0 && y[2] == 3.0 && y[3] == 4.0);
    }
    const zcomplex zx[2] = {{kNaN, 1.0}, {kInf, -kInf}};
    zcomplex zy[2] = {{1, 2}, {3, 4}};
    zaxpy.variant(level())(2, zcomplex{0.0, -0.0}, zx, 1, zy, 1);
    EXPECT_TRUE(zy[0].re == 1 && zy[0].im == 2 && zy[1].re == 3 && zy[1].im == 4);
    // scal multiplies, even by zero: NaN and infinity give NaN, signs are kept.
    double v[5] = {kInf, -kInf, kNaN, 1.0, -2.0};
    dscal.variant(level())(5, 0.0, v, 1);
    EXPECT_TRUE(std::isnan(v[0]) && std::isnan(v[1]) && std::isnan(v[2]));
    EXPECT_TRUE(v[3] == 0.0 && !std::signbit(v[3]) && v[4] == 0.0 && std::signbit(v[4]));
    zcomplex zv[2] = {{kInf, 0.0}, {2.0, -3.0}};
    zscal.variant(level())(2, zcomplex{0.0, 0.0}, zv, 1);
    EXPECT_TRUE(std::isnan(zv[0].re) && zv[1].re == 0.0 && zv[1].im == 0.0);
    // Increment 0: x(1) is multiplied n times.
    double w[2] = {3.0, 5.0};
    dscal.variant(level())(4, 2.0, w, 0);
    EXPECT_TRUE(w[0] == 48.0 && w[1] == 5.0);
}

// --- Index of the largest and smallest magnitude --------------------------------------------------

double measure(double x) {
    return std::fabs(x);
}
double measure(const zcomplex& x) {
    return std::fabs(x.re) + std::fabs(x.im);
}

// Against the scan rule itself (a NaN never wins, the first of equals does), over vectors with
// ties, infinities and NaN placed anywhere; `mirror` makes an element of the same measure.
template <class T, class Amax, class Amin, class Mirror>
void check_scan(Amax* amax, Amin* amin, const T (&special)[6], Mirror mirror, std::uint64_t seed) {
    Random random(seed);
    for (const zint n : lengths(true)) {
        for (int trial = 0; trial < 12; ++trial) {
            const zint inc = trial % 4 == 3 ? 3 : 1;
            TestVector<T> v(random, n, inc);
            if (n > 2) {
                const zint a = static_cast<zint>(random.next() % n), b = static_cast<zint>(random.next() % n);
                v[a] = special[trial % 6];
                v[b] = mirror(v[a], trial);
            }
            zint want_max = n > 0, want_min = n > 0;
            double best_max = n > 0 ? measure(v[0]) : 0, best_min = best_max;
            for (zint i = 1; i < n; ++i) {
                const double m = measure(v[i]);
                if (!(best_max >= m)) best_max = m, want_max = i + 1;
                if (!(m >= best_min)) best_min = m, want_min = i + 1;
            }
            ASSERT_EQ(amax(n, v.data(), inc), want_max) << n << " " << trial;
            ASSERT_EQ(amin(n, v.data(), inc), want_min) << n << " " << trial;
        }
    }
}

TEST_P(VectorKernels, AmaxAndAminKeepTheFirstOfTiesAndLetNaNIn) {
    auto* amax = idamax.variant(level());
    auto* amin = idamin.variant(level());
    struct Case {
        std::vector<double> x;
        zint max_index, min_index;
    } cases[] = {{{1, 3, 3}, 2, 1},
                 {{kNaN, 1}, 2, 2},
                 {{2, kNaN, 5, 1}, 3, 4},
                 {{0.5, -kInf, kInf}, 2, 1},
                 {{-0.0, 0.0}, 1, 1}};
    for (const Case& c : cases) {
        const zint n = static_cast<zint>(c.x.size());
        EXPECT_EQ(amax(n, c.x.data(), 1), c.max_index) << "idamax, first " << c.x[0] << " n=" << n;
        EXPECT_EQ(amin(n, c.x.data(), 1), c.min_index) << "idamin, first " << c.x[0] << " n=" << n;
    }
    // The complex measure is |re| + |im|.
    const zcomplex z[3] = {{2, 2}, {-4, 0.5}, {0.5, -4}};
    EXPECT_EQ(izamax.variant(level())(3, z, 1), 2);
    EXPECT_EQ(izamin.variant(level())(3, z, 1), 1);
    // Nothing to search, or an increment below 1: 0.
    const double x[3] = {1, 5, 2};
    for (const zint inc : {0, -1}) {
        EXPECT_EQ(amax(3, x, inc), 0);
        EXPECT_EQ(amin(3, x, inc), 0);
        EXPECT_EQ(izamax.variant(level())(3, z, inc), 0);
    }
    EXPECT_EQ(amax(0, x, 1), 0);
    const double special[6] = {2.0, 2.0, kInf, 0.0, kNaN, kNaN};
    check_scan(
        amax, amin, special, [](double e, int trial) { return trial % 2 ? -e : e; }, 15);
    const zcomplex zspecial[6] = {{1.5, 1.0}, {2.0, -0.5}, {kInf, 0.0}, {0.0, 0.0}, {0.0, kNaN}, {kNaN, 1.0}};
    check_scan(
        izamax.variant(level()), izamin.variant(level()), zspecial,
        [](const zcomplex& e, int) {
            return zcomplex{e.im, -e.re};
        },
        25);
}

// --- Rotations -----------------------------------------------------------------------------------

TEST_P(VectorKernels, RotgBuildsTheRotationThatZerosB) {
    auto* rotg = drotg.variant(level());
    double a = 0.0, b = 0.0, c = 9, s = 9;
    rotg(a, b, c, s);
    EXPECT_TRUE(c == 1.0 && s == 0.0 && a == 0.0 && b == 0.0);
    // (a, b, r, z): r takes the sign of the larger; z is s when |a| > |b|, else 1/c (or 1 when c = 0).
    const double cases[][4] = {{3, 4, 5, 5.0 / 3}, {4, 3, 5, 0.6}, {3, -4, -5, -5.0 / 3}, {0, 2, 2, 1}};
    for (const auto& row : cases) {
        a = row[0];
        b = row[1];
        const double a0 = a, b0 = b;
        rotg(a, b, c, s);
        EXPECT_DOUBLE_EQ(a, row[2]) << a0 << ", " << b0;
        EXPECT_DOUBLE_EQ(b, row[3]) << a0 << ", " << b0;
        EXPECT_NEAR(c * a0 + s * b0, a, 1e-15 * std::fabs(a));
        EXPECT_NEAR(-s * a0 + c * b0, 0.0, 1e-15 * std::fabs(a));
    }
    auto* zr = zrotg.variant(level());
    zcomplex ca{0.0, 0.0}, zs{9, 9};
    zr(ca, zcomplex{2.0, -3.0}, c, zs);
    EXPECT_TRUE(c == 0.0 && zs.re == 1.0 && zs.im == 0.0 && ca.re == 2.0 && ca.im == -3.0);
    Random random(24);
    for (int trial = 0; trial < 100; ++trial) {
        const zcomplex za = random.complex(), zb = trial == 0 ? zcomplex{0, 0} : random.complex();
        ca = za;
        zr(ca, zb, c, zs);
        // [c s; -conj(s) c] (a, b)' = (r, 0)', r = ca on return, and c^2 + |s|^2 = 1.
        EXPECT_NEAR(c * za.re + (zs.re * zb.re - zs.im * zb.im), ca.re, 4e-15);
        EXPECT_NEAR(c * za.im + (zs.re * zb.im + zs.im * zb.re), ca.im, 4e-15);
        EXPECT_NEAR(-(zs.re * za.re + zs.im * za.im) + c * zb.re, 0.0, 4e-15);
        EXPECT_NEAR(-(zs.re * za.im - zs.im * za.re) + c * zb.im, 0.0, 4e-15);
        EXPECT_NEAR(c * c + zs.re * zs.re + zs.im * zs.im, 1.0, 4e-15);
    }
}

// drotmg: the flag says which entries of H are stored; the construction must zero the second
// component: H (x1, y1)' = (x1', 0)' with d1' x1'^2 = d1 x1^2 + d2 y1^2.
TEST_P(VectorKernels, DrotmgFlagsAndTheTruncatedThresholds) {
    auto* rotmg = drotmg.variant(level());
    auto run = [&](double d1, double d2, double x1, double y1, double* param, double* out) {
        param[0] = param[1] = param[2] = param[3] = param[4] = 7.0;
        out[0] = d1;
        out[1] = d2;
        out[2] = x1;
        rotmg(out[0], out[1], out[2], y1, param);
    };
    double param[5], out[3];
    run(-1.0, 2.0, 3.0, 4.0, param, out);  // d1 < 0: everything zero
    EXPECT_TRUE(param[0] == -1.0 && param[1] == 0 && param[4] == 0 && out[0] == 0 && out[2] == 0);
    run(1.0, 0.0, 3.0, 4.0, param, out);  // d2 y1 = 0: the identity, nothing else touched
    EXPECT_TRUE(param[0] == -2.0 && param[1] == 7.0 && out[0] == 1.0 && out[2] == 3.0);
    run(1.0, 1.0, 2.0, 1.0, param, out);  // |q1| > |q2|: flag 0, h21 and h12 stored
    EXPECT_TRUE(param[0] == 0.0 && param[1] == 7.0 && param[2] == -0.5 && param[3] == 0.5);
    run(1.0, 1.0, 1.0, 2.0, param, out);  // otherwise flag 1, h11 and h22 stored
    EXPECT_TRUE(param[0] == 1.0 && param[2] == 7.0 && param[3] == 7.0);
    run(1.0, -1.0, 1.0, 2.0, param, out);  // q2 < 0: flag -1, all zero
    EXPECT_TRUE(param[0] == -1.0 && out[0] == 0.0);

    // The low threshold is 5.960464477539e-8, 94 units in the last place below 2^-24: a weight
    // of exactly 2^-24 is in range and keeps flag 1; one at the threshold is rescaled (flag -1).
    run(1.0, 0x1p-24, 0.0, 1.0, param, out);
    EXPECT_TRUE(param[0] == 1.0 && out[0] == 0x1p-24);
    run(1.0, 5.960464477539e-8, 0.0, 1.0, param, out);
    EXPECT_TRUE(param[0] == -1.0 && out[0] == 5.960464477539e-8 * 16777216.0);
    EXPECT_EQ(param[3], 1.0 / 4096);             // h12 = 1 made explicit, then divided by gam
    run(1.0, 16777216.0, 0.0, 1.0, param, out);  // the high threshold is 2^24 itself
    EXPECT_TRUE(param[0] == -1.0 && out[0] == 1.0);

    Random random(16);
    for (int trial = 0; trial < 200; ++trial) {
        const double scale = std::ldexp(1.0, static_cast<int>(random.next() % 120) - 60);
        const double d1 = std::fabs(random.uniform()) * scale, d2 = std::fabs(random.uniform()) / scale;
        const double x1 = random.uniform(), y1 = random.uniform() * scale;
        run(d1, d2, x1, y1, param, out);
        ASSERT_NE(param[0], -2.0);
        double h11 = param[1], h21 = param[2], h12 = param[3], h22 = param[4];
        if (param[0] == 0.0) h11 = h22 = 1.0;
        if (param[0] == 1.0) h12 = 1.0, h21 = -1.0;
        ASSERT_NEAR(h21 * x1 + h22 * y1, 0.0, 1e-14 * (std::fabs(h21 * x1) + std::fabs(h22 * y1))) << trial;
        ASSERT_NEAR(h11 * x1 + h12 * y1, out[2], 1e-14 * (std::fabs(h11 * x1) + std::fabs(h12 * y1)))
            << trial;
        const double before = d1 * x1 * x1 + d2 * y1 * y1;
        ASSERT_NEAR(out[0] * out[2] * out[2], before, 1e-13 * before) << trial;
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, VectorKernels, kAllLevels, level_param_name);

}  // namespace
}  // namespace zor::test
