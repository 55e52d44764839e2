#pragma once
// Option letters: compared ignoring case, folding ASCII letters only.

namespace zor {

// The byte with a..z folded to A..Z; every other byte unchanged.
constexpr char ascii_upper(char c) {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
}

// Whether two option letters are the same letter: equal bytes, or equal once a..z are folded.
bool lsame(const char& ca, const char& cb);

}  // namespace zor
