#pragma once
// The auxiliary routines every LAPACK family uses: copies and fills of matrices, scaling without
// overflow, norms, plane rotations, sorting and merging. Matrices are column-major with a leading
// dimension; `uplo` "U" or "L" selects a triangle (any other letter the whole matrix) where a
// routine takes one. None of them reports an argument error except lascl, whose callers are
// internal.

#include "service/types.hpp"

namespace zor {

// sqrt(x^2 + y^2) without overflow or underflow in the squares; a NaN argument is returned (y's
// when both are NaN), and an infinite argument gives infinity.
double lapy2(double x, double y);

// sqrt(x^2 + y^2 + z^2) scaled by the largest magnitude, so that no square overflows or underflows
// unnecessarily; NaN when an argument is NaN, infinity when one is infinite and none is NaN.
double lapy3(double x, double y, double z);

// B := A for the upper ("U") or lower ("L") trapezoid of the m by n matrix, or all of it.
template <class T>
void lacpy(char uplo, zint m, zint n, const T* a, zint lda, T* b, zint ldb);

// The off-diagonal elements of the trapezoid (or of the whole matrix) := alpha, the diagonal :=
// beta.
template <class T>
void laset(char uplo, zint m, zint n, const T& alpha, const T& beta, T* a, zint lda);

// A := A · (cto / cfrom), done in steps that neither overflow nor underflow when the quotient is
// representable. `type`: "G" full, "L" lower triangle, "U" upper triangle, "H" upper Hessenberg,
// "B" lower half of a symmetric band (kl), "Q" upper half of a symmetric band (ku), "Z" band with
// kl subdiagonals and ku superdiagonals in the layout of the band LU (2 kl + ku + 1 rows).
// info = -k for a bad argument k (reported as "DLASCL" / "ZLASCL").
template <class T>
void lascl(char type, zint kl, zint ku, double cfrom, double cto, zint m, zint n, T* a, zint lda, zint& info);

// The scaled sum of squares of n elements x(1 + i·incx): on return scale² · sumsq equals
// Σ |x_i|² + scale_in² · sumsq_in, with scale the largest magnitude met (complex elements count
// their two parts apart). A NaN element makes both NaN.
template <class T>
void lassq(zint n, const T* x, zint incx, double& scale, double& sumsq);

// Matrix norms, by the first letter of `norm`: "M" max |a_ij|, "1"/"O" largest column sum, "I"
// largest row sum, "F"/"E" Frobenius. NaN entries give NaN. `work` (n or m doubles) is needed by
// "I" only (and by lanhe's "1"/"I").
template <class T>
double lange(char norm, zint m, zint n, const T* a, zint lda, double* work);
// The same for a symmetric (real) or Hermitian (complex) matrix stored in one triangle; a
// Hermitian diagonal is taken as real.
template <class T>
double lanhe(char norm, char uplo, zint n, const T* a, zint lda, double* work);
// The same for the symmetric tridiagonal matrix with diagonal d (n) and off-diagonal e (n - 1).
double lanst(char norm, zint n, const double* d, const double* e);

// The plane rotation [c s; -conj(s) c] with c real and c² + |s|² = 1 that takes (f, g) to (r, 0),
// computed with scaling so that nothing overflows or underflows unnecessarily. Real: g = 0 gives
// c = 1, s = 0, r = f; f = 0 gives c = 0, s = sign-free 1, r = g. Complex: r has the phase of f.
template <class T>
void lartg(const T& f, const T& g, double& c, T& s, T& r);

// A := P A (side "L") or A P ("R"), P the product of the k = m - 1 (or n - 1) plane rotations (c(j),
// s(j)) in the planes of `pivot`: "V" (j, j + 1), "T" (1, j + 1), "B" (j, z); `direct` "F" applies
// them first to last, "B" last to first. Each rotation acts on the two rows (columns) as
// [c s; -s c].
template <class T>
void lasr(char side, char pivot, char direct, zint m, zint n, const double* c, const double* s, T* a,
          zint lda);

// Sorts d increasingly (id "I") or decreasingly ("D"); info = -1 or -2 for a bad id or n < 0
// ("DLASRT").
void lasrt(char id, zint n, double* d, zint& info);

// The permutation (one-based, into index) that merges a(0 : n1) and a(n1 : n1 + n2), each sorted
// (ascending for a positive stride, descending for a negative one), into one ascending list.
void lamrg(zint n1, zint n2, const double* a, zint stride1, zint stride2, zint* index);

}  // namespace zor
