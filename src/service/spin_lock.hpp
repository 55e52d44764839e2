#pragma once
// The process-wide spin lock: one 32-bit word taken by compare-and-exchange 0 -> 1 and released by
// storing 0. It guards only short one-time decisions and the memory manager's registry, so it
// spins without pausing or yielding.

#include <atomic>
#include <cstdint>

namespace zor {

class SpinLock {
  public:
    constexpr SpinLock() = default;
    SpinLock(const SpinLock&) = delete;
    SpinLock& operator=(const SpinLock&) = delete;

    void lock() {
        for (;;) {
            std::uint32_t expected = 0;
            if (word_.compare_exchange_weak(expected, 1, std::memory_order_acquire,
                                            std::memory_order_relaxed))
                return;
        }
    }
    void unlock() { word_.store(0, std::memory_order_release); }

  private:
    std::atomic<std::uint32_t> word_{0};
};

class SpinLockGuard {
  public:
    explicit SpinLockGuard(SpinLock& lock) : lock_(lock) { lock_.lock(); }
    ~SpinLockGuard() { lock_.unlock(); }
    SpinLockGuard(const SpinLockGuard&) = delete;
    SpinLockGuard& operator=(const SpinLockGuard&) = delete;

  private:
    SpinLock& lock_;
};

// The one lock shared by processor detection, the memory manager and the settings.
extern SpinLock g_service_lock;

}  // namespace zor
