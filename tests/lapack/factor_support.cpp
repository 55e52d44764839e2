#include "lapack/factor_support.hpp"

#include "service/handlers.hpp"

namespace zor::test {

void use_progress_log(int stop_at) {
    register_progress_handler(&ProgressLog::handler);
    ProgressLog::reset(stop_at);
}

}  // namespace zor::test
