#pragma once
// The LAPACK layer's own kernels, in their five variants: the unblocked Cholesky steps, the
// tridiagonal solve and the packed-storage kernels. Fortran calling form (everything by reference,
// 64-bit integers, letters compared without regard to case), no argument checks.
//
// Packed storage holds a triangle column after column. A set of packed columns (the columns of a
// block of a packed triangle, from a given row on) is a pointer, a step ld and a growth g: column r
// starts r·ld + g·r(r-1)/2 elements after column 0, so g = 0 is ordinary storage, g = 1 the columns
// of an upper triangle (each one longer) and g = -1 those of a lower triangle (each one shorter).

#include <cstdint>

#include "service/dispatch.hpp"
#include "service/types.hpp"

ZOR_DECLARE_VARIANTS(
    // Cholesky of the leading n by n block, column by column (upper) or row by row (lower). On a
    // diagonal value that is not positive (or NaN) it is stored in place, info = its index, and the
    // kernel stops.
    void dpotf2_upper(const zint& n, double* a, const zint& lda, zint& info);
    void dpotf2_lower(const zint& n, double* a, const zint& lda, zint& info);
    void zpotf2_upper(const zint& n, zcomplex* a, const zint& lda, zint& info);
    void zpotf2_lower(const zint& n, zcomplex* a, const zint& lda, zint& info);

    // Solves with the tridiagonal factors of dgttrf: itrans 0 for A X = B, 1 for Aᵀ X = B.
    void dgtts2(const zint& itrans, const zint& n, const zint& nrhs, const double* dl, const double* d,
                const double* du, const double* du2, const zint* ipiv, double* b, const zint& ldb);

    // B := inv(op(T)) B for the packed triangle T of order n; B is a set of packed columns (ldb,
    // growth) whose first n elements are solved.
    void dtpsm(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& nrhs,
               const double* ap, double* b, const zint& ldb, const zint& growth);
    void ztpsm(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& nrhs,
               const zcomplex* ap, zcomplex* b, const zint& ldb, const zint& growth);
    // x := op(T) x for the packed triangle T.
    void dtpmv(const char& uplo, const char& trans, const char& diag, const zint& n, const double* ap,
               double* x, const zint& incx);
    void ztpmv(const char& uplo, const char& trans, const char& diag, const zint& n, const zcomplex* ap,
               zcomplex* x, const zint& incx);
    // The packed triangle of order n := itself + alpha Σ x_r x_rᴴ over the k packed columns x (ldx,
    // growth); the complex form is Hermitian and leaves its diagonal real.
    void dsprk(const char& uplo, const zint& n, const zint& k, const double& alpha, const double* x,
               const zint& ldx, const zint& growth, double* ap);
    void zhprk(const char& uplo, const zint& n, const zint& k, const double& alpha, const zcomplex* x,
               const zint& ldx, const zint& growth, zcomplex* ap);

    // y := A x for the symmetric (Hermitian) n by n A of the stored triangle uplo, unit strides: the
    // product of each step of the tridiagonal reduction (the Hermitian diagonal taken as real).
    void dlatrd_symv(const char& uplo, const zint& n, const double* a, const zint& lda, const double* x,
                     double* y);
    void zlatrd_hemv(const char& uplo, const zint& n, const zcomplex* a, const zint& lda, const zcomplex* x,
                     zcomplex* y);
    // The same with the extensions beyond AVX to use (read by the Avx variant only), for the tests.
    void dlatrd_symv_with(std::uint32_t extensions, const char& uplo, const zint& n, const double* a,
                          const zint& lda, const double* x, double* y);
    void zlatrd_hemv_with(std::uint32_t extensions, const char& uplo, const zint& n, const zcomplex* a,
                          const zint& lda, const zcomplex* x, zcomplex* y);

    // The steps of the two-stage reduction's bulge chase, H = I - tau v vᴴ. right: B := B H for the
    // rows by cols B (H of order cols; w: rows elements of scratch). left: B := Hᴴ B for the rows by
    // cols B (cols may be 0) and D := Hᴴ D H for the rows by rows Hermitian D of the lower triangle,
    // its diagonal kept real (H of order rows; w: rows elements of scratch); B and D share ld.
    void dsb2st_right(const zint& rows, const zint& cols, double* b, const zint& ldb, const double* v,
                      const double& tau, double* w);
    void zhb2st_right(const zint& rows, const zint& cols, zcomplex* b, const zint& ldb, const zcomplex* v,
                      const zcomplex& tau, zcomplex* w);
    void dsb2st_left(const zint& rows, const zint& cols, double* b, double* d, const zint& ld,
                     const double* v, const double& tau, double* w);
    void zhb2st_left(const zint& rows, const zint& cols, zcomplex* b, zcomplex* d, const zint& ld,
                     const zcomplex* v, const zcomplex& tau, zcomplex* w);
    void dsb2st_right_with(std::uint32_t extensions, const zint& rows, const zint& cols, double* b,
                           const zint& ldb, const double* v, const double& tau, double* w);
    void zhb2st_right_with(std::uint32_t extensions, const zint& rows, const zint& cols, zcomplex* b,
                           const zint& ldb, const zcomplex* v, const zcomplex& tau, zcomplex* w);
    void dsb2st_left_with(std::uint32_t extensions, const zint& rows, const zint& cols, double* b, double* d,
                          const zint& ld, const double* v, const double& tau, double* w);
    void zhb2st_left_with(std::uint32_t extensions, const zint& rows, const zint& cols, zcomplex* b,
                          zcomplex* d, const zint& ld, const zcomplex* v, const zcomplex& tau, zcomplex* w);)

namespace zor {
ZOR_INLINE_BEGIN

// Where packed column r of a set starts, relative to column 0.
constexpr zint packed_column_offset(zint r, zint ld, zint growth) {
    return r * ld + growth * (r * (r - 1) / 2);
}

// Where column j of a packed triangle of order n starts: an upper column holds rows 0..j, a lower
// one rows j..n-1.
constexpr zint packed_start(bool upper, zint n, zint j) {
    return upper ? j * (j + 1) / 2 : j * n - j * (j - 1) / 2;
}

// Column j of a packed triangle.
template <class T>
constexpr T* column_of(T* ap, bool upper, zint n, zint j) {
    return ap + packed_start(upper, n, j);
}

ZOR_INLINE_END
}  // namespace zor
