#pragma once
// What every LAPACK source includes. The LAPACK routines are templates over the element type
// (double, zcomplex), instantiated for both in their own source files (ZOR_INSTANTIATE); the named
// d and z routines exist only at the interface layer. They take the Fortran-style arguments with
// scalars by value (64-bit integers, option letters as characters), check their arguments in the
// published order and report the first bad one with the routine's name (check_arguments), so an
// internal caller gets the published behaviour from each. Baseline code only: compiled once.

#include <initializer_list>

#include "lapack/blas.hpp"
#include "lapack/tuning/tuning.hpp"
#include "service/checks.hpp"
#include "service/element.hpp"
#include "service/letters.hpp"
#include "service/types.hpp"

#if defined(ZOR_LEVEL_NS)
#error "LAPACK routines are baseline code; kernel sources must not include lapack.hpp"
#endif

namespace zor {

// The routine's name for the element type, from its pair of names ("DGETRF", "ZGETRF").
template <class T>
constexpr const char* routine_name(const char* real, const char* complex) {
    return kIsComplex<T> ? complex : real;
}

// The transpose letter that conjugates for complex elements: "T" for real, "C" for complex.
// Orders beyond which no matrix fits in memory. Workspace formulas with squares of orders would
// overflow 64 bits past them: the drivers answer kUnattainable (any lwork is too small) instead.
inline constexpr zint kLargestOrder = zint{1} << 28;
inline constexpr zint kUnattainable = zint{1} << 62;

template <class T>
inline constexpr char kAdjoint = kIsComplex<T> ? 'C' : 'T';

// Runs a routine's checks in order; returns 0, or -k for the first failing parameter k after
// reporting it through the error handler with `name` (blank-padded to six characters where the
// published routine's name is shorter: "DGESV ").
zint check_arguments(const char* name, std::initializer_list<ArgumentCheck> checks);

}  // namespace zor

// The real and complex instantiations of a routine template, at the end of its source file.
#define ZOR_INSTANTIATE(routine)                                    \
    template decltype(::zor::routine<double>) zor::routine<double>; \
    template decltype(::zor::routine<::zor::zcomplex>) zor::routine<::zor::zcomplex>;
