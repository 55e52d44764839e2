#pragma once
// What the services need of the operating system. platform_win32.cpp implements it with KERNEL32,
// platform_posix.cpp with POSIX and glibc; no other file of the library includes windows.h or
// pthread.h.

#include <cstdint>

namespace zor::platform {

// Environment lookup with the contract of GetEnvironmentVariableA: returns 0 when the variable is
// unset or empty; its length when it fits into size - 1 characters (the buffer then holds it,
// terminated); otherwise the size it would need, terminator included, and the buffer holds "".
std::uint32_t get_env(const char* name, char* buffer, std::uint32_t size);

// One thread-local slot per index.
using TlsIndex = std::uint32_t;
inline constexpr TlsIndex kNoTlsIndex = 0xFFFFFFFFu;
bool tls_create(TlsIndex* index);
void tls_destroy(TlsIndex index);
void* tls_get(TlsIndex index);
bool tls_set(TlsIndex index, void* value);

// An identifier of the calling thread, unique among the threads alive at one time.
std::uint64_t current_thread_id();

// Message catalog. The catalog of a locale lives at "<thread locale>/<kCatalogFileName>", the
// locale as a decimal Windows locale identifier (1033 for US English).
extern const char kCatalogFileName[];
std::uint32_t thread_locale();
void* load_catalog(const char* path);
// The text of message `number` in `language` (a Windows language identifier), allocated by the
// system and released with release_catalog_text; null when the catalog does not have it.
char* catalog_text(void* catalog, std::uint32_t number, std::uint32_t language);
void release_catalog_text(char* text);

// Processor affinity, as bit masks of processors 0..63.
bool affinity_masks(std::uint64_t* process_mask, std::uint64_t* system_mask);
bool pin_current_thread(std::uint64_t mask);
// A zero-length sleep: gives up the rest of the time slice.
void yield_thread();

}  // namespace zor::platform
