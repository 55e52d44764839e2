// Euclidean norms: dnrm2 and dznrm2, the same scalar sequence at every level. One pass with a
// running scale: a NaN goes to the second branch (its comparison fails) and stays NaN, one
// infinity gives infinity and two give NaN (Inf/Inf), as the plain scaling demands.

#include "blas/kernel.hpp"
#include "blas/level1/level1.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

struct ScaledSum {
    double scale = 0.0;
    double ssq = 1.0;

    void add(double v) {
        if (v == 0.0) return;
        const double a = abs(v);
        if (a > scale) {
            const double r = scale / a;
            ssq = (ssq * r) * r + 1.0;
            scale = a;
        } else {
            const double t = a / scale;
            ssq = ssq + t * t;
        }
    }
    double norm() const { return scale * square_root(ssq); }
};

}  // namespace

// Walks with |incx| from x(1) whatever the sign: a negative increment is not reversed here.
double dnrm2(const zint& n, const double* x, const zint& incx) {
    if (n <= 0) return 0.0;
    if (n == 1) return abs(x[0]);
    const zint step = incx < 0 ? -incx : incx;
    ScaledSum sum;
    for (zint i = 0; i < n; ++i) sum.add(x[i * step]);
    return sum.norm();
}

// The 2n parts in the order re(1), im(1), re(2), ...; no shortcut for one element.
double dznrm2(const zint& n, const zcomplex* x, const zint& incx) {
    if (n < 1) return 0.0;
    const zcomplex* xs = x + first_element(n, incx);
    ScaledSum sum;
    for (zint i = 0; i < n; ++i) {
        sum.add(xs[i * incx].re);
        sum.add(xs[i * incx].im);
    }
    return sum.norm();
}

}  // namespace zor::ZOR_LEVEL_NS
