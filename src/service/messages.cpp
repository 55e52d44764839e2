#include "service/messages.hpp"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "service/platform.hpp"

namespace zor {

namespace {

// The catalog is tried once per process, on the first message other than the line feed; a
// failure is final. While one thread loads it, others print from the built-in table.
enum CatalogState : int { kNotTried = 0, kLoading = 1, kTried = 2 };
std::atomic<int> g_catalog_state{kNotTried};
std::atomic<void*> g_catalog{nullptr};

void* catalog() {
    int state = g_catalog_state.load(std::memory_order_acquire);
    if (state == kNotTried &&
        g_catalog_state.compare_exchange_strong(state, kLoading, std::memory_order_acquire)) {
        char path[64];
        std::snprintf(path, sizeof path, "%lu/%s", static_cast<unsigned long>(platform::thread_locale()),
                      platform::kCatalogFileName);
        g_catalog.store(platform::load_catalog(path), std::memory_order_relaxed);
        g_catalog_state.store(kTried, std::memory_order_release);
        state = kTried;
    }
    return state == kTried ? g_catalog.load(std::memory_order_relaxed) : nullptr;
}

// The catalog's text of `number` copied into `buffer`, without the line end a catalog entry
// carries; false when there is none to use.
bool catalog_text(int number, const char* built_in, char* buffer, std::size_t size) {
    void* module = catalog();
    if (module == nullptr) return false;
    char* text = platform::catalog_text(module, static_cast<std::uint32_t>(number), kCatalogLanguage);
    if (text == nullptr) return false;
    bool usable = false;
    const std::size_t length = std::strlen(text);
    if (length > 1 && text[length - 2] == '\r' && text[length - 1] == '\n') {
        const std::size_t kept = (length - 2 < size - 1) ? length - 2 : size - 1;
        std::memcpy(buffer, text, kept);
        buffer[kept] = '\0';
        usable = same_conversions(built_in, buffer);
    }
    platform::release_catalog_text(text);
    return usable;
}

// Skips one printf conversion (flags, width, precision, length) starting after '%'; returns its
// conversion character.
char conversion_at(const char*& p) {
    while (*p != '\0' && std::strchr("-+ #0123456789.*hlLqjzt", *p) != nullptr) {
        if (*p == '*') return '*';  // a width taken from the arguments counts as a conversion
        ++p;
    }
    return *p;
}

char next_conversion(const char*& p) {
    for (; *p != '\0'; ++p) {
        if (*p != '%') continue;
        ++p;
        if (*p == '%') continue;
        const char c = conversion_at(p);
        if (c != '\0') ++p;
        return c == '\0' ? '?' : c;
    }
    return '\0';
}

[[noreturn]] void overflow(int number, int length) {
    std::fputs("\nZOR INTERNAL ERROR: message buffer overflow.", stdout);
    std::fflush(nullptr);
    // The spelling of this line is part of the library's output.
    std::printf("\n       Message N %d   Lenght: %d   Buffer size: %d\n", number, length - 1,
                kMessageBufferSize);
    std::fflush(nullptr);
    std::exit(8);
}

}  // namespace

bool same_conversions(const char* built_in, const char* candidate) {
    for (;;) {
        const char a = next_conversion(built_in);
        const char b = next_conversion(candidate);
        if (a != b) return false;
        if (a == '\0') return true;
    }
}

bool message_catalog_in_use() {
    return catalog() != nullptr;
}

void print_message(int /*reserved*/, int number, int count, ...) {
    if (number == kMsgLineFeed) {
        std::fputc('\n', stdout);
        return;
    }
    const char* text = builtin_message(number).text;
    char catalog_copy[1024];
    if (catalog_text(number, text, catalog_copy, sizeof catalog_copy)) text = catalog_copy;

    // Large enough to tell a text of kMessageMaxLength characters from a longer one.
    char formatted[kMessageMaxLength + 2];
    int length = static_cast<int>(std::strlen(text));
    if (count > 0) {
        std::va_list args;
        va_start(args, count);
        length = std::vsnprintf(formatted, sizeof formatted, text, args);
        va_end(args);
        text = formatted;
    }
    if (length > kMessageMaxLength) overflow(number, length);
    // The text is written as it stands: an argument holding '%' is not formatted a second time.
    std::fputs(text, stdout);
    std::fputc('\n', stdout);
    std::fflush(nullptr);
}

void xerbla(const char* name, const void* info, int name_length) {
    char routine[21];
    const int limit = name_length < 20 ? name_length : 20;
    int length = 0;
    for (; length < limit && name[length] != '\0'; ++length) routine[length] = name[length];
    routine[length] = '\0';
    std::int32_t code;
    std::memcpy(&code, info, sizeof code);

    print_message(0, kMsgLineFeed, 0);
    if (code == 1000) {
        print_message(0, kMsgNoWorkMemory, 1, routine);
    } else if (code == 1001) {
        print_message(0, kMsgIncompatibleOptions, 1, routine);
    } else if (code == 1089) {
        print_message(0, kMsgAllocationFailure, 1, routine);
    } else if (code < 1) {
        print_message(0, kMsgInternalCondition, 2, static_cast<int>(0u - static_cast<std::uint32_t>(code)),
                      routine);
    } else {
        print_message(0, kMsgBadParameter, 2, code, routine);
    }
}

void cblas_xerbla(const char* name, int parameter) {
    print_message(0, kMsgLineFeed, 0);
    print_message(0, kMsgBadParameter, 2, parameter, name);
}

}  // namespace zor
