#pragma once
// Included first by every source that is compiled once per processor level. ZOR_LEVEL (0..4) and
// ZOR_LEVEL_NS (default_, sse3, ssse3, sse42, avx) come from the build. Everything such a source
// defines goes into namespace zor::ZOR_LEVEL_NS or has internal linkage there, so that the five
// copies stay five different symbols.

#include "service/types.hpp"

#if !defined(ZOR_LEVEL) || !defined(ZOR_LEVEL_NS)
#error "kernel sources are compiled once per processor level by the five-variant build"
#endif

// ZOR_TARGET_BEGIN("fma") lets the rest of a kernel source use instructions beyond its level's flags:
// GCC's target pragma, or for clang an attribute pushed onto every function that follows, which
// ZOR_TARGET_END pops at the end of the source. Include <immintrin.h> before it.
#define ZOR_PRAGMA(text) _Pragma(#text)
#if defined(__clang__)
#define ZOR_TARGET_BEGIN(features) \
    ZOR_PRAGMA(clang attribute push(__attribute__((target(features))), apply_to = function))
#define ZOR_TARGET_END ZOR_PRAGMA(clang attribute pop)
#else
#define ZOR_TARGET_BEGIN(features) ZOR_PRAGMA(GCC target(features))
#define ZOR_TARGET_END
#endif

namespace zor::ZOR_LEVEL_NS {

inline constexpr CpuLevel kLevel = static_cast<CpuLevel>(ZOR_LEVEL);

}  // namespace zor::ZOR_LEVEL_NS
