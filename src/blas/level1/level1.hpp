#pragma once
// The level-1 kernels (vector operations), real and complex, in their five variants. Every
// argument is passed by reference with 64-bit integers; vectors are a pointer and an increment,
// and a negative increment walks the vector backwards from its far end.

#include "service/dispatch.hpp"
#include "service/types.hpp"

ZOR_DECLARE_VARIANTS(
    double ddot(const zint& n, const double* x, const zint& incx, const double* y, const zint& incy);
    void daxpy(const zint& n, const double& alpha, const double* x, const zint& incx, double* y,
               const zint& incy);
    void dscal(const zint& n, const double& alpha, double* x, const zint& incx);
    void dcopy(const zint& n, const double* x, const zint& incx, double* y, const zint& incy);
    void dswap(const zint& n, double* x, const zint& incx, double* y, const zint& incy);
    double dasum(const zint& n, const double* x, const zint& incx);
    double dnrm2(const zint& n, const double* x, const zint& incx);
    zint idamax(const zint& n, const double* x, const zint& incx);
    zint idamin(const zint& n, const double* x, const zint& incx);
    void drot(const zint& n, double* x, const zint& incx, double* y, const zint& incy, const double& c,
              const double& s);
    void drotg(double& a, double& b, double& c, double& s);
    void drotm(const zint& n, double* x, const zint& incx, double* y, const zint& incy, const double* param);
    void drotmg(double& d1, double& d2, double& x1, const double& y1, double* param);

    void zdotc(zcomplex* result, const zint& n, const zcomplex* x, const zint& incx, const zcomplex* y,
               const zint& incy);
    void zdotu(zcomplex* result, const zint& n, const zcomplex* x, const zint& incx, const zcomplex* y,
               const zint& incy);
    void zaxpy(const zint& n, const zcomplex& alpha, const zcomplex* x, const zint& incx, zcomplex* y,
               const zint& incy);
    void zscal(const zint& n, const zcomplex& alpha, zcomplex* x, const zint& incx);
    void zcopy(const zint& n, const zcomplex* x, const zint& incx, zcomplex* y, const zint& incy);
    void zswap(const zint& n, zcomplex* x, const zint& incx, zcomplex* y, const zint& incy);
    double dzasum(const zint& n, const zcomplex* x, const zint& incx);
    double dznrm2(const zint& n, const zcomplex* x, const zint& incx);
    zint izamax(const zint& n, const zcomplex* x, const zint& incx);
    zint izamin(const zint& n, const zcomplex* x, const zint& incx);
    void zdrot(const zint& n, zcomplex* x, const zint& incx, zcomplex* y, const zint& incy, const double& c,
               const double& s);
    void zrotg(zcomplex& ca, const zcomplex& cb, double& c, zcomplex& s);)
