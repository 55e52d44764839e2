// The main of the test programs: remembers where the program is, so that tests find the files
// the build put beside it, and runs death tests by re-executing the program, which is safe in the
// presence of the threads some tests start.

#include <gtest/gtest.h>

#include "support/process.hpp"

int main(int argc, char** argv) {
    zor::test::set_program_path(argv[0]);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
