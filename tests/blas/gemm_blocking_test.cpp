// The blocking decisions of the GEMM engines as pure functions, on both sides of each threshold:
// the depth blocks (they set the order of the sums) and the row and column blocks.

#include <gtest/gtest.h>

#include <cstdint>
#include <tuple>

#include "blas/gemm/blocking.hpp"

namespace zor {
namespace {

constexpr std::int64_t kMiB = std::int64_t{1} << 20;

// kc by the depth's three ranges; mc at least one panel, a 4 MiB cache when none is reported; nc
// capped and rounded to the panel.
TEST(GemmBlocks, SizesFollowTheProblemAndTheCaches) {
    const struct {
        zint k, kc;
    } depths[] = {{1, 128},   {130, 132}, {255, 256}, {256, 256},
                  {257, 128}, {302, 152}, {511, 256}, {512, 256}};
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

struct FixedCase {
    zint m, n, k;
    zint kc, kc_used, mc, nc;
};

// The depth halves between 129 and 256; problems with m + n >= 10000 and k <= 256 take the wide
// rows by the depth used.
TEST(DefaultGemmBlocks, DepthHalvesAndWideProblemsTakeMoreRows) {
    const FixedCase cases[] = {
        {100, 100, 9, 128, 9, 512, 100},        {100, 100, 128, 128, 128, 512, 100},
        {100, 100, 129, 64, 64, 512, 100},      {100, 100, 202, 100, 100, 512, 100},
        {100, 100, 257, 128, 128, 512, 100},    {5000, 5000, 16, 128, 16, 1536, 4992},
        {5001, 5001, 17, 128, 17, 1024, 4992},  {4999, 5000, 16, 128, 16, 512, 4992},
        {5001, 5001, 257, 128, 128, 512, 4992},
    };
    for (const FixedCase& c : cases) {
        const DefaultGemmBlocks b = default_gemm_blocks(c.m, c.n, c.k);
        EXPECT_EQ(std::tie(b.kc, b.kc_used, b.mc, b.nc), std::tie(c.kc, c.kc_used, c.mc, c.nc))
            << c.m << " x " << c.n << " x " << c.k;
    }
}

// The light mode only for an untransposed B and m + n + k <= 384; the depth halves between 113 and
// 224; the wide and the large problems take their own rows and columns.
TEST(Sse3GemmBlocks, ModesAndBlocks) {
    EXPECT_EQ(sse3_gemm_blocks('n', 99, 101, 184).mode, Sse3GemmMode::Light);
    EXPECT_EQ(sse3_gemm_blocks('N', 100, 100, 185).mode, Sse3GemmMode::FullAligned);
    EXPECT_EQ(sse3_gemm_blocks('N', 100, 102, 185).mode, Sse3GemmMode::Full);
    EXPECT_EQ(sse3_gemm_blocks('T', 3, 3, 3).mode, Sse3GemmMode::Full);
    const FixedCase cases[] = {
        {500, 500, 200, 100, 100, 480, 500},     {500, 500, 225, 112, 112, 480, 500},
        {500, 500, 50, 112, 50, 480, 500},       {5000, 5000, 32, 112, 32, 1024, 5000},
        {6000, 6000, 4000, 112, 112, 512, 5000}, {4000, 4000, 4000, 112, 112, 480, 2000},
    };
    for (const FixedCase& c : cases) {
        const Sse3GemmBlocks b = sse3_gemm_blocks('N', c.m, c.n, c.k);
        EXPECT_EQ(std::tie(b.kc, b.kc_used, b.mc, b.nc), std::tie(c.kc, c.kc_used, c.mc, c.nc))
            << c.m << " x " << c.n << " x " << c.k;
    }
}

TEST(ZgemmDefaultBlocks, DepthRemainderFirstAndColumnsCapped) {
    EXPECT_EQ(zgemm_default_first_depth(130), 2);  // blocks of 2, 64, 64
    EXPECT_EQ(zgemm_default_first_depth(128), 64);
    EXPECT_EQ(zgemm_default_first_depth(65), 1);
    EXPECT_EQ(zgemm_default_nc(1999), 1999);
    EXPECT_EQ(zgemm_default_nc(2001), 2000);
}

}  // namespace
}  // namespace zor
