#pragma once
// The drivers of the nonsymmetric eigenproblem: the Schur factorization A = Z T Zᴴ with the
// eigenvalues chosen by the caller moved to the top of T (gees), and the eigenvalues with right
// and left eigenvectors (geev). Both scale a matrix whose largest entry lies outside [sqrt(safe
// minimum) / eps, its reciprocal] into that range first and scale the results back, balance
// (gees: permute only), reduce to Hessenberg form and run the QR algorithm (schur.hpp); the
// eigenvectors come from trevc3 and are normalised to Euclidean norm 1 with their largest
// component real.
//
// Real data: eigenvalues in wr, wi (a complex pair adjacent, positive imaginary part first) and a
// complex eigenvector pair in two columns (real part, imaginary part); complex data: w and rwork.
// Templates over double and zcomplex with the published argument lists otherwise; the checks
// report as "DGEES ", "ZGEEV ", ... with info = -k for a bad argument k.

#include <cstdint>
#include <type_traits>

#include "lapack/schur/schur.hpp"
#include "service/types.hpp"
#include "zor/zor_config.h"

namespace zor {

// The caller's choice of eigenvalues for the top of a sorted Schur form, in the Fortran
// convention: the eigenvalue by reference (real data: its real and imaginary parts), a 32-bit
// logical answer, nonzero for selected. A complex eigenvalue goes as the caller's own complex type
// (the same two doubles as zcomplex): calling through a pointer of another type is undefined.
using RealSelect = std::int32_t (*)(const double* re, const double* im);
using ComplexSelect = std::int32_t (*)(const zor_complex_double* w);
template <class T>
using EigenvalueSelect = std::conditional_t<kIsComplex<T>, ComplexSelect, RealSelect>;

// The Schur factorization: T overwrites A, Z goes to vs (jobvs "V"; "N": none). sort "S": the
// eigenvalues `select` chooses (a real pair when either of its eigenvalues is chosen) are moved to
// the leading sdim rows of T; "N": no sorting, sdim = 0. bwork: n 64-bit logicals, used only when
// sorting. lwork >= max(1, 3n) (real), max(1, 2n) (complex, with rwork of n doubles); lwork = -1
// answers the optimum in work(1). info = i in 1 .. n: the QR algorithm failed, eigenvalues i + 1 ..
// n (and 1 .. ilo - 1) are computed; n + 1: two eigenvalues too close to reorder; n + 2: after
// reordering, rounding changed an eigenvalue so that `select` no longer chooses the leading ones.
template <class T>
void gees(char jobvs, char sort, EigenvalueSelect<T> select, zint n, T* a, zint lda, zint& sdim,
          Eigenvalues<T> w, T* vs, zint ldvs, T* work, zint lwork, double* rwork, zint* bwork, zint& info);

// The eigenvalues of A and (jobvl, jobvr "V") its left and right eigenvectors, vlᴴ A = λ vlᴴ and
// A vr = λ vr. lwork >= max(1, 4n) with vectors, max(1, 3n) without (real); max(1, 2n) complex,
// with rwork of 2n doubles; lwork = -1 answers the optimum in work(1). info = i > 0: the QR
// algorithm failed; eigenvalues i + 1 .. n are computed and no vectors.
template <class T>
void geev(char jobvl, char jobvr, zint n, T* a, zint lda, Eigenvalues<T> w, T* vl, zint ldvl, T* vr,
          zint ldvr, T* work, zint lwork, double* rwork, zint& info);

// The argument checks of the exports, run before any array of the caller is touched and by the
// routines themselves: 0, or -k after reporting parameter k. The workspace minimum is part of
// them.
template <class T>
zint check_gees(char jobvs, char sort, zint n, zint lda, zint ldvs, zint lwork);
template <class T>
zint check_geev(char jobvl, char jobvr, zint n, zint lda, zint ldvl, zint ldvr, zint lwork);

}  // namespace zor
