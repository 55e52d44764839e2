#pragma once
// The singular value decomposition A = U Σ Vᴴ by divide and conquer, the minimum-norm least-squares
// solve through it, and what both are built of: the reduction to bidiagonal form A = Q B Pᴴ and the
// generation and application of its Q and P.
//
// Storage of the reduction (gebd2, gebrd): for m >= n, B is upper bidiagonal (d on the diagonal, e
// above it); Q = H(1) ... H(n) with vector i below the diagonal of column i (unit at row i) and P =
// G(1) ... G(n - 1) with conj(u) of vector i right of the superdiagonal of row i (unit at column
// i + 1). For m < n, B is lower bidiagonal (e below the diagonal); Q = H(1) ... H(m - 1) with vector
// i below the subdiagonal of column i (unit at row i + 1) and P = G(1) ... G(m) with conj(u) of
// vector i right of the diagonal of row i. H(i) = I - tauq(i) v vᴴ and G(i) = I - taup(i) u uᴴ; d and
// e are real for complex data too.
//
// All routines are templates over double and zcomplex (the real routines of published LAPACK
// named without the precision letter: orgbr is dorgbr and zungbr) except gelsd, which is real only.
// They check their arguments in the published order and report as the published routine
// ("DGEBRD", "ZUNMBR", ...), info = -k for a bad argument k. Routines with lwork answer a workspace
// query for lwork = -1 (the optimal size in work(1), nothing else done).

#include "service/types.hpp"

namespace zor {

// ---- bidiagonal reduction ------------------------------------------------------------------------

// A = Q B Pᴴ (see above) column by column (gebd2; work: max(m, n) elements), or in panels of NB =
// ilaenv(1, "DGEBRD") rows and columns (gebrd; lwork >= max(1, m, n), optimal (m + n)·NB): each
// panel is reduced by labrd, which also returns the n by nb X and m by nb Y that update the rest of
// the matrix by two gemm calls, A := A - V Yᴴ - X Uᴴ.
template <class T>
void gebd2(zint m, zint n, T* a, zint lda, double* d, double* e, T* tauq, T* taup, T* work, zint& info);
template <class T>
void gebrd(zint m, zint n, T* a, zint lda, double* d, double* e, T* tauq, T* taup, T* work, zint lwork,
           zint& info);
// The first nb steps of the reduction of the m by n A, with X (ldx by nb, m rows used) and Y (ldy by
// nb, n rows used) such that the trailing matrix is A - V Yᴴ - X Uᴴ. The diagonal and off-diagonal
// entries of the panel are left holding ones (the unit elements of the vectors); gebrd restores
// them from d and e after the trailing update.
template <class T>
void labrd(zint m, zint n, zint nb, T* a, zint lda, double* d, double* e, T* tauq, T* taup, T* x, zint ldx,
           T* y, zint ldy);

// The reflectors of gebrd as an explicit matrix. vect "Q": the first n columns of the m by m Q of
// an m by k reduction (m >= n >= min(m, k)); "P": the first m rows of the n by n Pᴴ of a k by n
// reduction (n >= m >= min(n, k)). lwork >= max(1, min(m, n)); optimal from orgqr or orglq.
template <class T>
void orgbr(char vect, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* work, zint lwork, zint& info);

// C := op(Q) C, C op(Q), op(P) C or C op(P) (vect "Q" or "P", side "L" or "R", trans "N" or "T"
// ("C" for complex)) for the Q and P of a reduction whose other dimension is k; C is m by n. work:
// lwork >= max(1, n) for "L", max(1, m) for "R"; optimal from ormqr or ormlq. A is modified but
// restored.
template <class T>
void ormbr(char vect, char side, char trans, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c,
           zint ldc, T* work, zint lwork, zint& info);

// ---- products of complex and real matrices -------------------------------------------------------

// C := A B for complex A (m by n) and real B (n by n): one real product over A's interleaved parts.
void lacrm(zint m, zint n, const zcomplex* a, zint lda, const double* b, zint ldb, zcomplex* c, zint ldc);
// C := A B for real A (m by m) and complex B (m by n). rwork: 2 m n doubles (B's parts apart).
void larcm(zint m, zint n, const double* a, zint lda, const zcomplex* b, zint ldb, zcomplex* c, zint ldc,
           double* rwork);

// ---- the SVD by divide and conquer ---------------------------------------------------------------

// A = U Σ Vᴴ of the m by n A: s receives the min(m, n) singular values, non-negative and
// non-increasing. jobz "A": all m columns of U and n rows of VT = Vᴴ; "S": the first min(m, n) of
// each; "O": those overwrite A (U's when m >= n, VT's otherwise; the other goes to U or VT);
// "N": values only. A is destroyed unless "O" writes it. Very tall (wide) matrices are reduced by a
// QR (LQ) factorization first, from m >= ilaenv(6, "DGESDD", m, n) (n >= for wide); the
// bidiagonal SVD is bdsdc's (in real arithmetic for complex data, whose Q and P are then applied).
// work: lwork elements with the published minimum (gesdd_work_sizes); complex data also take
// rwork (k = min(m, n): 5k doubles for "N", else max(5k² + 5k, 2 max(m, n)·k + 2k² + k)); the
// real form ignores rwork. iwork: 8k. info = -4 without a message: A holds a
// NaN; info > 0: bdsdc did not converge.
template <class T>
void gesdd(char jobz, zint m, zint n, T* a, zint lda, double* s, T* u, zint ldu, T* vt, zint ldvt, T* work,
           zint lwork, double* rwork, zint* iwork, zint& info);

// The least and the optimal lwork of gesdd for jobz and the shape (each at least 1).
struct WorkSizes {
    zint minimal;
    zint optimal;
};
template <class T>
WorkSizes gesdd_work_sizes(char jobz, zint m, zint n);

// ---- least squares -------------------------------------------------------------------------------

// The minimum-norm solution of min ||B - A X|| for the m by n A through its SVD: B (ldb >= max(1,
// m, n)) holds the nrhs right-hand sides on entry and the n by nrhs solution on return. Singular
// values at most rcond·σ₁ count as zero (rcond < 0: machine precision); rank receives the number of
// the others and s the singular values, non-increasing. A is destroyed. Tall matrices go through a QR
// factorization first, wide ones through an LQ factorization when the workspace allows. work:
// lwork >= the published minimum (gelsd_work_sizes); iwork: gelsd_iwork_size(m, n) entries, and
// iwork(1) receives that size. info > 0: the bidiagonal solver did not converge (lalsd's
// encoding), also for input holding NaN or infinity.
void gelsd(zint m, zint n, zint nrhs, double* a, zint lda, double* b, zint ldb, double* s, double rcond,
           zint& rank, double* work, zint lwork, zint* iwork, zint& info);
WorkSizes gelsd_work_sizes(zint m, zint n, zint nrhs);
// 3 k·nlvl + 11 k for k = min(m, n) (at least 1), nlvl the levels of lalsd's tree over k rows.
zint gelsd_iwork_size(zint m, zint n);

// The argument checks of the exported routines, run by the exports before any array of the caller
// is touched and by the routines themselves: 0, or -k after reporting parameter k.
template <class T>
zint check_gesdd(char jobz, zint m, zint n, zint lda, zint ldu, zint ldvt, zint lwork);
zint check_gelsd(zint m, zint n, zint nrhs, zint lda, zint ldb, zint lwork);

}  // namespace zor
