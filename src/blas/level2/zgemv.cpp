// zgemv: y := alpha*op(A)*x + beta*y with op 'N', 'T' or 'C' (conjugate transpose). Its order is
// open; the levels share one design, in two-lane vectors (one complex element) and, at the Avx
// level, four-lane ones (two elements).

#include "blas/kernel.hpp"
#include "blas/level2/level2.hpp"
#include "blas/simd.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// y(0..m) += K columns of A times their t(j) = alpha*x(j); y of unit stride. With t = (tr, ti):
// a*t = a*tr + swap(a*(ti, -ti)), so each row sums the columns' a*tr and a*(ti, -ti) apart and
// swaps the second sum once.
template <class L, int K>
void zgemv_n_columns(zint m, const double* const* c, const zcomplex* t, zcomplex* y) {
    using V = typename L::Vec;
    constexpr zint kElements = L::kLanes / 2;
    V real[K], imaginary[K];
    for (int k = 0; k < K; ++k) {
        real[k] = L::splat(t[k].re);
        imaginary[k] = L::pairs_of(t[k].im, -t[k].im);
    }
    zint i = 0;
    for (; m - i >= kElements; i += kElements) {
        V p = L::zero(), q = L::zero();
        for (int k = 0; k < K; ++k) {
            const V av = L::loadu(c[k] + 2 * i);
            p = L::add(p, L::mul(av, real[k]));
            q = L::add(q, L::mul(av, imaginary[k]));
        }
        L::storeu(&y[i].re, L::add(L::loadu(&y[i].re), L::add(p, L::swap_pairs(q))));
    }
    for (; i < m; ++i) {
        double pr = 0.0, pi = 0.0, qr = 0.0, qi = 0.0;
        for (int k = 0; k < K; ++k) {
            pr += c[k][2 * i] * t[k].re;
            pi += c[k][2 * i + 1] * t[k].re;
            qr += c[k][2 * i] * t[k].im;
            qi += c[k][2 * i + 1] * -t[k].im;
        }
        y[i] = {y[i].re + (pr + qi), y[i].im + (pi + qr)};
    }
}

template <class L>
void zgemv_n_unit(zint m, zint n, const zcomplex& alpha, const zcomplex* a, zint lda, const zcomplex* xs,
                  zint incx, zcomplex* y) {
    auto pass = [&]<int K>(zint j) {
        const double* c[K];
        zcomplex t[K];
        for (int k = 0; k < K; ++k) {
            c[k] = &a[(j + k) * lda].re;
            t[k] = (xs[(j + k) * incx]) * alpha;
        }
        zgemv_n_columns<L, K>(m, c, t, y);
    };
    zint j = 0;
    for (; n - j >= 4; j += 4) pass.template operator()<4>(j);
    for (; j < n; ++j) pass.template operator()<1>(j);
}

// y(j) += alpha * sum over i of op(A(i,j))*x(i) for K columns at once, x of unit stride: lane
// products (ar*xr, ai*xi) and (ar*xi, ai*xr) per column, signed at the end.
template <class L, int K, bool kConjugate>
void zgemv_t_columns(zint m, const double* const* c, const zcomplex& alpha, const zcomplex* x,
                     zcomplex* const* y) {
    using V = typename L::Vec;
    constexpr zint kElements = L::kLanes / 2;
    V p[K], q[K];
    for (int k = 0; k < K; ++k) p[k] = q[k] = L::zero();
    zint i = 0;
    for (; m - i >= kElements; i += kElements) {
        const V xv = L::loadu(&x[i].re);
        const V swapped = L::swap_pairs(xv);
        for (int k = 0; k < K; ++k) {
            const V av = L::loadu(c[k] + 2 * i);
            p[k] = L::add(p[k], L::mul(av, xv));
            q[k] = L::add(q[k], L::mul(av, swapped));
        }
    }
    for (int k = 0; k < K; ++k) {
        __m128d pk = L::pair_sum(p[k]), qk = L::pair_sum(q[k]);
        for (zint r = i; r < m; ++r) {
            const __m128d av = _mm_loadu_pd(c[k] + 2 * r), xv = _mm_loadu_pd(&x[r].re);
            pk = _mm_add_pd(pk, _mm_mul_pd(av, xv));
            qk = _mm_add_pd(qk, _mm_mul_pd(av, _mm_shuffle_pd(xv, xv, 1)));
        }
        alignas(16) double pp[2], qq[2];
        _mm_store_pd(pp, pk);
        _mm_store_pd(qq, qk);
        const zcomplex s =
            kConjugate ? zcomplex{pp[0] + pp[1], qq[0] - qq[1]} : zcomplex{pp[0] - pp[1], qq[0] + qq[1]};
        *y[k] = (*y[k]) + (s * alpha);
    }
}

template <class L, bool kConjugate>
void zgemv_t_unit(zint m, zint n, const zcomplex& alpha, const zcomplex* a, zint lda, const zcomplex* x,
                  zcomplex* ys, zint incy) {
    auto pass = [&]<int K>(zint j) {
        const double* c[K];
        zcomplex* y[K];
        for (int k = 0; k < K; ++k) {
            c[k] = &a[(j + k) * lda].re;
            y[k] = ys + (j + k) * incy;
        }
        zgemv_t_columns<L, K, kConjugate>(m, c, alpha, x, y);
    };
    zint j = 0;
    for (; n - j >= 4; j += 4) pass.template operator()<4>(j);
    for (; j < n; ++j) pass.template operator()<1>(j);
}

template <bool kConjugate>
zcomplex column_dot_strided(zint m, const zcomplex* c, const zcomplex* xs, zint incx) {
    zcomplex s{0.0, 0.0};
    for (zint i = 0; i < m; ++i) s = s + ((xs[i * incx]) * (kConjugate ? conj(c[i]) : c[i]));
    return s;
}

template <bool kConjugate>
void zgemv_t(zint m, zint n, const zcomplex& alpha, const zcomplex* a, zint lda, const zcomplex* xs,
             zint incx, zcomplex* ys, zint incy) {
    if (incx == 1) {
        zgemv_t_unit<WideVec, kConjugate>(m, n, alpha, a, lda, xs, ys, incy);
        return;
    }
    for (zint j = 0; j < n; ++j) {
        const zcomplex s = column_dot_strided<kConjugate>(m, a + j * lda, xs, incx);
        ys[j * incy] = (ys[j * incy]) + (s * alpha);
    }
}

}  // namespace

void zgemv(const char& trans, const zint& m_ref, const zint& n_ref, const zcomplex& alpha, const zcomplex* a,
           const zint& lda_ref, const zcomplex* x, const zint& incx_ref, const zcomplex& beta, zcomplex* y,
           const zint& incy_ref) {
    const zint m = m_ref, n = n_ref, lda = lda_ref, incx = incx_ref,
               incy = incy_ref;  // not re-read after every store
    const bool beta_is_one = beta.re == 1.0 && beta.im == 0.0;
    if (m <= 0 || n <= 0 || (is_zero(alpha) && beta_is_one)) return;
    const bool plain = lsame(trans, 'N');
    const zint lenx = plain ? n : m, leny = plain ? m : n;
    if (!beta_is_one) scale_vector(leny, beta, y, incy);
    if (is_zero(alpha)) return;
    const zcomplex* xs = x + first_element(lenx, incx);
    zcomplex* ys = y + first_element(leny, incy);
    if (plain) {
        if (incy == 1) {
            zgemv_n_unit<WideVec>(m, n, alpha, a, lda, xs, incx, ys);
            return;
        }
        for (zint j = 0; j < n; ++j) {
            const zcomplex t = (xs[j * incx]) * alpha;
            const zcomplex* c = a + j * lda;
            for (zint i = 0; i < m; ++i) ys[i * incy] = (ys[i * incy]) + (c[i] * t);
        }
    } else if (lsame(trans, 'C')) {
        zgemv_t<true>(m, n, alpha, a, lda, xs, incx, ys, incy);
    } else {
        zgemv_t<false>(m, n, alpha, a, lda, xs, incx, ys, incy);
    }
}

}  // namespace zor::ZOR_LEVEL_NS
