#pragma once
// The tuning function ilaenv (block sizes, crossovers and switches by routine name, problem size
// and processor level), the multishift QR parameters iparmq, and the machine parameters dlamch.
// All are internal, in the Fortran calling form.

#include <cstdint>

#include "service/types.hpp"

namespace zor {

// What the answers of ilaenv depend on besides their arguments.
struct TuningMachine {
    CpuLevel level;
    bool authentic_amd;
};
// This processor's: the level in force and the vendor test, both cached per process.
TuningMachine current_tuning_machine();

// The answer of ilaenv on a given machine (a pure function; ilaenv passes the current one).
zint tuned_answer(const TuningMachine& machine, std::int32_t ispec, const char* name, zint name_length,
                  const char* opts, zint opts_length, zint n1, zint n2, zint n3, zint n4);

// ispec: the query (1..19); name: the routine name, 6 characters, any case; opts: only its first
// character is read; n1..n4: problem dimensions (placeholders where a query reads none). An
// unknown query answers -1; a name-dependent query for a name that is not S, D, C or Z answers 1.
zint ilaenv(const std::int32_t& ispec, const char* name, const char* opts, const zint& n1, const zint& n2,
            const zint& n3, const zint& n4, zint name_length = 6, zint opts_length = 1);

// The multishift QR parameters: ispec 12 (NMIN), 13 (deflation window), 14 (NIBBLE), 15 (shifts),
// 16 (accumulation switch), for the active block ilo..ihi; -1 for any other ispec.
zint iparmq(const zint& ispec, const char* name, const char* opts, const zint& n, const zint& ilo,
            const zint& ihi, const zint& lwork, zint name_length, zint opts_length);

// The IEEE double-precision constant named by the first letter of cmach (either case): E, S, B, P,
// N, R, M, U, L, O and the library's scaling bounds A, I, F, X and T; 0.0 for any other letter.
double dlamch(const char* cmach, zint cmach_length = 1);

}  // namespace zor
