#include "interface/cblas.hpp"

#include "service/messages.hpp"

namespace zor::cblas {

bool check_arguments(const char* routine, std::initializer_list<Check> checks) {
    for (const Check& check : checks) {
        if (!check.failed) continue;
        cblas_xerbla(routine, check.parameter);
        if (check.ends_call) return false;
    }
    return true;
}

}  // namespace zor::cblas
