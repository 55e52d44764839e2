#pragma once
// Values across the Fortran-style boundary: integers of 32 bits outside and 64 bits inside, complex
// values as the caller's type outside and the library's inside.

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

// The caller's complex values as the library's complex type (the same two doubles).
inline zcomplex* as_complex(zor_complex_double* x) {
    return reinterpret_cast<zcomplex*>(x);
}
inline const zcomplex* as_complex(const zor_complex_double* x) {
    return reinterpret_cast<const zcomplex*>(x);
}

}  // namespace zor::fortran
