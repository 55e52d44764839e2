// trsm and trmm, five variants, real and complex from one template each.
//
// Every case becomes one canonical form: a lower triangular M of order `order` applied to the nv
// columns of Y. M is op(A) for side "L" and op(A)ᵀ for side "R" (whose right-hand sides are the
// rows of B); an upper M is made lower by reading both M and Y backwards. The diagonal blocks of M
// go to the block kernels; what couples them is one GEMM call per block, with the caller's own
// arrays, so the engine sees rank updates as deep as the block order.

#include "blas/kernel.hpp"
#include "blas/level3/level3.hpp"
#include "blas/level3/level3_common.hpp"
#include "blas/level3/level3_unblocked.hpp"
#include "service/handlers.hpp"
#include "service/memory.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

template <class T>
struct Triangular {
    bool left;
    zint order;    // of the triangle
    zint nv;       // right-hand sides
    bool forward;  // canonical index i is original index i; else order - 1 - i
    ConstView<T> m;
    MutableView<T> y;
    bool unit;

    // The first original index of canonical indices [s, s + count).
    zint original(zint s, zint count) const { return forward ? s : order - s - count; }
};

template <class T>
Triangular<T> canonical(char side, char uplo, char transa, char diag, zint m, zint n, const T* a, zint lda,
                        T* b, zint ldb) {
    Triangular<T> t{};
    t.left = lsame(side, 'L');
    t.order = t.left ? m : n;
    t.nv = t.left ? n : m;
    t.unit = lsame(diag, 'U');
    const bool m_transposed = t.left != lsame(transa, 'N');
    t.forward = lsame(uplo, 'L') != m_transposed;
    zint rs = m_transposed ? lda : 1, cs = m_transposed ? 1 : lda;
    zint y_rs = t.left ? 1 : ldb;
    const T* m_base = a;
    T* y_base = b;
    if (!t.forward) {
        m_base += (t.order - 1) * (rs + cs);
        rs = -rs;
        cs = -cs;
        y_base += (t.order - 1) * y_rs;
        y_rs = -y_rs;
    }
    t.m = {m_base, rs, cs, kIsComplex<T> && lsame(transa, 'C')};
    t.y = {y_base, y_rs, t.left ? ldb : 1};
    return t;
}

// Right-hand sides below this many, or triangles below this order, are solved or multiplied in
// place: a tile's columns would mostly be padding.
constexpr zint kFewColumns = 4;
constexpr zint kSmallOrder = 4;

template <class T>
bool unblocked(const Triangular<T>& t) {
    return t.nv < kFewColumns || t.order < kSmallOrder;
}

// What trsm and trmm share: the quick returns, alpha = 0 (zeros without reading A or B), the
// canonical form, and the unblocked path for small problems or when the work area is refused.
template <class T, class Unblocked, class Blocked>
void triangular_routine(const BlockKernels<T>& kernels, const char* routine, char side, char uplo,
                        char transa, char diag, zint m, zint n, const T& alpha, const T* a, zint lda, T* b,
                        zint ldb, const Unblocked& unblocked_path, const Blocked& blocked_path) {
    if (m <= 0 || n <= 0) return;
    if (is_zero(alpha)) {
        fill_zero(m, n, b, ldb);
        return;
    }
    const Triangular<T> t = canonical(side, uplo, transa, diag, m, n, a, lda, b, ldb);
    if (unblocked(t)) {
        unblocked_path(t.order, t.nv, t.m, t.unit, alpha, t.y);
        return;
    }
    const WorkArea<T> work(static_cast<std::size_t>(kernels.work_elements));
    if (check_allocation(work.get(), routine) != 0) {
        unblocked_path(t.order, t.nv, t.m, t.unit, alpha, t.y);
        return;
    }
    blocked_path(t, work.get());
}

// op(A) X = alpha B or X op(A) = alpha B. Block after block in canonical order: solve the diagonal
// block, then take the solved rows out of all the rows after it (GEMM, k = block order). alpha goes
// in with the first block and, as beta, with the first update.
template <class T>
void trsm(const BlockKernels<T>& kernels, const char* routine, char side, char uplo, char transa, char diag,
          zint m, zint n, const T& alpha, const T* a, zint lda, T* b, zint ldb) {
    const auto blocked = [&](const Triangular<T>& t, T* work) {
        const T one = zor::one<T>();
        for (zint s = 0; s < t.order; s += kernels.triangular_block) {
            const zint count =
                t.order - s < kernels.triangular_block ? t.order - s : kernels.triangular_block;
            const T& scale = s == 0 ? alpha : one;
            kernels.solve(count, t.nv, shifted(t.m, s, s), t.unit, scale, shifted(t.y, s, 0), work);
            const zint rest = t.order - s - count;
            if (rest == 0) break;
            const zint solved = t.original(s, count), later = t.forward ? s + count : 0;
            if (t.left) {
                Engine<T>::gemm(transa, 'N', rest, n, count, from_real<T>(-1.0),
                                op_block(a, lda, transa, later, solved), lda, b + solved, ldb, scale,
                                b + later, ldb);
            } else {
                Engine<T>::gemm('N', transa, m, rest, count, from_real<T>(-1.0), b + solved * ldb, ldb,
                                op_block(a, lda, transa, solved, later), lda, scale, b + later * ldb, ldb);
            }
        }
    };
    triangular_routine<T>(kernels, routine, side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb,
                          solve_unblocked<T>, blocked);
}

// B := alpha op(A) B or alpha B op(A). Canonical row block i depends on the original rows up to it,
// so the blocks run from the last: first each block's original rows are added into all the rows
// after it (GEMM, k = block order), which have their own products already, then the block is
// multiplied by its diagonal block.
template <class T>
void trmm(const BlockKernels<T>& kernels, const char* routine, char side, char uplo, char transa, char diag,
          zint m, zint n, const T& alpha, const T* a, zint lda, T* b, zint ldb) {
    const auto blocked = [&](const Triangular<T>& t, T* work) {
        const zint block = kernels.triangular_block;
        for (zint s = (t.order - 1) / block * block; s >= 0; s -= block) {
            const zint count = t.order - s < block ? t.order - s : block;
            const zint rest = t.order - s - count;
            if (rest > 0) {
                const zint source = t.original(s, count), later = t.forward ? s + count : 0;
                if (t.left) {
                    Engine<T>::gemm(transa, 'N', rest, n, count, alpha,
                                    op_block(a, lda, transa, later, source), lda, b + source, ldb, one<T>(),
                                    b + later, ldb);
                } else {
                    Engine<T>::gemm('N', transa, m, rest, count, alpha, b + source * ldb, ldb,
                                    op_block(a, lda, transa, source, later), lda, one<T>(), b + later * ldb,
                                    ldb);
                }
            }
            kernels.multiply(count, t.nv, shifted(t.m, s, s), t.unit, alpha, shifted(t.y, s, 0), work);
        }
    };
    triangular_routine<T>(kernels, routine, side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb,
                          multiply_unblocked<T>, blocked);
}

}  // namespace

void dtrsm_with(std::uint32_t extensions, const char& side, const char& uplo, const char& transa,
                const char& diag, const zint& m, const zint& n, const double& alpha, const double* a,
                const zint& lda, double* b, const zint& ldb) {
    trsm<double>(real_block_kernels(extensions), "xdtrsm", side, uplo, transa, diag, m, n, alpha, a, lda, b,
                 ldb);
}

void ztrsm_with(std::uint32_t extensions, const char& side, const char& uplo, const char& transa,
                const char& diag, const zint& m, const zint& n, const zcomplex& alpha, const zcomplex* a,
                const zint& lda, zcomplex* b, const zint& ldb) {
    trsm<zcomplex>(complex_block_kernels(extensions), "xztrsm", side, uplo, transa, diag, m, n, alpha, a, lda,
                   b, ldb);
}

void dtrmm_with(std::uint32_t extensions, const char& side, const char& uplo, const char& transa,
                const char& diag, const zint& m, const zint& n, const double& alpha, const double* a,
                const zint& lda, double* b, const zint& ldb) {
    trmm<double>(real_block_kernels(extensions), "xdtrmm", side, uplo, transa, diag, m, n, alpha, a, lda, b,
                 ldb);
}

void ztrmm_with(std::uint32_t extensions, const char& side, const char& uplo, const char& transa,
                const char& diag, const zint& m, const zint& n, const zcomplex& alpha, const zcomplex* a,
                const zint& lda, zcomplex* b, const zint& ldb) {
    trmm<zcomplex>(complex_block_kernels(extensions), "xztrmm", side, uplo, transa, diag, m, n, alpha, a, lda,
                   b, ldb);
}

void dtrsm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
           const zint& n, const double& alpha, const double* a, const zint& lda, double* b, const zint& ldb) {
    dtrsm_with(processor_extensions(), side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

void ztrsm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
           const zint& n, const zcomplex& alpha, const zcomplex* a, const zint& lda, zcomplex* b,
           const zint& ldb) {
    ztrsm_with(processor_extensions(), side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

void dtrmm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
           const zint& n, const double& alpha, const double* a, const zint& lda, double* b, const zint& ldb) {
    dtrmm_with(processor_extensions(), side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

void ztrmm(const char& side, const char& uplo, const char& transa, const char& diag, const zint& m,
           const zint& n, const zcomplex& alpha, const zcomplex* a, const zint& lda, zcomplex* b,
           const zint& ldb) {
    ztrmm_with(processor_extensions(), side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

}  // namespace zor::ZOR_LEVEL_NS
