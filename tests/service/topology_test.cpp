// The thread-count settings and the topology: parsing and counting over fake texts, APIC
// identifiers and affinity masks, and the real measurement once per child process.

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "service/cpu.hpp"
#include "service/platform.hpp"
#include "service/topology.hpp"
#include "support/process.hpp"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

namespace zor {
namespace {

EnvText env(const char* text) {
    return {text, static_cast<std::uint32_t>(std::strlen(text))};
}
constexpr EnvText kUnset{"", 0};
// A value too long for the lookup's buffer: set, but read as empty.
constexpr EnvText kTooLong{"", 300};

// Digits only: a count above 0 is kept, any other character makes it 1; nothing set, or a value too
// long for the lookup's buffer, keeps nothing.
TEST(ThreadCount, DigitsOnlyCount) {
    const std::pair<const char*, std::int32_t> cases[] = {
        {"4", 4}, {"4x", 1}, {"0", -1}, {" 4", 1}, {"99999999999999999999", INT32_MAX}, {"", -1}};
    for (const auto& [text, expected] : cases) EXPECT_EQ(parse_thread_count(env(text)), expected) << text;
    EXPECT_EQ(parse_thread_count(kUnset), -1);
    EXPECT_EQ(parse_thread_count(kTooLong), -1);
}

TEST(DynamicSetting, OnUnlessTheTextSaysFalse) {
    EXPECT_EQ(parse_dynamic(kUnset), 1);
    EXPECT_EQ(parse_dynamic(kTooLong), 1);
    for (const char* off : {"FALSE", "false", " \t' \"false", "falsehood"})
        EXPECT_EQ(parse_dynamic(env(off)), 0) << off;
    for (const char* on : {"False", "x false", "fals"}) EXPECT_EQ(parse_dynamic(env(on)), 1) << on;
}

struct DomainCase {
    const char* text;
    bool well_formed;
    std::int32_t all, blas, lapack;
};

class DomainThreads : public ::testing::TestWithParam<DomainCase> {};

TEST_P(DomainThreads, ParsesPairsUpToTheFirstMalformedOne) {
    const DomainCase& c = GetParam();
    std::int32_t counts[kDomainCount] = {-1, -1, -1};
    EXPECT_EQ(parse_domain_threads(env(c.text), counts), c.well_formed) << c.text;
    EXPECT_EQ(std::tie(counts[kDomainAll], counts[kDomainBlas], counts[kDomainLapack]),
              std::tie(c.all, c.blas, c.lapack))
        << c.text;
}

INSTANTIATE_TEST_SUITE_P(Texts, DomainThreads,
                         ::testing::Values(DomainCase{"ZOR_BLAS 2, ZOR_LAPACK=3", true, -1, 2, 3},
                                           DomainCase{" zor_all = 8; ZOR_Blas=1 ,", true, 8, 1, -1},
                                           DomainCase{"ZOR_ALL=0", true, -1, -1, -1},
                                           DomainCase{"ZOR_LAPACK=3,ZOR_FFT=2,ZOR_ALL=4", false, -1, -1, 3},
                                           DomainCase{"ZOR_ALL=3x", false, -1, -1, -1}));

TEST(ThreadSettings, RequestedCountComesFromTheFirstVariableThatGivesOne) {
    EXPECT_EQ(decide_thread_settings(env("4"), env("ZOR_ALL=2"), kUnset, env("8")).requested_threads, 4);
    EXPECT_EQ(decide_thread_settings(kUnset, env("ZOR_ALL=2"), kUnset, env("8")).requested_threads, 2);
    EXPECT_EQ(decide_thread_settings(env("0"), env("ZOR_BLAS=2"), kUnset, env("8")).requested_threads, 8);
    const ThreadSettings none = decide_thread_settings(kUnset, kUnset, kUnset, kUnset);
    EXPECT_EQ(std::tie(none.requested_threads, none.omp_threads, none.dynamic), std::make_tuple(-1, -1, 1));
    const ThreadSettings all = decide_thread_settings(env("3"), env("ZOR_LAPACK=5"), env("false"), env("7"));
    EXPECT_EQ(
        std::tie(all.requested_threads, all.domain_threads[kDomainLapack], all.dynamic, all.omp_threads),
        std::make_tuple(3, 5, 0, 7));
}

TEST(Topology, MaskWidth) {
    const std::int32_t counts[] = {1, 4, 5, 256, 0};
    const int widths[] = {0, 2, 3, 8, 16};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(mask_width(counts[i]), widths[i]) << counts[i];
}

TEST(Topology, PackageLayoutFromCpuidOnlyForTheDesignatedVendorWithMultipleThreads) {
    constexpr std::uint32_t kHtt = 1u << 28;
    const std::uint32_t ebx = (16u << 16) | 0x0800;
    const std::uint32_t leaf4 = (7u << 26) | 0x121;
    auto same = [](PackageLayout a, PackageLayout b) {
        return a.logical_per_package == b.logical_per_package && a.cores_per_package == b.cores_per_package;
    };
    EXPECT_TRUE(same(decide_package_layout(true, 11, ebx, kHtt, leaf4), {16, 8}));
    EXPECT_TRUE(same(decide_package_layout(true, 3, ebx, kHtt, leaf4), {16, 1}));
    EXPECT_TRUE(same(decide_package_layout(true, 11, ebx, 0, leaf4), {1, 1}));
    EXPECT_TRUE(same(decide_package_layout(false, 11, ebx, kHtt, leaf4), {1, 1}));
}

struct TopologyCase {
    const char* label;
    PackageLayout layout;
    std::vector<std::uint8_t> apic_ids;
    Topology expected;
};

class TopologyCount : public ::testing::TestWithParam<TopologyCase> {};

TEST_P(TopologyCount, CountsDistinctCoresAndPackages) {
    const TopologyCase& c = GetParam();
    Topology t;
    ASSERT_TRUE(count_topology(c.apic_ids.data(), static_cast<int>(c.apic_ids.size()), c.layout, &t));
    const Topology& e = c.expected;
    EXPECT_EQ(std::tie(t.logical, t.cores, t.packages, t.cores_per_package, t.shared_cores),
              std::tie(e.logical, e.cores, e.packages, e.cores_per_package, e.shared_cores))
        << c.label;
}

INSTANTIATE_TEST_SUITE_P(
    FakeProcessors, TopologyCount,
    ::testing::Values(
        TopologyCase{"two packages of four cores with two threads each",
                     {8, 4},
                     {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15},
                     {16, 8, 2, 4, 1}},
        TopologyCase{
            "another vendor: every processor its own package", {1, 1}, {0, 2, 4, 6}, {4, 4, 4, 1, 0}},
        TopologyCase{"sparse identifiers: two of eight possible cores, threads on both",
                     {16, 8},
                     {0, 1, 2, 3},
                     {4, 2, 1, 2, 1}},
        TopologyCase{"threads but the package seen only in part", {8, 4}, {32, 33, 36}, {3, 2, 1, 2, 1}}),
    [](const ::testing::TestParamInfo<TopologyCase>& info) { return "case" + std::to_string(info.index); });

TEST(TopologyCount, NothingSeenIsNotAMeasurement) {
    Topology t;
    EXPECT_FALSE(count_topology(nullptr, 0, {1, 1}, &t));
}

// A fake system for measure_topology: masks, the pins asked for, and an APIC identifier per
// processor.
struct FakeSystem {
    bool masks_known = true;
    std::uint64_t process_mask = 0;
    std::uint64_t system_mask = 0;
    std::uint64_t refused = 0;  // processors that cannot be pinned to
    std::vector<std::uint64_t> pins;
    int yields = 0;
    std::uint64_t current = 0;
};
FakeSystem g_fake;

const TopologyProbe kFakeProbe{
    [](std::uint64_t* process, std::uint64_t* system) {
        *process = g_fake.process_mask;
        *system = g_fake.system_mask;
        return g_fake.masks_known;
    },
    [](std::uint64_t mask) {
        g_fake.pins.push_back(mask);
        if (mask & g_fake.refused) return false;
        g_fake.current = mask;
        return true;
    },
    [] { ++g_fake.yields; },
    // Processor i has APIC identifier 2i.
    [] { return static_cast<std::uint32_t>(2 * std::countr_zero(g_fake.current)); },
};

// Each processor of the system mask is pinned to in turn, the highest too, and the process mask is
// restored; processors that refuse pinning are not counted.
TEST(TopologyMeasurement, PinsEachProcessorOfTheSystemMaskAndRestoresTheProcessMask) {
    g_fake = {};
    g_fake.process_mask = g_fake.system_mask = (std::uint64_t{1} << 63) | 0b1111;
    g_fake.refused = 0b0100;
    Topology t;
    ASSERT_TRUE(measure_topology(kFakeProbe, {1, 1}, &t));
    EXPECT_EQ(g_fake.pins,
              (std::vector<std::uint64_t>{1, 2, 4, 8, std::uint64_t{1} << 63, g_fake.system_mask}));
    EXPECT_EQ(std::tie(t.logical, t.cores, t.cores_per_package), std::make_tuple(4, 4, 1));
}

TEST(TopologyMeasurement, GivesUpWithoutPinningWhenTheMasksDiffer) {
    g_fake = {};
    g_fake.process_mask = 0b01;
    g_fake.system_mask = 0b11;
    Topology t;
    EXPECT_FALSE(measure_topology(kFakeProbe, {1, 1}, &t));
    g_fake.masks_known = false;
    g_fake.process_mask = 0b11;
    EXPECT_FALSE(measure_topology(kFakeProbe, {1, 1}, &t));
    EXPECT_TRUE(g_fake.pins.empty());
    EXPECT_EQ(t.cores_per_package, -1);
}

// The real measurement and settings, once per child process.

class MeasuredOnce : public ::testing::Test {
  protected:
    static constexpr const char* kVariables[] = {"ZOR_NUM_THREADS", "ZOR_DOMAIN_NUM_THREADS", "ZOR_DYNAMIC",
                                                 "OMP_NUM_THREADS"};
    void TearDown() override {
        for (const char* name : kVariables) test::set_env(name, nullptr);
    }
};

TEST_F(MeasuredOnce, ThisMachineHasCoresPerPackageAndItsAffinityBack) {
    std::uint64_t process = 0, system = 0;
    ASSERT_TRUE(platform::affinity_masks(&process, &system));
    if (process != system) GTEST_SKIP() << "this process runs on a narrowed affinity mask";
    const bool designated = std::strncmp(read_processor_facts().vendor, kDesignatedVendor, 12) == 0;
    EXPECT_EXIT(
        {
            const std::int32_t cores_per_package = topology_cores_per_package();
            const Topology t = measured_topology();
            std::uint64_t after_process = 0;
            std::uint64_t after_system = 0;
            platform::affinity_masks(&after_process, &after_system);
            if (cores_per_package < 1 || t.cores_per_package != cores_per_package) std::exit(1);
            if (t.logical != std::popcount(system) || t.cores < 1 || t.packages < 1) std::exit(2);
            if (after_process != process) std::exit(3);
            // Processors of other vendors: each logical processor its own core and package.
            if (!designated && (t.cores != t.logical || cores_per_package != 1 || t.shared_cores != 0))
                std::exit(4);
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(MeasuredOnce, NarrowedAffinityGivesUp) {
    std::uint64_t process = 0, system = 0;
    ASSERT_TRUE(platform::affinity_masks(&process, &system));
    if (std::popcount(system) < 2) GTEST_SKIP() << "one processor: no narrower mask";
    const std::uint64_t lowest = system & (~system + 1);
    EXPECT_EXIT(
        {
#ifdef _WIN32
            if (!SetProcessAffinityMask(GetCurrentProcess(), static_cast<DWORD_PTR>(lowest))) std::exit(5);
#else
            if (!platform::pin_current_thread(lowest)) std::exit(5);
#endif
            if (topology_cores_per_package() != -1) std::exit(1);
            // Never retried.
            if (topology_cores_per_package() != -1) std::exit(2);
            if (measured_topology().cores != -1 || measured_topology().logical != 1) std::exit(3);
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(MeasuredOnce, SettingsAreParsedOnTheFirstCall) {
    test::set_env("ZOR_NUM_THREADS", "4x");
    test::set_env("ZOR_DOMAIN_NUM_THREADS", "ZOR_BLAS=2, ZOR_LAPACK 6");
    test::set_env("ZOR_DYNAMIC", " 'false'");
    test::set_env("OMP_NUM_THREADS", "3");
    EXPECT_EXIT(
        {
            topology_cores_per_package();
            test::set_env("ZOR_NUM_THREADS", "9");
            topology_cores_per_package();
            const ThreadSettings s = thread_settings();
            std::exit(s.requested_threads == 1 && s.dynamic == 0 && s.omp_threads == 3 &&
                              s.domain_threads[kDomainBlas] == 2 && s.domain_threads[kDomainLapack] == 6 &&
                              s.domain_threads[kDomainAll] == -1
                          ? 0
                          : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace zor
