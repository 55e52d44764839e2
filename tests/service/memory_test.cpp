// The memory manager: alignment rules, the choice of cache slot, the paths around the cache, the
// registry across threads, and the settings, observed through a system allocator that counts.

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

#include "service/memory.hpp"
#include "support/counting_allocator.hpp"
#include "support/process.hpp"
#include "support/random.hpp"
#include "zor/zor_memory.h"

namespace zor {
namespace {

using test::AllocatorScope;
using test::g_counters;

std::uintptr_t address(const void* p) {
    return reinterpret_cast<std::uintptr_t>(p);
}

template <class F>
void in_new_thread(F&& f) {
    std::thread(std::forward<F>(f)).join();
}

// Each test starts with no registry and the counting allocator installed, and returns every block
// it takes.
class MemoryCache : public ::testing::Test {
  protected:
    void SetUp() override {
        free_all_buffers();
        ASSERT_EQ(memory_manager_state().registered_threads, 0) << "a block is still in use";
        AllocatorScope::reset();
    }
    void TearDown() override {
        free_all_buffers();
        EXPECT_EQ(memory_manager_state().registered_threads, 0) << "the test left a block in use";
    }
    AllocatorScope allocator_;
};

// ZOR_malloc aligns from 8 up, the cache from 4 up, a request that is not a power of two to 64; the
// plain path's header holds the system block, which ZOR_free releases.
TEST_F(MemoryCache, AlignmentOfBothPaths) {
    const struct {
        std::int32_t requested;
        std::uint64_t plain, cached;
    } cases[] = {{1, 0, 0},     {4, 0, 4},          {7, 0, 64},  {8, 8, 8},
                 {100, 64, 64}, {4096, 4096, 4096}, {-128, 0, 0}};
    for (const auto& c : cases) {
        void* p = ZOR_malloc(100, c.requested);
        ASSERT_NE(p, nullptr);
        std::uintptr_t raw = address(g_counters.last_block.load()), header;
        std::memcpy(&header, static_cast<char*>(p) - 8, sizeof header);
        EXPECT_EQ(header, raw) << c.requested;
        EXPECT_TRUE(c.plain == 0 ? address(p) == raw + 8
                                 : address(p) % c.plain == 0 && address(p) > raw + 8 &&
                                       address(p) <= raw + c.plain + 8)
            << c.requested;
        std::memset(p, 0x5A, 100);
        ZOR_free(p);
        EXPECT_EQ(address(g_counters.last_released.load()), raw) << c.requested;

        p = zor_allocate(100, c.requested);
        ASSERT_NE(p, nullptr);
        raw = address(g_counters.last_block.load());
        EXPECT_TRUE(address(p) % (c.cached == 0 ? 1 : c.cached) == 0 && address(p) >= raw &&
                    address(p) < raw + (c.cached == 0 ? 1 : c.cached))
            << c.requested;
        std::memset(p, 0x5A, 100);
        zor_deallocate(p);
        free_thread_buffers();
    }
}

// Zero bytes and null need no system call; impossible sizes and failed requests get null.
TEST_F(MemoryCache, NullForZeroBytesImpossibleSizesAndFailedRequests) {
    EXPECT_EQ(ZOR_malloc(0, 64), nullptr);
    EXPECT_EQ(zor_allocate(0, 128), nullptr);
    ZOR_free(nullptr);
    zor_deallocate(nullptr);
    EXPECT_EQ(ZOR_malloc(SIZE_MAX - 70, 64), nullptr);
    EXPECT_EQ(zor_allocate(UINT64_MAX, 128), nullptr);
    EXPECT_EQ(AllocatorScope::allocations(), 0);
    EXPECT_EQ(AllocatorScope::releases(), 0);
    WorkArea<double> huge(SIZE_MAX / 4);
    EXPECT_FALSE(huge);
    AllocatorScope::fail_next();
    EXPECT_EQ(ZOR_malloc(64, 64), nullptr);
    AllocatorScope::fail_next();
    EXPECT_EQ(zor_allocate(kLargestCachedRequest + 1, kWorkAlignment), nullptr);
}

// Slots of the calling thread's cache hold blocks of these capacities, all released.
std::vector<void*> fill_slots(const std::vector<std::uint64_t>& sizes) {
    std::vector<void*> blocks;
    for (std::uint64_t size : sizes) blocks.push_back(zor_allocate(size, kWorkAlignment));
    for (void* block : blocks) zor_deallocate(block);
    return blocks;
}

// An exact fit wins over an earlier larger slot; otherwise the first larger slot is taken, not the
// tightest.
TEST_F(MemoryCache, ExactFitFirstThenTheFirstLargerSlot) {
    const std::vector<void*> blocks = fill_slots({500, 200, 300, 400});
    const int allocations = AllocatorScope::allocations();
    EXPECT_EQ(zor_allocate(200, kWorkAlignment), blocks[1]);
    EXPECT_EQ(zor_allocate(250, kWorkAlignment), blocks[0]);
    EXPECT_EQ(zor_allocate(250, kWorkAlignment), blocks[2]);
    EXPECT_EQ(AllocatorScope::allocations(), allocations);
    for (int i : {0, 1, 2}) zor_deallocate(blocks[i]);
}

// Whether zor_deallocate hands `block` straight back to the system: a block of the plain path.
bool released_at_once(void* block) {
    const int releases = AllocatorScope::releases();
    zor_deallocate(block);
    return AllocatorScope::releases() == releases + 1;
}

TEST_F(MemoryCache, SixthBlockInUseComesFromThePlainPath) {
    std::vector<void*> held;
    for (int i = 0; i < kCacheSlots; ++i) held.push_back(zor_allocate(1000, kWorkAlignment));
    void* sixth = zor_allocate(1000, kWorkAlignment);
    ASSERT_NE(sixth, nullptr);
    EXPECT_EQ(address(sixth) % 128, 0u);
    EXPECT_TRUE(released_at_once(sixth));
    for (void* block : held) EXPECT_FALSE(released_at_once(block));
    EXPECT_EQ(memory_manager_state().blocks_in_use, 0);
}

TEST_F(MemoryCache, FullCacheReplacesItsFirstSmallerFreeSlot) {
    std::vector<void*> held;
    for (std::uint64_t size : {300, 500, 100, 400, 200}) held.push_back(zor_allocate(size, kWorkAlignment));
    zor_deallocate(held[2]);  // 100 bytes: the smallest free slot
    zor_deallocate(held[0]);  // 300 bytes: the first free slot in scan order
    const int allocations = AllocatorScope::allocations();
    const int releases = AllocatorScope::releases();
    void* big = zor_allocate(1000, kWorkAlignment);
    EXPECT_EQ(AllocatorScope::releases(), releases + 1);
    EXPECT_EQ(AllocatorScope::allocations(), allocations + 1);
    // Had the smallest slot been replaced, the 300-byte block would now be free.
    void* small = zor_allocate(50, kWorkAlignment);
    EXPECT_EQ(small, held[2]);
    zor_deallocate(big);
    EXPECT_EQ(zor_allocate(1000, kWorkAlignment), big);
    EXPECT_EQ(AllocatorScope::allocations(), allocations + 1);
    for (void* block : {held[1], held[3], held[4], small, big}) zor_deallocate(block);
}

TEST_F(MemoryCache, RepeatedCallsWithTheSameSizesAllocateNothingAfterTheFirst) {
    auto routine = [] {
        WorkArea<double> pack_a(4096);
        WorkArea<double> pack_b(32768);
        WorkArea<std::int64_t> pivots(300);
        ASSERT_TRUE(pack_a && pack_b && pivots);
        pack_a[4095] = pack_b[32767] = 1.0;
        pivots[299] = 7;
    };
    routine();
    const int allocations = AllocatorScope::allocations();
    EXPECT_EQ(allocations, 4);  // the thread's record and three blocks
    for (int i = 0; i < 50; ++i) routine();
    EXPECT_EQ(AllocatorScope::allocations(), allocations);
    EXPECT_EQ(AllocatorScope::releases(), 0);
}

TEST_F(MemoryCache, RequestsAbove40MiBBypassTheCache) {
    void* largest_cached = zor_allocate(kLargestCachedRequest, kWorkAlignment);
    ASSERT_NE(largest_cached, nullptr);
    EXPECT_FALSE(released_at_once(largest_cached));
    void* bypass = zor_allocate(kLargestCachedRequest + 1, kWorkAlignment);
    ASSERT_NE(bypass, nullptr);
    EXPECT_TRUE(released_at_once(bypass));
}

// The failed request leaves a slot marked in use without a block; freeing the thread's buffers with
// nothing else in use forgets it, and the thread has five slots again.
TEST_F(MemoryCache, FailedCacheRequestLeavesItsSlotInUseUntilTheThreadsBuffersAreFreed) {
    zor_deallocate(zor_allocate(64, kWorkAlignment));  // registers the thread
    free_thread_buffers();
    AllocatorScope::fail_next();
    EXPECT_EQ(zor_allocate(64, kWorkAlignment), nullptr);
    EXPECT_EQ(memory_manager_state().blocks_in_use, 1);
    free_thread_buffers();
    std::vector<void*> held;
    for (int i = 0; i < kCacheSlots; ++i) held.push_back(zor_allocate(64, kWorkAlignment));
    for (void* block : held) EXPECT_FALSE(released_at_once(block));
}

TEST_F(MemoryCache, ThreadWithoutARecordUsesThePlainPathSilently) {
    in_new_thread([] {
        AllocatorScope::fail_next();  // the record
        void* block = zor_allocate(64, kWorkAlignment);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(memory_manager_state().slot_count, -1);
        EXPECT_TRUE(released_at_once(block));
    });
}

TEST_F(MemoryCache, BlockReleasedByAnotherThreadReturnsToItsOwnersCache) {
    void* block = zor_allocate(5000, kWorkAlignment);
    in_new_thread([block] { zor_deallocate(block); });
    EXPECT_EQ(memory_manager_state().blocks_in_use, 0);
    const int allocations = AllocatorScope::allocations();
    EXPECT_EQ(zor_allocate(5000, kWorkAlignment), block);
    EXPECT_EQ(AllocatorScope::allocations(), allocations);
    EXPECT_EQ(AllocatorScope::releases(), 0);
    zor_deallocate(block);
}

TEST_F(MemoryCache, FreeBuffersKeepsTheRegistryWhileAnotherThreadHoldsABlock) {
    void* held = nullptr;
    in_new_thread([&held] {
        void* spare = zor_allocate(700, kWorkAlignment);
        held = zor_allocate(800, kWorkAlignment);
        zor_deallocate(spare);
    });
    void* mine = zor_allocate(900, kWorkAlignment);
    zor_deallocate(mine);
    ASSERT_EQ(memory_manager_state().registered_threads, 2);

    int releases = AllocatorScope::releases();
    ZOR_Free_Buffers();
    EXPECT_EQ(AllocatorScope::releases(), releases + 2);  // the spare and mine; the held block stays
    EXPECT_EQ(memory_manager_state().registered_threads, 2);
    EXPECT_TRUE(memory_manager_state().thread_slot_created);
    EXPECT_EQ(memory_manager_state().slot_count, 0);

    zor_deallocate(held);  // back to the other thread's cache
    releases = AllocatorScope::releases();
    ZOR_Free_Buffers();
    EXPECT_EQ(AllocatorScope::releases(), releases + 3);  // the held block and both records
    const MemoryManagerState state = memory_manager_state();
    EXPECT_EQ(state.registered_threads, 0);
    EXPECT_FALSE(state.thread_slot_created);
    EXPECT_EQ(state.slot_count, -1);
}

TEST_F(MemoryCache, ThreadFreeBuffersReleasesOnlyTheCallersFreeBlocks) {
    void* other = nullptr;
    in_new_thread([&other] { zor_deallocate(other = zor_allocate(600, kWorkAlignment)); });
    void* in_use = zor_allocate(100, kWorkAlignment);
    void* free_block = zor_allocate(200, kWorkAlignment);
    zor_deallocate(free_block);

    const int releases = AllocatorScope::releases();
    ZOR_Thread_Free_Buffers();
    EXPECT_EQ(AllocatorScope::releases(), releases + 1);
    EXPECT_EQ(memory_manager_state().slot_count, 2);  // a block is in use: the slots are kept
    EXPECT_EQ(memory_manager_state().registered_threads, 2);

    zor_deallocate(in_use);
    ZOR_Thread_Free_Buffers();
    EXPECT_EQ(memory_manager_state().slot_count, 0);
    EXPECT_EQ(memory_manager_state().registered_threads, 2);
}

TEST(MemoryRegistry, ThreadsBeyond1024FallBackToThePlainPath) {
    EXPECT_EXIT(
        {
            AllocatorScope allocator;
            constexpr int kThreads = kMaxRegisteredThreads + 6;
            // One thread at a time allocates; all stay alive, so that no thread identifier is reused.
            // (A mutex and condition variable: atomic waits of the mingw-w64 runtime can miss a wake.)
            std::mutex mutex;
            std::condition_variable allocated_changed;
            std::condition_variable checked_changed;
            int allocated = 0;
            bool checked = false;
            std::vector<void*> blocks(kThreads);
            std::vector<std::thread> threads;
            for (int i = 0; i < kThreads; ++i) {
                threads.emplace_back([&, i] {
                    blocks[i] = zor_allocate(64, kWorkAlignment);
                    std::unique_lock<std::mutex> lock(mutex);
                    allocated = i + 1;
                    allocated_changed.notify_one();
                    checked_changed.wait(lock, [&] { return checked; });
                    lock.unlock();
                    zor_deallocate(blocks[i]);
                });
                std::unique_lock<std::mutex> lock(mutex);
                allocated_changed.wait(lock, [&] { return allocated == i + 1; });
            }
            for (void* block : blocks) {
                if (block == nullptr) std::exit(1);
            }
            if (memory_manager_state().registered_threads != kMaxRegisteredThreads) std::exit(2);
            // The last six had no record: their blocks carry a header and go back at once.
            const int releases = AllocatorScope::releases();
            {
                std::lock_guard<std::mutex> lock(mutex);
                checked = true;
                checked_changed.notify_all();
            }
            for (std::thread& t : threads) t.join();
            std::exit(AllocatorScope::releases() - releases == 6 ? 0 : 3);
        },
        ::testing::ExitedWithCode(0), "");
}

// "ZOR_DISABLE_FAST_MM" or "ZOR_MM_DISABLE" set to any text turns the cache off, once for the
// process (a child process each).
TEST(MemorySettings, DecideBetweenTheCacheAndThePlainPath) {
    const struct {
        const char *disable_fast_mm, *mm_disable;
        bool disabled;
    } cases[] = {{nullptr, nullptr, false}, {"0", nullptr, true}, {nullptr, "no", true}, {"", "", false}};
    for (const auto& c : cases) {
        test::set_env("ZOR_DISABLE_FAST_MM", c.disable_fast_mm);
        test::set_env("ZOR_MM_DISABLE", c.mm_disable);
        EXPECT_EXIT(
            {
                AllocatorScope allocator;
                void* block = zor_allocate(100, kWorkAlignment);
                const bool plain = AllocatorScope::allocations() == 1;  // no record
                zor_deallocate(block);
                const bool released = AllocatorScope::releases() == 1;
                // Disabled, ZOR_Free_Buffers does nothing: not even the thread-local index goes.
                ZOR_Free_Buffers();
                const bool slot_kept = memory_manager_state().thread_slot_created;
                test::set_env("ZOR_MM_DISABLE", c.disabled ? nullptr : "1");
                const bool stays = memory_cache_disabled() == c.disabled;
                std::exit(plain == c.disabled && released == c.disabled && slot_kept == c.disabled && stays
                              ? 0
                              : 1);
            },
            ::testing::ExitedWithCode(0), "")
            << "case " << &c - cases;
    }
    test::set_env("ZOR_DISABLE_FAST_MM", nullptr);
    test::set_env("ZOR_MM_DISABLE", nullptr);
}

// Many threads allocating, handing blocks to each other and freeing the caches all at once. Each
// block carries its owner's tag at both ends: a block handed to two holders, or freed while held,
// shows up as a wrong tag (and under the sanitizers as a race or a use after free).
TEST(MemoryStress, ThreadsShareBlocksAndFreeBuffersConcurrently) {
    free_all_buffers();
    constexpr int kThreads = 8;
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
    constexpr int kSteps = 1500;
#else
    constexpr int kSteps = 20000;
#endif
    struct Block {
        void* p;
        std::uint64_t size, tag;
    };
    std::vector<Block> mailbox;
    std::mutex mailbox_lock;
    std::atomic<int> bad_blocks{0};
    auto release = [&](const Block& b) {
        std::uint64_t head, tail;
        std::memcpy(&head, b.p, 8);
        std::memcpy(&tail, static_cast<char*>(b.p) + b.size - 8, 8);
        if (head != b.tag || tail != b.tag) ++bad_blocks;
        zor_deallocate(b.p);
    };
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            test::Random random(t + 1);
            static constexpr std::uint64_t kSizes[] = {64, 1000, 4096, 70000, 1 << 20, 3 << 20};
            std::vector<Block> mine;
            for (int step = 0; step < kSteps; ++step) {
                const std::uint64_t r = random.next();
                if (r % 4 < 2 && mine.size() < 6) {
                    // A new block, tagged at both ends, kept or posted for another thread to release.
                    const std::uint64_t size = kSizes[(r >> 8) % 6];
                    const Block b{zor_allocate(size, kWorkAlignment), size, (std::uint64_t(t) << 32) | step};
                    if (b.p == nullptr || address(b.p) % kWorkAlignment != 0) {
                        ++bad_blocks;
                        continue;
                    }
                    std::memcpy(b.p, &b.tag, 8);
                    std::memcpy(static_cast<char*>(b.p) + size - 8, &b.tag, 8);
                    const std::lock_guard lock(mailbox_lock);
                    ((r >> 16) % 3 == 0 && mailbox.size() < 32 ? mailbox : mine).push_back(b);
                } else {
                    // A block from the mailbox or one of the thread's own, released.
                    Block b{};
                    if (r % 4 == 3) {
                        const std::lock_guard lock(mailbox_lock);
                        if (!mailbox.empty()) b = mailbox.back(), mailbox.pop_back();
                    }
                    if (b.p == nullptr && !mine.empty()) b = mine.back(), mine.pop_back();
                    if (b.p != nullptr) release(b);
                }
                if (step % 97 == 0) ZOR_Thread_Free_Buffers();
                if (step % 499 == t) ZOR_Free_Buffers();
            }
            for (const Block& b : mine) release(b);
        });
    }
    for (std::thread& t : threads) t.join();
    for (const Block& b : mailbox) release(b);
    EXPECT_EQ(bad_blocks.load(), 0);
    // Every block is back: the registry goes.
    ZOR_Free_Buffers();
    EXPECT_EQ(memory_manager_state().registered_threads, 0);
}

}  // namespace
}  // namespace zor
