#pragma once
// Option letters ("N", "T", "C", "U", "L", ...): one test for every layer. Two letters match when
// their bytes are equal or equal once a..z are folded to A..Z; nothing else is folded (no "[" /
// "{", no accented letters). The kernels read only the letters the entry layer has let through.

#include "service/types.hpp"

namespace zor {
ZOR_INLINE_BEGIN

// The byte with a..z folded to A..Z; every other byte unchanged.
constexpr char ascii_upper(char c) {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
}

// Whether two option letters are the same letter.
constexpr bool lsame(char ca, char cb) {
    return ca == cb || ascii_upper(ca) == ascii_upper(cb);
}

ZOR_INLINE_END
}  // namespace zor
