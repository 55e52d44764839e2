#pragma once
// The symmetric (real) and Hermitian (complex) eigenproblem A = Z diag(λ) Zᴴ: the reduction to a
// real symmetric tridiagonal T = Qᴴ A Q, the generation and application of its Q (and of the Q of a
// QL factorization, which the reduction of the upper triangle stores), and the driver syevd that
// solves T by divide and conquer (condensed/tridiagonal.hpp) and applies Q.
//
// Storage of the reduction (see householder.hpp for the reflectors): with uplo "U", Q = H(n - 1)
// ... H(2) H(1), vector i has its unit element in row i and zeros below it, and v(1 : i - 1) is
// stored above the superdiagonal in column i + 1 of A (the reflectors of a QL factorization of
// order n - 1, one column to the right); with uplo "L", Q = H(1) H(2) ... H(n - 1), vector i has its
// unit element in row i + 1 and v(i + 2 : n) below the subdiagonal in column i (the reflectors of a
// QR factorization of order n - 1, one row down). T's diagonal is d (n), its off-diagonal e
// (n - 1), both real; tau (n - 1) holds the scalars.
//
// The Q of a QL factorization of an m by n matrix (k = min(m, n) reflectors) is H(k) ... H(2) H(1);
// vector i has its unit element in row m - k + i, zeros below it, and v(1 : m - k + i - 1) above it
// in column n - k + i of A (the routines that generate or apply it take the k columns that hold
// the vectors).
//
// All routines are templates over double and zcomplex named as the real routines of published
// LAPACK without the precision letter (sytrd is dsytrd and zhetrd, ormtr dormtr and zunmtr), with
// the published argument lists (scalars by value) and checks, reported with the published names;
// info = -k for a bad argument k. lwork = -1 asks for the optimal workspace in work(1) and does
// nothing else; between the minimal and the optimal workspace the blocked code runs with the block
// that fits.

#include "service/types.hpp"

namespace zor {

// ---- the tridiagonal reduction -------------------------------------------------------------------

// Unblocked: one reflector per column, each applied to the rest of the triangle by a symmetric
// rank-2 update. A Hermitian diagonal is taken as real and comes back real.
template <class T>
void sytd2(char uplo, zint n, T* a, zint lda, double* d, double* e, T* tau, zint& info);

// The panel of the blocked reduction: reduces the last nb columns (uplo "U") or the first nb
// columns ("L") of the n by n A and returns W (n by nb, ldw >= n) such that the rest of the triangle
// is updated by A := A - V Wᴴ - W Vᴴ (V the panel's reflectors). e and tau receive the panel's
// off-diagonal elements and scalars (for "U" at positions n - nb .. n - 2, zero-based; for "L" at
// 0 .. nb - 1). No argument checks.
template <class T>
void latrd(char uplo, zint n, zint nb, T* a, zint lda, double* e, T* tau, T* w, zint ldw);

// Blocked: panels of NB = ilaenv(1, "DSYTRD") columns by latrd, each followed by the rank-2k update
// of the rest of the triangle (her2k); sytd2 below the crossover ilaenv(3) and when the workspace
// holds no block of at least ilaenv(2) columns. lwork >= 1, optimal n·NB.
template <class T>
void sytrd(char uplo, zint n, T* a, zint lda, double* d, double* e, T* tau, T* work, zint lwork, zint& info);

// ---- the two-stage reduction, for eigenvalues only --------------------------------------------------

// The first stage: A (its triangle uplo, destroyed) to a Hermitian band B of kd off-diagonals
// unitarily similar to A (to Aᵀ for "U"), on the level-3 engine; B is returned in lower band storage,
// ab(i - j, j) = B(i, j) for 0 <= i - j <= kd (ldab >= kd + 1), its diagonal real. The reflectors
// are not kept. lwork >= sy2sb_work_size(n, kd).
zint sy2sb_work_size(zint n, zint kd);
template <class T>
void sy2sb(char uplo, zint n, zint kd, T* a, zint lda, T* ab, zint ldab, T* work, zint lwork, zint& info);

// The second stage: the band of sy2sb, in the first kd + 1 rows of ab (ldab >= 2 kd + 1: the rows
// after them hold the bulges of the chase), to the real tridiagonal matrix d (n), e (n - 1) with the
// same eigenvalues, by bulge chasing. ab is destroyed; work: 3 kd elements.
template <class T>
void sb2st(zint n, zint kd, T* ab, zint ldab, double* d, double* e, T* work, zint& info);

// ---- the Q of a QL factorization -----------------------------------------------------------------

// The last n columns of the m by m Q = H(k) ... H(1) of a QL factorization (m >= n >= k >= 0), the
// vectors in the last k columns of A: org2l column by column (work: n), orgql in blocks of
// reflectors (lwork >= max(1, n), optimal n·NB).
template <class T>
void org2l(zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint& info);
template <class T>
void orgql(zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint lwork, zint& info);

// C := op(Q) C (side "L", k <= m) or C op(Q) ("R", k <= n) with the Q = H(k) ... H(1) of a QL
// factorization whose k vectors are the columns of A (m or n rows), op "N" or "T" ("C" for complex).
// orm2l one reflector at a time (work: n for "L", m for "R"); ormql in blocks (lwork >= max(1, n)
// for "L", max(1, m) for "R"). A is modified but restored.
template <class T>
void orm2l(char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c, zint ldc,
           T* work, zint& info);
template <class T>
void ormql(char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c, zint ldc,
           T* work, zint lwork, zint& info);

// ---- the Q of the reduction ------------------------------------------------------------------------

// The n by n Q of sytrd with the same uplo, in place of the reduction's A (lwork >= max(1, n - 1);
// the optimum is orgql's or orgqr's of order n - 1).
template <class T>
void orgtr(char uplo, zint n, T* a, zint lda, const T* tau, T* work, zint lwork, zint& info);

// C := op(Q) C (side "L", Q of order m) or C op(Q) ("R", order n) with the Q of sytrd with the same
// uplo; lwork >= max(1, n) for "L", max(1, m) for "R" (the optimum is ormql's or ormqr's).
template <class T>
void ormtr(char side, char uplo, char trans, zint m, zint n, T* a, zint lda, const T* tau, T* c, zint ldc,
           T* work, zint lwork, zint& info);

// ---- the driver ----------------------------------------------------------------------------------

// The eigenvalues w (ascending) and, for jobz "V", the orthonormal eigenvectors (in place of A) of
// the symmetric or Hermitian A, whose triangle uplo is read: the reduction to T, T's eigenvalues by
// sterf ("N") or its eigenvectors by stedc "I" in real arithmetic, then Z := Q Z. A whose largest
// entry lies below sqrt(safe min / eps) or above its reciprocal is scaled into that range first and
// the eigenvalues scaled back. rwork and lrwork are the complex form's (the real form reads
// neither). Minimal workspaces, real: lwork 2n + 1 ("N"), 1 + 6n + 2n² ("V"), liwork 1 ("N"),
// 3 + 5n ("V"); complex: lwork n + 1 / 2n + n², lrwork n / 1 + 5n + 2n², liwork 1 / 3 + 5n; all 1
// for n <= 1. Any of lwork, lrwork (complex), liwork = -1 is a workspace query: work(1), rwork(1)
// (complex) and iwork(1) receive the optimal sizes. info > 0: "N": info off-diagonal elements did
// not converge to zero; "V": the eigenvalue in rows and columns info / (n + 1) through
// mod(info, n + 1) could not be computed (A then holds the reduction).
template <class T>
void syevd(char jobz, char uplo, zint n, T* a, zint lda, double* w, T* work, zint lwork, double* rwork,
           zint lrwork, zint* iwork, zint liwork, zint& info);

// syevd's argument check, run by the export before any array of the caller is touched and by the
// routine itself: 0, or -k after reporting parameter k ("DSYEVD" 1 jobz, 2 uplo, 3 n, 5 lda,
// 8 lwork, 10 liwork; "ZHEEVD" also 10 lrwork and 12 liwork). lrwork is not read for real data.
template <class T>
zint check_syevd(char jobz, char uplo, zint n, zint lda, zint lwork, zint lrwork, zint liwork);

// The integer workspace syevd uses at most (its published least liwork): the export copies no
// more of the caller's iwork than this, however large liwork is.
zint syevd_iwork_entries(char jobz, zint n);

}  // namespace zor
