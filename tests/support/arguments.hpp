#pragma once
// Argument-check tables: a call with its arguments, the name its report must carry (blank-padded
// to six characters) and the info it must return: the number of the first bad parameter (the BLAS
// checks), its negative (the LAPACK routines), or 0 for a valid call, which reports nothing. The
// test over such a table is support/arguments.cpp's; a file instantiates it with its own table.

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

#include "service/types.hpp"

namespace zor::test {

struct ArgumentCase {
    const char* name;
    zint expected;
    std::function<zint()> call;
};

inline void PrintTo(const ArgumentCase& c, std::ostream* out) {
    *out << c.name << " " << c.expected;
}

// The info a routine of the Fortran calling form (info its last parameter) returns for `arguments`.
template <class Result, class... Parameters, class... Arguments>
zint info_of(Result (*routine)(Parameters...), Arguments... arguments) {
    zint info = 0;
    routine(arguments..., info);
    return info;
}

class ArgumentChecks : public ::testing::TestWithParam<ArgumentCase> {};

}  // namespace zor::test
