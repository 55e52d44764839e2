// The real vector kernels at every level: the fixed accumulation orders bit for bit against
// scalar models of those orders, the element-wise kernels against plain loops, the open orders to
// within rounding, and the documented quirks.

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
using Vector = TestVector<double>;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Lengths across the unroll and peel boundaries, and around the long-vector switch at 2048.
std::vector<zint> lengths() {
    std::vector<zint> n;
    for (zint i = 0; i <= 40; ++i) n.push_back(i);
    for (zint i = 2047; i <= 2049; ++i) n.push_back(i);
    return n;
}

struct Layout {
    zint n, incx, incy;
    int x_offset, y_offset;  // elements past a 64-byte boundary
};

// Every length with every pair of increments; unit strides at every offset of x and y from a
// 32-byte boundary (8-byte steps), other strides at two.
void for_each_layout(const std::function<void(const Layout&)>& check, bool with_zero = true) {
    const zint incs[] = {1, -1, 2, -3, 0};
    for (const zint n : lengths()) {
        for (const zint incx : incs) {
            for (const zint incy : incs) {
                if (!with_zero && (incx == 0 || incy == 0)) continue;
                const int offsets = (incx == incy && (incx == 1 || incx == -1)) ? 4 : 2;
                for (int xo = 0; xo < offsets; ++xo) {
                    for (int yo = 0; yo < offsets; ++yo) check({n, incx, incy, xo, yo});
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
const double* first(const double* v, zint n, zint inc) {
    return inc < 0 ? v + (1 - n) * inc : v;
}

// Two-lane accumulators as pairs of doubles.
struct Lanes {
    double lane[2] = {0.0, 0.0};
};

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
    double t[2];
    for (int l = 0; l < 2; ++l) t[l] = ((a[0].lane[l] + a[1].lane[l]) + a[2].lane[l]) + a[3].lane[l];
    return t[0] + t[1];
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
        double t[2];
        for (int l = 0; l < 2; ++l) t[l] = ((a[0].lane[l] + a[1].lane[l]) + a[2].lane[l]) + a[3].lane[l];
        sum = peel > 0 ? sum + (t[0] + t[1]) : t[0] + t[1];
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
    double t[2];
    for (int l = 0; l < 2; ++l) t[l] = ((a[0].lane[l] + a[1].lane[l]) + a[2].lane[l]) + a[3].lane[l];
    return t[0] + t[1];
}

class RealVectorKernels : public test::LevelTest {};

TEST_P(RealVectorKernels, DdotFollowsTheOrderOfItsLevelBitForBit) {
    auto* kernel = ddot.variant(level());
    auto* model = level() == CpuLevel::Avx ? &ddot_avx_model : &ddot_default_model;
    Random random(11);
    for_each_layout([&](const Layout& l) {
        Vector x(random, l.n, l.incx, l.x_offset), y(random, l.n, l.incy, l.y_offset);
        const double got = kernel(l.n, x.data(), l.incx, y.data(), l.incy);
        ASSERT_TRUE(same_bits(got, model(l.n, x.data(), l.incx, y.data(), l.incy))) << describe(l);
        if (l.incx == -1 && l.incy == -1) {
            // Both backwards over the same memory: the same pairs, the same order.
            ASSERT_TRUE(same_bits(got, kernel(l.n, x.data(), 1, y.data(), 1))) << describe(l);
        }
    });
}

TEST_P(RealVectorKernels, DasumFollowsTheDefaultOrderOrSumsToWithinRounding) {
    auto* kernel = dasum.variant(level());
    Random random(12);
    for_each_layout([&](const Layout& l) {
        if (l.incy != 1 || l.y_offset != 0) return;
        Vector x(random, l.n, l.incx, l.x_offset);
        const double got = kernel(l.n, x.data(), l.incx);
        if (level() != CpuLevel::Avx) {
            ASSERT_TRUE(same_bits(got, dasum_default_model(l.n, x.data(), l.incx))) << describe(l);
        } else {
            long double exact = 0;
            for (zint i = 0; i < l.n; ++i) exact += std::fabs(x[i]);
            ASSERT_NEAR(got, static_cast<double>(exact), 2.0 * l.n * 0x1p-53 * static_cast<double>(exact))
                << describe(l);
        }
    });
}

// The element-wise kernels against plain loops over the logical elements, exactly; with increment
// 0 the loops visit the one element repeatedly, as the kernels do.
TEST_P(RealVectorKernels, ElementWiseKernelsMatchPlainLoopsExactly) {
    const CpuLevel lv = level();
    Random random(13);
    const double alpha = 0.8125, c = 0.6, s = -0.8;
    const double params[][5] = {{-1.0, 0.5, -0.25, 0.75, 1.5},
                                {0.0, 9.0, -0.25, 0.75, 9.0},
                                {1.0, 0.5, 9.0, 9.0, 1.5},
                                {-2.0, 9.0, 9.0, 9.0, 9.0}};
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
            "daxpy",
            [&](Vector& a, Vector& b) { daxpy.variant(lv)(n, alpha, a.data(), l.incx, b.data(), l.incy); },
            [&](Vector& a, Vector& b) {
                for (zint i = 0; i < n; ++i) b[i] = b[i] + a[i] * alpha;
            });
        check(
            "dscal", [&](Vector& a, Vector&) { dscal.variant(lv)(n, alpha, a.data(), l.incx); },
            [&](Vector& a, Vector&) {
                for (zint i = 0; i < n; ++i) a[i] = a[i] * alpha;
            });
        check(
            "dcopy", [&](Vector& a, Vector& b) { dcopy.variant(lv)(n, a.data(), l.incx, b.data(), l.incy); },
            [&](Vector& a, Vector& b) {
                for (zint i = 0; i < n; ++i) b[i] = a[i];
            });
        check(
            "dswap", [&](Vector& a, Vector& b) { dswap.variant(lv)(n, a.data(), l.incx, b.data(), l.incy); },
            [&](Vector& a, Vector& b) {
                for (zint i = 0; i < n; ++i) std::swap(a[i], b[i]);
            });
        check(
            "drot",
            [&](Vector& a, Vector& b) { drot.variant(lv)(n, a.data(), l.incx, b.data(), l.incy, c, s); },
            [&](Vector& a, Vector& b) {
                for (zint i = 0; i < n; ++i) {
                    const double w = a[i], z = b[i];
                    a[i] = c * w + s * z;
                    b[i] = c * z - s * w;
                }
            });
        for (const auto& p : params) {
            check(
                "drotm",
                [&](Vector& a, Vector& b) { drotm.variant(lv)(n, a.data(), l.incx, b.data(), l.incy, p); },
                [&](Vector& a, Vector& b) {
                    // The published forms: flag -1 the full H, 0 unit diagonal, 1 unit
                    // off-diagonal (h12 = 1, h21 = -1), -2 the identity.
                    const double flag = p[0];
                    const double h11 = flag == 0.0 ? 1.0 : p[1], h22 = flag == 0.0 ? 1.0 : p[4];
                    const double h21 = flag == 1.0 ? -1.0 : p[2], h12 = flag == 1.0 ? 1.0 : p[3];
                    for (zint i = 0; flag != -2.0 && i < n; ++i) {
                        const double w = a[i], z = b[i];
                        a[i] = flag == 0.0 ? w + z * h12 : flag == 1.0 ? w * h11 + z : w * h11 + z * h12;
                        b[i] = flag == 0.0 ? w * h21 + z : flag == 1.0 ? -w + h22 * z : w * h21 + z * h22;
                    }
                });
        }
    });
}

TEST_P(RealVectorKernels, OverlappingCopyAndSwapActElementByElement) {
    const CpuLevel lv = level();
    for (zint n : {5, 16, 37}) {
        std::vector<double> v(n + 1);
        for (zint i = 0; i <= n; ++i) v[i] = static_cast<double>(i + 1);
        dcopy.variant(lv)(n, v.data(), 1, v.data() + 1, 1);
        for (zint i = 0; i <= n; ++i) EXPECT_EQ(v[i], 1.0) << "n=" << n << " i=" << i;
    }
}

TEST_P(RealVectorKernels, Dnrm2IsTheScaledSumOfSquaresAtEveryLevel) {
    Random random(14);
    for (const zint n : lengths()) {
        for (const zint inc : {1, 2, -3}) {
            Vector x(random, n, inc);
            for (zint i = 0; i < n; i += 3) x[i] *= 1e200;  // the scaling must keep these finite
            const double got = dnrm2.variant(level())(n, x.data(), inc);
            // Every level runs the same scalar sequence.
            ASSERT_TRUE(same_bits(got, dnrm2.variant(CpuLevel::Default)(n, x.data(), inc)));
            long double exact = 0;
            for (zint i = 0; i < n; ++i) exact += static_cast<long double>(x[i] / 1e200) * (x[i] / 1e200);
            const double expected = static_cast<double>(std::sqrt(exact)) * 1e200;
            ASSERT_NEAR(got, expected, 1e-14 * expected * (1 + n / 64)) << n;
            // A negative increment reads the same elements as its magnitude, from x(1) on.
            if (inc > 0) {
                ASSERT_TRUE(same_bits(dnrm2.variant(level())(n, x.data(), -inc), got));
            }
        }
    }
}

TEST_P(RealVectorKernels, Dnrm2PropagatesInfinityAndNaN) {
    auto* nrm2 = dnrm2.variant(level());
    struct Case {
        std::vector<double> x;
        double expected;
    } cases[] = {{{kInf, 1.0}, kInf}, {{1.0, kInf}, kInf}, {{kInf, kInf}, kNaN}, {{-kInf, 2.0, kInf}, kNaN},
                 {{kNaN, 1.0}, kNaN}, {{1.0, kNaN}, kNaN}, {{0.0, 0.0}, 0.0},    {{3.0, 0.0, -4.0}, 5.0},
                 {{-kInf}, kInf},     {{kNaN}, kNaN}};
    for (const Case& c : cases) {
        const zint n = static_cast<zint>(c.x.size());
        EXPECT_TRUE(same_bits(nrm2(n, c.x.data(), 1), c.expected)) << c.x[0] << " n=" << n;
    }
    // n = 1 reads neither the increment nor more than x(1).
    const double one[1] = {-2.5};
    EXPECT_EQ(nrm2(1, one, 0), 2.5);
    // Increment 0 reads x(1) n times.
    const double three = 3.0;
    EXPECT_DOUBLE_EQ(nrm2(4, &three, 0), 6.0);
}

TEST_P(RealVectorKernels, AmaxAndAminKeepTheFirstOfTiesAndLetNaNIn) {
    auto* amax = idamax.variant(level());
    auto* amin = idamin.variant(level());
    struct Case {
        std::vector<double> x;
        zint max_index, min_index;
    } cases[] = {
        {{1, 3, 3}, 2, 1},       {{kNaN, 1}, 2, 2},       {{1, kNaN}, 2, 2},          {{-3, 3, 1, -1}, 1, 3},
        {{2, kNaN, 5, 1}, 3, 4}, {{kNaN, kNaN, 0}, 3, 3}, {{0.5, -kInf, kInf}, 2, 1}, {{7}, 1, 1},
        {{-0.0, 0.0}, 1, 1},     {{4, 2, kNaN}, 3, 3},
    };
    for (const Case& c : cases) {
        const zint n = static_cast<zint>(c.x.size());
        EXPECT_EQ(amax(n, c.x.data(), 1), c.max_index) << "idamax, first " << c.x[0] << " n=" << n;
        EXPECT_EQ(amin(n, c.x.data(), 1), c.min_index) << "idamin, first " << c.x[0] << " n=" << n;
    }
    const double x[3] = {1, 5, 2};
    for (const zint inc : {0, -1}) {
        EXPECT_EQ(amax(3, x, inc), 0);
        EXPECT_EQ(amin(3, x, inc), 0);
    }
    EXPECT_EQ(amax(0, x, 1), 0);
    // Longer vectors with ties, infinities and NaN placed anywhere, against the scan rule itself.
    Random random(15);
    for (const zint n : lengths()) {
        for (int trial = 0; trial < 12; ++trial) {
            const zint inc = trial % 4 == 3 ? 3 : 1;
            Vector v(random, n, inc);
            if (n > 2) {
                const zint a = static_cast<zint>(random.next() % n), b = static_cast<zint>(random.next() % n);
                const double special[] = {2.0, 2.0, kInf, 0.0, kNaN, kNaN};
                v[a] = special[trial % 6];
                v[b] = trial % 2 ? -v[a] : v[a];
            }
            zint want_max = n > 0, want_min = n > 0;
            double best_max = n > 0 ? std::fabs(v[0]) : 0, best_min = best_max;
            for (zint i = 1; i < n; ++i) {
                const double m = std::fabs(v[i]);
                if (!(best_max >= m)) best_max = m, want_max = i + 1;
                if (!(m >= best_min)) best_min = m, want_min = i + 1;
            }
            ASSERT_EQ(amax(n, v.data(), inc), want_max) << n << " " << trial;
            ASSERT_EQ(amin(n, v.data(), inc), want_min) << n << " " << trial;
        }
    }
}

TEST_P(RealVectorKernels, DrotgBuildsTheRotationThatZerosB) {
    auto* rotg = drotg.variant(level());
    double a = 0.0, b = 0.0, c = 9, s = 9;
    rotg(a, b, c, s);
    EXPECT_TRUE(c == 1.0 && s == 0.0 && a == 0.0 && b == 0.0);
    // (a, b, r, z): r takes the sign of the larger; z is s when |a| > |b|, else 1/c (or 1 when c = 0).
    const double cases[][4] = {{3, 4, 5, 5.0 / 3},    {4, 3, 5, 0.6}, {-3, 4, 5, -5.0 / 3},
                               {3, -4, -5, -5.0 / 3}, {0, 2, 2, 1},   {2, 0, 2, 0},
                               {-0.0, 0, 0, 0}};
    for (const auto& row : cases) {
        a = row[0];
        b = row[1];
        const double a0 = a, b0 = b;
        rotg(a, b, c, s);
        EXPECT_DOUBLE_EQ(a, row[2]) << a0 << ", " << b0;
        EXPECT_DOUBLE_EQ(b, row[3]) << a0 << ", " << b0;
        if (a != 0.0) {
            EXPECT_NEAR(c * a0 + s * b0, a, 1e-15 * std::fabs(a));
            EXPECT_NEAR(-s * a0 + c * b0, 0.0, 1e-15 * std::fabs(a));
        }
    }
}

// drotmg: the flag says which entries of H are stored; the construction must zero the second
// component: H (x1, y1)' = (x1', 0)' with d1' x1'^2 = d1 x1^2 + d2 y1^2.
TEST_P(RealVectorKernels, DrotmgFlagsAndTheTruncatedThresholds) {
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
    EXPECT_EQ(param[0], -1.0);
    EXPECT_TRUE(param[1] == 0 && param[2] == 0 && param[3] == 0 && param[4] == 0 && out[0] == 0 &&
                out[1] == 0 && out[2] == 0);
    run(1.0, 0.0, 3.0, 4.0, param, out);  // d2 y1 = 0: the identity, nothing else touched
    EXPECT_TRUE(param[0] == -2.0 && param[1] == 7.0 && out[0] == 1.0 && out[2] == 3.0);
    run(1.0, 1.0, 2.0, 1.0, param, out);  // |q1| > |q2|: flag 0, h21 and h12 stored
    EXPECT_TRUE(param[0] == 0.0 && param[1] == 7.0 && param[4] == 7.0);
    EXPECT_DOUBLE_EQ(param[2], -0.5);
    EXPECT_DOUBLE_EQ(param[3], 0.5);
    run(1.0, 1.0, 1.0, 2.0, param, out);  // otherwise flag 1, h11 and h22 stored
    EXPECT_TRUE(param[0] == 1.0 && param[2] == 7.0 && param[3] == 7.0);
    run(1.0, -1.0, 1.0, 2.0, param, out);  // q2 < 0: flag -1, all zero
    EXPECT_TRUE(param[0] == -1.0 && out[0] == 0.0);

    // The low threshold is 5.960464477539e-8, 94 units in the last place below 2^-24: a weight
    // of exactly 2^-24 is in range and keeps flag 1; one at the threshold is rescaled (flag -1).
    run(1.0, 0x1p-24, 0.0, 1.0, param, out);
    EXPECT_EQ(param[0], 1.0);
    EXPECT_EQ(out[0], 0x1p-24);
    run(1.0, 5.960464477539e-8, 0.0, 1.0, param, out);
    EXPECT_EQ(param[0], -1.0);
    EXPECT_EQ(out[0], 5.960464477539e-8 * 16777216.0);
    EXPECT_EQ(param[3], 1.0 / 4096);             // h12 = 1 made explicit, then divided by gam
    run(1.0, 16777216.0, 0.0, 1.0, param, out);  // the high threshold is 2^24 itself
    EXPECT_EQ(param[0], -1.0);
    EXPECT_EQ(out[0], 1.0);

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

TEST_P(RealVectorKernels, ZeroAlphaQuirksOfDaxpyAndDscal) {
    const double x[4] = {kNaN, kInf, -kInf, 1.0};
    for (const double alpha : {0.0, -0.0}) {
        double y[4] = {1.0, 2.0, 3.0, 4.0};
        daxpy.variant(level())(4, alpha, x, 1, y, 1);
        EXPECT_TRUE(y[0] == 1.0 && y[1] == 2.0 && y[2] == 3.0 && y[3] == 4.0);
    }
    double v[5] = {kInf, -kInf, kNaN, 1.0, -2.0};
    dscal.variant(level())(5, 0.0, v, 1);
    EXPECT_TRUE(std::isnan(v[0]) && std::isnan(v[1]) && std::isnan(v[2]));
    EXPECT_TRUE(v[3] == 0.0 && !std::signbit(v[3]) && v[4] == 0.0 && std::signbit(v[4]));
    // Increment 0: x(1) is multiplied n times.
    double w[2] = {3.0, 5.0};
    dscal.variant(level())(4, 2.0, w, 0);
    EXPECT_TRUE(w[0] == 48.0 && w[1] == 5.0);
}

INSTANTIATE_TEST_SUITE_P(Levels, RealVectorKernels, test::kAllLevels, test::level_param_name);

}  // namespace
}  // namespace zor
