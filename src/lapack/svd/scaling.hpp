#pragma once
// The scaling of the SVD drivers' inputs into a safe range: a matrix whose largest entry lies
// below `small` or above 1 / small is scaled to that bound first and its results scaled back.

namespace zor {

// The bound to scale to, or 0 when the norm is inside the range (also for a zero or NaN norm).
inline double range_target(double norm, double small) {
    if (norm > 0 && norm < small) return small;
    if (norm > 1.0 / small) return 1.0 / small;
    return 0.0;
}

}  // namespace zor
