#pragma once
// Types shared by every layer of the library.

#include <cstdint>

namespace zor {

// Integers behind the Fortran-style layer: 64-bit, passed by reference.
using zint = std::int64_t;

// A double-complex value: two adjacent doubles, real part first (the caller's storage).
struct zcomplex {
    double re;
    double im;
};

// Processor levels, one kernel variant each.
enum class CpuLevel : std::int32_t { Default = 0, Sse3 = 1, Ssse3 = 2, Sse42 = 3, Avx = 4 };
inline constexpr int kCpuLevelCount = 5;

}  // namespace zor

// Inline functions of headers that both kernel sources (compiled once per level, some of them under
// target pragmas of their own) and baseline code include sit between ZOR_INLINE_BEGIN and
// ZOR_INLINE_END inside namespace zor. In a kernel source that is an unnamed inline namespace, so
// every copy is private to its object and the linker can never hand one compiled for AVX (or
// AVX-512) to a caller of another level; in baseline code it is a named inline namespace. Either
// way they are members of zor for every lookup, argument-dependent lookup of operators included.
#if defined(ZOR_LEVEL_NS)
#define ZOR_INLINE_BEGIN inline namespace {
#else
#define ZOR_INLINE_BEGIN inline namespace baseline {
#endif
#define ZOR_INLINE_END }
