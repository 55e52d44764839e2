// lange: the max-abs, one, infinity or Frobenius norm of a general matrix.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"

namespace zor {

template <class T>
double lange(char norm, zint m, zint n, const T* a, zint lda, double* work) {
    if (m <= 0 || n <= 0) return 0.0;
    double value = 0.0;
    // A NaN candidate always replaces the value, so NaN entries reach the answer.
    const auto keep_larger = [&value](double candidate) {
        if (value < candidate || std::isnan(candidate)) value = candidate;
    };
    if (lsame(norm, 'M')) {
        for (zint j = 0; j < n; ++j) {
            for (zint i = 0; i < m; ++i) keep_larger(abs(a[i + j * lda]));
        }
    } else if (lsame(norm, 'O') || norm == '1') {
        for (zint j = 0; j < n; ++j) {
            double sum = 0.0;
            for (zint i = 0; i < m; ++i) sum += abs(a[i + j * lda]);
            keep_larger(sum);
        }
    } else if (lsame(norm, 'I')) {
        for (zint i = 0; i < m; ++i) work[i] = 0.0;
        for (zint j = 0; j < n; ++j) {
            for (zint i = 0; i < m; ++i) work[i] += abs(a[i + j * lda]);
        }
        for (zint i = 0; i < m; ++i) keep_larger(work[i]);
    } else if (lsame(norm, 'F') || lsame(norm, 'E')) {
        double scale = 0.0, sumsq = 1.0;
        for (zint j = 0; j < n; ++j) lassq(m, a + j * lda, 1, scale, sumsq);
        value = scale * std::sqrt(sumsq);
    }
    return value;
}

}  // namespace zor

ZOR_INSTANTIATE(lange)
