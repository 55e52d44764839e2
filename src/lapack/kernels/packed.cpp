// The packed-storage kernels shared by dpptrf's path without a work block, dpptrs, dpptri, dtptrs and
// dtptri (and their complex forms), five variants of one code. Each walks the triangle column by
// column, so that a column is read once and stays in cache while it is applied to every vector.

#include "blas/kernel.hpp"
#include "blas/vector.hpp"
#include "lapack/kernels/kernels.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

inline void clear_imaginary(double&) {}
inline void clear_imaginary(zcomplex& x) {
    x.im = 0.0;
}

// The triangle's column j: upper columns hold rows 0..j, lower ones rows j..n-1; at(i) is element
// (i, j) of the matrix.
template <class T>
struct PackedColumn {
    const T* first;  // element (start, j)
    zint start;
    const T& at(zint i) const { return first[i - start]; }
};

template <class T>
PackedColumn<T> packed_column(const T* ap, bool upper, zint n, zint j) {
    return {ap + packed_start(upper, n, j), upper ? 0 : j};
}

template <class T>
void tpsm(char uplo, char trans, char diag, zint n, zint nrhs, const T* ap, T* b, zint ldb, zint growth) {
    if (n <= 0 || nrhs <= 0) return;
    const bool upper = lsame(uplo, 'U'), plain = lsame(trans, 'N'), unit = lsame(diag, 'U');
    const bool conj = lsame(trans, 'C');
    const auto x = [&](zint r) { return b + packed_column_offset(r, ldb, growth); };
    // Column-wise for the plain forms (each solved element leaves the others), dot products for the
    // transposed ones; forward for lower-plain and upper-transposed, backward otherwise.
    const bool forward = upper != plain;
    for (zint s = 0; s < n; ++s) {
        const zint j = forward ? s : n - 1 - s;
        const PackedColumn<T> c = packed_column(ap, upper, n, j);
        const zint lo = upper ? 0 : j + 1, hi = upper ? j : n;  // the off-diagonal rows of column j
        for (zint r = 0; r < nrhs; ++r) {
            T* v = x(r);
            if (plain) {
                if (!unit) v[j] = v[j] / c.at(j);
                const T t = v[j];
                for (zint i = lo; i < hi; ++i) v[i] = v[i] - (t * c.at(i));
            } else {
                T t = v[j];
                for (zint i = lo; i < hi; ++i) t = t - (conj_if(conj, c.at(i)) * v[i]);
                v[j] = unit ? t : t / conj_if(conj, c.at(j));
            }
        }
    }
}

template <class T>
void tpmv(char uplo, char trans, char diag, zint n, const T* ap, T* x, zint incx) {
    if (n <= 0) return;
    const bool upper = lsame(uplo, 'U'), plain = lsame(trans, 'N'), unit = lsame(diag, 'U');
    const bool conj = lsame(trans, 'C');
    const auto v = [&](zint i) -> T& { return x[i * incx]; };
    // Each step must read the elements it needs before they change: upper-plain and
    // lower-transposed run forward, the others backward.
    const bool forward = upper == plain;
    for (zint s = 0; s < n; ++s) {
        const zint j = forward ? s : n - 1 - s;
        const PackedColumn<T> c = packed_column(ap, upper, n, j);
        const zint lo = upper ? 0 : j + 1, hi = upper ? j : n;
        if (plain) {
            const T t = v(j);
            for (zint i = lo; i < hi; ++i) v(i) = v(i) + (t * c.at(i));
            if (!unit) v(j) = t * c.at(j);
        } else {
            T t = unit ? v(j) : conj_if(conj, c.at(j)) * v(j);
            for (zint i = lo; i < hi; ++i) t = t + (conj_if(conj, c.at(i)) * v(i));
            v(j) = t;
        }
    }
}

template <class T>
void sprk(char uplo, zint n, zint k, double alpha, const T* x, zint ldx, zint growth, T* ap) {
    if (n <= 0 || k <= 0 || alpha == 0.0) return;
    const bool upper = lsame(uplo, 'U');
    for (zint j = 0; j < n; ++j) {
        T* column = ap + packed_start(upper, n, j);
        const zint lo = upper ? 0 : j, hi = upper ? j + 1 : n;
        for (zint r = 0; r < k; ++r) {
            const T* v = x + packed_column_offset(r, ldx, growth);
            const T f = conj_if(true, v[j]) * alpha;
            if (is_zero(f)) continue;
            for (zint i = lo; i < hi; ++i) column[i - lo] = column[i - lo] + (v[i] * f);
        }
        clear_imaginary(column[j - lo]);
    }
}

}  // namespace

void dtpsm(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& nrhs,
           const double* ap, double* b, const zint& ldb, const zint& growth) {
    tpsm(uplo, trans, diag, n, nrhs, ap, b, ldb, growth);
}

void ztpsm(const char& uplo, const char& trans, const char& diag, const zint& n, const zint& nrhs,
           const zcomplex* ap, zcomplex* b, const zint& ldb, const zint& growth) {
    tpsm(uplo, trans, diag, n, nrhs, ap, b, ldb, growth);
}

void dtpmv(const char& uplo, const char& trans, const char& diag, const zint& n, const double* ap, double* x,
           const zint& incx) {
    tpmv(uplo, trans, diag, n, ap, x, incx);
}

void ztpmv(const char& uplo, const char& trans, const char& diag, const zint& n, const zcomplex* ap,
           zcomplex* x, const zint& incx) {
    tpmv(uplo, trans, diag, n, ap, x, incx);
}

void dsprk(const char& uplo, const zint& n, const zint& k, const double& alpha, const double* x,
           const zint& ldx, const zint& growth, double* ap) {
    sprk(uplo, n, k, alpha, x, ldx, growth, ap);
}

void zhprk(const char& uplo, const zint& n, const zint& k, const double& alpha, const zcomplex* x,
           const zint& ldx, const zint& growth, zcomplex* ap) {
    sprk(uplo, n, k, alpha, x, ldx, growth, ap);
}

}  // namespace zor::ZOR_LEVEL_NS
