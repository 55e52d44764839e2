// iparmq: the parameters of the multishift QR algorithm with aggressive early deflation, with
// the published defaults.

#include <cmath>

#include "lapack/tuning/tuning.hpp"

namespace zor {

namespace {

constexpr zint kSmallestMultishiftOrder = 75;  // NMIN: smaller blocks go to the double-shift code
constexpr zint kNibble = 14;                   // percent of deflations that skip a sweep
constexpr zint kWideWindowOrder = 500;         // above this order the window grows to 3/2 NS
constexpr zint kAccumulateShifts = 14;         // from this many shifts, reflections are accumulated
constexpr zint kBlockShifts = 14;              // ... and the 2-by-2 block structure is used

// The number of simultaneous shifts for an active block of order nh: even, at least 2.
zint shift_count(__int128 nh) {
    zint shifts = 2;
    if (nh >= 30) shifts = 4;
    if (nh >= 60) shifts = 10;
    if (nh >= 150 && nh < 590) {
        // nh / round(log2 nh), computed in single precision as the published parameters are.
        const auto log2 = static_cast<zint>(std::lround(std::log(static_cast<float>(nh)) / std::log(2.0f)));
        shifts = static_cast<zint>(nh) / log2;
        if (shifts < 10) shifts = 10;
    }
    if (nh >= 590) shifts = 64;
    if (nh >= 3000) shifts = 128;
    if (nh >= 6000) shifts = 256;
    shifts -= shifts % 2;
    return shifts < 2 ? 2 : shifts;
}

}  // namespace

zint iparmq(const zint& ispec, const char*, const char*, const zint&, const zint& ilo, const zint& ihi,
            const zint&, zint, zint) {
    switch (ispec) {
        case 12:
            return kSmallestMultishiftOrder;
        case 14:
            return kNibble;
        case 13:
        case 15:
        case 16: {
            const __int128 nh = static_cast<__int128>(ihi) - ilo + 1;
            const zint shifts = shift_count(nh);
            if (ispec == 15) return shifts;
            if (ispec == 13) return nh <= kWideWindowOrder ? shifts : 3 * shifts / 2;
            zint accumulate = 0;
            if (shifts >= kAccumulateShifts) accumulate = 1;
            if (shifts >= kBlockShifts) accumulate = 2;
            return accumulate;
        }
        default:
            return -1;
    }
}

}  // namespace zor
