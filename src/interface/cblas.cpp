#include "interface/cblas.hpp"

#include "service/messages.hpp"

namespace zor::cblas {

bool check_arguments(const char* routine, std::initializer_list<ArgumentCheck> checks) {
    return first_failed_check(checks, [routine](int parameter) { cblas_xerbla(routine, parameter); }) == 0;
}

}  // namespace zor::cblas
