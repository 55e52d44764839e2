#pragma once
// The diagonal-block kernels of level3_blocks.hpp in register tiles, written once over a vector
// type V (simd.hpp) and the element type. Everything has internal linkage: the FMA and AVX-512
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

#include <immintrin.h>

#include "blas/level3/level3_common.hpp"
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
#pragma GCC unroll 32
        for (int i = 0; i < MR; ++i) {
#pragma GCC unroll 32
            for (int v = 0; v < NV; ++v)
                acc[i][v] = V::add(acc[i][v], V::load(rows + i * kWidth + v * kLanes));
        }
    }

    void store_rows(double* rows) const {
#pragma GCC unroll 32
        for (int i = 0; i < MR; ++i) {
#pragma GCC unroll 32
            for (int v = 0; v < NV; ++v) V::storeu(rows + i * kWidth + v * kLanes, acc[i][v]);
        }
    }

    // Row i becomes x_i = s_i · r_i with s_i = row i + Σ_{j<i} n(i, j) r_j s_j, where column j of the
    // packed diagonal tile holds n(·, j) r_j below the diagonal and r_j on it: the chain from row to
    // row is one multiply-add, the multiplications by r come after it.
    void solve(const double* diagonal) {
#pragma GCC unroll 32
        for (int i = 1; i < MR; ++i) {
#pragma GCC unroll 32
            for (int j = 0; j < i; ++j) {
                const Vec n = V::broadcast(diagonal + j * MR + i);
#pragma GCC unroll 32
                for (int v = 0; v < NV; ++v) acc[i][v] = V::mul_add(n, acc[j][v], acc[i][v]);
            }
        }
#pragma GCC unroll 32
        for (int i = 0; i < MR; ++i) {
            const Vec r = V::broadcast(diagonal + i * MR + i);
#pragma GCC unroll 32
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
#pragma GCC unroll 32
        for (int i = 0; i < MR; ++i) {
#pragma GCC unroll 32
            for (int v = 0; v < NV; ++v) acc[i][v] = V::add_sub(with_re[i][v], V::swap_pairs(with_im[i][v]));
        }
    }

    void add_rows(const double* rows) {
#pragma GCC unroll 32
        for (int i = 0; i < MR; ++i) {
#pragma GCC unroll 32
            for (int v = 0; v < NV; ++v) {
                acc[i][v] = V::add(acc[i][v], V::load(rows + i * kRowDoubles + v * kLanes));
            }
        }
    }

    void store_rows(double* rows) const {
#pragma GCC unroll 32
        for (int i = 0; i < MR; ++i) {
#pragma GCC unroll 32
            for (int v = 0; v < NV; ++v) V::storeu(rows + i * kRowDoubles + v * kLanes, acc[i][v]);
        }
    }

    // t·x for the complex value at t, broadcast, and the complex values of x.
    static Vec times(const double* t, Vec x) {
        return V::add_sub(V::mul(V::broadcast(t), x), V::mul(V::broadcast(t + 1), V::swap_pairs(x)));
    }

    void solve(const double* diagonal) {
#pragma GCC unroll 32
        for (int i = 1; i < MR; ++i) {
#pragma GCC unroll 32
            for (int j = 0; j < i; ++j) {
                const double* n = diagonal + 2 * (j * MR + i);
#pragma GCC unroll 32
                for (int v = 0; v < NV; ++v) acc[i][v] = V::add(acc[i][v], times(n, acc[j][v]));
            }
        }
#pragma GCC unroll 32
        for (int i = 0; i < MR; ++i) {
#pragma GCC unroll 32
            for (int v = 0; v < NV; ++v) acc[i][v] = times(diagonal + 2 * (i * MR + i), acc[i][v]);
        }
    }
};

template <class V, int MR, int NV, class T>
struct Blocks {
    using Kernel = Tile<V, MR, NV, kIsComplex<T>>;
    static constexpr zint W = Kernel::kWidth;
    // Depth of the packed blocks of rank_update: a panel of MR rows stays in the level-1 cache.
    static constexpr zint kDepth = kIsComplex<T> ? 128 : 256;

    static const double* doubles(const T* p) { return reinterpret_cast<const double*>(p); }
    static double* doubles(T* p) { return reinterpret_cast<double*>(p); }

    static constexpr zint panels(zint b) { return (b + MR - 1) / MR; }
    static constexpr zint strips(zint b) { return (b + W - 1) / W; }
    static constexpr zint triangle_elements(zint b) { return MR * MR * panels(b) * (panels(b) + 1) / 2; }
    static constexpr zint panel_offset(zint r) { return MR * MR * r * (r + 1) / 2; }
    // Strips of right-hand sides packed at a time: each row of the caller's matrix is read in runs of
    // kGroup strips.
    static constexpr zint kGroup = 4;
    static constexpr zint strip_elements(zint b) { return panels(b) * MR * W; }
    static constexpr zint triangular_work(zint b) {
        return triangle_elements(b) + kGroup * strip_elements(b);
    }
    static constexpr zint rank_work(zint b) { return (panels(b) * MR + strips(b) * W) * kDepth; }

    // ---- packing --------------------------------------------------------------------------------

    // The triangle for solve (see Tile::solve for its diagonal tiles); false when some reciprocal of
    // the diagonal is not safe to use.
    static bool pack_solve_triangle(zint b, const ConstView<T>& m, bool unit, T* out) {
        bool safe = true;
        T reciprocals[MR];
        for (zint r = 0; r < panels(b); ++r) {
            T* panel = out + panel_offset(r);
            for (zint row = 0; row < MR; ++row) {
                const zint i = r * MR + row;
                reciprocals[row] = one<T>();  // also for the padding rows, which solve to their zeros
                if (i < b && !unit) {
                    const T d = at(m, i, i);
                    safe = safe && reciprocal_safe(d);
                    reciprocals[row] = reciprocal(d);
                }
            }
            for (zint j = 0; j < (r + 1) * MR; ++j) {
                for (zint row = 0; row < MR; ++row) {
                    const zint i = r * MR + row;
                    T value = zero<T>();
                    if (j == i) {
                        value = reciprocals[row];
                    } else if (j < i && i < b) {
                        value = -at(m, i, j);
                        if (j >= r * MR) value = value * reciprocals[j - r * MR];
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
                    T value = zero<T>();
                    if (i < b && j <= i) value = (j == i && unit) ? alpha : alpha * at(m, i, j);
                    panel[j * MR + row] = value;
                }
            }
        }
    }

    // Whether Y runs along its rows in unit steps (side "L"): the copies then walk it by columns, so
    // that the caller's matrix streams and only the packed block, which the caches hold, is strided.
    // Otherwise its columns do (side "R").
    static bool by_columns(const MutableView<T>& y) { return y.rs == 1 || y.rs == -1; }

    // Square blocks of a column-major Y, read or written a vector per column and turned around in
    // registers: kUnit elements per vector.
    using Vec = typename V::Vec;
    static constexpr zint kUnit = kIsComplex<T> ? V::kLanes / 2 : V::kLanes;

    static void turn(Vec (&r)[kUnit]) {
        if constexpr (kIsComplex<T>) {
            V::transpose_pairs(r);
        } else {
            V::transpose(r);
        }
    }
    static Vec reverse(Vec v) {
        if constexpr (kIsComplex<T>) {
            return V::reverse_pairs(v);
        } else {
            return V::reverse(v);
        }
    }
    static Vec scaled(const T& alpha, Vec v) {
        if constexpr (kIsComplex<T>) {
            return Kernel::times(&alpha.re, v);
        } else {
            return V::mul(V::broadcast(&alpha), v);
        }
    }
    // The first element of the kUnit rows from u0 in a column: the lowest address.
    static T* column_start(const MutableView<T>& y, zint u0, zint j) {
        return &at(y, y.rs > 0 ? u0 : u0 + kUnit - 1, j);
    }

    // Rows u0 .. u0 + kUnit of columns j0 .. j0 + kUnit of Y into the strip.
    static void turn_in(const MutableView<T>& y, zint u0, zint j0, const T& alpha, bool scale, T* out) {
        Vec r[kUnit];
        for (zint k = 0; k < kUnit; ++k) {
            r[k] = V::loadu(doubles(column_start(y, u0, j0 + k)));
            if (y.rs < 0) r[k] = reverse(r[k]);
        }
        turn(r);
        for (zint i = 0; i < kUnit; ++i)
            V::storeu(doubles(out + (u0 + i) * W + j0), scale ? scaled(alpha, r[i]) : r[i]);
    }

    static void turn_out(const T* strip, zint u0, zint j0, const MutableView<T>& y) {
        Vec r[kUnit];
        for (zint i = 0; i < kUnit; ++i) r[i] = V::loadu(doubles(strip + (u0 + i) * W + j0));
        turn(r);
        for (zint k = 0; k < kUnit; ++k)
            V::storeu(doubles(column_start(y, u0, j0 + k)), y.rs < 0 ? reverse(r[k]) : r[k]);
    }

    // `cols` columns of Y times alpha into strips of W columns, kGroup at most, `strip_elements`
    // apart; rows padded to whole panels and the last strip's columns with zeros. A view whose
    // columns run along the caller's columns is turned around in square blocks; one whose rows do is
    // copied row by row, each row one run across all the strips of the group.
    static void pack_group(zint b, zint cols, const MutableView<T>& y, const T& alpha, T* strips) {
        const bool scale = !is_one(alpha);
        const zint count = (cols + W - 1) / W, stride = strip_elements(b);
        auto value = [&](zint u, zint j) { return scale ? alpha * at(y, u, j) : at(y, u, j); };
        if (by_columns(y)) {
            for (zint s = 0; s < count; ++s) {
                const zint first = s * W, width = cols - first < W ? cols - first : W;
                const MutableView<T> part = shifted(y, 0, first);
                T* out = strips + s * stride;
                const zint whole_rows = b / kUnit * kUnit, whole_cols = width / kUnit * kUnit;
                for (zint j0 = 0; j0 < whole_cols; j0 += kUnit) {
                    for (zint u0 = 0; u0 < whole_rows; u0 += kUnit) turn_in(part, u0, j0, alpha, scale, out);
                }
                for (zint j = 0; j < W; ++j) {
                    for (zint u = j < whole_cols ? whole_rows : 0; u < b; ++u) {
                        out[u * W + j] = j < width ? value(u, first + j) : zero<T>();
                    }
                }
            }
        } else {
            for (zint u = 0; u < b; ++u) {
                const T* row = &at(y, u, 0);
                for (zint s = 0; s < count; ++s) {
                    const zint width = cols - s * W < W ? cols - s * W : W;
                    T* out = strips + s * stride + u * W;
                    if (scale) {
                        for (zint j = 0; j < width; ++j) out[j] = alpha * row[s * W + j];
                    } else {
                        for (zint j = 0; j < width; ++j) out[j] = row[s * W + j];
                    }
                    for (zint j = width; j < W; ++j) out[j] = zero<T>();
                }
            }
        }
        for (zint s = 0; s < count; ++s) {
            for (zint u = b; u < panels(b) * MR; ++u) {
                for (zint j = 0; j < W; ++j) strips[s * stride + u * W + j] = zero<T>();
            }
        }
    }

    static void unpack_group(zint b, zint cols, const T* strips, const MutableView<T>& y) {
        const zint count = (cols + W - 1) / W, stride = strip_elements(b);
        if (by_columns(y)) {
            for (zint s = 0; s < count; ++s) {
                const zint first = s * W, width = cols - first < W ? cols - first : W;
                const MutableView<T> part = shifted(y, 0, first);
                const T* strip = strips + s * stride;
                const zint whole_rows = b / kUnit * kUnit, whole_cols = width / kUnit * kUnit;
                for (zint j0 = 0; j0 < whole_cols; j0 += kUnit) {
                    for (zint u0 = 0; u0 < whole_rows; u0 += kUnit) turn_out(strip, u0, j0, part);
                }
                for (zint j = 0; j < width; ++j) {
                    for (zint u = j < whole_cols ? whole_rows : 0; u < b; ++u)
                        at(part, u, j) = strip[u * W + j];
                }
            }
        } else {
            for (zint u = 0; u < b; ++u) {
                T* row = &at(y, u, 0);
                for (zint s = 0; s < count; ++s) {
                    const zint width = cols - s * W < W ? cols - s * W : W;
                    const T* in = strips + s * stride + u * W;
                    for (zint j = 0; j < width; ++j) row[s * W + j] = in[j];
                }
            }
        }
    }

    // The b rows of a view over `depth` steps into blocks of `width` rows (panels or strips), each
    // holding `width` values per step, times alpha; rows beyond b are zero. The view is walked along
    // whichever of its directions has unit steps, so that the caller's columns are read once each.
    template <zint width>
    static void pack_blocks(zint b, zint depth, const ConstView<T>& v, const T& alpha, T* out) {
        const bool scale = !is_one(alpha);
        const zint blocks = (b + width - 1) / width;
        auto value = [&](T x) {
            if (v.conj) x = conj(x);
            return scale ? alpha * x : x;
        };
        auto rows_of = [&](zint block) { return b - block * width < width ? b - block * width : width; };
        if (v.rs == 1) {
            for (zint q = 0; q < depth; ++q) {
                const T* column = v.base + q * v.cs;
                for (zint block = 0; block < blocks; ++block) {
                    T* to = out + block * width * depth + q * width;
                    const T* from = column + block * width;
                    for (zint row = 0; row < rows_of(block); ++row) to[row] = value(from[row]);
                }
            }
        } else {
            for (zint block = 0; block < blocks; ++block) {
                for (zint row = 0; row < rows_of(block); ++row) {
                    T* to = out + block * width * depth + row;
                    if (v.cs == 1) {
                        const T* line = v.base + (block * width + row) * v.rs;
                        for (zint q = 0; q < depth; ++q) to[q * width] = value(line[q]);
                    } else {
                        const ConstView<T> plain{v.base, v.rs, v.cs, false};
                        for (zint q = 0; q < depth; ++q)
                            to[q * width] = value(at(plain, block * width + row, q));
                    }
                }
            }
        }
        const zint last = blocks - 1;
        for (zint q = 0; q < depth; ++q) {
            for (zint row = rows_of(last); row < width; ++row)
                out[last * width * depth + q * width + row] = zero<T>();
        }
    }

    // ---- the kernels -----------------------------------------------------------------------------

    static void solve(zint b, zint nv, const ConstView<T>& m, bool unit, const T& alpha,
                      const MutableView<T>& y, T* work) {
        T* triangle = work;
        T* strips = work + triangle_elements(b);
        if (!pack_solve_triangle(b, m, unit, triangle)) {
            solve_unblocked(b, nv, m, unit, alpha, y);
            return;
        }
        for (zint v0 = 0; v0 < nv; v0 += kGroup * W) {
            const zint cols = nv - v0 < kGroup * W ? nv - v0 : kGroup * W;
            const MutableView<T> columns = shifted(y, 0, v0);
            pack_group(b, cols, columns, alpha, strips);
            for (zint s = 0; s * W < cols; ++s) {
                T* strip = strips + s * strip_elements(b);
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
            }
            unpack_group(b, cols, strips, columns);
        }
    }

    static void multiply(zint b, zint nv, const ConstView<T>& m, bool unit, const T& alpha,
                         const MutableView<T>& y, T* work) {
        T* triangle = work;
        T* strips = work + triangle_elements(b);
        pack_multiply_triangle(b, m, unit, alpha, triangle);
        for (zint v0 = 0; v0 < nv; v0 += kGroup * W) {
            const zint cols = nv - v0 < kGroup * W ? nv - v0 : kGroup * W;
            const MutableView<T> columns = shifted(y, 0, v0);
            pack_group(b, cols, columns, one<T>(), strips);
            for (zint s = 0; s * W < cols; ++s) {
                T* strip = strips + s * strip_elements(b);
                for (zint r = panels(b) - 1; r >= 0; --r) {
                    Kernel tile;
                    tile.clear();
                    tile.multiply_add((r + 1) * MR, doubles(triangle + panel_offset(r)), doubles(strip));
                    tile.finish();
                    tile.store_rows(doubles(strip + r * MR * W));
                }
            }
            unpack_group(b, cols, strips, columns);
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
            for (zint i = first; i < last; ++i) c[i + l * ldc] = c[i + l * ldc] + from[i];
        }
    }

    static void rank_update(zint b, zint k, const ConstView<T>& x, const ConstView<T>& z, const T& alpha,
                            bool lower, bool hermitian, T* c, zint ldc, T* work) {
        T* z_panels = work;
        T* x_strips = work + panels(b) * MR * kDepth;
        for (zint p0 = 0; p0 < k; p0 += kDepth) {
            const zint depth = k - p0 < kDepth ? k - p0 : kDepth;
            pack_blocks<MR>(b, depth, shifted(z, 0, p0), alpha, z_panels);
            pack_blocks<W>(b, depth, shifted(x, 0, p0), one<T>(), x_strips);
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
            for (zint l = 0; l < b; ++l) c[l + l * ldc] = real_part(c[l + l * ldc]);
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
