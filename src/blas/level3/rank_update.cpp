// syrk, herk, syr2k and her2k, five variants, from one template over the element type.
//
// With P = op(A) and Q = op(B) (n x k), the triangle of C gets alpha P Pᵀ (Pᴴ for herk), or
// alpha P Qᵀ + alpha Q Pᵀ (alpha P Qᴴ + conj(alpha) Q Pᴴ for her2k). C is taken in block columns:
// the diagonal block goes to the rank-update kernel, which writes only its triangle; the rest of
// the block column in the triangle is one GEMM call (two for the rank-2k forms) with the full
// depth k.

#include "blas/kernel.hpp"
#include "blas/level3/level3.hpp"
#include "blas/level3/level3_arith.hpp"
#include "service/handlers.hpp"
#include "service/memory.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// The triangle of an n x n block of C times beta, zeros without reading C for beta = 0. Hermitian:
// beta is real and multiplies as a real, and the diagonal becomes real, even for beta = 1.
template <class T>
void scale_triangle(zint n, const T& beta, bool lower, bool hermitian, T* c, zint ldc) {
    using A = Arith<T>;
    const bool zero = A::is_zero(beta), one = A::is_one(beta);
    for (zint l = 0; l < n; ++l) {
        const zint first = lower ? l : 0, last = lower ? n : l + 1;
        for (zint i = first; i < last; ++i) {
            T& x = c[i + l * ldc];
            if (zero) {
                x = A::zero();
            } else if (hermitian) {
                if constexpr (A::kComplex) x = {beta.re * x.re, i == l ? 0.0 : beta.re * x.im};
            } else if (!one) {
                x = A::mul(beta, x);
            }
        }
    }
}

// The triangle of C (b x b) gets alpha Σ_p X(i, p) Z(l, p) added, one element at a time: the path
// when no work area can be had.
template <class T>
void rank_update_unblocked(zint b, zint k, const ConstView<T>& x, const ConstView<T>& z, const T& alpha,
                           bool lower, bool hermitian, T* c, zint ldc) {
    using A = Arith<T>;
    for (zint l = 0; l < b; ++l) {
        const zint first = lower ? l : 0, last = lower ? b : l + 1;
        for (zint i = first; i < last; ++i) {
            T sum = A::zero();
            for (zint p = 0; p < k; ++p) sum = A::add(sum, A::mul(at(x, i, p), at(z, l, p)));
            c[i + l * ldc] = A::add(c[i + l * ldc], A::mul(alpha, sum));
        }
        if (hermitian) c[l + l * ldc] = A::real(c[l + l * ldc]);
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

template <class T>
void rank_update(const BlockKernels<T>& kernels, const char* routine, bool hermitian, char uplo, char trans,
                 zint n, zint k, const T& alpha, const T* a, zint lda, const T* b, zint ldb, const T& beta,
                 T* c, zint ldc) {
    using A = Arith<T>;
    if (n <= 0 || ((A::is_zero(alpha) || k <= 0) && A::is_one(beta))) return;
    const bool lower = letter_is(uplo, 'L');
    if (A::is_zero(alpha) || k <= 0) {
        scale_triangle(n, beta, lower, hermitian, c, ldc);
        return;
    }
    const bool untransposed = letter_is(trans, 'N');
    const char first = untransposed ? 'N' : (hermitian ? 'C' : 'T');
    const char second = untransposed ? (hermitian ? 'C' : 'T') : 'N';
    // Hermitian: the conjugate goes on the operand that op leaves unconjugated.
    const bool x_conj = hermitian && !untransposed, z_conj = hermitian && untransposed;
    const Operand<T> p{a, lda, untransposed}, q{b != nullptr ? b : a, b != nullptr ? ldb : lda, untransposed};
    const Term<T> terms[2] = {{p, q, alpha}, {q, p, hermitian ? A::conj(alpha) : alpha}};
    const int count = b != nullptr ? 2 : 1;

    const WorkArea<T> work(static_cast<std::size_t>(kernels.work_elements));
    if (check_allocation(work.get(), routine) != 0) {
        scale_triangle(n, beta, lower, hermitian, c, ldc);
        for (int t = 0; t < count; ++t) {
            rank_update_unblocked(n, k, terms[t].x.view(x_conj), terms[t].z.view(z_conj), terms[t].alpha,
                                  lower, hermitian, c, ldc);
        }
        return;
    }
    const zint block = kernels.rank_block;
    for (zint j0 = 0; j0 < n; j0 += block) {
        const zint width = n - j0 < block ? n - j0 : block;
        T* diagonal = c + j0 + j0 * ldc;
        scale_triangle(width, beta, lower, hermitian, diagonal, ldc);
        for (int t = 0; t < count; ++t) {
            kernels.rank_update(width, k, shifted(terms[t].x.view(x_conj), j0, 0),
                                shifted(terms[t].z.view(z_conj), j0, 0), terms[t].alpha, lower, hermitian,
                                diagonal, ldc, work.get());
        }
        // The rest of the block column in the triangle: rows below the diagonal block, or above it.
        const zint r0 = lower ? j0 + width : 0, rows = lower ? n - r0 : j0;
        if (rows == 0) continue;
        for (int t = 0; t < count; ++t) {
            const Term<T>& term = terms[t];
            A::gemm(first, second, rows, width, k, term.alpha, term.x.row(r0), term.x.ld, term.z.row(j0),
                    term.z.ld, t == 0 ? beta : A::one(), c + r0 + j0 * ldc, ldc);
        }
    }
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
