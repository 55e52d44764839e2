#pragma once
// The memory manager's internal interface: aligned work areas from a small per-thread cache of
// blocks (zor_allocate / zor_deallocate), the system allocator behind it, and the holder through
// which library code borrows a work area for the length of a call.

#include <cstddef>
#include <cstdint>

namespace zor {

// Every work area of the library is aligned to this many bytes.
inline constexpr std::int32_t kWorkAlignment = 128;

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

// An aligned block of `size` bytes, or null (size 0 or no memory). Reports nothing: callers report.
void* zor_allocate(std::uint64_t size, std::int32_t alignment);
// Returns a block of zor_allocate (to its owner thread's cache, or to the system); null is a no-op.
void zor_deallocate(void* block);

// A work area of `count` elements of T, returned on scope exit. Test get() for null at once and
// report the failure the way the routine's contract says.
template <class T>
class WorkArea {
public:
    explicit WorkArea(std::size_t count)
        : data_(static_cast<T*>(zor_allocate(static_cast<std::uint64_t>(count) * sizeof(T), kWorkAlignment))) {}
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
