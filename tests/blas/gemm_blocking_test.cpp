// The blocking decisions of the GEMM engines as pure functions: block sizes on both sides of each
// threshold of the problem and the cache sizes, the work-area sizes and their carving.

#include <gtest/gtest.h>

#include <cstdint>

#include "blas/level3/gemm_blocking.hpp"

namespace zor {
namespace {

constexpr std::int64_t kMiB = std::int64_t{1} << 20;

TEST(GemmBlocks, DepthFollowsTheThreeRanges) {
    const struct {
        zint k, kr, kc;
    } cases[] = {{1, 4, 128},   {128, 4, 128}, {130, 4, 132}, {253, 4, 256}, {256, 4, 256},
                 {257, 4, 128}, {302, 4, 152}, {512, 4, 256}, {513, 4, 256}};
    for (const auto& c : cases) EXPECT_EQ(gemm_kc(c.k, c.kr), c.kc) << "k = " << c.k;
}

TEST(GemmBlocks, RowsFollowTheLastLevelCache) {
    const struct {
        std::int64_t cache;
        int bytes;
        zint mr, mc;
    } cases[] = {
        {8 * kMiB, 8, 4, 408},
        {3 * kMiB, 8, 4, 152},
        {8 * kMiB, 16, 2, 204},
        {32 * kMiB, 8, 4, 1636},  // 1638 rounded down to mr
        // No cache reported: the blocks of a 4 MiB one; a tiny one: at least one panel.
        {-1, 8, 4, 204},
        {0, 16, 2, 102},
        {20000, 8, 4, 4},
    };
    for (const auto& c : cases) EXPECT_EQ(gemm_mc(c.cache, c.bytes, c.mr), c.mc) << c.cache << " bytes";
}

TEST(GemmBlocks, ColumnsAreCappedAndRoundedToThePanel) {
    EXPECT_EQ(gemm_nc(13, 8), 16);
    EXPECT_EQ(gemm_nc(4999, 8), 5000);
    EXPECT_EQ(gemm_nc(5001, 8), 5000);
}

TEST(GemmBlocks, AGroupsTakeHalfTheLevel2Cache) {
    EXPECT_EQ(gemm_a_group_bytes(2 * kMiB), 1 * kMiB);
    EXPECT_EQ(gemm_a_group_bytes(64 << 10), 64 << 10);   // at least 64 KiB
    EXPECT_EQ(gemm_a_group_bytes(16 * kMiB), 2 * kMiB);  // at most 2 MiB
    EXPECT_EQ(gemm_a_group_bytes(-1), 256 << 10);        // not reported: as 512 KiB
}

TEST(GemmBlocks, ChooseBlocksKeepsChosenRowsAndDepthButNotColumns) {
    GemmBlockingParams<double> params{};
    params.mr = 4;
    params.nr = 8;
    params.kr = 4;
    choose_blocks_for_cache(zint{100}, zint{50}, zint{300}, params, 8 * kMiB);
    EXPECT_EQ(params.mc, 408);
    EXPECT_EQ(params.kc, 152);
    EXPECT_EQ(params.nc, 56);
    choose_blocks_for_cache(zint{100}, zint{7000}, zint{1000}, params, 3 * kMiB);
    EXPECT_EQ(params.mc, 408);
    EXPECT_EQ(params.kc, 152);
    EXPECT_EQ(params.nc, 5000);
}

GemmBlockingParams<double> avx_params(zint mc, zint nc, zint kc) {
    GemmBlockingParams<double> params{};
    params.mr = 4;
    params.nr = 8;
    params.kr = 4;
    params.micro_panel_count = 4;
    params.mc = mc;
    params.nc = nc;
    params.kc = kc;
    return params;
}

TEST(GemmBuffers, SizesClampToTheProblemAndRoundToThePanels) {
    GemmBlockingParams<double> params = avx_params(408, 56, 152);
    ASSERT_EQ(buffer_sizes(kGemmAreasAll, kGemmClampToProblem, zint{99}, zint{50}, zint{300}, params), 0);
    EXPECT_EQ(params.a_buffer.bytes, 100 * 152 * 8 + 512);
    EXPECT_EQ(params.b_buffer.bytes, 56 * 152 * 8 + 512);
    EXPECT_EQ(params.c_buffer.bytes, 152 * 8 * 8 * 4 + 512);
    EXPECT_EQ(params.a_buffer.panel_elements, 4 * 152);
    EXPECT_EQ(params.b_buffer.panel_elements, 8 * 152);
    EXPECT_EQ(gemm_allocation_bytes(kGemmAreasAll, params),
              (100 * 152 * 8 + 512 + 8192) + (152 * 8 * 8 * 4 + 512 + 256) + (56 * 152 * 8 + 512 + 8192));

    ASSERT_EQ(buffer_sizes(kGemmAreasAll, kGemmBlocksAsTheyAre, zint{99}, zint{50}, zint{7}, params), 0);
    EXPECT_EQ(params.a_buffer.bytes, 408 * 152 * 8 + 512);

    GemmBlockingParams<zcomplex> complex{};
    complex.mr = 2;
    complex.nr = 4;
    complex.kr = 4;
    complex.micro_panel_count = 1;
    complex.mc = 204;
    complex.nc = 4;
    complex.kc = 128;
    ASSERT_EQ(buffer_sizes(kGemmAreasAll, kGemmClampToProblem, zint{3}, zint{5}, zint{100}, complex), 0);
    EXPECT_EQ(complex.a_buffer.bytes, 4 * 100 * 16 + 512);
    EXPECT_EQ(complex.b_buffer.bytes, 4 * 100 * 16 + 512);
    EXPECT_EQ(complex.c_buffer.bytes, 100 * 4 * 16 + 512);
}

TEST(GemmBuffers, OnlyTheNamedAreasAndOnlyKnownCodes) {
    const struct {
        int what;
        bool a, b, third;
    } cases[] = {{100, true, true, true},  {101, true, false, false}, {102, false, true, false},
                 {103, true, true, false}, {104, false, true, true},  {105, true, false, true},
                 {106, false, false, true}};
    for (const auto& c : cases) {
        GemmBlockingParams<double> params = avx_params(8, 8, 8);
        ASSERT_EQ(buffer_sizes(c.what, kGemmClampToProblem, zint{8}, zint{8}, zint{8}, params), 0);
        EXPECT_EQ(params.a_buffer.bytes > 0, c.a) << c.what;
        EXPECT_EQ(params.b_buffer.bytes > 0, c.b) << c.what;
        EXPECT_EQ(params.c_buffer.bytes > 0, c.third) << c.what;
    }
    GemmBlockingParams<double> params = avx_params(8, 8, 8);
    EXPECT_EQ(buffer_sizes(99, kGemmClampToProblem, zint{8}, zint{8}, zint{8}, params), 1);
    EXPECT_EQ(buffer_sizes(107, kGemmClampToProblem, zint{8}, zint{8}, zint{8}, params), 1);
    EXPECT_EQ(buffer_sizes(kGemmAreasAll, 106, zint{8}, zint{8}, zint{8}, params), 1);
}

bool inside(std::uintptr_t area, std::int64_t bytes, std::uintptr_t start, std::int64_t total) {
    return area >= start &&
           area + static_cast<std::uintptr_t>(bytes) <= start + static_cast<std::uintptr_t>(total);
}

TEST(GemmBuffers, CarvingAlignsEveryAreaInsideTheOneAllocation) {
    for (std::uintptr_t start : {std::uintptr_t{0x10000}, std::uintptr_t{0x10080}, std::uintptr_t{0x10f80}}) {
        for (int what = kGemmAreasAll; what <= kGemmAreaThird; ++what) {
            GemmBlockingParams<double> params = avx_params(408, 5000, 256);
            ASSERT_EQ(buffer_sizes(what, kGemmClampToProblem, zint{1000}, zint{3000}, zint{1000}, params), 0);
            const std::int64_t total = gemm_allocation_bytes(what, params);
            carve_gemm_buffers(what, start, params);
            std::uintptr_t end = start;
            // A, then the third area, then B, each after the one before.
            for (const GemmBuffer* area : {&params.a_buffer, &params.c_buffer, &params.b_buffer}) {
                if (area->bytes == 0) continue;
                const auto address = reinterpret_cast<std::uintptr_t>(area->start);
                EXPECT_EQ(address % (std::uintptr_t{1} << area->alignment_log2), 0u);
                EXPECT_TRUE(inside(address, area->bytes, start, total)) << "what " << what;
                EXPECT_GE(address, end);
                end = address + static_cast<std::uintptr_t>(area->bytes);
            }
        }
    }
    // A starts at or after the start; the next area strictly after the end of the one before.
    GemmBlockingParams<double> params = avx_params(8, 8, 8);
    ASSERT_EQ(buffer_sizes(kGemmAreasAll, kGemmClampToProblem, zint{8}, zint{8}, zint{8}, params), 0);
    carve_gemm_buffers(kGemmAreasAll, 0x20000, params);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(params.a_buffer.start), 0x20000u);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(params.c_buffer.start), 0x20000u + 8 * 8 * 8 + 512 + 128);
}

TEST(DefaultGemmBlocks, DepthHalvesBetween129And256) {
    const struct {
        zint k, kc, kc_used;
    } cases[] = {{9, 128, 9},     {128, 128, 128}, {129, 64, 64},
                 {202, 100, 100}, {256, 128, 128}, {257, 128, 128}};
    for (const auto& c : cases) {
        const DefaultGemmBlocks blocks = default_gemm_blocks(100, 100, c.k);
        EXPECT_EQ(blocks.kc, c.kc) << "k = " << c.k;
        EXPECT_EQ(blocks.kc_used, c.kc_used) << "k = " << c.k;
    }
}

TEST(DefaultGemmBlocks, WideShallowProblemsGetTallerRowBlocks) {
    const struct {
        zint m, n, k, mc;
    } cases[] = {{5001, 5001, 16, 1536}, {9000, 1000, 32, 1024}, {9000, 1000, 33, 768},
                 {9000, 1000, 64, 768},  {9000, 1000, 65, 512},  {9000, 999, 16, 512}};
    for (const auto& c : cases) {
        EXPECT_EQ(default_gemm_blocks(c.m, c.n, c.k).mc, c.mc) << c.m << " x " << c.n << " x " << c.k;
    }
    EXPECT_EQ(default_gemm_blocks(10, 4991, 10).nc, 4991);
    EXPECT_EQ(default_gemm_blocks(10, 4993, 10).nc, 4992);
}

TEST(DefaultGemmBlocks, WorkAreaSizeAndCarving) {
    const DefaultGemmBlocks blocks = default_gemm_blocks(2000, 3000, 1000);
    const std::int64_t total = default_gemm_bytes(blocks);
    EXPECT_EQ(total, 128 * 192 + 512 * 128 * 8 + 3000 * 128 * 8 + 18176);
    for (std::uintptr_t s : {std::uintptr_t{0x40000}, std::uintptr_t{0x40080}, std::uintptr_t{0x40f80}}) {
        const FixedGemmAreas areas = carve_default_gemm(s, blocks);
        EXPECT_EQ(areas.a, (s & ~std::uintptr_t{4095}) + 4096);
        EXPECT_EQ(areas.third % 128, 0u);
        EXPECT_EQ(areas.b % 4096, 0u);
        EXPECT_TRUE(inside(areas.a, 512 * 128 * 8, s, total));
        EXPECT_GE(areas.third, areas.a + 512 * 128 * 8);
        EXPECT_TRUE(inside(areas.third, 128 * 192, s, total));
        EXPECT_GE(areas.b, areas.third + 128 * 192);
        EXPECT_TRUE(inside(areas.b, 3000 * 128 * 8, s, total));
    }
}

TEST(Sse3GemmBlocks, ModesAndBlocks) {
    // The light mode only for an untransposed B and m + n + k <= 384.
    EXPECT_EQ(sse3_gemm_blocks('n', 99, 101, 184).mode, Sse3GemmMode::Light);
    EXPECT_EQ(sse3_gemm_blocks('N', 100, 100, 185).mode, Sse3GemmMode::FullAligned);
    EXPECT_EQ(sse3_gemm_blocks('N', 100, 102, 185).mode, Sse3GemmMode::Full);
    EXPECT_EQ(sse3_gemm_blocks('T', 3, 3, 3).mode, Sse3GemmMode::Full);

    EXPECT_EQ(sse3_gemm_blocks('N', 500, 500, 200).kc, 100);
    EXPECT_EQ(sse3_gemm_blocks('N', 500, 500, 225).kc, 112);
    EXPECT_EQ(sse3_gemm_blocks('N', 500, 500, 50).kc_used, 50);

    const Sse3GemmBlocks plain = sse3_gemm_blocks('N', 500, 3000, 500);
    EXPECT_EQ(plain.mc, 480);
    EXPECT_EQ(plain.nc, 2000);
    const Sse3GemmBlocks wide = sse3_gemm_blocks('N', 6000, 4000, 30);
    EXPECT_EQ(wide.mc, 1024);
    EXPECT_EQ(wide.nc, 4000);  // 5000, capped at n
    const Sse3GemmBlocks large = sse3_gemm_blocks('N', 6000, 6000, 4000);
    EXPECT_EQ(large.mc, 512);
    EXPECT_EQ(large.nc, 5000);

    EXPECT_EQ(sse3_gemm_bytes(plain), 112 * 64 + 480 * 112 * 8 + 2000 * 112 * 8 + 18176);
    const Sse3GemmBlocks light = sse3_gemm_blocks('N', 100, 100, 100);
    EXPECT_EQ(sse3_gemm_bytes(light), 112 * 64 + 480 * 112 * 8 + 9472);
    for (const Sse3GemmBlocks& blocks : {plain, light}) {
        const std::uintptr_t s = 0x50040;
        const FixedGemmAreas areas = carve_sse3_gemm(s, blocks);
        const std::int64_t total = sse3_gemm_bytes(blocks);
        EXPECT_EQ(areas.a % 4096, 0u);
        EXPECT_TRUE(inside(areas.a, blocks.mc * blocks.kc * 8, s, total));
        EXPECT_TRUE(inside(areas.third, blocks.kc * 64, s, total));
        if (blocks.mode != Sse3GemmMode::Light) {
            EXPECT_TRUE(inside(areas.b, blocks.nc * blocks.kc * 8, s, total));
        }
    }
}

TEST(ZgemmDefaultBlocks, DepthRemainderFirstAndTheFixedWorkArea) {
    EXPECT_EQ(zgemm_default_first_depth(130), 2);  // blocks of 2, 64, 64
    EXPECT_EQ(zgemm_default_first_depth(128), 64);
    EXPECT_EQ(zgemm_default_first_depth(65), 1);
    EXPECT_EQ(zgemm_default_nc(1999), 1999);
    EXPECT_EQ(zgemm_default_nc(2001), 2000);
    EXPECT_EQ(zgemm_default_bytes(2000), 2000 * 1024 + 353536);
    for (std::uintptr_t s : {std::uintptr_t{0x60000}, std::uintptr_t{0x60080}, std::uintptr_t{0x60f80}}) {
        const FixedGemmAreas areas = carve_zgemm_default(s);
        const std::int64_t total = zgemm_default_bytes(2000);
        EXPECT_EQ(areas.a, (s & ~std::uintptr_t{4095}) + 4096);
        // A block of kZgemmDefaultRows rows of depth 64 fits below the middle area.
        EXPECT_LE(areas.a + kZgemmDefaultRows * kZgemmDefaultDepth * 16, areas.third);
        EXPECT_EQ(areas.third, ((s + 336384) & ~std::uintptr_t{127}) + 640);
        EXPECT_EQ(areas.b, ((s + 345344) & ~std::uintptr_t{4095}) + 4096);
        EXPECT_TRUE(inside(areas.b, 2000 * 1024, s, total));
    }
}

}  // namespace
}  // namespace zor
