#pragma once
// Included first by every source that is compiled once per processor level. ZOR_LEVEL (0..4) and
// ZOR_LEVEL_NS (default_, sse3, ssse3, sse42, avx) come from the build. Everything such a source
// defines goes into namespace zor::ZOR_LEVEL_NS or has internal linkage there, so that the five
// copies stay five different symbols.

#include "service/types.hpp"

#if !defined(ZOR_LEVEL) || !defined(ZOR_LEVEL_NS)
#error "kernel sources are compiled once per processor level by the five-variant build"
#endif

namespace zor::ZOR_LEVEL_NS {

inline constexpr CpuLevel kLevel = static_cast<CpuLevel>(ZOR_LEVEL);

}  // namespace zor::ZOR_LEVEL_NS
