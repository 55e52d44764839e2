#pragma once
// Packing routines of the Avx records in 256-bit vectors, in the formats of gemm_pack.hpp (real: A in
// panels of 4 rows, B in panels of 8 columns; complex: A in panels of 2 rows, B of 4 columns).
// Transposing reads go through 4 x 4 (real) or 2 x 2 (complex) register transposes, so that every
// source line is read whole and every packed line written whole. Included by the Avx variant only;
// internal linkage.

#include <immintrin.h>

#include "blas/gemm/pack.hpp"

#ifdef __AVX__

namespace zor::ZOR_LEVEL_NS {
namespace {

// Rows r0..r3 of 4 values into the 4 columns.
inline void transpose4(__m256d& r0, __m256d& r1, __m256d& r2, __m256d& r3) {
    const __m256d t0 = _mm256_unpacklo_pd(r0, r1), t1 = _mm256_unpackhi_pd(r0, r1);
    const __m256d t2 = _mm256_unpacklo_pd(r2, r3), t3 = _mm256_unpackhi_pd(r2, r3);
    r0 = _mm256_permute2f128_pd(t0, t2, 0x20);
    r1 = _mm256_permute2f128_pd(t1, t3, 0x20);
    r2 = _mm256_permute2f128_pd(t0, t2, 0x31);
    r3 = _mm256_permute2f128_pd(t1, t3, 0x31);
}

// A block of N depth steps, N known at compile time; converts to the count.
template <zint N>
struct DepthBlock {
    constexpr operator zint() const { return N; }
};

inline void zero_depth_padding(double* panel, zint width, zint depth, zint padded_depth) {
    for (zint p = depth * width; p < padded_depth * width; ++p) panel[p] = 0.0;
}

// Depth steps handled together when each step reads its own column (or row) of the source: the
// pages of those few lines stay in the TLB while every panel is visited, and each panel gets whole
// cache lines at a time.
constexpr zint kDepthPerPass = 8;

// Calls body(p0, steps) for the depth blocks of kDepthPerPass, the steps of whole blocks as a
// compile-time constant so that their loops unroll completely.
template <class Body>
inline void over_depth_blocks(zint depth, Body body) {
    zint p0 = 0;
    for (; p0 + kDepthPerPass <= depth; p0 += kDepthPerPass) body(p0, DepthBlock<kDepthPerPass>{});
    if (p0 < depth) body(p0, depth - p0);
}

// The arguments come by reference; copies in registers let the compiler see that the packed stores
// cannot change them.
inline void pack_a_n_avx(const zint& rows_in, const zint& cols_in, const double* source, const zint& ld_in,
                         double* destination, const zint& stride_in, const double& alpha) {
    const zint rows = rows_in, cols = cols_in, ld = ld_in, panel_stride = stride_in;
    const __m256d scale = _mm256_set1_pd(alpha);
    const zint whole = rows / 4;
    over_depth_blocks(cols, [&](zint p0, auto steps) {
        for (zint q = 0; q < whole; ++q) {
            const double* column = source + 4 * q + p0 * ld;
            double* out = destination + q * panel_stride + 4 * p0;
            for (zint t = 0; t < steps; ++t) {
                _mm256_store_pd(out + 4 * t, _mm256_mul_pd(scale, _mm256_loadu_pd(column + t * ld)));
            }
        }
    });
    for (zint q = 0; q < whole; ++q)
        zero_depth_padding(destination + q * panel_stride, 4, cols, panel_stride / 4);
    if (whole * 4 < rows) {
        pack_a_n<4>(rows - 4 * whole, cols, source + 4 * whole, ld, destination + whole * panel_stride,
                    panel_stride, alpha);
    }
}

inline void pack_a_t_avx(const zint& rows_in, const zint& cols_in, const double* source, const zint& ld_in,
                         double* destination, const zint& stride_in, const double& alpha) {
    const zint rows = rows_in, cols = cols_in, ld = ld_in, panel_stride = stride_in;
    const __m256d scale = _mm256_set1_pd(alpha);
    const zint whole = rows / 4, depth4 = cols / 4 * 4;
    for (zint q = 0; q < whole; ++q) {
        const double* row = source + 4 * q * ld;  // row i of op(A) is column i of A
        double* panel = destination + q * panel_stride;
        for (zint p = 0; p < depth4; p += 4) {
            __m256d r0 = _mm256_loadu_pd(row + p), r1 = _mm256_loadu_pd(row + ld + p);
            __m256d r2 = _mm256_loadu_pd(row + 2 * ld + p), r3 = _mm256_loadu_pd(row + 3 * ld + p);
            transpose4(r0, r1, r2, r3);
            _mm256_store_pd(panel + 4 * p, _mm256_mul_pd(scale, r0));
            _mm256_store_pd(panel + 4 * p + 4, _mm256_mul_pd(scale, r1));
            _mm256_store_pd(panel + 4 * p + 8, _mm256_mul_pd(scale, r2));
            _mm256_store_pd(panel + 4 * p + 12, _mm256_mul_pd(scale, r3));
        }
        for (zint p = depth4; p < cols; ++p) {
            for (zint r = 0; r < 4; ++r) panel[4 * p + r] = alpha * row[r * ld + p];
        }
        zero_depth_padding(panel, 4, cols, panel_stride / 4);
    }
    if (whole * 4 < rows) {
        pack_a_t<4>(rows - 4 * whole, cols, source + 4 * whole * ld, ld, destination + whole * panel_stride,
                    panel_stride, alpha);
    }
}

inline void pack_b_n_avx(const zint& rows_in, const zint& cols_in, const double* source, const zint& ld_in,
                         double* destination, const zint& stride_in, const double& unused) {
    const zint rows = rows_in, cols = cols_in, ld = ld_in, panel_stride = stride_in;
    const zint whole = cols / 8, depth4 = rows / 4 * 4;
    for (zint q = 0; q < whole; ++q) {
        const double* columns = source + 8 * q * ld;
        double* panel = destination + q * panel_stride;
        for (zint p = 0; p < depth4; p += 4) {
            for (zint half = 0; half < 2; ++half) {
                const double* c = columns + 4 * half * ld + p;
                __m256d r0 = _mm256_loadu_pd(c), r1 = _mm256_loadu_pd(c + ld);
                __m256d r2 = _mm256_loadu_pd(c + 2 * ld), r3 = _mm256_loadu_pd(c + 3 * ld);
                transpose4(r0, r1, r2, r3);
                double* out = panel + 8 * p + 4 * half;
                _mm256_store_pd(out, r0);
                _mm256_store_pd(out + 8, r1);
                _mm256_store_pd(out + 16, r2);
                _mm256_store_pd(out + 24, r3);
            }
        }
        for (zint p = depth4; p < rows; ++p) {
            for (zint j = 0; j < 8; ++j) panel[8 * p + j] = columns[j * ld + p];
        }
        zero_depth_padding(panel, 8, rows, panel_stride / 8);
    }
    if (whole * 8 < cols) {
        pack_b_n<8>(rows, cols - 8 * whole, source + 8 * whole * ld, ld, destination + whole * panel_stride,
                    panel_stride, unused);
    }
}

inline void pack_b_t_avx(const zint& rows_in, const zint& cols_in, const double* source, const zint& ld_in,
                         double* destination, const zint& stride_in, const double& unused) {
    const zint rows = rows_in, cols = cols_in, ld = ld_in, panel_stride = stride_in;
    const zint whole = cols / 8;
    over_depth_blocks(rows, [&](zint p0, auto steps) {
        for (zint q = 0; q < whole; ++q) {
            const double* row = source + 8 * q + p0 * ld;
            double* out = destination + q * panel_stride + 8 * p0;
            for (zint t = 0; t < steps; ++t) {
                _mm256_store_pd(out + 8 * t, _mm256_loadu_pd(row + t * ld));
                _mm256_store_pd(out + 8 * t + 4, _mm256_loadu_pd(row + t * ld + 4));
            }
        }
    });
    for (zint q = 0; q < whole; ++q)
        zero_depth_padding(destination + q * panel_stride, 8, rows, panel_stride / 8);
    if (whole * 8 < cols) {
        pack_b_t<8>(rows, cols - 8 * whole, source + 8 * whole, ld, destination + whole * panel_stride,
                    panel_stride, unused);
    }
}

// ---- complex --------------------------------------------------------------------------------------

inline __m256d complex_scale(__m256d x, __m256d alpha_re, __m256d alpha_im) {
    return _mm256_addsub_pd(_mm256_mul_pd(alpha_re, x), _mm256_mul_pd(alpha_im, _mm256_permute_pd(x, 0x5)));
}

inline __m256d conjugate_pairs(__m256d x) {
    return _mm256_xor_pd(x, _mm256_set_pd(-0.0, 0.0, -0.0, 0.0));
}

inline void zero_complex_padding(zcomplex* panel, zint width, zint depth, zint padded_depth) {
    for (zint p = depth * width; p < padded_depth * width; ++p) panel[p] = zcomplex{0.0, 0.0};
}

inline void zpack_a_n_avx(const zint& rows_in, const zint& cols_in, const zcomplex* source, const zint& ld_in,
                          zcomplex* destination, const zint& stride_in, const zcomplex& alpha) {
    const zint rows = rows_in, cols = cols_in, ld = ld_in, panel_stride = stride_in;
    const __m256d alpha_re = _mm256_set1_pd(alpha.re), alpha_im = _mm256_set1_pd(alpha.im);
    const zint whole = rows / 2;
    over_depth_blocks(cols, [&](zint p0, auto steps) {
        for (zint q = 0; q < whole; ++q) {
            const double* column = &source[2 * q + p0 * ld].re;
            double* out = &destination[q * panel_stride + 2 * p0].re;
            for (zint t = 0; t < steps; ++t) {
                const __m256d x = _mm256_loadu_pd(column + 2 * t * ld);
                _mm256_store_pd(out + 4 * t, complex_scale(x, alpha_re, alpha_im));
            }
        }
    });
    for (zint q = 0; q < whole; ++q)
        zero_complex_padding(destination + q * panel_stride, 2, cols, panel_stride / 2);
    if (whole * 2 < rows) {
        pack_a_n<2>(rows - 2 * whole, cols, source + 2 * whole, ld, destination + whole * panel_stride,
                    panel_stride, alpha);
    }
}

// Rows of op(A) that are columns of A (transposed, conjugated when kConjugate).
template <bool kConjugate>
inline void zpack_a_rows_avx(const zint& rows_in, const zint& cols_in, const zcomplex* source,
                             const zint& ld_in, zcomplex* destination, const zint& stride_in,
                             const zcomplex& alpha) {
    const zint rows = rows_in, cols = cols_in, ld = ld_in, panel_stride = stride_in;
    const __m256d alpha_re = _mm256_set1_pd(alpha.re), alpha_im = _mm256_set1_pd(alpha.im);
    const zint whole = rows / 2, depth2 = cols / 2 * 2;
    for (zint q = 0; q < whole; ++q) {
        const double* r0 = &source[2 * q * ld].re;
        const double* r1 = r0 + 2 * ld;
        double* panel = &destination[q * panel_stride].re;
        for (zint p = 0; p < depth2; p += 2) {
            __m256d u = _mm256_loadu_pd(r0 + 2 * p), v = _mm256_loadu_pd(r1 + 2 * p);
            if constexpr (kConjugate) {
                u = conjugate_pairs(u);
                v = conjugate_pairs(v);
            }
            _mm256_store_pd(panel + 4 * p,
                            complex_scale(_mm256_permute2f128_pd(u, v, 0x20), alpha_re, alpha_im));
            _mm256_store_pd(panel + 4 * p + 4,
                            complex_scale(_mm256_permute2f128_pd(u, v, 0x31), alpha_re, alpha_im));
        }
        if (depth2 < cols) {
            const zint p = depth2;
            zcomplex x0 = source[2 * q * ld + p], x1 = source[(2 * q + 1) * ld + p];
            if constexpr (kConjugate) {
                x0.im = -x0.im;
                x1.im = -x1.im;
            }
            const __m256d x = _mm256_set_pd(x1.im, x1.re, x0.im, x0.re);
            _mm256_store_pd(panel + 4 * p, complex_scale(x, alpha_re, alpha_im));
        }
        zero_complex_padding(destination + q * panel_stride, 2, cols, panel_stride / 2);
    }
    if (whole * 2 < rows) {
        const zcomplex* rest = source + 2 * whole * ld;
        zcomplex* out = destination + whole * panel_stride;
        if constexpr (kConjugate) {
            pack_a_c<2>(rows - 2 * whole, cols, rest, ld, out, panel_stride, alpha);
        } else {
            pack_a_t<2>(rows - 2 * whole, cols, rest, ld, out, panel_stride, alpha);
        }
    }
}

inline void zpack_b_n_avx(const zint& rows_in, const zint& cols_in, const zcomplex* source, const zint& ld_in,
                          zcomplex* destination, const zint& stride_in, const zcomplex& unused) {
    const zint rows = rows_in, cols = cols_in, ld = ld_in, panel_stride = stride_in;
    const zint whole = cols / 4, depth2 = rows / 2 * 2;
    for (zint q = 0; q < whole; ++q) {
        const double* columns = &source[4 * q * ld].re;
        double* panel = &destination[q * panel_stride].re;
        for (zint p = 0; p < depth2; p += 2) {
            const __m256d c0 = _mm256_loadu_pd(columns + 2 * p),
                          c1 = _mm256_loadu_pd(columns + 2 * ld + 2 * p);
            const __m256d c2 = _mm256_loadu_pd(columns + 4 * ld + 2 * p),
                          c3 = _mm256_loadu_pd(columns + 6 * ld + 2 * p);
            double* out = panel + 8 * p;
            _mm256_store_pd(out, _mm256_permute2f128_pd(c0, c1, 0x20));
            _mm256_store_pd(out + 4, _mm256_permute2f128_pd(c2, c3, 0x20));
            _mm256_store_pd(out + 8, _mm256_permute2f128_pd(c0, c1, 0x31));
            _mm256_store_pd(out + 12, _mm256_permute2f128_pd(c2, c3, 0x31));
        }
        for (zint p = depth2; p < rows; ++p) {
            for (zint j = 0; j < 4; ++j)
                destination[q * panel_stride + 4 * p + j] = source[(4 * q + j) * ld + p];
        }
        zero_complex_padding(destination + q * panel_stride, 4, rows, panel_stride / 4);
    }
    if (whole * 4 < cols)
        pack_b_n<4>(rows, cols - 4 * whole, source + 4 * whole * ld, ld, destination + whole * panel_stride,
                    panel_stride, unused);
}

// Rows of B that are columns of op(B): plain copies, conjugated when kConjugate.
template <bool kConjugate>
inline void zpack_b_rows_avx(const zint& rows_in, const zint& cols_in, const zcomplex* source,
                             const zint& ld_in, zcomplex* destination, const zint& stride_in,
                             const zcomplex& unused) {
    const zint rows = rows_in, cols = cols_in, ld = ld_in, panel_stride = stride_in;
    const zint whole = cols / 4;
    over_depth_blocks(rows, [&](zint p0, auto steps) {
        for (zint q = 0; q < whole; ++q) {
            const double* row = &source[4 * q + p0 * ld].re;
            double* out = &destination[q * panel_stride + 4 * p0].re;
            for (zint t = 0; t < steps; ++t) {
                __m256d lo = _mm256_loadu_pd(row + 2 * t * ld), hi = _mm256_loadu_pd(row + 2 * t * ld + 4);
                if constexpr (kConjugate) {
                    lo = conjugate_pairs(lo);
                    hi = conjugate_pairs(hi);
                }
                _mm256_store_pd(out + 8 * t, lo);
                _mm256_store_pd(out + 8 * t + 4, hi);
            }
        }
    });
    for (zint q = 0; q < whole; ++q)
        zero_complex_padding(destination + q * panel_stride, 4, rows, panel_stride / 4);
    if (whole * 4 < cols) {
        const zcomplex* rest = source + 4 * whole;
        zcomplex* out = destination + whole * panel_stride;
        if constexpr (kConjugate) {
            pack_b_c<4>(rows, cols - 4 * whole, rest, ld, out, panel_stride, unused);
        } else {
            pack_b_t<4>(rows, cols - 4 * whole, rest, ld, out, panel_stride, unused);
        }
    }
}

}  // namespace
}  // namespace zor::ZOR_LEVEL_NS

#endif
