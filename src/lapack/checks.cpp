#include <cstring>

#include "lapack/lapack.hpp"
#include "service/handlers.hpp"

namespace zor {

zint check_arguments(const char* name, std::initializer_list<ArgumentCheck> checks) {
    return -first_failed_check(checks, [name](int parameter) {
        report_error(name, static_cast<std::int32_t>(parameter), static_cast<int>(std::strlen(name)));
    });
}

}  // namespace zor
