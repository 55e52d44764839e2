// The kernel dispatcher: every variant of the probe family computes the same answer with its own
// instructions, the dispatcher settles on the variant of the detected level, and concurrent
// first calls agree on one choice.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "blas/dispatch.hpp"
#include "support/variants.hpp"

namespace zor {
namespace {

class ProbeVariant : public ::testing::TestWithParam<CpuLevel> {};

TEST_P(ProbeVariant, ComputesTheSameAnswerAtItsOwnLevel) {
    const CpuLevel level = GetParam();
    ZOR_SKIP_UNLESS_RUNNABLE(level);
    auto* probe = variant_probe.variant(level);
    // Lengths across the four- and two-element steps, with integer values so that any summation
    // order is exact.
    for (zint n = 0; n <= 11; ++n) {
        std::vector<double> x(n + 1);
        for (zint i = 0; i < n; ++i) x[i] = static_cast<double>(3 * i - 7);
        const ProbeResult result = probe(n, x.data());
        const ProbeResult reference = variant_probe.variant(CpuLevel::Default)(n, x.data());
        EXPECT_EQ(result.level, static_cast<int>(level));
        EXPECT_EQ(result.sum, reference.sum) << "n = " << n;
        EXPECT_EQ(result.sum, n * (3.0 * (n - 1) / 2 - 7)) << "n = " << n;
        EXPECT_EQ(result.crc, reference.crc) << "n = " << n;
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, ProbeVariant, test::kAllLevels, test::level_param_name);

TEST(KernelDispatcher, ChoosesTheVariantOfTheDetectedLevel) {
    const double x[3] = {1, 2, 3};
    const ProbeResult result = variant_probe(3, x);
    EXPECT_EQ(result.level, static_cast<int>(detect_cpu_level()));
    EXPECT_EQ(variant_probe.chosen(), variant_probe.variant(detect_cpu_level()));
}

// Five stand-in variants that report which one ran.
template <int Level>
int report_level(const int& offset) {
    return Level + offset;
}

TEST(KernelDispatcher, ConcurrentFirstCallsSettleOnOneChoice) {
    for (int round = 0; round < 20; ++round) {
        const KernelDispatcher<int(const int&)> dispatcher{
            &report_level<0>, &report_level<1>, &report_level<2>, &report_level<3>, &report_level<4>};
        ASSERT_EQ(dispatcher.chosen(), nullptr);
        constexpr int kThreads = 8;
        std::atomic<int> waiting{kThreads};
        std::vector<int> answers(kThreads, -1);
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t) {
            threads.emplace_back([&, t] {
                waiting.fetch_sub(1);
                while (waiting.load() > 0) {
                }
                answers[t] = dispatcher(100);
            });
        }
        for (std::thread& thread : threads) thread.join();
        const int expected = 100 + static_cast<int>(detect_cpu_level());
        for (int answer : answers) EXPECT_EQ(answer, expected);
        EXPECT_EQ(dispatcher.chosen(), dispatcher.variant(detect_cpu_level()));
    }
}

}  // namespace
}  // namespace zor
