#pragma once
// The symmetric (Hermitian) product y := A x of the tridiagonal reduction, written once for every
// vector width: A is read from its stored triangle a block of K columns at a time, and each block
// is one sweep over its rows that both adds A(rows, block) x(block) into y and gathers
// A(rows, block)ᴴ x(rows) for the block's own rows of y, so the triangle is read once. The K by K
// diagonal block is applied element by element first. Rows go by vectors of L::kLanes doubles (a
// complex element is two), the rows left over one at a time. The order of the additions, and so
// the rounding, differs between widths; a path with FMA fuses the products.
//
// Included by kernel sources (compiled per level, some under target pragmas of their own): internal
// linkage in the level namespace.

#include <immintrin.h>

#include "blas/kernel.hpp"
#include "service/element.hpp"

namespace zor::ZOR_LEVEL_NS {
namespace {

// How far ahead of the sweep the columns are fetched, in doubles.
constexpr zint kAhead = 64;

// The K by K diagonal block at column j: for the lower triangle its rows below the diagonal, for
// the upper its rows above, and the diagonal (real for Hermitian data).
template <class T, int K>
void reduction_diagonal_block(bool upper, zint j, const T* a, zint lda, const T* x, T* y) {
    for (zint c = j; c < j + K; ++c) {
        const T* column = a + c * lda;
        y[c] = y[c] + real(column[c]) * x[c];
        for (zint r = upper ? j : c + 1; r < (upper ? c : j + K); ++r) {
            y[r] = y[r] + column[r] * x[c];
            y[c] = y[c] + conj(column[r]) * x[r];
        }
    }
}

// Real data, K columns c[k] over rows [r0, r1): y(i) += Σ_k c[k](i) x_k, t[k] = Σ_i c[k](i) x(i).
template <class L, int K>
void reduction_sweep(zint r0, zint r1, const double* const* c, const double* xk, const double* x, double* y,
                     double* t) {
    using V = typename L::Vec;
    V sums[K], factors[K];
    for (int k = 0; k < K; ++k) {
        sums[k] = L::zero();
        factors[k] = L::broadcast(xk + k);
    }
    // No peel to an alignment boundary: the rows go by vectors from the first, so that copies of a
    // matrix at other addresses give the same bits.
    zint i = r0;
    for (; r1 - i >= L::kLanes; i += L::kLanes) {
        for (int k = 0; k < K; ++k)
            _mm_prefetch(reinterpret_cast<const char*>(c[k] + i + kAhead), _MM_HINT_T0);
        const V xv = L::loadu(x + i);
        V yv = L::loadu(y + i);
        for (int k = 0; k < K; ++k) {
            const V av = L::loadu(c[k] + i);
            yv = L::mul_add(av, factors[k], yv);
            sums[k] = L::mul_add(av, xv, sums[k]);
        }
        L::storeu(y + i, yv);
    }
    for (int k = 0; k < K; ++k) {
        alignas(64) double lanes[L::kLanes];
        L::storeu(lanes, sums[k]);
        double s = 0.0;
        for (int l = 0; l < L::kLanes; ++l) s += lanes[l];
        t[k] = s;
    }
    for (; i < r1; ++i) {
        double yi = y[i];
        for (int k = 0; k < K; ++k) {
            yi += c[k][i] * xk[k];
            t[k] += c[k][i] * x[i];
        }
        y[i] = yi;
    }
}

// Complex data: y(i) += Σ_k c[k](i) x_k, t[k] = Σ_i conj(c[k](i)) x(i). A vector holds L::kLanes / 2
// elements as (re, im) pairs: a x_k is a·re(x_k) + swap(a)·(-im(x_k), im(x_k)), and conj(a) x is
// summed as the lanes of a·x and a·swap(x): (Σ re re + im im, Σ re im - im re).
template <class L, int K>
void reduction_sweep(zint r0, zint r1, const zcomplex* const* c, const zcomplex* xk, const zcomplex* x,
                     zcomplex* y, zcomplex* t) {
    using V = typename L::Vec;
    constexpr int kPerVector = L::kLanes / 2;
    V direct[K], crossed[K], real_factors[K], imaginary_factors[K];
    for (int k = 0; k < K; ++k) {
        direct[k] = crossed[k] = L::zero();
        real_factors[k] = L::broadcast(&xk[k].re);
        alignas(64) double signed_imaginary[L::kLanes];
        for (int l = 0; l < L::kLanes; l += 2) {
            signed_imaginary[l] = -xk[k].im;
            signed_imaginary[l + 1] = xk[k].im;
        }
        imaginary_factors[k] = L::loadu(signed_imaginary);
    }
    zint i = r0;
    for (; r1 - i >= kPerVector; i += kPerVector) {
        const V xv = L::loadu(&x[i].re);
        const V xs = L::swap_pairs(xv);
        V yv = L::loadu(&y[i].re);
        for (int k = 0; k < K; ++k) {
            const V av = L::loadu(&c[k][i].re);
            yv = L::mul_add(av, real_factors[k], yv);
            yv = L::mul_add(L::swap_pairs(av), imaginary_factors[k], yv);
            direct[k] = L::mul_add(av, xv, direct[k]);
            crossed[k] = L::mul_add(av, xs, crossed[k]);
        }
        L::storeu(&y[i].re, yv);
    }
    for (int k = 0; k < K; ++k) {
        alignas(64) double d[L::kLanes], s[L::kLanes];
        L::storeu(d, direct[k]);
        L::storeu(s, crossed[k]);
        zcomplex sum{0.0, 0.0};
        for (int l = 0; l < L::kLanes; l += 2) sum = {sum.re + (d[l] + d[l + 1]), sum.im + (s[l] - s[l + 1])};
        t[k] = sum;
    }
    for (; i < r1; ++i) {
        zcomplex yi = y[i];
        for (int k = 0; k < K; ++k) {
            yi = yi + c[k][i] * xk[k];
            t[k] = t[k] + conj(c[k][i]) * x[i];
        }
        y[i] = yi;
    }
}

// y := A x for the n by n symmetric (Hermitian) A of the stored triangle, unit strides.
template <class L, int K, class T>
void reduction_product(bool upper, zint n, const T* a, zint lda, const T* x, T* y) {
    for (zint i = 0; i < n; ++i) y[i] = zero<T>();
    // Blocks of K columns, then the columns left over one at a time.
    const auto block = [&]<int W>(zint j) {
        reduction_diagonal_block<T, W>(upper, j, a, lda, x, y);
        const T* columns[W];
        T t[W];
        for (int k = 0; k < W; ++k) columns[k] = a + (j + k) * lda;
        reduction_sweep<L, W>(upper ? 0 : j + W, upper ? j : n, columns, x + j, x, y, t);
        for (int k = 0; k < W; ++k) y[j + k] = y[j + k] + t[k];
    };
    zint j = 0;
    for (; n - j >= K; j += K) block.template operator()<K>(j);
    for (; j < n; ++j) block.template operator()<1>(j);
}

}  // namespace

// The Avx variant's paths for processors with AVX-512F, and with FMA but not AVX-512F (defined in
// the Avx variant only; the other levels never call them).
void dlatrd_symv_avx512(bool upper, zint n, const double* a, zint lda, const double* x, double* y);
void zlatrd_hemv_avx512(bool upper, zint n, const zcomplex* a, zint lda, const zcomplex* x, zcomplex* y);
void dlatrd_symv_fma(bool upper, zint n, const double* a, zint lda, const double* x, double* y);
void zlatrd_hemv_fma(bool upper, zint n, const zcomplex* a, zint lda, const zcomplex* x, zcomplex* y);

}  // namespace zor::ZOR_LEVEL_NS
