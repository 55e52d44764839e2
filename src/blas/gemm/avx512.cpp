// The 512-bit FMA path of the Avx GEMM variants. Compiled into the Avx variant only: the other
// levels compile this file to nothing, so that no EVEX code can reach them.
//
// The packed formats are those of the table-driven design: A in panels of 4 rows (real) or 2
// complex rows, B in panels of 8 columns (real) or 4 complex columns, each depth index of a B panel
// one 512-bit vector. A step broadcasts the values of 2 A panels and multiplies them with 3 B
// vectors: six neighbouring register tiles of the 4 x 8 tiling at once, 24 independent
// accumulators, enough to keep both FMA units busy through their latency. The accumulators hold
// rows of C; the epilogue transposes them into columns.

#include "blas/gemm/avx_paths.hpp"
#include "blas/gemm/blocking.hpp"
#include "blas/kernel.hpp"

#if ZOR_LEVEL == 4

#include <immintrin.h>

#include "blas/simd.hpp"

#if !defined(__clang__)
// GCC 12 flags the undefined pass-through operand inside its own AVX-512 intrinsics (its bug 105593).
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

namespace zor::avx {

namespace {

enum class Beta { Zero, One, Other };

Beta classify(double beta) {
    if (beta == 0.0) return Beta::Zero;
    return beta == 1.0 ? Beta::One : Beta::Other;
}

Beta classify(const zcomplex& beta) {
    if (beta.re == 0.0 && beta.im == 0.0) return Beta::Zero;
    return (beta.re == 1.0 && beta.im == 0.0) ? Beta::One : Beta::Other;
}

// ---- the inner loop -------------------------------------------------------------------------------

// acc[j][q] := Σ a(j)·b(q) over kb depth steps (kb a multiple of 4, at least 4), where a(j) is value
// j of the 8 that 2 panels of 4 hold per step (rows of real data; real and imaginary parts of 4
// complex rows) and b(q) the vector of B panel q. Written out so that the 24 accumulators, the 3 B
// vectors and the broadcasts stay in registers with one address register per operand: the
// compiler's own schedule of this loop spills.
// clang-format off
// A is fetched this many bytes ahead: a sliver streams from the level-2 or level-3 cache.
#define ZOR_A_AHEAD "1024"
#define ZOR_LOAD_B(s)                                              \
    "vmovapd " #s "*64(%%rcx), %%zmm29\n\t"                         \
    "vmovapd " #s "*64(%%rcx,%[b_stride],1), %%zmm30\n\t"           \
    "vmovapd " #s "*64(%%rcx,%[b_stride],2), %%zmm31\n\t"
#define ZOR_ROW(s, j, address, t)                                  \
    "vbroadcastsd " #s "*32+" #j "%%4*8" address ", %%zmm" #t "\n\t" \
    "vfmadd231pd %%zmm29, %%zmm" #t ", %[c" #j "0]\n\t"             \
    "vfmadd231pd %%zmm30, %%zmm" #t ", %[c" #j "1]\n\t"             \
    "vfmadd231pd %%zmm31, %%zmm" #t ", %[c" #j "2]\n\t"
#define ZOR_STEP(s)                                                \
    ZOR_LOAD_B(s)                                                  \
    ZOR_ROW(s, 0, "(%%rax)", 27)                                   \
    ZOR_ROW(s, 1, "(%%rax)", 28)                                   \
    ZOR_ROW(s, 2, "(%%rax)", 27)                                   \
    ZOR_ROW(s, 3, "(%%rax)", 28)                                   \
    ZOR_ROW(s, 4, "(%%rax,%[a_stride],1)", 27)                     \
    ZOR_ROW(s, 5, "(%%rax,%[a_stride],1)", 28)                     \
    ZOR_ROW(s, 6, "(%%rax,%[a_stride],1)", 27)                     \
    ZOR_ROW(s, 7, "(%%rax,%[a_stride],1)", 28)
#define ZOR_ZERO(j)                                                \
    "vpxord %[c" #j "0], %[c" #j "0], %[c" #j "0]\n\t"              \
    "vpxord %[c" #j "1], %[c" #j "1], %[c" #j "1]\n\t"              \
    "vpxord %[c" #j "2], %[c" #j "2], %[c" #j "2]\n\t"

ZOR_AVX512 inline void multiply_8x24(zint kb, const double* a, zint a_stride, const double* b, zint b_stride,
                                     __m512d (&acc)[8][3]) {
    __asm__ volatile(
        ZOR_ZERO(0) ZOR_ZERO(1) ZOR_ZERO(2) ZOR_ZERO(3) ZOR_ZERO(4) ZOR_ZERO(5) ZOR_ZERO(6) ZOR_ZERO(7)
        "mov %[a], %%rax\n\t"
        "mov %[b], %%rcx\n\t"
        "mov %[steps], %%rdx\n\t"
        "1:\n\t"
        "prefetcht0 " ZOR_A_AHEAD "(%%rax)\n\t"
        "prefetcht0 " ZOR_A_AHEAD "+64(%%rax)\n\t"
        "prefetcht0 " ZOR_A_AHEAD "(%%rax,%[a_stride],1)\n\t"
        "prefetcht0 " ZOR_A_AHEAD "+64(%%rax,%[a_stride],1)\n\t"
        ZOR_STEP(0) ZOR_STEP(1) ZOR_STEP(2) ZOR_STEP(3)
        "add $128, %%rax\n\t"
        "add $256, %%rcx\n\t"
        "dec %%rdx\n\t"
        "jnz 1b\n\t"
        : [c00] "=v"(acc[0][0]), [c01] "=v"(acc[0][1]), [c02] "=v"(acc[0][2]),
          [c10] "=v"(acc[1][0]), [c11] "=v"(acc[1][1]), [c12] "=v"(acc[1][2]),
          [c20] "=v"(acc[2][0]), [c21] "=v"(acc[2][1]), [c22] "=v"(acc[2][2]),
          [c30] "=v"(acc[3][0]), [c31] "=v"(acc[3][1]), [c32] "=v"(acc[3][2]),
          [c40] "=v"(acc[4][0]), [c41] "=v"(acc[4][1]), [c42] "=v"(acc[4][2]),
          [c50] "=v"(acc[5][0]), [c51] "=v"(acc[5][1]), [c52] "=v"(acc[5][2]),
          [c60] "=v"(acc[6][0]), [c61] "=v"(acc[6][1]), [c62] "=v"(acc[6][2]),
          [c70] "=v"(acc[7][0]), [c71] "=v"(acc[7][1]), [c72] "=v"(acc[7][2])
        : [a] "r"(a), [b] "r"(b), [steps] "r"(kb / 4), [a_stride] "r"(a_stride * 8), [b_stride] "r"(b_stride * 8)
        : "cc", "memory", "rax", "rcx", "rdx", "xmm27", "xmm28", "xmm29", "xmm30", "xmm31");
}
// clang-format on

#undef ZOR_ZERO
#undef ZOR_STEP
#undef ZOR_ROW
#undef ZOR_LOAD_B

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

// Columns 8q .. 8q + 7 of C, 8 rows each, := beta C + the transposed rows of acc.
template <Beta K>
ZOR_AVX512 inline void store_columns(double* c, zint ldc, __m512d (&acc)[8][3], double beta) {
#pragma GCC unroll 3
    for (int q = 0; q < 3; ++q) {
        __m512d col[8];
#pragma GCC unroll 8
        for (int r = 0; r < 8; ++r) col[r] = acc[r][q];
        Vec8::transpose(col);
#pragma GCC unroll 8
        for (int j = 0; j < 8; ++j) update_column(c + (8 * q + j) * ldc, col[j], K, beta);
    }
}

// The whole 8 x 24 tile.
ZOR_AVX512 void dgemm_full_tile(zint kb, const double* a, zint a_stride, const double* b, zint b_stride,
                                double* c, zint ldc, Beta kind, double beta) {
    for (int j = 0; j < 24; ++j) {
        _mm_prefetch(reinterpret_cast<const char*>(c + j * ldc), _MM_HINT_T0);
        _mm_prefetch(reinterpret_cast<const char*>(c + j * ldc + 7), _MM_HINT_T0);
    }
    __m512d acc[8][3];
    multiply_8x24(kb, a, a_stride, b, b_stride, acc);
    if (kind == Beta::One) {
        store_columns<Beta::One>(c, ldc, acc, beta);
    } else if (kind == Beta::Zero) {
        store_columns<Beta::Zero>(c, ldc, acc, beta);
    } else {
        store_columns<Beta::Other>(c, ldc, acc, beta);
    }
}

// ROWS rows of A (from panels of 4, `a_stride` apart) times QP panels of B: C(0:rows, 0:cols) :=
// beta C + A B. ROWS is 8 or 4 for whole panels, 1 to 3 for the rows of a last, partial panel, of
// which only those rows are read.
template <int ROWS, int QP>
ZOR_AVX512 void dgemm_tile(zint kb, const double* a, zint a_stride, const double* b, zint b_stride, double* c,
                           zint ldc, int cols, Beta kind, double beta) {
    if constexpr (ROWS == 8 && QP == 3) {
        if (cols == 24) {
            dgemm_full_tile(kb, a, a_stride, b, b_stride, c, ldc, kind, beta);
            return;
        }
    }
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
                Vec8::transpose(col);
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

// Columns 4q .. 4q + 3 of C, 4 complex rows each, := beta C + the transposed rows that the
// accumulator pairs of acc combine into.
template <Beta K>
ZOR_AVX512 inline void store_complex_columns(double* c, zint ldc, __m512d (&acc)[8][3],
                                             const zcomplex& beta) {
#pragma GCC unroll 3
    for (int q = 0; q < 3; ++q) {
        const __m512d v0 = combine(acc[0][q], acc[1][q]), v1 = combine(acc[2][q], acc[3][q]);
        const __m512d v2 = combine(acc[4][q], acc[5][q]), v3 = combine(acc[6][q], acc[7][q]);
        const __m512d t0 = _mm512_shuffle_f64x2(v0, v1, 0x44), t1 = _mm512_shuffle_f64x2(v0, v1, 0xEE);
        const __m512d t2 = _mm512_shuffle_f64x2(v2, v3, 0x44), t3 = _mm512_shuffle_f64x2(v2, v3, 0xEE);
        double* cq = c + 8 * q * ldc;
        update_column(cq, _mm512_shuffle_f64x2(t0, t2, 0x88), K, beta);
        update_column(cq + 2 * ldc, _mm512_shuffle_f64x2(t0, t2, 0xDD), K, beta);
        update_column(cq + 4 * ldc, _mm512_shuffle_f64x2(t1, t3, 0x88), K, beta);
        update_column(cq + 6 * ldc, _mm512_shuffle_f64x2(t1, t3, 0xDD), K, beta);
    }
}

// The whole 4 x 12 complex tile.
ZOR_AVX512 void zgemm_full_tile(zint kb, const double* a, zint a_stride, const double* b, zint b_stride,
                                double* c, zint ldc, Beta kind, const zcomplex& beta) {
    for (int j = 0; j < 12; ++j) {
        _mm_prefetch(reinterpret_cast<const char*>(c + 2 * j * ldc), _MM_HINT_T0);
        _mm_prefetch(reinterpret_cast<const char*>(c + 2 * j * ldc + 7), _MM_HINT_T0);
    }
    // Accumulator 2r (2r + 1) of row r: its products with the real (imaginary) part of a.
    __m512d acc[8][3];
    multiply_8x24(kb, a, a_stride, b, b_stride, acc);
    if (kind == Beta::One) {
        store_complex_columns<Beta::One>(c, ldc, acc, beta);
    } else if (kind == Beta::Zero) {
        store_complex_columns<Beta::Zero>(c, ldc, acc, beta);
    } else {
        store_complex_columns<Beta::Other>(c, ldc, acc, beta);
    }
}

// ROWS complex rows (1 to 4, from panels of 2) times QP panels of 4 complex columns. Doubles
// throughout: a complex row of a panel is 2 doubles, a B panel's depth index 8.
template <int ROWS, int QP>
ZOR_AVX512 void zgemm_tile(zint kb, const double* a, zint a_stride, const double* b, zint b_stride, double* c,
                           zint ldc, int rows, int cols, Beta kind, const zcomplex& beta) {
    if constexpr (ROWS == 4 && QP == 3) {
        if (rows == 4 && cols == 12) {
            zgemm_full_tile(kb, a, a_stride, b, b_stride, c, ldc, kind, beta);
            return;
        }
    }
    // Accumulator 2r (2r + 1) of row r: its products with the real (imaginary) part of a.
    __m512d acc[2 * ROWS][QP];
    for (int r = 0; r < 2 * ROWS; ++r) {
        for (int q = 0; q < QP; ++q) acc[r][q] = _mm512_setzero_pd();
    }
    for (zint p0 = 0; p0 < kb; p0 += 4) {
#pragma GCC unroll 4
        for (zint p = p0; p < p0 + 4; ++p) {
            __m512d bv[QP];
            for (int q = 0; q < QP; ++q) bv[q] = _mm512_load_pd(b + q * b_stride + 8 * p);
            for (int j = 0; j < 2 * ROWS; ++j) {
                const __m512d av = _mm512_set1_pd(a[(j / 4) * a_stride + 4 * p + j % 4]);
                for (int q = 0; q < QP; ++q) acc[j][q] = _mm512_fmadd_pd(av, bv[q], acc[j][q]);
            }
        }
    }
    alignas(64) double tile[ROWS][8 * QP];
    for (int r = 0; r < ROWS; ++r) {
        for (int q = 0; q < QP; ++q)
            _mm512_store_pd(&tile[r][8 * q], combine(acc[2 * r][q], acc[2 * r + 1][q]));
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

// The macro-kernels take the packed A block a group of slivers at a time, a group sized to stay in
// the level-2 cache, and run every tile column of the packed B block (24 real or 12 complex columns)
// down the group's slivers. So C is visited column strip by column strip, each strip's columns read
// and written in order, which the hardware prefetchers follow; and B is read once per group. The
// strips run backward every other group, starting with the ones the group before left in the cache.
//
// Slivers in row order: real ones of 8 rows, then one of 4, then the 1 to 3 rows of a partial
// panel; complex ones of 4 rows, the last of what remains.
zint real_slivers(zint mb) {
    return mb / 8 + (mb % 8 >= 4 ? 1 : 0) + (mb % 4 != 0 ? 1 : 0);
}

ZOR_AVX512 void dgemm_sliver(zint s, zint mb, zint kb, const double* packed_a, zint a_stride, const double* b,
                             zint b_stride, zint ncols, double* c, zint ldc, Beta kind, double beta) {
    const zint eights = mb / 8, whole = mb / 4 * 4;
    if (s < eights) {
        dgemm_row_sliver<8>(kb, packed_a + 2 * s * a_stride, a_stride, b, b_stride, ncols, c + 8 * s, ldc,
                            kind, beta);
        return;
    }
    if (s == eights && whole - 8 * eights == 4) {
        dgemm_row_sliver<4>(kb, packed_a + 2 * s * a_stride, a_stride, b, b_stride, ncols, c + 8 * s, ldc,
                            kind, beta);
        return;
    }
    const double* edge = packed_a + (whole / 4) * a_stride;
    switch (mb - whole) {
        case 3:
            dgemm_row_sliver<3>(kb, edge, a_stride, b, b_stride, ncols, c + whole, ldc, kind, beta);
            break;
        case 2:
            dgemm_row_sliver<2>(kb, edge, a_stride, b, b_stride, ncols, c + whole, ldc, kind, beta);
            break;
        default:
            dgemm_row_sliver<1>(kb, edge, a_stride, b, b_stride, ncols, c + whole, ldc, kind, beta);
            break;
    }
}

ZOR_AVX512 void zgemm_sliver(zint s, zint mb, zint kb, const double* packed_a, zint a_stride, const double* b,
                             zint b_stride, zint ncols, double* c, zint ldc, Beta kind,
                             const zcomplex& beta) {
    // A last panel with one row has a zero in its second slot: computed, not stored.
    const int rows = static_cast<int>(mb - 4 * s < 4 ? mb - 4 * s : 4);
    const double* a = packed_a + 2 * s * a_stride;
    if (rows > 2) {
        zgemm_row_sliver<4>(kb, a, a_stride, b, b_stride, ncols, c + 8 * s, ldc, rows, kind, beta);
    } else {
        zgemm_row_sliver<2>(kb, a, a_stride, b, b_stride, ncols, c + 8 * s, ldc, rows, kind, beta);
    }
}

// Slivers per group: a sliver is 2 panels of kb depth steps of 4 doubles.
zint slivers_per_group(zint kb) {
    const zint slivers = gemm_a_group_bytes() / (64 * kb);
    return slivers < 1 ? 1 : slivers;
}

}  // namespace

ZOR_AVX512 void dgemm_macro_avx512(const zint& mb, const zint& nb, const zint& kb, const double* packed_a,
                                   const double* packed_b, const double* beta, double* c, const zint& ldc) {
    const Beta kind = classify(*beta);
    const zint a_stride = 4 * kb, b_stride = 8 * kb;
    const zint slivers = real_slivers(mb), group = slivers_per_group(kb), strips = (nb + 23) / 24;
    bool backward = false;
    for (zint first = 0; first < slivers; first += group, backward = !backward) {
        const zint last = slivers < first + group ? slivers : first + group;
        for (zint t = 0; t < strips; ++t) {
            const zint j = 24 * (backward ? strips - 1 - t : t);
            const zint ncols = nb - j < 24 ? nb - j : 24;
            for (zint s = first; s < last; ++s) {
                dgemm_sliver(s, mb, kb, packed_a, a_stride, packed_b + (j / 8) * b_stride, b_stride, ncols,
                             c + j * ldc, ldc, kind, *beta);
            }
        }
    }
}

ZOR_AVX512 void zgemm_macro_avx512(const zint& mb, const zint& nb, const zint& kb, const zcomplex* packed_a,
                                   const zcomplex* packed_b, const zcomplex* beta, zcomplex* c,
                                   const zint& ldc) {
    const Beta kind = classify(*beta);
    const zint a_stride = 4 * kb, b_stride = 8 * kb;  // in doubles
    const zint slivers = (mb + 3) / 4, group = slivers_per_group(kb), strips = (nb + 11) / 12;
    bool backward = false;
    for (zint first = 0; first < slivers; first += group, backward = !backward) {
        const zint last = slivers < first + group ? slivers : first + group;
        for (zint t = 0; t < strips; ++t) {
            const zint j = 12 * (backward ? strips - 1 - t : t);
            const zint ncols = nb - j < 12 ? nb - j : 12;
            for (zint s = first; s < last; ++s) {
                zgemm_sliver(s, mb, kb, &packed_a->re, a_stride, &packed_b->re + (j / 4) * b_stride, b_stride,
                             ncols, &c->re + 2 * j * ldc, ldc, kind, *beta);
            }
        }
    }
}

}  // namespace zor::avx

#endif
