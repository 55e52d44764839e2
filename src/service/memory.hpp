#pragma once
// The memory manager's internal interface: aligned work areas from a small per-thread cache of
// blocks (zor_allocate / zor_deallocate), the system allocator behind it, and the holder through
// which library code borrows a work area for the length of a call.

#include <cstddef>
#include <cstdint>

namespace zor {

// Every work area of the library is aligned to this many bytes.
inline constexpr std::int32_t kWorkAlignment = 128;

// Blocks a thread keeps after release, threads the registry holds, and the largest request that
// goes through the cache (40 MiB).
inline constexpr int kCacheSlots = 5;
inline constexpr int kMaxRegisteredThreads = 1024;
inline constexpr std::uint64_t kLargestCachedRequest = 0x2800000;

// The system allocator as a table of four entries; only allocate and release are used. Tests swap
// in a table that fails on demand or counts calls.
struct SystemAllocator {
    void* (*allocate)(std::size_t size);
    void* (*zero_allocate)(std::size_t count, std::size_t size);
    void* (*reallocate)(void* block, std::size_t size);
    void (*release)(void* block);
};

// The table in use (initially the C runtime's malloc, calloc, realloc, free).
const SystemAllocator& system_allocator();
// Installs `table` and returns the one it replaces. Not for concurrent use with allocations.
SystemAllocator set_system_allocator(const SystemAllocator& table);

// The uncached pair behind ZOR_malloc / ZOR_free: the block is preceded by one word holding the
// system allocator's address.
void* plain_allocate(std::uint64_t size, std::int32_t alignment);
void plain_release(void* block);

// An aligned block of `size` bytes, or null (size 0 or no memory). Reports nothing: callers report.
void* zor_allocate(std::uint64_t size, std::int32_t alignment);
// Returns a block of zor_allocate (to its owner thread's cache, or to the system); null is a no-op.
void zor_deallocate(void* block);

// ZOR_Free_Buffers: every thread's cached blocks that are not in use, and the whole registry when
// no block is in use anywhere.
void free_all_buffers();
// ZOR_Thread_Free_Buffers: the calling thread's cached blocks that are not in use.
void free_thread_buffers();

// Whether "ZOR_DISABLE_FAST_MM" or "ZOR_MM_DISABLE" turned the cache off (decided once).
bool memory_cache_disabled();

// What the manager holds, for tests and zor-info.
struct MemoryManagerState {
    std::int32_t registered_threads;
    bool thread_slot_created;    // the thread-local registry index exists
    std::int32_t slot_count;     // the calling thread's slots in use by its cache; -1 unregistered
    std::int32_t blocks_in_use;  // of the calling thread's cached blocks
};
MemoryManagerState memory_manager_state();

// A work area of `count` elements of T, returned on scope exit. Test get() for null at once and
// report the failure the way the routine's contract says.
template <class T>
class WorkArea {
  public:
    explicit WorkArea(std::size_t count)
        : data_(count > UINT64_MAX / sizeof(T)
                    ? nullptr
                    : static_cast<T*>(
                          zor_allocate(static_cast<std::uint64_t>(count) * sizeof(T), kWorkAlignment))) {}
    ~WorkArea() { zor_deallocate(data_); }
    WorkArea(const WorkArea&) = delete;
    WorkArea& operator=(const WorkArea&) = delete;

    T* get() const { return data_; }
    explicit operator bool() const { return data_ != nullptr; }
    T& operator[](std::size_t i) const { return data_[i]; }

  private:
    T* data_;
};

}  // namespace zor
