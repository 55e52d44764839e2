// zgemv: y := alpha*op(A)*x + beta*y with op 'N', 'T' or 'C' (conjugate transpose). Its order is
// open; the levels share one design, in two-lane vectors (one complex element) and, at the Avx
// level, four-lane ones (two elements).

#include "blas/kernel.hpp"
#include "blas/lanes.hpp"
#include "blas/level2/level2.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// y(0..m) += A(0..m, 0..n) * t with t(j) = alpha*x(j); y of unit stride. Four columns a pass.
template <class L>
void zgemv_n_unit(zint m, zint n, const zcomplex& alpha, const zcomplex* a, zint lda, const zcomplex* xs,
                  zint incx, zcomplex* y) {
    using V = typename L::V;
    constexpr zint kElements = L::kWidth / 2;
    zint j = 0;
    for (; j < n; j += 4) {
        const int columns = n - j < 4 ? static_cast<int>(n - j) : 4;
        const zcomplex* c[4];
        typename L::Factor f[4];
        ComplexFactor f2[4];
        for (int k = 0; k < columns; ++k) {
            const zcomplex t = complex_times(xs[(j + k) * incx], alpha);
            c[k] = a + (j + k) * lda;
            f[k] = L::factor(t);
            f2[k] = complex_factor(t);
        }
        zint i = 0;
        for (; m - i >= kElements; i += kElements) {
            V sum = complex_times(L::loadu(&c[0][i].re), f[0]);
            for (int k = 1; k < columns; ++k) sum = L::add(sum, complex_times(L::loadu(&c[k][i].re), f[k]));
            L::storeu(&y[i].re, L::add(L::loadu(&y[i].re), sum));
        }
        for (; i < m; ++i) {
            __m128d sum = complex_times(_mm_loadu_pd(&c[0][i].re), f2[0]);
            for (int k = 1; k < columns; ++k)
                sum = _mm_add_pd(sum, complex_times(_mm_loadu_pd(&c[k][i].re), f2[k]));
            _mm_storeu_pd(&y[i].re, _mm_add_pd(_mm_loadu_pd(&y[i].re), sum));
        }
    }
}

// sum over i of op(A(i,j))*x(i) for one column: lane products (ar*xr, ai*xi) and (ar*xi, ai*xr),
// signed at the end; x of unit stride.
template <class L, bool kConjugate>
zcomplex column_dot(zint m, const zcomplex* c, const zcomplex* x) {
    using V = typename L::V;
    constexpr zint kElements = L::kWidth / 2;
    V p0 = L::zero(), q0 = L::zero(), p1 = L::zero(), q1 = L::zero();
    zint i = 0;
    for (; m - i >= 2 * kElements; i += 2 * kElements) {
        const V a0 = L::loadu(&c[i].re), x0 = L::loadu(&x[i].re);
        const V a1 = L::loadu(&c[i + kElements].re), x1 = L::loadu(&x[i + kElements].re);
        p0 = L::add(p0, L::mul(a0, x0));
        q0 = L::add(q0, L::mul(a0, L::swap_pairs(x0)));
        p1 = L::add(p1, L::mul(a1, x1));
        q1 = L::add(q1, L::mul(a1, L::swap_pairs(x1)));
    }
    __m128d p = L::pair_sum(L::add(p0, p1)), q = L::pair_sum(L::add(q0, q1));
    for (; i < m; ++i) {
        const __m128d av = _mm_loadu_pd(&c[i].re), xv = _mm_loadu_pd(&x[i].re);
        p = _mm_add_pd(p, _mm_mul_pd(av, xv));
        q = _mm_add_pd(q, _mm_mul_pd(av, _mm_shuffle_pd(xv, xv, 1)));
    }
    alignas(16) double pp[2], qq[2];
    _mm_store_pd(pp, p);
    _mm_store_pd(qq, q);
    if constexpr (kConjugate) return {pp[0] + pp[1], qq[0] - qq[1]};
    return {pp[0] - pp[1], qq[0] + qq[1]};
}

template <bool kConjugate>
zcomplex column_dot_strided(zint m, const zcomplex* c, const zcomplex* xs, zint incx) {
    zcomplex s{0.0, 0.0};
    for (zint i = 0; i < m; ++i)
        s = complex_plus(s, complex_times(xs[i * incx], kConjugate ? conjugate(c[i]) : c[i]));
    return s;
}

template <bool kConjugate>
void zgemv_t(zint m, zint n, const zcomplex& alpha, const zcomplex* a, zint lda, const zcomplex* xs,
             zint incx, zcomplex* ys, zint incy) {
    for (zint j = 0; j < n; ++j) {
        const zcomplex* c = a + j * lda;
        const zcomplex s = incx == 1 ? column_dot<WideLanes, kConjugate>(m, c, xs)
                                     : column_dot_strided<kConjugate>(m, c, xs, incx);
        ys[j * incy] = complex_plus(ys[j * incy], complex_times(s, alpha));
    }
}

}  // namespace

void zgemv(const char& trans, const zint& m, const zint& n, const zcomplex& alpha, const zcomplex* a,
           const zint& lda, const zcomplex* x, const zint& incx, const zcomplex& beta, zcomplex* y,
           const zint& incy) {
    const bool beta_is_one = beta.re == 1.0 && beta.im == 0.0;
    if (m <= 0 || n <= 0 || (is_zero(alpha) && beta_is_one)) return;
    const bool plain = is_plain(trans);
    const zint lenx = plain ? n : m, leny = plain ? m : n;
    if (!beta_is_one) scale_vector(leny, beta, y, incy);
    if (is_zero(alpha)) return;
    const zcomplex* xs = x + first_element(lenx, incx);
    zcomplex* ys = y + first_element(leny, incy);
    if (plain) {
        if (incy == 1) {
            zgemv_n_unit<WideLanes>(m, n, alpha, a, lda, xs, incx, ys);
            return;
        }
        for (zint j = 0; j < n; ++j) {
            const zcomplex t = complex_times(xs[j * incx], alpha);
            const zcomplex* c = a + j * lda;
            for (zint i = 0; i < m; ++i) ys[i * incy] = complex_plus(ys[i * incy], complex_times(c[i], t));
        }
    } else if (is_conjugate(trans)) {
        zgemv_t<true>(m, n, alpha, a, lda, xs, incx, ys, incy);
    } else {
        zgemv_t<false>(m, n, alpha, a, lda, xs, incx, ys, incy);
    }
}

}  // namespace zor::ZOR_LEVEL_NS
