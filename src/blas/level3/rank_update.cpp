// syrk, herk, syr2k and her2k, five variants, from one template over the element type.
//
// With P = op(A) and Q = op(B) (n x k), the triangle of C gets alpha P Pᵀ (Pᴴ for herk), or
// alpha P Qᵀ + alpha Q Pᵀ (alpha P Qᴴ + conj(alpha) Q Pᴴ for her2k). The triangle of C
// is halved recursively along block boundaries; the square between two halves is one
// GEMM call (two for the rank-2k forms) with the full depth k, and the diagonal blocks at the bottom
// go to the rank-update kernel, which writes only its triangle.

#include "blas/kernel.hpp"
#include "blas/level3/level3.hpp"
#include "blas/level3/level3_common.hpp"
#include "service/handlers.hpp"
#include "service/memory.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// The triangle of an n x n block of C times beta, zeros without reading C for beta = 0. Hermitian:
// beta is real and multiplies as a real, and the diagonal becomes real, even for beta = 1.
template <class T>
void scale_triangle(zint n, const T& beta, bool lower, bool hermitian, T* c, zint ldc) {
    const bool zero = is_zero(beta), one = is_one(beta);
    for (zint l = 0; l < n; ++l) {
        const zint first = lower ? l : 0, last = lower ? n : l + 1;
        for (zint i = first; i < last; ++i) {
            T& x = c[i + l * ldc];
            if (zero) {
                x = zor::zero<T>();
            } else if (hermitian) {
                if constexpr (kIsComplex<T>) x = {beta.re * x.re, i == l ? 0.0 : beta.re * x.im};
            } else if (!one) {
                x = beta * x;
            }
        }
    }
}

// The triangle of C (b x b) gets alpha Σ_p X(i, p) Z(l, p) added, one element at a time: the path
// when no work area can be had.
template <class T>
void rank_update_unblocked(zint b, zint k, const ConstView<T>& x, const ConstView<T>& z, const T& alpha,
                           bool lower, bool hermitian, T* c, zint ldc) {
    for (zint l = 0; l < b; ++l) {
        const zint first = lower ? l : 0, last = lower ? b : l + 1;
        for (zint i = first; i < last; ++i) {
            T sum = zero<T>();
            for (zint p = 0; p < k; ++p) sum = sum + (at(x, i, p) * at(z, l, p));
            c[i + l * ldc] = c[i + l * ldc] + (alpha * sum);
        }
        if (hermitian) c[l + l * ldc] = real_part(c[l + l * ldc]);
    }
}

// P = op(X) for an operand X: P(i, p) is X(i, p) untransposed, else X(p, i).
template <class T>
struct Operand {
    const T* x;
    zint ld;
    bool untransposed;

    zint row_step() const { return untransposed ? 1 : ld; }
    ConstView<T> view(bool conj) const { return {x, row_step(), untransposed ? ld : 1, conj}; }
    const T* row(zint i) const { return x + i * row_step(); }
};

// One term alpha X Zᵀ of the update (Zᴴ for the Hermitian forms).
template <class T>
struct Term {
    Operand<T> x, z;
    T alpha;
};

// The update once its scalars and operands are set: the triangle of C is split in halves along
// block boundaries, recursively. The square between the halves is one GEMM call per term, with the
// full depth k; the diagonal blocks at the bottom of the recursion go to the kernel.
template <class T>
struct Update {
    const BlockKernels<T>& kernels;
    bool lower, hermitian;
    char first, second;  // GEMM's letters for X and for Z
    bool x_conj, z_conj;
    Term<T> terms[2];
    int count;
    zint k;
    T beta;
    T* c;
    zint ldc;
    T* work;

    void diagonal_block(zint j0, zint width) const {
        T* diagonal = c + j0 + j0 * ldc;
        scale_triangle(width, beta, lower, hermitian, diagonal, ldc);
        for (int t = 0; t < count; ++t) {
            kernels.rank_update(width, k, shifted(terms[t].x.view(x_conj), j0, 0),
                                shifted(terms[t].z.view(z_conj), j0, 0), terms[t].alpha, lower, hermitian,
                                diagonal, ldc, work);
        }
    }

    // The rows x cols block of C at (i0, l0), which lies wholly in the triangle.
    void square(zint i0, zint rows, zint l0, zint cols) const {
        for (int t = 0; t < count; ++t) {
            const Term<T>& term = terms[t];
            Engine<T>::gemm(first, second, rows, cols, k, term.alpha, term.x.row(i0), term.x.ld,
                            term.z.row(l0), term.z.ld, t == 0 ? beta : one<T>(), c + i0 + l0 * ldc, ldc);
        }
    }

    void triangle(zint j0, zint width) const {
        const zint block = kernels.rank_block;
        if (width <= block) {
            diagonal_block(j0, width);
            return;
        }
        const zint half = (width / block + 1) / 2 * block;
        triangle(j0, half);
        if (lower) {
            square(j0 + half, width - half, j0, half);
        } else {
            square(j0, half, j0 + half, width - half);
        }
        triangle(j0 + half, width - half);
    }
};

template <class T>
void rank_update(const BlockKernels<T>& kernels, const char* routine, bool hermitian, char uplo, char trans,
                 zint n, zint k, const T& alpha, const T* a, zint lda, const T* b, zint ldb, const T& beta,
                 T* c, zint ldc) {
    if (n <= 0 || ((is_zero(alpha) || k <= 0) && is_one(beta))) return;
    const bool lower = lsame(uplo, 'L');
    if (is_zero(alpha) || k <= 0) {
        scale_triangle(n, beta, lower, hermitian, c, ldc);
        return;
    }
    const bool untransposed = lsame(trans, 'N');
    const Operand<T> p{a, lda, untransposed}, q{b != nullptr ? b : a, b != nullptr ? ldb : lda, untransposed};
    const WorkArea<T> work(static_cast<std::size_t>(kernels.work_elements));
    // Hermitian: the conjugate goes on the operand that op leaves unconjugated.
    const Update<T> update{kernels,
                           lower,
                           hermitian,
                           untransposed ? 'N' : (hermitian ? 'C' : 'T'),
                           untransposed ? (hermitian ? 'C' : 'T') : 'N',
                           hermitian && !untransposed,
                           hermitian && untransposed,
                           {{p, q, alpha}, {q, p, hermitian ? conj(alpha) : alpha}},
                           b != nullptr ? 2 : 1,
                           k,
                           beta,
                           c,
                           ldc,
                           work.get()};
    if (check_allocation(work.get(), routine) != 0) {
        scale_triangle(n, beta, lower, hermitian, c, ldc);
        for (int t = 0; t < update.count; ++t) {
            const Term<T>& term = update.terms[t];
            rank_update_unblocked(n, k, term.x.view(update.x_conj), term.z.view(update.z_conj), term.alpha,
                                  lower, hermitian, c, ldc);
        }
        return;
    }
    update.triangle(0, n);
}

}  // namespace

void dsyrk_with(std::uint32_t extensions, const char& uplo, const char& trans, const zint& n, const zint& k,
                const double& alpha, const double* a, const zint& lda, const double& beta, double* c,
                const zint& ldc) {
    rank_update<double>(real_block_kernels(extensions), "xdsyrk", false, uplo, trans, n, k, alpha, a, lda,
                        nullptr, 0, beta, c, ldc);
}

void zsyrk_with(std::uint32_t extensions, const char& uplo, const char& trans, const zint& n, const zint& k,
                const zcomplex& alpha, const zcomplex* a, const zint& lda, const zcomplex& beta, zcomplex* c,
                const zint& ldc) {
    rank_update<zcomplex>(complex_block_kernels(extensions), "xzsyrk", false, uplo, trans, n, k, alpha, a,
                          lda, nullptr, 0, beta, c, ldc);
}

void zherk_with(std::uint32_t extensions, const char& uplo, const char& trans, const zint& n, const zint& k,
                const double& alpha, const zcomplex* a, const zint& lda, const double& beta, zcomplex* c,
                const zint& ldc) {
    rank_update<zcomplex>(complex_block_kernels(extensions), "xzherk", true, uplo, trans, n, k, {alpha, 0.0},
                          a, lda, nullptr, 0, {beta, 0.0}, c, ldc);
}

void dsyr2k_with(std::uint32_t extensions, const char& uplo, const char& trans, const zint& n, const zint& k,
                 const double& alpha, const double* a, const zint& lda, const double* b, const zint& ldb,
                 const double& beta, double* c, const zint& ldc) {
    rank_update<double>(real_block_kernels(extensions), "xdsyr2k", false, uplo, trans, n, k, alpha, a, lda, b,
                        ldb, beta, c, ldc);
}

void zsyr2k_with(std::uint32_t extensions, const char& uplo, const char& trans, const zint& n, const zint& k,
                 const zcomplex& alpha, const zcomplex* a, const zint& lda, const zcomplex* b,
                 const zint& ldb, const zcomplex& beta, zcomplex* c, const zint& ldc) {
    rank_update<zcomplex>(complex_block_kernels(extensions), "xzsyr2k", false, uplo, trans, n, k, alpha, a,
                          lda, b, ldb, beta, c, ldc);
}

void zher2k_with(std::uint32_t extensions, const char& uplo, const char& trans, const zint& n, const zint& k,
                 const zcomplex& alpha, const zcomplex* a, const zint& lda, const zcomplex* b,
                 const zint& ldb, const double& beta, zcomplex* c, const zint& ldc) {
    rank_update<zcomplex>(complex_block_kernels(extensions), "xzher2k", true, uplo, trans, n, k, alpha, a,
                          lda, b, ldb, {beta, 0.0}, c, ldc);
}

void dsyrk(const char& uplo, const char& trans, const zint& n, const zint& k, const double& alpha,
           const double* a, const zint& lda, const double& beta, double* c, const zint& ldc) {
    dsyrk_with(processor_extensions(), uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
}

void zsyrk(const char& uplo, const char& trans, const zint& n, const zint& k, const zcomplex& alpha,
           const zcomplex* a, const zint& lda, const zcomplex& beta, zcomplex* c, const zint& ldc) {
    zsyrk_with(processor_extensions(), uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
}

void zherk(const char& uplo, const char& trans, const zint& n, const zint& k, const double& alpha,
           const zcomplex* a, const zint& lda, const double& beta, zcomplex* c, const zint& ldc) {
    zherk_with(processor_extensions(), uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
}

void dsyr2k(const char& uplo, const char& trans, const zint& n, const zint& k, const double& alpha,
            const double* a, const zint& lda, const double* b, const zint& ldb, const double& beta, double* c,
            const zint& ldc) {
    dsyr2k_with(processor_extensions(), uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

void zsyr2k(const char& uplo, const char& trans, const zint& n, const zint& k, const zcomplex& alpha,
            const zcomplex* a, const zint& lda, const zcomplex* b, const zint& ldb, const zcomplex& beta,
            zcomplex* c, const zint& ldc) {
    zsyr2k_with(processor_extensions(), uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

void zher2k(const char& uplo, const char& trans, const zint& n, const zint& k, const zcomplex& alpha,
            const zcomplex* a, const zint& lda, const zcomplex* b, const zint& ldb, const double& beta,
            zcomplex* c, const zint& ldc) {
    zher2k_with(processor_extensions(), uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

}  // namespace zor::ZOR_LEVEL_NS
