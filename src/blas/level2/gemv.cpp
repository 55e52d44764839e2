// dgemv: y := alpha*op(A)*x + beta*y. The Default variant's order of operations is fixed and
// decides the rounding; the higher levels use a blocked design whose results agree with it to
// within rounding.

#include <type_traits>

#include "blas/kernel.hpp"
#include "blas/level2/level2.hpp"
#include "blas/simd.hpp"
#include "blas/vector.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

// Strided vectors are gathered into local buffers of this many elements.
constexpr zint kGatherBlock = 128;
// Columns of at least this many elements are fetched ahead, this many elements ahead: they stream
// from beyond the caches, one stream a column, more than the hardware follows on its own. (On
// shorter columns the fetches cost more than they save.)
constexpr zint kLongColumn = 2048;
constexpr zint kPrefetchAhead = 96;

// --- Default -----------------------------------------------------------------------------------

// Not transposed: columns in groups of four, t_k = x(j+k)*alpha, and for every row
// y(i) := ((((A(i,j)*t0) + y(i)) + A(i,j+1)*t1) + A(i,j+2)*t2) + A(i,j+3)*t3; the last n mod 4
// columns one at a time, y(i) := y(i) + A(i,j)*t.
[[maybe_unused]] void gemv_n_default(zint m, zint n, double alpha, const double* a, zint lda,
                                     const double* xs, zint incx, double* ys, zint incy) {
    zint j = 0;
    for (; n - j >= 4; j += 4) {
        const double* c0 = a + j * lda;
        const double *c1 = c0 + lda, *c2 = c1 + lda, *c3 = c2 + lda;
        const double t0 = xs[j * incx] * alpha, t1 = xs[(j + 1) * incx] * alpha;
        const double t2 = xs[(j + 2) * incx] * alpha, t3 = xs[(j + 3) * incx] * alpha;
        auto row = [&](zint i, double y) {
            return ((((c0[i] * t0) + y) + c1[i] * t1) + c2[i] * t2) + c3[i] * t3;
        };
        if (incy != 1) {
            for (zint i = 0; i < m; ++i) ys[i * incy] = row(i, ys[i * incy]);
            continue;
        }
        zint i = 0;
        for (; i < m && !aligned16(ys + i); ++i) ys[i] = row(i, ys[i]);
        const __m128d v0 = _mm_set1_pd(t0), v1 = _mm_set1_pd(t1), v2 = _mm_set1_pd(t2), v3 = _mm_set1_pd(t3);
        for (; m - i >= 8; i += 8) {
            for (int k = 0; k < 8; k += 2) {
                const zint r = i + k;
                __m128d y = _mm_add_pd(_mm_mul_pd(_mm_loadu_pd(c0 + r), v0), _mm_load_pd(ys + r));
                y = _mm_add_pd(y, _mm_mul_pd(_mm_loadu_pd(c1 + r), v1));
                y = _mm_add_pd(y, _mm_mul_pd(_mm_loadu_pd(c2 + r), v2));
                _mm_store_pd(ys + r, _mm_add_pd(y, _mm_mul_pd(_mm_loadu_pd(c3 + r), v3)));
            }
        }
        for (; i < m; ++i) ys[i] = row(i, ys[i]);
    }
    for (; j < n; ++j) {
        const double* c = a + j * lda;
        const double t = xs[j * incx] * alpha;
        for (zint i = 0; i < m; ++i) ys[i * incy] = ys[i * incy] + c[i] * t;
    }
}

// Transposed, one column: s = A(1)*x(1); rows singly until the column is on a 16-byte boundary;
// then pairs into a two-lane sum whose low lane starts at s; s = low + high; a last row.
double column_dot_default(zint m, const double* c, const double* xs, zint incx) {
    double s = c[0] * xs[0];
    zint i = 1;
    for (; i < m && !aligned16(c + i); ++i) s += c[i] * xs[i * incx];
    __m128d pair = _mm_set_sd(s);
    for (; m - i >= 2; i += 2) {
        const __m128d xv = incx == 1 ? _mm_loadu_pd(xs + i) : _mm_set_pd(xs[(i + 1) * incx], xs[i * incx]);
        pair = _mm_add_pd(pair, _mm_mul_pd(_mm_load_pd(c + i), xv));
    }
    s = lane_sum(pair);
    if (i < m) s += c[i] * xs[i * incx];
    return s;
}

// y(j) := s_j*alpha + y(j).
[[maybe_unused]] void gemv_t_default(zint m, zint n, double alpha, const double* a, zint lda,
                                     const double* xs, zint incx, double* ys, zint incy) {
    for (zint j = 0; j < n; ++j) {
        const double s = column_dot_default(m, a + j * lda, xs, incx);
        ys[j * incy] = s * alpha + ys[j * incy];
    }
}

// --- The blocked design of the higher levels ----------------------------------------------------

// One pass of K columns over y(0..m): each row takes y + (the columns' products summed pairwise).
template <class L, int K>
void gemv_n_pass(zint m, const double* const* c, const double* t, double* y) {
    using V = typename L::Vec;
    constexpr zint kBytes = 8 * L::kLanes;
    zint i = 0;
    for (; i < m && address(y + i) % kBytes != 0; ++i) y[i] += column_products<K>(c, t, i);
    V factors[K];
    for (int k = 0; k < K; ++k) factors[k] = L::splat(t[k]);
    for (; m - i >= 2 * L::kLanes; i += 2 * L::kLanes) {
        // One cache line of every column per eight rows.
        if (m >= kLongColumn && i % 8 < 2 * L::kLanes) {
            for (int k = 0; k < K; ++k)
                _mm_prefetch(reinterpret_cast<const char*>(c[k] + i + kPrefetchAhead), _MM_HINT_T0);
        }
        L::store(y + i, L::add(L::load(y + i), column_products<L, K>(c, factors, i)));
        L::store(y + i + L::kLanes,
                 L::add(L::load(y + i + L::kLanes), column_products<L, K>(c, factors, i + L::kLanes)));
    }
    for (; m - i >= L::kLanes; i += L::kLanes) {
        L::store(y + i, L::add(L::load(y + i), column_products<L, K>(c, factors, i)));
    }
    for (; i < m; ++i) y[i] += column_products<K>(c, t, i);
}

// y(0..m) += A(0..m, 0..n) * (alpha*x), x and y of unit stride: passes of eight columns at the
// Avx level (four below), then of four, then single columns.
template <class L>
void gemv_n_block(zint m, zint n, double alpha, const double* a, zint lda, const double* x, double* y) {
    constexpr int kWide = 2 * L::kLanes;
    zint j = 0;
    auto pass = [&]<int K>(std::integral_constant<int, K>) {
        for (; n - j >= K; j += K) {
            const double* c[K];
            double t[K];
            for (int k = 0; k < K; ++k) {
                c[k] = a + (j + k) * lda;
                t[k] = alpha * x[j + k];
            }
            gemv_n_pass<L, K>(m, c, t, y);
        }
    };
    pass(std::integral_constant<int, kWide>{});
    pass(std::integral_constant<int, 4>{});
    pass(std::integral_constant<int, 1>{});
}

// y(j) += alpha * A(0..m, j)' x for n columns, x of unit stride. Four columns a pass, two vector
// sums per column, the lanes starting at row 0 whatever the address (loads unaligned), so that the
// result does not depend on where A lies; the rows beyond the last whole step are summed singly.
template <class L>
void gemv_t_block(zint m, zint n, double alpha, const double* a, zint lda, const double* x, double* ys,
                  zint incy) {
    using V = typename L::Vec;
    zint j = 0;
    for (; n - j >= 4; j += 4) {
        const double* c[4] = {a + j * lda, a + (j + 1) * lda, a + (j + 2) * lda, a + (j + 3) * lda};
        double s[4] = {0.0, 0.0, 0.0, 0.0};
        zint i = 0;
        V sum0[4] = {L::zero(), L::zero(), L::zero(), L::zero()};
        V sum1[4] = {L::zero(), L::zero(), L::zero(), L::zero()};
        for (; m - i >= 2 * L::kLanes; i += 2 * L::kLanes) {
            if (m >= kLongColumn && i % 8 < 2 * L::kLanes) {
                for (int k = 0; k < 4; ++k)
                    _mm_prefetch(reinterpret_cast<const char*>(c[k] + i + kPrefetchAhead), _MM_HINT_T0);
            }
            const V x0 = L::loadu(x + i), x1 = L::loadu(x + i + L::kLanes);
            for (int k = 0; k < 4; ++k) {
                sum0[k] = L::add(sum0[k], L::mul(L::loadu(c[k] + i), x0));
                sum1[k] = L::add(sum1[k], L::mul(L::loadu(c[k] + i + L::kLanes), x1));
            }
        }
        for (; i < m; ++i) {
            for (int k = 0; k < 4; ++k) s[k] += c[k][i] * x[i];
        }
        for (int k = 0; k < 4; ++k) ys[(j + k) * incy] += alpha * (L::sum(L::add(sum0[k], sum1[k])) + s[k]);
    }
    for (; j < n; ++j) {
        const double* c = a + j * lda;
        V sum = L::zero();
        zint i = 0;
        for (; m - i >= L::kLanes; i += L::kLanes)
            sum = L::add(sum, L::mul(L::loadu(c + i), L::loadu(x + i)));
        double s = L::sum(sum);
        for (; i < m; ++i) s += c[i] * x[i];
        ys[j * incy] += alpha * s;
    }
}

// Copies count elements of a strided vector into a 32-byte aligned buffer.
void gather(zint count, const double* vs, zint inc, double* buffer) {
    for (zint k = 0; k < count; ++k) buffer[k] = vs[k * inc];
}

[[maybe_unused]] void gemv_blocked(bool plain, zint m, zint n, double alpha, const double* a, zint lda,
                                   const double* xs, zint incx, double* ys, zint incy) {
    using L = WideVec;
    alignas(32) double xbuffer[kGatherBlock];
    alignas(32) double ybuffer[kGatherBlock];
    if (plain) {
        if (incx == 1 && incy == 1) {
            gemv_n_block<L>(m, n, alpha, a, lda, xs, ys);
            return;
        }
        // Row blocks of y (gathered when strided) against column blocks of x (gathered when
        // strided).
        for (zint i0 = 0; i0 < m; i0 += (incy == 1 ? m : kGatherBlock)) {
            const zint rows = incy == 1 ? m : (m - i0 < kGatherBlock ? m - i0 : kGatherBlock);
            double* yblock = ys + i0;
            if (incy != 1) {
                gather(rows, ys + i0 * incy, incy, ybuffer);
                yblock = ybuffer;
            }
            for (zint j0 = 0; j0 < n; j0 += kGatherBlock) {
                const zint columns = n - j0 < kGatherBlock ? n - j0 : kGatherBlock;
                const double* xblock = xs + j0;
                if (incx != 1) {
                    gather(columns, xs + j0 * incx, incx, xbuffer);
                    xblock = xbuffer;
                }
                gemv_n_block<L>(rows, columns, alpha, a + i0 + j0 * lda, lda, xblock, yblock);
            }
            if (incy != 1) {
                for (zint k = 0; k < rows; ++k) ys[(i0 + k) * incy] = ybuffer[k];
            }
        }
        return;
    }
    auto sweep = [&](zint rows, const double* ablock, const double* xblock) {
        gemv_t_block<L>(rows, n, alpha, ablock, lda, xblock, ys, incy);
    };
    if (incx == 1) {
        sweep(m, a, xs);
        return;
    }
    for (zint i0 = 0; i0 < m; i0 += kGatherBlock) {
        const zint rows = m - i0 < kGatherBlock ? m - i0 : kGatherBlock;
        gather(rows, xs + i0 * incx, incx, xbuffer);
        sweep(rows, a + i0, xbuffer);
    }
}

}  // namespace

void dgemv(const char& trans, const zint& m, const zint& n, const double& alpha, const double* a,
           const zint& lda, const double* x, const zint& incx, const double& beta, double* y,
           const zint& incy) {
    if (m <= 0 || n <= 0 || (alpha == 0.0 && beta == 1.0)) return;
    const bool plain = lsame(trans, 'N');
    const zint lenx = plain ? n : m, leny = plain ? m : n;
    if (beta != 1.0) scale_vector(leny, beta, y, incy);
    if (alpha == 0.0) return;
    const double* xs = x + first_element(lenx, incx);
    double* ys = y + first_element(leny, incy);
    if constexpr (kLevel != CpuLevel::Default) {
        // The blocked paths need every operand on an 8-byte boundary.
        if (aligned8(a) && aligned8(x) && aligned8(y)) {
            gemv_blocked(plain, m, n, alpha, a, lda, xs, incx, ys, incy);
            return;
        }
    }
    if (plain) {
        gemv_n_default(m, n, alpha, a, lda, xs, incx, ys, incy);
    } else {
        gemv_t_default(m, n, alpha, a, lda, xs, incx, ys, incy);
    }
}

}  // namespace zor::ZOR_LEVEL_NS
