#pragma once
// Balancing and the reduction to upper Hessenberg form: the first steps of the nonsymmetric
// eigenproblem.
//
// gebal permutes and scales a general matrix into D⁻¹ Pᵀ A P D, whose rows and columns ilo .. ihi
// (one-based) hold the part that still needs the QR algorithm, the rest already upper triangular
// (eigenvalues isolated by the permutation); scale(j) records the permutation index (j outside
// ilo .. ihi) or the scale factor (inside). gebak applies the inverse to eigenvectors or Schur
// vectors. gehrd reduces A to Qᴴ A Q = H, upper Hessenberg, with Q = H(ilo) ... H(ihi - 1) stored
// as reflectors below the first subdiagonal (see householder.hpp; orghr forms Q, ormhr applies it).
//
// Templates over double and zcomplex; the checks follow the published routines ("DGEBAL",
// "ZGEHRD", ...), info = -k for a bad argument k.

#include "service/types.hpp"

namespace zor {

// job "N": nothing (ilo = 1, ihi = n, scale = 1); "P": permute only; "S": scale only; "B": both.
// Rows and columns are scaled by powers of two until their norms over ilo .. ihi are close, the
// published balancing of the 2-norms. A NaN met while scaling is reported as a bad argument 3 (the
// matrix), as published; ilo and ihi are then those of the permutation and the scaling stops.
template <class T>
void gebal(char job, zint n, T* a, zint lda, zint& ilo, zint& ihi, double* scale, zint& info);

// V := D P V (side "R", right vectors) or D⁻¹ P V ("L", left vectors) for the m columns of V,
// undoing gebal's job on the eigenvectors of the balanced matrix.
template <class T>
void gebak(char job, char side, zint n, zint ilo, zint ihi, const double* scale, zint m, T* v, zint ldv,
           zint& info);

// Hessenberg reduction of rows and columns ilo .. ihi (A is already upper triangular outside them,
// as gebal leaves it). gehd2 one reflector at a time (work: n elements); gehrd in panels of NB =
// min(ilaenv(1, "DGEHRD"), 64) columns through lahr2 and the GEMM engine while more than the
// crossover NX (query 3) remain. lwork >= max(1, n); lwork = -1 answers the optimal n·NB + 65·64
// in work(1). tau(1 .. ilo - 1) and tau(ihi .. n - 1) are set to zero.
template <class T>
void gehd2(zint n, zint ilo, zint ihi, T* a, zint lda, T* tau, T* work, zint& info);
template <class T>
void gehrd(zint n, zint ilo, zint ihi, T* a, zint lda, T* tau, T* work, zint lwork, zint& info);

// The optimal workspace of gehrd, which its query answers and which the drivers that call it
// provide: n·NB for Y and 65·64 for the panel's T (1 when n = 0).
template <class T>
zint gehrd_workspace(zint n, zint ilo, zint ihi);

// The panel of gehrd: reduces the nb columns of A (n rows, the first k of them above the part being
// reduced) so that the entries below row k + 1 of each column vanish, and returns the block
// reflector's V (in A), its upper triangular T (nb by nb) and Y = A V T (n by nb) for the update
// of the rest of the matrix. Internal: no argument checks.
template <class T>
void lahr2(zint n, zint k, zint nb, T* a, zint lda, T* tau, T* t, zint ldt, T* y, zint ldy);

// The argument checks of the exported routines, run by the exports before any array of the caller
// is touched and by the routines themselves: 0, or -k after reporting parameter k.
template <class T>
zint check_gebal(char job, zint n, zint lda);
template <class T>
zint check_gebak(char job, char side, zint n, zint ilo, zint ihi, zint m, zint ldv);
template <class T>
zint check_gehrd(zint n, zint ilo, zint ihi, zint lda, zint lwork);

}  // namespace zor
