/* The public headers compile as C. */
#include <zor/zor.h>

zor_int zor_header_check_c(zor_complex_double z) {
    return (zor_int)(z.real + z.imag);
}
