#pragma once
// Householder reflectors: the machinery of every orthogonal factorization and reduction.
//
// An elementary reflector is H = I - tau v vᴴ with v(1) = 1 (only v(2:n) is stored); for real data
// H is symmetric and orthogonal, for complex data unitary but not Hermitian (Hᴴ = I - conj(tau) v vᴴ),
// so the routines that apply "H" or "Hᴴ" take conj(tau) to mean the second. A block of k reflectors
// is H(1) H(2) ... H(k) ("F", forward) or H(k) ... H(2) H(1) ("B", backward) and equals I - V T Vᴴ
// with T triangular (upper for "F", lower for "B"). The vectors are the columns of V ("C",
// columnwise) or the rows of V ("R", rowwise: V holds vᴴ, and the block is I - Vᴴ T V). For "F" the
// unit element of vector i is its i-th entry, with zeros above (columnwise) or to its left
// (rowwise); for "B" it is entry n - k + i, with zeros below or to its right. Those unit and zero
// entries are never read: the storage there may hold anything (R or L of a factorization).
//
// The Q of a QR factorization (geqrf) is H(1) H(2) ... H(k), vector i below the diagonal of column
// i; the Q of an LQ factorization (gelqf) is H(k)ᴴ ... H(1)ᴴ, conj(v) of vector i right of the
// diagonal of row i. Routines that take such a factorization's A "modified but restored" set a
// diagonal entry to one (and, for LQ, conjugate a row) while they work and put it back before they
// return.
//
// All routines are templates over double and zcomplex with the published argument lists (scalars
// by value); the real routines of published LAPACK are the names without the precision letter
// (ormqr is dormqr and zunmqr). The ones that check their arguments report as the published routine
// ("DORMQR", "ZUNMQR") and return info = -k for a bad argument k.

#include "service/types.hpp"

namespace zor {

// The reflector H with Hᴴ (alpha; x) = (beta; 0), beta real, for the n-vector (alpha; x(1 + i·incx),
// i < n - 1). On return alpha is beta, x holds v(2:n) and tau the scalar; tau = 0 (H = I) when
// x = 0 and alpha is real (and always for n <= 0; for real data also n = 1). A norm below the
// safe minimum over eps is scaled up first (at most 20 times, so Inf and NaN cannot loop), beta
// scaled back after.
template <class T>
void larfg(zint n, T& alpha, T* x, zint incx, T& tau);

// C := H C (side "L", C m by n, v of m entries) or C H ("R", v of n entries), H = I - tau v vᴴ
// with v(1 + i·incv) stored in full (the caller sets v(1) = 1). Trailing zeros of v and the
// trailing zero columns (rows) of C that they meet are skipped. work: n (left) or m (right)
// elements. A negative incv walks v backwards (its first entry is the last in storage).
template <class T>
void larf(char side, zint m, zint n, const T* v, zint incv, T tau, T* c, zint ldc, T* work);

// x := conj(x) for the n elements x(1 + i·incx) (nothing for real data): how the LQ routines turn a
// stored row conj(v) into v and back.
template <class T>
void lacgv(zint n, T* x, zint incx);

// The number of the last nonzero column (row) of the m by n matrix A: 0 when A is zero.
template <class T>
zint ilalc(zint m, zint n, const T* a, zint lda);
template <class T>
zint ilalr(zint m, zint n, const T* a, zint lda);

// The k by k triangular factor T of the block reflector of order n made of the k reflectors in V
// (direct "F"/"B", storev "C"/"R", see above; V is n by k columnwise, k by n rowwise) with the
// scalars tau. A zero tau(i) gives a zero column i of T. Only T's triangle is written.
template <class T>
void larft(char direct, char storev, zint n, zint k, const T* v, zint ldv, const T* tau, T* t, zint ldt);

// C := op(H) C (side "L") or C op(H) ("R") for the block reflector H = I - V T Vᴴ (columnwise) or
// I - Vᴴ T V (rowwise) of k reflectors, op(H) = H (trans "N") or Hᴴ ("T" real, "C" complex). C is
// m by n; V has m (left) or n (right) entries per vector; work is ldwork by k with ldwork >= n
// (left) or m (right).
template <class T>
void larfb(char side, char trans, char direct, char storev, zint m, zint n, zint k, const T* v, zint ldv,
           const T* t, zint ldt, T* c, zint ldc, T* work, zint ldwork);

// C := op(Q) C (side "L") or C op(Q) ("R"), op "N" or "T" ("C" for complex), with Q = H(1) ...
// H(k) of a QR factorization (orm2r, ormqr; A is m by k for "L", n by k for "R") or Q = H(k)ᴴ ...
// H(1)ᴴ of an LQ factorization (orml2, ormlq; A is k by m or k by n); k <= m for "L", <= n for
// "R". orm2r and orml2 apply the reflectors one by one (work: n for "L", m for "R"); ormqr and
// ormlq in blocks through larfb, with work of lwork elements (lwork = -1: the optimal size in
// work(1), nothing else done; at least n for "L", m for "R"). A is modified but restored.
template <class T>
void orm2r(char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c, zint ldc,
           T* work, zint& info);
template <class T>
void orml2(char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c, zint ldc,
           T* work, zint& info);
template <class T>
void ormqr(char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c, zint ldc,
           T* work, zint lwork, zint& info);
template <class T>
void ormlq(char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c, zint ldc,
           T* work, zint lwork, zint& info);

// The same for the Q = H(ilo) ... H(ihi - 1) of a Hessenberg reduction of order nq (m for "L", n
// for "R"): vector i has its unit element in row i + 1 and is stored below it in column i of A,
// tau(ilo .. ihi - 1) (one-based ilo, ihi with 1 <= ilo <= ihi <= nq, or ilo = 1, ihi = 0 when
// nq = 0). The workspace query answers ormqr's for the nh = ihi - ilo reflectors.
template <class T>
void ormhr(char side, char trans, zint m, zint n, zint ilo, zint ihi, T* a, zint lda, const T* tau, T* c,
           zint ldc, T* work, zint lwork, zint& info);

}  // namespace zor
