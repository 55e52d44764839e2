/* Definitions shared by the public headers of zor. */
#ifndef ZOR_ZOR_CONFIG_H
#define ZOR_ZOR_CONFIG_H

#define ZOR_VERSION_MAJOR 0
#define ZOR_VERSION_MINOR 1
#define ZOR_VERSION_PATCH 0

/* Integers at the public interfaces are 32-bit signed. */
typedef int zor_int;

/* A double-complex value: real part first, then imaginary part. */
typedef struct zor_complex_double {
    double real;
    double imag;
} zor_complex_double;

/* ZOR_API marks an exported function. ZOR_FORTRAN_API marks an exported Fortran-style routine,
 * which ELF builds also export with a trailing underscore (dgesv_), the Fortran linkage convention
 * there. ZOR_FORTRAN_BLAS_API marks the Fortran-style BLAS routines, which only the build with
 * ZOR_FORTRAN_BLAS_NAMES exports (as Fortran-style routines). The build takes the list of exports
 * from these declarations in the public headers. */
#if defined(_WIN32)
#define ZOR_API
#elif defined(__GNUC__)
#define ZOR_API __attribute__((visibility("default")))
#else
#define ZOR_API
#endif
#define ZOR_FORTRAN_API ZOR_API
/* The Fortran-style BLAS routines (zor_blas.h): exported only by the build that asks for them. */
#define ZOR_FORTRAN_BLAS_API ZOR_API

#ifdef __cplusplus
#define ZOR_EXTERN_C_BEGIN extern "C" {
#define ZOR_EXTERN_C_END }
#else
#define ZOR_EXTERN_C_BEGIN
#define ZOR_EXTERN_C_END
#endif

#endif
