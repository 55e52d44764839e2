// Processor-level decisions over fake processors and environments, and the cached wrappers end to
// end in child processes.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "service/cpu.hpp"
#include "support/process.hpp"

namespace zor {
namespace {

struct OverrideCase {
    const char* text;
    int expected;  // -1: ignored
};

class CpuTypeOverride : public ::testing::TestWithParam<OverrideCase> {};

TEST_P(CpuTypeOverride, ParsesAsDocumented) {
    const OverrideCase& c = GetParam();
    char buffer[32] = {};
    std::strncpy(buffer, c.text, sizeof buffer - 1);
    EXPECT_EQ(parse_cpu_type_override(buffer, static_cast<std::uint32_t>(std::strlen(c.text))), c.expected)
        << "ZOR_DEBUG_CPU_TYPE=\"" << c.text << "\"";
}

INSTANTIATE_TEST_SUITE_P(Values, CpuTypeOverride,
                         ::testing::Values(OverrideCase{"AVX2", 4}, OverrideCase{"JRDx", 3},
                                           OverrideCase{"0", 0}, OverrideCase{"2xyz", 2},
                                           OverrideCase{" 3", 3}, OverrideCase{"+2", 2},
                                           OverrideCase{"00", -1}, OverrideCase{"5", -1},
                                           OverrideCase{"-1", -1}, OverrideCase{" 0", -1},
                                           OverrideCase{"avx", -1},
                                           OverrideCase{"99999999999999999999", -1}));

TEST(CpuTypeOverride, UnsetOrTooLongIsIgnored) {
    char empty[32] = {};
    EXPECT_EQ(parse_cpu_type_override(empty, 0), -1);
    // A value that does not fit the 32-byte buffer: the lookup returns the size it needs and the
    // buffer holds nothing.
    EXPECT_EQ(parse_cpu_type_override(empty, 40), -1);
}

ProcessorFacts fake_processor(const char* vendor, std::uint32_t ecx, std::uint64_t xcr0) {
    ProcessorFacts facts{};
    std::memcpy(facts.vendor, vendor, 12);
    facts.max_leaf = 13;
    facts.leaf1_ecx = ecx;
    facts.xcr0 = xcr0;
    return facts;
}

struct ProcessorCase {
    const char* label;
    const char* vendor;
    std::uint32_t ecx;
    std::uint64_t xcr0;
    CpuLevel expected;
};

class HardwareLevel : public ::testing::TestWithParam<ProcessorCase> {};

TEST_P(HardwareLevel, FollowsTheFeatureBitsOfTheDesignatedVendor) {
    const ProcessorCase& c = GetParam();
    EXPECT_EQ(decide_hardware_level(fake_processor(c.vendor, c.ecx, c.xcr0), "AuthenticAMD"), c.expected)
        << c.label;
}

constexpr std::uint32_t kSse = kEcxSse3 | kEcxSsse3 | kEcxSse41 | kEcxSse42;
constexpr std::uint32_t kAvx = kSse | kEcxOsxsave | kEcxAvx;

INSTANTIATE_TEST_SUITE_P(
    FakeProcessors, HardwareLevel,
    ::testing::Values(
        ProcessorCase{"SSE3", "AuthenticAMD", kEcxSse3, 0, CpuLevel::Sse3},
        ProcessorCase{"SSSE3", "AuthenticAMD", kEcxSse3 | kEcxSsse3, 0, CpuLevel::Ssse3},
        ProcessorCase{"SSE4.1 without SSE4.2", "AuthenticAMD", kEcxSse3 | kEcxSsse3 | kEcxSse41, 0,
                      CpuLevel::Ssse3},
        ProcessorCase{"SSE4.2", "AuthenticAMD", kSse, 0, CpuLevel::Sse42},
        ProcessorCase{"AVX, exactly XMM and YMM state", "AuthenticAMD", kAvx, 6, CpuLevel::Avx},
        ProcessorCase{"AVX, OS saves no YMM state", "AuthenticAMD", kAvx, 3, CpuLevel::Sse42},
        ProcessorCase{"AVX, OS saves YMM but not XMM", "AuthenticAMD", kAvx, 5, CpuLevel::Sse42},
        ProcessorCase{"AVX without OSXSAVE", "AuthenticAMD", kSse | kEcxAvx, 7, CpuLevel::Sse42},
        ProcessorCase{"OSXSAVE without AVX", "AuthenticAMD", kSse | kEcxOsxsave, 7, CpuLevel::Sse42},
        ProcessorCase{"AVX and YMM but no SSE bits", "AuthenticAMD", kEcxOsxsave | kEcxAvx, 7, CpuLevel::Avx},
        ProcessorCase{"no YMM state and no SSE4.2", "AuthenticAMD",
                      kEcxSse3 | kEcxSsse3 | kEcxOsxsave | kEcxAvx, 3, CpuLevel::Ssse3},
        ProcessorCase{"another vendor with AVX", "GenuineIntel", kAvx, 7, CpuLevel::Default},
        ProcessorCase{"vendor differing in case", "authenticamd", kAvx, 7, CpuLevel::Default}),
    [](const ::testing::TestParamInfo<ProcessorCase>& info) { return "case" + std::to_string(info.index); });

TEST(CpuLevelDecision, OverrideAppliesUnverifiedOnAnyVendor) {
    const ProcessorFacts intel = fake_processor("GenuineIntel", 0, 0);
    EXPECT_EQ(decide_cpu_level(intel, "AuthenticAMD", "AVX2", 4), CpuLevel::Avx);
    EXPECT_EQ(decide_cpu_level(intel, "AuthenticAMD", "2", 1), CpuLevel::Ssse3);
    const ProcessorFacts amd = fake_processor("AuthenticAMD", kAvx, 7);
    EXPECT_EQ(decide_cpu_level(amd, "AuthenticAMD", "0", 1), CpuLevel::Default);
    EXPECT_EQ(decide_cpu_level(amd, "AuthenticAMD", "abc", 3), CpuLevel::Avx);
    EXPECT_EQ(decide_cpu_level(amd, "AuthenticAMD", "", 0), CpuLevel::Avx);
    // The designated vendor is a parameter of the decision, not a constant.
    EXPECT_EQ(decide_cpu_level(intel, "GenuineIntel", "", 0), CpuLevel::Default);
    EXPECT_EQ(decide_cpu_level(fake_processor("GenuineIntel", kSse, 0), "GenuineIntel", "", 0),
              CpuLevel::Sse42);
}

TEST(CpuSublevel, ByLevelFeatureBitsAndRequest) {
    EXPECT_EQ(decide_cpu_sublevel(CpuLevel::Sse42, kSse, -1), 64);
    EXPECT_EQ(decide_cpu_sublevel(CpuLevel::Sse42, kSse | kEcxAes, -1), 66);
    EXPECT_EQ(decide_cpu_sublevel(CpuLevel::Sse42, kSse | kEcxAes, 64), 64);
    EXPECT_EQ(decide_cpu_sublevel(CpuLevel::Sse42, kSse, 66), 66);
    EXPECT_EQ(decide_cpu_sublevel(CpuLevel::Sse42, kSse, 65), 64);
    EXPECT_EQ(decide_cpu_sublevel(CpuLevel::Avx, 0, 64), 128);
    EXPECT_EQ(decide_cpu_sublevel(CpuLevel::Ssse3, kEcxSsse3, 66), 32);
    EXPECT_EQ(decide_cpu_sublevel(CpuLevel::Ssse3, kEcxSsse3 | kEcxSse41, -1), 33);
    EXPECT_EQ(decide_cpu_sublevel(CpuLevel::Sse3, kAvx, 64), 0);

    EXPECT_EQ(parse_sublevel_request("", 0), -1);
    EXPECT_EQ(parse_sublevel_request("66", 2), 66);
    EXPECT_EQ(parse_sublevel_request(" 64abc", 6), 64);
    EXPECT_EQ(parse_sublevel_request("x", 1), 0);
}

TEST(AmdFamily10h, NeedsBaseFamilyFAndExtendedFamily1OnAuthenticAmd) {
    ProcessorFacts facts = fake_processor("AuthenticAMD", 0, 0);
    facts.leaf1_eax = 0x00100F42;  // family 10h, e.g. a Phenom II
    EXPECT_TRUE(decide_amd_family_10h(facts));
    facts.leaf1_eax = 0x00000F48;  // family 0Fh
    EXPECT_FALSE(decide_amd_family_10h(facts));
    facts.leaf1_eax = 0x00100E42;  // extended family 1 but base family 0Eh
    EXPECT_FALSE(decide_amd_family_10h(facts));
    ProcessorFacts other = fake_processor("GenuineIntel", 0, 0);
    other.leaf1_eax = 0x00100F42;
    EXPECT_FALSE(decide_amd_family_10h(other));
}

TEST(AvxExtensions, NeedUsableAvxAndTheirOwnStateBits) {
    const std::uint32_t all7 = kLeaf7EbxAvx2 | kLeaf7EbxAvx512f;
    constexpr std::uint64_t kZmmState = 0xE6;
    EXPECT_EQ(decide_avx_extensions(kAvx | kEcxFma, all7, kZmmState),
              kExtensionFma | kExtensionAvx2 | kExtensionAvx512f);
    EXPECT_EQ(decide_avx_extensions(kAvx | kEcxFma, kLeaf7EbxAvx2, 6), kExtensionFma | kExtensionAvx2);
    // FMA without AVX2 (as on AMD family 15h).
    EXPECT_EQ(decide_avx_extensions(kAvx | kEcxFma, 0, 6), kExtensionFma);
    // The operating system saves XMM and YMM but not the opmask and upper ZMM state.
    EXPECT_EQ(decide_avx_extensions(kAvx | kEcxFma, all7, 6), kExtensionFma | kExtensionAvx2);
    EXPECT_EQ(decide_avx_extensions(kAvx | kEcxFma, all7, 0x66), kExtensionFma | kExtensionAvx2);
    // Nothing at all without usable AVX: no AVX bit, no OSXSAVE, or no YMM state.
    EXPECT_EQ(decide_avx_extensions((kAvx & ~kEcxAvx) | kEcxFma, all7, kZmmState), 0u);
    EXPECT_EQ(decide_avx_extensions((kAvx & ~kEcxOsxsave) | kEcxFma, all7, kZmmState), 0u);
    EXPECT_EQ(decide_avx_extensions(kAvx | kEcxFma, all7, 0xE2), 0u);
}

CpuidResult cache_leaf(std::uint32_t type, std::uint32_t level, std::uint32_t ways, std::uint32_t partitions,
                       std::uint32_t line, std::uint32_t sets) {
    return {type | (level << 5), ((ways - 1) << 22) | ((partitions - 1) << 12) | (line - 1), sets - 1, 0};
}

TEST(CacheQuery, DecodesDataAndUnifiedCachesInOrder) {
    const CpuidResult leaves[] = {
        cache_leaf(1, 1, 12, 1, 64, 64),     // L1 data, 48 KiB
        cache_leaf(2, 1, 8, 1, 64, 64),      // L1 instruction: skipped
        cache_leaf(3, 2, 16, 1, 64, 2048),   // L2, 2 MiB
        cache_leaf(3, 3, 15, 1, 64, 34816),  // L3, 33 MiB (15 ways)
        {0, 0, 0, 0},
        cache_leaf(3, 4, 16, 1, 64, 1024),  // after the end: not read
    };
    const CacheTable table = decode_cache_leaf(leaves, 6);
    ASSERT_EQ(table.count, 3);
    EXPECT_EQ(table.bytes[0], 48 * 1024);
    EXPECT_EQ(table.bytes[1], 2 * 1024 * 1024);
    EXPECT_EQ(table.bytes[2], 15LL * 64 * 34816);
}

TEST(CacheQuery, StopsAtEmptySizeWords) {
    const CpuidResult leaves[] = {
        cache_leaf(1, 1, 8, 1, 64, 64), {3 | (2 << 5), 0, 0, 0}, cache_leaf(3, 3, 16, 1, 64, 8192)};
    const CacheTable table = decode_cache_leaf(leaves, 3);
    ASSERT_EQ(table.count, 1);
    EXPECT_EQ(table.bytes[0], 32 * 1024);
    EXPECT_EQ(decode_cache_leaf(leaves, 0).count, 0);
}

TEST(CacheQuery, CachedAnswerIsConsistent) {
    const std::int64_t last = cache_size(0);
    if (last < 0) GTEST_SKIP() << "this processor reports no caches";
    int count = 0;
    while (cache_size(count + 1) > 0) ++count;
    ASSERT_GE(count, 1);
    EXPECT_EQ(cache_size(count), last);
    EXPECT_EQ(cache_size(count + 1), -1);
    EXPECT_EQ(cache_size(-1), -1);
}

// The cached wrappers, each in a child process with its own environment: the exit status carries
// the answer.

class CachedDetection : public ::testing::Test {
  protected:
    void SetUp() override {
        test::set_env("ZOR_DEBUG_CPU_TYPE", nullptr);
        test::set_env("ZOR_DEBUG_CPU_MA", nullptr);
    }
    void TearDown() override { SetUp(); }

    static int hardware_level() {
        return static_cast<int>(decide_hardware_level(read_processor_facts(), kDesignatedVendor));
    }
};

// The override the pure decision above parses is read from the environment; an ignored one, like
// none, leaves the hardware's level.
TEST_F(CachedDetection, OverrideOrHardwareSelectsTheLevel) {
    const struct {
        const char* value;
        int level;
    } cases[] = {{nullptr, hardware_level()}, {"JRDx", 3}, {"00", hardware_level()}};
    for (const auto& c : cases) {
        test::set_env("ZOR_DEBUG_CPU_TYPE", c.value);
        EXPECT_EXIT(std::exit(static_cast<int>(detect_cpu_level())), ::testing::ExitedWithCode(c.level), "")
            << "ZOR_DEBUG_CPU_TYPE=" << (c.value ? c.value : "(unset)");
    }
}

TEST_F(CachedDetection, DecidedOncePerProcess) {
    test::set_env("ZOR_DEBUG_CPU_TYPE", "2");
    EXPECT_EXIT(
        {
            const CpuLevel first = detect_cpu_level();
            test::set_env("ZOR_DEBUG_CPU_TYPE", "4");
            std::exit(detect_cpu_level() == first ? static_cast<int>(first) : 100);
        },
        ::testing::ExitedWithCode(2), "");
}

TEST_F(CachedDetection, SublevelFollowsTheLevelAndTheRequest) {
    test::set_env("ZOR_DEBUG_CPU_TYPE", "JRD");
    test::set_env("ZOR_DEBUG_CPU_MA", "64");
    EXPECT_EXIT(std::exit(detect_cpu_sublevel()), ::testing::ExitedWithCode(64), "");
}

}  // namespace
}  // namespace zor
