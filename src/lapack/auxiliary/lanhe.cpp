// lanhe: the max-abs, one (= infinity) or Frobenius norm of a symmetric or Hermitian matrix stored
// in one triangle.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"

namespace zor {

template <class T>
double lanhe(char norm, char uplo, zint n, const T* a, zint lda, double* work) {
    if (n <= 0) return 0.0;
    const bool upper = lsame(uplo, 'U');
    // The magnitude of a diagonal element: a Hermitian diagonal is real whatever is stored.
    const auto diagonal = [&](zint i) { return std::fabs(real(a[i + i * lda])); };
    double value = 0.0;
    const auto keep_larger = [&value](double candidate) {
        if (value < candidate || std::isnan(candidate)) value = candidate;
    };
    if (lsame(norm, 'M')) {
        for (zint j = 0; j < n; ++j) {
            const zint first = upper ? 0 : j + 1, last = upper ? j : n;
            for (zint i = first; i < last; ++i) keep_larger(abs(a[i + j * lda]));
            keep_larger(diagonal(j));
        }
    } else if (lsame(norm, 'I') || lsame(norm, 'O') || norm == '1') {
        // Row and column sums are the same: each stored element counts for its row and its column.
        for (zint i = 0; i < n; ++i) work[i] = 0.0;
        for (zint j = 0; j < n; ++j) {
            const zint first = upper ? 0 : j + 1, last = upper ? j : n;
            double sum = 0.0;
            for (zint i = first; i < last; ++i) {
                const double magnitude = abs(a[i + j * lda]);
                sum += magnitude;
                work[i] += magnitude;
            }
            work[j] += sum + diagonal(j);
        }
        for (zint i = 0; i < n; ++i) keep_larger(work[i]);
    } else if (lsame(norm, 'F') || lsame(norm, 'E')) {
        double scale = 0.0, sumsq = 1.0;
        // The strict triangle column by column, counted twice; then the diagonal.
        for (zint j = 0; j < n; ++j) {
            if (upper) {
                lassq(j, a + j * lda, 1, scale, sumsq);
            } else {
                lassq(n - j - 1, a + (j + 1) + j * lda, 1, scale, sumsq);
            }
        }
        sumsq *= 2.0;
        for (zint i = 0; i < n; ++i) {
            const double d = real(a[i + i * lda]);
            lassq(1, &d, 1, scale, sumsq);
        }
        value = scale * std::sqrt(sumsq);
    }
    return value;
}

}  // namespace zor

ZOR_INSTANTIATE(lanhe)
