/* The Fortran-style LAPACK routines of zor: every argument by address, integers of 32 bits
 * (zor_int), option letters as single characters whose hidden lengths trail the argument list.
 * On ELF platforms each routine is also exported with a trailing underscore (dlapy2_). */
#ifndef ZOR_ZOR_LAPACK_H
#define ZOR_ZOR_LAPACK_H

#include "zor/zor_config.h"

ZOR_EXTERN_C_BEGIN

/* sqrt(x^2 + y^2), avoiding unnecessary overflow and underflow; NaN when either argument is NaN. */
ZOR_API double dlapy2(const double* x, const double* y);

ZOR_EXTERN_C_END

#endif
