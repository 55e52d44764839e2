#pragma once
// Blocking of the GEMM engines. The table-driven variants (Avx, Sse42, Ssse3) carry a per-call
// GemmBlockingParams loaded from a constant record of their level; the fixed variants (Default,
// Sse3) use the block rules below. Everything here is compiled once, for the baseline: the
// decisions are plain integer arithmetic and pure functions of their arguments (the cache size is
// an argument too), so that tests can feed them any machine.

#include <cstdint>

#include "service/types.hpp"

namespace zor {

// Codes of buffer_sizes and get_buffers: which work areas, and whether to clamp the blocks to the
// problem.
inline constexpr int kGemmAreasAll = 100;
inline constexpr int kGemmAreaA = 101;
inline constexpr int kGemmAreaB = 102;
inline constexpr int kGemmAreasAB = 103;
inline constexpr int kGemmAreasBThird = 104;
inline constexpr int kGemmAreasAThird = 105;
inline constexpr int kGemmAreaThird = 106;
inline constexpr int kGemmClampToProblem = 107;
inline constexpr int kGemmBlocksAsTheyAre = 108;

// One work area of a call: where it starts, its size, its alignment and the elements of one
// micro-panel it holds.
struct GemmBuffer {
    void* start;
    std::int64_t bytes;
    std::int32_t alignment_log2;
    std::int64_t panel_elements;
};

template <class T>
struct GemmBlockingParams;

// The routine table of a record, in the order of its slots. For real data the "c" packing routines
// are the "t" ones.
template <class T>
struct GemmOperations {
    using ChooseBlocks = void(const zint& m, const zint& n, const zint& k, GemmBlockingParams<T>& params);
    using BufferSizes = int(int what, int clamp, const zint& m, const zint& n, const zint& k,
                            GemmBlockingParams<T>& params);
    using GetBuffers = void*(int what, GemmBlockingParams<T>& params);
    // rows x cols of op(X) from `source` (leading dimension ld) into panels of `panel_stride`
    // elements; A is multiplied by alpha, B ignores it.
    using Pack = void(const zint& rows, const zint& cols, const T* source, const zint& ld, T* destination,
                      const zint& panel_stride, const T& alpha);
    // C(0:mb, 0:nb) := beta C + (packed A)(packed B) over a packed depth of kb (a multiple of kr).
    using MacroKernel = void(const zint& mb, const zint& nb, const zint& kb, const T* packed_a,
                             const T* packed_b, const T* beta, T* c, const zint& ldc);

    ChooseBlocks* choose_blocks;
    BufferSizes* buffer_sizes;
    GetBuffers* get_buffers;
    Pack* pack_a_n;
    Pack* pack_a_t;
    Pack* pack_a_c;
    Pack* pack_b_n;
    Pack* pack_b_t;
    Pack* pack_b_c;
    void* spare[2];
    MacroKernel* macro_kernel;
};

// The numbers of a constant record.
struct GemmRecord {
    std::int32_t record_index;
    std::int32_t layout_code;
    zint mr, nr, kr;
    zint min_m, min_n, min_k;
    std::int32_t micro_panel_count;
};

template <class T>
struct GemmBlockingParams {
    std::int32_t record_index;
    std::int32_t layout_code;
    zint mc, nc, kc;
    zint mr, nr, kr;
    zint min_m, min_n, min_k;
    GemmBuffer a_buffer;
    GemmBuffer b_buffer;
    GemmBuffer c_buffer;
    std::int32_t micro_panel_count;
    GemmOperations<T> operations;
};

// Clears `params` and loads the numbers of `record` into it; the routine table is the caller's.
template <class T>
void load_record_numbers(GemmBlockingParams<T>& params, const GemmRecord& record);

// The records of the table-driven levels. `sublevel` is detect_cpu_sublevel's answer (it picks
// the Sse42 and Ssse3 records). Complex records count mr and nr in complex elements.
GemmRecord real_gemm_record(CpuLevel level, int sublevel);
GemmRecord complex_gemm_record(CpuLevel level, int sublevel);

// The blocks of the table-driven design. kc: k below 256 rounded up to kr, at least 128; 257..511
// halved and rounded up to kr; else 256. mc from the last-level cache size, ⌊S/(1280·bytes)⌋
// rounded down to mr (bytes = 8 real, 16 complex). nc: max(n, nr) capped at 5000, rounded up to nr.
zint gemm_kc(zint k, zint kr);
// Whether the direct AVX-512 path (no packing of B, nor of A unless transposed) takes a real product
// of this shape: small ones, and those with few rows of C, whose packed operands would be used too
// few times to pay for the packing.
bool dgemm_direct_suits(zint m, zint n, zint k);
zint gemm_mc(std::int64_t cache_bytes, int element_bytes, zint mr);
zint gemm_nc(zint n, zint nr);

// How much of a packed A block the macro-kernels keep in the level-2 cache at a time: half of it,
// given its size in bytes (0 or less: not reported, taken as 512 KiB), between 64 KiB and 2 MiB.
std::int64_t gemm_a_group_bytes(std::int64_t level2_bytes);
// The same for this processor: the second cache of the CPUID cache table.
std::int64_t gemm_a_group_bytes();

// choose_blocks with the cache size given; the table entries pass cache_size(0).
template <class T>
void choose_blocks_for_cache(const zint& m, const zint& n, const zint& k, GemmBlockingParams<T>& params,
                             std::int64_t cache_bytes);
template <class T>
void choose_blocks(const zint& m, const zint& n, const zint& k, GemmBlockingParams<T>& params);
template <class T>
int buffer_sizes(int what, int clamp, const zint& m, const zint& n, const zint& k,
                 GemmBlockingParams<T>& params);
// Bytes of the one allocation of get_buffers for `what`, and the carving of an allocation that
// starts at `start` into the areas it names.
template <class T>
std::int64_t gemm_allocation_bytes(int what, const GemmBlockingParams<T>& params);
template <class T>
void carve_gemm_buffers(int what, std::uintptr_t start, GemmBlockingParams<T>& params);
template <class T>
void* get_buffers(int what, GemmBlockingParams<T>& params);

// The fixed design of dgemm_default.
struct DefaultGemmBlocks {
    zint kc;       // depth of a block, as allocated
    zint kc_used;  // min(kc, k)
    zint mc;
    zint nc;
};
DefaultGemmBlocks default_gemm_blocks(zint m, zint n, zint k);
std::int64_t default_gemm_bytes(const DefaultGemmBlocks& blocks);
struct FixedGemmAreas {
    std::uintptr_t a, third, b;
};
FixedGemmAreas carve_default_gemm(std::uintptr_t start, const DefaultGemmBlocks& blocks);

// dgemm_sse3: the packing mode, then its blocks. The full mode packs A and B; the light mode packs
// A and one B micro-panel at a time into the third area.
enum class Sse3GemmMode : std::int32_t { FullAligned = 0, Full = 1, Light = 2 };
struct Sse3GemmBlocks {
    Sse3GemmMode mode;
    zint kc, kc_used, mc, nc;
};
Sse3GemmBlocks sse3_gemm_blocks(char transb, zint m, zint n, zint k);
std::int64_t sse3_gemm_bytes(const Sse3GemmBlocks& blocks);
FixedGemmAreas carve_sse3_gemm(std::uintptr_t start, const Sse3GemmBlocks& blocks);

// zgemm_default: depth blocks of 64 with the remainder first, rows in blocks of 320.
inline constexpr zint kZgemmDefaultDepth = 64;
inline constexpr zint kZgemmDefaultRows = 320;
zint zgemm_default_nc(zint n);
std::int64_t zgemm_default_bytes(zint nc);
FixedGemmAreas carve_zgemm_default(std::uintptr_t start);
// The depth of the first block: k mod 64, or 64 when k is a multiple of 64.
zint zgemm_default_first_depth(zint k);

}  // namespace zor
