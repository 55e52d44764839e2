#include "fuzz.hpp"

#include <sanitizer/allocator_interface.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>

namespace zor::fuzz {

namespace {

constexpr zor_int kHuge = std::numeric_limits<zor_int>::max();
constexpr zor_int kMost = std::numeric_limits<zor_int>::min();
// A valid call whose arrays hold more elements than this in all is skipped: too slow to be worth it.
constexpr std::int64_t kLargestCall = std::int64_t{1} << 16;

zor_int saturated(std::int64_t v) {
    return v > kHuge ? kHuge : v < kMost ? kMost : static_cast<zor_int>(v);
}

// Standard output of the library, captured in a memory file around each call.
class Capture {
  public:
    Capture() : file_(memfd_create("zor-fuzz-stdout", 0)), saved_(dup(STDOUT_FILENO)) {
        if (file_ < 0 || saved_ < 0) std::abort();
    }
    void start() {
        std::fflush(stdout);
        if (ftruncate(file_, 0) != 0 || lseek(file_, 0, SEEK_SET) != 0) std::abort();
        dup2(file_, STDOUT_FILENO);
    }
    std::string stop() {
        std::fflush(stdout);
        dup2(saved_, STDOUT_FILENO);
        std::string text;
        char buffer[4096];
        for (off_t at = 0;;) {
            const ssize_t got = pread(file_, buffer, sizeof buffer, at);
            if (got <= 0) break;
            text.append(buffer, static_cast<std::size_t>(got));
            at += got;
        }
        return text;
    }

  private:
    int file_;
    int saved_;
};

Capture& capture() {
    static Capture instance;
    return instance;
}

// Allocations made while an export runs (the library has its cache of work areas turned off, so
// each of its work areas is one).
volatile bool g_counting = false;
volatile long g_allocations = 0;

void count_allocation(const volatile void*, std::size_t) {
    if (g_counting) g_allocations = g_allocations + 1;
}
void ignore_release(const volatile void*) {}

std::string shown(const std::string& text) {
    std::string out;
    for (const char ch : text) {
        if (ch == '\n') {
            out += "\\n";
        } else {
            out += ch;
        }
    }
    return "\"" + out + "\"";
}

// With ZOR_FUZZ_STATS set, how the calls of each export ended, printed when the process exits: to
// see that an export is reached on every path (argument errors, calls that compute, quick returns).
struct Outcomes {
    long errors = 0, computed = 0, quick = 0, skipped = 0;
};
std::map<std::string, Outcomes>* g_outcomes = nullptr;

void print_outcomes() {
    std::fprintf(stderr, "%-18s %10s %10s %10s %10s\n", "export", "errors", "computed", "quick", "too large");
    for (const auto& [name, o] : *g_outcomes)
        std::fprintf(stderr, "%-18s %10ld %10ld %10ld %10ld\n", name.c_str(), o.errors, o.computed, o.quick,
                     o.skipped);
}

}  // namespace

void prepare() {
    if (std::getenv("ZOR_FUZZ_STATS") != nullptr) {
        g_outcomes = new std::map<std::string, Outcomes>;
        std::atexit(print_outcomes);
    }
    setenv("ZOR_DISABLE_FAST_MM", "1", 1);
    __sanitizer_install_malloc_and_free_hooks(count_allocation, ignore_release);
    // The message catalog is looked for, and standard output's buffer made, on the first message.
    const zor_int bad = -1;
    zor_int ipiv = 0, info = 0;
    double a = 0.0;
    capture().start();
    dgetrf(&bad, &bad, &a, &bad, &ipiv, &info);
    capture().stop();
}

std::uint32_t Input::bits32() {
    std::uint32_t v = 0;
    for (int i = 0; i < 4; ++i) v = v << 8 | byte();
    return v;
}

Call::Call(Input& input, const char* routine) : input_(input), routine_(routine) {
    tiny_ = input_.byte() % 4;
    seed_ = input_.bits32();
    poison_ = input_.byte();
}

Call::~Call() {
    for (Array& array : arrays_) std::free(array.data);
}

void Call::log(const char* name, const std::string& value) {
    if (!arguments_.empty()) arguments_ += ", ";
    arguments_ += name;
    arguments_ += '=';
    arguments_ += value;
}

zor_int Call::dimension(const char* name) {
    const std::uint8_t kind = input_.byte() % 16;
    zor_int v;
    if (kind < 8) {
        v = input_.byte() % 9;
    } else if (kind < 10) {
        v = 9 + (input_.byte() << 8 | input_.byte()) % 292;
    } else if (kind == 10) {
        v = -1;
    } else if (kind == 11) {
        v = static_cast<zor_int>(input_.bits32() | 0x80000000u);
    } else if (kind == 12) {
        v = kHuge - input_.byte() % 4;
    } else if (kind == 13) {
        v = 1000000;
    } else if (kind == 14) {
        static constexpr zor_int kEdges[] = {46341, 65536, 1 << 30, 1 << 20, 2, 31, 32, 33, 64, 65, 128, 129};
        v = kEdges[input_.byte() % (sizeof kEdges / sizeof kEdges[0])];
    } else {
        v = static_cast<zor_int>(input_.bits32());
    }
    log(name, std::to_string(v));
    return v;
}

zor_int Call::leading(const char* name, std::int64_t rows) {
    const std::int64_t needed = max1(rows);
    const std::uint8_t kind = input_.byte() % 16;
    std::int64_t v;
    if (kind < 6) {
        v = needed;
    } else if (kind < 8) {
        v = needed + input_.byte() % 9;
    } else if (kind == 8) {
        v = needed - 1;
    } else if (kind == 9) {
        v = 0;
    } else if (kind == 10) {
        v = -1 - input_.byte();
    } else if (kind == 11) {
        v = kHuge;
    } else if (kind == 12) {
        v = 1;
    } else if (kind == 13) {
        v = kMost;
    } else {
        v = static_cast<zor_int>(input_.bits32());
    }
    const zor_int ld = saturated(v);
    log(name, std::to_string(ld));
    return ld;
}

zor_int Call::increment(const char* name) {
    const std::uint8_t kind = input_.byte() % 16;
    zor_int v;
    if (kind < 8) {
        v = 1;
    } else if (kind < 10) {
        v = -1;
    } else if (kind == 10) {
        v = 0;
    } else if (kind < 13) {
        v = input_.byte() % 11 - 5;
    } else if (kind == 13) {
        v = kHuge;
    } else if (kind == 14) {
        v = kMost;
    } else {
        v = static_cast<zor_int>(input_.bits32());
    }
    log(name, std::to_string(v));
    return v;
}

zor_int Call::workspace(const char* name, std::int64_t needed) {
    const std::uint8_t kind = input_.byte() % 8;
    std::int64_t v;
    if (kind < 3) {
        v = max1(needed) + (kind == 2 ? input_.byte() % 64 : 0);
    } else if (kind < 5) {
        v = -1;
    } else if (kind == 5) {
        v = max1(needed) - 1;
    } else if (kind == 6) {
        v = -2 - input_.byte();
    } else {
        v = static_cast<zor_int>(input_.bits32());
    }
    const zor_int lwork = saturated(v);
    log(name, std::to_string(lwork));
    return lwork;
}

int Call::enumeration(const char* name, int first, int count) {
    const std::uint8_t kind = input_.byte() % 16;
    int v;
    if (kind < 10) {
        v = first + input_.byte() % count;
    } else if (kind == 10) {
        v = first - 1;
    } else if (kind == 11) {
        v = first + count;
    } else if (kind == 12) {
        // A valid value of another enumeration.
        static constexpr int kOthers[] = {101, 102, 111, 112, 113, 121, 122, 131, 132, 141, 142};
        v = kOthers[input_.byte() % (sizeof kOthers / sizeof kOthers[0])];
    } else if (kind == 13) {
        v = 0;
    } else if (kind == 14) {
        v = -1;
    } else {
        v = static_cast<int>(input_.bits32());
    }
    log(name, std::to_string(v));
    return v;
}

char Call::letter(const char* name, const char* valid) {
    const std::uint8_t kind = input_.byte() % 16;
    char v;
    if (kind < 10) {
        v = valid[input_.byte() % std::strlen(valid)];
        if (kind % 2 == 1) v = static_cast<char>(v + ('a' - 'A'));
    } else {
        v = static_cast<char>(input_.byte());
    }
    char shown_letter[16];
    if (v >= 0x21 && v < 0x7f) {
        std::snprintf(shown_letter, sizeof shown_letter, "'%c'", v);
    } else {
        std::snprintf(shown_letter, sizeof shown_letter, "0x%02x", static_cast<unsigned char>(v));
    }
    log(name, shown_letter);
    return v;
}

double Call::real(const char* name) {
    const std::uint8_t kind = input_.byte() % 16;
    static constexpr double kValues[] = {0.0, 1.0, -1.0, 0.5, 2.0, -0.0, 1e-310, 1e308, -3.0, 0.25};
    double v;
    if (kind < 10) {
        v = kValues[kind];
    } else if (kind == 10) {
        v = std::numeric_limits<double>::quiet_NaN();
    } else if (kind == 11) {
        v = std::numeric_limits<double>::infinity();
    } else if (kind == 12) {
        v = -std::numeric_limits<double>::infinity();
    } else {
        v = static_cast<double>(static_cast<std::int32_t>(input_.bits32())) / 1e6;
    }
    char text[32];
    std::snprintf(text, sizeof text, "%g", v);
    log(name, text);
    return v;
}

zor_complex_double Call::complex(const char* name) {
    const std::string re = std::string(name) + ".re", im = std::string(name) + ".im";
    return {real(re.c_str()), real(im.c_str())};
}

template <>
double Call::scalar<double>(const char* name) {
    return real(name);
}
template <>
zor_complex_double Call::scalar<zor_complex_double>(const char* name) {
    return complex(name);
}

std::string Call::report(int parameter, const char* name) const {
    return "\nZOR ERROR: Parameter " + std::to_string(parameter) + " was incorrect on entry to " + name +
           "\n";
}

void Call::cblas(std::initializer_list<Check> checks, const char* fortran) {
    modelled_ = true;
    int unset = 0;
    for (const Check& check : checks) {
        if (!check.failed) continue;
        error_ = true;
        expected_ += report(check.parameter, routine_);
        if (check.goes_on_as == 0) {
            ended_ = true;
            return;
        }
        if (unset == 0) unset = check.goes_on_as;
    }
    if (unset != 0) {
        if (fortran == nullptr) fail("the model of a letter that goes on names no Fortran-style routine");
        expected_ += report(unset, fortran);
    }
}

void Call::lapack(const char* name, std::initializer_list<Check> checks) {
    modelled_ = true;
    lapack_ = true;
    char padded[8];
    std::snprintf(padded, sizeof padded, "%-6s", name);
    for (const Check& check : checks) {
        if (!check.failed) continue;
        error_ = ended_ = true;
        expected_ = report(check.parameter, padded);
        expected_info_ = -check.parameter;
        return;
    }
}

void Call::unchecked(bool quick) {
    modelled_ = true;
    quick_ = quick;
}

unsigned char* Call::allocate(const char* name, std::int64_t count, std::size_t element, Use use) {
    if (!modelled_) fail(std::string("array ") + name + " asked for before the model");
    const bool sized = !ended_ && !quick_ && use != Use::Untouched;
    if (sized && count < 0) fail(std::string("the model sizes ") + name + " with a negative count");
    if (sized && !too_large_) {
        elements_ += count;
        if (elements_ > kLargestCall) too_large_ = true;
    }
    const std::size_t n = static_cast<std::size_t>(sized && !too_large_ ? count : tiny_);
    auto* data = static_cast<unsigned char*>(std::malloc(n * element));
    if (data == nullptr && n != 0) fail("the fuzzer ran out of memory");
    fill(data, n * element, element);
    arrays_.push_back({name, data, n * element, use, {}});
    return data;
}

void Call::fill(unsigned char* data, std::size_t bytes, std::size_t element) {
    if (element == sizeof(zor_int)) {
        std::memset(data, 0x5a, bytes);  // integer arrays the routine only writes (pivots)
        return;
    }
    auto* values = reinterpret_cast<double*>(data);
    const std::size_t count = bytes / sizeof(double);
    for (std::size_t i = 0; i < count; ++i) {
        seed_ = seed_ * 1664525u + 1013904223u;
        values[i] = static_cast<double>(seed_ >> 8) / 8388608.0 - 1.0;
    }
    // Now and then a NaN or an infinity among the values.
    if (count > 0 && poison_ % 8 == 7) {
        values[(seed_ >> 4) % count] =
            poison_ & 8 ? std::numeric_limits<double>::infinity() : std::numeric_limits<double>::quiet_NaN();
    }
}

void Call::steps(std::int64_t count) {
    if (!ended_ && !quick_ && count > kLargestCall) too_large_ = true;
}

template <class T>
T* Call::array(const char* name, std::int64_t count, Use use) {
    return reinterpret_cast<T*>(allocate(name, count, sizeof(T), use));
}
template double* Call::array<double>(const char*, std::int64_t, Use);
template zor_complex_double* Call::array<zor_complex_double>(const char*, std::int64_t, Use);
template zor_int* Call::array<zor_int>(const char*, std::int64_t, Use);

zor_int* Call::pivots(const char* name, std::int64_t n, std::int64_t reach, Use use) {
    zor_int* ipiv = array<zor_int>(name, n, use);
    const Array& array = arrays_.back();
    const std::size_t count = array.bytes / sizeof(zor_int);
    for (std::size_t i = 0; i < count; ++i) {
        seed_ = seed_ * 1664525u + 1013904223u;
        const std::int64_t first = static_cast<std::int64_t>(i) + 1;
        const std::int64_t last = max_of(first, min_of(first + max_of(reach, 0), n));
        ipiv[i] = static_cast<zor_int>(first + (seed_ >> 8) % (last - first + 1));
    }
    return ipiv;
}

bool Call::begin() {
    if (!modelled_) fail("the export was run without a model");
    if (g_outcomes != nullptr) {
        Outcomes& o = (*g_outcomes)[routine_];
        ++(too_large_ ? o.skipped : error_ ? o.errors : quick_ ? o.quick : o.computed);
    }
    if (too_large_) return false;
    for (Array& array : arrays_) array.before.assign(array.data, array.data + array.bytes);
    capture().start();
    g_allocations = 0;
    g_counting = true;
    return true;
}

void Call::end() {
    g_counting = false;
    const long allocations = g_allocations;
    printed_ = capture().stop();
    if (printed_ != expected_) fail("printed " + shown(printed_) + ", expected " + shown(expected_));
    for (const Array& array : arrays_) {
        const bool kept = array.use != Use::InOut || error_ || quick_;
        if (kept && array.bytes != 0 && std::memcmp(array.before.data(), array.data, array.bytes) != 0)
            fail("array " + array.name + " was changed");
    }
    if (ended_ && allocations != 0)
        fail("allocated " + std::to_string(allocations) + " block(s) before reporting the argument error");
}

void Call::check_info(zor_int info) {
    if (error_ && info != expected_info_) {
        fail("info " + std::to_string(info) + ", expected " + std::to_string(expected_info_));
    }
    if (!error_ && info < 0) fail("info " + std::to_string(info) + " on valid arguments");
}

void Call::require(bool ok, const char* what) {
    if (!ok) fail(std::string("expected ") + what);
}

void Call::fail(const std::string& what) {
    g_counting = false;
    std::fprintf(stderr, "\nzor-fuzz: %s(%s): %s\n", routine_, arguments_.c_str(), what.c_str());
    std::abort();
}

}  // namespace zor::fuzz
