// The checks are written once per argument shape; the routines of one shape differ only in their
// name and in the transpose letters they accept.

#include "interface/blas_checks.hpp"

#include <initializer_list>

#include "service/checks.hpp"
#include "service/letters.hpp"
#include "service/messages.hpp"

namespace zor::fortran {

namespace {

// The transpose options a routine accepts besides "N".
enum class Transposes { TransposeOrConjugate, ConjugateOnly, TransposeOnly };

bool valid_transpose(const char& trans, Transposes accepted) {
    return lsame(trans, 'N') || (accepted != Transposes::ConjugateOnly && lsame(trans, 'T')) ||
           (accepted != Transposes::TransposeOnly && lsame(trans, 'C'));
}

bool valid_uplo(const char& uplo) {
    return lsame(uplo, 'U') || lsame(uplo, 'L');
}

bool valid_side(const char& side) {
    return lsame(side, 'L') || lsame(side, 'R');
}

bool valid_diag(const char& diag) {
    return lsame(diag, 'U') || lsame(diag, 'N');
}

zint at_least_one(zint value) {
    return value > 1 ? value : 1;
}

// The number of the first bad argument, reported through xerbla with the six-character name; 0
// when all are good.
zint first_bad(const char* name, std::initializer_list<ArgumentCheck> checks) {
    return first_failed_check(checks, [name](int parameter) {
        const std::int32_t info = parameter;
        xerbla(name, &info, 6);
    });
}

zint gemm(const char* name, const char& transa, const char& transb, zint m, zint n, zint k, zint lda,
          zint ldb, zint ldc) {
    const zint rows_a = lsame(transa, 'N') ? m : k;
    const zint rows_b = lsame(transb, 'N') ? k : n;
    return first_bad(name, {{!valid_transpose(transa, Transposes::TransposeOrConjugate), 1},
                            {!valid_transpose(transb, Transposes::TransposeOrConjugate), 2},
                            {m < 0, 3},
                            {n < 0, 4},
                            {k < 0, 5},
                            {lda < at_least_one(rows_a), 8},
                            {ldb < at_least_one(rows_b), 10},
                            {ldc < at_least_one(m), 13}});
}

zint symm(const char* name, const char& side, const char& uplo, zint m, zint n, zint lda, zint ldb,
          zint ldc) {
    const zint rows_a = lsame(side, 'L') ? m : n;
    return first_bad(name, {{!valid_side(side), 1},
                            {!valid_uplo(uplo), 2},
                            {m < 0, 3},
                            {n < 0, 4},
                            {lda < at_least_one(rows_a), 7},
                            {ldb < at_least_one(m), 9},
                            {ldc < at_least_one(m), 12}});
}

// SYRK and HERK (no B: ldb null) and SYR2K and HER2K.
zint rank_k(const char* name, Transposes accepted, const char& uplo, const char& trans, zint n, zint k,
            zint lda, const zint* ldb, zint ldc) {
    const zint rows_a = lsame(trans, 'N') ? n : k;
    return first_bad(name, {{!valid_uplo(uplo), 1},
                            {!valid_transpose(trans, accepted), 2},
                            {n < 0, 3},
                            {k < 0, 4},
                            {lda < at_least_one(rows_a), 7},
                            {ldb != nullptr && *ldb < at_least_one(rows_a), 9},
                            {ldc < at_least_one(n), ldb != nullptr ? 12 : 10}});
}

zint trmm(const char* name, const char& side, const char& uplo, const char& transa, const char& diag, zint m,
          zint n, zint lda, zint ldb) {
    const zint rows_a = lsame(side, 'L') ? m : n;
    return first_bad(name, {{!valid_side(side), 1},
                            {!valid_uplo(uplo), 2},
                            {!valid_transpose(transa, Transposes::TransposeOrConjugate), 3},
                            {!valid_diag(diag), 4},
                            {m < 0, 5},
                            {n < 0, 6},
                            {lda < at_least_one(rows_a), 9},
                            {ldb < at_least_one(m), 11}});
}

zint gemv(const char* name, const char& trans, zint m, zint n, zint lda, zint incx, zint incy) {
    return first_bad(name, {{!valid_transpose(trans, Transposes::TransposeOrConjugate), 1},
                            {m < 0, 2},
                            {n < 0, 3},
                            {lda < at_least_one(m), 6},
                            {incx == 0, 8},
                            {incy == 0, 11}});
}

zint ger(const char* name, zint m, zint n, zint incx, zint incy, zint lda) {
    return first_bad(name,
                     {{m < 0, 1}, {n < 0, 2}, {incx == 0, 5}, {incy == 0, 7}, {lda < at_least_one(m), 9}});
}

zint symv(const char* name, const char& uplo, zint n, zint lda, zint incx, zint incy) {
    return first_bad(
        name,
        {{!valid_uplo(uplo), 1}, {n < 0, 2}, {lda < at_least_one(n), 5}, {incx == 0, 7}, {incy == 0, 10}});
}

zint syr(const char* name, const char& uplo, zint n, zint incx, zint lda) {
    return first_bad(name, {{!valid_uplo(uplo), 1}, {n < 0, 2}, {incx == 0, 5}, {lda < at_least_one(n), 7}});
}

zint syr2(const char* name, const char& uplo, zint n, zint incx, zint incy, zint lda) {
    return first_bad(
        name,
        {{!valid_uplo(uplo), 1}, {n < 0, 2}, {incx == 0, 5}, {incy == 0, 7}, {lda < at_least_one(n), 9}});
}

zint trmv(const char* name, const char& uplo, const char& trans, const char& diag, zint n, zint lda,
          zint incx) {
    return first_bad(name, {{!valid_uplo(uplo), 1},
                            {!valid_transpose(trans, Transposes::TransposeOrConjugate), 2},
                            {!valid_diag(diag), 3},
                            {n < 0, 4},
                            {lda < at_least_one(n), 6},
                            {incx == 0, 8}});
}

}  // namespace

zint check_dgemm(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                 const zint& lda, const zint& ldb, const zint& ldc) {
    return gemm("DGEMM ", transa, transb, m, n, k, lda, ldb, ldc);
}
zint check_zgemm(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                 const zint& lda, const zint& ldb, const zint& ldc) {
    return gemm("ZGEMM ", transa, transb, m, n, k, lda, ldb, ldc);
}
zint check_dsymm(const char& side, const char& uplo, const zint& m, const zint& n, const zint& lda,
                 const zint& ldb, const zint& ldc) {
    return symm("DSYMM ", side, uplo, m, n, lda, ldb, ldc);
}
zint check_zsymm(const char& side, const char& uplo, const zint& m, const zint& n, const zint& lda,
                 const zint& ldb, const zint& ldc) {
    return symm("ZSYMM ", side, uplo, m, n, lda, ldb, ldc);
}
zint check_zhemm(const char& side, const char& uplo, const zint& m, const zint& n, const zint& lda,
                 const zint& ldb, const zint& ldc) {
    return symm("ZHEMM ", side, uplo, m, n, lda, ldb, ldc);
}
zint check_dsyrk(const char& uplo, const char& trans, const zint& n, const zint& k, const zint& lda,
                 const zint& ldc) {
    return rank_k("DSYRK ", Transposes::TransposeOrConjugate, uplo, trans, n, k, lda, nullptr, ldc);
}
zint check_zsyrk(const char& uplo, const char& trans, const zint& n, const zint& k, const zint& lda,
                 const zint& ldc) {
    return rank_k("ZSYRK ", Transposes::TransposeOnly, uplo, trans, n, k, lda, nullptr, ldc);
}
zint check_zherk(const char& uplo, const char& trans, const zint& n, const zint& k, const zint& lda,
                 const zint& ldc) {
    return rank_k("ZHERK ", Transposes::ConjugateOnly, uplo, trans, n, k, lda, nullptr, ldc);
}
zint check_dsyr2k(const char& uplo, const char& trans, const zint& n, const zint& k, const zint& lda,
                  const zint& ldb, const zint& ldc) {
    return rank_k("DSYR2K", Transposes::TransposeOrConjugate, uplo, trans, n, k, lda, &ldb, ldc);
}
zint check_zsyr2k(const char& uplo, const char& trans, const zint& n, const zint& k, const zint& lda,
                  const zint& ldb, const zint& ldc) {
    return rank_k("ZSYR2K", Transposes::TransposeOnly, uplo, trans, n, k, lda, &ldb, ldc);
}
zint check_zher2k(const char& uplo, const char& trans, const zint& n, const zint& k, const zint& lda,
                  const zint& ldb, const zint& ldc) {
    return rank_k("ZHER2K", Transposes::ConjugateOnly, uplo, trans, n, k, lda, &ldb, ldc);
}
zint check_dtrmm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
                 const zint& n, const zint& lda, const zint& ldb) {
    return trmm("DTRMM ", side, uplo, transa, diag, m, n, lda, ldb);
}
zint check_ztrmm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
                 const zint& n, const zint& lda, const zint& ldb) {
    return trmm("ZTRMM ", side, uplo, transa, diag, m, n, lda, ldb);
}
zint check_dtrsm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
                 const zint& n, const zint& lda, const zint& ldb) {
    return trmm("DTRSM ", side, uplo, transa, diag, m, n, lda, ldb);
}
zint check_ztrsm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
                 const zint& n, const zint& lda, const zint& ldb) {
    return trmm("ZTRSM ", side, uplo, transa, diag, m, n, lda, ldb);
}

zint check_dgemv(const char& trans, const zint& m, const zint& n, const zint& lda, const zint& incx,
                 const zint& incy) {
    return gemv("DGEMV ", trans, m, n, lda, incx, incy);
}
zint check_zgemv(const char& trans, const zint& m, const zint& n, const zint& lda, const zint& incx,
                 const zint& incy) {
    return gemv("ZGEMV ", trans, m, n, lda, incx, incy);
}
zint check_dger(const zint& m, const zint& n, const zint& incx, const zint& incy, const zint& lda) {
    return ger("DGER  ", m, n, incx, incy, lda);
}
zint check_zgeru(const zint& m, const zint& n, const zint& incx, const zint& incy, const zint& lda) {
    return ger("ZGERU ", m, n, incx, incy, lda);
}
zint check_zgerc(const zint& m, const zint& n, const zint& incx, const zint& incy, const zint& lda) {
    return ger("ZGERC ", m, n, incx, incy, lda);
}
zint check_dsymv(const char& uplo, const zint& n, const zint& lda, const zint& incx, const zint& incy) {
    return symv("DSYMV ", uplo, n, lda, incx, incy);
}
zint check_zhemv(const char& uplo, const zint& n, const zint& lda, const zint& incx, const zint& incy) {
    return symv("ZHEMV ", uplo, n, lda, incx, incy);
}
zint check_dsyr(const char& uplo, const zint& n, const zint& incx, const zint& lda) {
    return syr("DSYR  ", uplo, n, incx, lda);
}
zint check_zher(const char& uplo, const zint& n, const zint& incx, const zint& lda) {
    return syr("ZHER  ", uplo, n, incx, lda);
}
zint check_dsyr2(const char& uplo, const zint& n, const zint& incx, const zint& incy, const zint& lda) {
    return syr2("DSYR2 ", uplo, n, incx, incy, lda);
}
zint check_zher2(const char& uplo, const zint& n, const zint& incx, const zint& incy, const zint& lda) {
    return syr2("ZHER2 ", uplo, n, incx, incy, lda);
}
zint check_dtrmv(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& lda,
                 const zint& incx) {
    return trmv("DTRMV ", uplo, trans, diag, n, lda, incx);
}
zint check_ztrmv(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& lda,
                 const zint& incx) {
    return trmv("ZTRMV ", uplo, trans, diag, n, lda, incx);
}
zint check_dtrsv(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& lda,
                 const zint& incx) {
    return trmv("DTRSV ", uplo, trans, diag, n, lda, incx);
}
zint check_ztrsv(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& lda,
                 const zint& incx) {
    return trmv("ZTRSV ", uplo, trans, diag, n, lda, incx);
}

}  // namespace zor::fortran
