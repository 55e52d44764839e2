#pragma once
// The generalized eigenproblem of a pencil (A, B): the λ = α/β with β A x = α B x. The pencil is
// balanced (ggbal, ggbak undoes it on the vectors), reduced to Hessenberg-triangular form
// Qᴴ A Z = H, Qᴴ B Z = T by rotations (gghrd, after B was made triangular by a QR factorization),
// and brought to generalized Schur form S = Qᴴ A Z, P = Qᴴ B Z by the QZ iteration of Moler and
// Stewart (hgeqz). tgevc computes eigenvectors of (S, P); ggev is the driver.
//
// Forms of the Schur pair: for complex data S and P are upper triangular, P with a real
// non-negative diagonal; α_j = S(j, j), β_j = P(j, j). For real data P is upper triangular with a
// non-negative diagonal and S quasi-triangular: a 2 by 2 block of S stands for a complex pair, and P
// is diagonal (positive) beside it; α = (alphar + i alphai), β real, the pair with the positive
// imaginary part first. β = 0 is an infinite eigenvalue; α = β = 0 (a singular pencil) leaves the
// eigenvalue undetermined.
//
// Templates over double and zcomplex with the published argument lists, indices one-based at the
// interface; the checks report as the published routines ("DGGHRD", "ZHGEQZ", ...), info = -k
// for a bad argument k.

#include <cstdint>
#include <type_traits>
#include "lapack/lapack.hpp"
#include "lapack/schur/schur.hpp"

#include "service/types.hpp"
#include "zor/zor_config.h"

namespace zor {

// Permutes (job "P"), scales ("S") or both ("B"; "N": neither) the pencil: rows by D_l P_l and
// columns by P_r D_r, so that rows and columns ilo .. ihi hold what still needs the QZ iteration.
// lscale(j), rscale(j) hold the row and column permutation indices (j outside ilo .. ihi) or the
// scale factors (inside). work: 6n doubles when scaling (not referenced otherwise).
template <class T>
void ggbal(char job, zint n, T* a, zint lda, T* b, zint ldb, zint& ilo, zint& ihi, double* lscale,
           double* rscale, double* work, zint& info);

// V := the vectors of the unbalanced pencil (side "R": right vectors, by rscale; "L": left, by
// lscale) for the m columns of V.
template <class T>
void ggbak(char job, char side, zint n, zint ilo, zint ihi, const double* lscale, const double* rscale,
           zint m, T* v, zint ldv, zint& info);

// Qᴴ A Z = H upper Hessenberg and Qᴴ B Z = T upper triangular for B upper triangular on entry, on
// rows and columns ilo .. ihi, by Givens rotations (the published unblocked sweep). compq, compz
// "N": no Q (Z); "I": Q := the rotations; "V": Q := Q times them.
template <class T>
void gghrd(char compq, char compz, zint n, zint ilo, zint ihi, T* a, zint lda, T* b, zint ldb, T* q, zint ldq,
           T* z, zint ldz, zint& info);

// The QZ iteration on the Hessenberg-triangular pair (H, T) (already triangular outside ilo .. ihi).
// job "E": eigenvalues only; "S": also the Schur form in H and T. compq, compz as gghrd's.
// Eigenvalues go to alpha (real data: alphar, alphai) and beta. lwork >= max(1, n); lwork = -1
// answers n. rwork: n doubles for complex data. info = i in 1 .. n: the iteration limit was
// reached (30 sweeps per row) with eigenvalues i + 1 .. n computed. A pencil with an infinite or NaN entry in
// rows ilo .. ihi cannot converge and is reported at once as info = ihi.
template <class T>
void hgeqz(char job, char compq, char compz, zint n, zint ilo, zint ihi, T* h, zint ldh, T* t, zint ldt,
           Eigenvalues<T> alpha, T* beta, T* q, zint ldq, T* z, zint ldz, T* work, zint lwork, double* rwork,
           zint& info);

// Right (side "R") and/or left ("L"; "B" both) eigenvectors of the Schur pair (S, P), as hgeqz
// leaves it: β S x = α P x and yᴴ (β S - α P) = 0. howmny "A": all; "B": all, back-transformed (the
// Q and Z given in VL and VR multiply them); "S": the selected ones (real data: a pair by either of
// its entries). Each vector is scaled so that its largest component has |re| + |im| = 1; a complex
// pair of real data takes two columns. mm >= the columns needed, m on return. work: 6n (real),
// 2n (complex) with rwork of 2n. info = -k bad argument; real data: info = j > 0 when a 2 by 2
// block at column j has real eigenvalues.
template <class T>
void tgevc(char side, char howmny, const zint* select, zint n, const T* s, zint lds, const T* p, zint ldp,
           T* vl, zint ldvl, T* vr, zint ldvr, zint mm, zint& m, T* work, double* rwork, zint& info);

// The eigenvalues (α, β) of the pencil (A, B) and (jobvl, jobvr "V") its left and right
// eigenvectors, uᴴ A β = α uᴴ B and β A v = α B v, each normalised so that its largest component
// has |re| + |im| = 1. Real data: lwork >= max(1, 8n); complex data: lwork >= max(1, 2n) with
// rwork of 8n doubles; lwork = -1 answers the optimum in work(1). info = i in 1 .. n: the QZ
// iteration failed, (α_j, β_j) for j > i are correct; n + 1: other failure of hgeqz; n + 2: of
// tgevc.
template <class T>
void ggev(char jobvl, char jobvr, zint n, T* a, zint lda, T* b, zint ldb, Eigenvalues<T> alpha, T* beta,
          T* vl, zint ldvl, T* vr, zint ldvr, T* work, zint lwork, double* rwork, zint& info);

// Exchanges the adjacent diagonal blocks of orders n1 and n2 (real data: 1 or 2 each; complex data:
// 1) at row j1 of the generalized Schur pair (A, B), updating Q and Z (wantq, wantz). info = 1: the
// exchange was refused (it would have changed the pair by more than 20 eps ||(A, B)||, or a real
// 2 by 2 block would have lost its complex eigenvalues); nothing is changed then.
template <class T>
void tgex2(bool wantq, bool wantz, zint n, T* a, zint lda, T* b, zint ldb, T* q, zint ldq, T* z, zint ldz,
           zint j1, zint n1, zint n2, zint& info);

// Moves the block at row ifst to row ilst by exchanges of neighbours (real data: both moved to the
// first rows of their blocks). lwork >= 4n + 16 for real data (n > 1; 1 otherwise), not
// referenced for complex data; lwork = -1 answers it. info = 1: an exchange was refused; ilst is
// where the block stopped.
template <class T>
void tgexc(bool wantq, bool wantz, zint n, T* a, zint lda, T* b, zint ldb, T* q, zint ldq, T* z, zint ldz,
           zint& ifst, zint& ilst, T* work, zint lwork, zint& info);
template <class T>
zint tgexc_workspace(zint n);

// Reorders the pair so that the selected eigenvalues (a real pair by either entry) lead it, m of
// them, and recomputes alpha and beta from the reordered pair (P's diagonal made non-negative).
// info = 1: an exchange was refused; the pair is reordered as far as it got. The published ijob
// 0: no condition numbers or projections.
template <class T>
void tgsen(bool wantq, bool wantz, const zint* select, zint n, T* a, zint lda, T* b, zint ldb,
           Eigenvalues<T> alpha, T* beta, T* q, zint ldq, T* z, zint ldz, zint& m, zint& info);

// The caller's choice of eigenvalues for gges, in the Fortran convention: alpha (real data: its
// real and imaginary parts) and beta by reference, a 32-bit logical answer.
using RealPairSelect = std::int32_t (*)(const double* alphar, const double* alphai, const double* beta);
// The complex form takes the interface's complex type (the same two doubles), so that the caller's
// function is called through its own type.
using ComplexPairSelect = std::int32_t (*)(const zor_complex_double* alpha, const zor_complex_double* beta);
template <class T>
using PairSelect = std::conditional_t<kIsComplex<T>, ComplexPairSelect, RealPairSelect>;

// The generalized Schur factorization (A, B) = (Q S Zᴴ, Q P Zᴴ): S, P overwrite A, B; Q goes to vsl
// (jobvsl "V"), Z to vsr (jobvsr "V"). sort "S": the eigenvalues selctg chooses lead (sdim of
// them). Real data: lwork >= max(8n, 6n + 16) (1 for n = 0); complex data: lwork >= max(1, 2n),
// rwork of 8n; lwork = -1 answers the optimum. bwork: n 64-bit logicals, used when sorting. info
// = 1 .. n: the QZ iteration failed; n + 1: other failure of hgeqz; n + 2: after reordering,
// rounding changed the choice; n + 3: the reordering failed.
template <class T>
void gges(char jobvsl, char jobvsr, char sort, PairSelect<T> selctg, zint n, T* a, zint lda, T* b, zint ldb,
          zint& sdim, Eigenvalues<T> alpha, T* beta, T* vsl, zint ldvsl, T* vsr, zint ldvsr, T* work,
          zint lwork, double* rwork, zint* bwork, zint& info);

// The argument checks of the exports (0 or -k after reporting parameter k), run by the exports
// before any array is copied and by the routines themselves.
template <class T>
zint check_gghrd(char compq, char compz, zint n, zint ilo, zint ihi, zint lda, zint ldb, zint ldq, zint ldz);
template <class T>
zint check_hgeqz(char job, char compq, char compz, zint n, zint ilo, zint ihi, zint ldh, zint ldt, zint ldq,
                 zint ldz, zint lwork);
template <class T>
zint check_tgexc(bool wantq, bool wantz, zint n, zint lda, zint ldb, zint ldq, zint ldz, zint ifst, zint ilst,
                 zint lwork);
template <class T>
zint check_gges(char jobvsl, char jobvsr, char sort, zint n, zint lda, zint ldb, zint ldvsl, zint ldvsr,
                zint lwork);
template <class T>
zint check_ggev(char jobvl, char jobvr, zint n, zint lda, zint ldb, zint ldvl, zint ldvr, zint lwork);

// The columns tgevc fills for howmny and select (real data: two per selected pair); select holds
// logicals of the caller's width (the exports check before copying it).
template <class T, class Logical>
zint tgevc_columns(char howmny, const Logical* select, zint n, const T* s, zint lds) {
    if (!lsame(howmny, 'S')) return n;
    zint count = 0;
    for (zint j = 0; j < n; ++j) {
        if constexpr (!kIsComplex<T>) {
            if (j + 1 < n && s[(j + 1) + j * lds] != 0.0) {
                if (select[j] != 0 || select[j + 1] != 0) count += 2;
                ++j;
                continue;
            }
        }
        if (select[j] != 0) ++count;
    }
    return count;
}

// tgevc's checks. Real data: S must be quasi-triangular (no two consecutive nonzero subdiagonal
// entries, -5) and P zero beside its 2 by 2 blocks (-7); mm at least the columns needed (-13).
template <class T, class Logical>
zint check_tgevc(char side, char howmny, const Logical* select, zint n, const T* s, zint lds, const T* p,
                 zint ldp, zint ldvl, zint ldvr, zint mm) {
    const char* name = routine_name<T>("DTGEVC", "ZTGEVC");
    const bool right = lsame(side, 'R') || lsame(side, 'B'), left = lsame(side, 'L') || lsame(side, 'B');
    const zint info =
        check_arguments(name, {{!right && !left, 1},
                               {!lsame(howmny, 'A') && !lsame(howmny, 'S') && !lsame(howmny, 'B'), 2},
                               {n < 0, 4},
                               {lds < max_of(1, n), 6},
                               {ldp < max_of(1, n), 8}});
    if (info != 0) return info;
    bool sbad = false, pbad = false;
    if constexpr (!kIsComplex<T>) {
        for (zint j = 0; j + 1 < n; ++j) {
            if (s[(j + 1) + j * lds] == 0.0) continue;
            if (p[(j + 1) + j * ldp] != 0.0 || p[j + (j + 1) * ldp] != 0.0) pbad = true;
            if (j + 2 < n && s[(j + 2) + (j + 1) * lds] != 0.0) sbad = true;
        }
    }
    const zint needed = tgevc_columns(howmny, select, n, s, lds);
    return check_arguments(name, {{sbad, 5},
                                  {pbad, 7},
                                  {ldvl < 1 || (left && ldvl < n), 10},
                                  {ldvr < 1 || (right && ldvr < n), 12},
                                  {mm < needed, 13}});
}

// The real 2 by 2 pencil (A, B), B upper triangular: its eigenvalues (wr1 + i wi)/scale1 and
// (wr2 - i wi)/scale2 (wr2 = wr1, scale2 = scale1 for a complex pair, wi >= 0), scaled so that
// neither the quotients nor w·B overflow; B's diagonal entries below sqrt(safmin) are raised to
// it.
void lag2(const double* a, zint lda, const double* b, zint ldb, double safmin, double& scale1, double& scale2,
          double& wr1, double& wr2, double& wi);

// The eigenvalues of the real 2 by 2 block (A, B) in standard form (B diagonal, positive) with
// complex eigenvalues, as hgeqz and tgsen report them: alpha = (alphar + i alphai) and beta for both
// (the pair with positive imaginary part first; beta the magnitudes of the diagonal the complex
// triangularisation would give). False when lag2 finds the eigenvalues real.
bool pair_values(const double* a, zint lda, const double* b, zint ldb, double safmin, double* alphar,
                 double* alphai, double* beta);

}  // namespace zor
