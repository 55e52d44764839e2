#pragma once
// The kernels of the tridiagonal reduction, written once for every vector width.
//
// The symmetric (Hermitian) product y := A x of the one-stage reduction: A is read from its stored triangle a
// block of K columns at a time, and each block is one sweep over its rows that both adds A(rows, block)
// x(block) into y and gathers A(rows, block)ᴴ x(rows) for the block's own rows of y, so the triangle is read
// once. The K by K diagonal block is applied element by element first. Rows go by vectors of L::kLanes
// doubles (a complex element is two), the rows left over one at a time. The order of the additions, and so
// the rounding, differs between widths; a path with FMA fuses the products.
//
// The steps of the two-stage reduction's bulge chase, on blocks of at most kd rows and columns:
// the product of a block with a reflector from the right, from the left, and from both sides of a
// Hermitian diagonal block (the lower triangle), each column a vector operation (vectors of
// L::kLanes doubles, a complex element two of them; the rows left over one at a time).
//
// Included by kernel sources (compiled per level, some under target pragmas of their own): internal
// linkage in the level namespace.

#include <immintrin.h>

#include <cstdint>

#include "blas/kernel.hpp"
#include "service/element.hpp"

namespace zor {

// The kernels of one path of a level, by element type (the flag of the products: upper triangle).
struct ReductionKernels {
    void (*dsymv)(bool upper, zint n, const double* a, zint lda, const double* x, double* y);
    void (*zhemv)(bool upper, zint n, const zcomplex* a, zint lda, const zcomplex* x, zcomplex* y);
    void (*dright)(zint rows, zint cols, double* b, zint ldb, const double* v, double tau, double* w);
    void (*zright)(zint rows, zint cols, zcomplex* b, zint ldb, const zcomplex* v, zcomplex tau, zcomplex* w);
    void (*dleft)(zint rows, zint cols, double* b, double* d, zint ld, const double* v, double tau,
                  double* w);
    void (*zleft)(zint rows, zint cols, zcomplex* b, zcomplex* d, zint ld, const zcomplex* v, zcomplex tau,
                  zcomplex* w);
};

}  // namespace zor

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

// ---- the bulge chase ------------------------------------------------------------------------------

// y(0 : count) += f x, f a scalar of the element type.
template <class L>
void chase_axpy(zint count, double f, const double* x, double* y) {
    using V = typename L::Vec;
    const V fv = L::broadcast(&f);
    zint i = 0;
    for (; count - i >= L::kLanes; i += L::kLanes)
        L::storeu(y + i, L::mul_add(L::loadu(x + i), fv, L::loadu(y + i)));
    for (; i < count; ++i) y[i] += x[i] * f;
}
template <class L>
void chase_axpy(zint count, const zcomplex& f, const zcomplex* x, zcomplex* y) {
    using V = typename L::Vec;
    constexpr int kPerVector = L::kLanes / 2;
    alignas(64) double signed_imaginary[L::kLanes];
    for (int l = 0; l < L::kLanes; l += 2) {
        signed_imaginary[l] = -f.im;
        signed_imaginary[l + 1] = f.im;
    }
    const V re = L::broadcast(&f.re), im = L::loadu(signed_imaginary);
    zint i = 0;
    for (; count - i >= kPerVector; i += kPerVector) {
        const V xv = L::loadu(&x[i].re);
        const V yv = L::mul_add(xv, re, L::loadu(&y[i].re));
        L::storeu(&y[i].re, L::mul_add(L::swap_pairs(xv), im, yv));
    }
    for (; i < count; ++i) y[i] = y[i] + x[i] * f;
}

// y(0 : count) += f x + g z, real data, in one pass.
template <class L>
void chase_axpy2(zint count, double f, const double* x, double g, const double* z, double* y) {
    using V = typename L::Vec;
    const V fv = L::broadcast(&f), gv = L::broadcast(&g);
    zint i = 0;
    for (; count - i >= L::kLanes; i += L::kLanes)
        L::storeu(y + i, L::mul_add(L::loadu(z + i), gv, L::mul_add(L::loadu(x + i), fv, L::loadu(y + i))));
    for (; i < count; ++i) y[i] = (y[i] + x[i] * f) + z[i] * g;
}

// Σ conj(x_i) y_i over count elements.
template <class L>
double chase_dotc(zint count, const double* x, const double* y) {
    using V = typename L::Vec;
    V sum = L::zero();
    zint i = 0;
    for (; count - i >= L::kLanes; i += L::kLanes) sum = L::mul_add(L::loadu(x + i), L::loadu(y + i), sum);
    alignas(64) double lanes[L::kLanes];
    L::storeu(lanes, sum);
    double s = 0.0;
    for (int l = 0; l < L::kLanes; ++l) s += lanes[l];
    for (; i < count; ++i) s += x[i] * y[i];
    return s;
}
template <class L>
zcomplex chase_dotc(zint count, const zcomplex* x, const zcomplex* y) {
    using V = typename L::Vec;
    constexpr int kPerVector = L::kLanes / 2;
    V direct = L::zero(), crossed = L::zero();
    zint i = 0;
    for (; count - i >= kPerVector; i += kPerVector) {
        const V xv = L::loadu(&x[i].re), yv = L::loadu(&y[i].re);
        direct = L::mul_add(xv, yv, direct);
        crossed = L::mul_add(xv, L::swap_pairs(yv), crossed);
    }
    alignas(64) double d[L::kLanes], c[L::kLanes];
    L::storeu(d, direct);
    L::storeu(c, crossed);
    zcomplex s{0.0, 0.0};
    for (int l = 0; l < L::kLanes; l += 2) s = {s.re + (d[l] + d[l + 1]), s.im + (c[l] - c[l + 1])};
    for (; i < count; ++i) s = s + conj(x[i]) * y[i];
    return s;
}

// f.template operator()<R>() for R = count, 0 <= count <= 8: the register-held kernels below are
// instantiated for each number of vectors. Returns false for a larger count.
template <class F>
bool with_vector_count(zint count, F&& f) {
    switch (count) {
        case 0:
            f.template operator()<0>();
            return true;
        case 1:
            f.template operator()<1>();
            return true;
        case 2:
            f.template operator()<2>();
            return true;
        case 3:
            f.template operator()<3>();
            return true;
        case 4:
            f.template operator()<4>();
            return true;
        case 5:
            f.template operator()<5>();
            return true;
        case 6:
            f.template operator()<6>();
            return true;
        case 7:
            f.template operator()<7>();
            return true;
        case 8:
            f.template operator()<8>();
            return true;
        default:
            return false;
    }
}

// B := B H for the rows by cols B and H = I - tau v vᴴ: w = B v, B := B - tau w vᴴ. Real data goes
// by chunks of up to 8 vectors of rows whose w stays in registers over both passes; complex data
// column by column through w in memory.
template <class L, int R>
void chase_right_chunk(zint cols, double* b, zint ldb, const double* v, double tau) {
    using V = typename L::Vec;
    V w[R];
    for (int r = 0; r < R; ++r) w[r] = L::zero();
    for (zint j = 0; j < cols; ++j) {
        const V f = L::broadcast(v + j);
        const double* column = b + j * ldb;
        for (int r = 0; r < R; ++r) w[r] = L::mul_add(L::loadu(column + r * L::kLanes), f, w[r]);
    }
    for (zint j = 0; j < cols; ++j) {
        const double g = -tau * v[j];
        const V f = L::broadcast(&g);
        double* column = b + j * ldb;
        for (int r = 0; r < R; ++r)
            L::storeu(column + r * L::kLanes, L::mul_add(w[r], f, L::loadu(column + r * L::kLanes)));
    }
}

template <class L, class T>
void chase_right(zint rows, zint cols, T* b, zint ldb, const T* v, T tau, T* w) {
    if constexpr (!kIsComplex<T>) {
        constexpr zint kChunk = 8 * L::kLanes;
        zint i = 0;
        for (; rows - i >= kChunk; i += kChunk) chase_right_chunk<L, 8>(cols, b + i, ldb, v, tau);
        with_vector_count((rows - i) / L::kLanes,
                          [&]<int R>() { chase_right_chunk<L, R>(cols, b + i, ldb, v, tau); });
        // The last rows, fewer than a vector, one at a time.
        for (zint r = i + (rows - i) / L::kLanes * L::kLanes; r < rows; ++r) {
            double s = 0.0;
            for (zint j = 0; j < cols; ++j) s += b[r + j * ldb] * v[j];
            for (zint j = 0; j < cols; ++j) b[r + j * ldb] -= tau * v[j] * s;
        }
        (void)w;
    } else {
        for (zint i = 0; i < rows; ++i) w[i] = zero<T>();
        for (zint j = 0; j < cols; ++j) chase_axpy<L>(rows, v[j], b + j * ldb, w);
        for (zint j = 0; j < cols; ++j) chase_axpy<L>(rows, -(tau * conj(v[j])), w, b + j * ldb);
    }
}

// The lane sums of L::kLanes vectors as one vector: lane k is the sum of acc[k]'s lanes (a
// transpose, then one addition per vector: no store and reload per sum).
template <class L>
typename L::Vec lane_sums(typename L::Vec (&acc)[L::kLanes]) {
    L::transpose(acc);
    typename L::Vec sum = acc[0];
    for (int k = 1; k < L::kLanes; ++k) sum = L::add(sum, acc[k]);
    return sum;
}

// Lane masks as bit patterns: at_least[k] keeps lanes k.., beyond[k] lanes k + 1.. (all bits set)
// and clears the others (no bits set), so that a masked element is zero whatever it held, NaN too.
template <int kLanes>
struct LaneMasks {
    std::uint64_t at_least[kLanes][kLanes], beyond[kLanes][kLanes];
    constexpr LaneMasks() : at_least{}, beyond{} {
        for (int k = 0; k < kLanes; ++k) {
            for (int l = 0; l < kLanes; ++l) {
                at_least[k][l] = l >= k ? ~std::uint64_t{0} : 0;
                beyond[k][l] = l > k ? ~std::uint64_t{0} : 0;
            }
        }
    }
};

// The lanes of a that a mask of LaneMasks keeps, the others zero.
inline __m128d keep_lanes(__m128d a, const std::uint64_t* mask) {
    return _mm_and_pd(a, _mm_loadu_pd(reinterpret_cast<const double*>(mask)));
}
#if ZOR_LEVEL == 4
inline __m256d keep_lanes(__m256d a, const std::uint64_t* mask) {
    return _mm256_and_pd(a, _mm256_loadu_pd(reinterpret_cast<const double*>(mask)));
}
[[gnu::target("avx512f")]] inline __m512d keep_lanes(__m512d a, const std::uint64_t* mask) {
    return _mm512_castsi512_pd(_mm512_and_epi64(_mm512_castpd_si512(a), _mm512_loadu_si512(mask)));
}
#endif

// B := Hᴴ B for the rows by cols B, real data with R full vectors of rows (and fewer than a vector
// after them): v stays in registers; z = Bᴴ v by groups of L::kLanes columns (their sums by
// lane_sums), then B := B - tau v zᵀ column by column.
template <class L, int R>
void chase_left_registers(zint rows, zint cols, double* b, zint ldb, const double* v, double tau) {
    using V = typename L::Vec;
    constexpr int G = L::kLanes;
    V vr[R];
    for (int r = 0; r < R; ++r) vr[r] = L::loadu(v + r * G);
    const zint tail = R * G;
    const auto update = [&](double* column, double z) {
        for (zint r = tail; r < rows; ++r) z += column[r] * v[r];
        const double g = -tau * z;
        const V f = L::broadcast(&g);
        for (int r = 0; r < R; ++r) L::storeu(column + r * G, L::mul_add(vr[r], f, L::loadu(column + r * G)));
        for (zint r = tail; r < rows; ++r) column[r] += v[r] * g;
    };
    zint j = 0;
    for (; cols - j >= G; j += G) {
        V acc[G];
        for (int k = 0; k < G; ++k) {
            const double* column = b + (j + k) * ldb;
            acc[k] = L::zero();
            for (int r = 0; r < R; ++r) acc[k] = L::mul_add(L::loadu(column + r * G), vr[r], acc[k]);
        }
        alignas(64) double z[G];
        L::storeu(z, lane_sums<L>(acc));
        for (int k = 0; k < G; ++k) update(b + (j + k) * ldb, z[k]);
    }
    for (; j < cols; ++j) {
        double* column = b + j * ldb;
        V acc = L::zero();
        for (int r = 0; r < R; ++r) acc = L::mul_add(L::loadu(column + r * G), vr[r], acc);
        alignas(64) double lanes[G];
        L::storeu(lanes, acc);
        double z = 0.0;
        for (int l = 0; l < G; ++l) z += lanes[l];
        update(column, z);
    }
}

// B := Hᴴ B for the rows by cols B: z = Bᴴ v, B := B - conj(tau) v zᴴ. Real data keeps v in
// registers up to 8 vectors of rows; longer columns and complex data go column by column.
template <class L, class T>
void chase_left(zint rows, zint cols, T* b, zint ldb, const T* v, T tau) {
    if constexpr (!kIsComplex<T>) {
        const auto registers = [&]<int R>() { chase_left_registers<L, R>(rows, cols, b, ldb, v, tau); };
        if (with_vector_count(rows / L::kLanes, registers)) return;
    }
    for (zint j = 0; j < cols; ++j) {
        T* column = b + j * ldb;
        chase_axpy<L>(rows, -(conj(tau) * chase_dotc<L>(rows, v, column)), v, column);
    }
}

// x := D v for the order by order symmetric D of the lower triangle, real data: groups of G =
// L::kLanes columns; within a group's G rows the lower part (the diagonal included) goes into x by
// masked columns and the part below the diagonal, read across, into the group's inner products,
// whose sums come out of lane_sums; the rows below the group by whole vectors, the last rows one at
// a time. The masked loads read the other triangle's elements of the group's rows (inside the
// columns' storage) and drop them by their bits.
template <class L>
void chase_symmetric_product(zint order, const double* d, zint ldd, const double* v, double* x) {
    using V = typename L::Vec;
    constexpr int G = L::kLanes;
    static constexpr LaneMasks<G> kMasks{};
    for (zint i = 0; i < order; ++i) x[i] = 0.0;
    zint j = 0;
    for (; order - j >= G; j += G) {
        V acc[G], factors[G];
        const V vg = L::loadu(v + j);
        V xg = L::loadu(x + j);
        for (int k = 0; k < G; ++k) {
            const double* column = d + (j + k) * ldd;
            factors[k] = L::broadcast(v + j + k);
            const V a = L::loadu(column + j);
            xg = L::mul_add(keep_lanes(a, kMasks.at_least[k]), factors[k], xg);
            acc[k] = L::mul(keep_lanes(a, kMasks.beyond[k]), vg);
        }
        L::storeu(x + j, xg);
        zint i = j + G;
        for (; order - i >= G; i += G) {
            const V vv = L::loadu(v + i);
            V xv = L::loadu(x + i);
            for (int k = 0; k < G; ++k) {
                const V a = L::loadu(d + i + (j + k) * ldd);
                xv = L::mul_add(a, factors[k], xv);
                acc[k] = L::mul_add(a, vv, acc[k]);
            }
            L::storeu(x + i, xv);
        }
        alignas(64) double t[G];
        L::storeu(t, lane_sums<L>(acc));
        for (int k = 0; k < G; ++k) {
            const double* column = d + (j + k) * ldd;
            for (zint r = i; r < order; ++r) {
                x[r] += column[r] * v[j + k];
                t[k] += column[r] * v[r];
            }
            x[j + k] += t[k];
        }
    }
    for (; j < order; ++j) {
        const double* column = d + j * ldd;
        double t = 0.0;
        x[j] += column[j] * v[j];
        for (zint r = j + 1; r < order; ++r) {
            x[r] += column[r] * v[j];
            t += column[r] * v[r];
        }
        x[j] += t;
    }
}

// D := Hᴴ D H for the order by order Hermitian D of the lower triangle, as one rank-2 update:
// x = tau D v, w = x - (tau/2)(xᴴ v) v, D := D - v wᴴ - w vᴴ, the diagonal kept real.
template <class L, int K, class T>
void chase_both_sides(zint order, T* d, zint ldd, const T* v, T tau, T* x) {
    if constexpr (kIsComplex<T>) {
        reduction_product<L, K>(false, order, d, ldd, v, x);
    } else {
        chase_symmetric_product<L>(order, d, ldd, v, x);
    }
    for (zint i = 0; i < order; ++i) x[i] = tau * x[i];
    const T alpha = (-0.5 * tau) * chase_dotc<L>(order, x, v);
    chase_axpy<L>(order, alpha, v, x);
    for (zint j = 0; j < order; ++j) {
        T* column = d + j * ldd;
        if constexpr (kIsComplex<T>) {
            chase_axpy<L>(order - j, -conj(x[j]), v + j, column + j);
            chase_axpy<L>(order - j, -conj(v[j]), x + j, column + j);
        } else {
            chase_axpy2<L>(order - j, -x[j], v + j, -v[j], x + j, column + j);
        }
        column[j] = real_part(column[j]);
    }
}

// B := Hᴴ B, then D := Hᴴ D H: one step of the chase after its reflector is made.
template <class L, int K, class T>
void chase_left_both(zint rows, zint cols, T* b, T* d, zint ld, const T* v, T tau, T* w) {
    chase_left<L>(rows, cols, b, ld, v, tau);
    chase_both_sides<L, K>(rows, d, ld, v, tau, w);
}

// The table of a path: the products with real blocks of KR columns and complex of KC.
template <class L, int KR, int KC>
constexpr ReductionKernels make_reduction_kernels() {
    return {&reduction_product<L, KR, double>, &reduction_product<L, KC, zcomplex>,
            &chase_right<L, double>,           &chase_right<L, zcomplex>,
            &chase_left_both<L, KR, double>,   &chase_left_both<L, KC, zcomplex>};
}

}  // namespace

// The Avx variant's paths for processors with AVX-512F, and with FMA but not AVX-512F (defined in
// the Avx variant only; the other levels never call them).
const ReductionKernels& reduction_kernels_avx512();
const ReductionKernels& reduction_kernels_fma();

}  // namespace zor::ZOR_LEVEL_NS
