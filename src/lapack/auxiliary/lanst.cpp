// lanst: the max-abs, one (= infinity) or Frobenius norm of a symmetric tridiagonal matrix.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"

namespace zor {

double lanst(char norm, zint n, const double* d, const double* e) {
    if (n <= 0) return 0.0;
    double value = 0.0;
    const auto keep_larger = [&value](double candidate) {
        if (value < candidate || std::isnan(candidate)) value = candidate;
    };
    if (lsame(norm, 'M')) {
        for (zint i = 0; i < n; ++i) keep_larger(std::fabs(d[i]));
        for (zint i = 0; i + 1 < n; ++i) keep_larger(std::fabs(e[i]));
    } else if (lsame(norm, 'O') || norm == '1' || lsame(norm, 'I')) {
        for (zint i = 0; i < n; ++i) {
            double sum = std::fabs(d[i]);
            if (i > 0) sum += std::fabs(e[i - 1]);
            if (i + 1 < n) sum += std::fabs(e[i]);
            keep_larger(sum);
        }
    } else if (lsame(norm, 'F') || lsame(norm, 'E')) {
        double scale = 0.0, sumsq = 1.0;
        if (n > 1) {
            lassq(n - 1, e, 1, scale, sumsq);
            sumsq *= 2.0;
        }
        lassq(n, d, 1, scale, sumsq);
        value = scale * std::sqrt(sumsq);
    }
    return value;
}

}  // namespace zor
