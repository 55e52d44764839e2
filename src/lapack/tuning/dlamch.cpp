// dlamch: the constants of IEEE double precision, as bit patterns; nothing is computed.

#include <bit>

#include "lapack/tuning/tuning.hpp"
#include "service/letters.hpp"

namespace zor {

namespace {

struct MachineConstant {
    char letter;
    std::uint64_t bits;
};

constexpr MachineConstant kConstants[] = {
    {'E', 0x3CA0000000000000},  // eps = 2^-53, the relative machine precision
    {'S', 0x0010000000000000},  // safe minimum 2^-1022: its reciprocal does not overflow
    {'B', 0x4000000000000000},  // base 2
    {'P', 0x3CB0000000000000},  // eps * base = 2^-52
    {'N', 0x404A800000000000},  // 53 mantissa digits
    {'R', 0x3FF0000000000000},  // 1: rounding to nearest
    {'M', 0xC08FE80000000000},  // minimum exponent -1021
    {'U', 0x0010000000000000},  // underflow threshold 2^-1022
    {'L', 0x4090000000000000},  // maximum exponent 1024
    {'O', 0x7FEFFFFFFFFFFFFF},  // overflow threshold, the largest finite double
    // The library's scaling bounds: two pairs of reciprocal powers of two, and one constant more.
    {'A', 0x2AB0000000000000},  // 2^-340
    {'I', 0x5530000000000000},  // 2^340
    {'F', 0x21B0000000000000},  // 2^-484
    {'X', 0x5E30000000000000},  // 2^484
    {'T', 0x4058ACE5422AA0DB},  // 98.70149282610821
};

}  // namespace

double dlamch(const char* cmach, zint) {
    const char letter = ascii_upper(cmach[0]);
    for (const MachineConstant& constant : kConstants) {
        if (constant.letter == letter) return std::bit_cast<double>(constant.bits);
    }
    return 0.0;
}

}  // namespace zor
