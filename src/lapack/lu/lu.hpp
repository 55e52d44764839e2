#pragma once
// The LU family: general, band and tridiagonal factorisations with partial pivoting and the solves
// and inverse that use them. Fortran calling form: everything by reference, 64-bit integers,
// one-based pivot indices (row i was interchanged with row ipiv(i)). Each routine checks its
// arguments and reports the first bad one through the error handler with its name.

#include <cstdint>

#include "service/types.hpp"

namespace zor {

// Row interchanges k1..k2 of ipiv applied to the n columns of A: forwards for incx > 0, backwards
// for incx < 0, nothing for incx = 0 (only ipiv(k1 .. k1 + (k2 - k1)|incx|) is read).
void dlaswp(const zint& n, double* a, const zint& lda, const zint& k1, const zint& k2, const zint* ipiv,
            const zint& incx);
void zlaswp(const zint& n, zcomplex* a, const zint& lda, const zint& k1, const zint& k2, const zint* ipiv,
            const zint& incx);

// The recursive factorisation core: `thread` and the column offset of this panel in the whole
// matrix are passed to the progress handler. Returns 1 when the handler asked to stop (the matrix
// and pivots are then partly updated), else 0. Arguments are not checked.
int dgetrf_core(const zint& m, const zint& n, double* a, const zint& lda, zint* ipiv, zint& info,
                const std::int32_t& thread, std::int32_t offset);
int zgetrf_core(const zint& m, const zint& n, zcomplex* a, const zint& lda, zint* ipiv, zint& info,
                const std::int32_t& thread, std::int32_t offset);

void dgetrf(const zint& m, const zint& n, double* a, const zint& lda, zint* ipiv, zint& info);
void zgetrf(const zint& m, const zint& n, zcomplex* a, const zint& lda, zint* ipiv, zint& info);

void dgetrs(const char& trans, const zint& n, const zint& nrhs, const double* a, const zint& lda,
            const zint* ipiv, double* b, const zint& ldb, zint& info);
void zgetrs(const char& trans, const zint& n, const zint& nrhs, const zcomplex* a, const zint& lda,
            const zint* ipiv, zcomplex* b, const zint& ldb, zint& info);

// A stop asked for by the progress handler during the factorisation skips the solve.
void dgesv(const zint& n, const zint& nrhs, double* a, const zint& lda, zint* ipiv, double* b,
           const zint& ldb, zint& info);
void zgesv(const zint& n, const zint& nrhs, zcomplex* a, const zint& lda, zint* ipiv, zcomplex* b,
           const zint& ldb, zint& info);

// lwork = -1 is a workspace query: work(1) receives the optimal size and ipiv is not read.
void dgetri(const zint& n, double* a, const zint& lda, const zint* ipiv, double* work, const zint& lwork,
            zint& info);
void zgetri(const zint& n, zcomplex* a, const zint& lda, const zint* ipiv, zcomplex* work, const zint& lwork,
            zint& info);

// Band storage: A(i, j) is ab(ku + 1 + i - j, j) with kl further rows above for the fill-in of the
// factorisation (ldab >= 2 kl + ku + 1).
void dgbtrf(const zint& m, const zint& n, const zint& kl, const zint& ku, double* ab, const zint& ldab,
            zint* ipiv, zint& info);
void zgbtrf(const zint& m, const zint& n, const zint& kl, const zint& ku, zcomplex* ab, const zint& ldab,
            zint* ipiv, zint& info);
void dgbtrs(const char& trans, const zint& n, const zint& kl, const zint& ku, const zint& nrhs,
            const double* ab, const zint& ldab, const zint* ipiv, double* b, const zint& ldb, zint& info);
void zgbtrs(const char& trans, const zint& n, const zint& kl, const zint& ku, const zint& nrhs,
            const zcomplex* ab, const zint& ldab, const zint* ipiv, zcomplex* b, const zint& ldb, zint& info);
void dgbsv(const zint& n, const zint& kl, const zint& ku, const zint& nrhs, double* ab, const zint& ldab,
           zint* ipiv, double* b, const zint& ldb, zint& info);
void zgbsv(const zint& n, const zint& kl, const zint& ku, const zint& nrhs, zcomplex* ab, const zint& ldab,
           zint* ipiv, zcomplex* b, const zint& ldb, zint& info);

// Tridiagonal: dl (n - 1), d (n), du (n - 1) become L's multipliers, U's diagonal and first
// superdiagonal; du2 (n - 2) receives U's second superdiagonal.
void dgttrf(const zint& n, double* dl, double* d, double* du, double* du2, zint* ipiv, zint& info);
void dgttrs(const char& trans, const zint& n, const zint& nrhs, const double* dl, const double* d,
            const double* du, const double* du2, const zint* ipiv, double* b, const zint& ldb, zint& info);

// The templates behind the named routines, for the sources of the family (T is double or zcomplex).
template <class T>
void laswp(zint n, T* a, zint lda, zint k1, zint k2, const zint* ipiv, zint incx);
// dgetrf's checks and factorisation; returns 1 when the progress handler stopped it.
template <class T>
int getrf_checked(zint m, zint n, T* a, zint lda, zint* ipiv, zint& info);
template <class T>
int gbtrf_checked(zint m, zint n, zint kl, zint ku, T* ab, zint ldab, zint* ipiv, zint& info);
template <class T>
void getrs(char trans, zint n, zint nrhs, const T* a, zint lda, const zint* ipiv, T* b, zint ldb, zint& info);

}  // namespace zor
