#pragma once
// Process-level helpers for tests: the environment, the program's directory, and standard output
// of a child process captured into a file.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace zor::test {

void set_program_path(const char* argv0);
std::filesystem::path program_directory();

// Sets (or with value null, removes) an environment variable so that the library's own lookup
// sees it, on either platform.
void set_env(const char* name, const char* value);

// A fresh, empty directory under the system's temporary directory.
std::filesystem::path fresh_directory(const std::string& name);

// Sends standard output to `file` (in a death-test child, so that the parent can read it).
void redirect_stdout(const std::filesystem::path& file);
// The file as text, line ends read as line feeds.
std::string read_file(const std::filesystem::path& file);

// Runs `child` in a child process (a death test) with its standard output sent to dir/stdout.txt,
// expects it to exit with `status`, and returns what it printed.
template <class F>
std::string child_output(const std::filesystem::path& dir, F child, int status = 0) {
    EXPECT_EXIT(
        {
            redirect_stdout(dir / "stdout.txt");
            child();
        },
        ::testing::ExitedWithCode(status), "");
    return read_file(dir / "stdout.txt");
}

}  // namespace zor::test
