/* The Fortran-style LAPACK routines of zor: every argument by address, integers of 32 bits
 * (zor_int), option letters as single characters whose hidden lengths trail the argument list.
 * On ELF platforms each routine is also exported with a trailing underscore (dlapy2_). */
#ifndef ZOR_ZOR_LAPACK_H
#define ZOR_ZOR_LAPACK_H

#include "zor/zor_config.h"

ZOR_EXTERN_C_BEGIN

/* sqrt(x^2 + y^2), avoiding unnecessary overflow and underflow; NaN when either argument is NaN. */
ZOR_API double dlapy2(const double* x, const double* y);

/* Applies the real plane rotation (c, s) to complex vectors: x := c*x + s*y, y := c*y - s*x. */
ZOR_API void zdrot(const zor_int* n, zor_complex_double* x, const zor_int* incx, zor_complex_double* y,
                   const zor_int* incy, const double* c, const double* s);
/* Builds the complex Givens rotation that zeroes cb: c real, s complex, ca := r. Its name carries
 * the trailing underscore on every platform. */
ZOR_API void zrotg_(zor_complex_double* ca, const zor_complex_double* cb, double* c, zor_complex_double* s);

ZOR_EXTERN_C_END

#endif
