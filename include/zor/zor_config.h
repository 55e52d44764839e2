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

#if defined(_WIN32)
#define ZOR_API
#elif defined(__GNUC__)
#define ZOR_API __attribute__((visibility("default")))
#else
#define ZOR_API
#endif

#ifdef __cplusplus
#define ZOR_EXTERN_C_BEGIN extern "C" {
#define ZOR_EXTERN_C_END }
#else
#define ZOR_EXTERN_C_BEGIN
#define ZOR_EXTERN_C_END
#endif

#endif
