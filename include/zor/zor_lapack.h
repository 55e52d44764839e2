/* The Fortran-style LAPACK routines of zor: every argument by address, integers of 32 bits
 * (zor_int), option letters as single characters whose hidden lengths trail the argument list
 * (pass 1; they are not read). On ELF platforms each routine is also exported with a trailing
 * underscore (dlapy2_). Pivot indices are one-based; info is 0, -k for a bad argument k (also
 * reported on standard output), -1023 when no memory could be had, or +k for a numerical failure
 * at step k. */
#ifndef ZOR_ZOR_LAPACK_H
#define ZOR_ZOR_LAPACK_H

#include <stddef.h>

#include "zor/zor_config.h"

ZOR_EXTERN_C_BEGIN

/* sqrt(x^2 + y^2), avoiding unnecessary overflow and underflow; NaN when either argument is NaN. */
ZOR_FORTRAN_API double dlapy2(const double* x, const double* y);

/* Applies the real plane rotation (c, s) to complex vectors: x := c*x + s*y, y := c*y - s*x. */
ZOR_FORTRAN_API void zdrot(const zor_int* n, zor_complex_double* x, const zor_int* incx,
                           zor_complex_double* y, const zor_int* incy, const double* c, const double* s);
/* Builds the complex Givens rotation that zeroes cb: c real, s complex, ca := r. Its name carries
 * the trailing underscore on every platform. */
ZOR_API void zrotg_(zor_complex_double* ca, const zor_complex_double* cb, double* c, zor_complex_double* s);

/* ---- LU with partial pivoting ---------------------------------------------------------------- */

/* A = P L U of an m by n matrix; info = k > 0: U(k, k) is exactly zero (the factorisation is
 * complete). */
ZOR_FORTRAN_API void dgetrf(const zor_int* m, const zor_int* n, double* a, const zor_int* lda, zor_int* ipiv,
                            zor_int* info);
ZOR_FORTRAN_API void zgetrf(const zor_int* m, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                            zor_int* ipiv, zor_int* info);
/* Solves A X = B by dgetrf and the solve with its factors; the solve is skipped when info > 0. */
ZOR_FORTRAN_API void dgesv(const zor_int* n, const zor_int* nrhs, double* a, const zor_int* lda,
                           zor_int* ipiv, double* b, const zor_int* ldb, zor_int* info);
ZOR_FORTRAN_API void zgesv(const zor_int* n, const zor_int* nrhs, zor_complex_double* a, const zor_int* lda,
                           zor_int* ipiv, zor_complex_double* b, const zor_int* ldb, zor_int* info);
/* inv(A) from the factors of dgetrf. lwork >= max(1, n); lwork = -1 asks for the optimal size in
 * work[0] (ipiv is then not read). */
ZOR_FORTRAN_API void dgetri(const zor_int* n, double* a, const zor_int* lda, const zor_int* ipiv,
                            double* work, const zor_int* lwork, zor_int* info);
ZOR_FORTRAN_API void zgetri(const zor_int* n, zor_complex_double* a, const zor_int* lda, const zor_int* ipiv,
                            zor_complex_double* work, const zor_int* lwork, zor_int* info);
/* Solves A X = B for a band matrix with kl subdiagonals and ku superdiagonals in band storage
 * (ldab >= 2 kl + ku + 1; A(i, j) in row kl + ku + 1 + i - j of column j, the first kl rows free
 * for the fill-in of the factorisation). */
ZOR_FORTRAN_API void dgbsv(const zor_int* n, const zor_int* kl, const zor_int* ku, const zor_int* nrhs,
                           double* ab, const zor_int* ldab, zor_int* ipiv, double* b, const zor_int* ldb,
                           zor_int* info);
ZOR_FORTRAN_API void zgbsv(const zor_int* n, const zor_int* kl, const zor_int* ku, const zor_int* nrhs,
                           zor_complex_double* ab, const zor_int* ldab, zor_int* ipiv, zor_complex_double* b,
                           const zor_int* ldb, zor_int* info);
/* A = L U of a tridiagonal matrix (subdiagonal dl, diagonal d, superdiagonal du); du2 receives the
 * second superdiagonal of U. */
ZOR_FORTRAN_API void dgttrf(const zor_int* n, double* dl, double* d, double* du, double* du2, zor_int* ipiv,
                            zor_int* info);
/* Solves A X = B ("N") or Aᵀ X = B ("T", "C") with the factors of dgttrf. */
ZOR_FORTRAN_API void dgttrs(const char* trans, const zor_int* n, const zor_int* nrhs, const double* dl,
                            const double* d, const double* du, const double* du2, const zor_int* ipiv,
                            double* b, const zor_int* ldb, zor_int* info, size_t trans_length);

/* ---- Cholesky ----------------------------------------------------------------------------------- */

/* A = Uᵀ U ("U") or L Lᵀ ("L") (Uᴴ U, L Lᴴ for complex); info = k > 0: the leading minor of order
 * k is not positive definite, its failed value left in A(k, k). */
ZOR_FORTRAN_API void dpotrf(const char* uplo, const zor_int* n, double* a, const zor_int* lda, zor_int* info,
                            size_t uplo_length);
ZOR_FORTRAN_API void zpotrf(const char* uplo, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                            zor_int* info, size_t uplo_length);
/* Solves A X = B by dpotrf and the solve with its factor. */
ZOR_FORTRAN_API void dposv(const char* uplo, const zor_int* n, const zor_int* nrhs, double* a,
                           const zor_int* lda, double* b, const zor_int* ldb, zor_int* info,
                           size_t uplo_length);
ZOR_FORTRAN_API void zposv(const char* uplo, const zor_int* n, const zor_int* nrhs, zor_complex_double* a,
                           const zor_int* lda, zor_complex_double* b, const zor_int* ldb, zor_int* info,
                           size_t uplo_length);
/* inv(A) from the factor of dpotrf, in the same triangle. */
ZOR_FORTRAN_API void dpotri(const char* uplo, const zor_int* n, double* a, const zor_int* lda, zor_int* info,
                            size_t uplo_length);
ZOR_FORTRAN_API void zpotri(const char* uplo, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                            zor_int* info, size_t uplo_length);
/* The same in packed storage: the triangle column after column in n (n + 1) / 2 elements. */
ZOR_FORTRAN_API void dpptrf(const char* uplo, const zor_int* n, double* ap, zor_int* info,
                            size_t uplo_length);
ZOR_FORTRAN_API void zpptrf(const char* uplo, const zor_int* n, zor_complex_double* ap, zor_int* info,
                            size_t uplo_length);
ZOR_FORTRAN_API void dpptrs(const char* uplo, const zor_int* n, const zor_int* nrhs, const double* ap,
                            double* b, const zor_int* ldb, zor_int* info, size_t uplo_length);
ZOR_FORTRAN_API void zpptrs(const char* uplo, const zor_int* n, const zor_int* nrhs,
                            const zor_complex_double* ap, zor_complex_double* b, const zor_int* ldb,
                            zor_int* info, size_t uplo_length);
ZOR_FORTRAN_API void dpptri(const char* uplo, const zor_int* n, double* ap, zor_int* info,
                            size_t uplo_length);
ZOR_FORTRAN_API void zpptri(const char* uplo, const zor_int* n, zor_complex_double* ap, zor_int* info,
                            size_t uplo_length);

/* ---- Triangular --------------------------------------------------------------------------------- */

/* inv(A) in place for a triangular A (diag "U": unit diagonal, not read); info = k > 0: A(k, k) is
 * exactly zero. */
ZOR_FORTRAN_API void dtrtri(const char* uplo, const char* diag, const zor_int* n, double* a,
                            const zor_int* lda, zor_int* info, size_t uplo_length, size_t diag_length);
ZOR_FORTRAN_API void ztrtri(const char* uplo, const char* diag, const zor_int* n, zor_complex_double* a,
                            const zor_int* lda, zor_int* info, size_t uplo_length, size_t diag_length);
/* The same in packed storage, and the solve op(A) X = B with a packed triangle. */
ZOR_FORTRAN_API void dtptri(const char* uplo, const char* diag, const zor_int* n, double* ap, zor_int* info,
                            size_t uplo_length, size_t diag_length);
ZOR_FORTRAN_API void ztptri(const char* uplo, const char* diag, const zor_int* n, zor_complex_double* ap,
                            zor_int* info, size_t uplo_length, size_t diag_length);
ZOR_FORTRAN_API void dtptrs(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                            const zor_int* nrhs, const double* ap, double* b, const zor_int* ldb,
                            zor_int* info, size_t uplo_length, size_t trans_length, size_t diag_length);
ZOR_FORTRAN_API void ztptrs(const char* uplo, const char* trans, const char* diag, const zor_int* n,
                            const zor_int* nrhs, const zor_complex_double* ap, zor_complex_double* b,
                            const zor_int* ldb, zor_int* info, size_t uplo_length, size_t trans_length,
                            size_t diag_length);

/* ---- Orthogonal factorizations ------------------------------------------------------------- */

/* A = Q R of an m by n matrix: R on and above the diagonal, Q as min(m, n) elementary reflectors
 * (vector i below the diagonal of column i, scalar tau[i]). lwork >= max(1, n) (1 when m or n is 0);
 * lwork = -1 asks for the optimal size in work[0]. */
ZOR_FORTRAN_API void dgeqrf(const zor_int* m, const zor_int* n, double* a, const zor_int* lda, double* tau,
                            double* work, const zor_int* lwork, zor_int* info);
ZOR_FORTRAN_API void zgeqrf(const zor_int* m, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                            zor_complex_double* tau, zor_complex_double* work, const zor_int* lwork,
                            zor_int* info);
/* A = L Q: L on and below the diagonal, Q as reflectors stored right of the diagonal of their rows.
 * lwork >= max(1, m) (1 when m or n is 0); lwork = -1 asks for the optimal size. */
ZOR_FORTRAN_API void dgelqf(const zor_int* m, const zor_int* n, double* a, const zor_int* lda, double* tau,
                            double* work, const zor_int* lwork, zor_int* info);
ZOR_FORTRAN_API void zgelqf(const zor_int* m, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                            zor_complex_double* tau, zor_complex_double* work, const zor_int* lwork,
                            zor_int* info);
/* A P = Q R with column pivoting: column j of A P is column jpvt[j] of A; a nonzero jpvt[j] on entry
 * keeps column j at the front. lwork >= 3 n + 1 (zgeqp3: n + 1, with rwork of 2 n doubles); lwork =
 * -1 asks for the optimal size (jpvt is then not read). */
ZOR_FORTRAN_API void dgeqp3(const zor_int* m, const zor_int* n, double* a, const zor_int* lda, zor_int* jpvt,
                            double* tau, double* work, const zor_int* lwork, zor_int* info);
ZOR_FORTRAN_API void zgeqp3(const zor_int* m, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                            zor_int* jpvt, zor_complex_double* tau, zor_complex_double* work,
                            const zor_int* lwork, double* rwork, zor_int* info);
/* The first n columns of the m by m Q of dgeqrf (k reflectors; m >= n >= k), in place of the
 * factorization. lwork >= max(1, n); lwork = -1 asks for the optimal size. */
ZOR_FORTRAN_API void dorgqr(const zor_int* m, const zor_int* n, const zor_int* k, double* a, const zor_int* lda,
                            const double* tau, double* work, const zor_int* lwork, zor_int* info);
ZOR_FORTRAN_API void zungqr(const zor_int* m, const zor_int* n, const zor_int* k, zor_complex_double* a,
                            const zor_int* lda, const zor_complex_double* tau, zor_complex_double* work,
                            const zor_int* lwork, zor_int* info);
/* The first m rows of the n by n Q of dgelqf (k reflectors; n >= m >= k). lwork >= max(1, m). */
ZOR_FORTRAN_API void dorglq(const zor_int* m, const zor_int* n, const zor_int* k, double* a, const zor_int* lda,
                            const double* tau, double* work, const zor_int* lwork, zor_int* info);
ZOR_FORTRAN_API void zunglq(const zor_int* m, const zor_int* n, const zor_int* k, zor_complex_double* a,
                            const zor_int* lda, const zor_complex_double* tau, zor_complex_double* work,
                            const zor_int* lwork, zor_int* info);
/* The n by n Q of a Hessenberg reduction (dgehrd) from the reflectors it stores below the first
 * subdiagonal; Q is the identity outside rows and columns ilo + 1 .. ihi. lwork >= max(1, ihi -
 * ilo). */
ZOR_FORTRAN_API void dorghr(const zor_int* n, const zor_int* ilo, const zor_int* ihi, double* a,
                            const zor_int* lda, const double* tau, double* work, const zor_int* lwork,
                            zor_int* info);
ZOR_FORTRAN_API void zunghr(const zor_int* n, const zor_int* ilo, const zor_int* ihi, zor_complex_double* a,
                            const zor_int* lda, const zor_complex_double* tau, zor_complex_double* work,
                            const zor_int* lwork, zor_int* info);

/* ---- The nonsymmetric eigenproblem ------------------------------------------------------------ */

/* The caller's choice of eigenvalues for dgees and zgees, in the Fortran convention: the eigenvalue
 * by reference (real and imaginary parts for dgees), a logical answer, nonzero for selected. */
typedef zor_int (*zor_dselect2)(const double* wr, const double* wi);
typedef zor_int (*zor_zselect1)(const zor_complex_double* w);

/* Balances A by a permutation (job "P"), a diagonal scaling ("S") or both ("B"; "N": neither): rows
 * and columns ilo .. ihi are left to the QR algorithm, scale records the permutation and factors. */
ZOR_FORTRAN_API void dgebal(const char* job, const zor_int* n, double* a, const zor_int* lda, zor_int* ilo,
                            zor_int* ihi, double* scale, zor_int* info, size_t job_length);
ZOR_FORTRAN_API void zgebal(const char* job, const zor_int* n, zor_complex_double* a, const zor_int* lda,
                            zor_int* ilo, zor_int* ihi, double* scale, zor_int* info, size_t job_length);
/* Transforms the m right ("R") or left ("L") eigenvectors of a balanced matrix back to those of the
 * original matrix. */
ZOR_FORTRAN_API void dgebak(const char* job, const char* side, const zor_int* n, const zor_int* ilo,
                            const zor_int* ihi, const double* scale, const zor_int* m, double* v,
                            const zor_int* ldv, zor_int* info, size_t job_length, size_t side_length);
ZOR_FORTRAN_API void zgebak(const char* job, const char* side, const zor_int* n, const zor_int* ilo,
                            const zor_int* ihi, const double* scale, const zor_int* m, zor_complex_double* v,
                            const zor_int* ldv, zor_int* info, size_t job_length, size_t side_length);
/* Reduces rows and columns ilo .. ihi of A to upper Hessenberg form H = Qᴴ A Q, Q stored as
 * reflectors below the subdiagonal (dorghr forms it). lwork >= max(1, n); lwork = -1 asks for the
 * optimal size in work[0]. */
ZOR_FORTRAN_API void dgehrd(const zor_int* n, const zor_int* ilo, const zor_int* ihi, double* a, const zor_int* lda,
                            double* tau, double* work, const zor_int* lwork, zor_int* info);
ZOR_FORTRAN_API void zgehrd(const zor_int* n, const zor_int* ilo, const zor_int* ihi, zor_complex_double* a,
                            const zor_int* lda, zor_complex_double* tau, zor_complex_double* work,
                            const zor_int* lwork, zor_int* info);
/* The Schur factorization A = Z T Zᴴ (jobvs "V": Z in vs), optionally (sort "S") with the eigenvalues
 * select chooses at the top of T (sdim of them); info = n + 1: they could not be reordered, n + 2:
 * rounding changed the choice after reordering. lwork >= max(1, 3n) (dgees), max(1, 2n) (zgees, with
 * rwork of n doubles); bwork (n logicals) is used only when sorting. */
ZOR_FORTRAN_API void dgees(const char* jobvs, const char* sort, zor_dselect2 select, const zor_int* n, double* a,
                           const zor_int* lda, zor_int* sdim, double* wr, double* wi, double* vs,
                           const zor_int* ldvs, double* work, const zor_int* lwork, zor_int* bwork, zor_int* info,
                           size_t jobvs_length, size_t sort_length);
ZOR_FORTRAN_API void zgees(const char* jobvs, const char* sort, zor_zselect1 select, const zor_int* n,
                           zor_complex_double* a, const zor_int* lda, zor_int* sdim, zor_complex_double* w,
                           zor_complex_double* vs, const zor_int* ldvs, zor_complex_double* work,
                           const zor_int* lwork, double* rwork, zor_int* bwork, zor_int* info,
                           size_t jobvs_length, size_t sort_length);
/* The eigenvalues of A and its left (jobvl "V") and right (jobvr "V") eigenvectors, each of norm 1
 * with its largest component real. lwork >= max(1, 4n) with vectors, max(1, 3n) without (dgeev);
 * max(1, 2n) (zgeev, with rwork of 2n doubles). */
ZOR_FORTRAN_API void dgeev(const char* jobvl, const char* jobvr, const zor_int* n, double* a, const zor_int* lda,
                           double* wr, double* wi, double* vl, const zor_int* ldvl, double* vr,
                           const zor_int* ldvr, double* work, const zor_int* lwork, zor_int* info,
                           size_t jobvl_length, size_t jobvr_length);
ZOR_FORTRAN_API void zgeev(const char* jobvl, const char* jobvr, const zor_int* n, zor_complex_double* a,
                           const zor_int* lda, zor_complex_double* w, zor_complex_double* vl, const zor_int* ldvl,
                           zor_complex_double* vr, const zor_int* ldvr, zor_complex_double* work,
                           const zor_int* lwork, double* rwork, zor_int* info, size_t jobvl_length,
                           size_t jobvr_length);
/* Moves the diagonal block of the Schur form T at row ifst to row ilst, updating Q (compq "V"). */
ZOR_FORTRAN_API void dtrexc(const char* compq, const zor_int* n, double* t, const zor_int* ldt, double* q,
                            const zor_int* ldq, zor_int* ifst, zor_int* ilst, double* work, zor_int* info,
                            size_t compq_length);
ZOR_FORTRAN_API void ztrexc(const char* compq, const zor_int* n, zor_complex_double* t, const zor_int* ldt,
                            zor_complex_double* q, const zor_int* ldq, const zor_int* ifst, const zor_int* ilst,
                            zor_int* info, size_t compq_length);
/* Solves op(A) X + isgn X op(B) = scale C for the Schur forms A and B; X overwrites C. */
ZOR_FORTRAN_API void dtrsyl(const char* trana, const char* tranb, const zor_int* isgn, const zor_int* m,
                            const zor_int* n, const double* a, const zor_int* lda, const double* b,
                            const zor_int* ldb, double* c, const zor_int* ldc, double* scale, zor_int* info,
                            size_t trana_length, size_t tranb_length);
ZOR_FORTRAN_API void ztrsyl(const char* trana, const char* tranb, const zor_int* isgn, const zor_int* m,
                            const zor_int* n, const zor_complex_double* a, const zor_int* lda,
                            const zor_complex_double* b, const zor_int* ldb, zor_complex_double* c,
                            const zor_int* ldc, double* scale, zor_int* info, size_t trana_length,
                            size_t tranb_length);
/* ---- Symmetric and Hermitian eigenproblem ------------------------------------------------------ */

/* The eigenvalues w (ascending) and, for jobz "V", the orthonormal eigenvectors (in place of A) of
 * the symmetric A whose triangle uplo is given, by divide and conquer. lwork >= 2n + 1 ("N") or
 * 1 + 6n + 2n^2 ("V"), liwork >= 1 ("N") or 3 + 5n ("V"), all 1 when n <= 1; lwork or liwork = -1
 * asks for the optimal sizes in work[0] and iwork[0]. info = k > 0: the solver did not converge. */
ZOR_FORTRAN_API void dsyevd(const char* jobz, const char* uplo, const zor_int* n, double* a,
                            const zor_int* lda, double* w, double* work, const zor_int* lwork, zor_int* iwork,
                            const zor_int* liwork, zor_int* info, size_t jobz_length, size_t uplo_length);
/* The same for a Hermitian A: lwork >= n + 1 ("N") or 2n + n^2 ("V"), lrwork >= n or 1 + 5n + 2n^2,
 * liwork >= 1 or 3 + 5n; any of lwork, lrwork, liwork = -1 asks for all three optimal sizes. */
ZOR_FORTRAN_API void zheevd(const char* jobz, const char* uplo, const zor_int* n, zor_complex_double* a,
                            const zor_int* lda, double* w, zor_complex_double* work, const zor_int* lwork,
                            double* rwork, const zor_int* lrwork, zor_int* iwork, const zor_int* liwork,
                            zor_int* info, size_t jobz_length, size_t uplo_length);
/* ---- Singular value decomposition and least squares ---------------------------------------- */

/* A = U S Vᵀ by divide and conquer: s receives the min(m, n) singular values, non-negative and
 * non-increasing. jobz "A": all of U (m by m) and Vᵀ (n by n) in u and vt; "S": their first
 * min(m, n) columns and rows; "O": those overwrite A (U's when m >= n, Vᵀ's otherwise; the other in
 * u or vt); "N": values only. lwork = -1 asks for the optimal size in work[0]; iwork: 8 min(m, n).
 * info = -4 (no message): A holds a NaN; info > 0: the bidiagonal divide and conquer did not
 * converge. zgesdd computes A = U S Vᴴ and takes rwork (5 min(m, n) doubles for "N", else
 * max(5k² + 5k, 2 max(m, n) k + 2k² + k) for k = min(m, n)). */
ZOR_FORTRAN_API void dgesdd(const char* jobz, const zor_int* m, const zor_int* n, double* a, const zor_int* lda,
                            double* s, double* u, const zor_int* ldu, double* vt, const zor_int* ldvt,
                            double* work, const zor_int* lwork, zor_int* iwork, zor_int* info,
                            size_t jobz_length);
ZOR_FORTRAN_API void zgesdd(const char* jobz, const zor_int* m, const zor_int* n, zor_complex_double* a,
                            const zor_int* lda, double* s, zor_complex_double* u, const zor_int* ldu,
                            zor_complex_double* vt, const zor_int* ldvt, zor_complex_double* work,
                            const zor_int* lwork, double* rwork, zor_int* iwork, zor_int* info,
                            size_t jobz_length);
/* The minimum-norm solution of min ||B - A X|| through the SVD of A: b (ldb >= max(1, m, n)) holds
 * the nrhs right-hand sides on entry and the n by nrhs solution on return; singular values at most
 * rcond times the largest count as zero (rcond < 0: machine precision), rank receives the number of
 * the others and s the singular values. lwork = -1 asks for the optimal size in work[0]; iwork[0]
 * receives the integer workspace needed. info > 0: the bidiagonal solver did not converge. */
ZOR_FORTRAN_API void dgelsd(const zor_int* m, const zor_int* n, const zor_int* nrhs, double* a, const zor_int* lda,
                            double* b, const zor_int* ldb, double* s, const double* rcond, zor_int* rank,
                            double* work, const zor_int* lwork, zor_int* iwork, zor_int* info);

/* ---- The generalized eigenproblem ------------------------------------------------------------- */

/* Reduces the pencil (A, B), B upper triangular, to Hessenberg-triangular form Q^H A Z, Q^H B Z by
 * rotations on rows and columns ilo .. ihi; compq, compz "N" (none), "I" (Q := the rotations), "V"
 * (Q := Q times them). */
ZOR_FORTRAN_API void dgghrd(const char* compq, const char* compz, const zor_int* n, const zor_int* ilo,
                            const zor_int* ihi, double* a, const zor_int* lda, double* b, const zor_int* ldb,
                            double* q, const zor_int* ldq, double* z, const zor_int* ldz, zor_int* info,
                            size_t compq_length, size_t compz_length);
ZOR_FORTRAN_API void zgghrd(const char* compq, const char* compz, const zor_int* n, const zor_int* ilo,
                            const zor_int* ihi, zor_complex_double* a, const zor_int* lda, zor_complex_double* b,
                            const zor_int* ldb, zor_complex_double* q, const zor_int* ldq, zor_complex_double* z,
                            const zor_int* ldz, zor_int* info, size_t compq_length, size_t compz_length);
/* The QZ iteration on a Hessenberg-triangular pair: the generalized eigenvalues (alpha, beta) and
 * (job "S") the generalized Schur form, with Q and Z as in dgghrd. lwork >= max(1, n); zhgeqz takes
 * rwork of n doubles. */
ZOR_FORTRAN_API void dhgeqz(const char* job, const char* compq, const char* compz, const zor_int* n,
                            const zor_int* ilo, const zor_int* ihi, double* h, const zor_int* ldh, double* t,
                            const zor_int* ldt, double* alphar, double* alphai, double* beta, double* q,
                            const zor_int* ldq, double* z, const zor_int* ldz, double* work, const zor_int* lwork,
                            zor_int* info, size_t job_length, size_t compq_length, size_t compz_length);
ZOR_FORTRAN_API void zhgeqz(const char* job, const char* compq, const char* compz, const zor_int* n,
                            const zor_int* ilo, const zor_int* ihi, zor_complex_double* h, const zor_int* ldh,
                            zor_complex_double* t, const zor_int* ldt, zor_complex_double* alpha,
                            zor_complex_double* beta, zor_complex_double* q, const zor_int* ldq,
                            zor_complex_double* z, const zor_int* ldz, zor_complex_double* work,
                            const zor_int* lwork, double* rwork, zor_int* info, size_t job_length,
                            size_t compq_length, size_t compz_length);
/* Right and/or left eigenvectors of a generalized Schur pair (S, P), all, selected, or all
 * back-transformed by the Q and Z given in vl and vr; work of 6n (dtgevc), 2n with rwork of 2n
 * doubles (ztgevc). */
ZOR_FORTRAN_API void dtgevc(const char* side, const char* howmny, const zor_int* select, const zor_int* n,
                            const double* s, const zor_int* lds, const double* p, const zor_int* ldp, double* vl,
                            const zor_int* ldvl, double* vr, const zor_int* ldvr, const zor_int* mm, zor_int* m,
                            double* work, zor_int* info, size_t side_length, size_t howmny_length);
ZOR_FORTRAN_API void ztgevc(const char* side, const char* howmny, const zor_int* select, const zor_int* n,
                            const zor_complex_double* s, const zor_int* lds, const zor_complex_double* p,
                            const zor_int* ldp, zor_complex_double* vl, const zor_int* ldvl, zor_complex_double* vr,
                            const zor_int* ldvr, const zor_int* mm, zor_int* m, zor_complex_double* work,
                            double* rwork, zor_int* info, size_t side_length, size_t howmny_length);
/* The caller's choice of eigenvalues for dgges and zgges, in the Fortran convention: alpha (real and
 * imaginary parts for dgges) and beta by reference, a logical answer, nonzero for selected. */
typedef zor_int (*zor_dselect3)(const double* alphar, const double* alphai, const double* beta);
typedef zor_int (*zor_zselect2)(const zor_complex_double* alpha, const zor_complex_double* beta);
/* The generalized Schur factorization (A, B) = (Q S Z^H, Q T Z^H), optionally with the eigenvalues
 * selctg chooses leading (sdim of them); info = n + 2: rounding changed the choice after
 * reordering, n + 3: the reordering failed. lwork >= max(8n, 6n + 16) (dgges), max(1, 2n) with
 * rwork of 8n doubles (zgges). */
ZOR_FORTRAN_API void dgges(const char* jobvsl, const char* jobvsr, const char* sort, zor_dselect3 selctg,
                           const zor_int* n, double* a, const zor_int* lda, double* b, const zor_int* ldb,
                           zor_int* sdim, double* alphar, double* alphai, double* beta, double* vsl,
                           const zor_int* ldvsl, double* vsr, const zor_int* ldvsr, double* work,
                           const zor_int* lwork, zor_int* bwork, zor_int* info, size_t jobvsl_length,
                           size_t jobvsr_length, size_t sort_length);
ZOR_FORTRAN_API void zgges(const char* jobvsl, const char* jobvsr, const char* sort, zor_zselect2 selctg,
                           const zor_int* n, zor_complex_double* a, const zor_int* lda, zor_complex_double* b,
                           const zor_int* ldb, zor_int* sdim, zor_complex_double* alpha, zor_complex_double* beta,
                           zor_complex_double* vsl, const zor_int* ldvsl, zor_complex_double* vsr,
                           const zor_int* ldvsr, zor_complex_double* work, const zor_int* lwork, double* rwork,
                           zor_int* bwork, zor_int* info, size_t jobvsl_length, size_t jobvsr_length,
                           size_t sort_length);
/* Moves the diagonal block of the generalized Schur pair (A, B) at row ifst to row ilst, updating Q
 * and Z (wantq, wantz nonzero); lwork >= 4n + 16 (dtgexc, n > 1). */
ZOR_FORTRAN_API void dtgexc(const zor_int* wantq, const zor_int* wantz, const zor_int* n, double* a,
                            const zor_int* lda, double* b, const zor_int* ldb, double* q, const zor_int* ldq,
                            double* z, const zor_int* ldz, zor_int* ifst, zor_int* ilst, double* work,
                            const zor_int* lwork, zor_int* info);
ZOR_FORTRAN_API void ztgexc(const zor_int* wantq, const zor_int* wantz, const zor_int* n, zor_complex_double* a,
                            const zor_int* lda, zor_complex_double* b, const zor_int* ldb, zor_complex_double* q,
                            const zor_int* ldq, zor_complex_double* z, const zor_int* ldz, const zor_int* ifst,
                            zor_int* ilst, zor_int* info);
/* The generalized eigenvalues (alpha, beta) of the pencil (A, B) and its left and right eigenvectors,
 * each scaled so that its largest component has |re| + |im| = 1. lwork >= max(1, 8n) (dggev),
 * max(1, 2n) with rwork of 8n doubles (zggev). */
ZOR_FORTRAN_API void dggev(const char* jobvl, const char* jobvr, const zor_int* n, double* a, const zor_int* lda,
                           double* b, const zor_int* ldb, double* alphar, double* alphai, double* beta, double* vl,
                           const zor_int* ldvl, double* vr, const zor_int* ldvr, double* work, const zor_int* lwork,
                           zor_int* info, size_t jobvl_length, size_t jobvr_length);
ZOR_FORTRAN_API void zggev(const char* jobvl, const char* jobvr, const zor_int* n, zor_complex_double* a,
                           const zor_int* lda, zor_complex_double* b, const zor_int* ldb, zor_complex_double* alpha,
                           zor_complex_double* beta, zor_complex_double* vl, const zor_int* ldvl,
                           zor_complex_double* vr, const zor_int* ldvr, zor_complex_double* work,
                           const zor_int* lwork, double* rwork, zor_int* info, size_t jobvl_length,
                           size_t jobvr_length);

ZOR_EXTERN_C_END

#endif
