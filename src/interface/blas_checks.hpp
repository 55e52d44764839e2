#pragma once
// The reference argument checks of the level-2 and level-3 BLAS routines, run by the
// Fortran-style layer on the widened arguments before it calls the internal routine. Each
// returns 0 when the arguments are valid; otherwise the reference number of the first invalid
// argument, which it has already reported through xerbla with the routine's name blank-padded to
// six characters. Option letters are compared with lsame.

#include "service/types.hpp"

namespace zor::fortran {

// Level 3.
zint check_dgemm(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                 const zint& lda, const zint& ldb, const zint& ldc);
zint check_zgemm(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                 const zint& lda, const zint& ldb, const zint& ldc);
zint check_dsymm(const char& side, const char& uplo, const zint& m, const zint& n, const zint& lda,
                 const zint& ldb, const zint& ldc);
zint check_zsymm(const char& side, const char& uplo, const zint& m, const zint& n, const zint& lda,
                 const zint& ldb, const zint& ldc);
zint check_zhemm(const char& side, const char& uplo, const zint& m, const zint& n, const zint& lda,
                 const zint& ldb, const zint& ldc);
zint check_dsyrk(const char& uplo, const char& trans, const zint& n, const zint& k, const zint& lda,
                 const zint& ldc);
zint check_zsyrk(const char& uplo, const char& trans, const zint& n, const zint& k, const zint& lda,
                 const zint& ldc);
zint check_zherk(const char& uplo, const char& trans, const zint& n, const zint& k, const zint& lda,
                 const zint& ldc);
zint check_dsyr2k(const char& uplo, const char& trans, const zint& n, const zint& k, const zint& lda,
                  const zint& ldb, const zint& ldc);
zint check_zsyr2k(const char& uplo, const char& trans, const zint& n, const zint& k, const zint& lda,
                  const zint& ldb, const zint& ldc);
zint check_zher2k(const char& uplo, const char& trans, const zint& n, const zint& k, const zint& lda,
                  const zint& ldb, const zint& ldc);
zint check_dtrmm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
                 const zint& n, const zint& lda, const zint& ldb);
zint check_ztrmm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
                 const zint& n, const zint& lda, const zint& ldb);
zint check_dtrsm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
                 const zint& n, const zint& lda, const zint& ldb);
zint check_ztrsm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
                 const zint& n, const zint& lda, const zint& ldb);

// Level 2.
zint check_dgemv(const char& trans, const zint& m, const zint& n, const zint& lda, const zint& incx,
                 const zint& incy);
zint check_zgemv(const char& trans, const zint& m, const zint& n, const zint& lda, const zint& incx,
                 const zint& incy);
zint check_dger(const zint& m, const zint& n, const zint& incx, const zint& incy, const zint& lda);
zint check_zgeru(const zint& m, const zint& n, const zint& incx, const zint& incy, const zint& lda);
zint check_zgerc(const zint& m, const zint& n, const zint& incx, const zint& incy, const zint& lda);
zint check_dsymv(const char& uplo, const zint& n, const zint& lda, const zint& incx, const zint& incy);
zint check_zhemv(const char& uplo, const zint& n, const zint& lda, const zint& incx, const zint& incy);
zint check_dsyr(const char& uplo, const zint& n, const zint& incx, const zint& lda);
zint check_zher(const char& uplo, const zint& n, const zint& incx, const zint& lda);
zint check_dsyr2(const char& uplo, const zint& n, const zint& incx, const zint& incy, const zint& lda);
zint check_zher2(const char& uplo, const zint& n, const zint& incx, const zint& incy, const zint& lda);
zint check_dtrmv(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& lda,
                 const zint& incx);
zint check_ztrmv(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& lda,
                 const zint& incx);
zint check_dtrsv(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& lda,
                 const zint& incx);
zint check_ztrsv(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& lda,
                 const zint& incx);

}  // namespace zor::fortran
