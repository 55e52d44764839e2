#pragma once
// The kernel dispatcher: one object per routine family, holding the addresses of the family's five
// variants and the one chosen for this process. The first call asks for the processor level and
// stores the matching address without a lock (every racing thread stores the same one); later
// calls go straight through. Dispatchers are constant-initialised, so they work before and during
// static initialisation of the caller's program.

#include <atomic>
#include <utility>

#include "service/cpu.hpp"
#include "service/types.hpp"

namespace zor {

template <class Signature>
class KernelDispatcher;

template <class R, class... Args>
class KernelDispatcher<R(Args...)> {
  public:
    using Function = R(Args...);

    constexpr KernelDispatcher(Function* default_, Function* sse3, Function* ssse3, Function* sse42,
                               Function* avx)
        : variants_{default_, sse3, ssse3, sse42, avx} {}
    KernelDispatcher(const KernelDispatcher&) = delete;
    KernelDispatcher& operator=(const KernelDispatcher&) = delete;

    // Always inlined, so that no out-of-line copy compiled for one level serves callers of another.
    [[gnu::always_inline]] inline R operator()(Args... args) const {
        Function* chosen = cached_.load(std::memory_order_relaxed);
        if (chosen == nullptr) chosen = choose();
        return chosen(std::forward<Args>(args)...);
    }

    // The variant of one level, for tests and for code that must stay at one level.
    Function* variant(CpuLevel level) const { return variants_[static_cast<int>(level)]; }
    // The chosen variant, or null before the first call.
    Function* chosen() const { return cached_.load(std::memory_order_relaxed); }

  private:
    [[gnu::always_inline]] inline Function* choose() const {
        Function* chosen = variants_[static_cast<int>(detect_cpu_level())];
        cached_.store(chosen, std::memory_order_relaxed);
        return chosen;
    }

    Function* const variants_[kCpuLevelCount];
    mutable std::atomic<Function*> cached_{nullptr};
};

}  // namespace zor

// The five variants of a routine, in level order, for a dispatcher's initialiser.
#define ZOR_VARIANTS(name) \
    &::zor::default_::name, &::zor::sse3::name, &::zor::ssse3::name, &::zor::sse42::name, &::zor::avx::name

// The dispatcher of a family declared with ZOR_DECLARE_VARIANTS: its declaration in a layer's
// dispatcher header and its definition in the layer's table. Each layer lists its families once,
// as an X-macro over the family names, and expands it with these two.
#define ZOR_DECLARE_DISPATCHER(name) \
    extern const ::zor::KernelDispatcher<decltype(::zor::default_::name)> name;
#define ZOR_DEFINE_DISPATCHER(name) \
    constinit const ::zor::KernelDispatcher<decltype(::zor::default_::name)> name{ZOR_VARIANTS(name)};

// Declares the same functions in every level namespace, for the headers of kernel families.
#define ZOR_DECLARE_VARIANTS(...) \
    namespace zor::default_ {     \
    __VA_ARGS__                   \
    }                             \
    namespace zor::sse3 {         \
    __VA_ARGS__                   \
    }                             \
    namespace zor::ssse3 {        \
    __VA_ARGS__                   \
    }                             \
    namespace zor::sse42 {        \
    __VA_ARGS__                   \
    }                             \
    namespace zor::avx {          \
    __VA_ARGS__                   \
    }
