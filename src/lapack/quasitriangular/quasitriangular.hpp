#pragma once
// Routines on a Schur form T (upper triangular for complex data, upper quasi-triangular for real
// data: 1 by 1 blocks and standardised 2 by 2 blocks, see schur.hpp): reordering its diagonal
// blocks by orthogonal (unitary) similarities (laexc, trexc, trsen), the Sylvester equation with
// such matrices (lasy2, trsyl), the small scaled systems behind them (laln2), and the eigenvectors
// of T, transformed back by the Schur vectors when asked (trevc3).
//
// Indices at the interfaces are one-based, as published; logical arrays (select) are 64-bit, any
// nonzero entry true. The routines that check their arguments report as the published ones
// ("DTREXC", "ZTRSYL", ...), info = -k for a bad argument k.

#include "lapack/schur/schur.hpp"
#include "service/types.hpp"

namespace zor {

// Moves the diagonal block of T starting at row ifst to row ilst by adjacent swaps, updating Q
// (compq "V"; "N": no Q). Real data: ifst and ilst are moved to the first row of their blocks and
// ilst adjusted so that the block lands whole; info = 1 when two blocks were too close to swap
// (T and Q then hold the swaps done so far, ilst the block's position). work is the published
// argument and is not needed (the swaps apply their small reflectors entry by entry).
template <class T>
void trexc(char compq, zint n, T* t, zint ldt, T* q, zint ldq, zint& ifst, zint& ilst, T* work, zint& info);

// Swaps the adjacent real blocks of orders n1 and n2 (1 or 2) starting at row j1, with the new 2 by 2
// blocks standardised; info = 1 when the swap would change T by more than about 10 eps ||block||
// (nothing is then changed).
void laexc(bool wantq, zint n, double* t, zint ldt, double* q, zint ldq, zint j1, zint n1, zint n2,
           zint& info);

// The reordering of trsen: the selected eigenvalues (a pair selected by either of its entries)
// moved to the leading m rows of T, Q updated (compq "V"), the new order's eigenvalues in w.
// The condition estimates of the published trsen are not provided: job must be "N". info = 1 when
// a swap failed (T is then partly reordered and w describes it). work: n elements (real data).
template <class T>
void trsen(char job, char compq, const zint* select, zint n, T* t, zint ldt, T* q, zint ldq, Eigenvalues<T> w,
           zint& m, T* work, zint lwork, zint& info);

// op(A) X + isgn X op(B) = scale C for the Schur forms A (m by m) and B (n by n), op "N" or the
// transpose ("T" or "C" for real data, "C" for complex data), isgn ±1; X overwrites C, scale <= 1
// guards against overflow; info = 1 when A and -isgn B have close eigenvalues (they were perturbed).
template <class T>
void trsyl(char trana, char tranb, zint isgn, zint m, zint n, const T* a, zint lda, const T* b, zint ldb,
           T* c, zint ldc, double& scale, zint& info);

// The real Sylvester equation op(TL) X + isgn X op(TR) = scale B of orders n1, n2 in {1, 2} (ltranl,
// ltranr: transposed), by Gaussian elimination with complete pivoting, pivots below eps times the
// largest entry raised to it (info = 1).
void lasy2(bool ltranl, bool ltranr, zint isgn, zint n1, zint n2, const double* tl, zint ldtl,
           const double* tr, zint ldtr, const double* b, zint ldb, double& scale, double* x, zint ldx,
           double& xnorm, zint& info);

// (ca A - w D) X = s B (or with Aᵀ, ltrans) for the na by na real A (na 1 or 2), D = diag(d1, d2), w
// real (nw = 1) or complex (nw = 2: B and X hold real and imaginary parts in two columns), with s <=
// 1 chosen against overflow and a perturbation of C to smin when it is nearly singular (info = 1).
void laln2(bool ltrans, zint na, zint nw, double smin, double ca, const double* a, zint lda, double d1,
           double d2, const double* b, zint ldb, double wr, double wi, double* x, zint ldx, double& scale,
           double& xnorm, zint& info);

// Right (side "R") and/or left ("L", both "B") eigenvectors of T: howmny "A" all, "S" the selected
// ones (a real pair by either of its entries; select is then standardised), "B" all, back-transformed
// (VR := Q X, VL := Q Y with the Q given in VR and VL). Each vector is scaled so that its largest
// component has |re| + |im| = 1; a complex pair of real data takes two columns (real and imaginary
// parts). mm >= the number of columns needed (m on return). With enough work (lwork >= n + 2 n·8)
// the back-transformation runs on blocks of vectors through the GEMM engine; lwork = -1 answers n +
// 2 n·NB (NB = ilaenv(1, "DTREVC")). Complex data: rwork of n doubles (the column norms of T).
template <class T>
void trevc3(char side, char howmny, zint* select, zint n, T* t, zint ldt, T* vl, zint ldvl, T* vr, zint ldvr,
            zint mm, zint& m, T* work, zint lwork, double* rwork, zint& info);

// The workspace query answer of trevc3 for order n: n + 2 n·NB, NB = ilaenv(1, "DTREVC").
template <class T>
zint trevc3_workspace(zint n);

// The argument checks of the exported routines, run by the exports before any array of the caller
// is touched and by the routines themselves: 0, or -k after reporting parameter k.
template <class T>
zint check_trexc(char compq, zint n, zint ldt, zint ldq, zint ifst, zint ilst);
template <class T>
zint check_trsyl(char trana, char tranb, zint isgn, zint m, zint n, zint lda, zint ldb, zint ldc);

}  // namespace zor
