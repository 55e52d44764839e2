// The checks are written once per argument shape; the routines of one shape differ only in their
// name and in the transpose letters they accept.

#include "interface/blas_checks.hpp"

#include <initializer_list>

#include "service/lsame.hpp"
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

// One reference check: the argument number and whether that argument is bad.
struct Check {
    zint number;
    bool bad;
};

// The number of the first bad argument, reported; 0 when all are good.
zint first_bad(const char* name, std::initializer_list<Check> checks) {
    for (const Check& check : checks) {
        if (check.bad) {
            zint info = check.number;
            xerbla(name, &info, 6);
            return info;
        }
    }
    return 0;
}

zint gemm(const char* name, const char& transa, const char& transb, zint m, zint n, zint k, zint lda,
          zint ldb, zint ldc) {
    const zint rows_a = lsame(transa, 'N') ? m : k;
    const zint rows_b = lsame(transb, 'N') ? k : n;
    return first_bad(name, {{1, !valid_transpose(transa, Transposes::TransposeOrConjugate)},
                            {2, !valid_transpose(transb, Transposes::TransposeOrConjugate)},
                            {3, m < 0},
                            {4, n < 0},
                            {5, k < 0},
                            {8, lda < at_least_one(rows_a)},
                            {10, ldb < at_least_one(rows_b)},
                            {13, ldc < at_least_one(m)}});
}

zint symm(const char* name, const char& side, const char& uplo, zint m, zint n, zint lda, zint ldb,
          zint ldc) {
    const zint rows_a = lsame(side, 'L') ? m : n;
    return first_bad(name, {{1, !valid_side(side)},
                            {2, !valid_uplo(uplo)},
                            {3, m < 0},
                            {4, n < 0},
                            {7, lda < at_least_one(rows_a)},
                            {9, ldb < at_least_one(m)},
                            {12, ldc < at_least_one(m)}});
}

// SYRK and HERK (no B: ldb null) and SYR2K and HER2K.
zint rank_k(const char* name, Transposes accepted, const char& uplo, const char& trans, zint n, zint k,
            zint lda, const zint* ldb, zint ldc) {
    const zint rows_a = lsame(trans, 'N') ? n : k;
    return first_bad(name, {{1, !valid_uplo(uplo)},
                            {2, !valid_transpose(trans, accepted)},
                            {3, n < 0},
                            {4, k < 0},
                            {7, lda < at_least_one(rows_a)},
                            {9, ldb != nullptr && *ldb < at_least_one(rows_a)},
                            {ldb != nullptr ? 12 : 10, ldc < at_least_one(n)}});
}

zint trmm(const char* name, const char& side, const char& uplo, const char& transa, const char& diag, zint m,
          zint n, zint lda, zint ldb) {
    const zint rows_a = lsame(side, 'L') ? m : n;
    return first_bad(name, {{1, !valid_side(side)},
                            {2, !valid_uplo(uplo)},
                            {3, !valid_transpose(transa, Transposes::TransposeOrConjugate)},
                            {4, !valid_diag(diag)},
                            {5, m < 0},
                            {6, n < 0},
                            {9, lda < at_least_one(rows_a)},
                            {11, ldb < at_least_one(m)}});
}

zint gemv(const char* name, const char& trans, zint m, zint n, zint lda, zint incx, zint incy) {
    return first_bad(name, {{1, !valid_transpose(trans, Transposes::TransposeOrConjugate)},
                            {2, m < 0},
                            {3, n < 0},
                            {6, lda < at_least_one(m)},
                            {8, incx == 0},
                            {11, incy == 0}});
}

zint ger(const char* name, zint m, zint n, zint incx, zint incy, zint lda) {
    return first_bad(name,
                     {{1, m < 0}, {2, n < 0}, {5, incx == 0}, {7, incy == 0}, {9, lda < at_least_one(m)}});
}

zint symv(const char* name, const char& uplo, zint n, zint lda, zint incx, zint incy) {
    return first_bad(
        name,
        {{1, !valid_uplo(uplo)}, {2, n < 0}, {5, lda < at_least_one(n)}, {7, incx == 0}, {10, incy == 0}});
}

zint syr(const char* name, const char& uplo, zint n, zint incx, zint lda) {
    return first_bad(name, {{1, !valid_uplo(uplo)}, {2, n < 0}, {5, incx == 0}, {7, lda < at_least_one(n)}});
}

zint syr2(const char* name, const char& uplo, zint n, zint incx, zint incy, zint lda) {
    return first_bad(
        name,
        {{1, !valid_uplo(uplo)}, {2, n < 0}, {5, incx == 0}, {7, incy == 0}, {9, lda < at_least_one(n)}});
}

zint trmv(const char* name, const char& uplo, const char& trans, const char& diag, zint n, zint lda,
          zint incx) {
    return first_bad(name, {{1, !valid_uplo(uplo)},
                            {2, !valid_transpose(trans, Transposes::TransposeOrConjugate)},
                            {3, !valid_diag(diag)},
                            {4, n < 0},
                            {6, lda < at_least_one(n)},
                            {8, incx == 0}});
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
