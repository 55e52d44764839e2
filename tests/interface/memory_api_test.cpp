// The exported memory functions, called through the shared library.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "zor/zor.h"

namespace {

std::uintptr_t header_of(const void* p) {
    std::uintptr_t raw;
    std::memcpy(&raw, static_cast<const char*>(p) - 8, sizeof raw);
    return raw;
}

struct MallocCase {
    int alignment;
    std::uintptr_t expected;  // the alignment the block has; 0: 8 bytes past the system block
};

class ZorMalloc : public ::testing::TestWithParam<MallocCase> {};

TEST_P(ZorMalloc, AlignsAndRecordsTheSystemBlock) {
    const MallocCase& c = GetParam();
    for (size_t size : {size_t{1}, size_t{100}, size_t{4096}}) {
        void* p = ZOR_malloc(size, c.alignment);
        ASSERT_NE(p, nullptr);
        const auto address = reinterpret_cast<std::uintptr_t>(p);
        const std::uintptr_t raw = header_of(p);
        if (c.expected == 0) {
            EXPECT_EQ(address, raw + 8);
        } else {
            EXPECT_EQ(address % c.expected, 0u);
            EXPECT_GT(address, raw + 8);
            EXPECT_LE(address, raw + 8 + c.expected);
        }
        std::memset(p, 0xA5, size);
        ZOR_free(p);
    }
}

INSTANTIATE_TEST_SUITE_P(Alignments, ZorMalloc,
                         ::testing::Values(MallocCase{4, 0}, MallocCase{8, 8}, MallocCase{100, 64},
                                           MallocCase{256, 256}),
                         [](const ::testing::TestParamInfo<MallocCase>& info) {
                             return "alignment" + std::to_string(info.param.alignment);
                         });

}  // namespace
