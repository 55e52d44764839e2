// The test of the argument-check tables (support/arguments.hpp), compiled into the test program
// itself so that every file's instantiation finds it.

#include "support/arguments.hpp"

#include <string>

namespace zor::test {
namespace {

TEST_P(ArgumentChecks, ReportTheFirstBadParameter) {
    const ArgumentCase& c = GetParam();
    ::testing::internal::CaptureStdout();
    const zint info = c.call();
    const std::string printed = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(info, c.expected);
    const zint parameter = c.expected < 0 ? -c.expected : c.expected;
    EXPECT_EQ(printed, parameter == 0 ? std::string()
                                      : "\nZOR ERROR: Parameter " + std::to_string(parameter) +
                                            " was incorrect on entry to " + c.name + "\n");
}

}  // namespace
}  // namespace zor::test
