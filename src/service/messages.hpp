#pragma once
// Diagnostics: every message of the library is printed by print_message, from the message catalog
// of the caller's locale when one can be loaded, else from the built-in table.

#include <cstdint>

namespace zor {

enum class MessageClass : std::int32_t { Plain = 1, Warning = 2, Error = 4 };

struct MessageEntry {
    std::int32_t number;
    MessageClass message_class;
    const char* text;
};

inline constexpr int kMessageCount = 1127;
// The language asked of the catalog: US English.
inline constexpr std::uint32_t kCatalogLanguage = 0x409;
// Formatted messages longer than this end the process (status 8).
inline constexpr int kMessageMaxLength = 513;
inline constexpr int kMessageBufferSize = 512;

// Messages this library emits.
inline constexpr int kMsgLineFeed = 0;
inline constexpr int kMsgCpuTypeNotConvenient = 4;
inline constexpr int kMsgBadParameter = 6;
inline constexpr int kMsgInternalCondition = 7;
inline constexpr int kMsgNoWorkMemory = 8;
inline constexpr int kMsgIncompatibleOptions = 9;
inline constexpr int kMsgAllocationFailure = 1089;

// The built-in entry of `number` (0..1126).
const MessageEntry& builtin_message(int number);

// Prints message `number`, formatted with `count` arguments of the types its text names, and a
// line feed, to standard output; flushes every stream. `reserved` is 0.
void print_message(int reserved, int number, int count, ...);

// Whether message texts come from a catalog; settles the one attempt to load it.
bool message_catalog_in_use();

// A catalog text replaces the built-in one only when it formats the same arguments in the same
// order, so that a faulty catalog cannot make the formatting read what was not passed.
bool same_conversions(const char* built_in, const char* candidate);

// The error reporter of the argument checks. `name` need not be terminated; at most 20 of its
// `name_length` characters are used. `info` is read as a 32-bit integer.
void xerbla(const char* name, const void* info, int name_length);

// The CBLAS entry points' reporter: a line feed, then message 6 with `parameter` and `name`.
void cblas_xerbla(const char* name, int parameter);

}  // namespace zor
