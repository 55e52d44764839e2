#pragma once
// The real symmetric tridiagonal eigenproblem: T = Z diag(λ) Zᵀ for the tridiagonal T with diagonal
// d (n) and off-diagonal e (n - 1), the solvers under the symmetric and Hermitian drivers (which
// reduce to T first). sterf finds the eigenvalues alone (root-free QL/QR), steqr the eigenvalues and
// vectors (implicit QL/QR), stedc both by divide and conquer, with the merge routines laed0..laed6
// beneath it. On success the eigenvalues overwrite d in ascending order and e is destroyed; info > 0
// reports a failure to converge as each routine says (the iterations are bounded, NaN input
// included), info = -k a bad argument k reported with the routine's name. Index arrays hold one-based
// positions, as the published routines' do; the real arrays are plain pointers.

#include "service/types.hpp"

namespace zor {

// The eigenvalues of [a b; b c]: rt1 the one of larger magnitude, rt2 the other.
void lae2(double a, double b, double c, double& rt1, double& rt2);
// The same eigenvalues (bitwise those of lae2) and the unit eigenvector (cs1, sn1) of rt1:
// [cs1 sn1; -sn1 cs1] [a b; b c] [cs1 -sn1; sn1 cs1] = diag(rt1, rt2).
void laev2(double a, double b, double c, double& rt1, double& rt2, double& cs1, double& sn1);

// The eigenvalues by the Pal-Walker-Kahan root-free QL/QR. info = i > 0: the 30 n iterations did not
// suffice; i off-diagonal elements are still nonzero (d then holds what was found, unsorted).
void sterf(zint n, double* d, double* e, zint& info);

// The eigenvalues and, by compz, no vectors ("N"), the vectors of T ("I": Z is set to the identity
// first) or Q Z for the n by n orthogonal Q given in Z ("V"). work: 2 (n - 1) doubles for "V"/"I",
// not read for "N". info > 0 as for sterf.
void steqr(char compz, zint n, double* d, double* e, double* z, zint ldz, double* work, zint& info);

// Divide and conquer; compz as for steqr ("N" calls sterf). lwork = -1 or liwork = -1 is a workspace
// query: work(1) and iwork(1) receive the minimal sizes, which are also what the routine needs:
// "N" or n <= 1: 1 and 1; n at most the leaf size (ilaenv query 9): 2 (n - 1) and 1; otherwise
// "I": 1 + 4n + n² and 3 + 5n, "V": 1 + 3n + 2n·lg n + 4n² and 6 + 6n + 5n·lg n (lg n = ⌈log₂ n⌉).
// info > 0: the eigenvalue in the submatrix of rows and columns info / (n + 1) through
// mod(info, n + 1) could not be computed.
void stedc(char compz, zint n, double* d, double* e, double* z, zint ldz, double* work, zint lwork,
           zint* iwork, zint liwork, zint& info);

// The merge tree of stedc "I" over an unreduced T scaled to norm 1: cuts into leaves of the leaf size
// (solved by steqr), merged pairwise by laed1. Q (ldq >= n) receives the eigenvectors and d the
// eigenvalues in ascending order; work: n² + 4n doubles, iwork: 3 + 5n. This is the published
// routine's form for the eigenvectors of T itself; its forms for eigenvalues alone and for updating a
// given Q are not needed (stedc multiplies afterwards), so the parameters it keeps carry their
// published numbers in reports (n 3, ldq 7). info > 0: the leaf or merge of rows info / (n + 1)
// through mod(info, n + 1) failed.
void laed0(zint n, double* d, double* e, double* q, zint ldq, double* work, zint* iwork, zint& info);

// One merge: the eigensystem of Q diag(d) Qᵀ + rho z zᵀ, where Q = diag(Q1, Q2) holds the eigenvectors
// of the two halves split at cutpnt (1 <= cutpnt <= n / 2) and indxq their ascending order within
// each half. On return d, Q hold the merged eigensystem and indxq the ascending order of d.
// work: 4n + n², iwork: 4n. info = 1: the secular solver failed.
void laed1(zint n, double* d, double* q, zint ldq, zint* indxq, double rho, zint cutpnt, double* work,
           zint* iwork, zint& info);

// The deflation of a merge: returns in k the size of the remaining secular problem, in dlamda and w
// its poles and weights, in q2 the eigenvector blocks it multiplies (grouped by the four column
// types: upper half only, both, lower half only, deflated), in indxc the permutation between the
// grouping and the sorted order, and in coltyp(1..4) the number of columns of each type. The
// deflated eigenpairs go to the last n - k places of d and Q. rho and z are normalised in place.
void laed2(zint& k, zint n, zint n1, double* d, double* q, zint ldq, zint* indxq, double& rho, double* z,
           double* dlamda, double* w, double* q2, zint* indx, zint* indxc, zint* indxp, zint* coltyp,
           zint& info);

// The k roots of the secular equation and the eigenvectors of the merge: z is recomputed from the
// roots by the Löwner formula so that the vectors come out orthogonal, then the vectors are multiplied
// back by the blocks of q2 into the first k columns of Q. s: scratch of the size laed1 leaves.
void laed3(zint k, zint n, zint n1, double* d, double* q, zint ldq, double rho, double* dlamda,
           const double* q2, const zint* indx, const zint* ctot, double* w, double* s, zint& info);

// The i-th (one-based) root dlam of 1 + rho Σ z_j² / (d_j - λ) = 0 for d increasing, ||z|| = 1 and
// rho > 0, with delta(j) = d(j) - dlam computed accurately. Li's method with fixed-weight and
// middle-way steps and three-pole interpolation, inside a bracket; at most 30 steps (info = 1 when
// they do not suffice). For n = 2, delta receives the unit eigenvector instead (laed5); for n = 1,
// delta(1) = 1.
void laed4(zint n, zint i, const double* d, const double* z, double* delta, double rho, double& dlam,
           zint& info);

// The i-th (1 or 2) eigenvalue dlam and unit eigenvector delta of diag(d) + rho z zᵀ of order 2.
void laed5(zint i, const double* d, const double* z, double* delta, double rho, double& dlam);

// The root tau nearest the origin of f(x) = rho + Σ_j z_j / (d_j - x) over three poles (d and z
// zero-based), given finit = f(0): with orgati the root between d[1] and d[2], otherwise between d[0]
// and d[1]. The Gragg-Thornton-Warner cubic iteration inside a bracket, with the problem scaled up
// when a pole is within the cube root of the underflow threshold; kniter = 2 starts from the
// two-pole root. info = 1: 40 steps did not converge.
void laed6(zint kniter, bool orgati, double rho, const double* d, const double* z, double finit, double& tau,
           zint& info);

}  // namespace zor
