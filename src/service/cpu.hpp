#pragma once
// Processor detection: the level that selects each kernel's variant, and finer processor queries.
// Every decision is a pure function of the processor's registers and the environment text; the
// detect_ functions are cached wrappers that read the real processor once per process.

#include <cstdint>

#include "service/types.hpp"

namespace zor {

struct CpuidResult {
    std::uint32_t eax, ebx, ecx, edx;
};

// Executes CPUID with the given leaf and sub-leaf.
void cpuid(std::uint32_t leaf, std::uint32_t subleaf, std::uint32_t* eax, std::uint32_t* ebx,
           std::uint32_t* ecx, std::uint32_t* edx);
CpuidResult cpuid(std::uint32_t leaf, std::uint32_t subleaf = 0);
// XGETBV: the extended control register `index`. Only valid when CPUID reports OSXSAVE.
std::uint64_t xgetbv(std::uint32_t index);

// CPUID leaf 1 ECX bits the decisions read.
inline constexpr std::uint32_t kEcxSse3 = 1u << 0;
inline constexpr std::uint32_t kEcxSsse3 = 1u << 9;
inline constexpr std::uint32_t kEcxSse41 = 1u << 19;
inline constexpr std::uint32_t kEcxSse42 = 1u << 20;
inline constexpr std::uint32_t kEcxAes = 1u << 25;
inline constexpr std::uint32_t kEcxOsxsave = 1u << 27;
inline constexpr std::uint32_t kEcxAvx = 1u << 28;
// XCR0 bits 1 and 2: the operating system saves the XMM and YMM state.
inline constexpr std::uint64_t kXcr0SseAvxState = 6;

// What the level decisions read of the processor.
struct ProcessorFacts {
    char vendor[13];          // CPUID leaf 0: EBX, EDX, ECX, terminated
    std::uint32_t max_leaf;   // CPUID leaf 0: EAX
    std::uint32_t leaf1_eax;  // signature: stepping, model, family
    std::uint32_t leaf1_ecx;  // feature flags
    std::uint64_t xcr0;       // XGETBV(0) when OSXSAVE is set, else 0
};
ProcessorFacts read_processor_facts();

// The vendor whose processors are detected beyond the SSE2 level (a build setting).
extern const char kDesignatedVendor[];

// "ZOR_DEBUG_CPU_TYPE": `text` as read into a 32-byte buffer and `length` the lookup's result.
// Returns the overriding level 0..4, or -1 when the text is to be ignored.
int parse_cpu_type_override(const char* text, std::uint32_t length);

// The level the processor supports, by the designated vendor's feature bits.
CpuLevel decide_hardware_level(const ProcessorFacts& facts, const char* designated_vendor);

// The level in force: the override when there is one, else the hardware level.
CpuLevel decide_cpu_level(const ProcessorFacts& facts, const char* designated_vendor,
                          const char* override_text, std::uint32_t override_length);

// "ZOR_DEBUG_CPU_MA": the requested sub-level, or -1 when the variable is not set.
int parse_sublevel_request(const char* text, std::uint32_t length);

// The sub-level 0, 32, 33, 64, 66 or 128 of a level.
int decide_cpu_sublevel(CpuLevel level, std::uint32_t leaf1_ecx, int request);

// Family 10h: base family 0Fh with extended family 1, on an "AuthenticAMD" processor.
bool decide_amd_family_10h(const ProcessorFacts& facts);

// "Default", "Sse3", "Ssse3", "Sse42" or "Avx".
const char* cpu_level_name(CpuLevel level);

// Extensions beyond AVX that inner paths of the Avx variants may use: one bit each.
inline constexpr std::uint32_t kExtensionFma = 1u << 0;
inline constexpr std::uint32_t kExtensionAvx2 = 1u << 1;
inline constexpr std::uint32_t kExtensionAvx512f = 1u << 2;
// CPUID bits they read: leaf 1 ECX bit 12 (FMA), leaf 7 EBX bits 5 (AVX2) and 16 (AVX512F).
inline constexpr std::uint32_t kEcxFma = 1u << 12;
inline constexpr std::uint32_t kLeaf7EbxAvx2 = 1u << 5;
inline constexpr std::uint32_t kLeaf7EbxAvx512f = 1u << 16;
// XCR0 bits 5 to 7: the opmask and the upper ZMM state, which AVX-512 needs besides bits 1 and 2.
inline constexpr std::uint64_t kXcr0Avx512State = 0xE0;

// The extensions usable here: each needs its CPUID bit and AVX usable (OSXSAVE, AVX, XCR0 bits
// 1-2); AVX-512 also XCR0 bits 5-7. Whatever the vendor: the caller decides whether to look.
std::uint32_t decide_avx_extensions(std::uint32_t leaf1_ecx, std::uint32_t leaf7_ebx, std::uint64_t xcr0);

// Cached per process.
std::uint32_t detect_avx_extensions();
CpuLevel detect_cpu_level();
int detect_cpu_sublevel();
int is_amd_family_10h();
bool cpu_is_authentic_amd();

// Data and unified caches as reported by CPUID (leaf 4, or on processors that report nothing
// there, the extended leaf 8000001Dh of the same format), in the order reported.
struct CacheTable {
    int count;
    std::int64_t bytes[32];
};
// Decodes up to 32 sub-leaves of a cache-description leaf; stops at the first whose type is 0
// or whose size words are both 0, and skips instruction caches.
CacheTable decode_cache_leaf(const CpuidResult* subleaves, int count);
// cache_size(0): the last cache recorded (normally the last level); cache_size(i), i >= 1: the
// i-th; -1 when out of range or none is reported.
std::int64_t cache_size(int i);

}  // namespace zor
