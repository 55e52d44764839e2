#include <cstring>

#include "lapack/element.hpp"
#include "service/handlers.hpp"

namespace zor {

zint check_arguments(const char* name, std::initializer_list<Check> checks) {
    for (const Check& check : checks) {
        if (check.failed) {
            report_error(name, static_cast<std::int32_t>(check.parameter),
                         static_cast<int>(std::strlen(name)));
            return -check.parameter;
        }
    }
    return 0;
}

}  // namespace zor
