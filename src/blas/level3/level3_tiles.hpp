#pragma once
// The diagonal-block kernels of level3_blocks.hpp in register tiles, written once over a vector-
// operations type V (gemm_vector_ops.hpp: Vec, kLanes, load, broadcast, zero, mul_add, mul, add,
// swap_pairs, add_sub) and the element type. Everything has internal linkage: the FMA and AVX-512
// paths include this header under targets of their own.
//
// A tile is MR rows by W columns, W = NV vectors (real: NV·kLanes values, complex NV·kLanes/2).
// Its operands are packed: a panel holds MR values per depth step, broadcast one at a time; a
// strip holds W values per depth step, loaded as NV vectors. The accumulators hold rows of the
// tile, so a triangular solve runs across them without moving lanes.
//
// - solve: the triangle is packed in panels of MR rows, panel r holding columns 0 .. (r+1)·MR-1:
//   the negated entries below the diagonal, the reciprocals on it, zeros above. A strip of W
//   right-hand sides is packed (times alpha), solved panel after panel (the products with the rows
//   already solved, then the diagonal tile in registers) and written back.
// - multiply: the triangle times alpha, and the panels run from the last, so that each overwrites
//   rows of the strip that no later panel reads.
// - rank_update: panels of Z (times alpha) and strips of X over depth blocks; only tiles that touch
//   the triangle are computed, and only its elements are added to C.

#include "blas/level3/level3_arith.hpp"
#include "blas/level3/level3_unblocked.hpp"

namespace zor::ZOR_LEVEL_NS {
namespace {

template <class V, int MR, int NV, bool kComplex>
struct Tile;

template <class V, int MR, int NV>
struct Tile<V, MR, NV, false> {
    using Vec = typename V::Vec;
    static constexpr int kLanes = V::kLanes;
    static constexpr int kWidth = NV * kLanes;  // values in a row of the tile
    static constexpr int kRowDoubles = kWidth;

    Vec acc[MR][NV];

    void clear() {
#pragma GCC unroll 32
        for (int i = 0; i < MR; ++i) {
#pragma GCC unroll 8
            for (int v = 0; v < NV; ++v) acc[i][v] = V::zero();
        }
    }

    // acc += Σ_q panel(q, i) strip(q, :) over `depth` steps.
    void multiply_add(zint depth, const double* panel, const double* strip) {
#pragma GCC unroll 2
        for (zint q = 0; q < depth; ++q) {
            Vec s[NV];
#pragma GCC unroll 8
            for (int v = 0; v < NV; ++v) s[v] = V::load(strip + q * kWidth + v * kLanes);
#pragma GCC unroll 32
            for (int i = 0; i < MR; ++i) {
                const Vec a = V::broadcast(panel + q * MR + i);
#pragma GCC unroll 8
                for (int v = 0; v < NV; ++v) acc[i][v] = V::mul_add(a, s[v], acc[i][v]);
            }
        }
    }

    void finish() {}

    void add_rows(const double* rows) {
        for (int i = 0; i < MR; ++i) {
            for (int v = 0; v < NV; ++v)
                acc[i][v] = V::add(acc[i][v], V::load(rows + i * kWidth + v * kLanes));
        }
    }

    void store_rows(double* rows) const {
        for (int i = 0; i < MR; ++i) {
            for (int v = 0; v < NV; ++v) V::storeu(rows + i * kWidth + v * kLanes, acc[i][v]);
        }
    }

    // Row i becomes (row i + Σ_{j<i} n(i, j) x_j) · r_i, where column j of the packed diagonal tile
    // holds n(·, j) below the diagonal and r_j on it.
    void solve(const double* diagonal) {
        for (int i = 0; i < MR; ++i) {
            for (int j = 0; j < i; ++j) {
                const Vec n = V::broadcast(diagonal + j * MR + i);
                for (int v = 0; v < NV; ++v) acc[i][v] = V::mul_add(n, acc[j][v], acc[i][v]);
            }
            const Vec r = V::broadcast(diagonal + i * MR + i);
            for (int v = 0; v < NV; ++v) acc[i][v] = V::mul(acc[i][v], r);
        }
    }
};

template <class V, int MR, int NV>
struct Tile<V, MR, NV, true> {
    using Vec = typename V::Vec;
    static constexpr int kLanes = V::kLanes;
    static constexpr int kWidth = NV * kLanes / 2;
    static constexpr int kRowDoubles = 2 * kWidth;

    // Products with the real and with the imaginary parts of the panel values, combined by finish.
    Vec with_re[MR][NV], with_im[MR][NV];
    Vec acc[MR][NV];

    void clear() {
#pragma GCC unroll 32
        for (int i = 0; i < MR; ++i) {
#pragma GCC unroll 8
            for (int v = 0; v < NV; ++v) with_re[i][v] = with_im[i][v] = V::zero();
        }
    }

    void multiply_add(zint depth, const double* panel, const double* strip) {
#pragma GCC unroll 2
        for (zint q = 0; q < depth; ++q) {
            Vec s[NV];
#pragma GCC unroll 8
            for (int v = 0; v < NV; ++v) s[v] = V::load(strip + q * kRowDoubles + v * kLanes);
#pragma GCC unroll 32
            for (int i = 0; i < MR; ++i) {
                const Vec a_re = V::broadcast(panel + 2 * (q * MR + i));
                const Vec a_im = V::broadcast(panel + 2 * (q * MR + i) + 1);
#pragma GCC unroll 8
                for (int v = 0; v < NV; ++v) {
                    with_re[i][v] = V::mul_add(a_re, s[v], with_re[i][v]);
                    with_im[i][v] = V::mul_add(a_im, s[v], with_im[i][v]);
                }
            }
        }
    }

    // (ar sr, ar si) and (ai sr, ai si) give (ar sr - ai si, ar si + ai sr).
    void finish() {
        for (int i = 0; i < MR; ++i) {
            for (int v = 0; v < NV; ++v) acc[i][v] = V::add_sub(with_re[i][v], V::swap_pairs(with_im[i][v]));
        }
    }

    void add_rows(const double* rows) {
        for (int i = 0; i < MR; ++i) {
            for (int v = 0; v < NV; ++v) {
                acc[i][v] = V::add(acc[i][v], V::load(rows + i * kRowDoubles + v * kLanes));
            }
        }
    }

    void store_rows(double* rows) const {
        for (int i = 0; i < MR; ++i) {
            for (int v = 0; v < NV; ++v) V::storeu(rows + i * kRowDoubles + v * kLanes, acc[i][v]);
        }
    }

    // t·x for the complex value at t, broadcast, and the complex values of x.
    static Vec times(const double* t, Vec x) {
        return V::add_sub(V::mul(V::broadcast(t), x), V::mul(V::broadcast(t + 1), V::swap_pairs(x)));
    }

    void solve(const double* diagonal) {
        for (int i = 0; i < MR; ++i) {
            for (int j = 0; j < i; ++j) {
                const double* n = diagonal + 2 * (j * MR + i);
                for (int v = 0; v < NV; ++v) acc[i][v] = V::add(acc[i][v], times(n, acc[j][v]));
            }
            for (int v = 0; v < NV; ++v) acc[i][v] = times(diagonal + 2 * (i * MR + i), acc[i][v]);
        }
    }
};

template <class V, int MR, int NV, class T>
struct Blocks {
    using A = Arith<T>;
    using Kernel = Tile<V, MR, NV, A::kComplex>;
    static constexpr zint W = Kernel::kWidth;
    // Depth of the packed blocks of rank_update: a panel of MR rows stays in the level-1 cache.
    static constexpr zint kDepth = A::kComplex ? 128 : 256;

    static const double* doubles(const T* p) { return reinterpret_cast<const double*>(p); }
    static double* doubles(T* p) { return reinterpret_cast<double*>(p); }

    static constexpr zint panels(zint b) { return (b + MR - 1) / MR; }
    static constexpr zint strips(zint b) { return (b + W - 1) / W; }
    static constexpr zint triangle_elements(zint b) { return MR * MR * panels(b) * (panels(b) + 1) / 2; }
    static constexpr zint panel_offset(zint r) { return MR * MR * r * (r + 1) / 2; }
    static constexpr zint triangular_work(zint b) { return triangle_elements(b) + panels(b) * MR * W; }
    static constexpr zint rank_work(zint b) { return (panels(b) * MR + strips(b) * W) * kDepth; }

    // ---- packing --------------------------------------------------------------------------------

    // The triangle for solve; false when some reciprocal of the diagonal is not safe to use.
    static bool pack_solve_triangle(zint b, const ConstView<T>& m, bool unit, T* out) {
        bool safe = true;
        for (zint r = 0; r < panels(b); ++r) {
            T* panel = out + panel_offset(r);
            for (zint j = 0; j < (r + 1) * MR; ++j) {
                for (zint row = 0; row < MR; ++row) {
                    const zint i = r * MR + row;
                    T value = A::zero();
                    if (i >= b) {
                        if (j == i) value = A::one();  // padding rows solve to their zeros
                    } else if (j == i) {
                        if (unit) {
                            value = A::one();
                        } else {
                            const T d = at(m, i, i);
                            safe = safe && A::reciprocal_safe(d);
                            value = A::recip(d);
                        }
                    } else if (j < i) {
                        value = A::neg(at(m, i, j));
                    }
                    panel[j * MR + row] = value;
                }
            }
        }
        return safe;
    }

    static void pack_multiply_triangle(zint b, const ConstView<T>& m, bool unit, const T& alpha, T* out) {
        for (zint r = 0; r < panels(b); ++r) {
            T* panel = out + panel_offset(r);
            for (zint j = 0; j < (r + 1) * MR; ++j) {
                for (zint row = 0; row < MR; ++row) {
                    const zint i = r * MR + row;
                    T value = A::zero();
                    if (i < b && j <= i) value = (j == i && unit) ? alpha : A::mul(alpha, at(m, i, j));
                    panel[j * MR + row] = value;
                }
            }
        }
    }

    // W columns of Y (`cols` of them real) times alpha, the rows padded to whole panels with zeros.
    static void pack_strip(zint b, zint cols, const MutableView<T>& y, const T& alpha, T* out) {
        const bool scale = !A::is_one(alpha);
        for (zint u = 0; u < panels(b) * MR; ++u) {
            T* row = out + u * W;
            for (zint j = 0; j < W; ++j) {
                if (u < b && j < cols) {
                    row[j] = scale ? A::mul(alpha, at(y, u, j)) : at(y, u, j);
                } else {
                    row[j] = A::zero();
                }
            }
        }
    }

    static void unpack_strip(zint b, zint cols, const T* strip, const MutableView<T>& y) {
        for (zint u = 0; u < b; ++u) {
            for (zint j = 0; j < cols; ++j) at(y, u, j) = strip[u * W + j];
        }
    }

    // Panels of alpha·Z(l, p) and strips of X(i, p) for `depth` steps, each zero beyond b.
    static void pack_panels(zint b, zint depth, const ConstView<T>& z, const T& alpha, T* out) {
        const bool scale = !A::is_one(alpha);
        for (zint r = 0; r < panels(b); ++r) {
            T* panel = out + r * MR * depth;
            for (zint q = 0; q < depth; ++q) {
                for (zint row = 0; row < MR; ++row) {
                    const zint l = r * MR + row;
                    T value = A::zero();
                    if (l < b) value = scale ? A::mul(alpha, at(z, l, q)) : at(z, l, q);
                    panel[q * MR + row] = value;
                }
            }
        }
    }

    static void pack_strips(zint b, zint depth, const ConstView<T>& x, T* out) {
        for (zint s = 0; s < strips(b); ++s) {
            T* strip = out + s * W * depth;
            for (zint q = 0; q < depth; ++q) {
                for (zint j = 0; j < W; ++j) {
                    const zint i = s * W + j;
                    strip[q * W + j] = i < b ? at(x, i, q) : A::zero();
                }
            }
        }
    }

    // ---- the kernels -----------------------------------------------------------------------------

    static void solve(zint b, zint nv, const ConstView<T>& m, bool unit, const T& alpha,
                      const MutableView<T>& y, T* work) {
        T* triangle = work;
        T* strip = work + triangle_elements(b);
        if (!pack_solve_triangle(b, m, unit, triangle)) {
            solve_unblocked(b, nv, m, unit, alpha, y);
            return;
        }
        for (zint v0 = 0; v0 < nv; v0 += W) {
            const zint cols = nv - v0 < W ? nv - v0 : W;
            const MutableView<T> columns = shifted(y, 0, v0);
            pack_strip(b, cols, columns, alpha, strip);
            for (zint r = 0; r < panels(b); ++r) {
                const T* panel = triangle + panel_offset(r);
                double* rows = doubles(strip + r * MR * W);
                Kernel tile;
                tile.clear();
                tile.multiply_add(r * MR, doubles(panel), doubles(strip));
                tile.finish();
                tile.add_rows(rows);
                tile.solve(doubles(panel + r * MR * MR));
                tile.store_rows(rows);
            }
            unpack_strip(b, cols, strip, columns);
        }
    }

    static void multiply(zint b, zint nv, const ConstView<T>& m, bool unit, const T& alpha,
                         const MutableView<T>& y, T* work) {
        T* triangle = work;
        T* strip = work + triangle_elements(b);
        pack_multiply_triangle(b, m, unit, alpha, triangle);
        for (zint v0 = 0; v0 < nv; v0 += W) {
            const zint cols = nv - v0 < W ? nv - v0 : W;
            const MutableView<T> columns = shifted(y, 0, v0);
            pack_strip(b, cols, columns, A::one(), strip);
            for (zint r = panels(b) - 1; r >= 0; --r) {
                Kernel tile;
                tile.clear();
                tile.multiply_add((r + 1) * MR, doubles(triangle + panel_offset(r)), doubles(strip));
                tile.finish();
                tile.store_rows(doubles(strip + r * MR * W));
            }
            unpack_strip(b, cols, strip, columns);
        }
    }

    // Adds the elements of a finished tile that lie in the triangle (and in the block) to C. Rows of
    // the tile are columns l of C, its columns rows i.
    static void add_to_triangle(const Kernel& tile, zint l0, zint i0, zint b, bool lower, T* c, zint ldc) {
        alignas(64) double values[MR][Kernel::kRowDoubles];
        for (int row = 0; row < MR; ++row) {
            for (int v = 0; v < NV; ++v) V::storeu(&values[row][v * V::kLanes], tile.acc[row][v]);
        }
        for (zint row = 0; row < MR && l0 + row < b; ++row) {
            const zint l = l0 + row;
            const zint first = lower ? (i0 > l ? i0 : l) : i0;
            zint last = lower ? i0 + W : (i0 + W < l + 1 ? i0 + W : l + 1);
            if (last > b) last = b;
            const T* from = reinterpret_cast<const T*>(values[row]) - i0;
            for (zint i = first; i < last; ++i) c[i + l * ldc] = A::add(c[i + l * ldc], from[i]);
        }
    }

    static void rank_update(zint b, zint k, const ConstView<T>& x, const ConstView<T>& z, const T& alpha,
                            bool lower, bool hermitian, T* c, zint ldc, T* work) {
        T* z_panels = work;
        T* x_strips = work + panels(b) * MR * kDepth;
        for (zint p0 = 0; p0 < k; p0 += kDepth) {
            const zint depth = k - p0 < kDepth ? k - p0 : kDepth;
            pack_panels(b, depth, shifted(z, 0, p0), alpha, z_panels);
            pack_strips(b, depth, shifted(x, 0, p0), x_strips);
            for (zint r = 0; r < panels(b); ++r) {
                for (zint s = 0; s < strips(b); ++s) {
                    const bool touches = lower ? s * W + W - 1 >= r * MR : s * W <= r * MR + MR - 1;
                    if (!touches) continue;
                    Kernel tile;
                    tile.clear();
                    tile.multiply_add(depth, doubles(z_panels + r * MR * depth),
                                      doubles(x_strips + s * W * depth));
                    tile.finish();
                    add_to_triangle(tile, r * MR, s * W, b, lower, c, ldc);
                }
            }
        }
        if (hermitian) {
            for (zint l = 0; l < b; ++l) c[l + l * ldc] = A::real(c[l + l * ldc]);
        }
    }
};

// The kernel table for diagonal blocks of order up to `triangular_block` (trsm, trmm) and
// `rank_block` (the rank-k updates).
template <class V, int MR, int NV, class T>
constexpr BlockKernels<T> make_block_kernels(zint triangular_block, zint rank_block) {
    using B = Blocks<V, MR, NV, T>;
    const zint triangular = B::triangular_work(triangular_block), rank = B::rank_work(rank_block);
    return {triangular_block, rank_block,   triangular > rank ? triangular : rank,
            &B::solve,        &B::multiply, &B::rank_update};
}

}  // namespace
}  // namespace zor::ZOR_LEVEL_NS
