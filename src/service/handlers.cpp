#include "service/handlers.hpp"

#include <atomic>
#include <cstring>

#include "service/messages.hpp"

namespace zor {

namespace {

std::atomic<ErrorHandler> g_error_handler{nullptr};
std::atomic<ProgressHandler> g_progress_handler{nullptr};

template <class Handler>
bool fill_empty(std::atomic<Handler>& slot, Handler handler) {
    Handler empty = nullptr;
    return slot.compare_exchange_strong(empty, handler, std::memory_order_acq_rel);
}

}  // namespace

bool register_error_handler(ErrorHandler handler) {
    return fill_empty(g_error_handler, handler);
}

bool register_progress_handler(ProgressHandler handler) {
    return fill_empty(g_progress_handler, handler);
}

ErrorHandler error_handler() {
    return g_error_handler.load(std::memory_order_acquire);
}

ProgressHandler progress_handler() {
    return g_progress_handler.load(std::memory_order_acquire);
}

int default_progress_handler(const std::int32_t*, const std::int32_t*, const char*, int) {
    return 0;
}

void register_default_handlers() {
    register_error_handler(&xerbla);
    register_progress_handler(&default_progress_handler);
}

void report_error(const char* name, std::int32_t info, int name_length) {
    if (ErrorHandler handler = error_handler()) {
        handler(name, &info, name_length);
    } else {
        xerbla(name, &info, name_length);
    }
}

int check_allocation(const void* pointer, const char* routine) {
    if (pointer != nullptr) return 0;
    report_error(routine, 1089, static_cast<int>(std::strlen(routine)));
    return 1;
}

int report_progress(std::int32_t thread, std::int32_t step, const char* stage, int stage_length) {
    ProgressHandler handler = progress_handler();
    return handler != nullptr ? handler(&thread, &step, stage, stage_length) : 0;
}

}  // namespace zor
