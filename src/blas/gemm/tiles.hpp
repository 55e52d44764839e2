#pragma once
// Macro-kernels over packed GEMM blocks for the SSE and 256-bit paths, written once over a small
// vector-operations type V:
//   V::Vec, V::kLanes (doubles per vector), load (aligned), loadu, storeu, broadcast (from memory),
//   zero, mul_add(a, b, c) = a·b + c (fused or not, as the level allows), add, mul, and for complex
//   data swap_pairs ((x0, x1) -> (x1, x0) in each pair) and add_sub ((x0 - y0, x1 + y1) per pair).
//
// Column tiles: the accumulators hold columns of C. A vector of op(A) is loaded from its packed
// panel, the values of B are broadcast, so no transposition is ever needed. The rows of a last,
// partial real panel go to an edge kernel that reads only those rows.
//
// Everything here has internal linkage: the FMA path includes this header under another target, and
// its copies must never be merged with the ones of plain AVX.

#include "blas/kernel.hpp"

namespace zor::ZOR_LEVEL_NS {
namespace {

enum class BetaKind { Zero, One, Other };

inline BetaKind beta_kind(double beta) {
    if (beta == 0.0) return BetaKind::Zero;
    return beta == 1.0 ? BetaKind::One : BetaKind::Other;
}

// Complex beta travels as the four doubles (βr, βr, βi, -βi): β·c = (βr, βr)·c - (βi, -βi)·swap(c),
// two multiplications and a subtraction per pair without any sign change.
inline void make_beta_vector(const zcomplex& beta, double* vector) {
    vector[0] = beta.re;
    vector[1] = beta.re;
    vector[2] = beta.im;
    vector[3] = -beta.im;
}

inline BetaKind beta_kind(const double* beta_vector) {
    if (beta_vector[0] == 0.0 && beta_vector[2] == 0.0) return BetaKind::Zero;
    return (beta_vector[0] == 1.0 && beta_vector[2] == 0.0) ? BetaKind::One : BetaKind::Other;
}

// c := beta c + v, one real element.
inline void update_real(double* c, double v, BetaKind kind, double beta) {
    if (kind == BetaKind::Zero) {
        *c = v;
    } else if (kind == BetaKind::One) {
        *c += v;
    } else {
        *c = beta * *c + v;
    }
}

inline void update_complex(double* c, double v_re, double v_im, BetaKind kind, const double* beta_vector) {
    if (kind == BetaKind::Zero) {
        c[0] = v_re;
        c[1] = v_im;
    } else if (kind == BetaKind::One) {
        c[0] += v_re;
        c[1] += v_im;
    } else {
        const double re = beta_vector[0] * c[0] - beta_vector[2] * c[1];
        const double im = beta_vector[1] * c[1] - beta_vector[3] * c[0];
        c[0] = re + v_re;
        c[1] = im + v_im;
    }
}

template <class V>
inline void update_vector(double* c, typename V::Vec v, BetaKind kind, double beta) {
    if (kind == BetaKind::Zero) {
        V::storeu(c, v);
    } else if (kind == BetaKind::One) {
        V::storeu(c, V::add(V::loadu(c), v));
    } else {
        V::storeu(c, V::mul_add(V::broadcast(&beta), V::loadu(c), v));
    }
}

template <class V>
inline void update_complex_vector(double* c, typename V::Vec v, BetaKind kind, const double* beta_vector) {
    if (kind == BetaKind::Zero) {
        V::storeu(c, v);
    } else if (kind == BetaKind::One) {
        V::storeu(c, V::add(V::loadu(c), v));
    } else {
        const typename V::Vec old = V::loadu(c);
        const typename V::Vec scaled = V::sub(V::mul(V::broadcast_pair(beta_vector), old),
                                              V::mul(V::broadcast_pair(beta_vector + 2), V::swap_pairs(old)));
        V::storeu(c, V::add(scaled, v));
    }
}

// ---- real -----------------------------------------------------------------------------------------

// RV vectors of rows (whole panels of MR) times NJ columns of one B panel of NR, from column `b`.
// KB > 0 fixes the depth at compile time.
template <class V, int MR, int NR, int RV, int NJ, int KB = 0>
void dtile_columns(zint kb, const double* a, zint a_stride, const double* b, double* c, zint ldc, int cols,
                   BetaKind kind, double beta) {
    constexpr int L = V::kLanes;
    if constexpr (KB > 0) kb = KB;
    typename V::Vec acc[RV][NJ];
    for (int v = 0; v < RV; ++v) {
        for (int j = 0; j < NJ; ++j) acc[v][j] = V::zero();
    }
    for (zint p0 = 0; p0 < kb; p0 += 4) {
#pragma GCC unroll 4
        for (zint p = p0; p < p0 + 4; ++p) {
            typename V::Vec av[RV];
            for (int v = 0; v < RV; ++v) av[v] = V::load(a + (v * L / MR) * a_stride + MR * p + (v * L) % MR);
            for (int j = 0; j < NJ; ++j) {
                const typename V::Vec bj = V::broadcast(b + NR * p + j);
                for (int v = 0; v < RV; ++v) acc[v][j] = V::mul_add(av[v], bj, acc[v][j]);
            }
        }
    }
    for (int j = 0; j < cols; ++j) {
        for (int v = 0; v < RV; ++v) update_vector<V>(c + v * L + j * ldc, acc[v][j], kind, beta);
    }
}

// The ROWS (< MR) rows of a last, partial panel times one whole B panel; only those rows are read.
template <class V, int MR, int NR, int ROWS>
void dtile_edge_rows(zint kb, const double* a, const double* b, double* c, zint ldc, int cols, BetaKind kind,
                     double beta) {
    constexpr int L = V::kLanes;
    constexpr int W = NR / L;
    typename V::Vec acc[ROWS][W];
    for (int r = 0; r < ROWS; ++r) {
        for (int w = 0; w < W; ++w) acc[r][w] = V::zero();
    }
    for (zint p = 0; p < kb; ++p) {
        typename V::Vec bv[W];
        for (int w = 0; w < W; ++w) bv[w] = V::load(b + NR * p + w * L);
        for (int r = 0; r < ROWS; ++r) {
            const typename V::Vec ar = V::broadcast(a + MR * p + r);
            for (int w = 0; w < W; ++w) acc[r][w] = V::mul_add(ar, bv[w], acc[r][w]);
        }
    }
    alignas(32) double tile[ROWS][NR];
    for (int r = 0; r < ROWS; ++r) {
        for (int w = 0; w < W; ++w) V::storeu(&tile[r][w * L], acc[r][w]);
    }
    for (int j = 0; j < cols; ++j) {
        for (int r = 0; r < ROWS; ++r) update_real(c + r + j * ldc, tile[r][j], kind, beta);
    }
}

// The macro-kernels take the packed A block a group of slivers at a time, a group sized to stay in
// the level-2 cache (`a_group_bytes`), and run every strip of NJ columns of the packed B block down
// the group's slivers: C is visited strip by strip, each column in order, and B is read once per
// group. The strips run backward every other group, starting with the ones still in the cache.
inline zint slivers_per_group(zint a_group_bytes, zint sliver_bytes) {
    const zint slivers = a_group_bytes / sliver_bytes;
    return slivers < 1 ? 1 : slivers;
}

// One tile of `rv` vectors of rows (rv <= RV, a multiple of MR / kLanes).
template <class V, int MR, int NR, int RV, int NJ, int KB>
void dtile_of_height(int rv, zint kb, const double* a, zint a_stride, const double* b, double* c, zint ldc,
                     int cols, BetaKind kind, double beta) {
    if constexpr (RV > 0) {
        if (rv == RV) {
            dtile_columns<V, MR, NR, RV, NJ, KB>(kb, a, a_stride, b, c, ldc, cols, kind, beta);
        } else {
            dtile_of_height<V, MR, NR, RV - 1, NJ, KB>(rv, kb, a, a_stride, b, c, ldc, cols, kind, beta);
        }
    }
}

template <class V, int MR, int NR, int ROWS>
void dedge_rows(int rows, zint kb, const double* a, const double* b, double* c, zint ldc, int cols,
                BetaKind kind, double beta) {
    if constexpr (ROWS > 0) {
        if (rows != ROWS) {
            dedge_rows<V, MR, NR, ROWS - 1>(rows, kb, a, b, c, ldc, cols, kind, beta);
        } else {
            dtile_edge_rows<V, MR, NR, ROWS>(kb, a, b, c, ldc, cols, kind, beta);
        }
    }
}

// The macro-kernel: C(0:mb, 0:nb) := beta C + A B from packed blocks of depth kb, in slivers of RV
// vectors of rows and tiles of NJ columns; the rows of a partial real panel go to the edge kernel.
// kWholeSlivers: the caller guarantees that mb is a multiple of the sliver height.
template <class V, int MR, int NR, int RV, int NJ, int KB = 0, bool kWholeSlivers = false>
void dgemm_macro_columns(zint mb, zint nb, zint kb, const double* packed_a, const double* packed_b,
                         double beta, double* c, zint ldc, zint a_group_bytes) {
    constexpr int L = V::kLanes;
    constexpr zint kSliverRows = RV * L;
    static_assert(kSliverRows % MR == 0 && MR % L == 0 && NR % NJ == 0, "slivers are whole panels");
    const BetaKind kind = beta_kind(beta);
    const zint a_stride = MR * kb, b_stride = NR * kb;
    const zint whole = mb / MR * MR, slivers = (whole + kSliverRows - 1) / kSliverRows;
    const zint group = slivers_per_group(a_group_bytes, kSliverRows * kb * 8);
    const zint panels = (nb + NR - 1) / NR;
    const double* edge = packed_a + (whole / MR) * a_stride;
    bool backward = false;
    for (zint first = 0; first < slivers || (first == 0 && whole < mb);
         first += group, backward = !backward) {
        const zint last = slivers < first + group ? slivers : first + group;
        const bool with_edge = last == slivers && whole < mb;
        for (zint t = 0; t < panels; ++t) {
            const zint j = NR * (backward ? panels - 1 - t : t);
            const double* panel = packed_b + (j / NR) * b_stride;
            const zint in_panel = nb - j < NR ? nb - j : NR;
            for (zint j0 = 0; j0 < in_panel; j0 += NJ) {
                const int cols = static_cast<int>(in_panel - j0 < NJ ? in_panel - j0 : NJ);
                for (zint s = first; s < last; ++s) {
                    const zint i = s * kSliverRows;
                    const double* sliver = packed_a + (i / MR) * a_stride;
                    double* cs = c + i + (j + j0) * ldc;
                    if constexpr (kWholeSlivers) {
                        dtile_columns<V, MR, NR, RV, NJ, KB>(kb, sliver, a_stride, panel + j0, cs, ldc, cols,
                                                             kind, beta);
                    } else {
                        const int rv = static_cast<int>((whole - i) / L < RV ? (whole - i) / L : RV);
                        dtile_of_height<V, MR, NR, RV, NJ, KB>(rv, kb, sliver, a_stride, panel + j0, cs, ldc,
                                                               cols, kind, beta);
                    }
                }
            }
            if (with_edge) {
                dedge_rows<V, MR, NR, MR - 1>(static_cast<int>(mb - whole), kb, edge, panel,
                                              c + whole + j * ldc, ldc, static_cast<int>(in_panel), kind,
                                              beta);
            }
        }
    }
}

// ---- complex --------------------------------------------------------------------------------------

// Complex panels: MR complex rows per panel, NR complex columns per B panel, each complex value two
// doubles. A vector holds kLanes / 2 complex rows. Two accumulators per vector and column: the
// products with the real and with the imaginary part of b, combined at the end.
template <class V, int MR, int NR, int RV, int NJ>
void ztile_columns(zint kb, const double* a, zint a_stride, const double* b, double* c, zint ldc, int rows,
                   int cols, BetaKind kind, const double* beta_vector) {
    constexpr int L = V::kLanes;  // doubles
    constexpr int R = L / 2;      // complex rows per vector
    typename V::Vec with_re[RV][NJ], with_im[RV][NJ];
    for (int v = 0; v < RV; ++v) {
        for (int j = 0; j < NJ; ++j) with_re[v][j] = with_im[v][j] = V::zero();
    }
    for (zint p0 = 0; p0 < kb; p0 += 4) {
#pragma GCC unroll 4
        for (zint p = p0; p < p0 + 4; ++p) {
            typename V::Vec av[RV];
            for (int v = 0; v < RV; ++v) {
                av[v] = V::load(a + (v * R / MR) * a_stride + 2 * MR * p + 2 * ((v * R) % MR));
            }
            for (int j = 0; j < NJ; ++j) {
                const double* bj = b + 2 * NR * p + 2 * j;
                const typename V::Vec b_re = V::broadcast(bj);
                const typename V::Vec b_im = V::broadcast(bj + 1);
                for (int v = 0; v < RV; ++v) {
                    with_re[v][j] = V::mul_add(av[v], b_re, with_re[v][j]);
                    with_im[v][j] = V::mul_add(av[v], b_im, with_im[v][j]);
                }
            }
        }
    }
    // (ar br, ai br) and (ar bi, ai bi) give (ar br - ai bi, ai br + ar bi).
    for (int j = 0; j < cols; ++j) {
        for (int v = 0; v < RV; ++v) {
            const typename V::Vec product = V::add_sub(with_re[v][j], V::swap_pairs(with_im[v][j]));
            double* cv = c + 2 * (v * R + j * ldc);
            if (v * R + R <= rows) {
                update_complex_vector<V>(cv, product, kind, beta_vector);
            } else {
                alignas(32) double lanes[L];
                V::storeu(lanes, product);
                for (int r = 0; v * R + r < rows; ++r) {
                    update_complex(cv + 2 * r, lanes[2 * r], lanes[2 * r + 1], kind, beta_vector);
                }
            }
        }
    }
}

template <class V, int MR, int NR, int RV, int NJ>
void ztile_of_height(int rv, zint kb, const double* a, zint a_stride, const double* b, double* c, zint ldc,
                     int rows, int cols, BetaKind kind, const double* beta_vector) {
    if constexpr (RV > 0) {
        if (rv == RV) {
            ztile_columns<V, MR, NR, RV, NJ>(kb, a, a_stride, b, c, ldc, rows, cols, kind, beta_vector);
        } else {
            ztile_of_height<V, MR, NR, RV - 1, NJ>(rv, kb, a, a_stride, b, c, ldc, rows, cols, kind,
                                                   beta_vector);
        }
    }
}

// Complex panels are zero-filled, so a last partial panel runs as a whole one and only its rows are
// stored.
template <class V, int MR, int NR, int RV, int NJ>
void zgemm_macro_columns(zint mb, zint nb, zint kb, const zcomplex* packed_a, const zcomplex* packed_b,
                         const double* beta_vector, zcomplex* c, zint ldc, zint a_group_bytes) {
    constexpr int R = V::kLanes / 2;
    constexpr zint kSliverRows = RV * R;
    static_assert(kSliverRows % MR == 0 && MR % R == 0 && NR % NJ == 0, "slivers are whole panels");
    const BetaKind kind = beta_kind(beta_vector);
    const zint a_stride = 2 * MR * kb, b_stride = 2 * NR * kb;  // in doubles
    const zint padded = (mb + MR - 1) / MR * MR, slivers = (padded + kSliverRows - 1) / kSliverRows;
    const zint group = slivers_per_group(a_group_bytes, kSliverRows * kb * 16);
    const zint panels = (nb + NR - 1) / NR;
    bool backward = false;
    for (zint first = 0; first < slivers; first += group, backward = !backward) {
        const zint last = slivers < first + group ? slivers : first + group;
        for (zint t = 0; t < panels; ++t) {
            const zint j = NR * (backward ? panels - 1 - t : t);
            const double* panel = &packed_b->re + (j / NR) * b_stride;
            const zint in_panel = nb - j < NR ? nb - j : NR;
            for (zint j0 = 0; j0 < in_panel; j0 += NJ) {
                const int cols = static_cast<int>(in_panel - j0 < NJ ? in_panel - j0 : NJ);
                for (zint s = first; s < last; ++s) {
                    const zint i = s * kSliverRows;
                    const int rv = static_cast<int>((padded - i) / R < RV ? (padded - i) / R : RV);
                    const int rows = static_cast<int>(mb - i < kSliverRows ? mb - i : kSliverRows);
                    ztile_of_height<V, MR, NR, RV, NJ>(rv, kb, &packed_a->re + (i / MR) * a_stride, a_stride,
                                                       panel + 2 * j0, &c->re + 2 * (i + (j + j0) * ldc), ldc,
                                                       rows, cols, kind, beta_vector);
                }
            }
        }
    }
}

}  // namespace
}  // namespace zor::ZOR_LEVEL_NS
