// dgtts2: the solve with the tridiagonal LU factors of dgttrf, five variants of one behaviour: every
// right-hand side is computed by the same operations in the same order at every level.
//
// Each column is a chain of dependent steps, so columns are taken four at a time (two at the levels
// below Avx) and their chains interleaved: the processor overlaps them.

#include "blas/kernel.hpp"
#include "lapack/kernels/kernels.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

constexpr zint kGroup = kLevel == CpuLevel::Avx ? 4 : 2;

// G columns of B at b (leading dimension ldb).
template <zint G>
void solve_plain(zint n, const double* dl, const double* d, const double* du, const double* du2,
                 const zint* ipiv, double* b, zint ldb) {
    // L: the elimination's interchanges and multipliers, in its order.
    for (zint i = 0; i + 1 < n; ++i) {
        const bool swapped = ipiv[i] != i + 1;
        for (zint g = 0; g < G; ++g) {
            double* x = b + g * ldb;
            if (!swapped) {
                x[i + 1] -= dl[i] * x[i];
            } else {
                const double t = x[i] - dl[i] * x[i + 1];
                x[i] = x[i + 1];
                x[i + 1] = t;
            }
        }
    }
    // U: diagonal d, superdiagonals du and du2.
    for (zint g = 0; g < G; ++g) {
        double* x = b + g * ldb;
        x[n - 1] /= d[n - 1];
        if (n > 1) x[n - 2] = (x[n - 2] - du[n - 2] * x[n - 1]) / d[n - 2];
    }
    for (zint i = n - 3; i >= 0; --i) {
        for (zint g = 0; g < G; ++g) {
            double* x = b + g * ldb;
            x[i] = (x[i] - du[i] * x[i + 1] - du2[i] * x[i + 2]) / d[i];
        }
    }
}

template <zint G>
void solve_transposed(zint n, const double* dl, const double* d, const double* du, const double* du2,
                      const zint* ipiv, double* b, zint ldb) {
    for (zint g = 0; g < G; ++g) {
        double* x = b + g * ldb;
        x[0] /= d[0];
        if (n > 1) x[1] = (x[1] - du[0] * x[0]) / d[1];
    }
    for (zint i = 2; i < n; ++i) {
        for (zint g = 0; g < G; ++g) {
            double* x = b + g * ldb;
            x[i] = (x[i] - du[i - 1] * x[i - 1] - du2[i - 2] * x[i - 2]) / d[i];
        }
    }
    for (zint i = n - 2; i >= 0; --i) {
        const bool swapped = ipiv[i] != i + 1;
        for (zint g = 0; g < G; ++g) {
            double* x = b + g * ldb;
            if (!swapped) {
                x[i] -= dl[i] * x[i + 1];
            } else {
                const double t = x[i + 1];
                x[i + 1] = x[i] - dl[i] * t;
                x[i] = t;
            }
        }
    }
}

}  // namespace

void dgtts2(const zint& itrans, const zint& n, const zint& nrhs, const double* dl, const double* d,
            const double* du, const double* du2, const zint* ipiv, double* b, const zint& ldb) {
    if (n <= 0 || nrhs <= 0) return;
    const bool plain = itrans == 0;
    zint j = 0;
    for (; j + kGroup <= nrhs; j += kGroup) {
        if (plain) {
            solve_plain<kGroup>(n, dl, d, du, du2, ipiv, b + j * ldb, ldb);
        } else {
            solve_transposed<kGroup>(n, dl, d, du, du2, ipiv, b + j * ldb, ldb);
        }
    }
    for (; j < nrhs; ++j) {
        if (plain) {
            solve_plain<1>(n, dl, d, du, du2, ipiv, b + j * ldb, ldb);
        } else {
            solve_transposed<1>(n, dl, d, du, du2, ipiv, b + j * ldb, ldb);
        }
    }
}

}  // namespace zor::ZOR_LEVEL_NS
