// las2: the singular values of a 2 by 2 upper triangular matrix.

#include <algorithm>
#include <cmath>

#include "lapack/condensed/bidiagonal.hpp"

namespace zor {

// With fmin <= fmax the smaller and larger of |f|, |h|, the values are fmin·fmax / σ_max and σ_max,
// and σ_max is formed from ratios no larger than one, so nothing overflows or underflows early.
void las2(double f, double g, double h, double& ssmin, double& ssmax) {
    const double fa = std::fabs(f), ga = std::fabs(g), ha = std::fabs(h);
    const double fmin = std::min(fa, ha), fmax = std::max(fa, ha);
    if (fmin == 0.0) {
        ssmin = 0.0;
        if (fmax == 0.0) {
            ssmax = ga;
        } else {
            const double big = std::max(fmax, ga), ratio = std::min(fmax, ga) / big;
            ssmax = big * std::sqrt(1.0 + ratio * ratio);
        }
        return;
    }
    if (ga < fmax) {
        const double sum = 1.0 + fmin / fmax, difference = (fmax - fmin) / fmax,
                     q = (ga / fmax) * (ga / fmax);
        const double c = 2.0 / (std::sqrt(sum * sum + q) + std::sqrt(difference * difference + q));
        ssmin = fmin * c;
        ssmax = fmax / c;
        return;
    }
    const double ratio = fmax / ga;
    if (ratio == 0.0) {
        // g dominates beyond the precision: σ_max = |g| and the product of the values is kept.
        ssmin = (fmin * fmax) / ga;
        ssmax = ga;
        return;
    }
    const double sum = (1.0 + fmin / fmax) * ratio, difference = ((fmax - fmin) / fmax) * ratio;
    const double c = 1.0 / (std::sqrt(1.0 + sum * sum) + std::sqrt(1.0 + difference * difference));
    ssmin = 2.0 * ((fmin * c) * ratio);
    ssmax = ga / (c + c);
}

}  // namespace zor
