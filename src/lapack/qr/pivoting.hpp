#pragma once
// What the pivoted QR steps share: the choice and interchange of the pivot column, and the
// safeguarded downdating of the column norms after a step.

#include <cmath>

#include "lapack/lapack.hpp"

namespace zor {

// Moves the column of largest partial norm among columns i .. n - 1 of the m by n block to column
// i: the whole column of A, its entry of jpvt, its norms, and (when f is not null) its row of the
// first i columns of F. The first of equal norms wins.
template <class T>
void bring_largest_forward(zint m, zint n, zint i, T* a, zint lda, zint* jpvt, double* vn1, double* vn2, T* f,
                           zint ldf) {
    const zint pivot = i + idamax(n - i, vn1 + i, 1) - 1;
    if (pivot == i) return;
    Blas<T>::swap(m, a + pivot * lda, 1, a + i * lda, 1);
    if (f != nullptr && i > 0) Blas<T>::swap(i, f + pivot, ldf, f + i, ldf);
    const zint moved = jpvt[pivot];
    jpvt[pivot] = jpvt[i];
    jpvt[i] = moved;
    vn1[pivot] = vn1[i];
    vn2[pivot] = vn2[i];
}

// Downdates the partial norm vn1 of a column whose entry `eliminated` has just left it: vn1 :=
// vn1 sqrt(1 - (eliminated / vn1)²). Returns false, leaving vn1 as it was, when cancellation has
// made that unreliable (the remaining norm is below sqrt(eps) times the norm vn2 it was last
// computed as): the caller recomputes it.
inline bool downdated_norm_reliable(double eliminated, double& vn1, double vn2, double tolerance) {
    const double ratio = eliminated / vn1;
    double remaining = (1.0 + ratio) * (1.0 - ratio);
    if (remaining < 0.0) remaining = 0.0;
    const double growth = vn1 / vn2;
    if (remaining * growth * growth <= tolerance) return false;
    vn1 *= std::sqrt(remaining);
    return true;
}

}  // namespace zor
