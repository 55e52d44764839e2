#pragma once
// Integers across the Fortran-style boundary: 32 bits outside, 64 bits inside.

#include <cstdint>

#include "service/types.hpp"
#include "zor/zor_config.h"

namespace zor::fortran {

// An integer read once from the caller's 32-bit cell, sign-extended.
inline zint widen(const zor_int* value) {
    return *value;
}

// The low 32 bits of a 64-bit integer, as the caller's integers hold it.
inline zor_int narrow(zint value) {
    return static_cast<zor_int>(static_cast<std::uint32_t>(value));
}

}  // namespace zor::fortran
