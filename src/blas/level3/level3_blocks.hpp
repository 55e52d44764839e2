#pragma once
// The diagonal-block kernels of the level-3 routines, as a table per element type. The routines
// reduce every case to one canonical form and hand the kernels their operands as strided views:
//
// - solve / multiply: M is the b x b diagonal block of a lower triangular matrix (element (i, j)
//   read only for i >= j, the diagonal not at all when `unit`), Y is b rows by nv columns;
//   solve does Y := M⁻¹ (alpha Y), multiply Y := alpha M Y. An upper triangle or a transposed
//   operand becomes lower by reversing or swapping the strides; Y's columns are the independent
//   right-hand sides (the columns of B for side "L", its rows for side "R").
// - rank_update: the triangle (i >= l for lower, i <= l for upper) of the b x b block C gets
//   alpha Σ_p X(i, p) Z(l, p) over k terms added; `hermitian` leaves its diagonal real, with the
//   imaginary part exactly zero.
//
// The kernels pack their operands into the work area (64-byte aligned, work_elements elements)
// and compute in register tiles (level3_tiles.hpp).

#include <cstdint>

#include "service/dispatch.hpp"
#include "service/types.hpp"

namespace zor {

// Element (i, j) at base[i * rs + j * cs], conjugated when `conj` (complex data only).
template <class T>
struct ConstView {
    const T* base;
    zint rs;
    zint cs;
    bool conj;
};

template <class T>
struct MutableView {
    T* base;
    zint rs;
    zint cs;
};

template <class T>
struct BlockKernels {
    using Triangular = void(zint b, zint nv, const ConstView<T>& m, bool unit, const T& alpha,
                            const MutableView<T>& y, T* work);
    using RankUpdate = void(zint b, zint k, const ConstView<T>& x, const ConstView<T>& z, const T& alpha,
                            bool lower, bool hermitian, T* c, zint ldc, T* work);

    zint triangular_block;  // the order of the diagonal blocks trsm and trmm hand over
    zint rank_block;        // and the rank-k updates
    zint work_elements;     // enough for either kind of block of those orders
    Triangular* solve;
    Triangular* multiply;
    RankUpdate* rank_update;
};

}  // namespace zor

ZOR_DECLARE_VARIANTS(
    // The kernels of this level for the extensions beyond AVX given (only the Avx level looks).
    const BlockKernels<double>& real_block_kernels(std::uint32_t extensions);
    const BlockKernels<zcomplex>& complex_block_kernels(std::uint32_t extensions);
    // The Avx variant's inner paths with FMA and with AVX-512F: defined in that variant only.
    const BlockKernels<double>& real_block_kernels_fma();
    const BlockKernels<zcomplex>& complex_block_kernels_fma();
    const BlockKernels<double>& real_block_kernels_avx512();
    const BlockKernels<zcomplex>& complex_block_kernels_avx512();)
