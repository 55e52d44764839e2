#pragma once
// The real bidiagonal solvers: the singular values and vectors of an upper or lower bidiagonal
// matrix B = U S Vᵀ by implicit QR (bdsqr, lasdq) and by divide and conquer (bdsdc with the lasd*
// pieces), and the minimum-norm least-squares solve on the bidiagonal form (lalsd with lalsa,
// lals0). Both precisions' SVD drivers reduce to these: the complex ones apply their unitary Q and
// P to the real singular vectors computed here.
//
// Contract: d (n) holds the diagonal and e (n - 1, or n where the matrix has an extra column or row)
// the off-diagonal, both overwritten. Singular values come back non-negative and non-increasing
// (lasdq and the merges inside divide and conquer: ascending) with their vectors permuted alike. Matrices are
// column-major with leading dimensions. Index arrays hold one-based positions, as the published routines do.
// info < 0 is an argument error (reported with the published routine's name); info > 0 a failure to converge,
// also for input holding NaN or infinity, which every solver detects before iterating, so none can hang.
// Every iteration is bounded.

#include "service/types.hpp"

namespace zor {

// ---- 2 by 2 upper triangular [f g; 0 h] ---------------------------------------------------------

// Its singular values, ssmin <= ssmax, accurate to a few ulps without overflow.
void las2(double f, double g, double h, double& ssmin, double& ssmax);
// Its SVD: [csl snl; -snl csl] [f g; 0 h] [csr -snr; snr csr] = diag(ssmax, ssmin), with
// |ssmax| >= |ssmin| (the signs make the product come out right).
void lasv2(double f, double g, double h, double& ssmin, double& ssmax, double& snr, double& csr, double& snl,
           double& csl);

// ---- implicit QR ---------------------------------------------------------------------------------

// The SVD of the n by n bidiagonal B ("U" upper, "L" lower): on return d holds the singular values
// and VT := Pᵀ VT (ncvt columns), U := U Q (nru rows), C := Qᵀ C (ncc columns) for B = Q S Pᵀ.
// work: 4n. info = k > 0: k off-diagonal elements did not converge (d, e hold a bidiagonal matrix
// orthogonally equivalent to the input).
void bdsqr(char uplo, zint n, zint ncvt, zint nru, zint ncc, double* d, double* e, double* vt, zint ldvt,
           double* u, zint ldu, double* c, zint ldc, double* work, zint& info);

// The same for a possibly non-square bidiagonal: sqre = 1 adds a column (upper) or a row (lower),
// so e has n elements and VT (upper) or U and C (lower) take n + 1 rows or columns. The values
// come back in ascending order (the order the merges of divide and conquer take). work: 4n.
void lasdq(char uplo, zint sqre, zint n, zint ncvt, zint nru, zint ncc, double* d, double* e, double* vt,
           zint ldvt, double* u, zint ldu, double* c, zint ldc, double* work, zint& info);

// ---- divide and conquer --------------------------------------------------------------------------

// The SVD of the n by n bidiagonal B by divide and conquer. compq "N": values only; "I": U and VT
// (n by n) too. The compact form ("P") is not provided: that letter is reported as a bad compq
// (q and iq are not referenced). Sizes: bdsdc_work_size, bdsdc_iwork_size.
void bdsdc(char uplo, char compq, zint n, double* d, double* e, double* u, zint ldu, double* vt, zint ldvt,
           double* q, zint* iq, double* work, zint* iwork, zint& info);
// The published minimal work area of bdsdc (doubles) for compq and n: "N" 4n, "I" 3n² + 4n (at
// least 1).
zint bdsdc_work_size(char compq, zint n);
// Its integer work area: 8n (at least 1).
zint bdsdc_iwork_size(zint n);

// The computation tree of divide and conquer on n rows with leaves of at most msub rows: lvl
// levels, nd nodes; node i (one-based) is centred on row inode(i) with ndiml(i) rows on its left
// and ndimr(i) on its right; the nodes of level l are 2^(l-1) .. 2^l - 1.
void lasdt(zint n, zint& lvl, zint& nd, zint* inode, zint* ndiml, zint* ndimr, zint msub);

// The SVD of the n by (n + sqre) upper bidiagonal B by divide and conquer with the vectors
// explicit: U (n by n), VT (m by m, m = n + sqre). iwork: 8n; work: 3m² + 2m.
void lasd0(zint n, zint sqre, double* d, double* e, double* u, zint ldu, double* vt, zint ldvt, zint smlsiz,
           zint* iwork, double* work, zint& info);

// One merge: the SVD of [B1 0; alpha·e_last beta·e_first; 0 B2] (B1 nl by nl + 1, B2 nr by nr +
// sqre) from those of B1 and B2 held in d, U and VT; idxq receives the permutation that sorts the
// new values ascending. iwork: 4n; work: 3m² + 2m (n = nl + nr + 1, m = n + sqre).
void lasd1(zint nl, zint nr, zint sqre, double* d, double& alpha, double& beta, double* u, zint ldu,
           double* vt, zint ldvt, zint* idxq, zint* iwork, double* work, zint& info);

// The merge's deflation: the k values kept for the secular equation (dsigma, z) and the vectors
// rearranged into the column types of U2 and VT2 (coltyp(1..4) return their counts).
void lasd2(zint nl, zint nr, zint sqre, zint& k, double* d, double* z, double alpha, double beta, double* u,
           zint ldu, double* vt, zint ldvt, double* dsigma, double* u2, zint ldu2, double* vt2, zint ldvt2,
           zint* idxp, zint* idx, zint* idxc, zint* idxq, zint* coltyp, zint& info);

// The merge's secular equation and vectors: the k new values into d, the singular vectors by the
// Löwner-type recomputation of z (so they stay orthogonal) multiplied into U and VT. q: k by k.
void lasd3(zint nl, zint nr, zint sqre, zint k, double* d, double* q, zint ldq, double* dsigma, double* u,
           zint ldu, double* u2, zint ldu2, double* vt, zint ldvt, double* vt2, zint ldvt2, const zint* idxc,
           const zint* ctot, double* z, zint& info);

// The i-th (one-based) root sigma of the secular equation 1 + rho Σ z_j² / ((d_j - σ)(d_j + σ)) for
// 0 <= d_1 < ... < d_n, rho > 0, |z| = 1; delta(j) = d_j - sigma and work(j) = d_j + sigma.
// info = 1: no convergence in the iteration limit.
void lasd4(zint n, zint i, const double* d, const double* z, double* delta, double rho, double& sigma,
           double* work, zint& info);
// The same for n = 2.
void lasd5(zint i, const double* d, const double* z, double* delta, double rho, double& dsigma, double* work);

// The root of rho + Σ_{j<3} z_j / (d_j - x) closest to the origin, in the gap on the side that
// orgati names (d(1)..d(2) when true, d(0)..d(1) otherwise, zero-based); finit is its value at 0 and
// kniter 2 asks for the better first guess of an outer iteration's second step. info = 1: the
// iteration limit was reached.
void laed6(zint kniter, bool orgati, double rho, const double* d, const double* z, double finit, double& tau,
           zint& info);

// ---- the compact form ----------------------------------------------------------------------------

// Divide and conquer on the n by (n + sqre) upper bidiagonal B keeping the vectors in factored form
// (icompq 1) or none of them (icompq 0): the leaves' vectors in U and VT, and per level the
// deflation (perm, givptr, givcol, givnum, c, s), poles, difl, difr and z that lals0 applies. Array
// shapes as published, leading dimensions ldu and ldgcol. work: 6m + (smlsiz + 1)²; iwork: 7n.
void lasda(zint icompq, zint smlsiz, zint n, zint sqre, double* d, double* e, double* u, zint ldu, double* vt,
           zint* k, double* difl, double* difr, double* z, double* poles, zint* givptr, zint* givcol,
           zint ldgcol, zint* perm, double* givnum, double* c, double* s, double* work, zint* iwork,
           zint& info);

// One merge in the compact form: the new values of the node and, in vf and vl, the first and last
// components of its right singular vectors. work: 4m; iwork: 3n.
void lasd6(zint icompq, zint nl, zint nr, zint sqre, double* d, double* vf, double* vl, double& alpha,
           double& beta, zint* idxq, zint* perm, zint& givptr, zint* givcol, zint ldgcol, double* givnum,
           zint ldgnum, double* poles, double* difl, double* difr, double* z, zint& k, double& c, double& s,
           double* work, zint* iwork, zint& info);
// Its deflation, recording the rotations and the permutation.
void lasd7(zint icompq, zint nl, zint nr, zint sqre, zint& k, double* d, double* z, double* zw, double* vf,
           double* vfw, double* vl, double* vlw, double alpha, double beta, double* dsigma, zint* idx,
           zint* idxp, zint* idxq, zint* perm, zint& givptr, zint* givcol, zint ldgcol, double* givnum,
           zint ldgnum, double& c, double& s, zint& info);
// Its secular equation, the differences difl and difr (and the vector norms in difr's second
// column for icompq 1) and the updated vf, vl. work: 3k.
void lasd8(zint icompq, zint k, double* d, double* z, double* vf, double* vl, double* difl, double* difr,
           zint lddifr, double* dsigma, double* work, zint& info);

// ---- least squares -------------------------------------------------------------------------------

// The minimum-norm solution X of min ||B X - B_in|| for the n by n bidiagonal B ("U"/"L"), nrhs
// columns in b (overwritten by X). Singular values at most rcond · σ_max count as zero (rcond <= 0
// or >= 1 means the relative machine precision); rank receives the others' number and d the
// singular values, decreasing. Sizes: lalsd_work_size, lalsd_iwork_size. info > 0: a subproblem
// in rows info / (n + 1) through mod(info, n + 1) did not converge.
void lalsd(char uplo, zint smlsiz, zint n, zint nrhs, double* d, double* e, double* b, zint ldb, double rcond,
           zint& rank, double* work, zint* iwork, zint& info);
// The levels of lalsd's tree for n rows with leaves of smlsiz: max(0, floor(log2(n / (smlsiz + 1)))
// + 1).
zint lalsd_levels(zint n, zint smlsiz);
// The published minimal work areas of lalsd: 9n + 2n·smlsiz + 8n·nlvl + n·nrhs + (smlsiz + 1)²
// doubles and 3n·nlvl + 11n integers (at least 1 each).
zint lalsd_work_size(zint n, zint nrhs, zint smlsiz);
zint lalsd_iwork_size(zint n, zint smlsiz);

// Applies the factored singular vectors of lasda (icompq 1 there) to the nrhs columns of B:
// icompq 0 forms BX := Uᵀ B, icompq 1 forms BX := V B (B is overwritten on the way in both).
// n >= smlsiz. work: n; iwork: 3n.
void lalsa(zint icompq, zint smlsiz, zint n, zint nrhs, double* b, zint ldb, double* bx, zint ldbx,
           const double* u, zint ldu, const double* vt, const zint* k, const double* difl, const double* difr,
           const double* z, const double* poles, const zint* givptr, const zint* givcol, zint ldgcol,
           const zint* perm, const double* givnum, const double* c, const double* s, double* work,
           zint* iwork, zint& info);
// One node of lalsa: icompq 0 applies the node's left factor, 1 its right factor. work: k.
void lals0(zint icompq, zint nl, zint nr, zint sqre, zint nrhs, double* b, zint ldb, double* bx, zint ldbx,
           const zint* perm, zint givptr, const zint* givcol, zint ldgcol, const double* givnum, zint ldgnum,
           const double* poles, const double* difl, const double* difr, const double* z, zint k, double c,
           double s, double* work, zint& info);

}  // namespace zor
