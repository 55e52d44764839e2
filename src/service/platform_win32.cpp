// The platform layer on 64-bit Windows: KERNEL32 only.

#include "service/platform.hpp"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace zor::platform {

std::uint32_t get_env(const char* name, char* buffer, std::uint32_t size) {
    if (size > 0) buffer[0] = '\0';
    const DWORD result = GetEnvironmentVariableA(name, buffer, size);
    // A value that does not fit leaves the buffer's contents undefined; make them "".
    if (result >= size && size > 0) buffer[0] = '\0';
    return result;
}

bool tls_create(TlsIndex* index) {
    const DWORD slot = TlsAlloc();
    if (slot == TLS_OUT_OF_INDEXES) return false;
    *index = slot;
    return true;
}

void tls_destroy(TlsIndex index) {
    TlsFree(index);
}

void* tls_get(TlsIndex index) {
    return TlsGetValue(index);
}

bool tls_set(TlsIndex index, void* value) {
    return TlsSetValue(index, value) != 0;
}

std::uint64_t current_thread_id() {
    return GetCurrentThreadId();
}

const char kCatalogFileName[] = "zor_msg.dll";

std::uint32_t thread_locale() {
    return GetThreadLocale();
}

void* load_catalog(const char* path) {
    return LoadLibraryA(path);
}

// Message-table resources number their entries with the severity in the top bits; the catalog's
// messages carry bit 31.
char* catalog_text(void* catalog, std::uint32_t number, std::uint32_t language) {
    char* text = nullptr;
    const DWORD length = FormatMessageA(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_IGNORE_INSERTS, catalog,
        number | 0x80000000u, language, reinterpret_cast<LPSTR>(&text), 0, nullptr);
    if (length == 0) {
        if (text != nullptr) LocalFree(text);
        return nullptr;
    }
    return text;
}

void release_catalog_text(char* text) {
    LocalFree(text);
}

bool affinity_masks(std::uint64_t* process_mask, std::uint64_t* system_mask) {
    DWORD_PTR process = 0;
    DWORD_PTR system = 0;
    if (!GetProcessAffinityMask(GetCurrentProcess(), &process, &system)) return false;
    *process_mask = process;
    *system_mask = system;
    return true;
}

bool pin_current_thread(std::uint64_t mask) {
    return SetThreadAffinityMask(GetCurrentThread(), static_cast<DWORD_PTR>(mask)) != 0;
}

void yield_thread() {
    Sleep(0);
}

}  // namespace zor::platform
