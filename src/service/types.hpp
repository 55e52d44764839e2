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
