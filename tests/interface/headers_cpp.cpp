// The public headers compile as C++.
#include <zor/zor.h>

zor_int zor_header_check_cpp(zor_complex_double z) {
    return static_cast<zor_int>(z.real + z.imag);
}
