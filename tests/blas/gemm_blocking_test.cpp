// The blocking decisions of the GEMM engines as pure functions: block sizes on both sides of each
// threshold of the problem and the cache sizes, the work-area sizes and their carving.

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>

#include "blas/gemm/blocking.hpp"

namespace zor {
namespace {

constexpr std::int64_t kMiB = std::int64_t{1} << 20;

// kc by the depth's three ranges (they set the order of the sums); mc at least one panel, a 4 MiB
// cache when none is reported; nc capped and rounded to the panel.
TEST(GemmBlocks, SizesFollowTheProblemAndTheCaches) {
    const struct {
        zint k, kc;
    } depths[] = {{1, 128},   {128, 128}, {130, 132}, {253, 256},
                  {256, 256}, {257, 128}, {302, 152}, {513, 256}};
    for (const auto& c : depths) EXPECT_EQ(gemm_kc(c.k, 4), c.kc) << "k = " << c.k;
    const struct {
        std::int64_t cache;
        int bytes;
        zint mr, mc;
    } rows[] = {{32 * kMiB, 8, 4, 1636}, {-1, 16, 2, 102}, {20000, 8, 4, 4}};
    for (const auto& c : rows) EXPECT_EQ(gemm_mc(c.cache, c.bytes, c.mr), c.mc) << c.cache << " bytes";
    EXPECT_EQ(gemm_nc(13, 8), 16);
    EXPECT_EQ(gemm_nc(5001, 8), 5000);
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

struct Area {
    std::uintptr_t address;
    std::int64_t bytes;
    std::uintptr_t alignment;
};

// Every area aligned, inside the allocation of `total` bytes at `start`, after the one before.
::testing::AssertionResult carved(std::uintptr_t start, std::int64_t total,
                                  std::initializer_list<Area> areas) {
    std::uintptr_t end = start;
    for (const Area& area : areas) {
        if (area.bytes == 0) continue;
        if (area.address % area.alignment != 0 || area.address < end ||
            area.address + area.bytes > start + static_cast<std::uintptr_t>(total)) {
            return ::testing::AssertionFailure() << "area at " << area.address - start << " of " << area.bytes
                                                 << " bytes, " << total << " bytes from " << start;
        }
        end = area.address + static_cast<std::uintptr_t>(area.bytes);
    }
    return ::testing::AssertionSuccess();
}

std::uintptr_t address(const void* p) {
    return reinterpret_cast<std::uintptr_t>(p);
}

const std::uintptr_t kStarts[] = {0x10000, 0x10080, 0x10f80};

// The table-driven designs: A, then the third area, then B.
TEST(GemmBuffers, CarvingAlignsEveryAreaInsideTheOneAllocation) {
    for (std::uintptr_t start : kStarts) {
        for (int what = kGemmAreasAll; what <= kGemmAreaThird; ++what) {
            GemmBlockingParams<double> p = avx_params(408, 5000, 256);
            ASSERT_EQ(buffer_sizes(what, kGemmClampToProblem, zint{1000}, zint{3000}, zint{1000}, p), 0);
            carve_gemm_buffers(what, start, p);
            const auto area = [](const GemmBuffer& b) {
                return Area{address(b.start), b.bytes, std::uintptr_t{1} << b.alignment_log2};
            };
            EXPECT_TRUE(carved(start, gemm_allocation_bytes(what, p),
                               {area(p.a_buffer), area(p.c_buffer), area(p.b_buffer)}))
                << "what " << what;
        }
    }
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

TEST(DefaultGemmBlocks, WorkAreaSizeAndCarving) {
    const DefaultGemmBlocks blocks = default_gemm_blocks(2000, 3000, 1000);
    for (std::uintptr_t s : kStarts) {
        const FixedGemmAreas areas = carve_default_gemm(s, blocks);
        EXPECT_EQ(areas.a, (s & ~std::uintptr_t{4095}) + 4096);
        EXPECT_TRUE(carved(s, default_gemm_bytes(blocks),
                           {{areas.a, 512 * 128 * 8, 4096},
                            {areas.third, 128 * 192, 128},
                            {areas.b, 3000 * 128 * 8, 4096}}));
    }
}

// The light mode only for an untransposed B and m + n + k <= 384; the depth blocks set the order of
// the sums.
TEST(Sse3GemmBlocks, ModesDepthsAndCarving) {
    EXPECT_EQ(sse3_gemm_blocks('n', 99, 101, 184).mode, Sse3GemmMode::Light);
    EXPECT_EQ(sse3_gemm_blocks('N', 100, 100, 185).mode, Sse3GemmMode::FullAligned);
    EXPECT_EQ(sse3_gemm_blocks('N', 100, 102, 185).mode, Sse3GemmMode::Full);
    EXPECT_EQ(sse3_gemm_blocks('T', 3, 3, 3).mode, Sse3GemmMode::Full);

    EXPECT_EQ(sse3_gemm_blocks('N', 500, 500, 200).kc, 100);
    EXPECT_EQ(sse3_gemm_blocks('N', 500, 500, 225).kc, 112);
    EXPECT_EQ(sse3_gemm_blocks('N', 500, 500, 50).kc_used, 50);

    // The light mode has no B area.
    for (const Sse3GemmBlocks& blocks :
         {sse3_gemm_blocks('N', 500, 3000, 500), sse3_gemm_blocks('N', 100, 100, 100)}) {
        const std::uintptr_t s = 0x50040;
        const FixedGemmAreas areas = carve_sse3_gemm(s, blocks);
        const bool light = blocks.mode == Sse3GemmMode::Light;
        EXPECT_TRUE(carved(s, sse3_gemm_bytes(blocks),
                           {{areas.a, blocks.mc * blocks.kc * 8, 4096},
                            {areas.third, blocks.kc * 64, 64},
                            {areas.b, light ? 0 : blocks.nc * blocks.kc * 8, 1}}));
    }
}

TEST(ZgemmDefaultBlocks, DepthRemainderFirstAndTheFixedWorkArea) {
    EXPECT_EQ(zgemm_default_first_depth(130), 2);  // blocks of 2, 64, 64
    EXPECT_EQ(zgemm_default_first_depth(128), 64);
    EXPECT_EQ(zgemm_default_first_depth(65), 1);
    EXPECT_EQ(zgemm_default_nc(1999), 1999);
    EXPECT_EQ(zgemm_default_nc(2001), 2000);
    // A block of kZgemmDefaultRows rows of depth 64 fits below the middle area.
    for (std::uintptr_t s : kStarts) {
        const FixedGemmAreas areas = carve_zgemm_default(s);
        EXPECT_EQ(areas.third, ((s + 336384) & ~std::uintptr_t{127}) + 640);
        EXPECT_TRUE(carved(s, zgemm_default_bytes(2000),
                           {{areas.a, kZgemmDefaultRows * kZgemmDefaultDepth * 16, 4096},
                            {areas.third, 1, 128},
                            {areas.b, 2000 * 1024, 4096}}));
    }
}

}  // namespace
}  // namespace zor
