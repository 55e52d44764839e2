#include "support/process.hpp"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace zor::test {

namespace {
std::filesystem::path g_program_path;
}

void set_program_path(const char* argv0) {
    g_program_path = std::filesystem::absolute(argv0);
}

std::filesystem::path program_directory() {
    return g_program_path.parent_path();
}

void set_env(const char* name, const char* value) {
#ifdef _WIN32
    // _putenv_s also updates the process environment block that GetEnvironmentVariableA reads.
    _putenv_s(name, value == nullptr ? "" : value);
#else
    if (value == nullptr) {
        unsetenv(name);
    } else {
        setenv(name, value, 1);
    }
#endif
}

std::filesystem::path fresh_directory(const std::string& name) {
    const std::filesystem::path dir = std::filesystem::temp_directory_path() / ("zor-test-" + name);
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    return dir;
}

void redirect_stdout(const std::filesystem::path& file) {
    std::fflush(stdout);
    if (std::freopen(file.string().c_str(), "w", stdout) == nullptr) std::abort();
}

std::string read_file(const std::filesystem::path& file) {
    // Text mode: on Windows the C runtime's standard output writes CR LF for each line feed.
    std::ifstream in(file);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace zor::test
