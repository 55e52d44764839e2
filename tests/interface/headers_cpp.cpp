// The public headers compile as C++.
#include <zor/zor.h>

#include <type_traits>

// A C caller may pass any int as a CBLAS enumeration: in C++ every int must be one of its values.
static_assert(std::is_same_v<std::underlying_type_t<CBLAS_LAYOUT>, int> &&
              std::is_same_v<std::underlying_type_t<CBLAS_TRANSPOSE>, int> &&
              std::is_same_v<std::underlying_type_t<CBLAS_UPLO>, int> &&
              std::is_same_v<std::underlying_type_t<CBLAS_DIAG>, int> &&
              std::is_same_v<std::underlying_type_t<CBLAS_SIDE>, int>);

zor_int zor_header_check_cpp(zor_complex_double z) {
    return static_cast<zor_int>(z.real + z.imag);
}
