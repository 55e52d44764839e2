#pragma once
// Packing of GEMM operands into panels, shared by the GEMM kernel sources of every level. A panel
// holds W rows of op(A) (or W columns of op(B)); within it the W values of one depth index are
// contiguous and the depth indices follow each other, so that element (i, p) of a packed block lies
// at (i / W)·panel_stride + W·p + i mod W. The depth is padded with zeros up to panel_stride / W.
//
// The "n" routines read op(X) = X, the "t" routines op(X) = Xᵀ, the "c" routines (complex only)
// op(X) = Xᴴ. A is multiplied by alpha while it is packed; B is copied as it is.

#include "blas/kernel.hpp"
#include "service/element.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace pack_detail {

// Packs `count` rows (or columns) of depth `depth` in panels of W; element (i, p) of op(X) is
// source[i·across + p·depth_step]. A panel with fewer than W rows gets only its rows, unless
// `fill_partial` asks for zeros in the rest.
template <int W, bool kScale, bool kConjugate, class T>
void pack_panels(zint count, zint depth, const T* source, zint across, zint depth_step, T* destination,
                 zint panel_stride, const T& alpha, bool fill_partial) {
    const zint padded_depth = panel_stride / W;
    for (zint first = 0; first < count; first += W) {
        T* panel = destination + (first / W) * panel_stride;
        const zint width = count - first < W ? count - first : W;
        const zint written = fill_partial ? W : width;
        const T* rows = source + first * across;
        if (across == 1) {
            for (zint p = 0; p < depth; ++p) {
                const T* column = rows + p * depth_step;
                T* out = panel + W * p;
                for (zint r = 0; r < width; ++r) {
                    T x = column[r];
                    if constexpr (kConjugate) x = conj(x);
                    out[r] = kScale ? alpha * x : x;
                }
                for (zint r = width; r < written; ++r) out[r] = zero<T>();
            }
        } else {
            // Each row of op(X) is contiguous in the source: read it in order, write with stride W.
            for (zint r = 0; r < width; ++r) {
                const T* row = rows + r * across;
                T* out = panel + r;
                for (zint p = 0; p < depth; ++p) {
                    T x = row[p * depth_step];
                    if constexpr (kConjugate) x = conj(x);
                    out[W * p] = kScale ? alpha * x : x;
                }
            }
            for (zint r = width; r < written; ++r) {
                for (zint p = 0; p < depth; ++p) panel[W * p + r] = zero<T>();
            }
        }
        for (zint p = depth; p < padded_depth; ++p) {
            for (zint r = 0; r < written; ++r) panel[W * p + r] = zero<T>();
        }
    }
}

}  // namespace pack_detail

// A: rows x cols of op(A), alpha folded in. The real routines leave the missing rows of a last,
// partial panel unwritten; the complex ones fill them with zeros.
template <int MR>
void pack_a_n(const zint& rows, const zint& cols, const double* source, const zint& ld, double* destination,
              const zint& panel_stride, const double& alpha) {
    pack_detail::pack_panels<MR, true, false>(rows, cols, source, 1, ld, destination, panel_stride, alpha,
                                              false);
}

template <int MR>
void pack_a_t(const zint& rows, const zint& cols, const double* source, const zint& ld, double* destination,
              const zint& panel_stride, const double& alpha) {
    pack_detail::pack_panels<MR, true, false>(rows, cols, source, ld, 1, destination, panel_stride, alpha,
                                              false);
}

template <int MR>
void pack_a_n(const zint& rows, const zint& cols, const zcomplex* source, const zint& ld,
              zcomplex* destination, const zint& panel_stride, const zcomplex& alpha) {
    pack_detail::pack_panels<MR, true, false>(rows, cols, source, 1, ld, destination, panel_stride, alpha,
                                              true);
}

template <int MR>
void pack_a_t(const zint& rows, const zint& cols, const zcomplex* source, const zint& ld,
              zcomplex* destination, const zint& panel_stride, const zcomplex& alpha) {
    pack_detail::pack_panels<MR, true, false>(rows, cols, source, ld, 1, destination, panel_stride, alpha,
                                              true);
}

template <int MR>
void pack_a_c(const zint& rows, const zint& cols, const zcomplex* source, const zint& ld,
              zcomplex* destination, const zint& panel_stride, const zcomplex& alpha) {
    pack_detail::pack_panels<MR, true, true>(rows, cols, source, ld, 1, destination, panel_stride, alpha,
                                             true);
}

// B: rows x cols of op(B) (rows is the depth), unscaled; the missing columns of a last, partial panel
// are zeros, so that kernels may read whole panels.
template <int NR, class T>
void pack_b_n(const zint& rows, const zint& cols, const T* source, const zint& ld, T* destination,
              const zint& panel_stride, const T& unused) {
    pack_detail::pack_panels<NR, false, false>(cols, rows, source, ld, 1, destination, panel_stride, unused,
                                               true);
}

template <int NR, class T>
void pack_b_t(const zint& rows, const zint& cols, const T* source, const zint& ld, T* destination,
              const zint& panel_stride, const T& unused) {
    pack_detail::pack_panels<NR, false, false>(cols, rows, source, 1, ld, destination, panel_stride, unused,
                                               true);
}

template <int NR>
void pack_b_c(const zint& rows, const zint& cols, const zcomplex* source, const zint& ld,
              zcomplex* destination, const zint& panel_stride, const zcomplex& unused) {
    pack_detail::pack_panels<NR, false, true>(cols, rows, source, 1, ld, destination, panel_stride, unused,
                                              true);
}

}  // namespace zor::ZOR_LEVEL_NS
