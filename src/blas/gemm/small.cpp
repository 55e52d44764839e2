// The unblocked GEMM paths and the scaling of C: what the engines run for problems below their
// blocking thresholds, after a failed allocation, and before any product is added.

#include "blas/gemm/avx_paths.hpp"
#include "blas/gemm/gemm.hpp"
#include "blas/gemm/ordered.hpp"
#include "blas/kernel.hpp"
#include "service/element.hpp"
#include "service/letters.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

enum class Op { None, Transpose, ConjugateTranspose };

Op real_op(char trans) {
    return lsame(trans, 'N') ? Op::None : Op::Transpose;
}

Op complex_op(char trans) {
    if (lsame(trans, 'N')) return Op::None;
    return lsame(trans, 'T') ? Op::Transpose : Op::ConjugateTranspose;
}

// Element (i, j) of op(X) for X stored with leading dimension ld.
zcomplex element(const zcomplex* x, zint ld, Op op, zint i, zint j) {
    if (op == Op::None) return x[i + j * ld];
    const zcomplex v = x[j + i * ld];
    return op == Op::Transpose ? v : conj(v);
}

}  // namespace

void scale_c(const zint& m, const zint& n, const double& beta, double* c, const zint& ldc) {
    for (zint j = 0; j < n; ++j) {
        double* column = c + j * ldc;
        if (beta == 0.0) {
            for (zint i = 0; i < m; ++i) column[i] = 0.0;
        } else {
            for (zint i = 0; i < m; ++i) column[i] *= beta;
        }
    }
}

void zscale_c(const zint& m, const zint& n, const zcomplex& beta, zcomplex* c, const zint& ldc) {
    const bool zero = is_zero(beta);
    for (zint j = 0; j < n; ++j) {
        zcomplex* column = c + j * ldc;
        if (zero) {
            for (zint i = 0; i < m; ++i) column[i] = {0.0, 0.0};
        } else {
            for (zint i = 0; i < m; ++i) column[i] = beta * column[i];
        }
    }
}

void dgemm_small(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                 const double& alpha, const double* a, const zint& lda, const double* b, const zint& ldb,
                 const double& beta, double* c, const zint& ldc) {
    const Op op_a = real_op(transa), op_b = real_op(transb);
    for (zint j = 0; j < n; ++j) {
        double* column = c + j * ldc;
        if (beta != 1.0) scale_c(m, 1, beta, column, ldc);
        if (k <= 0) continue;  // nothing is added, not even alpha times an empty sum
        if (op_a == Op::None) {
            // Column updates: unit stride down A and C.
            for (zint p = 0; p < k; ++p) {
                const double t = alpha * (op_b == Op::None ? b[p + j * ldb] : b[j + p * ldb]);
                const double* a_column = a + p * lda;
                for (zint i = 0; i < m; ++i) column[i] += t * a_column[i];
            }
        } else {
            for (zint i = 0; i < m; ++i) {
                const double* a_row = a + i * lda;
                double sum = 0.0;
                if (op_b == Op::None) {
                    for (zint p = 0; p < k; ++p) sum += a_row[p] * b[p + j * ldb];
                } else {
                    for (zint p = 0; p < k; ++p) sum += a_row[p] * b[j + p * ldb];
                }
                column[i] += alpha * sum;
            }
        }
    }
}

void zgemm_small(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                 const zcomplex& alpha, const zcomplex* a, const zint& lda, const zcomplex* b,
                 const zint& ldb, const zcomplex& beta, zcomplex* c, const zint& ldc) {
    const Op op_a = complex_op(transa), op_b = complex_op(transb);
    for (zint j = 0; j < n; ++j) {
        zcomplex* column = c + j * ldc;
        if (!is_one(beta)) zscale_c(m, 1, beta, column, ldc);
        if (k <= 0) continue;
        if (op_a == Op::None) {
            for (zint p = 0; p < k; ++p) {
                const zcomplex t = alpha * element(b, ldb, op_b, p, j);
                const zcomplex* a_column = a + p * lda;
                for (zint i = 0; i < m; ++i) column[i] += t * a_column[i];
            }
        } else {
            for (zint i = 0; i < m; ++i) {
                zcomplex sum{0.0, 0.0};
                for (zint p = 0; p < k; ++p) sum += element(a, lda, op_a, i, p) * element(b, ldb, op_b, p, j);
                column[i] += alpha * sum;
            }
        }
    }
}

#if ZOR_LEVEL == 4
void dgemm_small_unfused(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                         const double& alpha, const double* a, const zint& lda, const double* b,
                         const zint& ldb, const double& beta, double* c, const zint& ldc) {
    ordered_small<false>(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}
#endif

}  // namespace zor::ZOR_LEVEL_NS
