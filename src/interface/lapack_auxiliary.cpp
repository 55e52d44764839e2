// The Fortran-style exports of the LAPACK auxiliary routines.

#include "blas/dispatch.hpp"
#include "interface/integers.hpp"
#include "lapack/auxiliary/auxiliary.hpp"
#include "service/handlers.hpp"
#include "zor/zor_lapack.h"

extern "C" {

ZOR_API double dlapy2(const double* x, const double* y) {
    zor::register_default_handlers();
    return zor::lapy2(*x, *y);
}

ZOR_API void zdrot(const zor_int* n, zor_complex_double* x, const zor_int* incx, zor_complex_double* y,
                   const zor_int* incy, const double* c, const double* s) {
    using zor::fortran::widen;
    zor::register_default_handlers();
    zor::zdrot(widen(n), reinterpret_cast<zor::zcomplex*>(x), widen(incx),
               reinterpret_cast<zor::zcomplex*>(y), widen(incy), *c, *s);
}

// Exported under its Fortran linkage name on every platform; it has no integers to widen.
ZOR_API void zrotg_(zor_complex_double* ca, const zor_complex_double* cb, double* c, zor_complex_double* s) {
    zor::zrotg(*reinterpret_cast<zor::zcomplex*>(ca), *reinterpret_cast<const zor::zcomplex*>(cb), *c,
               *reinterpret_cast<zor::zcomplex*>(s));
}

}  // extern "C"
