// Messages byte for byte on standard output: the built-in texts, xerbla's choice of message,
// the overflow rule, and texts from a real message catalog.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "service/handlers.hpp"
#include "service/messages.hpp"
#include "service/platform.hpp"
#include "support/process.hpp"

namespace zor {
namespace {

using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

struct XerblaCase {
    const char* name;
    int name_length;
    int info;
    const char* output;
};

class Xerbla : public ::testing::TestWithParam<XerblaCase> {};

TEST_P(Xerbla, PrintsTheMessageOfItsInfo) {
    const XerblaCase& c = GetParam();
    CaptureStdout();
    xerbla(c.name, &c.info, c.name_length);
    EXPECT_EQ(GetCapturedStdout(), c.output);
}

INSTANTIATE_TEST_SUITE_P(
    Infos, Xerbla,
    ::testing::Values(
        XerblaCase{"DGEMM ", 6, 3, "\nZOR ERROR: Parameter 3 was incorrect on entry to DGEMM \n"},
        XerblaCase{"DGETRF", 6, 0, "\nZOR INTERNAL ERROR: Condition 0 detected in function DGETRF\n"},
        XerblaCase{"DGETRF", 6, -12, "\nZOR INTERNAL ERROR: Condition 12 detected in function DGETRF\n"},
        XerblaCase{"DGEQRF", 6, 1000, "\nZOR INTERNAL ERROR: Not enough work memory in function DGEQRF\n"},
        XerblaCase{"DGEQRF", 6, 1001, "\nZOR ERROR: Incompatible optional parameters on entry to DGEQRF\n"},
        XerblaCase{"DGESV", 5, 1089, "\nZOR INTERNAL ERROR: Not enough work memory in function DGESV\n"},
        XerblaCase{"DGESV", 5, 1088, "\nZOR ERROR: Parameter 1088 was incorrect on entry to DGESV\n"},
        // Only the given length of an unterminated name, and at most 20 characters of it.
        XerblaCase{"DGEMVXYZ", 5, 2, "\nZOR ERROR: Parameter 2 was incorrect on entry to DGEMV\n"},
        XerblaCase{"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123", 30, 1,
                   "\nZOR ERROR: Parameter 1 was incorrect on entry to ABCDEFGHIJKLMNOPQRST\n"},
        // A name holding '%' is printed as it is, not formatted again.
        XerblaCase{"A%sB%n", 6, 4, "\nZOR ERROR: Parameter 4 was incorrect on entry to A%sB%n\n"}));

TEST(SameConversions, ComparesTheConversionSequence) {
    EXPECT_TRUE(same_conversions("a %d b %s", "%d then %s"));
    EXPECT_TRUE(same_conversions("%d", "value %5d"));
    EXPECT_TRUE(same_conversions("%s", "100%% in %s"));
    EXPECT_FALSE(same_conversions("%d %s", "%s %d"));
    EXPECT_FALSE(same_conversions("%d %s", "%d"));
    EXPECT_FALSE(same_conversions("%s", "%*s"));
    EXPECT_FALSE(same_conversions("%s", "trailing %"));
}

// The text of message 8 with a routine name that makes it `length` characters long.
std::string routine_name_for_length(int length) {
    const int fixed = static_cast<int>(std::strlen(builtin_message(kMsgNoWorkMemory).text)) - 2;
    return std::string(length - fixed, 'N');
}

TEST(MessageOverflow, LongestMessageIsPrinted) {
    const std::string name = routine_name_for_length(kMessageMaxLength);
    CaptureStdout();
    print_message(0, kMsgNoWorkMemory, 1, name.c_str());
    const std::string out = GetCapturedStdout();
    EXPECT_EQ(out.size(), static_cast<std::size_t>(kMessageMaxLength + 1));
    EXPECT_EQ(out, "ZOR INTERNAL ERROR: Not enough work memory in function " + name + "\n");
}

TEST(MessageOverflow, OneCharacterMoreEndsTheProcess) {
    const std::string name = routine_name_for_length(kMessageMaxLength + 1);
    const auto overflow = [&] {
        print_message(0, kMsgNoWorkMemory, 1, name.c_str());
        std::exit(0);
    };
    EXPECT_EQ(test::child_output(test::fresh_directory("overflow"), overflow, 8),
              "\nZOR INTERNAL ERROR: message buffer overflow."
              "\n       Message N 8   Lenght: 513   Buffer size: 512\n");
}

// The message catalog, in child processes: it is tried once per process.

class MessageCatalog : public ::testing::Test {
  protected:
    // A directory holding the test catalog where the library looks for it:
    // "<thread locale>/<catalog file>".
    static std::filesystem::path directory_with_catalog(const char* name) {
        const std::filesystem::path dir = test::fresh_directory(name);
        install_catalog(dir);
        return dir;
    }
    static void install_catalog(const std::filesystem::path& dir) {
        const std::filesystem::path locale_dir = dir / std::to_string(platform::thread_locale());
        std::filesystem::create_directories(locale_dir);
        std::filesystem::copy_file(test::program_directory() / "test-catalog" / platform::kCatalogFileName,
                                   locale_dir / platform::kCatalogFileName);
    }
    static void print_three_messages() {
        const int parameter = 3;
        const int condition = -4;
        const int no_memory = 1000;
        const int options = 1001;
        xerbla("DGEMM ", &parameter, 6);
        xerbla("DGEEV ", &condition, 6);
        xerbla("DGESDD", &no_memory, 6);
        xerbla("DGGES ", &options, 6);
    }
};

TEST_F(MessageCatalog, CatalogTextsReplaceBuiltInOnes) {
    const std::filesystem::path dir = directory_with_catalog("catalog");
    EXPECT_EQ(test::child_output(dir,
                                 [&] {
                                     std::filesystem::current_path(dir);
                                     print_three_messages();
                                     std::exit(message_catalog_in_use() ? 0 : 1);
                                 }),
              // from the catalog
              "\nCATALOG: parameter 3 is wrong in a call of DGEMM \n"
              // the catalog's text formats other arguments: the built-in one stays
              "\nZOR INTERNAL ERROR: Condition 4 detected in function DGEEV \n"
              // not in the catalog
              "\nZOR INTERNAL ERROR: Not enough work memory in function DGESDD\n"
              "\nCATALOG: options do not go together in DGGES \n");
}

TEST_F(MessageCatalog, WithoutCatalogBuiltInTextsStayForTheProcess) {
    const std::filesystem::path dir = test::fresh_directory("no-catalog");
    EXPECT_EQ(test::child_output(dir,
                                 [&] {
                                     std::filesystem::current_path(dir);
                                     cblas_xerbla("cblas_dgemv", 7);
                                     // A catalog that appears later is never loaded.
                                     install_catalog(dir);
                                     cblas_xerbla("cblas_dgemv", 4);
                                     std::exit(message_catalog_in_use() ? 1 : 0);
                                 }),
              "\nZOR ERROR: Parameter 7 was incorrect on entry to cblas_dgemv\n"
              "\nZOR ERROR: Parameter 4 was incorrect on entry to cblas_dgemv\n");
}

// Handler slots: the first registration wins, in a child process each.

std::string g_reported;

void recording_handler(const char* name, const void* info, int name_length) {
    std::int32_t code;
    std::memcpy(&code, info, sizeof code);
    g_reported = std::string(name, name_length) + ":" + std::to_string(code);
}

void other_handler(const char*, const void*, int) {
    g_reported = "other";
}

// The allocation check reports through the handler the first registration put in the slot.
TEST(HandlerSlots, FirstErrorHandlerRegistrationWins) {
    EXPECT_EXIT(
        {
            if (!register_error_handler(&recording_handler) || register_error_handler(&other_handler))
                std::exit(1);
            register_default_handlers();
            if (check_allocation(nullptr, "DGESV") != 1 || g_reported != "DGESV:1089") std::exit(2);
            std::exit(check_allocation(&g_reported, "DGESV"));
        },
        ::testing::ExitedWithCode(0), "");
}

int stop_at_step(const std::int32_t* thread, const std::int32_t* step, const char* stage, int stage_length) {
    return (*thread == 0 && std::string(stage, stage_length) == "XDGBTRF") ? *step : -1;
}

TEST(HandlerSlots, ProgressGoesToTheFirstRegisteredHandler) {
    EXPECT_EXIT(
        {
            if (report_progress(0, 64, "DGETRF", 6) != 0) std::exit(1);  // no handler yet
            register_progress_handler(&stop_at_step);
            register_default_handlers();
            std::exit(report_progress(0, 42, "XDGBTRF", 7));
        },
        ::testing::ExitedWithCode(42), "");
    EXPECT_EXIT(
        {
            register_default_handlers();
            std::exit(report_progress(0, 42, "XDGBTRF", 7));
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace zor
