#pragma once
// Small LAPACK auxiliary routines.

namespace zor {

// sqrt(x^2 + y^2) without overflow or underflow in the squares; a NaN argument is returned (y's
// when both are NaN), and an infinite argument gives infinity.
double lapy2(double x, double y);

// sqrt(x^2 + y^2 + z^2) scaled by the largest magnitude, so that no square overflows or underflows
// unnecessarily; NaN when an argument is NaN, infinity when one is infinite and none is NaN.
double lapy3(double x, double y, double z);

}  // namespace zor
