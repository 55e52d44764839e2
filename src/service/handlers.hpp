#pragma once
// The two process-wide handler slots: the error handler that internal LAPACK code reports through,
// and the progress handler that long factorisations call. A registration fills an empty slot only,
// so the first registration wins, whether it is the caller's or the library's default.

#include <cstdint>

namespace zor {

// (routine name, address of the 32-bit info, name length)
using ErrorHandler = void (*)(const char* name, const void* info, int name_length);
// (address of the thread number, address of the step count, stage name, name length) -> nonzero
// asks the factorisation to stop.
using ProgressHandler = int (*)(const std::int32_t* thread, const std::int32_t* step, const char* stage,
                                int stage_length);

// Each returns true when it filled the slot.
bool register_error_handler(ErrorHandler handler);
bool register_progress_handler(ProgressHandler handler);
ErrorHandler error_handler();
ProgressHandler progress_handler();

// The defaults the Fortran-style layer registers: xerbla, and a progress handler that never stops.
int default_progress_handler(const std::int32_t* thread, const std::int32_t* step, const char* stage,
                             int stage_length);
void register_default_handlers();

// Reports through the error-handler slot, or through xerbla when it is empty.
void report_error(const char* name, std::int32_t info, int name_length);

// 0 when `pointer` is not null; otherwise reports info 1089 for `routine` and returns 1.
int check_allocation(const void* pointer, const char* routine);

// Calls the progress handler, if any; its answer, or 0.
int report_progress(std::int32_t thread, std::int32_t step, const char* stage, int stage_length);

}  // namespace zor
