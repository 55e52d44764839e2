// dtptri / ztptri: the inverse of a packed triangular matrix; dtptrs / ztptrs: solves with one.

#include "lapack/dispatch.hpp"
#include "lapack/element.hpp"
#include "lapack/triangular/triangular.hpp"
#include "lapack/tuning/tuning.hpp"
#include "service/lsame.hpp"

namespace zor {

namespace {

// The index (one-based) of the first zero on a non-unit diagonal, or 0.
template <class T>
zint zero_on_diagonal(bool upper, char diag, zint n, const T* ap) {
    if (lsame(diag, 'U')) return 0;
    for (zint j = 0; j < n; ++j) {
        if (Element<T>::is_zero(ap[packed_start(upper, n, j) + (upper ? j : 0)])) return j + 1;
    }
    return 0;
}

}  // namespace

template <class T>
void tptri(char uplo, char diag, zint n, T* ap, zint& info) {
    using E = Element<T>;
    const bool upper = lsame(uplo, 'U');
    info = check_arguments(
        E::name("DTPTRI", "ZTPTRI"),
        {{!upper && !lsame(uplo, 'L'), 1}, {!lsame(diag, 'N') && !lsame(diag, 'U'), 2}, {n < 0, 3}});
    if (info != 0) return;
    info = zero_on_diagonal(upper, diag, n, ap);
    if (info != 0) return;
    const bool unit = lsame(diag, 'U');
    // Column j of the inverse is -inv(A)(other part) A(other part, j) / A(j, j), from the inverted
    // leading (upper) or trailing (lower) triangle, which is a packed triangle of its own.
    const auto invert_diagonal = [&](T& ajj) {
        if (unit) return E::from_real(-1.0);
        ajj = E::recip(ajj);
        return E::scale(ajj, -1.0);
    };
    if (upper) {
        for (zint j = 0; j < n; ++j) {
            T* column = ap + packed_start(true, n, j);
            const T scale = invert_diagonal(column[j]);
            tpmv('U', 'N', diag, j, ap, column);
            E::scal(j, scale, column, 1);
        }
    } else {
        for (zint j = n - 1; j >= 0; --j) {
            T* column = ap + packed_start(false, n, j);
            const T scale = invert_diagonal(column[0]);
            if (j + 1 < n) {
                tpmv('L', 'N', diag, n - j - 1, ap + packed_start(false, n, j + 1), column + 1);
                E::scal(n - j - 1, scale, column + 1, 1);
            }
        }
    }
}

template void tptri(char, char, zint, double*, zint&);
template void tptri(char, char, zint, zcomplex*, zint&);

namespace {

template <class T>
void tptrs(char uplo, char trans, char diag, zint n, zint nrhs, const T* ap, T* b, zint ldb, zint& info) {
    using E = Element<T>;
    const char* name = E::name("DTPTRS", "ZTPTRS");
    const bool upper = lsame(uplo, 'U');
    info = check_arguments(name, {{!upper && !lsame(uplo, 'L'), 1},
                                  {!lsame(trans, 'N') && !lsame(trans, 'T') && !lsame(trans, 'C'), 2},
                                  {!lsame(diag, 'N') && !lsame(diag, 'U'), 3},
                                  {n < 0, 4},
                                  {nrhs < 0, 5},
                                  {ldb < max_of(1, n), 8}});
    if (info != 0 || n == 0) return;
    info = zero_on_diagonal(upper, diag, n, ap);
    if (info != 0) return;
    // Right-hand sides in blocks: the kernel reads each column of the triangle once a block.
    const char options[1] = {trans};
    const zint nb = max_of(1, ilaenv(1, name, options, n, nrhs, -1, -1));
    for (zint j = 0; j < nrhs; j += nb)
        tpsm(uplo, trans, diag, n, min_of(nb, nrhs - j), ap, b + j * ldb, ldb, 0);
}

}  // namespace

void dtptri(const char& uplo, const char& diag, const zint& n, double* ap, zint& info) {
    tptri(uplo, diag, n, ap, info);
}

void ztptri(const char& uplo, const char& diag, const zint& n, zcomplex* ap, zint& info) {
    tptri(uplo, diag, n, ap, info);
}

void dtptrs(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& nrhs,
            const double* ap, double* b, const zint& ldb, zint& info) {
    tptrs(uplo, trans, diag, n, nrhs, ap, b, ldb, info);
}

void ztptrs(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& nrhs,
            const zcomplex* ap, zcomplex* b, const zint& ldb, zint& info) {
    tptrs(uplo, trans, diag, n, nrhs, ap, b, ldb, info);
}

}  // namespace zor
