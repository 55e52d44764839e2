/* The memory functions of zor: aligned blocks with no caching (ZOR_malloc, ZOR_free), and the
 * release of the per-thread block caches that the library keeps for its work areas. */
#ifndef ZOR_ZOR_MEMORY_H
#define ZOR_ZOR_MEMORY_H

#include <stddef.h>

#include "zor/zor_config.h"

ZOR_EXTERN_C_BEGIN

/* A block of `size` bytes aligned to `alignment` when that is a power of two of at least 8 (to 64
 * for any other value of at least 8, to 8 below that); null when size is 0 or no memory is left.
 * Release it with ZOR_free. */
ZOR_API void* ZOR_malloc(size_t size, int alignment);
/* Releases a block of ZOR_malloc; null does nothing. */
ZOR_API void ZOR_free(void* block);
/* Releases every thread's cached blocks that are not in use; when no block is in use anywhere,
 * also the caches themselves. */
ZOR_API void ZOR_Free_Buffers(void);
/* Releases the calling thread's cached blocks that are not in use. */
ZOR_API void ZOR_Thread_Free_Buffers(void);

ZOR_EXTERN_C_END

#endif
