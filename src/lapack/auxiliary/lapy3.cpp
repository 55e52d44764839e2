#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/tuning/tuning.hpp"

namespace zor {

double lapy3(double x, double y, double z) {
    if (std::isnan(x) || std::isnan(y) || std::isnan(z)) return x + y + z;
    const double x_abs = std::fabs(x), y_abs = std::fabs(y), z_abs = std::fabs(z);
    const double w = std::fmax(x_abs, std::fmax(y_abs, z_abs));
    // w = 0 keeps 0/0 away; above the overflow threshold only for infinity.
    if (w == 0.0 || w > dlamch("O")) return x_abs + y_abs + z_abs;
    const double xs = x_abs / w, ys = y_abs / w, zs = z_abs / w;
    return w * std::sqrt(xs * xs + ys * ys + zs * zs);
}

}  // namespace zor
