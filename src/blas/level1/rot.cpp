// Plane rotations applied to vectors: drot, zdrot (a real rotation of complex vectors, part by
// part) and drotm (the modified rotation). Element-wise, visited from the first logical element;
// vectors that share memory take the element loop, as in copy.cpp.

#include "blas/kernel.hpp"
#include "blas/level1/level1.hpp"
#include "blas/level1/wide.hpp"
#include "blas/simd.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// Applies op(x(i), y(i)) to every element pair. The contiguous loop is left to the compiler's
// vectoriser: the operation is element-wise, so lanes cannot change a result.
template <class Op>
void each_pair(zint n, double* x, zint incx, double* y, zint incy, Op op) {
    if (unit_strides(incx, incy) && !overlapping(x, y, n * 8)) {
        double* __restrict xr = x;
        double* __restrict yr = y;
        for (zint i = 0; i < n; ++i) op(xr[i], yr[i]);
        return;
    }
    double* xs = x + first_element(n, incx);
    double* ys = y + first_element(n, incy);
    for (zint i = 0; i < n; ++i) op(xs[i * incx], ys[i * incy]);
}

struct Rotation {
    double c, s;
    void operator()(double& x, double& y) const {
        const double w = x, z = y;
        x = c * w + s * z;
        y = c * z - s * w;
    }
};

#if ZOR_LEVEL == 4
struct RotateStep {
    double* x;
    double* y;
    __m512d c, s;
    ZOR_AVX512 void operator()(zint at, __mmask8 mask) const {
        const __m512d xv = load8(x + at, mask), yv = load8(y + at, mask);
        store8(x + at, mask, _mm512_add_pd(_mm512_mul_pd(c, xv), _mm512_mul_pd(s, yv)));
        store8(y + at, mask, _mm512_sub_pd(_mm512_mul_pd(c, yv), _mm512_mul_pd(s, xv)));
    }
};

ZOR_AVX512 void rotate_eight_lane(zint count, double* x, double* y, const Rotation& rotation) {
    eight_lane_run(count, y, 8, RotateStep{x, y, _mm512_set1_pd(rotation.c), _mm512_set1_pd(rotation.s)});
}
#endif

// x := c*x + s*y, y := c*y - s*x over `count` doubles of two vectors that do not overlap.
void rotate_run(zint count, double* x, double* y, const Rotation& rotation) {
#if ZOR_LEVEL == 4
    if (has_avx512f()) {
        rotate_eight_lane(count, x, y, rotation);
        return;
    }
#endif
    using L = WideVec;
    using V = L::Vec;
    const V c = L::splat(rotation.c), s = L::splat(rotation.s);
    auto step = [&](zint at) {
        const V xv = L::loadu(x + at), yv = L::loadu(y + at);
        L::storeu(x + at, L::add(L::mul(c, xv), L::mul(s, yv)));
        L::storeu(y + at, L::sub(L::mul(c, yv), L::mul(s, xv)));
    };
    zint i = 0;
    for (; count - i >= 2 * L::kLanes; i += 2 * L::kLanes) {
        step(i);
        step(i + L::kLanes);
    }
    for (; count - i >= L::kLanes; i += L::kLanes) step(i);
    for (; i < count; ++i) rotation(x[i], y[i]);
}

}  // namespace

void drot(const zint& n, double* x, const zint& incx, double* y, const zint& incy, const double& c,
          const double& s) {
    if (n <= 0) return;
    if (unit_strides(incx, incy) && !overlapping(x, y, n * 8)) {
        rotate_run(n, x, y, Rotation{c, s});
        return;
    }
    each_pair(n, x, incx, y, incy, Rotation{c, s});
}

void zdrot(const zint& n_ref, zcomplex* x, const zint& incx_ref, zcomplex* y, const zint& incy_ref,
           const double& c, const double& s) {
    const zint n = n_ref, incx = incx_ref, incy = incy_ref;  // not re-read after every store
    if (n <= 0) return;
    const Rotation rotation{c, s};
    if (unit_strides(incx, incy) && !overlapping(x, y, n * 16)) {
        rotate_run(2 * n, &x->re, &y->re, rotation);
        return;
    }
    zcomplex* xs = x + first_element(n, incx);
    zcomplex* ys = y + first_element(n, incy);
    for (zint i = 0; i < n; ++i) {
        rotation(xs[i * incx].re, ys[i * incy].re);
        rotation(xs[i * incx].im, ys[i * incy].im);
    }
}

// param = (flag, h11, h21, h12, h22). Flag -2 is the identity; -1 the full matrix; 0 a unit
// diagonal; anything else (1, or a NaN that fails every comparison) a unit off-diagonal
// (h12 = 1, h21 = -1).
void drotm(const zint& n, double* x, const zint& incx, double* y, const zint& incy, const double* param) {
    const double flag = param[0];
    if (n <= 0 || flag + 2.0 == 0.0) return;
    const double h11 = param[1], h21 = param[2], h12 = param[3], h22 = param[4];
    if (flag < 0.0) {
        each_pair(n, x, incx, y, incy, [=](double& xv, double& yv) {
            const double w = xv, z = yv;
            xv = w * h11 + z * h12;
            yv = w * h21 + z * h22;
        });
    } else if (flag == 0.0) {
        each_pair(n, x, incx, y, incy, [=](double& xv, double& yv) {
            const double w = xv, z = yv;
            xv = w + z * h12;
            yv = w * h21 + z;
        });
    } else {
        each_pair(n, x, incx, y, incy, [=](double& xv, double& yv) {
            const double w = xv, z = yv;
            xv = w * h11 + z;
            yv = h22 * z - w;
        });
    }
}

}  // namespace zor::ZOR_LEVEL_NS
