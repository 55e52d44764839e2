// The 512-bit FMA path of the Avx GEMM variants. Compiled into the Avx variant only: the other
// levels compile this file to nothing, so that no EVEX code can reach them.
//
// The packed formats are those of the table-driven design: A in panels of 4 rows (real) or 2
// complex rows, B in panels of 8 columns (real) or 4 complex columns, each depth index of a B panel
// one 512-bit vector. A step broadcasts the values of 2 A panels and multiplies them with 3 B
// vectors: six neighbouring register tiles of the 4 x 8 tiling at once, 24 independent
// accumulators, enough to keep both FMA units busy through their latency. The accumulators hold
// rows of C; the epilogue transposes them into columns.

#include "blas/kernel.hpp"
#include "blas/level3/gemm_avx_paths.hpp"

#if ZOR_LEVEL == 4

#include <immintrin.h>

// GCC 12 flags the undefined pass-through operand inside its own AVX-512 intrinsics (its bug 105593).
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"

#define ZOR_AVX512 __attribute__((target("avx512f")))

namespace zor::avx {

namespace {

// B columns streamed against one A sliver: the group stays in the level-2 cache while the sliver
// (2 panels) stays in the level-1 cache.
constexpr zint kGroupBytes = zint{256} << 10;

enum class Beta { Zero, One, Other };

Beta classify(double beta) {
    if (beta == 0.0) return Beta::Zero;
    return beta == 1.0 ? Beta::One : Beta::Other;
}

Beta classify(const zcomplex& beta) {
    if (beta.re == 0.0 && beta.im == 0.0) return Beta::Zero;
    return (beta.re == 1.0 && beta.im == 0.0) ? Beta::One : Beta::Other;
}

// ---- real ---------------------------------------------------------------------------------------

// c := beta c + v for 8 rows of one column.
ZOR_AVX512 inline void update_column(double* c, __m512d v, Beta kind, double beta) {
    if (kind == Beta::Zero) {
        _mm512_storeu_pd(c, v);
    } else if (kind == Beta::One) {
        _mm512_storeu_pd(c, _mm512_add_pd(_mm512_loadu_pd(c), v));
    } else {
        _mm512_storeu_pd(c, _mm512_fmadd_pd(_mm512_set1_pd(beta), _mm512_loadu_pd(c), v));
    }
}

ZOR_AVX512 inline void update_element(double* c, double v, Beta kind, double beta) {
    if (kind == Beta::Zero) {
        *c = v;
    } else if (kind == Beta::One) {
        *c += v;
    } else {
        *c = beta * *c + v;
    }
}

// Rows r0..r7 of 8 columns into the 8 columns of 8 rows.
ZOR_AVX512 inline void transpose8(__m512d (&r)[8]) {
    __m512d t[8], u[8];
    for (int i = 0; i < 4; ++i) {
        t[2 * i] = _mm512_unpacklo_pd(r[2 * i], r[2 * i + 1]);
        t[2 * i + 1] = _mm512_unpackhi_pd(r[2 * i], r[2 * i + 1]);
    }
    // u[0], u[1]: columns (0, 4) and (2, 6) of rows 0-3; u[2], u[3]: (1, 5) and (3, 7); u[4..7]: rows 4-7.
    for (int h = 0; h < 2; ++h) {
        u[4 * h + 0] = _mm512_shuffle_f64x2(t[4 * h + 0], t[4 * h + 2], 0x88);
        u[4 * h + 1] = _mm512_shuffle_f64x2(t[4 * h + 0], t[4 * h + 2], 0xDD);
        u[4 * h + 2] = _mm512_shuffle_f64x2(t[4 * h + 1], t[4 * h + 3], 0x88);
        u[4 * h + 3] = _mm512_shuffle_f64x2(t[4 * h + 1], t[4 * h + 3], 0xDD);
    }
    r[0] = _mm512_shuffle_f64x2(u[0], u[4], 0x88);
    r[4] = _mm512_shuffle_f64x2(u[0], u[4], 0xDD);
    r[2] = _mm512_shuffle_f64x2(u[1], u[5], 0x88);
    r[6] = _mm512_shuffle_f64x2(u[1], u[5], 0xDD);
    r[1] = _mm512_shuffle_f64x2(u[2], u[6], 0x88);
    r[5] = _mm512_shuffle_f64x2(u[2], u[6], 0xDD);
    r[3] = _mm512_shuffle_f64x2(u[3], u[7], 0x88);
    r[7] = _mm512_shuffle_f64x2(u[3], u[7], 0xDD);
}

// ROWS rows of A (from panels of 4, `a_stride` apart) times QP panels of B: C(0:rows, 0:cols) :=
// beta C + A B. ROWS is 8 or 4 for whole panels, 1 to 3 for the rows of a last, partial panel, of
// which only those rows are read.
template <int ROWS, int QP>
ZOR_AVX512 void dgemm_tile(zint kb, const double* a, zint a_stride, const double* b, zint b_stride, double* c,
                           zint ldc, int cols, Beta kind, double beta) {
    __m512d acc[ROWS][QP];
    for (int r = 0; r < ROWS; ++r) {
        for (int q = 0; q < QP; ++q) acc[r][q] = _mm512_setzero_pd();
    }
    for (int j = 0; j < cols; ++j) {
        _mm_prefetch(reinterpret_cast<const char*>(c + j * ldc), _MM_HINT_T0);
        _mm_prefetch(reinterpret_cast<const char*>(c + j * ldc + ROWS - 1), _MM_HINT_T0);
    }
    for (zint p0 = 0; p0 < kb; p0 += 4) {
#pragma GCC unroll 4
        for (zint p = p0; p < p0 + 4; ++p) {
            __m512d bv[QP];
            for (int q = 0; q < QP; ++q) bv[q] = _mm512_load_pd(b + q * b_stride + 8 * p);
            for (int r = 0; r < ROWS; ++r) {
                const __m512d av = _mm512_set1_pd(a[(r / 4) * a_stride + 4 * p + r % 4]);
                for (int q = 0; q < QP; ++q) acc[r][q] = _mm512_fmadd_pd(av, bv[q], acc[r][q]);
            }
        }
    }
    if constexpr (ROWS == 8) {
        if (cols == 8 * QP) {
            for (int q = 0; q < QP; ++q) {
                __m512d col[8];
                for (int r = 0; r < 8; ++r) col[r] = acc[r][q];
                transpose8(col);
                for (int j = 0; j < 8; ++j) update_column(c + (8 * q + j) * ldc, col[j], kind, beta);
            }
            return;
        }
    }
    alignas(64) double tile[ROWS][8 * QP];
    for (int r = 0; r < ROWS; ++r) {
        for (int q = 0; q < QP; ++q) _mm512_store_pd(&tile[r][8 * q], acc[r][q]);
    }
    for (int j = 0; j < cols; ++j) {
        for (int r = 0; r < ROWS; ++r) update_element(c + r + j * ldc, tile[r][j], kind, beta);
    }
}

template <int ROWS>
ZOR_AVX512 void dgemm_row_sliver(zint kb, const double* a, zint a_stride, const double* b, zint b_stride,
                                 zint ncols, double* c, zint ldc, Beta kind, double beta) {
    zint j = 0;
    for (; j + 24 <= ncols; j += 24) {
        dgemm_tile<ROWS, 3>(kb, a, a_stride, b + (j / 8) * b_stride, b_stride, c + j * ldc, ldc, 24, kind,
                            beta);
    }
    const zint rest = ncols - j;
    const double* bj = b + (j / 8) * b_stride;
    double* cj = c + j * ldc;
    const int cols = static_cast<int>(rest);
    if (rest > 16) {
        dgemm_tile<ROWS, 3>(kb, a, a_stride, bj, b_stride, cj, ldc, cols, kind, beta);
    } else if (rest > 8) {
        dgemm_tile<ROWS, 2>(kb, a, a_stride, bj, b_stride, cj, ldc, cols, kind, beta);
    } else if (rest > 0) {
        dgemm_tile<ROWS, 1>(kb, a, a_stride, bj, b_stride, cj, ldc, cols, kind, beta);
    }
}

// ---- complex ------------------------------------------------------------------------------------

// A row of 4 complex products from the two accumulators of a(r)·b: re = Σ ar·b, im = Σ ai·b.
ZOR_AVX512 inline __m512d combine(__m512d re, __m512d im) {
    return _mm512_fmaddsub_pd(re, _mm512_set1_pd(1.0), _mm512_permute_pd(im, 0x55));
}

ZOR_AVX512 inline __m512d complex_scale(__m512d c, const zcomplex& beta) {
    return _mm512_fmaddsub_pd(_mm512_set1_pd(beta.re), c,
                              _mm512_mul_pd(_mm512_set1_pd(beta.im), _mm512_permute_pd(c, 0x55)));
}

// 4 complex rows of C in one column.
ZOR_AVX512 inline void update_column(double* c, __m512d v, Beta kind, const zcomplex& beta) {
    if (kind == Beta::Zero) {
        _mm512_storeu_pd(c, v);
    } else if (kind == Beta::One) {
        _mm512_storeu_pd(c, _mm512_add_pd(_mm512_loadu_pd(c), v));
    } else {
        _mm512_storeu_pd(c, _mm512_add_pd(complex_scale(_mm512_loadu_pd(c), beta), v));
    }
}

ZOR_AVX512 inline void update_element(double* c, const double* v, Beta kind, const zcomplex& beta) {
    if (kind == Beta::Zero) {
        c[0] = v[0];
        c[1] = v[1];
    } else if (kind == Beta::One) {
        c[0] += v[0];
        c[1] += v[1];
    } else {
        const double re = beta.re * c[0] - beta.im * c[1];
        const double im = beta.re * c[1] + beta.im * c[0];
        c[0] = re + v[0];
        c[1] = im + v[1];
    }
}

// ROWS complex rows (1 to 4, from panels of 2) times QP panels of 4 complex columns. Doubles
// throughout: a complex row of a panel is 2 doubles, a B panel's depth index 8.
template <int ROWS, int QP>
ZOR_AVX512 void zgemm_tile(zint kb, const double* a, zint a_stride, const double* b, zint b_stride, double* c,
                           zint ldc, int rows, int cols, Beta kind, const zcomplex& beta) {
    __m512d re[ROWS][QP], im[ROWS][QP];
    for (int r = 0; r < ROWS; ++r) {
        for (int q = 0; q < QP; ++q) re[r][q] = im[r][q] = _mm512_setzero_pd();
    }
    for (int j = 0; j < cols; ++j) {
        _mm_prefetch(reinterpret_cast<const char*>(c + 2 * j * ldc), _MM_HINT_T0);
        _mm_prefetch(reinterpret_cast<const char*>(c + 2 * j * ldc + 2 * ROWS - 1), _MM_HINT_T0);
    }
    for (zint p0 = 0; p0 < kb; p0 += 4) {
#pragma GCC unroll 4
        for (zint p = p0; p < p0 + 4; ++p) {
            __m512d bv[QP];
            for (int q = 0; q < QP; ++q) bv[q] = _mm512_load_pd(b + q * b_stride + 8 * p);
            for (int r = 0; r < ROWS; ++r) {
                const double* ar = a + (r / 2) * a_stride + 4 * p + 2 * (r % 2);
                const __m512d real = _mm512_set1_pd(ar[0]);
                const __m512d imag = _mm512_set1_pd(ar[1]);
                for (int q = 0; q < QP; ++q) {
                    re[r][q] = _mm512_fmadd_pd(real, bv[q], re[r][q]);
                    im[r][q] = _mm512_fmadd_pd(imag, bv[q], im[r][q]);
                }
            }
        }
    }
    if constexpr (ROWS == 4) {
        if (rows == 4 && cols == 4 * QP) {
            for (int q = 0; q < QP; ++q) {
                const __m512d v0 = combine(re[0][q], im[0][q]), v1 = combine(re[1][q], im[1][q]);
                const __m512d v2 = combine(re[2][q], im[2][q]), v3 = combine(re[3][q], im[3][q]);
                const __m512d t0 = _mm512_shuffle_f64x2(v0, v1, 0x44),
                              t1 = _mm512_shuffle_f64x2(v0, v1, 0xEE);
                const __m512d t2 = _mm512_shuffle_f64x2(v2, v3, 0x44),
                              t3 = _mm512_shuffle_f64x2(v2, v3, 0xEE);
                double* cq = c + 8 * q * ldc;
                update_column(cq, _mm512_shuffle_f64x2(t0, t2, 0x88), kind, beta);
                update_column(cq + 2 * ldc, _mm512_shuffle_f64x2(t0, t2, 0xDD), kind, beta);
                update_column(cq + 4 * ldc, _mm512_shuffle_f64x2(t1, t3, 0x88), kind, beta);
                update_column(cq + 6 * ldc, _mm512_shuffle_f64x2(t1, t3, 0xDD), kind, beta);
            }
            return;
        }
    }
    alignas(64) double tile[ROWS][8 * QP];
    for (int r = 0; r < ROWS; ++r) {
        for (int q = 0; q < QP; ++q) _mm512_store_pd(&tile[r][8 * q], combine(re[r][q], im[r][q]));
    }
    for (int j = 0; j < cols; ++j) {
        for (int r = 0; r < rows; ++r) update_element(c + 2 * r + 2 * j * ldc, &tile[r][2 * j], kind, beta);
    }
}

template <int ROWS>
ZOR_AVX512 void zgemm_row_sliver(zint kb, const double* a, zint a_stride, const double* b, zint b_stride,
                                 zint ncols, double* c, zint ldc, int rows, Beta kind, const zcomplex& beta) {
    zint j = 0;
    for (; j + 12 <= ncols; j += 12) {
        zgemm_tile<ROWS, 3>(kb, a, a_stride, b + (j / 4) * b_stride, b_stride, c + 2 * j * ldc, ldc, rows, 12,
                            kind, beta);
    }
    const zint rest = ncols - j;
    const double* bj = b + (j / 4) * b_stride;
    double* cj = c + 2 * j * ldc;
    const int cols = static_cast<int>(rest);
    if (rest > 8) {
        zgemm_tile<ROWS, 3>(kb, a, a_stride, bj, b_stride, cj, ldc, rows, cols, kind, beta);
    } else if (rest > 4) {
        zgemm_tile<ROWS, 2>(kb, a, a_stride, bj, b_stride, cj, ldc, rows, cols, kind, beta);
    } else if (rest > 0) {
        zgemm_tile<ROWS, 1>(kb, a, a_stride, bj, b_stride, cj, ldc, rows, cols, kind, beta);
    }
}

zint group_columns(zint kb, zint element_bytes, zint step) {
    const zint columns = kGroupBytes / (kb * element_bytes) / step * step;
    return columns < step ? step : columns;
}

}  // namespace

ZOR_AVX512 void dgemm_macro_avx512(const zint& mb, const zint& nb, const zint& kb, const double* packed_a,
                                   const double* packed_b, const double* beta, double* c, const zint& ldc) {
    const Beta kind = classify(*beta);
    const zint a_stride = 4 * kb, b_stride = 8 * kb;
    const zint whole = mb / 4 * 4;
    const zint group = group_columns(kb, 8, 24);
    for (zint jg = 0; jg < nb; jg += group) {
        const zint ncols = nb - jg < group ? nb - jg : group;
        const double* b = packed_b + (jg / 8) * b_stride;
        double* cg = c + jg * ldc;
        zint i = 0;
        for (; i + 8 <= whole; i += 8) {
            dgemm_row_sliver<8>(kb, packed_a + (i / 4) * a_stride, a_stride, b, b_stride, ncols, cg + i, ldc,
                                kind, *beta);
        }
        if (i < whole) {
            dgemm_row_sliver<4>(kb, packed_a + (i / 4) * a_stride, a_stride, b, b_stride, ncols, cg + i, ldc,
                                kind, *beta);
        }
        const double* edge = packed_a + (whole / 4) * a_stride;
        switch (mb - whole) {
            case 3:
                dgemm_row_sliver<3>(kb, edge, a_stride, b, b_stride, ncols, cg + whole, ldc, kind, *beta);
                break;
            case 2:
                dgemm_row_sliver<2>(kb, edge, a_stride, b, b_stride, ncols, cg + whole, ldc, kind, *beta);
                break;
            case 1:
                dgemm_row_sliver<1>(kb, edge, a_stride, b, b_stride, ncols, cg + whole, ldc, kind, *beta);
                break;
            default:
                break;
        }
    }
}

ZOR_AVX512 void zgemm_macro_avx512(const zint& mb, const zint& nb, const zint& kb, const zcomplex* packed_a,
                                   const zcomplex* packed_b, const zcomplex* beta, zcomplex* c,
                                   const zint& ldc) {
    const Beta kind = classify(*beta);
    const zint a_stride = 4 * kb, b_stride = 8 * kb;  // in doubles
    const double* a = &packed_a->re;
    const zint group = group_columns(kb, 16, 12);
    for (zint jg = 0; jg < nb; jg += group) {
        const zint ncols = nb - jg < group ? nb - jg : group;
        const double* b = &packed_b->re + (jg / 4) * b_stride;
        double* cg = &c->re + 2 * jg * ldc;
        zint i = 0;
        for (; i + 4 <= mb; i += 4) {
            zgemm_row_sliver<4>(kb, a + (i / 2) * a_stride, a_stride, b, b_stride, ncols, cg + 2 * i, ldc, 4,
                                kind, *beta);
        }
        // A last panel with one row has a zero in its second slot: computed, not stored.
        const int rest = static_cast<int>(mb - i);
        const double* ai = a + (i / 2) * a_stride;
        if (rest > 2) {
            zgemm_row_sliver<4>(kb, ai, a_stride, b, b_stride, ncols, cg + 2 * i, ldc, rest, kind, *beta);
        } else if (rest > 0) {
            zgemm_row_sliver<2>(kb, ai, a_stride, b, b_stride, ncols, cg + 2 * i, ldc, rest, kind, *beta);
        }
    }
}

}  // namespace zor::avx

#endif
