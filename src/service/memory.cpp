#include "service/memory.hpp"

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "service/platform.hpp"
#include "service/spin_lock.hpp"

namespace zor {

namespace {

void* system_malloc(std::size_t size) {
    return std::malloc(size);
}
void* system_calloc(std::size_t count, std::size_t size) {
    return std::calloc(count, size);
}
void* system_realloc(void* block, std::size_t size) {
    return std::realloc(block, size);
}
void system_free(void* block) {
    std::free(block);
}

SystemAllocator g_system{&system_malloc, &system_calloc, &system_realloc, &system_free};

// A thread's cache: five slots as parallel arrays, and how many of them have been used.
struct CacheRecord {
    void* raw[kCacheSlots];   // from the system allocator; null when empty
    void* user[kCacheSlots];  // the aligned address handed out
    std::uint64_t requested[kCacheSlots];
    std::uint64_t capacity[kCacheSlots];  // bytes obtained: request plus alignment
    std::int64_t in_use[kCacheSlots];
    std::int32_t slot_count;
};

// The registry, indexed 1..1024 (0 means none). A record belongs to the thread whose identifier
// stands at its index.
std::atomic<std::int32_t> g_registered{0};
std::atomic<std::uint64_t> g_thread_ids[kMaxRegisteredThreads + 1];
std::atomic<CacheRecord*> g_records[kMaxRegisteredThreads + 1];

// The owner works on its record under that record's own lock, which nobody else wants except
// ZOR_Free_Buffers and a release from another thread; without it either could free a block or a
// record the owner is handing out. The locks live here, not in the records, because they must
// outlast a record that ZOR_Free_Buffers releases. Order: g_service_lock before any record lock;
// an owner never takes g_service_lock while it holds its record's.
SpinLock g_record_locks[kMaxRegisteredThreads + 1];

// The thread-local slot holding each thread's registry index; -1 until first created.
std::atomic<std::int64_t> g_registry_slot{-1};

// -1 undecided, 0 cache on, 1 cache off.
std::atomic<std::int32_t> g_cache_disabled{-1};

// The alignment in force: a power of two as asked, any other value 64; none below `threshold`.
std::uint64_t effective_alignment(std::int32_t alignment, std::int32_t threshold) {
    if (alignment < threshold) return 0;
    const auto a = static_cast<std::uint32_t>(alignment);
    return (a & (a - 1)) == 0 ? a : 64;
}

void ensure_registry_slot() {
    if (g_registry_slot.load(std::memory_order_acquire) >= 0) return;
    SpinLockGuard guard(g_service_lock);
    if (g_registry_slot.load(std::memory_order_relaxed) >= 0) return;
    platform::TlsIndex index;
    if (platform::tls_create(&index)) g_registry_slot.store(index, std::memory_order_release);
}

// The registry index remembered for the calling thread: a hint, always checked against the
// identifier table before it is trusted.
int registry_hint() {
    const std::int64_t slot = g_registry_slot.load(std::memory_order_acquire);
    if (slot < 0) return 0;
    const auto index =
        reinterpret_cast<std::uintptr_t>(platform::tls_get(static_cast<platform::TlsIndex>(slot)));
    return index <= kMaxRegisteredThreads ? static_cast<int>(index) : 0;
}

void set_registry_hint(int index) {
    const std::int64_t slot = g_registry_slot.load(std::memory_order_acquire);
    if (slot >= 0)
        platform::tls_set(static_cast<platform::TlsIndex>(slot),
                          reinterpret_cast<void*>(static_cast<std::uintptr_t>(index)));
}

// Locks the record at `index` if it belongs to `thread`.
CacheRecord* lock_record_of(int index, std::uint64_t thread) {
    g_record_locks[index].lock();
    CacheRecord* record = g_records[index].load(std::memory_order_acquire);
    if (record != nullptr && g_thread_ids[index].load(std::memory_order_acquire) == thread) return record;
    g_record_locks[index].unlock();
    return nullptr;
}

// The calling thread's record, locked, with its index; null when the thread has none. A hint
// that names another thread's entry is cleared and the table searched, highest index first.
CacheRecord* lock_own_record(std::uint64_t thread, int* index) {
    const int hint = registry_hint();
    if (hint != 0) {
        if (CacheRecord* record = lock_record_of(hint, thread)) {
            *index = hint;
            return record;
        }
        set_registry_hint(0);
    }
    for (int i = g_registered.load(std::memory_order_acquire); i >= 1; --i) {
        if (g_thread_ids[i].load(std::memory_order_acquire) != thread) continue;
        CacheRecord* record = lock_record_of(i, thread);
        if (record != nullptr) {
            set_registry_hint(i);
            *index = i;
        }
        return record;
    }
    return nullptr;
}

// Registers the calling thread with an empty record and returns it locked; null when the registry
// is full or no record can be had.
CacheRecord* register_thread(std::uint64_t thread, int* index) {
    SpinLockGuard guard(g_service_lock);
    const int count = g_registered.load(std::memory_order_relaxed);
    if (count >= kMaxRegisteredThreads) return nullptr;
    auto* record = static_cast<CacheRecord*>(g_system.allocate(sizeof(CacheRecord)));
    if (record == nullptr) return nullptr;
    std::memset(record, 0, sizeof *record);
    const int next = count + 1;
    g_record_locks[next].lock();
    g_records[next].store(record, std::memory_order_release);
    g_thread_ids[next].store(thread, std::memory_order_release);
    g_registered.store(next, std::memory_order_release);
    set_registry_hint(next);
    *index = next;
    return record;
}

void* hand_out(CacheRecord& record, int slot, std::uint64_t size, std::uint64_t a) {
    const auto raw = reinterpret_cast<std::uintptr_t>(record.raw[slot]);
    std::uintptr_t user = raw;
    if (a != 0 && raw % a != 0) user = raw - raw % a + a;
    record.in_use[slot] = 1;
    record.requested[slot] = size;
    record.user[slot] = reinterpret_cast<void*>(user);
    return record.user[slot];
}

void clear_slot(CacheRecord& record, int slot) {
    record.raw[slot] = nullptr;
    record.user[slot] = nullptr;
    record.requested[slot] = 0;
    record.capacity[slot] = 0;
    record.in_use[slot] = 0;
}

// A block from the caller's cache; `full` is set when every slot is in use.
void* take_from_cache(CacheRecord& record, std::uint64_t size, std::uint64_t a, bool* full) {
    const std::uint64_t need = size + a;
    int larger = -1;
    int smaller = -1;
    for (int i = 0; i < record.slot_count; ++i) {
        if (record.in_use[i]) continue;
        if (record.capacity[i] == need) return hand_out(record, i, size, a);
        if (record.capacity[i] > need) {
            if (larger < 0) larger = i;
        } else if (smaller < 0) {
            smaller = i;
        }
    }
    if (larger >= 0) return hand_out(record, larger, size, a);
    int slot;
    if (record.slot_count < kCacheSlots) {
        slot = record.slot_count++;
    } else if (smaller >= 0) {
        slot = smaller;
        if (record.raw[slot] != nullptr) g_system.release(record.raw[slot]);
    } else {
        *full = true;
        return nullptr;
    }
    // Recorded without a test, as it always has been: a failed request leaves the slot in use with
    // no block (until the thread's buffers are freed) and the caller gets null.
    record.raw[slot] = g_system.allocate(need);
    record.capacity[slot] = need;
    return hand_out(record, slot, size, a);
}

bool mark_released(CacheRecord& record, void* block) {
    for (int i = 0; i < record.slot_count; ++i) {
        if (record.raw[i] != nullptr && record.user[i] == block) {
            record.in_use[i] = 0;
            return true;
        }
    }
    return false;
}

// Releases the record's cached blocks that are not in use; forgets its slots when none is in use.
// Returns whether a block is still in use.
bool release_free_blocks(CacheRecord& record) {
    bool in_use = false;
    for (int i = 0; i < record.slot_count; ++i) {
        if (record.raw[i] == nullptr) continue;
        if (record.in_use[i]) {
            in_use = true;
            continue;
        }
        g_system.release(record.raw[i]);
        clear_slot(record, i);
    }
    if (!in_use) record.slot_count = 0;
    return in_use;
}

}  // namespace

const SystemAllocator& system_allocator() {
    return g_system;
}

SystemAllocator set_system_allocator(const SystemAllocator& table) {
    const SystemAllocator previous = g_system;
    g_system = table;
    return previous;
}

void* plain_allocate(std::uint64_t size, std::int32_t alignment) {
    if (size == 0) return nullptr;
    const std::uint64_t a = effective_alignment(alignment, 8);
    if (size > UINT64_MAX - a - 8) return nullptr;
    const auto raw = reinterpret_cast<std::uintptr_t>(g_system.allocate(a + size + 8));
    if (raw == 0) return nullptr;
    std::uintptr_t block = raw + a + 8;
    if (a != 0) block -= block % a;
    std::memcpy(reinterpret_cast<void*>(block - 8), &raw, sizeof raw);
    return reinterpret_cast<void*>(block);
}

void plain_release(void* block) {
    if (block == nullptr) return;
    void* raw;
    std::memcpy(&raw, static_cast<char*>(block) - 8, sizeof raw);
    if (raw != nullptr) g_system.release(raw);
}

bool memory_cache_disabled() {
    std::int32_t disabled = g_cache_disabled.load(std::memory_order_acquire);
    if (disabled >= 0) return disabled == 1;
    SpinLockGuard guard(g_service_lock);
    disabled = g_cache_disabled.load(std::memory_order_relaxed);
    if (disabled < 0) {
        // Set means a non-empty value; the text itself is not read.
        char value[16];
        disabled = (platform::get_env("ZOR_DISABLE_FAST_MM", value, sizeof value) != 0 ||
                    platform::get_env("ZOR_MM_DISABLE", value, sizeof value) != 0)
                       ? 1
                       : 0;
        g_cache_disabled.store(disabled, std::memory_order_release);
    }
    return disabled == 1;
}

void* zor_allocate(std::uint64_t size, std::int32_t alignment) {
    ensure_registry_slot();
    if (size == 0) return nullptr;
    if (memory_cache_disabled() || size > kLargestCachedRequest) return plain_allocate(size, alignment);

    const std::uint64_t thread = platform::current_thread_id();
    int index = 0;
    CacheRecord* record = lock_own_record(thread, &index);
    if (record == nullptr) record = register_thread(thread, &index);
    if (record == nullptr) return plain_allocate(size, alignment);
    bool full = false;
    void* block = take_from_cache(*record, size, effective_alignment(alignment, 4), &full);
    g_record_locks[index].unlock();
    return full ? plain_allocate(size, alignment) : block;
}

void zor_deallocate(void* block) {
    if (block == nullptr) return;
    if (memory_cache_disabled()) {
        plain_release(block);
        return;
    }
    const std::uint64_t thread = platform::current_thread_id();
    int index = 0;
    if (CacheRecord* record = lock_own_record(thread, &index)) {
        const bool found = mark_released(*record, block);
        g_record_locks[index].unlock();
        if (found) return;
    }
    {
        // A block of another thread's cache goes back to that cache.
        SpinLockGuard guard(g_service_lock);
        const int count = g_registered.load(std::memory_order_relaxed);
        for (int i = 1; i <= count; ++i) {
            g_record_locks[i].lock();
            CacheRecord* record = g_records[i].load(std::memory_order_relaxed);
            const bool found = record != nullptr && mark_released(*record, block);
            g_record_locks[i].unlock();
            if (found) return;
        }
    }
    plain_release(block);
}

void free_thread_buffers() {
    if (memory_cache_disabled()) return;
    int index = 0;
    if (CacheRecord* record = lock_own_record(platform::current_thread_id(), &index)) {
        release_free_blocks(*record);
        g_record_locks[index].unlock();
    }
}

void free_all_buffers() {
    if (memory_cache_disabled()) return;
    SpinLockGuard guard(g_service_lock);
    const int count = g_registered.load(std::memory_order_relaxed);
    // Every record stays locked until the decision about the registry is carried out, so that no
    // owner takes a block from a record about to be released.
    bool in_use = false;
    for (int i = count; i >= 1; --i) {
        g_record_locks[i].lock();
        if (CacheRecord* record = g_records[i].load(std::memory_order_relaxed))
            in_use = release_free_blocks(*record) || in_use;
    }
    if (!in_use) {
        for (int i = count; i >= 1; --i) {
            g_system.release(g_records[i].load(std::memory_order_relaxed));
            g_records[i].store(nullptr, std::memory_order_release);
            g_thread_ids[i].store(0, std::memory_order_release);
        }
        g_registered.store(0, std::memory_order_release);
        const std::int64_t slot = g_registry_slot.exchange(-1, std::memory_order_acq_rel);
        if (slot >= 0) platform::tls_destroy(static_cast<platform::TlsIndex>(slot));
    }
    for (int i = 1; i <= count; ++i) g_record_locks[i].unlock();
}

MemoryManagerState memory_manager_state() {
    MemoryManagerState state{};
    state.registered_threads = g_registered.load(std::memory_order_acquire);
    state.thread_slot_created = g_registry_slot.load(std::memory_order_acquire) >= 0;
    state.slot_count = -1;
    int index = 0;
    if (CacheRecord* record = lock_own_record(platform::current_thread_id(), &index)) {
        state.slot_count = record->slot_count;
        for (int i = 0; i < record->slot_count; ++i) state.blocks_in_use += record->in_use[i] != 0;
        g_record_locks[index].unlock();
    }
    return state;
}

}  // namespace zor
