// The exported memory functions.

#include "zor/zor_memory.h"

#include "service/memory.hpp"

extern "C" {

ZOR_API void* ZOR_malloc(size_t size, int alignment) {
    return zor::plain_allocate(size, alignment);
}

ZOR_API void ZOR_free(void* block) {
    zor::plain_release(block);
}

ZOR_API void ZOR_Free_Buffers(void) {
    zor::free_all_buffers();
}

ZOR_API void ZOR_Thread_Free_Buffers(void) {
    zor::free_thread_buffers();
}

}  // extern "C"
