#pragma once
// A system allocator for tests: counts the memory manager's calls, remembers the last request,
// and fails on demand. Installed for the lifetime of an AllocatorScope.

#include <atomic>
#include <cstddef>
#include <cstdlib>

#include "service/memory.hpp"

namespace zor::test {

struct AllocatorCounters {
    std::atomic<int> allocations{0};
    std::atomic<int> releases{0};
    std::atomic<std::size_t> last_size{0};
    std::atomic<void*> last_block{nullptr};
    std::atomic<void*> last_released{nullptr};
    // The allocation (counted from 1) that fails, and how many in a row fail from there; 0: none.
    std::atomic<int> fail_at{0};
    std::atomic<int> fail_count{1};
};

inline AllocatorCounters g_counters;

inline void* counting_allocate(std::size_t size) {
    const int call = ++g_counters.allocations;
    g_counters.last_size = size;
    const int first = g_counters.fail_at.load();
    void* block = (first > 0 && call >= first && call < first + g_counters.fail_count.load())
                      ? nullptr
                      : std::malloc(size);
    g_counters.last_block = block;
    return block;
}

inline void counting_release(void* block) {
    ++g_counters.releases;
    g_counters.last_released = block;
    std::free(block);
}

class AllocatorScope {
  public:
    AllocatorScope() {
        reset();
        previous_ =
            set_system_allocator({&counting_allocate, &std::calloc, &std::realloc, &counting_release});
    }
    ~AllocatorScope() { set_system_allocator(previous_); }
    AllocatorScope(const AllocatorScope&) = delete;
    AllocatorScope& operator=(const AllocatorScope&) = delete;

    static void reset() {
        g_counters.allocations = 0;
        g_counters.releases = 0;
        g_counters.last_size = 0;
        g_counters.last_block = nullptr;
        g_counters.last_released = nullptr;
        g_counters.fail_at = 0;
        g_counters.fail_count = 1;
    }
    // The next `count` allocations fail.
    static void fail_next(int count = 1) {
        g_counters.fail_count = count;
        g_counters.fail_at = g_counters.allocations.load() + 1;
    }
    static int allocations() { return g_counters.allocations.load(); }
    static int releases() { return g_counters.releases.load(); }

  private:
    SystemAllocator previous_;
};

}  // namespace zor::test
