#include "blas/gemm/blocking.hpp"

#include "service/cpu.hpp"
#include "service/letters.hpp"
#include "service/memory.hpp"

namespace zor {

namespace {

zint round_up(zint value, zint multiple) {
    return (value + multiple - 1) / multiple * multiple;
}

zint min_of(zint a, zint b) {
    return a < b ? a : b;
}

std::uintptr_t round_down(std::uintptr_t address, std::uintptr_t alignment) {
    return address & ~(alignment - 1);
}

// A processor that reports no cache gets the blocks of a 4 MiB one.
constexpr std::int64_t kAssumedCacheBytes = std::int64_t{4} << 20;

constexpr std::int32_t kPackedAlignmentLog2 = 12;
constexpr std::int32_t kThirdAlignmentLog2 = 7;
constexpr std::int64_t kPackedSlack = 512;

}  // namespace

GemmRecord real_gemm_record(CpuLevel level, int sublevel) {
    switch (level) {
        case CpuLevel::Avx:
            return {.record_index = 0,
                    .layout_code = 106,
                    .mr = 4,
                    .nr = 8,
                    .kr = 4,
                    .min_m = 2,
                    .min_n = 2,
                    .min_k = 2,
                    .micro_panel_count = 4};
        case CpuLevel::Sse42:
            return {.record_index = sublevel == 66 ? 1 : 0,
                    .layout_code = 126,
                    .mr = 2,
                    .nr = 8,
                    .kr = 4,
                    .min_m = 4,
                    .min_n = 4,
                    .min_k = 4,
                    .micro_panel_count = 1};
        case CpuLevel::Ssse3:
            if (sublevel == 33)
                return {.record_index = 1,
                        .layout_code = 126,
                        .mr = 4,
                        .nr = 4,
                        .kr = 4,
                        .min_m = 4,
                        .min_n = 4,
                        .min_k = 4,
                        .micro_panel_count = 1};
            return {.record_index = 0,
                    .layout_code = 382,
                    .mr = 4,
                    .nr = 4,
                    .kr = 4,
                    .min_m = 2,
                    .min_n = 2,
                    .min_k = 2,
                    .micro_panel_count = 2};
        default:
            return {};
    }
}

// The levels below Avx keep the Avx shape for complex data, with their own layout codes.
GemmRecord complex_gemm_record(CpuLevel level, int sublevel) {
    switch (level) {
        case CpuLevel::Avx:
            return {.record_index = 0,
                    .layout_code = 106,
                    .mr = 2,
                    .nr = 4,
                    .kr = 4,
                    .min_m = 1,
                    .min_n = 1,
                    .min_k = 1,
                    .micro_panel_count = 1};
        case CpuLevel::Sse42:
            return {.record_index = sublevel == 66 ? 1 : 0,
                    .layout_code = 126,
                    .mr = 2,
                    .nr = 4,
                    .kr = 4,
                    .min_m = 1,
                    .min_n = 1,
                    .min_k = 1,
                    .micro_panel_count = 1};
        case CpuLevel::Ssse3:
            if (sublevel == 33)
                return {.record_index = 1,
                        .layout_code = 126,
                        .mr = 2,
                        .nr = 4,
                        .kr = 4,
                        .min_m = 1,
                        .min_n = 1,
                        .min_k = 1,
                        .micro_panel_count = 1};
            return {.record_index = 0,
                    .layout_code = 382,
                    .mr = 2,
                    .nr = 4,
                    .kr = 4,
                    .min_m = 1,
                    .min_n = 1,
                    .min_k = 1,
                    .micro_panel_count = 1};
        default:
            return {};
    }
}

template <class T>
void load_record_numbers(GemmBlockingParams<T>& params, const GemmRecord& record) {
    params = {};
    params.record_index = record.record_index;
    params.layout_code = record.layout_code;
    params.mr = record.mr;
    params.nr = record.nr;
    params.kr = record.kr;
    params.min_m = record.min_m;
    params.min_n = record.min_n;
    params.min_k = record.min_k;
    params.micro_panel_count = record.micro_panel_count;
}

template void load_record_numbers(GemmBlockingParams<double>&, const GemmRecord&);
template void load_record_numbers(GemmBlockingParams<zcomplex>&, const GemmRecord&);

zint gemm_kc(zint k, zint kr) {
    if (k < 256) {
        const zint kc = round_up(k, kr);
        return kc < 128 ? 128 : kc;
    }
    if (k >= 257 && k <= 511) return round_up(k / 2, kr);
    return 256;
}

bool dgemm_direct_suits(zint m, zint n, zint k) {
    // Measured against the packed path: up to 96 rows of C at any width and depth; up to 384 rows
    // with at most 512 columns and a depth of at most 256. Taller C, or deeper A, is read a column
    // of A at a time across pages and cache sets, which packing avoids.
    return m <= 96 || (m <= 384 && n <= 512 && k <= 256);
}

zint gemm_mc(std::int64_t cache_bytes, int element_bytes, zint mr) {
    if (cache_bytes <= 0) cache_bytes = kAssumedCacheBytes;
    // The divisions of the published rule, one by one: truncation makes the order matter.
    const std::int64_t rows = cache_bytes / 10 / element_bytes / 256;
    const zint mc = rows / mr * mr;
    return mc < mr ? mr : mc;
}

zint gemm_nc(zint n, zint nr) {
    zint nc = n > nr ? n : nr;
    if (nc > 5000) nc = 5000;
    return round_up(nc, nr);
}

std::int64_t gemm_a_group_bytes(std::int64_t level2_bytes) {
    if (level2_bytes <= 0) level2_bytes = std::int64_t{512} << 10;
    const std::int64_t half = level2_bytes / 2;
    if (half < (std::int64_t{64} << 10)) return std::int64_t{64} << 10;
    return half > (std::int64_t{2} << 20) ? std::int64_t{2} << 20 : half;
}

std::int64_t gemm_a_group_bytes() {
    // The cached answer of a one-time query: a plain load after the first call.
    return gemm_a_group_bytes(cache_size(2));
}

template <class T>
void choose_blocks_for_cache(const zint&, const zint& n, const zint& k, GemmBlockingParams<T>& params,
                             std::int64_t cache_bytes) {
    if (params.kc == 0) params.kc = gemm_kc(k, params.kr);
    if (params.mc == 0) params.mc = gemm_mc(cache_bytes, static_cast<int>(sizeof(T)), params.mr);
    params.nc = gemm_nc(n, params.nr);
}

template <class T>
void choose_blocks(const zint& m, const zint& n, const zint& k, GemmBlockingParams<T>& params) {
    choose_blocks_for_cache(m, n, k, params, cache_size(0));
}

namespace {

bool names_a(int what) {
    return what == kGemmAreasAll || what == kGemmAreaA || what == kGemmAreasAB || what == kGemmAreasAThird;
}
bool names_b(int what) {
    return what == kGemmAreasAll || what == kGemmAreaB || what == kGemmAreasAB || what == kGemmAreasBThird;
}
bool names_third(int what) {
    return what == kGemmAreasAll || what == kGemmAreasBThird || what == kGemmAreasAThird ||
           what == kGemmAreaThird;
}

}  // namespace

template <class T>
int buffer_sizes(int what, int clamp, const zint& m, const zint& n, const zint& k,
                 GemmBlockingParams<T>& params) {
    if (what < kGemmAreasAll || what > kGemmAreaThird) return 1;
    if (clamp != kGemmClampToProblem && clamp != kGemmBlocksAsTheyAre) return 1;
    zint mc = params.mc, nc = params.nc, kc = params.kc;
    if (clamp == kGemmClampToProblem) {
        mc = min_of(mc, m);
        nc = min_of(nc, n);
        kc = min_of(kc, k);
    }
    mc = round_up(mc, params.mr);
    nc = round_up(nc, params.nr);
    kc = round_up(kc, params.kr);
    const std::int64_t bytes = sizeof(T);
    params.a_buffer = {};
    params.b_buffer = {};
    params.c_buffer = {};
    if (names_a(what))
        params.a_buffer = {nullptr, mc * kc * bytes + kPackedSlack, kPackedAlignmentLog2, params.mr * kc};
    if (names_b(what))
        params.b_buffer = {nullptr, nc * kc * bytes + kPackedSlack, kPackedAlignmentLog2, params.nr * kc};
    if (names_third(what)) {
        params.c_buffer = {nullptr, kc * params.nr * bytes * params.micro_panel_count + kPackedSlack,
                           kThirdAlignmentLog2, params.nr * kc};
    }
    return 0;
}

namespace {

// The areas `what` names, in the order they are carved: A, the third area, B.
template <class Params, class Buffer>
int named_areas(int what, Params& params, Buffer* (&areas)[3]) {
    int count = 0;
    if (names_a(what)) areas[count++] = &params.a_buffer;
    if (names_third(what)) areas[count++] = &params.c_buffer;
    if (names_b(what)) areas[count++] = &params.b_buffer;
    return count;
}

}  // namespace

template <class T>
std::int64_t gemm_allocation_bytes(int what, const GemmBlockingParams<T>& params) {
    const GemmBuffer* areas[3];
    const int count = named_areas(what, params, areas);
    std::int64_t total = 0;
    for (int i = 0; i < count; ++i)
        total += areas[i]->bytes + 2 * (std::int64_t{1} << areas[i]->alignment_log2);
    return total;
}

template <class T>
void carve_gemm_buffers(int what, std::uintptr_t start, GemmBlockingParams<T>& params) {
    GemmBuffer* areas[3];
    const int count = named_areas(what, params, areas);
    // The first area at the first boundary of its alignment at or after the start; each later one
    // at the first boundary of its own strictly after the end of the one before.
    std::uintptr_t next = start;
    for (int i = 0; i < count; ++i) {
        const std::uintptr_t alignment = std::uintptr_t{1} << areas[i]->alignment_log2;
        const std::uintptr_t begin =
            i == 0 ? round_down(next + alignment - 1, alignment) : round_down(next, alignment) + alignment;
        areas[i]->start = reinterpret_cast<void*>(begin);
        next = begin + static_cast<std::uintptr_t>(areas[i]->bytes);
    }
}

template <class T>
void* get_buffers(int what, GemmBlockingParams<T>& params) {
    void* block =
        zor_allocate(static_cast<std::uint64_t>(gemm_allocation_bytes(what, params)), kWorkAlignment);
    if (block != nullptr) carve_gemm_buffers(what, reinterpret_cast<std::uintptr_t>(block), params);
    return block;
}

template void choose_blocks_for_cache(const zint&, const zint&, const zint&, GemmBlockingParams<double>&,
                                      std::int64_t);
template void choose_blocks_for_cache(const zint&, const zint&, const zint&, GemmBlockingParams<zcomplex>&,
                                      std::int64_t);
template void choose_blocks(const zint&, const zint&, const zint&, GemmBlockingParams<double>&);
template void choose_blocks(const zint&, const zint&, const zint&, GemmBlockingParams<zcomplex>&);
template int buffer_sizes(int, int, const zint&, const zint&, const zint&, GemmBlockingParams<double>&);
template int buffer_sizes(int, int, const zint&, const zint&, const zint&, GemmBlockingParams<zcomplex>&);
template std::int64_t gemm_allocation_bytes(int, const GemmBlockingParams<double>&);
template std::int64_t gemm_allocation_bytes(int, const GemmBlockingParams<zcomplex>&);
template void carve_gemm_buffers(int, std::uintptr_t, GemmBlockingParams<double>&);
template void carve_gemm_buffers(int, std::uintptr_t, GemmBlockingParams<zcomplex>&);
template void* get_buffers(int, GemmBlockingParams<double>&);
template void* get_buffers(int, GemmBlockingParams<zcomplex>&);

// Wide, short problems get taller row blocks: the packed B block is then shallow and cheap to
// stream again for each of them.
namespace {

zint wide_problem_mc(zint kc_used) {
    if (kc_used <= 16) return 1536;
    if (kc_used <= 32) return 1024;
    if (kc_used <= 64) return 768;
    return 512;
}

zint halved_depth(zint k) {
    const zint kc = k / 2 / 4 * 4;
    return kc < 4 ? 4 : kc;
}

}  // namespace

DefaultGemmBlocks default_gemm_blocks(zint m, zint n, zint k) {
    DefaultGemmBlocks blocks{};
    blocks.kc = (k > 128 && k <= 256) ? halved_depth(k) : 128;
    blocks.kc_used = min_of(blocks.kc, k);
    blocks.mc = (k <= 256 && m + n >= 10000) ? wide_problem_mc(blocks.kc_used) : 512;
    blocks.nc = min_of(n, 4992);
    return blocks;
}

std::int64_t default_gemm_bytes(const DefaultGemmBlocks& blocks) {
    return blocks.kc * 192 + blocks.mc * blocks.kc * 8 + blocks.nc * blocks.kc * 8 + 18176;
}

FixedGemmAreas carve_default_gemm(std::uintptr_t s, const DefaultGemmBlocks& blocks) {
    const std::uintptr_t a_bytes = static_cast<std::uintptr_t>(blocks.mc * blocks.kc * 8);
    const std::uintptr_t third_bytes = static_cast<std::uintptr_t>(blocks.kc * 192);
    return {.a = round_down(s, 4096) + 4096,
            .third = round_down(s + a_bytes + 8704, 128) + 640,
            .b = round_down(s + a_bytes + 8704 + third_bytes + 768, 4096) + 4096};
}

Sse3GemmBlocks sse3_gemm_blocks(char transb, zint m, zint n, zint k) {
    Sse3GemmBlocks blocks{};
    const bool b_untransposed = lsame(transb, 'N');
    if (!b_untransposed || m + n + k > 384) {
        blocks.mode = (m % 4 == 0 && n % 4 == 0) ? Sse3GemmMode::FullAligned : Sse3GemmMode::Full;
    } else {
        blocks.mode = Sse3GemmMode::Light;
    }
    blocks.kc = (k > 112 && k <= 224) ? halved_depth(k) : 112;
    blocks.kc_used = min_of(blocks.kc, k);
    blocks.mc = 480;
    blocks.nc = 2000;
    if (k <= 224 && m + n >= 10000) {
        blocks.mc = wide_problem_mc(blocks.kc_used);
        blocks.nc = 5000;
    } else if (m >= 4000 && n >= 4000 && k >= 4000) {
        const bool large = m + n >= 12000;
        blocks.mc = large ? 512 : 480;
        blocks.nc = large ? 5000 : 2000;
    }
    blocks.nc = min_of(n, blocks.nc);
    return blocks;
}

std::int64_t sse3_gemm_bytes(const Sse3GemmBlocks& blocks) {
    const std::int64_t common = blocks.kc * 64 + blocks.mc * blocks.kc * 8;
    return blocks.mode == Sse3GemmMode::Light ? common + 9472 : common + blocks.nc * blocks.kc * 8 + 18176;
}

// Carved as dgemm_default's area: A on the first page after the start, the third area after A, B on
// the first page after the third area (none in the light mode).
FixedGemmAreas carve_sse3_gemm(std::uintptr_t s, const Sse3GemmBlocks& blocks) {
    const std::uintptr_t a = round_down(s, 4096) + 4096;
    const std::uintptr_t third =
        round_down(a + static_cast<std::uintptr_t>(blocks.mc * blocks.kc * 8), 128) + 128;
    const std::uintptr_t b =
        blocks.mode == Sse3GemmMode::Light
            ? 0
            : round_down(third + static_cast<std::uintptr_t>(blocks.kc * 64), 4096) + 4096;
    return {.a = a, .third = third, .b = b};
}

zint zgemm_default_nc(zint n) {
    return min_of(n, 2000);
}

std::int64_t zgemm_default_bytes(zint nc) {
    return nc * 1024 + 353536;
}

FixedGemmAreas carve_zgemm_default(std::uintptr_t s) {
    return {.a = round_down(s, 4096) + 4096,
            .third = round_down(s + 336384, 128) + 640,
            .b = round_down(s + 345344, 4096) + 4096};
}

zint zgemm_default_first_depth(zint k) {
    const zint rest = k % kZgemmDefaultDepth;
    return rest == 0 ? kZgemmDefaultDepth : rest;
}

}  // namespace zor
