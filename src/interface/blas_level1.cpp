// The Fortran-style level-1 BLAS: widen the integers and call the kernel. No checks.

#include "blas/dispatch.hpp"
#include "interface/blas.hpp"

namespace zor::fortran {

double dasum(const zor_int* n, const double* x, const zor_int* incx) {
    return zor::dasum(widen(n), x, widen(incx));
}

void daxpy(const zor_int* n, const double* alpha, const double* x, const zor_int* incx, double* y,
           const zor_int* incy) {
    zor::daxpy(widen(n), *alpha, x, widen(incx), y, widen(incy));
}

void dcopy(const zor_int* n, const double* x, const zor_int* incx, double* y, const zor_int* incy) {
    zor::dcopy(widen(n), x, widen(incx), y, widen(incy));
}

double ddot(const zor_int* n, const double* x, const zor_int* incx, const double* y, const zor_int* incy) {
    return zor::ddot(widen(n), x, widen(incx), y, widen(incy));
}

double dnrm2(const zor_int* n, const double* x, const zor_int* incx) {
    return zor::dnrm2(widen(n), x, widen(incx));
}

void drot(const zor_int* n, double* x, const zor_int* incx, double* y, const zor_int* incy, const double* c,
          const double* s) {
    zor::drot(widen(n), x, widen(incx), y, widen(incy), *c, *s);
}

void drotg(double* a, double* b, double* c, double* s) {
    zor::drotg(*a, *b, *c, *s);
}

void drotm(const zor_int* n, double* x, const zor_int* incx, double* y, const zor_int* incy,
           const double* param) {
    zor::drotm(widen(n), x, widen(incx), y, widen(incy), param);
}

void drotmg(double* d1, double* d2, double* x1, const double* y1, double* param) {
    zor::drotmg(*d1, *d2, *x1, *y1, param);
}

void dscal(const zor_int* n, const double* alpha, double* x, const zor_int* incx) {
    zor::dscal(widen(n), *alpha, x, widen(incx));
}

void dswap(const zor_int* n, double* x, const zor_int* incx, double* y, const zor_int* incy) {
    zor::dswap(widen(n), x, widen(incx), y, widen(incy));
}

// The index is at most n, so it fits the 32-bit result.
zor_int idamax(const zor_int* n, const double* x, const zor_int* incx) {
    return static_cast<zor_int>(zor::idamax(widen(n), x, widen(incx)));
}

zor_int idamin(const zor_int* n, const double* x, const zor_int* incx) {
    return static_cast<zor_int>(zor::idamin(widen(n), x, widen(incx)));
}

double dzasum(const zor_int* n, const zcomplex* x, const zor_int* incx) {
    return zor::dzasum(widen(n), x, widen(incx));
}

double dznrm2(const zor_int* n, const zcomplex* x, const zor_int* incx) {
    return zor::dznrm2(widen(n), x, widen(incx));
}

zor_int izamax(const zor_int* n, const zcomplex* x, const zor_int* incx) {
    return static_cast<zor_int>(zor::izamax(widen(n), x, widen(incx)));
}

zor_int izamin(const zor_int* n, const zcomplex* x, const zor_int* incx) {
    return static_cast<zor_int>(zor::izamin(widen(n), x, widen(incx)));
}

void zaxpy(const zor_int* n, const zcomplex* alpha, const zcomplex* x, const zor_int* incx, zcomplex* y,
           const zor_int* incy) {
    zor::zaxpy(widen(n), *alpha, x, widen(incx), y, widen(incy));
}

void zcopy(const zor_int* n, const zcomplex* x, const zor_int* incx, zcomplex* y, const zor_int* incy) {
    zor::zcopy(widen(n), x, widen(incx), y, widen(incy));
}

void zdotc(zcomplex* result, const zor_int* n, const zcomplex* x, const zor_int* incx, const zcomplex* y,
           const zor_int* incy) {
    zor::zdotc(result, widen(n), x, widen(incx), y, widen(incy));
}

void zdotu(zcomplex* result, const zor_int* n, const zcomplex* x, const zor_int* incx, const zcomplex* y,
           const zor_int* incy) {
    zor::zdotu(result, widen(n), x, widen(incx), y, widen(incy));
}

void zscal(const zor_int* n, const zcomplex* alpha, zcomplex* x, const zor_int* incx) {
    zor::zscal(widen(n), *alpha, x, widen(incx));
}

void zswap(const zor_int* n, zcomplex* x, const zor_int* incx, zcomplex* y, const zor_int* incy) {
    zor::zswap(widen(n), x, widen(incx), y, widen(incy));
}

}  // namespace zor::fortran
