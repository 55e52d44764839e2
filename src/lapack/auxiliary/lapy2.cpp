#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/tuning/tuning.hpp"

namespace zor {

double lapy2(double x, double y) {
    const bool x_nan = std::isnan(x);
    const bool y_nan = std::isnan(y);
    if (x_nan || y_nan) return y_nan ? y : x;
    const double overflow = dlamch("O");
    const double x_abs = std::fabs(x);
    const double y_abs = std::fabs(y);
    const double w = x_abs > y_abs ? x_abs : y_abs;
    const double z = x_abs > y_abs ? y_abs : x_abs;
    // w > overflow only for infinity; z = 0 keeps 0/0 away.
    if (z == 0.0 || w > overflow) return w;
    const double ratio = z / w;
    return w * std::sqrt(1.0 + ratio * ratio);
}

}  // namespace zor
