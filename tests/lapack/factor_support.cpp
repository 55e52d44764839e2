#include "lapack/factor_support.hpp"

#include "service/handlers.hpp"

namespace zor::test {

void expect_argument_error(const ArgumentCase& c) {
    ::testing::internal::CaptureStdout();
    const zint info = c.call();
    const std::string printed = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(info, c.expected);
    EXPECT_EQ(printed, "\nZOR ERROR: Parameter " + std::to_string(-c.expected) +
                           " was incorrect on entry to " + c.name + "\n");
}

void use_progress_log(int stop_at) {
    register_progress_handler(&ProgressLog::handler);
    ProgressLog::reset(stop_at);
}

}  // namespace zor::test
