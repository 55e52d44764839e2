#pragma once
// The orthogonal factorizations A = Q R (QR), A = L Q (LQ) and A P = Q R (QR with column pivoting),
// and the generation of their Q (and of the Q of a Hessenberg reduction) as an explicit matrix.
//
// Storage (see householder.hpp for the reflectors): QR leaves R on and above the diagonal and
// vector i below the diagonal of column i, Q = H(1) ... H(k); LQ leaves L on and below the
// diagonal and conj(v) of vector i right of the diagonal of row i, Q = H(k)ᴴ ... H(1)ᴴ; k =
// min(m, n) and tau(1:k) the scalars. R's and L's diagonals are real (complex data too).
//
// Routines with lwork answer a workspace query when lwork = -1: work(1) receives the optimal size
// and nothing else is done; a smaller lwork than the routine's minimum is argument error, and
// between the minimum and the optimum the blocked code runs with the block that fits. The checks
// follow the published routines, which name them ("DGEQRF", "ZUNGQR", ...), info = -k for a bad
// argument k.

#include "service/types.hpp"

namespace zor {

// A = Q R of the m by n matrix A. geqr2 column by column (work: n elements); geqrf in panels of
// NB = ilaenv(1, "DGEQRF") columns, each factored recursively, the rest of the matrix updated with
// larfb (lwork >= n when min(m, n) > 0, else >= 1; optimal n·NB). geqrf reports progress after
// each panel (the columns done, stage "DGEQRF"/"ZGEQRF") and answers true when the progress
// handler asked it to stop, the matrix then partly factored.
template <class T>
void geqr2(zint m, zint n, T* a, zint lda, T* tau, T* work, zint& info);
template <class T>
bool geqrf(zint m, zint n, T* a, zint lda, T* tau, T* work, zint lwork, zint& info);

// A = L Q of the m by n matrix A: gelq2 row by row (work: m elements), gelqf in panels of
// NB = ilaenv(1, "DGEQRF", " ", n, m) rows, the QR's block for Aᴴ (lwork >= m when min(m, n) > 0,
// else >= 1; optimal m·NB), with progress after each panel (rows done, "DGELQF"/"ZGELQF") as
// geqrf.
template <class T>
void gelq2(zint m, zint n, T* a, zint lda, T* tau, T* work, zint& info);
template <class T>
bool gelqf(zint m, zint n, T* a, zint lda, T* tau, T* work, zint lwork, zint& info);

// A P = Q R with column pivoting: column j of A P is column jpvt(j) of A (one-based). On entry a
// nonzero jpvt(j) fixes column j at the front (fixed columns are factored first, in their order,
// without pivoting); the free columns are chosen by largest remaining norm. |R(k, k)| does not
// increase along the free part. Real: lwork >= 3n + 1 (norms in work); complex: lwork >= n + 1,
// with rwork of 2n doubles for the norms (the real form ignores rwork); optimal 2n + (n + 1)·NB
// real, (n + 1)·NB complex.
template <class T>
void geqp3(zint m, zint n, T* a, zint lda, zint* jpvt, T* tau, T* work, zint lwork, double* rwork,
           zint& info);

// The pivoted QR of rows offset .. m - 1 of the m by n block A (the rows above it already
// factored): laqp2 column by column; laqps at most nb columns of the block, the update of the rest
// of A deferred through F (ldf by nb, the block's columns' pending updates) and done with one gemm
// at the end; kb receives the columns factored (fewer than nb when a column's norm had to be
// recomputed). vn1 and vn2 hold the columns' partial and exact norms, downdated after each step
// and recomputed when cancellation has made the downdate unreliable. work: n elements; auxv: nb.
template <class T>
void laqp2(zint m, zint n, zint offset, T* a, zint lda, zint* jpvt, T* tau, double* vn1, double* vn2,
           T* work);
template <class T>
void laqps(zint m, zint n, zint offset, zint nb, zint& kb, T* a, zint lda, zint* jpvt, T* tau, double* vn1,
           double* vn2, T* auxv, T* f, zint ldf);

// The first n columns of the m by m Q = H(1) ... H(k) of a QR factorization (m >= n >= k >= 0),
// overwriting the factorization's A: org2r column by column (work: n), orgqr in blocks (lwork >= n,
// optimal n·NB).
template <class T>
void org2r(zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint& info);
template <class T>
void orgqr(zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint lwork, zint& info);

// The first m rows of the n by n Q = H(k)ᴴ ... H(1)ᴴ of an LQ factorization (n >= m >= k >= 0):
// orgl2 row by row (work: m), orglq in blocks (lwork >= m, optimal m·NB).
template <class T>
void orgl2(zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint& info);
template <class T>
void orglq(zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint lwork, zint& info);

// The n by n Q = H(ilo) ... H(ihi - 1) of a Hessenberg reduction (one-based ilo, ihi; vector i has
// its unit element in row i + 1, stored below it in column i): Q is the identity outside rows and
// columns ilo + 1 .. ihi. lwork >= max(1, ihi - ilo); the optimum is orgqr's for that order.
template <class T>
void orghr(zint n, zint ilo, zint ihi, T* a, zint lda, const T* tau, T* work, zint lwork, zint& info);

// The argument checks of the exported routines, run by the exports before any array of the caller
// is touched and by the routines themselves: 0, or -k after reporting parameter k.
template <class T>
zint check_geqrf(zint m, zint n, zint lda, zint lwork);
template <class T>
zint check_gelqf(zint m, zint n, zint lda, zint lwork);
template <class T>
zint check_geqp3(zint m, zint n, zint lda, zint lwork);
template <class T>
zint check_orgqr(zint m, zint n, zint k, zint lda, zint lwork);
template <class T>
zint check_orglq(zint m, zint n, zint k, zint lda, zint lwork);
template <class T>
zint check_orghr(zint n, zint ilo, zint ihi, zint lda, zint lwork);

}  // namespace zor
