// y := alpha*A*x + beta*y for symmetric (dsymv) and Hermitian (zhemv) A, reading only the uplo
// triangle; the imaginary part of the Hermitian diagonal is taken as zero.
//
// dsymv makes one fused sweep over the stored part of each column j: y(i) += A(i,j)*t1 with
// t1 = alpha*x(j), and t2 += A(i,j)*x(i) for the other half of the product. The order, which the
// Default, Sse3, Ssse3 and Sse42 variants share:
// - unit strides: columns in groups of four, then the n mod 4 last columns one at a time; other
//   strides: every column one at a time; columns in increasing order for either triangle.
// - a group first applies its 4 by 4 diagonal block: for each column c of the block in order,
//   t1 = alpha*x(c), s = 0; for the block's stored rows r of that column other than c, in
//   increasing order, y(r) += A(r,c)*t1 and s += A(r,c)*x(r); then
//   y(c) := (y(c) + A(c,c)*t1) + s*alpha.
// - then each column's sweep over its stored rows outside the block (a single column: outside the
//   diagonal, and y(j) := y(j) + A(j,j)*t1 first), rows in increasing order, each row's y(i)
//   taking the group's columns in order; then y(j) += t2*alpha. Each t2 has two lanes: rows go
//   singly into the low lane until y is on a 16-byte boundary (unit strides, Default only: the
//   levels above take no peel, so that their results do not depend on where the vectors lie), then
//   in pairs (low, high), a last row into the low lane; t2 = low + high.
// The Avx variant runs the same scheme with four lanes and no peel, so that its results do not
// depend on where the vectors lie: quads from the sweep's first row, the last rows into lane 0,
// t2 = (l0 + l2) + (l1 + l3); every row's y(i) adds the group's products summed pairwise, and t2
// alternates between two sets of sums.

#include "blas/kernel.hpp"
#include "blas/level2/level2.hpp"
#include "blas/simd.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// The fused sweep of K columns over rows [r0, r1), unit strides. t2[k] receives each column's
// half-product sum.
template <class L, int K, bool kPairwise>
void symv_sweep(zint r0, zint r1, const double* const* c, const double* t1, const double* x, double* y,
                double* t2) {
    using V = typename L::Vec;
    constexpr zint kBytes = 8 * L::kLanes;
    double low[K];
    for (int k = 0; k < K; ++k) low[k] = 0.0;
    auto row = [&](zint i, double* sums) {
        double yi = y[i];
        for (int k = 0; k < K; ++k) {
            yi = yi + c[k][i] * t1[k];
            sums[k] += c[k][i] * x[i];
        }
        y[i] = yi;
    };
    zint i = r0;
    // Default peels to y's boundary, as its order is described; the levels above start their lanes
    // at the sweep's first row whatever the address, so that a row's arithmetic never depends on
    // where the vectors lie.
    constexpr bool kPeel = kLevel == CpuLevel::Default;
    if constexpr (kPeel) {
        for (; i < r1 && address(y + i) % kBytes != 0; ++i) row(i, low);
    }
    V sums[K], factors[K];
    for (int k = 0; k < K; ++k) {
        sums[k] = L::first_lane(low[k]);
        factors[k] = L::splat(t1[k]);
    }
    auto step = [&](zint r, V* sum) {
        const V xv = L::loadu(x + r);
        for (int k = 0; k < K; ++k) sum[k] = L::add(sum[k], L::mul(L::loadu(c[k] + r), xv));
        if constexpr (kPairwise) {
            L::storeu(y + r, L::add(L::loadu(y + r), column_products<L, K>(c, factors, r)));
        } else {
            V yv = kPeel ? L::load(y + r) : L::loadu(y + r);
            for (int k = 0; k < K; ++k) yv = L::add(yv, L::mul(L::loadu(c[k] + r), factors[k]));
            if constexpr (kPeel) {
                L::store(y + r, yv);
            } else {
                L::storeu(y + r, yv);
            }
        }
    };
    if constexpr (kPairwise) {
        // Two sets of sums, alternate steps, so that the chains of additions overlap.
        V odd[K];
        for (int k = 0; k < K; ++k) odd[k] = L::zero();
        for (; r1 - i >= 2 * L::kLanes; i += 2 * L::kLanes) {
            // Long sweeps fetch one cache line of every column per eight rows well ahead (as gemv
            // does for long columns).
            if (r1 - r0 >= 2048) {
                for (int k = 0; k < K; ++k)
                    _mm_prefetch(reinterpret_cast<const char*>(c[k] + i + 96), _MM_HINT_T0);
            }
            step(i, sums);
            step(i + L::kLanes, odd);
        }
        for (int k = 0; k < K; ++k) sums[k] = L::add(sums[k], odd[k]);
    }
    for (; r1 - i >= L::kLanes; i += L::kLanes) step(i, sums);
    double last[K];
    for (int k = 0; k < K; ++k) last[k] = L::first(sums[k]);
    for (; i < r1; ++i) {
        if constexpr (kPairwise) {
            // The same products, summed pairwise, as the vector steps give every row.
            y[i] += column_products<K>(c, t1, i);
            for (int k = 0; k < K; ++k) last[k] += c[k][i] * x[i];
        } else {
            row(i, last);
        }
    }
    for (int k = 0; k < K; ++k) t2[k] = L::sum_with_first(sums[k], last[k]);
}

// One column's sweep with any strides: pairs from the first row, no peel.
double symv_sweep_strided(zint r0, zint r1, const double* c, double t1, const double* xs, zint incx,
                          double* ys, zint incy) {
    double low = 0.0, high = 0.0;
    zint i = r0;
    for (; r1 - i >= 2; i += 2) {
        ys[i * incy] += c[i] * t1;
        ys[(i + 1) * incy] += c[i + 1] * t1;
        low += c[i] * xs[i * incx];
        high += c[i + 1] * xs[(i + 1) * incx];
    }
    if (i < r1) {
        ys[i * incy] += c[i] * t1;
        low += c[i] * xs[i * incx];
    }
    return low + high;
}

// The G by G diagonal block at j0, unit strides.
template <int G>
void symv_diagonal_block(bool upper, zint j0, double alpha, const double* a, zint lda, const double* x,
                         double* y) {
    for (zint c = j0; c < j0 + G; ++c) {
        const double* col = a + c * lda;
        const double t1 = alpha * x[c];
        double s = 0.0;
        for (zint r = upper ? j0 : c + 1; r < (upper ? c : j0 + G); ++r) {
            y[r] += col[r] * t1;
            s += col[r] * x[r];
        }
        y[c] = (y[c] + col[c] * t1) + s * alpha;
    }
}

template <class L>
void dsymv_unit(bool upper, zint n, double alpha, const double* a, zint lda, const double* x, double* y) {
    constexpr int G = 4;
    constexpr bool kPairwise = L::kLanes == 4;
    zint j = 0;
    for (; n - j >= G; j += G) {
        symv_diagonal_block<G>(upper, j, alpha, a, lda, x, y);
        const double* c[G];
        double t1[G], t2[G];
        for (int k = 0; k < G; ++k) {
            c[k] = a + (j + k) * lda;
            t1[k] = alpha * x[j + k];
        }
        symv_sweep<L, G, kPairwise>(upper ? 0 : j + G, upper ? j : n, c, t1, x, y, t2);
        for (int k = 0; k < G; ++k) y[j + k] += t2[k] * alpha;
    }
    for (; j < n; ++j) {
        const double* c = a + j * lda;
        const double t1 = alpha * x[j];
        double t2;
        y[j] = y[j] + c[j] * t1;
        symv_sweep<L, 1, kPairwise>(upper ? 0 : j + 1, upper ? j : n, &c, &t1, x, y, &t2);
        y[j] += t2 * alpha;
    }
}

void dsymv_strided(bool upper, zint n, double alpha, const double* a, zint lda, const double* xs, zint incx,
                   double* ys, zint incy) {
    for (zint j = 0; j < n; ++j) {
        const double* c = a + j * lda;
        const double t1 = alpha * xs[j * incx];
        double& yj = ys[j * incy];
        yj = yj + c[j] * t1;
        const double t2 = symv_sweep_strided(upper ? 0 : j + 1, upper ? j : n, c, t1, xs, incx, ys, incy);
        yj += t2 * alpha;
    }
}

// zhemv: one fused sweep per column, t1 = alpha*x(j), y(i) += A(i,j)*t1 and
// t2 += conj(A(i,j))*x(i) over the stored off-diagonal rows, then y(j) += t1*re(A(j,j)) and
// y(j) += alpha*t2. The conjugate products are summed as in the dot products: lanes
// (ar*xr, ai*xi) and (ar*xi, ai*xr), signed at the end.
void zhemv_column(bool upper, zint n, zint j, const zcomplex& alpha, const zcomplex* a, zint lda,
                  const zcomplex* xs, zint incx, zcomplex* ys, zint incy) {
    const zcomplex* c = a + j * lda;
    const zcomplex t1 = (xs[j * incx]) * alpha;
    const ComplexFactor f = complex_factor(t1);
    __m128d sum_a = _mm_setzero_pd(), sum_b = _mm_setzero_pd();
    for (zint i = upper ? 0 : j + 1; i < (upper ? j : n); ++i) {
        const __m128d av = _mm_loadu_pd(&c[i].re);
        const __m128d xv = _mm_loadu_pd(&xs[i * incx].re);
        double* yp = &ys[i * incy].re;
        _mm_storeu_pd(yp, _mm_add_pd(_mm_loadu_pd(yp), av * f));
        sum_a = _mm_add_pd(sum_a, _mm_mul_pd(av, xv));
        sum_b = _mm_add_pd(sum_b, _mm_mul_pd(av, _mm_shuffle_pd(xv, xv, 1)));
    }
    alignas(16) double pa[2], pb[2];
    _mm_store_pd(pa, sum_a);
    _mm_store_pd(pb, sum_b);
    const zcomplex t2{pa[0] + pa[1], pb[0] - pb[1]};
    const double diagonal = c[j].re;
    zcomplex& yj = ys[j * incy];
    yj = {yj.re + t1.re * diagonal, yj.im + t1.im * diagonal};
    yj = yj + (t2 * alpha);
}

}  // namespace

void dsymv(const char& uplo, const zint& n, const double& alpha, const double* a, const zint& lda,
           const double* x, const zint& incx, const double& beta, double* y, const zint& incy) {
    if (n <= 0 || (alpha == 0.0 && beta == 1.0)) return;
    if (beta != 1.0) scale_vector(n, beta, y, incy);
    if (alpha == 0.0) return;
    const bool upper = lsame(uplo, 'U');
    if (incx == 1 && incy == 1) {
        dsymv_unit<WideVec>(upper, n, alpha, a, lda, x, y);
    } else {
        dsymv_strided(upper, n, alpha, a, lda, x + first_element(n, incx), incx, y + first_element(n, incy),
                      incy);
    }
}

void zhemv(const char& uplo, const zint& n, const zcomplex& alpha, const zcomplex* a, const zint& lda,
           const zcomplex* x, const zint& incx, const zcomplex& beta, zcomplex* y, const zint& incy) {
    if (n <= 0 || (is_zero(alpha) && beta.re == 1.0 && beta.im == 0.0)) return;
    if (!(beta.re == 1.0 && beta.im == 0.0)) scale_vector(n, beta, y, incy);
    if (is_zero(alpha)) return;
    const bool upper = lsame(uplo, 'U');
    const zcomplex* xs = x + first_element(n, incx);
    zcomplex* ys = y + first_element(n, incy);
    for (zint j = 0; j < n; ++j) zhemv_column(upper, n, j, alpha, a, lda, xs, incx, ys, incy);
}

}  // namespace zor::ZOR_LEVEL_NS
