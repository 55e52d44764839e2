#include "service/cpu.hpp"

#include <atomic>
#include <cstring>

#include "service/platform.hpp"
#include "service/spin_lock.hpp"

#ifndef ZOR_DESIGNATED_VENDOR
#error "ZOR_DESIGNATED_VENDOR is set by the build"
#endif

namespace zor {

const char kDesignatedVendor[] = ZOR_DESIGNATED_VENDOR;
static_assert(sizeof(kDesignatedVendor) == 13, "a CPUID vendor string has 12 characters");

SpinLock g_service_lock;

void cpuid(std::uint32_t leaf, std::uint32_t subleaf, std::uint32_t* eax, std::uint32_t* ebx,
           std::uint32_t* ecx, std::uint32_t* edx) {
    std::uint32_t a, b, c, d;
    __asm__ volatile("cpuid" : "=a"(a), "=b"(b), "=c"(c), "=d"(d) : "a"(leaf), "c"(subleaf));
    *eax = a;
    *ebx = b;
    *ecx = c;
    *edx = d;
}

CpuidResult cpuid(std::uint32_t leaf, std::uint32_t subleaf) {
    CpuidResult r;
    cpuid(leaf, subleaf, &r.eax, &r.ebx, &r.ecx, &r.edx);
    return r;
}

std::uint64_t xgetbv(std::uint32_t index) {
    std::uint32_t low, high;
    // Spelled as bytes so that no AVX target flag is needed to assemble it.
    __asm__ volatile(".byte 0x0f, 0x01, 0xd0" : "=a"(low), "=d"(high) : "c"(index));
    return (std::uint64_t{high} << 32) | low;
}

ProcessorFacts read_processor_facts() {
    ProcessorFacts facts{};
    const CpuidResult leaf0 = cpuid(0);
    facts.max_leaf = leaf0.eax;
    std::memcpy(facts.vendor, &leaf0.ebx, 4);
    std::memcpy(facts.vendor + 4, &leaf0.edx, 4);
    std::memcpy(facts.vendor + 8, &leaf0.ecx, 4);
    facts.vendor[12] = '\0';
    if (facts.max_leaf >= 1) {
        const CpuidResult leaf1 = cpuid(1);
        facts.leaf1_eax = leaf1.eax;
        facts.leaf1_ecx = leaf1.ecx;
        if (leaf1.ecx & kEcxOsxsave) facts.xcr0 = xgetbv(0);
    }
    return facts;
}

namespace {

// Decimal conversion as atoi does it: leading white space, an optional sign, then digits up to
// the first non-digit. Saturates instead of overflowing.
long parse_decimal(const char* text) {
    while (*text == ' ' || *text == '\t' || *text == '\n' || *text == '\v' || *text == '\f' || *text == '\r')
        ++text;
    bool negative = false;
    if (*text == '+' || *text == '-') negative = (*text++ == '-');
    long value = 0;
    for (; *text >= '0' && *text <= '9'; ++text) {
        if (value < 100000000) value = value * 10 + (*text - '0');
    }
    return negative ? -value : value;
}

}  // namespace

int parse_cpu_type_override(const char* text, std::uint32_t length) {
    if (length == 0) return -1;
    if (std::strncmp(text, "AVX", 3) == 0) return static_cast<int>(CpuLevel::Avx);
    if (std::strncmp(text, "JRD", 3) == 0) return static_cast<int>(CpuLevel::Sse42);
    const long value = parse_decimal(text);
    if (value != 0) return (value >= 1 && value <= 4) ? static_cast<int>(value) : -1;
    // A zero counts only when it is the whole text: "00" or "abc" are ignored.
    return (text[0] == '0' && text[1] == '\0') ? 0 : -1;
}

CpuLevel decide_hardware_level(const ProcessorFacts& facts, const char* designated_vendor) {
    if (std::strncmp(facts.vendor, designated_vendor, 12) != 0) return CpuLevel::Default;
    const std::uint32_t ecx = facts.leaf1_ecx;
    // AVX counts only when the operating system saves the YMM state; otherwise fall through.
    if ((ecx & kEcxOsxsave) && (ecx & kEcxAvx) && (facts.xcr0 & kXcr0SseAvxState) == kXcr0SseAvxState)
        return CpuLevel::Avx;
    if (ecx & kEcxSse42) return CpuLevel::Sse42;
    if (ecx & kEcxSsse3) return CpuLevel::Ssse3;
    if (ecx & kEcxSse3) return CpuLevel::Sse3;
    return CpuLevel::Default;
}

CpuLevel decide_cpu_level(const ProcessorFacts& facts, const char* designated_vendor,
                          const char* override_text, std::uint32_t override_length) {
    const int override_level = parse_cpu_type_override(override_text, override_length);
    if (override_level >= 0) return static_cast<CpuLevel>(override_level);
    return decide_hardware_level(facts, designated_vendor);
}

const char* cpu_level_name(CpuLevel level) {
    static constexpr const char* kNames[kCpuLevelCount] = {"Default", "Sse3", "Ssse3", "Sse42", "Avx"};
    const int index = static_cast<int>(level);
    return (index >= 0 && index < kCpuLevelCount) ? kNames[index] : "unknown";
}

int parse_sublevel_request(const char* text, std::uint32_t length) {
    if (length == 0) return -1;
    return static_cast<int>(parse_decimal(text));
}

int decide_cpu_sublevel(CpuLevel level, std::uint32_t leaf1_ecx, int request) {
    switch (level) {
        case CpuLevel::Sse42:
            if (request == 64 || request == 66) return request;
            return (leaf1_ecx & kEcxAes) ? 66 : 64;
        case CpuLevel::Avx:
            return 128;
        case CpuLevel::Ssse3:
            return (leaf1_ecx & kEcxSse41) ? 33 : 32;
        default:
            return 0;
    }
}

bool decide_amd_family_10h(const ProcessorFacts& facts) {
    if (std::strncmp(facts.vendor, "AuthenticAMD", 12) != 0) return false;
    const std::uint32_t base_family = (facts.leaf1_eax >> 8) & 0xF;
    const std::uint32_t extended_family = (facts.leaf1_eax >> 20) & 0xFF;
    return base_family == 0xF && extended_family == 1;
}

std::uint32_t decide_avx_extensions(std::uint32_t leaf1_ecx, std::uint32_t leaf7_ebx, std::uint64_t xcr0) {
    const bool avx_usable =
        (leaf1_ecx & kEcxOsxsave) && (leaf1_ecx & kEcxAvx) && (xcr0 & kXcr0SseAvxState) == kXcr0SseAvxState;
    if (!avx_usable) return 0;
    std::uint32_t extensions = 0;
    if (leaf1_ecx & kEcxFma) extensions |= kExtensionFma;
    if (leaf7_ebx & kLeaf7EbxAvx2) extensions |= kExtensionAvx2;
    if ((leaf7_ebx & kLeaf7EbxAvx512f) && (xcr0 & kXcr0Avx512State) == kXcr0Avx512State)
        extensions |= kExtensionAvx512f;
    return extensions;
}

namespace {

std::atomic<std::int32_t> g_cached_level{-1};
std::atomic<std::int32_t> g_cached_extensions{-1};
std::atomic<std::int32_t> g_cached_sublevel{-1};
std::atomic<std::int32_t> g_cached_family_10h{-1};
std::atomic<std::int32_t> g_cached_authentic_amd{-1};

}  // namespace

CpuLevel detect_cpu_level() {
    std::int32_t level = g_cached_level.load(std::memory_order_acquire);
    if (level >= 0) return static_cast<CpuLevel>(level);
    SpinLockGuard guard(g_service_lock);
    level = g_cached_level.load(std::memory_order_relaxed);
    if (level >= 0) return static_cast<CpuLevel>(level);
    char text[32];
    const std::uint32_t length = platform::get_env("ZOR_DEBUG_CPU_TYPE", text, sizeof text);
    level =
        static_cast<std::int32_t>(decide_cpu_level(read_processor_facts(), kDesignatedVendor, text, length));
    g_cached_level.store(level, std::memory_order_release);
    return static_cast<CpuLevel>(level);
}

// The sub-level, the family test and the extensions take no lock: racing callers compute the same answer.
int detect_cpu_sublevel() {
    std::int32_t sublevel = g_cached_sublevel.load(std::memory_order_relaxed);
    if (sublevel != -1) return sublevel;
    const CpuLevel level = detect_cpu_level();
    char text[32];
    const std::uint32_t length = platform::get_env("ZOR_DEBUG_CPU_MA", text, sizeof text);
    sublevel =
        decide_cpu_sublevel(level, read_processor_facts().leaf1_ecx, parse_sublevel_request(text, length));
    g_cached_sublevel.store(sublevel, std::memory_order_relaxed);
    return sublevel;
}

int is_amd_family_10h() {
    std::int32_t answer = g_cached_family_10h.load(std::memory_order_relaxed);
    if (answer != -1) return answer;
    answer = decide_amd_family_10h(read_processor_facts()) ? 1 : 0;
    g_cached_family_10h.store(answer, std::memory_order_relaxed);
    return answer;
}

std::uint32_t detect_avx_extensions() {
    std::int32_t answer = g_cached_extensions.load(std::memory_order_relaxed);
    if (answer == -1) {
        const ProcessorFacts facts = read_processor_facts();
        const std::uint32_t leaf7_ebx = facts.max_leaf >= 7 ? cpuid(7, 0).ebx : 0;
        answer = static_cast<std::int32_t>(decide_avx_extensions(facts.leaf1_ecx, leaf7_ebx, facts.xcr0));
        g_cached_extensions.store(answer, std::memory_order_relaxed);
    }
    return static_cast<std::uint32_t>(answer);
}

bool cpu_is_authentic_amd() {
    std::int32_t answer = g_cached_authentic_amd.load(std::memory_order_relaxed);
    if (answer == -1) {
        answer = std::strncmp(read_processor_facts().vendor, "AuthenticAMD", 12) == 0 ? 1 : 0;
        g_cached_authentic_amd.store(answer, std::memory_order_relaxed);
    }
    return answer == 1;
}

CacheTable decode_cache_leaf(const CpuidResult* subleaves, int count) {
    CacheTable table{};
    for (int i = 0; i < count && i < 32; ++i) {
        const CpuidResult& r = subleaves[i];
        const std::uint32_t type = r.eax & 0x1F;
        if (type == 0 || (r.ebx == 0 && r.ecx == 0)) break;
        if (type == 2) continue;  // instruction cache
        const std::int64_t ways = ((r.ebx >> 22) & 0x3FF) + 1;
        const std::int64_t partitions = ((r.ebx >> 12) & 0x3FF) + 1;
        const std::int64_t line = (r.ebx & 0xFFF) + 1;
        const std::int64_t sets = std::int64_t{r.ecx} + 1;
        table.bytes[table.count++] = ways * partitions * line * sets;
    }
    return table;
}

namespace {

CacheTable read_cache_leaf(std::uint32_t leaf) {
    CpuidResult subleaves[32];
    for (std::uint32_t i = 0; i < 32; ++i) subleaves[i] = cpuid(leaf, i);
    return decode_cache_leaf(subleaves, 32);
}

CacheTable read_cache_table() {
    CacheTable table{};
    if (cpuid(0).eax >= 4) table = read_cache_leaf(4);
    if (table.count == 0) {
        // AMD processors describe their caches in leaf 8000001Dh (with topology extensions).
        const std::uint32_t max_extended = cpuid(0x80000000u).eax;
        const bool topology_extensions = max_extended >= 0x80000001u && (cpuid(0x80000001u).ecx & (1u << 22));
        if (max_extended >= 0x8000001Du && topology_extensions) table = read_cache_leaf(0x8000001Du);
    }
    return table;
}

std::atomic<bool> g_cache_table_ready{false};
CacheTable g_cache_table;

}  // namespace

std::int64_t cache_size(int i) {
    if (!g_cache_table_ready.load(std::memory_order_acquire)) {
        SpinLockGuard guard(g_service_lock);
        if (!g_cache_table_ready.load(std::memory_order_relaxed)) {
            g_cache_table = read_cache_table();
            g_cache_table_ready.store(true, std::memory_order_release);
        }
    }
    if (i == 0) return g_cache_table.count > 0 ? g_cache_table.bytes[g_cache_table.count - 1] : -1;
    if (i < 1 || i > g_cache_table.count) return -1;
    return g_cache_table.bytes[i - 1];
}

}  // namespace zor
