// Run under valgrind: threads fill their caches, release each other's blocks and free their own
// buffers; after ZOR_Free_Buffers nothing of the memory manager may be left, reachable or not.
// Linked without the C++ runtime library, so that everything valgrind finds is the library's.

#include <pthread.h>

#include <cstdio>

#include "service/memory.hpp"

namespace {

constexpr int kThreads = 4;
constexpr int kBlocks = zor::kCacheSlots + 1;  // one more than the cache holds
void* g_handed_over[kThreads];

void* worker(void* argument) {
    const auto t = reinterpret_cast<long>(argument);
    void* blocks[kBlocks];
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < kBlocks; ++i) blocks[i] = zor::zor_allocate(1000 * (i + 1) + t, 128);
        for (int i = 0; i < kBlocks; ++i) zor::zor_deallocate(blocks[i]);
        if (round == 1) zor::free_thread_buffers();
    }
    // A block in use when the thread ends, released later by the main thread.
    g_handed_over[t] = zor::zor_allocate(777, 128);
    return nullptr;
}

}  // namespace

int main() {
    pthread_t threads[kThreads];
    for (long t = 0; t < kThreads; ++t)
        pthread_create(&threads[t], nullptr, worker, reinterpret_cast<void*>(t));
    for (pthread_t thread : threads) pthread_join(thread, nullptr);
    void* large = zor::zor_allocate(zor::kLargestCachedRequest + 1, 128);
    zor::zor_deallocate(large);
    zor::free_all_buffers();
    if (zor::memory_manager_state().registered_threads == 0) return 1;  // blocks were still in use
    for (void* block : g_handed_over) zor::zor_deallocate(block);
    zor::free_all_buffers();
    const zor::MemoryManagerState state = zor::memory_manager_state();
    if (state.registered_threads != 0 || state.thread_slot_created) return 2;
    std::puts("memory manager released everything");
    return 0;
}
