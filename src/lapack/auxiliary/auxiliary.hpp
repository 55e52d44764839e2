#pragma once
// Small LAPACK auxiliary routines.

namespace zor {

// sqrt(x^2 + y^2) without overflow or underflow in the squares; a NaN argument is returned (y's
// when both are NaN), and an infinite argument gives infinity.
double lapy2(double x, double y);

}  // namespace zor
