// The Fortran-style exports of the LAPACK auxiliary routines.

#include "lapack/auxiliary/auxiliary.hpp"
#include "service/handlers.hpp"
#include "zor/zor_lapack.h"

extern "C" {

ZOR_API double dlapy2(const double* x, const double* y) {
    zor::register_default_handlers();
    return zor::dlapy2(*x, *y);
}

}  // extern "C"
