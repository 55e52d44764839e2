// The level-1 CBLAS functions: no argument checks; each passes its by-value scalars by address to
// the Fortran-style routine and returns its result.

#include "interface/blas.hpp"
#include "zor/zor_cblas.h"

using zor::zcomplex;
namespace fortran = zor::fortran;

namespace {

const zcomplex* complex_in(const void* p) {
    return static_cast<const zcomplex*>(p);
}
zcomplex* complex_out(void* p) {
    return static_cast<zcomplex*>(p);
}

// The Fortran-style index is 1-based; CBLAS answers 0-based, and 0 without calling when there is
// nothing to search.
template <class T>
CBLAS_INDEX zero_based(zor_int (*search)(const zor_int*, const T*, const zor_int*), zor_int n, const T* x,
                       zor_int incx) {
    if (n < 1 || incx < 1) return 0;
    return static_cast<CBLAS_INDEX>(search(&n, x, &incx) - 1);
}

}  // namespace

extern "C" {

double cblas_dasum(const zor_int N, const double* X, const zor_int incX) {
    return fortran::dasum(&N, X, &incX);
}

void cblas_daxpy(const zor_int N, const double alpha, const double* X, const zor_int incX, double* Y,
                 const zor_int incY) {
    fortran::daxpy(&N, &alpha, X, &incX, Y, &incY);
}

void cblas_dcopy(const zor_int N, const double* X, const zor_int incX, double* Y, const zor_int incY) {
    fortran::dcopy(&N, X, &incX, Y, &incY);
}

double cblas_ddot(const zor_int N, const double* X, const zor_int incX, const double* Y, const zor_int incY) {
    return fortran::ddot(&N, X, &incX, Y, &incY);
}

double cblas_dnrm2(const zor_int N, const double* X, const zor_int incX) {
    return fortran::dnrm2(&N, X, &incX);
}

void cblas_drot(const zor_int N, double* X, const zor_int incX, double* Y, const zor_int incY, const double c,
                const double s) {
    fortran::drot(&N, X, &incX, Y, &incY, &c, &s);
}

void cblas_drotg(double* a, double* b, double* c, double* s) {
    fortran::drotg(a, b, c, s);
}

void cblas_drotm(const zor_int N, double* X, const zor_int incX, double* Y, const zor_int incY,
                 const double* P) {
    fortran::drotm(&N, X, &incX, Y, &incY, P);
}

void cblas_drotmg(double* d1, double* d2, double* b1, const double b2, double* P) {
    const double y1 = b2;
    fortran::drotmg(d1, d2, b1, &y1, P);
}

void cblas_dscal(const zor_int N, const double alpha, double* X, const zor_int incX) {
    fortran::dscal(&N, &alpha, X, &incX);
}

void cblas_dswap(const zor_int N, double* X, const zor_int incX, double* Y, const zor_int incY) {
    fortran::dswap(&N, X, &incX, Y, &incY);
}

CBLAS_INDEX cblas_idamax(const zor_int N, const double* X, const zor_int incX) {
    return zero_based(&fortran::idamax, N, X, incX);
}

CBLAS_INDEX cblas_idamin(const zor_int N, const double* X, const zor_int incX) {
    return zero_based(&fortran::idamin, N, X, incX);
}

double cblas_dzasum(const zor_int N, const void* X, const zor_int incX) {
    return fortran::dzasum(&N, complex_in(X), &incX);
}

double cblas_dznrm2(const zor_int N, const void* X, const zor_int incX) {
    return fortran::dznrm2(&N, complex_in(X), &incX);
}

CBLAS_INDEX cblas_izamax(const zor_int N, const void* X, const zor_int incX) {
    return zero_based(&fortran::izamax, N, complex_in(X), incX);
}

CBLAS_INDEX cblas_izamin(const zor_int N, const void* X, const zor_int incX) {
    return zero_based(&fortran::izamin, N, complex_in(X), incX);
}

void cblas_zaxpy(const zor_int N, const void* alpha, const void* X, const zor_int incX, void* Y,
                 const zor_int incY) {
    fortran::zaxpy(&N, complex_in(alpha), complex_in(X), &incX, complex_out(Y), &incY);
}

void cblas_zcopy(const zor_int N, const void* X, const zor_int incX, void* Y, const zor_int incY) {
    fortran::zcopy(&N, complex_in(X), &incX, complex_out(Y), &incY);
}

void cblas_zdotc_sub(const zor_int N, const void* X, const zor_int incX, const void* Y, const zor_int incY,
                     void* dotc) {
    fortran::zdotc(complex_out(dotc), &N, complex_in(X), &incX, complex_in(Y), &incY);
}

void cblas_zdotu_sub(const zor_int N, const void* X, const zor_int incX, const void* Y, const zor_int incY,
                     void* dotu) {
    fortran::zdotu(complex_out(dotu), &N, complex_in(X), &incX, complex_in(Y), &incY);
}

void cblas_zscal(const zor_int N, const void* alpha, void* X, const zor_int incX) {
    fortran::zscal(&N, complex_in(alpha), complex_out(X), &incX);
}

void cblas_zswap(const zor_int N, void* X, const zor_int incX, void* Y, const zor_int incY) {
    fortran::zswap(&N, complex_out(X), &incX, complex_out(Y), &incY);
}

}  // extern "C"
