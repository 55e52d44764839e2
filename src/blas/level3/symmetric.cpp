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
// Rows (columns) of a mirrored part expanded together.
constexpr zint kMirrorRows = 16;

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

// The stored element of S at (i, j) on the stored side, and its mirror: conjugated for a Hermitian
// matrix; a Hermitian diagonal real.
template <class T>
T mirrored(const Symmetric<T>& s, T v) {
    return s.hermitian ? conj(v) : v;
}
template <class T>
T diagonal(const Symmetric<T>& s, zint p) {
    const T v = s.a[p + p * s.lda];
    return s.hermitian ? real_part(v) : v;
}

// Columns p0 .. p0 + count of S (order `rows`) into out (leading dimension ld). Column p is the
// stored column above (below) the diagonal and the stored row p beyond it; those rows of A are read
// a column of A at a time, p0 .. p0 + count together, so that each line of A is read whole.
template <class T>
void expand_columns(const Symmetric<T>& s, zint rows, zint p0, zint count, T* out, zint ld) {
    const T* a = s.a;
    const zint lda = s.lda;
    for (zint q = 0; q < count; ++q) {
        const zint p = p0 + q;
        T* column = out + q * ld;
        if (s.upper) {
            for (zint i = 0; i < p; ++i) column[i] = a[i + p * lda];
        } else {
            for (zint i = p + 1; i < rows; ++i) column[i] = a[i + p * lda];
        }
        column[p] = diagonal(s, p);
    }
    // The mirrored parts: element (i, p) = mirror of A(p, i), for i > p (upper) or i < p (lower); 16
    // rows at a time, so that the writes run down columns and the 16 columns of A read across stay
    // in the level-1 cache (a whole row of writes would hit one cache set at power-of-two strides).
    for (zint i0 = 0; i0 < rows; i0 += kMirrorRows) {
        const zint i1 = rows - i0 < kMirrorRows ? rows : i0 + kMirrorRows;
        for (zint p = p0; p < p0 + count; ++p) {
            T* column = out + (p - p0) * ld;
            const zint first = s.upper ? (p + 1 > i0 ? p + 1 : i0) : i0,
                       last = s.upper ? i1 : (p < i1 ? p : i1);
            for (zint i = first; i < last; ++i) column[i] = mirrored(s, a[p + i * lda]);
        }
    }
}

// Rows p0 .. p0 + count of S, columns 0 .. cols, into out (leading dimension ld): out(q, j) = S(p0 + q,
// j). Row p is the mirror of column p of S, so the stored column is read down and the mirrored row
// across, as in expand_columns.
template <class T>
void expand_rows(const Symmetric<T>& s, zint cols, zint p0, zint count, T* out, zint ld) {
    const T* a = s.a;
    const zint lda = s.lda;
    for (zint j = 0; j < cols; ++j) {
        const T* a_column = a + j * lda;
        T* column = out + j * ld;
        // S(p, j) for p in the block: stored at A(p, j) when (p < j) == upper, else the mirror of A(j, p).
        for (zint p = p0; p < p0 + count; ++p) {
            if (p == j) {
                column[p - p0] = diagonal(s, p);
            } else if ((p < j) == s.upper) {
                column[p - p0] = a_column[p];
            }
        }
    }
    // The mirrored elements of row p: S(p, j) = mirror of A(j, p) for j < p (upper) or j > p (lower),
    // 16 columns j at a time, as in expand_columns.
    for (zint j0 = 0; j0 < cols; j0 += kMirrorRows) {
        const zint j1 = cols - j0 < kMirrorRows ? cols : j0 + kMirrorRows;
        for (zint p = p0; p < p0 + count; ++p) {
            const T* a_column = a + p * lda;
            const zint first = s.upper ? j0 : (p + 1 > j0 ? p + 1 : j0),
                       last = s.upper ? (p < j1 ? p : j1) : j1;
            for (zint j = first; j < last; ++j) out[(p - p0) + j * ld] = mirrored(s, a_column[j]);
        }
    }
}

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
            expand_columns(s, m, p0, count, expanded, m);
            Engine<T>::gemm('N', 'N', m, n, count, alpha, expanded, m, b + p0, ldb, scale, c, ldc);
        } else {
            // Rows p0 .. p0 + count of S, all n columns: the columns of Sᵀ (Sᴴ), which is S with
            // the other triangle stored for a symmetric matrix and its conjugate for a Hermitian one.
            expand_rows(s, n, p0, count, expanded, count);
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
