#pragma once
// The variant probe: a tiny dispatched family that proves the five-variant machinery. Each level's
// variant sums a vector with instructions of its own level (SSE3 horizontal adds, SSSE3 byte
// shuffles, the SSE4.2 CRC32 instruction, 256-bit AVX additions), so that running a variant on a
// processor below its level faults, and reports the level it was compiled for.

#include <cstdint>

#include "service/dispatch.hpp"
#include "service/types.hpp"

namespace zor {

struct ProbeResult {
    double sum;          // sum of x(0..n-1)
    std::uint32_t crc;   // CRC-32C of the bytes of x, the same at every level
    std::int32_t level;  // the CpuLevel the variant was compiled for
};

}  // namespace zor

ZOR_DECLARE_VARIANTS(ProbeResult variant_probe(const zint& n, const double* x);)
