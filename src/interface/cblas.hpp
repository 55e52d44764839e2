#pragma once
// What the CBLAS entry points share: the enumeration tests, the letter tables of the column-major
// Fortran-style routines (with their row-major flips), and the argument checks, run in each
// routine's published order and reported through cblas_xerbla.

#include <initializer_list>

#include "service/checks.hpp"
#include "zor/zor_cblas.h"

namespace zor::cblas {

inline bool valid_layout(int layout) {
    return layout == CblasRowMajor || layout == CblasColMajor;
}
inline bool valid_transpose(int trans) {
    return trans == CblasNoTrans || trans == CblasTrans || trans == CblasConjTrans;
}
inline bool valid_uplo(int uplo) {
    return uplo == CblasUpper || uplo == CblasLower;
}
inline bool valid_diag(int diag) {
    return diag == CblasNonUnit || diag == CblasUnit;
}
inline bool valid_side(int side) {
    return side == CblasLeft || side == CblasRight;
}

// Letter tables, indexed by the enumeration value less its first value. The flipped tables serve
// row-major calls, which run the column-major routine on the transposed problem.
inline constexpr char kTransposeLetters[3] = {'N', 'T', 'C'};
inline constexpr char kFlippedRealTransposeLetters[3] = {'T', 'N', 'N'};       // syrk, syr2k
inline constexpr char kFlippedHermitianTransposeLetters[3] = {'C', 'N', 'N'};  // herk, her2k
inline constexpr char kSideLetters[2] = {'L', 'R'};
inline constexpr char kFlippedSideLetters[2] = {'R', 'L'};
inline constexpr char kDiagLetters[2] = {'N', 'U'};
inline constexpr char kUploLetters[2] = {'U', 'L'};
inline constexpr char kFlippedUploLetters[2] = {'L', 'U'};

// What an entry point that reports a bad enumeration and goes on passes in the letter's place:
// a letter that the Fortran-style check rejects, so that nothing is computed.
inline constexpr char kUnsetLetter = '\0';

inline bool row_major(int layout) {
    return layout == CblasRowMajor;
}
inline char transpose_letter(int trans) {
    return valid_transpose(trans) ? kTransposeLetters[trans - CblasNoTrans] : kUnsetLetter;
}
// Row-major gemv, trmv and trsv run the column-major routine on the transpose: "T" for no
// transpose, "N" for either transpose (a conjugate one is then made up by conjugating operands).
inline char flipped_transpose_letter(int trans) {
    return valid_transpose(trans) ? kFlippedRealTransposeLetters[trans - CblasNoTrans] : kUnsetLetter;
}
inline char diag_letter(int diag) {
    return valid_diag(diag) ? kDiagLetters[diag - CblasNonUnit] : kUnsetLetter;
}
// Upper and lower swap for row-major calls; so do left and right.
inline char uplo_letter(int layout, int uplo) {
    if (!valid_uplo(uplo)) return kUnsetLetter;
    return (row_major(layout) ? kFlippedUploLetters : kUploLetters)[uplo - CblasUpper];
}
inline char side_letter(int layout, int side) {
    if (!valid_side(side)) return kUnsetLetter;
    return (row_major(layout) ? kFlippedSideLetters : kSideLetters)[side - CblasLeft];
}

// A leading dimension must be at least max(1, rows).
inline bool leading_dimension_too_small(zor_int ld, zor_int rows) {
    return ld < (rows > 1 ? rows : 1);
}

// Runs the checks in their published order, reporting each failure through cblas_xerbla(routine,
// parameter) up to the first that ends the call. True when the call may compute.
bool check_arguments(const char* routine, std::initializer_list<ArgumentCheck> checks);

}  // namespace zor::cblas
