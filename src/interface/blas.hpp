#pragma once
// The Fortran-style BLAS routines behind the CBLAS entry points: every argument by address,
// integers of 32 bits. Internal (not exported). Each widens its integers to 64 bits and calls the
// kernel through its dispatcher; the level-1 routines check nothing.

#include "interface/integers.hpp"
#include "service/types.hpp"
#include "zor/zor_config.h"

namespace zor::fortran {

double dasum(const zor_int* n, const double* x, const zor_int* incx);
void daxpy(const zor_int* n, const double* alpha, const double* x, const zor_int* incx, double* y,
           const zor_int* incy);
void dcopy(const zor_int* n, const double* x, const zor_int* incx, double* y, const zor_int* incy);
double ddot(const zor_int* n, const double* x, const zor_int* incx, const double* y, const zor_int* incy);
double dnrm2(const zor_int* n, const double* x, const zor_int* incx);
void drot(const zor_int* n, double* x, const zor_int* incx, double* y, const zor_int* incy, const double* c,
          const double* s);
void drotg(double* a, double* b, double* c, double* s);
void drotm(const zor_int* n, double* x, const zor_int* incx, double* y, const zor_int* incy,
           const double* param);
void drotmg(double* d1, double* d2, double* x1, const double* y1, double* param);
void dscal(const zor_int* n, const double* alpha, double* x, const zor_int* incx);
void dswap(const zor_int* n, double* x, const zor_int* incx, double* y, const zor_int* incy);
zor_int idamax(const zor_int* n, const double* x, const zor_int* incx);
zor_int idamin(const zor_int* n, const double* x, const zor_int* incx);

double dzasum(const zor_int* n, const zcomplex* x, const zor_int* incx);
double dznrm2(const zor_int* n, const zcomplex* x, const zor_int* incx);
zor_int izamax(const zor_int* n, const zcomplex* x, const zor_int* incx);
zor_int izamin(const zor_int* n, const zcomplex* x, const zor_int* incx);
void zaxpy(const zor_int* n, const zcomplex* alpha, const zcomplex* x, const zor_int* incx, zcomplex* y,
           const zor_int* incy);
void zcopy(const zor_int* n, const zcomplex* x, const zor_int* incx, zcomplex* y, const zor_int* incy);
// The result comes first, as the Fortran calling convention for a complex function passes it.
void zdotc(zcomplex* result, const zor_int* n, const zcomplex* x, const zor_int* incx, const zcomplex* y,
           const zor_int* incy);
void zdotu(zcomplex* result, const zor_int* n, const zcomplex* x, const zor_int* incx, const zcomplex* y,
           const zor_int* incy);
void zscal(const zor_int* n, const zcomplex* alpha, zcomplex* x, const zor_int* incx);
void zswap(const zor_int* n, zcomplex* x, const zor_int* incx, zcomplex* y, const zor_int* incy);

}  // namespace zor::fortran
