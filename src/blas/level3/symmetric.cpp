// symm and hemm, five variants, real and complex from one template.
//
// A symmetric (Hermitian) operand is expanded from its stored triangle, a block of columns (side
// "L") or rows (side "R") at a time, into a full work block, and that block goes to the GEMM engine
// as an ordinary operand: the whole product runs in the engine, in rank updates of the depth the
// engine blocks by itself.

#include "blas/kernel.hpp"
#include "blas/level3/level3.hpp"
#include "blas/level3/level3_common.hpp"
#include "service/handlers.hpp"
#include "service/memory.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// Columns (rows) of the symmetric operand expanded per GEMM call.
constexpr zint kExpandedDepth = 256;

// Element (i, j) of the full matrix whose `upper` or lower triangle is stored; a Hermitian matrix has
// a real diagonal whatever the imaginary parts stored there.
template <class T>
struct Symmetric {
    const T* a;
    zint lda;
    bool upper;
    bool hermitian;

    T operator()(zint i, zint j) const {
        if (i == j) return hermitian ? real_part(a[i + i * lda]) : a[i + i * lda];
        if (upper == (i < j)) return a[i + j * lda];
        return hermitian ? conj(a[j + i * lda]) : a[j + i * lda];
    }
};

// C := alpha S B + beta C (side "L") or alpha B S + beta C, one element at a time: the path when no
// work block can be had.
template <class T>
void symm_unblocked(const Symmetric<T>& s, bool left, zint m, zint n, const T& alpha, const T* b, zint ldb,
                    const T& beta, T* c, zint ldc) {
    const zint depth = left ? m : n;
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < m; ++i) {
            T sum = zero<T>();
            for (zint p = 0; p < depth; ++p) {
                sum = sum + (left ? s(i, p) * b[p + j * ldb] : b[i + p * ldb] * s(p, j));
            }
            T& cij = c[i + j * ldc];
            cij = is_zero(beta) ? alpha * sum : (beta * cij) + (alpha * sum);
        }
    }
}

template <class T>
void symm(bool hermitian, const char* routine, char side, char uplo, zint m, zint n, const T& alpha,
          const T* a, zint lda, const T* b, zint ldb, const T& beta, T* c, zint ldc) {
    if (m <= 0 || n <= 0 || (is_zero(alpha) && is_one(beta))) return;
    if (is_zero(alpha)) {
        Engine<T>::scale(m, n, beta, c, ldc);
        return;
    }
    const Symmetric<T> s{a, lda, lsame(uplo, 'U'), hermitian};
    const bool left = lsame(side, 'L');
    const zint order = left ? m : n, across = left ? m : n;
    const zint block = order < kExpandedDepth ? order : kExpandedDepth;
    const WorkArea<T> work(static_cast<std::size_t>(across * block));
    if (check_allocation(work.get(), routine) != 0) {
        symm_unblocked(s, left, m, n, alpha, b, ldb, beta, c, ldc);
        return;
    }
    T* expanded = work.get();
    const T one = zor::one<T>();
    for (zint p0 = 0; p0 < order; p0 += block) {
        const zint count = order - p0 < block ? order - p0 : block;
        const T& scale = p0 == 0 ? beta : one;
        if (left) {
            // Columns p0 .. p0 + count of S, all m rows.
            for (zint q = 0; q < count; ++q) {
                for (zint i = 0; i < m; ++i) expanded[i + q * m] = s(i, p0 + q);
            }
            Engine<T>::gemm('N', 'N', m, n, count, alpha, expanded, m, b + p0, ldb, scale, c, ldc);
        } else {
            // Rows p0 .. p0 + count of S, all n columns.
            for (zint j = 0; j < n; ++j) {
                for (zint q = 0; q < count; ++q) expanded[q + j * count] = s(p0 + q, j);
            }
            Engine<T>::gemm('N', 'N', m, n, count, alpha, b + p0 * ldb, ldb, expanded, count, scale, c, ldc);
        }
    }
}

}  // namespace

void dsymm(const char& side, const char& uplo, const zint& m, const zint& n, const double& alpha,
           const double* a, const zint& lda, const double* b, const zint& ldb, const double& beta, double* c,
           const zint& ldc) {
    symm<double>(false, "xdsymm", side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
}

void zsymm(const char& side, const char& uplo, const zint& m, const zint& n, const zcomplex& alpha,
           const zcomplex* a, const zint& lda, const zcomplex* b, const zint& ldb, const zcomplex& beta,
           zcomplex* c, const zint& ldc) {
    symm<zcomplex>(false, "xzsymm", side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
}

void zhemm(const char& side, const char& uplo, const zint& m, const zint& n, const zcomplex& alpha,
           const zcomplex* a, const zint& lda, const zcomplex* b, const zint& ldb, const zcomplex& beta,
           zcomplex* c, const zint& ldc) {
    symm<zcomplex>(true, "xzhemm", side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
}

}  // namespace zor::ZOR_LEVEL_NS
