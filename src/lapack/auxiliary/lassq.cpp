// lassq: a sum of squares kept as scale² · sumsq, so that no square overflows or underflows.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

void add_square(double v, double& scale, double& sumsq) {
    if (v == 0.0) return;
    const double magnitude = std::fabs(v);
    if (scale < magnitude || std::isnan(magnitude)) {
        const double ratio = scale / magnitude;
        sumsq = 1.0 + sumsq * (ratio * ratio);
        scale = magnitude;
    } else {
        const double ratio = magnitude / scale;
        sumsq += ratio * ratio;
    }
}

}  // namespace

template <class T>
void lassq(zint n, const T* x, zint incx, double& scale, double& sumsq) {
    for (zint i = 0; i < n; ++i) {
        const T& v = x[i * incx];
        add_square(real(v), scale, sumsq);
        if constexpr (kIsComplex<T>) add_square(v.im, scale, sumsq);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(lassq)
