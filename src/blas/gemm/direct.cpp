// The direct real GEMM path of the Avx variant with AVX-512F: small and skinny products computed
// from the caller's arrays, without packing B (its values are broadcast where they lie) and without
// packing A when it is not transposed (its columns are loaded where they lie, alpha applied in
// registers). A transposed A is copied, times alpha, into columns of a work area first.
//
// Every element gets exactly the arithmetic of the blocked path: for each depth block of
// gemm_kc(k, 4) steps, an accumulator starting at zero takes the fused products (alpha·a)·b in
// depth order, then C := C + accumulator. The zero steps the blocked path pads the depth with
// become one addition of zero. So which path computed an element, and the shape of the call, never
// changes its bits.

#include "blas/gemm/avx_paths.hpp"
#include "blas/gemm/blocking.hpp"
#include "blas/kernel.hpp"

#if ZOR_LEVEL == 4

#include <immintrin.h>

#include "blas/simd.hpp"
#include "service/letters.hpp"
#include "service/memory.hpp"

ZOR_TARGET_BEGIN("avx512f,fma")

ZOR_ALLOW_AVX512_INTRINSICS

namespace zor::avx {

namespace {

// How alpha reaches the products: not at all (1, or already in the copied A), as a negation (the
// fused negative multiply-add gives the bits of a product with -a), or as a rounded product alpha·a.
enum class Alpha { One, MinusOne, Other };

constexpr int kTileColumns = 8;

// The operands of one depth block: op(A) as columns `lda` apart (times alpha unless `alpha_kind`
// is One), op(B) through its own layout.
struct DirectBlock {
    const double* a;
    zint lda;
    const double* b;  // op(B)(0, 0) of the block
    zint b_step;      // from depth p to p + 1
    zint b_column;    // from column j to j + 1
    zint depth;
    __m512d alpha;
};

// C(0:rows, 0:cols) += the product of RV vectors of rows of op(A) (the last one `last` lanes, 1 to 8)
// and `cols` (1 to 8) columns of op(B). Missing columns repeat the last one and are not stored.
// kWhole: a tile of 8 whole columns whose last vector is whole too, so that no mask is applied and
// the columns of B are reached from two pointers at fixed multiples of their step (fewer registers
// held across the loop).
template <int RV, Alpha A, bool kWhole>
void direct_tile(const DirectBlock& blk, int last, int cols, double* c, zint ldc) {
    const __mmask8 mask = kWhole ? static_cast<__mmask8>(0xff) : static_cast<__mmask8>((1u << last) - 1u);
    zint offset[kTileColumns];
    const zint bc = blk.b_column;
    for (int j = 0; j < kTileColumns; ++j) offset[j] = (kWhole || j < cols ? j : cols - 1) * bc;
    __m512d acc[RV][kTileColumns];
#pragma GCC unroll 3
    for (int v = 0; v < RV; ++v) {
#pragma GCC unroll 8
        for (int j = 0; j < kTileColumns; ++j) acc[v][j] = _mm512_setzero_pd();
    }
    const double* ap = blk.a;
    const double* bp = blk.b;
    for (zint p = 0; p < blk.depth; ++p, ap += blk.lda, bp += blk.b_step) {
        __m512d av[RV];
#pragma GCC unroll 3
        for (int v = 0; v < RV; ++v) {
            av[v] =
                kWhole || v + 1 < RV ? _mm512_loadu_pd(ap + 8 * v) : _mm512_maskz_loadu_pd(mask, ap + 8 * v);
            if constexpr (A == Alpha::Other) av[v] = _mm512_mul_pd(blk.alpha, av[v]);
        }
#pragma GCC unroll 8
        for (int j = 0; j < kTileColumns; ++j) {
            const double* b_value = kWhole ? bp + (j / 4) * 4 * bc + (j % 4) * bc : bp + offset[j];
            const __m512d bv = _mm512_set1_pd(*b_value);
#pragma GCC unroll 3
            for (int v = 0; v < RV; ++v) {
                acc[v][j] = A == Alpha::MinusOne ? _mm512_fnmadd_pd(av[v], bv, acc[v][j])
                                                 : _mm512_fmadd_pd(av[v], bv, acc[v][j]);
            }
        }
    }
    // The blocked path runs a depth padded to a multiple of 4 with zero products: acc + 0. Indices
    // into acc stay constants (the loops unrolled), so that it lives in registers.
    const bool padded = blk.depth % 4 != 0;
#pragma GCC unroll 8
    for (int j = 0; j < kTileColumns; ++j) {
        if (j >= cols) break;
        double* column = c + j * ldc;
#pragma GCC unroll 3
        for (int v = 0; v < RV; ++v) {
            __m512d sum = acc[v][j];
            if (padded) sum = _mm512_add_pd(sum, _mm512_setzero_pd());
            if (kWhole || v + 1 < RV) {
                _mm512_storeu_pd(column + 8 * v, _mm512_add_pd(_mm512_loadu_pd(column + 8 * v), sum));
            } else {
                const __m512d old = _mm512_maskz_loadu_pd(mask, column + 8 * v);
                _mm512_mask_storeu_pd(column + 8 * v, mask, _mm512_add_pd(old, sum));
            }
        }
    }
}

constexpr int kTileRows = 24;

// Rows [i, i + rows) (rows 1 to 24) times columns [j, j + cols) of one depth block.
template <Alpha A>
void direct_rows(const DirectBlock& blk, zint i, zint rows, zint j, zint cols, double* c, zint ldc) {
    DirectBlock at = blk;
    at.a += i;
    at.b += j * blk.b_column;
    const int vectors = static_cast<int>((rows + 7) / 8), last = static_cast<int>(rows - 8 * (vectors - 1));
    double* tile = c + i + j * ldc;
    const int width = static_cast<int>(cols);
    if (width == kTileColumns && last == 8) {
        if (vectors == 3) {
            direct_tile<3, A, true>(at, last, width, tile, ldc);
        } else if (vectors == 2) {
            direct_tile<2, A, true>(at, last, width, tile, ldc);
        } else {
            direct_tile<1, A, true>(at, last, width, tile, ldc);
        }
    } else if (vectors == 3) {
        direct_tile<3, A, false>(at, last, width, tile, ldc);
    } else if (vectors == 2) {
        direct_tile<2, A, false>(at, last, width, tile, ldc);
    } else {
        direct_tile<1, A, false>(at, last, width, tile, ldc);
    }
}

// One depth block over all of C. A tall C runs the tiles of a row strip across (its strip of A
// stays in the level-1 cache); a wide one the tiles of a column strip down (its strip of B does).
template <Alpha A>
void direct_block(const DirectBlock& blk, zint m, zint n, double* c, zint ldc) {
    // Strips of 24 rows; the last 25 to 47 rows as two strips of whole vectors where they fit (32 as
    // 16 + 16 rather than 24 + 8, whose one-vector tile cannot keep the multiply-adds busy).
    const auto rows_at = [&](zint i) {
        const zint rest = m - i;
        if (rest <= kTileRows || rest >= 2 * kTileRows) return rest < kTileRows ? rest : zint{kTileRows};
        return (rest / 2 + 7) / 8 * 8;
    };
    const auto cols_at = [&](zint j) { return n - j < kTileColumns ? n - j : zint{kTileColumns}; };
    if (m >= n) {
        for (zint i = 0, rows = rows_at(0); i < m; i += rows, rows = rows_at(i)) {
            for (zint j = 0; j < n; j += kTileColumns) direct_rows<A>(blk, i, rows, j, cols_at(j), c, ldc);
        }
    } else {
        for (zint j = 0; j < n; j += kTileColumns) {
            for (zint i = 0, rows = rows_at(0); i < m; i += rows, rows = rows_at(i)) {
                direct_rows<A>(blk, i, rows, j, cols_at(j), c, ldc);
            }
        }
    }
}

void direct_block_any(Alpha kind, const DirectBlock& blk, zint m, zint n, double* c, zint ldc) {
    if (kind == Alpha::One) {
        direct_block<Alpha::One>(blk, m, n, c, ldc);
    } else if (kind == Alpha::MinusOne) {
        direct_block<Alpha::MinusOne>(blk, m, n, c, ldc);
    } else {
        direct_block<Alpha::Other>(blk, m, n, c, ldc);
    }
}

// alpha times the depth steps [p0, p0 + depth) of Aᵀ (A stored k x m) as m x depth columns `ld` apart:
// blocks of 8 x 8 turned around in registers, the edges one element at a time.
void copy_transposed(zint m, zint depth, const double* a, zint lda, zint p0, double alpha, double* out,
                     zint ld) {
    const __m512d scale = _mm512_set1_pd(alpha);
    const zint m8 = m / 8 * 8, depth8 = depth / 8 * 8;
    for (zint i = 0; i < m8; i += 8) {
        for (zint p = 0; p < depth8; p += 8) {
            __m512d r[8];
#pragma GCC unroll 8
            for (int t = 0; t < 8; ++t)
                r[t] = _mm512_mul_pd(scale, _mm512_loadu_pd(a + p0 + p + (i + t) * lda));
            Vec8::transpose(r);
#pragma GCC unroll 8
            for (int t = 0; t < 8; ++t) _mm512_storeu_pd(out + i + (p + t) * ld, r[t]);
        }
        for (zint t = 0; t < 8; ++t) {
            for (zint p = depth8; p < depth; ++p) out[i + t + p * ld] = alpha * a[p0 + p + (i + t) * lda];
        }
    }
    for (zint i = m8; i < m; ++i) {
        for (zint p = 0; p < depth; ++p) out[i + p * ld] = alpha * a[p0 + p + i * lda];
    }
}

}  // namespace

bool dgemm_direct_avx512(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                         const double& alpha, const double* a, const zint& lda, const double* b,
                         const zint& ldb, double* c, const zint& ldc) {
    if (!dgemm_direct_suits(m, n, k)) return false;
    const bool plain_a = lsame(transa, 'N');
    const zint kc = gemm_kc(k, 4);
    const bool plain_b = lsame(transb, 'N');
    DirectBlock blk{.a = a,
                    .lda = lda,
                    .b = b,
                    .b_step = plain_b ? 1 : ldb,
                    .b_column = plain_b ? ldb : 1,
                    .depth = 0,
                    .alpha = _mm512_set1_pd(alpha)};
    Alpha kind = alpha == 1.0 ? Alpha::One : (alpha == -1.0 ? Alpha::MinusOne : Alpha::Other);
    void* area = nullptr;
    const zint ld_copy = (m + 7) / 8 * 8;
    if (!plain_a) {
        area = zor_allocate(static_cast<std::uint64_t>(ld_copy * (k < kc ? k : kc)) * sizeof(double) + 64,
                            kWorkAlignment);
        if (area == nullptr) return false;  // the blocked path reports it
        kind = Alpha::One;
        blk.lda = ld_copy;
        blk.a = static_cast<const double*>(area);
    }
    for (zint pc = 0; pc < k; pc += kc) {
        blk.depth = k - pc < kc ? k - pc : kc;
        blk.b = plain_b ? b + pc : b + pc * ldb;
        if (plain_a) {
            blk.a = a + pc * lda;
        } else {
            copy_transposed(m, blk.depth, a, lda, pc, alpha, static_cast<double*>(area), ld_copy);
        }
        direct_block_any(kind, blk, m, n, c, ldc);
    }
    if (area != nullptr) zor_deallocate(area);
    return true;
}

}  // namespace zor::avx

ZOR_TARGET_END

#endif
