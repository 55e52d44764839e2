#pragma once
// Running a test over the five kernel variants: each level is a test parameter, and a level this
// processor cannot execute is skipped, not silently left out.

#include <gtest/gtest.h>

#include <string>

#include "service/cpu.hpp"

namespace zor::test {

// The highest level this processor executes, whatever its vendor.
CpuLevel runnable_level();

inline const auto kAllLevels =
    ::testing::Values(CpuLevel::Default, CpuLevel::Sse3, CpuLevel::Ssse3, CpuLevel::Sse42, CpuLevel::Avx);

inline std::string level_param_name(const ::testing::TestParamInfo<CpuLevel>& info) {
    return cpu_level_name(info.param);
}

}  // namespace zor::test

// In a test parameterised over CpuLevel: skip when the processor cannot run that level.
#define ZOR_SKIP_UNLESS_RUNNABLE(level)                                                                     \
    do {                                                                                                    \
        if (static_cast<int>(level) > static_cast<int>(::zor::test::runnable_level()))                      \
            GTEST_SKIP() << "this processor cannot run the " << ::zor::cpu_level_name(level) << " variant"; \
    } while (0)

// In a test of one inner path of a level: skip also when the processor lacks the extensions beyond
// AVX (kExtensionFma, ...) that the path needs.
#define ZOR_SKIP_UNLESS_PATH_RUNS(level, needs)                                 \
    do {                                                                        \
        ZOR_SKIP_UNLESS_RUNNABLE(level);                                        \
        if ((::zor::detect_avx_extensions() & (needs)) != (needs))              \
            GTEST_SKIP() << "this processor lacks the extensions of this path"; \
    } while (0)

namespace zor::test {

// Names parameterised tests after their parameter's `name`.
struct NameOfParam {
    template <class P>
    std::string operator()(const ::testing::TestParamInfo<P>& info) const {
        return info.param.name;
    }
};

// The fixture of a test parameterised over the levels: a level the processor cannot run is
// skipped.
class LevelTest : public ::testing::TestWithParam<CpuLevel> {
  protected:
    void SetUp() override { ZOR_SKIP_UNLESS_RUNNABLE(GetParam()); }
    CpuLevel level() const { return GetParam(); }
};

}  // namespace zor::test
